#include "app/cli/RenderCommand.h"

#include "datetext/DateFormatCatalogue.h"
#include "datetext/DateText.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

struct CommandResult
{
    int status = -1;
    QString out;
    QString err;
};

class DateCommandTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        // The test environment pins LANG=en_US.UTF-8 and TZ=America/New_York.
        g_selectedDateTime = 0;
        gUserDefaultsDictionary.reset();
    }
    void TearDown() override { unsetenv("LC_ALL"); }

    static CommandResult run(int (*command)(const QStringList &, QTextStream &, QTextStream &),
                             const QStringList &args)
    {
        CommandResult result;
        QTextStream out(&result.out);
        QTextStream err(&result.err);
        result.status = command(args, out, err);
        out.flush();
        err.flush();
        return result;
    }
    static CommandResult render(const QStringList &args) { return run(RunRenderCommand, args); }
    static CommandResult since(const QStringList &args) { return run(RunSinceCommand, args); }

    static void expectBadInput(const CommandResult &result)
    {
        EXPECT_EQ(result.status, 2);
        EXPECT_TRUE(result.out.isEmpty());
        EXPECT_TRUE(result.err.startsWith(u"horalo: "_s)) << result.err.toStdString();
        EXPECT_EQ(result.err.count(QLatin1Char('\n')), 1) << result.err.toStdString();
    }
};

TEST_F(DateCommandTest, RendersACatalogueNameAtAPickedMoment)
{
    const CommandResult result =
        render({u"Numerical Date No Hyphens"_s, u"--at"_s, u"2006-03-10T14:31:47-05:00"_s});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, u"20060310\n"_s);
    EXPECT_TRUE(result.err.isEmpty());
    EXPECT_EQ(render({u"Medium Date-Time"_s, u"--at"_s, u"@1142019107"_s}).out,
              u"Mar 10, 2006, 2:31:47\u202FPM\n"_s);
}

TEST_F(DateCommandTest, RendersACustomFormatWithTheLaunchSnapshot)
{
    const CommandResult result =
        render({u"--format"_s, u"%a %d %b, %Y %I:%M:%S %p (%z)"_s, u"--at"_s, u"@1142019107"_s});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, u"Fri 10 Mar, 2006 02:31:47 PM (-0500)\n"_s);
    setenv("LC_ALL", "de_DE.UTF-8", 1);
    EXPECT_EQ(render({u"--format=%A, %e. %B"_s, u"--at=@1142019107"_s}).out,
              u"Freitag, 10. März\n"_s);
}

TEST_F(DateCommandTest, NowFixesTheClockAndAtTheReferenceInstantPicksNothing)
{
    const QStringList now{u"--now"_s, u"2006-03-10T14:31:47-05:00"_s};
    EXPECT_EQ(render(QStringList{u"Numerical Date Time"_s} + now).out, u"2006-03-10 14:31:47\n"_s);
    EXPECT_EQ(
        render(QStringList{u"Numerical Date"_s, u"--at"_s, u"2001-01-01T00:00:00Z"_s} + now).out,
        u"2006-03-10\n"_s);
    EXPECT_EQ(render(QStringList{u"--format"_s, u"%S.%F"_s, u"--at"_s,
                                 u"2006-03-10T14:31:47.250-05:00"_s})
                  .out,
              u"47.250\n"_s);
}

TEST_F(DateCommandTest, TitleNamesRenderAsTheTitleDoes)
{
    const QStringList times{u"--now"_s, u"@1142019107"_s, u"--at"_s, u"@946702799"_s};
    // The styled titles follow the picked moment; "GMT" always shows the present.
    EXPECT_EQ(render(QStringList{u"Medium Date Time"_s} + times).out,
              u"Dec 31, 1999, 11:59:59\u202FPM\n"_s);
    EXPECT_EQ(render(QStringList{u"GMT"_s} + times).out, u"2006-03-10 14:31:47 -0500\n"_s);
    EXPECT_EQ(render(QStringList{u"GMT Date Time"_s} + times).out,
              u"1999-12-31 23:59:59 -0500\n"_s);
}

TEST_F(DateCommandTest, CommandsLeaveTheProcesssDateStateAsTheyFoundIt)
{
    render({u"--format"_s, u"%Y"_s, u"--at"_s, u"@1142019107"_s});
    EXPECT_EQ(g_selectedDateTime, 0.0);
    EXPECT_FALSE(gUserDefaultsDictionary.has_value());
}

TEST_F(DateCommandTest, RenderRejectsBadInputWithOneLineAndStatusTwo)
{
    expectBadInput(render({u"Medium Date-Time"_s.toLower()}));
    expectBadInput(render({u"No Such Format"_s}));
    expectBadInput(render({}));
    expectBadInput(render({u"Long"_s, u"Date"_s}));
    expectBadInput(render({u"Long Date"_s, u"--format"_s, u"%Y"_s}));
    expectBadInput(render({u"--format"_s}));
    expectBadInput(render({u"Long Date"_s, u"--at"_s, u"yesterday"_s}));
    expectBadInput(render({u"Long Date"_s, u"--colour"_s, u"red"_s}));
}

TEST_F(DateCommandTest, ErrorsShowTheArgumentEscapedOnOneLine)
{
    const CommandResult result = render({u"Long Date"_s, u"--colour\n\u001b[31m"_s});
    expectBadInput(result);
    EXPECT_EQ(result.err, u"horalo: unknown option '--colour\\n\\x1b[31m'\n"_s);
    const CommandResult time = render({u"Long Date"_s, u"--at"_s, u"\r@5\u009b"_s});
    expectBadInput(time);
    EXPECT_TRUE(time.err.startsWith(u"horalo: cannot read the time '\\r@5\\u009b'"_s))
        << time.err.toStdString();
}

// The range TIME accepts is the range every text can be rendered for: at both ends, in the
// zones furthest ahead of and behind GMT, no format comes out empty or as the fallback.
TEST_F(DateCommandTest, EveryFormatRendersAtBothEndsOfTheTimeRange)
{
    for (const char *zone : {"Pacific/Kiritimati", "Etc/GMT+12"}) {
        setenv("TZ", zone, 1);
        for (const QString &at : {u"-1000000-01-01T00:00:00Z"_s, u"1000000-12-31T23:59:59Z"_s}) {
            for (const CatalogueFormat &format : DateFormatCatalogue()) {
                const CommandResult result =
                    render({format.menuName.toString(), u"--at"_s, at, u"--now"_s, at});
                EXPECT_EQ(result.status, 0)
                    << zone << ' ' << at.toStdString() << ' '
                    << format.menuName.toString().toStdString() << ' ' << result.err.toStdString();
                EXPECT_GT(result.out.size(), 4) << result.out.toStdString();
                EXPECT_NE(result.out, kFallbackText + u'\n');
            }
            EXPECT_EQ(render({u"--format"_s, u"%Y %j %H:%M:%S %z"_s, u"--at"_s, at}).status, 0);
            EXPECT_EQ(render({u"GMT"_s, u"--now"_s, at}).status, 0);
        }
    }
    setenv("TZ", "America/New_York", 1);
    EXPECT_EQ(render({u"Numerical Date Time"_s, u"--at"_s, u"1000000-12-31T23:59:59Z"_s}).out,
              u"1000000-12-31 18:59:59\n"_s);
    EXPECT_EQ(render({u"Numerical Date"_s, u"--at"_s, u"-1000000-01-01T00:00:00Z"_s}).out,
              u"-1000001-12-31\n"_s);
}

TEST_F(DateCommandTest, TimesOutsideTheRangeAreRefusedWithTheRange)
{
    for (const QString &time :
         {u"@999999999999999"_s, u"+999999999-12-31T23:59:59Z"_s, u"1000001-01-01T00:00:00Z"_s,
          u"-1000000-01-01T00:00:00+00:01"_s, u"-1000001-12-31T23:59:59Z"_s}) {
        for (const QString &option : {u"--now"_s, u"--at"_s}) {
            const CommandResult result = render({u"Long Date"_s, option, time});
            expectBadInput(result);
            EXPECT_TRUE(result.err.contains(u"outside the range"_s)) << result.err.toStdString();
            EXPECT_TRUE(result.err.contains(u"1000000-12-31T23:59:59Z"_s));
        }
        expectBadInput(since({time, u"--now"_s, u"@0"_s}));
    }
    EXPECT_EQ(render({u"Long Date"_s, u"--at"_s, u"1000000-12-31T23:59:59.5Z"_s}).status, 0);
}

TEST_F(DateCommandTest, SincePrintsThePhrase)
{
    const CommandResult result =
        since({u"--depth"_s, u"2"_s, u"--now"_s, u"@100000"_s, u"@9939"_s});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, u"1 day, 1 hour\n"_s);
    const QStringList now{u"--now"_s, u"@100000"_s};
    EXPECT_EQ(since(QStringList{u"@9939"_s} + now).out, u"1 day, 1 hour\n"_s);
    EXPECT_EQ(since(QStringList{u"--depth=7"_s, u"@9939.5"_s} + now).out,
              u"1 day, 1 hour, 1 min\n"_s);
    EXPECT_EQ(since(QStringList{u"--unit"_s, u"3"_s, u"@9939"_s} + now).out, u"25 hours\n"_s);
    EXPECT_EQ(since(QStringList{u"--unit"_s, u"4"_s, u"@190061"_s} + now).out, u"-1 day\n"_s);
    EXPECT_EQ(since(QStringList{u"--unit"_s, u"3"_s, u"@99999"_s} + now).out,
              u"Less than a hour\n"_s);
    EXPECT_EQ(since(QStringList{u"--depth"_s, u"-1"_s, u"1970-01-01T00:00:00Z"_s} + now).out,
              u"1 day, 3 hours, 46 mins, 40 secs\n"_s);
}

TEST_F(DateCommandTest, SinceRejectsBadInputWithOneLineAndStatusTwo)
{
    const QStringList now{u"--now"_s, u"@100000"_s};
    expectBadInput(since(QStringList{u"--depth"_s, u"two"_s, u"@9939"_s} + now));
    expectBadInput(since(QStringList{u"--depth"_s, u"2.5"_s, u"@9939"_s} + now));
    expectBadInput(since(QStringList{u"--depth"_s, u"99999999999"_s, u"@9939"_s} + now));
    expectBadInput(since(QStringList{u"--unit"_s, u"0"_s, u"@9939"_s} + now));
    expectBadInput(since(QStringList{u"--unit"_s, u"8"_s, u"@9939"_s} + now));
    expectBadInput(since(QStringList{u"--unit"_s, u"4"_s, u"--depth"_s, u"2"_s, u"@9939"_s} + now));
    expectBadInput(since(now));
    expectBadInput(since(QStringList{u"@9939"_s, u"@9940"_s} + now));
    expectBadInput(since(QStringList{u"9939"_s} + now));
}

} // namespace
