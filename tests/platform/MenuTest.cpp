#include "platform/Menu.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;

MenuItem Item(const QString &title, MenuAction action)
{
    MenuItem item;
    item.title = title;
    item.action = action;
    return item;
}

// Validates every action except the refused ones, and records what it performs.
class RecordingTarget final : public MenuTarget
{
public:
    bool validateMenuItem(const MenuItem &item) override { return !refused.contains(item.action); }
    void performAction(MenuAction action, const MenuItem &) override { performed.append(action); }

    QList<MenuAction> refused;
    QList<MenuAction> performed;
};

class MenuTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_menu.addItem(Item(u"Copy"_s, MenuAction::ShortDate));
        m_menu.addItem(Item(u"It is now: noon"_s, MenuAction::None));
        m_menu.addItem(MenuItem::separatorItem());
        m_menu.addItem(Item(u"Refused"_s, MenuAction::SelItemQuit));
        m_target.refused = {MenuAction::SelItemQuit};
    }

    Menu m_menu;
    RecordingTarget m_target;
};

TEST_F(MenuTest, AutomaticEnablingAsksTheTargetOnlyForEntriesWithAnAction)
{
    EXPECT_FALSE(m_menu.isItemEnabled(0)) << "no target yet";
    m_menu.setTarget(&m_target);
    EXPECT_TRUE(m_menu.isItemEnabled(0));
    EXPECT_FALSE(m_menu.isItemEnabled(1));
    EXPECT_FALSE(m_menu.isItemEnabled(2));
    EXPECT_FALSE(m_menu.isItemEnabled(3));
    EXPECT_FALSE(m_menu.isItemEnabled(-1));
    EXPECT_FALSE(m_menu.isItemEnabled(4));

    m_menu.setAutoenablesItems(false);
    EXPECT_TRUE(m_menu.isItemEnabled(3)) << "without automatic enabling the target is not asked";
    EXPECT_FALSE(m_menu.isItemEnabled(1));
    EXPECT_FALSE(m_menu.isItemEnabled(2));
}

TEST_F(MenuTest, OnlyEnabledEntriesRunTheirAction)
{
    m_menu.setTarget(&m_target);
    EXPECT_TRUE(m_menu.activateItemAtIndex(0));
    EXPECT_FALSE(m_menu.activateItemAtIndex(1));
    EXPECT_FALSE(m_menu.activateItemAtIndex(3));
    EXPECT_FALSE(m_menu.activateItemAtIndex(9));
    EXPECT_EQ(m_target.performed, QList<MenuAction>{MenuAction::ShortDate});
}

TEST_F(MenuTest, WillOpenAsksTheDelegateToRebuild)
{
    struct Rebuilder final : MenuDelegate
    {
        void menuNeedsUpdate(Menu *menu) override
        {
            while (menu->numberOfItems() > 0)
                menu->removeItemAtIndex(0);
            menu->addItem(Item(u"Fresh"_s, MenuAction::FullDate));
        }
    } rebuilder;
    m_menu.willOpen(); // no delegate: nothing happens
    EXPECT_EQ(m_menu.numberOfItems(), 4);
    m_menu.setDelegate(&rebuilder);
    m_menu.willOpen();
    ASSERT_EQ(m_menu.numberOfItems(), 1);
    EXPECT_EQ(m_menu.itemAtIndex(0).title, u"Fresh"_s);
}

} // namespace
