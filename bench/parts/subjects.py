"""The programs that are compared, and a desktop for both."""

import contextlib
import os

from desktop import Desktop


def tessery(build):
    """The program."""
    return build / "src" / "tessery"


def bare_tray(build):
    """The least program with a tray item."""
    return build / "bench" / "BareTray"


@contextlib.contextmanager
def desktop_for(server=None, **settings):
    """A private desktop with stored settings that are valid and an unlocked keyring."""
    with Desktop() as desktop:
        if server:
            desktop.keyring.store(server.password)
            desktop.write_settings_for(server, "http://127.0.0.1/shots", **settings)
        else:
            desktop.keyring.store("secret")
            desktop.write_settings(hostname="127.0.0.1", username="me",
                                   publicURLBase="http://127.0.0.1/shots")
        yield desktop


def start_monitoring(desktop, program):
    """Starts monitoring through the menu."""
    item = desktop.tray_item(program)
    item.wait_until_enabled("Start Monitoring")
    item.click("Start Monitoring")
    program.wait_for_line("Monitoring started successfully")


class Activity:
    """The context switches and the processor time of a process, thread by thread, since the
    counts of a thread go away with it."""

    def __init__(self, pid):
        self._pid = pid
        self._first = self._now()
        self._last = dict(self._first)
        self._ended = set()

    def _now(self):
        found = {}
        for thread in os.listdir(f"/proc/{self._pid}/task"):
            folder = f"/proc/{self._pid}/task/{thread}"
            with contextlib.suppress(FileNotFoundError, ProcessLookupError):
                found[thread] = _switches(folder), _nanoseconds(folder)
        return found

    def look(self):
        """To be called now and then: what a thread did after the last look before its end is not
        known, so its end counts as one switch."""
        now = self._now()
        self._ended |= self._last.keys() - now.keys()
        self._last.update(now)

    def totals(self):
        """Context switches, and milliseconds of processor time."""
        switches = nanoseconds = 0
        for thread, (late_switches, late_nanoseconds) in self._last.items():
            early_switches, early_nanoseconds = self._first.get(thread, (0, 0))
            switches += late_switches - early_switches
            nanoseconds += late_nanoseconds - early_nanoseconds
        return switches + len(self._ended), nanoseconds / 1e6


def _switches(folder):
    with open(folder + "/status", encoding="ascii", errors="replace") as file:
        return sum(int(line.split()[1]) for line in file if "ctxt_switches" in line)


def _nanoseconds(folder):
    with open(folder + "/schedstat", encoding="ascii") as file:
        return int(file.read().split()[0])
