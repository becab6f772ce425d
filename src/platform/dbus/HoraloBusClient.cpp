#include "platform/dbus/HoraloBusClient.h"

#include "platform/dbus/HoraloBusNames.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>

namespace {

const int kCallTimeoutMs = 5000;

HoraloBusClient::Reply FromMessage(const QDBusMessage &reply)
{
    HoraloBusClient::Reply result;
    if (reply.type() == QDBusMessage::ReplyMessage) {
        result.ok = true;
        const QVariant first = reply.arguments().value(0);
        result.value = first.canConvert<QDBusVariant>()
                           ? first.value<QDBusVariant>().variant().toString()
                           : first.toString();
        return result;
    }
    result.errorName = reply.errorName();
    result.errorMessage = reply.errorMessage();
    return result;
}

} // namespace

HoraloBusClient::HoraloBusClient(const QDBusConnection &bus, QObject *parent)
    : QObject(parent), m_bus(bus)
{}

HoraloBusClient::~HoraloBusClient()
{
    if (m_watching) {
        m_bus.disconnect(HoraloBus::Service, HoraloBus::ObjectPath, HoraloBus::Interface,
                         QStringLiteral("TitleChanged"), this, SLOT(receiveTitle(QString)));
    }
}

bool HoraloBusClient::isRunning() const
{
    return m_bus.isConnected() && m_bus.interface()->isServiceRegistered(HoraloBus::Service);
}

HoraloBusClient::Reply HoraloBusClient::call(const QString &method,
                                             const QVariantList &arguments) const
{
    QDBusMessage message = QDBusMessage::createMethodCall(HoraloBus::Service, HoraloBus::ObjectPath,
                                                          HoraloBus::Interface, method);
    message.setArguments(arguments);
    return FromMessage(m_bus.call(message, QDBus::Block, kCallTimeoutMs));
}

HoraloBusClient::Reply HoraloBusClient::property(const QString &name) const
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        HoraloBus::Service, HoraloBus::ObjectPath,
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    message << HoraloBus::Interface << name;
    return FromMessage(m_bus.call(message, QDBus::Block, kCallTimeoutMs));
}

HoraloBusClient::Reply HoraloBusClient::title() const
{
    return property(QStringLiteral("Title"));
}

HoraloBusClient::Reply HoraloBusClient::pickedMoment() const
{
    return property(QStringLiteral("PickedMoment"));
}

HoraloBusClient::Reply HoraloBusClient::showMenu(int x, int y) const
{
    return call(QStringLiteral("ShowMenu"), {x, y});
}

HoraloBusClient::Reply HoraloBusClient::copy(const QString &name) const
{
    return call(QStringLiteral("Copy"), {name});
}

void HoraloBusClient::watch()
{
    if (m_watching || !m_bus.isConnected())
        return;
    m_watching = true;
    // QtDBus names the receiving slot by its signature only.
    m_bus.connect(HoraloBus::Service, HoraloBus::ObjectPath, HoraloBus::Interface,
                  QStringLiteral("TitleChanged"), this, SLOT(receiveTitle(QString)));
    m_owner.setConnection(m_bus);
    m_owner.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    m_owner.addWatchedService(HoraloBus::Service);
    connect(&m_owner, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &newOwner) {
                Q_EMIT runningChanged(!newOwner.isEmpty());
            });
}

void HoraloBusClient::receiveTitle(const QString &title)
{
    Q_EMIT titleChanged(title);
}
