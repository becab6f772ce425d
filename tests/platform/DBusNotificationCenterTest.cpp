// The broadcast on a real session bus (the test runs under dbus-run-session), within this
// process and across two.

#include "platform/dbus/DBusNotificationCenter.h"

#include "NotificationRecorder.h"
#include "TestSupport.h"
#include "platform/AppIdentifier.h"

#include <QProcess>

#include <gtest/gtest.h>

#include <memory>

namespace {

using namespace Qt::StringLiterals;

const QString kChanged = u"Preferences Changed"_s;
const QString kSentinel = u"Sentinel"_s;

class BusCenterTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TestApplication();
        m_center = std::make_unique<DBusNotificationCenter>();
        ASSERT_TRUE(m_center->isConnectedToBus()) << "run this test under dbus-run-session";
        m_sentinel.observe(*m_center, kSentinel, AppIdentifier);
    }

    // The bus keeps one sender's order, and has routed all we sent once flush() returns; so
    // once our sentinel is back, everything we posted before it has been delivered as often as
    // it ever will be.
    bool drainOwnPosts()
    {
        const qsizetype before = m_sentinel.received.size();
        m_center->postNotification(kSentinel, AppIdentifier, {}, true);
        m_center->flush();
        return ProcessEventsUntil([&] { return m_sentinel.received.size() > before; }) &&
               m_sentinel.received.size() == before + 1;
    }

    std::unique_ptr<DBusNotificationCenter> m_center;
    NotificationRecorder m_sentinel;
    NotificationRecorder m_recorder;
};

TEST_F(BusCenterTest, ThePosterHearsItsOwnNotificationOnceAndLater)
{
    m_recorder.observe(*m_center, kChanged, AppIdentifier);
    m_center->postNotification(kChanged, AppIdentifier,
                               {{u"count"_s, 3}, {u"names"_s, QStringList{u"a"_s, u"b"_s}}}, true);
    EXPECT_TRUE(m_recorder.received.isEmpty()) << "never delivered inside post";

    ASSERT_TRUE(drainOwnPosts());
    ASSERT_EQ(m_recorder.received.size(), 1);
    const auto &got = m_recorder.received.first();
    EXPECT_EQ(got.name, kChanged);
    EXPECT_EQ(got.object, AppIdentifier);
    EXPECT_EQ(got.userInfo.value(u"count"_s).toInt(), 3);
    EXPECT_EQ(got.userInfo.value(u"names"_s).toStringList(), (QStringList{u"a"_s, u"b"_s}));
}

TEST_F(BusCenterTest, ObserversFilterOnNameAndObject)
{
    m_recorder.observe(*m_center, kChanged, AppIdentifier);
    m_center->postNotification(kChanged, u"org.example.Other"_s, {}, true);
    m_center->postNotification(u"Something Else"_s, AppIdentifier, {}, true);
    m_center->postNotification(kChanged, AppIdentifier.toUpper(), {}, true);
    ASSERT_TRUE(drainOwnPosts());
    EXPECT_TRUE(m_recorder.received.isEmpty());
}

TEST_F(BusCenterTest, AnotherProcessHearsOnlyTheMatchingNotification)
{
    QProcess listener;
    listener.start(QStringLiteral(HORALO_PLATFORM_PEER), {u"listen"_s, kChanged, AppIdentifier});
    ASSERT_TRUE(listener.waitForReadyRead(10000));
    ASSERT_EQ(listener.readLine(), QByteArray("ready\n"));

    // If the filter let the first two through, the listener would report one of them: the bus
    // delivers one sender's signals in order.
    m_center->postNotification(kChanged, u"org.example.Other"_s, {{u"from"_s, u"wrong object"_s}},
                               true);
    m_center->postNotification(u"Other Name"_s, AppIdentifier, {{u"from"_s, u"wrong name"_s}},
                               true);
    m_center->postNotification(kChanged, AppIdentifier, {{u"from"_s, u"test"_s}}, true);
    m_center->flush();

    ASSERT_TRUE(listener.waitForFinished(10000));
    EXPECT_EQ(listener.exitCode(), 0);
    EXPECT_EQ(listener.readAllStandardOutput(),
              QByteArray("Preferences Changed|org.horalo.Horalo|from=test\n"));
}

TEST_F(BusCenterTest, ANotificationFromAnotherProcessArrivesOnce)
{
    m_recorder.observe(*m_center, kChanged, AppIdentifier);
    m_center->flush(); // our match rule is in place before the peer posts

    QProcess poster;
    poster.start(QStringLiteral(HORALO_PLATFORM_PEER), {u"post"_s, kChanged, AppIdentifier});
    ASSERT_TRUE(poster.waitForFinished(10000));
    ASSERT_EQ(poster.exitCode(), 0);

    ASSERT_TRUE(ProcessEventsUntil([&] { return !m_recorder.received.isEmpty(); }));
    ASSERT_TRUE(drainOwnPosts());
    ASSERT_EQ(m_recorder.received.size(), 1);
    EXPECT_EQ(m_recorder.received.first().userInfo.value(u"from"_s).toString(), u"peer"_s);
}

} // namespace
