// The chooser as held from start-up: no window until it is first opened, and the state set
// before that (value, level, action) is the window's once it exists.

#include "chooser/LazyChooserWindow.h"

#include "chooser/QtChooserWindow.h"
#include "platform/qt/QtTestApplication.h"
#include "support/QtPrinters.h"

#include <QApplication>
#include <QTest>

#include <gtest/gtest.h>

namespace {

// 2006-03-10 14:31:47 -0500.
constexpr AbsoluteTime kFriday = 163711907.0;

class LazyChooser : public WindowClosingTest
{
protected:
    LazyChooserWindow chooser{center};
    int actions = 0;
};

TEST_F(LazyChooser, StartUpStepsActOnStateAndBuildNoWidget)
{
    const qsizetype widgetsBefore = QApplication::allWidgets().size();
    // What the application does at start-up and at every rebuild.
    chooser.setAction([this] { ++actions; });
    chooser.setDateValue(kFriday + 0.75);
    chooser.setFloating(true);
    EXPECT_EQ(chooser.dateValue(), kFriday) << "whole seconds, as the window keeps them";
    EXPECT_TRUE(chooser.isFloating());
    EXPECT_FALSE(chooser.isVisible());
    EXPECT_EQ(chooser.createdWindow(), nullptr);
    EXPECT_EQ(QApplication::allWidgets().size(), widgetsBefore);
}

TEST_F(LazyChooser, TheFirstOpeningBuildsTheWindowFromThatState)
{
    chooser.setAction([this] { ++actions; });
    chooser.setDateValue(kFriday);
    chooser.setFloating(true);
    chooser.makeKeyAndOrderFront();

    QtChooserWindow *window = chooser.createdWindow();
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(chooser.isVisible());
    EXPECT_EQ(window->dateValue(), kFriday);
    EXPECT_EQ(window->calendar()->selectedDate(), QDate(2006, 3, 10));
    EXPECT_TRUE(window->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    EXPECT_EQ(actions, 0);

    // From now on the window is the state: the user's change runs the action set earlier.
    QTest::keyClick(window->timeField(), Qt::Key_Up);
    EXPECT_EQ(actions, 1);
    EXPECT_EQ(chooser.dateValue(), kFriday + 365 * 86400.0);
    chooser.setDateValue(kFriday);
    EXPECT_EQ(window->dateValue(), kFriday);
    chooser.setFloating(false);
    EXPECT_FALSE(window->windowFlags().testFlag(Qt::WindowStaysOnTopHint));

    chooser.makeKeyAndOrderFront();
    EXPECT_EQ(chooser.createdWindow(), window) << "built once";
}

TEST_F(LazyChooser, ClosingIsAnnouncedAsTheChoosersWhetherOrNotItWasBuilt)
{
    chooser.close();
    ASSERT_EQ(closed.size(), 1);
    EXPECT_EQ(closed.first(), static_cast<Window *>(&chooser));
    EXPECT_EQ(chooser.createdWindow(), nullptr) << "closing builds nothing";

    chooser.makeKeyAndOrderFront();
    QTest::keyClick(chooser.createdWindow(), Qt::Key_Escape);
    EXPECT_FALSE(chooser.isVisible());
    ASSERT_EQ(closed.size(), 2);
    EXPECT_EQ(closed.last(), static_cast<Window *>(&chooser));
}

} // namespace
