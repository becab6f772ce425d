#include "platform/qt/QtWallClockSecondTimer.h"

#include "platform/qt/OpenMenuTracker.h"

#include <QDateTime>

#include <cerrno>
#include <ctime>
#include <sys/timerfd.h>
#include <unistd.h>

QtWallClockSecondTimer::QtWallClockSecondTimer(TimerScheduler::Callback callback)
    : m_callback(std::move(callback))
{
    m_fd = ::timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC);
    if (m_fd >= 0) {
        m_notifier = std::make_unique<QSocketNotifier>(m_fd, QSocketNotifier::Read);
        connect(m_notifier.get(), &QSocketNotifier::activated, this,
                &QtWallClockSecondTimer::timerfdReadable);
    } else {
        m_fallback.setSingleShot(true);
        m_fallback.setTimerType(Qt::PreciseTimer);
        connect(&m_fallback, &QTimer::timeout, this, &QtWallClockSecondTimer::tick);
    }
    arm();
}

QtWallClockSecondTimer::~QtWallClockSecondTimer()
{
    m_notifier.reset();
    if (m_fd >= 0)
        ::close(m_fd);
}

void QtWallClockSecondTimer::arm()
{
    if (m_fd >= 0) {
        timespec now = {};
        ::clock_gettime(CLOCK_REALTIME, &now);
        itimerspec next = {};
        next.it_value.tv_sec = now.tv_sec + 1;
        next.it_value.tv_nsec = 0;
        ::timerfd_settime(m_fd, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &next, nullptr);
        return;
    }
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    // One millisecond past the boundary: a precise timer may fire up to a millisecond early.
    m_fallback.start(static_cast<int>(1000 - now % 1000 + 1));
}

void QtWallClockSecondTimer::timerfdReadable()
{
    quint64 expirations = 0;
    const ssize_t n = ::read(m_fd, &expirations, sizeof expirations);
    // ECANCELED: the clock was set. Tick now, so the title shows the new time at once, and arm
    // for the new clock's next second. EAGAIN: nothing due after all.
    if (n < 0 && errno != ECANCELED)
        return;
    tick();
}

void QtWallClockSecondTimer::tick()
{
    if (!m_valid)
        return;
    arm();
    if (!OpenMenuTracker::isAnyMenuOpen())
        m_callback(this);
}

void QtWallClockSecondTimer::invalidate()
{
    if (!m_valid)
        return;
    m_valid = false;
    m_notifier.reset();
    m_fallback.stop();
    Q_EMIT invalidated();
}
