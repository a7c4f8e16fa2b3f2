#!/usr/bin/python3
"""Connects to a socket as a member of a household and hands the connection over: kwin looks at the
program that connects, and cannot look at one of another account.

member_socket.py PATH: standard input is the socket over which it is handed."""

import contextlib
import socket
import sys


@contextlib.contextmanager
def connected(household, path):
    """A connection to the socket `path`, whose maker is there until the block ends."""
    ours, theirs = socket.socketpair()
    with ours:
        with theirs:
            process = household.start(["/usr/bin/python3", __file__, path], stdin=theirs)
        _, files, _, _ = socket.recv_fds(ours, 1, 1)
        if not files:
            raise RuntimeError(f"no connection to {path}:\n{household.log()}")
        yield socket.socket(fileno=files[0])
    household.stop(process)


def main():
    """Ends when the other end of the channel is closed."""
    with socket.socket(socket.AF_UNIX) as connection, socket.socket(fileno=0) as channel:
        connection.connect(sys.argv[1])
        socket.send_fds(channel, [b"x"], [connection.fileno()])
        channel.recv(1)


if __name__ == "__main__":
    main()
