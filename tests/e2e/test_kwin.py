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


if __name__ == "__main__":
    unittest.main()
