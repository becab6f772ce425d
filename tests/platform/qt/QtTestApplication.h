#pragma once

#include "platform/NotificationCenter.h"
#include "platform/Window.h"

#include <QApplication>

#include <gtest/gtest.h>

// The widget application of this test program, made by the first test suite that needs one and
// kept to the end: Qt allows one per process.
inline void EnsureQApplication()
{
    static int argc = 1;
    static char name[] = "horalo_qt_desktop_test";
    static char *argv[] = {name, nullptr};
    if (!QApplication::instance())
        new QApplication(argc, argv);
}

// Windows that announce their closing to a centre of their own; the announced windows in order.
class WindowClosingTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { EnsureQApplication(); }
    void SetUp() override
    {
        center.addWindowWillCloseObserver([this](Window *closing) { closed.append(closing); });
    }

    LocalWindowNotificationCenter center;
    QList<Window *> closed;
};
