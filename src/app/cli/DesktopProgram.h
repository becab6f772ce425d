#pragma once

#include <string>

// The status-area program is a separate executable, so that the commands that only print a
// line never pay for loading widgets, image plugins and the desktop code.
//
// Where it is: beside the running executable (the build tree), else in the libexec directory
// that the installation put it in, found relative to the running executable so that an
// installation moved as a whole keeps working. Empty when neither holds an executable.
std::string DesktopProgramPath();

// Replaces this process with the desktop program, with argv passed on unchanged (so the
// process id stays the same for whoever started `horalo`). Returns only when that fails,
// after one line on stderr, with the exit status to use.
int ExecDesktopProgram(char *argv[]);
