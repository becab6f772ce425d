#include "datetext/DateText.h"

#include "datetext/DateFormatCatalogue.h"
#include "datetext/IcuText.h"
#include "datetext/LocalEnvironment.h"

#include <unicode/datefmt.h>
#include <unicode/gregocal.h>

#include <cstring>
#include <limits>
#include <memory>

AbsoluteTime g_selectedDateTime = 0;
std::optional<QVariantMap> gUserDefaultsDictionary;

AbsoluteTime WorkingInstant(const Clock &clock)
{
    const AbsoluteTime now = clock.currentAbsoluteTime();
    const AbsoluteTime selected = g_selectedDateTime;
    return selected == 0.0 ? now : selected;
}

namespace {
// 1583-01-01 00:00 GMT, with a day to spare for any zone: after it both calendars agree.
constexpr qint64 kLastJulianYearEndMilliseconds = -12212553600000LL + 86400000LL;

std::optional<icu::DateFormat::EStyle> IcuStyle(DateFormatterStyle style)
{
    switch (style) {
    case kNoStyle:
        return icu::DateFormat::kNone;
    case kShortStyle:
        return icu::DateFormat::kShort;
    case kMediumStyle:
        return icu::DateFormat::kMedium;
    case kLongStyle:
        return icu::DateFormat::kLong;
    case kFullStyle:
        return icu::DateFormat::kFull;
    }
    return std::nullopt;
}
} // namespace

QString StyledDateTimeString(AbsoluteTime instant, DateFormatterStyle dateStyle,
                             DateFormatterStyle timeStyle)
{
    const std::optional<icu::DateFormat::EStyle> icuDateStyle = IcuStyle(dateStyle);
    const std::optional<icu::DateFormat::EStyle> icuTimeStyle = IcuStyle(timeStyle);
    if (!icuDateStyle || !icuTimeStyle || (dateStyle == kNoStyle && timeStyle == kNoStyle))
        return {};
    const std::optional<qint64> ms = UnixMillisecondsFromAbsoluteTime(instant);
    if (!ms)
        return {};

    // A fresh locale, zone and formatter every time, so that a change of either shows at once.
    const std::optional<icu::Locale> locale = CurrentIcuLocale();
    if (!locale)
        return {};
    std::unique_ptr<icu::DateFormat> formatter(
        icu::DateFormat::createDateTimeInstance(*icuDateStyle, *icuTimeStyle, *locale));
    if (!formatter)
        return {};

    formatter->adoptTimeZone(CurrentIcuTimeZone().release());
    // ICU's Gregorian calendar switches to the Julian one before 15 October 1582; every other
    // text here (the description, custom formats) counts days on the proleptic Gregorian
    // calendar, and the menu must not show two dates for one instant. Only instants near or
    // before the switch need a calendar of their own.
    if (*ms < kLastJulianYearEndMilliseconds) {
        std::unique_ptr<icu::Calendar> calendar(formatter->getCalendar()->clone());
        if (!calendar)
            return {};
        if (auto *gregorian = dynamic_cast<icu::GregorianCalendar *>(calendar.get())) {
            UErrorCode status = U_ZERO_ERROR;
            gregorian->setGregorianChange(-std::numeric_limits<double>::max(), status);
        }
        formatter->adoptCalendar(calendar.release());
    }

    icu::UnicodeString text;
    formatter->format(static_cast<UDate>(*ms), text);
    if (text.isBogus())
        return {};
    return FromIcu(text);
}

QString CurrentDateTimeString(const Clock &clock, DateFormatterStyle dateStyle,
                              DateFormatterStyle timeStyle)
{
    return StyledDateTimeString(clock.currentAbsoluteTime(), dateStyle, timeStyle);
}

QString MakeCurrentDateTimeStringRef(const Clock &clock, DateFormatterStyle dateStyle,
                                     DateFormatterStyle timeStyle)
{
    return StyledDateTimeString(WorkingInstant(clock), dateStyle, timeStyle);
}

bool MakeCurrentDateString(const Clock &clock, DateFormatterStyle dateStyle,
                           DateFormatterStyle timeStyle, char *buffer, qint32 bufferSize)
{
    const QString text = MakeCurrentDateTimeStringRef(clock, dateStyle, timeStyle);
    if (text.isNull() || !buffer || bufferSize <= 0)
        return false;
    const QByteArray utf8 = text.toUtf8();
    // All or nothing: a text that does not fit with its terminator is never cut short.
    if (utf8.size() >= bufferSize)
        return false;
    std::memcpy(buffer, utf8.constData(), static_cast<size_t>(utf8.size()));
    buffer[utf8.size()] = '\0';
    return true;
}

QString StyledTitleText(const Clock &clock, DateFormatterStyle dateStyle,
                        DateFormatterStyle timeStyle)
{
    char buffer[kDateStringBufferSize];
    if (!MakeCurrentDateString(clock, dateStyle, timeStyle, buffer, kDateStringBufferSize))
        return kFallbackText;
    return QString::fromUtf8(buffer);
}

QString GMTString(const Clock &clock)
{
    return DefaultDescription(clock.currentAbsoluteTime());
}

QString NumericalDateString(const Clock &clock)
{
    const QString date =
        NumericalDateFromDescription(DefaultDescription(clock.currentAbsoluteTime()));
    return date.isNull() ? kFallbackText : date;
}
