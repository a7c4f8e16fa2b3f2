"""Memory, wake-ups and processor time of the program at rest, monitoring on, in a quiet folder."""

import statistics
import time

from parts import subjects

ROUNDS = 3
SETTLED = 40
WATCHED = 60


def measure(build, table):
    """Both programs side by side, each time on a new desktop."""
    memory = {"Rss": ([], []), "Private_Dirty": ([], [])}
    activity = []
    for _ in range(ROUNDS):
        with subjects.desktop_for() as desktop:
            programs = [desktop.start_program(path)
                        for path in (subjects.bare_tray(build), subjects.tessery(build))]
            begun = time.monotonic()
            subjects.start_monitoring(desktop, programs[1])
            time.sleep(begun + SETTLED - time.monotonic())
            for which, program in enumerate(programs):
                kilobytes = rollup(program.pid)
                for key, values in memory.items():
                    values[which].append(kilobytes[key] / 1024)
            activity.append(activity_of(programs))
    table.ratio("RSS after 40 s", "MB", *memory["Rss"], 1.15)
    table.ratio("private dirty after 40 s", "MB", *memory["Private_Dirty"], 1.4)
    still(table, "context switches in 60 s at rest", "",
          [[round_[which][0] for round_ in activity] for which in (0, 1)])
    still(table, "processor time in 60 s at rest", " ms",
          [[round_[which][1] for round_ in activity] for which in (0, 1)])


def rollup(pid):
    """What the kernel tells of the memory of a process, in kilobytes."""
    with open(f"/proc/{pid}/smaps_rollup", encoding="ascii") as file:
        next(file)
        return {key: int(rest.split()[0]) for key, _, rest in (line.partition(":") for line in file)}


def activity_of(programs):
    """Context switches and milliseconds of processor time of each program in a while."""
    activities = [subjects.Activity(program.pid) for program in programs]
    end = time.monotonic() + WATCHED
    while time.monotonic() < end:
        time.sleep(1)
        for activity in activities:
            activity.look()
    return [activity.totals() for activity in activities]


def still(table, name, unit, both):
    """A line for what is to be nothing at all."""
    floor, subject = (f"{statistics.median(values):g}{unit}" for values in both)
    text = f"{subject} ({min(both[1]):g} to {max(both[1]):g})"
    table.row(name, floor, subject, text, "0", max(both[1]) == 0)
