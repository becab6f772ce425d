// The binary settings reader against well-formed lists and the ways a file can lie.

#include "platform/store/BinaryPropertyListReader.h"

#include "BinaryPlistBuilder.h"

#include <QDateTime>

#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;

std::optional<QVariant> Read(const QByteArray &bytes)
{
    return BinaryPropertyListReader(bytes).read();
}

TEST(BinaryPropertyListReader, ReadsEveryKindOfValue)
{
    BinaryPlistBuilder plist;
    const QString longText = u"a fifteen+ char string with é and \U0001F600"_s;
    const struct
    {
        const char *key;
        QByteArray encoded;
        QVariant expected;
    } values[] = {
        {"byte", QByteArray("\x10\xff", 2), qlonglong(255)},
        {"short", QByteArray("\x11\xff\xfe", 3), qlonglong(65534)},
        {"negative", plist.integer(-5), qlonglong(-5)},
        {"huge", QByteArray("\x14", 1) + QByteArray(8, '\0') + QByteArray(8, '\xff'),
         std::numeric_limits<qulonglong>::max()},
        {"float", QByteArray("\x22\x3f\xc0\x00\x00", 5), 1.5},
        {"date", QByteArray("\x33\xc1\x7e\x28\x50\x10\x00\x00\x00", 9), // 1999-12-31T23:59:59Z
         QDateTime::fromSecsSinceEpoch(946684799, Qt::UTC)},
        {"data", QByteArray("\x43\x00\x01\xff", 4), QByteArray("\0\1\xff", 3)},
        {"uid", QByteArray("\x80\x2a", 2), QVariantMap{{u"CF$UID"_s, qlonglong(42)}}},
        {"long text", plist.utf16(longText), longText},
        // Kept for the writer to refuse, not dropped or altered here.
        {"controls", plist.ascii("tab\there\x01"), u"tab\there\u0001"_s},
    };
    const int root = plist.reserve();
    QList<QPair<int, int>> entries;
    for (const auto &value : values)
        entries.append({plist.add(plist.ascii(value.key)), plist.add(value.encoded)});
    plist.set(root, plist.dictionary(entries));
    const std::optional<QVariant> read = Read(plist.build(root));
    ASSERT_TRUE(read);
    ASSERT_EQ(read->toMap().size(), qsizetype(std::size(values)));
    for (const auto &value : values)
        EXPECT_EQ(read->toMap().value(QString::fromLatin1(value.key)), value.expected) << value.key;
}

TEST(BinaryPropertyListReader, NestingUpToTheLimitAndNotOneLevelMore)
{
    constexpr int limit = BinaryPropertyListReader::kMaxDepth;
    EXPECT_TRUE(Read(NestedArrays(limit)));
    EXPECT_FALSE(Read(NestedArrays(limit + 1)));
    // Deep enough to overflow a recursive reader's stack: refused at once, not followed down.
    EXPECT_FALSE(Read(NestedArrays(100000)));
}

TEST(BinaryPropertyListReader, RefusesCyclesAndExplodingSharing)
{
    BinaryPlistBuilder self;
    const int array = self.reserve();
    self.set(array, self.array({array}));
    EXPECT_FALSE(Read(self.build(array)));

    BinaryPlistBuilder loop;
    const int dict = loop.reserve();
    const int list = loop.add(loop.array({dict}));
    loop.set(dict, loop.dictionary({{loop.add(loop.ascii("k")), list}}));
    EXPECT_FALSE(Read(loop.build(dict)));

    // Sixty levels of two references to the next level: 2^60 values if followed naively.
    BinaryPlistBuilder shared;
    for (int i = 0; i < 60; ++i)
        shared.add(shared.array({i + 1, i + 1}));
    shared.add(shared.integer(1));
    EXPECT_FALSE(Read(shared.build(0)));

    // The budget counts the root and every element, each time it is used.
    const auto sharedIntegers = [](qint64 count) {
        BinaryPlistBuilder plist(2);
        const int one = plist.add(plist.integer(1));
        return Read(plist.build(plist.add(plist.array(QList<int>(count, one)))));
    };
    EXPECT_TRUE(sharedIntegers(BinaryPropertyListReader::kMaxValues - 1));
    EXPECT_FALSE(sharedIntegers(BinaryPropertyListReader::kMaxValues));

    // Sharing within the budget is fine: one string used twice.
    BinaryPlistBuilder fine;
    const int text = fine.add(fine.ascii("%Y"));
    EXPECT_EQ(Read(fine.build(fine.add(fine.array({text, text})))),
              QVariant(QVariantList{u"%Y"_s, u"%Y"_s}));
}

TEST(BinaryPropertyListReader, RefusesBrokenStringsAndKeys)
{
    const auto dictionaryWithKey = [](const QByteArray &key) {
        BinaryPlistBuilder plist;
        const int k = plist.add(key);
        const int v = plist.add(plist.integer(1));
        return Read(plist.build(plist.add(plist.dictionary({{k, v}}))));
    };
    EXPECT_TRUE(dictionaryWithKey(BinaryPlistBuilder().ascii("fine")));
    EXPECT_FALSE(Read(kNulInUtf16Key));
    EXPECT_FALSE(dictionaryWithKey(BinaryPlistBuilder().ascii(QByteArray("cut\0short", 9))));
    EXPECT_FALSE(dictionaryWithKey(BinaryPlistBuilder().ascii("caf\xe9")));
    EXPECT_FALSE(dictionaryWithKey(BinaryPlistBuilder().utf16(QString(QChar(0xD83D)) + u'x')));
    EXPECT_FALSE(dictionaryWithKey(BinaryPlistBuilder().utf16(QString(QChar(0xDE00)))));
    EXPECT_FALSE(dictionaryWithKey(BinaryPlistBuilder().integer(3))) << "keys are strings";

    BinaryPlistBuilder twice;
    const int a = twice.add(twice.ascii("a"));
    const int again = twice.add(twice.utf16(u"a"_s));
    const int one = twice.add(twice.integer(1));
    EXPECT_FALSE(Read(twice.build(twice.add(twice.dictionary({{a, one}, {again, one}})))))
        << "two entries under one key: a write would lose one";
}

TEST(BinaryPropertyListReader, RefusesEveryOffsetAndCountThatPointsOutside)
{
    BinaryPlistBuilder plist;
    const int text = plist.add(plist.ascii("hello"));
    const int root = plist.add(plist.array({text}));
    const QByteArray good = plist.build(root);
    ASSERT_TRUE(Read(good));

    const qsizetype trailer = good.size() - 32;
    const auto patched = [&](qsizetype at, const QByteArray &bytes) {
        QByteArray copy = good;
        copy.replace(at, bytes.size(), bytes);
        return copy;
    };
    using B = BinaryPlistBuilder;
    EXPECT_FALSE(Read(good.left(good.size() - 1))) << "cut short";
    EXPECT_FALSE(Read(patched(0, "bplist01")));
    EXPECT_FALSE(Read(patched(trailer + 6, QByteArray(1, '\0')))) << "offset size 0";
    EXPECT_FALSE(Read(patched(trailer + 7, QByteArray(1, '\x09')))) << "reference size 9";
    EXPECT_FALSE(Read(patched(trailer + 8, B::bigEndian(0, 8)))) << "no objects";
    EXPECT_FALSE(Read(patched(trailer + 8, B::bigEndian(~0ULL, 8)))) << "more objects than bytes";
    EXPECT_FALSE(Read(patched(trailer + 16, B::bigEndian(2, 8)))) << "root beyond the objects";
    EXPECT_FALSE(Read(patched(trailer + 24, B::bigEndian(~0ULL, 8)))) << "table beyond the end";
    EXPECT_FALSE(Read(patched(trailer + 24, B::bigEndian(3, 8)))) << "table inside the header";
    // The offset table: an object said to start inside the header, or inside the table.
    const qsizetype table = trailer - 2;
    EXPECT_FALSE(Read(patched(table, QByteArray(1, '\x02'))));
    EXPECT_FALSE(Read(patched(table, QByteArray(1, char(table)))));
    // The array's reference, and the string's length, beyond what there is.
    EXPECT_FALSE(Read(patched(table - 1, QByteArray(1, '\x07'))));
    EXPECT_FALSE(Read(patched(8, QByteArray(1, '\x5e'))));
    EXPECT_FALSE(Read(patched(8, QByteArray("\x5f\x10\x7f", 3)))) << "a long count, too long";
    EXPECT_FALSE(Read(patched(8, QByteArray("\x5f\x50\x01", 3)))) << "a count that is no integer";
    // Markers the store has no value for: null, fill, an unknown type.
    for (const char marker : {'\x00', '\x0f', '\x70', '\xe0', '\xf0'})
        EXPECT_FALSE(Read(patched(8, QByteArray(1, marker)))) << int(marker);
}

} // namespace
