#include "support/ControllerFixture.h"

#define NNBSP "\u202F"

// --- the title refresh ---

class TitleRefresh : public ControllerFixture
{
protected:
    QString tick()
    {
        controller.itemTitleTimerAction(controller.statusMenu().itemTitleTimer());
        return item().title();
    }
};

TEST_F(TitleRefresh, NamedFormatsFollowTheWorkingInstantExceptGMT)
{
    launch();
    EXPECT_EQ(tick(), QStringLiteral("Mar 10, 2006")) << "the default name is Medium Date";

    const struct
    {
        const char *name;
        const char *text;
    } cases[] = {
        {"Short Date", "3/10/06"},
        {"Long Date", "March 10, 2006"},
        {"Full Date", "Friday, March 10, 2006"},
        {"Short Date Time", "3/10/06, 2:31" NNBSP "PM"},
        {"Medium Date Time", "Mar 10, 2006, 2:31:47" NNBSP "PM"},
        {"Long Date Time", "March 10, 2006 at 2:31:47" NNBSP "PM EST"},
        {"Full Date Time", "Friday, March 10, 2006 at 2:31:47" NNBSP "PM Eastern Standard Time"},
        {"GMT", "2006-03-10 14:31:47 -0500"},
    };
    for (const auto &c : cases) {
        set(SettingsKey::LastTitleDisplayName, QString::fromUtf8(c.name));
        EXPECT_EQ(tick(), QString::fromUtf8(c.text)) << c.name;
    }

    g_selectedDateTime = kFriday + 30 * kDay;
    EXPECT_EQ(tick(), QStringLiteral("2006-03-10 14:31:47 -0500")) << "GMT always shows now";
    set(SettingsKey::LastTitleDisplayName, QStringLiteral("Short Date"));
    EXPECT_EQ(tick(), QStringLiteral("4/9/06")) << "named formats show the picked moment";
}

TEST_F(TitleRefresh, UnknownNamesLeaveTheTitleAlone)
{
    launch();
    set(SettingsKey::LastTitleDisplayName, QStringLiteral("Short Date-Time"));
    tick();
    EXPECT_EQ(item().titleSetCount(), 0) << "at start-up the title stays empty";

    set(SettingsKey::LastTitleDisplayName, QStringLiteral("Long Date"));
    EXPECT_EQ(tick(), QStringLiteral("March 10, 2006"));
    for (const char *name : {"long date", "LONG DATE", "Medium Date-Time", ""}) {
        set(SettingsKey::LastTitleDisplayName, QString::fromUtf8(name));
        EXPECT_EQ(tick(), QStringLiteral("March 10, 2006")) << name;
    }
    set(SettingsKey::LastTitleDisplayName, 7); // not a string: the default name
    EXPECT_EQ(tick(), QStringLiteral("Mar 10, 2006"));
}

TEST_F(TitleRefresh, HiddenOverrideWinsWhenItHasText)
{
    launch();
    set(SettingsKey::LastTitleDisplayName, QStringLiteral("GMT"));
    set(SettingsKey::MenuTitleFormatter, QStringLiteral("%Y"));
    EXPECT_EQ(tick(), QStringLiteral("2006"));
    g_selectedDateTime = kFriday + 400 * kDay;
    EXPECT_EQ(tick(), QStringLiteral("2007")) << "the override follows the picked moment";
    g_selectedDateTime = 0;

    set(SettingsKey::MenuTitleFormatter, QStringLiteral(""));
    EXPECT_EQ(tick(), QStringLiteral("2006-03-10 14:31:47 -0500")) << "empty counts as unset";
    set(SettingsKey::MenuTitleFormatter, 2006);
    EXPECT_EQ(tick(), QStringLiteral("2006-03-10 14:31:47 -0500")) << "not a string: unset";
}

TEST_F(TitleRefresh, FollowsAClockSetBackAndAZoneChangeAtTheNextWholeSecond)
{
    platform.clock.set(kFriday + 0.4);
    launch();
    set(SettingsKey::MenuTitleFormatter, QStringLiteral("%H:%M:%S"));
    Timer *const timer = controller.statusMenu().itemTitleTimer();
    platform.timers.advance(0.6);
    EXPECT_EQ(item().title(), QStringLiteral("14:31:48")) << "on the second, not 0.4 s late";

    // Set back an hour in the middle of a second: the next tick is that second's end, not a
    // whole second after the last tick, which would lie an hour ahead.
    platform.clock.set(kFriday - 3600 + 0.7);
    platform.timers.advance(0.3);
    EXPECT_EQ(item().title(), QStringLiteral("13:31:48"));

    setenv("TZ", "Asia/Tokyo", 1);
    platform.timers.advance(1.0);
    EXPECT_EQ(item().title(), QStringLiteral("03:31:49"));
    EXPECT_EQ(controller.statusMenu().itemTitleTimer(), timer) << "one timer, never replaced";
    EXPECT_TRUE(platform.timers.validTimers().contains(timer));
}

// --- copying ---

using Copying = ControllerFixture;

TEST_F(Copying, EachEntryCopiesItsTextAsShownWithoutTerminator)
{
    set(SettingsKey::IncludeDateOnlyItems, true);
    set(SettingsKey::IncludeTimeOnlyItems, true);
    launch();
    item().openMenu();
    const QList<MenuItem> entries = controller.statusMenu().menu()->items();
    const QList<MenuAction> copyNothing = {MenuAction::None, MenuAction::ShowCalendar,
                                           MenuAction::SelItemPreferences, MenuAction::SelItemAbout,
                                           MenuAction::SelItemQuit};
    int copied = 0;
    for (const MenuItem &entry : entries) {
        if (entry.separator || copyNothing.contains(entry.action))
            continue;
        platform.clipboard.setContents("stale");
        controller.performAction(entry.action, entry);
        // The clock stands still, so the copy is exactly what the menu showed.
        EXPECT_EQ(platform.clipboard.contents(), entry.title.toUtf8())
            << MenuActionName(entry.action).data();
        ++copied;
    }
    EXPECT_EQ(copied, 16);
}

TEST_F(Copying, TextIsRenderedAgainAtTheMomentOfChoice)
{
    set(SettingsKey::CustomDates, QVariantList{QStringLiteral("%H:%M:%S")});
    launch();
    item().openMenu();
    platform.clock.advance(5);
    EXPECT_TRUE(item().chooseItemTitled(QStringLiteral("14:31:47")));
    EXPECT_EQ(platform.clipboard.contents(), QByteArray("14:31:52"));
    EXPECT_TRUE(item().chooseItemTitled(QStringLiteral("2006-03-10 14:31:47 -0500")));
    EXPECT_EQ(platform.clipboard.contents(), QByteArray("2006-03-10 14:31:52 -0500"));
}

TEST_F(Copying, NonAsciiTextArrivesAsUtf8)
{
    setenv("LANG", "ja_JP.UTF-8", 1);
    launch();
    MenuItem sender;
    controller.fullDate(sender);
    EXPECT_EQ(QString::fromUtf8(platform.clipboard.contents().value_or("")),
              QStringLiteral("2006年3月10日金曜日"));
    sender.toolTip = QStringLiteral("→ %d ←");
    controller.customDateFormatter(sender);
    EXPECT_EQ(platform.clipboard.contents(), QByteArray("\xE2\x86\x92 10 \xE2\x86\x90"));
}

TEST_F(Copying, AnUnreachableClipboardKeepsItsContents)
{
    launch();
    platform.clipboard.setContents("kept");
    platform.clipboard.setUnreachableStatus(-25501);
    EXPECT_EQ(controller.putStringOnClipboard("new"), -25501);
    MenuItem sender;
    controller.numericalDate(sender);
    EXPECT_EQ(platform.clipboard.contents(), QByteArray("kept"));

    platform.clipboard.setUnreachableStatus(0);
    EXPECT_EQ(controller.putStringOnClipboard(QByteArray()), 0);
    EXPECT_EQ(platform.clipboard.contents(), QByteArray()) << "an empty text is still one item";
}

// Our format engine renders any text; what it cannot render is an instant outside the calendar's
// range, which is how these failures are reached.
constexpr AbsoluteTime kBeyondAnyCalendar = 1e300;

TEST_F(TitleRefresh, AnOverrideThatCannotBeRenderedShowsBadFormat)
{
    launch();
    set(SettingsKey::MenuTitleFormatter, QStringLiteral("%Y"));
    g_selectedDateTime = kBeyondAnyCalendar;
    EXPECT_EQ(tick(), QStringLiteral("Bad Format"));
    set(SettingsKey::MenuTitleFormatter, QString());
    EXPECT_EQ(tick(), QStringLiteral("Horalo")) << "a named format falls back to the name";
}

TEST_F(Copying, TextsThatCannotBeProducedLeaveEntriesOutAndCopyNothing)
{
    set(SettingsKey::CustomDates, QVariantList{QStringLiteral("%Y"), QStringLiteral("%d")});
    launch();
    g_selectedDateTime = kBeyondAnyCalendar;
    item().openMenu();
    const QStringList lines = menuLines();
    const qsizetype header = lines.indexOf(QStringLiteral("Custom Dates\t\t"));
    ASSERT_GE(header, 0) << "the header stays even when no format renders";
    EXPECT_EQ(lines.at(header + 1), QStringLiteral("-"));
    EXPECT_EQ(titleOf(MenuAction::ShortDateTime), QString()) << "left out";

    platform.clipboard.setContents("kept");
    for (const MenuAction action :
         {MenuAction::MediumDate, MenuAction::GMTDateTime, MenuAction::NumericalDate,
          MenuAction::NumericalDateTime, MenuAction::NumericalDateNoHyphens}) {
        controller.performAction(action, MenuItem());
        EXPECT_EQ(platform.clipboard.contents(), QByteArray("kept"))
            << MenuActionName(action).data();
    }
    MenuItem custom;
    custom.toolTip = QStringLiteral("%Y");
    controller.customDateFormatter(custom);
    EXPECT_EQ(platform.clipboard.contents(), QByteArray("kept"));
}
