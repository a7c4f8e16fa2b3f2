"""The results, one line each: what was measured, its floor, what was compared, and the goal."""

import os
import statistics

_LINE = "{:<44} {:>10} {:>10}  {:<34} {:<11} {}"


class Table:
    """Prints results as they come."""

    def __init__(self):
        self.all_held = True
        print(_LINE.format("measure", "floor", "subject", "median (min to max)", "goal", "held"))

    def note_load(self, part):
        """Says how busy the machine is: others' work spoils the figures."""
        print(f"-- {part}; load {os.getloadavg()[0]:.1f} on {os.cpu_count()} processors",
              flush=True)

    def row(self, name, floor, subject, compared, goal, held):
        """Prints a finished line; without a goal `held` is None."""
        if held is False:
            self.all_held = False
        verdict = {None: "", True: "yes", False: "NO"}[held]
        print(_LINE.format(name, floor, subject, compared, goal, verdict), flush=True)

    def ratio(self, name, unit, floors, subjects, goal):
        """Compares pair by pair by division."""
        self._pairs(name, unit, floors, subjects, goal, "x", lambda floor, subject: subject / floor)

    def difference(self, name, unit, floors, subjects, goal):
        """Compares pair by pair by subtraction."""
        self._pairs(name, unit, floors, subjects, goal, unit,
                    lambda floor, subject: subject - floor)

    def _pairs(self, name, unit, floors, subjects, goal, goal_unit, compare):
        compared = [compare(*pair) for pair in zip(floors, subjects, strict=True)]
        middle = statistics.median(compared)
        text = f"{middle:.2f} {goal_unit} ({min(compared):.2f} to {max(compared):.2f})"
        self.row(name, f"{statistics.median(floors):.2f} {unit}",
                 f"{statistics.median(subjects):.2f} {unit}", text, f"<= {goal:g} {goal_unit}",
                 middle <= goal)
