#pragma once

// Calendar arithmetic on the proleptic Gregorian calendar: the Gregorian rules extended to every
// year, before the 1582 reform and before year 1 alike (astronomical numbering: year 0 is 1 BC).
// Days are counted from 1970-01-01. All operations are exact over the whole 64-bit range that
// the renderers accept.

#include <QtGlobal>

namespace ProlepticGregorian {

struct CivilDate
{
    qint64 year = 1970;
    int month = 1; // 1 to 12
    int day = 1;   // 1 to 31
};

constexpr qint64 FloorDivide(qint64 a, qint64 b)
{
    const qint64 q = a / b;
    return (a % b != 0 && ((a < 0) != (b < 0))) ? q - 1 : q;
}

constexpr qint64 FloorModulo(qint64 a, qint64 b)
{
    return a - FloorDivide(a, b) * b;
}

constexpr bool IsLeapYear(qint64 year)
{
    return FloorModulo(year, 4) == 0 &&
           (FloorModulo(year, 100) != 0 || FloorModulo(year, 400) == 0);
}

constexpr int DaysInMonth(qint64 year, int month)
{
    constexpr int kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return (month == 2 && IsLeapYear(year)) ? 29 : kDays[month - 1];
}

// Days from 1970-01-01 to the given date (negative before it). The month and day must be valid.
constexpr qint64 DaysFromCivil(qint64 year, int month, int day)
{
    year -= month <= 2 ? 1 : 0;
    const qint64 era = FloorDivide(year, 400);
    const qint64 yearOfEra = year - era * 400; // [0, 399]
    const qint64 dayOfYear =
        (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1; // [0, 365]
    const qint64 dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra - 719468;
}

constexpr CivilDate CivilFromDays(qint64 days)
{
    days += 719468;
    const qint64 era = FloorDivide(days, 146097);
    const qint64 dayOfEra = days - era * 146097; // [0, 146096]
    const qint64 yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365; // [0, 399]
    const qint64 dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const qint64 shiftedMonth = (5 * dayOfYear + 2) / 153; // March is 0
    CivilDate date;
    date.day = static_cast<int>(dayOfYear - (153 * shiftedMonth + 2) / 5 + 1);
    date.month = static_cast<int>(shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9);
    date.year = yearOfEra + era * 400 + (date.month <= 2 ? 1 : 0);
    return date;
}

// 0 for Sunday to 6 for Saturday.
constexpr int WeekdayFromDays(qint64 days)
{
    return static_cast<int>(FloorModulo(days + 4, 7)); // 1970-01-01 was a Thursday
}

static_assert(DaysFromCivil(1970, 1, 1) == 0);
static_assert(DaysFromCivil(2001, 1, 1) == 11323);
static_assert(CivilFromDays(-1).year == 1969 && CivilFromDays(-1).day == 31);
static_assert(WeekdayFromDays(DaysFromCivil(2006, 3, 10)) == 5);

} // namespace ProlepticGregorian
