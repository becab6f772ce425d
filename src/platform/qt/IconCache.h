#pragma once

#include <QHash>
#include <QIcon>
#include <QString>

// The icon resources, decoded once per name. Decoding a multi-page TIFF allocates afresh each
// time, and the status item asks for its icon at every opening of the menu; handing out the
// same QIcon (one shared private, one cache key) also keeps Qt's own pixmap caches from growing
// with each call. The icons are released when the application object goes, while the
// platform that made their pixmaps is still there.
class IconCache
{
public:
    // The icon of a resource name as every size it holds (each page of a TIFF, say); a null
    // icon for a name that is not a resource.
    static QIcon iconNamed(const QString &imageName);
    // Empties the cache (the application's end does it).
    static void clear();

private:
    static QIcon decode(const QString &imageName);
    static QHash<QString, QIcon> &icons();
};

// The icon resource of a name as every size it holds (each page of a TIFF, say), decoded once
// per name: every call for a name returns the same icon.
QIcon LoadIconResource(const QString &imageName);
