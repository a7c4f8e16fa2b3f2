"""What the program does not even begin to upload: names that a tool would take for something else,
and what is no file."""

import os
import time
import unittest

from clipboard_case import ClipboardCase, about_file, as_in_menu
from upload_case import BEGUN, FAILED, PASSWORD, UploadCase

REGULAR = "Screenshot 2026-01-31 at 10.20.30.png"


class RefusalCase(UploadCase):
    """Something appears in the Desktop folder that is refused; what comes after it is not."""

    def setUp(self):
        super().setUp()
        self.store_settings()
        self.program, self.item = self.start_monitoring()

    def path(self, name):
        """The path of that name in the Desktop folder."""
        return os.path.join(self.desktop.surroundings.desktop_folder, name)

    def assert_refused(self, reason):
        """Waits until the person was told so; nothing arrived, and the next screenshot does."""
        failure = self.desktop.notifications.wait_for(FAILED)
        self.assertIn(reason, failure.body)
        self.assertEqual(self.titles(), [BEGUN, FAILED])
        self.item.wait_for_label("❌ Upload failed: " + as_in_menu(failure.body))
        self.assertEqual(self.on_server(), {})
        self.assert_idle(self.program)
        self.drop(REGULAR)
        self.wait_for_upload(REGULAR)
        self.assertEqual(list(self.on_server()), [REGULAR])
        # The log is in lines, whatever a name holds.
        self.assertNotIn("!touch PWNED", self.program.output.all)


class BySftp(RefusalCase):
    """Names in a batch of sftp's."""

    server_kind = "asyncssh"
    server_options = {"password": PASSWORD}

    def test_line_feed_is_no_command(self):
        self.drop('Screenshot"*\n!touch PWNED\nbye\n.png')
        self.assert_refused("holds a control character")
        for folder in (self.desktop.surroundings.home, self.desktop.surroundings.desktop_folder):
            self.assertFalse(os.path.exists(os.path.join(folder, "PWNED")))

    def test_quotation_mark_sends_no_other_file(self):
        self.drop('Screenshot" ".htaccess" x.png')
        self.assert_refused("holds a quotation mark, which sftp cannot be told")

    def test_backslash_sends_no_other_file(self):
        self.drop("Screenshot \\1.png")
        self.assert_refused("holds a backslash, which sftp cannot be told")


class ByFtp(RefusalCase):
    """What curl would send as something else."""

    def test_line_feed(self):
        self.drop("Screenshot\nmachine x.png")
        self.assert_refused("holds a control character")

    def test_folder_is_no_screenshot(self):
        os.mkdir(self.path("Screenshots"))
        self.assert_refused("is a folder")

    def test_pipe_hangs_nothing(self):
        os.mkfifo(self.path("Screenshot.png"))
        begin = time.monotonic()
        self.assert_refused("is no regular file")
        self.assertLess(time.monotonic() - begin, 30)

    def test_link_to_a_device(self):
        os.symlink("/dev/zero", self.path("Screenshot.png"))
        self.assert_refused("is no regular file")


class Copied(ClipboardCase):
    """A file manager's copy of what is no file."""

    server_kind = "pyftpdlib"

    def test_folder(self):
        self.start_program()
        folder = self.owners_folder / "pictures"
        folder.mkdir()
        self.own_as_qt({"text/uri-list": f"{folder.as_uri()}\r\n".encode()})
        told = self.fail_in_transfer(about_file("pictures"))
        self.assertEqual(told, f"Upload failed: The file '{folder}' is a folder")
        self.assertEqual(self.on_server(), {})


# It has no tests of its own.
del RefusalCase

if __name__ == "__main__":
    unittest.main()
