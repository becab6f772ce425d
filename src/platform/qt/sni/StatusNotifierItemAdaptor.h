#pragma once

#include "platform/qt/sni/SniTypes.h"

#include <QDBusAbstractAdaptor>
#include <QDBusObjectPath>

class SniStatusItem;

// The org.kde.StatusNotifierItem interface of an SniStatusItem, with the Ayatana label.
class StatusNotifierItemAdaptor final : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category)
    Q_PROPERTY(QString Id READ id)
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(int WindowId READ windowId)
    Q_PROPERTY(QString IconThemePath READ iconThemePath)
    Q_PROPERTY(QDBusObjectPath Menu READ menu)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)
    Q_PROPERTY(QString IconName READ iconName)
    Q_PROPERTY(SniIconPixmapList IconPixmap READ iconPixmap)
    Q_PROPERTY(QString OverlayIconName READ emptyName)
    Q_PROPERTY(SniIconPixmapList OverlayIconPixmap READ emptyPixmap)
    Q_PROPERTY(QString AttentionIconName READ emptyName)
    Q_PROPERTY(SniIconPixmapList AttentionIconPixmap READ emptyPixmap)
    Q_PROPERTY(QString AttentionMovieName READ emptyName)
    Q_PROPERTY(SniToolTip ToolTip READ toolTip)
    Q_PROPERTY(QString XAyatanaLabel READ label)
    Q_PROPERTY(QString XAyatanaLabelGuide READ label)

public:
    explicit StatusNotifierItemAdaptor(SniStatusItem *item);

    QString category() const { return QStringLiteral("ApplicationStatus"); }
    QString id() const { return QStringLiteral("horalo"); }
    QString title() const;
    QString status() const { return QStringLiteral("Active"); }
    int windowId() const { return 0; }
    QString iconThemePath() const;
    QDBusObjectPath menu() const;
    bool itemIsMenu() const { return true; }
    QString iconName() const;
    SniIconPixmapList iconPixmap() const;
    QString emptyName() const { return {}; }
    SniIconPixmapList emptyPixmap() const { return {}; }
    SniToolTip toolTip() const;
    QString label() const;

public Q_SLOTS:
    void Activate(int x, int y);
    void ContextMenu(int x, int y);
    void SecondaryActivate(int x, int y);
    void XAyatanaSecondaryActivate(uint timestamp);
    void Scroll(int delta, const QString &orientation);

Q_SIGNALS:
    void NewTitle();
    void NewIcon();
    void NewAttentionIcon();
    void NewOverlayIcon();
    void NewToolTip();
    void NewStatus(const QString &status);
    void XAyatanaNewLabel(const QString &label, const QString &guide);

private:
    SniStatusItem *m_item;
};
