"""The switch for starting at login, and a session that reads what it has written."""

import unittest

from rig import processes, tray
from settings_case import SettingsCase


class LaunchAtLoginTest(SettingsCase):
    """The session's reader of autostart entries is dex, a program of its own."""

    def setUp(self):
        super().setUp()
        self.folder = self.desktop.surroundings.config / "autostart"

    def log_in(self):
        """Starts what a session starts at login, and waits until all of it has been started."""
        reader = self.desktop.household.start(
            ["dex", "--autostart", "--environment", "LXQt", "--search-paths", self.folder],
            self.desktop.surroundings.program_environment())
        self.assertEqual(reader.wait(10), 0)

    def press_switch(self, program, was_on):
        """Opens the window, presses the switch and closes the window."""
        window = self.open_window(program)
        window.open_tab("General")
        switch = window.find("Launch at Login", "check box")
        self.assertEqual("checked" in switch.states, was_on)
        window.press("Launch at Login")
        processes.wait_until(lambda: ("checked" in switch.states) != was_on, 5, "it is switched")
        window.close()

    def wait_for_no_program(self):
        """Waits until no program is in the tray."""
        processes.wait_until(lambda: not tray.items(self.desktop.bus), 10, "an empty tray")

    def test_switched_on_and_off_again(self):
        program = self.start()
        self.press_switch(program, was_on=False)
        program.terminate()
        self.wait_for_no_program()

        self.log_in()
        (name, path), = processes.wait_until(lambda: tray.items(self.desktop.bus), 10,
                                             "the program is started")
        tray.TrayItem(self.desktop.bus, name, path).click("Quit")
        self.wait_for_no_program()

        program = self.start()
        self.press_switch(program, was_on=True)
        program.terminate()
        self.wait_for_no_program()
        self.assertEqual(list(self.folder.iterdir()), [])
        self.log_in()
        self.assertEqual(tray.items(self.desktop.bus), [])


if __name__ == "__main__":
    unittest.main()
