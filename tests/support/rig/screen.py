"""The screen, mouse, keyboard and clipboard of a private X display."""

import ctypes
import os
import re
import subprocess

from rig import dunst, lxqt_panel, processes

_x11 = ctypes.CDLL("libX11.so.6")
_x11.XOpenDisplay.restype = ctypes.c_void_p
_x11.XInternAtom.restype = ctypes.c_ulong
_x11.XInternAtom.argtypes = ctypes.c_void_p, ctypes.c_char_p, ctypes.c_int
_x11.XGetSelectionOwner.restype = ctypes.c_ulong
_x11.XGetSelectionOwner.argtypes = ctypes.c_void_p, ctypes.c_ulong
_x11.XCloseDisplay.argtypes = (ctypes.c_void_p,)


def selection_owner(display, name):
    """The window that owns an X selection; 0 when none does."""
    connection = _x11.XOpenDisplay(display.encode())
    owner = _x11.XGetSelectionOwner(connection, _x11.XInternAtom(connection, name.encode(), 0))
    _x11.XCloseDisplay(connection)
    return owner


class Screen:
    """An X server of our own: Xvfb, or Xephyr in a window on another display."""

    def __init__(self, household, size, window_on=None):
        self._household = household
        self.size = size
        reader, writer = os.pipe()
        if window_on is None:
            command = ["Xvfb", "-screen", "0", f"{size}x24"]
            display = {}
        else:
            command = ["Xephyr", "-screen", size, "-title", "Tessery's private desktop"]
            display = window_on
        household.start([*command, "-displayfd", str(writer), "-nolisten", "tcp", "-noreset",
                         "+extension", "XTEST"], display, pass_fds=(writer,))
        os.close(writer)
        with os.fdopen(reader) as stream:
            number = stream.readline().strip()
        if not number:
            raise RuntimeError("the X server did not start")
        self.display = f":{number}"
        household.environment["DISPLAY"] = self.display

    def close(self):
        """Closes what is our own, of which there is nothing."""

    def run(self, *command, **more):
        """Runs an X client to its end and returns its output."""
        return subprocess.run([str(part) for part in command], env=self._household.environment,
                              check=True, stdout=subprocess.PIPE, text=True, **more).stdout

    def start_window_manager(self):
        """Starts openbox and paints the background."""
        self._household.start(["openbox", "--sm-disable"])
        self.run("xsetroot", "-solid", "#4a6984")

    def wait_until_ready(self):
        """Waits until the window manager is in charge."""
        processes.wait_until(
            lambda: "window id" in self.run("xprop", "-root", "_NET_SUPPORTING_WM_CHECK"), 10,
            "a window manager")

    def start_panel(self, surroundings):
        """Starts a panel that holds nothing but the tray, at its right end."""
        return lxqt_panel.start(self._household, surroundings)

    def start_notification_daemon(self, surroundings):
        """Starts the service that shows notifications."""
        return dunst.start(self._household, surroundings)

    def start_xembed_tray(self):
        """Starts a tray of the old kind at the bottom right and waits until it is in charge."""
        process = self._household.start(
            ["trayer", "--edge", "bottom", "--align", "right", "--widthtype", "request",
             "--height", str(lxqt_panel.SIZE), "--transparent", "false"])
        processes.wait_until(self._has_xembed_tray, 10, "an XEmbed tray")
        return process

    def _has_xembed_tray(self):
        return selection_owner(self.display, "_NET_SYSTEM_TRAY_S0") != 0

    def click(self, x, y, button=1):
        """Clicks with the real mouse pointer."""
        self.run("xdotool", "mousemove", x, y, "click", button)

    def click_tray(self, button=3):
        """Clicks on the rightmost tray icon, which is ours when there is one only."""
        width, height = (int(part) for part in self.size.split("x"))
        self.click(width - lxqt_panel.SIZE // 2, height - lxqt_panel.SIZE // 2, button)

    def popups(self):
        """The visible windows that bypass the window manager, such as menus: id -> geometry."""
        found = {}
        for line in self.run("xwininfo", "-root", "-children").splitlines():
            words = line.split()
            if words and words[0].startswith("0x"):
                facts = self.facts(words[0])
                if "IsViewable" in facts and "Override Redirect State: yes" in facts:
                    found[words[0]] = facts
        return found

    def facts(self, window):
        """What xwininfo tells of a window; nothing when it has just gone."""
        return subprocess.run(["xwininfo", "-id", window], env=self._household.environment,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                              check=False).stdout

    def open_tray_menu(self, seconds=5):
        """Opens the menu of the rightmost tray icon with the mouse.

        Returns where it is: left, top, width, height."""
        before = set(self.popups())
        self.click_tray()
        window, = processes.wait_until(lambda: set(self.popups()) - before, seconds,
                                       "the menu of the tray icon", interval=0.02)
        return self.geometry(window)

    def geometry(self, window):
        """Where a window is: left, top, width, height."""
        facts = self.facts(window)
        return [int(re.search(rf"{key}:\s+(-?\d+)", facts)[1])
                for key in ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height")]

    def close_menu(self, seconds=5):
        """Closes the open menu with the Escape key."""
        before = set(self.popups())
        self.key("Escape")
        processes.wait_until(lambda: before - set(self.popups()), seconds,
                             "the menu is closed", interval=0.02)

    def key(self, *keys):
        """Presses and releases keys, named as xdotool names them."""
        self.run("xdotool", "key", *keys)

    def type(self, text):
        """Types text."""
        self.run("xdotool", "type", "--delay", "1", text)

    def windows(self, title):
        """The ids of the visible windows with exactly this title, but for the program's name."""
        result = subprocess.run(
            ["xdotool", "search", "--onlyvisible", "--name", f"^{re.escape(title)}$"],
            env=self._household.environment, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
            text=True, check=False)
        return result.stdout.split()

    def wait_for_window(self, title, seconds=10):
        """Waits until a window of this title is visible and has the keyboard; gives its id."""
        window, = processes.wait_until(
            lambda: self.windows(title), seconds,
            lambda: f"window {title!r} in {self.run('xwininfo', '-root', '-tree')}")
        self.run("xdotool", "windowfocus", "--sync", window)
        return window

    def picture(self, path):
        """Saves what is on the screen; the file's ending says in which format."""
        self.run("import", "-window", "root", path)

    def still_picture(self, path, seconds=5):
        """Saves what is on the screen as soon as nothing moves any more."""
        pictures = [b"one", b"two"]

        def still():
            self.picture(path)
            pictures.append(path.read_bytes())
            return pictures[-1] == pictures[-2]

        processes.wait_until(still, seconds, "a still picture", interval=0.05)

    def clipboard(self, target="UTF8_STRING"):
        """The clipboard as text; None when nobody owns it or it holds no text."""
        result = subprocess.run(["xclip", "-selection", "clipboard", "-o", "-t", target],
                                env=self._household.environment, stdout=subprocess.PIPE,
                                stderr=subprocess.DEVNULL, timeout=10, check=False)
        return result.stdout.decode() if result.returncode == 0 else None

    def set_clipboard(self, data, target="UTF8_STRING"):
        """Another program puts text, or bytes of another kind, on the clipboard."""
        data = data.encode() if isinstance(data, str) else data
        process = self._household.start(
            ["xclip", "-quiet", "-selection", "clipboard", "-i", "-t", target],
            stdin=subprocess.PIPE)
        process.stdin.write(data)
        process.stdin.close()
        processes.wait_until(lambda: self._clipboard_bytes(target) == data, 5, "the clipboard")

    def _clipboard_bytes(self, target):
        return subprocess.run(["xclip", "-selection", "clipboard", "-o", "-t", target],
                              env=self._household.environment, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, timeout=10, check=False).stdout
