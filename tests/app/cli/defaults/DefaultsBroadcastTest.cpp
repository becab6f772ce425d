// `horalo defaults` tells a running Horalo over the session bus (under dbus-run-session).

#include "DefaultsCommandFixture.h"
#include "NotificationRecorder.h"
#include "app/settings/Settings.h"
#include "platform/dbus/DBusNotificationCenter.h"

namespace {

using namespace Qt::StringLiterals;

TEST_F(DefaultsCommandTest, AWriteAndADeleteReachARunningObserver)
{
    DBusNotificationCenter running;
    ASSERT_TRUE(running.isConnectedToBus());
    NotificationRecorder recorder;
    recorder.observe(running, PreferencesChangedNotification, AppIdentifier);
    running.flush();

    ASSERT_EQ(run({u"write"_s, u"menuTitleFormatter"_s, u"-string"_s, u"%Y"_s}).status, 0);
    ASSERT_TRUE(ProcessEventsUntil([&] { return recorder.received == 1; }));

    ASSERT_EQ(run({u"delete"_s, u"menuTitleFormatter"_s}).status, 0);
    ASSERT_TRUE(ProcessEventsUntil([&] { return recorder.received == 2; }));

    // A rejected write says nothing on the bus: our own sentinel comes back first.
    ASSERT_EQ(run({u"write"_s, u"k"_s, u"-int"_s, u"x"_s}).status, 2);
    NotificationRecorder sentinel;
    sentinel.observe(running, u"Sentinel"_s, AppIdentifier);
    running.postNotification(u"Sentinel"_s, AppIdentifier);
    running.flush();
    ASSERT_TRUE(ProcessEventsUntil([&] { return sentinel.received > 0; }));
    EXPECT_EQ(recorder.received, 2);
}

} // namespace
