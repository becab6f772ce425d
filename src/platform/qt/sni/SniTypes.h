#pragma once

// The structured D-Bus values of the StatusNotifierItem and com.canonical.dbusmenu protocols,
// with their marshalling. RegisterSniTypes() must run before an object using them is exported
// or a reply carrying them is read.

#include <QDBusArgument>
#include <QDBusVariant>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QVariantMap>

// One image of an icon: width, height and ARGB32 pixels in network byte order. (iiay)
struct SniIconPixmap
{
    int width = 0;
    int height = 0;
    QByteArray pixels;
};
using SniIconPixmapList = QList<SniIconPixmap>;

// (sa(iiay)ss): icon name, icon images, title, description.
struct SniToolTip
{
    QString iconName;
    SniIconPixmapList iconPixmaps;
    QString title;
    QString description;
};

// One node of a menu layout: (ia{sv}av), the children being variants holding nodes.
struct DBusMenuLayoutItem
{
    int id = 0;
    QVariantMap properties;
    QList<DBusMenuLayoutItem> children;
};

// (ia{sv}): an entry's properties.
struct DBusMenuItem
{
    int id = 0;
    QVariantMap properties;
};
using DBusMenuItemList = QList<DBusMenuItem>;

// (ias): names of an entry's properties that went back to their defaults.
struct DBusMenuItemKeys
{
    int id = 0;
    QStringList names;
};
using DBusMenuItemKeysList = QList<DBusMenuItemKeys>;

// (isvu): one event of EventGroup.
struct DBusMenuEvent
{
    int id = 0;
    QString eventId;
    QDBusVariant data;
    uint timestamp = 0;
};
using DBusMenuEventList = QList<DBusMenuEvent>;

QDBusArgument &operator<<(QDBusArgument &argument, const SniIconPixmap &icon);
const QDBusArgument &operator>>(const QDBusArgument &argument, SniIconPixmap &icon);
QDBusArgument &operator<<(QDBusArgument &argument, const SniToolTip &toolTip);
const QDBusArgument &operator>>(const QDBusArgument &argument, SniToolTip &toolTip);
QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuLayoutItem &item);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuLayoutItem &item);
QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuItem &item);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuItem &item);
QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuItemKeys &keys);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuItemKeys &keys);
QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuEvent &event);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuEvent &event);

Q_DECLARE_METATYPE(SniIconPixmap)
Q_DECLARE_METATYPE(SniToolTip)
Q_DECLARE_METATYPE(DBusMenuLayoutItem)
Q_DECLARE_METATYPE(DBusMenuItem)
Q_DECLARE_METATYPE(DBusMenuItemKeys)
Q_DECLARE_METATYPE(DBusMenuEvent)

void RegisterSniTypes();
