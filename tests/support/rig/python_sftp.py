"""A light SFTP server in Python: starts quickly, asks with any words, writes as slowly as wanted."""

import asyncio
import contextlib
import math
import threading
import warnings

with warnings.catch_warnings():
    warnings.simplefilter("ignore")
    import asyncssh

from rig import accounts, penalties, place as places, ports


class _Login(asyncssh.SSHServer):
    def __init__(self, options, key, record):
        self._options = options
        self._key = key
        self._record = record
        self._address = None
        self._is_refused = False

    def connection_made(self, conn):
        self._address = conn.get_extra_info("peername")[0]
        if not self._record.admits(self._address):
            # Before the server has said a word.
            conn.abort()

    def auth_completed(self):
        self._is_refused = False
        self._record.accepted(self._address)

    def connection_lost(self, exc):
        if self._is_refused:
            self._record.refused(self._address)

    def _noted(self, is_right):
        self._is_refused = self._is_refused or not is_right
        return is_right

    def _accepts(self, username, password):
        return self._noted((username, password) == (self._options.user, self._options.password))

    def begin_auth(self, username):
        return True

    def public_key_auth_supported(self):
        return True

    def validate_public_key(self, username, key):
        is_known = key == self._key and not self._options.no_keys
        return self._noted(username == self._options.user and is_known)

    def password_auth_supported(self):
        return not self._options.no_password and not self._options.prompt

    def validate_password(self, username, password):
        return self._accepts(username, password)

    def kbdint_auth_supported(self):
        return bool(self._options.prompt)

    def get_kbdint_challenge(self, username, lang, submethods):
        return "", "", "", [(self._options.prompt, False)]

    def validate_kbdint_response(self, username, responses):
        return self._accepts(username, responses[0])


def _files(folder, rate):
    """The class whose objects serve the files of one connection, `rate` bytes a second."""

    class Files(asyncssh.SFTPServer):
        def __init__(self, channel):
            super().__init__(channel, chroot=str(folder).encode())
            self._turn = asyncio.Lock()

        async def write(self, file_obj, offset, data):
            if rate:
                async with self._turn:
                    await asyncio.sleep(len(data) / rate)
            return super().write(file_obj, offset, data)

    return Files


async def _listen(options, folder, public_key, record):
    """Listens on a port that has no trap in it and returns the port."""
    while True:
        acceptor = await asyncssh.listen(
            ports.HOST, 0, server_factory=lambda: _Login(options, public_key, record),
            server_host_keys=[asyncssh.generate_private_key("ssh-ed25519")],
            sftp_factory=_files(folder, options.rate))
        port = acceptor.sockets[0].getsockname()[1]
        if ports.TRAP not in str(port):
            return port
        acceptor.close()


@contextlib.contextmanager
def serve(base, options):
    """Runs the server in a thread. With `options.prompt` it asks only in these words.

    With `options.penalties` it keeps out who was refused so often."""
    folder = base / "files"
    places.make_login_folder(folder)
    key = accounts.make_key(base / "key")
    public = asyncssh.read_public_key(f"{key}.pub")
    loop = asyncio.new_event_loop()
    thread = threading.Thread(target=loop.run_forever, daemon=True)
    thread.start()
    record = penalties.Penalties(options.penalties or math.inf, base / "log")
    listening = _listen(options, folder, public, record)
    port = asyncio.run_coroutine_threadsafe(listening, loop).result()
    yield {"port": port, "user": options.user, "password": options.password,
           "root": folder, "folder": folder, "remotePath": "/", "privateKey": key,
           "log": base / "log"}
    loop.call_soon_threadsafe(loop.stop)
    thread.join()
