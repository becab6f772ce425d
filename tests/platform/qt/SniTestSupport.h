#pragma once

// Stand-ins for the other side of the StatusNotifierItem protocol, each on a D-Bus connection of
// its own as in a real session: a watcher that records registrations, and a host that reads
// properties, calls methods and collects signals. Calls block with the event loop running, so
// the item under test (on the session bus connection, same thread) can answer them.

#include "platform/Menu.h"
#include "platform/qt/sni/SniTypes.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QDir>
#include <QObject>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

// Runs the event loop until the condition holds or two seconds pass.
bool WaitFor(const std::function<bool()> &condition, int milliseconds = 2000);
// Runs the event loop for a while, for "nothing more happens" checks.
void Settle(int milliseconds = 100);

// One application for the whole run, with a private runtime and data directory, so no icon
// theme of the machine's is found unless a test installs one.
class QtApplicationEnvironment final : public ::testing::Environment
{
public:
    void SetUp() override;
    void TearDown() override;
    static QString scratch();

private:
    int m_argc = 1;
    char m_name[16] = "horalo_test_sni";
    char *m_argv[2] = {m_name, nullptr};
    std::unique_ptr<QApplication> m_application;
};

class StandInWatcher final : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isHostRegistered)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion)
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ registeredItems)
public:
    // Takes the watcher's name on a new connection of its own.
    StandInWatcher();
    ~StandInWatcher() override;

    bool isHostRegistered() const { return true; }
    int protocolVersion() const { return 0; }
    QStringList registeredItems() const { return m_registered; }
    QString uniqueName() const { return m_connection.baseService(); }

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString &service);
    void RegisterStatusNotifierHost(const QString &) {}

private:
    QString m_connectionName;
    QDBusConnection m_connection;
    QStringList m_registered;
};

class StandInHost final : public QObject
{
    Q_OBJECT
public:
    explicit StandInHost(const QString &itemService);
    ~StandInHost() override;

    QVariantMap itemProperties();
    QVariant itemProperty(const QString &name);
    QDBusMessage callMenu(const QString &method, const QVariantList &arguments);
    QDBusMessage callItem(const QString &method, const QVariantList &arguments);
    // GetLayout(0, -1, []): the revision and the root node.
    std::pair<uint, DBusMenuLayoutItem> layout();
    // The signals received so far with the name, from the item's service.
    QList<QDBusMessage> signalsNamed(const QString &name) const;
    void clearSignals() { m_signals.clear(); }

public Q_SLOTS:
    void record(const QDBusMessage &message) { m_signals.append(message); }

private:
    QString m_connectionName;
    QDBusConnection m_connection;
    QString m_itemService;
    QList<QDBusMessage> m_signals;
};

// A menu's delegate and target as the application controller is one: every opening rebuilds the
// menu from scratch; chosen actions are recorded.
class RecordingController final : public MenuDelegate, public MenuTarget
{
public:
    RecordingController();
    void menuNeedsUpdate(Menu *menu) override;
    bool validateMenuItem(const MenuItem &) override { return true; }
    void performAction(MenuAction action, const MenuItem &sender) override;

    Menu menu;
    int builds = 0;
    // The text of "Numerical Date No Hyphens" at the next build.
    QString numericalDate = QStringLiteral("20060310");
    // The custom format's tool tip (its format) at the next build; empty: none.
    QString customToolTip = QStringLiteral("%Y_%m_%d");
    // Put an extra informational row at the top of the next builds.
    bool withChooserLines = false;
    // Each chosen action with its entry's title.
    using Performed = QList<std::pair<MenuAction, QString>>;
    Performed performed;
};
