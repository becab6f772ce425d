// The desktop's timers: repeating, stoppable, and holding their fire under an open menu.

#include "QtTestApplication.h"
#include "platform/qt/QMenuHelpers.h"
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
    TrackMenuForTimers(menu);
    int fired = 0;
    Timer *timer = scheduler.scheduleRepeatingTimer(0.01, [&](Timer *) { ++fired; });

    menu.popup(QPoint(10, 10));
    ASSERT_TRUE(IsTrackingMenu());
    RunEventLoopFor(80);
    EXPECT_EQ(fired, 0);

    menu.hide();
    EXPECT_FALSE(IsTrackingMenu());
    EXPECT_TRUE(RunEventLoopUntil([&] { return fired >= 2; }));
    timer->invalidate();
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
