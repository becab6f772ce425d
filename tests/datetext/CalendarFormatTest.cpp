#include "DateTextTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

// Renders in an explicit zone, without a locale dictionary (English names).
class CalendarFormatTest : public ::testing::Test
{
protected:
    QString render(const QString &format, double unixSeconds,
                   const QByteArray &zone = QByteArrayLiteral("America/New_York"))
    {
        return DescriptionWithCalendarFormat(
            MakeCalendarDate(FromUnix(unixSeconds), QTimeZone(zone)), format);
    }
};

TEST_F(CalendarFormatTest, TheDefaultCustomFormat)
{
    EXPECT_EQ(render(u"%a %d %b, %Y %I:%M:%S %p (%z)"_s, kFridayUnix),
              u"Fri 10 Mar, 2006 02:31:47 PM (-0500)"_s);
}

TEST_F(CalendarFormatTest, TwelveHourClockAtMidnightAndNoon)
{
    const double midnight = 1141966800; // 2006-03-10 00:00 EST
    const QString format = u"%I %p|%H"_s;
    EXPECT_EQ(render(format, midnight), u"12 AM|00"_s);
    EXPECT_EQ(render(format, midnight + 3600), u"01 AM|01"_s);
    EXPECT_EQ(render(format, midnight + 12 * 3600 - 1), u"11 AM|11"_s);
    EXPECT_EQ(render(format, midnight + 12 * 3600), u"12 PM|12"_s);
    EXPECT_EQ(render(format, midnight + 13 * 3600), u"01 PM|13"_s);
    EXPECT_EQ(render(format, midnight + 24 * 3600 - 1), u"11 PM|23"_s);
}

TEST_F(CalendarFormatTest, DayOfMonthWithoutLeadingZeroOrSpace)
{
    const double march1 = 1141189200; // 2006-03-01 00:00 EST
    for (int day = 1; day <= 9; ++day) {
        EXPECT_EQ(render(u"[%e][%d]"_s, march1 + (day - 1) * 86400.0), u"[%1][0%1]"_s.arg(day));
    }
    EXPECT_EQ(render(u"[%e][%d]"_s, march1 + 9 * 86400.0), u"[10][10]"_s);
}

TEST_F(CalendarFormatTest, DayOfYearOverALeapYear)
{
    EXPECT_EQ(render(u"%j"_s, 1199163600, "UTC"), u"001"_s);                 // 2008-01-01
    EXPECT_EQ(render(u"%j"_s, 1230724800, "UTC"), u"366"_s);                 // 2008-12-31
    EXPECT_EQ(render(u"%j"_s, 1230724800 - 366 * 86400.0, "UTC"), u"365"_s); // 2007-12-31
    EXPECT_EQ(render(u"%j"_s, 1199163600 + 59 * 86400.0, "UTC"), u"060"_s);  // 2008-02-29
}

TEST_F(CalendarFormatTest, OffsetsNegativePositiveAndOnTheHalfHour)
{
    EXPECT_EQ(render(u"%z"_s, kFridayUnix), u"-0500"_s);
    EXPECT_EQ(render(u"%z"_s, 1143961200), u"-0400"_s); // after the spring change
    EXPECT_EQ(render(u"%z"_s, kFridayUnix, "UTC"), u"+0000"_s);
    EXPECT_EQ(render(u"%z"_s, kFridayUnix, "Asia/Kolkata"), u"+0530"_s);
    EXPECT_EQ(render(u"%z"_s, kFridayUnix, "Asia/Kathmandu"), u"+0545"_s);
    EXPECT_EQ(render(u"%z %H:%M"_s, kFridayUnix, "America/St_Johns"), u"-0330 16:01"_s);
    EXPECT_EQ(render(u"%z"_s, 1152000000, "America/St_Johns"), u"-0230"_s); // July
    EXPECT_EQ(render(u"%z"_s, kFridayUnix, "Pacific/Chatham"), u"+1345"_s);
}

TEST_F(CalendarFormatTest, BeforeNineteenSeventyAndBeforeTwoThousandOne)
{
    const QString format = u"%Y-%m-%d %H:%M:%S %a %w %j"_s;
    EXPECT_EQ(render(format, -1, "UTC"), u"1969-12-31 23:59:59 Wed 3 365"_s);
    EXPECT_EQ(render(format, -14182940), u"1969-07-20 16:17:40 Sun 0 201"_s);
    EXPECT_EQ(render(format, 978307199, "UTC"), u"2000-12-31 23:59:59 Sun 0 366"_s);
    EXPECT_EQ(render(format, -30627504000, "UTC"), u"0999-06-15 00:00:00 Sat 6 166"_s);
    EXPECT_EQ(render(format, -93724128000, "UTC"), u"-1000-01-01 00:00:00 Wed 3 001"_s);
}

TEST_F(CalendarFormatTest, BeforeTheReformTheCalendarIsProlepticGregorian)
{
    // The day the Julian calendar skipped; Friday 15 October was the first Gregorian day.
    EXPECT_EQ(render(u"%A %Y-%m-%d"_s, -12219292800.0 - 5 * 86400.0, "UTC"),
              u"Sunday 1582-10-10"_s);
}

TEST_F(CalendarFormatTest, YearsInFourAndTwoDigits)
{
    EXPECT_EQ(render(u"%Y %y"_s, kFridayUnix), u"2006 06"_s);
    EXPECT_EQ(render(u"%Y %y"_s, 946684800, "UTC"), u"2000 00"_s);
    EXPECT_EQ(render(u"%Y %y"_s, 946684799, "UTC"), u"1999 99"_s);
}

TEST_F(CalendarFormatTest, MillisecondsAndTheirWidth)
{
    EXPECT_EQ(render(u"%S.%F"_s, kFridayUnix + 0.123), u"47.123"_s);
    EXPECT_EQ(render(u"%S.%F"_s, kFridayUnix), u"47.000"_s);
    EXPECT_EQ(render(u"%S.%F"_s, kFridayUnix + 0.999), u"47.999"_s);
    EXPECT_EQ(render(u"%1F %2F %5F"_s, kFridayUnix + 0.987), u"9 98 98700"_s);
    // Before the epoch the fraction still counts forward from the whole second before.
    EXPECT_EQ(render(u"%S.%F"_s, -0.25, "UTC"), u"59.750"_s);
}

TEST_F(CalendarFormatTest, WeekdayNumberFromSunday)
{
    const double sunday = 1141534800; // 2006-03-05 00:00 EST
    EXPECT_EQ(render(u"%w %a %A"_s, sunday), u"0 Sun Sunday"_s);
    EXPECT_EQ(render(u"%w %a %A"_s, sunday + 6 * 86400.0), u"6 Sat Saturday"_s);
}

TEST_F(CalendarFormatTest, EnglishNamesOfEveryMonth)
{
    const char16_t *full[] = {u"January",   u"February", u"March",    u"April",
                              u"May",       u"June",     u"July",     u"August",
                              u"September", u"October",  u"November", u"December"};
    for (int month = 1; month <= 12; ++month) {
        const QDateTime first(QDate(2006, month, 15), QTime(12, 0), Qt::UTC);
        const QString text = render(u"%B|%b|%m"_s, first.toSecsSinceEpoch(), "UTC");
        const QString name = QString::fromUtf16(full[month - 1]);
        EXPECT_EQ(text, u"%1|%2|%3"_s.arg(name, name.left(3)).arg(month, 2, 10, QLatin1Char('0')));
    }
}

TEST_F(CalendarFormatTest, ZoneNameIsTheAbbreviationInForceThen)
{
    EXPECT_EQ(render(u"%Z"_s, kFridayUnix), u"EST"_s);
    EXPECT_EQ(render(u"%Z"_s, 1152000000), u"EDT"_s);
    EXPECT_EQ(render(u"%Z"_s, kFridayUnix, "Asia/Kolkata"), u"IST"_s);
    EXPECT_EQ(DescriptionWithCalendarFormat(CalendarDate{FromUnix(kFridayUnix), QTimeZone(), {}},
                                            u"%Z %z %H"_s),
              u"GMT +0000 19"_s);
}

TEST_F(CalendarFormatTest, LocaleRepresentationsWithoutADictionaryAreAmericanEnglish)
{
    EXPECT_EQ(render(u"%c"_s, kFridayUnix), u"Mar 10, 2006, 2:31:47 PM"_s);
    EXPECT_EQ(render(u"%x"_s, kFridayUnix), u"3/10/2006"_s);
    EXPECT_EQ(render(u"%X"_s, kFridayUnix), u"2:31:47 PM"_s);
}

TEST_F(CalendarFormatTest, WidthDigitSetsTheNumberOfDigits)
{
    EXPECT_EQ(render(u"%1m/%1d/%Y"_s, 978436800), u"1/2/2001"_s);
    EXPECT_EQ(render(u"%3d %1H %4Y %6Y %1j"_s, 978436800, "UTC"), u"002 12 2001 002001 2"_s);
    // Conversions that are not numbers take no width.
    EXPECT_EQ(render(u"%1a %2%"_s, kFridayUnix), u"Fri %"_s);
}

TEST_F(CalendarFormatTest, LiteralTextAndUnknownConversionsPassThroughUnchanged)
{
    EXPECT_EQ(render(u"no conversions at all"_s, kFridayUnix), u"no conversions at all"_s);
    EXPECT_EQ(render(u"100%% sure"_s, kFridayUnix), u"100% sure"_s);
    EXPECT_EQ(render(u"%q %1q %!"_s, kFridayUnix), u"%q %1q %!"_s);
    EXPECT_EQ(render(u"ends with %"_s, kFridayUnix), u"ends with %"_s);
    EXPECT_EQ(render(u"ends with %1"_s, kFridayUnix), u"ends with %1"_s);
    EXPECT_EQ(render(u"日付 %Y年 — ☃ 😀%😀"_s, kFridayUnix), u"日付 2006年 — ☃ 😀%😀"_s);
    EXPECT_EQ(render(u"%n %t %s"_s, kFridayUnix), u"%n %t %s"_s);
}

TEST_F(CalendarFormatTest, AnEmptyFormatIsAnEmptyTextButANullFormatIsNone)
{
    const QString empty = render(u""_s, kFridayUnix);
    EXPECT_TRUE(empty.isEmpty());
    EXPECT_FALSE(empty.isNull());
    EXPECT_TRUE(render(QString(), kFridayUnix).isNull());
}

TEST_F(CalendarFormatTest, AnInstantThatIsNoDateRendersNothing)
{
    EXPECT_TRUE(
        DescriptionWithCalendarFormat(MakeCalendarDate(std::nan(""), QTimeZone("UTC")), u"%Y"_s)
            .isNull());
}

TEST_F(CalendarFormatTest, ALongFormatRendersWhole)
{
    QString format;
    QString expected;
    for (int i = 0; i < 20000; ++i) {
        format += u"%Y-%%-x"_s;
        expected += u"2006-%-x"_s;
    }
    EXPECT_EQ(render(format, kFridayUnix), expected);
}

TEST_F(CalendarFormatTest, ADateMovedAfterItWasMadeStillUsesTheRightOffset)
{
    CalendarDate date = MakeCalendarDate(FromUnix(kFridayUnix), QTimeZone("America/New_York"));
    date.absoluteTime = FromUnix(1152000000); // July: daylight-saving time
    EXPECT_EQ(DescriptionWithCalendarFormat(date, u"%z"_s), u"-0400"_s);
}

class LocalCalendarDateTest : public ::testing::Test
{
protected:
    ScopedDateEnvironment m_environment;
};

TEST_F(LocalCalendarDateTest, FollowsTheZoneOfTheMomentItIsMade)
{
    m_environment.setLocaleAndZone("en_US.UTF-8", "America/New_York");
    const QString format = u"%H:%M %z %Z"_s;
    const AbsoluteTime instant = FromUnix(kFridayUnix);
    EXPECT_EQ(DescriptionWithCalendarFormat(CalendarDateWithTimeIntervalSinceReferenceDate(instant),
                                            format),
              u"14:31 -0500 EST"_s);
    m_environment.set("TZ", "Asia/Kolkata");
    EXPECT_EQ(DescriptionWithCalendarFormat(CalendarDateWithTimeIntervalSinceReferenceDate(instant),
                                            format),
              u"01:01 +0530 IST"_s);
    m_environment.set("TZ", ":Europe/Berlin");
    EXPECT_EQ(DescriptionWithCalendarFormat(CalendarDateWithTimeIntervalSinceReferenceDate(instant),
                                            format),
              u"20:31 +0100 CET"_s);
}

TEST_F(LocalCalendarDateTest, MakeFormattedDateStringNeedsADateAndAFormat)
{
    m_environment.setLocaleAndZone("en_US.UTF-8", "America/New_York");
    gUserDefaultsDictionary.reset();
    const CalendarDate date = CalendarDateWithTimeIntervalSinceReferenceDate(FromUnix(kFridayUnix));
    EXPECT_TRUE(MakeFormattedDateString(std::nullopt, u"%Y"_s).isNull());
    EXPECT_TRUE(MakeFormattedDateString(date, QString()).isNull());
    EXPECT_EQ(MakeFormattedDateString(date, u"%Y"_s), u"2006"_s);
}

} // namespace
