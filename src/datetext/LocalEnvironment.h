#pragma once

// The user's current locale and time zone, read from the environment at every call so that a
// change shows at the next rendering. Nothing here is cached: ICU keeps a default locale and a
// default zone of its own, and neither is used.

#include "platform/AbsoluteTime.h"

#include <QByteArray>
#include <QTimeZone>

#include <unicode/locid.h>
#include <unicode/timezone.h>

#include <memory>
#include <optional>

// The locale name a desktop user expects: LC_ALL, else LC_TIME, else LANG (an empty variable
// counts as unset), without its codeset and modifier ("de_DE.UTF-8@euro" is "de_DE"). No locale,
// "C" and "POSIX" are en_US.
QByteArray CurrentLocaleName();

// The ICU locale of CurrentLocaleName(); none when ICU cannot make one.
std::optional<icu::Locale> CurrentIcuLocale();

// The local zone: TZ, else the system's zone. Never null: an unknown zone is GMT.
std::unique_ptr<icu::TimeZone> CurrentIcuTimeZone();

// The same zone as a QTimeZone. A zone Qt does not know becomes a fixed zone with the offset the
// ICU zone has at `instant`.
QTimeZone QTimeZoneForIcuZone(const icu::TimeZone &zone, AbsoluteTime instant);

// Milliseconds since the Unix epoch for an absolute time, rounded to the nearest millisecond.
// None for a non-finite instant or one beyond about 5.8 million years from now, which no
// calendar here can show.
std::optional<qint64> UnixMillisecondsFromAbsoluteTime(AbsoluteTime instant);

// The zone's offset from GMT in seconds at an instant.
qint32 IcuOffsetFromUtc(const icu::TimeZone &zone, qint64 unixMilliseconds);
