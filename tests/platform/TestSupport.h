#pragma once

#include "support/QtPrinters.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QString>
#include <QTemporaryDir>
#include <QThread>

#include <functional>
#include <ostream>

// The application object that QtDBus and queued calls need, one per test process.
inline QCoreApplication &TestApplication()
{
    static int argc = 1;
    static char name[] = "horalo-test";
    static char *argv[] = {name, nullptr};
    static QCoreApplication *application = QCoreApplication::instance()
                                               ? QCoreApplication::instance()
                                               : new QCoreApplication(argc, argv);
    return *application;
}

// Runs the event loop until the condition holds or the time is up; returns the condition.
inline bool ProcessEventsUntil(const std::function<bool()> &condition, int timeoutMs = 5000)
{
    const QDeadlineTimer deadline(timeoutMs);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(1);
    }
    return true;
}

// A fresh directory inside the test's own scratch space, removed at the end of the test.
inline QTemporaryDir ScratchDirectory()
{
    const QString root = qEnvironmentVariable("HORALO_TEST_TMP", QDir::tempPath());
    QDir().mkpath(root);
    return QTemporaryDir(root + QStringLiteral("/case-XXXXXX"));
}

inline QByteArray ReadFileBytes(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

inline bool WriteFileBytes(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
           file.write(bytes) == bytes.size();
}
