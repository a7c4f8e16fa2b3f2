"""Starting, the menu as it stands then, and quitting."""

import signal
import unittest

from desktop_case import PROGRAM, DesktopCase


class StartTest(DesktopCase):
    """With no settings yet."""

    def test_menu_shows_that_nothing_is_set_up(self):
        item = self.desktop.tray_item(self.start())
        self.assertEqual(item.property("Id"), "org.tessery.Tessery")
        self.assertEqual(item.property("Title"), "Screenshot Uploader")
        labels = item.labels()
        self.assertEqual(labels[:3], ["Monitoring Inactive", "Ready", None])
        self.assertEqual(labels[3], "Start Monitoring")
        self.assertTrue(labels[4].startswith("Upload from Clipboard"), labels[4])
        self.assertTrue(labels[4].endswith("⌘⇧U"), labels[4])
        self.assertEqual(labels[5:], [None, "Settings...", None, "Quit"])
        enabled = {entry.label: entry.enabled for entry in item.menu()}
        self.assertFalse(enabled["Start Monitoring"])
        self.assertFalse(enabled[labels[4]])
        self.assertTrue(enabled["Settings..."])
        self.assertTrue(enabled["Quit"])

    def test_quit_ends_the_program(self):
        program = self.start()
        self.desktop.tray_item(program).click("Quit")
        self.assertEqual(program.wait(), 0)

    def test_signals_end_the_program_cleanly(self):
        for number in (signal.SIGTERM, signal.SIGINT):
            with self.subTest(number.name):
                program = self.start()
                self.desktop.tray_item(program)
                program.send_signal(number)
                self.assertEqual(program.wait(), 0)

    def test_signal_that_was_ignored_from_the_start_stays_ignored(self):
        program = self.desktop.start_program("/usr/bin/env", "--ignore-signal=HUP", PROGRAM)
        self.programs.append(program)
        item = self.desktop.tray_item(program)
        program.send_signal(signal.SIGHUP)
        item.click("Settings...")
        self.desktop.screen.wait_for_window("Settings")


class NoBusTest(DesktopCase):
    """No session bus, as in a session that is put together by hand."""

    desktop_options = {"tray": "xembed"}

    def test_menu_is_in_the_old_tray_and_the_log_tells_what_is_missing(self):
        program = self.start(environment={"DBUS_SESSION_BUS_ADDRESS": "unix:path=/not/there"})
        self.wait_for_old_icon()
        program.wait_for_line("❌ Notification permission error")


if __name__ == "__main__":
    unittest.main()
