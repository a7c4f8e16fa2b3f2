"""A program under test in a private desktop."""

import pathlib
import subprocess

from rig.household import Lines

_WITHOUT_PRIVILEGES = """
shift
exec setpriv --inh-caps=-all --ambient-caps=-all --bounding-set=-all --pdeathsig KILL -- "$@"
"""
# ssh takes the home folder from the account, not from HOME. In a namespace the account is ours.
_OWN_ACCOUNT = 'mount --bind "$1" /etc/passwd'
_SMALL_FOLDER = 'mount -t tmpfs -o size=64k,mode=700 tmpfs "$1"'


def own_passwd(surroundings, uid, gid):
    """A file of accounts in which the desktop's HOME is that of this user."""
    passwd = surroundings.base / "passwd"
    others = [line for line in pathlib.Path("/etc/passwd").read_text().splitlines()
              if line.split(":")[2] != str(uid)]
    own = f"tester:x:{uid}:{gid}::{surroundings.home}:/bin/sh"
    passwd.write_text("\n".join([own, *others]) + "\n")
    return passwd


def with_own_account(command, surroundings, uid, gid):
    """The command that runs `command` where the account's home folder is the desktop's HOME."""
    return _in_namespace(_OWN_ACCOUNT, own_passwd(surroundings, uid, gid), command, uid, gid)


def with_small_folder(command, folder, uid, gid):
    """The command that runs `command` where the folder takes 64 KB; nobody else sees it so."""
    return _in_namespace(_SMALL_FOLDER, folder, command, uid, gid)


def _in_namespace(mount, path, command, uid, gid):
    """The command that runs `command` where something is mounted, with no more rights than ours."""
    return ["unshare", "--user", f"--map-user={uid}", f"--map-group={gid}", "--keep-caps",
            "--mount", "--propagation", "private",
            "sh", "-ec", mount + _WITHOUT_PRIVILEGES, "sh", str(path), *command]


class Program:
    """A running program with its output; `output` and `errors` hold the lines as they come."""

    def __init__(self, household, command, environment):
        self._household = household
        self._process = household.start(
            command, environment, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
            encoding="utf-8", errors="backslashreplace")
        self.output = Lines(self._process.stdout)
        self.errors = Lines(self._process.stderr)

    @property
    def pid(self):
        """The process id, which is also that of the program when it has an account of its own."""
        return self._process.pid

    def wait_for_line(self, text, seconds=10, after=0):
        """Waits for a line of standard output that holds `text`; returns its number."""
        return self.output.wait_for(text, seconds, after)

    def send_signal(self, number):
        """Sends a signal."""
        self._process.send_signal(number)

    def is_running(self):
        """Whether it has not ended yet."""
        return self._process.poll() is None

    def wait(self, seconds=10):
        """Waits until it ends by itself, and for its last output; returns the exit status."""
        status = self._process.wait(seconds)
        self.output.wait_for_end()
        self.errors.wait_for_end()
        return status

    def terminate(self, seconds=10):
        """Asks it to end with SIGTERM and waits; returns the exit status."""
        self._process.terminate()
        return self.wait(seconds)
