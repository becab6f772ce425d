#include "platform/qt/QtTimerScheduler.h"

#include "platform/qt/OpenMenuTracker.h"
#include "platform/qt/QtWallClockSecondTimer.h"

#include <QTimer>

#include <utility>

namespace {

class QtTimer final : public QObject, public Timer
{
    Q_OBJECT
public:
    QtTimer(double interval, TimerScheduler::Callback callback) : m_callback(std::move(callback))
    {
        m_timer.setTimerType(interval < 0.5 ? Qt::PreciseTimer : Qt::CoarseTimer);
        m_timer.setInterval(static_cast<int>(interval * 1000.0 + 0.5));
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
            if (!OpenMenuTracker::isAnyMenuOpen())
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
        Q_EMIT invalidated();
    }

Q_SIGNALS:
    void invalidated();

private:
    QTimer m_timer;
    TimerScheduler::Callback m_callback;
    bool m_valid = true;
};

} // namespace

template <typename QtTimerType> QtTimerType *QtTimerScheduler::adopt(QtTimerType *timer)
{
    timer->setParent(&m_owner);
    // Holders may still compare the pointer during the event that invalidated it: freed after.
    QObject::connect(timer, &QtTimerType::invalidated, &m_owner, [timer] { timer->deleteLater(); });
    return timer;
}

Timer *QtTimerScheduler::scheduleRepeatingTimer(double intervalSeconds, Callback callback)
{
    return adopt(new QtTimer(intervalSeconds, std::move(callback)));
}

Timer *QtTimerScheduler::scheduleWallClockSecondTimer(Callback callback)
{
    return adopt(new QtWallClockSecondTimer(std::move(callback)));
}

#include "QtTimerScheduler.moc"
