#include "DateTextTestSupport.h"
#include "datetext/LocaleDefaults.h"

#include <QStringList>
#include <QVariantList>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class LocaleDictionaryTest : public ::testing::Test
{
protected:
    QVariantMap registrationFor(const char *locale)
    {
        m_environment.setLocaleAndZone(locale, "America/New_York");
        return LocaleDefaultsRegistration();
    }
    QString render(const QString &format, const QVariantMap *locale)
    {
        return RenderCalendarFormat(format, kFridayUnix, "America/New_York", locale);
    }
    ScopedDateEnvironment m_environment;
};

TEST_F(LocaleDictionaryTest, EveryLocalesRegistrationStaysWithinTheAnnouncedKeys)
{
    // The user defaults consult the registration only for the announced keys: a key built
    // here but missing from the list would silently never be found.
    const QStringList announced = LocaleDefaultsKeys();
    for (const char *locale : {"en_US.UTF-8", "de_DE.UTF-8", "ja_JP.UTF-8", "ar_EG.UTF-8", "C"}) {
        const QVariantMap registration = registrationFor(locale);
        for (const QString &key : registration.keys())
            EXPECT_TRUE(announced.contains(key)) << locale << ": " << key.toStdString();
    }
    EXPECT_EQ(QStringList(registrationFor("en_US.UTF-8").keys()).size(), announced.size())
        << "a complete locale fills every announced key";
}

TEST_F(LocaleDictionaryTest, AmericanRegistrationMatchesTheEnglishDefaults)
{
    const QVariantMap registration = registrationFor("en_US.UTF-8");
    // ICU's weekday arrays begin with an empty entry: the names must not be one off.
    EXPECT_EQ(registration.value(u"NSShortWeekDayNameArray"_s).toStringList(),
              QStringList({u"Sun"_s, u"Mon"_s, u"Tue"_s, u"Wed"_s, u"Thu"_s, u"Fri"_s, u"Sat"_s}));
    EXPECT_EQ(registration.value(u"NSTimeDateFormatString"_s).toString(),
              u"%b %e, %Y, %1I:%M:%S %p"_s);
    EXPECT_EQ(registration.value(u"NSDateFormatString"_s).toString(), u"%1m/%e/%Y"_s);
    EXPECT_EQ(registration.value(u"NSTimeFormatString"_s).toString(), u"%1I:%M:%S %p"_s);
    const QString format = u"%a %A %b %B %p %c|%x|%X"_s;
    EXPECT_EQ(render(format, &registration), render(format, nullptr));
}

TEST_F(LocaleDictionaryTest, GermanNamesAndPatterns)
{
    const QVariantMap registration = registrationFor("de_DE.UTF-8");
    EXPECT_EQ(registration.value(u"NSDateFormatString"_s).toString(), u"%d.%m.%Y"_s);
    EXPECT_EQ(registration.value(u"NSTimeFormatString"_s).toString(), u"%H:%M:%S"_s);
    const QString format = u"%A, %e. %B %Y (%a, %b)"_s;
    EXPECT_EQ(render(format, &registration), u"Freitag, 10. März 2006 (Fr., März)"_s);
    EXPECT_EQ(render(format, nullptr), u"Friday, 10. March 2006 (Fri, Mar)"_s);
    EXPECT_EQ(render(u"%c|%x|%X"_s, &registration), u"10.03.2006, 14:31:47|10.03.2006|14:31:47"_s);
}

TEST_F(LocaleDictionaryTest, AMalformedEntryFallsBackToEnglishForThatKeyOnly)
{
    QVariantMap dictionary;
    dictionary.insert(u"NSShortWeekDayNameArray"_s, QStringList({u"So"_s, u"Mo"_s})); // too short
    dictionary.insert(u"NSWeekDayNameArray"_s, QVariantList({u"1"_s, u"2"_s, u"3"_s, u"4"_s, u"5"_s,
                                                             6, u"7"_s})); // a number
    dictionary.insert(u"NSShortMonthNameArray"_s,
                      QVariantList({u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"e"_s, u"f"_s, u"g"_s, u"h"_s,
                                    u"i"_s, u"j"_s, u"k"_s, u"l"_s})); // fine, as a variant list
    dictionary.insert(u"NSMonthNameArray"_s, u"March"_s);              // not a list
    dictionary.insert(u"NSAMPMDesignation"_s, QStringList({u"vorm."_s, u"nachm."_s}));
    dictionary.insert(u"NSDateFormatString"_s, QStringList({u"%Y"_s})); // not a string
    dictionary.insert(u"NSTimeFormatString"_s, u"%H.%M"_s);
    EXPECT_EQ(render(u"%a|%A|%b|%B|%p|%x|%X"_s, &dictionary),
              u"Fri|Friday|c|March|nachm.|3/10/2006|14.31"_s);
    // A representation inside a representation is left as written.
    dictionary.insert(u"NSTimeDateFormatString"_s, u"%x %X %c!"_s);
    EXPECT_EQ(render(u"<%c>"_s, &dictionary), u"<%x %X %c!>"_s);
}

TEST_F(LocaleDictionaryTest, AChangedDictionaryIsReadAgainAtTheNextRendering)
{
    QVariantMap dictionary = registrationFor("de_DE.UTF-8");
    EXPECT_EQ(render(u"%A"_s, &dictionary), u"Freitag"_s);
    dictionary.insert(u"NSWeekDayNameArray"_s,
                      QStringList({u"1"_s, u"2"_s, u"3"_s, u"4"_s, u"5"_s, u"6"_s, u"7"_s}));
    EXPECT_EQ(render(u"%A"_s, &dictionary), u"6"_s);
    QVariantMap other = registrationFor("ja_JP.UTF-8");
    EXPECT_EQ(render(u"%A"_s, &other), u"金曜日"_s);
    EXPECT_EQ(render(u"%A"_s, &dictionary), u"6"_s);
    dictionary.remove(u"NSWeekDayNameArray"_s);
    EXPECT_EQ(render(u"%A"_s, &dictionary), u"Friday"_s);
    EXPECT_EQ(render(u"%A"_s, nullptr), u"Friday"_s);
}

TEST_F(LocaleDictionaryTest, CustomFormatsUseTheSnapshotOnlyOnceItExists)
{
    const QVariantMap registration = registrationFor("de_DE.UTF-8");
    const CalendarDate date = CalendarDateWithTimeIntervalSinceReferenceDate(FromUnix(kFridayUnix));
    gUserDefaultsDictionary.reset();
    EXPECT_EQ(MakeFormattedDateString(date, u"%A"_s), u"Friday"_s);
    gUserDefaultsDictionary = registration;
    EXPECT_EQ(MakeFormattedDateString(date, u"%A"_s), u"Freitag"_s);
    // An empty snapshot is still a snapshot: English from its missing keys.
    gUserDefaultsDictionary = QVariantMap();
    EXPECT_EQ(MakeFormattedDateString(date, u"%A"_s), u"Friday"_s);
}

TEST(IcuPatternConversionTest, FieldsQuotesAndLiterals)
{
    EXPECT_EQ(CalendarFormatFromIcuPattern(u"EEEE, MMMM d, y 'at' h:mm:ss a zzzz"),
              u"%A, %B %e, %Y at %1I:%M:%S %p %Z"_s);
    EXPECT_EQ(CalendarFormatFromIcuPattern(u"M/d/yy"), u"%1m/%e/%y"_s);
    EXPECT_EQ(CalendarFormatFromIcuPattern(u"M/d/yy", true), u"%1m/%e/%Y"_s);
    EXPECT_EQ(CalendarFormatFromIcuPattern(u"HH'h'mm 'o''clock' '' 100%"),
              u"%Hh%M o'clock ' 100%%"_s);
    EXPECT_EQ(CalendarFormatFromIcuPattern(u"h:mm\u202Fa Z"), u"%1I:%M %p %z"_s);
    EXPECT_EQ(CalendarFormatFromIcuPattern(u"G y QQQ"), u" %Y "_s);
    EXPECT_EQ(CalendarFormatFromIcuPattern(u"ss.SSS S"), u"%S.%F %1F"_s);
}

} // namespace
