#!/usr/bin/python3
"""A window with a line of text in it, which is printed whenever it changes."""

import gi

gi.require_version("Gtk", "3.0")
from gi.repository import Gtk  # pylint: disable=wrong-import-position


def main():
    """Runs until it is ended."""
    window = Gtk.Window(title="Entry")
    entry = Gtk.Entry()
    entry.connect("changed", lambda _: print(repr(entry.get_text()), flush=True))
    window.add(entry)
    window.show_all()
    Gtk.main()


if __name__ == "__main__":
    main()
