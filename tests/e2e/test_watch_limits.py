"""A system that lets a person have only so many watches on folders."""

import os
import unittest

from rig.private_mounts import PrivateMounts
from upload_case import UploadCase

INSTANCES = "max_inotify_instances"
WATCHES = "max_inotify_watches"
STARTED = "✅ Monitoring started successfully"
NOT_STARTED = "❌ Failed to create FSEvents stream"


class WatchLimitsTest(UploadCase):
    """The limits are those of the namespace that the program runs in."""

    def setUp(self):
        super().setUp()
        self.store_settings()
        self.folder = self.desktop.surroundings.desktop_folder
        self.mounts = self.enterContext(PrivateMounts())

    def warnings(self, program):
        """The lines of the log that tell of a folder without watches."""
        return [line for line in program.output.all if line.startswith("⚠️ No inotify watch left")]

    def warning(self):
        """Such a line about the Desktop."""
        return (f"⚠️ No inotify watch left for {self.folder}: "
                "looking at it every second instead")

    def test_one_instance_is_enough_for_all_folders(self):
        shots = self.desktop.surroundings.home / "Shots"
        gnome_folder = self.desktop.surroundings.home / "Pictures" / "Screenshots"
        shots.mkdir()
        gnome_folder.mkdir(parents=True)
        (self.desktop.surroundings.config / "user-dirs.dirs").write_text(
            'XDG_PICTURES_DIR="$HOME/Pictures"\nXDG_SCREENSHOTS_DIR="$HOME/Shots"\n')
        self.mounts.limit(INSTANCES, 1)
        program, item = self.start_monitoring(mounts=self.mounts)
        item.click("Stop Monitoring")
        item.wait_for_label("Monitoring stopped")
        item.click("Start Monitoring")
        item.wait_for_label("Monitoring for screenshots...")
        for count, folder in enumerate((self.folder, shots, gnome_folder), 1):
            (folder / f"Screenshot {count}.png").write_bytes(b"A picture.")
            self.wait_for_upload(f"Screenshot {count}.png", count)
        self.assertEqual(self.warnings(program), [])
        self.assertEqual(len([line for line in program.output.all
                              if line == "📸 FSEvents stream started: true"]), 6)

    def test_screenshot_arrives_without_an_instance(self):
        self.check_that_a_screenshot_arrives(INSTANCES)

    def test_screenshot_arrives_without_a_watch(self):
        self.check_that_a_screenshot_arrives(WATCHES)

    def check_that_a_screenshot_arrives(self, limit):
        """The folder is looked at instead, and this is told once."""
        self.drop("Screenshot of before.png")
        self.mounts.limit(limit, 0)
        program, _ = self.start_monitoring(mounts=self.mounts)
        self.assertIn("📸 FSEvents stream started: true", program.output.all)
        self.drop("Screenshot one.png")
        self.wait_for_upload("Screenshot one.png")
        self.drop("Screenshot two.png")
        self.wait_for_upload("Screenshot two.png", 2)
        self.assertEqual(self.warnings(program), [self.warning()])
        self.assertEqual(sorted(self.on_server()), ["Screenshot one.png", "Screenshot two.png"])

    def test_screenshot_is_found_though_the_folder_says_nothing_of_it(self):
        self.mounts.limit(WATCHES, 0)
        self.start_monitoring(mounts=self.mounts)
        before = self.folder.stat()
        self.drop("Screenshot one.png")
        # As those do that keep the times of what they copy.
        os.utime(self.folder, ns=(before.st_atime_ns, before.st_mtime_ns))
        self.wait_for_upload("Screenshot one.png")

    def test_folder_that_cannot_be_looked_at_either_is_told_of(self):
        self.folder.chmod(0)
        self.mounts.limit(INSTANCES, 0)
        program = self.start(mounts=self.mounts)
        item = self.desktop.tray_item(program)
        item.click("Start Monitoring")
        failure = self.desktop.notifications.wait_for("❌ Monitoring Failed")
        self.assertEqual(failure.body, f"Cannot watch for screenshots in: {self.folder}")
        self.assertEqual(failure.hints["sound-name"], "dialog-error")
        item.wait_for_label("Stop Monitoring")
        self.assertEqual(program.output.all.count(NOT_STARTED), 1)
        self.assertNotIn(STARTED, program.output.all)
        self.assertEqual(self.warnings(program), [])
        self.folder.chmod(0o700)
        item.click("Stop Monitoring")
        item.wait_for_label("Monitoring stopped")
        item.click("Start Monitoring")
        program.wait_for_line(STARTED)
        self.assertEqual(self.warnings(program), [self.warning()])


if __name__ == "__main__":
    unittest.main()
