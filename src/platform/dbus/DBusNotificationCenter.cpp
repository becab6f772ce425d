#include "platform/dbus/DBusNotificationCenter.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QMetaObject>

const QString DBusNotificationCenter::ObjectPath =
    QStringLiteral("/org/horalo/DistributedNotifications");
const QString DBusNotificationCenter::Interface =
    QStringLiteral("org.horalo.DistributedNotifications");
const QString DBusNotificationCenter::SignalName = QStringLiteral("Notification");

namespace {

// Turns what QtDBus hands over for a variant (plain values, or QDBusArgument for containers)
// back into plain QVariant trees.
QVariant FromDBus(const QVariant &value, int depth = 0)
{
    if (depth > 64)
        return {};
    if (value.userType() == qMetaTypeId<QDBusVariant>())
        return FromDBus(value.value<QDBusVariant>().variant(), depth + 1);
    if (value.userType() != qMetaTypeId<QDBusArgument>())
        return value;

    const QDBusArgument argument = value.value<QDBusArgument>();
    switch (argument.currentType()) {
    case QDBusArgument::ArrayType: {
        QVariantList list;
        argument.beginArray();
        while (!argument.atEnd())
            list.append(FromDBus(argument.asVariant(), depth + 1));
        argument.endArray();
        return list;
    }
    case QDBusArgument::MapType: {
        QVariantMap map;
        argument.beginMap();
        while (!argument.atEnd()) {
            argument.beginMapEntry();
            const QVariant key = argument.asVariant();
            const QVariant element = argument.asVariant();
            argument.endMapEntry();
            map.insert(key.toString(), FromDBus(element, depth + 1));
        }
        argument.endMap();
        return map;
    }
    case QDBusArgument::StructureType: {
        QVariantList fields;
        argument.beginStructure();
        while (!argument.atEnd())
            fields.append(FromDBus(argument.asVariant(), depth + 1));
        argument.endStructure();
        return fields;
    }
    default:
        return FromDBus(argument.asVariant(), depth + 1);
    }
}

} // namespace

DBusNotificationCenter::DBusNotificationCenter(QObject *parent)
    : DBusNotificationCenter(QDBusConnection::sessionBus(), parent)
{}

DBusNotificationCenter::DBusNotificationCenter(const QDBusConnection &connection, QObject *parent)
    : QObject(parent), m_connection(connection)
{
    // QtDBus takes the receiving slot by name only; there is no function-pointer form.
    m_connected = m_connection.isConnected() &&
                  m_connection.connect(QString(), ObjectPath, Interface, SignalName, this,
                                       SLOT(handleBusSignal(QDBusMessage)));
}

DBusNotificationCenter::~DBusNotificationCenter()
{
    if (m_connected) {
        m_connection.disconnect(QString(), ObjectPath, Interface, SignalName, this,
                                SLOT(handleBusSignal(QDBusMessage)));
    }
}

void DBusNotificationCenter::addObserver(void *observer, NotificationCallback callback,
                                         const QString &name, const QString &object,
                                         SuspensionBehavior)
{
    // Every behaviour delivers at once: nothing here ever suspends delivery.
    if (callback)
        m_observations.append({observer, callback, name, object});
}

void DBusNotificationCenter::postNotification(const QString &name, const QString &object,
                                              const QVariantMap &userInfo, bool)
{
    if (m_connected) {
        QDBusMessage signal = QDBusMessage::createSignal(ObjectPath, Interface, SignalName);
        signal << name << object << QVariant(userInfo);
        // The bus hands the signal back to us as well: that is our own delivery, so a sent
        // notification is not also delivered locally.
        if (m_connection.send(signal))
            return;
    }
    QMetaObject::invokeMethod(
        this, [this, name, object, userInfo] { deliver(name, object, userInfo); },
        Qt::QueuedConnection);
}

bool DBusNotificationCenter::flush(int timeoutMs)
{
    if (!m_connected)
        return true;
    // The bus answers a connection's messages in the order they were sent, so once this call
    // returns, every signal sent before it has been routed to its receivers.
    const QDBusMessage getId = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId"));
    const QDBusMessage reply = m_connection.call(getId, QDBus::Block, timeoutMs);
    return reply.type() == QDBusMessage::ReplyMessage;
}

void DBusNotificationCenter::handleBusSignal(const QDBusMessage &message)
{
    const QVariantList arguments = message.arguments();
    if (arguments.size() < 2)
        return;
    const QVariantMap userInfo =
        arguments.size() > 2 ? FromDBus(arguments.at(2)).toMap() : QVariantMap();
    deliver(arguments.at(0).toString(), arguments.at(1).toString(), userInfo);
}

void DBusNotificationCenter::deliver(const QString &name, const QString &object,
                                     const QVariantMap &userInfo)
{
    // A callback may add observers while we walk the list.
    const QList<Observation> observations = m_observations;
    for (const Observation &observation : observations) {
        if (observation.name == name && observation.object == object)
            observation.callback(this, observation.observer, name, object, userInfo);
    }
}
