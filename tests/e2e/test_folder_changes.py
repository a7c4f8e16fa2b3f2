"""A watched folder that is another one all at once: mounted over, unmounted, replaced, come back."""

import unittest

from rig.private_mounts import PrivateMounts
from upload_case import UploadCase

OLD = "Screenshot old.png"
CALLED_BACK = "📸 Screenshot callback received for: "
RESCANNED = "📸 FSEvents triggered"


class FolderChangesCase(UploadCase):
    """The program runs where folders are mounted while it runs."""

    def setUp(self):
        super().setUp()
        self.store_settings()
        self.folder = self.desktop.surroundings.desktop_folder
        self.mounts = self.enterContext(PrivateMounts())
        # With a screenshot of before.
        self.other = self.make("other")
        (self.other / OLD).write_bytes(b"An old picture.")

    def make(self, name):
        """Makes a folder that the program does not watch."""
        folder = self.desktop.surroundings.base / name
        folder.mkdir()
        return folder

    def put(self, folder, name):
        """Puts a file into a folder, complete at once."""
        partial = self.desktop.surroundings.base / "partial"
        partial.write_bytes(b"A picture.")
        partial.rename(folder / name)

    def start_inside(self):
        """Starts monitoring; gives the program."""
        return self.start_monitoring(mounts=self.mounts)[0]

    def wait_for_rescan(self, program, count):
        """Waits until the folder has been gone through that many times."""
        number = 0
        for _ in range(count):
            number = program.wait_for_line(RESCANNED, after=number) + 1
        program.wait_for_line("📸 Found", after=number)

    def called_back(self, program):
        """The names of the screenshots that the program has found."""
        return [line.removeprefix(CALLED_BACK) for line in program.output.all
                if line.startswith(CALLED_BACK)]


class MountTest(FolderChangesCase):
    """Such as an encrypted folder, one of another computer, or a stick."""

    def test_old_screenshots_in_a_mounted_folder_are_left_alone(self):
        program = self.start_inside()
        self.mounts.bind(self.other, self.folder)
        self.wait_for_rescan(program, 1)
        self.put(self.other, "Screenshot new.png")
        self.wait_for_upload("Screenshot new.png")
        self.assertEqual(self.called_back(program), ["Screenshot new.png"])
        self.assertEqual(list(self.on_server()), ["Screenshot new.png"])

    def test_screenshot_that_comes_with_the_folder_is_new_if_it_was_made_since_the_start(self):
        program = self.start_inside()
        self.put(self.other, "Screenshot new.png")
        self.mounts.bind(self.other, self.folder)
        self.wait_for_upload("Screenshot new.png")
        self.assertEqual(self.called_back(program), ["Screenshot new.png"])

    def test_other_file_system_brings_none(self):
        self.mounts.run("mount", "-t", "tmpfs", "-o", "mode=700", "test", self.other)
        self.mounts.run("touch", self.other / OLD)
        program = self.start_inside()
        self.mounts.run("mount", "--move", self.other, self.folder)
        self.wait_for_rescan(program, 1)
        self.mounts.run("touch", self.folder / "Screenshot new.png")
        self.wait_for_upload("Screenshot new.png")
        self.assertEqual(self.called_back(program), ["Screenshot new.png"])

    def test_disk_that_takes_the_place_of_another_brings_none(self):
        """By device and inode alone they are the same: the system gives these numbers again."""
        for name in ("empty", "top"):
            self.make(name)
        mount = 'mount -t overlay -o lowerdir="$1/top:$1/$2" disk "$0"'
        arguments = [self.folder, self.desktop.surroundings.base]
        self.mounts.run("sh", "-c", mount, *arguments, "empty")
        program = self.start_inside()
        self.mounts.run("sh", "-c", f'umount "$0" && {mount}', *arguments, "other")
        self.wait_for_rescan(program, 1)
        program.wait_for_line("📸 Found 1 files in directory")
        self.mounts.run("sh", "-c", f'umount "$0" && {mount}', *arguments, "empty")
        self.wait_for_rescan(program, 2)
        self.assertEqual(self.called_back(program), [])

    def test_folder_below_the_mounted_one_is_watched_again(self):
        program = self.start_inside()
        self.put(self.folder, "Screenshot one.png")
        self.wait_for_upload("Screenshot one.png")
        self.mounts.bind(self.other, self.folder)
        self.wait_for_rescan(program, 2)
        self.put(self.folder, "Screenshot below.png")
        self.mounts.unmount(self.folder)
        self.wait_for_upload("Screenshot below.png", 2)
        self.put(self.folder, "Screenshot two.png")
        self.wait_for_upload("Screenshot two.png", 3)
        self.assertEqual(self.called_back(program), [
            "Screenshot one.png", "Screenshot below.png", "Screenshot two.png"])


class ReplacementTest(FolderChangesCase):
    """By other means."""

    def test_old_screenshots_in_a_replacement_are_left_alone(self):
        program = self.start_inside()
        self.folder.rename(self.folder.with_name("away"))
        self.other.rename(self.folder)
        self.wait_for_rescan(program, 1)
        self.drop("Screenshot new.png")
        self.wait_for_upload("Screenshot new.png")
        self.assertEqual(self.called_back(program), ["Screenshot new.png"])

    def test_old_screenshots_in_a_folder_that_appears_are_left_alone(self):
        self.folder.rmdir()
        program = self.start_inside()
        self.desktop.screen.wait_for_window(
            "Please select your Desktop folder to allow screenshot monitoring")
        self.other.rename(self.folder)
        self.wait_for_rescan(program, 1)
        self.drop("Screenshot new.png")
        self.wait_for_upload("Screenshot new.png")
        self.assertEqual(self.called_back(program), ["Screenshot new.png"])


if __name__ == "__main__":
    unittest.main()
