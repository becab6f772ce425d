#pragma once

#include <QStringList>
#include <QTextStream>

// `horalo menu`, `horalo title` and `horalo copy`: the real controller on the in-memory
// platform against the real settings store.
int RunMenuCommand(const QStringList &args, QTextStream &out, QTextStream &err);
int RunTitleCommand(const QStringList &args, QTextStream &out, QTextStream &err);
int RunCopyCommand(const QStringList &args, QTextStream &out, QTextStream &err);
