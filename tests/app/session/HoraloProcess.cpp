#include "HoraloProcess.h"

#include "SniTestSupport.h"
#include "platform/dbus/HoraloBusNames.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDeadlineTimer>

XServer::XServer()
{
    // -displayfd: the server picks a free display and tells us which on its standard output.
    m_process.start(QStringLiteral("Xvfb"),
                    {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                     QStringLiteral("0"), QStringLiteral("1024x600x24"),
                     QStringLiteral("-nolisten"), QStringLiteral("tcp")});
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
    QFile(m_dir.path() + QStringLiteral("/run"))
        .setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
}

QProcessEnvironment TestUser::environment(const QString &display) const
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("HOME"), m_dir.path() + QStringLiteral("/home"));
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), configHome());
    env.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_dir.path() + QStringLiteral("/run"));
    env.insert(QStringLiteral("XDG_DATA_HOME"), m_dir.path() + QStringLiteral("/data"));
    env.remove(QStringLiteral("WAYLAND_DISPLAY"));
    env.remove(QStringLiteral("SESSION_MANAGER"));
    if (display.isEmpty()) {
        env.remove(QStringLiteral("DISPLAY"));
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    } else {
        env.insert(QStringLiteral("DISPLAY"), display);
        env.remove(QStringLiteral("QT_QPA_PLATFORM"));
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
    env.insert(QStringLiteral("DISPLAY"), display);
    tool.setProcessEnvironment(env);
    tool.start(program, arguments);
    // An X client answers from its own event loop; ours need not run.
    tool.waitForFinished(5000);
    return tool.readAllStandardOutput();
}

QByteArray ReadClipboard(const QString &display)
{
    return RunXTool(display, QStringLiteral("xclip"),
                    {QStringLiteral("-o"), QStringLiteral("-selection"),
                     QStringLiteral("clipboard"), QStringLiteral("-target"),
                     QStringLiteral("UTF8_STRING")});
}

QString HoraloBinary()
{
    return QStringLiteral(HORALO_BINARY);
}

void DefaultsWrite(const TestUser &user, const QStringList &arguments)
{
    HoraloProcess defaults(user);
    ASSERT_TRUE(
        defaults.run(QStringList{QStringLiteral("defaults"), QStringLiteral("write")} + arguments));
    ASSERT_EQ(defaults.exitCode(), 0) << defaults.readStderr().constData();
}
