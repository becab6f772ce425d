#include "SniItemFixture.h"

#include <QDBusConnectionInterface>
#include <QDBusObjectPath>
#include <QDBusServiceWatcher>
#include <QFileInfo>
#include <QImageReader>
#include <QRegularExpression>

using ItemPropertiesTest = SniItemFixture;

TEST_F(ItemPropertiesTest, RegistersOnceUnderANameOfItsOwn)
{
    Settle();
    EXPECT_EQ(watcher->registeredItems(), QStringList{item->serviceName()});
    const QRegularExpression pattern(QStringLiteral("^org\\.kde\\.StatusNotifierItem-%1-[0-9]+$")
                                         .arg(QCoreApplication::applicationPid()));
    EXPECT_TRUE(pattern.match(item->serviceName()).hasMatch()) << item->serviceName().toStdString();

    // The bus may announce the watcher's owner after the item has asked that owner already (the
    // watcher took its name while the item was being made): one registration all the same.
    auto *owners = item->findChild<QDBusServiceWatcher *>();
    ASSERT_NE(owners, nullptr);
    const QString owner =
        QDBusConnection::sessionBus().interface()->serviceOwner(SniStatusItem::watcherService());
    Q_EMIT owners->serviceOwnerChanged(SniStatusItem::watcherService(), QString(), owner);
    Settle();
    EXPECT_EQ(watcher->registeredItems(), QStringList{item->serviceName()});
}

TEST_F(ItemPropertiesTest, DescribeAClockWhoseItemIsItsMenu)
{
    const QVariantMap properties = host->itemProperties();
    EXPECT_EQ(properties.value(QStringLiteral("Id")).toString(), u"horalo");
    EXPECT_EQ(properties.value(QStringLiteral("Category")).toString(), u"ApplicationStatus");
    EXPECT_EQ(properties.value(QStringLiteral("Status")).toString(), u"Active");
    EXPECT_EQ(properties.value(QStringLiteral("Title")).toString(), u"Horalo");
    EXPECT_TRUE(properties.value(QStringLiteral("ItemIsMenu")).toBool());
    EXPECT_EQ(qdbus_cast<QDBusObjectPath>(properties.value(QStringLiteral("Menu"))).path(),
              u"/MenuBar");
    // Before the first refresh there is no title, and so no label.
    EXPECT_EQ(properties.value(QStringLiteral("XAyatanaLabel")).toString(), QString());
}

TEST_F(ItemPropertiesTest, IconNameIsAPngFileWhenTheIconIsNotInstalled)
{
    const QString iconName = host->itemProperty(QStringLiteral("IconName")).toString();
    ASSERT_TRUE(QFileInfo(iconName).isAbsolute()) << iconName.toStdString();
    EXPECT_TRUE(iconName.startsWith(qEnvironmentVariable("XDG_RUNTIME_DIR")));
    const QImage image(iconName);
    EXPECT_EQ(image.size(), QSize(64, 64));
}

TEST_F(ItemPropertiesTest, IconPixmapHoldsEverySizeAsArgbInNetworkByteOrder)
{
    const auto pixmaps =
        qdbus_cast<SniIconPixmapList>(host->itemProperties().value(QStringLiteral("IconPixmap")));
    QList<int> widths;
    for (const SniIconPixmap &pixmap : pixmaps) {
        widths.append(pixmap.width);
        EXPECT_EQ(pixmap.width, pixmap.height);
        EXPECT_EQ(pixmap.pixels.size(), pixmap.width * pixmap.height * 4);
    }
    EXPECT_EQ(widths, QList<int>({16, 22, 24, 32, 48, 64}));

    QImageReader reader(QStringLiteral(":/Horalo.tif"));
    const QImage smallest = reader.read().convertToFormat(QImage::Format_ARGB32);
    ASSERT_EQ(smallest.width(), 16);
    for (const QPoint at : {QPoint(8, 8), QPoint(0, 0), QPoint(3, 12)}) {
        const QRgb expected = smallest.pixel(at);
        const auto *bytes = reinterpret_cast<const uchar *>(pixmaps.first().pixels.constData()) +
                            (at.y() * 16 + at.x()) * 4;
        EXPECT_EQ(bytes[0], qAlpha(expected));
        EXPECT_EQ(bytes[1], qRed(expected));
        EXPECT_EQ(bytes[2], qGreen(expected));
        EXPECT_EQ(bytes[3], qBlue(expected));
    }
}

TEST_F(ItemPropertiesTest, LabelAndToolTipFollowEveryChangedTitle)
{
    item->setTitle(QStringLiteral("2:31:47\u202FPM"));
    ASSERT_TRUE(WaitFor(
        [this] { return host->signalsNamed(QStringLiteral("XAyatanaNewLabel")).size() == 1; }));
    const QDBusMessage signal = host->signalsNamed(QStringLiteral("XAyatanaNewLabel")).first();
    EXPECT_EQ(signal.arguments(),
              QVariantList({QStringLiteral("2:31:47\u202FPM"), QStringLiteral("2:31:47\u202FPM")}));
    EXPECT_EQ(host->itemProperty(QStringLiteral("XAyatanaLabel")).toString(), u"2:31:47\u202FPM");
    EXPECT_EQ(host->itemProperty(QStringLiteral("XAyatanaLabelGuide")).toString(),
              u"2:31:47\u202FPM");
    const auto toolTip =
        qdbus_cast<SniToolTip>(host->itemProperties().value(QStringLiteral("ToolTip")));
    EXPECT_EQ(toolTip.title, u"2:31:47\u202FPM");
    EXPECT_EQ(host->signalsNamed(QStringLiteral("NewToolTip")).size(), 1);

    // The refresh sets the same text again and again; only a change is announced.
    item->setTitle(QStringLiteral("2:31:47\u202FPM"));
    Settle();
    EXPECT_EQ(host->signalsNamed(QStringLiteral("XAyatanaNewLabel")).size(), 1);

    item->setTitle(QStringLiteral("2:31:48\u202FPM"));
    ASSERT_TRUE(WaitFor(
        [this] { return host->signalsNamed(QStringLiteral("XAyatanaNewLabel")).size() == 2; }));
    EXPECT_EQ(host->signalsNamed(QStringLiteral("XAyatanaNewLabel")).last().arguments().first(),
              QStringLiteral("2:31:48\u202FPM"));
    EXPECT_EQ(host->itemProperty(QStringLiteral("XAyatanaLabel")).toString(), u"2:31:48\u202FPM");
}

using WatcherRestartTest = SniItemFixture;

TEST_F(WatcherRestartTest, ARestartedWatcherGetsTheItemOnce)
{
    watcher.reset();
    ASSERT_TRUE(WaitFor([this] { return !item->isRegistered(); }));
    // The item stays on the bus while no panel runs.
    EXPECT_EQ(host->itemProperty(QStringLiteral("Id")).toString(), u"horalo");

    watcher = std::make_unique<StandInWatcher>();
    ASSERT_TRUE(WaitFor([this] { return item->isRegistered(); }));
    Settle(200);
    EXPECT_EQ(watcher->registeredItems(), QStringList{item->serviceName()});

    watcher.reset();
    watcher = std::make_unique<StandInWatcher>();
    ASSERT_TRUE(WaitFor([this] { return watcher->registeredItems().size() == 1; }));
    Settle(200);
    EXPECT_EQ(watcher->registeredItems(), QStringList{item->serviceName()});
}

TEST(ItemIconThemeTest, AnInstalledIconIsNamedByTheTheme)
{
    const QString icons = QtApplicationEnvironment::scratch() + QStringLiteral("/data/icons");
    const QString svg = icons + QStringLiteral("/hicolor/scalable/apps/horalo.svg");
    ASSERT_TRUE(QDir().mkpath(QFileInfo(svg).path()));
    QFile::copy(QStringLiteral(":/Horalo.tif"), svg); // its content does not matter here
    SniStatusItem installed(QDBusConnection::sessionBus());
    EXPECT_EQ(installed.iconName(), u"horalo");
    // Hosts look the name up under the directory where it was found, whatever the prefix.
    EXPECT_EQ(installed.iconThemePath(), icons);
    QFile::remove(svg);
}
