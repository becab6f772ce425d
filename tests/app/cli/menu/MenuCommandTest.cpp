// `horalo menu`, `horalo title` and `horalo copy`: the real controller against the user's real
// settings file, driven from the command line.

#include "app/cli/MenuCommand.h"

#include "app/cli/CommandResult.h"
#include "app/settings/Settings.h"
#include "datetext/DateTextTestSupport.h"
#include "platform/store/PlistPreferencesStore.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace {

class HeadlessCommands : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const QString dir =
            QDir::cleanPath(qEnvironmentVariable("HORALO_TEST_TMP")) + u'/' +
            QString::fromUtf8(::testing::UnitTest::GetInstance()->current_test_info()->name());
        QDir(dir).removeRecursively();
        QDir().mkpath(dir);
        m_config = dir.toUtf8();
        environment.set("XDG_CONFIG_HOME", m_config.constData());
        environment.setLocaleAndZone("en_US.UTF-8", "America/New_York");
    }

    void store(const QString &key, const QVariant &value)
    {
        PlistPreferencesStore settings;
        settings.setAppValue(key, value, AppIdentifier);
        ASSERT_TRUE(settings.appSynchronize(AppIdentifier));
    }
    // The lines a command prints at 2006-03-10 14:31:47 in New York.
    static QStringList printed(int (*command)(const QStringList &, QTextStream &, QTextStream &),
                               const QStringList &args = {})
    {
        const CommandResult result = RunCommand(command, args + Words("--now @1142019107"));
        EXPECT_EQ(result.status, 0) << result.err.toStdString();
        return result.out.split(u'\n');
    }

    ScopedDateEnvironment environment;
    QByteArray m_config;
};

TEST_F(HeadlessCommands, MenuPrintsTheRowsAsTheyOpenFollowingTheStoreAndAPickedMoment)
{
    const QStringList lines = printed(RunMenuCommand);
    ASSERT_EQ(lines.size(), 18) << "seventeen rows and the final newline";
    EXPECT_EQ(lines.at(0), u"Date-Time Chooser\tshowCalendar:\t"_s);
    EXPECT_EQ(lines.at(6), u"20060310\tnumericalDateNoHyphens:\t"_s);
    EXPECT_EQ(lines.at(16), u"Quit\tselItemQuit:\t"_s);
    EXPECT_TRUE(lines.at(17).isEmpty());

    store(SettingsKey::CustomDates, QVariantList{u"%B %e"_s});
    store(SettingsKey::IncludeGMTDateTime, false);
    const QString picked =
        printed(RunMenuCommand, Words("--at 2006-03-20T14:31:47-05:00")).join(u'\n');
    EXPECT_TRUE(picked.contains(u"Days To Mar 20, 2006, 2:31\u202FPM: 10 days"_s));
    EXPECT_TRUE(picked.contains(u"March 20\tcustomDateFormatter:\t%B %e\n"_s));
    EXPECT_FALSE(picked.contains(u"gmtDateTime:"_s));
}

TEST_F(HeadlessCommands, TitlePrintsOneRefreshOrNothingAndCopyPrintsWhatTheEntryCopies)
{
    EXPECT_EQ(printed(RunTitleCommand), (QStringList{u"Mar 10, 2006"_s, QString()}));
    store(SettingsKey::LastTitleDisplayName, u"Medium Date-Time"_s);
    EXPECT_EQ(printed(RunTitleCommand), QStringList{QString()})
        << "an unknown name leaves the title as it was";
    store(SettingsKey::MenuTitleFormatter, u"%H:%M"_s);
    EXPECT_EQ(printed(RunTitleCommand), (QStringList{u"14:31"_s, QString()}));

    EXPECT_EQ(printed(RunCopyCommand, {u"Numerical Date No Hyphens"_s}),
              (QStringList{u"20060310"_s, QString()}));
    EXPECT_EQ(RunCommand(RunCopyCommand, Words("--format %Y-%j --at @1142019107")).out,
              u"2006-069\n"_s);
}

TEST_F(HeadlessCommands, ControlCharactersFromTheStoreNeverReachTheTerminal)
{
    // The settings file carries DEL, the C1 controls and tabs; a terminal acts on the first two
    // (U+009B starts a command), and a tab would split the menu's rows into false fields.
    store(SettingsKey::MenuTitleFormatter, u"%H\u009b2J\u007f"_s);
    EXPECT_EQ(printed(RunTitleCommand).first(), u"14\uFFFD2J\uFFFD"_s);
    store(SettingsKey::CustomDates, QVariantList{u"%Y\t\u009b"_s});
    EXPECT_TRUE(printed(RunMenuCommand)
                    .contains(u"2006\uFFFD\uFFFD\tcustomDateFormatter:\t%Y\uFFFD\uFFFD"_s));
}

TEST_F(HeadlessCommands, BadInputIsOneLineWithStatusTwoAndWritesNothing)
{
    const struct
    {
        int (*command)(const QStringList &, QTextStream &, QTextStream &);
        const char *words;
    } cases[] = {
        {RunCopyCommand, R"("Short Date Time")"}, // a title name, not a menu name
        {RunCopyCommand, "custom:%Y"},            // a custom format comes with --format
        {RunCopyCommand, ""},
        {RunCopyCommand, "--format"},
        {RunMenuCommand, "--now yesterday"},
        {RunTitleCommand, "extra"},
        {RunTitleCommand, "--now"},
        {RunCopyCommand, "--at @999999999999999"},
        {RunMenuCommand, "--at=+999999999-12-31T23:59:59Z"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.words);
        const CommandResult result = RunCommand(c.command, Words(c.words));
        ExpectBadInput(result);
        EXPECT_EQ(result.err.count(u"horalo"_s), 1) << result.err.toStdString();
    }
    EXPECT_FALSE(QFile::exists(QString::fromUtf8(m_config) + u"/horalo/org.horalo.Horalo.plist"_s))
        << "nothing was written";
}

} // namespace
