"""The link on the clipboard, among other programs that use the clipboard."""

import unittest

from upload_case import BASE, UploadCase


class ClipboardTest(UploadCase):
    """Links are read the way other programs read them."""

    def setUp(self):
        super().setUp()
        self.store_settings()
        self.program, self.item = self.start_monitoring()
        self.uploads = 0

    def upload(self, name):
        """Uploads a file and compares the clipboard."""
        self.drop(name)
        self.uploads += 1
        self.assertEqual(self.wait_for_upload(name, self.uploads), f"{BASE}/{name}")
        self.assertEqual(self.desktop.screen.clipboard(), f"{BASE}/{name}")

    def test_link_is_plain_text_and_nothing_else(self):
        self.upload("Screenshot à é.png")
        for target in ("UTF8_STRING", "text/plain"):
            self.assertEqual(self.desktop.screen.clipboard(target), f"{BASE}/Screenshot à é.png")
        targets = self.desktop.screen.clipboard("TARGETS").split()
        self.assertNotIn("text/uri-list", targets)
        self.assertNotIn("text/html", targets)

    def test_link_takes_the_place_of_the_one_before(self):
        for number in (1, 2, 3):
            self.upload(f"Screenshot {number}.png")

    def test_link_wins_over_other_programs(self):
        for turn in (1, 2):
            for owner in ("first", "second", "first again"):
                self.desktop.screen.set_clipboard(f"{owner} {turn}")
            self.upload(f"Screenshot {turn}.png")

    def test_link_wins_after_the_program_was_used_long_ago(self):
        self.item.click("Settings...")
        self.desktop.screen.wait_for_window("Settings")
        self.desktop.screen.key("a")
        self.desktop.screen.set_clipboard("of another program")
        self.upload("Screenshot.png")

    def test_other_program_wins_over_the_link(self):
        self.upload("Screenshot.png")
        self.desktop.screen.set_clipboard("of another program")
        self.item.wait_for_label("✅ Uploaded: Screenshot.png")
        self.assertEqual(self.desktop.screen.clipboard(), "of another program")

    def test_picture_of_another_program_gives_way(self):
        self.desktop.screen.set_clipboard(b"\x89PNG", "image/png")
        self.upload("Screenshot.png")
        self.assertNotIn("image/png", self.desktop.screen.clipboard("TARGETS").split())


class OldTrayClipboardTest(UploadCase):
    """The program has been used with the mouse, so it knows times of the display."""

    desktop_options = {"tray": "xembed"}

    def test_link_wins_over_other_programs(self):
        self.store_settings()
        program = self.start()
        self.wait_for_old_icon()
        self.desktop.screen.open_tray_menu()
        self.desktop.screen.key("Down", "Down", "Down", "Return")
        program.wait_for_line("✅ Monitoring started successfully")
        for turn in (1, 2):
            self.desktop.screen.set_clipboard(f"first {turn}")
            self.desktop.screen.set_clipboard(f"second {turn}")
            self.drop(f"Screenshot {turn}.png")
            link = self.wait_for_upload(f"Screenshot {turn}.png", turn)
            self.assertEqual(self.desktop.screen.clipboard(), link)
            self.desktop.screen.open_tray_menu()
            self.desktop.screen.close_menu()


if __name__ == "__main__":
    unittest.main()
