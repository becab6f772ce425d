#pragma once

// The real application, run as a user runs it, on the test's private session bus: each run
// with a home and configuration of its own, and, when a clipboard is needed, on a private X
// server.

#include "SniTestSupport.h"

#include <QDBusMessage>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

// A virtual X server of our own for the whole test run, on a display number it picks itself.
class XServer
{
public:
    // Starts it on first use; an empty display when Xvfb cannot start.
    static QString display();

private:
    XServer();
    ~XServer();
    QProcess m_process;
    QString m_display;
};

// One user: a home, configuration and runtime directory of its own.
class TestUser
{
public:
    TestUser();
    QString configHome() const { return m_dir.path() + QStringLiteral("/config"); }
    QString settingsFile() const
    {
        return configHome() + QStringLiteral("/horalo/org.horalo.Horalo.plist");
    }
    // The environment of a program this user starts: on X (a display) or offscreen (empty).
    QProcessEnvironment environment(const QString &display) const;

private:
    QTemporaryDir m_dir;
};

class HoraloProcess
{
public:
    HoraloProcess(const TestUser &user, const QString &display = XServer::display());
    ~HoraloProcess();

    void setEnvironmentValue(const QString &name, const QString &value);
    void start(const QStringList &arguments = {});
    // Runs to the end (a command); false when it does not end within the time.
    bool run(const QStringList &arguments, int timeoutMs = 15000);
    bool waitForExit(int timeoutMs = 15000);
    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }
    int exitCode() const { return m_process.exitCode(); }
    QByteArray readStdout() { return m_process.readAllStandardOutput(); }
    QByteArray readStderr() { return m_process.readAllStandardError(); }
    // Reads one line of output, waiting at most timeoutMs; empty when none came.
    QByteArray readLine(int timeoutMs = 5000);
    QProcess &process() { return m_process; }

private:
    QProcess m_process;
};

// Whether the running application owns its name on the session bus.
bool HoraloIsOnBus();
// Waits until it does (or no longer does).
bool WaitForHoraloOnBus(bool present = true, int timeoutMs = 15000);
// A call of the application's interface on the session bus, blocking with the event loop
// running.
QDBusMessage CallHoralo(const QString &method, const QVariantList &arguments = {});
// Runs an X client (xdotool, xclip) on the display to its end; what it printed.
QByteArray RunXTool(const QString &display, const QString &program, const QStringList &arguments);
// What another X client reads from the clipboard: the UTF-8 text target, exactly.
QByteArray ReadClipboard(const QString &display);
// The path of the application built with the tests.
QString HoraloBinary();

// `horalo defaults write ARGUMENTS` as the user, which must succeed.
void DefaultsWrite(const TestUser &user, const QStringList &arguments);

// One Horalo running on the private X server, its item shown by a stand-in panel.
class RunningHoralo : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_FALSE(display.isEmpty()) << "Xvfb could not start";
        ASSERT_FALSE(HoraloIsOnBus()) << "a Horalo from an earlier test still runs";
        prepare();
        horalo.start();
        ASSERT_TRUE(WaitForHoraloOnBus()) << horalo.readStderr().constData();
        ASSERT_TRUE(WaitFor([this] { return watcher.registeredItems().size() == 1; }, 10000));
    }
    void TearDown() override
    {
        horalo.process().terminate();
        horalo.waitForExit();
        WaitForHoraloOnBus(false);
    }
    // Settings written before the start.
    virtual void prepare() {}

    void defaultsWrite(const QStringList &arguments) { DefaultsWrite(user, arguments); }

    QString display = XServer::display();
    StandInWatcher watcher;
    TestUser user;
    HoraloProcess horalo{user, display};
};
