#pragma once

#include "FuzzCheck.h"
#include "platform/store/PropertyList.h"

#include <QDateTime>

#include <cmath>

// Equality of property-list trees as the store sees them; unlike QVariant's, a NaN equals a NaN.
inline bool SamePropertyListValue(const QVariant &a, const QVariant &b)
{
    if (a.typeId() != b.typeId())
        return false;
    switch (a.typeId()) {
    case QMetaType::Double: {
        const double x = a.toDouble();
        const double y = b.toDouble();
        return (std::isnan(x) && std::isnan(y)) || x == y;
    }
    case QMetaType::QVariantList: {
        const QVariantList x = a.toList();
        const QVariantList y = b.toList();
        if (x.size() != y.size())
            return false;
        for (qsizetype i = 0; i < x.size(); ++i) {
            if (!SamePropertyListValue(x.at(i), y.at(i)))
                return false;
        }
        return true;
    }
    case QMetaType::QVariantMap: {
        const QVariantMap x = a.toMap();
        const QVariantMap y = b.toMap();
        if (x.size() != y.size())
            return false;
        for (auto it = x.cbegin(), jt = y.cbegin(); it != x.cend(); ++it, ++jt) {
            if (it.key() != jt.key() || !SamePropertyListValue(it.value(), jt.value()))
                return false;
        }
        return true;
    }
    default:
        return a == b;
    }
}

// What the store does with a file it has read: a dictionary that the XML form can carry is
// written and must read back as it was kept; anything else must be refused, never half-written.
inline void CheckStoreRoundTrip(const QVariant &root)
{
    if (root.typeId() != QMetaType::QVariantMap)
        return;
    const std::optional<QVariant> kept = NormalizedPropertyListValue(root);
    FuzzCheck(kept.has_value(), "a parsed dictionary cannot be kept");
    const std::optional<QByteArray> xml = PropertyListToXml(kept->toMap());
    const bool writable = !FirstTextPropertyListCannotKeep(*kept);
    FuzzCheck(xml.has_value() == writable, "the writer and the text check disagree");
    if (!xml)
        return;
    const std::optional<QVariant> back = ParsePropertyList(*xml);
    FuzzCheck(back.has_value(), "our own XML does not parse");
    FuzzCheck(SamePropertyListValue(*back, *kept), "a written dictionary reads back changed");
}
