"""A private gnome-keyring, unlocked or locked."""

import signal
import subprocess

from gi.repository import GLib

from rig import processes

NAME = "org.freedesktop.secrets"
PATH = "/org/freedesktop/secrets"
SERVICE = "org.freedesktop.Secret.Service"
LOGIN = "/org/freedesktop/secrets/collection/login"
KEYRING_PASSWORD = b"keyring"
ATTRIBUTES = ("service", "org.tessery.Tessery", "account", "serverPassword")


class Keyring:
    """The secret service of a desktop."""

    def __init__(self, household, bus):
        self._household = household
        self._bus = bus
        self._process = None

    def start(self):
        """Starts the service; its one collection is unlocked."""
        self._process = self._household.start(
            ["gnome-keyring-daemon", "--foreground", "--unlock", "--components=secrets"],
            stdin=subprocess.PIPE)
        self._process.stdin.write(KEYRING_PASSWORD)
        self._process.stdin.close()
        self._bus.wait_for_owner(NAME)
        processes.wait_until(self._is_default, 10, "a default keyring")

    def _is_default(self):
        return self._bus.call(NAME, PATH, SERVICE, "ReadAlias", "(s)", "default") == LOGIN

    def stop(self):
        """Ends the service."""
        self._household.stop(self._process)

    def pause(self):
        """Lets the service hang."""
        self._process.send_signal(signal.SIGSTOP)

    def resume(self):
        """Lets the service go on."""
        self._process.send_signal(signal.SIGCONT)

    def lock(self):
        """Locks the collection."""
        self._bus.call(NAME, PATH, SERVICE, "Lock", "(ao)", [LOGIN])

    def unlock(self):
        """Unlocks the collection without a prompt, as a login does."""
        _, session = self._bus.call(NAME, PATH, SERVICE, "OpenSession", "(sv)", "plain",
                                    GLib.Variant("s", ""))
        secret = (session, b"", KEYRING_PASSWORD, "text/plain")
        self._bus.call(NAME, PATH, "org.gnome.keyring.InternalUnsupportedGuiltRiddenInterface",
                       "UnlockWithMasterPassword", "(o(oayays))", LOGIN, secret)

    def store(self, password):
        """Stores the server password, as `secret-tool` does; the collection must be unlocked."""
        self._household.run(
            ["secret-tool", "store", "--label=Tessery server password", *ATTRIBUTES],
            input=password.encode())

    def forget(self):
        """Removes the stored server password."""
        self._household.run(["secret-tool", "clear", *ATTRIBUTES])

    def read(self):
        """The stored server password; None when there is none."""
        result = self._household.run(["secret-tool", "lookup", *ATTRIBUTES], capture_output=True,
                                     check=False)
        return result.stdout.decode() if result.returncode == 0 else None
