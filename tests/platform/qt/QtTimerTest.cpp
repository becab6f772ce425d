// The desktop's timers: repeating, stoppable, and holding their fire under an open menu.

#include "QtTestApplication.h"
#include "platform/qt/OpenMenuTracker.h"
#include "platform/qt/QtTimerScheduler.h"

#include <QApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QMenu>

#include <gtest/gtest.h>

#include <memory>

namespace {

// Runs the event loop until done() holds or the time is up; returns done().
template <typename Condition> bool RunEventLoopUntil(Condition done, int milliseconds = 5000)
{
    QElapsedTimer elapsed;
    elapsed.start();
    while (!done() && elapsed.elapsed() < milliseconds)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    return done();
}

void RunEventLoopFor(int milliseconds)
{
    RunEventLoopUntil([] { return false; }, milliseconds);
}

class QtTimers : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { EnsureQApplication(); }

    QtTimerScheduler scheduler;
};

TEST_F(QtTimers, RepeatUntilInvalidatedAndNameTheFiringTimer)
{
    int fired = 0;
    Timer *seen = nullptr;
    Timer *timer = scheduler.scheduleRepeatingTimer(0.01, [&](Timer *firing) {
        ++fired;
        seen = firing;
    });
    EXPECT_TRUE(RunEventLoopUntil([&] { return fired >= 3; }));
    EXPECT_EQ(seen, timer);

    timer->invalidate();
    timer->invalidate(); // the timer is still there during the event that invalidated it
    const int atInvalidation = fired;
    RunEventLoopFor(60);
    EXPECT_EQ(fired, atInvalidation);
}

TEST_F(QtTimers, HoldTheirFireWhileAMenuIsOpen)
{
    QMenu menu;
    menu.addAction(QStringLiteral("entry"));
    OpenMenuTracker::track(menu);
    int fired = 0;
    Timer *timer = scheduler.scheduleRepeatingTimer(0.01, [&](Timer *) { ++fired; });

    menu.popup(QPoint(10, 10));
    ASSERT_TRUE(OpenMenuTracker::isAnyMenuOpen());
    RunEventLoopFor(80);
    EXPECT_EQ(fired, 0);

    menu.hide();
    EXPECT_FALSE(OpenMenuTracker::isAnyMenuOpen());
    EXPECT_TRUE(RunEventLoopUntil([&] { return fired >= 2; }));
    timer->invalidate();
}

// A menu that goes while open, as a status item replaced under it does, must not hold the
// timers for the rest of the run; nor may a menu hidden before it was ever shown.
TEST_F(QtTimers, AreFreeAgainWhenAnOpenMenuIsDestroyedAndUnheldByAMenuNeverShown)
{
    QMenu neverShown;
    OpenMenuTracker::track(neverShown);
    neverShown.hide();
    EXPECT_FALSE(OpenMenuTracker::isAnyMenuOpen());

    auto menu = std::make_unique<QMenu>();
    menu->addAction(QStringLiteral("entry"));
    OpenMenuTracker::track(*menu);
    menu->popup(QPoint(10, 10));
    ASSERT_TRUE(OpenMenuTracker::isAnyMenuOpen());
    menu.reset();
    EXPECT_FALSE(OpenMenuTracker::isAnyMenuOpen());

    int fired = 0;
    Timer *timer = scheduler.scheduleRepeatingTimer(0.01, [&](Timer *) { ++fired; });
    EXPECT_TRUE(RunEventLoopUntil([&] { return fired >= 1; }));
    timer->invalidate();
}

// The usual way a holder stops a timer: from its own callback. The timer fires no more, and is
// freed once that event is over.
TEST_F(QtTimers, InvalidatedFromTheirOwnCallbackFireNoMoreAndAreFreed)
{
    int fired = 0;
    auto capture = std::make_shared<int>(0);
    const std::weak_ptr<int> captureSeen = capture;
    scheduler.scheduleRepeatingTimer(0.01, [&, held = std::move(capture)](Timer *firing) {
        ++fired;
        firing->invalidate();
    });
    ASSERT_TRUE(RunEventLoopUntil([&] { return fired >= 1; }));
    RunEventLoopFor(60);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(fired, 1);
    EXPECT_TRUE(captureSeen.expired());
}

TEST_F(QtTimers, TheTitleTimerTicksOncePerWallClockSecondAfterItChanges)
{
    // Which second each tick saw: a tick before the boundary would see the old second again.
    QList<qint64> seconds;
    Timer *timer = scheduler.scheduleWallClockSecondTimer(
        [&](Timer *) { seconds.append(QDateTime::currentMSecsSinceEpoch() / 1000); });
    ASSERT_TRUE(RunEventLoopUntil([&] { return seconds.size() >= 3; }, 6000));
    for (qsizetype i = 1; i < seconds.size(); ++i)
        EXPECT_GT(seconds.at(i), seconds.at(i - 1)) << "the same second ticked twice";

    timer->invalidate();
    const qsizetype atInvalidation = seconds.size();
    RunEventLoopFor(1200);
    EXPECT_EQ(seconds.size(), atInvalidation);
}

// The title timer runs until the program ends and is never invalidated; the scheduler must not
// leave it behind. What a callback captures is released with its timer.
TEST_F(QtTimers, AreReleasedWhenInvalidatedOrWithTheirScheduler)
{
    auto invalidatedCapture = std::make_shared<int>(0);
    auto repeatingCapture = std::make_shared<int>(0);
    auto wallClockCapture = std::make_shared<int>(0);
    const std::weak_ptr<int> invalidatedSeen = invalidatedCapture;
    const std::weak_ptr<int> repeatingSeen = repeatingCapture;
    const std::weak_ptr<int> wallClockSeen = wallClockCapture;
    {
        QtTimerScheduler ending;
        Timer *invalidated =
            ending.scheduleRepeatingTimer(0.01, [held = std::move(invalidatedCapture)](Timer *) {});
        ending.scheduleRepeatingTimer(60, [held = std::move(repeatingCapture)](Timer *) {});
        ending.scheduleWallClockSecondTimer([held = std::move(wallClockCapture)](Timer *) {});

        invalidated->invalidate();
        EXPECT_FALSE(invalidatedSeen.expired()) << "deleted during the invalidating event";
        RunEventLoopFor(20);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_TRUE(invalidatedSeen.expired());
        EXPECT_FALSE(repeatingSeen.expired());
        EXPECT_FALSE(wallClockSeen.expired());
    }
    EXPECT_TRUE(repeatingSeen.expired());
    EXPECT_TRUE(wallClockSeen.expired());
}

} // namespace
