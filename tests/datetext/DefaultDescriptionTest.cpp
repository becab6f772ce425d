#include "DateTextTestSupport.h"
#include "datetext/DateFormatCatalogue.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

class DefaultDescriptionTest : public ::testing::Test
{
protected:
    void SetUp() override { m_environment.setLocaleAndZone("en_US.UTF-8", "America/New_York"); }
    QString describe(double unixSeconds) { return DefaultDescription(FromUnix(unixSeconds)); }
    ScopedDateEnvironment m_environment;
};

TEST_F(DefaultDescriptionTest, ThreeFieldsInTheLocalZone)
{
    EXPECT_EQ(describe(kFridayUnix), u"2006-03-10 14:31:47 -0500"_s);
}

TEST_F(DefaultDescriptionTest, FollowsTheClockAcrossTheSpringChange)
{
    EXPECT_EQ(describe(1143961199), u"2006-04-02 01:59:59 -0500"_s);
    EXPECT_EQ(describe(1143961200), u"2006-04-02 03:00:00 -0400"_s);
}

TEST_F(DefaultDescriptionTest, ShowsTheRepeatedHourTwiceInTheAutumn)
{
    EXPECT_EQ(describe(1162101599), u"2006-10-29 01:59:59 -0400"_s);
    EXPECT_EQ(describe(1162101600), u"2006-10-29 01:00:00 -0500"_s);
}

TEST_F(DefaultDescriptionTest, NegativeAbsoluteTimesCountBackFromTheReferenceDate)
{
    EXPECT_EQ(DefaultDescription(-1), u"2000-12-31 18:59:59 -0500"_s);
    // A fraction of a second before a whole second still belongs to the earlier second.
    EXPECT_EQ(DefaultDescription(-0.25), u"2000-12-31 18:59:59 -0500"_s);
    EXPECT_EQ(DefaultDescription(0), u"2000-12-31 19:00:00 -0500"_s);
}

TEST_F(DefaultDescriptionTest, BeforeNineteenSeventy)
{
    EXPECT_EQ(describe(-14182940), u"1969-07-20 16:17:40 -0400"_s);
    EXPECT_EQ(describe(-1), u"1969-12-31 18:59:59 -0500"_s);
}

TEST_F(DefaultDescriptionTest, FarYearsKeepTheZonesRulesAndLocalMeanTime)
{
    // Daylight-saving time by the zone's lasting rule, a thousand years ahead.
    EXPECT_EQ(describe(32519361600), u"3000-07-01 08:00:00 -0400"_s);
    // Before standard time, New York kept its local mean time, 4:56:02 behind GMT; the offset
    // field has no room for the seconds.
    EXPECT_EQ(describe(-5348980800), u"1800-07-01 07:03:58 -0456"_s);
    m_environment.set("TZ", "UTC");
    EXPECT_EQ(describe(-62135596800), u"0001-01-01 00:00:00 +0000"_s);
    EXPECT_EQ(describe(-93724128000), u"-1000-01-01 00:00:00 +0000"_s);
    EXPECT_EQ(describe(253402300799), u"9999-12-31 23:59:59 +0000"_s);
    EXPECT_EQ(describe(253402300800), u"10000-01-01 00:00:00 +0000"_s);
}

TEST_F(DefaultDescriptionTest, HalfHourZones)
{
    m_environment.set("TZ", "Asia/Kolkata");
    EXPECT_EQ(describe(kFridayUnix), u"2006-03-11 01:01:47 +0530"_s);
    m_environment.set("TZ", "America/St_Johns");
    EXPECT_EQ(describe(kFridayUnix), u"2006-03-10 16:01:47 -0330"_s);
}

TEST_F(DefaultDescriptionTest, NoTextForAnInstantThatIsNoDate)
{
    EXPECT_TRUE(DefaultDescription(std::nan("")).isNull());
    EXPECT_TRUE(DefaultDescription(INFINITY).isNull());
    EXPECT_TRUE(DefaultDescription(-1e18).isNull());
}

class NumericalFormatTest : public DefaultDescriptionTest
{
protected:
    QString text(QStringView menuName, double unixSeconds)
    {
        const CatalogueFormat *format = CatalogueFormatWithMenuName(menuName);
        EXPECT_NE(format, nullptr) << menuName.toString().toStdString();
        return format ? CatalogueFormatText(*format, FromUnix(unixSeconds)) : QString();
    }
};

TEST_F(NumericalFormatTest, AreCutFromTheDescription)
{
    EXPECT_EQ(text(u"Numerical Date No Hyphens", kFridayUnix), u"20060310"_s);
    EXPECT_EQ(text(u"Numerical Date Time", kFridayUnix), u"2006-03-10 14:31:47"_s);
    EXPECT_EQ(text(u"Numerical Date", kFridayUnix), u"2006-03-10"_s);
    EXPECT_EQ(text(u"GMT Date Time", kFridayUnix), u"2006-03-10 14:31:47 -0500"_s);
}

TEST_F(NumericalFormatTest, DerivationsSplitAtSingleSpacesAndRemoveEveryHyphen)
{
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
    EXPECT_EQ(CatalogueFormatWithMenuName(u"Short Date Time"), nullptr);
    EXPECT_EQ(CatalogueFormatWithTitleName(u"GMT")->menuName, u"GMT Date Time");
    EXPECT_EQ(CatalogueFormatWithTitleName(u"GMT Date Time"), nullptr);
    EXPECT_EQ(CatalogueFormatWithTitleName(u"Short Time"), nullptr);
    EXPECT_EQ(CatalogueFormatWithTitleName(u""), nullptr);
    EXPECT_EQ(CatalogueFormatWithTitleName(u"medium date"), nullptr);
    int titled = 0;
    for (const CatalogueFormat &format : DateFormatCatalogue())
        titled += format.titleName.isEmpty() ? 0 : 1;
    EXPECT_EQ(titled, 9);
}

} // namespace
