#pragma once

// Relative-time phrases: how far a date lies from now, in fixed-length calendar units
// ("3 days, 5 hours", "Less than a day").

#include "platform/AbsoluteTime.h"
#include "platform/Clock.h"

#include <QString>

#include <optional>

class NSDateExtensions
{
public:
    NSDateExtensions(const Clock &clock, AbsoluteTime date) : m_clock(&clock), m_date(date) {}

    // A date for the absolute time, anchored on the present; none when no date can be made.
    static std::optional<NSDateExtensions> dateFromCFAbsoluteTime(const Clock &clock,
                                                                  AbsoluteTime time);
    // The whole-day phrase for an absolute time; null when no date can be made.
    static QString daysSinceAbsoluteTme(const Clock &clock, AbsoluteTime time);

    QString timesince() const;
    QString timesinceWithDepth(qint32 depth) const;
    // Throws std::out_of_range for a unit outside 1 to 7.
    QString timesinceWithUnit(qint32 unit) const;

    AbsoluteTime absoluteTime() const { return m_date; }
    // The signed whole seconds from the date to now, saturated to the 32-bit range.
    qint32 elapsedSeconds() const;

private:
    const Clock *m_clock;
    AbsoluteTime m_date;
};
