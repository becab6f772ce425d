// The command line's manners: help for the whole and for each command, the version, and bad
// input as one line with status 2, including the commands that need a running Horalo when none
// can be reached (these tests have no session bus).

#include "app/cli/Cli.h"
#include "app/cli/CommandResult.h"
#include "app/cli/TimeArgument.h"
#include "platform/Version.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

CommandResult Horalo(const QStringList &arguments)
{
    return RunCommand(
        [](const QStringList &words, QTextStream &out, QTextStream &err) {
            return RunCommandLine(QStringList{u"horalo"_s} + words, out, err);
        },
        arguments);
}

TEST(CommandLine, HelpListsEveryCommandOnALineOfItsOwnAndVersionNamesTheProgram)
{
    EXPECT_EQ(Horalo({}).status, std::nullopt) << "nothing but the program: the desktop one";
    for (const QString &option : {u"--help"_s, u"-h"_s}) {
        const CommandResult result = Horalo({option});
        EXPECT_EQ(result.status, 0) << option.toStdString();
        EXPECT_TRUE(result.err.isEmpty());
        const QStringList lines = result.out.split(u'\n');
        for (const char *command :
             {"defaults", "render", "since", "menu", "title", "copy", "show-menu"}) {
            const QString start = u"  "_s + QLatin1String(command) + u' ';
            const auto described = std::count_if(lines.begin(), lines.end(), [&](const QString &l) {
                return l.startsWith(start) && l.size() > start.size() + 6;
            });
            EXPECT_EQ(described, 1) << command << " in\n" << result.out.toStdString();
        }
    }
    const CommandResult version = Horalo({u"--version"_s});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.out, QStringLiteral("horalo " HORALO_VERSION "\n"));
    EXPECT_TRUE(version.err.isEmpty());
}

TEST(CommandLine, EachCommandDescribesItsOwnArguments)
{
    const struct
    {
        const char *command;
        QStringList mentions;
    } cases[] = {
        {"defaults", {u"-bool"_s, u"delete KEY"_s}},
        {"render", {u"--format <FORMAT>"_s, u"--at <TIME>"_s}},
        {"since", {u"--depth <N>"_s, u"TIME"_s}},
        {"menu", {u"--now <TIME>"_s}},
        {"title", {u"--follow"_s, u"--json"_s}},
        {"copy", {u"--clipboard"_s, u"NAME"_s}},
        {"show-menu", {u"pointer"_s}},
    };
    for (const auto &c : cases) {
        for (const QString &help : {u"--help"_s, u"-h"_s}) {
            SCOPED_TRACE(testing::Message() << c.command << ' ' << help.toStdString());
            const CommandResult result = Horalo({QLatin1String(c.command), help});
            EXPECT_EQ(result.status, 0);
            EXPECT_TRUE(result.out.startsWith(u"Usage: horalo "_s + QLatin1String(c.command)))
                << result.out.toStdString();
            for (const QString &mention : c.mentions)
                EXPECT_TRUE(result.out.contains(mention)) << mention.toStdString();
        }
    }
}

TEST(CommandLine, BadInputIsOneLineWithStatusTwoOrOneWhenNoHoraloCanBeReached)
{
    const std::pair<const char *, int> cases[] = {
        {"--bogus", 2},
        {"-x", 2},
        {"frobnicate", 2},
        {"--help-me", 2},
        {"menu --follow", 2},
        {"show-menu now", 2},
        // The live title and the running Horalo's copy have their own moment.
        {"title --follow --at @0", 2},
        {R"(copy "Numerical Date" --clipboard --now @0)", 2},
        // The name is checked before any Horalo is asked.
        {R"(copy "numerical date" --clipboard)", 2},
        {"show-menu", 1},
        {R"(copy "Numerical Date" --clipboard)", 1},
    };
    for (const auto &[words, status] : cases) {
        SCOPED_TRACE(words);
        ExpectBadInput(Horalo(Words(words)), status);
    }
}

TEST(CommandLine, TheTimeRangeTheHelpStatesIsTheRangeTaken)
{
    const QString help = Horalo({u"--help"_s}).out;
    const QRegularExpressionMatch range =
        QRegularExpression(u"TIME is .*within .*\\((\\S+) to (\\S+)\\)"_s).match(help);
    ASSERT_TRUE(range.hasMatch()) << help.toStdString();
    EXPECT_TRUE(Horalo({u"render"_s, u"--help"_s}).out.contains(range.captured(1)));

    const auto render = [](const QString &now) {
        return Horalo({u"render"_s, u"--now"_s, now, u"Long Date"_s});
    };
    for (const auto &[end, beyond] :
         {std::pair{range.captured(1), qint64(-1)}, std::pair{range.captured(2), qint64(1)}}) {
        const CommandResult inside = render(end);
        EXPECT_EQ(inside.status, 0) << end.toStdString() << ": " << inside.err.toStdString();
        EXPECT_FALSE(inside.out.trimmed().isEmpty()) << end.toStdString();
        const qint64 unixSeconds =
            qint64(ParseTimeArgument(end).value() + kAbsoluteTimeIntervalSince1970);
        ExpectBadInput(render(u'@' + QString::number(unixSeconds + beyond)));
    }
}

TEST(CommandLine, TitleAsJsonTellsAPickedMoment)
{
    const auto json = [](const char *words) {
        const CommandResult result = Horalo(Words(words));
        EXPECT_EQ(result.status, 0) << result.err.toStdString();
        return QJsonDocument::fromJson(result.out.toUtf8()).object();
    };
    EXPECT_EQ(json("title --json --now 2006-03-10T14:31:47-05:00"),
              (QJsonObject{{u"text"_s, u"Mar 10, 2006"_s},
                           {u"tooltip"_s, u"It is now: Mar 10, 2006, 2:31\u202fPM"_s},
                           {u"class"_s, u"now"_s}}));
    EXPECT_EQ(json("title --json --now 2006-03-10T14:31:47-05:00 --at 2006-03-20T14:31:47-05:00"),
              (QJsonObject{{u"text"_s, u"Mar 20, 2006"_s},
                           {u"tooltip"_s, u"It is now: Mar 10, 2006, 2:31\u202fPM\n"
                                          u"Days To Mar 20, 2006, 2:31\u202fPM: 10 days"_s},
                           {u"class"_s, u"picked"_s}}));
}

} // namespace
