"""Speaking to a Wayland compositor without a library: requests out, events in."""

import array
import os
import socket
import struct

from rig import processes

_DISPLAY = 1
_SYNC, _GET_REGISTRY = 0, 1
_ERROR = 0
_BIND = 0
_GLOBAL = 0


class Connection:
    """A conversation over a connected socket; `globals` maps interfaces to name and version.

    The arguments of requests are told by one letter each: u and i for numbers, f for fractions, s
    for texts, o for objects, n for a new object, h for a file descriptor."""

    def __init__(self, connected):
        self._socket = connected
        self._received = b""
        self._last = _DISPLAY
        self.globals = {}
        self._registry = self.request(_DISPLAY, _GET_REGISTRY, "n")
        self.roundtrip()

    @classmethod
    def to(cls, path):
        """A connection to the compositor that listens at a path."""
        connected = socket.socket(socket.AF_UNIX)
        connected.connect(os.fspath(path))
        return cls(connected)

    def close(self):
        """Ends the connection; what was made over it goes with it."""
        self._socket.close()

    def bind(self, interface, version):
        """A global object of the compositor, in at most this version."""
        def is_there():
            self.roundtrip()
            return interface in self.globals

        # Some come only a moment after the compositor can be spoken to.
        processes.wait_until(is_there, 10, f"{interface} of the compositor")
        name, offered = self.globals[interface]
        # The one new object whose kind the protocol does not know.
        return self.request(self._registry, _BIND, "usun", name, interface, min(version, offered))

    def request(self, target, number, letters="", *values):
        """Sends a request; gives the new object, if it makes one."""
        values = iter(values)
        new = None
        body = b""
        files = array.array("i")
        for letter in letters:
            if letter == "n":
                self._last += 1
                new = self._last
                body += struct.pack("=I", new)
            elif letter == "h":
                files.append(next(values))
            else:
                body += _packed(letter, next(values))
        ancillary = [(socket.SOL_SOCKET, socket.SCM_RIGHTS, files)] if files else []
        self._socket.sendmsg([struct.pack("=IHH", target, number, 8 + len(body)), body], ancillary)
        return new

    def roundtrip(self):
        """Waits until the compositor has dealt with all requests."""
        done = self.request(_DISPLAY, _SYNC, "n")
        while self._event()[0] != done:
            pass

    def _event(self):
        while len(self._received) < 8 or len(self._received) < self._size():
            data = self._socket.recv(65536)
            if not data:
                raise ConnectionError("the compositor has hung up")
            self._received += data
        size = self._size()
        source, number = struct.unpack("=IH", self._received[:6])
        body, self._received = self._received[8:size], self._received[size:]
        if (source, number) == (_DISPLAY, _ERROR):
            raise ConnectionError(f"the compositor refuses: {_text(body[8:])}")
        if (source, number) == (self._registry, _GLOBAL):
            interface = _text(body[4:])
            name, version = struct.unpack("=I", body[:4])[0], struct.unpack("=I", body[-4:])[0]
            self.globals[interface] = name, version
        return source, number

    def _size(self):
        return struct.unpack("=H", self._received[6:8])[0]


def _packed(letter, value):
    if letter == "s":
        data = value.encode() + b"\0"
        return struct.pack("=I", len(data)) + data + bytes(-len(data) % 4)
    if letter == "f":
        return struct.pack("=i", round(value * 256))
    return struct.pack("=i" if letter == "i" else "=I", value)


def _text(data):
    length, = struct.unpack("=I", data[:4])
    return data[4:4 + length - 1].decode()
