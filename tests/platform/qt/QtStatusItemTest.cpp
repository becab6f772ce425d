#include "platform/qt/QtStatusItem.h"

#include "SniTestSupport.h"
#include "platform/qt/sni/SniStatusItem.h"

TEST(StatusItemBackendTest, WithoutASessionBusItIsATrayIcon)
{
    const QDBusConnection noBus(QStringLiteral("no-such-connection"));
    ASSERT_FALSE(noBus.isConnected());
    QtStatusItem item(noBus);
    EXPECT_EQ(item.backend(), QtStatusItem::Backend::Tray);
    item.setTitle(QStringLiteral("Mar 10, 2006"));
    EXPECT_EQ(item.title(), u"Mar 10, 2006");
    EXPECT_EQ(item.backendItem()->title(), u"Mar 10, 2006");
}

TEST(StatusItemBackendTest, WithAWatcherItIsOurItemRegisteredOnce)
{
    StandInWatcher watcher;
    QtStatusItem item(QDBusConnection::sessionBus());
    ASSERT_EQ(item.backend(), QtStatusItem::Backend::StatusNotifierItem);
    ASSERT_TRUE(WaitFor([&] { return watcher.registeredItems().size() == 1; }));
    Settle();
    EXPECT_EQ(watcher.registeredItems().size(), 1);
}

TEST(StatusItemBackendTest, TheTrayIconGivesWayToAWatcherThatAppearsLater)
{
    RecordingController controller;
    controller.menuNeedsUpdate(&controller.menu);
    QtStatusItem item(QDBusConnection::sessionBus());
    ASSERT_EQ(item.backend(), QtStatusItem::Backend::Tray);
    item.setMenu(&controller.menu);
    item.setImage(QStringLiteral("Horalo.tif"));
    item.setTitle(QStringLiteral("2:31:47\u202FPM"));

    auto watcher = std::make_unique<StandInWatcher>();
    ASSERT_TRUE(
        WaitFor([&] { return item.backend() == QtStatusItem::Backend::StatusNotifierItem; }));
    auto *sni = dynamic_cast<SniStatusItem *>(item.backendItem());
    ASSERT_NE(sni, nullptr);
    ASSERT_TRUE(WaitFor([&] { return sni->isRegistered(); }));
    EXPECT_EQ(watcher->registeredItems(), QStringList{sni->serviceName()});

    // What the logic set before the switch is what the panel shows after it.
    StandInHost host(sni->serviceName());
    EXPECT_EQ(host.itemProperty(QStringLiteral("XAyatanaLabel")).toString(), u"2:31:47\u202FPM");
    EXPECT_EQ(sni->menu(), &controller.menu);
    EXPECT_EQ(sni->image(), u"Horalo.tif");
    EXPECT_TRUE(host.callMenu(QStringLiteral("AboutToShow"), {0}).arguments().first().toBool());
    EXPECT_EQ(controller.builds, 2);

    // Later titles reach the item through the same status item the logic holds.
    item.setTitle(QStringLiteral("2:31:48\u202FPM"));
    ASSERT_TRUE(
        WaitFor([&] { return !host.signalsNamed(QStringLiteral("XAyatanaNewLabel")).isEmpty(); }));

    // A panel restart keeps our item, registered again with the new watcher.
    watcher.reset();
    watcher = std::make_unique<StandInWatcher>();
    ASSERT_TRUE(WaitFor([&] { return watcher->registeredItems().size() == 1; }));
    Settle(200);
    EXPECT_EQ(item.backendItem(), sni);
    EXPECT_EQ(watcher->registeredItems(), QStringList{sni->serviceName()});
}
