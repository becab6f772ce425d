#include "DateTextTestSupport.h"
#include "datetext/DateFormatCatalogue.h"
#include "datetext/LocalEnvironment.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

using namespace Qt::StringLiterals;

namespace {

struct StyledCase
{
    const char *locale;
    const char *zone;
    DateFormatterStyle dateStyle;
    DateFormatterStyle timeStyle;
    QString expected;
};

void PrintTo(const StyledCase &c, std::ostream *os)
{
    *os << c.locale << ' ' << c.zone << " (" << c.dateStyle << ", " << c.timeStyle << ")";
}

class StyledPairTest : public ::testing::TestWithParam<StyledCase>
{};

TEST_P(StyledPairTest, RendersTheLocalesStandardText)
{
    const StyledCase &c = GetParam();
    ScopedDateEnvironment environment;
    environment.setLocaleAndZone(c.locale, c.zone);
    EXPECT_EQ(StyledDateTimeString(FromUnix(kFridayUnix), c.dateStyle, c.timeStyle), c.expected);
}

// ICU 72 puts a narrow no-break space (U+202F) before the English AM/PM.
INSTANTIATE_TEST_SUITE_P(
    EnglishInNewYork, StyledPairTest,
    ::testing::Values(
        StyledCase{"en_US.UTF-8", "America/New_York", kShortStyle, kShortStyle,
                   u"3/10/06, 2:31\u202FPM"_s},
        StyledCase{"en_US.UTF-8", "America/New_York", kMediumStyle, kMediumStyle,
                   u"Mar 10, 2006, 2:31:47\u202FPM"_s},
        StyledCase{"en_US.UTF-8", "America/New_York", kLongStyle, kLongStyle,
                   u"March 10, 2006 at 2:31:47\u202FPM EST"_s},
        StyledCase{"en_US.UTF-8", "America/New_York", kFullStyle, kFullStyle,
                   u"Friday, March 10, 2006 at 2:31:47\u202FPM Eastern Standard Time"_s},
        StyledCase{"en_US.UTF-8", "America/New_York", kShortStyle, kNoStyle, u"3/10/06"_s},
        StyledCase{"en_US.UTF-8", "America/New_York", kMediumStyle, kNoStyle, u"Mar 10, 2006"_s},
        StyledCase{"en_US.UTF-8", "America/New_York", kLongStyle, kNoStyle, u"March 10, 2006"_s},
        StyledCase{"en_US.UTF-8", "America/New_York", kFullStyle, kNoStyle,
                   u"Friday, March 10, 2006"_s},
        StyledCase{"en_US.UTF-8", "America/New_York", kNoStyle, kShortStyle, u"2:31\u202FPM"_s},
        StyledCase{"en_US.UTF-8", "America/New_York", kNoStyle, kMediumStyle, u"2:31:47\u202FPM"_s},
        StyledCase{"en_US.UTF-8", "America/New_York", kNoStyle, kLongStyle,
                   u"2:31:47\u202FPM EST"_s},
        StyledCase{"en_US.UTF-8", "America/New_York", kNoStyle, kFullStyle,
                   u"2:31:47\u202FPM Eastern Standard Time"_s}));

// The same instant is already Saturday morning in Tokyo.
INSTANTIATE_TEST_SUITE_P(EnglishInTokyo, StyledPairTest,
                         ::testing::Values(StyledCase{"en_US.UTF-8", "Asia/Tokyo", kMediumStyle,
                                                      kMediumStyle,
                                                      u"Mar 11, 2006, 4:31:47\u202FAM"_s},
                                           StyledCase{"en_US.UTF-8", "Asia/Tokyo", kFullStyle,
                                                      kNoStyle, u"Saturday, March 11, 2006"_s},
                                           StyledCase{"en_US.UTF-8", "Asia/Tokyo", kNoStyle,
                                                      kShortStyle, u"4:31\u202FAM"_s}));

INSTANTIATE_TEST_SUITE_P(
    German, StyledPairTest,
    ::testing::Values(StyledCase{"de_DE.UTF-8", "America/New_York", kShortStyle, kShortStyle,
                                 u"10.03.06, 14:31"_s},
                      StyledCase{"de_DE.UTF-8", "America/New_York", kMediumStyle, kMediumStyle,
                                 u"10.03.2006, 14:31:47"_s},
                      StyledCase{"de_DE.UTF-8", "America/New_York", kLongStyle, kLongStyle,
                                 u"10. März 2006 um 14:31:47 GMT-5"_s},
                      StyledCase{"de_DE.UTF-8", "America/New_York", kFullStyle, kNoStyle,
                                 u"Freitag, 10. März 2006"_s},
                      StyledCase{"de_DE.UTF-8", "Asia/Tokyo", kMediumStyle, kMediumStyle,
                                 u"11.03.2006, 04:31:47"_s},
                      StyledCase{"de_DE.UTF-8", "Asia/Tokyo", kFullStyle, kNoStyle,
                                 u"Samstag, 11. März 2006"_s},
                      StyledCase{"de_DE.UTF-8", "Asia/Tokyo", kNoStyle, kShortStyle, u"04:31"_s}));

INSTANTIATE_TEST_SUITE_P(
    Japanese, StyledPairTest,
    ::testing::Values(StyledCase{"ja_JP.UTF-8", "America/New_York", kShortStyle, kShortStyle,
                                 u"2006/03/10 14:31"_s},
                      StyledCase{"ja_JP.UTF-8", "America/New_York", kMediumStyle, kMediumStyle,
                                 u"2006/03/10 14:31:47"_s},
                      StyledCase{"ja_JP.UTF-8", "America/New_York", kFullStyle, kFullStyle,
                                 u"2006年3月10日金曜日 14時31分47秒 アメリカ東部標準時"_s},
                      StyledCase{"ja_JP.UTF-8", "Asia/Tokyo", kMediumStyle, kMediumStyle,
                                 u"2006/03/11 4:31:47"_s},
                      StyledCase{"ja_JP.UTF-8", "Asia/Tokyo", kLongStyle, kNoStyle,
                                 u"2006年3月11日"_s},
                      StyledCase{"ja_JP.UTF-8", "Asia/Tokyo", kFullStyle, kFullStyle,
                                 u"2006年3月11日土曜日 4時31分47秒 日本標準時"_s}));

class LocaleFromEnvironmentTest : public ::testing::Test
{
protected:
    ScopedDateEnvironment m_environment;
};

TEST_F(LocaleFromEnvironmentTest, LcAllWinsOverLcTimeWhichWinsOverLang)
{
    m_environment.set("LANG", "ja_JP.UTF-8");
    m_environment.set("LC_TIME", "de_DE.UTF-8");
    m_environment.set("LC_ALL", "en_US.UTF-8");
    EXPECT_EQ(CurrentLocaleName(), "en_US");
    m_environment.set("LC_ALL", "");
    EXPECT_EQ(CurrentLocaleName(), "de_DE");
    m_environment.set("LC_TIME", nullptr);
    EXPECT_EQ(CurrentLocaleName(), "ja_JP");
}

TEST_F(LocaleFromEnvironmentTest, CodesetAndModifierAreDropped)
{
    m_environment.set("LC_ALL", "de_DE.ISO-8859-15@euro");
    EXPECT_EQ(CurrentLocaleName(), "de_DE");
    m_environment.set("LC_ALL", "sr_RS@latin");
    EXPECT_EQ(CurrentLocaleName(), "sr_RS");
}

TEST_F(LocaleFromEnvironmentTest, NoLocaleCAndPosixRenderAsAmericanEnglish)
{
    m_environment.set("TZ", "America/New_York");
    for (const char *value : {static_cast<const char *>(nullptr), "C", "POSIX", "C.UTF-8"}) {
        m_environment.set("LC_ALL", value);
        m_environment.set("LC_TIME", nullptr);
        m_environment.set("LANG", nullptr);
        EXPECT_EQ(CurrentLocaleName(), "en_US") << (value ? value : "(unset)");
        EXPECT_EQ(StyledDateTimeString(FromUnix(kFridayUnix), kMediumStyle, kNoStyle),
                  u"Mar 10, 2006"_s);
    }
}

TEST_F(LocaleFromEnvironmentTest, AChangeOfLocaleOrZoneShowsAtTheNextRendering)
{
    m_environment.setLocaleAndZone("en_US.UTF-8", "America/New_York");
    const AbsoluteTime instant = FromUnix(kFridayUnix);
    EXPECT_EQ(StyledDateTimeString(instant, kNoStyle, kShortStyle), u"2:31\u202FPM"_s);
    m_environment.set("TZ", "Europe/Berlin");
    EXPECT_EQ(StyledDateTimeString(instant, kNoStyle, kShortStyle), u"8:31\u202FPM"_s);
    m_environment.set("LC_ALL", "de_DE.UTF-8");
    EXPECT_EQ(StyledDateTimeString(instant, kNoStyle, kShortStyle), u"20:31"_s);
}

class StyledFailureTest : public ::testing::Test
{
protected:
    void SetUp() override { m_environment.setLocaleAndZone("en_US.UTF-8", "America/New_York"); }
    ScopedDateEnvironment m_environment;
};

TEST_F(StyledFailureTest, NoTextForTwoEmptyHalvesAnInstantThatIsNoDateOrAStyleOutOfRange)
{
    EXPECT_TRUE(StyledDateTimeString(0, kNoStyle, kNoStyle).isNull());
    EXPECT_TRUE(StyledDateTimeString(std::nan(""), kShortStyle, kShortStyle).isNull());
    EXPECT_TRUE(StyledDateTimeString(1e300, kShortStyle, kShortStyle).isNull());
    EXPECT_TRUE(StyledDateTimeString(0, static_cast<DateFormatterStyle>(5), kNoStyle).isNull());
}

TEST_F(StyledFailureTest, DatesBeforeTheReformAreProlepticGregorianLikeEveryOtherText)
{
    m_environment.set("TZ", "UTC");
    // 1582-10-10 exists only on the proleptic calendar (the Julian one skipped it), a Sunday.
    // 1582-10-15, the first Gregorian day, began at Unix time -12219292800.
    const AbsoluteTime instant = FromUnix(-12219292800.0 - 5 * 86400.0 + 12 * 3600.0);
    EXPECT_EQ(StyledDateTimeString(instant, kFullStyle, kNoStyle), u"Sunday, October 10, 1582"_s);
    EXPECT_EQ(DefaultDescription(instant), u"1582-10-10 12:00:00 +0000"_s);
}

class WorkingInstantTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_environment.setLocaleAndZone("en_US.UTF-8", "America/New_York");
        g_selectedDateTime = 0;
    }
    // What the title shows for a title name; "(none)" when the name is no title's.
    QString title(QStringView name) const
    {
        return TitleFormatText(name, m_clock).value_or(u"(none)"_s);
    }
    ScopedDateEnvironment m_environment;
    // "Now" is 2006-03-10 14:31:47 EST; the picked moment is 1999-12-31 23:59:59 EST.
    TestClock m_clock{FromUnix(kFridayUnix)};
    const AbsoluteTime m_picked = FromUnix(946702799);
};

TEST_F(WorkingInstantTest, NothingPickedMeansNowEverywhere)
{
    EXPECT_EQ(WorkingInstant(m_clock), FromUnix(kFridayUnix));
    EXPECT_EQ(MakeCurrentDateTimeStringRef(m_clock, kMediumStyle, kNoStyle), u"Mar 10, 2006"_s);
    EXPECT_EQ(title(u"Medium Date"), u"Mar 10, 2006"_s);
}

TEST_F(WorkingInstantTest, APickedMomentReplacesNowInTheWorkingInstantRenderers)
{
    g_selectedDateTime = m_picked;
    EXPECT_EQ(WorkingInstant(m_clock), m_picked);
    EXPECT_EQ(MakeCurrentDateTimeStringRef(m_clock, kMediumStyle, kNoStyle), u"Dec 31, 1999"_s);
    EXPECT_EQ(title(u"Short Date"), u"12/31/99"_s);
    EXPECT_EQ(title(u"Short Date Time"), u"12/31/99, 11:59\u202FPM"_s);
    EXPECT_EQ(title(u"Medium Date"), u"Dec 31, 1999"_s);
    EXPECT_EQ(title(u"Medium Date Time"), u"Dec 31, 1999, 11:59:59\u202FPM"_s);
    EXPECT_EQ(title(u"Long Date"), u"December 31, 1999"_s);
    EXPECT_EQ(title(u"Long Date Time"), u"December 31, 1999 at 11:59:59\u202FPM EST"_s);
    EXPECT_EQ(title(u"Full Date"), u"Friday, December 31, 1999"_s);
    EXPECT_EQ(title(u"Full Date Time"),
              u"Friday, December 31, 1999 at 11:59:59\u202FPM Eastern Standard Time"_s);
}

TEST_F(WorkingInstantTest, TheAlwaysNowRenderersIgnoreThePickedMoment)
{
    g_selectedDateTime = m_picked;
    EXPECT_EQ(CurrentDateTimeString(m_clock, kMediumStyle, kShortStyle),
              u"Mar 10, 2006, 2:31\u202FPM"_s);
    EXPECT_EQ(GMTString(m_clock), u"2006-03-10 14:31:47 -0500"_s);
    EXPECT_EQ(NumericalDateString(m_clock), u"2006-03-10"_s);
    EXPECT_EQ(title(u"GMT"), u"2006-03-10 14:31:47 -0500"_s);
}

TEST_F(WorkingInstantTest, ANegativeMomentBeforeTheReferenceDateIsAMomentToo)
{
    g_selectedDateTime = -1;
    EXPECT_EQ(title(u"Medium Date Time"), u"Dec 31, 2000, 6:59:59\u202FPM"_s);
}

TEST_F(WorkingInstantTest, TitleOperationsFallBackToTheProgramsName)
{
    g_selectedDateTime = std::nan("");
    EXPECT_EQ(title(u"Short Date"), u"Horalo"_s);
    EXPECT_EQ(title(u"Full Date Time"), u"Horalo"_s);
    EXPECT_TRUE(MakeCurrentDateTimeStringRef(m_clock, kShortStyle, kNoStyle).isNull());
}

class DateStringBufferTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_environment.setLocaleAndZone("ja_JP.UTF-8", "Asia/Tokyo");
        g_selectedDateTime = 0;
        std::memset(m_buffer, '#', sizeof m_buffer);
    }
    bool untouched() const
    {
        for (char c : m_buffer) {
            if (c != '#')
                return false;
        }
        return true;
    }
    ScopedDateEnvironment m_environment;
    TestClock m_clock{FromUnix(kFridayUnix)};
    char m_buffer[kDateStringBufferSize];
    // "2006年3月11日" is 4 ASCII digits, 3 more and 3 three-byte characters: 16 bytes.
    static constexpr qint32 kTextBytes = 16;
};

TEST_F(DateStringBufferTest, TheTextAndItsTerminatorFitExactly)
{
    ASSERT_TRUE(MakeCurrentDateString(m_clock, kLongStyle, kNoStyle, m_buffer, kTextBytes + 1));
    EXPECT_STREQ(m_buffer, "2006年3月11日");
    EXPECT_EQ(m_buffer[kTextBytes + 1], '#');
}

TEST_F(DateStringBufferTest, OneByteShortFailsAsAWholeAndLeavesTheBufferUntouched)
{
    EXPECT_FALSE(MakeCurrentDateString(m_clock, kLongStyle, kNoStyle, m_buffer, kTextBytes));
    EXPECT_TRUE(untouched());
    EXPECT_FALSE(MakeCurrentDateString(m_clock, kLongStyle, kNoStyle, m_buffer, 0));
    EXPECT_FALSE(MakeCurrentDateString(m_clock, kLongStyle, kNoStyle, m_buffer, -1));
    EXPECT_TRUE(untouched());
}

TEST_F(DateStringBufferTest, NoTextLeavesTheBufferUntouched)
{
    EXPECT_FALSE(
        MakeCurrentDateString(m_clock, kNoStyle, kNoStyle, m_buffer, kDateStringBufferSize));
    EXPECT_TRUE(untouched());
}

} // namespace
