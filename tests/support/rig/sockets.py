"""Servers that misbehave: one that never answers, one that is not there, one that cuts off."""

import contextlib
import socket
import struct
import threading
import time

from rig import ports


@contextlib.contextmanager
def silent(_base, _options):
    """Accepts connections and never says a word."""
    with ports.bound_socket() as sock:
        sock.listen(100)
        held = []

        def accept():
            with contextlib.suppress(OSError):
                while True:
                    held.append(sock.accept())

        threading.Thread(target=accept, daemon=True).start()
        yield {"port": sock.getsockname()[1]}


@contextlib.contextmanager
def closed(_base, _options):
    """Holds a port on which nobody listens, so that connecting is refused."""
    with ports.bound_socket() as sock:
        yield {"port": sock.getsockname()[1]}


@contextlib.contextmanager
def cut(_base, options):
    """Stands in front of the server on port `options.target`.

    Forwards at most `options.rate` bytes a second from the client, and hangs up on both sides
    after `options.after` bytes: with an end of stream, or with a reset when `options.reset`."""
    with ports.bound_socket() as sock:
        sock.listen(100)

        def accept():
            with contextlib.suppress(OSError):
                while True:
                    client, _ = sock.accept()
                    threading.Thread(target=_forward, args=(client, options), daemon=True).start()

        threading.Thread(target=accept, daemon=True).start()
        yield {"port": sock.getsockname()[1]}


def _forward(client, options):
    server = socket.create_connection((ports.HOST, options.target))
    threading.Thread(target=_answers, args=(server, client), daemon=True).start()
    left = options.after
    with contextlib.suppress(OSError):
        while left is None or left > 0:
            data = client.recv(65536 if left is None else min(65536, left))
            if not data:
                break
            if options.rate:
                time.sleep(len(data) / options.rate)
            server.sendall(data)
            left = left if left is None else left - len(data)
    for side in (client, server):
        _hang_up(side, options.reset)


def _answers(server, client):
    with contextlib.suppress(OSError):
        while data := server.recv(65536):
            client.sendall(data)
        client.shutdown(socket.SHUT_WR)


def _hang_up(sock, reset):
    with contextlib.suppress(OSError):
        if reset:
            # A reset instead of an orderly end.
            sock.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        else:
            sock.shutdown(socket.SHUT_RDWR)
    sock.close()
