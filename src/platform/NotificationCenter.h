#pragma once

#include <QString>

#include <functional>
#include <vector>

class Window;

// Notifications that travel between the processes of one user session, told apart by a name
// and an object. The posting process receives its own notification as well, exactly once.
class DistributedNotificationCenter
{
public:
    using Observer = std::function<void()>;

    virtual ~DistributedNotificationCenter() = default;

    // Runs the observer for every notification whose name and object both equal these, on the
    // main event loop, never inside postNotification().
    virtual void addObserver(const QString &name, const QString &object, Observer observer) = 0;
    // Sends the notification to every process of the session, this one included.
    virtual void postNotification(const QString &name, const QString &object) = 0;
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
