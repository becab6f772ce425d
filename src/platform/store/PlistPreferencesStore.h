#pragma once

#include "platform/AppIdentifier.h"
#include "platform/PreferencesStore.h"
#include "platform/store/FileSignature.h"

#include <QString>
#include <QVariantMap>

#include <chrono>
#include <functional>
#include <optional>

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
// list holding a dictionary, or is larger than 16 MiB, reads as empty too, and is renamed to
// "<file>.<UTC time>.corrupt" before the next write, never overwritten. Binary property lists
// are read (by a bounded reader: no file can crash or hang us); XML is always written, and a
// write that XML could not carry exactly (a key from a binary list holding a control
// character) is refused rather than made. When the store's path is a symbolic link, the file
// it leads to is replaced, in its own directory, and the link stays. Nothing is logged;
// takeProblem() tells the command line what went wrong.
//
// A synchronise with nothing to write still asks the file system every time, but parses the
// file only when it is not provably the one read last (see FileSignature): the values never
// outlive a change of the file.
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
    // can hold, or a key or text it cannot carry as it is, is ignored.
    void setAppValue(const QString &key, const QVariant &value, const QString &domain) override;
    bool appSynchronize(const QString &domain) override;
    QVariantMap copyAllValues(const QString &domain) override;
    QString takeProblem() override;

    QString filePath() const { return m_path; }
    // How many times the file was read and parsed to be synchronised (writes not counted).
    int fileReadCount() const { return m_fileReads; }
    // A file changed less than this long ago is parsed again at the next synchronise, whatever
    // its signature says; tests lower it to see the saving without waiting.
    void setTimestampGranularityForTesting(std::chrono::nanoseconds granularity)
    {
        m_timestampGranularity = granularity;
    }
    QString domain() const { return m_domain; }
    // The file as this store's last write left it, so a watcher can tell our writes from others'.
    std::optional<FileSignature> lastWrittenSignature() const { return m_writtenSignature; }

    // Runs after the temporary file is complete and before it is renamed over the store, with
    // its path, so that a test can stop the process right there.
    void setBeforeRenameHookForTesting(std::function<void(const QString &temporaryPath)> hook)
    {
        m_beforeRename = std::move(hook);
    }

private:
    bool writePendingChanges();
    // Reads and parses the file into m_values, remembering which file it was when that can be
    // trusted; false when the file is damaged.
    bool readFile();

    struct LastRead
    {
        FileSignature signature;
        bool readable; // what appSynchronize() answered for it
    };
    QVariantMap withPendingChanges(QVariantMap values) const;

    QString m_path;
    QString m_domain;
    QVariantMap m_values;  // as last read, with the pending changes applied
    QVariantMap m_pending; // key -> new value; an invalid QVariant removes the key
    QString m_problem;
    std::function<void(const QString &)> m_beforeRename;
    std::optional<LastRead> m_lastRead; // set only when its signature can be trusted
    int m_fileReads = 0;
    std::chrono::nanoseconds m_timestampGranularity = FileSignature::kTimestampGranularity;
    std::optional<FileSignature> m_writtenSignature;
};
