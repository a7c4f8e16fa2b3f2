"""A desktop without a tray: the menu is a window, which comes when the program is started again."""

import signal
import time
import unittest

from instance_case import MENU, NO_TRAY, SETTINGS, InstanceCase
from rig import hostless_watcher, processes

PERMISSION = "✅ Notification permission granted"
# In seconds: how long a desktop may take to bring up its tray.
PATIENCE = 5
LABELS = ["Monitoring Inactive", "Ready", "Start Monitoring", "Upload from Clipboard",
          "Settings...", "Quit"]


class NoTrayCase(InstanceCase):
    """The settings are valid."""

    desktop_options = {"tray": None, "accessibility": True}

    def setUp(self):
        super().setUp()
        self.store_settings()
        self.program = self.start()
        self.program.wait_for_line(PERMISSION)

    def open_menu(self):
        """Starts the program again; gives the window as a screen reader knows it."""
        self.hand_over()
        self.desktop.screen.wait_for_window(MENU)
        return self.desktop.accessibility.window(self.program.pid, MENU)

    def wait_until_closed(self):
        """Waits until the menu's window is gone."""
        processes.wait_until(lambda: not self.desktop.screen.windows(MENU), 5, "it is closed")


class MenuWindowTest(NoTrayCase):
    """The window, used with the keyboard and read as a screen reader does."""

    def names(self, window):
        """What the lines are called, from top to bottom."""
        return [node.name for node in window.all() if node.name]

    def focused(self, window):
        """What the line with the keyboard is called."""
        return next((node.name for node in window.all() if "focused" in node.states), None)

    def go_to(self, window, name):
        """Goes to a line with the arrow key."""
        for _ in LABELS:
            before = self.focused(window)
            if before == name:
                return
            self.desktop.screen.key("Down")
            processes.wait_until(lambda: self.focused(window) not in (before, None), 5, "a step")
        raise LookupError(f"the arrow key does not lead to {name}")

    def test_shows_the_menu(self):
        window = self.open_menu()
        self.assertEqual(self.names(window), LABELS)
        roles = {node.name: node.role for node in window.all() if node.name}
        self.assertEqual([roles[name] for name in LABELS], ["label"] * 2 + ["push button"] * 4)
        entries = [node for node in window.all() if node.role == "push button"]
        self.assertEqual([node.description for node in entries], ["", "⌘⇧U", "⌘,", "⌘Q"])
        self.assertTrue(all("enabled" in node.states for node in entries))
        self.assertEqual(self.focused(window), "Start Monitoring")
        self.picture("menu-window")
        self.hand_over()
        self.assertEqual(len(self.desktop.screen.windows(MENU)), 1)

    def test_is_used_with_the_keyboard(self):
        window = self.open_menu()
        self.desktop.screen.key("Return")
        self.program.wait_for_line("✅ Monitoring started successfully")
        self.wait_until_closed()

        window = self.open_menu()
        self.assertEqual(self.names(window)[:3], ["Monitoring Active",
                                                  "Monitoring for screenshots...",
                                                  "Stop Monitoring"])
        self.drop("Screenshot.png")
        processes.wait_until(lambda: self.names(window)[1] == "✅ Uploaded: Screenshot.png", 10,
                             "the window follows the upload")
        self.go_to(window, "Settings...")
        self.desktop.screen.key("space")
        self.desktop.screen.wait_for_window(SETTINGS)
        self.wait_until_closed()
        self.desktop.screen.key("Escape")

        self.go_to(self.open_menu(), "Quit")
        self.desktop.screen.key("Return")
        self.assertEqual(self.program.wait(), 0)

    def test_mouse_chooses_when_it_moves(self):
        window = self.open_menu()
        screen = self.desktop.screen
        # It lies in the middle of the screen, where the window has come up.
        self.assertEqual(self.focused(window), "Start Monitoring")
        left, top, width, height = next(node.extents for node in window.all()
                                        if node.name == "Settings...")
        screen.run("xdotool", "mousemove", left + width // 2, top + height // 2)
        processes.wait_until(lambda: self.focused(window) == "Settings...", 5, "it follows")
        screen.run("xdotool", "click", 1)
        screen.wait_for_window(SETTINGS)
        self.wait_until_closed()

    def test_escape_and_the_window_manager_close_it(self):
        for keys in ("Escape", "alt+F4", "ctrl+w"):
            with self.subTest(keys):
                self.open_menu()
                self.desktop.screen.key(keys)
                self.wait_until_closed()
        self.assertTrue(self.program.is_running())

    def test_it_may_be_closed_twice_at_once(self):
        self.open_menu()
        self.program.send_signal(signal.SIGSTOP)  # Busy for a moment, it finds both waiting.
        self.desktop.screen.key("alt+F4", "alt+F4")
        time.sleep(0.5)  # The window manager is to ask before it goes on.
        self.program.send_signal(signal.SIGCONT)
        self.wait_until_closed()
        self.open_menu()

    def test_disabled_entries_are_told(self):
        self.hand_over("quit")
        self.program.wait()
        self.desktop.suite_file.unlink()
        self.desktop.standard_file.unlink(missing_ok=True)
        self.program = self.start()
        self.program.wait_for_line(PERMISSION)
        window = self.open_menu()
        disabled = [node.name for node in window.all()
                    if node.role == "push button" and "enabled" not in node.states]
        self.assertEqual(disabled, ["Start Monitoring", "Upload from Clipboard"])
        self.assertEqual(self.focused(window), "Settings...")


class LateTrayTest(NoTrayCase):
    """What the first start does by itself, and a tray that comes later."""

    def test_first_start_writes_one_line_and_opens_no_window(self):
        self.assertNotIn(NO_TRAY, self.program.output.all)
        self.program.wait_for_line(NO_TRAY, PATIENCE + 5)
        self.assert_no_window_for(1)
        self.assertEqual(self.program.output.all.count(NO_TRAY), 1)

    def test_host_that_comes_late_gets_the_item(self):
        self.program.wait_for_line(NO_TRAY, PATIENCE + 5)
        time.sleep(3)  # Eight seconds after the start, like a slow login.
        self.desktop.start_tray()
        item = self.desktop.tray_item(self.program)
        self.assertEqual(item.labels()[0], "Monitoring Inactive")
        self.hand_over()
        self.desktop.screen.wait_for_window(SETTINGS)
        self.assertEqual(self.desktop.screen.windows(MENU), [])

    def test_panel_that_goes_and_comes_back(self):
        self.desktop.start_tray()
        self.desktop.tray_item(self.program)
        self.desktop.stop_tray()
        self.open_menu()
        self.desktop.start_tray()
        self.desktop.tray_item(self.program)
        self.assertEqual(len(self.desktop.screen.windows(MENU)), 1)  # Until it is closed.
        self.desktop.screen.key("Escape")
        self.wait_until_closed()
        self.hand_over()
        self.desktop.screen.wait_for_window(SETTINGS)

    def test_tray_of_the_old_kind_counts_as_well(self):
        self.program.wait_for_line(NO_TRAY, PATIENCE + 5)
        self.desktop.start_tray("xembed")
        self.wait_for_old_icon()
        self.hand_over()
        self.desktop.screen.wait_for_window(SETTINGS)

    def test_watcher_that_no_panel_listens_to_is_no_tray(self):
        self.desktop.household.start(["/usr/bin/python3", hostless_watcher.__file__])
        self.desktop.bus.wait_for_owner(hostless_watcher.NAME)
        self.open_menu()


class TrayTest(InstanceCase):
    """A desktop with a tray."""

    def test_nothing_is_said_of_it(self):
        program = self.start()
        self.desktop.tray_item(program)
        time.sleep(PATIENCE + 1)  # Nothing may happen.
        self.assertNotIn(NO_TRAY, program.output.all)


if __name__ == "__main__":
    unittest.main()
