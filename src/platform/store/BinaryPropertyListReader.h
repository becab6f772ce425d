#pragma once

#include <QByteArrayView>
#include <QHash>
#include <QVariant>

#include <optional>
#include <vector>

// Reads a binary property list ("bplist00") into the QVariant tree that PropertyList.h
// describes, checking everything as it goes, since the file may be damaged or made to harm:
// every offset and reference lies inside the file, no container holds itself, nesting is at
// most kMaxDepth deep, strings are well-formed ASCII or UTF-16 without NUL (which ends a string
// for many readers, so a key holding one is not the key it seems; other control characters are
// kept, and the writer decides about them), dictionary keys are strings and unique, and the
// tree it stands for, shared objects counted each time they are used, holds at most kMaxValues
// values and kMaxTextBytes of strings and data. Anything else makes the whole list unreadable.
// Time and memory are bounded by those limits and the file's size, whatever the bytes are.
class BinaryPropertyListReader
{
public:
    static constexpr int kMaxDepth = 256;
    // Far beyond any settings (5,000 custom formats take about 10,000 values), and small enough
    // that reading, and walking what was read, stays within tens of milliseconds.
    static constexpr qint64 kMaxValues = 1 << 16;
    static constexpr qint64 kMaxTextBytes = qint64(8) << 20;

    explicit BinaryPropertyListReader(QByteArrayView bytes) : m_bytes(bytes) {}

    // The root object, or std::nullopt when the bytes are not a well-formed
    // binary list.
    std::optional<QVariant> read();

private:
    struct Extent
    {
        quint64 offset = 0; // where the object's payload starts
        quint64 count = 0;  // elements, bytes or code units, as the marker says
    };

    std::optional<quint64> unsignedAt(quint64 offset, int size) const;
    std::optional<quint64> objectOffset(quint64 object) const;
    std::optional<quint64> reference(quint64 at) const;
    std::optional<Extent> extent(quint64 offset, quint64 elementSize) const;
    bool spend(qint64 values, qint64 textBytes);

    std::optional<QVariant> readObject(quint64 object, int depth);
    std::optional<QVariant> readInteger(quint64 offset, int size) const;
    std::optional<QVariant> readReal(quint64 offset, int size) const;
    std::optional<QVariant> readDate(quint64 offset) const;
    std::optional<QString> readString(quint64 object);
    std::optional<QVariant> readArray(quint64 object, const Extent &items, int depth);
    std::optional<QVariant> readDictionary(quint64 object, const Extent &items, int depth);

    QByteArrayView m_bytes;
    int m_offsetSize = 0;
    int m_referenceSize = 0;
    quint64 m_objectCount = 0;
    quint64 m_offsetTable = 0;
    qint64 m_values = 0;
    qint64 m_textBytes = 0;
    std::vector<bool> m_onPath;        // the containers being read, to find a cycle
    QHash<quint64, QString> m_strings; // decoded strings by object, for shared ones
};
