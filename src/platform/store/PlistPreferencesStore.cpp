#include "platform/store/PlistPreferencesStore.h"

#include "platform/store/FileSignature.h"
#include "platform/store/PropertyList.h"

#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

// A writer holds the lock for the few milliseconds of one read-merge-write; waiting longer
// than this means something is wrong, and the changes stay pending for the next synchronise.
constexpr int kLockTimeoutMs = 2000;

struct StoreFile
{
    enum class State
    {
        Missing,
        Empty,
        Valid,
        Damaged, // there, but unreadable or not a property list of a dictionary
    };
    State state = State::Missing;
    QVariantMap values;
};

QByteArray NativePath(const QString &path)
{
    return QFile::encodeName(path);
}

// With signature, also tells which file was read, as it was before reading.
StoreFile ReadStoreFile(const QString &path, std::optional<FileSignature> *signature = nullptr)
{
    // O_NONBLOCK: a FIFO put in the file's place must not hang us.
    const int fd = ::open(NativePath(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        if (errno == ENOENT || errno == ENOTDIR)
            return {StoreFile::State::Missing, {}};
        return {StoreFile::State::Damaged, {}};
    }
    struct stat info = {};
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        ::close(fd);
        return {StoreFile::State::Damaged, {}};
    }
    if (signature)
        signature->emplace(info);
    QByteArray bytes;
    char buffer[16384];
    for (;;) {
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) {
            ::close(fd);
            return {StoreFile::State::Damaged, {}};
        }
        if (n == 0)
            break;
        bytes.append(buffer, n);
    }
    ::close(fd);

    if (bytes.isEmpty())
        return {StoreFile::State::Empty, {}};
    const std::optional<QVariant> root = ParsePropertyList(bytes);
    if (!root || root->typeId() != QMetaType::QVariantMap)
        return {StoreFile::State::Damaged, {}};
    return {StoreFile::State::Valid, root->toMap()};
}

// Creates the directory and its missing parents, owner-only like the rest of the user's
// configuration.
bool MakeDirectories(const QString &dir)
{
    if (QFileInfo(dir).isDir())
        return true;
    const QString parent = QFileInfo(dir).path();
    if (parent != dir && !MakeDirectories(parent))
        return false;
    return ::mkdir(NativePath(dir).constData(), 0700) == 0 || errno == EEXIST;
}

// An exclusive flock() on "<store>.lock". The kernel drops it when the process dies, so a
// crashed writer never leaves the store locked.
class StoreLock
{
public:
    explicit StoreLock(const QString &path)
    {
        m_fd = ::open(NativePath(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        if (m_fd < 0)
            return;
        QElapsedTimer waited;
        waited.start();
        while (::flock(m_fd, LOCK_EX | LOCK_NB) != 0) {
            if ((errno != EWOULDBLOCK && errno != EINTR) || waited.elapsed() > kLockTimeoutMs) {
                ::close(m_fd);
                m_fd = -1;
                return;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    }
    ~StoreLock()
    {
        if (m_fd >= 0)
            ::close(m_fd); // releases the lock
    }
    StoreLock(const StoreLock &) = delete;
    StoreLock &operator=(const StoreLock &) = delete;

    bool isLocked() const { return m_fd >= 0; }

private:
    int m_fd = -1;
};

QString TemporaryFilePrefix(const QString &path)
{
    return path + QStringLiteral(".tmp-");
}

// Only called under the lock: any temporary file still there belongs to a writer that died
// before its rename.
void RemoveStaleTemporaryFiles(const QString &path)
{
    const QFileInfo store(path);
    QDir dir = store.absoluteDir();
    const QStringList stale = dir.entryList({store.fileName() + QStringLiteral(".tmp-*")},
                                            QDir::Files | QDir::Hidden | QDir::System);
    for (const QString &name : stale)
        dir.remove(name);
}

bool MoveAside(const QString &path)
{
    const QString stamp =
        QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMdd'T'HHmmss'Z'"));
    const QString base = path + u'.' + stamp;
    QString target = base + QStringLiteral(".corrupt");
    for (int n = 1; QFileInfo(target).exists() || QFileInfo(target).isSymLink(); ++n)
        target = base + u'-' + QString::number(n) + QStringLiteral(".corrupt");
    return ::rename(NativePath(path).constData(), NativePath(target).constData()) == 0;
}

bool WriteAll(int fd, const QByteArray &bytes)
{
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.constData() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        done += n;
    }
    return true;
}

void SyncDirectory(const QString &dir)
{
    const int fd = ::open(NativePath(dir).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return;
    ::fsync(fd);
    ::close(fd);
}

// Writes a complete temporary file beside the target, then renames it over the target, so
// that readers see either the old file or the new one and never a part of either.
bool WriteFileAtomically(const QString &path, const QByteArray &bytes,
                         const std::function<void(const QString &)> &beforeRename)
{
    const QByteArray pattern = NativePath(TemporaryFilePrefix(path) + QStringLiteral("XXXXXX"));
    std::vector<char> name(pattern.cbegin(), pattern.cend());
    name.push_back('\0');
    const int fd = ::mkostemp(name.data(), O_CLOEXEC);
    if (fd < 0)
        return false;
    bool ok = ::fchmod(fd, 0600) == 0 && WriteAll(fd, bytes) && ::fsync(fd) == 0;
    ok = ::close(fd) == 0 && ok;
    if (ok && beforeRename)
        beforeRename(QFile::decodeName(name.data()));
    ok = ok && ::rename(name.data(), NativePath(path).constData()) == 0;
    if (!ok) {
        ::unlink(name.data());
        return false;
    }
    SyncDirectory(QFileInfo(path).absolutePath());
    return true;
}

} // namespace

QString DefaultPreferencesStorePath()
{
    QString base = qEnvironmentVariable("XDG_CONFIG_HOME");
    // XDG base directories must be absolute; a relative one is ignored.
    if (base.isEmpty() || !QDir::isAbsolutePath(base))
        base = QDir::homePath() + QStringLiteral("/.config");
    return QDir::cleanPath(base + QStringLiteral("/horalo/") + AppIdentifier +
                           QStringLiteral(".plist"));
}

PlistPreferencesStore::PlistPreferencesStore()
    : PlistPreferencesStore(DefaultPreferencesStorePath())
{}

PlistPreferencesStore::PlistPreferencesStore(QString filePath, QString domain)
    : m_path(QDir::cleanPath(QFileInfo(filePath).absoluteFilePath())), m_domain(std::move(domain))
{
    readFile();
}

QVariant PlistPreferencesStore::copyAppValue(const QString &key, const QString &domain)
{
    if (domain != m_domain)
        return {};
    return m_values.value(key);
}

void PlistPreferencesStore::setAppValue(const QString &key, const QVariant &value,
                                        const QString &domain)
{
    if (domain != m_domain)
        return;
    if (!value.isValid()) {
        m_pending.insert(key, QVariant());
        m_values.remove(key);
        return;
    }
    const std::optional<QVariant> normalized = NormalizedPropertyListValue(value);
    if (!normalized)
        return;
    m_pending.insert(key, *normalized);
    m_values.insert(key, *normalized);
}

bool PlistPreferencesStore::appSynchronize(const QString &domain)
{
    if (domain != m_domain)
        return false;
    if (!m_pending.isEmpty())
        return writePendingChanges();
    // Asking the file system costs a stat(); parsing costs up to milliseconds. The values read
    // last stand only while the file is provably the one they were read from.
    if (m_lastRead && m_lastRead->signature == FileSignature::ofPath(NativePath(m_path)))
        return m_lastRead->readable;
    return readFile();
}

bool PlistPreferencesStore::readFile()
{
    std::optional<FileSignature> signature;
    const StoreFile file = ReadStoreFile(m_path, &signature);
    ++m_fileReads;
    m_values = file.values;
    const bool readable = file.state != StoreFile::State::Damaged;
    m_lastRead.reset();
    if (signature && signature->trustedAt(std::chrono::system_clock::now(), m_timestampGranularity))
        m_lastRead = LastRead{*signature, readable};
    return readable;
}

QVariantMap PlistPreferencesStore::copyAllValues(const QString &domain)
{
    if (domain != m_domain)
        return {};
    return m_values;
}

QVariantMap PlistPreferencesStore::withPendingChanges(QVariantMap values) const
{
    for (auto it = m_pending.cbegin(); it != m_pending.cend(); ++it) {
        if (it.value().isValid())
            values.insert(it.key(), it.value());
        else
            values.remove(it.key());
    }
    return values;
}

bool PlistPreferencesStore::writePendingChanges()
{
    // Whatever happens below, the file may no longer be the one last read: read it afresh next
    // time rather than trust a signature taken around our own rename.
    m_lastRead.reset();
    // On any failure the changes stay pending, and this process keeps seeing them over what
    // the others wrote.
    const auto fail = [this](const QVariantMap &onDisk) {
        m_values = withPendingChanges(onDisk);
        return false;
    };

    if (!MakeDirectories(QFileInfo(m_path).absolutePath()))
        return fail(ReadStoreFile(m_path).values);
    const StoreLock lock(m_path + QStringLiteral(".lock"));
    if (!lock.isLocked())
        return fail(ReadStoreFile(m_path).values);

    RemoveStaleTemporaryFiles(m_path);
    const StoreFile current = ReadStoreFile(m_path);
    // The user's data is never lost: what we cannot read is kept beside, not overwritten.
    if (current.state == StoreFile::State::Damaged && !MoveAside(m_path))
        return fail(current.values);

    const QVariantMap merged = withPendingChanges(current.values);
    if (!WriteFileAtomically(m_path, PropertyListToXml(merged), m_beforeRename))
        return fail(current.values);
    // Still under the lock: no writer of ours can have replaced the file since the rename.
    m_writtenSignature = FileSignature::ofPath(NativePath(m_path));
    m_values = merged;
    m_pending.clear();
    return true;
}
