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
    // Indexes -1 to 4: before the first entry, the four entries, after the last.
    const auto enabled = [this] {
        QList<bool> states;
        for (int i = -1; i <= m_menu.numberOfItems(); ++i)
            states.append(m_menu.isItemEnabled(i));
        return states;
    };
    EXPECT_EQ(enabled(), QList<bool>(6, false)) << "no target yet";
    m_menu.setTarget(&m_target);
    EXPECT_EQ(enabled(), (QList<bool>{false, true, false, false, false, false}));
    m_menu.setAutoenablesItems(false);
    EXPECT_EQ(enabled(), (QList<bool>{false, true, false, false, true, false}))
        << "without automatic enabling the target is not asked";
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
