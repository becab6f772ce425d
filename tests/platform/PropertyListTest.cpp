#include "platform/store/PropertyList.h"

#include <QDateTime>
#include <QPoint>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using namespace Qt::StringLiterals;

QVariant RoundTrip(const QVariant &value)
{
    const QVariantMap in{{QStringLiteral("k"), value}};
    const std::optional<QByteArray> xml = PropertyListToXml(in);
    if (!xml)
        return QStringLiteral("<refused>");
    const auto out = ParsePropertyList(*xml);
    if (!out || out->typeId() != QMetaType::QVariantMap)
        return QStringLiteral("<unreadable>");
    return out->toMap().value(QStringLiteral("k"));
}

QDateTime Utc(qint64 secondsSinceEpoch)
{
    return QDateTime::fromSecsSinceEpoch(secondsSinceEpoch, Qt::UTC);
}

TEST(PropertyListXml, ScalarsKeepTypeAndValue)
{
    EXPECT_EQ(RoundTrip(true), QVariant(true));
    EXPECT_EQ(RoundTrip(false), QVariant(false));
    for (const qlonglong n : {0LL, -1LL, -7LL, std::numeric_limits<qlonglong>::min(),
                              std::numeric_limits<qlonglong>::max()}) {
        const QVariant back = RoundTrip(n);
        EXPECT_EQ(back.typeId(), QMetaType::LongLong);
        EXPECT_EQ(back.toLongLong(), n);
    }
    EXPECT_EQ(RoundTrip(std::numeric_limits<qulonglong>::max()).toULongLong(),
              std::numeric_limits<qulonglong>::max());
    for (const double d : {0.1, -2.5, 1e300, 3.0, 5e-324}) {
        const QVariant back = RoundTrip(d);
        EXPECT_EQ(back.typeId(), QMetaType::Double);
        EXPECT_EQ(back.toDouble(), d);
    }
    EXPECT_TRUE(std::isnan(RoundTrip(std::nan("")).toDouble()));
    EXPECT_EQ(RoundTrip(-HUGE_VAL).toDouble(), -HUGE_VAL);
    EXPECT_EQ(RoundTrip(QByteArray("\0\1\xff", 3)), QVariant(QByteArray("\0\1\xff", 3)));
}

TEST(PropertyListXml, StringsSurviveMarkupAndAwkwardCharacters)
{
    const QString text = QStringLiteral("<a> & \"b\" ]]> é ☃ 😀\r\n\ttab");
    EXPECT_EQ(RoundTrip(text), QVariant(text));
    EXPECT_EQ(RoundTrip(QString()), QVariant(QString()));
    // Not representable in XML: refused as a whole, never written altered.
    for (const QString &bad :
         {QString(QChar(1)) + u'x', QString(QChar(0)), QStringLiteral("\uFFFE"),
          QString(QChar(0xD800)) + u'x', QStringLiteral("ok\U0001F600") + QChar(0xDC00)}) {
        EXPECT_EQ(RoundTrip(bad), QVariant(QStringLiteral("<refused>")));
        EXPECT_FALSE(PropertyListToXml({{bad, 1}})) << "as a key too";
        EXPECT_EQ(
            FirstTextPropertyListCannotKeep(QVariantList{u"fine"_s, QVariantMap{{u"k"_s, bad}}}),
            bad);
    }
    EXPECT_FALSE(FirstTextPropertyListCannotKeep(
        QVariantMap{{u"tab\tline\ncr\r"_s, QVariantList{u"\u007f\u009b"_s, QByteArray("\0", 1)}}}));
}

TEST(PropertyListXml, DatesAreUtcToTheWholeSecondWellOutsideThirtyTwoBits)
{
    EXPECT_EQ(RoundTrip(Utc(1142019107)), QVariant(Utc(1142019107)));
    // Before 1933 and after 2069, where 32-bit seconds since 2001 end.
    EXPECT_EQ(RoundTrip(Utc(-2208988800)), QVariant(Utc(-2208988800))); // 1900-01-01
    EXPECT_EQ(RoundTrip(Utc(4102444800)), QVariant(Utc(4102444800)));   // 2100-01-01
    // A local time comes back as the same instant in UTC; fractions go toward the past.
    const QDateTime local = QDateTime::fromMSecsSinceEpoch(1142019107999, Qt::LocalTime);
    EXPECT_EQ(RoundTrip(local), QVariant(Utc(1142019107)));
    EXPECT_EQ(RoundTrip(QDateTime::fromMSecsSinceEpoch(-1500, Qt::UTC)), QVariant(Utc(-2)));
}

TEST(PropertyListXml, ContainersNestAndStringListsBecomeLists)
{
    const QVariantMap nested{{QStringLiteral("list"), QVariantList{1, QStringLiteral("two")}},
                             {QStringLiteral("empty"), QVariantMap()}};
    const QVariant back = RoundTrip(QVariantList{nested, QVariantList()});
    const QVariantList expected{
        QVariantMap{{QStringLiteral("list"), QVariantList{qlonglong(1), QStringLiteral("two")}},
                    {QStringLiteral("empty"), QVariantMap()}},
        QVariantList()};
    EXPECT_EQ(back, QVariant(expected));
    EXPECT_EQ(RoundTrip(QStringList{QStringLiteral("%Y")}),
              QVariant(QVariantList{QStringLiteral("%Y")}));
}

TEST(PropertyListNormalization, RefusesWhatNoPropertyListHolds)
{
    EXPECT_FALSE(NormalizedPropertyListValue(QVariant()));
    EXPECT_FALSE(NormalizedPropertyListValue(QDateTime()));
    EXPECT_FALSE(NormalizedPropertyListValue(QVariant::fromValue(QPoint(1, 2))));
    EXPECT_EQ(NormalizedPropertyListValue(QVariantList{1, QPoint(), 2}),
              QVariant(QVariantList{qlonglong(1), qlonglong(2)}));
    EXPECT_EQ(NormalizedPropertyListValue(42)->typeId(), QMetaType::LongLong);
    EXPECT_EQ(NormalizedPropertyListValue(1.5f)->typeId(), QMetaType::Double);
}

TEST(PropertyListParse, MalformedInputIsRefused)
{
    const char *bad[] = {
        "",
        "garbage",
        "<plist version=\"1.0\"><dict><key>a</key><integer>1</int",
        "<plist><dict><key>a</key></dict></plist>",
        "<plist><dict><string>a</string><true/></dict></plist>",
        "<plist><dict><key>a</key><integer>one</integer></dict></plist>",
        "<plist><dict><key>a</key><date>yesterday</date></dict></plist>",
        "<plist><dict><key>a</key><data>!!!</data></dict></plist>",
        "<plist><dict><key>a</key><widget/></dict></plist>",
        "<plist><dict/><dict/></plist>",
        "bplist00\x01\x02",
    };
    for (const char *bytes : bad)
        EXPECT_FALSE(ParsePropertyList(QByteArray(bytes))) << bytes;
}

TEST(PropertyListParse, ReadsWhatOtherWritersProduce)
{
    // Hand-written XML as other tools lay it out: a bare root dictionary, multi-line base64,
    // an explicit plus sign, a real without fraction.
    const QByteArray xml = "<?xml version=\"1.0\"?>\n<dict>\n<key>d</key><data>\n AAH/\n</data>"
                           "<key>n</key><integer> +5 </integer><key>r</key><real>2</real>"
                           "<key>t</key><true></true></dict>";
    const auto value = ParsePropertyList(xml);
    ASSERT_TRUE(value);
    const QVariantMap map = value->toMap();
    EXPECT_EQ(map.value(QStringLiteral("d")), QVariant(QByteArray("\0\1\xff", 3)));
    EXPECT_EQ(map.value(QStringLiteral("n")), QVariant(qlonglong(5)));
    EXPECT_EQ(map.value(QStringLiteral("r")), QVariant(2.0));
    EXPECT_EQ(map.value(QStringLiteral("t")), QVariant(true));
}

} // namespace
