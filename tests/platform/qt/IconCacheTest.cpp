// The icon is decoded once per name: the status item asks for it at every opening of the menu,
// and a fresh decode each time grew the heap with every click.

#include "platform/qt/IconCache.h"

#include "SniTestSupport.h"
#include "platform/qt/TrayStatusItem.h"

#include <QImageReader>

namespace {

const QString kIcon = QStringLiteral("Horalo.tif");

TEST(IconCacheTest, EachNameIsDecodedOnceWithEveryPageAsASize)
{
    IconCache::clear();
    const QIcon first = LoadIconResource(kIcon);
    ASSERT_FALSE(first.isNull());
    QImageReader reader(QStringLiteral(":/") + kIcon);
    EXPECT_EQ(first.availableSizes().size(), reader.imageCount());

    // The same icon, not an equal one: Qt keys its pixmap caches on this.
    EXPECT_EQ(LoadIconResource(kIcon).cacheKey(), first.cacheKey());
    EXPECT_EQ(IconCache::iconNamed(kIcon).cacheKey(), first.cacheKey());

    // Emptied, the cache decodes again: the key above was the cache's doing.
    IconCache::clear();
    const QIcon again = LoadIconResource(kIcon);
    EXPECT_NE(again.cacheKey(), first.cacheKey());
    EXPECT_EQ(again.availableSizes(), first.availableSizes());
}

TEST(IconCacheTest, AMissingNameIsANullIconAndLeavesOthersAlone)
{
    const qint64 icon = LoadIconResource(kIcon).cacheKey();
    EXPECT_TRUE(LoadIconResource(QStringLiteral("no-such-icon.tif")).isNull());
    EXPECT_TRUE(LoadIconResource(QString()).isNull());
    EXPECT_EQ(LoadIconResource(kIcon).cacheKey(), icon);
}

TEST(IconCacheTest, TheTrayIconKeepsItsIconThroughEveryOpening)
{
    TrayStatusItem item;
    const qint64 shown = item.trayIcon().icon().cacheKey();
    ASSERT_FALSE(item.trayIcon().icon().isNull());
    // The menu sets the image at each opening, and clears it when the setting says no icon.
    for (int opening = 0; opening < 50; ++opening)
        item.setImage(opening % 10 == 4 ? QString() : kIcon);
    EXPECT_EQ(item.trayIcon().icon().cacheKey(), shown);
}

} // namespace
