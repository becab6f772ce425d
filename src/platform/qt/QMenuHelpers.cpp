#include "platform/qt/QMenuHelpers.h"

#include <QAction>
#include <QKeySequence>

namespace {

int g_trackedMenus = 0;

} // namespace

void TrackMenuForTimers(QMenu &qmenu)
{
    // A menu can be hidden without having been shown (a rebuild while closed); count only
    // what was shown.
    auto *shown = new bool(false);
    QObject::connect(&qmenu, &QMenu::aboutToShow, &qmenu, [shown] {
        if (!*shown)
            ++g_trackedMenus;
        *shown = true;
    });
    QObject::connect(&qmenu, &QMenu::aboutToHide, &qmenu, [shown] {
        if (*shown)
            --g_trackedMenus;
        *shown = false;
    });
    QObject::connect(&qmenu, &QObject::destroyed, [shown] {
        if (*shown)
            --g_trackedMenus;
        delete shown;
    });
}

bool IsTrackingMenu()
{
    return g_trackedMenus > 0;
}

void FillQMenu(QMenu &qmenu, Menu *menu)
{
    qmenu.clear();
    if (!menu)
        return;
    for (int i = 0; i < menu->numberOfItems(); ++i) {
        const MenuItem &item = menu->itemAtIndex(i);
        if (item.separator) {
            qmenu.addSeparator();
            continue;
        }
        // An ampersand in a rendered date is text, not a mnemonic.
        QString text = item.title;
        text.replace(QLatin1Char('&'), QLatin1String("&&"));
        QAction *action = qmenu.addAction(text);
        action->setToolTip(item.toolTip);
        action->setEnabled(menu->isItemEnabled(i));
        action->setShortcut(QKeySequence(item.keyEquivalent));
        const quint64 revision = menu->revision();
        QObject::connect(action, &QAction::triggered, &qmenu, [menu, i, revision] {
            // Only act on the menu the user saw; a rebuild in between makes the index stale.
            if (menu->revision() == revision)
                menu->activateItemAtIndex(i);
        });
    }
}
