"""Keys and mouse of a Wayland compositor, by the protocols that it has for programs like ours."""

import os
import time

from rig.keymap import Keymap
from rig.wayland_wire import Connection

LEFT_BUTTON, RIGHT_BUTTON = 0x110, 0x111
_NAMES = {"super": "Super_L", "ctrl": "Control_L", "alt": "Alt_L", "shift": "Shift_L"}


class Input:
    """Keys by their names on a keyboard, and the mouse. When a call returns, the compositor has
    dealt with it.

    A kind of compositor says how one key, a place of the pointer and one button are sent, and how
    to wait until it has dealt with them."""

    def __init__(self, layout="us"):
        self.keymap = Keymap(layout)

    def _key(self, key, pressed):
        raise NotImplementedError

    def _place(self, x, y):
        raise NotImplementedError

    def _button(self, button, pressed):
        raise NotImplementedError

    def _settle(self):
        raise NotImplementedError

    def close(self):
        """Takes keys and mouse away."""

    def send_key(self, key, pressed):
        """Presses or releases one key, by the kernel's number."""
        self._key(key, pressed)
        self._settle()

    def tap(self, key, *held):
        """Presses and releases a key while others are held, without a pause in which it repeats."""
        for other in held:
            self._key(other, True)
        self._key(key, True)
        self._key(key, False)
        for other in reversed(held):
            self._key(other, False)
        self._settle()

    def key(self, combination):
        """Presses and releases keys, named as in "ctrl+Page_Down"."""
        *held, key = (self.keymap.key(_NAMES.get(name, name)) for name in combination.split("+"))
        self.tap(key, *held)

    def type(self, text):
        """Types text that the layout has keys for."""
        for character in text:
            key, shifted = self.keymap.key_of_character(character)
            self.tap(key, *([self.keymap.key("Shift_L")] if shifted else []))

    def move(self, x, y):
        """Moves the pointer to a place on the screen."""
        self._place(x, y)
        self._settle()

    def click(self, x, y, button=LEFT_BUTTON):
        """Clicks at a place on the screen."""
        self.move(x, y)
        self._button(button, True)
        self._button(button, False)
        self._settle()


class VirtualInput(Input):
    """Keyboard and mouse of our own in a compositor of the wlroots family."""

    def __init__(self, path, size, layout="us"):
        super().__init__(layout)
        self._size = size
        self._connection = Connection.to(path)
        seat = self._connection.bind("wl_seat", 1)
        keyboards = self._connection.bind("zwp_virtual_keyboard_manager_v1", 1)
        self._keyboard = self._connection.request(keyboards, 0, "on", seat)
        pointers = self._connection.bind("zwlr_virtual_pointer_manager_v1", 1)
        self._pointer = self._connection.request(pointers, 0, "on", seat)
        text = self.keymap.text() + b"\0"
        file = os.memfd_create("keymap")
        os.write(file, text)
        self._connection.request(self._keyboard, 0, "uhu", 1, file, len(text))
        self._connection.roundtrip()
        os.close(file)

    def close(self):
        self._connection.close()

    def _key(self, key, pressed):
        self._connection.request(self._keyboard, 1, "uuu", _now(), key, int(pressed))
        self._connection.request(self._keyboard, 2, "uuuu", *self.keymap.update(key, pressed))

    def _place(self, x, y):
        self._connection.request(self._pointer, 1, "uuuuu", _now(), int(x), int(y), *self._size)
        self._connection.request(self._pointer, 4)

    def _button(self, button, pressed):
        self._connection.request(self._pointer, 2, "uuu", _now(), button, int(pressed))
        self._connection.request(self._pointer, 4)

    def _settle(self):
        self._connection.roundtrip()


class FakeInput(Input):
    """Keyboard and mouse that kwin takes for its own; the layout is kwin's."""

    def __init__(self, connected, layout="us"):
        super().__init__(layout)
        self._connection = Connection(connected)
        self._input = self._connection.bind("org_kde_kwin_fake_input", 4)
        self._connection.request(self._input, 0, "ss", "tests", "keys")
        self._connection.roundtrip()

    def close(self):
        self._connection.close()

    def _key(self, key, pressed):
        self._connection.request(self._input, 10, "uu", key, int(pressed))

    def _place(self, x, y):
        self._connection.request(self._input, 9, "ff", x, y)

    def _button(self, button, pressed):
        self._connection.request(self._input, 2, "uu", button, int(pressed))

    def _settle(self):
        self._connection.roundtrip()


def _now():
    return int(time.monotonic() * 1000) & 0xFFFFFFFF
