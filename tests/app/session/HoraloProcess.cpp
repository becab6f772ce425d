#include "HoraloProcess.h"

#include "SniTestSupport.h"
#include "platform/dbus/HoraloBusNames.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDeadlineTimer>

using namespace Qt::StringLiterals;

XServer::XServer()
{
    // -displayfd: the server picks a free display and tells us which on its standard output.
    m_process.start(u"Xvfb"_s, {u"-displayfd"_s, u"1"_s, u"-screen"_s, u"0"_s, u"1024x600x24"_s,
                                u"-nolisten"_s, u"tcp"_s});
    if (!m_process.waitForStarted(5000))
        return;
    QDeadlineTimer deadline(10000);
    while (!m_process.canReadLine() && !deadline.hasExpired())
        m_process.waitForReadyRead(100);
    const QByteArray number = m_process.readLine().trimmed();
    if (!number.isEmpty())
        m_display = QLatin1Char(':') + QString::fromLatin1(number);
}

XServer::~XServer()
{
    m_process.terminate();
    m_process.waitForFinished(3000);
}

QString XServer::display()
{
    static XServer server;
    return server.m_display;
}

TestUser::TestUser()
{
    for (const char *sub : {"home", "config", "run", "data"})
        QDir().mkpath(m_dir.path() + QLatin1Char('/') + QLatin1String(sub));
    QFile(m_dir.path() + u"/run"_s)
        .setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
}

QProcessEnvironment TestUser::environment(const QString &display) const
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(u"HOME"_s, m_dir.path() + u"/home"_s);
    env.insert(u"XDG_CONFIG_HOME"_s, configHome());
    env.insert(u"XDG_RUNTIME_DIR"_s, m_dir.path() + u"/run"_s);
    env.insert(u"XDG_DATA_HOME"_s, m_dir.path() + u"/data"_s);
    env.remove(u"WAYLAND_DISPLAY"_s);
    env.remove(u"SESSION_MANAGER"_s);
    if (display.isEmpty()) {
        env.remove(u"DISPLAY"_s);
        env.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    } else {
        env.insert(u"DISPLAY"_s, display);
        env.remove(u"QT_QPA_PLATFORM"_s);
    }
    return env;
}

HoraloProcess::HoraloProcess(const TestUser &user, const QString &display)
{
    m_process.setProcessEnvironment(user.environment(display));
}

HoraloProcess::~HoraloProcess()
{
    if (m_process.state() != QProcess::NotRunning) {
        m_process.terminate();
        if (!m_process.waitForFinished(5000))
            m_process.kill();
        m_process.waitForFinished(2000);
    }
}

void HoraloProcess::setEnvironmentValue(const QString &name, const QString &value)
{
    QProcessEnvironment env = m_process.processEnvironment();
    env.insert(name, value);
    m_process.setProcessEnvironment(env);
}

void HoraloProcess::start(const QStringList &arguments)
{
    m_process.start(HoraloBinary(), arguments);
    m_process.waitForStarted(5000);
}

bool HoraloProcess::run(const QStringList &arguments, int timeoutMs)
{
    start(arguments);
    return waitForExit(timeoutMs);
}

bool HoraloProcess::waitForExit(int timeoutMs)
{
    // The event loop keeps running: the application under test may call back into this
    // process (a stand-in watcher or notification server lives here).
    return WaitFor([this] { return m_process.state() == QProcess::NotRunning; }, timeoutMs);
}

QByteArray HoraloProcess::readLine(int timeoutMs)
{
    WaitFor([this] { return m_process.canReadLine(); }, timeoutMs);
    return m_process.readLine();
}

bool HoraloIsOnBus()
{
    return QDBusConnection::sessionBus().interface()->isServiceRegistered(HoraloBus::Service);
}

bool WaitForHoraloOnBus(bool present, int timeoutMs)
{
    return WaitFor([present] { return HoraloIsOnBus() == present; }, timeoutMs);
}

QDBusMessage CallHoralo(const QString &method, const QVariantList &arguments)
{
    QDBusMessage call = QDBusMessage::createMethodCall(HoraloBus::Service, HoraloBus::ObjectPath,
                                                       HoraloBus::Interface, method);
    call.setArguments(arguments);
    return QDBusConnection::sessionBus().call(call, QDBus::BlockWithGui, 10000);
}

QByteArray RunXTool(const QString &display, const QString &program, const QStringList &arguments)
{
    QProcess tool;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(u"DISPLAY"_s, display);
    tool.setProcessEnvironment(env);
    tool.start(program, arguments);
    // An X client answers from its own event loop; ours need not run.
    tool.waitForFinished(5000);
    return tool.readAllStandardOutput();
}

QByteArray ReadClipboard(const QString &display)
{
    return RunXTool(display, u"xclip"_s,
                    {u"-o"_s, u"-selection"_s, u"clipboard"_s, u"-target"_s, u"UTF8_STRING"_s});
}

QString HoraloBinary()
{
    return QStringLiteral(HORALO_BINARY);
}

void DefaultsWrite(const TestUser &user, const QStringList &arguments)
{
    HoraloProcess defaults(user);
    ASSERT_TRUE(defaults.run(QStringList{u"defaults"_s, u"write"_s} + arguments));
    ASSERT_EQ(defaults.exitCode(), 0) << defaults.readStderr().constData();
}
