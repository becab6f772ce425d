#include "platform/qt/wayland/PipeWriter.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

enum class WriteResult
{
    Done,
    Again,
    Failed
};

// Writes as much of bytes as the pipe takes now and drops that from the front.
WriteResult WriteSome(int fd, QByteArray &bytes)
{
    while (!bytes.isEmpty()) {
        const ssize_t written = ::write(fd, bytes.constData(), static_cast<size_t>(bytes.size()));
        if (written > 0) {
            bytes.remove(0, static_cast<qsizetype>(written));
            continue;
        }
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0 && (errno == EAGAIN || errno == EWOULDBLOCK))
            return WriteResult::Again;
        return WriteResult::Failed; // the reader went away (EPIPE) or the fd is unusable
    }
    return WriteResult::Done;
}

} // namespace

bool PipeWriter::start(int fd, const QByteArray &bytes, QObject *parent, int stallMs)
{
    // A reader that closes its end early must cost us a failed write, not the process.
    std::signal(SIGPIPE, SIG_IGN);
    const int flags = ::fcntl(fd, F_GETFL);
    if (flags < 0 || ::fcntl(fd, F_SETFL, flags | O_NONBLOCK) < 0) {
        ::close(fd);
        return false;
    }
    QByteArray rest = bytes;
    switch (WriteSome(fd, rest)) {
    case WriteResult::Done:
        ::close(fd);
        return true;
    case WriteResult::Failed:
        ::close(fd);
        return false;
    case WriteResult::Again:
        new PipeWriter(fd, std::move(rest), parent, stallMs);
        return false;
    }
    return false;
}

int PipeWriter::pendingCount(const QObject *parent)
{
    return static_cast<int>(
        parent->findChildren<PipeWriter *>(QString(), Qt::FindDirectChildrenOnly).size());
}

PipeWriter::PipeWriter(int fd, QByteArray rest, QObject *parent, int stallMs)
    : QObject(parent), m_fd(fd), m_rest(std::move(rest)), m_notifier(fd, QSocketNotifier::Write)
{
    connect(&m_notifier, &QSocketNotifier::activated, this, &PipeWriter::writable);
    m_stallTimer.setSingleShot(true);
    m_stallTimer.setInterval(stallMs);
    connect(&m_stallTimer, &QTimer::timeout, this, &PipeWriter::finish);
    m_stallTimer.start();
}

PipeWriter::~PipeWriter()
{
    m_notifier.setEnabled(false);
    ::close(m_fd);
}

void PipeWriter::writable()
{
    const qsizetype before = m_rest.size();
    const WriteResult result = WriteSome(m_fd, m_rest);
    if (result != WriteResult::Again) {
        finish();
        return;
    }
    // Only a pipe that takes nothing at all counts as stalled.
    if (m_rest.size() < before)
        m_stallTimer.start();
}

void PipeWriter::finish()
{
    m_notifier.setEnabled(false);
    m_stallTimer.stop();
    // Out of the pending count at once; the object itself goes when this event is handled.
    setParent(nullptr);
    deleteLater();
}
