"""The password field of the settings window while the keyring is locked, hangs or is missing."""

import threading
import time
import unittest

from rig import processes
from settings_case import SettingsCase
from upload_case import BASE, PASSWORD

NOT_STORED = ("The password could not be stored. Unlock your keyring, and it is stored then.")
SECONDS_TO_ANSWER = 0.5
# One question to the keyring is given up after two.
SECONDS_TO_ANSWER_WHILE_IT_HANGS = 2.5


class Answers:
    """Opens the tray menu again and again meanwhile, and notes the longest wait for an answer."""

    def __init__(self, item):
        self._item = item
        self._done = threading.Event()
        self._thread = threading.Thread(target=self._ask)
        self.count = 0
        self.longest = 0

    def _ask(self):
        while not self._done.is_set():
            begun = time.monotonic()
            self._item.menu()
            self.longest = max(self.longest, time.monotonic() - begun)
            self.count += 1

    def __enter__(self):
        self._thread.start()
        return self

    def __exit__(self, *_):
        self._done.set()
        self._thread.join()


class KeyringCase(SettingsCase):
    """Settings are stored, but no password."""

    # By FTP the name that a test of the connection makes for its file could read as a refused login.
    server_kind = "asyncssh"

    def setUp(self):
        super().setUp()
        self.desktop.write_settings_for(self.server, BASE)
        self.make_unavailable()
        self.program = self.start()
        self.item = self.desktop.tray_item(self.program)
        self.window = self.open_window(self.program)

    def make_unavailable(self):
        """Does to the keyring what the tests of a class are about."""

    def password_field(self):
        """The field for the password."""
        return self.window.find("Password", "password text")

    def type_password(self, longest=SECONDS_TO_ANSWER):
        """Enters the password; the tray must answer all the time."""
        with Answers(self.item) as answers:
            self.window.fill("Password", PASSWORD)
            self.window.stop_after("Tab", self.password_field())
        self.assertLess(answers.longest, longest)

    def wait_for_error(self, text):
        """Waits until the field tells of this error, or of none."""
        field = self.password_field()
        processes.wait_until(lambda: field.description == text, 10, f"error {text!r}")

    def wait_until_stored(self):
        """Waits until the keyring holds the password."""
        processes.wait_until(lambda: self.desktop.keyring.read() == PASSWORD, 10,
                             "the password in the keyring")


class TypedLastTest(KeyringCase):
    """The keyring is unlocked, and the password is the last that is typed."""

    def test_closing_the_window_at_once_loses_nothing(self):
        self.window.go_to("Password")
        self.desktop.screen.type(PASSWORD)
        self.window.close()
        self.assertEqual(self.desktop.keyring.read(), PASSWORD)

    def test_quitting_at_once_loses_nothing(self):
        field = self.window.go_to("Password")
        self.desktop.screen.type(PASSWORD)
        processes.wait_until(lambda: field.length == len(PASSWORD), 5, "the last key")
        self.program.terminate()
        self.assertEqual(self.desktop.keyring.read(), PASSWORD)


class LockedKeyringTest(KeyringCase):
    """The keyring is locked, and nobody can be asked to unlock it."""

    def make_unavailable(self):
        self.desktop.keyring.lock()

    def test_password_is_stored_once_the_keyring_is_unlocked(self):
        self.type_password()
        self.wait_for_error(NOT_STORED)
        self.picture("settings-keyring-locked")
        self.desktop.keyring.unlock()
        self.wait_until_stored()
        self.wait_for_error("")
        self.window.press("Test")
        self.window.wait_for_badge("Connection OK!")

    def test_closing_the_window_does_not_lose_it(self):
        self.type_password()
        self.wait_for_error(NOT_STORED)
        self.window.close()
        self.desktop.keyring.unlock()
        self.wait_until_stored()


class HangingKeyringTest(KeyringCase):
    """The keyring begins to hang while the window is open."""

    def test_saving_stores_it_once_the_keyring_answers(self):
        self.desktop.keyring.pause()
        self.type_password(SECONDS_TO_ANSWER_WHILE_IT_HANGS)
        self.wait_for_error(NOT_STORED)
        self.desktop.keyring.resume()
        self.window.save()
        self.assertEqual(self.desktop.keyring.read(), PASSWORD)
        self.wait_for_error("")


    def test_closing_the_window_does_not_lose_it(self):
        self.desktop.keyring.pause()
        self.type_password(SECONDS_TO_ANSWER_WHILE_IT_HANGS)
        self.wait_for_error(NOT_STORED)
        with Answers(self.item) as answers:
            self.window.close()
        self.assertLess(answers.longest, SECONDS_TO_ANSWER_WHILE_IT_HANGS)
        self.desktop.keyring.resume()
        self.desktop.keyring.lock()
        self.desktop.keyring.unlock()
        self.wait_until_stored()


class VanishedKeyringTest(KeyringCase):
    """The keyring ends while the window is open."""

    def test_password_is_not_lost(self):
        self.desktop.keyring.stop()
        self.type_password()
        self.window.close()
        self.window = self.open_window(self.program)
        self.window.press("Test")
        self.window.wait_for_badge("Connection OK!")


class NoKeyringTest(KeyringCase):
    """There is no keyring at all."""

    desktop_options = {**SettingsCase.desktop_options, "keyring": None}

    def test_password_is_kept(self):
        self.type_password()
        self.wait_for_error("")
        self.window.press("Test")
        self.window.wait_for_badge("Connection OK!")
        self.program.terminate()
        self.window = self.open_window(self.start())
        self.assertIsNone(self.window.badge())


if __name__ == "__main__":
    unittest.main()
