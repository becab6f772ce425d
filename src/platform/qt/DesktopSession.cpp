#include "platform/qt/DesktopSession.h"

#include "platform/qt/wayland/WaylandClipboard.h"

#include <QGuiApplication>

QByteArray DesktopSession::qtPlatformFor(const QProcessEnvironment &environment)
{
    if (!environment.value(QStringLiteral("QT_QPA_PLATFORM")).isEmpty())
        return {};
    const bool x11 = !environment.value(QStringLiteral("DISPLAY")).isEmpty();
    const bool wayland = !environment.value(QStringLiteral("WAYLAND_DISPLAY")).isEmpty();
    if (x11 && wayland)
        return "xcb;wayland";
    if (x11)
        return "xcb";
    if (wayland)
        return "wayland";
    return {};
}

void DesktopSession::chooseQtPlatform()
{
    const QByteArray platform = qtPlatformFor(QProcessEnvironment::systemEnvironment());
    if (!platform.isEmpty())
        qputenv("QT_QPA_PLATFORM", platform);
}

DesktopSession::DesktopSession()
{
    // WAYLAND_SOCKET hands over a single connection, which Qt's wayland platform may need; we
    // open a second one only by name.
    if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") &&
        !qEnvironmentVariableIsSet("WAYLAND_SOCKET")) {
        auto wayland = std::make_unique<WaylandClipboard>();
        if (wayland->isAvailable()) {
            m_wayland = std::move(wayland);
            m_path = ClipboardPath::DataControl;
            return;
        }
    }
    m_path = QGuiApplication::platformName() == QLatin1String("xcb") ? ClipboardPath::X11
                                                                     : ClipboardPath::Qt;
}

DesktopSession::~DesktopSession() = default;

Clipboard &DesktopSession::clipboard()
{
    if (m_wayland)
        return *m_wayland;
    return m_qtClipboard;
}
