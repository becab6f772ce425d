#include "DateTextTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr double kMidnight = 1141966800; // 2006-03-10 00:00 EST
constexpr double kJuly = 1152000000;     // 2006-07-04, daylight-saving time in New York

TEST(CalendarFormat, EveryConversionAtItsEdges)
{
    const struct
    {
        QString format;
        double unixSeconds;
        const char *zone;
        QString expected;
    } cases[] = {
        {u"%a %d %b, %Y %I:%M:%S %p (%z)"_s, kFridayUnix, "America/New_York",
         u"Fri 10 Mar, 2006 02:31:47 PM (-0500)"_s},
        // The twelve-hour clock at midnight and noon.
        {u"%I %p|%H"_s, kMidnight, "America/New_York", u"12 AM|00"_s},
        {u"%I %p|%H"_s, kMidnight + 12 * 3600 - 1, "America/New_York", u"11 AM|11"_s},
        {u"%I %p|%H"_s, kMidnight + 12 * 3600, "America/New_York", u"12 PM|12"_s},
        {u"%I %p|%H"_s, kMidnight + 13 * 3600, "America/New_York", u"01 PM|13"_s},
        // Day of the month without a leading zero or space.
        {u"[%e][%d]"_s, kMidnight - 9 * 86400.0, "America/New_York", u"[1][01]"_s},
        {u"[%e][%d]"_s, kMidnight - 86400.0, "America/New_York", u"[9][09]"_s},
        {u"[%e][%d]"_s, kMidnight, "America/New_York", u"[10][10]"_s},
        // Day of the year over a leap year.
        {u"%j"_s, 1199163600, "UTC", u"001"_s},                 // 2008-01-01
        {u"%j"_s, 1199163600 + 59 * 86400.0, "UTC", u"060"_s},  // 2008-02-29
        {u"%j"_s, 1230724800, "UTC", u"366"_s},                 // 2008-12-31
        {u"%j"_s, 1230724800 - 366 * 86400.0, "UTC", u"365"_s}, // 2007-12-31
        // Offsets negative, positive, on the half and quarter hour, and the one in force then.
        {u"%z"_s, kJuly, "America/New_York", u"-0400"_s},
        {u"%z"_s, kFridayUnix, "UTC", u"+0000"_s},
        {u"%z"_s, kFridayUnix, "Asia/Kathmandu", u"+0545"_s},
        {u"%z %H:%M"_s, kFridayUnix, "America/St_Johns", u"-0330 16:01"_s},
        {u"%z"_s, kFridayUnix, "Pacific/Chatham", u"+1345"_s},
        // Before 1970, before 2001, before year 1000 and before year 0.
        {u"%Y-%m-%d %H:%M:%S %a %w %j"_s, -1, "UTC", u"1969-12-31 23:59:59 Wed 3 365"_s},
        {u"%Y-%m-%d %H:%M:%S %a %w %j"_s, -14182940, "America/New_York",
         u"1969-07-20 16:17:40 Sun 0 201"_s},
        {u"%Y-%m-%d %H:%M:%S %a %w %j"_s, 978307199, "UTC", u"2000-12-31 23:59:59 Sun 0 366"_s},
        {u"%Y-%m-%d %H:%M:%S %a %w %j"_s, -30627504000, "UTC", u"0999-06-15 00:00:00 Sat 6 166"_s},
        {u"%Y-%m-%d %H:%M:%S %a %w %j"_s, -93724128000, "UTC", u"-1000-01-01 00:00:00 Wed 3 001"_s},
        // The day the Julian calendar skipped: the calendar is proleptic Gregorian.
        {u"%A %Y-%m-%d"_s, -12219292800.0 - 5 * 86400.0, "UTC", u"Sunday 1582-10-10"_s},
        {u"%Y %y"_s, 946684800, "UTC", u"2000 00"_s},
        {u"%Y %y"_s, 946684799, "UTC", u"1999 99"_s},
        // Milliseconds, never rounded up, and their width; before the epoch the fraction still
        // counts forward from the whole second before.
        {u"%S.%F"_s, kFridayUnix, "America/New_York", u"47.000"_s},
        {u"%S.%F"_s, kFridayUnix + 0.999, "America/New_York", u"47.999"_s},
        {u"%1F %2F %5F"_s, kFridayUnix + 0.987, "America/New_York", u"9 98 98700"_s},
        {u"%S.%F"_s, -0.25, "UTC", u"59.750"_s},
        {u"%w %a %A"_s, kMidnight - 5 * 86400.0, "America/New_York", u"0 Sun Sunday"_s},
        {u"%w %a %A"_s, kMidnight + 86400.0, "America/New_York", u"6 Sat Saturday"_s},
        // The zone's abbreviation in force at the instant.
        {u"%Z"_s, kFridayUnix, "America/New_York", u"EST"_s},
        {u"%Z"_s, kJuly, "America/New_York", u"EDT"_s},
        // Without a dictionary the locale's representations are American English.
        {u"%c|%x|%X"_s, kFridayUnix, "America/New_York",
         u"Mar 10, 2006, 2:31:47 PM|3/10/2006|2:31:47 PM"_s},
        // A width digit sets the number of digits, of numbers only.
        {u"%1m/%1d/%Y"_s, 978436800, "America/New_York", u"1/2/2001"_s},
        {u"%3d %1H %4Y %6Y %1j"_s, 978436800, "UTC", u"002 12 2001 002001 2"_s},
        {u"%1a %2%"_s, kFridayUnix, "America/New_York", u"Fri %"_s},
        // Literal text and unknown conversions pass through unchanged.
        {u"100%% sure"_s, kFridayUnix, "UTC", u"100% sure"_s},
        {u"%q %1q %! %n %t %s"_s, kFridayUnix, "UTC", u"%q %1q %! %n %t %s"_s},
        {u"ends with %"_s, kFridayUnix, "UTC", u"ends with %"_s},
        {u"ends with %1"_s, kFridayUnix, "UTC", u"ends with %1"_s},
        {u"日付 %Y年 — ☃ 😀%😀"_s, kFridayUnix, "UTC", u"日付 2006年 — ☃ 😀%😀"_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message()
                     << c.format.toStdString() << " at " << qint64(c.unixSeconds) << ' ' << c.zone);
        EXPECT_EQ(RenderCalendarFormat(c.format, c.unixSeconds, c.zone), c.expected);
    }
}

TEST(CalendarFormat, EnglishNamesOfEveryMonth)
{
    const char16_t *full[] = {u"January",   u"February", u"March",    u"April",
                              u"May",       u"June",     u"July",     u"August",
                              u"September", u"October",  u"November", u"December"};
    for (int month = 1; month <= 12; ++month) {
        const QDateTime fifteenth(QDate(2006, month, 15), QTime(12, 0), Qt::UTC);
        const QString name = QString::fromUtf16(full[month - 1]);
        EXPECT_EQ(RenderCalendarFormat(u"%B|%b|%m"_s, fifteenth.toSecsSinceEpoch(), "UTC"),
                  u"%1|%2|%3"_s.arg(name, name.left(3)).arg(month, 2, 10, QLatin1Char('0')));
    }
}

TEST(CalendarFormat, EmptyNullLongAndUndatedInputs)
{
    const QString empty = RenderCalendarFormat(u""_s, kFridayUnix);
    EXPECT_TRUE(empty.isEmpty());
    EXPECT_FALSE(empty.isNull()) << "an empty format is an empty text";
    EXPECT_TRUE(RenderCalendarFormat(QString(), kFridayUnix).isNull());
    EXPECT_TRUE(RenderCalendarFormat(u"%Y"_s, std::nan("")).isNull());

    QString format;
    QString expected;
    for (int i = 0; i < 20000; ++i) {
        format += u"%Y-%%-x"_s;
        expected += u"2006-%-x"_s;
    }
    EXPECT_EQ(RenderCalendarFormat(format, kFridayUnix), expected);
}

TEST(CalendarFormat, ADateWithoutAZoneIsGmtAndAMovedDateFindsItsOffsetAgain)
{
    EXPECT_EQ(DescriptionWithCalendarFormat(CalendarDate{FromUnix(kFridayUnix), QTimeZone(), {}},
                                            u"%Z %z %H"_s),
              u"GMT +0000 19"_s);
    CalendarDate date = MakeCalendarDate(FromUnix(kFridayUnix), QTimeZone("America/New_York"));
    date.absoluteTime = FromUnix(kJuly);
    EXPECT_EQ(DescriptionWithCalendarFormat(date, u"%z"_s), u"-0400"_s);
}

TEST(LocalCalendarDate, FollowsTheZoneOfTheMomentItIsMadeAndNeedsADateAndAFormat)
{
    ScopedDateEnvironment environment;
    environment.setLocaleAndZone("en_US.UTF-8", "America/New_York");
    const auto local = [] {
        return MakeFormattedDateString(
            CalendarDateWithTimeIntervalSinceReferenceDate(FromUnix(kFridayUnix)),
            u"%H:%M %z %Z"_s);
    };
    gUserDefaultsDictionary.reset();
    EXPECT_EQ(local(), u"14:31 -0500 EST"_s);
    environment.set("TZ", "Asia/Kolkata");
    EXPECT_EQ(local(), u"01:01 +0530 IST"_s);
    environment.set("TZ", ":Europe/Berlin");
    EXPECT_EQ(local(), u"20:31 +0100 CET"_s);

    EXPECT_TRUE(MakeFormattedDateString(std::nullopt, u"%Y"_s).isNull());
    EXPECT_TRUE(
        MakeFormattedDateString(CalendarDateWithTimeIntervalSinceReferenceDate(0), QString())
            .isNull());
}

} // namespace
