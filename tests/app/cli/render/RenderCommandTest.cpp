#include "app/cli/RenderCommand.h"

#include "app/cli/CommandResult.h"
#include "datetext/DateFormatCatalogue.h"
#include "datetext/DateText.h"

#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

using Command = int (*)(const QStringList &, QTextStream &, QTextStream &);
const Command render = RunRenderCommand;
const Command since = RunSinceCommand;

class DateCommandTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        // The test environment pins LANG=en_US.UTF-8 and TZ=America/New_York.
        g_selectedDateTime = 0;
        gUserDefaultsDictionary.reset();
    }
    void TearDown() override
    {
        unsetenv("LC_ALL");
        setenv("TZ", "America/New_York", 1);
    }
};

TEST_F(DateCommandTest, EachCommandPrintsItsTextForTheMomentsItIsGiven)
{
    const struct
    {
        Command command;
        const char *words;
        const char *out;
    } cases[] = {
        {render, R"("Numerical Date No Hyphens" --at 2006-03-10T14:31:47-05:00)", "20060310\n"},
        {render, R"("Medium Date-Time" --at @1142019107)", "Mar 10, 2006, 2:31:47\u202FPM\n"},
        {render, "--format \"%a %d %b, %Y %I:%M:%S %p (%z)\" --at @1142019107",
         "Fri 10 Mar, 2006 02:31:47 PM (-0500)\n"},
        {render, R"(--format %S.%F --at 2006-03-10T14:31:47.250-05:00)", "47.250\n"},
        // --now fixes the clock, and --at the reference instant picks nothing.
        {render, R"("Numerical Date Time" --now 2006-03-10T14:31:47-05:00)",
         "2006-03-10 14:31:47\n"},
        {render, R"("Numerical Date" --at 2001-01-01T00:00:00Z --now @1142019107)", "2006-03-10\n"},
        // Title names render as the title does: "GMT" always shows the present.
        {render, R"("Medium Date Time" --now @1142019107 --at @946702799)",
         "Dec 31, 1999, 11:59:59\u202fPM\n"},
        {render, R"(GMT --now @1142019107 --at @946702799)", "2006-03-10 14:31:47 -0500\n"},
        {render, R"("GMT Date Time" --now @1142019107 --at @946702799)",
         "1999-12-31 23:59:59 -0500\n"},
        // The ends of the range, the last half second included.
        {render, R"("Numerical Date Time" --at 1000000-12-31T23:59:59.5Z)",
         "1000000-12-31 18:59:59\n"},
        {render, R"("Numerical Date" --at -1000000-01-01T00:00:00Z)", "-1000001-12-31\n"},
        {since, "--depth 2 --now @100000 @9939", "1 day, 1 hour\n"},
        {since, "@9939 --now @100000", "1 day, 1 hour\n"},
        {since, "--depth=7 @9939.5 --now @100000", "1 day, 1 hour, 1 min\n"},
        {since, "--unit 3 @9939 --now @100000", "25 hours\n"},
        {since, "--unit 4 @190061 --now @100000", "-1 day\n"},
        {since, "--unit 3 @99999 --now @100000", "Less than a hour\n"},
        {since, "--depth -1 1970-01-01T00:00:00Z --now @100000",
         "1 day, 3 hours, 46 mins, 40 secs\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.words);
        const CommandResult result = RunCommand(c.command, Words(c.words));
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.out, QString::fromUtf8(c.out));
        EXPECT_TRUE(result.err.isEmpty()) << result.err.toStdString();
    }
    // Custom formats take their names from the launch snapshot, which the command leaves as it
    // found it, with the picked moment.
    setenv("LC_ALL", "de_DE.UTF-8", 1);
    EXPECT_EQ(RunCommand(render, {u"--format=%A, %e. %B"_s, u"--at=@1142019107"_s}).out,
              u"Freitag, 10. März\n"_s);
    EXPECT_EQ(g_selectedDateTime, 0.0);
    EXPECT_FALSE(gUserDefaultsDictionary.has_value());
}

TEST_F(DateCommandTest, BadInputIsOneLineWithStatusTwoAndShowsTheArgumentEscaped)
{
    const struct
    {
        Command command;
        QStringList words;
        QString says;
    } cases[] = {
        {render, Words(R"("medium date-time")"), u"unknown format name"_s},
        {render, Words(R"("No Such Format")"), u"unknown format name"_s},
        {render, {}, u"render needs a format NAME"_s},
        {render, Words("Long Date"), u"one format NAME"_s},
        {render, Words(R"("Long Date" --format %Y)"), u"not both"_s},
        {render, Words("--format"), u"missing value after '--format'"_s},
        {render, Words(R"("Long Date" --at yesterday)"), u"cannot read the time 'yesterday'"_s},
        {render,
         {u"Long Date"_s, u"--colour\n\u001b[31m"_s},
         u"horalo: unknown option '--colour\\n\\x1b[31m'\n"_s},
        {render,
         {u"Long Date"_s, u"--at"_s, u"\r@5\u009b"_s},
         u"horalo: cannot read the time '\\r@5\\u009b'"_s},
        {since, Words("--depth two @9939 --now @100000"), u"--depth needs an integer, not 'two'"_s},
        {since, Words("--depth 2.5 @9939 --now @100000"), u"not '2.5'"_s},
        {since, Words("--depth 99999999999 @9939 --now @100000"), u"not '99999999999'"_s},
        {since, Words("--unit 0 @9939 --now @100000"), u"--unit needs an integer from 1"_s},
        {since, Words("--unit 8 @9939 --now @100000"), u"not '8'"_s},
        {since, Words("--unit 4 --depth 2 @9939 --now @100000"),
         u"give --depth or --unit, not both"_s},
        {since, Words("--now @100000"), u"since needs a TIME"_s},
        {since, Words("@9939 @9940 --now @100000"), u"since takes one TIME"_s},
        {since, Words("9939 --now @100000"), u"cannot read the time '9939'"_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.words.join(u' ').toStdString());
        const CommandResult result = RunCommand(c.command, c.words);
        ExpectBadInput(result);
        EXPECT_TRUE(result.err.contains(c.says)) << result.err.toStdString();
    }
}

// The range TIME accepts is the range every text can be rendered for: at both ends, in the
// zones furthest ahead of and behind GMT, no format comes out empty or as the fallback.
TEST_F(DateCommandTest, EveryFormatRendersAtBothEndsOfTheTimeRange)
{
    for (const char *zone : {"Pacific/Kiritimati", "Etc/GMT+12"}) {
        setenv("TZ", zone, 1);
        for (const QString &at : {u"-1000000-01-01T00:00:00Z"_s, u"1000000-12-31T23:59:59Z"_s}) {
            SCOPED_TRACE(testing::Message() << zone << ' ' << at.toStdString());
            for (const CatalogueFormat &format : DateFormatCatalogue()) {
                const CommandResult result =
                    RunCommand(render, {format.menuName.toString(), u"--at"_s, at, u"--now"_s, at});
                EXPECT_EQ(result.status, 0)
                    << format.menuName.toString().toStdString() << ' ' << result.err.toStdString();
                EXPECT_GT(result.out.size(), 4) << result.out.toStdString();
                EXPECT_NE(result.out, kFallbackText + u'\n');
            }
            EXPECT_EQ(
                RunCommand(render, {u"--format"_s, u"%Y %j %H:%M:%S %z"_s, u"--at"_s, at}).status,
                0);
            EXPECT_EQ(RunCommand(render, {u"GMT"_s, u"--now"_s, at}).status, 0);
        }
    }
}

TEST_F(DateCommandTest, TimesOutsideTheRangeAreRefusedWithTheRange)
{
    for (const QString &time :
         {u"@999999999999999"_s, u"+999999999-12-31T23:59:59Z"_s, u"1000001-01-01T00:00:00Z"_s,
          u"-1000000-01-01T00:00:00+00:01"_s, u"-1000001-12-31T23:59:59Z"_s}) {
        for (const QString &option : {u"--now"_s, u"--at"_s}) {
            const CommandResult result = RunCommand(render, {u"Long Date"_s, option, time});
            ExpectBadInput(result);
            EXPECT_TRUE(result.err.contains(u"outside the range"_s)) << result.err.toStdString();
            EXPECT_TRUE(result.err.contains(u"1000000-12-31T23:59:59Z"_s));
        }
        ExpectBadInput(RunCommand(since, {time, u"--now"_s, u"@0"_s}));
    }
}

} // namespace
