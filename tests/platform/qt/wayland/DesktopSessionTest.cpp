// Which Qt platform draws the windows in which session.

#include "platform/qt/DesktopSession.h"

#include <gtest/gtest.h>

namespace {

QByteArray PlatformFor(std::initializer_list<std::pair<const char *, const char *>> variables)
{
    QProcessEnvironment environment;
    for (const auto &[name, value] : variables)
        environment.insert(QString::fromUtf8(name), QString::fromUtf8(value));
    return DesktopSession::qtPlatformFor(environment);
}

TEST(DesktopSessionTest, WindowsUseX11WhereAnXServerIsThere)
{
    EXPECT_EQ(PlatformFor({{"DISPLAY", ":0"}}), "xcb");
    // In a Wayland session with XWayland, Wayland is only the fallback for an X server that
    // does not answer.
    EXPECT_EQ(PlatformFor({{"DISPLAY", ":0"}, {"WAYLAND_DISPLAY", "wayland-1"}}), "xcb;wayland");
}

TEST(DesktopSessionTest, WindowsUseWaylandWithoutAnXServer)
{
    EXPECT_EQ(PlatformFor({{"WAYLAND_DISPLAY", "wayland-1"}}), "wayland");
    EXPECT_EQ(PlatformFor({{"WAYLAND_DISPLAY", "wayland-1"}, {"DISPLAY", ""}}), "wayland");
}

TEST(DesktopSessionTest, TheUsersOwnPlatformWins)
{
    EXPECT_EQ(PlatformFor({{"QT_QPA_PLATFORM", "wayland"}, {"DISPLAY", ":0"}}), "");
    EXPECT_EQ(PlatformFor({{"QT_QPA_PLATFORM", "offscreen"}}), "");
    // Set but empty is no choice.
    EXPECT_EQ(PlatformFor({{"QT_QPA_PLATFORM", ""}, {"DISPLAY", ":0"}}), "xcb");
}

TEST(DesktopSessionTest, NoSessionLeavesQtToItself)
{
    EXPECT_EQ(PlatformFor({}), "");
}

} // namespace
