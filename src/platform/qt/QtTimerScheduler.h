#pragma once

#include "platform/Timer.h"

#include <QObject>

// Timers on Qt's event loop. The scheduler owns every timer it made: an invalidated one it frees
// once the event that invalidated it has been handled, the rest when it goes itself.
class QtTimerScheduler final : public TimerScheduler
{
public:
    Timer *scheduleRepeatingTimer(double intervalSeconds, Callback callback) override;
    Timer *scheduleWallClockSecondTimer(Callback callback) override;

private:
    // Makes timer ours, to be freed after its invalidation or with us.
    template <typename QtTimerType> QtTimerType *adopt(QtTimerType *timer);

    QObject m_owner; // the parent of every timer not yet freed
};
