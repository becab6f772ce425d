// The calendar-format notation: literal text with "%" conversions, rendered by our own code in
// one pass over the format. A user's format is never handed to printf, strftime or any other
// format function, so no format text can read memory or run away.
//
// Choices the notation leaves open, made for the people who read and paste these texts:
// - %Z is the zone's abbreviation at that instant ("EST", "EDT", "IST"), as clocks and mail
//   headers show it; a zone without one shows what the zone database gives (such as "+0330"),
//   and a fixed-offset zone shows "UTC-05:00".
// - %c, %x and %X render the locale dictionary's NSTimeDateFormatString, NSDateFormatString and
//   NSTimeFormatString, which the registration derives from the locale's medium date-and-time,
//   short date (with a four-digit year) and medium time (see LocaleDefaults.cpp). Without a
//   dictionary they are the en_US forms: "Mar 10, 2006, 2:31:47 PM", "3/10/2006", "2:31:47 PM".
//   A %c, %x or %X inside one of those patterns is left as written rather than expanded again.
// - A width digit (%1m, %3j) gives the least number of digits of a numeric conversion, padded
//   with zeros; for %F it is the number of digits of the fraction (%1F tenths, %3F milliseconds).
//   Other conversions ignore it.
// - %Y has at least four digits, and a minus sign before year 0 (astronomical numbering: year 0
//   is 1 BC); %y is the year modulo 100, always two digits.

#include "datetext/DateText.h"
#include "datetext/LocalEnvironment.h"
#include "datetext/ProlepticGregorian.h"

#include <QStringList>
#include <QVarLengthArray>
#include <QVariantList>

#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr std::array<QStringView, 12> kEnglishMonths = {
    u"January", u"February", u"March",     u"April",   u"May",      u"June",
    u"July",    u"August",   u"September", u"October", u"November", u"December"};
constexpr std::array<QStringView, 12> kEnglishShortMonths = {
    u"Jan", u"Feb", u"Mar", u"Apr", u"May", u"Jun", u"Jul", u"Aug", u"Sep", u"Oct", u"Nov", u"Dec"};
constexpr std::array<QStringView, 7> kEnglishWeekdays = {
    u"Sunday", u"Monday", u"Tuesday", u"Wednesday", u"Thursday", u"Friday", u"Saturday"};
constexpr std::array<QStringView, 7> kEnglishShortWeekdays = {u"Sun", u"Mon", u"Tue", u"Wed",
                                                              u"Thu", u"Fri", u"Sat"};
constexpr std::array<QStringView, 2> kEnglishAmPm = {u"AM", u"PM"};

constexpr QStringView kEnglishDateTimeFormat = u"%b %e, %Y, %1I:%M:%S %p";
constexpr QStringView kEnglishDateFormat = u"%1m/%e/%Y";
constexpr QStringView kEnglishTimeFormat = u"%1I:%M:%S %p";

// The broken-down local time of an instant.
struct LocalFields
{
    qint64 year = 0;
    int month = 1;
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
    int dayOfYear = 1;
    int weekday = 0;
    qint32 offsetSeconds = 0;
};

LocalFields ComputeFields(qint64 unixMilliseconds, qint32 offsetSeconds)
{
    using namespace ProlepticGregorian;
    // Days before each month in a common year.
    constexpr int kDaysBefore[12] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
    const qint64 local = unixMilliseconds + qint64(offsetSeconds) * 1000;
    const qint64 days = FloorDivide(local, 86400000);
    const auto msOfDay = static_cast<qint32>(local - days * 86400000); // fits: under a day
    const CivilDate date = CivilFromDays(days);
    LocalFields fields;
    fields.year = date.year;
    fields.month = date.month;
    fields.day = date.day;
    fields.hour = msOfDay / 3600000;
    fields.minute = msOfDay / 60000 % 60;
    fields.second = msOfDay / 1000 % 60;
    fields.millisecond = msOfDay % 1000;
    fields.dayOfYear =
        kDaysBefore[date.month - 1] + date.day + (date.month > 2 && IsLeapYear(date.year) ? 1 : 0);
    fields.weekday = WeekdayFromDays(days);
    fields.offsetSeconds = offsetSeconds;
    return fields;
}

// The text being rendered: built in place, then copied into a QString once, since a rendering is
// mostly short appends of one or two characters.
using Sink = QVarLengthArray<char16_t, 256>;

void Append(Sink &out, QStringView text)
{
    out.append(reinterpret_cast<const char16_t *>(text.utf16()), text.size());
}

// Never null, even when empty: an empty rendering is still a rendering.
QString ToQString(const Sink &text)
{
    if (text.isEmpty())
        return QString(u""_s);
    return QString(reinterpret_cast<const QChar *>(text.constData()), text.size());
}

void AppendNumber(Sink &out, qint64 value, int minDigits)
{
    if (value >= 0 && value < 100 && minDigits <= 2) {
        if (value >= 10 || minDigits == 2)
            out.append(static_cast<char16_t>(u'0' + value / 10));
        out.append(static_cast<char16_t>(u'0' + value % 10));
        return;
    }
    if (value >= 1000 && value < 10000 && minDigits <= 4) {
        const auto v = static_cast<int>(value);
        const char16_t text[4] = {
            static_cast<char16_t>(u'0' + v / 1000), static_cast<char16_t>(u'0' + v / 100 % 10),
            static_cast<char16_t>(u'0' + v / 10 % 10), static_cast<char16_t>(u'0' + v % 10)};
        out.append(text, 4);
        return;
    }
    char16_t digits[24];
    int count = 0;
    // Work on the negative side so that the smallest 64-bit value has a magnitude too.
    qint64 rest = value < 0 ? value : -value;
    do {
        digits[count++] = static_cast<char16_t>(u'0' - rest % 10);
        rest /= 10;
    } while (rest != 0);
    if (value < 0)
        out.append(u'-');
    for (int pad = count; pad < minDigits; ++pad)
        out.append(u'0');
    while (count > 0)
        out.append(digits[--count]);
}

void AppendOffset(Sink &out, qint32 offsetSeconds)
{
    const qint32 magnitude = offsetSeconds < 0 ? -offsetSeconds : offsetSeconds;
    // Seconds of an offset (local mean time before standard zones) are dropped, as ±HHMM has no
    // place for them.
    const char16_t text[5] = {offsetSeconds < 0 ? u'-' : u'+',
                              static_cast<char16_t>(u'0' + magnitude / 36000),
                              static_cast<char16_t>(u'0' + magnitude / 3600 % 10),
                              static_cast<char16_t>(u'0' + magnitude / 600 % 6),
                              static_cast<char16_t>(u'0' + magnitude / 60 % 10)};
    out.append(text, 5);
}

// A locale dictionary's names and patterns, checked once: a list is used when it holds strings
// and has the right length, a pattern when it is a string; anything else falls back to English.
struct ResolvedLocale
{
    QStringList months, shortMonths, weekdays, shortWeekdays, amPm; // empty: English
    QString dateTimeFormat, dateFormat, timeFormat;                 // null: English
};

QStringList NamesFromDictionary(const QVariantMap &dictionary, const QString &key, qsizetype count)
{
    const auto it = dictionary.constFind(key);
    if (it == dictionary.cend())
        return {};
    QStringList names;
    if (it->typeId() == QMetaType::QStringList) {
        names = it->toStringList();
    } else if (it->typeId() == QMetaType::QVariantList) {
        const QVariantList values = it->toList();
        for (const QVariant &value : values) {
            if (value.typeId() != QMetaType::QString)
                return {};
            names.append(value.toString());
        }
    }
    return names.size() == count ? names : QStringList();
}

QString PatternFromDictionary(const QVariantMap &dictionary, const QString &key)
{
    const auto it = dictionary.constFind(key);
    if (it == dictionary.cend() || it->typeId() != QMetaType::QString)
        return {};
    return it->toString();
}

ResolvedLocale ResolveDictionary(const QVariantMap &dictionary)
{
    ResolvedLocale locale;
    locale.months = NamesFromDictionary(dictionary, u"NSMonthNameArray"_s, 12);
    locale.shortMonths = NamesFromDictionary(dictionary, u"NSShortMonthNameArray"_s, 12);
    locale.weekdays = NamesFromDictionary(dictionary, u"NSWeekDayNameArray"_s, 7);
    locale.shortWeekdays = NamesFromDictionary(dictionary, u"NSShortWeekDayNameArray"_s, 7);
    locale.amPm = NamesFromDictionary(dictionary, u"NSAMPMDesignation"_s, 2);
    locale.dateTimeFormat = PatternFromDictionary(dictionary, u"NSTimeDateFormatString"_s);
    locale.dateFormat = PatternFromDictionary(dictionary, u"NSDateFormatString"_s);
    locale.timeFormat = PatternFromDictionary(dictionary, u"NSTimeFormatString"_s);
    return locale;
}

// The dictionary's entries, checked again only when it is another dictionary. A QVariantMap
// shares its data with its copies until one of them changes, and the copy kept here keeps that
// data alive; so a dictionary that still shares its data with the kept copy holds exactly the
// entries resolved last. This is what lets the snapshot, which never changes, render custom
// formats as fast as strftime with its loaded locale. The locale and zone themselves are still
// found afresh for every calendar date.
const ResolvedLocale &ResolvedLocaleFor(const QVariantMap *dictionary)
{
    static const ResolvedLocale kEnglish;
    if (!dictionary)
        return kEnglish;
    thread_local std::optional<QVariantMap> resolvedDictionary;
    thread_local ResolvedLocale resolved;
    if (!resolvedDictionary || !dictionary->isSharedWith(*resolvedDictionary)) {
        resolved = ResolveDictionary(*dictionary);
        resolvedDictionary = *dictionary;
    }
    return resolved;
}

template <size_t N>
QStringView Name(const QStringList &names, const std::array<QStringView, N> &english, int index)
{
    if (names.isEmpty())
        return english[static_cast<size_t>(index)];
    return names.at(index);
}

struct RenderContext
{
    const LocalFields &fields;
    const CalendarDate &date;
    const ResolvedLocale &locale;
};

void Render(RenderContext &context, QStringView format, Sink &out, bool expandComposites);

// One conversion; false when `conversion` is not one, and the text stays as written.
bool RenderConversion(RenderContext &context, char16_t conversion, int width, Sink &out,
                      bool expandComposites)
{
    const LocalFields &f = context.fields;
    const auto number = [&](qint64 value, int defaultDigits) {
        AppendNumber(out, value, width > 0 ? width : defaultDigits);
    };
    switch (conversion) {
    case u'%':
        out.append(u'%');
        return true;
    case u'a':
        Append(out, Name(context.locale.shortWeekdays, kEnglishShortWeekdays, f.weekday));
        return true;
    case u'A':
        Append(out, Name(context.locale.weekdays, kEnglishWeekdays, f.weekday));
        return true;
    case u'b':
        Append(out, Name(context.locale.shortMonths, kEnglishShortMonths, f.month - 1));
        return true;
    case u'B':
        Append(out, Name(context.locale.months, kEnglishMonths, f.month - 1));
        return true;
    case u'p':
        Append(out, Name(context.locale.amPm, kEnglishAmPm, f.hour < 12 ? 0 : 1));
        return true;
    case u'c':
    case u'x':
    case u'X': {
        if (!expandComposites)
            return false;
        const ResolvedLocale &locale = context.locale;
        const QStringView pattern =
            conversion == u'c'
                ? (locale.dateTimeFormat.isNull() ? kEnglishDateTimeFormat
                                                  : QStringView(locale.dateTimeFormat))
            : conversion == u'x'
                ? (locale.dateFormat.isNull() ? kEnglishDateFormat : QStringView(locale.dateFormat))
                : (locale.timeFormat.isNull() ? kEnglishTimeFormat
                                              : QStringView(locale.timeFormat));
        Render(context, pattern, out, false);
        return true;
    }
    case u'd':
        number(f.day, 2);
        return true;
    case u'e':
        number(f.day, 1);
        return true;
    case u'F': {
        const int digits = width > 0 ? width : 3;
        qint64 value = f.millisecond;
        for (int i = digits; i < 3; ++i)
            value /= 10;
        for (int i = 3; i < digits; ++i)
            value *= 10;
        AppendNumber(out, value, digits);
        return true;
    }
    case u'H':
        number(f.hour, 2);
        return true;
    case u'I':
        number(f.hour % 12 == 0 ? 12 : f.hour % 12, 2);
        return true;
    case u'j':
        number(f.dayOfYear, 3);
        return true;
    case u'm':
        number(f.month, 2);
        return true;
    case u'M':
        number(f.minute, 2);
        return true;
    case u'S':
        number(f.second, 2);
        return true;
    case u'w':
        number(f.weekday, 1);
        return true;
    case u'y':
        number(ProlepticGregorian::FloorModulo(f.year, 100), 2);
        return true;
    case u'Y':
        number(f.year, 4);
        return true;
    case u'z':
        AppendOffset(out, f.offsetSeconds);
        return true;
    case u'Z': {
        if (!context.date.timeZone.isValid()) {
            Append(out, u"GMT");
            return true;
        }
        const QDateTime at = QDateTime::fromMSecsSinceEpoch(
            UnixMillisecondsFromAbsoluteTime(context.date.absoluteTime).value_or(0), Qt::UTC);
        const QString abbreviation = context.date.timeZone.abbreviation(at);
        Append(out, abbreviation.isEmpty() ? QString::fromLatin1(context.date.timeZone.id())
                                           : abbreviation);
        return true;
    }
    default:
        return false;
    }
}

void Render(RenderContext &context, QStringView format, Sink &out, bool expandComposites)
{
    const qsizetype size = format.size();
    qsizetype literalStart = 0;
    qsizetype i = 0;
    while (i < size) {
        if (format[i] != u'%') {
            ++i;
            continue;
        }
        Append(out, format.sliced(literalStart, i - literalStart));
        const qsizetype conversionStart = i++;
        int width = 0;
        if (i < size && format[i] >= u'0' && format[i] <= u'9')
            width = format[i++].unicode() - u'0';
        if (i < size &&
            RenderConversion(context, format[i].unicode(), width, out, expandComposites))
            ++i;
        else if (i < size)
            Append(out, format.sliced(conversionStart, ++i - conversionStart));
        else
            Append(out, format.sliced(conversionStart));
        literalStart = i;
    }
    Append(out, format.sliced(literalStart));
}

std::optional<qint32> OffsetAt(const CalendarDate &date, qint64 unixMilliseconds)
{
    if (date.knownOffset && date.knownOffset->at == date.absoluteTime)
        return date.knownOffset->seconds;
    if (!date.timeZone.isValid())
        return 0;
    return date.timeZone.offsetFromUtc(QDateTime::fromMSecsSinceEpoch(unixMilliseconds, Qt::UTC));
}

} // namespace

CalendarDate CalendarDateWithTimeIntervalSinceReferenceDate(AbsoluteTime instant)
{
    const std::unique_ptr<icu::TimeZone> zone = CurrentIcuTimeZone();
    CalendarDate date;
    date.absoluteTime = instant;
    date.timeZone = QTimeZoneForIcuZone(*zone, instant);
    // The offset comes from the same ICU zone that the styled texts use, so that a custom text
    // and a styled one never disagree about the local hour.
    if (const std::optional<qint64> ms = UnixMillisecondsFromAbsoluteTime(instant))
        date.knownOffset = CalendarDate::KnownOffset{instant, IcuOffsetFromUtc(*zone, *ms)};
    return date;
}

CalendarDate MakeCalendarDate(AbsoluteTime instant, const QTimeZone &zone)
{
    CalendarDate date;
    date.absoluteTime = instant;
    date.timeZone = zone;
    if (const std::optional<qint64> ms = UnixMillisecondsFromAbsoluteTime(instant)) {
        if (const std::optional<qint32> offset = OffsetAt(date, *ms))
            date.knownOffset = CalendarDate::KnownOffset{instant, *offset};
    }
    return date;
}

QString DescriptionWithCalendarFormat(const CalendarDate &date, const QString &format,
                                      const QVariantMap *locale)
{
    if (format.isNull())
        return {};
    const std::optional<qint64> ms = UnixMillisecondsFromAbsoluteTime(date.absoluteTime);
    if (!ms)
        return {};
    const std::optional<qint32> offset = OffsetAt(date, *ms);
    if (!offset)
        return {};
    const LocalFields fields = ComputeFields(*ms, *offset);
    RenderContext context{fields, date, ResolvedLocaleFor(locale)};
    Sink out;
    Render(context, format, out, true);
    return ToQString(out);
}

QString MakeFormattedDateString(const std::optional<CalendarDate> &date, const QString &format)
{
    if (!date || format.isNull())
        return {};
    if (gUserDefaultsDictionary)
        return DescriptionWithCalendarFormat(*date, format, &*gUserDefaultsDictionary);
    return DescriptionWithCalendarFormat(*date, format);
}

QString DefaultDescription(AbsoluteTime instant)
{
    const std::optional<qint64> ms = UnixMillisecondsFromAbsoluteTime(instant);
    if (!ms)
        return {};
    const LocalFields f = ComputeFields(*ms, IcuOffsetFromUtc(*CurrentIcuTimeZone(), *ms));
    Sink out;
    AppendNumber(out, f.year, 4);
    out.append(u'-');
    AppendNumber(out, f.month, 2);
    out.append(u'-');
    AppendNumber(out, f.day, 2);
    out.append(u' ');
    AppendNumber(out, f.hour, 2);
    out.append(u':');
    AppendNumber(out, f.minute, 2);
    out.append(u':');
    AppendNumber(out, f.second, 2);
    out.append(u' ');
    AppendOffset(out, f.offsetSeconds);
    return ToQString(out);
}
