#include "datetext/NSDateExtensions.h"

#include "DateTextTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

using namespace Qt::StringLiterals;

namespace {

// A date S seconds before "now" (after it for a negative S).
class TimeSinceTest : public ::testing::Test
{
protected:
    NSDateExtensions secondsAgo(double seconds) const
    {
        return NSDateExtensions(m_clock, m_clock.currentAbsoluteTime() - seconds);
    }
    QString depth(double seconds, qint32 d) const
    {
        return secondsAgo(seconds).timesinceWithDepth(d);
    }
    QString unit(double seconds, qint32 u) const
    {
        return secondsAgo(seconds).timesinceWithUnit(u);
    }

    TestClock m_clock{FromUnix(kFridayUnix)};
};

TEST_F(TimeSinceTest, ElapsedSecondsArePositiveForThePastAndTruncateTowardZero)
{
    EXPECT_EQ(secondsAgo(90061).elapsedSeconds(), 90061);
    EXPECT_EQ(secondsAgo(-90061).elapsedSeconds(), -90061);
    EXPECT_EQ(secondsAgo(59.9).elapsedSeconds(), 59);
    EXPECT_EQ(secondsAgo(-59.9).elapsedSeconds(), -59);
    EXPECT_EQ(secondsAgo(0.9).elapsedSeconds(), 0);
}

TEST_F(TimeSinceTest, BeyondThirtyTwoBitsEitherWaySaturatesToTheMostNegative)
{
    constexpr qint32 kMin = std::numeric_limits<qint32>::min();
    EXPECT_EQ(secondsAgo(2147483647).elapsedSeconds(), 2147483647);
    EXPECT_EQ(secondsAgo(-2147483647).elapsedSeconds(), -2147483647);
    EXPECT_EQ(secondsAgo(2147483648.0).elapsedSeconds(), kMin); // the date is -2^31 from now
    EXPECT_EQ(secondsAgo(-2147483648.0).elapsedSeconds(), kMin);
    EXPECT_EQ(secondsAgo(1e12).elapsedSeconds(), kMin);
    EXPECT_EQ(secondsAgo(-1e12).elapsedSeconds(), kMin);
    EXPECT_EQ(depth(1e12, 2), u"-68 years, -2 weeks"_s);
    EXPECT_EQ(depth(-1e12, 2), u"-68 years, -2 weeks"_s);
}

TEST_F(TimeSinceTest, DepthCountsEmittedPiecesAndSkipsZeroUnits)
{
    EXPECT_EQ(depth(90061, 2), u"1 day, 1 hour"_s);
    EXPECT_EQ(depth(90061, 7), u"1 day, 1 hour, 1 min, 1 sec"_s);
    EXPECT_EQ(depth(604800 + 30, 2), u"1 week, 30 secs"_s);
    EXPECT_EQ(depth(45, 2), u"45 secs"_s);
    EXPECT_EQ(depth(60, 2), u"1 min"_s);
    EXPECT_EQ(depth(61, 2), u"1 min, 1 sec"_s);
    EXPECT_EQ(depth(31556926, 7), u"1 year"_s);
}

TEST_F(TimeSinceTest, WhatLiesBelowTheLastPieceIsDroppedNotRounded)
{
    EXPECT_EQ(depth(86400 + 23 * 3600 + 59 * 60, 1), u"1 day"_s);
    // Twelve months are longer than the year.
    EXPECT_EQ(depth(31556925, 1), u"11 months"_s);
    EXPECT_EQ(depth(31556925, 2), u"11 months, 4 weeks"_s);
}

TEST_F(TimeSinceTest, ZeroDepthOrLessThanASecondGivesZero)
{
    EXPECT_EQ(depth(90061, 0), u"0"_s);
    EXPECT_EQ(depth(0, 2), u"0"_s);
    EXPECT_EQ(depth(0.99, 7), u"0"_s);
    EXPECT_EQ(depth(-0.99, 7), u"0"_s);
}

TEST_F(TimeSinceTest, ANegativeDepthNeverRunsOut)
{
    const double all = 31556926 + 2629744 + 604800 + 86400 + 3600 + 60 + 1;
    const QString everything = u"1 year, 1 month, 1 week, 1 day, 1 hour, 1 min, 1 sec"_s;
    EXPECT_EQ(depth(all, -1), everything);
    EXPECT_EQ(depth(all, std::numeric_limits<qint32>::min()), everything);
    EXPECT_EQ(depth(all, 3), u"1 year, 1 month, 1 week"_s);
}

TEST_F(TimeSinceTest, AFutureDateCarriesASignOnEveryPiece)
{
    EXPECT_EQ(depth(-90061, 2), u"-1 day, -1 hour"_s);
    EXPECT_EQ(depth(-(3 * 86400 + 5 * 3600), 2), u"-3 days, -5 hours"_s);
    EXPECT_EQ(depth(-120, 2), u"-2 mins"_s);
}

TEST_F(TimeSinceTest, SingleUnitPhrases)
{
    EXPECT_EQ(unit(90061, 4), u"1 day"_s);
    EXPECT_EQ(unit(90061, 3), u"25 hours"_s);
    EXPECT_EQ(unit(-90061, 4), u"-1 day"_s);
    EXPECT_EQ(unit(12 * 86400 + 5, 4), u"12 days"_s);
    EXPECT_EQ(unit(-12 * 86400, 4), u"-12 days"_s);
    EXPECT_EQ(unit(45, 1), u"45 secs"_s);
    EXPECT_EQ(unit(2 * 31556926, 7), u"2 years"_s);
}

TEST_F(TimeSinceTest, LessThanAUnitKeepsTheArticleA)
{
    EXPECT_EQ(unit(45, 2), u"Less than a min"_s);
    EXPECT_EQ(unit(3599, 3), u"Less than a hour"_s);
    EXPECT_EQ(unit(86399, 4), u"Less than a day"_s);
    EXPECT_EQ(unit(-86399, 4), u"Less than a day"_s);
    EXPECT_EQ(unit(0, 1), u"Less than a sec"_s);
    EXPECT_EQ(unit(31556925, 7), u"Less than a year"_s);
}

TEST_F(TimeSinceTest, AUnitOutsideTheTableThrowsOutOfRange)
{
    for (qint32 bad :
         {0, 8, -1, std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max()})
        EXPECT_THROW(unit(90061, bad), std::out_of_range) << bad;
}

TEST_F(TimeSinceTest, TimesinceIsDepthTwo)
{
    EXPECT_EQ(secondsAgo(90061).timesince(), u"1 day, 1 hour"_s);
}

TEST_F(TimeSinceTest, DatesFromAbsoluteTimesAreAnchoredOnThePresent)
{
    const std::optional<NSDateExtensions> date =
        NSDateExtensions::dateFromCFAbsoluteTime(m_clock, FromUnix(kFridayUnix) - 90061);
    ASSERT_TRUE(date.has_value());
    EXPECT_EQ(date->absoluteTime(), FromUnix(kFridayUnix) - 90061);
    EXPECT_FALSE(NSDateExtensions::dateFromCFAbsoluteTime(m_clock, std::nan("")).has_value());
}

TEST_F(TimeSinceTest, DaysSinceAnAbsoluteTime)
{
    const AbsoluteTime now = m_clock.currentAbsoluteTime();
    EXPECT_EQ(NSDateExtensions::daysSinceAbsoluteTme(m_clock, now - 86399), u"Less than a day"_s);
    EXPECT_EQ(NSDateExtensions::daysSinceAbsoluteTme(m_clock, now + 86399), u"Less than a day"_s);
    EXPECT_EQ(NSDateExtensions::daysSinceAbsoluteTme(m_clock, now - 10 * 86400), u"10 days"_s);
    EXPECT_EQ(NSDateExtensions::daysSinceAbsoluteTme(m_clock, now + 10 * 86400), u"-10 days"_s);
    EXPECT_TRUE(NSDateExtensions::daysSinceAbsoluteTme(m_clock, std::nan("")).isNull());
}

} // namespace
