"""What OpenSSH from version 9.8 on does to addresses that log in wrongly, for other servers."""

import threading
import time

# What a refused login costs. It is paid off by waiting.
_SECONDS = 5


class Penalties:
    """Counts the refused logins of each address. Who has run up those of `limit` refusals is kept
    out until they are paid off. The log has a line for each connection: accepted, refused or
    dropped."""

    def __init__(self, limit, log):
        self._limit = limit
        self._log = log
        self._paid_off = {}
        self._barred = set()
        self._lock = threading.Lock()
        log.touch()

    def admits(self, address):
        """Whether a new connection from there may stay."""
        with self._lock:
            if self._left(address) <= 0:
                self._barred.discard(address)
            if address in self._barred:
                self._note("dropped", address)
            return address not in self._barred

    def accepted(self, address):
        """A connection from there has logged in, whatever it had offered before."""
        with self._lock:
            self._note("accepted", address)

    def refused(self, address):
        """A connection from there has ended without a login, and something that it had offered was
        refused."""
        with self._lock:
            self._note("refused", address)
            left = max(0, self._left(address)) + _SECONDS
            self._paid_off[address] = time.monotonic() + left
            if left > _SECONDS * (self._limit - 1):
                self._barred.add(address)

    def _left(self, address):
        return self._paid_off.get(address, 0) - time.monotonic()

    def _note(self, what, address):
        with open(self._log, "a", encoding="ascii") as file:
            print(what, address, file=file)
