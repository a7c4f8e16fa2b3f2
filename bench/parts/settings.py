"""The settings window: how soon it is painted, also while somebody types, and what is left of it
when it has been closed."""

import statistics
import time

from parts import rest, subjects
from parts.pixel import Pixel
from rig import keys, processes

STARTS = 10
ROUNDS = 3
SETTLED = 40
TITLE = "Settings"
_ENTRY = "Settings..."
# On the "Save" button, which is painted last.
_INSIDE = 393, 497
_GOAL = 100
# Across the text of the host name.
_HOSTNAME = 36, 196
_HOSTNAME_WIDTH = 114
_LETTERS = 12
# Sixty frames a second.
_FRAME = 1000 / 60


def measure(build, table):
    """First the times to paint, then the memory and the rest after it was closed."""
    _measure_paint(build, table)
    _measure_typing(build, table)
    _measure_rest(build, table)


class Window:
    """The window of one program, opened from its tray menu."""

    def __init__(self, desktop, program):
        self._desktop = desktop
        self._item = desktop.tray_item(program)
        self._number = self._item.entry(_ENTRY).id

    def open(self):
        """Opens the window."""
        self._item.send_event(self._number, "clicked")

    def close(self):
        """Closes it with the window manager's key."""
        self._desktop.screen.wait_for_window(TITLE)
        self._desktop.screen.key("alt+F4")
        processes.wait_until(lambda: not self._desktop.screen.windows(TITLE), 5, "it is closed")

    def place(self):
        """The pixel to be watched: the desktop puts the window in the same place each time."""
        self.open()
        window = self._desktop.screen.wait_for_window(TITLE)
        left, top, _, _ = self._desktop.screen.geometry(window)
        return Pixel(self._desktop.screen.display, left + _INSIDE[0], top + _INSIDE[1])

    def milliseconds(self, pixel, painted):
        """From choosing the entry until the pixel has the colour that it has in the window."""
        begun = time.monotonic()
        self.open()
        while pixel.colours() != painted:
            if time.monotonic() - begun > 5:
                raise TimeoutError("the window was not painted")
        return (time.monotonic() - begun) * 1000


def _measure_paint(build, table):
    programs = build / "bench" / "BareWindow", subjects.tessery(build)
    first, again = ([], []), ([], [])
    with subjects.desktop_for() as desktop:
        colours = [_painted(desktop, program) for program in programs]
        for _ in range(STARTS):
            for which, path in enumerate(programs):
                pixel, painted = colours[which]
                program = desktop.start_program(path)
                window = Window(desktop, program)
                for times in first, again:
                    times[which].append(window.milliseconds(pixel, painted))
                    window.close()
                program.terminate()
    for name, (floors, found) in (("first time", first), ("again", again)):
        middle = statistics.median(found)
        table.row(f"settings chosen to first paint, {name}", f"{statistics.median(floors):.2f} ms",
                  f"{middle:.2f} ms", f"{middle:.2f} ms ({min(found):.2f} to {max(found):.2f})",
                  f"<= {_GOAL} ms", middle <= _GOAL)


def _measure_typing(build, table):
    with subjects.desktop_for() as desktop, keys.Keys(desktop.screen.display) as keyboard:
        program = desktop.start_program(subjects.tessery(build))
        Window(desktop, program).open()
        left, top, _, _ = desktop.screen.geometry(desktop.screen.wait_for_window(TITLE))
        desktop.screen.key("ctrl+a", "Delete")
        desktop.screen.still_picture(desktop.surroundings.base / "settled.png")
        text = Pixel(desktop.screen.display, left + _HOSTNAME[0], top + _HOSTNAME[1],
                     _HOSTNAME_WIDTH)
        found = [_letter(keyboard, text) for _ in range(_LETTERS)]
    middle = statistics.median(found)
    table.row("letter typed to its repaint", "", f"{middle:.2f} ms",
              f"{middle:.2f} ms ({min(found):.2f} to {max(found):.2f})", f"<= {_FRAME:.1f} ms",
              middle <= _FRAME)


def _letter(keyboard, text):
    """Milliseconds until a typed letter is seen."""
    before = text.colours()
    begun = time.monotonic()
    keyboard.tap(keys.U)
    while text.colours() == before:
        if time.monotonic() - begun > 5:
            raise TimeoutError("the letter was not painted")
    return (time.monotonic() - begun) * 1000


def _painted(desktop, path):
    """The pixel to be watched for a program's window, and its colour in there."""
    program = desktop.start_program(path)
    window = Window(desktop, program)
    pixel = window.place()
    desktop.screen.still_picture(desktop.surroundings.base / "settled.png")
    painted = pixel.colours()
    window.close()
    desktop.screen.still_picture(desktop.surroundings.base / "settled.png")
    if pixel.colours() == painted:
        raise RuntimeError("the window cannot be told from the background")
    program.terminate()
    return pixel, painted


def _measure_rest(build, table):
    """Programs side by side: the floor never opens a window, the others do."""
    names = {"Rss": ("RSS", 1.15), "Private_Dirty": ("private dirty", 1.4)}
    memory = {key: ([], [], [], []) for key in names}
    activity = []
    for _ in range(ROUNDS):
        with subjects.desktop_for() as desktop:
            programs = [desktop.start_program(path) for path in
                        (subjects.bare_tray(build), subjects.tessery(build),
                         build / "bench" / "BareWindow")]
            subjects.start_monitoring(desktop, programs[1])
            time.sleep(SETTLED / 4)
            _note(memory, 1, programs[1:2])
            for program in programs[1:]:
                window = Window(desktop, program)
                window.open()
                window.close()
            time.sleep(SETTLED)
            _note(memory, 0, programs[:1])
            _note(memory, 2, programs[1:])
            activity.append(rest.activity_of(programs[:2]))
    for key, (name, goal) in names.items():
        bare, before, after, bare_after = memory[key]
        table.ratio(f"{name} after the window was closed", "MB", bare, after, goal)
        _told(table, "the same, before it was opened", before, after)
        _told(table, "the same, a bare window's", bare_after, after)
    rest.still(table, "context switches in 60 s after closing", "",
               [[round_[which][0] for round_ in activity] for which in (0, 1)])
    rest.still(table, "processor time in 60 s after closing", " ms",
               [[round_[which][1] for round_ in activity] for which in (0, 1)])


def _note(memory, first, programs):
    """Notes the memory of programs, from the list of that number on, in megabytes."""
    for number, program in enumerate(programs, first):
        kilobytes = rest.rollup(program.pid)
        for key, lists in memory.items():
            lists[number].append(kilobytes[key] / 1024)


def _told(table, name, floors, found):
    """A comparison without a goal."""
    ratios = [one / other for one, other in zip(found, floors, strict=True)]
    table.row(name, f"{statistics.median(floors):.2f} MB", f"{statistics.median(found):.2f} MB",
              f"{statistics.median(ratios):.2f} x ({min(ratios):.2f} to {max(ratios):.2f})", "",
              None)
