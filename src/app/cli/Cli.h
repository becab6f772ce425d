#pragma once

#include <QStringList>
#include <QTextStream>

// Each command takes its arguments (after the command word) and two streams, prints its result
// on `out` and a one-line error on `err`, and returns the process's exit status: 0 on success,
// 2 for bad input.
using CliCommand = int (*)(const QStringList &args, QTextStream &out, QTextStream &err);

// Runs `horalo COMMAND ...` when argv names a command; returns std::nullopt when it does not
// (the desktop application should start instead).
#include <optional>
std::optional<int> RunCommandLine(const QStringList &arguments);

// The process's arguments: std::nullopt when there are none (the desktop application should
// start), otherwise the exit status of the command they name. Arguments that are not valid
// UTF-8, or an unknown command, give one line on stderr and status 2.
std::optional<int> RunCommandLine(int argc, const char *const argv[]);
