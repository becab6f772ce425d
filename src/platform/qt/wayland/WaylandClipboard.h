#pragma once

#include "platform/Clipboard.h"

#include <QByteArray>
#include <QObject>
#include <QStringList>

#include <memory>

// The clipboard of a Wayland session, owned through the compositor's data-control protocol: the
// standard ext one, or wlroots' own where that is all there is. A compositor hands its ordinary
// clipboard only to the program with keyboard focus, and a tray program never has it; data-control
// is how a program without a window owns the clipboard. The writer keeps its own connection to
// the compositor, apart from whatever Qt platform draws the windows, and is driven by the event
// loop of the thread that made it: a paste is answered without ever blocking that loop.
class WaylandClipboard final : public QObject, public Clipboard
{
    Q_OBJECT
public:
    enum class Protocol
    {
        None,
        Ext,
        Wlr
    };

    // Connects to the compositor of that socket name (WAYLAND_DISPLAY's when empty). Needs the
    // application object. A compositor that cannot be reached or offers no data-control leaves
    // the writer unavailable.
    explicit WaylandClipboard(const QByteArray &displayName = {});
    ~WaylandClipboard() override;

    // Whether the compositor offered data-control and a seat at the last connection.
    bool isAvailable() const;
    Protocol protocol() const;

    // Reconnects when the connection was lost; non-zero when no clipboard can be reached, and
    // then nothing is changed. Otherwise drops our earlier text, if the clipboard still holds
    // it, and offers exactly these bytes under every plain-text type on a fresh source, as the
    // selection. 0 once the compositor has taken the selection. The bytes are served to every
    // paste until another program takes the clipboard or this writer goes away.
    int writeUtf8PlainText(const QByteArray &bytes) override;

    // The types a paste may ask for; every one gets the same UTF-8 bytes.
    static QStringList offeredMimeTypes();

    // How long a compositor may take to answer before the connection counts as lost.
    static constexpr int kCompositorTimeoutMs = 2000;

    // The compositor connection and a data source; defined where they are used.
    struct Connection;
    struct Source;

private:
    void connectToCompositor();
    void dispatchEvents();
    void markBroken();
    void dropSource();
    bool createSource();
    bool sync();
    bool readAndDispatch(int timeoutMs);
    bool flush();
    void answerPaste(Source &source, int fd);
    void sourceCancelled(Source &source);

    QByteArray m_displayName;
    std::unique_ptr<Connection> m_connection;
    std::unique_ptr<Source> m_source;
};
