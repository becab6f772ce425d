#pragma once

#include "platform/Menu.h"
#include "platform/StatusItem.h"

#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>

#include <memory>

// The status item on an XEmbed tray through QSystemTrayIcon. The tray protocol has no text, so
// the title is shown as the tool tip.
class TrayStatusItem final : public QObject, public StatusItem
{
    Q_OBJECT
public:
    TrayStatusItem();
    ~TrayStatusItem() override;

    void setTitle(const QString &title) override;
    QString title() const override { return m_title; }
    void setImage(const QString &imageName) override;
    void setMenu(Menu *menu) override { m_menu = menu; }
    Menu *menu() const override { return m_menu; }
    void popUpMenu(std::optional<QPoint> position) override;

    QSystemTrayIcon &trayIcon() { return m_tray; }
    QMenu &qmenu() { return *m_qmenu; }

private:
    void aboutToShow();
    void activated(QSystemTrayIcon::ActivationReason reason);

    QSystemTrayIcon m_tray;
    std::unique_ptr<QMenu> m_qmenu;
    Menu *m_menu = nullptr;
    QString m_title;
    QString m_imageName;
    QString m_shownImage; // the icon's name: a "no image" keeps the last one
};
