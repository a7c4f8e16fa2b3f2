"""What tests of further starts have in common."""

import time

from desktop_case import PROGRAM
from upload_case import UploadCase

NAME = "org.tessery.Tessery"
PATH = "/org/tessery/Tessery"
INTERFACE = "org.freedesktop.Application"
MENU = "Screenshot Uploader"
SETTINGS = "Settings"
NO_TRAY = "⚠️ No tray to show the menu in: start Tessery again to see it in a window"


class InstanceCase(UploadCase):
    """Starts the program more than once in one session."""

    def run_to_end(self, *arguments, seconds=20, **options):
        """Starts the program and waits until it ends by itself; gives status, output, errors."""
        program = self.desktop.start_program(PROGRAM, *arguments, **options)
        status = program.wait(seconds)
        return status, program.output.all, program.errors.all

    def hand_over(self, *arguments, **options):
        """Starts the program once more, which must end well and silently."""
        self.assertEqual(self.run_to_end(*arguments, **options), (0, [], []))

    def call(self, method, signature, *arguments):
        """Asks the running program over the bus."""
        return self.desktop.bus.call(NAME, PATH, INTERFACE, method, signature, *arguments)

    def act(self, action):
        """Asks the running program for an action over the bus."""
        self.call("ActivateAction", "(sava{sv})", action, [], {})

    def active_window(self):
        """The title of the window with the keyboard, without the program's name."""
        screen = self.desktop.screen
        window = screen.run("xdotool", "getactivewindow").strip()
        return screen.run("xdotool", "getwindowname", window).strip().split(" — ")[0]

    def assert_no_window_for(self, seconds):
        """Fails if a window comes up within so many seconds."""
        end = time.monotonic() + seconds
        while time.monotonic() < end:  # Nothing may happen.
            for title in (MENU, SETTINGS):
                self.assertEqual(self.desktop.screen.windows(title), [])
            time.sleep(0.1)
