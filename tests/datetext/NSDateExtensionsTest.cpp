#include "datetext/NSDateExtensions.h"

#include "DateTextTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

using namespace Qt::StringLiterals;

namespace {

constexpr qint32 kMin = std::numeric_limits<qint32>::min();

// The phrase for a date `ago` seconds before now, at a depth or in a unit.
struct PhraseCase
{
    double ago;
    qint32 depthOrUnit;
    QString expected;
};

// A date S seconds before "now" (after it for a negative S).
class TimeSinceTest : public ::testing::Test
{
protected:
    NSDateExtensions secondsAgo(double seconds) const
    {
        return NSDateExtensions(m_clock, m_clock.currentAbsoluteTime() - seconds);
    }

    ManualClock m_clock{FromUnix(kFridayUnix)};
};

TEST_F(TimeSinceTest, ElapsedSecondsTruncateTowardZeroAndSaturateBeyondThirtyTwoBits)
{
    const struct
    {
        double ago;
        qint32 expected;
    } cases[] = {
        {90061, 90061},
        {-90061, -90061},
        {59.9, 59},
        {-59.9, -59},
        {0.9, 0},
        {2147483647, 2147483647},
        {-2147483647, -2147483647},
        // Beyond 32 bits either way: the most negative value.
        {2147483648.0, kMin},
        {-2147483648.0, kMin},
        {1e12, kMin},
        {-1e12, kMin},
    };
    for (const auto &c : cases)
        EXPECT_EQ(secondsAgo(c.ago).elapsedSeconds(), c.expected) << c.ago;
}

TEST_F(TimeSinceTest, DepthCountsEmittedPiecesDropsTheRestAndSignsEveryPiece)
{
    const double all = 31556926 + 2629744 + 604800 + 86400 + 3600 + 60 + 1;
    const PhraseCase cases[] = {
        {90061, 2, u"1 day, 1 hour"_s},
        {90061, 7, u"1 day, 1 hour, 1 min, 1 sec"_s},
        {604800 + 30, 2, u"1 week, 30 secs"_s}, // zero units are skipped, not counted
        {60, 2, u"1 min"_s},
        {31556926, 7, u"1 year"_s},
        // What lies below the last piece is dropped, not rounded; twelve months are longer
        // than the year.
        {86400 + 23 * 3600 + 59 * 60, 1, u"1 day"_s},
        {31556925, 2, u"11 months, 4 weeks"_s},
        // Nothing to say: zero.
        {90061, 0, u"0"_s},
        {0.99, 7, u"0"_s},
        {-0.99, 7, u"0"_s},
        // A negative depth never runs out.
        {all, -1, u"1 year, 1 month, 1 week, 1 day, 1 hour, 1 min, 1 sec"_s},
        {all, kMin, u"1 year, 1 month, 1 week, 1 day, 1 hour, 1 min, 1 sec"_s},
        {all, 3, u"1 year, 1 month, 1 week"_s},
        // The future carries a sign on every piece, and so does the saturated value.
        {-(3 * 86400 + 5 * 3600), 2, u"-3 days, -5 hours"_s},
        {-120, 2, u"-2 mins"_s},
        {1e12, 2, u"-68 years, -2 weeks"_s},
        {-1e12, 2, u"-68 years, -2 weeks"_s},
    };
    for (const auto &c : cases)
        EXPECT_EQ(secondsAgo(c.ago).timesinceWithDepth(c.depthOrUnit), c.expected)
            << c.ago << " seconds ago, depth " << c.depthOrUnit;
    EXPECT_EQ(secondsAgo(90061).timesince(), u"1 day, 1 hour"_s);
}

TEST_F(TimeSinceTest, SingleUnitPhrasesKeepTheArticleAForLessThanAUnit)
{
    const PhraseCase cases[] = {
        {90061, 4, u"1 day"_s},
        {90061, 3, u"25 hours"_s},
        {-90061, 4, u"-1 day"_s},
        {12 * 86400 + 5, 4, u"12 days"_s},
        {45, 1, u"45 secs"_s},
        {2 * 31556926, 7, u"2 years"_s},
        {45, 2, u"Less than a min"_s},
        {3599, 3, u"Less than a hour"_s},
        {-86399, 4, u"Less than a day"_s},
        {0, 1, u"Less than a sec"_s},
        {31556925, 7, u"Less than a year"_s},
    };
    for (const auto &c : cases)
        EXPECT_EQ(secondsAgo(c.ago).timesinceWithUnit(c.depthOrUnit), c.expected)
            << c.ago << " seconds ago, unit " << c.depthOrUnit;
    for (const qint32 bad : {0, 8, -1, kMin, std::numeric_limits<qint32>::max()})
        EXPECT_THROW(secondsAgo(90061).timesinceWithUnit(bad), std::out_of_range) << bad;
}

TEST_F(TimeSinceTest, DatesFromAbsoluteTimesAreAnchoredOnThePresent)
{
    const AbsoluteTime now = m_clock.currentAbsoluteTime();
    const std::optional<NSDateExtensions> date =
        NSDateExtensions::dateFromCFAbsoluteTime(m_clock, now - 90061);
    ASSERT_TRUE(date.has_value());
    EXPECT_EQ(date->absoluteTime(), now - 90061);
    EXPECT_FALSE(NSDateExtensions::dateFromCFAbsoluteTime(m_clock, std::nan("")).has_value());

    EXPECT_EQ(NSDateExtensions::daysSinceAbsoluteTme(m_clock, now + 86399), u"Less than a day"_s);
    EXPECT_EQ(NSDateExtensions::daysSinceAbsoluteTme(m_clock, now - 10 * 86400), u"10 days"_s);
    EXPECT_EQ(NSDateExtensions::daysSinceAbsoluteTme(m_clock, now + 10 * 86400), u"-10 days"_s);
    EXPECT_TRUE(NSDateExtensions::daysSinceAbsoluteTme(m_clock, std::nan("")).isNull());
}

} // namespace
