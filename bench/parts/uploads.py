"""UploadService.upload over the bare tools, against private servers."""

import os

from parts import native
from rig import program, surroundings
from servers import Server


def measure(build, table):
    """Every route, each with the server that suits it."""
    with Server("pyftpdlib", password="secret") as server:
        _route(build, table, "curl", server, ("ms", 1.0))
    with Server("sshd") as server:
        _route(build, table, "keys", server, ("x", 1.02))
        _route(build, table, "password", server, ("x", 1.02))


def _route(build, table, route, server, goal):
    place = surroundings.Surroundings()
    try:
        if route == "keys":
            folder = place.home / ".ssh"
            folder.mkdir(mode=0o700)
            key = folder / "id_ed25519"
            key.touch(mode=0o600)
            with open(server.privateKey, "rb") as file:
                key.write_bytes(file.read())
        command = [str(build / "bench" / "UploadBench"), route, server.host, str(server.port),
                   server.user, server.password, server.remotePath]
        # ssh takes the home folder from the account.
        command = program.with_own_account(command, place, os.getuid(), os.getgid())
        native.run(command, table, lambda name: goal, env=place.program_environment())
    finally:
        place.remove()
