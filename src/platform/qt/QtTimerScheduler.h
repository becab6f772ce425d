#pragma once

#include "platform/Timer.h"

#include <QObject>

// Timers on Qt's event loop.
class QtTimerScheduler final : public TimerScheduler
{
public:
    Timer *scheduleRepeatingTimer(double intervalSeconds, Callback callback) override;
    Timer *scheduleWallClockSecondTimer(Callback callback) override;

private:
    QObject m_owner; // the parent of every timer not yet invalidated and deleted
};
