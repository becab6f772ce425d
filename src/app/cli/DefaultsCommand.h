#pragma once

#include <QStringList>
#include <QTextStream>

// `horalo defaults read [KEY] | write KEY -TYPE VALUE... | delete KEY` on the settings store.
int RunDefaultsCommand(const QStringList &args, QTextStream &out, QTextStream &err);
