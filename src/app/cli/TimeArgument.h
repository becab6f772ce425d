#pragma once

#include "platform/AbsoluteTime.h"

#include <QString>
#include <QStringList>

#include <optional>

// A TIME on the command line: ISO 8601 with an offset or "Z" (2006-03-10T14:31:47-05:00), or
// "@SECONDS" since the Unix epoch (@1142019107); fractions of a second are allowed in both.
std::optional<AbsoluteTime> ParseTimeArgument(const QString &text);

// The options every date command shares: `--now TIME` fixes the clock, `--at TIME` picks the
// working instant as the chooser would.
struct TimeOptions
{
    std::optional<AbsoluteTime> now;
    std::optional<AbsoluteTime> at;
};

// Takes --now and --at (with their values) out of args. On bad input returns false and sets
// error to a one-line message.
bool TakeTimeOptions(QStringList &args, TimeOptions &options, QString &error);
