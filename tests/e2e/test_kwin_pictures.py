"""On kwin, drawn so that pictures can be taken."""

import unittest

from kwin_case import KwinCase


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
