#include "platform/qt/session/DBusSessionService.h"

#include "horalo_session_adaptor.h"
#include "platform/dbus/HoraloBusNames.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QStandardPaths>

namespace {

const int kAskTimeoutMs = 5000;

QString DefaultLockDirectory()
{
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!runtime.isEmpty() && QFileInfo(runtime).isDir())
        return runtime + QStringLiteral("/horalo");
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/horalo");
}

} // namespace

DBusSessionService::DBusSessionService(const QDBusConnection &bus, const QString &lockDirectory)
    : m_bus(bus), m_lockDirectory(lockDirectory.isEmpty() ? DefaultLockDirectory() : lockDirectory)
{
    new HoraloSessionAdaptor(this);
}

DBusSessionService::~DBusSessionService()
{
    if (m_ownsName) {
        // Releasing the name is a call the bus answers in order, so every reply and signal sent
        // before it (the answer to Quit, say) has left when the process ends; and a new
        // instance can take the name at once.
        m_bus.interface()->unregisterService(HoraloBus::Service);
    }
    if (m_exported)
        m_bus.unregisterObject(HoraloBus::ObjectPath);
}

QString DBusSessionService::lockFilePath() const
{
    return m_lockDirectory + QStringLiteral("/instance.lock");
}

SessionService::Claim DBusSessionService::claim()
{
    if (m_bus.isConnected()) {
        // The object comes first, so that a call arriving the moment the name is ours finds it.
        m_exported =
            m_bus.registerObject(HoraloBus::ObjectPath, this, QDBusConnection::ExportAdaptors);
        if (m_exported)
            return claimBusName();
    }
    return claimLockFile();
}

SessionService::Claim DBusSessionService::claimBusName()
{
    const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply =
        m_bus.interface()->registerService(HoraloBus::Service,
                                           QDBusConnectionInterface::DontQueueService,
                                           QDBusConnectionInterface::DontAllowReplacement);
    if (reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered) {
        m_ownsName = true;
        return Claim::Claimed;
    }
    m_bus.unregisterObject(HoraloBus::ObjectPath);
    m_exported = false;
    if (reply.isValid())
        return Claim::HeldByAnother;
    // A bus that refuses to tell (a policy, a broken daemon): the lock file decides.
    return claimLockFile();
}

SessionService::Claim DBusSessionService::claimLockFile()
{
    QDir().mkpath(m_lockDirectory);
    m_lock = std::make_unique<QLockFile>(lockFilePath());
    // Only a lock whose process has died is stale, however old it is.
    m_lock->setStaleLockTime(0);
    if (m_lock->tryLock(0))
        return Claim::Claimed;
    if (m_lock->error() == QLockFile::LockFailedError)
        return Claim::HeldByAnother;
    // A lock that cannot be written keeps nobody from running.
    return Claim::Claimed;
}

bool DBusSessionService::askHolderToShowPreferences()
{
    if (!m_bus.isConnected())
        return false;
    const QDBusMessage call =
        QDBusMessage::createMethodCall(HoraloBus::Service, HoraloBus::ObjectPath,
                                       HoraloBus::Interface, QStringLiteral("ShowPreferences"));
    const QDBusMessage reply = m_bus.call(call, QDBus::Block, kAskTimeoutMs);
    return reply.type() == QDBusMessage::ReplyMessage;
}

void DBusSessionService::setRequests(SessionRequests *requests)
{
    m_requests = requests;
    if (m_requests && m_preferencesRequested) {
        m_preferencesRequested = false;
        m_requests->showPreferences();
    }
}

void DBusSessionService::titleChanged(const QString &title)
{
    if (!m_ownsName)
        return;
    Q_EMIT TitleChanged(title);
    QDBusMessage changed = QDBusMessage::createSignal(
        HoraloBus::ObjectPath, QStringLiteral("org.freedesktop.DBus.Properties"),
        QStringLiteral("PropertiesChanged"));
    changed << HoraloBus::Interface << QVariantMap{{QStringLiteral("Title"), title}}
            << QStringList();
    m_bus.send(changed);
}

bool DBusSessionService::answering()
{
    if (m_requests)
        return true;
    sendErrorReply(QDBusError::Failed, QStringLiteral("Horalo is starting; try again"));
    return false;
}

QString DBusSessionService::title() const
{
    return m_requests ? m_requests->title() : QString();
}

QString DBusSessionService::pickedMoment() const
{
    if (!m_requests)
        return {};
    const std::optional<AbsoluteTime> moment = m_requests->pickedMoment();
    if (!moment)
        return {};
    return DateFromAbsoluteTime(*moment).toString(Qt::ISODate);
}

void DBusSessionService::ShowMenu(int x, int y)
{
    if (!answering())
        return;
    m_requests->showMenu(x < 0 || y < 0 ? std::nullopt : std::optional<QPoint>(QPoint(x, y)));
}

QString DBusSessionService::Copy(const QString &name)
{
    if (!answering())
        return {};
    const SessionRequests::CopyResult result = m_requests->copy(name);
    switch (result.status) {
    case SessionRequests::CopyStatus::Copied:
        return QString::fromUtf8(result.text);
    case SessionRequests::CopyStatus::NotRendered:
        sendErrorReply(HoraloBus::NotRenderedError,
                       QStringLiteral("the text of \"%1\" cannot be produced now; nothing was "
                                      "copied")
                           .arg(name));
        return {};
    case SessionRequests::CopyStatus::UnknownFormat:
        sendErrorReply(HoraloBus::UnknownFormatError,
                       QStringLiteral("no format is named \"%1\" (a menu format name such as "
                                      "\"Numerical Date\", or custom:FORMAT)")
                           .arg(name));
        return {};
    }
    return {};
}

void DBusSessionService::ShowChooser()
{
    if (answering())
        m_requests->showChooser();
}

void DBusSessionService::ShowPreferences()
{
    if (m_requests)
        m_requests->showPreferences();
    else
        m_preferencesRequested = true;
}

void DBusSessionService::Quit()
{
    if (!answering())
        return;
    // The answer goes out first; the application ends once this call has been handled.
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (m_requests)
                m_requests->quit();
        },
        Qt::QueuedConnection);
}
