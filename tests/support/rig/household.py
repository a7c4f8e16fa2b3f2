"""The processes of one desktop, with their common environment."""

import os
import signal
import subprocess
import threading
import time

from rig import processes

_known = set()


class Household:
    """Starts processes and ends them in reverse order; orphans they leave are found and ended.

    `admitted` makes of a command the one that runs it as a member of the household."""

    def __init__(self, environment, log, admitted=lambda command: command):
        processes.become_subreaper()
        self.environment = environment
        self._admitted = admitted
        # The names of programs that a member lets go, and that are the desktop's all the same.
        self.let_go = set()
        self._log = open(log, "ab")
        self._log_path = log
        self._running = []

    def start(self, command, environment=None, **more):
        """Starts a process of the desktop; its output goes to the desktop's log file."""
        more.setdefault("stdin", subprocess.DEVNULL)
        more.setdefault("stdout", self._log)
        more.setdefault("stderr", self._log)
        process = subprocess.Popen(
            processes.bound(self._admitted([str(part) for part in command])),
            env={**self.environment, **(environment or {})}, **more)
        self._running.append(process)
        _known.add(process.pid)
        return process

    def run(self, command, **more):
        """Runs a program of the desktop to its end, as subprocess.run does."""
        more.setdefault("check", True)
        return subprocess.run(self._admitted([str(part) for part in command]),
                              env=self.environment, **more)

    def stop(self, process):
        """Ends one of the processes."""
        processes.end(process)
        self._running.remove(process)
        _known.discard(process.pid)

    def log(self):
        """What the processes of the desktop have said so far."""
        return self._log_path.read_text(errors="replace")

    def orphans(self):
        """Processes that lost their parent and were left to us: process id and command line."""
        return {pid: line for pid in _adopted() if (line := processes.command_line(pid))
                and os.path.basename(line.split()[0]) not in self.let_go}

    def end(self):
        """Ends everything."""
        for process in reversed(self._running.copy()):
            self.stop(process)
        while adopted := _adopted():
            for pid in adopted:
                processes.send(pid, signal.SIGKILL)
            time.sleep(0.001)
        self._log.close()


def _adopted():
    """Children of this process that it has not started, those that have just ended excepted."""
    for pid in (adopted := set(processes.children(os.getpid())) - _known):
        processes.reap(pid)
    return adopted & set(processes.children(os.getpid()))


def note_foreign(process):
    """Tells every household that a child of this process is none of theirs."""
    _known.add(process.pid)


class Lines:
    """The output of a process, line by line, as it comes."""

    def __init__(self, stream):
        self._lines = []
        self._changed = threading.Condition()
        self._ended = False
        self._thread = threading.Thread(target=self._read, args=(stream,), daemon=True)
        self._thread.start()

    def _read(self, stream):
        with stream:
            for line in stream:
                with self._changed:
                    self._lines.append(line.rstrip("\n"))
                    self._changed.notify_all()
        with self._changed:
            self._ended = True
            self._changed.notify_all()

    @property
    def all(self):
        """What came so far."""
        with self._changed:
            return list(self._lines)

    def wait_for(self, text, seconds=10, after=0):
        """Waits for a line that holds `text`, from line number `after` on; returns its number."""
        def found():
            for number, line in enumerate(self._lines[after:], after):
                if text in line:
                    return number + 1
            return self._ended

        with self._changed:
            number = self._changed.wait_for(found, seconds)
            if number is True or not number:
                raise TimeoutError(f"no line with {text!r} within {seconds} s in:\n"
                                   + "\n".join(self._lines))
            return number - 1

    def wait_for_end(self, seconds=5):
        """Waits until the process has closed its output."""
        with self._changed:
            return self._changed.wait_for(lambda: self._ended, seconds)
