#include "app/cli/RenderCommand.h"

#include "app/cli/CommandParser.h"
#include "app/cli/TerminalText.h"
#include "app/cli/TimeArgument.h"
#include "datetext/DateFormatCatalogue.h"
#include "datetext/DateText.h"
#include "datetext/LocaleDefaults.h"
#include "datetext/NSDateExtensions.h"
#include "platform/Clock.h"
#include "platform/memory/InMemoryPlatform.h"

using namespace Qt::StringLiterals;

namespace {

// The date state a command renders in: the clock that --now fixes (or the system's), and the
// moment that --at picks. The process-wide state is put back afterwards, so that commands run
// one after another in one process do not see each other's choices.
class CommandDateState
{
public:
    explicit CommandDateState(const TimeOptions &time)
        : m_selected(g_selectedDateTime), m_dictionary(gUserDefaultsDictionary),
          m_fixedClock(time.now.value_or(0)), m_fixed(time.now.has_value())
    {
        // As the chooser does: an instant of exactly 0 means that no moment is picked.
        g_selectedDateTime = time.at.value_or(0);
    }
    ~CommandDateState()
    {
        g_selectedDateTime = m_selected;
        gUserDefaultsDictionary = m_dictionary;
    }
    CommandDateState(const CommandDateState &) = delete;
    CommandDateState &operator=(const CommandDateState &) = delete;

    const Clock &clock() const
    {
        return m_fixed ? static_cast<const Clock &>(m_fixedClock) : m_systemClock;
    }

private:
    AbsoluteTime m_selected;
    std::optional<QVariantMap> m_dictionary;
    ManualClock m_fixedClock;
    SystemClock m_systemClock;
    bool m_fixed;
};

int Fail(QTextStream &err, const QString &message, int status = 2)
{
    PrintCommandLineError(err, message);
    return status;
}

} // namespace

int RunRenderCommand(const QStringList &args, QTextStream &out, QTextStream &err)
{
    CommandParser parser({u"render [options] NAME"_s, u"render [options] --format FORMAT"_s},
                         u"Prints the text of a format: a menu or title format NAME (\"Long "
                         u"Date\", \"Numerical Date No Hyphens\", \"Short Date Time\", "
                         u"\"GMT\"), or a custom FORMAT of % conversions."_s);
    parser.addArgument(u"NAME"_s, u"A menu or title format name; quote names with spaces."_s);
    parser.addOption(
        {u"format"_s, u"Render this custom format instead of a named one."_s, u"FORMAT"_s});
    parser.addTimeOptions();
    if (const std::optional<int> status = parser.parse(args, out, err))
        return *status;
    const QStringList positional = parser.positional();
    const bool hasFormat = parser.isSet(u"format"_s);
    if (hasFormat && !positional.isEmpty())
        return Fail(err, u"give either a format NAME or --format STRING, not both"_s);
    if (!hasFormat && positional.size() != 1) {
        return Fail(err, positional.isEmpty()
                             ? u"render needs a format NAME or --format STRING"_s
                             : u"render takes one format NAME (quote a name with spaces)"_s);
    }
    const CommandDateState state(parser.time());
    const Clock &clock = state.clock();

    QString text;
    if (hasFormat) {
        // A launched process's snapshot: the locale's registration with nothing stored over it.
        gUserDefaultsDictionary = LocaleDefaultsRegistration();
        text = MakeFormattedDateString(
            CalendarDateWithTimeIntervalSinceReferenceDate(WorkingInstant(clock)),
            parser.value(u"format"_s));
    } else {
        const QString name = positional.first();
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
    CommandParser parser({u"since [options] TIME"_s},
                         u"Says how long ago TIME was, or how far ahead it lies, as the chooser's "
                         u"lines do: \"10 months, 2 weeks\"."_s);
    parser.addArgument(u"TIME"_s,
                       u"ISO 8601 with an offset or Z, or @SECONDS since 1970, within "_s +
                           kTimeArgumentRange + u'.');
    parser.addIntegerOption({u"depth"_s, u"Name at most N units, largest first."_s, u"N"_s},
                            u"an integer"_s);
    // Checked here: the phrase itself fails loudly on a unit outside the table.
    parser.addIntegerOption(
        {u"unit"_s, u"Count in one unit: 1 seconds, 2 minutes, ... 7 years."_s, u"N"_s},
        u"an integer from 1 (seconds) to 7 (years)"_s, 1, 7);
    parser.addTimeOptions();
    if (const std::optional<int> status = parser.parse(args, out, err))
        return *status;
    const QStringList positional = parser.positional();
    if (positional.size() != 1)
        return Fail(err,
                    positional.isEmpty() ? u"since needs a TIME"_s : u"since takes one TIME"_s);
    QString error;
    const std::optional<AbsoluteTime> time = ReadTimeArgument(positional.first(), error);
    if (!time)
        return Fail(err, error);
    const std::optional<qint32> depth = parser.integer(u"depth"_s);
    const std::optional<qint32> unit = parser.integer(u"unit"_s);
    if (depth && unit)
        return Fail(err, u"give --depth or --unit, not both"_s);
    const CommandDateState state(parser.time());

    const std::optional<NSDateExtensions> date =
        NSDateExtensions::dateFromCFAbsoluteTime(state.clock(), *time);
    if (!date)
        return Fail(err, u"no date can be made for that time"_s, 1);
    const QString phrase = depth  ? date->timesinceWithDepth(*depth)
                           : unit ? date->timesinceWithUnit(*unit)
                                  : date->timesince();
    out << phrase << '\n';
    return 0;
}
