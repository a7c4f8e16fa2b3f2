"""On sway: tray in waybar, notifications by mako, screenshots by grim, the clipboard of wl-copy."""

import unittest

from desktop_case import PROGRAM
from rig import settings_file
from settings_window import SettingsWindow
from upload_case import DONE
from wayland_case import MENU, WaylandCase

WAYLAND = "Wayland, "
USERS_CHOICE = "as the user has set it"
# The middle of the entry "Settings..." of the open menu.
SETTINGS = 1060, 742


class StartTest(WaylandCase):
    """Starting and quitting."""

    def test_wayland_is_chosen_where_the_clipboard_works(self):
        program, item = self.start_set_up()
        self.assert_choice(program, WAYLAND)
        self.quit(program, item)

    def test_no_panel_at_all(self):
        self.desktop.stop_tray()
        self.store_settings()
        program = self.start()
        program.wait_for_line("✅ Notification permission granted")
        self.use_the_menu_without_a_tray(program)
        self.assertEqual(program.terminate(), 0)

    def test_panel_that_is_started_again(self):
        program = self.start()
        self.desktop.tray_item(program)
        self.desktop.restart_tray()
        self.quit(program, self.desktop.tray_item(program))

    def test_panel_that_leaves_the_menu_to_the_program(self):
        program, item = self.start_set_up()
        item.ask_for_menu()
        self.desktop.screen.wait_for_window(MENU)
        width, height = (self.desktop.screen.facts(MENU)["rect"][side]
                         for side in ("width", "height"))
        self.assertLess(width, 500)
        self.assertLess(height, 500)
        self.desktop.screen.key("Escape")
        self.wait_for_window_gone(MENU)
        self.quit(program, item)

    def test_panel_that_comes_after_the_program(self):
        self.desktop.stop_tray()
        program = self.start()
        program.wait_for_line("✅ Notification permission granted")
        self.desktop.start_tray()
        self.quit(program, self.desktop.tray_item(program))


class BoundKeyTest(WaylandCase):
    """The key that a person has bound in sway's configuration, in place of the shortcut."""

    desktop_options = {"more": f"bindsym Mod4+Shift+u exec {PROGRAM} upload-clipboard"}

    def press(self, title):
        """Presses the key, of which a notification tells; gives that."""
        self.desktop.screen.key("super+shift+u")
        return self.desktop.notifications.wait_for(title)

    def test_it_uploads(self):
        program, item = self.start_set_up()
        self.desktop.screen.set_clipboard("some text")
        self.press(DONE)
        self.assertIn(b"some text", self.on_server().values())
        self.quit(program, item)

    def test_it_tells_that_the_settings_are_missing(self):
        program = self.start()
        item = self.desktop.tray_item(program)
        error = self.press("Upload Error")
        self.assertEqual(error.body, "Please configure server settings first")
        self.quit(program, item)


class NoBusTest(WaylandCase):
    """No session bus, over which programs ask for shortcuts."""

    desktop_options = {"tray": None, "notifications": False, "keyring": None}

    def test_log_tells_that_there_is_no_shortcut(self):
        program = self.start(environment={"DBUS_SESSION_BUS_ADDRESS": "unix:path=/not/there"})
        program.wait_for_line("❌ Failed to create event tap.")
        self.assertEqual(program.terminate(), 0)


class UploadTest(WaylandCase):
    """The clipboard of a program that has no window."""

    def test_screenshot(self):
        program, item = self.start_set_up()
        self.publish(program, item)
        self.picture("sway-notification")
        self.quit(program, item)

    def test_whatever_was_copied(self):
        program, item = self.start_set_up()
        self.upload_all_that_can_be_copied(program, item)
        self.quit(program, item)

    def test_empty_clipboard(self):
        _, item = self.start_set_up()
        item.click("Upload from Clipboard  ⌘⇧U")
        self.desktop.notifications.wait_for("❌ Clipboard Empty")
        self.assertEqual(self.on_server(), {})


class WindowTest(WaylandCase):
    """With mouse and keyboard, and as a screen reader sees it."""

    desktop_options = {"accessibility": True}

    def open_settings_with_the_mouse(self):
        """Clicks on the icon in the panel and then on the entry."""
        self.program, self.item = self.start_set_up()
        screen = self.desktop.screen
        screen.open_tray_menu()
        self.picture("sway-menu")
        screen.click(*SETTINGS)
        screen.wait_for_window("Settings")

    def test_settings_are_typed_and_saved(self):
        self.open_settings_with_the_mouse()
        self.assertEqual(self.desktop.screen.facts("Settings")["app_id"], "org.tessery.Tessery")
        window = SettingsWindow(self.desktop, self.program)
        window.fill("Hostname", "other.example")
        self.picture("sway-settings")
        window.save()
        saved = settings_file.read(self.desktop.suite_file)
        self.assertIn(b'"hostname":"other.example"', saved)
        window.close()
        self.quit(self.program, self.item)

    def test_window_that_is_open_already_is_not_opened_twice(self):
        self.open_settings_with_the_mouse()
        self.item.click("Settings...")
        self.desktop.screen.close_window("Settings")
        self.wait_for_window_gone("Settings")
        self.item.click("Settings...")
        self.desktop.screen.wait_for_window("Settings")


class FineScreenTest(WaylandCase):
    """Two pixels for each of a window's."""

    desktop_options = {"more": "output * scale 2", "size": "1600x1400"}

    def test_settings_are_drawn_finely(self):
        _, item = self.start_set_up()
        item.click("Settings...")
        self.desktop.screen.wait_for_window("Settings")
        self.picture("sway-settings-scale-2")


class UsersChoiceTest(WaylandCase):
    """The user prefers X11."""

    desktop_options = {"xwayland": True, "environment": {"QT_QPA_PLATFORM": "xcb"}}

    def test_clipboard_works_all_the_same(self):
        program, item = self.start_set_up()
        self.assert_choice(program, USERS_CHOICE)
        item.click("Settings...")
        self.desktop.screen.wait_for_window("Settings")
        self.assertEqual(self.desktop.screen.facts("Settings")["shell"], "xwayland")
        self.desktop.screen.close_window("Settings")
        self.publish(program, item)
        self.quit(program, item)


if __name__ == "__main__":
    unittest.main()
