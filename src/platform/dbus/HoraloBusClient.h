#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>

#include <optional>

// The running Horalo as another program of the session reaches it: its properties and methods
// (see resources/dbus/org.horalo.Horalo.xml), and, once watching, its title as it changes and
// its coming and going.
class HoraloBusClient final : public QObject
{
    Q_OBJECT
public:
    // The outcome of a call: a value, or an error with the bus's name for it and a message.
    struct Reply
    {
        bool ok = false;
        QString value;
        QString errorName;
        QString errorMessage;
    };

    explicit HoraloBusClient(const QDBusConnection &bus = QDBusConnection::sessionBus(),
                             QObject *parent = nullptr);
    ~HoraloBusClient() override;

    bool isBusConnected() const { return m_bus.isConnected(); }
    // Whether a Horalo owns its name on the bus now.
    bool isRunning() const;

    Reply title() const;
    Reply pickedMoment() const;
    Reply showMenu(int x, int y) const;
    Reply copy(const QString &name) const;

    // From now on, titleChanged and runningChanged report what happens.
    void watch();

Q_SIGNALS:
    void titleChanged(const QString &title);
    void runningChanged(bool running);

private Q_SLOTS:
    void receiveTitle(const QString &title);

private:
    Reply property(const QString &name) const;
    Reply call(const QString &method, const QVariantList &arguments) const;

    QDBusConnection m_bus;
    QDBusServiceWatcher m_owner;
    bool m_watching = false;
};
