"""The desktop's notifications: writes the text of each to the file given to it, one per line."""
import sys

from gi.repository import Gio, GLib

NAME = "org.freedesktop.Notifications"
INTERFACE = Gio.DBusNodeInfo.new_for_xml(f"""<node><interface name="{NAME}"><method name="Notify">
  <arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/>
  <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="as" direction="in"/>
  <arg type="a{{sv}}" direction="in"/><arg type="i" direction="in"/><arg type="u" direction="out"/>
</method></interface></node>""").interfaces[0]


def called(_connection, _sender, _path, _interface, _method, parameters, invocation):
    with open(sys.argv[1], "a") as shown:
        shown.write(parameters.unpack()[4] + "\n")
    invocation.return_value(GLib.Variant("(u)", (1,)))


bus = Gio.bus_get_sync(Gio.BusType.SESSION)
bus.register_object("/org/freedesktop/Notifications", INTERFACE, called, None, None)
Gio.bus_own_name_on_connection(bus, NAME, Gio.BusNameOwnerFlags.NONE)
GLib.MainLoop().run()
