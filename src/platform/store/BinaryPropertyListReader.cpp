#include "platform/store/BinaryPropertyListReader.h"

#include "platform/AbsoluteTime.h"

#include <QDateTime>
#include <QSet>
#include <QString>
#include <QVariantList>
#include <QVariantMap>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

constexpr int kTrailerSize = 32;
constexpr QByteArrayView kMagic("bplist00");
// The dates the XML form can write back: years 1 to 9999, in seconds since
// 1970.
constexpr qint64 kFirstDateSeconds = -62135596800;
constexpr qint64 kEndDateSeconds = 253402300800;

} // namespace

std::optional<QVariant> BinaryPropertyListReader::read()
{
    const auto size = static_cast<quint64>(m_bytes.size());
    if (!m_bytes.startsWith(kMagic) || size < quint64(kMagic.size()) + 2 + kTrailerSize)
        return std::nullopt;
    const quint64 trailer = size - kTrailerSize;
    m_offsetSize = static_cast<unsigned char>(m_bytes[qsizetype(trailer + 6)]);
    m_referenceSize = static_cast<unsigned char>(m_bytes[qsizetype(trailer + 7)]);
    const std::optional<quint64> count = unsignedAt(trailer + 8, 8);
    const std::optional<quint64> top = unsignedAt(trailer + 16, 8);
    const std::optional<quint64> table = unsignedAt(trailer + 24, 8);
    if (m_offsetSize < 1 || m_offsetSize > 8 || m_referenceSize < 1 || m_referenceSize > 8 ||
        !count || !top || !table)
        return std::nullopt;
    // At least one object lies between the header and the offset table, and the
    // table ends where the trailer begins at the latest.
    if (*count == 0 || *top >= *count || *table <= quint64(kMagic.size()) || *table > trailer ||
        *count > (trailer - *table) / quint64(m_offsetSize))
        return std::nullopt;
    m_objectCount = *count;
    m_offsetTable = *table;
    m_onPath.assign(m_objectCount, false);
    return readObject(*top, 0);
}

std::optional<quint64> BinaryPropertyListReader::unsignedAt(quint64 offset, int size) const
{
    const auto end = static_cast<quint64>(m_bytes.size());
    if (offset > end || quint64(size) > end - offset)
        return std::nullopt;
    quint64 value = 0;
    for (int i = 0; i < size; ++i)
        value = (value << 8) | static_cast<unsigned char>(m_bytes[qsizetype(offset) + i]);
    return value;
}

std::optional<quint64> BinaryPropertyListReader::objectOffset(quint64 object) const
{
    if (object >= m_objectCount)
        return std::nullopt;
    const std::optional<quint64> offset =
        unsignedAt(m_offsetTable + object * quint64(m_offsetSize), m_offsetSize);
    if (!offset || *offset < quint64(kMagic.size()) || *offset >= m_offsetTable)
        return std::nullopt;
    return offset;
}

std::optional<quint64> BinaryPropertyListReader::reference(quint64 at) const
{
    if (at > m_offsetTable || quint64(m_referenceSize) > m_offsetTable - at)
        return std::nullopt;
    return unsignedAt(at, m_referenceSize);
}

// The marker's low four bits hold a count, or 15 and an integer object with the
// count after it. The payload of `count` elements of `elementSize` bytes must
// end before the offset table.
std::optional<BinaryPropertyListReader::Extent>
BinaryPropertyListReader::extent(quint64 offset, quint64 elementSize) const
{
    Extent result;
    result.count = static_cast<unsigned char>(m_bytes[qsizetype(offset)]) & 0x0f;
    result.offset = offset + 1;
    if (result.count == 0x0f) {
        if (result.offset >= m_offsetTable)
            return std::nullopt;
        const auto marker = static_cast<unsigned char>(m_bytes[qsizetype(result.offset)]);
        if ((marker & 0xf0) != 0x10 || (marker & 0x0f) > 3)
            return std::nullopt;
        const int size = 1 << (marker & 0x0f);
        if (result.offset + 1 + quint64(size) > m_offsetTable)
            return std::nullopt;
        const std::optional<quint64> count = unsignedAt(result.offset + 1, size);
        if (!count)
            return std::nullopt;
        result.count = *count;
        result.offset += 1 + quint64(size);
    }
    if (result.offset > m_offsetTable ||
        (elementSize > 0 && result.count > (m_offsetTable - result.offset) / elementSize))
        return std::nullopt;
    return result;
}

bool BinaryPropertyListReader::spend(qint64 values, qint64 textBytes)
{
    if (values > kMaxValues - m_values || textBytes > kMaxTextBytes - m_textBytes)
        return false;
    m_values += values;
    m_textBytes += textBytes;
    return true;
}

std::optional<QVariant> BinaryPropertyListReader::readObject(quint64 object, int depth)
{
    if (depth > kMaxDepth || !spend(1, 0))
        return std::nullopt;
    const std::optional<quint64> offset = objectOffset(object);
    if (!offset)
        return std::nullopt;
    const auto marker = static_cast<unsigned char>(m_bytes[qsizetype(*offset)]);
    const int low = marker & 0x0f;
    switch (marker >> 4) {
    case 0x0:
        if (marker == 0x08 || marker == 0x09)
            return QVariant(marker == 0x09);
        return std::nullopt; // null and fill bytes stand for no value the store
                             // keeps
    case 0x1:
        if (low > 4)
            return std::nullopt;
        return readInteger(*offset + 1, 1 << low);
    case 0x2:
        if (low != 2 && low != 3)
            return std::nullopt;
        return readReal(*offset + 1, 1 << low);
    case 0x3:
        if (low != 3)
            return std::nullopt;
        return readDate(*offset + 1);
    case 0x4: {
        const std::optional<Extent> data = extent(*offset, 1);
        if (!data || !spend(0, qint64(data->count)))
            return std::nullopt;
        return QVariant(QByteArray(m_bytes.data() + data->offset, qsizetype(data->count)));
    }
    case 0x5:
    case 0x6: {
        const std::optional<QString> text = readString(object);
        if (!text)
            return std::nullopt;
        return QVariant(*text);
    }
    case 0x8: {
        const std::optional<quint64> uid = unsignedAt(*offset + 1, low + 1);
        if (!uid || *offset + 1 + quint64(low) + 1 > m_offsetTable ||
            *uid > quint64(std::numeric_limits<qint64>::max()))
            return std::nullopt;
        return QVariant(QVariantMap{{QStringLiteral("CF$UID"), qlonglong(*uid)}});
    }
    case 0xA:
    case 0xC: { // a set reads as the list of its members
        const std::optional<Extent> items = extent(*offset, quint64(m_referenceSize));
        if (!items)
            return std::nullopt;
        return readArray(object, *items, depth);
    }
    case 0xD: {
        const std::optional<Extent> items = extent(*offset, 2 * quint64(m_referenceSize));
        if (!items)
            return std::nullopt;
        return readDictionary(object, *items, depth);
    }
    default:
        return std::nullopt;
    }
}

std::optional<QVariant> BinaryPropertyListReader::readInteger(quint64 offset, int size) const
{
    if (offset + quint64(size) > m_offsetTable)
        return std::nullopt;
    if (size < 8)
        return QVariant(qlonglong(*unsignedAt(offset, size))); // unsigned below 8 bytes
    if (size == 8)
        return QVariant(static_cast<qlonglong>(*unsignedAt(offset, 8)));
    // Sixteen bytes hold integers beyond the signed 64-bit range: up to 2^64 - 1
    // here.
    const quint64 high = *unsignedAt(offset, 8);
    const quint64 low = *unsignedAt(offset + 8, 8);
    constexpr quint64 kSignBit = quint64(1) << 63;
    if (high == 0)
        return low >= kSignBit ? QVariant(qulonglong(low)) : QVariant(qlonglong(low));
    if (high == ~quint64(0) && low >= kSignBit)
        return QVariant(static_cast<qlonglong>(low));
    return std::nullopt;
}

std::optional<QVariant> BinaryPropertyListReader::readReal(quint64 offset, int size) const
{
    if (offset + quint64(size) > m_offsetTable)
        return std::nullopt;
    const quint64 bits = *unsignedAt(offset, size);
    if (size == 4)
        return QVariant(double(std::bit_cast<float>(static_cast<quint32>(bits))));
    return QVariant(std::bit_cast<double>(bits));
}

std::optional<QVariant> BinaryPropertyListReader::readDate(quint64 offset) const
{
    if (offset + 8 > m_offsetTable)
        return std::nullopt;
    const double since2001 = std::bit_cast<double>(*unsignedAt(offset, 8));
    if (!std::isfinite(since2001))
        return std::nullopt;
    // Whole seconds toward the past, as the XML form keeps them.
    const double seconds = std::floor(since2001) + kAbsoluteTimeIntervalSince1970;
    if (seconds < double(kFirstDateSeconds) || seconds >= double(kEndDateSeconds))
        return std::nullopt;
    return QVariant(QDateTime::fromSecsSinceEpoch(static_cast<qint64>(seconds), Qt::UTC));
}

std::optional<QString> BinaryPropertyListReader::readString(quint64 object)
{
    const std::optional<quint64> offset = objectOffset(object);
    if (!offset)
        return std::nullopt;
    const auto marker = static_cast<unsigned char>(m_bytes[qsizetype(*offset)]);
    const bool ascii = marker >> 4 == 0x5;
    if (!ascii && marker >> 4 != 0x6)
        return std::nullopt;
    const quint64 unitSize = ascii ? 1 : 2;
    const std::optional<Extent> text = extent(*offset, unitSize);
    // Every use counts against the budget, shared or not: the tree is that large for whoever
    // walks it later.
    if (!text || !spend(0, qint64(unitSize * text->count)))
        return std::nullopt;
    // A string used again is decoded once and shared, so that repeats cost no copy.
    if (const auto known = m_strings.constFind(object); known != m_strings.cend())
        return *known;

    QString result;
    if (ascii) {
        const QByteArrayView bytes =
            m_bytes.sliced(qsizetype(text->offset), qsizetype(text->count));
        for (const char c : bytes) {
            if (c == '\0' || static_cast<unsigned char>(c) >= 0x80)
                return std::nullopt;
        }
        result = QString::fromLatin1(bytes);
    } else {
        result = QString(qsizetype(text->count), Qt::Uninitialized);
        for (quint64 i = 0; i < text->count; ++i)
            result[qsizetype(i)] = QChar(char16_t(*unsignedAt(text->offset + 2 * i, 2)));
        // Surrogates come in pairs, high then low.
        for (qsizetype i = 0; i < result.size(); ++i) {
            if (result.at(i).isHighSurrogate() && i + 1 < result.size() &&
                result.at(i + 1).isLowSurrogate())
                ++i;
            else if (result.at(i).isSurrogate() || result.at(i).isNull())
                return std::nullopt;
        }
    }
    m_strings.insert(object, result);
    return result;
}

std::optional<QVariant> BinaryPropertyListReader::readArray(quint64 object, const Extent &items,
                                                            int depth)
{
    if (m_onPath[object] || qint64(items.count) > kMaxValues - m_values)
        return std::nullopt;
    m_onPath[object] = true;
    QVariantList list;
    list.reserve(qsizetype(items.count));
    for (quint64 i = 0; i < items.count; ++i) {
        const std::optional<quint64> element =
            reference(items.offset + i * quint64(m_referenceSize));
        std::optional<QVariant> value;
        if (element)
            value = readObject(*element, depth + 1);
        if (!value) {
            m_onPath[object] = false;
            return std::nullopt;
        }
        list.append(std::move(*value));
    }
    m_onPath[object] = false;
    return QVariant(list);
}

std::optional<QVariant> BinaryPropertyListReader::readDictionary(quint64 object,
                                                                 const Extent &items, int depth)
{
    if (m_onPath[object] || qint64(items.count) > kMaxValues - m_values)
        return std::nullopt;
    m_onPath[object] = true;
    QVariantMap map;
    bool ok = true;
    const quint64 values = items.offset + items.count * quint64(m_referenceSize);
    for (quint64 i = 0; ok && i < items.count; ++i) {
        const std::optional<quint64> keyObject =
            reference(items.offset + i * quint64(m_referenceSize));
        const std::optional<quint64> valueObject = reference(values + i * quint64(m_referenceSize));
        const std::optional<QString> key =
            keyObject && spend(1, 0) ? readString(*keyObject) : std::nullopt;
        // Two entries under one key would lose one of them at the next write.
        ok = key && valueObject && !map.contains(*key);
        if (!ok)
            break;
        std::optional<QVariant> value = readObject(*valueObject, depth + 1);
        ok = value.has_value();
        if (ok)
            map.insert(*key, std::move(*value));
    }
    m_onPath[object] = false;
    if (!ok)
        return std::nullopt;
    return QVariant(map);
}
