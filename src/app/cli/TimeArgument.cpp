#include "app/cli/TimeArgument.h"

#include "datetext/ProlepticGregorian.h"

#include <QRegularExpression>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 kLimitYear = 1000000;
constexpr AbsoluteTime kEarliest =
    double(ProlepticGregorian::DaysFromCivil(-kLimitYear, 1, 1)) * 86400.0 -
    kAbsoluteTimeIntervalSince1970;
constexpr AbsoluteTime kLatest =
    double(ProlepticGregorian::DaysFromCivil(kLimitYear, 12, 31)) * 86400.0 + 86399.0 -
    kAbsoluteTimeIntervalSince1970;

// "0.25" from the digits after the point, to double precision.
double FractionFromDigits(const QString &digits)
{
    if (digits.isEmpty())
        return 0;
    return (u"0."_s + digits).toDouble();
}

std::optional<AbsoluteTime> ParseUnixSeconds(const QString &text)
{
    static const QRegularExpression pattern(u"^@([+-]?)(\\d{1,15})(?:\\.(\\d+))?$"_s);
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const double magnitude =
        double(match.captured(2).toLongLong()) + FractionFromDigits(match.captured(3));
    const double seconds = match.captured(1) == u"-" ? -magnitude : magnitude;
    return seconds - kAbsoluteTimeIntervalSince1970;
}

std::optional<AbsoluteTime> ParseIso8601(const QString &text)
{
    static const QRegularExpression pattern(
        u"^([+-]?\\d{4,9})-(\\d{2})-(\\d{2})[Tt ](\\d{2}):(\\d{2})(?::(\\d{2})(?:[.,](\\d+))?)?"
        u"(?:([Zz])|([+-])(\\d{2})(?::?(\\d{2}))?)$"_s);
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const qint64 year = match.captured(1).toLongLong();
    const int month = match.captured(2).toInt();
    const int day = match.captured(3).toInt();
    const int hour = match.captured(4).toInt();
    const int minute = match.captured(5).toInt();
    const int second = match.captured(6).isEmpty() ? 0 : match.captured(6).toInt();
    if (month < 1 || month > 12 || day < 1 || day > ProlepticGregorian::DaysInMonth(year, month) ||
        hour > 23 || minute > 59 || second > 59)
        return std::nullopt;

    qint64 offsetSeconds = 0;
    if (match.captured(8).isEmpty()) {
        const int offsetHours = match.captured(10).toInt();
        const int offsetMinutes = match.captured(11).isEmpty() ? 0 : match.captured(11).toInt();
        if (offsetHours > 23 || offsetMinutes > 59)
            return std::nullopt;
        offsetSeconds =
            (offsetHours * 3600 + offsetMinutes * 60) * (match.captured(9) == u"-" ? -1 : 1);
    }
    const qint64 unixSeconds = ProlepticGregorian::DaysFromCivil(year, month, day) * 86400 +
                               hour * 3600 + minute * 60 + second - offsetSeconds;
    return (double(unixSeconds) - kAbsoluteTimeIntervalSince1970) +
           FractionFromDigits(match.captured(7));
}

} // namespace

std::optional<AbsoluteTime> ParseTimeArgument(const QString &text)
{
    if (text.startsWith(QLatin1Char('@')))
        return ParseUnixSeconds(text);
    return ParseIso8601(text);
}

const QString kTimeArgumentRange =
    u"years -1000000 to 1000000 (-1000000-01-01T00:00:00Z to 1000000-12-31T23:59:59Z)"_s;

std::optional<AbsoluteTime> ReadTimeArgument(const QString &text, QString &error)
{
    const std::optional<AbsoluteTime> time = ParseTimeArgument(text);
    if (!time) {
        error = u"cannot read the time '%1' (give ISO 8601 with an offset, such as "
                u"2006-03-10T14:31:47-05:00, or @SECONDS since 1970)"_s.arg(text);
        return std::nullopt;
    }
    // A fraction past the last second still shows as that second.
    if (*time < kEarliest || *time >= kLatest + 1.0) {
        error = u"the time '%1' is outside the range Horalo can show: %2"_s.arg(text,
                                                                                kTimeArgumentRange);
        return std::nullopt;
    }
    return time;
}
