#pragma once

#include "platform/Menu.h"

#include <QMenu>

// Fills a QMenu with the entries of our menu model. Choosing one runs its action, unless the
// model has been rebuilt since the QMenu was filled.
void FillQMenu(QMenu &qmenu, Menu *menu);

// While the user tracks one of our menus, timers hold their fire, as they would in a run loop's
// default mode: the title is not redrawn under an open menu, and it refreshes at the next tick
// after the menu closes.
void TrackMenuForTimers(QMenu &qmenu);
bool IsTrackingMenu();
