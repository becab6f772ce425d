#pragma once

#include "platform/NotificationCenter.h"

#include <QDBusConnection>
#include <QList>
#include <QObject>

class QDBusMessage;

// The distributed notification centre over the D-Bus session bus. A notification travels as
// the signal org.horalo.DistributedNotifications.Notification(s name, s object, a{sv} userInfo)
// from the object path /org/horalo/DistributedNotifications; every centre on the bus hears
// every one, its sender's included, and hands it to the observers whose name and object match.
// Observers run from the Qt event loop, never inside postNotification(). The user-info
// dictionary is sent empty and ignored when received: it stays in the signal so that processes
// of other builds keep reading it.
//
// Without a reachable bus the centre still works within its process: a notification is queued
// on the event loop and delivered to this centre's observers once. Nothing waits on the bus
// except flush().
class DBusNotificationCenter final : public QObject, public DistributedNotificationCenter
{
    Q_OBJECT

public:
    static const QString ObjectPath;
    static const QString Interface;
    static const QString SignalName;

    // On the session bus, when one can be reached.
    explicit DBusNotificationCenter(QObject *parent = nullptr);
    // On the given connection; a disconnected one gives a centre for this process only.
    explicit DBusNotificationCenter(const QDBusConnection &connection, QObject *parent = nullptr);
    ~DBusNotificationCenter() override;

    void addObserver(const QString &name, const QString &object, Observer observer) override;
    void postNotification(const QString &name, const QString &object) override;

    bool isConnectedToBus() const { return m_connected; }

    // Waits, at most timeoutMs, until the bus has routed everything this centre posted so far;
    // a process that posts and then exits calls this first. True at once without a bus.
    bool flush(int timeoutMs = 1000);

private Q_SLOTS:
    void handleBusSignal(const QDBusMessage &message);

private:
    struct Observation
    {
        QString name;
        QString object;
        Observer observer;
    };

    void deliver(const QString &name, const QString &object);

    QDBusConnection m_connection;
    bool m_connected = false;
    QList<Observation> m_observations;
};
