// The running application's interface on the session bus and the one-per-session rule, against
// the real application on a private bus, with a stand-in panel (watcher) and, where the
// clipboard matters, a private X server.

#include "HoraloProcess.h"
#include "SniTestSupport.h"
#include "platform/dbus/HoraloBusNames.h"
#include "support/QtPrinters.h"

#include <QDBusConnection>
#include <QDate>
#include <QLocale>
#include <QRegularExpression>

namespace {

using namespace Qt::StringLiterals;

// The same text for the date as of before and after a call, so a run across midnight passes.
bool MatchesToday(const QByteArray &text, const std::function<QString(QDate)> &render, QDate before)
{
    return text == render(before).toUtf8() || text == render(QDate::currentDate()).toUtf8();
}

bool XWindowNamed(const QString &display, const QString &name)
{
    return !RunXTool(display, u"xdotool"_s,
                     {u"search"_s, u"--onlyvisible"_s, u"--name"_s, u'^' + name + u'$'})
                .trimmed()
                .isEmpty();
}

// Collects the application's title signals, both forms.
class TitleSignals final : public QObject
{
    Q_OBJECT
public:
    TitleSignals()
    {
        QDBusConnection bus = QDBusConnection::sessionBus();
        bus.connect(HoraloBus::Service, HoraloBus::ObjectPath, HoraloBus::Interface,
                    u"TitleChanged"_s, this, SLOT(titleChanged(QString)));
        bus.connect(HoraloBus::Service, HoraloBus::ObjectPath, u"org.freedesktop.DBus.Properties"_s,
                    u"PropertiesChanged"_s, this,
                    SLOT(propertiesChanged(QString, QVariantMap, QStringList)));
    }

    QStringList titles;
    QStringList changedProperties;

public Q_SLOTS:
    void titleChanged(const QString &title) { titles.append(title); }
    void propertiesChanged(const QString &interface, const QVariantMap &changed,
                           const QStringList &)
    {
        if (interface == HoraloBus::Interface)
            changedProperties.append(changed.value(u"Title"_s).toString());
    }
};

// A desktop notification server that records what it is asked to show.
class StandInNotifications final : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")
public:
    StandInNotifications()
        : m_connection(
              QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"notifications"_s))
    {
        m_connection.registerObject(u"/org/freedesktop/Notifications"_s, this,
                                    QDBusConnection::ExportAllSlots);
        m_connection.registerService(u"org.freedesktop.Notifications"_s);
    }
    ~StandInNotifications() override { QDBusConnection::disconnectFromBus(u"notifications"_s); }

    QStringList bodies;

public Q_SLOTS:
    uint Notify(const QString &, uint, const QString &, const QString &, const QString &body,
                const QStringList &, const QVariantMap &, int)
    {
        bodies.append(body);
        return uint(bodies.size());
    }

private:
    QDBusConnection m_connection;
};

QString ErrorOf(const QDBusMessage &reply)
{
    return reply.type() == QDBusMessage::ErrorMessage
               ? reply.errorName() + u": "_s + reply.errorMessage()
               : QString();
}

using Interface = RunningHoralo;

TEST_F(Interface, CopyPutsTheExactBytesOnTheClipboardAndRefusesNamesThatAreNoFormat)
{
    const QDate before = QDate::currentDate();
    QDBusMessage reply = CallHoralo(u"Copy"_s, {u"Numerical Date No Hyphens"_s});
    ASSERT_EQ(reply.type(), QDBusMessage::ReplyMessage) << ErrorOf(reply).toStdString();
    const QByteArray returned = reply.arguments().value(0).toString().toUtf8();
    EXPECT_TRUE(MatchesToday(
        returned, [](QDate day) { return day.toString(u"yyyyMMdd"_s); }, before))
        << returned.constData();
    EXPECT_EQ(ReadClipboard(display), returned);

    // Text that shells, markup and X's Latin-1 target would each mangle arrives as it is.
    reply = CallHoralo(u"Copy"_s, {u"custom:%Y «%A» & <b>\t%%"_s});
    ASSERT_EQ(reply.type(), QDBusMessage::ReplyMessage) << ErrorOf(reply).toStdString();
    const QByteArray custom = reply.arguments().value(0).toString().toUtf8();
    EXPECT_TRUE(MatchesToday(
        custom,
        [](QDate day) {
            return u"%1 «%2» & <b>\t%"_s.arg(day.year())
                .arg(QLocale(QLocale::English, QLocale::UnitedStates).dayName(day.dayOfWeek()));
        },
        before))
        << custom.constData();
    EXPECT_EQ(ReadClipboard(display), custom);

    for (const char *name : {"Numerical date", "Medium Date Time", "", "custom"}) {
        reply = CallHoralo(u"Copy"_s, {QString::fromUtf8(name)});
        EXPECT_EQ(reply.type(), QDBusMessage::ErrorMessage) << name;
        EXPECT_EQ(reply.errorName(), HoraloBus::UnknownFormatError) << name;
    }
    EXPECT_EQ(ReadClipboard(display), custom);
}

class TitleFollowers : public RunningHoralo
{
    void prepare() override
    {
        defaultsWrite({u"menuTitleFormatter"_s, u"-string"_s, u"%H:%M:%S"_s});
    }
};

TEST_F(TitleFollowers, TitleChangedArrivesOncePerChangeWithPropertiesChanged)
{
    TitleSignals received;
    ASSERT_TRUE(WaitFor([&] { return received.titles.size() >= 4; }, 10000));
    Settle(200);
    const QRegularExpression clock(u"^\\d\\d:\\d\\d:\\d\\d$"_s);
    for (qsizetype i = 0; i < received.titles.size(); ++i) {
        EXPECT_TRUE(clock.match(received.titles.at(i)).hasMatch())
            << received.titles.at(i).toStdString();
        if (i > 0) {
            EXPECT_LT(received.titles.at(i - 1), received.titles.at(i))
                << "each signal is a new, later title";
        }
    }
    EXPECT_EQ(received.changedProperties, received.titles);

    const QDBusMessage reply = QDBusConnection::sessionBus().call(
        QDBusMessage::createMethodCall(HoraloBus::Service, HoraloBus::ObjectPath,
                                       u"org.freedesktop.DBus.Properties"_s, u"Get"_s)
        << HoraloBus::Interface << u"Title"_s);
    const QString title = reply.arguments().value(0).value<QDBusVariant>().variant().toString();
    Settle(50);
    EXPECT_TRUE(received.titles.mid(received.titles.size() - 2).contains(title))
        << title.toStdString();
}

using EntryMethods = RunningHoralo;

TEST_F(EntryMethods, DoWhatTheirEntriesDoAndQuitEndsAfterAnswering)
{
    // The menu opens at the pointer, and a choice in it copies.
    ASSERT_EQ(CallHoralo(u"Copy"_s, {u"custom:kept"_s}).type(), QDBusMessage::ReplyMessage);
    const QDate before = QDate::currentDate();
    QDBusMessage reply = CallHoralo(u"ShowMenu"_s, {-1, -1});
    ASSERT_EQ(reply.type(), QDBusMessage::ReplyMessage) << ErrorOf(reply).toStdString();
    Settle(500);
    // Chooser, then the GMT and numerical group: the fifth entry that can be chosen.
    for (const QString &key :
         {u"Down"_s, u"Down"_s, u"Down"_s, u"Down"_s, u"Down"_s, u"Return"_s}) {
        RunXTool(display, u"xdotool"_s, {u"key"_s, key});
        Settle(50);
    }
    Settle(300);
    EXPECT_TRUE(MatchesToday(
        ReadClipboard(display), [](QDate day) { return day.toString(u"yyyyMMdd"_s); }, before));

    EXPECT_EQ(CallHoralo(u"ShowChooser"_s).type(), QDBusMessage::ReplyMessage);
    EXPECT_TRUE(WaitFor([this] { return XWindowNamed(display, u"Date-Time Chooser"_s); }, 5000));
    EXPECT_EQ(CallHoralo(u"ShowPreferences"_s).type(), QDBusMessage::ReplyMessage);
    EXPECT_TRUE(WaitFor([this] { return XWindowNamed(display, u"Horalo Preferences"_s); }, 5000));

    reply = CallHoralo(u"Quit"_s);
    EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage) << ErrorOf(reply).toStdString();
    ASSERT_TRUE(horalo.waitForExit());
    EXPECT_EQ(horalo.exitCode(), 0);
    EXPECT_TRUE(WaitForHoraloOnBus(false));
}

using OneInstance = RunningHoralo;

TEST_F(OneInstance, ASecondStartOpensTheFirstsPreferencesLeavesOneItemAndNoSettings)
{
    // The second start belongs to a user whose settings would be moved aside if read.
    TestUser second;
    QDir().mkpath(QFileInfo(second.settingsFile()).path());
    QFile settings(second.settingsFile());
    ASSERT_TRUE(settings.open(QIODevice::WriteOnly));
    settings.write("not a property list");
    settings.close();

    HoraloProcess again(second, display);
    ASSERT_TRUE(again.run({}));
    EXPECT_EQ(again.exitCode(), 0);
    EXPECT_EQ(again.readStdout(),
              QByteArray("Horalo is already running; its Preferences window is open.\n"));
    EXPECT_TRUE(WaitFor([this] { return XWindowNamed(display, u"Horalo Preferences"_s); }, 5000));
    EXPECT_EQ(QDir(QFileInfo(second.settingsFile()).path()).entryList(QDir::Files),
              QStringList{u"org.horalo.Horalo.plist"_s});
    ASSERT_TRUE(settings.open(QIODevice::ReadOnly));
    EXPECT_EQ(settings.readAll(), QByteArray("not a property list"));

    Settle(500);
    EXPECT_EQ(watcher.registeredItems().size(), 1);
    EXPECT_TRUE(horalo.isRunning());
}

TEST(OneInstanceWithoutBus, ALockFileKeepsTheSecondOutUntilTheFirstIsGone)
{
    TestUser user;
    const auto noBus = [&user] {
        auto process = std::make_unique<HoraloProcess>(user, QString());
        process->setEnvironmentValue(u"DBUS_SESSION_BUS_ADDRESS"_s, u"disabled:"_s);
        return process;
    };
    auto first = noBus();
    first->start();
    Settle(1500);
    ASSERT_TRUE(first->isRunning()) << first->readStderr().constData();

    auto second = noBus();
    ASSERT_TRUE(second->run({}));
    EXPECT_EQ(second->exitCode(), 0);
    EXPECT_EQ(second->readStdout(), QByteArray("Horalo is already running in this session.\n"));
    EXPECT_TRUE(first->isRunning());

    // A lock left by a process that died takes nobody's place.
    first->process().kill();
    first->waitForExit();
    auto third = noBus();
    third->start();
    Settle(1500);
    EXPECT_TRUE(third->isRunning()) << third->readStdout().constData();
}

TEST(NoStatusArea, SaysSoOnceThenShowsTheItemWhenAPanelAppears)
{
    StandInNotifications notifications;
    TestUser user;
    // Offscreen there is no tray, and no watcher owns its name yet.
    HoraloProcess horalo(user, QString());
    horalo.start();
    ASSERT_TRUE(WaitForHoraloOnBus());
    ASSERT_TRUE(WaitFor([&] { return !notifications.bodies.isEmpty(); }, 15000));
    EXPECT_TRUE(notifications.bodies.first().contains(u"horalo show-menu"_s));

    StandInWatcher watcher;
    ASSERT_TRUE(WaitFor([&] { return watcher.registeredItems().size() == 1; }, 10000));
    Settle(500);
    EXPECT_EQ(notifications.bodies.size(), 1);
    EXPECT_TRUE(horalo.isRunning());

    const QList<QByteArray> lines = horalo.readStderr().split('\n');
    const auto notices = std::count_if(lines.begin(), lines.end(), [](const QByteArray &line) {
        return line.startsWith("horalo: ") && line.contains("horalo show-menu");
    });
    EXPECT_EQ(notices, 1);
    horalo.process().terminate();
    horalo.waitForExit();
    WaitForHoraloOnBus(false);
}

} // namespace

#include "SessionBusTest.moc"
