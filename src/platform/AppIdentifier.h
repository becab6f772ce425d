#pragma once

#include <QString>

// The application identifier: the preferences domain of every setting (and of the
// application's own defaults), and the object of the "Preferences Changed" broadcast.
inline const QString AppIdentifier = QStringLiteral("org.horalo.Horalo");
