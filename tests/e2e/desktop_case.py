"""What tests of the real program have in common."""

import os
import pathlib
import re
import unittest

from desktop import Desktop
from rig import processes

PROGRAM = os.environ["TESSERY_PROGRAM"]
PICTURES = pathlib.Path(os.environ["TESSERY_PICTURES"])
# In pixels, as the old tray gives it.
OLD_ICON_WIDTH = 22


class DesktopCase(unittest.TestCase):
    """Each test has a private desktop. At its end the programs must have left nothing behind.

    A class sets `desktop_kind` and `desktop_options` to have another desktop than the usual one."""

    desktop_kind = Desktop
    desktop_options = {}
    # What the programs may write to standard error, as a pattern of whole lines. As a rule nothing.
    expected_errors = "(?!)"

    def setUp(self):
        self.desktop = self.enterContext(self.desktop_kind(**self.desktop_options))
        self.programs = []

    def tearDown(self):
        for program in self.programs:
            if program.is_running():
                program.terminate()
        said = [line for program in self.programs for line in program.errors.all
                if not re.fullmatch(self.expected_errors, line)]
        self.assertEqual(said, [], "nothing is written to standard error")
        self.desktop.assert_clean()

    def start(self, *arguments, **options):
        """Starts the program; it is asked to end when the test ends."""
        program = self.desktop.start_program(PROGRAM, *arguments, **options)
        self.programs.append(program)
        return program

    def old_icons(self):
        """The program's icons that can be seen in a tray of the old kind."""
        screen = self.desktop.screen
        tree = screen.run("xwininfo", "-root", "-tree")
        windows = re.findall(rf'(0x\w+) .*\("tessery" .*\)  {OLD_ICON_WIDTH}x', tree)
        return [window for window in windows
                if "IsViewable" in screen.facts(window)]

    def wait_for_old_icon(self, present=True):
        """Waits until the program's icon is in the tray of the old kind, or is not."""
        processes.wait_until(lambda: bool(self.old_icons()) == present, 10,
                             f"an icon in the old tray: {present}")

    def picture(self, name):
        """Saves what is on the screen, for a person to look at."""
        PICTURES.mkdir(parents=True, exist_ok=True)
        self.desktop.screen.still_picture(PICTURES / f"{name}.png")
