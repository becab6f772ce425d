#pragma once

#include "app/cli/TimeArgument.h"

#include <QCommandLineParser>
#include <QStringList>
#include <QTextStream>

#include <optional>

// One command's arguments, read by QCommandLineParser with what every command shares: -h and
// --help print the command's help, --now and --at (where the command takes them) are TIMEs,
// and bad input is one line on stderr with exit status 2.
class CommandParser
{
public:
    // usage: the usage lines after "horalo " ("copy [options] NAME"), one per form;
    // description: what the command does, in a sentence or two.
    CommandParser(const QStringList &usage, const QString &description);

    void addOption(const QCommandLineOption &option);
    // --now TIME and --at TIME.
    void addTimeOptions();
    // A positional argument, for the help text.
    void addArgument(const QString &name, const QString &description);

    // Reads args (the command word left out). std::nullopt when the command should go on;
    // otherwise the exit status, after printing the help (0) or an error (2).
    std::optional<int> parse(const QStringList &args, QTextStream &out, QTextStream &err);

    bool isSet(const QString &name) const { return m_parser.isSet(name); }
    QString value(const QString &name) const { return m_parser.value(name); }
    QStringList positional() const { return m_parser.positionalArguments(); }
    const TimeOptions &time() const { return m_time; }

    QString helpText() const;

private:
    QCommandLineParser m_parser;
    QStringList m_usage;
    bool m_timeOptions = false;
    TimeOptions m_time;
};
