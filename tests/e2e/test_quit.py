"""Ending the program in the middle of an upload, by request and by force."""

import os
import signal
import time
import unittest

from rig import processes
from rig.private_desktop import SECONDS_TO_FOLLOW
from servers import Server
from upload_case import BEGUN, FAILED, PASSWORD, UploadCase

CANCELLED = "Upload failed: Cancelled because Tessery is quitting"
WAYS = ("menu", signal.SIGTERM, signal.SIGINT)
SECONDS_TO_QUIT = 3


class QuitCase(UploadCase):
    """Quits in each of the ways while the tool of an upload hangs or works."""

    def tools(self):
        """The processes that the program has started: process id -> name."""
        found = {}
        for pid in processes.descendants(self.program.pid):
            if line := processes.command_line(pid):
                found[pid] = os.path.basename(line.split()[0])
        return found

    def begin_upload(self, *tools):
        """Starts an upload and waits until the tools run; gives their process ids."""
        self.program, self.item = self.start_monitoring()
        self.drop("Screenshot.png", bytes(1_000_000))
        processes.wait_until(lambda: set(self.tools().values()) >= set(tools), 10, f"{tools}")
        return list(self.tools())

    def assert_ended(self, pids):
        """The tools have ended, and those that they have started are about to."""
        processes.pass_in(lambda: not any(map(processes.command_line, pids)), SECONDS_TO_FOLLOW)
        self.assertEqual([pid for pid in pids if processes.command_line(pid)], [])

    def quit(self, way):
        """Asks the program to quit; gives its exit status."""
        if way == "menu":
            self.item.click("Quit")
        else:
            self.program.send_signal(way)
        return self.program.wait(SECONDS_TO_QUIT)

    def quit_while(self, *tools, upload_is_under_way=lambda: True):
        """Quits in each way during an upload by these tools."""
        for count, way in enumerate(WAYS, 1):
            with self.subTest(way):
                pids = self.begin_upload(*tools)
                processes.wait_until(upload_is_under_way, 10, "an upload under way")
                self.assertEqual(len(self.temporary_folders()), 1)
                self.assertEqual(self.quit(way), 0)
                self.assert_ended(pids)
                self.assertEqual(self.temporary_folders(), [])
                self.assertEqual(self.titles(), [BEGUN, FAILED] * count)
                self.assertEqual(self.desktop.notifications.all[-1].body, CANCELLED)
                os.unlink(self.desktop.surroundings.desktop_folder / "Screenshot.png")


class HangingToolTest(QuitCase):
    """The server accepts and never says a word."""

    server_kind = "silent"
    server_options = {}

    def test_hanging_curl(self):
        self.store_settings_for_silence(self.server, "FTP")
        self.quit_while("curl")

    def test_hanging_sftp_with_keys(self):
        self.make_ssh_folder()
        self.store_settings_for_silence(self.server, "SFTP")
        self.quit_while("sftp", "ssh")

    def test_hanging_sftp_with_password(self):
        self.store_settings_for_silence(self.server, "SFTP")
        self.quit_while("expect", "sftp", "ssh")

    def test_asked_more_than_once(self):
        self.store_settings_for_silence(self.server, "FTP")
        pids = self.begin_upload("curl")
        for number in (signal.SIGTERM, signal.SIGHUP, signal.SIGINT):
            self.program.send_signal(number)
        self.assertEqual(self.program.wait(SECONDS_TO_QUIT), 0)
        self.assert_ended(pids)
        self.assertEqual(self.temporary_folders(), [])

    def test_two_uploads(self):
        self.store_settings_for_silence(self.server, "SFTP")
        pids = self.begin_upload("expect")
        self.drop("Screenshot two.png")
        processes.wait_until(lambda: list(self.tools().values()).count("ssh") == 2, 10, "two ssh")
        pids = list(self.tools())
        self.assertEqual(self.quit("menu"), 0)
        self.assert_ended(pids)
        self.assertEqual(self.titles(), [BEGUN, BEGUN, FAILED, FAILED])


class WorkingToolTest(QuitCase):
    """The file is on its way, slowly."""

    server_kind = "asyncssh"
    server_options = {"password": PASSWORD, "rate": 50_000}

    def file_has_begun(self):
        """Whether the server has got the first part of the file, and takes it away."""
        path = os.path.join(self.server.folder, "Screenshot.png")
        if not os.path.exists(path) or os.path.getsize(path) == 0:
            return False
        os.unlink(path)
        return True

    def test_working_sftp_with_password(self):
        self.store_settings()
        self.quit_while("expect", "sftp", "ssh", upload_is_under_way=self.file_has_begun)

    def test_working_curl(self):
        with Server("pyftpdlib", password=PASSWORD, rate=50_000) as server:
            self.store_settings(server)
            self.quit_while("curl", upload_is_under_way=lambda: os.path.exists(
                os.path.join(server.folder, "Screenshot.png")))


class KilledTest(QuitCase):
    """The program is given no chance to clean up."""

    server_kind = "silent"
    server_options = {}

    def end_tools_of(self, kind, *tools):
        """Kills the program during an upload; its tools must end and its files must go later."""
        self.store_settings_for_silence(self.server, kind)
        pids = self.begin_upload(*tools)
        self.program.send_signal(signal.SIGKILL)
        self.assertEqual(self.program.wait(), -signal.SIGKILL)
        processes.wait_until(lambda: not any(map(processes.command_line, pids)), 5,
                             "the end of the tools")
        left, = self.temporary_folders()
        self.assertEqual(left.stat().st_mode & 0o777, 0o700)
        for path in left.iterdir():
            self.assertEqual(path.stat().st_mode & 0o077, 0)
        self.assertNotEqual(list(left.iterdir()), [])
        program = self.start()
        self.desktop.tray_item(program)
        own, = self.temporary_folders()
        self.assertNotEqual(own, left)
        self.assertEqual(list(own.iterdir()), [])

    def test_curl(self):
        self.end_tools_of("FTP", "curl")

    def test_sftp_with_password(self):
        self.end_tools_of("SFTP", "expect", "sftp", "ssh")

    def test_sftp_with_keys(self):
        self.make_ssh_folder()
        self.end_tools_of("SFTP", "sftp", "ssh")

    def test_other_running_program_keeps_its_files(self):
        self.store_settings_for_silence(self.server, "FTP")
        self.begin_upload("curl")
        first = self.program
        # In another session of the same person's.
        other = self.start(environment={"DBUS_SESSION_BUS_ADDRESS": "unix:path=/not/there"})
        other.wait_for_line("No session bus")
        processes.wait_until(lambda: len(self.temporary_folders()) == 2, 10, "another folder")
        self.assertEqual(len(self.temporary_folders()), 2)
        self.assertIn("curl", self.tools().values())
        self.assertEqual(other.terminate(), 0)
        self.assertEqual(len(list(self.temporary_folders()[0].iterdir())), 1)
        self.assertEqual(first.terminate(), 0)


class NotificationServiceTest(QuitCase):
    """The last notification, whatever its service does."""

    server_kind = "silent"
    server_options = {}

    def test_notification_service_that_was_started_again(self):
        self.store_settings_for_silence(self.server, "FTP")
        self.begin_upload("curl")
        self.desktop.stop_notification_daemon()
        self.desktop.start_notification_daemon()
        self.desktop.bus.wait_for_owner("org.freedesktop.Notifications")
        self.assertEqual(self.quit("menu"), 0)
        self.assertEqual(self.titles(), [BEGUN, FAILED])

    def test_notification_service_that_hangs(self):
        self.store_settings_for_silence(self.server, "FTP")
        self.begin_upload("curl")
        self.desktop.pause_notification_daemon()
        begun = time.monotonic()
        self.assertEqual(self.quit(signal.SIGTERM), 0)
        self.assertLess(time.monotonic() - begun, SECONDS_TO_QUIT)
        self.assertEqual(self.titles(), [BEGUN, FAILED])


if __name__ == "__main__":
    unittest.main()
