#include "platform/qt/TrayStatusItem.h"

#include "platform/qt/IconCache.h"
#include "platform/qt/OpenMenuTracker.h"
#include "platform/qt/QMenuHelpers.h"

#include <QCursor>

TrayStatusItem::TrayStatusItem() : m_qmenu(std::make_unique<QMenu>())
{
    m_qmenu->setToolTipsVisible(true);
    connect(m_qmenu.get(), &QMenu::aboutToShow, this, &TrayStatusItem::aboutToShow);
    OpenMenuTracker::track(*m_qmenu);
    connect(&m_tray, &QSystemTrayIcon::activated, this, &TrayStatusItem::activated);
    m_tray.setContextMenu(m_qmenu.get());
    // The tray needs an icon to be shown at all; without one the menu could not be reached.
    m_shownImage = QStringLiteral("Horalo.tif");
    m_tray.setIcon(LoadIconResource(m_shownImage));
    m_tray.show();
}

TrayStatusItem::~TrayStatusItem()
{
    m_tray.hide();
}

void TrayStatusItem::setTitle(const QString &title)
{
    m_title = title;
    m_tray.setToolTip(title);
}

void TrayStatusItem::setImage(const QString &imageName)
{
    m_imageName = imageName;
    // A tray icon cannot be hidden without hiding the item, and it has no text to fall back on,
    // so "no image" keeps the icon: the clock must stay reachable.
    // The menu sets the image at every opening: only a change is handed to the tray.
    if (!imageName.isEmpty() && imageName != m_shownImage) {
        m_shownImage = imageName;
        m_tray.setIcon(LoadIconResource(imageName));
    }
}

void TrayStatusItem::aboutToShow()
{
    if (m_menu)
        m_menu->willOpen();
    FillQMenu(*m_qmenu, m_menu);
}

void TrayStatusItem::popUpMenu(std::optional<QPoint> position)
{
    // aboutToShow rebuilds the menu, as for a click on the icon.
    m_qmenu->popup(position.value_or(QCursor::pos()));
}

void TrayStatusItem::activated(QSystemTrayIcon::ActivationReason reason)
{
    // XEmbed trays open the context menu on a right click only; a clock's menu should open on
    // any click.
    if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick)
        popUpMenu(std::nullopt);
}
