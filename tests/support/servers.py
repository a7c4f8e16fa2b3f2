#!/usr/bin/python3
"""Starts one private server on loopback, for tests and the demo.

    servers.py KIND [options]     one line of JSON tells where it listens
    servers.py --unpack           prepares the server packages that the kinds need

The server and everything that it made go away when standard input ends or on SIGTERM. A value
that begins with a hyphen is given as --password=VALUE. In Python, use the class Server."""

import argparse
import contextlib
import importlib
import json
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import threading

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))

from rig import household, packages, place, ports, processes  # pylint: disable=wrong-import-position

# The module and function of each kind.
KINDS = {
    "sshd": ("rig.sshd", "serve"),
    "proftpd-ftp": ("rig.proftpd", "serve"),
    "proftpd-ftps": ("rig.proftpd", "serve"),
    "proftpd-sftp": ("rig.proftpd", "serve"),
    "asyncssh": ("rig.python_sftp", "serve"),
    "pyftpdlib": ("rig.python_ftp", "serve"),
    "silent": ("rig.sockets", "silent"),
    "closed": ("rig.sockets", "closed"),
    "cut": ("rig.sockets", "cut"),
    "http-proxy": ("rig.http_proxy", "serve"),
}
JAILED = ("sshd", "proftpd-ftp", "proftpd-ftps", "proftpd-sftp")


class Server:
    """A server in a process of its own; its facts are attributes: server.port, server.folder.

    Options are those of the command line: Server("asyncssh", password="x", no_keys=True)."""

    def __init__(self, kind, **options):
        arguments = []
        for name, value in options.items():
            flag = "--" + name.replace("_", "-")
            arguments += [flag] if value is True else [f"{flag}={value}"]
        self._process = subprocess.Popen(
            [sys.executable, __file__, kind, *arguments], stdin=subprocess.PIPE,
            stdout=subprocess.PIPE, text=True)
        household.note_foreign(self._process)
        line = self._process.stdout.readline()
        if not line:
            self.close()
            raise RuntimeError(f"the server {kind} did not start")
        self.facts = json.loads(line)

    def __getattr__(self, name):
        try:
            return self.facts[name]
        except KeyError:
            raise AttributeError(name) from None

    @property
    def pid(self):
        """The process id of the server's supervisor."""
        return self._process.pid

    def close(self):
        """Ends the server and waits until everything of it is gone."""
        self._process.stdin.close()
        self._process.wait()
        self._process.stdout.close()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()


def parse_arguments():
    """The command line."""
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("kind", nargs="?", choices=KINDS)
    parser.add_argument("--unpack", action="store_true", help="prepare the server packages")
    parser.add_argument("--host", default=ports.HOST, help="FTP, FTPS: ::1 for IPv6")
    parser.add_argument("--user", default="tester")
    parser.add_argument("--password", default="test password")
    parser.add_argument("--no-password", action="store_true", help="SFTP: keys only")
    parser.add_argument("--no-keys", action="store_true", help="SFTP: the key is refused")
    parser.add_argument("--prompt", help="asyncssh: asks for the password in these words")
    parser.add_argument("--max-startups", default="500", help="sshd's setting of that name")
    parser.add_argument("--rate", type=int, help="bytes a second (not sshd: put cut before it)")
    parser.add_argument("--after", type=int, help="cut, pyftpdlib: hang up after so many bytes")
    parser.add_argument("--target", type=int, help="cut: the port of the server behind it")
    parser.add_argument("--reset", action="store_true", help="cut: hang up with a reset")
    parser.add_argument("--penalties", type=int, nargs="?", const=4,
                        help="asyncssh: keeps out who was refused so often; sshd: its own defaults")
    parser.add_argument("--key-passphrase", default="", help="sshd: protects the key that it knows")
    parser.add_argument("--max-auth-tries", default="6", help="sshd's setting of that name")
    parser.add_argument("--explicit", action="store_true", help="proftpd-ftps: TLS by AUTH TLS")
    parser.add_argument("--refused-epsv", action="store_true",
                        help="pyftpdlib: the port that EPSV is told refuses, that of PASV does not")
    parser.add_argument("--status", type=int, help="http-proxy: the answer to every request")
    options = parser.parse_args()
    if not options.kind and not options.unpack:
        parser.error("a kind or --unpack is needed")
    return options


def drop_privileges():
    """Runs this program again without root's power to pass over file permissions.

    The servers of the jail have none in any case, and making the jail may need it."""
    with open("/proc/self/status", encoding="ascii") as file:
        effective = next(line.split()[1] for line in file if line.startswith("CapEff"))
    if int(effective, 16):
        os.execvp("setpriv", ["setpriv", "--inh-caps=-all", "--ambient-caps=-all",
                              "--bounding-set=-all", "--",
                              sys.executable, *sys.argv])


def complete(kind, facts):
    """The facts in the order and form in which they are printed."""
    facts = {"kind": kind, "host": ports.HOST, "user": None, "password": None, "root": None,
             "folder": None, "remotePath": None, "certificate": None, "privateKey": None,
             "log": None, **facts}
    if path := facts["remotePath"]:
        for fact, name in (("readOnlyPath", "readonly"), ("forbiddenPath", "forbidden"),
                           ("missingPath", "missing")):
            facts[fact] = f"{path.rstrip('/')}/{name}"
        has_full = kind in JAILED and facts["root"]
        facts["fullPath"] = f"{path.rstrip('/')}/full" if has_full else None
    return {name: str(value) if isinstance(value, pathlib.Path) else value
            for name, value in facts.items()}


def new_folder():
    """A folder for a server; FTP servers that see the whole machine tell its name."""
    while ports.TRAP in (name := tempfile.mkdtemp(prefix="tessery-server-")):
        os.rmdir(name)
    return pathlib.Path(name)


@contextlib.contextmanager
def running(options):
    """Runs the server; its folder and all processes are gone afterwards."""
    module, function = KINDS[options.kind]
    serve = getattr(importlib.import_module(module), function)
    base = new_folder()
    try:
        with serve(base, options) as facts:
            yield facts
    finally:
        processes.kill_descendants()
        place.remove(base)


def main():
    """Serves until standard input ends or a signal asks to end."""
    options = parse_arguments()
    if options.unpack:
        packages.prepare()
        return
    if options.kind not in JAILED and os.geteuid() == 0:
        drop_privileges()
    processes.become_subreaper()
    ended = threading.Event()
    for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
        signal.signal(number, lambda *_: ended.set())

    def watch_input():
        while os.read(0, 4096):
            pass
        ended.set()

    with running(options) as facts:
        print(json.dumps(complete(options.kind, facts), ensure_ascii=False), flush=True)
        threading.Thread(target=watch_input, daemon=True).start()
        ended.wait()
    # Not through the interpreter's own end: the threads of the servers in Python are cut off here.
    os._exit(0)


if __name__ == "__main__":
    main()
