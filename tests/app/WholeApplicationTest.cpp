// The application as main wires it: the application controller, the chooser and the
// preferences controller on one platform, meeting only through the store, the window-close
// notification and the "Preferences Changed" broadcast.

#include "prefpane/HoraloPrefPane.h"
#include "prefpane/InMemoryPrefPaneControls.h"
#include "support/ControllerFixture.h"

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

TEST_F(WholeApplication, ClosingTheChooserSavesBroadcastsOnceAndRebuilds)
{
    item().openMenu();
    ASSERT_TRUE(item().chooseItemTitled(QStringLiteral("Date-Time Chooser")));
    const int builds = controller.setupCount();
    platform.chooserWindow.close();
    EXPECT_EQ(platform.distributedCenter.postCount(), 1);
    EXPECT_EQ(platform.processEvents(), 1);
    EXPECT_EQ(controller.setupCount(), builds + 1);
    // The save wrote the window's booleans, as their defaults here.
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
    EXPECT_NE(titleOf(QStringLiteral("fullDate:")), QString());
    EXPECT_EQ(titleOf(QStringLiteral("fullDate:")), QStringLiteral("Full Date"));
}

TEST_F(WholeApplication, CustomFormatsReachTheMenuAtOnceWhenTheWindowCloses)
{
    preferencesWindow.makeKeyAndOrderFront();
    controls.addCusomDateButton.click();
    controls.customDatesTable.userEditsCell(QStringLiteral("Custom Date Format"), 0,
                                            QStringLiteral("week %j"));
    preferencesWindow.close();
    platform.processEvents();
    EXPECT_EQ(titleOf(QStringLiteral("customDateFormatter:")), QStringLiteral("week 069"));
}

TEST_F(WholeApplication, ATickingChooserClosedDirectlyStaysHeldThroughTheRebuild)
{
    set(SettingsKey::DynamicDateTimeChooser, true);
    controls.dynamicDateTimeChooser.setState(1);
    item().openMenu();
    ASSERT_TRUE(item().chooseItemTitled(QStringLiteral("Date-Time Chooser")));
    platform.timers.advance(2.0);
    platform.chooserWindow.close();
    platform.processEvents();
    EXPECT_EQ(g_selectedDateTime, kFriday + 1) << "the last tick's whole second is held";
    item().openMenu();
    EXPECT_TRUE(menuLines().at(2).startsWith(QStringLiteral("Days To ")));
}
