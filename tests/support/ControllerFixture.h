#pragma once

// A running application controller on the in-memory platform, at a fixed instant, zone and
// locale: the state every controller test starts from.

#include "app/AppController.h"
#include "app/cli/DescribeMenu.h"
#include "app/settings/Settings.h"
#include "datetext/DateText.h"
#include "platform/memory/InMemoryPlatform.h"
#include "support/QtPrinters.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>

inline void PrintTo(MenuAction action, std::ostream *os)
{
    const QLatin1String name = MenuActionName(action);
    *os << (name.isEmpty() ? "none" : name.data());
}

// A menu entry's action, or none for a separator.
using MenuRow = std::optional<MenuAction>;
inline constexpr std::nullopt_t kSeparator = std::nullopt;

// 2006-03-10 14:31:47 -0500, a Friday.
inline constexpr AbsoluteTime kFriday = 163711907.0;
inline constexpr double kDay = 86400.0;

class ControllerFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        setenv("TZ", "America/New_York", 1);
        setenv("LANG", "en_US.UTF-8", 1);
        unsetenv("LC_ALL");
        unsetenv("LC_TIME");
        g_selectedDateTime = 0;
        gUserDefaultsDictionary.reset();
    }
    void TearDown() override
    {
        g_selectedDateTime = 0;
        gUserDefaultsDictionary.reset();
    }

    // Starts the controller the way the application does.
    void launch()
    {
        controller.awakeFromNib();
        controller.applicationWillFinishLaunching();
    }

    void set(const QString &key, const QVariant &value)
    {
        platform.store.setAppValue(key, value, AppIdentifier);
    }

    InMemoryStatusItem &item() { return *platform.statusItem(); }
    QStringList menuLines() { return DescribeMenu(*controller.statusMenu().menu()); }
    QList<MenuRow> actions()
    {
        QList<MenuRow> result;
        for (const MenuItem &entry : controller.statusMenu().menu()->items())
            result.append(entry.separator ? kSeparator : MenuRow(entry.action));
        return result;
    }
    QString titleOf(MenuAction action)
    {
        for (const MenuItem &entry : controller.statusMenu().menu()->items()) {
            if (entry.action == action)
                return entry.title;
        }
        return {};
    }

    InMemoryPlatform platform{kFriday};
    Platform services = platform.platform();
    InMemoryWindow preferencesWindow{platform.windowCenter};
    AppController controller{services, platform.chooserInterface(), &preferencesWindow};
};
