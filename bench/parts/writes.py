"""How many writes the log lines of one rescan take, counted in the real program."""

from parts import subjects

NEW_FILES = 5
# What the lines of a rescan hold, in characters that strace prints as they are.
_LINES = ("checking for new screenshots", "files in directory", "New screenshot detected")


def measure(build, table):
    """Several screenshots arrive at once, among other files."""
    with subjects.desktop_for() as desktop:
        trace = desktop.surroundings.base / "writes"
        # The tracer is no parent of the program, so the program is found as usual.
        program = desktop.start_program("/usr/bin/strace", "-D", "-f", "-e", "trace=write,writev",
                                        "-s", "100000", "-o", trace, subjects.tessery(build))
        subjects.start_monitoring(desktop, program)
        for number in range(NEW_FILES):
            partial = desktop.surroundings.base / f"Screenshot {number}.png"
            partial.touch()
            partial.rename(desktop.surroundings.desktop_folder / partial.name)
        for number in range(NEW_FILES):
            program.wait_for_line(f"callback received for: Screenshot {number}.png")
        lines = sum(any(text in line for text in _LINES) for line in program.output.all)
        program.terminate()
        calls = [line for line in trace.read_text(errors="replace").splitlines()
                 if "write" in line and any(text in line for text in _LINES)]
    table.row("writes for the log lines of one rescan", "1", str(len(calls)), f"{lines} lines",
              "1", len(calls) == 1)
