"""The program's settings as files: a JSON record in a byte array of an INI file."""

import json
import re

SUITE = "tessery/org.tessery.Tessery.settings.conf"
STANDARD = "tessery/org.tessery.Tessery.conf"

DEFAULTS = {
    "serverType": "SFTP",
    "hostname": "",
    "port": 22,
    "username": "",
    "remotePath": "/",
    "publicURLBase": "",
    "usePassiveMode": True,
    "allowInsecureCertificates": True,
    "tlsVersion": "TLS 1.2",
    "filenameStyle": "Keep Original Name",
    "addDateToFilename": False,
    "randomFilenameConfig": {
        "length": 8,
        "useLowercase": True,
        "useUppercase": False,
        "useNumbers": True,
        "useSymbols": False,
        "customSymbols": "-_",
    },
    "uploadClipboardShortcut": {"key": "u", "modifiers": ["⌘", "⇧"]},
}
PROTOCOLS = {
    "proftpd-ftp": "FTP", "pyftpdlib": "FTP", "proftpd-ftps": "FTPS (FTP with TLS)",
    "sshd": "SFTP", "proftpd-sftp": "SFTP", "asyncssh": "SFTP",
}


def record(**changes):
    """The default record with some fields changed."""
    unknown = set(changes) - set(DEFAULTS)
    if unknown:
        raise KeyError(f"no such field: {unknown}")
    return {**DEFAULTS, **changes}


def for_server(server, public_base, **changes):
    """The record that uploads to a test server."""
    return record(**{
        "serverType": PROTOCOLS[server.kind], "hostname": server.host, "port": server.port,
        "username": server.user, "remotePath": server.remotePath, "publicURLBase": public_base,
        **changes})


def write(path, data):
    """Stores `data`, a record or bytes, the way QSettings stores a byte array."""
    if not isinstance(data, bytes):
        data = json.dumps(data, ensure_ascii=False, separators=(",", ":")).encode()
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(f'[General]\nuploadSettings="@ByteArray({_escaped(data)})"\n',
                    encoding="ascii")


def _escaped(data):
    text = ""
    after_code = False
    for byte in data:
        char = chr(byte)
        # A hexadecimal code takes in every hexadecimal digit that follows it.
        if not 0x20 <= byte < 0x7F or (after_code and char in "0123456789abcdefABCDEF"):
            text += f"\\x{byte:x}"
            after_code = True
        else:
            text += "\\" + char if char in '"\\' else char
            after_code = False
    return text


def read(path):
    """The bytes that QSettings stored; None when there are none."""
    if not path.exists():
        return None
    match = re.search(r'^uploadSettings="?@ByteArray\((.*)\)"?$', path.read_text(), re.MULTILINE)
    return _unescaped(match[1]) if match else None


_ESCAPE = re.compile(r"\\x([0-9a-fA-F]+)|\\(.)", re.DOTALL)
_CONTROLS = {"a": "\a", "b": "\b", "f": "\f", "n": "\n", "r": "\r", "t": "\t", "v": "\v",
             "0": "\0"}


def _unescaped(text):
    def plain(match):
        if match[1]:
            return chr(int(match[1], 16))
        return _CONTROLS.get(match[2], match[2])

    return _ESCAPE.sub(plain, text).encode("latin-1")
