#include "datetext/LocaleDefaults.h"

#include "datetext/IcuText.h"
#include "datetext/LocalEnvironment.h"

#include <QStringList>

#include <unicode/datefmt.h>
#include <unicode/dtfmtsym.h>
#include <unicode/smpdtfmt.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

// The keys of the registration layer; LocaleDefaultsKeys() lists them for the user defaults,
// which consult the layer for these keys only.
const QString kMonthNameArray = QStringLiteral("NSMonthNameArray");
const QString kShortMonthNameArray = QStringLiteral("NSShortMonthNameArray");
const QString kWeekDayNameArray = QStringLiteral("NSWeekDayNameArray");
const QString kShortWeekDayNameArray = QStringLiteral("NSShortWeekDayNameArray");
const QString kAMPMDesignation = QStringLiteral("NSAMPMDesignation");
const QString kTimeDateFormatString = QStringLiteral("NSTimeDateFormatString");
const QString kDateFormatString = QStringLiteral("NSDateFormatString");
const QString kTimeFormatString = QStringLiteral("NSTimeFormatString");

QStringList NamesFromIcu(const icu::UnicodeString *names, int32_t count, int32_t first = 0)
{
    QStringList list;
    for (int32_t i = first; names && i < count; ++i)
        list.append(FromIcu(names[i]));
    return list;
}

// The calendar-format conversion for a run of one ICU pattern letter.
QString ConversionForField(char16_t letter, qsizetype count, bool fourDigitYears)
{
    switch (letter) {
    case u'y':
    case u'u':
    case u'Y':
        return (count == 2 && !fourDigitYears) ? u"%y"_s : u"%Y"_s;
    case u'M':
    case u'L':
        return count == 1 ? u"%1m"_s : count == 2 ? u"%m"_s : count == 4 ? u"%B"_s : u"%b"_s;
    case u'd':
        return count == 1 ? u"%e"_s : u"%d"_s;
    case u'D':
        return count == 1 ? u"%1j"_s : count == 2 ? u"%2j"_s : u"%j"_s;
    case u'E':
    case u'c':
    case u'e':
        if (count <= 2 && letter != u'E')
            return u"%w"_s;
        return count == 4 ? u"%A"_s : u"%a"_s;
    case u'a':
    case u'b':
    case u'B':
        return u"%p"_s;
    case u'h':
    case u'K':
        return count == 1 ? u"%1I"_s : u"%I"_s;
    case u'H':
    case u'k':
        return count == 1 ? u"%1H"_s : u"%H"_s;
    case u'm':
        return count == 1 ? u"%1M"_s : u"%M"_s;
    case u's':
        return count == 1 ? u"%1S"_s : u"%S"_s;
    case u'S':
        return count >= 3 ? u"%F"_s : u"%"_s + QString::number(count) + u"F"_s;
    case u'z':
    case u'v':
    case u'V':
    case u'O':
        return u"%Z"_s;
    case u'Z':
    case u'x':
    case u'X':
        return u"%z"_s;
    default:
        return {};
    }
}

bool IsPatternLetter(QChar c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

void AppendLiteral(QString &out, QChar c)
{
    if (c == u'%')
        out.append(u"%%");
    // CLDR puts a narrow no-break space before AM/PM; a custom text is pasted into mail, shells
    // and spreadsheets, where a plain space is what people expect and type.
    else if (c == QChar(0x202F))
        out.append(QLatin1Char(' '));
    else
        out.append(c);
}

QString PatternOf(const icu::DateFormat *format)
{
    const auto *simple = dynamic_cast<const icu::SimpleDateFormat *>(format);
    if (!simple)
        return {};
    icu::UnicodeString pattern;
    simple->toPattern(pattern);
    return FromIcu(pattern);
}

} // namespace

QString CalendarFormatFromIcuPattern(QStringView pattern, bool fourDigitYears)
{
    QString out;
    const qsizetype size = pattern.size();
    qsizetype i = 0;
    while (i < size) {
        const QChar c = pattern[i];
        if (c == u'\'') {
            // '' is a quote; 'text' is literal text, in which '' is a quote too.
            if (i + 1 < size && pattern[i + 1] == u'\'') {
                out.append(QLatin1Char('\''));
                i += 2;
                continue;
            }
            ++i;
            while (i < size) {
                if (pattern[i] == u'\'') {
                    if (i + 1 < size && pattern[i + 1] == u'\'') {
                        out.append(QLatin1Char('\''));
                        i += 2;
                        continue;
                    }
                    ++i;
                    break;
                }
                AppendLiteral(out, pattern[i++]);
            }
            continue;
        }
        if (IsPatternLetter(c)) {
            qsizetype end = i + 1;
            while (end < size && pattern[end] == c)
                ++end;
            out.append(ConversionForField(c.unicode(), end - i, fourDigitYears));
            i = end;
            continue;
        }
        AppendLiteral(out, c);
        ++i;
    }
    return out;
}

// The patterns are chosen for what people expect of %c, %x and %X in their own language:
// - NSTimeDateFormatString (%c): the locale's medium date and time, the same text as the
//   "Medium Date-Time" entry ("Mar 10, 2006, 2:31:47 PM", "10.03.2006, 14:31:47").
// - NSDateFormatString (%x): the locale's short date with the year in four digits, short and
//   unambiguous ("3/10/2006", "10.03.2006", "2006/03/10").
// - NSTimeFormatString (%X): the locale's medium time, with seconds ("2:31:47 PM", "14:31:47").
QVariantMap LocaleDefaultsRegistration()
{
    QVariantMap registration;
    const std::optional<icu::Locale> locale = CurrentIcuLocale();
    if (!locale)
        return registration;

    UErrorCode status = U_ZERO_ERROR;
    const icu::DateFormatSymbols symbols(*locale, status);
    if (U_SUCCESS(status)) {
        using Symbols = icu::DateFormatSymbols;
        int32_t count = 0;
        const icu::UnicodeString *names = symbols.getMonths(count, Symbols::FORMAT, Symbols::WIDE);
        if (count == 12)
            registration.insert(kMonthNameArray, NamesFromIcu(names, count));
        names = symbols.getMonths(count, Symbols::FORMAT, Symbols::ABBREVIATED);
        if (count == 12)
            registration.insert(kShortMonthNameArray, NamesFromIcu(names, count));
        // ICU's weekday arrays have an empty entry 0 and begin with Sunday at 1.
        names = symbols.getWeekdays(count, Symbols::FORMAT, Symbols::WIDE);
        if (count == 8)
            registration.insert(kWeekDayNameArray, NamesFromIcu(names, count, 1));
        names = symbols.getWeekdays(count, Symbols::FORMAT, Symbols::ABBREVIATED);
        if (count == 8)
            registration.insert(kShortWeekDayNameArray, NamesFromIcu(names, count, 1));
        names = symbols.getAmPmStrings(count);
        if (count == 2)
            registration.insert(kAMPMDesignation, NamesFromIcu(names, count));
    }

    const std::unique_ptr<icu::DateFormat> dateTime(icu::DateFormat::createDateTimeInstance(
        icu::DateFormat::kMedium, icu::DateFormat::kMedium, *locale));
    const std::unique_ptr<icu::DateFormat> date(
        icu::DateFormat::createDateInstance(icu::DateFormat::kShort, *locale));
    const std::unique_ptr<icu::DateFormat> time(
        icu::DateFormat::createTimeInstance(icu::DateFormat::kMedium, *locale));
    if (const QString pattern = PatternOf(dateTime.get()); !pattern.isEmpty())
        registration.insert(kTimeDateFormatString, CalendarFormatFromIcuPattern(pattern));
    if (const QString pattern = PatternOf(date.get()); !pattern.isEmpty())
        registration.insert(kDateFormatString, CalendarFormatFromIcuPattern(pattern, true));
    if (const QString pattern = PatternOf(time.get()); !pattern.isEmpty())
        registration.insert(kTimeFormatString, CalendarFormatFromIcuPattern(pattern));
    return registration;
}

QStringList LocaleDefaultsKeys()
{
    return {kMonthNameArray,  kShortMonthNameArray,  kWeekDayNameArray, kShortWeekDayNameArray,
            kAMPMDesignation, kTimeDateFormatString, kDateFormatString, kTimeFormatString};
}
