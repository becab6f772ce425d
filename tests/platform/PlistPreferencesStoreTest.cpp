#include "platform/store/PlistPreferencesStore.h"

#include "TestSupport.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <sys/stat.h>

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
        return QDir(QFileInfo(m_path).path()).entryList({pattern}, QDir::AllEntries);
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
    EXPECT_EQ(Mode(QFileInfo(m_path).path()), 0700);
    EXPECT_TRUE(ReadFileBytes(m_path).startsWith("<?xml"));
}

TEST_F(PlistStoreTest, EveryTypeReachesAnotherInstance)
{
    const QVariantMap values{
        {QStringLiteral("bool"), true},
        {QStringLiteral("int"), qlonglong(42)},
        {QStringLiteral("negative"), qlonglong(-9)},
        {QStringLiteral("real"), 0.25},
        {QStringLiteral("string"), QStringLiteral("%Y-%m")},
        {QStringLiteral("date"), Utc(1142019107)},
        {QStringLiteral("array"), QVariantList{QStringLiteral("a"), qlonglong(2)}},
        {QStringLiteral("dict"), QVariantMap{{QStringLiteral("in"), QVariantList{false}}}},
    };
    writeFresh(values);
    const QVariantMap back = readFresh();
    EXPECT_EQ(back, values);
    for (auto it = values.cbegin(); it != values.cend(); ++it)
        EXPECT_EQ(back.value(it.key()).typeId(), it.value().typeId()) << qPrintable(it.key());
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
    const QString strayPath = QFileInfo(m_path).path() + u'/' + stray.first();
    EXPECT_EQ(PlistPreferencesStore(strayPath).copyAppValue(u"keep"_s, kDomain), u"new"_s);
    EXPECT_EQ(readFresh().value(QStringLiteral("keep")), QVariant(u"old"_s));

    // The next writer is not held up, and clears the leftover away.
    writeFresh({{QStringLiteral("other"), true}});
    EXPECT_TRUE(filesBeside(QStringLiteral("*.tmp-*")).isEmpty());
    EXPECT_EQ(readFresh().value(QStringLiteral("keep")), QVariant(u"old"_s));
}

class DamagedStoreTest : public PlistStoreTest, public ::testing::WithParamInterface<const char *>
{};

TEST_P(DamagedStoreTest, ReadsAsDefaultsAndIsKeptAsideBeforeTheNextWrite)
{
    const QByteArray damaged(GetParam());
    QDir().mkpath(QFileInfo(m_path).path());
    ASSERT_TRUE(WriteFileBytes(m_path, damaged));

    PlistPreferencesStore store(m_path);
    EXPECT_TRUE(store.copyAllValues(kDomain).isEmpty());
    store.appSynchronize(kDomain);
    EXPECT_EQ(ReadFileBytes(m_path), damaged) << "a read must leave the file alone";

    store.setAppValue(QStringLiteral("fresh"), 1, kDomain);
    EXPECT_TRUE(store.appSynchronize(kDomain));
    EXPECT_EQ(readFresh(), (QVariantMap{{QStringLiteral("fresh"), qlonglong(1)}}));

    const QStringList aside = filesBeside(QStringLiteral("*.corrupt"));
    ASSERT_EQ(aside.size(), 1);
    EXPECT_TRUE(
        QRegularExpression(QStringLiteral(R"(^org\.horalo\.Horalo\.plist\.\d{8}T\d{6}Z\.corrupt$)"))
            .match(aside.first())
            .hasMatch())
        << qPrintable(aside.first());
    EXPECT_EQ(ReadFileBytes(QFileInfo(m_path).path() + u'/' + aside.first()), damaged);

    // Damaged again within the same second: a second copy, not an overwritten first.
    ASSERT_TRUE(WriteFileBytes(m_path, damaged));
    store.setAppValue(QStringLiteral("fresh"), 2, kDomain);
    EXPECT_TRUE(store.appSynchronize(kDomain));
    EXPECT_EQ(filesBeside(QStringLiteral("*.corrupt")).size(), 2);
}

INSTANTIATE_TEST_SUITE_P(Kinds, DamagedStoreTest,
                         ::testing::Values("<?xml version=\"1.0\"?><plist><dict><key>a</key>",
                                           "<plist><array><true/></array></plist>",
                                           "bplist00 truncated", "\x01\x02 not text"));

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
    EXPECT_TRUE(QFileInfo::exists(QFileInfo(m_path).path() + u'/' + aside.first() + u"/inside"_s));
}

TEST_F(PlistStoreTest, AnEmptyFileIsSimplyReplaced)
{
    QDir().mkpath(QFileInfo(m_path).path());
    ASSERT_TRUE(WriteFileBytes(m_path, QByteArray()));
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
    QDir().mkpath(QFileInfo(m_path).path());
    ASSERT_TRUE(WriteFileBytes(m_path, QByteArray(kBinaryPlist, sizeof kBinaryPlist - 1)));
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

TEST_F(PlistStoreTest, OtherDomainsAreNeitherReadNorWritten)
{
    writeFresh({{QStringLiteral("k"), 1}});
    PlistPreferencesStore store(m_path);
    EXPECT_FALSE(store.copyAppValue(QStringLiteral("k"), u"org.example.Other"_s).isValid());
    store.setAppValue(QStringLiteral("x"), 1, u"org.example.Other"_s);
    EXPECT_FALSE(store.appSynchronize(u"org.example.Other"_s));
    EXPECT_FALSE(readFresh().contains(QStringLiteral("x")));
}

class DefaultStorePathTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_savedConfig = qgetenv("XDG_CONFIG_HOME");
        m_hadConfig = qEnvironmentVariableIsSet("XDG_CONFIG_HOME");
        m_savedHome = qgetenv("HOME");
        qputenv("HOME", "/home/someone");
    }
    void TearDown() override
    {
        if (m_hadConfig)
            qputenv("XDG_CONFIG_HOME", m_savedConfig);
        else
            qunsetenv("XDG_CONFIG_HOME");
        qputenv("HOME", m_savedHome);
    }

    QByteArray m_savedConfig;
    QByteArray m_savedHome;
    bool m_hadConfig = false;
};

TEST_F(DefaultStorePathTest, FollowsXdgConfigHomeAndFallsBackToDotConfig)
{
    qputenv("XDG_CONFIG_HOME", "/srv/conf/");
    EXPECT_EQ(DefaultPreferencesStorePath(), u"/srv/conf/horalo/org.horalo.Horalo.plist"_s);
    qunsetenv("XDG_CONFIG_HOME");
    EXPECT_EQ(DefaultPreferencesStorePath(),
              u"/home/someone/.config/horalo/org.horalo.Horalo.plist"_s);
    qputenv("XDG_CONFIG_HOME", "");
    EXPECT_EQ(DefaultPreferencesStorePath(),
              u"/home/someone/.config/horalo/org.horalo.Horalo.plist"_s);
    qputenv("XDG_CONFIG_HOME", "relative/conf");
    EXPECT_EQ(DefaultPreferencesStorePath(),
              u"/home/someone/.config/horalo/org.horalo.Horalo.plist"_s);
}

} // namespace
