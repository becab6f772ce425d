#pragma once

#include <QStringList>
#include <QTextStream>

// `horalo render NAME | --format STRING [--at TIME] [--now TIME]`
int RunRenderCommand(const QStringList &args, QTextStream &out, QTextStream &err);
// `horalo since [--depth N | --unit N] [--now TIME] TIME`
int RunSinceCommand(const QStringList &args, QTextStream &out, QTextStream &err);
