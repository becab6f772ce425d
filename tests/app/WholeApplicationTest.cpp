// The application as main wires it: the application controller, the chooser and the
// preferences controller on one platform, meeting only through the store, the window-close
// notification and the "Preferences Changed" broadcast.

#include "prefpane/HoraloPrefPane.h"
#include "support/ControllerFixture.h"
#include "support/InMemoryPrefPaneControls.h"

using namespace Qt::StringLiterals;

class WholeApplication : public ControllerFixture
{
protected:
    void SetUp() override
    {
        ControllerFixture::SetUp();
        controls.connectActions(preferences);
        controller.awakeFromNib();
        preferences.awakeFromNib();
        controller.applicationWillFinishLaunching();
    }

    InMemoryPrefPaneControls controls{&preferencesWindow};
    HoraloPrefPane preferences{services, controls.outlets()};
};

TEST_F(WholeApplication, ClosingAnyWindowSavesBroadcastsOnceAndTheMenuRebuildsAtOnce)
{
    item().openMenu();
    ASSERT_TRUE(item().chooseItemTitled(u"Date-Time Chooser"_s));
    preferencesWindow.makeKeyAndOrderFront();
    controls.addCusomDateButton.click();
    controls.customDatesTable.userEditsCell(u"Custom Date Format"_s, 0, u"week %j"_s);
    EXPECT_EQ(titleOf(MenuAction::CustomDateFormatter), QString());
    const int builds = controller.setupCount();
    platform.chooserWindow.close();
    EXPECT_EQ(platform.distributedCenter.postCount(), 1);
    platform.processEvents();
    EXPECT_EQ(controller.setupCount(), builds + 1);
    EXPECT_EQ(titleOf(MenuAction::CustomDateFormatter), u"week 069"_s);
    // The save wrote the window's booleans, as their defaults here, and not the title's icon.
    EXPECT_EQ(platform.store.copyAppValue(SettingsKey::IncludeDateOnlyItems, AppIdentifier),
              QVariant(false));
    EXPECT_FALSE(
        platform.store.copyAppValue(SettingsKey::IncludeTitleIcon, AppIdentifier).isValid());
}

TEST_F(WholeApplication, ABoxTickedInPreferencesShowsAtTheNextOpening)
{
    preferencesWindow.makeKeyAndOrderFront();
    controls.includeDateOnlyItems.click();
    controls.useSymbolicNames.click();
    EXPECT_EQ(platform.distributedCenter.postCount(), 0) << "a click writes, it does not broadcast";
    item().openMenu();
    EXPECT_EQ(titleOf(MenuAction::FullDate), u"Full Date"_s);
}

TEST_F(WholeApplication, ATickingChooserClosedDirectlyStaysHeldThroughTheRebuild)
{
    set(SettingsKey::DynamicDateTimeChooser, true);
    controls.dynamicDateTimeChooser.setState(1);
    item().openMenu();
    ASSERT_TRUE(item().chooseItemTitled(u"Date-Time Chooser"_s));
    platform.timers.advance(2.0);
    platform.chooserWindow.close();
    platform.processEvents();
    EXPECT_EQ(g_selectedDateTime, kFriday + 1) << "the last tick's whole second is held";
    item().openMenu();
    EXPECT_TRUE(menuLines().at(2).startsWith(u"Days To "_s));
}

// Settings another writer changes (`horalo defaults write`, an edit of the file, another
// instance) must survive the window's next save, which writes every box and the whole list.
class SettingsFromOutside : public WholeApplication
{
protected:
    // What `horalo defaults write` does to a running application: the file changes on disk.
    void writeFromOutside(const QString &key, const QVariant &value)
    {
        set(key, value);
        platform.storeWatcher.reportOutsideChange();
    }
    QVariant stored(const QString &key) { return platform.store.copyAppValue(key, AppIdentifier); }
};

TEST_F(SettingsFromOutside, SurviveEveryWindowCloseAndShowInTheWindow)
{
    // A window that closes before the event loop has turned: save itself must look first.
    writeFromOutside(SettingsKey::IncludeTimeOnlyItems, true);
    preferencesWindow.makeKeyAndOrderFront();
    preferencesWindow.close();
    EXPECT_EQ(stored(SettingsKey::IncludeTimeOnlyItems), QVariant(true));

    writeFromOutside(SettingsKey::IncludeDateOnlyItems, true);
    writeFromOutside(SettingsKey::CustomDates, QVariantList{u"week %j"_s});
    platform.processEvents();
    EXPECT_EQ(controls.includeDateOnlyItems.state(), CheckBox::kOnState);
    EXPECT_EQ(preferences.customDateFormats(), QStringList{u"week %j"_s});

    item().openMenu();
    ASSERT_TRUE(item().chooseItemTitled(u"Date-Time Chooser"_s));
    platform.chooserWindow.close();
    preferencesWindow.makeKeyAndOrderFront();
    preferencesWindow.close();
    platform.processEvents();
    EXPECT_EQ(stored(SettingsKey::IncludeDateOnlyItems), QVariant(true));
    EXPECT_EQ(stored(SettingsKey::CustomDates), QVariantList{u"week %j"_s});
}

TEST_F(SettingsFromOutside, KeepWhatTheUserChangedInTheWindowSince)
{
    preferencesWindow.makeKeyAndOrderFront();
    writeFromOutside(SettingsKey::CustomDates, QVariantList{u"%Y"_s});
    writeFromOutside(SettingsKey::UseSymbolicNames, true);
    writeFromOutside(SettingsKey::LastTitleDisplayName, u"Full Date"_s);
    platform.processEvents();
    EXPECT_EQ(controls.menuTitleDisplayPopupButton.titleOfSelectedItem(), u"Full Date"_s);

    controls.addCusomDateButton.click();
    controls.includeGMTDateTime.click(); // on by default: now off
    preferencesWindow.close();
    EXPECT_EQ(stored(SettingsKey::CustomDates), (QVariantList{u"%Y"_s, kDefaultCustomDateFormat}));
    EXPECT_EQ(stored(SettingsKey::UseSymbolicNames), QVariant(true));
    EXPECT_EQ(stored(SettingsKey::IncludeGMTDateTime), QVariant(false));

    // A name removed from outside puts the pop-up back on the title's default.
    writeFromOutside(SettingsKey::LastTitleDisplayName, QVariant());
    platform.processEvents();
    EXPECT_EQ(controls.menuTitleDisplayPopupButton.titleOfSelectedItem(), DefaultTitleDisplayName);
}

TEST_F(SettingsFromOutside, AChangeOnDiskRebuildsTheMenuAsABroadcastWould)
{
    const int builds = controller.setupCount();
    writeFromOutside(SettingsKey::CustomDates, QVariantList{u"week %j"_s});
    platform.processEvents();
    EXPECT_EQ(controller.setupCount(), builds + 1);
    EXPECT_EQ(titleOf(MenuAction::CustomDateFormatter), u"week 069"_s);
    EXPECT_EQ(platform.distributedCenter.postCount(), 0) << "nothing to tell: the file did";
}

// Two instances on one store and one session bus: each closing in one must not undo the other.
TEST(TwoInstances, AWindowClosedInOneKeepsWhatTheOtherSaved)
{
    setenv("TZ", "America/New_York", 1);
    setenv("LANG", "en_US.UTF-8", 1);
    InMemoryPreferencesStore store;
    InMemoryNotificationBus bus;
    struct Instance
    {
        explicit Instance(InMemoryPreferencesStore &store, InMemoryNotificationBus &bus)
            : platform(kFriday, &store, &bus)
        {
            controls.connectActions(preferences);
            controller.awakeFromNib();
            preferences.awakeFromNib();
            controller.applicationWillFinishLaunching();
        }
        InMemoryPlatform platform;
        Platform services = platform.platform();
        InMemoryWindow window{platform.windowCenter};
        AppController controller{services, platform.chooserInterface(), &window};
        InMemoryPrefPaneControls controls{&window};
        HoraloPrefPane preferences{services, controls.outlets()};
    };
    Instance first(store, bus);
    Instance second(store, bus);

    second.window.makeKeyAndOrderFront();
    second.controls.includeDateOnlyItems.click();
    second.controls.addCusomDateButton.click();
    second.window.close();
    first.platform.processEvents();
    second.platform.processEvents();
    EXPECT_EQ(first.controls.includeDateOnlyItems.state(), CheckBox::kOnState);

    first.window.makeKeyAndOrderFront();
    first.window.close();
    EXPECT_EQ(store.copyAppValue(SettingsKey::IncludeDateOnlyItems, AppIdentifier), QVariant(true));
    EXPECT_EQ(store.copyAppValue(SettingsKey::CustomDates, AppIdentifier),
              QVariantList{kDefaultCustomDateFormat});
    g_selectedDateTime = 0;
}
