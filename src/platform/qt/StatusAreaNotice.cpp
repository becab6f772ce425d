#include "platform/qt/StatusAreaNotice.h"

#include "platform/qt/sni/SniStatusItem.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QSystemTrayIcon>

#include <cstdio>

StatusAreaNotice::StatusAreaNotice(const QDBusConnection &bus, int graceMs) : m_bus(bus)
{
    m_grace.setSingleShot(true);
    m_grace.setInterval(graceMs);
    connect(&m_grace, &QTimer::timeout, this, &StatusAreaNotice::check);
    m_grace.start();
}

bool StatusAreaNotice::hasStatusArea() const
{
    if (m_bus.isConnected() &&
        m_bus.interface()->isServiceRegistered(SniStatusItem::watcherService()))
        return true;
    return QSystemTrayIcon::isSystemTrayAvailable();
}

QString StatusAreaNotice::summary()
{
    return QStringLiteral("Horalo is running, but this desktop has no status area to show it in");
}

QString StatusAreaNotice::advice()
{
    return QStringLiteral(
        "Neither a StatusNotifierItem panel nor a system tray is running. Add one (on GNOME, the "
        "AppIndicator extension: gnome-shell-extension-appindicator; elsewhere, your panel's "
        "tray or indicator applet), or bind a key to \"horalo show-menu\" to open Horalo's "
        "menu. Horalo shows its item as soon as one appears.");
}

void StatusAreaNotice::check()
{
    if (m_given || hasStatusArea())
        return;
    m_given = true;
    std::fprintf(stderr, "horalo: %s. %s\n", summary().toLocal8Bit().constData(),
                 advice().toLocal8Bit().constData());
    std::fflush(stderr);
    if (m_bus.isConnected()) {
        // Notify(app_name, replaces_id, app_icon, summary, body, actions, hints, timeout). A
        // session without a notification server answers with an error, which changes nothing.
        QDBusMessage notify = QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.Notifications"),
            QStringLiteral("/org/freedesktop/Notifications"),
            QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("Notify"));
        notify << QStringLiteral("Horalo") << 0u << QStringLiteral("horalo") << summary()
               << advice() << QStringList() << QVariantMap() << -1;
        m_bus.asyncCall(notify);
    }
    Q_EMIT given();
}
