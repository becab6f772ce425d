#pragma once

#include <QStringList>
#include <QTextStream>

// Each command takes its arguments (after the command word) and two streams, prints its result
// on `out` and a one-line error on `err`, and returns the process's exit status: 0 on success,
// 2 for bad input.
using CliCommand = int (*)(const QStringList &args, QTextStream &out, QTextStream &err);

#include <optional>

// Runs `horalo COMMAND ...` (arguments[0] is the program), or the general options (--help,
// --version), printing on out and err. std::nullopt when there is nothing but the program's
// name: the desktop application should start. An unknown command is bad input (status 2).
std::optional<int> RunCommandLine(const QStringList &arguments, QTextStream &out, QTextStream &err);

// The process's arguments: std::nullopt when there are none (the desktop application should
// start), otherwise the exit status of the command they name. Arguments that are not valid
// UTF-8, or an unknown command, give one line on stderr and status 2.
std::optional<int> RunCommandLine(int argc, const char *const argv[]);
