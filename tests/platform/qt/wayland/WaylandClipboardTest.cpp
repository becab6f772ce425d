// The Wayland clipboard writer against a stand-in compositor: which protocol it uses, what a copy
// offers, what every paste gets, and what happens when another program takes the clipboard or
// the compositor goes away. Copies go through the application's own clipboard write.

#include "platform/qt/wayland/WaylandClipboard.h"

#include "EventLoopSupport.h"
#include "FakeCompositor.h"
#include "datetext/CopyActions.h"
#include "platform/qt/wayland/PipeWriter.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <optional>
#include <unistd.h>

namespace {

const QStringList kPlainTextTypes{QStringLiteral("text/plain;charset=utf-8"),
                                  QStringLiteral("text/plain"), QStringLiteral("UTF8_STRING"),
                                  QStringLiteral("TEXT"), QStringLiteral("STRING")};

class WaylandClipboardTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        EnsureCoreApplication();
        // Sockets in a runtime directory of our own, never a session's.
        static QTemporaryDir runtime;
        qputenv("XDG_RUNTIME_DIR", runtime.path().toUtf8());
    }

    void startCompositor(FakeCompositor::Globals globals = {})
    {
        m_compositor = std::make_unique<FakeCompositor>(m_socket, globals);
    }

    // The text a pasting program gets in that type; nullopt when nobody answers in time.
    std::optional<QByteArray> paste(const QString &type = kPlainTextTypes.first())
    {
        const int fd = m_compositor->requestPaste(type.toUtf8());
        if (fd < 0)
            return std::nullopt;
        QByteArray text;
        bool ended = false;
        RunEventLoopUntil([&] {
            char buffer[4096];
            ssize_t got = 0;
            while ((got = ::read(fd, buffer, sizeof buffer)) > 0)
                text.append(buffer, got);
            ended = got == 0;
            return ended;
        });
        ::close(fd);
        if (!ended)
            return std::nullopt;
        return text;
    }

    QByteArray m_socket =
        "horalo-test-" + QByteArray::number(::getpid()) + "-" +
        QByteArray(::testing::UnitTest::GetInstance()->current_test_info()->name());
    std::unique_ptr<FakeCompositor> m_compositor;
};

TEST_F(WaylandClipboardTest, UsesTheStandardProtocolWhenTheCompositorHasBoth)
{
    startCompositor({true, true, true});
    WaylandClipboard clipboard(m_socket);
    EXPECT_EQ(clipboard.protocol(), WaylandClipboard::Protocol::Ext);
    ASSERT_EQ(PutStringOnClipboard(clipboard, "x"), 0);
    EXPECT_EQ(m_compositor->source(m_compositor->selectionIndex()).protocol,
              "ext_data_control_source_v1");
}

TEST_F(WaylandClipboardTest, UsesWlrootsProtocolWhereThatIsAllThereIs)
{
    startCompositor({true, false, true});
    WaylandClipboard clipboard(m_socket);
    EXPECT_EQ(clipboard.protocol(), WaylandClipboard::Protocol::Wlr);
    ASSERT_EQ(PutStringOnClipboard(clipboard, "x"), 0);
    EXPECT_EQ(m_compositor->source(m_compositor->selectionIndex()).protocol,
              "zwlr_data_control_source_v1");
    EXPECT_EQ(paste(), QByteArray("x"));
}

TEST_F(WaylandClipboardTest, UnavailableWithoutDataControlOrSeatOrCompositor)
{
    for (const FakeCompositor::Globals globals : {FakeCompositor::Globals{true, false, false},
                                                  FakeCompositor::Globals{false, true, true}}) {
        startCompositor(globals);
        WaylandClipboard clipboard(m_socket);
        EXPECT_FALSE(clipboard.isAvailable());
        EXPECT_NE(PutStringOnClipboard(clipboard, "x"), 0);
        EXPECT_EQ(m_compositor->sourceCount(), 0);
        m_compositor.reset();
    }
    WaylandClipboard nobody(m_socket);
    EXPECT_FALSE(nobody.isAvailable());
    EXPECT_NE(PutStringOnClipboard(nobody, "x"), 0);
}

TEST_F(WaylandClipboardTest, OffersTheExactBytesUnderEveryPlainTextType)
{
    startCompositor();
    WaylandClipboard clipboard(m_socket);
    const QByteArray text = QStringLiteral("«Monday» 日本").toUtf8();
    ASSERT_EQ(PutStringOnClipboard(clipboard, text), 0);
    ASSERT_GE(m_compositor->selectionIndex(), 0);
    EXPECT_EQ(m_compositor->source(m_compositor->selectionIndex()).types, kPlainTextTypes);
    for (const QString &type : kPlainTextTypes)
        EXPECT_EQ(paste(type), text) << type.toStdString();
    // Still served: a paste does not use the text up.
    EXPECT_EQ(paste(), text);
}

TEST_F(WaylandClipboardTest, AnEmptyTextIsAnItemOfZeroBytes)
{
    startCompositor();
    WaylandClipboard clipboard(m_socket);
    ASSERT_EQ(PutStringOnClipboard(clipboard, QByteArray()), 0);
    ASSERT_GE(m_compositor->selectionIndex(), 0);
    EXPECT_EQ(m_compositor->source(m_compositor->selectionIndex()).types, kPlainTextTypes);
    EXPECT_EQ(paste(), QByteArray());
}

TEST_F(WaylandClipboardTest, ASecondCopyReplacesTheFirstOnAFreshSource)
{
    startCompositor();
    WaylandClipboard clipboard(m_socket);
    ASSERT_EQ(PutStringOnClipboard(clipboard, "20261123"), 0);
    const int first = m_compositor->selectionIndex();
    ASSERT_EQ(PutStringOnClipboard(clipboard, "second"), 0);
    const int second = m_compositor->selectionIndex();
    EXPECT_NE(first, second);
    EXPECT_TRUE(m_compositor->source(first).destroyed);
    EXPECT_FALSE(m_compositor->source(second).destroyed);
    EXPECT_EQ(paste(), QByteArray("second"));
}

TEST_F(WaylandClipboardTest, ATakenClipboardIsNoLongerServed)
{
    startCompositor();
    WaylandClipboard clipboard(m_socket);
    ASSERT_EQ(PutStringOnClipboard(clipboard, "mine"), 0);
    const int mine = m_compositor->selectionIndex();
    m_compositor->takeSelection();
    EXPECT_TRUE(RunEventLoopUntil([&] { return m_compositor->source(mine).destroyed; }));
    // The next copy takes the clipboard back.
    ASSERT_EQ(PutStringOnClipboard(clipboard, "again"), 0);
    EXPECT_EQ(paste(), QByteArray("again"));
}

TEST_F(WaylandClipboardTest, AReaderThatNeverReadsHoldsUpNothing)
{
    startCompositor();
    WaylandClipboard clipboard(m_socket);
    ASSERT_EQ(PutStringOnClipboard(clipboard, "text"), 0);
    const int stalled = m_compositor->requestStalledPaste("text/plain");
    ASSERT_GE(stalled, 0);
    EXPECT_TRUE(RunEventLoopUntil([&] { return PipeWriter::pendingCount(&clipboard) == 1; }));
    // Other pastes are answered, and new copies made, while that one waits.
    EXPECT_EQ(paste(), QByteArray("text"));
    EXPECT_EQ(PutStringOnClipboard(clipboard, "next"), 0);
    EXPECT_EQ(paste(), QByteArray("next"));
    ::close(stalled);
}

TEST_F(WaylandClipboardTest, ALostCompositorFailsTheCopyAndANewOneIsFound)
{
    startCompositor();
    WaylandClipboard clipboard(m_socket);
    ASSERT_EQ(PutStringOnClipboard(clipboard, "before"), 0);
    m_compositor.reset();
    EXPECT_NE(PutStringOnClipboard(clipboard, "lost"), 0);
    EXPECT_NE(PutStringOnClipboard(clipboard, "lost"), 0) << "no compositor to reconnect to";

    startCompositor();
    ASSERT_EQ(PutStringOnClipboard(clipboard, "after"), 0);
    EXPECT_EQ(paste(), QByteArray("after"));
}

} // namespace
