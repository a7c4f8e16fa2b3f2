"""Starting a real server on a free port."""

import os
import subprocess

from rig import packages, ports, processes


class PortTaken(Exception):
    """Another process took the port between choosing and binding."""


def start(place, command_for_port, log, ready, taken, host=ports.HOST):
    """Runs `command_for_port(port)` in `place` until the log holds `ready`.

    When the log says `taken` instead, another port is chosen. Returns the port."""
    for _ in range(20):
        port = ports.free_port(host)
        try:
            _start_on(place, command_for_port(port), log, ready, taken)
            return port
        except PortTaken:
            log.unlink()
    raise OSError("no port could be bound")


def _start_on(place, command, log, ready, taken):
    environment = {"PATH": os.defpath, "LANG": "C.UTF-8", "HOME": "/",
                   "LD_LIBRARY_PATH": packages.library_path(place.servers)}
    with open(log, "ab") as output:
        process = subprocess.Popen(
            processes.bound(place.command(command)), env=environment,
            stdin=subprocess.DEVNULL, stdout=output, stderr=output)

    def state():
        text = log.read_text(errors="replace")
        if taken in text:
            processes.end(process)
            raise PortTaken
        if ready in text:
            return True
        if process.poll() is not None:
            raise RuntimeError(f"the server ended with {process.returncode}:\n{text}")
        return False

    processes.wait_until(state, 10, f"{ready!r} in {log}")
