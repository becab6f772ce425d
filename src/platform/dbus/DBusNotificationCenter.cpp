#include "platform/dbus/DBusNotificationCenter.h"

#include <QDBusMessage>
#include <QMetaObject>
#include <QVariantMap>

const QString DBusNotificationCenter::ObjectPath =
    QStringLiteral("/org/horalo/DistributedNotifications");
const QString DBusNotificationCenter::Interface =
    QStringLiteral("org.horalo.DistributedNotifications");
const QString DBusNotificationCenter::SignalName = QStringLiteral("Notification");

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

void DBusNotificationCenter::addObserver(const QString &name, const QString &object,
                                         Observer observer)
{
    if (observer)
        m_observations.append({name, object, std::move(observer)});
}

void DBusNotificationCenter::postNotification(const QString &name, const QString &object)
{
    if (m_connected) {
        QDBusMessage signal = QDBusMessage::createSignal(ObjectPath, Interface, SignalName);
        signal << name << object << QVariant(QVariantMap());
        // The bus hands the signal back to us as well: that is our own delivery, so a sent
        // notification is not also delivered locally.
        if (m_connection.send(signal))
            return;
    }
    QMetaObject::invokeMethod(
        this, [this, name, object] { deliver(name, object); }, Qt::QueuedConnection);
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
    deliver(arguments.at(0).toString(), arguments.at(1).toString());
}

void DBusNotificationCenter::deliver(const QString &name, const QString &object)
{
    // An observer may add observers while we walk the list.
    const QList<Observation> observations = m_observations;
    for (const Observation &observation : observations) {
        if (observation.name == name && observation.object == object)
            observation.observer();
    }
}
