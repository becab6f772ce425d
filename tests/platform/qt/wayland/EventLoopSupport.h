#pragma once

// The event loop for tests of objects driven by it: one application object for the whole run,
// and a loop that runs until a condition holds.

#include <QCoreApplication>
#include <QElapsedTimer>

inline void EnsureCoreApplication()
{
    static int argc = 1;
    static char name[] = "horalo_wayland_clipboard_test";
    static char *argv[] = {name, nullptr};
    if (!QCoreApplication::instance())
        new QCoreApplication(argc, argv);
}

// Runs the event loop until done() holds or the time is up; returns done().
template <typename Condition> bool RunEventLoopUntil(Condition done, int milliseconds = 3000)
{
    QElapsedTimer elapsed;
    elapsed.start();
    while (!done() && elapsed.elapsed() < milliseconds)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    return done();
}
