"""The clock of the program under test, which may be set to another time than it is.

The environment variable TESSERY_TEST_CLOCK tells that time, in seconds since 1970. Every desktop
begins at it. The library that sets the clock is named by TESSERY_CLOCK_LIBRARY; neither the tools
that the program runs nor anything else of the desktop notice."""

import math
import os
import time


def environment():
    """The variables by which a program gets that clock."""
    wanted = os.environ.get("TESSERY_TEST_CLOCK")
    if not wanted:
        return {}
    return {"LD_PRELOAD": os.environ["TESSERY_CLOCK_LIBRARY"],
            "TESSERY_CLOCK_AHEAD": str(math.ceil(int(wanted) - time.time()))}
