"""mutter without a screen: the compositor of GNOME, in which X11 programs can be used too."""

import re
import subprocess

from gi.repository import Gio, GLib

from rig import dunst, lxqt_panel, processes
from rig.wayland_input import Input
from rig.wayland_screen import WaylandScreen

_NAME = "org.gnome.Mutter.RemoteDesktop"
_PATH = "/org/gnome/Mutter/RemoteDesktop"
_SESSION = "org.gnome.Mutter.RemoteDesktop.Session"
_DISPLAY = re.compile(r"Using public X11 display (:\d+)")


class RemoteInput(Input):
    """Keyboard and mouse of a remote person, without whom mutter has neither."""

    def __init__(self, bus, layout="us"):
        super().__init__(layout)
        self._bus = bus
        bus.wait_for_owner(_NAME, 20)
        self._session = bus.call(_NAME, _PATH, _NAME, "CreateSession")
        self._call("Start")
        # With the first key comes the keyboard.
        self.key("Shift_L")

    def _call(self, method, signature="()", *arguments):
        self._bus.call(_NAME, self._session, _SESSION, method, signature, *arguments)

    def _send(self, method, signature, *arguments):
        """A call whose answer is not waited for."""
        self._bus.connection.call(_NAME, self._session, _SESSION, method,
                                  GLib.Variant(signature, arguments), None,
                                  Gio.DBusCallFlags.NONE, -1, None, None)

    def _key(self, key, pressed):
        self._send("NotifyKeyboardKeycode", "(ub)", key, pressed)

    def _button(self, button, pressed):
        self._send("NotifyPointerButton", "(ib)", button, pressed)

    def _place(self, x, y):
        # From the corner, since a place needs a picture of the screen to be in.
        self._send("NotifyPointerMotionRelative", "(dd)", -10_000, -10_000)
        self._send("NotifyPointerMotionRelative", "(dd)", x, y)

    def _settle(self):
        self._bus.call(_NAME, _PATH, "org.freedesktop.DBus.Peer", "Ping")


class Mutter(WaylandScreen):
    """A running mutter. Its panel and its notification daemon are X11 programs, since it lets no
    Wayland program but GNOME's own show any; so they need `xwayland`."""

    session = {"XDG_CURRENT_DESKTOP": "GNOME"}

    def __init__(self, household, surroundings, bus, size, xwayland, _more):
        super().__init__(household, surroundings)
        self.start_compositor(["mutter", "--wayland", "--headless", "--virtual-monitor", size,
                               *([] if xwayland else ["--no-x11"])], {})
        if xwayland:
            self._note_x_display(surroundings)
        self.input = RemoteInput(bus)

    def _note_x_display(self, surroundings):
        """Tells every program of the X display."""
        display = processes.wait_until(lambda: _DISPLAY.search(self._household.log()), 20,
                                       "an X display of mutter")
        cookies, = surroundings.runtime.glob(".mutter-Xwaylandauth.*")
        self._household.environment.update({"DISPLAY": display[1], "XAUTHORITY": str(cookies)})

    def windows(self, title):
        """The ids of the visible windows of X11 programs with exactly this title, but for the
        program's name."""
        result = self._household.run(
            ["xdotool", "search", "--onlyvisible", "--name", f"^{re.escape(title)}( — |$)"],
            capture_output=True, text=True, check=False)
        return [window for window in result.stdout.split() if self._is_programs(window)]

    def _is_programs(self, window):
        """Not a frame: newer versions have a program draw those, in windows with the same titles.
        The manager of the windows notes its state in a program's own."""
        answer = self._household.run(["xprop", "-id", window, "WM_STATE"], check=False,
                                     capture_output=True, text=True)
        return "window state" in answer.stdout

    def _focus(self, window):
        self.run("xdotool", "windowactivate", "--sync", window)

    def _is_on_clipboard(self, data, target):
        # What asks as a Wayland program takes the keyboard, which the owner needs.
        target = "UTF8_STRING" if target.startswith("text/plain") else target
        result = self._household.run(["xclip", "-selection", "clipboard", "-o", "-t", target],
                                     check=False, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        return result.stdout == data

    def picture_of_window(self, title, path):
        """Saves what a window of an X11 program shows; mutter lets nobody look at the screen."""
        window, = self.windows(title)
        self.run("import", "-window", window, path)

    def picture(self, path):
        raise NotImplementedError("mutter lets nobody look at the screen")

    def start_panel(self, surroundings):
        """Starts a panel that holds nothing but the tray."""
        return lxqt_panel.start(self._household, surroundings)

    def start_notification_daemon(self, surroundings):
        """Starts the service that shows notifications."""
        return dunst.start(self._household, surroundings)
