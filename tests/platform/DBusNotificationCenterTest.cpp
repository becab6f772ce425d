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
        const int before = m_sentinel.received;
        m_center->postNotification(kSentinel, AppIdentifier);
        m_center->flush();
        return ProcessEventsUntil([&] { return m_sentinel.received > before; }) &&
               m_sentinel.received == before + 1;
    }

    std::unique_ptr<DBusNotificationCenter> m_center;
    NotificationRecorder m_sentinel;
    NotificationRecorder m_recorder;
};

TEST_F(BusCenterTest, ThePosterHearsItsOwnMatchingNotificationOnceAndLater)
{
    m_recorder.observe(*m_center, kChanged, AppIdentifier);
    m_center->postNotification(kChanged, u"org.example.Other"_s);
    m_center->postNotification(u"Something Else"_s, AppIdentifier);
    m_center->postNotification(kChanged, AppIdentifier.toUpper());
    m_center->postNotification(kChanged, AppIdentifier);
    EXPECT_EQ(m_recorder.received, 0) << "never delivered inside post";

    ASSERT_TRUE(drainOwnPosts());
    EXPECT_EQ(m_recorder.received, 1);
}

TEST_F(BusCenterTest, AnotherProcessHearsOnlyTheMatchingNotification)
{
    QProcess listener;
    listener.start(QStringLiteral(HORALO_PLATFORM_PEER), {u"listen"_s, kChanged, AppIdentifier});
    ASSERT_TRUE(listener.waitForReadyRead(10000));
    ASSERT_EQ(listener.readLine(), QByteArray("ready\n"));

    // The bus delivers one sender's signals in order, so the listener has counted all of these
    // by the time the sentinel reaches it.
    m_center->postNotification(kChanged, u"org.example.Other"_s);
    m_center->postNotification(u"Other Name"_s, AppIdentifier);
    m_center->postNotification(kChanged, AppIdentifier);
    m_center->postNotification(kSentinel, AppIdentifier);
    m_center->flush();

    ASSERT_TRUE(listener.waitForFinished(10000));
    EXPECT_EQ(listener.exitCode(), 0);
    EXPECT_EQ(listener.readAllStandardOutput(), QByteArray("heard 1\n"));
}

TEST_F(BusCenterTest, ANotificationFromAnotherProcessArrivesOnce)
{
    m_recorder.observe(*m_center, kChanged, AppIdentifier);
    m_center->flush(); // our match rule is in place before the peer posts

    QProcess poster;
    poster.start(QStringLiteral(HORALO_PLATFORM_PEER), {u"post"_s, kChanged, AppIdentifier});
    ASSERT_TRUE(poster.waitForFinished(10000));
    ASSERT_EQ(poster.exitCode(), 0);

    ASSERT_TRUE(ProcessEventsUntil([&] { return m_recorder.received > 0; }));
    ASSERT_TRUE(drainOwnPosts());
    EXPECT_EQ(m_recorder.received, 1);
}

} // namespace
