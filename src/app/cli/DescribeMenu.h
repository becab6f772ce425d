#pragma once

#include "platform/Menu.h"

#include <QStringList>

// The menu as lines of text, one per entry: "TITLE<TAB>ACTION<TAB>TOOLTIP", or "-" for a
// separator. What `horalo menu` prints. `shown`, when given, is applied to every title and tool
// tip (the command line strips control characters with it).
QStringList DescribeMenu(const Menu &menu, QString (*shown)(const QString &) = nullptr);
