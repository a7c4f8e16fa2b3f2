"""From a file renamed into the Desktop to its link, read by another client."""

import os
import time

from parts import subjects
from servers import Server

TIMES = 12
# The batch comes a second after the file, and the report half a second after the batch.
_DELAYS = 1.5
_CONTENT = os.urandom(300 * 1024)


def measure(build, table):
    """Arrivals and bare transfers in turn."""
    floors, subjects_ = [], []
    with Server("pyftpdlib", password="secret") as server, subjects.desktop_for(server) as desktop:
        program = desktop.start_program(subjects.tessery(build))
        reader = desktop.start_program(build / "bench" / "ClipboardReader")
        reader.wait_for_line("ready")
        subjects.start_monitoring(desktop, program)
        bare = BareTransfer(desktop, server)
        for number in range(TIMES + 1):
            arrival = _arrival(desktop, reader, f"Screenshot {number}.png") - _DELAYS
            # As long after the last work as the program's own curl.
            time.sleep(_DELAYS)
            transfer = bare.seconds()
            if number > 0:
                floors.append(transfer * 1000)
                subjects_.append(arrival * 1000)
    table.difference("file renamed to link readable, less 1.5 s", "ms", floors, subjects_, 40)


def _arrival(desktop, reader, name):
    """Seconds until the reader has read the link of a new file."""
    partial = desktop.surroundings.base / "partial"
    partial.write_bytes(_CONTENT)
    seen = len(reader.output.all)
    begun = time.monotonic_ns()
    partial.rename(desktop.surroundings.desktop_folder / name)
    number = reader.wait_for_line(name, after=seen)
    return (int(reader.output.all[number].split()[0]) - begun) / 1e9


class BareTransfer:
    """Curl, called as the program calls it, by nobody but us."""

    def __init__(self, desktop, server):
        folder = desktop.surroundings.base
        self._environment = desktop.surroundings.program_environment()
        file = folder / "bare.png"
        file.write_bytes(_CONTENT)
        netrc = folder / "netrc"
        netrc.touch(mode=0o600)
        netrc.write_text(f"machine {server.host}\nlogin {server.user}\npassword {server.password}")
        self._command = ["/usr/bin/curl", "--ftp-pasv", "-T", str(file), "--netrc-file", str(netrc),
                         "--max-time", "60", "--connect-timeout", "30", "-v",
                         f"ftp://{server.host}:{server.port}/bare.png"]

    def seconds(self):
        """How long one transfer takes."""
        actions = [(os.POSIX_SPAWN_OPEN, stream, "/dev/null", os.O_RDWR, 0) for stream in range(3)]
        begun = time.monotonic()
        pid = os.posix_spawn(self._command[0], self._command, self._environment,
                             file_actions=actions)
        _, status = os.waitpid(pid, 0)
        if status != 0:
            raise RuntimeError(f"curl ended with {status}")
        return time.monotonic() - begun
