"""On kwin, the compositor of KDE Plasma."""

import unittest

from kwin_case import KwinCase


class UploadTest(KwinCase):
    """kwin shares its clipboard with programs that have no window."""

    def test_screenshot(self):
        program, item = self.start_set_up()
        self.assert_choice(program, "Wayland, ")
        self.publish(program, item, b"A picture.")
        self.quit(program, item)

    def test_whatever_was_copied(self):
        program, item = self.start_set_up()
        self.upload_all_that_can_be_copied(program, item)
        self.quit(program, item)


class PicturesTest(KwinCase):
    """Drawn as on a person's machine."""

    desktop_options = {"compositor": "kwin", "environment": {"KWIN_COMPOSE": "O2"}}

    def test_screenshot_and_settings_window(self):
        program, item = self.start_set_up()
        self.publish(program, item)
        self.picture("kwin-notification")
        item.click("Settings...")
        self.desktop.screen.wait_for_window("Settings")
        self.picture("kwin-settings")
        self.desktop.screen.key("Escape")
        self.wait_for_window_gone("Settings")
        self.quit(program, item)


if __name__ == "__main__":
    unittest.main()
