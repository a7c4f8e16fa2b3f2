"""sway without a screen: the compositor of the wlroots family."""

import json
import os
import socket
import struct

from rig import mako, processes, waybar
from rig.wayland_input import RIGHT_BUTTON, VirtualInput
from rig.wayland_screen import WaylandScreen

_CONFIG = """\
output * mode {size}
swaybg_command -
xwayland {xwayland}
font DejaVu Sans 10
{more}
"""
_MAGIC = b"i3-ipc"
_HEADER = "=6sII"
_RUN_COMMAND, _GET_TREE = 0, 4
# Where the pointer is in nobody's way.
_ASIDE = 1, 1


class Sway(WaylandScreen):
    """A running sway. `more` is added to its configuration."""

    session = {"XDG_CURRENT_DESKTOP": "sway"}

    def __init__(self, household, surroundings, _bus, size, xwayland, more):
        super().__init__(household, surroundings)
        if xwayland:
            household.let_go.add("Xwayland")
            more += f"\nexec {self.tell_display()}"
        config = surroundings.base / "sway.conf"
        config.write_text(_CONFIG.format(size=size, xwayland="enable" if xwayland else "disable",
                                         more=more))
        self._socket = surroundings.runtime / "sway"
        self._without_menu = None
        path = self.start_compositor(
            ["sway", "--config", config],
            {"WLR_BACKENDS": "headless", "WLR_RENDERER": "pixman", "WLR_LIBINPUT_NO_DEVICES": "1",
             "SWAYSOCK": str(self._socket)})
        processes.wait_until(self._answers, 20, "an answer of sway")
        if xwayland:
            self.note_display()
        self._size = [int(part) for part in size.split("x")]
        self.input = VirtualInput(path, self._size)
        # One that sway starts would be an orphan.
        household.start(["swaybg", "--color", "#4a6984"])

    def _answers(self):
        try:
            return self._ask(_GET_TREE)
        except OSError:
            return None

    def _ask(self, kind, text=""):
        """Sends one message to sway and returns its answer."""
        data = text.encode()
        with socket.socket(socket.AF_UNIX) as connection:
            connection.connect(os.fspath(self._socket))
            connection.sendall(struct.pack(_HEADER, _MAGIC, len(data), kind) + data)
            with connection.makefile("rb") as stream:
                _, length, _ = struct.unpack(_HEADER, stream.read(struct.calcsize(_HEADER)))
                return json.loads(stream.read(length))

    def command(self, text):
        """Runs a command of sway's."""
        for answer in self._ask(_RUN_COMMAND, text):
            if not answer["success"]:
                raise RuntimeError(f"sway refuses {text!r}: {answer}")

    def _nodes(self):
        waiting = [self._ask(_GET_TREE)]
        while waiting:
            node = waiting.pop()
            yield node
            waiting += node["nodes"] + node["floating_nodes"]

    def windows(self, title):
        """The ids of the windows with exactly this title, but for the program's name."""
        return [node["id"] for node in self._nodes()
                if node.get("pid") and self.is_title(node["name"] or "", title)]

    def facts(self, title):
        """What sway tells of the window of this title."""
        window, = self.windows(title)
        return next(node for node in self._nodes() if node["id"] == window)

    def _focus(self, window):
        self.command(f"[con_id={window}] focus")

    def close_window(self, title):
        """Closes the window of this title the way its frame does."""
        window, = self.windows(title)
        self.command(f"[con_id={window}] kill")

    def open_tray_menu(self, seconds=5):
        """Opens the menu of the rightmost tray icon with the mouse."""
        self.input.move(*_ASIDE)
        self._without_menu = self._still(seconds)
        x, y = (length - distance for length, distance in zip(self._size, waybar.ICON))
        self.input.move(x, y)
        before = self._look()
        self.input.click(x, y, RIGHT_BUTTON)
        processes.wait_until(lambda: self._look() != before, seconds, "the menu of the tray icon")

    def close_menu(self, seconds=5):
        """Closes the open menu with a click beside it."""
        self.input.click(*_ASIDE)
        processes.wait_until(lambda: self._look() == self._without_menu, seconds,
                             "the menu is closed")

    def start_panel(self, surroundings):
        """Starts a panel that holds nothing but the tray, at its right end."""
        return waybar.start(self._household, surroundings)

    def start_notification_daemon(self, surroundings):
        """Starts the service that shows notifications."""
        return mako.start(self._household, surroundings)
