#pragma once

#include "platform/Clipboard.h"
#include "platform/qt/QtClipboard.h"

#include <QByteArray>
#include <QProcessEnvironment>

#include <memory>

class WaylandClipboard;

// How Horalo meets the session it starts in: which Qt platform draws its windows and which
// clipboard its copies reach.
//
// Windows use X11 wherever an X server is there, since the chooser must float above other
// windows and Wayland lets no client ask for that; with no X server they use Wayland, so Horalo
// starts in a session without XWayland. Copies go through the compositor's data-control
// protocol when it has one, because a tray program is never focused and Wayland programs see an
// X11 selection only while an X11 window has focus. Elsewhere (GNOME's compositor passes the X11
// clipboard on) they go through Qt's clipboard on the platform chosen for the windows.
class DesktopSession
{
public:
    enum class ClipboardPath
    {
        DataControl, // our own Wayland connection
        X11,         // Qt's clipboard on xcb (XWayland or a plain X server)
        Qt           // Qt's clipboard on whatever else it runs
    };

    // The Qt platform to ask for in this environment; empty when the user's QT_QPA_PLATFORM
    // stands or nothing better is known. With both displays set, Wayland is the fallback for an
    // X server that cannot be reached.
    static QByteArray qtPlatformFor(const QProcessEnvironment &environment);
    // Sets QT_QPA_PLATFORM for the application object about to be made.
    static void chooseQtPlatform();

    // Picks the clipboard path; needs the application object.
    DesktopSession();
    ~DesktopSession();

    Clipboard &clipboard();
    ClipboardPath clipboardPath() const { return m_path; }

private:
    std::unique_ptr<WaylandClipboard> m_wayland;
    QtClipboard m_qtClipboard;
    ClipboardPath m_path = ClipboardPath::Qt;
};
