#pragma once

// Turning an instant into the texts that the menu, the title and the clipboard show.

#include "platform/AbsoluteTime.h"
#include "platform/Clock.h"

#include <QString>
#include <QTimeZone>
#include <QVariantMap>

#include <optional>

// The formatter styles of a (date style, time style) pair. kNoStyle leaves that half out.
enum DateFormatterStyle : int
{
    kNoStyle = 0,
    kShortStyle = 1,
    kMediumStyle = 2,
    kLongStyle = 3,
    kFullStyle = 4,
};

// The moment picked in the date-time chooser; 0 means none is picked and "now" is used.
// Only the chooser writes it; every renderer reads it when it renders.
extern AbsoluteTime g_selectedDateTime;

// The snapshot of the user defaults taken as the application finishes launching: the locale
// dictionary of custom formats. Unset until then, and never refreshed.
extern std::optional<QVariantMap> gUserDefaultsDictionary;

// g_selectedDateTime when a moment is picked, otherwise the clock's current time.
AbsoluteTime WorkingInstant(const Clock &clock);

// The fallback text of the title operations when a styled text cannot be produced.
inline const QString kFallbackText = QStringLiteral("Horalo");

// --- styled renderings (ICU, the current locale and zone, a fresh formatter every call) ---

// The styled text of an instant, or a null QString when it cannot be produced.
QString StyledDateTimeString(AbsoluteTime instant, DateFormatterStyle dateStyle,
                             DateFormatterStyle timeStyle);
// Of the current time, whatever the chooser holds.
QString CurrentDateTimeString(const Clock &clock, DateFormatterStyle dateStyle,
                              DateFormatterStyle timeStyle);
// Of the working instant.
QString MakeCurrentDateTimeStringRef(const Clock &clock, DateFormatterStyle dateStyle,
                                     DateFormatterStyle timeStyle);
// The working instant's styled text as UTF-8 with a terminating NUL. False, with the buffer
// untouched, when the text cannot be produced or does not fit whole.
bool MakeCurrentDateString(const Clock &clock, DateFormatterStyle dateStyle,
                           DateFormatterStyle timeStyle, char *buffer, qint32 bufferSize);

inline constexpr qint32 kDateStringBufferSize = 4096;

// The working instant's styled text through the 4096-byte buffer, or "Horalo": what every
// styled title shows.
QString StyledTitleText(const Clock &clock, DateFormatterStyle dateStyle,
                        DateFormatterStyle timeStyle);

// --- the default description: "YYYY-MM-DD HH:MM:SS ±HHMM" in the local zone ---

QString DefaultDescription(AbsoluteTime instant);
// The default description of the current time (the "GMT" title).
QString GMTString(const Clock &clock);
// Field 1 of the current time's default description, or "Horalo".
QString NumericalDateString(const Clock &clock);

// --- custom formats in the calendar-format notation ---

// An instant together with the zone it is shown in.
struct CalendarDate
{
    AbsoluteTime absoluteTime = 0;
    // An invalid zone shows the instant in GMT.
    QTimeZone timeZone;

    // The zone's offset from GMT at `at`, found when the date was made, so that rendering the
    // same date again does not search the zone's transitions. Used only while `at` is still
    // absoluteTime; a date built by hand leaves it empty and renders the same.
    struct KnownOffset
    {
        AbsoluteTime at = 0;
        qint32 seconds = 0;
    };
    std::optional<KnownOffset> knownOffset;
};

// A calendar date for the instant in the current local zone (TZ, else the system's zone),
// looked up afresh.
CalendarDate CalendarDateWithTimeIntervalSinceReferenceDate(AbsoluteTime instant);
// A calendar date for the instant in the given zone.
CalendarDate MakeCalendarDate(AbsoluteTime instant, const QTimeZone &zone);

// Renders a calendar-format string. Names of months and weekdays, the AM/PM designations and the
// %c/%x/%X patterns come from the locale dictionary when one is given, English otherwise.
QString DescriptionWithCalendarFormat(const CalendarDate &date, const QString &format,
                                      const QVariantMap *locale = nullptr);

// Renders with gUserDefaultsDictionary as the locale once it exists. A null result (also for a
// missing date or a null format) means the text cannot be produced.
QString MakeFormattedDateString(const std::optional<CalendarDate> &date, const QString &format);
