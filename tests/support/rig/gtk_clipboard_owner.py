#!/usr/bin/python3
"""Copies the way programs of GNOME and Xfce do: gtk_clipboard_owner.py text|image FILE."""

import pathlib
import sys

import gi

gi.require_version("Gdk", "3.0")
gi.require_version("Gtk", "3.0")
# pylint: disable=wrong-import-position
from gi.repository import Gdk, GdkPixbuf, Gtk


def main():
    """Owns the clipboard until it is ended."""
    kind, path = sys.argv[1:]
    clipboard = Gtk.Clipboard.get(Gdk.SELECTION_CLIPBOARD)
    if kind == "text":
        # Without the translation of line ends.
        clipboard.set_text(pathlib.Path(path).read_bytes().decode(), -1)
    else:
        clipboard.set_image(GdkPixbuf.Pixbuf.new_from_file(path))
    Gtk.main()


if __name__ == "__main__":
    main()
