// The desktop's date-time chooser: a picker to the second whose action runs only for the user's
// changes, and a window that floats and announces its closing.

#include "chooser/QtChooserWindow.h"

#include "platform/qt/QtTestApplication.h"
#include "support/QtPrinters.h"

#include <QApplication>
#include <QKeyEvent>
#include <QTest>

#include <gtest/gtest.h>

namespace {

// 2006-03-10 14:31:47 -0500.
constexpr AbsoluteTime kFriday = 163711907.0;

class QtChooser : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { EnsureQApplication(); }

    void SetUp() override
    {
        // The picker shows local time: the expected fields are New York's.
        setenv("TZ", "America/New_York", 1);
        center.addWindowWillCloseObserver([this](Window *closing) { closed.append(closing); });
        window.setAction([this] { ++actions; });
    }

    LocalWindowNotificationCenter center;
    QtChooserWindow window{center};
    QList<Window *> closed;
    int actions = 0;
};

TEST_F(QtChooser, TheProgramsOwnChangesRunNoActionAndKeepWholeSeconds)
{
    window.setDateValue(kFriday + 0.9);
    EXPECT_EQ(window.dateValue(), kFriday);
    EXPECT_EQ(window.calendar()->selectedDate(), QDate(2006, 3, 10)) << "in the local zone";
    window.setDateValue(kFriday - 86400.0 * 365 * 40); // before 1970
    EXPECT_EQ(window.dateValue(), kFriday - 86400.0 * 365 * 40);
    EXPECT_EQ(actions, 0);
}

TEST_F(QtChooser, TheUsersChangesRunTheActionOnce)
{
    window.setDateValue(kFriday);
    window.makeKeyAndOrderFront();
    QTest::keyClick(window.timeField(), Qt::Key_Up); // the year section has the focus
    EXPECT_EQ(actions, 1);
    EXPECT_EQ(window.dateValue(), kFriday + 365 * 86400.0);
    EXPECT_EQ(window.calendar()->selectedDate(), QDate(2007, 3, 10)) << "the calendar follows";

    // A day clicked in the calendar keeps the time of day, across the change to summer time.
    Q_EMIT window.calendar()->clicked(QDate(2007, 3, 20));
    EXPECT_EQ(actions, 2);
    EXPECT_EQ(window.dateValue(),
              AbsoluteTimeFromDate(QDateTime(QDate(2007, 3, 20), QTime(14, 31, 47))));
    EXPECT_EQ(window.timeField()->dateTime().toString(Qt::ISODate),
              QStringLiteral("2007-03-20T14:31:47"));
}

TEST_F(QtChooser, ClosingByEscapeOrTheButtonAnnouncesItFirst)
{
    window.makeKeyAndOrderFront();
    ASSERT_TRUE(window.isVisible());
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
    ASSERT_EQ(closed.size(), 1);
    EXPECT_EQ(closed.first(), static_cast<Window *>(&window));

    window.makeKeyAndOrderFront();
    window.close();
    EXPECT_EQ(closed.size(), 2);
}

// Counts the paints of a widget and of everything inside it.
class PaintCounter : public QObject
{
public:
    explicit PaintCounter(QWidget *widget)
    {
        widget->installEventFilter(this);
        for (QWidget *child : widget->findChildren<QWidget *>())
            child->installEventFilter(this);
    }
    int paints = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            ++paints;
        return false;
    }
};

TEST_F(QtChooser, ALiveClockRepaintsOnlyWhenTheShownSecondChanges)
{
    window.setDateValue(kFriday);
    window.makeKeyAndOrderFront();
    QTest::qWait(50);
    PaintCounter field(window.timeField());
    PaintCounter calendar(window.calendar());

    // A second of ticks every 0.03 s, all within the shown second.
    for (double t = kFriday; t < kFriday + 1.0; t += 0.03) {
        window.setDateValue(t);
        QCoreApplication::processEvents();
    }
    QTest::qWait(20);
    EXPECT_EQ(field.paints, 0);
    EXPECT_EQ(calendar.paints, 0);
    EXPECT_EQ(window.dateValue(), kFriday);

    window.setDateValue(kFriday + 1.0);
    QTest::qWait(20);
    EXPECT_GT(field.paints, 0) << "the next second is shown";
    EXPECT_EQ(calendar.paints, 0) << "on the same day";
    EXPECT_EQ(actions, 0);
}

TEST_F(QtChooser, AFloatingChooserStaysAboveOtherWindows)
{
    EXPECT_FALSE(window.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    window.setFloating(true);
    EXPECT_TRUE(window.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Date-Time Chooser"));
}

} // namespace
