"""A namespace in which a test mounts folders and lowers limits while programs run in it."""

import os
import shlex
import subprocess

from rig import household, place, processes

_END_WITH_US = ["setpriv", "--inh-caps=-all", "--ambient-caps=-all", "--pdeathsig", "KILL"]
# Only who is root inside gets its privileges again with the program, and may give them up.
_NOR_AS_ROOT = ["--bounding-set=-all"]


class PrivateMounts:
    """Nobody outside sees what is mounted here. Programs inside have no privilege."""

    def __init__(self):
        self._shell = subprocess.Popen([*place.unshare(os.getuid()), "sh"], encoding="utf-8",
                                       stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        household.note_foreign(self._shell)
        self.run("true")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for stream in (self._shell.stdin, self._shell.stdout):
            stream.close()
        processes.end(self._shell)

    def command(self, command):
        """The command that runs `command` in the namespace."""
        return ["nsenter", f"--target={self._shell.pid}", "--user", "--preserve-credentials",
                "--mount", f"--wdns={os.getcwd()}", *_END_WITH_US,
                *([] if os.getuid() else _NOR_AS_ROOT), "--", *command]

    def run(self, *command):
        """Runs a command with the privileges that it takes to mount."""
        self._shell.stdin.write(shlex.join(map(str, command)) + "; echo $?\n")
        self._shell.stdin.flush()
        status = self._shell.stdout.readline()
        if status != "0\n":
            raise RuntimeError(f"{command}: exit status {status}")

    def bind(self, folder, over):
        """Shows a folder in the place of another."""
        self.run("mount", "--bind", folder, over)

    def unmount(self, folder):
        """Takes away what was mounted last."""
        self.run("umount", folder)

    def limit(self, name, value):
        """Sets a limit that holds for all processes in the namespace."""
        self.run("sh", "-c", f"echo {value} > /proc/sys/user/{name}")
