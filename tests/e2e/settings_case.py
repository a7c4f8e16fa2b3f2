"""What tests of the settings window have in common."""

from rig import processes
from settings_window import SettingsWindow
from upload_case import UploadCase


class SettingsCase(UploadCase):
    """The desktop has a bus for screen readers, through which the tests read the window."""

    desktop_options = {"accessibility": True}

    def open_window(self, program):
        """Opens the settings window from the tray."""
        return SettingsWindow(self.desktop, program)

    def tools(self, program):
        """The processes that the program has started."""
        return processes.descendants(program.pid)
