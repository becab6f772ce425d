// The calendar-format renderer: any format text, any instant in the TIME range, any zone kind
// and a locale dictionary that may itself be hostile (it comes from the user's settings file)
// render without a crash, and the text stays proportional to what was asked for.
//
// Input: byte 0 picks the zone, byte 1 the locale dictionary, bytes 2-9 the instant; the rest
// is the format, UTF-8. With the hostile dictionary, the format's first line is also every
// pattern of the dictionary and, split at commas, every list of names.

#include "FuzzCheck.h"
#include "datetext/DateText.h"
#include "datetext/LocaleDefaults.h"

#include <QTimeZone>

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {

// Seconds from the reference instant to the ends of the range the command line accepts (years
// -1000000 to 1000000), rounded inward.
constexpr qint64 kRangeSeconds = 31556000000000LL;

QTimeZone ZoneFor(std::uint8_t choice)
{
    switch (choice % 6) {
    case 0:
        return {}; // shows GMT
    case 1:
        return QTimeZone(QByteArrayLiteral("America/New_York"));
    case 2:
        return QTimeZone(QByteArrayLiteral("Asia/Kolkata"));
    case 3:
        return QTimeZone(QByteArrayLiteral("Australia/Lord_Howe")); // half-hour DST
    case 4:
        return QTimeZone(-5 * 3600); // fixed offset
    default:
        return QTimeZone(QByteArrayLiteral("Pacific/Kiritimati")); // +14:00
    }
}

QVariantMap HostileDictionary(const QString &line)
{
    QVariantList names;
    for (const QString &name : line.split(QLatin1Char(',')))
        names.append(name);
    QVariantMap dictionary;
    for (const char *key : {"NSTimeDateFormatString", "NSDateFormatString", "NSTimeFormatString"})
        dictionary.insert(QString::fromLatin1(key), line);
    for (const char *key : {"NSMonthNameArray", "NSShortMonthNameArray", "NSWeekDayNameArray",
                            "NSShortWeekDayNameArray", "NSAMPMDesignation"})
        dictionary.insert(QString::fromLatin1(key), names);
    return dictionary;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size < 10)
        return -1;
    qint64 raw = 0;
    std::memcpy(&raw, data + 2, sizeof raw);
    const AbsoluteTime instant =
        AbsoluteTime(raw % kRangeSeconds) + AbsoluteTime(raw & 0x3FF) / 1024;
    const QString format =
        QString::fromUtf8(reinterpret_cast<const char *>(data + 10), qsizetype(size - 10));

    static const QVariantMap registration = LocaleDefaultsRegistration();
    QVariantMap hostile;
    const QVariantMap *dictionary = nullptr;
    qsizetype patternSize = 0;
    switch (data[1] % 3) {
    case 1:
        dictionary = &registration;
        patternSize = 64;
        break;
    case 2: {
        const QString line = format.section(QLatin1Char('\n'), 0, 0);
        hostile = HostileDictionary(line);
        dictionary = &hostile;
        patternSize = line.size();
        break;
    }
    default:
        break;
    }

    const CalendarDate date = MakeCalendarDate(instant, ZoneFor(data[0]));
    const QString text = DescriptionWithCalendarFormat(date, format, dictionary);
    // Every conversion makes a bounded text, and %c, %x and %X expand a pattern once, never
    // again inside it: nothing can make the text run away.
    FuzzCheck(text.size() <= 64 * (format.size() + 1) * (patternSize + 2),
              "the text outgrows its format");
    return 0;
}
