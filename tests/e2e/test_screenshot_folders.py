"""Watching the folders in which desktops keep screenshots, beside the Desktop."""

import unittest

from upload_case import UploadCase

GNOME_NAME = "Bildschirmfoto vom 2026-01-31 10-20-30.png"
KDE_NAME = "Screenshot_20260131_102030.png"
ON_DESKTOP = "Screenshot 2026-01-31 at 10.20.30.png"
WATCHING = "📸 Starting screenshot monitoring on: "
CALLED_BACK = "📸 Screenshot callback received for: "


class ScreenshotFoldersTest(UploadCase):
    """GNOME writes below the pictures folder; others where the user's folders say."""

    def setUp(self):
        super().setUp()
        self.store_settings()
        self.home = self.desktop.surroundings.home
        self.gnome_folder = self.home / "Pictures" / "Screenshots"

    def configure(self, folder):
        """Says where the user wants screenshots."""
        (self.desktop.surroundings.config / "user-dirs.dirs").write_text(
            f'XDG_PICTURES_DIR="$HOME/Pictures"\nXDG_SCREENSHOTS_DIR="{folder}"\n')

    def watched(self, program):
        """The folders that the program said it watches."""
        return [line.removeprefix(WATCHING) for line in program.output.all
                if line.startswith(WATCHING)]

    def called_back(self, program):
        """The names of the screenshots that the program has found."""
        return [line.removeprefix(CALLED_BACK) for line in program.output.all
                if line.startswith(CALLED_BACK)]

    def test_screenshots_in_every_folder_are_uploaded(self):
        shots = self.home / "My Shots"
        shots.mkdir()
        self.gnome_folder.mkdir(parents=True)
        self.configure("$HOME/My Shots")
        (self.gnome_folder / "Screenshot of before.png").touch()
        program, _ = self.start_monitoring()
        desktop = self.desktop.surroundings.desktop_folder
        self.assertEqual(self.watched(program),
                         [str(desktop), str(shots), str(self.gnome_folder)])
        (self.gnome_folder / GNOME_NAME).write_bytes(b"In the pictures folder.")
        self.wait_for_upload(GNOME_NAME, 1)
        partial = shots / ".partial"
        partial.write_bytes(b"Where the user wants it.")
        partial.rename(shots / KDE_NAME)
        self.wait_for_upload(KDE_NAME, 2)
        self.drop(ON_DESKTOP, b"On the Desktop.")
        self.wait_for_upload(ON_DESKTOP, 3)
        self.assertEqual(self.on_server(), {GNOME_NAME: b"In the pictures folder.",
                                            KDE_NAME: b"Where the user wants it.",
                                            ON_DESKTOP: b"On the Desktop."})
        self.assertEqual(self.called_back(program), [GNOME_NAME, KDE_NAME, ON_DESKTOP])
        self.assert_idle(program)

    def test_folder_with_two_names_is_watched_once(self):
        self.gnome_folder.parent.mkdir()
        self.gnome_folder.symlink_to(self.desktop.surroundings.desktop_folder)
        self.configure(self.desktop.surroundings.desktop_folder)
        program, _ = self.start_monitoring()
        self.assertEqual(self.watched(program), [str(self.desktop.surroundings.desktop_folder)])
        self.drop(ON_DESKTOP)
        self.wait_for_upload(ON_DESKTOP)
        self.drop(KDE_NAME)
        self.wait_for_upload(KDE_NAME, 2)
        self.assertEqual(self.called_back(program), [ON_DESKTOP, KDE_NAME])

    def test_folder_that_is_replaced_leaves_the_others_alone(self):
        self.gnome_folder.mkdir(parents=True)
        self.start_monitoring()
        self.gnome_folder.rename(self.gnome_folder.with_name("Old"))
        self.drop(ON_DESKTOP)
        self.wait_for_upload(ON_DESKTOP)
        self.gnome_folder.mkdir()
        (self.gnome_folder / GNOME_NAME).write_bytes(b"A picture.")
        self.wait_for_upload(GNOME_NAME, 2)

    def test_folder_that_is_made_later_is_watched_from_the_next_start_on(self):
        program, item = self.start_monitoring()
        self.gnome_folder.mkdir(parents=True)
        (self.gnome_folder / GNOME_NAME).write_bytes(b"A picture.")
        self.drop(ON_DESKTOP)
        self.wait_for_upload(ON_DESKTOP)
        item.click("Stop Monitoring")
        item.wait_for_label("Monitoring stopped")
        item.click("Start Monitoring")
        program.wait_for_line(WATCHING + str(self.gnome_folder))
        item.wait_for_label("Monitoring for screenshots...")
        (self.gnome_folder / KDE_NAME).write_bytes(b"Another picture.")
        self.wait_for_upload(KDE_NAME, 2)
        self.assertEqual(self.called_back(program), [ON_DESKTOP, KDE_NAME])


if __name__ == "__main__":
    unittest.main()
