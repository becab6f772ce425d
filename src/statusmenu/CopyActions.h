#pragma once

#include "platform/Clipboard.h"
#include "platform/Clock.h"
#include "platform/Menu.h"

#include <QByteArray>
#include <QString>

#include <optional>

// The text a copy action puts on the clipboard, rendered afresh for the working instant: the
// UTF-8 bytes without a terminator, or nothing when the text cannot be produced (then the
// clipboard must keep what it holds). A custom entry carries its format in its tool tip.
// Unknown actions produce nothing.
std::optional<QByteArray> CopyTextForAction(const Clock &clock, const QString &action,
                                            const MenuItem &sender);

// The copy action of a format's menu name ("Numerical Date No Hyphens" -> numericalDateNoHyphens:),
// or an empty string for a name the menu does not use.
QString CopyActionForMenuName(const QString &menuName);

// Whether `action` is one of the seventeen copy actions.
bool IsCopyAction(const QString &action);

// Clears the general clipboard and puts the bytes as its one plain-text item. The clear comes
// first, so a failed put leaves the clipboard empty rather than holding a stale text. Returns
// the clipboard's status, 0 on success.
int PutStringOnClipboard(Clipboard &clipboard, const QByteArray &utf8);

// The default description's fields, split at every single space.
QStringList DescriptionFields(const QString &description);
