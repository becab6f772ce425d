#pragma once

#include "app/cli/TimeArgument.h"

#include <QCommandLineParser>
#include <QList>
#include <QStringList>
#include <QTextStream>

#include <limits>
#include <optional>

// One command's arguments, read by QCommandLineParser with what every command shares: -h and
// --help print the command's help, --now and --at (where the command takes them) are TIMEs,
// integer options are checked against their range, and bad input is one line on stderr with
// exit status 2.
class CommandParser
{
public:
    // usage: the usage lines after "horalo " ("copy [options] NAME"), one per form;
    // description: what the command does, in a sentence or two. A command that declares no
    // argument (addArgument) takes none.
    CommandParser(const QStringList &usage, const QString &description);
    // A command with a grammar of its own after its options (the program's own options before
    // the command word, `defaults` before its verb): options are read only up to the first
    // argument, which, with everything after it, is an argument whatever it looks like. Its
    // help is the text given, as it stands.
    explicit CommandParser(const QString &help);

    void addOption(const QCommandLineOption &option);
    // --now TIME and --at TIME.
    void addTimeOptions();
    // An option whose value is an integer from min to max; any other value is bad input,
    // "--NAME needs EXPECTED, not 'VALUE'".
    void addIntegerOption(const QCommandLineOption &option, const QString &expected,
                          qint32 min = std::numeric_limits<qint32>::min(),
                          qint32 max = std::numeric_limits<qint32>::max());
    // A positional argument, for the help text.
    void addArgument(const QString &name, const QString &description);
    // How an unknown option is reported; %1 is the option as spelled ("--colour", "-x").
    void setUnknownOptionMessage(const QString &message) { m_unknownOption = message; }

    // Reads args (the command word left out). std::nullopt when the command should go on;
    // otherwise the exit status, after printing the help (0) or an error (2).
    std::optional<int> parse(const QStringList &args, QTextStream &out, QTextStream &err);

    bool isSet(const QString &name) const { return m_parser.isSet(name); }
    QString value(const QString &name) const { return m_parser.value(name); }
    // The value of an integer option, when it is given.
    std::optional<qint32> integer(const QString &name) const;
    QStringList positional() const { return m_parser.positionalArguments(); }
    const TimeOptions &time() const { return m_time; }

    QString helpText() const;

private:
    struct IntegerOption
    {
        QString name;
        QString expected;
        qint32 min;
        qint32 max;
        std::optional<qint32> value;
    };

    std::optional<int> readValues(QTextStream &err);

    QCommandLineParser m_parser;
    QStringList m_usage;
    // Set for a command with a help text of its own.
    QString m_help;
    QString m_unknownOption = QStringLiteral("unknown option '%1'");
    bool m_takesArguments = false;
    bool m_timeOptions = false;
    TimeOptions m_time;
    QList<IntegerOption> m_integers;
};
