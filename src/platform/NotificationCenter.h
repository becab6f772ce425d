#pragma once

#include <QString>
#include <QVariantMap>

#include <functional>

class DistributedNotificationCenter;
class Window;

// The observer callback of a cross-process notification: centre, observer, name, object and
// user info. Callbacks always run on the main event loop, never inside post.
using NotificationCallback = void (*)(DistributedNotificationCenter *center, void *observer,
                                      const QString &name, const QString &object,
                                      const QVariantMap &userInfo);

enum class SuspensionBehavior
{
    Drop = 1,
    Coalesce = 2,
    Hold = 3,
    DeliverImmediately = 4,
};

// Notifications that travel between the processes of one user session. The posting process
// receives its own notification as well, exactly once.
class DistributedNotificationCenter
{
public:
    virtual ~DistributedNotificationCenter() = default;

    // Observes notifications whose name and object both equal the given ones.
    virtual void addObserver(void *observer, NotificationCallback callback, const QString &name,
                             const QString &object, SuspensionBehavior behavior) = 0;
    virtual void postNotification(const QString &name, const QString &object,
                                  const QVariantMap &userInfo, bool deliverImmediately) = 0;
};

// The local "window will close" notification: every window of the process posts it just before
// it closes, and every observer hears about every window.
class WindowNotificationCenter
{
public:
    using Observer = std::function<void(Window *closing)>;

    virtual ~WindowNotificationCenter() = default;
    virtual void addWindowWillCloseObserver(Observer observer) = 0;
};

// The straightforward implementation that both platforms share: windows call
// postWindowWillClose() and observers run at once, in registration order.
class LocalWindowNotificationCenter final : public WindowNotificationCenter
{
public:
    void addWindowWillCloseObserver(Observer observer) override;
    void postWindowWillClose(Window *closing);

private:
    std::vector<Observer> m_observers;
};
