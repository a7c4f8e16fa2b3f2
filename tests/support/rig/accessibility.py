"""Reading the windows of a program the way a screen reader does: AT-SPI over its own bus."""

from gi.repository import GLib

from rig import bus as buses
from rig import processes

LAUNCHER = "/usr/libexec/at-spi-bus-launcher"
REGISTRY_DAEMON = "/usr/libexec/at-spi2-registryd"
SERVICE = "org.a11y.Bus"
REGISTRY = "org.a11y.atspi.Registry"
ROOT = "/org/a11y/atspi/accessible/root"
ACCESSIBLE = "org.a11y.atspi.Accessible"
NOTHING = "/org/a11y/atspi/null"

_GONE = "GDBus.Error:org.freedesktop.DBus.Error.UnknownObject"
_PASSWORD_TEXT = 40
_LABELLED_BY = 2
# The numbers of the states, of which a set is one bit each in two words.
_STATES = {"checked": 4, "editable": 7, "enabled": 8, "focusable": 11, "focused": 12,
           "selectable": 22, "selected": 23, "sensitive": 24, "showing": 25, "checkable": 41}


class Accessibility:
    """The bus on which programs show their windows to screen readers."""

    def __init__(self, household, session):
        household.start([LAUNCHER, "--launch-immediately", "--a11y=1"])
        session.wait_for_owner(SERVICE)
        address = session.call(SERVICE, "/org/a11y/bus", SERVICE, "GetAddress")
        self._bus = buses.Bus.at(address)
        # The bus would start the registry itself, but it would outlive the bus.
        household.start([REGISTRY_DAEMON], {"AT_SPI_BUS_ADDRESS": address})
        self._bus.wait_for_owner(REGISTRY)

    def services(self):
        """The process of the registry, which the bus has started if kwin 6 was quicker than we."""
        return {self._bus.process_of(REGISTRY)}

    def close(self):
        """Closes our own connection."""
        self._bus.close()

    def window(self, pid, title, seconds=10):
        """Waits for a window of the process with this title."""
        return processes.wait_until(lambda: self._find(pid, title), seconds,
                                    f"window {title!r} told to screen readers")

    def _find(self, pid, title):
        for program in Node(self._bus, REGISTRY, ROOT).children():
            if self._bus.has_owner(program.owner) and self._bus.process_of(program.owner) == pid:
                for window in program.children():
                    if window.name == title:
                        return window
        return None


class Node:
    """Something in a window that a screen reader can tell of; its facts are asked for anew each
    time."""

    def __init__(self, bus, owner, path):
        self._bus = bus
        self.owner = owner
        self.path = path

    def __eq__(self, other):
        return isinstance(other, Node) and (self.owner, self.path) == (other.owner, other.path)

    def __hash__(self):
        return hash((self.owner, self.path))

    def __repr__(self):
        return f"<{self.role} {self.name!r}>"

    @property
    def name(self):
        """What it is called."""
        return self._property(ACCESSIBLE, "Name")

    @property
    def description(self):
        """What is told of it besides."""
        return self._property(ACCESSIBLE, "Description")

    @property
    def role(self):
        """What kind of thing it is, in words."""
        # Qt's words make no difference here, its numbers do.
        if self._call(ACCESSIBLE, "GetRole") == _PASSWORD_TEXT:
            return "password text"
        return self._call(ACCESSIBLE, "GetRoleName")

    @property
    def label(self):
        """What it is called by what stands beside it, else by itself."""
        for relation, targets in self._call(ACCESSIBLE, "GetRelationSet"):
            if relation == _LABELLED_BY:
                return " ".join(Node(self._bus, *target).name for target in targets)
        return self.name

    @property
    def states(self):
        """The names of the states that it is in."""
        low, high = self._call(ACCESSIBLE, "GetState")
        bits = low | high << 32
        return {name for name, bit in _STATES.items() if bits >> bit & 1}

    @property
    def length(self):
        """The number of characters in it, which is told of a password too."""
        return self._property("org.a11y.atspi.Text", "CharacterCount")

    @property
    def text(self):
        """The text in it, as it is shown."""
        return self._call("org.a11y.atspi.Text", "GetText", "(ii)", 0, self.length)

    @property
    def value(self):
        """The number that it stands at."""
        return self._property("org.a11y.atspi.Value", "CurrentValue")

    @property
    def extents(self):
        """Where it is on the screen: left, top, width, height."""
        return self._call("org.a11y.atspi.Component", "GetExtents", "(u)", 0)

    def act(self):
        """Does what it does when it is pressed, as for somebody who uses no keyboard."""
        self._call("org.a11y.atspi.Action", "DoAction", "(i)", 0)

    def children(self):
        """What is directly in it."""
        return [Node(self._bus, owner, path)
                for owner, path in self._call(ACCESSIBLE, "GetChildren") if path != NOTHING]

    def all(self):
        """What can be seen in it, a parent before its children."""
        return list(self.all_from_the_end())[::-1]

    def all_from_the_end(self):
        """The same the other way round, looked at one by one."""
        try:
            for child in reversed(self.children()):
                if "showing" in child.states:
                    yield from child.all_from_the_end()
                    yield child
        except GLib.Error as error:
            # It has gone while it was being looked at.
            if not error.message.startswith(_GONE):
                raise

    def _property(self, interface, key):
        return self._bus.property(self.owner, self.path, interface, key)

    def _call(self, interface, method, signature="()", *arguments):
        return self._bus.call(self.owner, self.path, interface, method, signature, *arguments)
