#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

// Answers one paste: writes the bytes into the reader's pipe and closes it, without ever
// blocking the event loop. A reader that stops reading must not freeze the program that serves
// the clipboard, so the pipe is written non-blocking, the rest goes out as the pipe drains, and a
// pipe that takes nothing for a while is given up on (closed, its reader gets a short text).
class PipeWriter final : public QObject
{
    Q_OBJECT
public:
    // How long a pipe may stay full before it is given up on.
    static constexpr int kDefaultStallMs = 5000;

    // Takes ownership of fd. Writes what the pipe takes at once; when that is everything (the
    // usual case for a date), the fd is closed before this returns and no writer is made.
    // Otherwise a writer, a child of parent, finishes the job and deletes itself. Returns
    // whether the whole text was written at once.
    static bool start(int fd, const QByteArray &bytes, QObject *parent,
                      int stallMs = kDefaultStallMs);

    // Writers still waiting for their pipes to drain under parent.
    static int pendingCount(const QObject *parent);

    ~PipeWriter() override;

private:
    PipeWriter(int fd, QByteArray rest, QObject *parent, int stallMs);
    void writable();
    void finish();

    int m_fd;
    QByteArray m_rest;
    QSocketNotifier m_notifier;
    QTimer m_stallTimer;
};
