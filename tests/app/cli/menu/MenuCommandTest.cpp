// `horalo menu`, `horalo title` and `horalo copy`: the real controller against the user's real
// settings file, driven from the command line.

#include "app/cli/MenuCommand.h"

#include "app/settings/Settings.h"
#include "datetext/DateTextTestSupport.h"
#include "platform/store/PlistPreferencesStore.h"
#include "support/QtPrinters.h"

#include <QDir>

#include <gtest/gtest.h>

namespace {

struct Result
{
    int status;
    QString out;
    QString err;
};

using Command = int (*)(const QStringList &, QTextStream &, QTextStream &);

class HeadlessCommands : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const QString dir =
            QDir::cleanPath(qEnvironmentVariable("HORALO_TEST_TMP")) + QStringLiteral("/") +
            QString::fromUtf8(::testing::UnitTest::GetInstance()->current_test_info()->name());
        QDir(dir).removeRecursively();
        QDir().mkpath(dir);
        m_config = dir.toUtf8();
        environment.set("XDG_CONFIG_HOME", m_config.constData());
        environment.setLocaleAndZone("en_US.UTF-8", "America/New_York");
    }

    Result run(Command command, const QStringList &args)
    {
        QString out, err;
        QTextStream outStream(&out), errStream(&err);
        const int status = command(args, outStream, errStream);
        outStream.flush();
        errStream.flush();
        return {status, out, err};
    }

    void store(const QString &key, const QVariant &value)
    {
        PlistPreferencesStore settings;
        settings.setAppValue(key, value, AppIdentifier);
        ASSERT_TRUE(settings.appSynchronize(AppIdentifier));
    }

    ScopedDateEnvironment environment;
    QByteArray m_config;
};

const QString kFriday = QStringLiteral("@1142019107");

TEST_F(HeadlessCommands, MenuPrintsTheRowsAsTheyOpen)
{
    const Result result = run(RunMenuCommand, {QStringLiteral("--now"), kFriday});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    const QStringList lines = result.out.split(QLatin1Char('\n'));
    ASSERT_EQ(lines.size(), 18) << "seventeen rows and the final newline";
    EXPECT_EQ(lines.at(0), QStringLiteral("Date-Time Chooser\tshowCalendar:\t"));
    EXPECT_EQ(lines.at(6), QStringLiteral("20060310\tnumericalDateNoHyphens:\t"));
    EXPECT_EQ(lines.at(16), QStringLiteral("Quit\tselItemQuit:\t"));
    EXPECT_TRUE(lines.at(17).isEmpty());
}

TEST_F(HeadlessCommands, MenuFollowsTheStoreAndAPickedMoment)
{
    store(SettingsKey::CustomDates, QVariantList{QStringLiteral("%B %e")});
    store(SettingsKey::IncludeGMTDateTime, false);
    const Result result =
        run(RunMenuCommand, {QStringLiteral("--now"), kFriday, QStringLiteral("--at"),
                             QStringLiteral("2006-03-20T14:31:47-05:00")});
    ASSERT_EQ(result.status, 0);
    EXPECT_TRUE(result.out.contains(QStringLiteral("Days To Mar 20, 2006, 2:31\u202FPM: 10 days")));
    EXPECT_TRUE(result.out.contains(QStringLiteral("March 20\tcustomDateFormatter:\t%B %e\n")));
    EXPECT_FALSE(result.out.contains(QStringLiteral("gmtDateTime:")));
}

TEST_F(HeadlessCommands, TitlePrintsOneRefreshOrNothing)
{
    EXPECT_EQ(run(RunTitleCommand, {QStringLiteral("--now"), kFriday}).out,
              QStringLiteral("Mar 10, 2006\n"));

    store(SettingsKey::LastTitleDisplayName, QStringLiteral("Medium Date-Time"));
    const Result unchanged = run(RunTitleCommand, {QStringLiteral("--now"), kFriday});
    EXPECT_EQ(unchanged.status, 0);
    EXPECT_TRUE(unchanged.out.isEmpty()) << "an unknown name leaves the title as it was";

    store(SettingsKey::MenuTitleFormatter, QStringLiteral("%H:%M"));
    EXPECT_EQ(run(RunTitleCommand, {QStringLiteral("--now"), kFriday}).out,
              QStringLiteral("14:31\n"));
}

TEST_F(HeadlessCommands, ControlCharactersFromTheStoreNeverReachTheTerminal)
{
    // The settings file carries DEL, the C1 controls and tabs; a terminal acts on the first two
    // (U+009B starts a command), and a tab would split the menu's rows into false fields.
    store(SettingsKey::MenuTitleFormatter, QStringLiteral("%H\u009b2J\u007f"));
    EXPECT_EQ(run(RunTitleCommand, {QStringLiteral("--now"), kFriday}).out,
              QStringLiteral("14\uFFFD2J\uFFFD\n"));

    store(SettingsKey::CustomDates, QVariantList{QStringLiteral("%Y\t\u009b")});
    const QStringList lines =
        run(RunMenuCommand, {QStringLiteral("--now"), kFriday}).out.split(QLatin1Char('\n'));
    EXPECT_TRUE(
        lines.contains(QStringLiteral("2006\uFFFD\uFFFD\tcustomDateFormatter:\t%Y\uFFFD\uFFFD")));
}

TEST_F(HeadlessCommands, CopyPrintsWhatTheEntryWouldCopy)
{
    EXPECT_EQ(run(RunCopyCommand,
                  {QStringLiteral("Numerical Date No Hyphens"), QStringLiteral("--now"), kFriday})
                  .out,
              QStringLiteral("20060310\n"));
    EXPECT_EQ(run(RunCopyCommand, {QStringLiteral("--format"), QStringLiteral("%Y-%j"),
                                   QStringLiteral("--at"), kFriday})
                  .out,
              QStringLiteral("2006-069\n"));
}

TEST_F(HeadlessCommands, BadInputIsOneLineAndStatusTwo)
{
    const struct
    {
        Command command;
        QStringList args;
    } cases[] = {
        {RunCopyCommand, {QStringLiteral("Short Date Time")}}, // a title name, not a menu name
        {RunCopyCommand, {QStringLiteral("custom:%Y")}}, // a custom format comes with --format
        {RunCopyCommand, {}},
        {RunCopyCommand, {QStringLiteral("--format")}},
        {RunMenuCommand, {QStringLiteral("--now"), QStringLiteral("yesterday")}},
        {RunTitleCommand, {QStringLiteral("extra")}},
        {RunTitleCommand, {QStringLiteral("--now")}},
        {RunCopyCommand, {QStringLiteral("--at"), QStringLiteral("@999999999999999")}},
        {RunMenuCommand, {QStringLiteral("--at=+999999999-12-31T23:59:59Z")}},
    };
    for (const auto &c : cases) {
        const Result result = run(c.command, c.args);
        EXPECT_EQ(result.status, 2) << c.args.join(QLatin1Char(' ')).toStdString();
        EXPECT_TRUE(result.out.isEmpty());
        EXPECT_EQ(result.err.count(QLatin1Char('\n')), 1) << result.err.toStdString();
        EXPECT_TRUE(result.err.startsWith(QStringLiteral("horalo: ")));
        EXPECT_EQ(result.err.count(QStringLiteral("horalo")), 1) << result.err.toStdString();
    }
    EXPECT_FALSE(QFile::exists(QString::fromUtf8(m_config) +
                               QStringLiteral("/horalo/org.horalo.Horalo.plist")))
        << "nothing was written";
}

} // namespace
