// The desktop application's end and its About panel: quitting is not a window's closing, and
// the About panel's closing is.

#include "platform/qt/QtApplication.h"

#include "QtTestApplication.h"
#include "chooser/QtChooserWindow.h"
#include "platform/qt/QtAboutPanel.h"
#include "support/QtPrinters.h"

#include <QApplication>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

class QtApplicationEnd : public WindowClosingTest
{
protected:
    QtApplication application{center};
};

TEST_F(QtApplicationEnd, QuitHidesOpenWindowsWithoutAnnouncingTheirClosing)
{
    QtChooserWindow chooser(center);
    chooser.makeKeyAndOrderFront();
    application.orderFrontStandardAboutPanel();
    ASSERT_TRUE(chooser.isVisible());
    ASSERT_TRUE(application.aboutPanel()->isVisible());

    QTimer::singleShot(0, [this] { application.terminate(); });
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_FALSE(chooser.isVisible());
    EXPECT_FALSE(application.aboutPanel()->isVisible());
    EXPECT_TRUE(closed.isEmpty()) << "a window announced its closing at quit";
}

TEST_F(QtApplicationEnd, TheAboutPanelAnnouncesEachClosingOnceWhicheverWayItCloses)
{
    application.orderFrontStandardAboutPanel();
    QtAboutPanel *panel = application.aboutPanel();
    ASSERT_NE(panel, nullptr);
    panel->button(QMessageBox::Ok)->click();
    EXPECT_FALSE(panel->isVisible());
    EXPECT_EQ(closed, QList<Window *>{panel});

    application.orderFrontStandardAboutPanel();
    EXPECT_EQ(application.aboutPanel(), panel) << "one panel, shown again";
    QTest::keyClick(panel, Qt::Key_Escape);
    EXPECT_EQ(closed.size(), 2);

    application.orderFrontStandardAboutPanel();
    panel->close();
    EXPECT_EQ(closed.size(), 3);
    panel->close();
    EXPECT_EQ(closed.size(), 3) << "a hidden panel does not close again";
}

} // namespace
