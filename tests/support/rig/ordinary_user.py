"""An ordinary user made of a namespace, for programs that refuse to run as root."""

import os
import subprocess

from rig import household, place, processes
from rig.program import own_passwd

UID = 1000

_STAY = """
mount --bind "$1" /etc/passwd
# Compositors are particular about who owns the folder of the X sockets.
[ -d /tmp/.X11-unix ] || mkdir -m 1777 /tmp/.X11-unix
mount -t tmpfs -o mode=1777 tmpfs /tmp/.X11-unix
echo
exec cat
"""
# Who joins the namespace like this has no capability in it.
_END_WITH_US = ["setpriv", "--pdeathsig", "KILL", "--"]


class OrdinaryUser:
    """A user who is root outside and has no privilege inside; all its programs see each other as
    they do on a person's machine."""

    def __init__(self, surroundings):
        if not place.namespaces_allowed():
            raise RuntimeError("A Wayland compositor does not run as root, and the namespaces in "
                               "which root can be an ordinary user are forbidden here.")
        passwd = own_passwd(surroundings, UID, UID)
        self._process = subprocess.Popen(
            [*place.unshare(UID), "sh", "-ec", _STAY, "sh", passwd],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        household.note_foreign(self._process)
        self._process.stdout.readline()

    def admitted(self, command):
        """The command that runs a command as this user."""
        return ["nsenter", f"--target={self._process.pid}", "--user", "--preserve-credentials",
                "--mount", f"--wdns={os.getcwd()}", *_END_WITH_US, *command]

    def close(self):
        """Lets the namespace go, once nobody is in it."""
        for stream in (self._process.stdin, self._process.stdout):
            stream.close()
        processes.end(self._process)
