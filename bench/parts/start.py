"""From exec to the tray item that the panel knows."""

import subprocess
import threading
import time

from parts import subjects
from rig import tray
from rig.bus import Monitor

PAIRS = 30
_SETTLE = 0.15


class Registrations:
    """Hears the panel tell of items that come and go."""

    def __init__(self, address):
        self._changed = threading.Condition()
        self._came = None
        self._left = 0
        self._monitor = Monitor(address, [f"type='signal',interface='{tray.WATCHER}'"],
                                self._heard)

    def _heard(self, message):
        now = time.monotonic()
        with self._changed:
            if message.get_member() == "StatusNotifierItemRegistered":
                self._came = now
            elif message.get_member() == "StatusNotifierItemUnregistered":
                self._left += 1
            self._changed.notify_all()

    def time_of(self, begin):
        """Milliseconds from the return of `begin()` to the next registration."""
        with self._changed:
            self._came = None
        begun = begin()
        with self._changed:
            if not self._changed.wait_for(lambda: self._came, 20):
                raise TimeoutError("no tray item was registered")
            return (self._came - begun) * 1000

    def wait_for_end_after(self, end):
        """Waits until the panel knows that the item has gone that `end()` takes away."""
        with self._changed:
            left = self._left
        end()
        with self._changed:
            if not self._changed.wait_for(lambda: self._left > left, 20):
                raise TimeoutError("the tray item stayed")

    def close(self):
        """Stops listening."""
        self._monitor.close()


def measure(build, table):
    """Both programs in turn, after one start each to warm up."""
    programs = subjects.bare_tray(build), subjects.tessery(build)
    times = {program: [] for program in programs}
    with subjects.desktop_for() as desktop:
        registrations = Registrations(desktop.bus.address)
        for pair in range(PAIRS + 1):
            for program in programs:
                milliseconds = _once(desktop, registrations, program)
                if pair > 0:
                    times[program].append(milliseconds)
        registrations.close()
    table.ratio("exec to tray item registered", "ms", *times.values(), 1.25)


def _once(desktop, registrations, path):
    process = None

    def begin():
        nonlocal process
        process = desktop.household.start([path], desktop.surroundings.program_environment(),
                                          stdout=subprocess.DEVNULL)
        # The process has reached exec when this returns.
        return time.monotonic()

    milliseconds = registrations.time_of(begin)
    # The panel has more to do for a new item, and for one that has gone.
    time.sleep(_SETTLE)
    registrations.wait_for_end_after(lambda: desktop.household.stop(process))
    time.sleep(_SETTLE)
    return milliseconds
