"""On mutter, the compositor of GNOME, which keeps its clipboard from programs without a window."""

import unittest

from desktop_case import PICTURES
from rig import processes
from wayland_case import READY, WaylandCase

X11 = "X11, "
NO_DISPLAY = "the toolkit's choice, "


class MutterTest(WaylandCase):
    """With a tray, which GNOME has only as an extension."""

    desktop_options = {"compositor": "mutter", "xwayland": True}

    def assert_pasted(self, link):
        # mutter tells Wayland programs a moment after it has told X11 programs.
        processes.wait_until(lambda: self.desktop.screen.clipboard() == link, 2, f"{link} pasted")

    def test_screenshot(self):
        program, item = self.start_set_up()
        self.assert_choice(program, X11)
        self.publish(program, item, b"A picture.")
        self.quit(program, item)

    def test_whatever_was_copied(self):
        program, item = self.start_set_up()
        self.upload_all_that_can_be_copied(program, item)
        self.quit(program, item)

    def test_settings_window(self):
        program, item = self.start_set_up()
        item.click("Settings...")
        self.desktop.screen.wait_for_window("Settings")
        PICTURES.mkdir(parents=True, exist_ok=True)
        self.desktop.screen.picture_of_window("Settings", PICTURES / "mutter-settings.png")
        self.desktop.screen.key("Escape")
        self.wait_for_window_gone("Settings")
        self.quit(program, item)


class NoTrayTest(WaylandCase):
    """As GNOME is without extensions."""

    desktop_options = {"compositor": "mutter", "xwayland": True, "tray": None}

    def test_program_is_used_by_its_menu_until_it_is_ended(self):
        self.store_settings()
        program = self.start()
        program.wait_for_line(READY)
        self.use_the_menu_without_a_tray(program)
        self.assertEqual(program.terminate(), 0)

    def test_tray_that_comes_later(self):
        program = self.start()
        program.wait_for_line(READY)
        self.desktop.start_tray()
        self.quit(program, self.desktop.tray_item(program))


class NoDisplayTest(WaylandCase):
    """Nothing for X11 programs, so nothing to choose."""

    desktop_options = {"compositor": "mutter", "tray": None, "notifications": False}

    def test_choice_is_left_to_the_toolkit(self):
        program = self.start()
        self.assert_choice(program, NO_DISPLAY)
        program.wait_for_line("❌ Notification permission error")
        self.assertEqual(program.terminate(), 0)


if __name__ == "__main__":
    unittest.main()
