#include "app/cli/CommandParser.h"

#include "app/cli/TerminalText.h"

#include <QRegularExpression>

namespace {

const QString kHelp = QStringLiteral("help");
const QString kNow = QStringLiteral("now");
const QString kAt = QStringLiteral("at");

QString Spelled(const QString &optionName)
{
    return (optionName.size() == 1 ? QStringLiteral("-") : QStringLiteral("--")) + optionName;
}

// An unknown option as the user typed it: a single-dash word ("-bool") is read as letters
// compacted together, and naming only its first letter would point at nothing typed.
QString AsTyped(const QString &optionName, const QStringList &args)
{
    if (optionName.size() == 1) {
        for (const QString &arg : args) {
            if (arg == QLatin1String("--"))
                break;
            if (arg.size() > 2 && arg.startsWith(QLatin1Char('-')) &&
                !arg.startsWith(QLatin1String("--")) && arg.mid(1).contains(optionName))
                return arg;
        }
    }
    return Spelled(optionName);
}

// The text in lines of at most 79 columns, broken between words, as the options' help is.
QString Wrapped(const QString &text)
{
    const qsizetype width = 79;
    QString wrapped;
    qsizetype lineLength = 0;
    for (const QString &word : text.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        if (lineLength > 0 && lineLength + 1 + word.size() > width) {
            wrapped += QLatin1Char('\n');
            lineLength = 0;
        } else if (lineLength > 0) {
            wrapped += QLatin1Char(' ');
            ++lineLength;
        }
        wrapped += word;
        lineLength += word.size();
    }
    return wrapped;
}

// A whole number that fits in 32 bits, sign and digits only: "2", "-1", "+7".
std::optional<qint32> ParseInteger(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral("^[+-]?\\d+$"));
    if (!pattern.match(text).hasMatch())
        return std::nullopt;
    bool ok = false;
    const int value = text.toInt(&ok);
    if (!ok)
        return std::nullopt;
    return value;
}

} // namespace

CommandParser::CommandParser(const QStringList &usage, const QString &description) : m_usage(usage)
{
    m_parser.setApplicationDescription(Wrapped(description));
    m_parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsCompactedShortOptions);
    m_parser.addOption({{QStringLiteral("h"), kHelp}, QStringLiteral("Show this help.")});
}

CommandParser::CommandParser(const QString &help) : CommandParser({}, {})
{
    m_help = help;
    m_takesArguments = true;
    m_parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
}

void CommandParser::addOption(const QCommandLineOption &option)
{
    m_parser.addOption(option);
}

void CommandParser::addTimeOptions()
{
    m_timeOptions = true;
    m_parser.addOption({kNow,
                        QStringLiteral("Take TIME as the current time: ISO 8601 with an offset or "
                                       "Z, or @SECONDS since 1970, within ") +
                            kTimeArgumentRange + u'.',
                        QStringLiteral("TIME")});
    m_parser.addOption({kAt, QStringLiteral("Show TIME as if it were picked in the chooser."),
                        QStringLiteral("TIME")});
}

void CommandParser::addIntegerOption(const QCommandLineOption &option, const QString &expected,
                                     qint32 min, qint32 max)
{
    m_parser.addOption(option);
    m_integers.append({option.names().constLast(), expected, min, max, std::nullopt});
}

void CommandParser::addArgument(const QString &name, const QString &description)
{
    m_takesArguments = true;
    m_parser.addPositionalArgument(name, description);
}

std::optional<qint32> CommandParser::integer(const QString &name) const
{
    for (const IntegerOption &option : m_integers) {
        if (option.name == name)
            return option.value;
    }
    return std::nullopt;
}

QString CommandParser::helpText() const
{
    if (!m_help.isEmpty())
        return m_help;
    // Qt's own usage line names the executable as it was started; ours names the command.
    QString help;
    for (qsizetype i = 0; i < m_usage.size(); ++i)
        help += (i == 0 ? QStringLiteral("Usage: horalo ") : QStringLiteral("       horalo ")) +
                m_usage.at(i) + QLatin1Char('\n');
    const QString generated = m_parser.helpText();
    const qsizetype rest = generated.indexOf(QLatin1Char('\n'));
    if (rest >= 0)
        help += generated.mid(rest);
    return help;
}

std::optional<int> CommandParser::parse(const QStringList &args, QTextStream &out, QTextStream &err)
{
    if (!m_parser.parse(QStringList{QStringLiteral("horalo")} + args)) {
        const QStringList unknown = m_parser.unknownOptionNames();
        QString message = unknown.isEmpty() ? m_parser.errorText()
                                            : m_unknownOption.arg(AsTyped(unknown.first(), args));
        if (message.endsWith(QLatin1Char('.')))
            message.chop(1);
        if (!message.isEmpty())
            message[0] = message.at(0).toLower();
        PrintCommandLineError(err, message);
        return 2;
    }
    if (m_parser.isSet(kHelp)) {
        out << helpText();
        return 0;
    }
    if (const std::optional<int> status = readValues(err))
        return status;
    if (!m_takesArguments && !positional().isEmpty()) {
        PrintCommandLineError(err,
                              QStringLiteral("unexpected argument '%1'").arg(positional().first()));
        return 2;
    }
    return std::nullopt;
}

std::optional<int> CommandParser::readValues(QTextStream &err)
{
    if (m_timeOptions) {
        QString error;
        for (const QString &name : {kNow, kAt}) {
            if (!m_parser.isSet(name))
                continue;
            const std::optional<AbsoluteTime> time = ReadTimeArgument(m_parser.value(name), error);
            if (!time) {
                PrintCommandLineError(err, error);
                return 2;
            }
            (name == kNow ? m_time.now : m_time.at) = time;
        }
    }
    for (IntegerOption &option : m_integers) {
        if (!m_parser.isSet(option.name))
            continue;
        const QString text = m_parser.value(option.name);
        option.value = ParseInteger(text);
        if (!option.value || *option.value < option.min || *option.value > option.max) {
            option.value.reset();
            PrintCommandLineError(err, QStringLiteral("%1 needs %2, not '%3'")
                                           .arg(Spelled(option.name), option.expected, text));
            return 2;
        }
    }
    return std::nullopt;
}
