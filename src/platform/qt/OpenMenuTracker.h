#pragma once

#include <QObject>

class QMenu;

// While the user tracks one of our menus, timers hold their fire, as they would in a run loop's
// default mode: the title is not redrawn under an open menu, and it refreshes at the next tick
// after the menu closes. A tracker is a child of its menu and counts the menu as open from its
// showing to its hiding, or to its end if it goes while open.
class OpenMenuTracker final : public QObject
{
    Q_OBJECT
public:
    static void track(QMenu &qmenu);
    static bool isAnyMenuOpen() { return s_openMenus > 0; }

    ~OpenMenuTracker() override;

private:
    explicit OpenMenuTracker(QMenu &qmenu);
    void shown();
    void hidden();

    // Shared by every menu: a timer holds its fire whichever of our menus is open.
    static inline int s_openMenus = 0;
    bool m_open = false;
};
