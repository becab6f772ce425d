#pragma once

#include <QStringList>
#include <QTextStream>

// The commands that talk to the running Horalo over the session bus.

// `horalo show-menu`: opens the running Horalo's menu at the pointer, for a status bar's click
// or a key binding. Status 1 when no Horalo runs.
int RunShowMenuCommand(const QStringList &args, QTextStream &out, QTextStream &err);

// `horalo copy NAME --clipboard`: the running Horalo copies the format (a menu name, or
// "custom:FORMAT") for its moment; the copied text is printed. Status 1 when no Horalo runs or
// nothing was copied, 2 for a name that is no format.
int CopyThroughRunningHoralo(const QString &name, QTextStream &out, QTextStream &err);

// `horalo title --follow [--json]`: see TitleFollower. Returns when standard input closes.
int FollowTitle(bool json, QTextStream &out, QTextStream &err);
