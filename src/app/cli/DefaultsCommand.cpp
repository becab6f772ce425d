#include "app/cli/DefaultsCommand.h"

int RunDefaultsCommand(const QStringList &, QTextStream &, QTextStream &err)
{
    err << "horalo: this command is not available yet\n";
    return 2;
}

