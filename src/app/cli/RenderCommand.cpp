#include "app/cli/RenderCommand.h"

#include "app/cli/TerminalText.h"
#include "app/cli/TimeArgument.h"
#include "datetext/DateFormatCatalogue.h"
#include "datetext/DateText.h"
#include "datetext/NSDateExtensions.h"
#include "platform/Clock.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

// The clock that --now fixes.
class FixedClock final : public Clock
{
public:
    explicit FixedClock(AbsoluteTime now) : m_now(now) {}
    AbsoluteTime currentAbsoluteTime() const override { return m_now; }

private:
    AbsoluteTime m_now;
};

// The process-wide date state a command sets for its rendering, put back afterwards so that
// commands run one after another in one process do not see each other's choices.
class ScopedDateState
{
public:
    ScopedDateState() : m_selected(g_selectedDateTime), m_dictionary(gUserDefaultsDictionary) {}
    ~ScopedDateState()
    {
        g_selectedDateTime = m_selected;
        gUserDefaultsDictionary = m_dictionary;
    }
    ScopedDateState(const ScopedDateState &) = delete;
    ScopedDateState &operator=(const ScopedDateState &) = delete;

private:
    AbsoluteTime m_selected;
    std::optional<QVariantMap> m_dictionary;
};

// A command's options and its positional arguments.
struct ParsedArguments
{
    TimeOptions time;
    QMap<QString, QString> values; // option name -> value
    QStringList positional;
};

// Takes the time options, then every option of `withValue` (as "--name VALUE" or
// "--name=VALUE"); anything else that begins with "--" is an error, except after "--".
bool ParseArguments(const QStringList &args, const QStringList &withValue, ParsedArguments &parsed,
                    QString &error)
{
    QStringList rest = args;
    if (!TakeTimeOptions(rest, parsed.time, error))
        return false;
    for (qsizetype i = 0; i < rest.size(); ++i) {
        const QString &arg = rest.at(i);
        if (arg == u"--") {
            parsed.positional.append(rest.mid(i + 1));
            break;
        }
        if (!arg.startsWith(u"--")) {
            parsed.positional.append(arg);
            continue;
        }
        const qsizetype equals = arg.indexOf(QLatin1Char('='));
        const QString name = equals < 0 ? arg : arg.left(equals);
        if (!withValue.contains(name)) {
            error = u"unknown option '%1'"_s.arg(name);
            return false;
        }
        if (equals >= 0) {
            parsed.values.insert(name, arg.mid(equals + 1));
        } else if (i + 1 < rest.size()) {
            parsed.values.insert(name, rest.at(++i));
        } else {
            error = u"%1 needs a value"_s.arg(name);
            return false;
        }
    }
    return true;
}

int Fail(QTextStream &err, const QString &message, int status = 2)
{
    PrintCommandLineError(err, message);
    return status;
}

std::optional<qint32> ParseInteger(const QString &text)
{
    static const QRegularExpression pattern(u"^[+-]?\\d+$"_s);
    if (!pattern.match(text).hasMatch())
        return std::nullopt;
    bool ok = false;
    const int value = text.toInt(&ok);
    if (!ok)
        return std::nullopt;
    return value;
}

} // namespace

int RunRenderCommand(const QStringList &args, QTextStream &out, QTextStream &err)
{
    ParsedArguments parsed;
    QString error;
    if (!ParseArguments(args, {u"--format"_s}, parsed, error))
        return Fail(err, error);
    const bool hasFormat = parsed.values.contains(u"--format"_s);
    if (hasFormat && !parsed.positional.isEmpty())
        return Fail(err, u"give either a format NAME or --format STRING, not both"_s);
    if (!hasFormat && parsed.positional.size() != 1) {
        return Fail(err, parsed.positional.isEmpty()
                             ? u"render needs a format NAME or --format STRING"_s
                             : u"render takes one format NAME (quote a name with spaces)"_s);
    }

    const ScopedDateState state;
    FixedClock fixedClock(parsed.time.now.value_or(0));
    const SystemClock systemClock;
    const Clock &clock = parsed.time.now ? static_cast<const Clock &>(fixedClock) : systemClock;
    // As the chooser does: an instant of exactly 0 means that no moment is picked.
    g_selectedDateTime = parsed.time.at.value_or(0);

    QString text;
    if (hasFormat) {
        // A launched process's snapshot: the locale's registration with nothing stored over it.
        gUserDefaultsDictionary = LocaleDefaultsRegistration();
        text = MakeFormattedDateString(
            CalendarDateWithTimeIntervalSinceReferenceDate(WorkingInstant(clock)),
            parsed.values.value(u"--format"_s));
    } else {
        const QString name = parsed.positional.first();
        if (const CatalogueFormat *format = CatalogueFormatWithMenuName(name))
            text = CatalogueFormatText(*format, WorkingInstant(clock));
        else if (const std::optional<QString> title = TitleFormatText(name, clock))
            text = *title;
        else
            return Fail(err, u"unknown format name '%1'"_s.arg(name));
    }
    if (text.isNull())
        return Fail(err, u"the text cannot be produced"_s, 1);
    out << text << '\n';
    return 0;
}

int RunSinceCommand(const QStringList &args, QTextStream &out, QTextStream &err)
{
    ParsedArguments parsed;
    QString error;
    if (!ParseArguments(args, {u"--depth"_s, u"--unit"_s}, parsed, error))
        return Fail(err, error);
    if (parsed.positional.size() != 1) {
        return Fail(err, parsed.positional.isEmpty() ? u"since needs a TIME"_s
                                                     : u"since takes one TIME"_s);
    }
    const std::optional<AbsoluteTime> time = ReadTimeArgument(parsed.positional.first(), error);
    if (!time)
        return Fail(err, error);
    const bool hasDepth = parsed.values.contains(u"--depth"_s);
    const bool hasUnit = parsed.values.contains(u"--unit"_s);
    if (hasDepth && hasUnit)
        return Fail(err, u"give --depth or --unit, not both"_s);
    std::optional<qint32> depth;
    std::optional<qint32> unit;
    if (hasDepth) {
        depth = ParseInteger(parsed.values.value(u"--depth"_s));
        if (!depth)
            return Fail(err, u"--depth needs an integer, not '%1'"_s.arg(
                                 parsed.values.value(u"--depth"_s)));
    }
    if (hasUnit) {
        unit = ParseInteger(parsed.values.value(u"--unit"_s));
        // Checked here: the phrase itself fails loudly on a unit outside the table.
        if (!unit || *unit < 1 || *unit > 7)
            return Fail(err, u"--unit needs an integer from 1 (seconds) to 7 (years), "
                             u"not '%1'"_s.arg(parsed.values.value(u"--unit"_s)));
    }

    const ScopedDateState state;
    FixedClock fixedClock(parsed.time.now.value_or(0));
    const SystemClock systemClock;
    const Clock &clock = parsed.time.now ? static_cast<const Clock &>(fixedClock) : systemClock;
    g_selectedDateTime = parsed.time.at.value_or(0);

    const std::optional<NSDateExtensions> date =
        NSDateExtensions::dateFromCFAbsoluteTime(clock, *time);
    if (!date)
        return Fail(err, u"no date can be made for that time"_s, 1);
    const QString phrase = depth  ? date->timesinceWithDepth(*depth)
                           : unit ? date->timesinceWithUnit(*unit)
                                  : date->timesince();
    out << phrase << '\n';
    return 0;
}
