"""A private X11 desktop for tests and the demo.

    with Desktop() as desktop:
        desktop.keyring.store("secret")
        desktop.write_settings(hostname="127.0.0.1")
        program = desktop.start_program(path)
        desktop.tray_item(program).click("Start Monitoring")

Display, message bus, window manager, panel with tray, notification daemon, keyring, HOME and
temporary folders are its own; everything is ended and removed on leaving."""

import pathlib
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))

# pylint: disable=wrong-import-position
from rig.private_desktop import PrivateDesktop
from rig.screen import Screen


class Desktop(PrivateDesktop):
    """The private X11 desktop. Options beside those of every desktop:

    size       of the screen
    window_on  the environment of a display on which the desktop is to be seen in a window
    """

    session = {"XDG_SESSION_TYPE": "x11", "XDG_CURRENT_DESKTOP": "LXQt", "QT_QPA_PLATFORM": "xcb"}

    def __init__(self, size="1280x800", window_on=None, **options):
        super().__init__(**options)
        self._size = size
        self._window_on = window_on

    def _make_screen(self):
        screen = Screen(self.household, self._size, self._window_on)
        screen.start_window_manager()
        return screen
