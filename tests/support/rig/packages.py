"""Server packages of the distribution, unpacked into the build tree instead of installed.

Installing them would make users, start daemons and throw out each other."""

import contextlib
import fcntl
import hashlib
import os
import pathlib
import re
import shutil
import subprocess

SOURCE = pathlib.Path(__file__).resolve().parents[3]
FOLDER = SOURCE / "build" / "test-servers"
CURRENT = FOLDER / "current"
SERVERS = ["openssh-server", "proftpd-core", "proftpd-mod-crypto"]
# What the servers need beyond a usual system; releases of the distribution name some differently.
LIBRARIES = [
    "libwrap0", "libwtmpdb0", "libpcre2-posix3", "libsodium23",
    "libhiredis0.14", "libhashkit2", "libmemcached11", "libmemcachedutil2",
    "libhiredis1.1.0", "libhashkit2t64", "libmemcached11t64", "libmemcachedutil2t64",
]


def prepare():
    """Unpacks the versions that apt offers now, unless that is done already."""
    with _lock():
        offered = _offered()
        folder = FOLDER / f"packages-{_version_key(offered)}"
        if not folder.exists():
            _unpack(folder, {*SERVERS, *offered})
        _point_current_at(folder)
        for old in FOLDER.glob("packages-*"):
            if old != folder:
                shutil.rmtree(old)


def location():
    """The folder that holds the unpacked usr/, made on the first call."""
    if not CURRENT.exists():
        prepare()
    return CURRENT.resolve()


def library_path(root):
    """The value for LD_LIBRARY_PATH when the packages lie below `root`."""
    folder, = (location() / "usr" / "lib").glob("*-linux-gnu*")
    return f"{root}/usr/lib/{folder.name}"


@contextlib.contextmanager
def _lock():
    FOLDER.mkdir(parents=True, exist_ok=True)
    with open(FOLDER / "lock", "w", encoding="ascii") as file:
        fcntl.flock(file, fcntl.LOCK_EX)
        yield


def _offered():
    """The packages that apt offers, and in which version."""
    policy = subprocess.run(
        ["apt-cache", "policy", *SERVERS, *LIBRARIES], check=True, capture_output=True, text=True,
        env={**os.environ, "LC_ALL": "C.UTF-8"}).stdout
    versions = dict(re.findall(r"^(\S+):\n.*\n  Candidate: (.*)$", policy, re.MULTILINE))
    return {name: version for name, version in versions.items() if version != "(none)"}


def _version_key(offered):
    return hashlib.sha256(repr(sorted(offered.items())).encode()).hexdigest()[:12]


def _unpack(folder, names):
    work = FOLDER / "unpacking"
    shutil.rmtree(work, ignore_errors=True)
    (work / "deb").mkdir(parents=True)
    (work / "root").mkdir()
    subprocess.run(["apt-get", "-q", "download", *names], cwd=work / "deb", check=True,
                   capture_output=True)
    for package in (work / "deb").glob("*.deb"):
        subprocess.run(["dpkg-deb", "-x", package, work / "root"], check=True)
    (work / "root").rename(folder)
    shutil.rmtree(work)


def _point_current_at(folder):
    link = FOLDER / "current.new"
    link.unlink(missing_ok=True)
    link.symlink_to(folder.name)
    link.rename(CURRENT)
