"""What the running program is asked to do from outside: by its command line and over the bus."""

import unittest

from gi.repository import GLib

from instance_case import INTERFACE, NAME, PATH, SETTINGS, InstanceCase
from rig import processes
from upload_case import DONE

STARTED = "✅ Monitoring started successfully"
NOT_VALID = "⚠️ Ignored start-monitoring: the settings are not valid"
PERMISSION = "✅ Notification permission granted"


class ActionTest(InstanceCase):
    """The settings are valid; the program runs, and shows its item."""

    # By FTP the time in the name of a file could read as a refused login.
    server_kind = "asyncssh"

    def setUp(self):
        super().setUp()
        self.store_settings()
        self.program = self.start()
        self.item = self.desktop.tray_item(self.program)

    def test_command_line_starts_and_stops_monitoring(self):
        self.hand_over("start-monitoring")
        self.item.wait_for_label("Monitoring Active")
        self.drop("Screenshot.png")
        self.wait_for_upload("Screenshot.png")
        self.hand_over("stop-monitoring")
        self.item.wait_for_label("Monitoring Inactive")
        self.item.wait_for_label("Monitoring stopped")

    def test_bus_starts_and_stops_monitoring(self):
        self.act("start-monitoring")
        self.item.wait_for_label("Monitoring Active")
        self.act("stop-monitoring")
        self.item.wait_for_label("Monitoring Inactive")

    def test_tool_of_the_desktop_finds_the_actions(self):
        # As a desktop without shortcuts for programs would have it bound to a key.
        self.desktop.screen.run(
            "gdbus", "call", "--session", "--dest", NAME, "--object-path", PATH,
            "--method", f"{INTERFACE}.ActivateAction", "start-monitoring", "[]", "{}")
        self.item.wait_for_label("Monitoring Active")

    def test_clipboard_is_uploaded(self):
        for count, ask in enumerate((self.act, self.hand_over), 1):
            self.desktop.screen.set_clipboard("some text")
            ask("upload-clipboard")
            self.desktop.notifications.wait_for(DONE, count=count)
        self.assertIn(b"some text", self.on_server().values())

    def test_settings_are_opened(self):
        self.act("settings")
        self.desktop.screen.wait_for_window(SETTINGS)
        self.hand_over("settings")
        self.assertEqual(len(self.desktop.screen.windows(SETTINGS)), 1)

    def test_quit(self):
        self.hand_over("quit")
        self.assertEqual(self.program.wait(), 0)

    def test_quit_over_the_bus(self):
        self.act("quit")
        self.assertEqual(self.program.wait(), 0)

    def test_what_is_so_already_is_ignored(self):
        self.hand_over("stop-monitoring")
        self.program.wait_for_line("⚠️ Ignored stop-monitoring: not monitoring")
        self.act("start-monitoring")
        line = self.program.wait_for_line(STARTED)
        self.act("start-monitoring")
        self.program.wait_for_line("⚠️ Ignored start-monitoring: already monitoring")
        self.assertEqual(len(self.program.output.all), line + 2)

    def test_unknown_action_is_an_error(self):
        with self.assertRaisesRegex(GLib.Error, "InvalidArgs"):
            self.act("format-disk")
        self.program.wait_for_line("⚠️ Unknown action: format-disk")

    def test_request_with_wrong_arguments_is_an_error(self):
        # Newer versions of Qt tell of it there.
        self.expected_errors = r"qt\.dbus\.integration: .*\bActivateAction\b.*"
        with self.assertRaisesRegex(GLib.Error, "UnknownMethod|InvalidArgs"):
            self.call("ActivateAction", "(s)", "quit")
        self.assertEqual(self.item.labels()[0], "Monitoring Inactive")


class InvalidSettingsTest(InstanceCase):
    """The menu offers neither monitoring nor the upload. Asked for by a key, each says why not."""

    def ask_for_both(self, program, item):
        """Asks for either; each tells the person what is missing, and nothing else happens."""
        asked = ((self.act, "upload-clipboard", "❌ Settings not valid"),
                 (self.hand_over, "upload-clipboard", "❌ Settings not valid"),
                 (self.act, "start-monitoring", NOT_VALID),
                 (self.hand_over, "start-monitoring", NOT_VALID))
        for count, (ask, action, line) in enumerate(asked, 1):
            after = len(program.output.all)
            ask(action)
            program.wait_for_line(line, after=after)
            error = self.desktop.notifications.wait_for("Upload Error", count=count)
            self.assertEqual(error.body, "Please configure server settings first")
        self.assertEqual(item.labels()[:2], ["Monitoring Inactive", "Ready"])
        self.assertNotIn(STARTED, program.output.all)

    def test_actions_tell_what_is_missing(self):
        program = self.start()
        item = self.desktop.tray_item(program)
        self.assertFalse(item.menu()[3].enabled)
        self.ask_for_both(program, item)

    def test_actions_tell_it_while_the_keyring_is_locked(self):
        self.store_settings()
        program = self.start()
        item = self.desktop.tray_item(program)
        self.desktop.keyring.lock()
        self.ask_for_both(program, item)

    def test_nothing_to_stop_is_a_line_alone(self):
        program = self.start()
        self.desktop.tray_item(program)
        self.act("stop-monitoring")
        program.wait_for_line("⚠️ Ignored stop-monitoring: not monitoring")
        self.act("upload-clipboard")
        self.desktop.notifications.wait_for("Upload Error")
        self.assertEqual(len(self.desktop.notifications.all), 1)


class FirstStartTest(InstanceCase):
    """Nothing runs yet."""

    def test_action_is_done_once_the_program_runs(self):
        self.store_settings()
        program = self.start("start-monitoring")
        program.wait_for_line(STARTED)
        self.assertEqual(self.desktop.tray_item(program).labels()[0], "Monitoring Active")

    def test_settings_are_opened(self):
        self.start("settings")
        self.desktop.screen.wait_for_window(SETTINGS)

    def test_nothing_to_stop_or_to_quit(self):
        # Many times, since the toolkit's threads end with the program.
        for action in ("stop-monitoring", "quit") * 15:
            self.hand_over(action)
            self.assertEqual(self.temporary_folders(), [])

    def test_invalid_settings_leave_it_running(self):
        program = self.start("upload-clipboard")
        self.desktop.notifications.wait_for("Upload Error")
        self.desktop.tray_item(program)

    def test_wrong_usage(self):
        for arguments, mistake in ((["--tray"], "there is no option --tray"),
                                   (["uplaod"], "there is no action uplaod"),
                                   (["settings", "quit"], "one action at a time")):
            with self.subTest(arguments):
                status, output, errors = self.run_to_end(*arguments)
                self.assertEqual((status, output), (2, []))
                self.assertEqual(errors[:3], [f"tessery: {mistake}", "",
                                              "Usage: tessery [ACTION]"])

    def test_help_and_version_need_nothing(self):
        nothing = {"DISPLAY": "", "DBUS_SESSION_BUS_ADDRESS": "unix:path=/not/there"}
        status, output, errors = self.run_to_end("--help", environment=nothing)
        self.assertEqual((status, output[0], errors), (0, "Usage: tessery [ACTION]", []))
        status, output, errors = self.run_to_end("--version", environment=nothing)
        self.assertEqual((status, errors), (0, []))
        self.assertRegex(output[0], r"^tessery \d+\.\d+\.\d+$")

    def test_options_of_the_toolkit_still_work(self):
        program = self.start("-platform", "offscreen", environment={"DISPLAY": ":not-there"})
        program.wait_for_line(PERMISSION)
        processes.wait_until(lambda: self.desktop.bus.has_owner(NAME), 5, "it runs")


if __name__ == "__main__":
    unittest.main()
