#include "platform/qt/IconCache.h"

#include <QCoreApplication>
#include <QImageReader>
#include <QPixmap>

namespace {

bool g_releaseRegistered = false;

void ReleaseIcons()
{
    IconCache::clear();
    // Post routines run once; an application made after this one registers again.
    g_releaseRegistered = false;
}

} // namespace

QHash<QString, QIcon> &IconCache::icons()
{
    static QHash<QString, QIcon> s_icons;
    return s_icons;
}

QIcon IconCache::iconNamed(const QString &imageName)
{
    QHash<QString, QIcon> &cache = icons();
    if (const auto found = cache.constFind(imageName); found != cache.cend())
        return *found;
    if (!g_releaseRegistered) {
        qAddPostRoutine(ReleaseIcons);
        g_releaseRegistered = true;
    }
    // A missing name is kept as a null icon too: resources do not appear during a run.
    return *cache.insert(imageName, decode(imageName));
}

void IconCache::clear()
{
    icons().clear();
}

QIcon IconCache::decode(const QString &imageName)
{
    QIcon icon;
    QImageReader reader(QStringLiteral(":/") + imageName);
    const int count = qMax(1, reader.imageCount());
    for (int i = 0; i < count; ++i) {
        if (i > 0 && !reader.jumpToNextImage())
            break;
        const QImage image = reader.read();
        if (!image.isNull())
            icon.addPixmap(QPixmap::fromImage(image));
    }
    return icon;
}

QIcon LoadIconResource(const QString &imageName)
{
    return IconCache::iconNamed(imageName);
}
