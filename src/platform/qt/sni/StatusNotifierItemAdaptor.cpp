#include "platform/qt/sni/StatusNotifierItemAdaptor.h"

#include "platform/Version.h"
#include "platform/qt/sni/SniStatusItem.h"

StatusNotifierItemAdaptor::StatusNotifierItemAdaptor(SniStatusItem *item)
    : QDBusAbstractAdaptor(item), m_item(item)
{}

QString StatusNotifierItemAdaptor::title() const
{
    // The application's name: the changing text is the label and the tool tip.
    return QStringLiteral(HORALO_NAME);
}

QString StatusNotifierItemAdaptor::iconThemePath() const
{
    return m_item->iconThemePath();
}

QDBusObjectPath StatusNotifierItemAdaptor::menu() const
{
    return QDBusObjectPath(SniStatusItem::menuPath());
}

QString StatusNotifierItemAdaptor::iconName() const
{
    return m_item->iconName();
}

SniIconPixmapList StatusNotifierItemAdaptor::iconPixmap() const
{
    return m_item->iconPixmaps();
}

SniToolTip StatusNotifierItemAdaptor::toolTip() const
{
    return m_item->toolTip();
}

QString StatusNotifierItemAdaptor::label() const
{
    return m_item->title();
}

void StatusNotifierItemAdaptor::Activate(int x, int y)
{
    // The item is a menu: a host that still sends the primary click gets the menu.
    m_item->popUpMenu(QPoint(x, y));
}

void StatusNotifierItemAdaptor::ContextMenu(int x, int y)
{
    m_item->popUpMenu(QPoint(x, y));
}

void StatusNotifierItemAdaptor::SecondaryActivate(int, int)
{
    // A clock has no second action; the middle click does nothing.
}

void StatusNotifierItemAdaptor::XAyatanaSecondaryActivate(uint) {}

void StatusNotifierItemAdaptor::Scroll(int, const QString &)
{
    // Nothing to scroll through.
}
