#include "datetext/DateText.h"
#include "support/ControllerFixture.h"

// The narrow no-break space ICU puts before AM/PM in en_US.
#define NNBSP "\u202F"

using MenuConstruction = ControllerFixture;

TEST_F(MenuConstruction, DefaultMenuWithAnEmptyStore)
{
    launch();
    const QStringList expected = {
        QStringLiteral("Date-Time Chooser\tshowCalendar:\t"),
        QStringLiteral("It is now: Mar 10, 2006, 2:31" NNBSP "PM\t\t"),
        QStringLiteral("-"),
        QStringLiteral("2006-03-10 14:31:47 -0500\tgmtDateTime:\t"),
        QStringLiteral("2006-03-10 14:31:47\tnumericalDateTime:\t"),
        QStringLiteral("2006-03-10\tnumericalDate:\t"),
        QStringLiteral("20060310\tnumericalDateNoHyphens:\t"),
        QStringLiteral("-"),
        QStringLiteral("3/10/06, 2:31" NNBSP "PM\tshortDateTime:\t"),
        QStringLiteral("Mar 10, 2006, 2:31:47" NNBSP "PM\tmediumDateTime:\t"),
        QStringLiteral("March 10, 2006 at 2:31:47" NNBSP "PM EST\tlongDateTime:\t"),
        QStringLiteral("Friday, March 10, 2006 at 2:31:47" NNBSP "PM Eastern Standard Time\t"
                       "fullDateTime:\t"),
        QStringLiteral("-"),
        QStringLiteral("Preferences...\tselItemPreferences:\t"),
        QStringLiteral("-"),
        QStringLiteral("About Horalo\tselItemAbout:\t"),
        QStringLiteral("Quit\tselItemQuit:\t"),
    };
    EXPECT_EQ(menuLines(), expected);
}

TEST_F(MenuConstruction, GroupsAndTheirSeparatorsFollowTheirSwitches)
{
    set(SettingsKey::IncludeGMTDateTime, false);
    launch();
    // Without the GMT group the date-time group follows the head's separator directly.
    EXPECT_EQ(actions().mid(2, 5),
              (QList<MenuRow>{kSeparator, MenuAction::ShortDateTime, MenuAction::MediumDateTime,
                              MenuAction::LongDateTime, MenuAction::FullDateTime}));

    // Each group has its own switch: times without dates.
    set(SettingsKey::IncludeTimeOnlyItems, true);
    item().openMenu();
    EXPECT_TRUE(actions().contains(MenuAction::ShortTime));
    EXPECT_FALSE(actions().contains(MenuAction::ShortDate));

    set(SettingsKey::IncludeDateOnlyItems, true);
    item().openMenu();
    const QList<MenuRow> all = actions();
    const qsizetype dates = all.indexOf(MenuAction::ShortDate);
    const qsizetype times = all.indexOf(MenuAction::ShortTime);
    ASSERT_GT(dates, 0);
    ASSERT_GT(times, dates);
    EXPECT_EQ(all.at(dates - 1), kSeparator);
    EXPECT_EQ(all.at(dates - 2), MenuAction::FullDateTime);
    EXPECT_EQ(all.at(times - 1), kSeparator);
    EXPECT_EQ(all.at(times - 2), MenuAction::FullDate);
    EXPECT_EQ(all.mid(times, 4), (QList<MenuRow>{MenuAction::ShortTime, MenuAction::MediumTime,
                                                 MenuAction::LongTime, MenuAction::FullTime}));
    EXPECT_EQ(titleOf(MenuAction::LongDate), QStringLiteral("March 10, 2006"));
    EXPECT_EQ(titleOf(MenuAction::MediumTime), QStringLiteral("2:31:47" NNBSP "PM"));
}

TEST_F(MenuConstruction, SymbolicNamesNameEveryGroupButNotCustomFormats)
{
    set(SettingsKey::UseSymbolicNames, true);
    set(SettingsKey::IncludeDateOnlyItems, true);
    set(SettingsKey::IncludeTimeOnlyItems, true);
    set(SettingsKey::CustomDates, QVariantList{QStringLiteral("%Y")});
    launch();
    const QStringList lines = menuLines();
    for (const char *name :
         {"GMT Date Time\tgmtDateTime:", "Numerical Date Time\tnumericalDateTime:",
          "Numerical Date\tnumericalDate:", "Numerical Date No Hyphens\tnumericalDateNoHyphens:",
          "Short Date-Time\tshortDateTime:", "Full Date-Time\tfullDateTime:",
          "Medium Date\tmediumDate:", "Long Time\tlongTime:"}) {
        EXPECT_TRUE(lines.contains(QString::fromUtf8(name) + QLatin1Char('\t'))) << name;
    }
    EXPECT_TRUE(lines.contains(QStringLiteral("2006\tcustomDateFormatter:\t%Y")));

    // Names change the texts only: the same entries and separators in the same places.
    const QList<MenuRow> named = actions();
    set(SettingsKey::UseSymbolicNames, false);
    item().openMenu();
    EXPECT_EQ(named, actions());
}

TEST_F(MenuConstruction, CustomFormatsCarryTheirFormatAsToolTip)
{
    set(SettingsKey::CustomDates,
        QVariantList{QStringLiteral("%d.%m."), 42, QStringLiteral("no conversions")});
    launch();
    const QStringList lines = menuLines();
    const qsizetype header = lines.indexOf(QStringLiteral("Custom Dates\t\t"));
    ASSERT_GT(header, 0);
    EXPECT_EQ(lines.at(header - 1), QStringLiteral("-"));
    // A stored element that is not a string is skipped; the others keep their order.
    EXPECT_EQ(lines.at(header + 1), QStringLiteral("10.03.\tcustomDateFormatter:\t%d.%m."));
    EXPECT_EQ(lines.at(header + 2),
              QStringLiteral("no conversions\tcustomDateFormatter:\tno conversions"));
    EXPECT_EQ(lines.at(header + 3), QStringLiteral("-"));

    set(SettingsKey::CustomDates, QVariantList{});
    item().openMenu();
    EXPECT_FALSE(menuLines().contains(QStringLiteral("Custom Dates\t\t")));
}

TEST_F(MenuConstruction, ChooserLinesReadAlikeForPastAndFuture)
{
    launch();
    for (const double offset : {10 * kDay, -10 * kDay}) {
        g_selectedDateTime = kFriday + offset;
        item().openMenu();
        const QStringList lines = menuLines();
        const QString picked = offset > 0 ? QStringLiteral("Mar 20, 2006, 2:31" NNBSP "PM")
                                          : QStringLiteral("Feb 28, 2006, 2:31" NNBSP "PM");
        EXPECT_EQ(lines.at(1), QStringLiteral("It is now: Mar 10, 2006, 2:31" NNBSP "PM\t\t"));
        EXPECT_EQ(lines.at(2),
                  QStringLiteral("Days To ") + picked + QStringLiteral(": 10 days\t\t"));
        EXPECT_EQ(lines.at(3), QStringLiteral("(1 week, 3 days)\t\t"));
        EXPECT_EQ(lines.at(4), QStringLiteral("-"));
        // The format entries follow the picked moment.
        EXPECT_TRUE(titleOf(MenuAction::NumericalDate)
                        .startsWith(offset > 0 ? QStringLiteral("2006-03-20")
                                               : QStringLiteral("2006-02-28")));
    }
    // Mixed-sign components lose every minus sign, not just the first.
    g_selectedDateTime = kFriday + 90061;
    item().openMenu();
    EXPECT_TRUE(menuLines().at(2).endsWith(QStringLiteral(": 1 day\t\t")))
        << menuLines().at(2).toStdString();
    EXPECT_EQ(menuLines().at(3), QStringLiteral("(1 day, 1 hour, 1 min, 1 sec)\t\t"));
}

TEST_F(MenuConstruction, InformationalRowsCannotBeChosenAndNothingHasAShortcut)
{
    g_selectedDateTime = kFriday + kDay * 3;
    set(SettingsKey::CustomDates, QVariantList{QStringLiteral("%Y")});
    launch();
    const Menu &menu = *controller.statusMenu().menu();
    for (int i = 0; i < menu.numberOfItems(); ++i) {
        const MenuItem &entry = menu.itemAtIndex(i);
        EXPECT_TRUE(entry.keyEquivalent.isEmpty());
        if (entry.separator)
            continue;
        EXPECT_EQ(menu.isItemEnabled(i), entry.action != MenuAction::None)
            << entry.title.toStdString();
    }
    EXPECT_FALSE(item().chooseItemTitled(QStringLiteral("Custom Dates")));
}

TEST_F(MenuConstruction, IconFollowsItsSettingAtEveryBuild)
{
    launch();
    EXPECT_EQ(item().image(), QStringLiteral("Horalo.tif"));
    set(SettingsKey::IncludeTitleIcon, false);
    item().openMenu();
    EXPECT_TRUE(item().image().isEmpty());
    set(SettingsKey::IncludeTitleIcon, QStringLiteral("no")); // wrong type: the default, on
    platform.application.imageResources.clear();              // and the resource is missing
    item().openMenu();
    EXPECT_TRUE(item().image().isEmpty());
}

TEST_F(MenuConstruction, TitleTimerIsCreatedOnceAndFirstSetsTheTitleAfterASecond)
{
    launch();
    item().openMenu();
    item().openMenu();
    ASSERT_EQ(platform.timers.validTimers().size(), 1);
    EXPECT_EQ(platform.timers.intervalOf(platform.timers.validTimers().first()), 1.0);
    EXPECT_EQ(item().titleSetCount(), 0);
    platform.timers.advance(1.0);
    EXPECT_EQ(item().title(), QStringLiteral("Mar 10, 2006"));
    platform.timers.advance(3.0);
    EXPECT_EQ(item().titleSetCount(), 4) << "set at every tick, changed or not";
}

TEST_F(MenuConstruction, TailActionsReachTheApplication)
{
    launch();
    EXPECT_TRUE(item().chooseItemTitled(QStringLiteral("Preferences...")));
    EXPECT_EQ(platform.application.frontCount, 1);
    EXPECT_TRUE(preferencesWindow.isVisible());
    EXPECT_TRUE(item().chooseItemTitled(QStringLiteral("About Horalo")));
    EXPECT_EQ(platform.application.aboutCount, 1);
    EXPECT_TRUE(item().chooseItemTitled(QStringLiteral("Quit")));
    EXPECT_EQ(platform.application.terminateCount, 1);
}
