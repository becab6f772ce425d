// The watch of the settings file: what other writers do on disk is reported once, what our own
// store writes is not.

#include "platform/store/PlistPreferencesStoreWatcher.h"

#include "TestSupport.h"
#include "platform/store/PlistPreferencesStore.h"

#include <QDir>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <cstdio>

namespace {

const QString kDomain = AppIdentifier;

class StoreWatcherTest : public ::testing::Test
{
protected:
    void SetUp() override { TestApplication(); }

    // Writes as another process would, through a store of its own.
    void writeElsewhere(const QString &key, const QVariant &value)
    {
        PlistPreferencesStore other(m_path);
        other.setAppValue(key, value, kDomain);
        ASSERT_TRUE(other.appSynchronize(kDomain));
    }

    void startWatching()
    {
        m_watcher = std::make_unique<PlistPreferencesStoreWatcher>(m_store);
        m_watcher->addObserver([this] { ++m_reports; });
    }

    // Long enough for the kernel's notice of a write to reach the event loop.
    bool reportsReach(int count)
    {
        return ProcessEventsUntil([&] { return m_reports >= count; });
    }
    void settle()
    {
        ProcessEventsUntil([] { return false; }, 300);
    }

    QTemporaryDir m_dir = ScratchDirectory();
    QString m_path = m_dir.path() + QStringLiteral("/config/horalo/org.horalo.Horalo.plist");
    PlistPreferencesStore m_store{m_path};
    std::unique_ptr<PlistPreferencesStoreWatcher> m_watcher;
    int m_reports = 0;
};

TEST_F(StoreWatcherTest, AnotherWriterIsReportedOnceAndOurOwnWritesNever)
{
    startWatching(); // before the directory exists: the first write creates it
    writeElsewhere(QStringLiteral("IncludeDateOnlyItems"), true);
    ASSERT_TRUE(reportsReach(1));
    settle();
    EXPECT_EQ(m_reports, 1) << "one write, one report";

    m_store.setAppValue(QStringLiteral("UseSymbolicNames"), true, kDomain);
    ASSERT_TRUE(m_store.appSynchronize(kDomain));
    settle();
    EXPECT_EQ(m_reports, 1) << "our own write";

    // checkNow() reports a change before the event loop does, and only once.
    writeElsewhere(QStringLiteral("IncludeTimeOnlyItems"), true);
    m_watcher->checkNow();
    EXPECT_EQ(m_reports, 2);
    settle();
    EXPECT_EQ(m_reports, 2);
}

TEST_F(StoreWatcherTest, FilesRenamedIntoPlaceEditedInPlaceOrRemovedAreSeen)
{
    writeElsewhere(QStringLiteral("IncludeDateOnlyItems"), true);
    startWatching();

    // An editor's save: a new file renamed over the old one.
    const QString saved = m_path + QStringLiteral(".editor-save");
    ASSERT_TRUE(WriteFileBytes(saved, R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict><key>IncludeDateOnlyItems</key><false/></dict></plist>
)"));
    ASSERT_EQ(
        std::rename(QFile::encodeName(saved).constData(), QFile::encodeName(m_path).constData()),
        0);
    ASSERT_TRUE(reportsReach(1));
    ASSERT_TRUE(m_store.appSynchronize(kDomain));
    EXPECT_EQ(m_store.copyAppValue(QStringLiteral("IncludeDateOnlyItems"), kDomain),
              QVariant(false));

    // A write into the same file, which a watch of the directory alone would miss.
    QFile file(m_path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict/></plist>
)");
    file.close();
    EXPECT_TRUE(reportsReach(2));

    ASSERT_TRUE(QFile::remove(m_path));
    EXPECT_TRUE(reportsReach(3));
}

TEST_F(StoreWatcherTest, AStoreThatIsALinkIsFollowedIntoItsTargetsDirectory)
{
    // As dotfile managers keep it: the settings file is a link into a directory of their own,
    // where writers replace the target by renames the link's directory never sees.
    const QString dotfiles = m_dir.path() + QStringLiteral("/dotfiles");
    ASSERT_TRUE(QDir().mkpath(dotfiles));
    ASSERT_TRUE(QDir().mkpath(QFileInfo(m_path).absolutePath()));
    const QString target = dotfiles + QStringLiteral("/horalo.plist");
    ASSERT_TRUE(WriteFileBytes(target, R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict/></plist>
)"));
    ASSERT_TRUE(QFile::link(target, m_path));
    startWatching();

    for (int write = 1; write <= 3; ++write) {
        writeElsewhere(QStringLiteral("IncludeDateOnlyItems"), write % 2 == 1);
        ASSERT_TRUE(reportsReach(write)) << "write " << write;
        ASSERT_TRUE(QFileInfo(m_path).isSymLink());
    }
    settle();
    EXPECT_EQ(m_reports, 3);
}

} // namespace
