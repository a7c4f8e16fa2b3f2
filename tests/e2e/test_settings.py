"""The settings window, filled in with the keyboard alone, and what comes of it."""

import json
import time
import unittest

from rig import ports, processes, settings_file
from settings_case import SettingsCase
from upload_case import BASE, DONE, PASSWORD

WRONG_PASSWORD = "not-the-secret-of-ours"


class FilledInTest(SettingsCase):
    """Nothing is set up yet."""

    server_kind = "proftpd-ftps"

    def setUp(self):
        super().setUp()
        self.expected = settings_file.for_server(
            self.server, BASE, usePassiveMode=True, tlsVersion="TLS 1.3",
            filenameStyle="Random String")

    def fill_in(self, window, password):
        """Enters everything, from the first field to the last."""
        window.go_to("SFTP", "radio button")
        window.stop_after("Left", window.focused())
        window.fill("Hostname", self.server.host)
        self.assertEqual(window.find("Port", "text").text, "990")
        window.fill("Port", str(self.server.port))
        window.fill("Username", self.server.user)
        window.fill("Password", password)
        window.fill("Remote Path", self.server.remotePath)
        window.fill("Public URL Base", BASE)
        window.go_to("TLS Version", "combo box")
        self.desktop.screen.key("Down")
        window.open_tab("Filenames")
        window.go_to("Keep Original Name", "radio button")
        window.stop_after("Right", window.focused())
        window.open_tab("Server")

    def check_filled_in(self, window):
        """The window shows what was entered, but for the password."""
        for name, key in (("Hostname", "hostname"), ("Port", "port"), ("Username", "username"),
                          ("Remote Path", "remotePath"), ("Public URL Base", "publicURLBase")):
            self.assertEqual(window.find(name, "text").text, str(self.expected[key]))
        self.assertIn("checked", window.find(self.expected["serverType"], "radio button").states)
        self.assertEqual(window.find("Password", "password text").text, "")
        self.assertIsNone(window.badge())
        self.assertIn("enabled", window.find("Test").states)
        window.go_to("TLS Version", "combo box")
        self.assertEqual(window.find("TLS Version", "combo box").name, "TLS 1.3")

    def pass_test(self, program, window):
        """Presses "Test" until it succeeds, which it does unless the name that it makes for the
        file reads as a refused login."""
        while True:
            begun = len(program.output.all)
            window.press("Test")
            stored = program.wait_for_line("> STOR test_", after=begun)
            if ports.TRAP not in program.output.all[stored]:
                break
            window.wait_for_badge("Connection failed")
        window.wait_for_badge("Connection OK!")

    def assert_secret(self, *passwords):
        """No program has told a password, and no file holds one that can be read."""
        places = {f"output of {program.pid}": "\n".join(program.output.all).encode()
                  for program in self.programs}
        for path in self.desktop.surroundings.base.rglob("*"):
            if path.is_file():
                places[str(path)] = path.read_bytes()
        for password in passwords:
            for encoding in "utf-8", "utf-16-le":
                found = [place for place, data in places.items()
                         if password.encode(encoding) in data]
                self.assertEqual(found, [])

    def test_filled_in_tested_saved_and_there_after_a_restart(self):
        program = self.start()
        window = self.open_window(program)
        self.assertEqual(window.badge(), "Fill required fields")
        self.assertNotIn("enabled", window.find("Test").states)

        self.fill_in(window, WRONG_PASSWORD)
        window.wait_for_badge(None)
        window.press("Test")
        window.wait_for_badge("Connection failed")
        self.assertEqual(self.on_server(), {})

        window.fill("Password", PASSWORD)
        self.pass_test(program, window)
        for name, data in self.on_server().items():
            self.assertRegex(name, r"^test_[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\.txt$")
            self.assertEqual(data, b"Test")
        self.assertNotEqual(self.on_server(), {})
        self.assertIsNone(settings_file.read(self.desktop.suite_file), "only Save stores")

        window.save()
        window.close()
        self.assertEqual(json.loads(settings_file.read(self.desktop.suite_file)), self.expected)
        self.assertEqual(self.desktop.keyring.read(), PASSWORD)
        program.terminate()

        window = self.open_window(self.start())
        self.check_filled_in(window)
        self.picture("settings-after-a-restart")
        self.assert_secret(PASSWORD, WRONG_PASSWORD)

    def test_closing_without_saving_keeps_what_was(self):
        self.store_settings()
        program = self.start()
        window = self.open_window(program)
        window.fill("Hostname", "example.org")
        window.close()
        self.assertEqual(self.open_window(program).find("Hostname", "text").text, self.server.host)


class RunningTestTest(SettingsCase):
    """A test of the connection hangs: the server accepts and never says a word."""

    server_kind = "silent"
    server_options = {}

    def begin_test(self):
        """Presses "Test" and waits until the tool runs."""
        self.store_settings_for_silence(self.server, "FTP")
        self.program = self.start()
        self.window = self.open_window(self.program)
        self.window.press("Test")
        self.pids = processes.wait_until(lambda: self.tools(self.program), 5, "a tool")
        return self.desktop.tray_item(self.program)

    def assert_quits(self, item):
        """Quitting takes the tool along; what else might be left is looked for at the end."""
        item.click("Quit")
        self.assertEqual(self.program.wait(3), 0)
        self.assertEqual([pid for pid in self.pids if processes.command_line(pid)], [])
        self.assertEqual(self.temporary_folders(), [])

    def test_second_press_is_impossible(self):
        item = self.begin_test()
        self.assertNotIn("enabled", self.window.find("Test").states)
        for key in ("space", "Return", "space"):
            self.desktop.screen.key(key)
        # What is typed now is dealt with after these.
        self.window.fill("Hostname", "example.org")
        self.assertEqual(self.tools(self.program), self.pids)
        self.assertIsNone(self.window.badge(), "the second press saves nothing either")
        self.assert_quits(item)

    def test_closing_the_window_is_safe(self):
        item = self.begin_test()
        self.window.close()
        begun = time.monotonic()
        item.menu()
        self.assertLess(time.monotonic() - begun, 0.5)
        window = self.open_window(self.program)
        self.assertEqual(window.find("Hostname", "text").text, self.server.host)
        self.assert_quits(item)

    def test_quitting_leaves_nothing_behind(self):
        self.assert_quits(self.begin_test())


class RecordedShortcutTest(SettingsCase):
    """A shortcut is recorded and then used."""

    # By FTP the time in the name of the file could read as a refused login.
    server_kind = "asyncssh"

    def test_recorded_shortcut_uploads_and_the_old_one_does_not(self):
        self.store_settings()
        program = self.start()
        window = self.open_window(program)
        window.open_tab("Shortcuts")
        window.press("Record")
        window.wait_for_name("Press keys...")
        self.assertNotIn("enabled", window.find("Apply").states)
        self.desktop.screen.key("k", "Tab", "ctrl+alt+k")
        window.wait_for_name("Ctrl+Alt+K")
        self.picture("settings-recording")
        # All keys are swallowed now, so this one takes a mouse.
        left, top, width, height = window.find("Apply").extents
        self.desktop.screen.click(left + width // 2, top + height // 2)
        window.wait_for_name("Record")
        window.save()
        program.wait_for_line("✅ Global hotkey registered: ⌥⌃K")
        window.close()

        self.desktop.screen.set_clipboard("copied text")
        self.desktop.screen.key("super+shift+u")
        self.desktop.screen.key("ctrl+alt+k")
        self.desktop.notifications.wait_for(DONE)
        self.assertEqual(list(self.on_server().values()), [b"copied text"])
        triggered = [line for line in program.output.all if "Upload clipboard triggered" in line]
        self.assertEqual(len(triggered), 1)


if __name__ == "__main__":
    unittest.main()
