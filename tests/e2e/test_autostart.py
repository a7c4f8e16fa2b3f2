"""Starting at login: the switch in the settings window, and the entry that it writes."""

import pathlib
import shutil
import unittest

from desktop_case import DesktopCase, PROGRAM
from rig import processes, tray

AWKWARD_FOLDER = 'my "apps" $HOME `x` 100%f \\ it\'s'


class AutostartTest(DesktopCase):
    """The program is started by a reader of autostart entries that is not ours."""

    def setUp(self):
        super().setUp()
        self.entry = (self.desktop.surroundings.config / "autostart"
                      / "org.tessery.Tessery.desktop")

    def start_from(self, path):
        """Starts the program that is at path."""
        program = self.desktop.start_program(path)
        self.programs.append(program)
        return program

    def press_switch(self, program):
        """Opens the settings window, if need be, and presses the switch with the keyboard."""
        screen = self.desktop.screen
        if not screen.windows("Settings"):
            self.desktop.tray_item(program).click("Settings...")
            screen.wait_for_window("Settings")
            screen.key("ctrl+Page_Up", "Tab")
        screen.key("space")

    def wait_for_entry(self, present):
        """Waits until the entry is there, or is not."""
        processes.wait_until(lambda: self.entry.exists() == present, 5, f"an entry: {present}")

    def log_in(self):
        """Starts what the entry says, as a session does, until it is seen in the tray."""
        self.desktop.household.start(["gio", "launch", self.entry])
        (name, path), = processes.wait_until(lambda: tray.items(self.desktop.bus), 10,
                                             "the program is started")
        return tray.TrayItem(self.desktop.bus, name, path)

    def test_switch_writes_an_entry_that_starts_the_program_and_takes_it_away(self):
        folder = self.desktop.surroundings.base / AWKWARD_FOLDER
        folder.mkdir()
        path = pathlib.Path(shutil.copy(PROGRAM, folder))
        program = self.start_from(path)
        self.press_switch(program)
        self.wait_for_entry(True)
        self.picture("settings-general-launch-at-login")
        program.terminate()
        processes.wait_until(lambda: not tray.items(self.desktop.bus), 5, "an empty tray")

        self.log_in().click("Quit")
        processes.wait_until(lambda: not self.desktop.household.orphans(), 10, "it has quit")

        program = self.start_from(path)
        self.press_switch(program)
        self.wait_for_entry(False)
        self.assertEqual([line for line in program.output.all if "launch at login" in line], [])

    def test_entry_follows_a_program_that_has_moved(self):
        self.entry.parent.mkdir()
        self.entry.write_text("[Desktop Entry]\nType=Application\nName=Mine\n"
                              "Exec=/not/there/tessery\n", encoding="utf-8")
        program = self.start()
        self.desktop.tray_item(program)
        self.assertIn(f"Exec={PROGRAM}\n", self.entry.read_text(encoding="utf-8"))
        self.assertIn("Name=Mine\n", self.entry.read_text(encoding="utf-8"))

    def test_folder_that_cannot_be_made_is_told_in_the_log(self):
        self.entry.parent.write_text("in the way", encoding="utf-8")
        program = self.start()
        self.press_switch(program)
        program.wait_for_line(f"Failed to enable launch at login: Could not create "
                              f"{self.entry.parent}: Not a directory")


if __name__ == "__main__":
    unittest.main()
