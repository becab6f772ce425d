#include "app/cli/MenuCommand.h"

int RunMenuCommand(const QStringList &, QTextStream &, QTextStream &err)
{
    err << "horalo: this command is not available yet\n";
    return 2;
}

int RunTitleCommand(const QStringList &, QTextStream &, QTextStream &err)
{
    err << "horalo: this command is not available yet\n";
    return 2;
}

int RunCopyCommand(const QStringList &, QTextStream &, QTextStream &err)
{
    err << "horalo: this command is not available yet\n";
    return 2;
}

