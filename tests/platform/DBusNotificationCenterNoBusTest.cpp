// The broadcast where no session bus can be reached: it still works within the process.

#include "NotificationRecorder.h"
#include "TestSupport.h"
#include "platform/AppIdentifier.h"
#include "platform/dbus/DBusNotificationCenter.h"

#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;

const QString kChanged = u"Preferences Changed"_s;

TEST(NoBusCenter, DeliversWithinTheProcessOnceThroughTheEventLoop)
{
    TestApplication();
    DBusNotificationCenter center;
    ASSERT_FALSE(center.isConnectedToBus());

    NotificationRecorder recorder;
    NotificationRecorder other;
    recorder.observe(center, kChanged, AppIdentifier);
    other.observe(center, u"Last"_s, AppIdentifier);

    center.postNotification(kChanged, AppIdentifier);
    center.postNotification(kChanged, u"org.example.Other"_s);
    center.postNotification(u"Other Name"_s, AppIdentifier);
    EXPECT_EQ(recorder.received, 0) << "never delivered inside post";
    EXPECT_TRUE(center.flush());

    center.postNotification(u"Last"_s, AppIdentifier);
    ASSERT_TRUE(ProcessEventsUntil([&] { return other.received > 0; }));
    EXPECT_EQ(recorder.received, 1);
}

TEST(NoBusCenter, AnObserverMayAddObserversWhileBeingDelivered)
{
    TestApplication();
    DBusNotificationCenter center(QDBusConnection(u"never-connected"_s));
    ASSERT_FALSE(center.isConnectedToBus());

    NotificationRecorder late;
    center.addObserver(kChanged, AppIdentifier,
                       [&] { late.observe(center, kChanged, AppIdentifier); });
    center.postNotification(kChanged, AppIdentifier);
    center.postNotification(kChanged, AppIdentifier);
    // The observer added by the first delivery hears the second one only.
    ASSERT_TRUE(ProcessEventsUntil([&] { return late.received > 0; }));
    EXPECT_EQ(late.received, 1);
}

} // namespace
