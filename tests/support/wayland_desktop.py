"""A private Wayland desktop for tests and the demo.

    with WaylandDesktop("sway") as desktop:
        program = desktop.start_program(path)
        desktop.tray_item(program).click("Start Monitoring")

It has what the private X11 desktop has and is used in the same way. Compositors refuse to run as
root: for root, all of the desktop and the programs in it run as an ordinary user of a namespace."""

import os
import pathlib
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))

# pylint: disable=wrong-import-position
from rig.gnome_shell import GnomeShell
from rig.kwin import Kwin
from rig.mutter import Mutter
from rig.ordinary_user import OrdinaryUser
from rig.private_desktop import PrivateDesktop
from rig.sway import Sway

_COMPOSITORS = {"sway": Sway, "kwin": Kwin, "mutter": Mutter, "gnome-shell": GnomeShell}


class WaylandDesktop(PrivateDesktop):
    """The private Wayland desktop. Options beside those of every desktop:

    compositor  "sway", "kwin", "mutter" or "gnome-shell"
    size        of the screen, in pixels
    xwayland    whether X11 programs can be used
    more        further lines of the compositor's configuration
    """

    def __init__(self, compositor="sway", size="1280x800", xwayland=False, more="", **options):
        self._compositor = _COMPOSITORS[compositor]
        self._screen_options = size, xwayland, more
        self.session = {"XDG_SESSION_TYPE": "wayland", **self._compositor.session}
        self._user = None
        super().__init__(**options)

    def _start(self):
        if os.geteuid() == 0:
            self._user = OrdinaryUser(self.surroundings)
        super()._start()

    def _admitted(self, command):
        return self._user.admitted(command) if self._user else command

    def close(self):
        super().close()
        if self._user:
            self._user.close()

    def _make_screen(self):
        return self._compositor(self.household, self.surroundings, self.bus, *self._screen_options)

    def start_program(self, path, *arguments, own_account=False, **options):
        """Starts a program under test, for which root has an account of its own anyway."""
        return super().start_program(path, *arguments,
                                     own_account=own_account and not self._user, **options)
