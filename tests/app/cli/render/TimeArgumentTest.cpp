#include "app/cli/TimeArgument.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

AbsoluteTime FromUnix(double unixSeconds)
{
    return unixSeconds - kAbsoluteTimeIntervalSince1970;
}

TEST(ParseTimeArgumentTest, ReadsIsoWithAnOffsetAndSecondsSinceTheUnixEpoch)
{
    const std::pair<QString, AbsoluteTime> cases[] = {
        {u"2006-03-10T14:31:47-05:00"_s, FromUnix(1142019107)},
        {u"2006-03-10T19:31:47Z"_s, FromUnix(1142019107)},
        {u"2006-03-10t19:31:47z"_s, FromUnix(1142019107)},
        {u"2006-03-11T01:01:47+0530"_s, FromUnix(1142019107)},
        {u"2006-03-10T14:31:47-05"_s, FromUnix(1142019107)},
        {u"2006-03-10 19:31Z"_s, FromUnix(1142019060)},
        {u"2001-01-01T00:00:00Z"_s, 0.0},
        {u"2001-01-01T00:00:00.25Z"_s, 0.25},
        {u"2000-12-31T23:59:59,5Z"_s, -0.5},
        {u"-1000-01-01T00:00:00Z"_s, FromUnix(-93724128000)},
        {u"@1142019107"_s, FromUnix(1142019107)},
        {u"@0"_s, FromUnix(0)},
        {u"@-14182940"_s, FromUnix(-14182940)},
        {u"@978307200.125"_s, 0.125},
        {u"@-0.5"_s, FromUnix(-0.5)},
    };
    for (const auto &[text, time] : cases)
        EXPECT_EQ(ParseTimeArgument(text), time) << text.toStdString();
    EXPECT_TRUE(ParseTimeArgument(u"2008-02-29T12:00:00Z"_s).has_value());
    EXPECT_TRUE(ParseTimeArgument(u"2000-02-29T12:00:00Z"_s).has_value());
}

TEST(ParseTimeArgumentTest, RejectsWhatIsNotAnInstant)
{
    for (const QString &text :
         {u""_s, u"now"_s, u"2006-03-10T14:31:47"_s /* no offset: no instant */, u"2006-03-10"_s,
          u"2006-13-10T14:31:47Z"_s, u"2006-02-30T14:31:47Z"_s, u"1900-02-29T12:00:00Z"_s,
          u"2006-03-10T24:00:00Z"_s, u"2006-03-10T14:60:00Z"_s, u"2006-03-10T14:31:60Z"_s,
          u"2006-03-10T14:31:47+25:00"_s, u"2006-03-10T14:31:47 Z"_s, u"@"_s, u"@1e5"_s,
          u"@12abc"_s, u"@.5"_s, u" @5"_s, u"1142019107"_s})
        EXPECT_FALSE(ParseTimeArgument(text).has_value()) << text.toStdString();
}

} // namespace
