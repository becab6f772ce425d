// The command line's manners: help for the whole and for each command, the version, and bad
// input as one line with status 2, including the commands that need a running Horalo when none
// can be reached (these tests have no session bus).

#include "app/cli/Cli.h"
#include "app/cli/TimeArgument.h"
#include "platform/Version.h"
#include "support/QtPrinters.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace {

struct Result
{
    std::optional<int> status;
    QString out;
    QString err;
};

Result Horalo(const QStringList &arguments)
{
    Result result;
    QTextStream out(&result.out);
    QTextStream err(&result.err);
    result.status = RunCommandLine(QStringList{QStringLiteral("horalo")} + arguments, out, err);
    out.flush();
    err.flush();
    return result;
}

void ExpectBadInput(const Result &result, int status = 2)
{
    EXPECT_EQ(result.status, status) << result.err.toStdString();
    EXPECT_TRUE(result.out.isEmpty()) << result.out.toStdString();
    EXPECT_TRUE(result.err.startsWith(QStringLiteral("horalo: "))) << result.err.toStdString();
    EXPECT_EQ(result.err.count(QLatin1Char('\n')), 1) << result.err.toStdString();
}

const QStringList kCommands{
    QStringLiteral("defaults"),  QStringLiteral("render"), QStringLiteral("since"),
    QStringLiteral("menu"),      QStringLiteral("title"),  QStringLiteral("copy"),
    QStringLiteral("show-menu"),
};

TEST(CommandLine, NothingButTheProgramStartsTheDesktopApplication)
{
    EXPECT_EQ(Horalo({}).status, std::nullopt);
}

TEST(CommandLine, HelpListsEveryCommandOnALineOfItsOwn)
{
    for (const char *option : {"--help", "-h"}) {
        const Result result = Horalo({QString::fromLatin1(option)});
        EXPECT_EQ(result.status, 0) << option;
        EXPECT_TRUE(result.err.isEmpty());
        const QStringList lines = result.out.split(QLatin1Char('\n'));
        for (const QString &command : kCommands) {
            const auto described = std::count_if(lines.begin(), lines.end(), [&](const QString &l) {
                return l.startsWith(QStringLiteral("  ") + command + QLatin1Char(' ')) &&
                       l.size() > command.size() + 8;
            });
            EXPECT_EQ(described, 1) << command.toStdString() << " in\n" << result.out.toStdString();
        }
    }
}

TEST(CommandLine, VersionNamesTheProgramAndItsVersion)
{
    const Result result = Horalo({QStringLiteral("--version")});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, QStringLiteral("horalo " HORALO_VERSION "\n"));
    EXPECT_TRUE(result.err.isEmpty());
}

TEST(CommandLine, EachCommandDescribesItsOwnArguments)
{
    const struct
    {
        const char *command;
        QStringList mentions;
    } cases[] = {
        {"defaults", {QStringLiteral("-bool"), QStringLiteral("delete KEY")}},
        {"render", {QStringLiteral("--format <FORMAT>"), QStringLiteral("--at <TIME>")}},
        {"since", {QStringLiteral("--depth <N>"), QStringLiteral("TIME")}},
        {"menu", {QStringLiteral("--now <TIME>")}},
        {"title", {QStringLiteral("--follow"), QStringLiteral("--json")}},
        {"copy", {QStringLiteral("--clipboard"), QStringLiteral("NAME")}},
        {"show-menu", {QStringLiteral("pointer")}},
    };
    for (const auto &c : cases) {
        for (const char *help : {"--help", "-h"}) {
            const Result result =
                Horalo({QString::fromLatin1(c.command), QString::fromLatin1(help)});
            EXPECT_EQ(result.status, 0) << c.command << ' ' << help;
            EXPECT_TRUE(result.out.startsWith(QStringLiteral("Usage: horalo ") +
                                              QString::fromLatin1(c.command)))
                << result.out.toStdString();
            for (const QString &mention : c.mentions)
                EXPECT_TRUE(result.out.contains(mention))
                    << c.command << ": " << mention.toStdString();
        }
    }
}

TEST(CommandLine, BadInputIsOneLineAndStatusTwo)
{
    ExpectBadInput(Horalo({QStringLiteral("--bogus")}));
    ExpectBadInput(Horalo({QStringLiteral("-x")}));
    ExpectBadInput(Horalo({QStringLiteral("frobnicate")}));
    ExpectBadInput(Horalo({QStringLiteral("--help-me")}));
    ExpectBadInput(Horalo({QStringLiteral("menu"), QStringLiteral("--follow")}));
    ExpectBadInput(Horalo({QStringLiteral("render"), QStringLiteral("--format")}));
    ExpectBadInput(Horalo({QStringLiteral("since"), QStringLiteral("--depth"),
                           QStringLiteral("two"), QStringLiteral("@0")}));
    ExpectBadInput(Horalo({QStringLiteral("show-menu"), QStringLiteral("now")}));
    // The live title and the running Horalo's copy have their own moment.
    ExpectBadInput(Horalo({QStringLiteral("title"), QStringLiteral("--follow"),
                           QStringLiteral("--at"), QStringLiteral("@0")}));
    ExpectBadInput(
        Horalo({QStringLiteral("copy"), QStringLiteral("Numerical Date"),
                QStringLiteral("--clipboard"), QStringLiteral("--now"), QStringLiteral("@0")}));
    // The name is checked before any Horalo is asked.
    ExpectBadInput(Horalo(
        {QStringLiteral("copy"), QStringLiteral("numerical date"), QStringLiteral("--clipboard")}));
}

TEST(CommandLine, TheTimeRangeTheHelpStatesIsTheRangeTaken)
{
    const QString help = Horalo({QStringLiteral("--help")}).out;
    const QRegularExpressionMatch range =
        QRegularExpression(QStringLiteral("TIME is .*within .*\\((\\S+) to (\\S+)\\)")).match(help);
    ASSERT_TRUE(range.hasMatch()) << help.toStdString();
    EXPECT_TRUE(Horalo({QStringLiteral("render"), QStringLiteral("--help")})
                    .out.contains(range.captured(1)));

    const auto render = [](const QString &now) {
        return Horalo(
            {QStringLiteral("render"), QStringLiteral("--now"), now, QStringLiteral("Long Date")});
    };
    const auto unixSeconds = [](const QString &time) {
        return qint64(ParseTimeArgument(time).value() + kAbsoluteTimeIntervalSince1970);
    };
    for (const auto &[end, beyond] :
         {std::pair{range.captured(1), qint64(-1)}, std::pair{range.captured(2), qint64(1)}}) {
        const Result inside = render(end);
        EXPECT_EQ(inside.status, 0) << end.toStdString() << ": " << inside.err.toStdString();
        EXPECT_FALSE(inside.out.trimmed().isEmpty()) << end.toStdString();
        const QString outside = u'@' + QString::number(unixSeconds(end) + beyond);
        ExpectBadInput(render(outside));
    }
}

TEST(CommandLine, CommandsForTheRunningHoraloSayWhenNoneCanBeReached)
{
    ExpectBadInput(Horalo({QStringLiteral("show-menu")}), 1);
    ExpectBadInput(Horalo({QStringLiteral("copy"), QStringLiteral("Numerical Date"),
                           QStringLiteral("--clipboard")}),
                   1);
}

TEST(CommandLine, TitleAsJsonTellsAPickedMoment)
{
    const QString now = QStringLiteral("2006-03-10T14:31:47-05:00");
    Result result =
        Horalo({QStringLiteral("title"), QStringLiteral("--json"), QStringLiteral("--now"), now});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    QJsonObject line = QJsonDocument::fromJson(result.out.toUtf8()).object();
    EXPECT_EQ(line.value(QStringLiteral("text")).toString(), QStringLiteral("Mar 10, 2006"));
    EXPECT_EQ(line.value(QStringLiteral("tooltip")).toString(),
              QStringLiteral("It is now: Mar 10, 2006, 2:31\u202fPM"));
    EXPECT_EQ(line.value(QStringLiteral("class")).toString(), QStringLiteral("now"));

    result = Horalo({QStringLiteral("title"), QStringLiteral("--json"), QStringLiteral("--now"),
                     now, QStringLiteral("--at"), QStringLiteral("2006-03-20T14:31:47-05:00")});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    line = QJsonDocument::fromJson(result.out.toUtf8()).object();
    EXPECT_EQ(line.value(QStringLiteral("text")).toString(), QStringLiteral("Mar 20, 2006"));
    EXPECT_EQ(line.value(QStringLiteral("tooltip")).toString(),
              QStringLiteral("It is now: Mar 10, 2006, 2:31\u202fPM\n"
                             "Days To Mar 20, 2006, 2:31\u202fPM: 10 days"));
    EXPECT_EQ(line.value(QStringLiteral("class")).toString(), QStringLiteral("picked"));
}

} // namespace
