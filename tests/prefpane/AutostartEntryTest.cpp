// The autostart entry: the file the session manager reads, written and removed, its switches
// read back, its Exec line quoted, and failures that leave what was there.

#include "prefpane/AutostartEntry.h"

#include "support/QtPrinters.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class AutostartEntryTest : public ::testing::Test
{
protected:
    static QString tmp()
    {
        const QString root = qEnvironmentVariable("HORALO_TEST_TMP", QDir::tempPath());
        QDir().mkpath(root);
        return root;
    }
    QString configHome() const { return m_dir.path() + QStringLiteral("/config"); }
    QString entryPath() const
    {
        return configHome() + QStringLiteral("/autostart/org.horalo.Horalo.desktop");
    }
    QByteArray entryText() const
    {
        QFile file(entryPath());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void writeEntry(const QByteArray &text) const
    {
        QDir().mkpath(configHome() + QStringLiteral("/autostart"));
        QFile file(entryPath());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    QTemporaryDir m_dir{tmp() + QStringLiteral("/autostart-XXXXXX")};
};

TEST_F(AutostartEntryTest, EnablingWritesAnEntryTheSessionStartsAndDisablingRemovesIt)
{
    ASSERT_TRUE(m_dir.isValid());
    AutostartEntry entry(configHome(), QStringLiteral("horalo"));
    EXPECT_EQ(entry.filePath(), entryPath());
    EXPECT_FALSE(entry.isEnabled());

    QString error;
    ASSERT_TRUE(entry.setEnabled(true, &error)) << error.toStdString();
    EXPECT_TRUE(entry.isEnabled());
    const QByteArray text = entryText();
    EXPECT_TRUE(text.startsWith("[Desktop Entry]\n"));
    for (const char *line : {"Type=Application\n", "Exec=horalo\n",
                             "X-GNOME-Autostart-enabled=true\n", "X-KDE-autostart-after=panel\n"})
        EXPECT_TRUE(text.contains(line)) << line;

    // Enabling twice rewrites the same entry rather than failing.
    ASSERT_TRUE(entry.setEnabled(true, &error));
    EXPECT_EQ(entryText(), text);

    ASSERT_TRUE(entry.setEnabled(false, &error));
    EXPECT_FALSE(QFile::exists(entryPath()));
    EXPECT_FALSE(entry.isEnabled());
    // Nothing to remove is no failure.
    EXPECT_TRUE(entry.setEnabled(false, &error));
}

TEST_F(AutostartEntryTest, EntriesSwitchedOffByTheDesktopCountAsOff)
{
    AutostartEntry entry(configHome(), QStringLiteral("horalo"));
    writeEntry("[Desktop Entry]\nType=Application\nExec=horalo\nHidden=true\n");
    EXPECT_FALSE(entry.isEnabled());
    writeEntry("[Desktop Entry]\nExec=horalo\nX-GNOME-Autostart-enabled=false\n");
    EXPECT_FALSE(entry.isEnabled());
    // Only the main group counts; an action's Hidden key says nothing about starting.
    writeEntry("[Desktop Entry]\nExec=horalo\n\n[Desktop Action x]\nHidden=true\n");
    EXPECT_TRUE(entry.isEnabled());
    writeEntry("[Desktop Entry]\nExec=horalo\nHidden = false\n");
    EXPECT_TRUE(entry.isEnabled());
}

TEST_F(AutostartEntryTest, ExecQuotesWhatTheLauncherWouldSplitOrExpand)
{
    EXPECT_EQ(AutostartEntry::ExecArgument(QStringLiteral("/usr/bin/horalo")),
              QStringLiteral("/usr/bin/horalo"));
    // Quoted, then the string escape doubles every backslash.
    EXPECT_EQ(AutostartEntry::ExecArgument(QStringLiteral("/home/a b/horalo")),
              QStringLiteral("\"/home/a b/horalo\""));
    EXPECT_EQ(AutostartEntry::ExecArgument(QStringLiteral("/opt/$HOME/x\"y")),
              QStringLiteral("\"/opt/\\\\$HOME/x\\\\\"y\""));
    EXPECT_EQ(AutostartEntry::ExecArgument(QStringLiteral("/opt/100%/horalo")),
              QStringLiteral("\"/opt/100%%/horalo\""));

    AutostartEntry entry(configHome(), QStringLiteral("/home/a b/horalo"));
    EXPECT_TRUE(entry.contents().contains(QStringLiteral("\nExec=\"/home/a b/horalo\"\n")));
}

TEST_F(AutostartEntryTest, FailuresSayWhyAndLeaveWhatWasThere)
{
    // A file where the autostart folder should be: the folder cannot be made.
    QDir().mkpath(configHome());
    {
        QFile blocker(configHome() + QStringLiteral("/autostart"));
        ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
        blocker.write("not a folder");
    }
    AutostartEntry entry(configHome(), QStringLiteral("horalo"));
    QString error;
    EXPECT_FALSE(entry.setEnabled(true, &error));
    EXPECT_TRUE(error.contains(configHome() + QStringLiteral("/autostart"))) << error.toStdString();
    EXPECT_FALSE(entry.isEnabled());
    QFile blocker(configHome() + QStringLiteral("/autostart"));
    ASSERT_TRUE(blocker.open(QIODevice::ReadOnly));
    EXPECT_EQ(blocker.readAll(), QByteArrayLiteral("not a folder"));
    blocker.close();
    ASSERT_TRUE(QFile::remove(blocker.fileName()));

    // A folder where the entry should be: it cannot be removed, and stays.
    QDir().mkpath(entryPath() + QStringLiteral("/inside"));
    error.clear();
    EXPECT_FALSE(entry.setEnabled(false, &error));
    EXPECT_TRUE(error.contains(entryPath())) << error.toStdString();
    EXPECT_TRUE(QFileInfo(entryPath()).isDir());
}

TEST_F(AutostartEntryTest, TheEntryStartsHoraloNotTheDesktopProgramBehindIt)
{
    const auto makeExecutable = [](const QString &path) {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.setPermissions(file.permissions() | QFile::ExeOwner);
    };
    // Installed: bin/horalo and libexec/horalo/horalo-desktop.
    const QString installed = m_dir.path() + QStringLiteral("/usr");
    makeExecutable(installed + QStringLiteral("/bin/horalo"));
    makeExecutable(installed + QStringLiteral("/libexec/horalo/horalo-desktop"));
    EXPECT_EQ(
        AutostartEntry::LaunchCommand(installed + QStringLiteral("/libexec/horalo/horalo-desktop")),
        installed + QStringLiteral("/bin/horalo"));
    // A build tree: the two side by side.
    const QString built = m_dir.path() + QStringLiteral("/build");
    makeExecutable(built + QStringLiteral("/horalo"));
    makeExecutable(built + QStringLiteral("/horalo-desktop"));
    EXPECT_EQ(AutostartEntry::LaunchCommand(built + QStringLiteral("/horalo-desktop")),
              built + QStringLiteral("/horalo"));
    // Without horalo beside it, the desktop program itself.
    const QString alone = m_dir.path() + QStringLiteral("/alone/horalo-desktop");
    makeExecutable(alone);
    EXPECT_EQ(AutostartEntry::LaunchCommand(alone), alone);
    // Found on PATH as that very file: the bare name.
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(installed + QStringLiteral("/bin")));
    EXPECT_EQ(
        AutostartEntry::LaunchCommand(installed + QStringLiteral("/libexec/horalo/horalo-desktop")),
        QStringLiteral("horalo"));
    EXPECT_EQ(AutostartEntry::LaunchCommand(built + QStringLiteral("/horalo")),
              built + QStringLiteral("/horalo"));
    qputenv("PATH", path);
}

} // namespace
