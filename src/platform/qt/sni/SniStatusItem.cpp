#include "platform/qt/sni/SniStatusItem.h"

#include "platform/qt/IconCache.h"
#include "platform/qt/OpenMenuTracker.h"
#include "platform/qt/QMenuHelpers.h"
#include "platform/qt/sni/DBusMenuExporter.h"
#include "platform/qt/sni/StatusNotifierItemAdaptor.h"

#include <QCoreApplication>
#include <QCursor>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QSaveFile>
#include <QStandardPaths>
#include <QtEndian>

namespace {

int g_nextItemNumber = 1;

// Where the icon's theme name can be found when the icon is installed: the "icons" directory
// holding hicolor, or empty when it is not installed.
QString InstalledIconThemePath(const QString &themeName)
{
    const QStringList candidates{
        QStringLiteral("icons/hicolor/scalable/apps/%1.svg").arg(themeName),
        QStringLiteral("icons/hicolor/48x48/apps/%1.png").arg(themeName),
    };
    for (const QString &candidate : candidates) {
        const QString found =
            QStandardPaths::locate(QStandardPaths::GenericDataLocation, candidate);
        if (!found.isEmpty())
            return found.left(found.size() - candidate.size()) + QStringLiteral("icons");
    }
    return {};
}

// Hosts that only read IconName need a file when the icon is not installed (running from the
// build tree): the largest image, written once per name to the session's runtime directory.
QString WriteIconFile(const QIcon &icon, const QString &baseName)
{
    const QList<QSize> sizes = icon.availableSizes();
    if (sizes.isEmpty())
        return {};
    QSize largest = sizes.first();
    for (const QSize &size : sizes) {
        if (size.width() > largest.width())
            largest = size;
    }
    QString directory = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (directory.isEmpty() || !QFileInfo(directory).isDir())
        directory = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    directory += QStringLiteral("/horalo");
    if (!QDir().mkpath(directory))
        return {};
    const QString path = directory + QLatin1Char('/') + baseName + QStringLiteral(".png");
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !icon.pixmap(largest).save(&file, "PNG") ||
        !file.commit())
        return {};
    return path;
}

SniIconPixmapList IconPixmaps(const QIcon &icon)
{
    SniIconPixmapList result;
    for (const QSize &size : icon.availableSizes()) {
        const QImage image = icon.pixmap(size).toImage().convertToFormat(QImage::Format_ARGB32);
        SniIconPixmap pixmap{image.width(), image.height(), {}};
        pixmap.pixels.resize(qsizetype(image.width()) * image.height() * 4);
        uchar *out = reinterpret_cast<uchar *>(pixmap.pixels.data());
        for (int y = 0; y < image.height(); ++y) {
            const auto *line = reinterpret_cast<const quint32 *>(image.constScanLine(y));
            for (int x = 0; x < image.width(); ++x, out += 4)
                qToBigEndian(line[x], out);
        }
        result.append(pixmap);
    }
    return result;
}

} // namespace

SniStatusItem::SniStatusItem(const QDBusConnection &connection, QObject *parent)
    : QObject(parent), m_connection(connection),
      m_serviceName(QStringLiteral("org.kde.StatusNotifierItem-%1-%2")
                        .arg(QCoreApplication::applicationPid())
                        .arg(g_nextItemNumber++)),
      m_adaptor(nullptr), m_exporter(nullptr), m_watcherWatcher(this)
{
    RegisterSniTypes();
    m_adaptor = new StatusNotifierItemAdaptor(this);
    m_exporter = new DBusMenuExporter(m_connection, menuPath(), this);
    updateIcon();
    if (!m_connection.isConnected())
        return;
    m_exported = m_exporter->isExported() &&
                 m_connection.registerObject(itemPath(), this, QDBusConnection::ExportAdaptors) &&
                 m_connection.registerService(m_serviceName);

    m_watcherWatcher.setConnection(m_connection);
    m_watcherWatcher.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    m_watcherWatcher.addWatchedService(watcherService());
    connect(&m_watcherWatcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            &SniStatusItem::watcherOwnerChanged);
    if (m_exported)
        registerWithWatcher(m_connection.interface()->serviceOwner(watcherService()));
}

SniStatusItem::~SniStatusItem()
{
    if (!m_connection.isConnected())
        return;
    // Dropping the name is what tells the hosts that the item is gone.
    m_connection.unregisterService(m_serviceName);
    m_connection.unregisterObject(itemPath());
}

void SniStatusItem::registerWithWatcher(const QString &owner)
{
    // One registration per watcher: a watcher that is asked twice may show the item twice.
    if (owner.isEmpty() || owner == m_registeringWith)
        return;
    m_registeringWith = owner;
    m_registered = false;
    QDBusMessage call = QDBusMessage::createMethodCall(
        owner, QStringLiteral("/StatusNotifierWatcher"), watcherService(),
        QStringLiteral("RegisterStatusNotifierItem"));
    call << m_serviceName;
    auto *pending = new QDBusPendingCallWatcher(m_connection.asyncCall(call), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this,
            [this, owner](QDBusPendingCallWatcher *finished) {
                finished->deleteLater();
                if (owner != m_registeringWith)
                    return; // that watcher has gone since
                if (finished->isError()) {
                    m_registeringWith.clear();
                    Q_EMIT registrationFailed();
                    return;
                }
                m_registered = true;
                Q_EMIT registered();
            });
}

void SniStatusItem::watcherOwnerChanged(const QString &, const QString &, const QString &newOwner)
{
    if (newOwner.isEmpty()) {
        // The panel went away; a new one registers the item again when it takes the name.
        m_registeringWith.clear();
        m_registered = false;
        return;
    }
    registerWithWatcher(newOwner);
}

void SniStatusItem::setTitle(const QString &title)
{
    // The title is set every second, mostly unchanged: only a change is worth a signal.
    if (title == m_title)
        return;
    m_title = title;
    Q_EMIT m_adaptor->XAyatanaNewLabel(m_title, m_title);
    Q_EMIT m_adaptor->NewToolTip();
}

void SniStatusItem::setImage(const QString &imageName)
{
    if (imageName == m_imageName)
        return;
    m_imageName = imageName;
    updateIcon();
    Q_EMIT m_adaptor->NewIcon();
}

void SniStatusItem::updateIcon()
{
    // Without an image the item still needs an icon: hosts that draw no label would show
    // nothing to click, so "no image" shows the application's icon.
    const QString shown = m_imageName.isEmpty() ? QStringLiteral("Horalo.tif") : m_imageName;
    const QIcon icon = LoadIconResource(shown);
    const QString themeName = QFileInfo(shown).completeBaseName().toLower();
    m_iconPixmaps = IconPixmaps(icon);
    m_iconThemePath = InstalledIconThemePath(themeName);
    m_iconName = m_iconThemePath.isEmpty() ? WriteIconFile(icon, themeName) : themeName;
    if (m_iconName.isEmpty())
        m_iconName = themeName;
}

void SniStatusItem::setMenu(Menu *menu)
{
    m_menu = menu;
    m_exporter->setMenu(menu);
}

SniToolTip SniStatusItem::toolTip() const
{
    return SniToolTip{m_iconName, {}, m_title, {}};
}

void SniStatusItem::popUpMenu(std::optional<QPoint> position)
{
    if (!m_menu)
        return;
    if (!m_popup) {
        m_popup = std::make_unique<QMenu>();
        m_popup->setToolTipsVisible(true);
        OpenMenuTracker::track(*m_popup);
    }
    m_menu->willOpen();
    FillQMenu(*m_popup, m_menu);
    m_popup->popup(position.value_or(QCursor::pos()));
}
