// A synchronise skips the parse while the file is provably unchanged, and every kind of change
// still shows at the next synchronise.

#include "TestSupport.h"
#include "platform/store/FileSignature.h"
#include "platform/store/PlistPreferencesStore.h"
#include "platform/store/PropertyList.h"

#include <QDir>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <chrono>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;

const QString kDomain = AppIdentifier;
const QString kKey = QStringLiteral("LastTitleDisplayName");

// Lowered from the real two seconds so that a test can let a file settle without waiting long;
// still many ticks of the kernel's coarse file-time clock.
constexpr auto kGranularity = 40ms;

QByteArray StoreBytes(const QString &title)
{
    return PropertyListToXml({{kKey, title}}).value();
}

// Rewrites the file in place, keeping its inode, size and modification time: only the change
// time, which no program can set back, tells the edit apart.
void EditInPlaceKeepingModificationTime(const QString &path, const QByteArray &bytes)
{
    const QByteArray native = QFile::encodeName(path);
    struct stat before = {};
    ASSERT_EQ(::stat(native.constData(), &before), 0);
    ASSERT_EQ(before.st_size, bytes.size()) << "the edit must keep the size";
    ASSERT_TRUE(WriteFileBytes(path, bytes));
    const struct timespec times[2] = {before.st_atim, before.st_mtim};
    ASSERT_EQ(::utimensat(AT_FDCWD, native.constData(), times, 0), 0);
    struct stat after = {};
    ASSERT_EQ(::stat(native.constData(), &after), 0);
    ASSERT_EQ(after.st_ino, before.st_ino);
}

class UnchangedStoreTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QDir().mkpath(QFileInfo(m_path).path());
        ASSERT_TRUE(WriteFileBytes(m_path, StoreBytes(QStringLiteral("Short Date"))));
    }

    // Lets the file's last change fall further back than the time-stamp granularity.
    static void settle() { std::this_thread::sleep_for(kGranularity + 20ms); }

    // A reader whose next synchronises find the file settled and already parsed.
    PlistPreferencesStore &settledReader()
    {
        settle();
        m_reader.setTimestampGranularityForTesting(kGranularity);
        EXPECT_TRUE(m_reader.appSynchronize(kDomain));
        const int reads = m_reader.fileReadCount();
        EXPECT_TRUE(m_reader.appSynchronize(kDomain));
        EXPECT_EQ(m_reader.fileReadCount(), reads) << "an unchanged, settled file is parsed again";
        return m_reader;
    }

    QString title() { return m_reader.copyAppValue(kKey, kDomain).toString(); }

    QTemporaryDir m_dir = ScratchDirectory();
    QString m_path = m_dir.path() + QStringLiteral("/horalo/org.horalo.Horalo.plist");
    PlistPreferencesStore m_reader{m_path};
};

TEST_F(UnchangedStoreTest, AFreshlyChangedFileIsParsedAtEverySynchroniseUntilItSettles)
{
    // Just written: a same-size edit in the same clock tick could not be told apart, so no
    // read of it is trusted yet.
    m_reader.setTimestampGranularityForTesting(kGranularity);
    m_reader.appSynchronize(kDomain);
    const int reads = m_reader.fileReadCount();
    m_reader.appSynchronize(kDomain);
    EXPECT_EQ(m_reader.fileReadCount(), reads + 1);
    settledReader();
    EXPECT_EQ(m_reader.fileReadCount(), reads + 2);

    // The real granularity, and no waiting: the edit follows the read at once.
    PlistPreferencesStore reader(m_path);
    EditInPlaceKeepingModificationTime(m_path, StoreBytes(QStringLiteral("Short Time")));
    EXPECT_TRUE(reader.appSynchronize(kDomain));
    EXPECT_EQ(reader.copyAppValue(kKey, kDomain).toString(), u"Short Time");
}

TEST_F(UnchangedStoreTest, EveryKindOfChangeToASettledFileShowsAtTheNextSynchronise)
{
    // A same-size hand edit with its modification time put back.
    settledReader();
    EditInPlaceKeepingModificationTime(m_path, StoreBytes(QStringLiteral("Short Time")));
    EXPECT_TRUE(m_reader.appSynchronize(kDomain));
    EXPECT_EQ(title(), u"Short Time");

    // Another writer's atomic rename.
    settledReader();
    PlistPreferencesStore writer(m_path);
    writer.setAppValue(kKey, QStringLiteral("Long Date"), kDomain);
    ASSERT_TRUE(writer.appSynchronize(kDomain));
    EXPECT_TRUE(m_reader.appSynchronize(kDomain));
    EXPECT_EQ(title(), u"Long Date");

    // Deleted, then back again with the bytes first read: a new file, read anew.
    settledReader();
    ASSERT_TRUE(QFile::remove(m_path));
    EXPECT_TRUE(m_reader.appSynchronize(kDomain));
    EXPECT_FALSE(m_reader.copyAppValue(kKey, kDomain).isValid());
    ASSERT_TRUE(WriteFileBytes(m_path, StoreBytes(QStringLiteral("Short Date"))));
    EXPECT_TRUE(m_reader.appSynchronize(kDomain));
    EXPECT_EQ(title(), u"Short Date");

    // Replaced by a damaged file: empty, and skipped parses answer as the parse did.
    settledReader();
    const QString damaged = m_path + QStringLiteral(".new");
    ASSERT_TRUE(WriteFileBytes(damaged, "<?xml version=\"1.0\"?><plist><dict><key>"));
    ASSERT_EQ(
        ::rename(QFile::encodeName(damaged).constData(), QFile::encodeName(m_path).constData()), 0);
    EXPECT_FALSE(m_reader.appSynchronize(kDomain));
    EXPECT_FALSE(m_reader.copyAppValue(kKey, kDomain).isValid());
    settle();
    m_reader.appSynchronize(kDomain);
    const int reads = m_reader.fileReadCount();
    EXPECT_FALSE(m_reader.appSynchronize(kDomain));
    EXPECT_EQ(m_reader.fileReadCount(), reads);
    EXPECT_FALSE(m_reader.copyAppValue(kKey, kDomain).isValid());

    // A symbolic link pointed elsewhere.
    const QString first = m_dir.path() + QStringLiteral("/first.plist");
    const QString second = m_dir.path() + QStringLiteral("/second.plist");
    ASSERT_TRUE(WriteFileBytes(first, StoreBytes(QStringLiteral("Short Date"))));
    ASSERT_TRUE(WriteFileBytes(second, StoreBytes(QStringLiteral("Full Date"))));
    ASSERT_TRUE(QFile::remove(m_path));
    ASSERT_TRUE(QFile::link(first, m_path));
    settledReader();
    EXPECT_EQ(title(), u"Short Date");
    ASSERT_TRUE(QFile::remove(m_path));
    ASSERT_TRUE(QFile::link(second, m_path));
    EXPECT_TRUE(m_reader.appSynchronize(kDomain));
    EXPECT_EQ(title(), u"Full Date");
}

TEST_F(UnchangedStoreTest, AnOversizedFileIsNotLookedIntoAgainAndAWriteKeepsItAside)
{
    // Sparse: 17 MiB on paper, nothing on disk.
    ASSERT_EQ(::truncate(QFile::encodeName(m_path).constData(), (17 << 20)), 0);
    settle();
    m_reader.setTimestampGranularityForTesting(kGranularity);
    EXPECT_FALSE(m_reader.appSynchronize(kDomain));
    const int reads = m_reader.fileReadCount();
    for (int i = 0; i < 10; ++i)
        EXPECT_FALSE(m_reader.appSynchronize(kDomain));
    EXPECT_EQ(m_reader.fileReadCount(), reads);

    // The write moves it aside; the new file is not mistaken for the one kept aside.
    m_reader.setAppValue(kKey, QStringLiteral("Long Date"), kDomain);
    ASSERT_TRUE(m_reader.appSynchronize(kDomain));
    EXPECT_EQ(QDir(QFileInfo(m_path).path()).entryList({QStringLiteral("*.corrupt")}).size(), 1);
    EXPECT_TRUE(m_reader.appSynchronize(kDomain));
    EXPECT_EQ(title(), u"Long Date");
    EXPECT_LT(QFileInfo(m_path).size(), 4096);
}

TEST(FileSignatureTest, IsTrustedOnlyOnceItsLastChangeLiesBeyondTheGranularity)
{
    const QTemporaryDir dir = ScratchDirectory();
    const QString path = dir.path() + QStringLiteral("/f");
    ASSERT_TRUE(WriteFileBytes(path, "x"));
    const auto signature = FileSignature::ofPath(QFile::encodeName(path));
    ASSERT_TRUE(signature.has_value());
    const auto now = std::chrono::system_clock::now();
    EXPECT_FALSE(signature->trustedAt(now, 10s)) << "changed a moment ago";
    EXPECT_TRUE(signature->trustedAt(now + 11s, 10s));
    // A clock that went back behind the file's times: never trusted.
    EXPECT_FALSE(signature->trustedAt(now - 1h, 10s));
    EXPECT_FALSE(FileSignature::ofPath(QFile::encodeName(path + QStringLiteral(".none"))));
}

} // namespace
