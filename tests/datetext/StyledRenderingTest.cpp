#include "DateTextTestSupport.h"
#include "datetext/DateFormatCatalogue.h"
#include "datetext/LocalEnvironment.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

using namespace Qt::StringLiterals;

namespace {

constexpr DateFormatterStyle N = kNoStyle, S = kShortStyle, M = kMediumStyle, L = kLongStyle,
                             F = kFullStyle;

TEST(StyledRendering, RendersTheLocalesStandardTextInItsZone)
{
    const struct
    {
        const char *locale;
        const char *zone;
        DateFormatterStyle dateStyle, timeStyle;
        QString expected;
    } cases[] = {
        // ICU 72 puts a narrow no-break space (U+202F) before the English AM/PM.
        {"en_US.UTF-8", "America/New_York", S, S, u"3/10/06, 2:31\u202FPM"_s},
        {"en_US.UTF-8", "America/New_York", F, F,
         u"Friday, March 10, 2006 at 2:31:47\u202FPM Eastern Standard Time"_s},
        {"en_US.UTF-8", "America/New_York", S, N, u"3/10/06"_s},
        {"en_US.UTF-8", "America/New_York", M, N, u"Mar 10, 2006"_s},
        {"en_US.UTF-8", "America/New_York", L, N, u"March 10, 2006"_s},
        {"en_US.UTF-8", "America/New_York", F, N, u"Friday, March 10, 2006"_s},
        {"en_US.UTF-8", "America/New_York", N, S, u"2:31\u202FPM"_s},
        {"en_US.UTF-8", "America/New_York", N, M, u"2:31:47\u202FPM"_s},
        {"en_US.UTF-8", "America/New_York", N, L, u"2:31:47\u202FPM EST"_s},
        {"en_US.UTF-8", "America/New_York", N, F, u"2:31:47\u202FPM Eastern Standard Time"_s},
        // The same instant is already Saturday morning in Tokyo.
        {"en_US.UTF-8", "Asia/Tokyo", M, M, u"Mar 11, 2006, 4:31:47\u202FAM"_s},
        {"de_DE.UTF-8", "America/New_York", L, L, u"10. März 2006 um 14:31:47 GMT-5"_s},
        {"de_DE.UTF-8", "Asia/Tokyo", F, N, u"Samstag, 11. März 2006"_s},
        {"de_DE.UTF-8", "Asia/Tokyo", N, S, u"04:31"_s},
        {"ja_JP.UTF-8", "America/New_York", M, M, u"2006/03/10 14:31:47"_s},
        {"ja_JP.UTF-8", "Asia/Tokyo", F, F, u"2006年3月11日土曜日 4時31分47秒 日本標準時"_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << c.locale << ' ' << c.zone << " (" << c.dateStyle << ", "
                                        << c.timeStyle << ')');
        ScopedDateEnvironment environment;
        environment.setLocaleAndZone(c.locale, c.zone);
        EXPECT_EQ(StyledDateTimeString(FromUnix(kFridayUnix), c.dateStyle, c.timeStyle),
                  c.expected);
    }
}

TEST(StyledRendering, LocaleComesFromLcAllThenLcTimeThenLangWithoutCodesetOrModifier)
{
    const struct
    {
        const char *lcAll, *lcTime, *lang, *expected;
    } cases[] = {
        {"en_US.UTF-8", "de_DE.UTF-8", "ja_JP.UTF-8", "en_US"},
        {"", "de_DE.UTF-8", "ja_JP.UTF-8", "de_DE"},
        {nullptr, nullptr, "ja_JP.UTF-8", "ja_JP"},
        {"de_DE.ISO-8859-15@euro", nullptr, nullptr, "de_DE"},
        {"sr_RS@latin", nullptr, nullptr, "sr_RS"},
        // No locale, C and POSIX render as American English.
        {nullptr, nullptr, nullptr, "en_US"},
        {"C", nullptr, nullptr, "en_US"},
        {"POSIX", nullptr, nullptr, "en_US"},
        {"C.UTF-8", nullptr, nullptr, "en_US"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message()
                     << (c.lcAll ? c.lcAll : "(unset)") << ' ' << (c.lcTime ? c.lcTime : "(unset)")
                     << ' ' << (c.lang ? c.lang : "(unset)"));
        ScopedDateEnvironment environment;
        environment.set("LC_ALL", c.lcAll);
        environment.set("LC_TIME", c.lcTime);
        environment.set("LANG", c.lang);
        EXPECT_EQ(CurrentLocaleName(), c.expected);
    }
    ScopedDateEnvironment environment;
    environment.setLocaleAndZone("POSIX", "America/New_York");
    EXPECT_EQ(StyledDateTimeString(FromUnix(kFridayUnix), M, N), u"Mar 10, 2006"_s);
}

TEST(StyledRendering, AChangeOfLocaleOrZoneShowsAtTheNextRendering)
{
    ScopedDateEnvironment environment;
    environment.setLocaleAndZone("en_US.UTF-8", "America/New_York");
    const AbsoluteTime instant = FromUnix(kFridayUnix);
    EXPECT_EQ(StyledDateTimeString(instant, N, S), u"2:31\u202FPM"_s);
    environment.set("TZ", "Europe/Berlin");
    EXPECT_EQ(StyledDateTimeString(instant, N, S), u"8:31\u202FPM"_s);
    environment.set("LC_ALL", "de_DE.UTF-8");
    EXPECT_EQ(StyledDateTimeString(instant, N, S), u"20:31"_s);
}

using StyledFailureTest = NewYorkTest;

TEST_F(StyledFailureTest, NoTextForTwoEmptyHalvesAnInstantThatIsNoDateOrAStyleOutOfRange)
{
    EXPECT_TRUE(StyledDateTimeString(0, N, N).isNull());
    EXPECT_TRUE(StyledDateTimeString(std::nan(""), S, S).isNull());
    EXPECT_TRUE(StyledDateTimeString(1e300, S, S).isNull());
    EXPECT_TRUE(StyledDateTimeString(0, static_cast<DateFormatterStyle>(5), N).isNull());
}

TEST_F(StyledFailureTest, DatesBeforeTheReformAreProlepticGregorianLikeEveryOtherText)
{
    m_environment.set("TZ", "UTC");
    // 1582-10-10 exists only on the proleptic calendar (the Julian one skipped it), a Sunday.
    // 1582-10-15, the first Gregorian day, began at Unix time -12219292800.
    const AbsoluteTime instant = FromUnix(-12219292800.0 - 5 * 86400.0 + 12 * 3600.0);
    EXPECT_EQ(StyledDateTimeString(instant, F, N), u"Sunday, October 10, 1582"_s);
    EXPECT_EQ(DefaultDescription(instant), u"1582-10-10 12:00:00 +0000"_s);
}

class WorkingInstantTest : public NewYorkTest
{
protected:
    // What the title shows for a title name; "(none)" when the name is no title's.
    QString title(QStringView name) const
    {
        return TitleFormatText(name, m_clock).value_or(u"(none)"_s);
    }
    // "Now" is 2006-03-10 14:31:47 EST.
    ManualClock m_clock{FromUnix(kFridayUnix)};
};

TEST_F(WorkingInstantTest, APickedMomentReplacesNowExceptInTheAlwaysNowTexts)
{
    EXPECT_EQ(WorkingInstant(m_clock), FromUnix(kFridayUnix));
    EXPECT_EQ(title(u"Medium Date"), u"Mar 10, 2006"_s);

    const AbsoluteTime picked = FromUnix(946702799); // 1999-12-31 23:59:59 EST
    g_selectedDateTime = picked;
    EXPECT_EQ(WorkingInstant(m_clock), picked);
    EXPECT_EQ(MakeCurrentDateTimeStringRef(m_clock, M, N), u"Dec 31, 1999"_s);
    EXPECT_EQ(title(u"Short Date Time"), u"12/31/99, 11:59\u202FPM"_s);
    EXPECT_EQ(title(u"Full Date"), u"Friday, December 31, 1999"_s);

    EXPECT_EQ(CurrentDateTimeString(m_clock, M, S), u"Mar 10, 2006, 2:31\u202FPM"_s);
    EXPECT_EQ(GMTString(m_clock), u"2006-03-10 14:31:47 -0500"_s);
    EXPECT_EQ(NumericalDateString(m_clock), u"2006-03-10"_s);
    EXPECT_EQ(title(u"GMT"), u"2006-03-10 14:31:47 -0500"_s);

    // A moment before the reference date is negative, and a moment too.
    g_selectedDateTime = -1;
    EXPECT_EQ(title(u"Medium Date Time"), u"Dec 31, 2000, 6:59:59\u202FPM"_s);
    g_selectedDateTime = std::nan("");
    EXPECT_EQ(title(u"Long Date"), u"Horalo"_s) << "the title falls back to the program's name";
    EXPECT_EQ(title(u"Short Time"), u"(none)"_s) << "not a title's name";
}

TEST_F(WorkingInstantTest, AStringBufferTakesTheWholeTextAndItsTerminatorOrIsLeftUntouched)
{
    m_environment.setLocaleAndZone("ja_JP.UTF-8", "Asia/Tokyo");
    char buffer[kDateStringBufferSize];
    std::memset(buffer, '#', sizeof buffer);
    const auto untouched = [&] {
        return std::all_of(std::begin(buffer), std::end(buffer), [](char c) { return c == '#'; });
    };
    // "2006年3月11日" is 4 ASCII digits, 3 more and 3 three-byte characters: 16 bytes.
    constexpr qint32 kTextBytes = 16;
    for (const qint32 size : {kTextBytes, 0, -1})
        EXPECT_FALSE(MakeCurrentDateString(m_clock, L, N, buffer, size)) << size;
    EXPECT_FALSE(MakeCurrentDateString(m_clock, N, N, buffer, kDateStringBufferSize)) << "no text";
    EXPECT_TRUE(untouched());

    ASSERT_TRUE(MakeCurrentDateString(m_clock, L, N, buffer, kTextBytes + 1));
    EXPECT_STREQ(buffer, "2006年3月11日");
    EXPECT_EQ(buffer[kTextBytes + 1], '#');
}

} // namespace
