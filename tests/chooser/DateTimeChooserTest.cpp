#include "support/ControllerFixture.h"

// The chooser's states: Idle (closed, nothing picked), Held (closed, a frozen moment picked),
// Open, Ticking (a live clock) and Frozen (a live clock stopped by a rebuild).
class Chooser : public ControllerFixture
{
protected:
    void SetUp() override
    {
        ControllerFixture::SetUp();
        launch();
    }
    void open()
    {
        item().openMenu();
        ASSERT_TRUE(item().chooseItemTitled(QStringLiteral("Date-Time Chooser")));
    }
    Timer *timer() { return controller.chooser().dateTimeTimer(); }
    InMemoryWindow &window() { return platform.chooserWindow; }
    InMemoryDatePicker &picker() { return platform.datePicker; }
};

TEST_F(Chooser, StartsAtTheLaunchMomentAndFloats)
{
    EXPECT_EQ(picker().dateValue(), kFriday);
    EXPECT_TRUE(window().isFloating());
    EXPECT_FALSE(window().isVisible());
    EXPECT_EQ(g_selectedDateTime, 0);
}

TEST_F(Chooser, OpenPickAndCloseReturnsToNow)
{
    open();
    EXPECT_TRUE(window().isVisible());
    EXPECT_EQ(timer(), nullptr);
    EXPECT_EQ(g_selectedDateTime, kFriday);

    picker().userChangesDateValue(kFriday + 10 * kDay);
    EXPECT_EQ(g_selectedDateTime, kFriday + 10 * kDay);
    item().openMenu();
    EXPECT_EQ(menuLines().at(2).section(QLatin1Char(':'), -1), QStringLiteral(" 10 days\t\t"));
    EXPECT_EQ(titleOf(MenuAction::NumericalDate), QStringLiteral("2006-03-20"));
    platform.timers.advance(1.0);
    EXPECT_EQ(item().title(), QStringLiteral("Mar 20, 2006"));

    window().close();
    EXPECT_EQ(g_selectedDateTime, 0);
    item().openMenu();
    EXPECT_EQ(menuLines().at(2), QStringLiteral("-")) << "no chooser lines without a moment";
    platform.timers.advance(1.0);
    EXPECT_EQ(item().title(), QStringLiteral("Mar 10, 2006"));
}

TEST_F(Chooser, APickIsRememberedAcrossOpeningsAndRestarts)
{
    open();
    picker().userChangesDateValue(kFriday - 2 * kDay + 0.75);
    const QVariant stored =
        platform.store.copyAppValue(SettingsKey::DatePickerValue, AppIdentifier);
    ASSERT_EQ(stored.typeId(), QMetaType::QDateTime);
    EXPECT_EQ(AbsoluteTimeFromDate(stored.toDateTime()), kFriday - 2 * kDay)
        << "whole seconds, as the picker holds them";
    window().close();

    // The picker is moved elsewhere meanwhile; reopening shows the stored pick.
    picker().setDateValue(kFriday + 99 * kDay);
    open();
    EXPECT_EQ(g_selectedDateTime, kFriday - 2 * kDay);
    window().close();

    // Unless the user asked for now at every opening.
    set(SettingsKey::InitDateTimeChooserToCurrentTimeWhenOpened, true);
    platform.clock.advance(60);
    open();
    EXPECT_EQ(g_selectedDateTime, kFriday + 60);
}

TEST_F(Chooser, WithoutAStoredPickReopeningShowsTheLastMoment)
{
    set(SettingsKey::DatePickerValue, QStringLiteral("2006-01-01")); // not a date: ignored
    picker().setDateValue(kFriday + 5 * kDay);
    open();
    EXPECT_EQ(g_selectedDateTime, kFriday + 5 * kDay);
}

TEST_F(Chooser, LiveClockTicksUntilTheMenuOpensThenFreezes)
{
    set(SettingsKey::DynamicDateTimeChooser, true);
    open();
    ASSERT_NE(timer(), nullptr);
    EXPECT_DOUBLE_EQ(platform.timers.intervalOf(timer()), 0.03);

    platform.timers.advance(2.5);
    EXPECT_EQ(g_selectedDateTime, kFriday + 2) << "the picker's whole seconds";
    EXPECT_FALSE(platform.store.copyAppValue(SettingsKey::DatePickerValue, AppIdentifier).isValid())
        << "ticks are not picks";

    // A typed moment lasts one tick.
    picker().userChangesDateValue(kFriday - kDay);
    EXPECT_EQ(g_selectedDateTime, kFriday - kDay);
    platform.timers.advance(0.03);
    EXPECT_EQ(g_selectedDateTime, kFriday + 2);

    Timer *ticking = timer();
    item().openMenu(); // Ticking -> Frozen
    EXPECT_EQ(timer(), nullptr);
    EXPECT_FALSE(platform.timers.validTimers().contains(ticking));
    platform.timers.advance(5);
    EXPECT_EQ(g_selectedDateTime, kFriday + 2);
    EXPECT_TRUE(window().isVisible());

    picker().userChangesDateValue(kFriday + kDay); // Frozen -> Open
    EXPECT_EQ(g_selectedDateTime, kFriday + kDay);
    window().close(); // Open -> Idle
    EXPECT_EQ(g_selectedDateTime, 0);
}

TEST_F(Chooser, ClosingATickingChooserHoldsItsLastMoment)
{
    set(SettingsKey::DynamicDateTimeChooser, true);
    open();
    platform.timers.advance(3.2);
    window().close(); // Ticking -> Held
    EXPECT_EQ(timer(), nullptr);
    EXPECT_EQ(g_selectedDateTime, kFriday + 3);
    platform.timers.advance(10);
    EXPECT_EQ(g_selectedDateTime, kFriday + 3);
    platform.timers.advance(1);
    EXPECT_EQ(item().title(), QStringLiteral("Mar 10, 2006"));
    set(SettingsKey::LastTitleDisplayName, QStringLiteral("Medium Date Time"));
    platform.timers.advance(1);
    EXPECT_EQ(item().title(), QStringLiteral("Mar 10, 2006, 2:31:50\u202FPM"));
}

TEST_F(Chooser, AStaleTimerChangesNothing)
{
    set(SettingsKey::DynamicDateTimeChooser, true);
    open();
    Timer *first = timer();
    // Opening again without a rebuild in between schedules a second clock; the first one is
    // not stopped but its ticks must not count.
    controller.showCalendar(MenuItem());
    Timer *second = timer();
    ASSERT_NE(first, second);
    ASSERT_TRUE(platform.timers.validTimers().contains(first));
    picker().setDateValue(kFriday - 7 * kDay);
    g_selectedDateTime = kFriday - 7 * kDay;
    platform.timers.fire(first);
    EXPECT_EQ(picker().dateValue(), kFriday - 7 * kDay);
    EXPECT_EQ(g_selectedDateTime, kFriday - 7 * kDay);
    platform.timers.fire(second);
    EXPECT_EQ(g_selectedDateTime, kFriday);

    // Opened again with the live clock off: no clock of its own, and the earlier one is left
    // running but no longer counts.
    set(SettingsKey::DynamicDateTimeChooser, false);
    controller.showCalendar(MenuItem());
    EXPECT_EQ(timer(), nullptr);
    EXPECT_TRUE(platform.timers.validTimers().contains(second));
    picker().userChangesDateValue(kFriday - kDay);
    platform.timers.fire(second);
    EXPECT_EQ(g_selectedDateTime, kFriday - kDay);
}

TEST_F(Chooser, TheReferenceInstantBeepsOnOpeningOnly)
{
    set(SettingsKey::DatePickerValue, DateFromAbsoluteTime(0));
    open();
    EXPECT_EQ(platform.application.beepCount, 1);
    EXPECT_EQ(g_selectedDateTime, 0) << "the sentinel means nothing is picked";
    item().openMenu();
    EXPECT_EQ(menuLines().at(2), QStringLiteral("-"));

    picker().userChangesDateValue(0);
    EXPECT_EQ(platform.application.beepCount, 1);
}

TEST_F(Chooser, OtherWindowsClosingLeaveTheMomentAlone)
{
    open();
    picker().userChangesDateValue(kFriday + kDay);
    preferencesWindow.makeKeyAndOrderFront();
    preferencesWindow.close();
    EXPECT_EQ(g_selectedDateTime, kFriday + kDay);
}
