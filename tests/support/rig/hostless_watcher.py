#!/usr/bin/python3
"""A StatusNotifierWatcher that no panel listens to, as some desktops run one in the background."""

from gi.repository import Gio, GLib

NAME = "org.kde.StatusNotifierWatcher"
INTERFACE = f"""
<node><interface name="{NAME}">
  <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
  <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
</interface></node>"""


def main():
    """Runs until it is ended."""
    interface = Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0]

    def own(connection, _):
        connection.register_object(
            "/StatusNotifierWatcher", interface,
            lambda *call: call[-1].return_value(None),
            lambda *_: GLib.Variant("b", False), None)

    Gio.bus_own_name(Gio.BusType.SESSION, NAME, Gio.BusNameOwnerFlags.NONE, own, None, None)
    GLib.MainLoop().run()


if __name__ == "__main__":
    main()
