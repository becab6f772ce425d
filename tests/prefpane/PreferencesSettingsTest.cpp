// The settings half of the preferences window: what the controls show when the window loads,
// what each control writes, and what closing a window saves and announces.

#include "PrefPaneFixture.h"
#include "prefpane/PrefPaneLayout.h"

namespace {

using namespace Qt::StringLiterals;

// Each box, the key it shows and writes, and what it shows when the key holds no boolean.
const struct
{
    InMemoryCheckBox InMemoryPrefPaneControls::*box;
    const QString &key;
    bool byDefault;
} kBoxes[] = {
    {&InMemoryPrefPaneControls::useSymbolicNames, SettingsKey::UseSymbolicNames, false},
    {&InMemoryPrefPaneControls::initDateTimeChooserToCurrentTimeWhenOpened,
     SettingsKey::InitDateTimeChooserToCurrentTimeWhenOpened, false},
    {&InMemoryPrefPaneControls::dynamicDateTimeChooser, SettingsKey::DynamicDateTimeChooser, false},
    {&InMemoryPrefPaneControls::includeGMTDateTime, SettingsKey::IncludeGMTDateTime, true},
    {&InMemoryPrefPaneControls::includeDateOnlyItems, SettingsKey::IncludeDateOnlyItems, false},
    {&InMemoryPrefPaneControls::includeTimeOnlyItems, SettingsKey::IncludeTimeOnlyItems, false},
    {&InMemoryPrefPaneControls::includeTitleIconButton, SettingsKey::IncludeTitleIcon, true},
};

int State(bool on)
{
    return on ? CheckBox::kOnState : CheckBox::kOffState;
}

// A second preferences window over the same platform, loaded from the store as it is now.
struct LoadedWindow
{
    explicit LoadedWindow(InMemoryPlatform &memory, Platform &platform)
        : window(memory.windowCenter), pane(platform, controls.outlets())
    {
        pane.awakeFromNib();
    }
    InMemoryWindow window;
    InMemoryPrefPaneControls controls{&window};
    HoraloPrefPane pane;
};

// --- loading the controls ---

using AwakeFromNib = PrefPaneTest;

TEST_F(AwakeFromNib, EmptyStoreShowsTheDefaultsWithoutTouchingTheStore)
{
    pane = std::make_unique<HoraloPrefPane>(platform, controls.outlets());
    pane->awakeFromNib();

    for (const auto &c : kBoxes)
        EXPECT_EQ((controls.*c.box).state(), State(c.byDefault)) << c.key.toStdString();
    EXPECT_EQ(controls.menuTitleDisplayPopupButton.titleOfSelectedItem(), u"Medium Date"_s);
    EXPECT_EQ(table().numberOfRows(), 0);
    EXPECT_EQ(controls.versionInfoField.stringValue(), u"Horalo 2.0"_s);
    // Loading reads the store as it is: no synchronisation, no write, no broadcast.
    EXPECT_TRUE(storeLog().isEmpty()) << storeLog().join(u", ").toStdString();
    EXPECT_EQ(deliveredBroadcasts(), 0);
}

TEST_F(AwakeFromNib, StoredValuesShowInOrderAndWhatIsNotUsableIsSkipped)
{
    for (const auto &c : kBoxes)
        put(c.key, !c.byDefault);
    put(SettingsKey::LastTitleDisplayName, u"GMT"_s);
    put(SettingsKey::CustomDates,
        QVariantList{u"%H"_s, qlonglong(3), QVariant(), u"%d %b"_s, u"%H"_s});
    awake();

    for (const auto &c : kBoxes)
        EXPECT_EQ((controls.*c.box).state(), State(!c.byDefault)) << c.key.toStdString();
    EXPECT_EQ(controls.menuTitleDisplayPopupButton.indexOfSelectedItem(), 8);
    EXPECT_EQ(pane->customDateFormats(), (QStringList{u"%H"_s, u"%d %b"_s, u"%H"_s}));
    EXPECT_EQ(table().columnValues(kCustomDateFormatColumn), pane->customDateFormats());
    EXPECT_EQ(table().registeredDraggedTypes(), QStringList{kPrivateTableViewDataType});
    EXPECT_EQ(table().target(), pane.get());
}

TEST_F(AwakeFromNib, ValuesOfAnotherTypeOrAnUnknownTitleShowTheDefaults)
{
    // Each a value that would read as the opposite of the default if its type were ignored.
    for (const auto &c : kBoxes) {
        const bool odd = (&c - kBoxes) % 2 == 1;
        put(c.key, c.byDefault ? (odd ? QVariant(qlonglong(0)) : QVariant(u"false"_s))
                               : (odd ? QVariant(1.0) : QVariant(u"YES"_s)));
    }
    put(SettingsKey::LastTitleDisplayName, qlonglong(8));
    put(SettingsKey::CustomDates, u"%H"_s);
    awake();

    for (const auto &c : kBoxes)
        EXPECT_EQ((controls.*c.box).state(), State(c.byDefault)) << c.key.toStdString();
    EXPECT_EQ(controls.menuTitleDisplayPopupButton.titleOfSelectedItem(), u"Medium Date"_s);
    EXPECT_TRUE(pane->customDateFormats().isEmpty());
    // The wrong values stay until a control overwrites them.
    EXPECT_EQ(stored(SettingsKey::UseSymbolicNames), QVariant(u"YES"_s));

    put(SettingsKey::LastTitleDisplayName, u"Bogus Date"_s);
    const LoadedWindow other(memory, platform);
    EXPECT_EQ(other.controls.menuTitleDisplayPopupButton.titleOfSelectedItem(), u"Medium Date"_s);
}

// --- each control writes its own key ---

using SettingsActions = PrefPaneTest;

TEST_F(SettingsActions, EachBoxWritesItsKeyAsABooleanAndSynchronisesWithoutBroadcast)
{
    put(SettingsKey::UseSymbolicNames, u"YES"_s); // repaired by the clicks
    awake();
    for (const auto &c : kBoxes) {
        SCOPED_TRACE(c.key.toStdString());
        for (const bool on : {!c.byDefault, c.byDefault}) {
            storeLog().clear();
            (controls.*c.box).click();
            EXPECT_EQ(storeLog(), (QStringList{u"set "_s + c.key, u"sync"_s}));
            EXPECT_EQ(stored(c.key), QVariant(on));
            // The status-menu side sees it at its next read, before any window closes.
            EXPECT_EQ(ReadBooleanSetting(memory.store, c.key), on);
        }
    }
    EXPECT_EQ(deliveredBroadcasts(), 0);

    // A mixed box counts as on.
    controls.dynamicDateTimeChooser.setState(CheckBox::kMixedState);
    pane->dynamicDateTimeChooser(&controls.dynamicDateTimeChooser);
    EXPECT_EQ(stored(SettingsKey::DynamicDateTimeChooser), QVariant(true));
}

TEST_F(SettingsActions, PopUpWritesTheTitleAtItsIndexNarrowedToSixteenBits)
{
    QStringList titles(kTitleDisplayNames.begin(), kTitleDisplayNames.end());
    for (qsizetype i = titles.size(); i < 65540; ++i)
        titles.append(u"T%1"_s.arg(i));
    controls.menuTitleDisplayPopupButton = InMemoryPopUpButton(titles, 1);
    awake();

    controls.menuTitleDisplayPopupButton.userSelectsItemAtIndex(5);
    EXPECT_EQ(stored(SettingsKey::LastTitleDisplayName), QVariant(u"Medium Date Time"_s));
    EXPECT_EQ(storeLog(), (QStringList{u"set LastTitleDisplayName"_s, u"sync"_s}));
    controls.menuTitleDisplayPopupButton.userSelectsItemAtIndex(65537);
    EXPECT_EQ(stored(SettingsKey::LastTitleDisplayName), QVariant(u"Medium Date"_s));

    // Nothing selected: only a synchronisation.
    storeLog().clear();
    controls.menuTitleDisplayPopupButton.userSelectsItemAtIndex(-1);
    EXPECT_EQ(storeLog(), QStringList{u"sync"_s});
    EXPECT_EQ(stored(SettingsKey::LastTitleDisplayName), QVariant(u"Medium Date"_s));
    EXPECT_EQ(deliveredBroadcasts(), 0);
}

// --- saving when a window closes ---

using Save = PrefPaneTest;

TEST_F(Save, WritesTheSixBoxesAndTheListAsShownThenSynchronisesAndBroadcastsOnce)
{
    putFormats({u"%j"_s});
    put(SettingsKey::LastTitleDisplayName, u"GMT"_s);
    awake();
    controls.includeDateOnlyItems.setState(CheckBox::kOnState);
    controls.menuTitleDisplayPopupButton.selectItemWithTitle(u"Full Date"_s);
    // Written by someone else after the window loaded: the boxes are not re-read, not even
    // when the window is shown again, and save puts their state back.
    for (const auto &c : kBoxes)
        put(c.key, (controls.*c.box).state() == CheckBox::kOffState);
    putFormats({u"other"_s});
    preferencesWindow.makeKeyAndOrderFront();
    EXPECT_EQ(controls.useSymbolicNames.state(), CheckBox::kOffState);
    storeLog().clear();
    pane->save();

    for (const auto &c : kBoxes) {
        const bool shown = (controls.*c.box).state() != CheckBox::kOffState;
        // The title's icon and name are their own controls' to store, at the click: a save
        // must not overwrite a value set elsewhere since.
        const bool saved = c.key != SettingsKey::IncludeTitleIcon;
        EXPECT_EQ(stored(c.key), QVariant(saved ? shown : !shown)) << c.key.toStdString();
    }
    EXPECT_EQ(stored(SettingsKey::LastTitleDisplayName), QVariant(u"GMT"_s));
    EXPECT_EQ(stored(SettingsKey::CustomDates), QVariant(QVariantList{u"%j"_s}));
    EXPECT_EQ(storeLog().count(u"sync"_s), 1);
    EXPECT_EQ(storeLog().last(), u"sync"_s);
    EXPECT_EQ(memory.distributedCenter.postCount(), 1);
    EXPECT_EQ(deliveredBroadcasts(), 1);
}

TEST_F(Save, RunsWheneverAnyWindowClosesEvenIfThePreferencesWindowWasNeverShown)
{
    putFormats({u"%H:%M"_s});
    awake();
    controls.includeTimeOnlyItems.setState(CheckBox::kOnState);
    put(SettingsKey::CustomDates, QVariant());
    memory.chooserWindow.makeKeyAndOrderFront();
    memory.chooserWindow.close();
    EXPECT_EQ(deliveredBroadcasts(), 1);
    EXPECT_EQ(stored(SettingsKey::IncludeTimeOnlyItems), QVariant(true));
    EXPECT_EQ(storedFormats(), QStringList{u"%H:%M"_s});

    preferencesWindow.makeKeyAndOrderFront();
    preferencesWindow.close();
    EXPECT_EQ(deliveredBroadcasts(), 2);
}

} // namespace
