"""The rig itself: what a program leaves behind is found, and what a desktop or server made goes."""

import os
import pathlib
import time
import unittest
import unittest.mock

import rig
from desktop import Desktop
from rig import processes
from servers import Server
from wayland_desktop import WaylandDesktop

ENTRY = pathlib.Path(rig.__file__).parent / "gtk_entry.py"
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

    def test_wayland_desktops_take_their_processes_and_files_along(self):
        for compositor in ("sway", "kwin", "mutter"):
            with self.subTest(compositor):
                before = processes.children(os.getpid())
                with WaylandDesktop(compositor, xwayland=True) as desktop:
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


class ClockTest(unittest.TestCase):
    """The clock of the program under test, which may be set."""

    TIME = 1530000000

    def times(self, name, clock):
        """What time it is for a program of this name, and for one that it runs."""
        times = "import os, subprocess, time; print(int(time.time()), flush=True); " \
                "print(subprocess.run(['date', '+%s'], capture_output=True, text=True).stdout)"
        with (unittest.mock.patch.dict(os.environ, TESSERY_TEST_CLOCK=clock),
              Desktop(tray=None, notifications=False, keyring=None) as desktop):
            link = desktop.surroundings.base / name
            link.symlink_to("/usr/bin/python3")
            program = desktop.start_program(link, "-c", times)
            self.assertEqual(program.wait(), 0)
            return [int(line) for line in program.output.all if line]

    def assert_about(self, seconds, wanted):
        """Desktops take a while to start."""
        self.assertLess(abs(seconds - wanted), 60)

    def test_program_has_the_time_that_is_set(self):
        own, of_its_tool = self.times("tessery", str(self.TIME))
        self.assert_about(own, self.TIME)
        self.assert_about(of_its_tool, time.time())

    def test_others_have_the_time_that_it_is(self):
        for name, clock in ("other", str(self.TIME)), ("tessery", ""):
            with self.subTest(name):
                for seconds in self.times(name, clock):
                    self.assert_about(seconds, time.time())


class WaylandTest(unittest.TestCase):
    """What the tests on Wayland build upon."""

    def test_programs_run_as_an_ordinary_user(self):
        with WaylandDesktop(tray=None, notifications=False, keyring=None) as desktop:
            home = desktop.surroundings.home
            program = desktop.start_program("/bin/sh", "-c", "id -u; getent passwd $(id -u) | cut -d: -f6; pwd")
            self.assertEqual(program.wait(), 0)
            uid, folder, current = program.output.all
            self.assertNotEqual(uid, "0")
            self.assertEqual(current, os.getcwd())
            if os.geteuid() == 0:
                self.assertEqual(folder, str(home))

    def test_root_without_namespaces_is_told_why_there_is_no_desktop(self):
        desktop = WaylandDesktop()
        with (unittest.mock.patch("os.geteuid", lambda: 0),
              unittest.mock.patch("rig.place.namespaces_allowed", lambda: False)):
            with self.assertRaisesRegex(RuntimeError, "namespaces .* are forbidden here"):
                desktop.__enter__()
        self.assertFalse(desktop.surroundings.base.exists())

    def test_what_was_left_behind_is_found(self):
        with WaylandDesktop(tray=None, notifications=False, keyring=None) as desktop:
            desktop.assert_clean()
            desktop.start_program("/bin/sh", "-c", f"({STAY}) &").wait()
            with self.assertRaisesRegex(AssertionError, "tail -f"):
                desktop.assert_clean()

    def test_clipboard_goes_from_program_to_program(self):
        for compositor in ("sway", "kwin", "mutter"):
            with self.subTest(compositor), WaylandDesktop(compositor, xwayland=True) as desktop:
                desktop.screen.set_clipboard("Grüße")
                self.assertEqual(desktop.screen.clipboard(), "Grüße")

    def test_keys_are_those_of_a_keyboard(self):
        for compositor in ("sway", "kwin", "mutter"):
            with self.subTest(compositor), WaylandDesktop(compositor, xwayland=True) as desktop:
                # Of the windows on mutter only those of X11 programs can be told apart.
                self.assert_typed(desktop, "x11" if compositor == "mutter" else "wayland")

    def assert_typed(self, desktop, backend):
        """Text with capitals and keys with modifiers arrive, each once."""
        program = desktop.start_program("/usr/bin/python3", ENTRY,
                                        environment={"GDK_BACKEND": backend})
        desktop.screen.wait_for_window("Entry")
        desktop.screen.type("aabB (1)")
        program.wait_for_line("'aabB (1)'")
        desktop.screen.key("ctrl+a", "shift+Right", "BackSpace")
        program.wait_for_line("''")
        desktop.screen.type("z")
        program.wait_for_line("'z'")
        self.assertEqual(program.terminate(), -15)


if __name__ == "__main__":
    unittest.main()
