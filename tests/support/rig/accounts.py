"""Passwords and keys of the servers' private accounts."""

import ctypes
import ctypes.util
import subprocess

_crypt = ctypes.CDLL(ctypes.util.find_library("crypt")).crypt
_crypt.restype = ctypes.c_char_p


def password_hash(password):
    """The password as a shadow file holds it."""
    return _crypt(password.encode(), b"$6$rounds=1000$tesserytests$").decode()


def make_key(path, kind="ed25519", passphrase=""):
    """An OpenSSH key pair: `path` and its public half with ".pub"."""
    subprocess.run(["ssh-keygen", "-q", "-t", kind, "-N", passphrase, "-C", "test", "-f", path],
                   check=True, stdin=subprocess.DEVNULL)
    return path


def make_certificate(folder):
    """A certificate for loopback that it has signed itself; returns (certificate, key)."""
    certificate, key = folder / "certificate.pem", folder / "certificate.key"
    subprocess.run(
        ["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256",
         "-nodes", "-days", "2", "-subj", "/CN=localhost",
         "-addext", "subjectAltName=DNS:localhost,IP:127.0.0.1,IP:::1",
         "-keyout", key, "-out", certificate],
        check=True, capture_output=True)
    return certificate, key
