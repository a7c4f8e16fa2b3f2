"""A private session bus, and talking to it."""

import os
import pathlib
import threading

from gi.repository import Gio, GLib, GObject

from rig import processes

_CONFIG = """\
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <keep_umask/>
  <listen>unix:path={socket}</listen>
  <auth>EXTERNAL</auth>
  {services}
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""


_INSTALLED = pathlib.Path("/usr/share/dbus-1/services")


def write_config(path, socket, services=""):
    """Writes the configuration of a message bus."""
    path.write_text(_CONFIG.format(socket=socket, services=services))


class Bus:
    """A dbus-daemon of our own. Without `activation` it starts no service by itself but those that
    a test puts in."""

    def __init__(self, household, surroundings, activation):
        config = surroundings.base / "bus.conf"
        self._services = surroundings.base / "services"
        self._services.mkdir()
        self._admitted = []
        write_config(config, surroundings.runtime / "bus",
                     f"<servicedir>{self._services}</servicedir>"
                     + ("<standard_session_servicedirs/>" if activation else ""))
        reader, writer = os.pipe()
        household.start(["dbus-daemon", f"--config-file={config}", "--nofork",
                         f"--print-address={writer}"], pass_fds=(writer,))
        os.close(writer)
        with os.fdopen(reader) as stream:
            self.address = stream.readline().strip()
        if not self.address:
            raise RuntimeError("the message bus did not start")
        self.connection = connect(self.address)

    @classmethod
    def at(cls, address):
        """A bus that somebody else has started."""
        bus = cls.__new__(cls)
        bus.address = address
        bus.connection = connect(address)
        return bus

    def call(self, name, path, interface, method, signature="()", *arguments, seconds=5):
        """Calls a method and returns the unpacked answer: one value, a tuple, or None."""
        answer = self.connection.call_sync(
            name, path, interface, method, GLib.Variant(signature, arguments), None,
            Gio.DBusCallFlags.NO_AUTO_START, int(seconds * 1000), None).unpack()
        return answer[0] if len(answer) == 1 else answer or None

    def property(self, name, path, interface, key):
        """The value of a property."""
        return self.call(name, path, "org.freedesktop.DBus.Properties", "Get", "(ss)",
                         interface, key)

    def daemon(self, method, signature="()", *arguments):
        """Asks the message bus itself."""
        return self.call("org.freedesktop.DBus", "/org/freedesktop/DBus",
                         "org.freedesktop.DBus", method, signature, *arguments)

    def admit(self, *names):
        """Lets the bus start these of the installed services for whoever calls them."""
        for name in names:
            service = f"{name}.service"
            (self._services / service).symlink_to(_INSTALLED / service)
        self._admitted += names
        self.daemon("ReloadConfig")

    def admitted(self):
        """The processes of those services that run."""
        return {self.process_of(name) for name in self._admitted if self.has_owner(name)}

    def add_service(self, name, command, environment):
        """Lets the bus start a command for whoever calls the name, with further variables."""
        service = self._services / f"{name}.service"
        service.write_text(f"[D-BUS Service]\nName={name}\nExec={command}\n")
        self.daemon("UpdateActivationEnvironment", "(a{ss})", environment)
        self.daemon("ReloadConfig")

    def has_owner(self, name):
        """Whether somebody owns the bus name."""
        return self.daemon("NameHasOwner", "(s)", name)

    def process_of(self, name):
        """The process id of the bus name's owner."""
        return self.daemon("GetConnectionUnixProcessID", "(s)", name)

    def wait_for_owner(self, name, seconds=10):
        """Waits until somebody owns the bus name."""
        processes.wait_until(lambda: self.has_owner(name), seconds, f"bus name {name}")

    def close(self):
        """Closes our own connection."""
        self.connection.close_sync(None)


def connect(address):
    """A connection of our own; losing it does not end this process."""
    # The bus may know us by another number than we do. GLib's functions that make a connection
    # forget that there is a flag for it.
    flags = (Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
             | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
             | Gio.DBusConnectionFlags.CROSS_NAMESPACE)
    connection = GObject.new(Gio.DBusConnection, address=address, flags=flags)
    connection.init(None)
    connection.set_exit_on_close(False)
    return connection


class Monitor:
    """Hears every message that matches the rules; calls `heard(message)` in its own thread."""

    def __init__(self, address, rules, heard):
        self._connection = connect(address)
        self._heard = heard
        self._lock = threading.Lock()
        self._connection.add_filter(self._filter)
        self._connection.call_sync(
            "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus.Monitoring",
            "BecomeMonitor", GLib.Variant("(asu)", (rules, 0)), None, Gio.DBusCallFlags.NONE,
            5000, None)

    def _filter(self, _connection, message, incoming):
        # A monitor must not answer, so method calls end here; the answer to BecomeMonitor does not.
        if not incoming:
            return message
        with self._lock:
            self._heard(message)
        if message.get_message_type() == Gio.DBusMessageType.METHOD_CALL:
            return None
        return message

    def close(self):
        """Stops listening."""
        self._connection.close_sync(None)
