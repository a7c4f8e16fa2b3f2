#!/usr/bin/python3
"""An owner of an X selection that tells on standard output what it is asked for, line by line.

    clipboard_owner.py [--selection NAME] [--silent TARGET]... [--break-off TARGET] [FORM=FILE]...

It offers the content of each FILE as FORM. About a target named by `--silent` it never says a word;
in the middle of its answer about that named by `--break-off` it vanishes. The first line says that
it owns the selection."""

import argparse
import pathlib
import sys

from Xlib import X, Xatom
from Xlib.display import Display
from Xlib.protocol import event as events

PIECE = 100_000


class Owner:
    """Owns the selection on a connection of its own."""

    def __init__(self, options):
        self._options = options
        self._display = Display()
        self._window = self._display.screen().root.create_window(0, 0, 1, 1, 0, 0)
        self._forms = {self._atom(form): pathlib.Path(path).read_bytes()
                       for form, path in (one.rsplit("=", 1) for one in options.forms)}
        selection = self._atom(options.selection)
        self._window.set_selection_owner(selection, X.CurrentTime)
        if self._display.get_selection_owner(selection) != self._window:
            raise RuntimeError("the selection was not given to us")

    def run(self):
        """Answers until it is ended, loses the selection or breaks off."""
        tell("owner")
        while (event := self._display.next_event()).type != X.SelectionClear:
            if event.type == X.SelectionRequest:
                self._answer(event)

    def _atom(self, name):
        return self._display.intern_atom(name)

    def _answer(self, request):
        target = self._display.get_atom_name(request.target)
        tell(target)
        if target in self._options.silent:
            return
        if target == self._options.break_off:
            self._begin(request)
            sys.exit()
        if target == "TARGETS":
            offered = [request.target, *self._forms]
            offered += [self._atom(name) for name in self._options.silent if name != "TARGETS"]
            offered += [self._atom(self._options.break_off)] if self._options.break_off else []
            request.requestor.change_property(request.property, Xatom.ATOM, 32, offered)
        elif request.target in self._forms:
            request.requestor.change_property(request.property, request.target, 8,
                                              self._forms[request.target])
        else:
            request.property = X.NONE
        self._notify(request)

    def _begin(self, request):
        """Announces many pieces and gives one of them."""
        request.requestor.change_attributes(event_mask=X.PropertyChangeMask)
        request.requestor.change_property(request.property, self._atom("INCR"), 32, [10 * PIECE])
        self._notify(request)
        self._wait_until_taken(request.property)
        request.requestor.change_property(request.property, request.target, 8, b"x" * PIECE)
        self._wait_until_taken(request.property)

    def _wait_until_taken(self, name):
        while True:
            event = self._display.next_event()
            if (event.type == X.PropertyNotify and event.atom == name
                    and event.state == X.PropertyDelete):
                return

    def _notify(self, request):
        request.requestor.send_event(events.SelectionNotify(
            time=request.time, requestor=request.requestor, selection=request.selection,
            target=request.target, property=request.property))
        self._display.flush()


def tell(line):
    """Writes a line at once."""
    print(line, flush=True)


def main():
    """Owns what the command line says."""
    parser = argparse.ArgumentParser()
    parser.add_argument("--selection", default="CLIPBOARD")
    parser.add_argument("--silent", action="append", default=[])
    parser.add_argument("--break-off")
    parser.add_argument("forms", nargs="*")
    Owner(parser.parse_args()).run()


if __name__ == "__main__":
    main()
