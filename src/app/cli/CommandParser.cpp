#include "app/cli/CommandParser.h"

#include "app/cli/TerminalText.h"

namespace {

const QString kHelp = QStringLiteral("help");
const QString kNow = QStringLiteral("now");
const QString kAt = QStringLiteral("at");

QString Spelled(const QString &optionName)
{
    return (optionName.size() == 1 ? QStringLiteral("-") : QStringLiteral("--")) + optionName;
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

} // namespace

CommandParser::CommandParser(const QStringList &usage, const QString &description) : m_usage(usage)
{
    m_parser.setApplicationDescription(Wrapped(description));
    m_parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsCompactedShortOptions);
    m_parser.addOption({{QStringLiteral("h"), kHelp}, QStringLiteral("Show this help.")});
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

void CommandParser::addArgument(const QString &name, const QString &description)
{
    m_parser.addPositionalArgument(name, description);
}

QString CommandParser::helpText() const
{
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
        QString message = unknown.isEmpty()
                              ? m_parser.errorText()
                              : QStringLiteral("unknown option '%1'").arg(Spelled(unknown.first()));
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
    return std::nullopt;
}
