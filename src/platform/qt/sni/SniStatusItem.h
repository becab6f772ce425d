#pragma once

// Our own StatusNotifierItem: the title as the item's text label (the Ayatana extension that
// panels of the AppIndicator family draw beside the icon) and the menu over dbusmenu.

#include "platform/StatusItem.h"
#include "platform/qt/sni/SniTypes.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QPoint>

#include <memory>

class DBusMenuExporter;
class StatusNotifierItemAdaptor;
class QMenu;

class SniStatusItem final : public QObject, public StatusItem
{
    Q_OBJECT
public:
    static QString watcherService() { return QStringLiteral("org.kde.StatusNotifierWatcher"); }
    static QString itemPath() { return QStringLiteral("/StatusNotifierItem"); }
    static QString menuPath() { return QStringLiteral("/MenuBar"); }

    // Exports the item on the connection under a name of its own and registers it with the
    // watcher that owns its name, now and whenever a watcher (re)appears.
    explicit SniStatusItem(const QDBusConnection &connection, QObject *parent = nullptr);
    ~SniStatusItem() override;

    void setTitle(const QString &title) override;
    QString title() const override { return m_title; }
    void setImage(const QString &imageName) override;
    QString image() const { return m_imageName; }
    void setMenu(Menu *menu) override;
    Menu *menu() const override { return m_menu; }

    QString serviceName() const { return m_serviceName; }
    // Whether the name and the objects are on the bus.
    bool isExported() const { return m_exported; }
    // Whether the watcher that owns its name now has accepted the item.
    bool isRegistered() const { return m_registered; }
    DBusMenuExporter &menuExporter() const { return *m_exporter; }

    // What the item's D-Bus properties read.
    QString iconName() const { return m_iconName; }
    QString iconThemePath() const { return m_iconThemePath; }
    const SniIconPixmapList &iconPixmaps() const { return m_iconPixmaps; }
    SniToolTip toolTip() const;

    // A host that draws no menu of its own asks the item to show one.
    void popUpMenu(std::optional<QPoint> position) override;

Q_SIGNALS:
    void registered();
    void registrationFailed();

private:
    void registerWithWatcher(const QString &owner);
    void updateIcon();
    void watcherOwnerChanged(const QString &service, const QString &oldOwner,
                             const QString &newOwner);

    QDBusConnection m_connection;
    QString m_serviceName;
    bool m_exported = false;
    StatusNotifierItemAdaptor *m_adaptor;
    DBusMenuExporter *m_exporter;
    // A child, so that a test can play the bus announcing a watcher late.
    QDBusServiceWatcher m_watcherWatcher;
    QString m_registeringWith; // the watcher owner asked last, or empty
    bool m_registered = false;

    Menu *m_menu = nullptr;
    QString m_title;
    QString m_imageName;
    QString m_iconName;
    QString m_iconThemePath;
    SniIconPixmapList m_iconPixmaps;
    std::unique_ptr<QMenu> m_popup;
};
