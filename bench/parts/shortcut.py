"""The global shortcut: from the key to the link, and what holding it for two seconds costs."""

import statistics
import time

from parts import arrival, subjects
from rig import processes, settings_file
from servers import Server

TIMES = 15
HELD_SECONDS = 2
_TEXT = "copied text\n" * 100
_SUCCESS = "✅ Screenshot Uploaded"
_TRIGGERED = "📋 Upload clipboard triggered"


def measure(build, table):
    """Single presses beside bare transfers, then the key held down."""
    # A name with digits in it now and then holds 530, a refused login by FTP.
    names = {"filenameStyle": "Random String",
             "randomFilenameConfig": {**settings_file.DEFAULTS["randomFilenameConfig"],
                                      "useNumbers": False}}
    with (Server("pyftpdlib", password="secret") as server,
          subjects.desktop_for(server, **names) as desktop):
        program = desktop.start_program(subjects.tessery(build))
        program.wait_for_line("✅ Global hotkey registered")
        reader = desktop.start_program(build / "bench" / "ClipboardReader")
        reader.wait_for_line("ready")
        bare = arrival.BareTransfer(desktop, server)
        floors, found = [], []
        for number in range(TIMES + 1):
            desktop.screen.set_clipboard(_TEXT)
            pressed = _press(desktop, reader)
            transfer = bare.seconds()
            if number > 0:
                floors.append(transfer * 1000)
                found.append(pressed * 1000)
        table.difference("shortcut pressed to link readable", "ms", floors, found, 40)
        _hold(desktop, program, statistics.median(floors), table)


def _press(desktop, reader):
    """Seconds from the press to the link in another client, the start of xdotool included."""
    seen = len(reader.output.all)
    begun = time.monotonic_ns()
    desktop.screen.key("super+shift+u")
    number = reader.wait_for_line(".txt", after=seen)
    return (int(reader.output.all[number].split()[0]) - begun) / 1e9


def _hold(desktop, program, transfer, table):
    """How many uploads are started and how many run at once, and when the last has ended."""
    desktop.screen.set_clipboard(_TEXT)
    before = _count(program, _TRIGGERED)
    done = len([note for note in desktop.notifications.all if note.summary == _SUCCESS])
    activity = subjects.Activity(program.pid)
    most = 0
    desktop.screen.run("xdotool", "keydown", "super", "keydown", "shift", "keydown", "u")
    until = time.monotonic() + HELD_SECONDS
    while time.monotonic() < until:
        most = max(most, len(processes.children(program.pid)))
        activity.look()
        time.sleep(0.005)
    desktop.screen.run("xdotool", "keyup", "u", "keyup", "shift", "keyup", "super")
    released = time.monotonic()
    started = _count(program, _TRIGGERED) - before
    desktop.notifications.wait_for(_SUCCESS, 60, done + started)
    activity.look()
    settled = (time.monotonic() - released) * 1000
    _, milliseconds = activity.totals()
    table.row(f"uploads of a key held for {HELD_SECONDS} s", f"{transfer:.2f} ms", str(started),
              f"{most} tools at once at most", "", None)
    table.row("processor time of the program for these", "", f"{milliseconds:.0f} ms",
              f"{milliseconds / max(started, 1):.1f} ms each", "", None)
    table.row("from the release to the last success told", "", f"{settled:.0f} ms", "", "", None)


def _count(program, text):
    return sum(text in line for line in program.output.all)
