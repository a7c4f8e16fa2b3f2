"""Starting processes and ending them together with everything that they started."""

import ctypes
import os
import signal
import subprocess
import time

PR_SET_CHILD_SUBREAPER = 36
_libc = ctypes.CDLL(None, use_errno=True)


def become_subreaper():
    """From now on orphaned descendants become children of this process, so none escapes."""
    _libc.prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)


def bound(command):
    """The command that runs `command` so that it is killed when this process is.

    A function between fork and exec would do it too, but can hang in a process with threads."""
    return ["setpriv", "--pdeathsig", "KILL", "--", *command]


def children(pid):
    """The process ids of the direct children of `pid`."""
    found = []
    try:
        for task in os.listdir(f"/proc/{pid}/task"):
            with open(f"/proc/{pid}/task/{task}/children", encoding="ascii") as file:
                found += [int(child) for child in file.read().split()]
    except (FileNotFoundError, ProcessLookupError):
        pass
    return found


def descendants(pid):
    """Children, their children and so on; parents stand before their children."""
    found = []
    for child in children(pid):
        found += [child, *descendants(child)]
    return found


def command_line(pid):
    """How `pid` was called, for messages; empty for a zombie."""
    try:
        with open(f"/proc/{pid}/cmdline", "rb") as file:
            return file.read().replace(b"\0", b" ").decode(errors="replace").strip()
    except (FileNotFoundError, ProcessLookupError):
        return ""


def send(pid, number):
    """Sends a signal; a process that has ended already is no error."""
    try:
        os.kill(pid, number)
    except ProcessLookupError:
        pass


def reap(pid):
    """Takes the ended child `pid` off the process table, if it is a child that has ended."""
    try:
        os.waitpid(pid, os.WNOHANG)
    except ChildProcessError:
        pass


def kill_descendants():
    """Kills and reaps everything below this process."""
    while pids := descendants(os.getpid()):
        for pid in pids:
            send(pid, signal.SIGKILL)
        for pid in pids:
            reap(pid)
        time.sleep(0.001)


def end(process, seconds=5):
    """Asks a subprocess to end and kills it when it does not within `seconds`.

    True when it went on request."""
    process.terminate()
    process.send_signal(signal.SIGCONT)
    try:
        process.wait(seconds)
        return True
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()
        return False


def pass_in(condition, seconds):
    """Whether `condition()` comes true within so many seconds."""
    try:
        wait_until(condition, seconds, "")
        return True
    except TimeoutError:
        return False


def wait_until(condition, seconds, what, interval=0.005):
    """Returns the first true result of `condition()`; TimeoutError names `what` was missing: a
    text, or a function that gives it then."""
    limit = time.monotonic() + seconds
    while True:
        if result := condition():
            return result
        if time.monotonic() > limit:
            raise TimeoutError(f"not within {seconds} s: {what() if callable(what) else what}")
        time.sleep(interval)
