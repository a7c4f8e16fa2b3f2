"""The benchmarks that are programs of their own, which print lines as PairedRatio.h makes them."""

import re
import subprocess
import tempfile

_LINE = re.compile(
    r"^(?P<name>.*?) +floor +(?P<floor>[\d.]+) us  subject +(?P<subject>[\d.]+) us"
    r"  ratio +(?P<ratio>[\d.]+) \((?P<ratios>[^)]*)\)"
    r"  added +(?P<added>-?[\d.]+) us \((?P<low>-?[\d.]+) to (?P<high>-?[\d.]+)\)$")


def run(command, table, goal, **more):
    """Runs a benchmark. `goal(name)` is a pair: "x" for a ratio, or "ms" for what is added, and
    the limit; None when the line is there for comparison only."""
    with subprocess.Popen(command, stderr=subprocess.PIPE, text=True, **more) as process:
        for line in process.stderr:
            if match := _LINE.match(line.rstrip("\n")):
                _row(table, match, goal(match["name"]))
            else:
                print(line, end="", flush=True)
    if process.returncode != 0:
        raise RuntimeError(f"{command} ended with {process.returncode}")


def _row(table, match, goal):
    in_ms = float(match["floor"]) >= 1000
    scale, unit = (1000, "ms") if in_ms else (1, "us")
    floor, subject = (f"{float(match[key]) / scale:.2f} {unit}" for key in ("floor", "subject"))
    kind, limit = goal or ("x", None)
    if kind == "x":
        value = float(match["ratio"])
        text = f"{match['ratio']} x ({match['ratios']})"
    else:
        value, low, high = (float(match[key]) / 1000 for key in ("added", "low", "high"))
        text = f"{value:.2f} ms ({low:.2f} to {high:.2f})"
    table.row(match["name"], floor, subject, text,
              f"<= {limit:g} {kind}" if goal else "", value <= limit if goal else None)


def log(build, table):
    """One line of the log over a bare write(2)."""
    # The benchmark makes its file where it is started, and removes it.
    with tempfile.TemporaryDirectory() as folder:
        run([build / "bench" / "LogBench"], table, lambda name: ("x", 1.5), cwd=folder)


def rescan(build, table):
    """A rescan of the watched folder over bare getdents64, and its growth."""
    def goal(name):
        if name.startswith("100,000"):
            return "x", 1.25
        if name == "the same, bare reads":
            return None
        return "x", 1.3 if name.startswith("ASCII") else 1.6

    run([build / "bench" / "RescanBench"], table, goal)
