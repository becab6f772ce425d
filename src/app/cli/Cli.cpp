#include "app/cli/Cli.h"

#include "app/cli/DefaultsCommand.h"
#include "app/cli/MenuCommand.h"
#include "app/cli/RenderCommand.h"
#include "app/cli/TerminalText.h"

#include <cstdio>

namespace {
struct Command
{
    const char *name;
    CliCommand run;
};

const Command kCommands[] = {
    {"defaults", RunDefaultsCommand}, {"render", RunRenderCommand}, {"since", RunSinceCommand},
    {"menu", RunMenuCommand},         {"title", RunTitleCommand},   {"copy", RunCopyCommand},
};
} // namespace

std::optional<int> RunCommandLine(const QStringList &arguments)
{
    if (arguments.size() < 2)
        return std::nullopt;
    const QString word = arguments.at(1);
    for (const Command &command : kCommands) {
        if (word == QLatin1String(command.name)) {
            QTextStream out(stdout);
            QTextStream err(stderr);
            const int status = command.run(arguments.mid(2), out, err);
            out.flush();
            err.flush();
            return status;
        }
    }
    return std::nullopt;
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
    if (const std::optional<int> status = RunCommandLine(*arguments))
        return status;
    PrintCommandLineError(err, QStringLiteral("unknown command '%1' (commands: defaults, render, "
                                              "since, menu, title, copy)")
                                   .arg(arguments->at(1)));
    return 2;
}
