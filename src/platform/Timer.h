#pragma once

#include <functional>

// A repeating timer scheduled on the main event loop's default mode. The scheduler (the event
// loop) owns it; holders keep a plain pointer, which stays valid until the timer is invalidated
// and the event that invalidated it has been handled. A timer never fires after invalidate().
class Timer
{
public:
    virtual ~Timer() = default;
    // Stops the timer for good; invalidating it again does nothing.
    virtual void invalidate() = 0;
};

class TimerScheduler
{
public:
    // The callback receives the firing timer, so a handler can tell a stale timer from the one
    // it currently holds.
    using Callback = std::function<void(Timer *firing)>;

    virtual ~TimerScheduler() = default;
    // Fires every intervalSeconds, the first time one interval from now, until invalidated.
    virtual Timer *scheduleRepeatingTimer(double intervalSeconds, Callback callback) = 0;
    // A repeating timer with an interval of one second whose ticks fall just after each change
    // of the wall clock's second, so a clock showing seconds turns over with the real one. Its
    // phase is kept on the second at every tick: a late tick does not delay the next one, and
    // after the clock is set or the machine wakes from sleep the next tick is on the second again.
    virtual Timer *scheduleWallClockSecondTimer(Callback callback) = 0;
};
