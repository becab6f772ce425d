#pragma once

#include "platform/AbsoluteTime.h"

#include <QString>

#include <optional>

// A TIME on the command line: ISO 8601 with an offset or "Z" (2006-03-10T14:31:47-05:00), or
// "@SECONDS" since the Unix epoch (@1142019107); fractions of a second are allowed in both.
std::optional<AbsoluteTime> ParseTimeArgument(const QString &text);

// The range of TIME, as help texts and errors state it. Every text can be rendered for these
// instants in every zone; far beyond them the locale library computes no calendar fields, and
// texts would come out empty or as the fallback.
extern const QString kTimeArgumentRange;

// A TIME argument as the commands take it: std::nullopt for text that is not a TIME or lies
// outside kTimeArgumentRange, with `error` set to one line saying which (without a prefix).
std::optional<AbsoluteTime> ReadTimeArgument(const QString &text, QString &error);

// The options every date command shares: `--now TIME` fixes the clock, `--at TIME` picks the
// working instant as the chooser would.
struct TimeOptions
{
    std::optional<AbsoluteTime> now;
    std::optional<AbsoluteTime> at;
};
