"""Where a real server runs: a jail made of namespaces, with a root folder and accounts of its own.

A login there cannot touch the machine: "/" is the server's own folder, and no process of the
server has a privilege, whoever runs the tests."""

import os
import shutil
import subprocess

from rig import packages

UID = 1000
LOGIN = "/home"
FULL_SIZE = "128k"

_ENTER = """
set -e
root=$1; shift
for name in usr lib lib32 lib64 libx32 servers; do
  [ ! -d "$root/$name" ] || [ -L "$root/$name" ] || mount --rbind "$(readlink "$root/.$name")" "$root/$name"
done
mount --bind /dev/null "$root/dev/null"
mount -t tmpfs -o size=FULL_SIZE,mode=700 tmpfs "$root/home/full"
cd "$root"
exec /usr/sbin/chroot . /usr/bin/setpriv --inh-caps=-all --ambient-caps=-all --bounding-set=-all \
  --pdeathsig KILL -- "$@"
""".replace("FULL_SIZE", FULL_SIZE)


def unshare(uid):
    """The command in front of one that runs as `uid` of a namespace of its own."""
    return ["unshare", "--user", f"--map-user={uid}", f"--map-group={uid}", "--keep-caps",
            "--mount", "--propagation", "private"]


def namespaces_allowed():
    """Some containers forbid what the jail is made of."""
    return subprocess.run([*unshare(UID), "true"], capture_output=True, check=False).returncode == 0


def make_login_folder(folder):
    """The folder that uploads go to, with one that may only be read and one that is closed."""
    folder.mkdir(parents=True)
    for name, mode in (("readonly", 0o500), ("forbidden", 0o000), ("full", 0o700)):
        (folder / name).mkdir(mode=mode)


def remove(folder):
    """Removes a tree with folders in it that forbid looking inside."""
    for path, names, _ in os.walk(folder):
        for name in names:
            child = os.path.join(path, name)
            if not os.path.islink(child):
                os.chmod(child, 0o700)
    shutil.rmtree(folder)


class Jail:
    """A root folder below `base`; the system's /usr and the unpacked servers are seen inside."""

    servers = "/servers"
    jailed = True

    def __init__(self, base):
        self.root = base / "root"
        self.folder = self.root / LOGIN[1:]
        make_login_folder(self.folder)
        for name in ("etc", "dev", "tmp"):
            (self.root / name).mkdir()
        (self.root / "dev" / "null").touch()
        self._show("/usr", "usr")
        self._show(str(packages.location()), "servers")
        for name in ("bin", "sbin", "lib", "lib32", "lib64", "libx32"):
            if os.path.islink(f"/{name}"):
                (self.root / name).symlink_to(os.readlink(f"/{name}"))
            elif os.path.isdir(f"/{name}"):
                self._show(f"/{name}", name)

    def inside(self, path):
        """The name by which the server knows a file below the root folder."""
        return "/" + str(path.relative_to(self.root))

    def command(self, command):
        """The command that runs `command` in the jail."""
        return [*unshare(UID), "sh", "-c", _ENTER, "sh", str(self.root), *command]

    def _show(self, source, name):
        (self.root / name).mkdir()
        (self.root / f".{name}").symlink_to(source)


class OpenPlace:
    """Without namespaces: the same folders, but the server sees the whole machine."""

    jailed = False

    def __init__(self, base):
        self.root = base / "root"
        self.folder = self.root / LOGIN[1:]
        make_login_folder(self.folder)
        for name in ("etc", "tmp"):
            (self.root / name).mkdir()
        self.servers = str(packages.location())

    def inside(self, path):
        """Paths are the same inside and outside."""
        return str(path)

    def command(self, command):
        """Nothing is put in front of the command."""
        return command


def make(base):
    """The safest place that this machine allows."""
    return Jail(base) if namespaces_allowed() else OpenPlace(base)
