"""kwin without a screen: the compositor of KDE Plasma, with its own service for shortcuts."""

import os
import pathlib
import shutil
import subprocess
import time

from gi.repository import Gio, GLib

from rig import mako, member_socket, processes, waybar
from rig.wayland_input import FakeInput
from rig.wayland_screen import WaylandScreen

SHORTCUTS = "org.kde.kglobalaccel"
_KWIN = "org.kde.KWin"
_PROGRAM = "kwin_wayland"
_ENVIRONMENT = {
    # The plain way of drawing. With "O2" pictures can be taken, but without a graphics card that
    # keeps it busy for seconds when it starts.
    "KWIN_COMPOSE": "Q",
    "KWIN_WAYLAND_NO_PERMISSION_CHECKS": "1",
    "KWIN_SCREENSHOT_NO_PERMISSION_CHECKS": "1",
}
_SECONDS_OF_ONE_AT_EASE = 0.05


class Kwin(WaylandScreen):
    """A running kwin. `more` is its configuration. Pictures need KWIN_COMPOSE=O2 in the environment
    of the desktop."""

    session = {"XDG_CURRENT_DESKTOP": "KDE", "KDE_FULL_SESSION": "true", "KDE_SESSION_VERSION": "5"}

    def __init__(self, household, surroundings, bus, size, xwayland, more):
        super().__init__(household, surroundings)
        self._bus = bus
        width, height = size.split("x")
        (surroundings.config / "kwinrc").write_text(more)
        # The file itself has a capability that nobody can have here, and a plugin asks for its name.
        self._folder = surroundings.base / "bin"
        self._folder.mkdir()
        shutil.copyfile(shutil.which(_PROGRAM), self._folder / _PROGRAM)
        (self._folder / _PROGRAM).chmod(0o755)
        path = self.start_compositor(
            [self._folder / _PROGRAM, "--virtual", "--width", width, "--height", height,
             "--socket", "wayland-kwin", "--no-lockscreen",
             *(["--xwayland", self.tell_display()] if xwayland else [])],
            # Its own theme makes kwin 6 crash where Plasma is not installed.
            {**_ENVIRONMENT, **household.environment, "QT_QPA_PLATFORMTHEME": "generic"})
        if xwayland:
            self.note_display()
        with member_socket.connected(household, path) as connected:
            self.input = FakeInput(connected)
        bus.wait_for_owner(SHORTCUTS)

    def wait_until_ready(self):
        """Waits until kwin has drawn for the first time and answers at once."""
        def is_at_ease():
            begun = time.monotonic()
            self._bus.call(_KWIN, "/KWin", "org.freedesktop.DBus.Peer", "Ping", seconds=20)
            return time.monotonic() - begun < _SECONDS_OF_ONE_AT_EASE

        processes.wait_until(is_at_ease, 30, "kwin at ease", interval=0.2)

    def slimmed(self, program):
        """A copy of a program without what is for debugging.

        kwin reads all of a program's file, twice, whenever the program connects to it."""
        copy = self._folder / pathlib.Path(program).name
        if not copy.exists():
            subprocess.run(["strip", "--strip-debug", "-o", copy, program], check=True)
        return copy

    def _matches(self, title):
        found = self._bus.call(_KWIN, "/WindowsRunner", "org.kde.krunner1", "Match", "(s)", title)
        return [(match, caption) for match, caption, *_ in found or []]

    def windows(self, title):
        """The ids of the windows with exactly this title, but for the program's name."""
        return [match for match, caption in self._matches(title) if self.is_title(caption, title)]

    def _focus(self, window):
        self._bus.call(_KWIN, "/WindowsRunner", "org.kde.krunner1", "Run", "(ss)", window, "")

    def picture(self, path):
        """Saves what is on the screen."""
        reader, writer = os.pipe()
        files = Gio.UnixFDList.new()
        # Only the copy in the list is passed on and closed with it.
        arguments = GLib.Variant("(a{sv}h)", ({}, files.append(writer)))
        os.close(writer)
        answer, _ = self._bus.connection.call_with_unix_fd_list_sync(
            _KWIN, "/org/kde/KWin/ScreenShot2", "org.kde.KWin.ScreenShot2", "CaptureActiveScreen",
            arguments, None, Gio.DBusCallFlags.NONE, 5000, files, None)
        del files
        facts, = answer.unpack()
        with open(reader, "rb") as stream:
            pixels = stream.read(facts["stride"] * facts["height"])
        # Without the time, so that pictures of the same are the same.
        subprocess.run(["convert", "-size", f"{facts['width']}x{facts['height']}", "-depth", "8",
                        "bgra:-", "-alpha", "off", "-define", "png:exclude-chunks=date,time",
                        "-define", "png:compression-level=1", path], input=pixels, check=True)

    def start_panel(self, surroundings):
        """Starts a panel that holds nothing but the tray, at its right end."""
        return waybar.start(self._household, surroundings)

    def start_notification_daemon(self, surroundings):
        """Starts the service that shows notifications."""
        return mako.start(self._household, surroundings)
