#pragma once

#include "platform/AppIdentifier.h"
#include "platform/PreferencesStore.h"

#include <QString>
#include <QVariantMap>

#include <functional>

// The user's settings file: $XDG_CONFIG_HOME/horalo/<AppIdentifier>.plist, or
// ~/.config/horalo/<AppIdentifier>.plist when XDG_CONFIG_HOME is unset (or not absolute).
QString DefaultPreferencesStorePath();

// A preferences store kept in one XML property-list file, holding one domain.
//
// appSynchronize() writes this process's pending changes, if any, and reads what others wrote.
// A write takes a lock file beside the store, reads the file as it is now, lays the pending
// changes over it key by key (a pending removal removes), writes a temporary file, and renames
// it over the store; so two processes that change different keys both keep their change, and a
// crash at any moment leaves either the old file or the new one, whole. The file is readable by
// its owner only and is created, directories included, at the first write.
//
// A missing, empty or unreadable file reads as an empty domain. A file that is not a property
// list holding a dictionary reads as empty too, and is renamed to
// "<file>.<UTC time>.corrupt" before the next write, never overwritten. Binary property lists
// are read; XML is always written. Nothing is logged.
class PlistPreferencesStore final : public PreferencesStore
{
public:
    // The user's store, holding the AppIdentifier domain.
    PlistPreferencesStore();
    // A store kept in filePath, holding the given domain.
    explicit PlistPreferencesStore(QString filePath, QString domain = AppIdentifier);

    // Any other domain than this store's reads as empty, and writes to it are ignored.
    QVariant copyAppValue(const QString &key, const QString &domain) override;
    // Values are kept as NormalizedPropertyListValue() gives them; a value no property list
    // can hold is ignored.
    void setAppValue(const QString &key, const QVariant &value, const QString &domain) override;
    bool appSynchronize(const QString &domain) override;
    QVariantMap copyAllValues(const QString &domain) override;

    QString filePath() const { return m_path; }
    QString domain() const { return m_domain; }

    // Runs after the temporary file is complete and before it is renamed over the store, with
    // its path, so that a test can stop the process right there.
    void setBeforeRenameHookForTesting(std::function<void(const QString &temporaryPath)> hook)
    {
        m_beforeRename = std::move(hook);
    }

private:
    bool writePendingChanges();
    QVariantMap withPendingChanges(QVariantMap values) const;

    QString m_path;
    QString m_domain;
    QVariantMap m_values;  // as last read, with the pending changes applied
    QVariantMap m_pending; // key -> new value; an invalid QVariant removes the key
    std::function<void(const QString &)> m_beforeRename;
};
