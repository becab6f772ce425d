#pragma once

#include "platform/Menu.h"

#include <QMenu>

// Fills a QMenu with the entries of our menu model. Choosing one runs its action, unless the
// model has been rebuilt since the QMenu was filled.
void FillQMenu(QMenu &qmenu, Menu *menu);
