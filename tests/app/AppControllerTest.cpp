#include "support/ControllerFixture.h"

using namespace Qt::StringLiterals;

using StartUp = ControllerFixture;

TEST_F(StartUp, EmptyStoreBuildsTheDefaultsAndTakesTheSnapshotLast)
{
    // The first setup runs inside awakeFromNib, before the launch snapshot exists.
    set(SettingsKey::CustomDates, QVariantList{u"%B"_s});
    platform.userDefaults.setRegistrationProvider([] {
        QVariantMap names;
        QVariantList months;
        for (int m = 1; m <= 12; ++m)
            months.append(u"Monat%1"_s.arg(m));
        names.insert(u"NSMonthNameArray"_s, months);
        return names;
    });
    controller.awakeFromNib();
    EXPECT_FALSE(gUserDefaultsDictionary.has_value());
    EXPECT_EQ(titleOf(MenuAction::CustomDateFormatter), u"March"_s);
    EXPECT_EQ(controller.setupCount(), 1);
    ASSERT_NE(platform.statusItem(), nullptr);
    EXPECT_EQ(item().menu(), controller.statusMenu().menu());

    controller.applicationWillFinishLaunching();
    ASSERT_TRUE(gUserDefaultsDictionary.has_value());
    EXPECT_TRUE(gUserDefaultsDictionary->contains(SettingsKey::CustomDates));
    item().openMenu();
    EXPECT_EQ(titleOf(MenuAction::CustomDateFormatter), u"Monat3"_s);

    // The snapshot is never refreshed.
    set(SettingsKey::MenuTitleFormatter, u"%Y"_s);
    item().openMenu();
    EXPECT_FALSE(gUserDefaultsDictionary->contains(SettingsKey::MenuTitleFormatter));
}

TEST_F(StartUp, PickerStartsAtTheStoredPickWhenItIsADate)
{
    set(SettingsKey::DatePickerValue, DateFromAbsoluteTime(kFriday - 40 * kDay));
    launch();
    EXPECT_EQ(platform.datePicker.dateValue(), kFriday - 40 * kDay);
    EXPECT_EQ(g_selectedDateTime, 0) << "restoring the picker picks nothing";
}

TEST_F(StartUp, PickerIgnoresAStoredPickOfAnotherType)
{
    set(SettingsKey::DatePickerValue, kFriday - 40 * kDay);
    launch();
    EXPECT_EQ(platform.datePicker.dateValue(), kFriday);
}

using RebuildTriggers = ControllerFixture;

TEST_F(RebuildTriggers, BroadcastFromOurIdentifierRebuildsAndOthersDoNot)
{
    launch();
    const int afterLaunch = controller.setupCount();
    set(SettingsKey::CustomDates, QVariantList{u"%Y"_s});

    platform.distributedCenter.postNotification(PreferencesChangedNotification,
                                                u"org.example.Other"_s);
    platform.distributedCenter.postNotification(u"Something Else"_s, AppIdentifier);
    platform.processEvents();
    EXPECT_EQ(controller.setupCount(), afterLaunch);
    EXPECT_TRUE(controller.customDates().isEmpty());

    platform.distributedCenter.postNotification(PreferencesChangedNotification, AppIdentifier);
    EXPECT_EQ(controller.setupCount(), afterLaunch) << "delivered by the event loop, not in post";
    platform.processEvents();
    EXPECT_EQ(controller.setupCount(), afterLaunch + 1);
    EXPECT_EQ(controller.customDates(), QStringList{u"%Y"_s});
}

TEST_F(RebuildTriggers, AnotherProcessOnTheSameBusTriggersARebuild)
{
    InMemoryNotificationBus bus;
    InMemoryPlatform running(kFriday, nullptr, &bus);
    Platform runningServices = running.platform();
    AppController app(runningServices, running.chooserInterface(), nullptr);
    app.awakeFromNib();
    InMemoryDistributedCenter otherProcess(&bus);

    otherProcess.postNotification(PreferencesChangedNotification, AppIdentifier);
    running.processEvents();
    EXPECT_EQ(app.setupCount(), 2);
}
