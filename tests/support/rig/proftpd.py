"""ProFTPD: FTP, FTPS with implicit or explicit TLS, and a second implementation of SFTP."""

import contextlib
import grp
import os
import pwd
import subprocess

from rig import accounts, daemon, packages, place as places, ports

_CONFIG = """\
ServerName "Test server"
ServerType standalone
User {account}
Group {group}
DefaultAddress {host}
SocketBindTight on
UseIPv6 {ipv6}
UseReverseDNS off
MaxInstances 100
ModulePath {servers}/usr/lib/proftpd
{modules}
ScoreboardFile {etc}/scoreboard
PidFile {etc}/pid
<IfModule mod_delay.c>
DelayTable none
DelayEngine off
</IfModule>
WtmpLog off
TransferLog none
SystemLog {etc}/system.log
AuthOrder mod_auth_file.c
AuthUserFile {etc}/users
RequireValidShell off
AllowOverwrite on
PassivePorts {passive_first} {passive_last}
Umask 022
Port {port}
{transfer_rate}
{protocol}
"""

# The first two are built in where no such file is.
_MODULES = "mod_ls", "mod_xfer", "mod_tls", "mod_sftp"

_FTPS = """\
TLSEngine on
TLSRSACertificateFile {etc}/certificate.pem
TLSRSACertificateKeyFile {etc}/certificate.key
TLSOptions {implicit} NoSessionReuseRequired
TLSRequired on
TLSVerifyClient off
"""

_SFTP = """\
SFTPEngine on
SFTPHostKey {etc}/host_key
SFTPAuthMethods {methods}
SFTPAuthorizedUserKeys file:{etc}/authorized_keys
"""


@contextlib.contextmanager
def serve(base, options):
    """Runs the one protocol that `options.kind` names after the hyphen."""
    place = places.make(base)
    etc = place.root / "etc"
    account, group = _write_accounts(place, options)
    protocol, extra = _protocol(options, place, base)
    rate = f"TransferRate STOR,RETR {options.rate / 1024:.3f}" if options.rate else ""

    def command(port):
        config = etc / "proftpd.conf"
        config.write_text(_CONFIG.format(
            host=options.host, port=port, ipv6="on" if ":" in options.host else "off",
            account=account, group=group, servers=place.servers, etc=place.inside(etc),
            modules=_modules(),
            passive_first=ports.PASSIVE_PORTS[0], passive_last=ports.PASSIVE_PORTS[-1],
            transfer_rate=rate, protocol=protocol))
        return [f"{place.servers}/usr/sbin/proftpd", "-n", "-c", place.inside(config)]

    port = daemon.start(place, command, etc / "system.log", "standalone mode STARTUP",
                        "Address already in use", options.host)
    is_sftp = options.kind == "proftpd-sftp"
    yield {"host": options.host, "port": port, "user": options.user, "password": options.password,
           "root": place.root if place.jailed else None, "folder": place.folder,
           "remotePath": place.inside(place.folder) if is_sftp else "/",
           "log": etc / "system.log", **extra}


def _modules():
    """The lines that load what is not built in."""
    folder = packages.location() / "usr" / "lib" / "proftpd"
    return "\n".join(f"LoadModule {name}.c" for name in _MODULES
                     if (folder / f"{name}.so").exists())


def _write_accounts(place, options):
    """Writes the account that may log in; returns the names of the server's user and group."""
    etc = place.root / "etc"
    uid, gid = (places.UID, places.UID) if place.jailed else (os.getuid(), os.getgid())
    home = place.inside(place.folder)
    (etc / "passwd").write_text(f"server:x:{uid}:{gid}::{home}:/bin/sh\n")
    (etc / "group").write_text(f"server:x:{gid}:\n")
    users = etc / "users"
    users.touch(mode=0o600)
    users.write_text(f"{options.user}:{accounts.password_hash(options.password)}"
                     f":{uid}:{gid}::{home}:/bin/sh\n")
    if place.jailed:
        return "server", "server"
    return pwd.getpwuid(uid).pw_name, grp.getgrgid(gid).gr_name


def _protocol(options, place, base):
    """The part of the configuration that belongs to the protocol, and what clients must know."""
    etc = place.root / "etc"
    if options.kind == "proftpd-ftps":
        certificate, key = accounts.make_certificate(etc)
        key.chmod(0o600)
        implicit = "" if options.explicit else "UseImplicitSSL"
        protocol = _FTPS.format(etc=place.inside(etc), implicit=implicit)
        return protocol, {"certificate": certificate}
    if options.kind == "proftpd-sftp":
        accounts.make_key(etc / "host_key")
        key = accounts.make_key(base / "key")
        exported = subprocess.run(["ssh-keygen", "-e", "-f", f"{key}.pub"], check=True,
                                  capture_output=True, text=True).stdout
        (etc / "authorized_keys").write_text("" if options.no_keys else exported)
        methods = "publickey" if options.no_password else "publickey password"
        return _SFTP.format(etc=place.inside(etc), methods=methods), {"privateKey": key}
    return "", {}
