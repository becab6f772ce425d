#pragma once

#include <QStringList>
#include <QTextStream>

class DistributedNotificationCenter;
class PreferencesStore;

// `horalo defaults read [KEY] | write KEY -TYPE VALUE... | delete KEY` on the settings store,
// the user's way to the hidden settings. A write or delete synchronises the store and posts
// "Preferences Changed" on the session bus, so a running Horalo rebuilds at once. Bad input
// prints one line on `err`, exits 2 and leaves the store as it was.
int RunDefaultsCommand(const QStringList &args, QTextStream &out, QTextStream &err);

// The same on a given store, for the words after the options (the verb and its arguments); a
// change is announced on center when there is one.
int RunDefaultsCommandOn(PreferencesStore &store, DistributedNotificationCenter *center,
                         const QStringList &args, QTextStream &out, QTextStream &err);
