#pragma once

#include "platform/SessionService.h"

#include <QTextStream>

#include <optional>

// One Horalo per session. Claims the session for this process; when another Horalo already
// holds it, asks that one to show its preferences (what a user who starts Horalo again
// wants), says so in one line on `out` and returns the exit status. Returns nothing when this
// process is the one to run. Called before anything reads or writes the settings, so a
// second start leaves them alone.
std::optional<int> DeferToRunningInstance(SessionService &session, QTextStream &out);
