#include "platform/qt/QMenuHelpers.h"

#include <QAction>
#include <QKeySequence>

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
