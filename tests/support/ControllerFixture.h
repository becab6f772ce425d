#pragma once

// A running application controller on the in-memory platform, at a fixed instant, zone and
// locale: the state every controller test starts from.

#include "app/AppController.h"
#include "app/settings/Settings.h"
#include "datetext/DateText.h"
#include "platform/memory/InMemoryPlatform.h"
#include "support/QtPrinters.h"

#include <gtest/gtest.h>

#include <cstdlib>

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
    QStringList actions()
    {
        QStringList result;
        for (const MenuItem &entry : controller.statusMenu().menu()->items())
            result.append(entry.separator ? QStringLiteral("-") : entry.action);
        return result;
    }
    QString titleOf(const QString &action)
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
