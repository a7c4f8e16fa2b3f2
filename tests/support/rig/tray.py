"""Reading and using tray items the way a panel does: StatusNotifierItem and its D-Bus menu."""

import dataclasses
import re

from gi.repository import GLib

from rig import processes

WATCHER = "org.kde.StatusNotifierWatcher"
WATCHER_PATH = "/StatusNotifierWatcher"
ITEM = "org.kde.StatusNotifierItem"
MENU = "com.canonical.dbusmenu"

_NOT_THERE = re.compile(r"GDBus\.Error:org\.freedesktop\.DBus\.Error\.(UnknownObject|UnknownInterface"
                        r"|UnknownMethod|NameHasNoOwner|ServiceUnknown)")


@dataclasses.dataclass
class Entry:
    """One entry of a menu. A separator has the type "separator" and no label."""

    id: int
    label: str
    enabled: bool
    type: str
    visible: bool
    icon: bytes
    icon_name: str
    shortcut: list


def _known_to_watcher(bus, key):
    """What the service that knows items and panels tells; None if it is not there, or not yet: it
    has its name before it has its object."""
    try:
        return bus.property(WATCHER, WATCHER_PATH, WATCHER, key) if bus.has_owner(WATCHER) else None
    except GLib.Error as error:
        if not _NOT_THERE.search(error.message):
            raise
        return None


def host_registered(bus):
    """Whether a panel shows tray items."""
    return _known_to_watcher(bus, "IsStatusNotifierHostRegistered") or False


def items(bus):
    """The registered items as pairs of bus name and object path."""
    names = _known_to_watcher(bus, "RegisteredStatusNotifierItems") or []
    return [(name, "/" + path) for name, _, path in (item.partition("/") for item in names)]


class TrayItem:
    """The tray item of one process."""

    def __init__(self, bus, name, path):
        self._bus = bus
        self.name = name
        self.path = path

    @classmethod
    def find(cls, bus, pid, seconds=10):
        """Waits until the process `pid` has registered an item."""
        def mine():
            for name, path in items(bus):
                # An item may go away between the two questions.
                if bus.has_owner(name) and bus.process_of(name) == pid:
                    return cls(bus, name, path)
            return None

        return processes.wait_until(mine, seconds, f"a tray item of process {pid}")

    def property(self, key):
        """A property of the item: Id, Title, Status, IconPixmap, ToolTip, Menu."""
        return self._bus.property(self.name, self.path, ITEM, key)

    def menu(self):
        """The entries of the menu, from top to bottom."""
        _, (_, _, children) = self._menu_call("GetLayout", "(iias)", 0, -1, [])
        return [_entry(number, facts) for number, facts, _ in children]

    def labels(self):
        """The labels of the menu; a separator is None."""
        return [None if entry.type == "separator" else entry.label for entry in self.menu()]

    def entry(self, label):
        """The entry with this label."""
        for entry in self.menu():
            if entry.label == label and entry.type != "separator":
                return entry
        raise LookupError(f"no entry {label!r} among {self.labels()}")

    def click(self, label):
        """Chooses an entry; one that is disabled cannot be chosen."""
        entry = self.entry(label)
        if not entry.enabled:
            raise RuntimeError(f"the entry {label!r} is disabled")
        self.send_event(entry.id, "clicked")

    def send_event(self, number, event):
        """Tells the menu what happened to the entry of this id, whether that can be or not."""
        self._menu_call("Event", "(isvu)", number, event, GLib.Variant("i", 0), 0)

    def wait_for_label(self, label, seconds=10):
        """Waits until the menu has an entry of this label."""
        processes.wait_until(lambda: label in self.labels(), seconds,
                             lambda: f"{label!r} among {self.labels()}")

    def wait_until_enabled(self, label, enabled=True, seconds=10):
        """Waits until the entry can, or cannot, be chosen."""
        processes.wait_until(lambda: self.entry(label).enabled == enabled, seconds,
                             f"{label!r} with enabled={enabled}")

    def ask_for_menu(self):
        """Lets the program draw the menu itself, as panels do that cannot."""
        self._bus.call(self.name, self.path, ITEM, "ContextMenu", "(ii)", 0, 0)

    def _menu_call(self, method, signature, *arguments):
        return self._bus.call(self.name, self.property("Menu"), MENU, method, signature,
                              *arguments)


def _entry(number, facts):
    return Entry(id=number, label=facts.get("label", ""), enabled=facts.get("enabled", True),
                 type=facts.get("type", "standard"), visible=facts.get("visible", True),
                 icon=bytes(facts.get("icon-data", b"")), icon_name=facts.get("icon-name", ""),
                 shortcut=facts.get("shortcut", []))
