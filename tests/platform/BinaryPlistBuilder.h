#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>

// Lays out binary property lists object by object, the way the format defines them, so that
// tests can make the well-formed and the hostile ones alike: references are plain object
// numbers and may point anywhere, including back at their own container.
class BinaryPlistBuilder
{
public:
    explicit BinaryPlistBuilder(int referenceSize = 1) : m_referenceSize(referenceSize) {}

    int add(const QByteArray &encoded)
    {
        m_objects.append(encoded);
        return int(m_objects.size() - 1);
    }
    // For cycles: take a number first, fill it in later.
    int reserve() { return add(QByteArray()); }
    void set(int object, const QByteArray &encoded) { m_objects[object] = encoded; }

    QByteArray integer(qint64 value) const
    {
        return QByteArray(1, '\x13') + bigEndian(quint64(value), 8);
    }
    QByteArray ascii(const QByteArray &text) const { return header(0x50, text.size()) + text; }
    QByteArray utf16(const QString &text) const
    {
        QByteArray bytes = header(0x60, text.size());
        for (const QChar c : text)
            bytes += bigEndian(c.unicode(), 2);
        return bytes;
    }
    QByteArray array(const QList<int> &items) const
    {
        return header(0xA0, items.size()) + refs(items);
    }
    QByteArray dictionary(const QList<QPair<int, int>> &entries) const
    {
        QList<int> keys, values;
        for (const auto &[key, value] : entries) {
            keys.append(key);
            values.append(value);
        }
        return header(0xD0, entries.size()) + refs(keys) + refs(values);
    }

    // The whole file with `top` as its root; offsetSize 0 picks the smallest that fits.
    QByteArray build(int top, int offsetSize = 0) const
    {
        QByteArray file("bplist00");
        QList<quint64> offsets;
        for (const QByteArray &object : m_objects) {
            offsets.append(quint64(file.size()));
            file += object;
        }
        const quint64 table = quint64(file.size());
        if (offsetSize == 0) {
            offsetSize = 1;
            while (offsetSize < 8 && table >= (quint64(1) << (8 * offsetSize)))
                ++offsetSize;
        }
        for (const quint64 offset : offsets)
            file += bigEndian(offset, offsetSize);
        file += QByteArray(6, '\0');
        file += char(offsetSize);
        file += char(m_referenceSize);
        file += bigEndian(quint64(m_objects.size()), 8);
        file += bigEndian(quint64(top), 8);
        file += bigEndian(table, 8);
        return file;
    }

    static QByteArray bigEndian(quint64 value, int size)
    {
        QByteArray bytes(size, '\0');
        for (int i = size - 1; i >= 0; --i, value >>= 8)
            bytes[i] = char(value & 0xff);
        return bytes;
    }

private:
    // A marker with its count, or 15 and an integer object holding the count.
    static QByteArray header(int marker, qsizetype count)
    {
        if (count < 15)
            return QByteArray(1, char(marker | int(count)));
        return QByteArray(1, char(marker | 0x0f)) + '\x13' + bigEndian(quint64(count), 8);
    }
    QByteArray refs(const QList<int> &objects) const
    {
        QByteArray bytes;
        for (const int object : objects)
            bytes += bigEndian(quint64(object), m_referenceSize);
        return bytes;
    }

    int m_referenceSize;
    QList<QByteArray> m_objects;
};

// {"é\0": 1}, exactly as Python's plistlib writes it: a UTF-16 key holding U+0000.
inline const QByteArray kNulInUtf16Key(
    "\x62\x70\x6c\x69\x73\x74\x30\x30\xd1\x01\x02\x62\x00\xe9\x00\x00\x10\x01\x08\x0b\x10\x00\x00"
    "\x00\x00\x00\x00\x01\x01\x00\x00\x00\x00\x00\x00\x00\x03\x00\x00\x00\x00\x00\x00\x00\x00\x00"
    "\x00\x00\x00\x00\x00\x00\x12",
    53);

// A chain of `depth` one-element arrays around an integer.
inline QByteArray NestedArrays(int depth)
{
    BinaryPlistBuilder plist(4);
    for (int i = 0; i < depth; ++i)
        plist.add(plist.array({i + 1}));
    plist.add(plist.integer(7));
    return plist.build(0);
}
