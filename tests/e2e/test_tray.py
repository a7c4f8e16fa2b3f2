"""The tray item and its menu, on panels of either kind that come and go."""

import time
import unittest

from desktop_case import DesktopCase
from rig import hostless_watcher, processes, tray
from upload_case import UploadCase

PNG = b"\x89PNG\r\n\x1a\n"
READY = "✅ Notification permission granted"
CLIPBOARD = "Upload from Clipboard  ⌘⇧U"
# In pixels, in the usual style of menus.
SEPARATOR = 2
# In seconds: what the program leaves a panel to come up before it turns to the old tray.
GRACE = 2


class MenuTest(UploadCase):
    """What a panel is told of the item and its menu."""

    def setUp(self):
        super().setUp()
        self.store_settings()
        self.program = self.start()
        self.item = self.desktop.tray_item(self.program)

    def test_item(self):
        self.assertEqual(self.item.property("Id"), "org.tessery.Tessery")
        self.assertEqual(self.item.property("Title"), "Screenshot Uploader")
        self.assertEqual(self.item.property("Status"), "Active")
        self.assertEqual(self.item.property("Category"), "ApplicationStatus")
        self.assertEqual(self.item.property("ToolTip")[2], "Screenshot Uploader")
        pixmaps = self.item.property("IconPixmap")
        self.assertIn((22, 22), {(width, height) for width, height, _ in pixmaps})
        for width, height, pixels in pixmaps:
            self.assertEqual(len(pixels), 4 * width * height)
            self.assertTrue(any(pixels), "the icon is not transparent all over")

    def test_menu(self):
        self.assertEqual(self.item.labels(), [
            "Monitoring Inactive", "Ready", None, "Start Monitoring", CLIPBOARD, None,
            "Settings...", None, "Quit"])
        entries = {entry.label: entry for entry in self.item.menu()}
        self.assertTrue(all(entry.enabled and entry.visible for entry in entries.values()))
        self.assertEqual([entries[label].shortcut for label in ("Settings...", "Quit")],
                         [[["Super", ","]], [["Super", "Q"]]])
        with_symbol = {label for label, entry in entries.items() if entry.icon.startswith(PNG)}
        self.assertEqual(with_symbol, {"Monitoring Inactive", "Start Monitoring", CLIPBOARD})

    def test_menu_while_monitoring(self):
        before = {entry.label: entry for entry in self.item.menu()}
        self.item.click("Start Monitoring")
        self.item.wait_for_label("Monitoring for screenshots...")
        self.assertEqual(self.item.labels(), [
            "Monitoring Active", "Monitoring for screenshots...", None, "Stop Monitoring",
            CLIPBOARD, None, "Settings...", None, "Quit"])
        now = {entry.label: entry for entry in self.item.menu()}
        for old, new in (("Monitoring Inactive", "Monitoring Active"),
                         ("Start Monitoring", "Stop Monitoring")):
            self.assertTrue(now[new].icon.startswith(PNG))
            self.assertNotEqual(now[new].icon, before[old].icon)

    def test_shortcut_of_the_settings_is_shown(self):
        self.program.terminate()
        self.store_settings(uploadClipboardShortcut={"key": "f", "modifiers": ["⌃", "⌥"]})
        labels = self.desktop.tray_item(self.start()).labels()
        self.assertEqual(labels[4], "Upload from Clipboard  ⌃⌥F")

    def test_settings_open_one_window(self):
        for _ in range(2):
            self.item.click("Settings...")
            self.desktop.screen.wait_for_window("Settings")
        self.picture("settings-frame")
        self.assertEqual(len(self.desktop.screen.windows("Settings")), 1)
        self.desktop.screen.key("alt+F4")
        processes.wait_until(lambda: not self.desktop.screen.windows("Settings"), 5,
                             "the window is closed")
        self.assertEqual(self.item.labels()[0], "Monitoring Inactive")
        self.item.click("Settings...")
        self.desktop.screen.wait_for_window("Settings")

    def test_upload_from_the_clipboard(self):
        self.desktop.screen.set_clipboard("some text")
        self.item.click(CLIPBOARD)
        self.program.wait_for_line("📋 Found text in clipboard, creating text file")
        begun = self.desktop.notifications.wait_for("Uploading Text")
        self.assertEqual(begun.body, "Text content from clipboard")

    def test_names_in_the_status_are_shown_exactly(self):
        name = "Screenshot a_b & c__d &e.png"
        self.item.click("Start Monitoring")
        self.item.wait_for_label("Monitoring for screenshots...")
        self.drop(name)
        self.wait_for_upload(name)
        # On the bus an underscore marks a mnemonic, and two are one that is meant.
        self.item.wait_for_label("✅ Uploaded: Screenshot a__b & c____d &e.png")
        self.desktop.screen.open_tray_menu()
        self.picture("menu-of-the-panel")
        self.desktop.screen.close_menu()

    def test_quit(self):
        self.item.click("Quit")
        self.assertEqual(self.program.wait(), 0)


class PanelTest(DesktopCase):
    """A panel that is not there all the time."""

    desktop_options = {"tray": None}

    def test_panel_that_comes_after_the_program(self):
        program = self.start()
        program.wait_for_line(READY)
        self.desktop.start_tray()
        item = self.desktop.tray_item(program)
        self.assertEqual(item.labels()[0], "Monitoring Inactive")
        self.desktop.screen.open_tray_menu()
        self.picture("menu-of-a-late-panel")
        self.desktop.screen.close_menu()
        item.click("Quit")
        self.assertEqual(program.wait(), 0)

    def test_panel_that_is_started_again(self):
        self.desktop.start_tray()
        program = self.start()
        self.desktop.tray_item(program)
        self.desktop.restart_tray()
        item = self.desktop.tray_item(program)
        self.desktop.screen.open_tray_menu()
        self.desktop.screen.close_menu()
        item.click("Quit")
        self.assertEqual(program.wait(), 0)

    def test_no_panel_at_all(self):
        program = self.start()
        program.wait_for_line(READY)
        self.assertEqual(program.terminate(), 0)

    def test_panel_of_the_new_kind_takes_over_from_one_of_the_old_kind(self):
        self.desktop.start_tray("xembed")
        program = self.start()
        self.wait_for_old_icon()
        self.desktop.start_tray("statusnotifier")
        item = self.desktop.tray_item(program)
        self.wait_for_old_icon(False)
        item.click("Quit")
        self.assertEqual(program.wait(), 0)

    def test_tray_of_the_old_kind_takes_over_from_a_panel_that_goes(self):
        self.desktop.start_tray("statusnotifier")
        program = self.start()
        self.desktop.tray_item(program)
        self.desktop.stop_tray()
        self.desktop.start_tray("xembed")
        self.wait_for_old_icon()
        self.desktop.screen.open_tray_menu()
        self.desktop.screen.close_menu()

    def test_tray_of_the_old_kind_beside_a_panel_gets_no_second_icon(self):
        self.desktop.start_tray("statusnotifier")
        program = self.start()
        self.desktop.tray_item(program)
        self.desktop.start_tray("xembed")
        time.sleep(GRACE + 1)  # Nothing may happen.
        self.assertEqual(self.old_icons(), [])
        # The toolkit would put an icon of its own into the panel instead.
        self.assertEqual(len(tray.items(self.desktop.bus)), 1)

    def test_watcher_that_no_panel_listens_to_does_not_hide_the_program(self):
        self.desktop.household.start(["/usr/bin/python3", hostless_watcher.__file__])
        self.desktop.bus.wait_for_owner(hostless_watcher.NAME)
        self.desktop.start_tray("xembed")
        self.start()
        self.wait_for_old_icon()


class OldTrayTest(UploadCase):
    """A tray of the old kind, in which the program draws its icon and its menu by itself."""

    desktop_options = {"tray": "xembed"}

    def setUp(self):
        super().setUp()
        self.store_settings()
        self.program = self.start()
        self.wait_for_old_icon()

    def click_entry(self, number):
        """Chooses the entry of this number with the mouse; separators do not count."""
        left, top, width, height = self.desktop.screen.open_tray_menu()
        separators_above = {3: 1, 4: 1, 5: 2, 6: 3}.get(number, 0)
        entry_height = (height - 3 * SEPARATOR) / 6
        y = top + (number - 0.5) * entry_height + separators_above * SEPARATOR
        self.desktop.screen.click(left + width // 2, int(y))

    def test_monitoring_is_started_with_the_mouse(self):
        self.desktop.screen.open_tray_menu()
        self.picture("menu-of-the-old-tray")
        self.desktop.screen.close_menu()
        self.click_entry(3)
        self.program.wait_for_line("✅ Monitoring started successfully")
        name = "Screenshot a_b & c__d &e.png"
        self.drop(name)
        self.wait_for_upload(name)
        self.assertEqual(self.desktop.screen.clipboard(), f"https://files.example/shots/{name}")
        self.desktop.screen.open_tray_menu()
        self.picture("menu-of-the-old-tray-after-an-upload")
        self.desktop.screen.close_menu()
        self.click_entry(3)
        self.click_entry(6)
        self.assertEqual(self.program.wait(), 0)

    def test_tray_that_is_started_again(self):
        self.desktop.stop_tray()
        self.wait_for_old_icon(False)
        self.desktop.start_tray("xembed")
        self.wait_for_old_icon()
        self.click_entry(6)
        self.assertEqual(self.program.wait(), 0)


if __name__ == "__main__":
    unittest.main()
