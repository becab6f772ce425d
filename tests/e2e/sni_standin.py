#!/usr/bin/python3
# The panel's side of a StatusNotifierItem session, for tests on desktops without a panel:
#   sni_standin.py watch FILE         own the watcher's name; write each registered item to FILE
#   sni_standin.py click SERVICE TEXT open the item's menu and click the entry whose label or
#                                     description is TEXT; fails when there is none
#   sni_standin.py label SERVICE      print the item's text label
import sys

import dbus
import dbus.service
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

WATCHER = "org.kde.StatusNotifierWatcher"
MENU = "com.canonical.dbusmenu"


class Watcher(dbus.service.Object):
    def __init__(self, bus, record):
        self._record = record
        name = dbus.service.BusName(WATCHER, bus, do_not_queue=True)
        super().__init__(bus_name=name, object_path="/StatusNotifierWatcher")

    @dbus.service.method(WATCHER, in_signature="s", sender_keyword="sender")
    def RegisterStatusNotifierItem(self, service, sender=None):
        # Items register either their bus name or their object path.
        name = service if not service.startswith("/") else sender
        with open(self._record, "a") as f:
            f.write(name + "\n")

    @dbus.service.method(WATCHER, in_signature="s")
    def RegisterStatusNotifierHost(self, service):
        pass

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="ss", out_signature="v")
    def Get(self, interface, prop):
        return self.GetAll(interface)[prop]

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="s", out_signature="a{sv}")
    def GetAll(self, interface):
        return {
            "IsStatusNotifierHostRegistered": dbus.Boolean(True),
            "ProtocolVersion": dbus.Int32(0),
            "RegisteredStatusNotifierItems": dbus.Array([], signature="s"),
        }


def watch(record):
    DBusGMainLoop(set_as_default=True)
    bus = dbus.SessionBus()
    watcher = Watcher(bus, record)  # the name is ours as long as this lives
    GLib.MainLoop().run()
    del watcher


def click(service, text):
    bus = dbus.SessionBus()
    menu = dbus.Interface(bus.get_object(service, "/MenuBar"), MENU)
    menu.AboutToShow(0)
    _, (_, _, children) = menu.GetLayout(0, -1, dbus.Array([], signature="s"))
    labels = []
    for child in children:
        item_id, props, _ = child
        label = str(props.get("label", ""))
        labels.append(label)
        if text in (label, str(props.get("accessible-desc", ""))):
            menu.Event(item_id, "clicked", dbus.Int32(0, variant_level=1), dbus.UInt32(0))
            return 0
    print("no entry %r in %r" % (text, labels), file=sys.stderr)
    return 1


def label(service):
    bus = dbus.SessionBus()
    props = dbus.Interface(bus.get_object(service, "/StatusNotifierItem"), dbus.PROPERTIES_IFACE)
    print(props.Get("org.kde.StatusNotifierItem", "XAyatanaLabel"))
    return 0


if __name__ == "__main__":
    command = sys.argv[1]
    if command == "watch":
        watch(sys.argv[2])
    elif command == "click":
        sys.exit(click(sys.argv[2], sys.argv[3]))
    elif command == "label":
        sys.exit(label(sys.argv[2]))
    else:
        sys.exit("unknown command " + command)
