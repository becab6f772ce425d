#pragma once

// What a command returned and printed, and the manners every command keeps with bad input.

#include "support/QtPrinters.h"

#include <QProcess>
#include <QStringList>
#include <QTextStream>

#include <gtest/gtest.h>

#include <optional>

struct CommandResult
{
    std::optional<int> status;
    QString out;
    QString err;
};

// Runs a command: any function of the arguments, standard output and standard error.
template <typename Command> CommandResult RunCommand(Command command, const QStringList &arguments)
{
    CommandResult result;
    QTextStream out(&result.out);
    QTextStream err(&result.err);
    result.status = command(arguments, out, err);
    out.flush();
    err.flush();
    return result;
}

// The words of a command line as a shell splits them: R"("Long Date" --at @0)" is three.
inline QStringList Words(const char *commandLine)
{
    return QProcess::splitCommand(QString::fromUtf8(commandLine));
}

// Bad input: nothing on standard output, one line on standard error, and the status.
inline void ExpectBadInput(const CommandResult &result, int status = 2)
{
    EXPECT_EQ(result.status, status) << result.err.toStdString();
    EXPECT_TRUE(result.out.isEmpty()) << result.out.toStdString();
    EXPECT_TRUE(result.err.startsWith(u"horalo: ")) << result.err.toStdString();
    EXPECT_EQ(result.err.count(u'\n'), 1) << result.err.toStdString();
    EXPECT_TRUE(result.err.endsWith(u'\n')) << result.err.toStdString();
}
