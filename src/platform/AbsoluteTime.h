#pragma once

#include <QDateTime>

// An instant as seconds since 1 January 2001 00:00:00 GMT, negative before it. This is the
// unit every clock, picker and stored date in Horalo speaks.
using AbsoluteTime = double;

// Seconds between the Unix epoch and the reference date.
inline constexpr double kAbsoluteTimeIntervalSince1970 = 978307200.0;

// Millisecond precision is what QDateTime keeps; callers that need more keep the double.
inline QDateTime DateFromAbsoluteTime(AbsoluteTime t)
{
    const double ms = (t + kAbsoluteTimeIntervalSince1970) * 1000.0;
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(ms < 0 ? ms - 0.5 : ms + 0.5),
                                          Qt::UTC);
}

inline AbsoluteTime AbsoluteTimeFromDate(const QDateTime &date)
{
    return static_cast<double>(date.toMSecsSinceEpoch()) / 1000.0 - kAbsoluteTimeIntervalSince1970;
}
