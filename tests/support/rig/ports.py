"""Ports on loopback for servers that cannot choose a free one by themselves."""

import pathlib
import random
import socket

HOST = "127.0.0.1"

# An upload whose output holds the digits 530 reads as a refused login, so no port may have them.
TRAP = "530"
# Below the range from which the kernel takes the ports of clients.
CONTROL_PORTS = [port for port in range(10240, 20000) if TRAP not in str(port)]
PASSIVE_PORTS = range(26000, 26500)
# Above that range, for clients that tell their own port.
CLIENT_PORTS = range(61600, 62500)
assert not any(TRAP in str(port) for port in (*PASSIVE_PORTS, *CLIENT_PORTS))


def has_version_6():
    """Whether loopback has the address ::1, which many containers are without."""
    try:
        addresses = pathlib.Path("/proc/net/if_inet6").read_text(encoding="ascii").split()
    except FileNotFoundError:
        return False
    return "0" * 31 + "1" in addresses


def bound_socket(host=HOST):
    """A TCP socket bound to a free port of a loopback address, not listening yet."""
    ports = random.sample(CONTROL_PORTS, 200)
    for port in ports:
        sock = socket.socket(socket.AF_INET6 if ":" in host else socket.AF_INET)
        sock.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
        try:
            sock.bind((host, port))
            return sock
        except OSError:
            sock.close()
    raise OSError(f"no free port among {len(ports)} tried")


def free_port(host=HOST):
    """A port that was free a moment ago: the server that takes it may still find it in use."""
    with bound_socket(host) as sock:
        return sock.getsockname()[1]
