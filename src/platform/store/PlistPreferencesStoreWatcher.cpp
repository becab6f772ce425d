#include "platform/store/PlistPreferencesStoreWatcher.h"

#include "platform/store/PlistPreferencesStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

PlistPreferencesStoreWatcher::PlistPreferencesStoreWatcher(const PlistPreferencesStore &store)
    : m_store(store), m_seen(FileSignature::ofPath(QFile::encodeName(store.filePath())))
{
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this,
            &PlistPreferencesStoreWatcher::checkNow);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this,
            &PlistPreferencesStoreWatcher::checkNow);
    watchPaths();
}

void PlistPreferencesStoreWatcher::addObserver(Observer observer)
{
    m_observers.push_back(std::move(observer));
}

void PlistPreferencesStoreWatcher::watchPaths()
{
    const QString file = m_store.filePath();
    QString directory = QFileInfo(file).absolutePath();
    while (!QFileInfo(directory).isDir() && directory != QDir::rootPath())
        directory = QFileInfo(directory).absolutePath();

    QStringList wanted{directory};
    if (QFileInfo::exists(file))
        wanted.append(file);
    const QStringList watched = m_watcher.files() + m_watcher.directories();
    for (const QString &path : watched) {
        if (!wanted.contains(path))
            m_watcher.removePath(path);
    }
    for (const QString &path : std::as_const(wanted)) {
        if (!watched.contains(path))
            m_watcher.addPath(path);
    }
}

void PlistPreferencesStoreWatcher::checkNow()
{
    // A replaced file is a new inode, and a directory that appeared needs a watch of its own.
    watchPaths();
    const std::optional<FileSignature> now =
        FileSignature::ofPath(QFile::encodeName(m_store.filePath()));
    if (now == m_seen)
        return; // the lock file, a temporary file, or a change already reported
    m_seen = now;
    if (now && now == m_store.lastWrittenSignature())
        return;
    // Copied: an observer may add observers.
    const std::vector<Observer> observers = m_observers;
    for (const Observer &observer : observers)
        observer();
}
