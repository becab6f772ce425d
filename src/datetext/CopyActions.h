#pragma once

#include "platform/Clipboard.h"
#include "platform/Clock.h"
#include "platform/Menu.h"
#include "platform/MenuAction.h"

#include <QByteArray>
#include <QString>

#include <optional>

// The text a copy action puts on the clipboard, rendered afresh for the working instant: the
// UTF-8 bytes without a terminator, or nothing when the text cannot be produced (then the
// clipboard must keep what it holds). A custom entry carries its format in its tool tip.
// Actions that copy nothing produce nothing.
std::optional<QByteArray> CopyTextForAction(const Clock &clock, MenuAction action,
                                            const MenuItem &sender);

// How a copy request from outside the menu names a custom format: this prefix, then the format.
inline constexpr QLatin1String kCustomFormatPrefix("custom:");

// The entry whose choice copies the format of that menu name ("Numerical Date No Hyphens"), as
// the menu's own entry would; its title is the name. None for a name the menu does not use.
std::optional<MenuItem> CopyEntryForMenuName(const QString &menuName);
// The same for a name as copy requests give it: a menu name, or kCustomFormatPrefix followed by
// a custom format (any text, the empty one too).
std::optional<MenuItem> CopyEntryForName(const QString &name);

// Clears the general clipboard and puts the bytes as its one plain-text item. The clear comes
// first, so a failed put leaves the clipboard empty rather than holding a stale text. Returns
// the clipboard's status, 0 on success.
int PutStringOnClipboard(Clipboard &clipboard, const QByteArray &utf8);
