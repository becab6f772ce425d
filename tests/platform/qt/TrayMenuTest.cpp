// The tray's QMenu as drawn from the logic's menu: texts shown as they are, and a click on an
// entry of a menu rebuilt since it was drawn choosing nothing rather than the wrong entry.

#include "QtTestApplication.h"
#include "platform/qt/QMenuHelpers.h"

#include <QAction>
#include <QApplication>
#include <QKeySequence>
#include <QMenu>

#include <gtest/gtest.h>

namespace {

class RecordingTarget final : public MenuTarget
{
public:
    bool validateMenuItem(const MenuItem &) override { return true; }
    void performAction(MenuAction action, const MenuItem &) override { performed.append(action); }
    QList<MenuAction> performed;
};

class TrayMenu : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { EnsureQApplication(); }

    void SetUp() override { menu.setTarget(&target); }

    void build(const QList<std::pair<QString, MenuAction>> &entries)
    {
        while (menu.numberOfItems() > 0)
            menu.removeItemAtIndex(0);
        for (const auto &[title, action] : entries) {
            MenuItem item;
            item.title = title;
            item.action = action;
            menu.addItem(item);
        }
    }

    RecordingTarget target;
    Menu menu;
    QMenu qmenu;
};

TEST_F(TrayMenu, AmpersandsInDatesAreTextNotMnemonics)
{
    build({{QStringLiteral("Mo & Di, 10.3."), MenuAction::CustomDateFormatter},
           {QStringLiteral("&&&"), MenuAction::CustomDateFormatter}});
    FillQMenu(qmenu, &menu);
    const QList<QAction *> actions = qmenu.actions();
    ASSERT_EQ(actions.size(), 2);
    // What the menu draws: the text with mnemonic markers taken out.
    EXPECT_EQ(actions.at(0)->iconText(), QStringLiteral("Mo & Di, 10.3."));
    EXPECT_EQ(actions.at(1)->iconText(), QStringLiteral("&&&"));
    for (const QAction *action : actions)
        EXPECT_TRUE(QKeySequence::mnemonic(action->text()).isEmpty())
            << action->text().toStdString();
}

TEST_F(TrayMenu, AnEntryOfARebuiltMenuChoosesNothingUntilTheMenuIsDrawnAgain)
{
    build({{QStringLiteral("20060310"), MenuAction::NumericalDateNoHyphens},
           {QStringLiteral("Quit"), MenuAction::SelItemQuit}});
    FillQMenu(qmenu, &menu);
    QAction *const drawn = qmenu.actions().at(0);

    // Rebuilt while open (the settings changed): another entry now sits at that index.
    build({{QStringLiteral("Quit"), MenuAction::SelItemQuit},
           {QStringLiteral("20060310"), MenuAction::NumericalDateNoHyphens}});
    drawn->trigger();
    EXPECT_TRUE(target.performed.isEmpty());

    FillQMenu(qmenu, &menu);
    qmenu.actions().at(1)->trigger();
    EXPECT_EQ(target.performed, QList<MenuAction>{MenuAction::NumericalDateNoHyphens});
}

} // namespace
