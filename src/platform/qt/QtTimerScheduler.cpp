#include "platform/qt/QtTimerScheduler.h"

#include "platform/qt/QMenuHelpers.h"
#include "platform/qt/QtWallClockSecondTimer.h"

#include <QTimer>

#include <utility>

namespace {

// A QObject so that the scheduler's owner object can hold it: whatever is still scheduled when
// the scheduler goes (the title timer, at exit) goes with it.
class QtTimer final : public QObject, public Timer
{
public:
    QtTimer(double interval, TimerScheduler::Callback callback, QObject *owner)
        : QObject(owner), m_callback(std::move(callback))
    {
        m_timer.setTimerType(interval < 0.5 ? Qt::PreciseTimer : Qt::CoarseTimer);
        m_timer.setInterval(static_cast<int>(interval * 1000.0 + 0.5));
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
            if (!IsTrackingMenu())
                m_callback(this);
        });
        m_timer.start();
    }
    void invalidate() override
    {
        if (!m_valid)
            return;
        m_valid = false;
        m_timer.stop();
        // Holders may still compare the pointer during the current event; delete afterwards.
        deleteLater();
    }

private:
    QTimer m_timer;
    TimerScheduler::Callback m_callback;
    bool m_valid = true;
};

} // namespace

Timer *QtTimerScheduler::scheduleRepeatingTimer(double intervalSeconds, Callback callback)
{
    // Ours until it is invalidated, as the interface promises; deleted with us if it never is.
    return new QtTimer(intervalSeconds, std::move(callback), &m_owner);
}

Timer *QtTimerScheduler::scheduleWallClockSecondTimer(Callback callback)
{
    auto *timer = new QtWallClockSecondTimer(std::move(callback));
    timer->setParent(&m_owner); // the title's timer: never invalidated, it goes with us at exit
    return timer;
}
