"""Hearing every notification that is sent on a bus, whoever shows it."""

import dataclasses
import threading

from gi.repository import Gio

from rig.bus import Monitor

NAME = "org.freedesktop.Notifications"
PATH = "/org/freedesktop/Notifications"


@dataclasses.dataclass
class Notification:
    """The arguments of one call of Notify, and its answer."""

    app_name: str
    replaces_id: int
    app_icon: str
    summary: str
    body: str
    actions: list
    hints: dict
    timeout: int
    # The id that the service gave; None while it has not answered or when it refused.
    id: int | None = None
    # The name of the error with which the call ended.
    error: str | None = None


class Notifications:
    """Records the notifications sent on the bus from now on."""

    def __init__(self, address):
        self._changed = threading.Condition()
        self._calls = {}
        self._monitor = Monitor(address, [
            f"type='method_call',interface='{NAME}',member='Notify'",
            "type='method_return'", "type='error'"], self._heard)

    def _heard(self, message):
        kinds = Gio.DBusMessageType
        with self._changed:
            if message.get_message_type() == kinds.METHOD_CALL:
                # GNOME's service passes on what it is told to the shell.
                if message.get_destination() == "org.gnome.Shell":
                    return
                key = message.get_sender(), message.get_serial()
                self._calls[key] = Notification(*message.get_body().unpack())
            elif call := self._calls.get((message.get_destination(), message.get_reply_serial())):
                if message.get_message_type() == kinds.ERROR:
                    call.error = message.get_error_name()
                else:
                    call.id, = message.get_body().unpack()
            self._changed.notify_all()

    @property
    def all(self):
        """Every notification so far, in order."""
        with self._changed:
            return list(self._calls.values())

    def wait_for(self, summary, seconds=10, count=1):
        """Waits for the `count`th notification of this title that was answered; returns it."""
        def found():
            hits = [call for call in self._calls.values() if call.summary == summary
                    and (call.id is not None or call.error)]
            return hits[count - 1] if len(hits) >= count else None

        with self._changed:
            call = self._changed.wait_for(found, seconds)
        if not call:
            raise TimeoutError(f"notification {summary!r} not within {seconds} s, only: "
                               f"{[(call.summary, call.body) for call in self.all]}")
        return call

    def close(self):
        """Stops recording."""
        self._monitor.close()
