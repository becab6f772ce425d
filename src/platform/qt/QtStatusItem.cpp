#include "platform/qt/QtStatusItem.h"

#include "platform/qt/TrayStatusItem.h"
#include "platform/qt/sni/SniStatusItem.h"

#include <QDBusConnectionInterface>

QtStatusItem::QtStatusItem(const QDBusConnection &bus) : m_bus(bus)
{
    if (m_bus.isConnected()) {
        m_watcherWatcher.setConnection(m_bus);
        m_watcherWatcher.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
        m_watcherWatcher.addWatchedService(SniStatusItem::watcherService());
        connect(&m_watcherWatcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
                &QtStatusItem::watcherOwnerChanged);
    }
    if (m_bus.isConnected() &&
        m_bus.interface()->isServiceRegistered(SniStatusItem::watcherService()))
        useStatusNotifierItem();
    else
        useTray();
}

QtStatusItem::~QtStatusItem() = default;

StatusItem *QtStatusItem::backendItem() const
{
    if (m_sni)
        return m_sni.get();
    return m_tray.get();
}

void QtStatusItem::useTray()
{
    m_sni.reset();
    m_tray = std::make_unique<TrayStatusItem>();
    showStateOn(*m_tray);
}

void QtStatusItem::useStatusNotifierItem()
{
    // The tray icon goes before the item appears: never two icons.
    m_tray.reset();
    m_sni = std::make_unique<SniStatusItem>(m_bus);
    // A watcher that refuses the item (or a name we could not take) leaves the tray icon as the
    // way to reach the clock. Queued: the item is not destroyed inside its own signal.
    connect(m_sni.get(), &SniStatusItem::registrationFailed, this, &QtStatusItem::useTray,
            Qt::QueuedConnection);
    showStateOn(*m_sni);
    if (!m_sni->isExported())
        useTray();
}

void QtStatusItem::watcherOwnerChanged(const QString &, const QString &, const QString &newOwner)
{
    // Our item registers itself again with a new watcher; only the tray icon has to give way.
    if (!newOwner.isEmpty() && !m_sni)
        useStatusNotifierItem();
}

void QtStatusItem::showStateOn(StatusItem &backend)
{
    backend.setMenu(m_menu);
    backend.setImage(m_imageName);
    if (!m_title.isNull())
        backend.setTitle(m_title);
}

void QtStatusItem::setTitle(const QString &title)
{
    m_title = title;
    backendItem()->setTitle(title);
}

void QtStatusItem::setImage(const QString &imageName)
{
    m_imageName = imageName;
    backendItem()->setImage(imageName);
}

void QtStatusItem::setMenu(Menu *menu)
{
    m_menu = menu;
    backendItem()->setMenu(menu);
}

void QtStatusItem::popUpMenu(std::optional<QPoint> position)
{
    backendItem()->popUpMenu(position);
}
