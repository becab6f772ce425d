#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QTimer>

// Tells the user, once, when the session has nowhere to show the status item: no
// StatusNotifierWatcher on the bus and no XEmbed tray. Without it, Horalo would run with
// nothing on screen to click. The check waits a moment after start, because a panel started
// with the session often comes up after us; the item shows by itself whenever a watcher or a
// tray appears, notice or not.
class StatusAreaNotice final : public QObject
{
    Q_OBJECT
public:
    static constexpr int kDefaultGraceMs = 3000;

    explicit StatusAreaNotice(const QDBusConnection &bus, int graceMs = kDefaultGraceMs);

    bool hasStatusArea() const;
    bool wasGiven() const { return m_given; }

    // What the notice says: a summary and the advice.
    static QString summary();
    static QString advice();

Q_SIGNALS:
    void given();

private:
    void check();

    QDBusConnection m_bus;
    QTimer m_grace;
    bool m_given = false;
};
