#include "datetext/NSDateExtensions.h"

#include <array>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace {

struct TimeUnit
{
    const char16_t *name;
    qint32 seconds;
};

// Largest first. The year is the mean tropical year rounded to the second, the month a twelfth
// of it; no calendar is consulted, so every month has the same length.
constexpr std::array<TimeUnit, 7> kUnits = {{
    {u"year", 31556926},
    {u"month", 2629744},
    {u"week", 604800},
    {u"day", 86400},
    {u"hour", 3600},
    {u"min", 60},
    {u"sec", 1},
}};

// "%i %@" or "%i %@s": the count, a space, the unit name, and "s" unless the count is 1 or -1.
void AppendPiece(QString &text, qint32 count, const TimeUnit &unit)
{
    text.append(QString::number(count));
    text.append(QLatin1Char(' '));
    text.append(QStringView(unit.name));
    if (count != 1 && count != -1)
        text.append(QLatin1Char('s'));
}

} // namespace

std::optional<NSDateExtensions> NSDateExtensions::dateFromCFAbsoluteTime(const Clock &clock,
                                                                         AbsoluteTime time)
{
    if (!std::isfinite(time))
        return std::nullopt;
    // Anchored on the present: the same distance from a second reading of the clock.
    const AbsoluteTime interval = time - clock.currentAbsoluteTime();
    return NSDateExtensions(clock, clock.currentAbsoluteTime() + interval);
}

QString NSDateExtensions::daysSinceAbsoluteTme(const Clock &clock, AbsoluteTime time)
{
    const std::optional<NSDateExtensions> date = dateFromCFAbsoluteTime(clock, time);
    if (!date)
        return {};
    return date->timesinceWithUnit(4);
}

qint32 NSDateExtensions::elapsedSeconds() const
{
    constexpr qint32 kSaturated = std::numeric_limits<qint32>::min();
    const double interval = std::trunc(m_date - m_clock->currentAbsoluteTime());
    // An interval that does not fit in 32 bits, either way, reads as the most negative value;
    // so does its negation, which does not fit either.
    if (!(interval >= double(kSaturated) && interval <= double(std::numeric_limits<qint32>::max())))
        return kSaturated;
    const qint32 sinceNow = static_cast<qint32>(interval);
    return sinceNow == kSaturated ? kSaturated : -sinceNow;
}

QString NSDateExtensions::timesince() const
{
    return timesinceWithDepth(2);
}

QString NSDateExtensions::timesinceWithDepth(qint32 depth) const
{
    qint32 seconds = elapsedSeconds();
    // Wide enough that counting down from the most negative depth never overflows.
    qint64 remainingDepth = depth;
    QString text;
    for (const TimeUnit &unit : kUnits) {
        const qint32 count = seconds / unit.seconds;
        seconds -= count * unit.seconds; // the remainder keeps the sign of the whole
        if (count == 0 || remainingDepth == 0)
            continue;
        if (!text.isEmpty())
            text.append(QLatin1String(", "));
        AppendPiece(text, count, unit);
        --remainingDepth;
    }
    return text.isEmpty() ? QStringLiteral("0") : text;
}

QString NSDateExtensions::timesinceWithUnit(qint32 unit) const
{
    const qint32 seconds = elapsedSeconds();
    // The deliberate exception: a unit outside 1 to 7 has no entry in the table.
    const qint64 index = 7 - qint64(unit);
    if (index < 0 || index >= qint64(kUnits.size()))
        throw std::out_of_range("timesinceWithUnit: unit outside 1 to 7");
    const TimeUnit &entry = kUnits[static_cast<size_t>(index)];
    const qint32 count = seconds / entry.seconds;
    QString text;
    if (count == 0) {
        // The article stays "a" for every unit: "Less than a hour" is the phrase people know.
        text = QStringLiteral("Less than a ");
        text.append(QStringView(entry.name));
    } else {
        AppendPiece(text, count, entry);
    }
    return text.isEmpty() ? QStringLiteral("0") : text;
}
