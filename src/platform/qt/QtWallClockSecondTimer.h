#pragma once

#include "platform/Timer.h"

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <memory>

// A one-second timer that ticks as the wall clock's second changes. It sleeps on a timerfd armed
// at the next whole second of CLOCK_REALTIME, absolute, and re-armed at every tick: a tick the
// event loop delivers late does not shift the next one, time asleep in suspend counts, and
// setting the clock wakes it (the kernel cancels the wait) so that it ticks at once and is back
// on the second. Where no timerfd can be made it falls back to a precise QTimer re-armed for the
// next boundary at every tick, which keeps the phase but notices a set clock one tick late.
class QtWallClockSecondTimer final : public QObject, public Timer
{
    Q_OBJECT
public:
    explicit QtWallClockSecondTimer(TimerScheduler::Callback callback);
    ~QtWallClockSecondTimer() override;

    void invalidate() override;

Q_SIGNALS:
    // For the scheduler that owns the timer, which frees it.
    void invalidated();

private:
    void arm();
    void timerfdReadable();
    void tick();

    TimerScheduler::Callback m_callback;
    int m_fd = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QTimer m_fallback;
    bool m_valid = true;
};
