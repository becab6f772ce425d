#include "app/cli/Cli.h"

#include "app/cli/DefaultsCommand.h"
#include "app/cli/MenuCommand.h"
#include "app/cli/RenderCommand.h"

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
