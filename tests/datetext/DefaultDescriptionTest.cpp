#include "DateTextTestSupport.h"
#include "datetext/DateFormatCatalogue.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

using DefaultDescriptionTest = NewYorkTest;

TEST_F(DefaultDescriptionTest, DateTimeAndOffsetInTheLocalZoneThroughTheCenturies)
{
    const struct
    {
        const char *zone;
        double unixSeconds;
        QString expected;
    } cases[] = {
        {"America/New_York", kFridayUnix, u"2006-03-10 14:31:47 -0500"_s},
        // The clock across the spring change, and the repeated hour twice in the autumn.
        {"America/New_York", 1143961199, u"2006-04-02 01:59:59 -0500"_s},
        {"America/New_York", 1143961200, u"2006-04-02 03:00:00 -0400"_s},
        {"America/New_York", 1162101599, u"2006-10-29 01:59:59 -0400"_s},
        {"America/New_York", 1162101600, u"2006-10-29 01:00:00 -0500"_s},
        // Around the reference date: a fraction before a whole second belongs to the second
        // before.
        {"America/New_York", 978307199, u"2000-12-31 18:59:59 -0500"_s},
        {"America/New_York", 978307199.75, u"2000-12-31 18:59:59 -0500"_s},
        {"America/New_York", 978307200, u"2000-12-31 19:00:00 -0500"_s},
        {"America/New_York", -14182940, u"1969-07-20 16:17:40 -0400"_s},
        {"America/New_York", -1, u"1969-12-31 18:59:59 -0500"_s},
        // Daylight-saving time by the zone's lasting rule, a thousand years ahead; before
        // standard time, New York kept its local mean time, 4:56:02 behind GMT, and the offset
        // field has no room for the seconds.
        {"America/New_York", 32519361600, u"3000-07-01 08:00:00 -0400"_s},
        {"America/New_York", -5348980800, u"1800-07-01 07:03:58 -0456"_s},
        {"UTC", -62135596800, u"0001-01-01 00:00:00 +0000"_s},
        {"UTC", -93724128000, u"-1000-01-01 00:00:00 +0000"_s},
        {"UTC", 253402300799, u"9999-12-31 23:59:59 +0000"_s},
        {"UTC", 253402300800, u"10000-01-01 00:00:00 +0000"_s},
        {"Asia/Kolkata", kFridayUnix, u"2006-03-11 01:01:47 +0530"_s},
        {"America/St_Johns", kFridayUnix, u"2006-03-10 16:01:47 -0330"_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << c.zone << ' ' << qint64(c.unixSeconds));
        m_environment.set("TZ", c.zone);
        EXPECT_EQ(DefaultDescription(FromUnix(c.unixSeconds)), c.expected);
    }
    EXPECT_TRUE(DefaultDescription(std::nan("")).isNull());
    EXPECT_TRUE(DefaultDescription(INFINITY).isNull());
    EXPECT_TRUE(DefaultDescription(-1e18).isNull());
}

TEST_F(DefaultDescriptionTest, NumericalFormatsAreCutFromIt)
{
    for (const auto &[menuName, expected] :
         {std::pair{u"Numerical Date No Hyphens", u"20060310"_s},
          std::pair{u"Numerical Date Time", u"2006-03-10 14:31:47"_s},
          std::pair{u"Numerical Date", u"2006-03-10"_s},
          std::pair{u"GMT Date Time", u"2006-03-10 14:31:47 -0500"_s}}) {
        const CatalogueFormat *format = CatalogueFormatWithMenuName(menuName);
        ASSERT_NE(format, nullptr);
        EXPECT_EQ(CatalogueFormatText(*format, FromUnix(kFridayUnix)), expected);
    }
    // Split at single spaces; every hyphen goes, a year's minus sign too.
    EXPECT_EQ(NumericalDateFromDescription(u"a-b-c d e"_s), u"a-b-c"_s);
    EXPECT_EQ(NumericalDateTimeFromDescription(u"a-b  c"_s), u"a-b "_s);
    EXPECT_EQ(NumericalDateNoHyphensFromDescription(u"-1000-01-01 00:00:00 +0000"_s),
              u"10000101"_s);
    EXPECT_TRUE(NumericalDateTimeFromDescription(u"one-field"_s).isNull());
    EXPECT_TRUE(NumericalDateFromDescription(QString()).isNull());
}

TEST(DateFormatCatalogueTest, KeepsBothSpellingsOfTheNames)
{
    ASSERT_NE(CatalogueFormatWithMenuName(u"Short Date-Time"), nullptr);
    EXPECT_EQ(CatalogueFormatWithMenuName(u"Short Date-Time")->titleName, u"Short Date Time");
    EXPECT_EQ(CatalogueFormatWithTitleName(u"GMT")->menuName, u"GMT Date Time");
    for (const char16_t *wrong : {u"GMT Date Time", u"Short Time", u"", u"medium date"})
        EXPECT_EQ(CatalogueFormatWithTitleName(wrong), nullptr);
    EXPECT_EQ(CatalogueFormatWithMenuName(u"Short Date Time"), nullptr);
    int titled = 0;
    for (const CatalogueFormat &format : DateFormatCatalogue())
        titled += format.titleName.isEmpty() ? 0 : 1;
    EXPECT_EQ(titled, 9);
}

} // namespace
