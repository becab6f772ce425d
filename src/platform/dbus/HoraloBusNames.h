#pragma once

#include <QString>

// Where the running application answers on the session bus, and the errors it answers with.
// The interface is described in resources/dbus/org.horalo.Horalo.xml.
namespace HoraloBus {
inline const QString Service = QStringLiteral("org.horalo.Horalo");
inline const QString ObjectPath = QStringLiteral("/org/horalo/Horalo");
inline const QString Interface = QStringLiteral("org.horalo.Horalo");
// The format is known, but its text cannot be produced now: nothing was copied.
inline const QString NotRenderedError = QStringLiteral("org.horalo.Horalo.Error.NotRendered");
// No format has that name.
inline const QString UnknownFormatError = QStringLiteral("org.horalo.Horalo.Error.UnknownFormat");
} // namespace HoraloBus
