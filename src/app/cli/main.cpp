// horalo: the command line, and the way into the status-area program.
//
// `horalo COMMAND ...` prints its answer and exits; it links only what the commands need
// (QtCore, QtDBus, ICU, the settings store). `horalo` alone becomes the desktop program.

#include "app/cli/Cli.h"
#include "app/cli/DesktopProgram.h"

int main(int argc, char *argv[])
{
    if (const std::optional<int> status = RunCommandLine(argc, argv))
        return *status;
    return ExecDesktopProgram(argv);
}
