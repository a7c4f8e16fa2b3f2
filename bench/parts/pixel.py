"""Pixels of a display, looked at as often as the display answers."""

import ctypes

_Z_PIXMAP = 2
_ALL_PLANES = ctypes.c_ulong(-1).value

_x11 = ctypes.CDLL("libX11.so.6")
_x11.XOpenDisplay.restype = ctypes.c_void_p
_x11.XDefaultRootWindow.restype = ctypes.c_ulong
_x11.XDefaultRootWindow.argtypes = (ctypes.c_void_p,)
_x11.XGetImage.restype = ctypes.c_void_p
_x11.XGetImage.argtypes = (ctypes.c_void_p, ctypes.c_ulong, ctypes.c_int, ctypes.c_int,
                           ctypes.c_uint, ctypes.c_uint, ctypes.c_ulong, ctypes.c_int)
_x11.XGetPixel.restype = ctypes.c_ulong
_x11.XGetPixel.argtypes = ctypes.c_void_p, ctypes.c_int, ctypes.c_int
_x11.XDestroyImage.argtypes = (ctypes.c_void_p,)


class Pixel:
    """The pixel at a place of the screen, or a row of them that begins there. Its connection lasts
    as long as the benchmark."""

    def __init__(self, display, left, top, width=1):
        self._place = left, top
        self._width = width
        self._display = _x11.XOpenDisplay(display.encode())
        self._root = _x11.XDefaultRootWindow(self._display)

    def colours(self):
        """What is seen there now."""
        image = _x11.XGetImage(self._display, self._root, *self._place, self._width, 1, _ALL_PLANES,
                               _Z_PIXMAP)
        colours = [_x11.XGetPixel(image, column, 0) for column in range(self._width)]
        _x11.XDestroyImage(image)
        return colours
