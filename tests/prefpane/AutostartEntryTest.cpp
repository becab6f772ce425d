// The autostart entry: the file the session manager reads, written and removed, its switches
// read back, its Exec line quoted, and failures that leave what was there.

#include "prefpane/AutostartEntry.h"

#include "platform/TestSupport.h"

#include <QFileInfo>

#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;

class AutostartEntryTest : public ::testing::Test
{
protected:
    QString configHome() const { return m_dir.path() + u"/config"_s; }
    QString entryPath() const { return configHome() + u"/autostart/org.horalo.Horalo.desktop"_s; }

    QTemporaryDir m_dir = ScratchDirectory();
    AutostartEntry entry{configHome(), u"horalo"_s};
    QString error;
};

TEST_F(AutostartEntryTest, EnablingWritesAnEntryTheSessionStartsAndDisablingRemovesIt)
{
    ASSERT_TRUE(m_dir.isValid());
    EXPECT_EQ(entry.filePath(), entryPath());
    EXPECT_FALSE(entry.isEnabled());

    ASSERT_TRUE(entry.setEnabled(true, &error)) << error.toStdString();
    EXPECT_TRUE(entry.isEnabled());
    const QByteArray text = ReadFileBytes(entryPath());
    EXPECT_TRUE(text.startsWith("[Desktop Entry]\n"));
    for (const char *line : {"Type=Application\n", "Exec=horalo\n",
                             "X-GNOME-Autostart-enabled=true\n", "X-KDE-autostart-after=panel\n"})
        EXPECT_TRUE(text.contains(line)) << line;
    // Enabling twice rewrites the same entry rather than failing.
    ASSERT_TRUE(entry.setEnabled(true, &error));
    EXPECT_EQ(ReadFileBytes(entryPath()), text);

    ASSERT_TRUE(entry.setEnabled(false, &error));
    EXPECT_FALSE(QFile::exists(entryPath()));
    EXPECT_FALSE(entry.isEnabled());
    EXPECT_TRUE(entry.setEnabled(false, &error)) << "nothing to remove is no failure";

    // Entries that the desktop's start-up dialog switched off count as off; only the main
    // group counts.
    const struct
    {
        const char *text;
        bool enabled;
    } written[] = {
        {"[Desktop Entry]\nType=Application\nExec=horalo\nHidden=true\n", false},
        {"[Desktop Entry]\nExec=horalo\nX-GNOME-Autostart-enabled=false\n", false},
        {"[Desktop Entry]\nExec=horalo\n\n[Desktop Action x]\nHidden=true\n", true},
        {"[Desktop Entry]\nExec=horalo\nHidden = false\n", true},
    };
    QDir().mkpath(QFileInfo(entryPath()).path());
    for (const auto &w : written) {
        ASSERT_TRUE(WriteFileBytes(entryPath(), w.text));
        EXPECT_EQ(entry.isEnabled(), w.enabled) << w.text;
    }
}

TEST_F(AutostartEntryTest, ExecQuotesWhatTheLauncherWouldSplitOrExpand)
{
    // Quoted, then the string escape doubles every backslash.
    const std::pair<QString, QString> cases[] = {
        {u"/usr/bin/horalo"_s, u"/usr/bin/horalo"_s},
        {u"/home/a b/horalo"_s, u"\"/home/a b/horalo\""_s},
        {u"/opt/$HOME/x\"y"_s, u"\"/opt/\\\\$HOME/x\\\\\"y\""_s},
        {u"/opt/100%/horalo"_s, u"\"/opt/100%%/horalo\""_s},
    };
    for (const auto &[program, argument] : cases)
        EXPECT_EQ(AutostartEntry::ExecArgument(program), argument);
    EXPECT_TRUE(AutostartEntry(configHome(), u"/home/a b/horalo"_s)
                    .contents()
                    .contains(u"\nExec=\"/home/a b/horalo\"\n"_s));
}

TEST_F(AutostartEntryTest, FailuresSayWhyAndLeaveWhatWasThere)
{
    // A file where the autostart folder should be: the folder cannot be made.
    const QString folder = configHome() + u"/autostart"_s;
    QDir().mkpath(configHome());
    ASSERT_TRUE(WriteFileBytes(folder, "not a folder"));
    EXPECT_FALSE(entry.setEnabled(true, &error));
    EXPECT_TRUE(error.contains(folder)) << error.toStdString();
    EXPECT_FALSE(entry.isEnabled());
    EXPECT_EQ(ReadFileBytes(folder), QByteArrayLiteral("not a folder"));
    ASSERT_TRUE(QFile::remove(folder));

    // A folder where the entry should be: it cannot be removed, and stays.
    QDir().mkpath(entryPath() + u"/inside"_s);
    error.clear();
    EXPECT_FALSE(entry.setEnabled(false, &error));
    EXPECT_TRUE(error.contains(entryPath())) << error.toStdString();
    EXPECT_TRUE(QFileInfo(entryPath()).isDir());
}

TEST_F(AutostartEntryTest, TheEntryStartsHoraloNotTheDesktopProgramBehindIt)
{
    const auto executable = [this](const QString &relative) {
        const QString path = m_dir.path() + relative;
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.setPermissions(file.permissions() | QFile::ExeOwner);
        return path;
    };
    // Installed: bin/horalo and libexec/horalo/horalo-desktop; a build tree: side by side;
    // without horalo beside it, the desktop program itself.
    const QString bin = executable(u"/usr/bin/horalo"_s);
    const QString libexec = executable(u"/usr/libexec/horalo/horalo-desktop"_s);
    const QString built = executable(u"/build/horalo"_s);
    executable(u"/build/horalo-desktop"_s);
    const QString alone = executable(u"/alone/horalo-desktop"_s);
    EXPECT_EQ(AutostartEntry::LaunchCommand(libexec), bin);
    EXPECT_EQ(AutostartEntry::LaunchCommand(m_dir.path() + u"/build/horalo-desktop"_s), built);
    EXPECT_EQ(AutostartEntry::LaunchCommand(alone), alone);
    // Found on PATH as that very file: the bare name.
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(QFileInfo(bin).path()));
    EXPECT_EQ(AutostartEntry::LaunchCommand(libexec), u"horalo"_s);
    EXPECT_EQ(AutostartEntry::LaunchCommand(built), built);
    qputenv("PATH", path);
}

} // namespace
