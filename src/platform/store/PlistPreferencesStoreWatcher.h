#pragma once

#include "platform/PreferencesStoreWatcher.h"
#include "platform/store/FileSignature.h"

#include <QFileSystemWatcher>
#include <QObject>

#include <optional>
#include <vector>

class PlistPreferencesStore;

// Watches the settings file of a PlistPreferencesStore. The directory is watched, not only the
// file: writers (ours, other processes', most editors) replace the file by renaming a new one
// over it, which a watch on the old file would not follow; the file itself is watched as well,
// for editors that write in place. When the file's directory does not exist yet, the nearest
// existing parent is watched until it does. A change whose result is the file our store wrote
// last is ours and is not reported.
class PlistPreferencesStoreWatcher final : public QObject, public PreferencesStoreWatcher
{
    Q_OBJECT
public:
    explicit PlistPreferencesStoreWatcher(const PlistPreferencesStore &store);

    void addObserver(Observer observer) override;
    void checkNow() override;

private:
    void watchPaths();

    const PlistPreferencesStore &m_store;
    QFileSystemWatcher m_watcher;
    std::optional<FileSignature> m_seen;
    std::vector<Observer> m_observers;
};
