#pragma once

#include <functional>

// A repeating timer scheduled on the main event loop's default mode. The scheduler (the event
// loop) owns it; holders keep a plain pointer, which stays valid until the timer is invalidated
// and the event that invalidated it has been handled. A timer never fires after invalidate().
class Timer
{
public:
    virtual ~Timer() = default;
    virtual void invalidate() = 0;
    virtual bool isValid() const = 0;
    virtual double timeInterval() const = 0;
};

class TimerScheduler
{
public:
    // The callback receives the firing timer, so a handler can tell a stale timer from the one
    // it currently holds.
    using Callback = std::function<void(Timer *firing)>;

    virtual ~TimerScheduler() = default;
    virtual Timer *scheduleRepeatingTimer(double intervalSeconds, Callback callback) = 0;
};
