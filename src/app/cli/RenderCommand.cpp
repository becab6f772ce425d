#include "app/cli/RenderCommand.h"

int RunRenderCommand(const QStringList &, QTextStream &, QTextStream &err)
{
    err << "horalo: this command is not available yet\n";
    return 2;
}

int RunSinceCommand(const QStringList &, QTextStream &, QTextStream &err)
{
    err << "horalo: this command is not available yet\n";
    return 2;
}

