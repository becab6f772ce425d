#pragma once

// The preferences controller on the in-memory platform, with in-memory controls laid out as the
// desktop window lays them out.

#include "app/settings/Settings.h"
#include "datetext/DateTextTestSupport.h"
#include "platform/memory/InMemoryPlatform.h"
#include "prefpane/HoraloPrefPane.h"
#include "support/InMemoryPrefPaneControls.h"
#include "support/QtPrinters.h"

#include <gtest/gtest.h>

#include <memory>

// 2006-03-10 14:31:47 in New York (19:31:47 GMT), a Friday.
inline constexpr AbsoluteTime kFixedInstant = 163711907.0;

class PrefPaneTest : public ::testing::Test
{
protected:
    ScopedDateEnvironment environment;
    PrefPaneTest()
    {
        // Previews render dates: pin the zone and the locale whatever the shell has.
        environment.setLocaleAndZone("en_US.UTF-8", "America/New_York");
        memory.application.infoDictionary.insert(QStringLiteral("CFBundleName"),
                                                 QStringLiteral("Horalo"));
        memory.application.infoDictionary.insert(QStringLiteral("CFBundleShortVersionString"),
                                                 QStringLiteral("2.0"));
        memory.distributedCenter.addObserver(PreferencesChangedNotification, AppIdentifier,
                                             [this] { ++broadcasts; });
    }

    // Loads the layout: the controller is made, wired and woken.
    void awake()
    {
        pane = std::make_unique<HoraloPrefPane>(platform, controls.outlets());
        controls.connectActions(*pane);
        pane->awakeFromNib();
        memory.ownStore.log.clear();
    }

    QVariant stored(const QString &key) { return memory.store.copyAppValue(key, AppIdentifier); }
    void put(const QString &key, const QVariant &value)
    {
        memory.store.setAppValue(key, value, AppIdentifier);
    }
    void putFormats(const QStringList &formats)
    {
        QVariantList list;
        for (const QString &format : formats)
            list.append(format);
        put(SettingsKey::CustomDates, list);
    }
    QStringList storedFormats() { return CustomDatesFromValue(stored(SettingsKey::CustomDates)); }
    QStringList &storeLog() { return memory.ownStore.log; }
    // Broadcasts that were posted and have reached the observer.
    int deliveredBroadcasts()
    {
        memory.processEvents();
        return broadcasts;
    }
    InMemoryTableView &table() { return controls.customDatesTable; }

    InMemoryPlatform memory{kFixedInstant};
    Platform platform = memory.platform();
    int broadcasts = 0; // "Preferences Changed" from AppIdentifier, as delivered
    InMemoryWindow preferencesWindow{memory.windowCenter};
    InMemoryPrefPaneControls controls{&preferencesWindow};
    std::unique_ptr<HoraloPrefPane> pane;
};
