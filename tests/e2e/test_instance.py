"""One program in a session: what becomes of further starts."""

import os
import signal
import time
import unittest

from gi.repository import GLib

from desktop_case import PROGRAM
from instance_case import INTERFACE, NAME, PATH, SETTINGS, InstanceCase
from rig import processes, tray

AT_ONCE = 10
# In seconds: how long a further start waits for an answer.
PATIENCE = 10


class SecondStartTest(InstanceCase):
    """A panel shows the tray item of the first one."""

    def setUp(self):
        super().setUp()
        self.program = self.start()
        self.desktop.tray_item(self.program)

    def wait_until_active(self, title):
        """Waits until the window has the keyboard."""
        processes.wait_until(lambda: self.active_window() == title, 10, f"{title!r} is active")

    def test_opens_the_settings_of_the_first(self):
        self.hand_over()
        self.desktop.screen.wait_for_window(SETTINGS)
        self.hand_over()
        self.assertEqual(len(self.desktop.screen.windows(SETTINGS)), 1)
        self.assertEqual(len(tray.items(self.desktop.bus)), 1)
        self.assertEqual(len(self.temporary_folders()), 1)

    def test_window_that_is_minimised_or_covered_comes_back(self):
        self.hand_over()
        screen = self.desktop.screen
        window = screen.wait_for_window(SETTINGS)
        screen.run("xdotool", "windowminimize", window)
        processes.wait_until(lambda: not screen.windows(SETTINGS), 5, "it is minimised")
        self.hand_over()
        self.wait_until_active(SETTINGS)
        self.desktop.household.start(["xmessage", "in front"])
        processes.wait_until(lambda: screen.windows("xmessage"), 10, "another window")
        self.hand_over(environment={"DESKTOP_STARTUP_ID": f"test_TIME{self.server_time()}"})
        self.wait_until_active(SETTINGS)

    def server_time(self):
        """Now, in the display's milliseconds; its clock is that of the machine."""
        return int(time.monotonic() * 1000) & 0xffffffff

    def test_needs_no_display(self):
        self.hand_over(environment={"DISPLAY": ":not-there"})
        self.desktop.screen.wait_for_window(SETTINGS)

    def test_is_done_quickly(self):
        begun = time.monotonic()
        self.hand_over()
        self.assertLess(time.monotonic() - begun, 3)

    def test_one_that_hangs_is_told_after_a_while(self):
        self.program.send_signal(signal.SIGSTOP)
        begun = time.monotonic()
        status, output, errors = self.run_to_end()
        self.assertEqual((status, output), (1, []))
        self.assertEqual(errors, ["tessery: Tessery runs already, but does not answer"])
        self.assertLess(time.monotonic() - begun, PATIENCE + 5)
        self.program.send_signal(signal.SIGCONT)

    def test_one_that_was_killed_is_replaced(self):
        self.program.send_signal(signal.SIGKILL)
        self.assertEqual(self.program.wait(), -signal.SIGKILL)
        for folder in self.temporary_folders():
            folder.rmdir()
        self.desktop.tray_item(self.start())


class ManyStartsTest(InstanceCase):
    """Nothing runs yet."""

    def test_of_many_at_once_one_stays(self):
        started = [self.desktop.start_program(PROGRAM) for _ in range(AT_ONCE)]
        processes.wait_until(lambda: sum(program.is_running() for program in started) == 1, 30,
                             "only one runs")
        stays, = [program for program in started if program.is_running()]
        self.programs.append(stays)
        for program in started:
            if program is not stays:
                self.assertEqual((program.wait(), program.output.all, program.errors.all),
                                 (0, [], []))
        self.assertEqual(self.desktop.bus.process_of(NAME), stays.pid)
        self.desktop.tray_item(stays)
        self.assertEqual(len(tray.items(self.desktop.bus)), 1)
        self.assertEqual(len(self.temporary_folders()), 1)

    def test_without_a_bus_each_runs_for_itself(self):
        alone = {"DBUS_SESSION_BUS_ADDRESS": "unix:path=/not/there"}
        for count in (1, 2):
            program = self.start(environment=alone)
            program.wait_for_line(
                "⚠️ No session bus: further starts of Tessery will not find this one")
            processes.wait_until(lambda: len(self.temporary_folders()) == count, 10, "it runs")
        self.hand_over("quit", environment=alone)

    def test_name_that_another_program_has(self):
        connection = self.desktop.bus.connection
        self.desktop.bus.daemon("RequestName", "(su)", NAME, 0)
        status, output, errors = self.run_to_end()
        self.assertEqual((status, output), (1, []))
        self.assertEqual(len(errors), 1)
        self.assertTrue(errors[0].startswith("tessery: The running Tessery does not understand"))
        self.assertFalse(connection.is_closed())


class QuittingTest(InstanceCase):
    """The first one has an upload under way; ending takes it a while."""

    server_kind = "silent"
    server_options = {}

    def begin_upload(self, **environment):
        """Starts the program and an upload, whose tool does not even end when it is told to."""
        self.store_settings_for_silence(self.server, "FTP")
        self.desktop.screen.set_clipboard("some text")
        program = self.start(environment=environment)
        self.desktop.tray_item(program)
        self.hand_over("upload-clipboard")
        tool, = processes.wait_until(lambda: self.tools(program), 10, "the tool runs")
        os.kill(tool, signal.SIGSTOP)
        return program

    def tools(self, program):
        """The process ids of the program's tools."""
        return [pid for pid in processes.descendants(program.pid)
                if "curl" in processes.command_line(pid)]

    def test_next_start_waits_and_takes_its_place(self):
        first = self.begin_upload()
        self.hand_over("quit")
        self.assertTrue(first.is_running())
        second = self.start()
        processes.wait_until(lambda: second.output.all or not first.is_running(), 10, "the turn")
        self.assertEqual(self.tools(first), [], "they do not work side by side")
        self.assertEqual(first.wait(), 0)
        self.desktop.tray_item(second)
        self.assertEqual(self.desktop.bus.process_of(NAME), second.pid)

    def test_quit_that_comes_too_late_has_nothing_to_do(self):
        first = self.begin_upload()
        first.send_signal(signal.SIGTERM)
        self.hand_over("quit")
        self.assertEqual(first.wait(), 0)

    def test_tools_inherit_nothing_of_the_start(self):
        program = self.begin_upload(
            XDG_ACTIVATION_TOKEN="token", DESKTOP_STARTUP_ID="id_TIME1",
            DBUS_STARTER_ADDRESS="unix:path=/x", DBUS_STARTER_BUS_TYPE="session")
        tool, = self.tools(program)
        with open(f"/proc/{tool}/environ", encoding="utf-8") as file:
            names = {variable.partition("=")[0] for variable in file.read().split("\0")}
        self.assertIn("HOME", names)
        self.assertEqual(names & {"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID",
                                  "DBUS_STARTER_ADDRESS", "DBUS_STARTER_BUS_TYPE"}, set())


class StartedByTheBusTest(InstanceCase):
    """A desktop starts the program by calling its name."""

    desktop_options = {"tray": None}

    def setUp(self):
        super().setUp()
        base = self.desktop.surroundings.base
        self.log = base / "started.log"
        starter = base / "starter"
        starter.write_text(f"#!/bin/sh\nexec '{PROGRAM}' > '{self.log}' 2>&1\n")
        starter.chmod(0o700)
        self.desktop.bus.add_service(NAME, starter,
                                     self.desktop.surroundings.program_environment())

    def tearDown(self):
        # It is no child of ours.
        self.hand_over("quit")
        processes.wait_until(lambda: not self.desktop.bus.has_owner(NAME), 10, "it has ended")
        super().tearDown()

    def start_by_calling(self, method, signature, *arguments):
        """Calls the name, which nobody has yet."""
        self.desktop.bus.connection.call_sync(NAME, PATH, INTERFACE, method,
                                              GLib.Variant(signature, arguments), None, 0, 20000,
                                              None)

    def test_being_started_opens_no_window(self):
        self.start_by_calling("Activate", "(a{sv})", {})
        self.assert_no_window_for(1)
        self.call("Activate", "(a{sv})", {})
        self.desktop.screen.wait_for_window("Screenshot Uploader")

    def test_desktop_stops_showing_that_something_starts(self):
        ear = self.desktop.start_program("/usr/bin/xev", "-root", "-event", "property")
        processes.wait_until(lambda: self.is_heard(ear), 10, "it listens")
        self.start_by_calling("Activate", "(a{sv})",
                              {"desktop-startup-id": GLib.Variant("s", "launcher_TIME1")})
        processes.wait_until(lambda: self.has_ended_a_start(ear), 10, "the end of the start")
        ear.terminate()

    def is_heard(self, ear):
        """Whether a change on the display is."""
        self.desktop.screen.run("xprop", "-root", "-f", "TEST", "8s", "-set", "TEST", "x")
        return any("(TEST)" in line for line in ear.output.all)

    @staticmethod
    def has_ended_a_start(ear):
        """Whether the display was told so."""
        return any("(_NET_STARTUP_INFO_BEGIN)" in line for line in ear.output.all)

    def test_started_without_a_reason_the_first_request_counts(self):
        self.desktop.bus.daemon("StartServiceByName", "(su)", NAME, 0)
        processes.wait_until(lambda: "permission" in self.log.read_text(), 10, "it is ready")
        self.call("Activate", "(a{sv})", {})
        self.desktop.screen.wait_for_window("Screenshot Uploader")

    def test_action_that_starts_it_is_done(self):
        self.start_by_calling("ActivateAction", "(sava{sv})", "settings", [], {})
        self.desktop.screen.wait_for_window(SETTINGS)


if __name__ == "__main__":
    unittest.main()
