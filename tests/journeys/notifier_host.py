"""A panel that shows StatusNotifierItems: their watcher on the session bus, which says that a host is there."""
from gi.repository import Gio, GLib

NAME = "org.kde.StatusNotifierWatcher"
INTERFACE = Gio.DBusNodeInfo.new_for_xml(f"""<node><interface name="{NAME}">
  <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
  <property name="ProtocolVersion" type="i" access="read"/>
  <property name="RegisteredStatusNotifierItems" type="as" access="read"/>
  <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
  <method name="RegisterStatusNotifierHost"><arg type="s" direction="in"/></method>
  <signal name="StatusNotifierItemRegistered"><arg type="s"/></signal>
</interface></node>""").interfaces[0]
items = []


def called(_connection, sender, _path, _interface, method, parameters, invocation):
    if method == "RegisterStatusNotifierItem":
        name = parameters.unpack()[0]
        items.append(sender + name if name.startswith("/") else name)
    invocation.return_value(None)


def read(_connection, _sender, _path, _interface, name):
    return {"IsStatusNotifierHostRegistered": GLib.Variant("b", True), "ProtocolVersion": GLib.Variant("i", 0),
            "RegisteredStatusNotifierItems": GLib.Variant("as", items)}[name]


bus = Gio.bus_get_sync(Gio.BusType.SESSION)
bus.register_object("/StatusNotifierWatcher", INTERFACE, called, read, None)
Gio.bus_own_name_on_connection(bus, NAME, Gio.BusNameOwnerFlags.NONE)
GLib.MainLoop().run()
