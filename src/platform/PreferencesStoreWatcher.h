#pragma once

#include <functional>

// Tells the process that another writer changed the settings store behind its back: another
// process, a command-line tool, an editor saving the file by hand. This process's own writes
// are not reported.
class PreferencesStoreWatcher
{
public:
    using Observer = std::function<void()>;

    virtual ~PreferencesStoreWatcher() = default;
    // Observers run on the main event loop, in registration order, once for each change noticed
    // (a burst of writes may be noticed as one).
    virtual void addObserver(Observer observer) = 0;
    // Looks for a change now instead of at the event loop's next turn, and runs the observers at
    // once if there is one: for a caller about to write what it last read.
    virtual void checkNow() = 0;
};
