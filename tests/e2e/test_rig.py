"""The rig itself: what a program leaves behind is found, and what a desktop or server made goes."""

import os
import unittest

from desktop import Desktop
from rig import processes
from servers import Server

STAY = "exec tail -f /dev/null </dev/null >/dev/null 2>&1"


class LeftoversTest(unittest.TestCase):
    """`assert_clean()` must be able to fail."""

    def assert_found(self, script, text):
        """A program that runs `script` is found to have left `text` behind."""
        with Desktop(tray=None, notifications=False, keyring=None) as desktop:
            desktop.assert_clean()
            program = desktop.start_program("/bin/sh", "-c", script)
            program.wait()
            with self.assertRaisesRegex(AssertionError, text):
                desktop.assert_clean()

    def test_process_is_found(self):
        self.assert_found(f"({STAY}) &", "tail -f")

    def test_temporary_file_is_found(self):
        self.assert_found('touch "$TMPDIR/left"', "tmp/left")

    def test_file_in_the_runtime_folder_is_found(self):
        self.assert_found('mkdir "$XDG_RUNTIME_DIR/left"', "run/left")


class EndTest(unittest.TestCase):
    """Everything ends with its owner."""

    def test_desktop_takes_its_processes_and_files_along(self):
        before = processes.children(os.getpid())
        with Desktop() as desktop:
            base = desktop.surroundings.base
            desktop.start_program("/bin/sh", "-c", f"({STAY}) & {STAY}")
            self.assertGreater(len(processes.descendants(os.getpid())), len(before) + 5)
        self.assertEqual(processes.children(os.getpid()), before)
        self.assertFalse(base.exists())

    def test_server_takes_its_processes_and_files_along(self):
        for kind in ("sshd", "proftpd-ftp", "asyncssh", "pyftpdlib", "silent"):
            with self.subTest(kind):
                with Server(kind) as server:
                    below = [server.pid, *processes.descendants(server.pid)]
                self.assertEqual([pid for pid in below if processes.command_line(pid)], [])
                if server.facts["root"]:
                    self.assertFalse(os.path.exists(server.root))


if __name__ == "__main__":
    unittest.main()
