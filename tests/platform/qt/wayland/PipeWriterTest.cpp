// Answering a paste without blocking: a text larger than the pipe goes out as the reader drains
// it, a pipe that stays full is given up on, and a reader that went away costs nothing.

#include "platform/qt/wayland/PipeWriter.h"

#include "EventLoopSupport.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

namespace {

class PipeWriterTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { EnsureCoreApplication(); }

    void SetUp() override { ASSERT_EQ(::pipe2(m_fds, O_CLOEXEC | O_NONBLOCK), 0); }
    void TearDown() override
    {
        if (m_fds[0] >= 0)
            ::close(m_fds[0]);
    }

    void fillPipe()
    {
        const QByteArray filler(4096, '.');
        while (::write(m_fds[1], filler.constData(), static_cast<size_t>(filler.size())) > 0)
            m_filled += filler.size();
    }

    // Reads everything up to the end, running the event loop meanwhile; false on timeout.
    bool drain(QByteArray &got, int milliseconds = 3000)
    {
        QElapsedTimer elapsed;
        elapsed.start();
        while (elapsed.elapsed() < milliseconds) {
            char buffer[8192];
            const ssize_t n = ::read(m_fds[0], buffer, sizeof buffer);
            if (n == 0)
                return true;
            if (n > 0)
                got.append(buffer, n);
            QCoreApplication::processEvents(QEventLoop::AllEvents, 2);
        }
        return false;
    }

    int m_fds[2] = {-1, -1};
    qsizetype m_filled = 0;
    QObject m_owner;
};

TEST_F(PipeWriterTest, ASmallTextGoesAtOnceAndEndsThePipe)
{
    EXPECT_TRUE(PipeWriter::start(m_fds[1], "20261123", &m_owner));
    EXPECT_EQ(PipeWriter::pendingCount(&m_owner), 0);
    QByteArray got;
    ASSERT_TRUE(drain(got));
    EXPECT_EQ(got, QByteArray("20261123"));
}

TEST_F(PipeWriterTest, ATextLargerThanThePipeFollowsAsTheReaderDrains)
{
    QByteArray text(300 * 1024, 'x');
    text.append("end");
    EXPECT_FALSE(PipeWriter::start(m_fds[1], text, &m_owner));
    EXPECT_EQ(PipeWriter::pendingCount(&m_owner), 1);
    QByteArray got;
    ASSERT_TRUE(drain(got));
    EXPECT_EQ(got, text);
    QCoreApplication::processEvents();
    EXPECT_EQ(PipeWriter::pendingCount(&m_owner), 0);
}

TEST_F(PipeWriterTest, APipeThatStaysFullIsGivenUp)
{
    fillPipe();
    EXPECT_FALSE(PipeWriter::start(m_fds[1], "payload", &m_owner, 100));
    EXPECT_EQ(PipeWriter::pendingCount(&m_owner), 1);
    EXPECT_TRUE(RunEventLoopUntil([this] { return PipeWriter::pendingCount(&m_owner) == 0; }));
    // Whatever was in the pipe, then the end: the text never went in.
    QByteArray got;
    ASSERT_TRUE(drain(got));
    EXPECT_EQ(got.size(), m_filled);
    EXPECT_FALSE(got.contains("payload"));
}

TEST_F(PipeWriterTest, AReaderThatWentAwayCostsAFailedWriteOnly)
{
    ::close(m_fds[0]);
    m_fds[0] = -1;
    EXPECT_FALSE(PipeWriter::start(m_fds[1], "nobody reads", &m_owner));
    EXPECT_EQ(PipeWriter::pendingCount(&m_owner), 0);
}

} // namespace
