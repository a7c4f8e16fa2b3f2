"""OpenSSH's own server: SFTP with keys and with passwords."""

import contextlib
import getpass
import os

from rig import accounts, daemon, packages, place as places, ports

_CONFIG = """\
ListenAddress {host}
HostKey {etc}/host_key
AuthorizedKeysFile {etc}/authorized_keys
PidFile none
StrictModes no
UsePAM no
UseDNS no
PermitRootLogin yes
PermitEmptyPasswords yes
PasswordAuthentication {passwords}
KbdInteractiveAuthentication no
MaxAuthTries {tries}
{limits}
LogLevel VERBOSE
Subsystem sftp internal-sftp
{parts}
"""
# By penalties it remembers who was refused, from the version on that has this program.
_HAS_PENALTIES = "usr/lib/openssh/sshd-session"
# Programs of its own that newer versions start for each connection.
_PARTS = {"SshdSessionPath": "sshd-session", "SshdAuthPath": "sshd-auth"}


@contextlib.contextmanager
def serve(base, options):
    """Runs sshd. Without namespaces only keys work, for the account that runs the tests.

    Usually it lets everybody in at once and forgets who was refused; with `options.penalties` it
    does what it does where nothing is set."""
    place = places.make(base)
    if not place.jailed and os.geteuid() == 0:
        raise RuntimeError("sshd as root needs user namespaces, which are forbidden here")
    user = options.user if place.jailed else getpass.getuser()
    passwords = place.jailed and not options.no_password
    etc = place.root / "etc"
    _write_accounts(etc, user, options.password)
    accounts.make_key(etc / "host_key")
    key = accounts.make_key(base / "key", passphrase=options.key_passphrase)
    (etc / "authorized_keys").write_text("" if options.no_keys else (base / "key.pub").read_text())
    (etc / "sshd_config").write_text(_CONFIG.format(
        host=ports.HOST, etc=place.inside(etc), passwords="yes" if passwords else "no",
        tries=options.max_auth_tries, limits=_limits(options), parts=_parts(place.servers)))

    def command(port):
        return [f"{place.servers}/usr/sbin/sshd", "-D", "-e",
                "-f", place.inside(etc / "sshd_config"), "-p", str(port)]

    port = daemon.start(place, command, base / "log", "Server listening", "Cannot bind")
    yield {"port": port, "user": user, "password": options.password if passwords else None,
           "root": place.root if place.jailed else None, "folder": place.folder,
           "remotePath": place.inside(place.folder), "privateKey": key, "log": base / "log",
           "hasPenalties": options.penalties is not None and _knows_penalties()}


def _knows_penalties():
    return (packages.location() / _HAS_PENALTIES).exists()


def _limits(options):
    """The lines that lift the limits on who may connect, and how often."""
    if options.penalties is not None:
        return ""
    lifted = "\nPerSourcePenalties no" if _knows_penalties() else ""
    return f"MaxStartups {options.max_startups}{lifted}"


def _parts(servers):
    """The lines that tell where the server's own programs are, where it has such."""
    folder = "usr/lib/openssh"
    return "\n".join(f"{setting} {servers}/{folder}/{name}" for setting, name in _PARTS.items()
                     if (packages.location() / folder / name).exists())


def _write_accounts(etc, user, password):
    uid = places.UID
    # The shell is never run, but must be a program that exists.
    (etc / "passwd").write_text(f"{user}:x:{uid}:{uid}::{places.LOGIN}:/bin/sh\n")
    (etc / "group").write_text(f"{user}:x:{uid}:\n")
    (etc / "nsswitch.conf").write_text("passwd: files\ngroup: files\nshadow: files\n")
    shadow = etc / "shadow"
    shadow.touch(mode=0o600)
    hashed = accounts.password_hash(password) if password else ""
    shadow.write_text(f"{user}:{hashed}:19000:0:99999:7:::\n")
