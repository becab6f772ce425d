#include "platform/store/PlistPreferencesStore.h"

#include "BinaryPlistBuilder.h"
#include "TestSupport.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace Qt::StringLiterals;

const QString kDomain = AppIdentifier;

int Mode(const QString &path)
{
    struct stat info = {};
    if (::stat(QFile::encodeName(path).constData(), &info) != 0)
        return -1;
    return static_cast<int>(info.st_mode & 07777);
}

QDateTime Utc(qint64 secondsSinceEpoch)
{
    return QDateTime::fromSecsSinceEpoch(secondsSinceEpoch, Qt::UTC);
}

class PlistStoreTest : public ::testing::Test
{
protected:
    QVariantMap readFresh() { return PlistPreferencesStore(m_path).copyAllValues(kDomain); }

    void writeFresh(const QVariantMap &values)
    {
        PlistPreferencesStore store(m_path);
        for (auto it = values.cbegin(); it != values.cend(); ++it)
            store.setAppValue(it.key(), it.value(), kDomain);
        ASSERT_TRUE(store.appSynchronize(kDomain));
    }

    QStringList filesBeside(const QString &pattern) const
    {
        return QDir(dir()).entryList({pattern}, QDir::AllEntries);
    }
    QString dir() const { return QFileInfo(m_path).path(); }
    // Puts these bytes where the store's file belongs.
    void plant(const QByteArray &bytes)
    {
        QDir().mkpath(dir());
        ASSERT_TRUE(WriteFileBytes(m_path, bytes));
    }

    QProcess *startPeer(const QStringList &arguments)
    {
        auto *process = new QProcess;
        m_peers.emplace_back(process);
        process->start(QStringLiteral(HORALO_PLATFORM_PEER), arguments);
        return process;
    }

    QTemporaryDir m_dir = ScratchDirectory();
    QString m_path = m_dir.path() + QStringLiteral("/config/horalo/org.horalo.Horalo.plist");
    std::vector<std::unique_ptr<QProcess>> m_peers;
};

TEST_F(PlistStoreTest, FirstWriteCreatesAnOwnerOnlyFileAndItsDirectories)
{
    PlistPreferencesStore store(m_path);
    EXPECT_TRUE(store.copyAllValues(kDomain).isEmpty());
    EXPECT_TRUE(store.appSynchronize(kDomain));
    EXPECT_FALSE(QFileInfo::exists(m_path)) << "reading alone must not create the file";

    store.setAppValue(QStringLiteral("k"), true, kDomain);
    EXPECT_TRUE(store.appSynchronize(kDomain));
    EXPECT_EQ(Mode(m_path), 0600);
    EXPECT_EQ(Mode(dir()), 0700);
    EXPECT_TRUE(ReadFileBytes(m_path).startsWith("<?xml"));
}

TEST_F(PlistStoreTest, OthersSeeAWriteAtTheirNextSynchronize)
{
    PlistPreferencesStore reader(m_path);
    PlistPreferencesStore writer(m_path);
    writer.setAppValue(QStringLiteral("k"), QStringLiteral("v"), kDomain);
    EXPECT_EQ(writer.copyAppValue(QStringLiteral("k"), kDomain), QVariant(u"v"_s));
    writer.appSynchronize(kDomain);

    EXPECT_FALSE(reader.copyAppValue(QStringLiteral("k"), kDomain).isValid());
    EXPECT_TRUE(reader.appSynchronize(kDomain));
    EXPECT_EQ(reader.copyAppValue(QStringLiteral("k"), kDomain), QVariant(u"v"_s));
}

TEST_F(PlistStoreTest, WritersMergeKeyByKeyAndRemovalsStick)
{
    writeFresh({{QStringLiteral("a"), 1}, {QStringLiteral("b"), 2}, {QStringLiteral("c"), 3}});
    PlistPreferencesStore first(m_path);
    PlistPreferencesStore second(m_path);
    first.setAppValue(QStringLiteral("a"), 10, kDomain);
    second.setAppValue(QStringLiteral("b"), QVariant(), kDomain);
    second.setAppValue(QStringLiteral("d"), 4, kDomain);
    ASSERT_TRUE(second.appSynchronize(kDomain));
    // first still holds the old "b", but only its own change is written back.
    ASSERT_TRUE(first.appSynchronize(kDomain));

    const QVariantMap expected{{QStringLiteral("a"), qlonglong(10)},
                               {QStringLiteral("c"), qlonglong(3)},
                               {QStringLiteral("d"), qlonglong(4)}};
    EXPECT_EQ(readFresh(), expected);
    EXPECT_EQ(first.copyAllValues(kDomain), expected);
}

TEST_F(PlistStoreTest, TwoProcessesWritingAtOnceLoseNothing)
{
    constexpr int kCount = 60;
    QProcess *left = startPeer(
        {QStringLiteral("write"), m_path, QStringLiteral("left"), QString::number(kCount)});
    QProcess *right = startPeer(
        {QStringLiteral("write"), m_path, QStringLiteral("right"), QString::number(kCount)});
    for (QProcess *peer : {left, right}) {
        ASSERT_TRUE(peer->waitForFinished(60000));
        EXPECT_EQ(peer->exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(peer->exitCode(), 0) << peer->readAllStandardError().constData();
    }
    const QVariantMap values = readFresh();
    EXPECT_EQ(values.size(), 2 * kCount);
    for (int i = 0; i < kCount; ++i) {
        EXPECT_EQ(values.value(u"left"_s + QString::number(i)), QVariant(qlonglong(i)));
        EXPECT_EQ(values.value(u"right"_s + QString::number(i)), QVariant(qlonglong(i)));
    }
}

TEST_F(PlistStoreTest, ACrashBeforeTheRenameLeavesTheOldFileWhole)
{
    writeFresh({{QStringLiteral("keep"), QStringLiteral("old")}});
    const QByteArray before = ReadFileBytes(m_path);

    QProcess *peer = startPeer(
        {QStringLiteral("crash-before-rename"), m_path, QStringLiteral("keep"), u"new"_s});
    ASSERT_TRUE(peer->waitForFinished(30000));
    ASSERT_EQ(peer->exitStatus(), QProcess::CrashExit);

    EXPECT_EQ(ReadFileBytes(m_path), before);
    // The peer died with its complete temporary file written but not renamed.
    const QStringList stray = filesBeside(QStringLiteral("*.tmp-*"));
    ASSERT_EQ(stray.size(), 1);
    const QString strayPath = dir() + u'/' + stray.first();
    EXPECT_EQ(PlistPreferencesStore(strayPath).copyAppValue(u"keep"_s, kDomain), u"new"_s);
    EXPECT_EQ(readFresh().value(QStringLiteral("keep")), QVariant(u"old"_s));

    // The next writer is not held up, and clears the leftover away.
    writeFresh({{QStringLiteral("other"), true}});
    EXPECT_TRUE(filesBeside(QStringLiteral("*.tmp-*")).isEmpty());
    EXPECT_EQ(readFresh().value(QStringLiteral("keep")), QVariant(u"old"_s));
}

// What a damaged file holds, named for the test's output.
struct DamagedFile
{
    const char *name;
    QByteArray bytes;
    const char *reason = "not a well-formed property list";
};

void PrintTo(const DamagedFile &file, std::ostream *os)
{
    *os << file.name;
}

class DamagedStoreTest : public PlistStoreTest, public ::testing::WithParamInterface<DamagedFile>
{};

TEST_P(DamagedStoreTest, ReadsAsDefaultsWithOneLineToTellAndIsKeptAsideWholeAtTheNextWrite)
{
    const QByteArray damaged = GetParam().bytes;
    plant(damaged);

    PlistPreferencesStore store(m_path);
    EXPECT_TRUE(store.copyAllValues(kDomain).isEmpty());
    // Also when the unchanged file is not parsed again.
    store.setTimestampGranularityForTesting(std::chrono::nanoseconds(0));
    EXPECT_FALSE(store.appSynchronize(kDomain));
    EXPECT_FALSE(store.appSynchronize(kDomain));
    EXPECT_EQ(ReadFileBytes(m_path), damaged) << "a read must leave the file alone";
    const QString problem = store.takeProblem();
    EXPECT_TRUE(problem.contains(u"cannot be read (%1)"_s.arg(QLatin1String(GetParam().reason))))
        << qPrintable(problem);
    EXPECT_TRUE(store.takeProblem().isEmpty()) << "taking it clears it";

    store.setAppValue(QStringLiteral("fresh"), 1, kDomain);
    EXPECT_TRUE(store.appSynchronize(kDomain));
    EXPECT_TRUE(store.takeProblem().contains(u"is kept as"_s));
    EXPECT_EQ(readFresh(), (QVariantMap{{QStringLiteral("fresh"), qlonglong(1)}}));

    const QStringList aside = filesBeside(QStringLiteral("*.corrupt"));
    ASSERT_EQ(aside.size(), 1);
    EXPECT_TRUE(
        QRegularExpression(QStringLiteral(R"(^org\.horalo\.Horalo\.plist\.\d{8}T\d{6}Z\.corrupt$)"))
            .match(aside.first())
            .hasMatch())
        << qPrintable(aside.first());
    EXPECT_EQ(ReadFileBytes(dir() + u'/' + aside.first()), damaged);

    // Damaged again within the same second: a second copy, not an overwritten first.
    ASSERT_TRUE(WriteFileBytes(m_path, damaged));
    store.setAppValue(QStringLiteral("fresh"), 2, kDomain);
    EXPECT_TRUE(store.appSynchronize(kDomain));
    EXPECT_EQ(filesBeside(QStringLiteral("*.corrupt")).size(), 2);
}

// The last two crashed or hung the previous reader: a UTF-16 key holding U+0000 and 100,000
// nested arrays.
INSTANTIATE_TEST_SUITE_P(
    Kinds, DamagedStoreTest,
    ::testing::Values(DamagedFile{"cut-short XML",
                                  "<?xml version=\"1.0\"?><plist><dict><key>a</key>"},
                      DamagedFile{"no dictionary", "<plist><array><true/></array></plist>",
                                  "no dictionary at its top"},
                      DamagedFile{"cut-short binary", "bplist00 truncated"},
                      DamagedFile{"not text", "\x01\x02 not text"},
                      DamagedFile{"NUL in a key", kNulInUtf16Key},
                      DamagedFile{"too deep", NestedArrays(100000)}));

TEST_F(PlistStoreTest, SomethingElseInTheFilesPlaceIsKeptAsideToo)
{
    ASSERT_TRUE(QDir().mkpath(m_path + QStringLiteral("/inside")));
    PlistPreferencesStore store(m_path);
    EXPECT_TRUE(store.copyAllValues(kDomain).isEmpty());
    store.setAppValue(QStringLiteral("k"), 1, kDomain);
    EXPECT_TRUE(store.appSynchronize(kDomain));
    EXPECT_EQ(readFresh().value(QStringLiteral("k")), QVariant(qlonglong(1)));
    const QStringList aside = filesBeside(QStringLiteral("*.corrupt"));
    ASSERT_EQ(aside.size(), 1);
    EXPECT_TRUE(QFileInfo::exists(dir() + u'/' + aside.first() + u"/inside"_s));
}

TEST_F(PlistStoreTest, AnEmptyFileIsSimplyReplaced)
{
    plant(QByteArray());
    PlistPreferencesStore store(m_path);
    EXPECT_TRUE(store.appSynchronize(kDomain));
    store.setAppValue(QStringLiteral("k"), 1, kDomain);
    EXPECT_TRUE(store.appSynchronize(kDomain));
    EXPECT_TRUE(filesBeside(QStringLiteral("*.corrupt")).isEmpty());
    EXPECT_EQ(readFresh().size(), 1);
}

TEST_F(PlistStoreTest, UnsavedChangesStayPendingUntilTheyCanBeWritten)
{
    // A file where the store's directory should be: nothing can be written.
    const QString blocked = m_dir.path() + QStringLiteral("/config");
    ASSERT_TRUE(WriteFileBytes(blocked, "not a directory"));
    PlistPreferencesStore store(m_path);
    store.setAppValue(QStringLiteral("k"), QStringLiteral("v"), kDomain);
    EXPECT_FALSE(store.appSynchronize(kDomain));
    EXPECT_EQ(store.copyAppValue(QStringLiteral("k"), kDomain), QVariant(u"v"_s));

    ASSERT_TRUE(QFile::remove(blocked));
    EXPECT_TRUE(store.appSynchronize(kDomain));
    EXPECT_EQ(readFresh().value(QStringLiteral("k")), QVariant(u"v"_s));
}

// Written by Python's plistlib (binary format), which follows the format's own definition.
const char kBinaryPlist[] =
    "\x62\x70\x6c\x69\x73\x74\x30\x30\xdd\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0a\x0b\x0c\x0d"
    "\x0e\x11\x12\x13\x14\x15\x16\x17\x18\x1f\x20\x21\x22\x5c\x43\x75\x73\x74\x6f\x6d\x20\x44"
    "\x61\x74\x65\x73\x53\x62\x69\x67\x54\x62\x6c\x6f\x62\x55\x63\x6f\x75\x6e\x74\x55\x65\x61"
    "\x72\x6c\x79\x54\x66\x6c\x61\x67\x54\x6e\x61\x6d\x65\x58\x6e\x65\x67\x61\x74\x69\x76\x65"
    "\x56\x6e\x65\x73\x74\x65\x64\x53\x6f\x66\x66\x55\x72\x61\x74\x69\x6f\x57\x75\x6e\x69\x63"
    "\x6f\x64\x65\x54\x77\x68\x65\x6e\xa2\x0f\x10\x52\x25\x59\x55\x25\x64\x20\x25\x62\x13\x00"
    "\x00\x01\x00\x00\x00\x00\x00\x43\x00\x01\xff\x10\x2a\x33\xc1\x7e\x28\x50\x10\x00\x00\x00"
    "\x09\x5b\x4d\x65\x64\x69\x75\x6d\x20\x44\x61\x74\x65\x13\xff\xff\xff\xff\xff\xff\xff\xf9"
    "\xd1\x19\x1a\x55\x69\x6e\x6e\x65\x72\xa2\x1b\x1c\x10\x01\xd1\x1d\x1e\x54\x64\x65\x65\x70"
    "\x51\x78\x08\x23\x40\x04\x00\x00\x00\x00\x00\x00\x64\x00\x68\x00\xe9\x00\x20\x26\x03\x33"
    "\x41\xa3\x84\x17\x46\x00\x00\x00\x08\x23\x30\x34\x39\x3f\x45\x4a\x4f\x58\x5f\x63\x69\x71"
    "\x76\x79\x7c\x82\x8b\x8f\x91\x9a\x9b\xa7\xb0\xb3\xb9\xbc\xbe\xc1\xc6\xc8\xc9\xd2\xdb\x00"
    "\x00\x00\x00\x00\x00\x01\x01\x00\x00\x00\x00\x00\x00\x00\x23\x00\x00\x00\x00\x00\x00\x00"
    "\x00\x00\x00\x00\x00\x00\x00\x00\xe4";

TEST_F(PlistStoreTest, ABinaryStoreIsReadAndKeptWhenRewrittenAsXml)
{
    plant(QByteArray(kBinaryPlist, sizeof kBinaryPlist - 1));
    const QVariantMap expected{
        {QStringLiteral("Custom Dates"), QVariantList{u"%Y"_s, u"%d %b"_s}},
        {QStringLiteral("big"), qlonglong(1) << 40},
        {QStringLiteral("blob"), QByteArray("\0\1\xff", 3)},
        {QStringLiteral("count"), qlonglong(42)},
        {QStringLiteral("early"), Utc(946684799)}, // 1999-12-31T23:59:59Z, before 2001
        {QStringLiteral("flag"), true},
        {QStringLiteral("name"), QStringLiteral("Medium Date")},
        {QStringLiteral("negative"), qlonglong(-7)},
        {QStringLiteral("nested"),
         QVariantMap{{QStringLiteral("inner"),
                      QVariantList{qlonglong(1), QVariantMap{{u"deep"_s, u"x"_s}}}}}},
        {QStringLiteral("off"), false},
        {QStringLiteral("ratio"), 2.5},
        {QStringLiteral("unicode"), QStringLiteral("hé ☃")},
        {QStringLiteral("when"), Utc(1142019107)}, // 2006-03-10T19:31:47Z
    };
    EXPECT_EQ(readFresh(), expected);

    PlistPreferencesStore store(m_path);
    store.setAppValue(QStringLiteral("added"), true, kDomain);
    ASSERT_TRUE(store.appSynchronize(kDomain));
    EXPECT_TRUE(ReadFileBytes(m_path).startsWith("<?xml"));
    QVariantMap withAdded = expected;
    withAdded.insert(QStringLiteral("added"), true);
    EXPECT_EQ(readFresh(), withAdded);
}

TEST_F(PlistStoreTest, AFileOverSixteenMebibytesIsNotParsed)
{
    QDir().mkpath(dir());
    // A valid list, so only its size can make it unreadable.
    const QByteArray head = "<plist><dict><key>k</key><string>";
    const QByteArray tail = "</string></dict></plist>";
    const qsizetype limit = qsizetype(16) << 20;
    ASSERT_TRUE(
        WriteFileBytes(m_path, head + QByteArray(limit - head.size() - tail.size(), 'x') + tail));
    EXPECT_EQ(PlistPreferencesStore(m_path).copyAllValues(kDomain).size(), 1) << "at the limit";

    ASSERT_TRUE(WriteFileBytes(
        m_path, head + QByteArray(limit + 1 - head.size() - tail.size(), 'x') + tail));
    PlistPreferencesStore store(m_path);
    EXPECT_TRUE(store.copyAllValues(kDomain).isEmpty());
    EXPECT_TRUE(store.takeProblem().contains(u"larger than 16 MiB"_s));
}

TEST_F(PlistStoreTest, AKeyXmlCannotCarryRefusesTheWriteAndLeavesTheFileAlone)
{
    // Python's plistlib: {"\x01": 1, "\uFFFD": 2}. Written as XML the first key would turn into
    // the second, and one of the two values would be lost.
    const QByteArray binary(
        "\x62\x70\x6c\x69\x73\x74\x30\x30\xd2\x01\x02\x03\x04\x51\x01\x61\xff\xfd\x10\x01\x10"
        "\x02\x08\x0d\x0f\x12\x14\x00\x00\x00\x00\x00\x00\x01\x01\x00\x00\x00\x00\x00\x00\x00"
        "\x05\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x16",
        59);
    plant(binary);
    PlistPreferencesStore store(m_path);
    EXPECT_EQ(store.copyAllValues(kDomain),
              (QVariantMap{{u"\u0001"_s, qlonglong(1)}, {u"\uFFFD"_s, qlonglong(2)}}));

    store.setAppValue(u"other"_s, true, kDomain);
    EXPECT_FALSE(store.appSynchronize(kDomain));
    EXPECT_EQ(store.takeProblem(), u"the settings file holds the key '\u0001', whose name or value "
                                   "cannot be written back as it is; nothing was written"_s);
    EXPECT_EQ(ReadFileBytes(m_path), binary);
    EXPECT_EQ(store.copyAppValue(u"other"_s, kDomain), QVariant(true)) << "still pending";

    // Values this process would write are refused at once instead.
    store.setAppValue(u"bell"_s, u"\u0007"_s, kDomain);
    store.setAppValue(u"\u0007"_s, 1, kDomain);
    EXPECT_FALSE(store.copyAppValue(u"bell"_s, kDomain).isValid());
    EXPECT_FALSE(store.copyAppValue(u"\u0007"_s, kDomain).isValid());
}

TEST_F(PlistStoreTest, AWriteThatWouldOutgrowWhatCanBeReadBackIsRefused)
{
    // One 512 KiB string of "&" used 15 times: within the reader's budget, but escaped in XML
    // (&amp;) it would take 37 MiB, a file no later start could read.
    BinaryPlistBuilder plist(2);
    const int text = plist.add(plist.ascii(QByteArray(512 * 1024, '&')));
    const int list = plist.add(plist.array(QList<int>(15, text)));
    const int root = plist.add(plist.dictionary({{plist.add(plist.ascii("many")), list}}));
    const QByteArray binary = plist.build(root);
    plant(binary);

    PlistPreferencesStore store(m_path);
    ASSERT_EQ(store.copyAppValue(u"many"_s, kDomain).toList().size(), 15);
    store.setAppValue(u"other"_s, true, kDomain);
    EXPECT_FALSE(store.appSynchronize(kDomain));
    EXPECT_TRUE(store.takeProblem().contains(u"more than 16 MiB"_s));
    EXPECT_EQ(ReadFileBytes(m_path), binary);
}

TEST_F(PlistStoreTest, ASymlinkedStoreIsWrittenThroughAndStaysALink)
{
    // As dotfile managers lay it out: the real file elsewhere, reached by a relative link, and
    // a second link on the way.
    const QString dotfiles = m_dir.path() + u"/dotfiles"_s;
    const QString target = dotfiles + u"/horalo.plist"_s;
    QDir().mkpath(dotfiles);
    QDir().mkpath(dir());
    ASSERT_TRUE(QFile::link(u"../dotfiles/horalo.plist"_s, m_dir.path() + u"/config/hop"_s));
    ASSERT_EQ(::symlink("../hop", QFile::encodeName(m_path).constData()), 0);

    writeFresh({{u"first"_s, 1}}); // the link dangles: its target is created
    writeFresh({{u"second"_s, 2}});
    EXPECT_TRUE(QFileInfo(m_path).isSymLink());
    EXPECT_TRUE(QFileInfo(m_dir.path() + u"/config/hop"_s).isSymLink());
    EXPECT_EQ(PlistPreferencesStore(target).copyAllValues(kDomain).size(), 2);
    EXPECT_EQ(readFresh().size(), 2);
    EXPECT_EQ(Mode(target), 0600);
    EXPECT_TRUE(QDir(dotfiles).entryList({u"*.tmp-*"_s}, QDir::Files | QDir::Hidden).isEmpty());

    // A damaged target is kept aside beside the target, and the link still leads to the new one.
    ASSERT_TRUE(WriteFileBytes(target, "<plist><dict>"));
    writeFresh({{u"third"_s, 3}});
    EXPECT_TRUE(QFileInfo(m_path).isSymLink());
    EXPECT_EQ(QDir(dotfiles).entryList({u"*.corrupt"_s}, QDir::Files).size(), 1);
    EXPECT_EQ(readFresh(), (QVariantMap{{u"third"_s, qlonglong(3)}}));
}

TEST_F(PlistStoreTest, ALoopOfLinksIsReportedAndNothingIsWritten)
{
    QDir().mkpath(dir());
    ASSERT_EQ(
        ::symlink(QFile::encodeName(m_path).constData(), QFile::encodeName(m_path).constData()), 0);
    PlistPreferencesStore store(m_path);
    store.setAppValue(u"k"_s, 1, kDomain);
    EXPECT_FALSE(store.appSynchronize(kDomain));
    EXPECT_TRUE(store.takeProblem().contains(u"loop of symbolic links"_s));
    EXPECT_TRUE(QFileInfo(m_path).isSymLink());
}

TEST_F(PlistStoreTest, WhatStandsAtTheLockPathNeverBlocksWritesNorLeadsElsewhere)
{
    const QString lock = m_path + u".lock"_s;
    const QString elsewhere = m_dir.path() + u"/elsewhere"_s;
    QDir().mkpath(dir());

    // A dangling link: opening through it would create its target.
    ASSERT_TRUE(QFile::link(elsewhere, lock));
    {
        PlistPreferencesStore store(m_path);
        store.setAppValue(u"a"_s, 1, kDomain);
        EXPECT_TRUE(store.appSynchronize(kDomain));
        EXPECT_TRUE(store.takeProblem().contains(u"was a symbolic link"_s));
    }
    EXPECT_FALSE(QFileInfo::exists(elsewhere));
    EXPECT_FALSE(QFileInfo(lock).isSymLink());

    // A directory, with something in it: moved aside whole, not removed.
    ASSERT_TRUE(QFile::remove(lock));
    ASSERT_TRUE(QDir().mkpath(lock + u"/inside"_s));
    {
        PlistPreferencesStore store(m_path);
        store.setAppValue(u"b"_s, 2, kDomain);
        EXPECT_TRUE(store.appSynchronize(kDomain));
        EXPECT_TRUE(store.takeProblem().contains(u"was not a plain file; it was moved aside"_s));
    }
    EXPECT_TRUE(QFileInfo(lock).isFile());
    const QStringList aside = filesBeside(u"*.lock.*.corrupt"_s);
    ASSERT_EQ(aside.size(), 1);
    EXPECT_TRUE(QFileInfo::exists(dir() + u'/' + aside.first() + u"/inside"_s));
    EXPECT_EQ(readFresh().size(), 2);

    // A plain lock file is simply used, and nothing is said.
    PlistPreferencesStore store(m_path);
    store.setAppValue(u"c"_s, 3, kDomain);
    EXPECT_TRUE(store.appSynchronize(kDomain));
    EXPECT_TRUE(store.takeProblem().isEmpty());
}

TEST_F(PlistStoreTest, OtherDomainsAreNeitherReadNorWritten)
{
    writeFresh({{QStringLiteral("k"), 1}});
    PlistPreferencesStore store(m_path);
    EXPECT_FALSE(store.copyAppValue(QStringLiteral("k"), u"org.example.Other"_s).isValid());
    store.setAppValue(QStringLiteral("x"), 1, u"org.example.Other"_s);
    EXPECT_FALSE(store.appSynchronize(u"org.example.Other"_s));
    EXPECT_FALSE(readFresh().contains(QStringLiteral("x")));
}

TEST(DefaultStorePath, FollowsXdgConfigHomeAndFallsBackToDotConfig)
{
    const auto setOrUnset = [](const char *name, const std::optional<QByteArray> &value) {
        value ? qputenv(name, *value) : qunsetenv(name);
    };
    const auto saved = [](const char *name) {
        return qEnvironmentVariableIsSet(name) ? std::optional(qgetenv(name)) : std::nullopt;
    };
    const std::optional<QByteArray> home = saved("HOME"), config = saved("XDG_CONFIG_HOME");
    qputenv("HOME", "/home/someone");
    const QString dotConfig = u"/home/someone/.config/horalo/org.horalo.Horalo.plist"_s;
    for (const auto &[value, expected] :
         {std::pair<std::optional<QByteArray>, QString>{
              "/srv/conf/", u"/srv/conf/horalo/org.horalo.Horalo.plist"_s},
          {std::nullopt, dotConfig},
          {"", dotConfig},
          {"relative/conf", dotConfig}}) {
        setOrUnset("XDG_CONFIG_HOME", value);
        EXPECT_EQ(DefaultPreferencesStorePath(), expected) << value.value_or("(unset)").constData();
    }
    setOrUnset("HOME", home);
    setOrUnset("XDG_CONFIG_HOME", config);
}

} // namespace
