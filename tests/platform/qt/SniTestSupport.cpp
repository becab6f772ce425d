#include "SniTestSupport.h"

#include <QDBusConnectionInterface>
#include <QDBusMetaType>
#include <QElapsedTimer>
#include <QThread>

bool WaitFor(const std::function<bool()> &condition, int milliseconds)
{
    QDeadlineTimer deadline(milliseconds);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(1);
    }
    return true;
}

void Settle(int milliseconds)
{
    WaitFor([] { return false; }, milliseconds);
}

QString QtApplicationEnvironment::scratch()
{
    const QString base = qEnvironmentVariable("HORALO_TEST_TMP");
    return base.isEmpty() ? QDir::tempPath() + QStringLiteral("/horalo_test_sni") : base;
}

void QtApplicationEnvironment::SetUp()
{
    const QString root = scratch();
    QDir(root).removeRecursively();
    for (const char *sub : {"run", "data-home", "data"})
        QDir().mkpath(root + QLatin1Char('/') + QLatin1String(sub));
    QFile(root + QStringLiteral("/run"))
        .setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    qputenv("XDG_RUNTIME_DIR", (root + QStringLiteral("/run")).toUtf8());
    qputenv("XDG_DATA_HOME", (root + QStringLiteral("/data-home")).toUtf8());
    qputenv("XDG_DATA_DIRS", (root + QStringLiteral("/data")).toUtf8());
    m_application = std::make_unique<QApplication>(m_argc, m_argv);
    RegisterSniTypes();
}

void QtApplicationEnvironment::TearDown()
{
    m_application.reset();
}

namespace {

int g_connectionNumber = 0;

QDBusConnection Connect(const QString &name)
{
    return QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
}

} // namespace

StandInWatcher::StandInWatcher()
    : m_connectionName(QStringLiteral("watcher-%1").arg(++g_connectionNumber)),
      m_connection(Connect(m_connectionName))
{
    m_connection.registerObject(QStringLiteral("/StatusNotifierWatcher"), this,
                                QDBusConnection::ExportAllSlots |
                                    QDBusConnection::ExportAllProperties);
    m_connection.registerService(QStringLiteral("org.kde.StatusNotifierWatcher"));
}

StandInWatcher::~StandInWatcher()
{
    // A watcher that exits: its connection and with it the name go away.
    m_connection.unregisterService(QStringLiteral("org.kde.StatusNotifierWatcher"));
    QDBusConnection::disconnectFromBus(m_connectionName);
}

void StandInWatcher::RegisterStatusNotifierItem(const QString &service)
{
    m_registered.append(service);
}

StandInHost::StandInHost(const QString &itemService)
    : m_connectionName(QStringLiteral("host-%1").arg(++g_connectionNumber)),
      m_connection(Connect(m_connectionName)), m_itemService(itemService)
{
    // Every signal of the item and of its menu. The bus API names the slot by its signature.
    for (const char *interface : {"org.kde.StatusNotifierItem", "com.canonical.dbusmenu"})
        m_connection.connect(itemService, QString(), QLatin1String(interface), QString(), this,
                             SLOT(record(QDBusMessage)));
}

StandInHost::~StandInHost()
{
    QDBusConnection::disconnectFromBus(m_connectionName);
}

QDBusMessage StandInHost::callItem(const QString &method, const QVariantList &arguments)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(m_itemService, QStringLiteral("/StatusNotifierItem"),
                                       QStringLiteral("org.kde.StatusNotifierItem"), method);
    call.setArguments(arguments);
    return m_connection.call(call, QDBus::BlockWithGui, 2000);
}

QDBusMessage StandInHost::callMenu(const QString &method, const QVariantList &arguments)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(m_itemService, QStringLiteral("/MenuBar"),
                                       QStringLiteral("com.canonical.dbusmenu"), method);
    call.setArguments(arguments);
    return m_connection.call(call, QDBus::BlockWithGui, 2000);
}

QVariantMap StandInHost::itemProperties()
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        m_itemService, QStringLiteral("/StatusNotifierItem"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("GetAll"));
    call << QStringLiteral("org.kde.StatusNotifierItem");
    const QDBusMessage reply = m_connection.call(call, QDBus::BlockWithGui, 2000);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return {};
    return qdbus_cast<QVariantMap>(reply.arguments().constFirst());
}

QVariant StandInHost::itemProperty(const QString &name)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        m_itemService, QStringLiteral("/StatusNotifierItem"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    call << QStringLiteral("org.kde.StatusNotifierItem") << name;
    const QDBusMessage reply = m_connection.call(call, QDBus::BlockWithGui, 2000);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return {};
    return reply.arguments().constFirst().value<QDBusVariant>().variant();
}

std::pair<uint, DBusMenuLayoutItem> StandInHost::layout()
{
    const QDBusMessage reply =
        callMenu(QStringLiteral("GetLayout"), {0, -1, QVariant::fromValue(QStringList())});
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().size() != 2)
        return {0, {}};
    return {reply.arguments().at(0).toUInt(),
            qdbus_cast<DBusMenuLayoutItem>(reply.arguments().at(1))};
}

QList<QDBusMessage> StandInHost::signalsNamed(const QString &name) const
{
    QList<QDBusMessage> result;
    for (const QDBusMessage &message : m_signals) {
        if (message.member() == name)
            result.append(message);
    }
    return result;
}

RecordingController::RecordingController()
{
    menu.setDelegate(this);
    menu.setTarget(this);
    menu.setAutoenablesItems(true);
}

void RecordingController::menuNeedsUpdate(Menu *built)
{
    ++builds;
    while (built->numberOfItems() > 0)
        built->removeItemAtIndex(0);
    const auto add = [built](const QString &title, MenuAction action,
                             const QString &toolTip = QString()) {
        MenuItem item;
        item.title = title;
        item.action = action;
        item.toolTip = toolTip;
        built->addItem(item);
    };
    add(QStringLiteral("Date-Time Chooser"), MenuAction::ShowCalendar);
    add(QStringLiteral("It is now: Mar 10, 2006, 2:31\u202FPM"), MenuAction::None);
    if (withChooserLines)
        add(QStringLiteral("Days To Mar 20, 2006, 2:31\u202FPM: 10 days"), MenuAction::None);
    built->addItem(MenuItem::separatorItem());
    add(numericalDate, MenuAction::NumericalDateNoHyphens);
    add(QStringLiteral("Fr, 10. M\u00e4rz 2006 \u2600"), MenuAction::FullDate);
    add(QStringLiteral("2006_03_10"), MenuAction::CustomDateFormatter, customToolTip);
    built->addItem(MenuItem::separatorItem());
    add(QStringLiteral("Quit"), MenuAction::SelItemQuit);
}

void RecordingController::performAction(MenuAction action, const MenuItem &sender)
{
    performed.append({action, sender.title});
}

namespace {

const ::testing::Environment *const g_environment =
    ::testing::AddGlobalTestEnvironment(new QtApplicationEnvironment);

} // namespace
