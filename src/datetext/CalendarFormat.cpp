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
    const qint64 local = unixMilliseconds + qint64(offsetSeconds) * 1000;
    const qint64 days = FloorDivide(local, 86400000);
    const qint64 msOfDay = local - days * 86400000;
    const CivilDate date = CivilFromDays(days);
    LocalFields fields;
    fields.year = date.year;
    fields.month = date.month;
    fields.day = date.day;
    fields.hour = static_cast<int>(msOfDay / 3600000);
    fields.minute = static_cast<int>(msOfDay / 60000 % 60);
    fields.second = static_cast<int>(msOfDay / 1000 % 60);
    fields.millisecond = static_cast<int>(msOfDay % 1000);
    fields.dayOfYear = static_cast<int>(days - DaysFromCivil(date.year, 1, 1) + 1);
    fields.weekday = WeekdayFromDays(days);
    fields.offsetSeconds = offsetSeconds;
    return fields;
}

void AppendNumber(QString &out, qint64 value, int minDigits)
{
    char digits[24];
    int count = 0;
    // Work on the negative side so that the smallest 64-bit value has a magnitude too.
    qint64 rest = value < 0 ? value : -value;
    do {
        digits[count++] = static_cast<char>('0' - rest % 10);
        rest /= 10;
    } while (rest != 0);
    char text[48];
    int length = 0;
    if (value < 0)
        text[length++] = '-';
    for (int pad = count; pad < minDigits && length < 40; ++pad)
        text[length++] = '0';
    while (count > 0)
        text[length++] = digits[--count];
    out.append(QLatin1StringView(text, length));
}

void AppendOffset(QString &out, qint32 offsetSeconds)
{
    const qint32 magnitude = offsetSeconds < 0 ? -offsetSeconds : offsetSeconds;
    // Seconds of an offset (local mean time before standard zones) are dropped, as ±HHMM has no
    // place for them.
    const char text[5] = {offsetSeconds < 0 ? '-' : '+', static_cast<char>('0' + magnitude / 36000),
                          static_cast<char>('0' + magnitude / 3600 % 10),
                          static_cast<char>('0' + magnitude / 600 % 6),
                          static_cast<char>('0' + magnitude / 60 % 10)};
    out.append(QLatin1StringView(text, 5));
}

// Names taken from the locale dictionary when it holds a list of the right length of strings,
// English otherwise. Looked up only when a conversion needs them.
class NameSource
{
public:
    explicit NameSource(const QVariantMap *locale) : m_locale(locale) {}

    template <size_t N>
    QStringView name(const QString &key, const std::array<QStringView, N> &english,
                     std::optional<QStringList> &resolved, int index) const
    {
        if (!resolved)
            resolved = namesFromLocale(key, static_cast<qsizetype>(N));
        if (resolved->size() == static_cast<qsizetype>(N))
            return resolved->at(index);
        return english[static_cast<size_t>(index)];
    }

    QString pattern(const QString &key, QStringView english) const
    {
        if (m_locale) {
            const auto it = m_locale->constFind(key);
            if (it != m_locale->cend() && it->typeId() == QMetaType::QString)
                return it->toString();
        }
        return english.toString();
    }

private:
    QStringList namesFromLocale(const QString &key, qsizetype count) const
    {
        if (!m_locale)
            return {};
        const auto it = m_locale->constFind(key);
        if (it == m_locale->cend())
            return {};
        if (it->typeId() == QMetaType::QStringList) {
            QStringList names = it->toStringList();
            return names.size() == count ? names : QStringList();
        }
        if (it->typeId() == QMetaType::QVariantList) {
            const QVariantList values = it->toList();
            if (values.size() != count)
                return {};
            QStringList names;
            for (const QVariant &value : values) {
                if (value.typeId() != QMetaType::QString)
                    return {};
                names.append(value.toString());
            }
            return names;
        }
        return {};
    }

    const QVariantMap *m_locale;
};

struct RenderContext
{
    const LocalFields &fields;
    const CalendarDate &date;
    NameSource names;
    std::optional<QStringList> months, shortMonths, weekdays, shortWeekdays, amPm;
};

void Render(RenderContext &context, QStringView format, QString &out, bool expandComposites);

// One conversion; false when `conversion` is not one, and the text stays as written.
bool RenderConversion(RenderContext &context, char16_t conversion, int width, QString &out,
                      bool expandComposites)
{
    const LocalFields &f = context.fields;
    const auto number = [&](qint64 value, int defaultDigits) {
        AppendNumber(out, value, width > 0 ? width : defaultDigits);
    };
    switch (conversion) {
    case u'%':
        out.append(QLatin1Char('%'));
        return true;
    case u'a':
        out.append(context.names.name(u"NSShortWeekDayNameArray"_s, kEnglishShortWeekdays,
                                      context.shortWeekdays, f.weekday));
        return true;
    case u'A':
        out.append(context.names.name(u"NSWeekDayNameArray"_s, kEnglishWeekdays, context.weekdays,
                                      f.weekday));
        return true;
    case u'b':
        out.append(context.names.name(u"NSShortMonthNameArray"_s, kEnglishShortMonths,
                                      context.shortMonths, f.month - 1));
        return true;
    case u'B':
        out.append(
            context.names.name(u"NSMonthNameArray"_s, kEnglishMonths, context.months, f.month - 1));
        return true;
    case u'p':
        out.append(context.names.name(u"NSAMPMDesignation"_s, kEnglishAmPm, context.amPm,
                                      f.hour < 12 ? 0 : 1));
        return true;
    case u'c':
    case u'x':
    case u'X': {
        if (!expandComposites)
            return false;
        const QString pattern =
            conversion == u'c'
                ? context.names.pattern(u"NSTimeDateFormatString"_s, kEnglishDateTimeFormat)
            : conversion == u'x'
                ? context.names.pattern(u"NSDateFormatString"_s, kEnglishDateFormat)
                : context.names.pattern(u"NSTimeFormatString"_s, kEnglishTimeFormat);
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
            out.append(u"GMT");
            return true;
        }
        const QDateTime at = QDateTime::fromMSecsSinceEpoch(
            UnixMillisecondsFromAbsoluteTime(context.date.absoluteTime).value_or(0), Qt::UTC);
        const QString abbreviation = context.date.timeZone.abbreviation(at);
        out.append(abbreviation.isEmpty() ? QString::fromLatin1(context.date.timeZone.id())
                                          : abbreviation);
        return true;
    }
    default:
        return false;
    }
}

void Render(RenderContext &context, QStringView format, QString &out, bool expandComposites)
{
    const qsizetype size = format.size();
    qsizetype literalStart = 0;
    qsizetype i = 0;
    while (i < size) {
        if (format[i] != u'%') {
            ++i;
            continue;
        }
        out.append(format.sliced(literalStart, i - literalStart));
        const qsizetype conversionStart = i++;
        int width = 0;
        if (i < size && format[i] >= u'0' && format[i] <= u'9')
            width = format[i++].unicode() - u'0';
        if (i < size &&
            RenderConversion(context, format[i].unicode(), width, out, expandComposites))
            ++i;
        else if (i < size)
            out.append(format.sliced(conversionStart, ++i - conversionStart));
        else
            out.append(format.sliced(conversionStart));
        literalStart = i;
    }
    out.append(format.sliced(literalStart));
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
    RenderContext context{fields, date, NameSource(locale), {}, {}, {}, {}, {}};
    QString out(u""_s);
    out.reserve(format.size() + 32);
    Render(context, format, out, true);
    return out;
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
    QString out;
    out.reserve(26);
    AppendNumber(out, f.year, 4);
    out.append(QLatin1Char('-'));
    AppendNumber(out, f.month, 2);
    out.append(QLatin1Char('-'));
    AppendNumber(out, f.day, 2);
    out.append(QLatin1Char(' '));
    AppendNumber(out, f.hour, 2);
    out.append(QLatin1Char(':'));
    AppendNumber(out, f.minute, 2);
    out.append(QLatin1Char(':'));
    AppendNumber(out, f.second, 2);
    out.append(QLatin1Char(' '));
    AppendOffset(out, f.offsetSeconds);
    return out;
}
