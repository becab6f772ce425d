#include "app/cli/Cli.h"

#include "app/cli/CommandParser.h"
#include "app/cli/DefaultsCommand.h"
#include "app/cli/MenuCommand.h"
#include "app/cli/RenderCommand.h"
#include "app/cli/SessionCommands.h"
#include "app/cli/TerminalText.h"
#include "app/cli/TimeArgument.h"
#include "platform/Version.h"

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {
struct Command
{
    const char *name;
    const char *summary;
    CliCommand run;
};

const Command kCommands[] = {
    {"defaults",
     "read, write and delete settings (defaults read | write KEY -TYPE VALUE | delete KEY)",
     RunDefaultsCommand},
    {"render", "print the text of a format NAME or --format FORMAT", RunRenderCommand},
    {"since", "say how long ago, or how far ahead, a TIME is", RunSinceCommand},
    {"menu", "print the menu as it would open now", RunMenuCommand},
    {"title", "print what the title shows; --follow keeps printing it for status bars",
     RunTitleCommand},
    {"copy", "print the text a menu entry copies; --clipboard has Horalo copy it", RunCopyCommand},
    {"show-menu", "open the running Horalo's menu at the pointer", RunShowMenuCommand},
};

QString CommandNames()
{
    QStringList names;
    for (const Command &command : kCommands)
        names.append(QLatin1String(command.name));
    return names.join(u", "_s);
}

QString GeneralHelp()
{
    QString help = u"Usage: horalo                  start the clock in the status area\n"
                   u"       horalo COMMAND [ARGS]   run a command\n"
                   u"       horalo COMMAND --help   describe a command\n"
                   u"\n"
                   u"Commands:\n"_s;
    for (const Command &command : kCommands) {
        help += u"  %1 %2\n"_s.arg(QLatin1String(command.name), -10)
                    .arg(QLatin1String(command.summary));
    }
    help += u"\n"
            u"Options:\n"
            u"  -h, --help    show this help\n"
            u"  --version     print the version\n"
            u"\n"
            u"TIME is ISO 8601 with an offset or Z (2006-03-10T14:31:47-05:00), or @SECONDS "
            u"since 1970, within "_s +
            kTimeArgumentRange + u".\n"_s;
    return help;
}

// The options before a command: help and version. Nothing else may come before the command.
std::optional<int> RunGeneralOptions(const QStringList &arguments, QTextStream &out,
                                     QTextStream &err)
{
    CommandParser parser(GeneralHelp());
    parser.addOption({u"version"_s, u"Print the version."_s});
    parser.setUnknownOptionMessage(u"unknown option '%1' (try 'horalo --help')"_s);
    if (const std::optional<int> status = parser.parse(arguments.mid(1), out, err))
        return status;
    if (parser.isSet(u"version"_s)) {
        out << "horalo " << HORALO_VERSION << '\n';
        return 0;
    }
    return std::nullopt;
}

} // namespace

std::optional<int> RunCommandLine(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    if (arguments.size() < 2)
        return std::nullopt;
    const QString word = arguments.at(1);
    if (word.startsWith(QLatin1Char('-'))) {
        if (const std::optional<int> status = RunGeneralOptions(arguments, out, err))
            return status;
    }
    for (const Command &command : kCommands) {
        if (word == QLatin1String(command.name))
            return command.run(arguments.mid(2), out, err);
    }
    PrintCommandLineError(err, u"unknown command '%1' (commands: %2; see 'horalo --help')"_s.arg(
                                   word, CommandNames()));
    return 2;
}

std::optional<int> RunCommandLine(int argc, const char *const argv[])
{
    if (argc < 2)
        return std::nullopt;
    QTextStream err(stderr);
    QString error;
    // A byte sequence that is not text would reach the store or the renderers as U+FFFD.
    const std::optional<QStringList> arguments = DecodeArguments(argc, argv, error);
    if (!arguments) {
        PrintCommandLineError(err, error);
        return 2;
    }
    QTextStream out(stdout);
    const std::optional<int> status = RunCommandLine(*arguments, out, err);
    out.flush();
    err.flush();
    return status;
}
