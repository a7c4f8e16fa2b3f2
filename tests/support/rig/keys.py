"""Keys pressed by their place on the keyboard, whatever the layout makes of them."""

import ctypes

# The numbers that X gives to the places of a US keyboard.
U, DIGIT_1, SPACE, MENU = 30, 10, 65, 135
LEFT_SUPER, LEFT_SHIFT, LEFT_ALT, LEFT_CONTROL = 133, 50, 64, 37
RIGHT_SUPER, RIGHT_SHIFT = 134, 62
CAPS_LOCK, NUM_LOCK = 66, 77

_ANY_MODIFIER = 1 << 15
_ASYNCHRONOUS = 1

_x11 = ctypes.CDLL("libX11.so.6")
_xtst = ctypes.CDLL("libXtst.so.6")
_x11.XOpenDisplay.restype = ctypes.c_void_p
_x11.XDefaultRootWindow.restype = ctypes.c_ulong
_x11.XDefaultRootWindow.argtypes = (ctypes.c_void_p,)
_x11.XSync.argtypes = ctypes.c_void_p, ctypes.c_int
_x11.XCloseDisplay.argtypes = (ctypes.c_void_p,)
_x11.XGrabKey.argtypes = (ctypes.c_void_p, ctypes.c_int, ctypes.c_uint, ctypes.c_ulong,
                          ctypes.c_int, ctypes.c_int, ctypes.c_int)
_xtst.XTestFakeKeyEvent.argtypes = ctypes.c_void_p, ctypes.c_uint, ctypes.c_int, ctypes.c_ulong


class Keys:
    """The keys of a display, and a program that can hold some of them for itself.

    When a call returns, the display has dealt with the keys."""

    def __init__(self, display):
        self._display = _x11.XOpenDisplay(display.encode())

    def __enter__(self):
        return self

    def __exit__(self, *_):
        _x11.XCloseDisplay(self._display)

    def press(self, key):
        """Presses a key and keeps it down."""
        self._fake(key, 1)

    def release(self, key):
        """Lets a key go."""
        self._fake(key, 0)

    def tap(self, key, *held):
        """Presses and releases a key while others are held."""
        for other in held:
            self.press(other)
        self.press(key)
        self.release(key)
        for other in reversed(held):
            self.release(other)

    def grab(self, key):
        """Takes a key with all modifiers away from every other program."""
        _x11.XGrabKey(self._display, key, _ANY_MODIFIER, _x11.XDefaultRootWindow(self._display), 0,
                      _ASYNCHRONOUS, _ASYNCHRONOUS)
        _x11.XSync(self._display, 0)

    def _fake(self, key, is_press):
        _xtst.XTestFakeKeyEvent(self._display, key, is_press, 0)
        _x11.XSync(self._display, 0)
