#pragma once

#include "SniTestSupport.h"
#include "platform/qt/sni/SniStatusItem.h"

// One exported item, registered with a stand-in watcher, watched by a stand-in host.
class SniItemFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        watcher = std::make_unique<StandInWatcher>();
        item = std::make_unique<SniStatusItem>(QDBusConnection::sessionBus());
        host = std::make_unique<StandInHost>(item->serviceName());
        ASSERT_TRUE(item->isExported());
        ASSERT_TRUE(WaitFor([this] { return item->isRegistered(); }));
    }
    void TearDown() override
    {
        host.reset();
        item.reset();
        watcher.reset();
    }

    std::unique_ptr<StandInWatcher> watcher;
    std::unique_ptr<SniStatusItem> item;
    std::unique_ptr<StandInHost> host;
};
