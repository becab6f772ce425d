// The settings half of the preferences window: what the controls show when the window loads,
// what each control writes, and what closing a window saves and announces.

#include "PrefPaneFixture.h"
#include "prefpane/PrefPaneLayout.h"

namespace {

QStringList SetAndSync(const QString &key)
{
    return {QStringLiteral("set ") + key, QStringLiteral("sync")};
}

// --- loading the controls ---

using AwakeFromNib = PrefPaneTest;

TEST_F(AwakeFromNib, EmptyStoreShowsTheDefaultsWithoutTouchingTheStore)
{
    pane = std::make_unique<HoraloPrefPane>(platform, controls.outlets());
    pane->awakeFromNib();

    EXPECT_EQ(controls.useSymbolicNames.state(), CheckBox::kOffState);
    EXPECT_EQ(controls.initDateTimeChooserToCurrentTimeWhenOpened.state(), CheckBox::kOffState);
    EXPECT_EQ(controls.dynamicDateTimeChooser.state(), CheckBox::kOffState);
    EXPECT_EQ(controls.includeGMTDateTime.state(), CheckBox::kOnState);
    EXPECT_EQ(controls.includeDateOnlyItems.state(), CheckBox::kOffState);
    EXPECT_EQ(controls.includeTimeOnlyItems.state(), CheckBox::kOffState);
    EXPECT_EQ(controls.includeTitleIconButton.state(), CheckBox::kOnState);
    EXPECT_EQ(controls.menuTitleDisplayPopupButton.titleOfSelectedItem(),
              QStringLiteral("Medium Date"));
    EXPECT_EQ(table().numberOfRows(), 0);
    // Loading reads the store as it is: no synchronisation, no write, no broadcast.
    EXPECT_TRUE(storeLog().isEmpty()) << storeLog().join(u", ").toStdString();
    EXPECT_EQ(deliveredBroadcasts(), 0);
}

TEST_F(AwakeFromNib, BoxesShowStoredBooleans)
{
    for (const BooleanSetting &setting : kBooleanSettings)
        put(setting.key, !setting.defaultValue);
    awake();

    EXPECT_EQ(controls.useSymbolicNames.state(), CheckBox::kOnState);
    EXPECT_EQ(controls.initDateTimeChooserToCurrentTimeWhenOpened.state(), CheckBox::kOnState);
    EXPECT_EQ(controls.dynamicDateTimeChooser.state(), CheckBox::kOnState);
    EXPECT_EQ(controls.includeGMTDateTime.state(), CheckBox::kOffState);
    EXPECT_EQ(controls.includeDateOnlyItems.state(), CheckBox::kOnState);
    EXPECT_EQ(controls.includeTimeOnlyItems.state(), CheckBox::kOnState);
    EXPECT_EQ(controls.includeTitleIconButton.state(), CheckBox::kOffState);
}

TEST_F(AwakeFromNib, WronglyTypedValuesShowTheKeysDefaults)
{
    put(SettingsKey::UseSymbolicNames, QStringLiteral("YES"));
    put(SettingsKey::DynamicDateTimeChooser, qlonglong(1));
    put(SettingsKey::IncludeGMTDateTime, qlonglong(0));
    put(SettingsKey::IncludeTitleIcon, QStringLiteral("false"));
    put(SettingsKey::IncludeDateOnlyItems, 1.0);
    put(SettingsKey::LastTitleDisplayName, qlonglong(8));
    awake();

    EXPECT_EQ(controls.useSymbolicNames.state(), CheckBox::kOffState);
    EXPECT_EQ(controls.dynamicDateTimeChooser.state(), CheckBox::kOffState);
    EXPECT_EQ(controls.includeGMTDateTime.state(), CheckBox::kOnState);
    EXPECT_EQ(controls.includeTitleIconButton.state(), CheckBox::kOnState);
    EXPECT_EQ(controls.includeDateOnlyItems.state(), CheckBox::kOffState);
    EXPECT_EQ(controls.menuTitleDisplayPopupButton.titleOfSelectedItem(),
              QStringLiteral("Medium Date"));
    // The wrong values stay until a control overwrites them.
    EXPECT_EQ(stored(SettingsKey::UseSymbolicNames), QVariant(QStringLiteral("YES")));
}

TEST_F(AwakeFromNib, PopUpSelectsTheStoredTitleOrKeepsItsLayout)
{
    put(SettingsKey::LastTitleDisplayName, QStringLiteral("GMT"));
    awake();
    EXPECT_EQ(controls.menuTitleDisplayPopupButton.indexOfSelectedItem(), 8);

    InMemoryWindow otherWindow{memory.windowCenter};
    InMemoryPrefPaneControls other{&otherWindow};
    put(SettingsKey::LastTitleDisplayName, QStringLiteral("Bogus Date"));
    HoraloPrefPane otherPane(platform, other.outlets());
    otherPane.awakeFromNib();
    EXPECT_EQ(other.menuTitleDisplayPopupButton.titleOfSelectedItem(),
              QStringLiteral("Medium Date"));
}

TEST_F(AwakeFromNib, VersionLineIsNameSpaceVersion)
{
    awake();
    EXPECT_EQ(controls.versionInfoField.stringValue(), QStringLiteral("Horalo 2.0"));
}

TEST_F(AwakeFromNib, LoadsStoredCustomFormatsInOrder)
{
    putFormats({QStringLiteral("%Y"), QStringLiteral("%d %b"), QStringLiteral("%Y")});
    awake();
    EXPECT_EQ(pane->customDateFormats(),
              (QStringList{QStringLiteral("%Y"), QStringLiteral("%d %b"), QStringLiteral("%Y")}));
    EXPECT_EQ(table().columnValues(kCustomDateFormatColumn), pane->customDateFormats());
    EXPECT_EQ(table().registeredDraggedTypes(), QStringList{kPrivateTableViewDataType});
    EXPECT_EQ(table().target(), pane.get());
}

TEST_F(AwakeFromNib, MalformedCustomFormatsLoadWhatIsUsable)
{
    put(SettingsKey::CustomDates,
        QVariantList{QStringLiteral("%H"), qlonglong(3), QVariant(), QStringLiteral("%M")});
    awake();
    EXPECT_EQ(pane->customDateFormats(), (QStringList{QStringLiteral("%H"), QStringLiteral("%M")}));

    InMemoryWindow otherWindow{memory.windowCenter};
    InMemoryPrefPaneControls other{&otherWindow};
    put(SettingsKey::CustomDates, QStringLiteral("%H"));
    HoraloPrefPane otherPane(platform, other.outlets());
    otherPane.awakeFromNib();
    EXPECT_TRUE(otherPane.customDateFormats().isEmpty());
}

// --- each control writes its own key ---

using SettingsActions = PrefPaneTest;

TEST_F(SettingsActions, EachBoxWritesItsKeyAndSynchronisesWithoutBroadcast)
{
    awake();
    const std::pair<InMemoryCheckBox *, QString> boxes[] = {
        {&controls.useSymbolicNames, SettingsKey::UseSymbolicNames},
        {&controls.initDateTimeChooserToCurrentTimeWhenOpened,
         SettingsKey::InitDateTimeChooserToCurrentTimeWhenOpened},
        {&controls.dynamicDateTimeChooser, SettingsKey::DynamicDateTimeChooser},
        {&controls.includeGMTDateTime, SettingsKey::IncludeGMTDateTime},
        {&controls.includeDateOnlyItems, SettingsKey::IncludeDateOnlyItems},
        {&controls.includeTimeOnlyItems, SettingsKey::IncludeTimeOnlyItems},
        {&controls.includeTitleIconButton, SettingsKey::IncludeTitleIcon},
    };
    for (const auto &[box, key] : boxes) {
        SCOPED_TRACE(key.toStdString());
        const bool wasOn = box->state() != CheckBox::kOffState;
        storeLog().clear();
        box->click();
        EXPECT_EQ(storeLog(), SetAndSync(key));
        const QVariant value = stored(key);
        EXPECT_EQ(value.typeId(), QMetaType::Bool);
        EXPECT_EQ(value.toBool(), !wasOn);
        // The status-menu side sees it at its next read, before any window closes.
        EXPECT_EQ(ReadBooleanSetting(memory.store, key), !wasOn);
    }
    EXPECT_EQ(deliveredBroadcasts(), 0);
}

TEST_F(SettingsActions, MixedStateCountsAsTrue)
{
    awake();
    controls.dynamicDateTimeChooser.setState(CheckBox::kMixedState);
    pane->dynamicDateTimeChooser(&controls.dynamicDateTimeChooser);
    EXPECT_EQ(stored(SettingsKey::DynamicDateTimeChooser), QVariant(true));
}

TEST_F(SettingsActions, TwoClicksRepairAWronglyTypedBoolean)
{
    put(SettingsKey::UseSymbolicNames, QStringLiteral("YES"));
    awake();
    controls.useSymbolicNames.click();
    controls.useSymbolicNames.click();
    EXPECT_EQ(stored(SettingsKey::UseSymbolicNames).typeId(), QMetaType::Bool);
    EXPECT_EQ(stored(SettingsKey::UseSymbolicNames), QVariant(false));
}

TEST_F(SettingsActions, PopUpWritesTheChosenTitle)
{
    awake();
    controls.menuTitleDisplayPopupButton.userSelectsItemAtIndex(5);
    EXPECT_EQ(stored(SettingsKey::LastTitleDisplayName),
              QVariant(QStringLiteral("Medium Date Time")));
    EXPECT_EQ(storeLog(), SetAndSync(SettingsKey::LastTitleDisplayName));
    EXPECT_EQ(TitleDisplayName(memory.store), QStringLiteral("Medium Date Time"));
    EXPECT_EQ(deliveredBroadcasts(), 0);
}

TEST_F(SettingsActions, PopUpWithoutATitleOnlySynchronises)
{
    put(SettingsKey::LastTitleDisplayName, QStringLiteral("GMT"));
    awake();
    controls.menuTitleDisplayPopupButton.userSelectsItemAtIndex(-1);
    EXPECT_EQ(storeLog(), QStringList{QStringLiteral("sync")});
    EXPECT_EQ(stored(SettingsKey::LastTitleDisplayName), QVariant(QStringLiteral("GMT")));
}

TEST_F(SettingsActions, PopUpIndexIsNarrowedToSixteenBits)
{
    QStringList titles;
    for (int i = 0; i < 65540; ++i)
        titles.append(QStringLiteral("T%1").arg(i));
    controls.menuTitleDisplayPopupButton = InMemoryPopUpButton(titles, 0);
    awake();
    controls.menuTitleDisplayPopupButton.userSelectsItemAtIndex(65537);
    EXPECT_EQ(stored(SettingsKey::LastTitleDisplayName), QVariant(QStringLiteral("T1")));
}

// --- saving when a window closes ---

using Save = PrefPaneTest;

TEST_F(Save, WritesSixBooleansAndTheFormatsThenSynchronisesOnceAndBroadcastsOnce)
{
    putFormats({QStringLiteral("%j")});
    awake();
    controls.includeDateOnlyItems.setState(CheckBox::kOnState);
    pane->save();

    EXPECT_EQ(storeLog(), (QStringList{
                              QStringLiteral("set UseSymbolicNames"),
                              QStringLiteral("set InitDateTimeChooserToCurrentTimeWhenOpened"),
                              QStringLiteral("set DynamicDateTimeChooser"),
                              QStringLiteral("set IncludeGMTDateTime"),
                              QStringLiteral("set IncludeDateOnlyItems"),
                              QStringLiteral("set IncludeTimeOnlyItems"),
                              QStringLiteral("set Custom Dates"),
                              QStringLiteral("sync"),
                          }));
    EXPECT_EQ(memory.distributedCenter.postCount(), 1);
    EXPECT_EQ(deliveredBroadcasts(), 1);
    EXPECT_EQ(stored(SettingsKey::IncludeDateOnlyItems), QVariant(true));
    EXPECT_EQ(stored(SettingsKey::IncludeGMTDateTime), QVariant(true));
    EXPECT_EQ(stored(SettingsKey::UseSymbolicNames), QVariant(false));
    EXPECT_EQ(stored(SettingsKey::CustomDates).typeId(), QMetaType::QVariantList);
    EXPECT_EQ(storedFormats(), QStringList{QStringLiteral("%j")});
}

TEST_F(Save, LeavesTitleIconAndTitleNameToTheirOwnControls)
{
    put(SettingsKey::IncludeTitleIcon, false);
    put(SettingsKey::LastTitleDisplayName, QStringLiteral("GMT"));
    awake();
    // The controls now disagree with the store, without their actions having run.
    controls.includeTitleIconButton.setState(CheckBox::kOnState);
    controls.menuTitleDisplayPopupButton.selectItemWithTitle(QStringLiteral("Full Date"));
    pane->save();

    EXPECT_EQ(stored(SettingsKey::IncludeTitleIcon), QVariant(false));
    EXPECT_EQ(stored(SettingsKey::LastTitleDisplayName), QVariant(QStringLiteral("GMT")));
    EXPECT_FALSE(storeLog().contains(QStringLiteral("set IncludeTitleIcon")));
    EXPECT_FALSE(storeLog().contains(QStringLiteral("set LastTitleDisplayName")));
}

TEST_F(Save, WritesWhatTheBoxesShowNotWhatTheStoreHolds)
{
    awake();
    // Written by someone else after the window loaded: the boxes are not re-read, not even
    // when the window is shown again, and save puts their state back.
    put(SettingsKey::UseSymbolicNames, true);
    put(SettingsKey::IncludeGMTDateTime, false);
    preferencesWindow.makeKeyAndOrderFront();
    EXPECT_EQ(controls.useSymbolicNames.state(), CheckBox::kOffState);
    pane->save();
    EXPECT_EQ(stored(SettingsKey::UseSymbolicNames), QVariant(false));
    EXPECT_EQ(stored(SettingsKey::IncludeGMTDateTime), QVariant(true));
}

TEST_F(Save, RunsWheneverAnyWindowCloses)
{
    awake();
    preferencesWindow.makeKeyAndOrderFront();
    preferencesWindow.close();
    EXPECT_EQ(deliveredBroadcasts(), 1);

    // The chooser's window, never the preferences window, and with a box changed meanwhile.
    controls.includeTimeOnlyItems.setState(CheckBox::kOnState);
    memory.chooserWindow.makeKeyAndOrderFront();
    memory.chooserWindow.close();
    EXPECT_EQ(deliveredBroadcasts(), 2);
    EXPECT_EQ(stored(SettingsKey::IncludeTimeOnlyItems), QVariant(true));
}

TEST_F(Save, ChooserClosingSavesEvenIfThePreferencesWindowWasNeverShown)
{
    putFormats({QStringLiteral("%H:%M")});
    awake();
    memory.store.setAppValue(SettingsKey::CustomDates, QVariant(), AppIdentifier);
    memory.chooserWindow.makeKeyAndOrderFront();
    memory.chooserWindow.close();
    EXPECT_EQ(storedFormats(), QStringList{QStringLiteral("%H:%M")});
    EXPECT_EQ(memory.distributedCenter.postCount(), 1);
}

} // namespace
