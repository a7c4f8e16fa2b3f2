"""A keyboard layout: which keys make which character, and what the modifiers then are."""

import ctypes

# X and xkbcommon count the keys from here on; the kernel from zero.
FIRST = 8
_DEPRESSED, _LATCHED, _LOCKED = 1, 2, 4
_LAYOUT_EFFECTIVE = 1 << 7
_TEXT_V1 = 1
_SHIFT_LEVEL = 1

_xkb = ctypes.CDLL("libxkbcommon.so.0")
_libc = ctypes.CDLL(None)
for _function, _result, *_arguments in (
        (_xkb.xkb_context_new, "p", "i"),
        (_xkb.xkb_keymap_new_from_names, "p", "p", "p", "i"),
        (_xkb.xkb_keymap_get_as_string, "p", "p", "i"),
        (_xkb.xkb_keymap_min_keycode, "u", "p"), (_xkb.xkb_keymap_max_keycode, "u", "p"),
        (_xkb.xkb_keymap_key_get_syms_by_level, "i", "p", "u", "u", "u", "p"),
        (_xkb.xkb_state_new, "p", "p"),
        (_xkb.xkb_state_update_key, "i", "p", "u", "i"),
        (_xkb.xkb_state_serialize_mods, "u", "p", "i"),
        (_xkb.xkb_state_serialize_layout, "u", "p", "i"),
        (_xkb.xkb_keysym_from_name, "u", "s", "i"),
        (_xkb.xkb_utf32_to_keysym, "u", "u"),
        (_libc.free, None, "p")):
    _kinds = {"p": ctypes.c_void_p, "i": ctypes.c_int, "u": ctypes.c_uint32, "s": ctypes.c_char_p,
              None: None}
    _function.restype = _kinds[_result]
    _function.argtypes = [_kinds[letter] for letter in _arguments]


class _Names(ctypes.Structure):
    _fields_ = [(name, ctypes.c_char_p)
                for name in ("rules", "model", "layout", "variant", "options")]


class Keymap:
    """A layout of an ordinary keyboard, and which of its modifiers are in force."""

    def __init__(self, layout="us"):
        names = _Names(b"evdev", b"pc105", layout.encode(), None, None)
        self._keymap = _xkb.xkb_keymap_new_from_names(_xkb.xkb_context_new(0),
                                                      ctypes.byref(names), 0)
        if not self._keymap:
            raise LookupError(f"no keyboard layout {layout!r}")
        self._state = _xkb.xkb_state_new(self._keymap)
        self._keys = {}
        for key in range(_xkb.xkb_keymap_min_keycode(self._keymap),
                         _xkb.xkb_keymap_max_keycode(self._keymap) + 1):
            for level in (0, _SHIFT_LEVEL):
                for symbol in self._symbols(key, level):
                    self._keys.setdefault(symbol, (key - FIRST, level == _SHIFT_LEVEL))

    def _symbols(self, key, level):
        symbols = ctypes.POINTER(ctypes.c_uint32)()
        count = _xkb.xkb_keymap_key_get_syms_by_level(self._keymap, key, 0, level,
                                                      ctypes.byref(symbols))
        return symbols[:count]

    def text(self):
        """The layout as compositors take it."""
        pointer = _xkb.xkb_keymap_get_as_string(self._keymap, _TEXT_V1)
        text = ctypes.string_at(pointer)
        _libc.free(pointer)
        return text

    def key(self, name):
        """The key that has a symbol of this name, such as "Tab", on it without modifiers."""
        number, _ = self._keys[_xkb.xkb_keysym_from_name(name.encode(), 0)]
        return number

    def key_of_character(self, character):
        """The key that makes a character, and whether shift is held for it."""
        return self._keys[_xkb.xkb_utf32_to_keysym(ord(character))]

    def update(self, key, pressed):
        """Takes note of a key; gives the modifiers held, latched and locked, and the group."""
        _xkb.xkb_state_update_key(self._state, key + FIRST, 1 if pressed else 0)
        return (*(_xkb.xkb_state_serialize_mods(self._state, kind)
                  for kind in (_DEPRESSED, _LATCHED, _LOCKED)),
                _xkb.xkb_state_serialize_layout(self._state, _LAYOUT_EFFECTIVE))
