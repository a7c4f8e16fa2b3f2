"""A watched folder that is another one at once: mounted over, unmounted, replaced, come back."""

import pathlib
import time
import unittest

from rig import processes
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

    def is_watching(self, program, folder):
        """Whether the program hears of what happens in a folder."""
        inode = f" ino:{folder.stat().st_ino:x} "
        return any(inode in info.read_text()
                   for info in pathlib.Path(f"/proc/{program.pid}/fdinfo").iterdir())

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

    def test_old_screenshots_whose_status_changed_are_left_alone(self):
        program = self.start_inside()
        for entry in self.other.iterdir():
            entry.chmod(0o600)
            (self.other / "Screenshot with another name.png").hardlink_to(entry)
        self.mounts.bind(self.other, self.folder)
        self.wait_for_rescan(program, 1)
        self.put(self.other, "Screenshot new.png")
        self.wait_for_upload("Screenshot new.png")
        self.assertEqual(self.called_back(program), ["Screenshot new.png"])

    def test_mounted_folder_that_may_be_read_later_is_watched(self):
        program = self.start_inside()
        self.other.chmod(0)
        self.mounts.bind(self.other, self.folder)
        program.wait_for_line("❌ Could not read directory contents")
        self.other.chmod(0o700)
        self.put(self.other, "Screenshot new.png")
        self.wait_for_upload("Screenshot new.png")
        self.assertEqual(self.called_back(program), ["Screenshot new.png"])

    def test_screenshot_that_cannot_be_looked_at_yet_is_not_lost(self):
        program = self.start_inside()
        self.put(self.other, "Screenshot new.png")
        self.other.chmod(0o600)
        self.mounts.bind(self.other, self.folder)
        program.wait_for_line("📸 Found 2 files in directory")
        self.other.chmod(0o700)
        self.wait_for_upload("Screenshot new.png")
        self.assertEqual(self.called_back(program), ["Screenshot new.png"])

    def test_mount_elsewhere_is_no_reason_to_look(self):
        program = self.start_inside()
        self.mounts.bind(self.other, self.make("elsewhere"))
        time.sleep(1.5)
        self.assertFalse(any(RESCANNED in line for line in program.output.all))


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


class ParentTest(FolderChangesCase):
    """Something is mounted over the folder above the watched one."""

    def setUp(self):
        super().setUp()
        self.parent = self.make("parent")
        self.shots = self.parent / "Shots"
        self.shots.mkdir()
        (self.desktop.surroundings.config / "user-dirs.dirs").write_text(
            f'XDG_SCREENSHOTS_DIR="{self.shots}"\n')

    def appear(self, folder):
        """A watched folder with an old screenshot appears in the mounted one."""
        self.other.rename(folder / "Shots")
        return folder / "Shots"

    def test_folder_that_appears_in_the_mounted_one_is_watched(self):
        cover = self.make("cover")
        program = self.start_inside()
        self.mounts.bind(cover, self.parent)
        program.wait_for_line("❌ Could not read directory contents")
        shots = self.appear(cover)
        self.wait_for_rescan(program, 2)
        self.put(shots, "Screenshot new.png")
        self.wait_for_upload("Screenshot new.png")
        self.assertEqual(self.called_back(program), ["Screenshot new.png"])

    def test_folder_that_was_missing_before_is_watched_too(self):
        cover = self.make("cover")
        program = self.start_inside()
        self.shots.rmdir()
        program.wait_for_line("❌ Could not read directory contents")
        self.mounts.bind(cover, self.parent)
        processes.wait_until(lambda: self.is_watching(program, cover), 5, "it is watched")
        shots = self.appear(cover)
        self.wait_for_rescan(program, 2)
        self.put(shots, "Screenshot new.png")
        self.wait_for_upload("Screenshot new.png")
        self.assertEqual(self.called_back(program), ["Screenshot new.png"])


if __name__ == "__main__":
    unittest.main()
