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

    center.postNotification(kChanged, AppIdentifier, {{u"n"_s, 1}}, true);
    center.postNotification(kChanged, u"org.example.Other"_s, {}, true);
    center.postNotification(u"Other Name"_s, AppIdentifier, {}, true);
    EXPECT_TRUE(recorder.received.isEmpty()) << "never delivered inside post";
    EXPECT_TRUE(center.flush());

    center.postNotification(u"Last"_s, AppIdentifier, {}, true);
    ASSERT_TRUE(ProcessEventsUntil([&] { return !other.received.isEmpty(); }));
    ASSERT_EQ(recorder.received.size(), 1);
    EXPECT_EQ(recorder.received.first().userInfo.value(u"n"_s), QVariant(1));
}

TEST(NoBusCenter, ACallbackMayAddObserversWhileBeingDelivered)
{
    TestApplication();
    DBusNotificationCenter center(QDBusConnection(u"never-connected"_s));
    ASSERT_FALSE(center.isConnectedToBus());

    static NotificationRecorder late;
    const auto addLate = [](DistributedNotificationCenter *c, void *, const QString &,
                            const QString &,
                            const QVariantMap &) { late.observe(*c, kChanged, AppIdentifier); };
    center.addObserver(nullptr, addLate, kChanged, AppIdentifier,
                       SuspensionBehavior::DeliverImmediately);
    center.postNotification(kChanged, AppIdentifier, {}, true);
    center.postNotification(kChanged, AppIdentifier, {}, true);
    // The observer added by the first delivery hears the second one only.
    ASSERT_TRUE(ProcessEventsUntil([&] { return !late.received.isEmpty(); }));
    EXPECT_EQ(late.received.size(), 1);
}

} // namespace
