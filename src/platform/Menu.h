#pragma once

#include "platform/MenuAction.h"

#include <QList>
#include <QString>

#include <functional>

class Menu;

// One entry of a menu: a text entry or a separator. An entry with an action is sent to the
// menu's target when chosen; an entry without one is an informational line.
struct MenuItem
{
    QString title;
    MenuAction action = MenuAction::None;
    QString keyEquivalent;
    QString toolTip;
    bool separator = false;

    static MenuItem separatorItem()
    {
        MenuItem item;
        item.separator = true;
        return item;
    }
    bool hasAction() const { return !separator && action != MenuAction::None; }
    bool operator==(const MenuItem &) const = default;
};

// Told just before the menu opens, so it can be rebuilt from fresh state.
class MenuDelegate
{
public:
    virtual ~MenuDelegate() = default;
    virtual void menuNeedsUpdate(Menu *menu) = 0;
};

// Where chosen entries' actions go, and who decides whether an entry can be chosen.
class MenuTarget
{
public:
    virtual ~MenuTarget() = default;
    virtual bool validateMenuItem(const MenuItem &item) = 0;
    virtual void performAction(MenuAction action, const MenuItem &sender) = 0;
};

// The menu as the logic builds it. The desktop draws it (a QMenu, or a menu exported over
// D-Bus); it tells the menu when it is about to open and which entry the user chose.
class Menu
{
public:
    int numberOfItems() const { return static_cast<int>(m_items.size()); }
    const MenuItem &itemAtIndex(int index) const { return m_items.at(index); }
    const QList<MenuItem> &items() const { return m_items; }
    void addItem(const MenuItem &item);
    void removeItemAtIndex(int index);

    void setAutoenablesItems(bool on) { m_autoenablesItems = on; }
    bool autoenablesItems() const { return m_autoenablesItems; }
    void setDelegate(MenuDelegate *delegate) { m_delegate = delegate; }
    MenuDelegate *delegate() const { return m_delegate; }
    void setTarget(MenuTarget *target) { m_target = target; }

    // Whether the entry at index can be chosen now. With automatic enabling, an entry can be
    // chosen when it has an action that the target validates; informational lines never can.
    bool isItemEnabled(int index) const;

    // Called by the desktop just before the menu is shown.
    void willOpen();
    // Called by the desktop when the user chooses the entry at index. Returns whether an
    // action ran.
    bool activateItemAtIndex(int index);

    // Counts changes, so a desktop exporter can tell a rebuilt menu from an unchanged one.
    quint64 revision() const { return m_revision; }
    // Called after every change of the entries, so a desktop that exports the menu can announce
    // a rebuild that happened outside its own opening (one announcement for the whole rebuild,
    // which is the exporter's business). One observer at a time; an empty function for none.
    void setChangeObserver(std::function<void()> observer)
    {
        m_changeObserver = std::move(observer);
    }

private:
    QList<MenuItem> m_items;
    MenuDelegate *m_delegate = nullptr;
    MenuTarget *m_target = nullptr;
    bool m_autoenablesItems = true;
    quint64 m_revision = 0;
    std::function<void()> m_changeObserver;
};
