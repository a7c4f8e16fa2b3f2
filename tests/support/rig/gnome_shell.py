"""GNOME as a person has it, without a screen: its shell, and its portal with the dialogs."""

import json

from gi.repository import GLib

from rig import processes
from rig.bus import write_config
from rig.mutter import Mutter, RemoteInput
from rig.wayland_screen import WaylandScreen

_SHELL = "org.gnome.Shell"
_SCREENSHOT = "org.gnome.Shell.Screenshot"
# On a busy machine it takes its time.
_SECONDS_TO_START = 120


class GnomeShell(Mutter):
    """A running shell, with the services that it and its portal need.

    It shows notifications itself, and has no tray."""

    session = {"XDG_CURRENT_DESKTOP": "GNOME", "GSETTINGS_BACKEND": "dconf"}
    # Everything else that a session starts is not needed and would cost time.
    _services = ("ca.desrt.dconf", "org.gnome.Shell.Notifications",
                 "org.freedesktop.portal.Desktop", "org.freedesktop.impl.portal.desktop.gnome",
                 "org.freedesktop.impl.portal.PermissionStore",
                 "org.gnome.Settings.GlobalShortcutsProvider")

    def __init__(self, household, surroundings, bus, size, xwayland, _more):
        WaylandScreen.__init__(self, household, surroundings)
        self._bus = bus
        bus.admit(*self._services)
        self._start_system_bus(surroundings)
        self._tell_services()
        # Unsafe is what lets us look at it and ask it about its windows.
        self.start_compositor(["gnome-shell", "--headless", "--wayland", "--virtual-monitor", size,
                               "--unsafe-mode", *([] if xwayland else ["--no-x11"])], {})
        self._wait_for("!Main.layoutManager._startingUp", "GNOME's shell")
        self._ask("St.Settings.get().inhibit_animations()")
        if xwayland:
            self._note_x_display(surroundings)
        self._tell_services()
        self.input = RemoteInput(bus)
        # It starts with the overview of windows and programs.
        self.key("Escape")
        self._wait_for("!Main.overview.visible", "an end of the overview")

    def _start_system_bus(self, surroundings):
        """The shell does not start without one."""
        config, socket = surroundings.base / "system-bus.conf", surroundings.runtime / "system-bus"
        write_config(config, socket)
        self._household.start(["dbus-daemon", f"--config-file={config}", "--nofork"])
        self._household.environment["DBUS_SYSTEM_BUS_ADDRESS"] = f"unix:path={socket}"
        processes.wait_until(socket.exists, 5, "a system bus")

    def _tell_services(self):
        """Gives what the bus starts from now on the environment of the desktop."""
        self._bus.daemon("UpdateActivationEnvironment", "(a{ss})", self._household.environment)

    def _ask(self, script):
        """The value of an expression within the shell; None while it does not answer."""
        try:
            done, answer = self._bus.call(_SHELL, "/org/gnome/Shell", _SHELL, "Eval", "(s)", script,
                                          seconds=30)
        except GLib.Error:
            return None
        return json.loads(answer) if done and answer else None

    def _wait_for(self, condition, what):
        processes.wait_until(lambda: self._ask(condition), _SECONDS_TO_START, what, interval=0.05)

    def windows(self, title):
        """The ids of the windows with exactly this title, but for the program's name."""
        found = self._ask("global.get_window_actors().map(actor => actor.meta_window)"
                          ".map(window => [window.get_id(), window.get_title()])")
        return [window for window, text in found or [] if self.is_title(text or "", title)]

    def _focus(self, window):
        chosen = ("global.get_window_actors().map(actor => actor.meta_window)"
                  f".find(window => window.get_id() == {window})")
        self._ask(f"{chosen}?.activate(0)")
        self._wait_for(f"{chosen}?.has_focus()", f"the keyboard in window {window}")

    def picture(self, path):
        """Saves what is on the screen."""
        self._bus.call(_SCREENSHOT, "/org/gnome/Shell/Screenshot", _SCREENSHOT, "Screenshot",
                       "(bbs)", False, False, str(path), seconds=30)

    def start_panel(self, surroundings):
        raise NotImplementedError("GNOME has no tray")

    def start_notification_daemon(self, surroundings):
        """The shell shows notifications itself."""
