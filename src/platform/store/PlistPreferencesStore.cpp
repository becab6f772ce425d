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
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

// A writer holds the lock for the few milliseconds of one read-merge-write; waiting longer
// than this means something is wrong, and the changes stay pending for the next synchronise.
constexpr int kLockTimeoutMs = 2000;

// Settings take a few kilobytes. A file far beyond that is not ours to parse: reading it would
// cost memory and time at every synchronise.
constexpr qint64 kMaxStoreBytes = qint64(16) << 20;

// Symbolic links followed from the store's path to its file, as the kernel allows.
constexpr int kMaxLinkHops = 40;

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
    QString problem; // why a damaged file is damaged
};

StoreFile DamagedFile(const QString &why)
{
    return {StoreFile::State::Damaged, {}, why};
}

QString SystemError(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

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
            return {StoreFile::State::Missing, {}, {}};
        return DamagedFile(SystemError(errno));
    }
    struct stat info = {};
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        ::close(fd);
        return DamagedFile(QStringLiteral("not a regular file"));
    }
    // Taken before the size check too: a file too large to parse must not be looked at again
    // at every synchronise while it stays as it is.
    if (signature)
        signature->emplace(info);
    const QString tooLarge = QStringLiteral("larger than 16 MiB");
    if (info.st_size > kMaxStoreBytes) {
        ::close(fd);
        return DamagedFile(tooLarge);
    }
    QByteArray bytes;
    bytes.reserve(qsizetype(info.st_size));
    char buffer[16384];
    for (;;) {
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) {
            const int error = errno;
            ::close(fd);
            return DamagedFile(SystemError(error));
        }
        if (n == 0)
            break;
        bytes.append(buffer, n);
        // It may grow while we read.
        if (bytes.size() > kMaxStoreBytes) {
            ::close(fd);
            return DamagedFile(tooLarge);
        }
    }
    ::close(fd);

    if (bytes.isEmpty())
        return {StoreFile::State::Empty, {}, {}};
    const std::optional<QVariant> root = ParsePropertyList(bytes);
    if (!root)
        return DamagedFile(QStringLiteral("not a well-formed property list"));
    if (root->typeId() != QMetaType::QVariantMap)
        return DamagedFile(QStringLiteral("no dictionary at its top"));
    return {StoreFile::State::Valid, root->toMap(), {}};
}

// The same, saying in `problem` why a damaged file cannot be used.
StoreFile ReadStoreFile(const QString &path, QString &problem,
                        std::optional<FileSignature> *signature = nullptr)
{
    StoreFile file = ReadStoreFile(path, signature);
    if (file.state == StoreFile::State::Damaged) {
        problem = QStringLiteral("the settings file '%1' cannot be read (%2); the defaults are "
                                 "used, and the file is kept aside at the next change")
                      .arg(path, file.problem);
    }
    return file;
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

// Where a file that is in the way is kept: "<path>.<UTC time>.corrupt", numbered when that
// name is taken. std::nullopt when it cannot be moved.
std::optional<QString> MoveAside(const QString &path)
{
    const QString stamp =
        QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMdd'T'HHmmss'Z'"));
    const QString base = path + u'.' + stamp;
    QString target = base + QStringLiteral(".corrupt");
    for (int n = 1; QFileInfo(target).exists() || QFileInfo(target).isSymLink(); ++n)
        target = base + u'-' + QString::number(n) + QStringLiteral(".corrupt");
    if (::rename(NativePath(path).constData(), NativePath(target).constData()) != 0)
        return std::nullopt;
    return target;
}

// Opens "<store>.lock" as a plain file of our own, never through a link: a link there could
// make us create or lock a file anywhere. Whatever else stands at that path would block every
// write for good, so it is taken out of the way, once, and said so in `problem`: a link is
// removed, a directory or other special file is moved aside.
int OpenLockFile(const QString &path, QString &problem)
{
    const QByteArray native = NativePath(path);
    for (int attempt = 0; attempt < 3; ++attempt) {
        const int fd = ::open(native.constData(),
                              O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600);
        if (fd >= 0) {
            struct stat info = {};
            if (::fstat(fd, &info) == 0 && S_ISREG(info.st_mode))
                return fd;
            ::close(fd);
        } else if (errno != ELOOP && errno != EISDIR && errno != ENXIO) {
            problem =
                QStringLiteral("cannot open the lock file '%1': %2").arg(path, SystemError(errno));
            return -1;
        }
        struct stat info = {};
        if (::lstat(native.constData(), &info) != 0)
            continue; // gone meanwhile: try again
        if (S_ISLNK(info.st_mode)) {
            if (::unlink(native.constData()) == 0 || errno == ENOENT)
                problem = QStringLiteral("the lock file '%1' was a symbolic link; it was "
                                         "replaced by a plain file")
                              .arg(path);
            continue;
        }
        if (const std::optional<QString> aside = MoveAside(path)) {
            problem = QStringLiteral("the lock file '%1' was not a plain file; it was moved "
                                     "aside to '%2'")
                          .arg(path, *aside);
        } else if (errno != ENOENT) {
            problem = QStringLiteral("the lock file '%1' is not a plain file and cannot be moved "
                                     "aside: %2")
                          .arg(path, SystemError(errno));
            return -1;
        }
    }
    problem = QStringLiteral("cannot open the lock file '%1'").arg(path);
    return -1;
}

// An exclusive flock() on "<store>.lock". The kernel drops it when the process dies, so a
// crashed writer never leaves the store locked.
class StoreLock
{
public:
    StoreLock(const QString &path, QString &problem)
    {
        m_fd = OpenLockFile(path, problem);
        if (m_fd < 0)
            return;
        QElapsedTimer waited;
        waited.start();
        while (::flock(m_fd, LOCK_EX | LOCK_NB) != 0) {
            if ((errno != EWOULDBLOCK && errno != EINTR) || waited.elapsed() > kLockTimeoutMs) {
                problem =
                    QStringLiteral("the settings are locked by another process ('%1')").arg(path);
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

// The file a write must replace: the store's path itself, or, when that is a symbolic link (as
// dotfile managers make them), the file at the end of the links, so that the link stays and
// its target changes. std::nullopt for a loop of links.
std::optional<QString> LinkTarget(const QString &path)
{
    QString current = path;
    for (int hop = 0; hop < kMaxLinkHops; ++hop) {
        const QByteArray native = NativePath(current);
        struct stat info = {};
        if (::lstat(native.constData(), &info) != 0 || !S_ISLNK(info.st_mode))
            return current;
        std::vector<char> target(size_t(PATH_MAX) + 1);
        const ssize_t n = ::readlink(native.constData(), target.data(), target.size() - 1);
        if (n <= 0)
            return std::nullopt;
        const QString next = QFile::decodeName(QByteArray(target.data(), n));
        current = QDir::cleanPath(
            QDir::isAbsolutePath(next) ? next : QFileInfo(current).absolutePath() + u'/' + next);
    }
    return std::nullopt;
}

// The first top-level key whose entry an XML file cannot carry as it is.
std::optional<QString> KeyThatCannotBeWritten(const QVariantMap &values)
{
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        if (!PropertyListCanKeepText(it.key()) || FirstTextPropertyListCannotKeep(it.value()))
            return it.key();
    }
    return std::nullopt;
}

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
    // Text the file would have to alter is not taken either: it would come back changed.
    if (!normalized || !PropertyListCanKeepText(key) ||
        FirstTextPropertyListCannotKeep(*normalized))
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
    // last stand only while the file is provably the one they were read from. A damaged file
    // is not parsed again either while it stays as it is.
    if (m_lastRead && m_lastRead->signature == FileSignature::ofPath(NativePath(m_path)))
        return m_lastRead->readable;
    return readFile();
}

bool PlistPreferencesStore::readFile()
{
    std::optional<FileSignature> signature;
    const StoreFile file = ReadStoreFile(m_path, m_problem, &signature);
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

QString PlistPreferencesStore::takeProblem()
{
    return std::exchange(m_problem, QString());
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
    // Whatever happens below, the file may no longer be the one last read (it may even have
    // been kept aside): read it afresh next time rather than trust a signature taken around our
    // own rename.
    m_lastRead.reset();
    // On any failure the changes stay pending, and this process keeps seeing them over what
    // the others wrote.
    const auto fail = [this](const QVariantMap &onDisk) {
        m_values = withPendingChanges(onDisk);
        return false;
    };

    const std::optional<QString> target = LinkTarget(m_path);
    if (!target) {
        m_problem = QStringLiteral("the settings file '%1' is a loop of symbolic links; nothing "
                                   "was written")
                        .arg(m_path);
        return fail({});
    }
    if (!MakeDirectories(QFileInfo(*target).absolutePath())) {
        m_problem =
            QStringLiteral("cannot make the directory '%1'").arg(QFileInfo(*target).absolutePath());
        return fail(ReadStoreFile(m_path).values);
    }
    // The lock stays beside the name every process knows, whatever the file is a link to.
    const StoreLock lock(m_path + QStringLiteral(".lock"), m_problem);
    if (!lock.isLocked())
        return fail(ReadStoreFile(m_path).values);

    RemoveStaleTemporaryFiles(*target);
    const StoreFile current = ReadStoreFile(*target);
    // The user's data is never lost: what we cannot read is kept beside, not overwritten.
    if (current.state == StoreFile::State::Damaged) {
        const std::optional<QString> aside = MoveAside(*target);
        if (!aside) {
            m_problem = QStringLiteral("the settings file '%1' cannot be read (%2) nor moved "
                                       "aside: %3; nothing was written")
                            .arg(*target, current.problem, SystemError(errno));
            return fail(current.values);
        }
        m_problem = QStringLiteral("the settings file '%1' could not be read (%2) and is kept as "
                                   "'%3'")
                        .arg(*target, current.problem, *aside);
    }

    const QVariantMap merged = withPendingChanges(current.values);
    // A key read from a file of another writer (a binary list can hold any text) that XML
    // cannot carry would be altered or lost by this write: nothing is written instead.
    if (const std::optional<QString> key = KeyThatCannotBeWritten(merged)) {
        m_problem = QStringLiteral("the settings file holds the key '%1', whose name or value "
                                   "cannot be written back as it is; nothing was written")
                        .arg(*key);
        return fail(current.values);
    }
    const std::optional<QByteArray> xml = PropertyListToXml(merged);
    // Text shared many times over in a binary list is written out each time: a file we could
    // not read back would lose everything at the next start.
    if (xml && xml->size() > kMaxStoreBytes) {
        m_problem = QStringLiteral("the settings would take more than 16 MiB as XML; nothing was "
                                   "written");
        return fail(current.values);
    }
    if (!xml || !WriteFileAtomically(*target, *xml, m_beforeRename)) {
        m_problem = QStringLiteral("cannot write the settings file '%1'").arg(*target);
        return fail(current.values);
    }
    // Still under the lock: no writer of ours can have replaced the file since the rename.
    m_writtenSignature = FileSignature::ofPath(NativePath(m_path));
    m_values = merged;
    m_pending.clear();
    return true;
}
