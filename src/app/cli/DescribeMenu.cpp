#include "app/cli/DescribeMenu.h"

QStringList DescribeMenu(const Menu &menu, QString (*shown)(const QString &))
{
    QStringList lines;
    for (const MenuItem &item : menu.items()) {
        if (item.separator) {
            lines.append(QStringLiteral("-"));
            continue;
        }
        const QString title = shown ? shown(item.title) : item.title;
        const QString toolTip = shown ? shown(item.toolTip) : item.toolTip;
        lines.append(title + QLatin1Char('\t') + MenuActionName(item.action) + QLatin1Char('\t') +
                     toolTip);
    }
    return lines;
}
