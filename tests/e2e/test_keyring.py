"""The password in a keyring that is locked, and where there is no keyring."""

import json
import time
import unittest

from rig import processes, settings_file
from rig.bus import Monitor
from rig.keyring import KEYRING_PASSWORD
from upload_case import BASE, BEGUN, PASSWORD, UploadCase

PROMPTER = "/usr/libexec/gcr-prompter"
QUESTION = "Unlock Login Keyring"


class LockedKeyringTest(UploadCase):
    """The keyring is locked when the program starts."""

    def setUp(self):
        super().setUp()
        self.store_settings()
        self.desktop.keyring.lock()
        # The questions that the keyring was told to ask.
        self.prompts = []
        monitor = Monitor(self.desktop.bus.address,
                          ["interface='org.freedesktop.Secret.Prompt',member='Prompt'"],
                          self.note_prompt)
        self.addCleanup(monitor.close)

    def note_prompt(self, message):
        """Keeps what a monitor hears, except for the bus's own greetings."""
        if message.get_member() == "Prompt":
            self.prompts.append(message)

    def start_prompter(self):
        """Starts what the keyring asks the person with."""
        self.desktop.household.start([PROMPTER])
        self.desktop.bus.wait_for_owner("org.gnome.keyring.SystemPrompter")

    def start_while_locked(self):
        """Starts the program; its menu must be there and answer although it waits."""
        begun = time.monotonic()
        program = self.start()
        item = self.desktop.tray_item(program)
        self.assertFalse(item.entry("Start Monitoring").enabled)
        self.assertTrue(item.entry("Settings...").enabled)
        self.assertLess(time.monotonic() - begun, 1.9)
        return program, item

    def assert_uploads(self, item):
        """Monitoring can be started and a screenshot be uploaded."""
        item.wait_until_enabled("Start Monitoring")
        item.click("Start Monitoring")
        item.wait_for_label("Monitoring for screenshots...")
        self.drop("Screenshot.png")
        self.wait_for_upload("Screenshot.png")

    def test_person_unlocks_it(self):
        self.start_prompter()
        _, item = self.start_while_locked()
        self.desktop.screen.wait_for_window(QUESTION)
        self.picture("keyring-question")
        self.assertFalse(item.entry("Start Monitoring").enabled)
        self.desktop.screen.type(KEYRING_PASSWORD.decode())
        self.desktop.screen.key("Return")
        self.assert_uploads(item)
        self.assertEqual(len(self.prompts), 1)

    def test_person_refuses_and_is_not_asked_again(self):
        self.start_prompter()
        program, item = self.start_while_locked()
        self.desktop.screen.wait_for_window(QUESTION)
        self.desktop.screen.key("Escape")
        processes.wait_until(lambda: not self.desktop.screen.windows(QUESTION), 5,
                             "the question is gone")
        self.desktop.screen.open_tray_menu()
        self.desktop.screen.close_menu()
        self.assertFalse(item.entry("Start Monitoring").enabled)
        item.click("Quit")
        self.assertEqual(program.wait(), 0)
        self.assertEqual(len(self.prompts), 1)

    def test_nobody_answers(self):
        self.start_prompter()
        program, item = self.start_while_locked()
        self.desktop.screen.wait_for_window(QUESTION)
        item.click("Quit")
        self.assertEqual(program.wait(3), 0)

    def test_it_is_unlocked_elsewhere(self):
        _, item = self.start_while_locked()
        self.desktop.keyring.unlock()
        self.assert_uploads(item)

    def test_it_is_locked_while_monitoring(self):
        self.desktop.keyring.unlock()
        program = self.start()
        item = self.desktop.tray_item(program)
        item.click("Start Monitoring")
        self.desktop.keyring.lock()
        item.wait_until_enabled("Stop Monitoring", False)
        self.drop("Screenshot one.png")
        self.desktop.notifications.wait_for("Upload Error")
        self.desktop.keyring.unlock()
        item.wait_until_enabled("Stop Monitoring")
        self.drop("Screenshot two.png")
        self.wait_for_upload("Screenshot two.png")
        self.assertEqual(self.prompts, [])

    def test_password_that_is_stored_later_is_noticed(self):
        self.desktop.keyring.unlock()
        self.desktop.keyring.forget()
        item = self.desktop.tray_item(self.start())
        self.assertFalse(item.entry("Start Monitoring").enabled)
        self.desktop.keyring.store(PASSWORD)
        self.assert_uploads(item)


class HangingKeyringTest(UploadCase):
    """The keyring is there and never answers."""

    def test_menu_and_quitting_are_held_up_for_two_seconds_at_most(self):
        self.store_settings()
        self.desktop.keyring.pause()
        program = self.start()
        item = self.desktop.tray_item(program)
        self.assertFalse(item.entry("Start Monitoring").enabled)
        begun = time.monotonic()
        item.click("Quit")
        self.assertEqual(program.wait(5), 0)
        self.assertLess(time.monotonic() - begun, 3)


class NoKeyringTest(UploadCase):
    """There is no secret service and none can be started."""

    desktop_options = {"keyring": None}

    def setUp(self):
        super().setUp()
        self.folder = self.desktop.surroundings.home / ".local" / "share" / "tessery" / "secrets"
        self.file = self.folder / "org.tessery.Tessery.serverPassword"

    def assert_told_once(self, program):
        """One line says where the password is kept."""
        told = [line for line in program.output.all if "No secret service" in line]
        self.assertEqual(told, ["⚠️ No secret service is available, keeping the server password in "
                                f"a file: {self.file}"])

    def test_password_of_the_file_is_used(self):
        self.folder.mkdir(parents=True)
        self.file.write_text(PASSWORD)
        self.store_settings()
        program, _ = self.start_monitoring()
        self.drop("Screenshot.png")
        self.wait_for_upload("Screenshot.png")
        self.assert_told_once(program)

    def test_password_of_an_older_version_goes_into_the_file(self):
        record = settings_file.for_server(self.server, BASE)
        settings_file.write(self.desktop.standard_file,
                            {**record, "password": self.server.password})
        program, _ = self.start_monitoring()
        self.drop("Screenshot.png")
        self.wait_for_upload("Screenshot.png")
        self.assertEqual(self.file.read_text(), PASSWORD)
        self.assertEqual(self.file.stat().st_mode & 0o777, 0o600)
        self.assertEqual(self.folder.stat().st_mode & 0o777, 0o700)
        self.assertEqual(list(self.folder.iterdir()), [self.file])
        self.assert_told_once(program)
        for path in (self.desktop.suite_file, self.desktop.standard_file):
            self.assertEqual(json.loads(settings_file.read(path)), record)

    def test_without_a_password_nothing_can_be_started(self):
        self.store_settings()
        program = self.start()
        item = self.desktop.tray_item(program)
        self.assertFalse(item.entry("Start Monitoring").enabled)
        self.assert_told_once(program)
        self.assertEqual(program.terminate(), 0)
        self.assertNotIn(BEGUN, self.titles())
        self.assertFalse(self.folder.exists())


if __name__ == "__main__":
    unittest.main()
