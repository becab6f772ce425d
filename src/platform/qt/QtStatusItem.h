#pragma once

#include "platform/StatusItem.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>

#include <memory>

class SniStatusItem;
class TrayStatusItem;

// The status item the logic holds for the whole run. It shows itself through our own
// StatusNotifierItem (the title as a text label, the menu over D-Bus) when a watcher owns its
// name on the session bus, and through QSystemTrayIcon otherwise. A watcher that appears later
// (a panel started or restarted) takes the item over from the tray icon; there is never more
// than one of the two.
class QtStatusItem final : public QObject, public StatusItem
{
    Q_OBJECT
public:
    enum class Backend
    {
        Tray,
        StatusNotifierItem
    };

    explicit QtStatusItem(const QDBusConnection &bus);
    ~QtStatusItem() override;

    void setTitle(const QString &title) override;
    QString title() const override { return m_title; }
    void setImage(const QString &imageName) override;
    void setMenu(Menu *menu) override;
    Menu *menu() const override { return m_menu; }
    void popUpMenu(std::optional<QPoint> position) override;

    Backend backend() const { return m_sni ? Backend::StatusNotifierItem : Backend::Tray; }
    // The backend in use: a TrayStatusItem or an SniStatusItem.
    StatusItem *backendItem() const;

private:
    void useTray();
    void useStatusNotifierItem();
    void watcherOwnerChanged(const QString &service, const QString &oldOwner,
                             const QString &newOwner);
    void showStateOn(StatusItem &backend);

    QDBusConnection m_bus;
    QDBusServiceWatcher m_watcherWatcher;
    std::unique_ptr<TrayStatusItem> m_tray;
    std::unique_ptr<SniStatusItem> m_sni;
    Menu *m_menu = nullptr;
    QString m_title;
    QString m_imageName;
};
