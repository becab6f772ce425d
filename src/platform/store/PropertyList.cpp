#include "platform/store/PropertyList.h"

#include "platform/AbsoluteTime.h"

#include <QDateTime>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <plist/plist.h>

#include <cmath>
#include <cstdlib>
#include <limits>

// XML is read and written here with QtCore, and libplist (2.2) serves only for binary lists.
// Its XML side cannot be trusted with our values: it keeps dates as 32-bit seconds (nothing
// before 1933 or after 2069), writes a negative integer set through its API as a huge unsigned
// one, and reports an integer above 2^63 as a negative one.

namespace {

constexpr int kMaxDepth = 256;
constexpr qint64 kMinYear = 1;
constexpr qint64 kMaxYear = 9999;

QDateTime WholeSecondUtc(qint64 secondsSinceEpoch)
{
    return QDateTime::fromSecsSinceEpoch(secondsSinceEpoch, Qt::UTC);
}

std::optional<QVariant> NormalizedDate(const QDateTime &date)
{
    if (!date.isValid())
        return std::nullopt;
    const qint64 ms = date.toMSecsSinceEpoch();
    qint64 seconds = ms / 1000;
    if (ms % 1000 < 0)
        --seconds; // toward the past, as every plist writer truncates
    const QDateTime whole = WholeSecondUtc(seconds);
    // An XML date has a four-digit year.
    if (whole.date().year() < kMinYear || whole.date().year() > kMaxYear)
        return std::nullopt;
    return QVariant(whole);
}

std::optional<QVariant> Normalized(const QVariant &value, int depth)
{
    if (depth > kMaxDepth)
        return std::nullopt;
    switch (value.typeId()) {
    case QMetaType::Bool:
        return QVariant(value.toBool());
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
        return QVariant(value.toLongLong());
    case QMetaType::ULongLong: {
        const qulonglong unsignedValue = value.toULongLong();
        if (unsignedValue > static_cast<qulonglong>(std::numeric_limits<qlonglong>::max()))
            return QVariant(unsignedValue);
        return QVariant(static_cast<qlonglong>(unsignedValue));
    }
    case QMetaType::Float:
    case QMetaType::Double:
        return QVariant(value.toDouble());
    case QMetaType::QString:
        return QVariant(value.toString());
    case QMetaType::QByteArray:
        return QVariant(value.toByteArray());
    case QMetaType::QDateTime:
        return NormalizedDate(value.toDateTime());
    case QMetaType::QStringList:
    case QMetaType::QVariantList: {
        QVariantList list;
        const QVariantList elements = value.toList();
        for (const QVariant &element : elements) {
            if (const auto normalized = Normalized(element, depth + 1))
                list.append(*normalized);
        }
        return QVariant(list);
    }
    case QMetaType::QVariantMap:
    case QMetaType::QVariantHash: {
        QVariantMap map;
        const QVariantMap elements = value.toMap();
        for (auto it = elements.cbegin(); it != elements.cend(); ++it) {
            if (const auto normalized = Normalized(it.value(), depth + 1))
                map.insert(it.key(), *normalized);
        }
        return QVariant(map);
    }
    default:
        return std::nullopt;
    }
}

// --- XML writing ---

class XmlWriter
{
public:
    explicit XmlWriter(QByteArray *out) : m_xml(out)
    {
        m_xml.setAutoFormatting(true);
        m_xml.setAutoFormattingIndent(-1);
    }

    void writeDocument(const QVariantMap &dictionary)
    {
        m_xml.writeStartDocument();
        m_xml.writeDTD(QStringLiteral("<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                                      "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">"));
        m_xml.writeStartElement(QStringLiteral("plist"));
        m_xml.writeAttribute(QStringLiteral("version"), QStringLiteral("1.0"));
        writeValue(QVariant(dictionary));
        m_xml.writeEndElement();
        m_xml.writeEndDocument();
    }

private:
    void writeTextElement(const QString &element, const QString &text)
    {
        m_xml.writeStartElement(element);
        writeText(text);
        m_xml.writeEndElement();
    }

    // XML cannot carry every string: a carriage return would come back as a line feed, and
    // most control characters and unpaired surrogates are not allowed at all. The first is
    // written as a character reference; the others become U+FFFD rather than making the whole
    // file unreadable.
    void writeText(const QString &text)
    {
        QString run;
        run.reserve(text.size());
        for (qsizetype i = 0; i < text.size(); ++i) {
            const QChar c = text.at(i);
            const char16_t u = c.unicode();
            if (u == u'\r') {
                m_xml.writeCharacters(run);
                run.clear();
                m_xml.writeEntityReference(QStringLiteral("#13"));
            } else if (c.isHighSurrogate() && i + 1 < text.size() &&
                       text.at(i + 1).isLowSurrogate()) {
                run.append(c);
                run.append(text.at(++i));
            } else if (c.isSurrogate() || u == 0xFFFE || u == 0xFFFF ||
                       (u < 0x20 && u != u'\t' && u != u'\n')) {
                run.append(QChar::ReplacementCharacter);
            } else {
                run.append(c);
            }
        }
        m_xml.writeCharacters(run);
    }

    void writeValue(const QVariant &value)
    {
        switch (value.typeId()) {
        case QMetaType::Bool:
            m_xml.writeEmptyElement(value.toBool() ? QStringLiteral("true")
                                                   : QStringLiteral("false"));
            break;
        case QMetaType::LongLong:
            writeTextElement(QStringLiteral("integer"), QString::number(value.toLongLong()));
            break;
        case QMetaType::ULongLong:
            writeTextElement(QStringLiteral("integer"), QString::number(value.toULongLong()));
            break;
        case QMetaType::Double: {
            const double d = value.toDouble();
            QString text;
            if (std::isnan(d))
                text = QStringLiteral("nan");
            else if (std::isinf(d))
                text = d > 0 ? QStringLiteral("+infinity") : QStringLiteral("-infinity");
            else
                text = QString::number(d, 'g', QLocale::FloatingPointShortest);
            writeTextElement(QStringLiteral("real"), text);
            break;
        }
        case QMetaType::QString:
            writeTextElement(QStringLiteral("string"), value.toString());
            break;
        case QMetaType::QByteArray:
            writeTextElement(QStringLiteral("data"),
                             QString::fromLatin1(value.toByteArray().toBase64()));
            break;
        case QMetaType::QDateTime:
            writeTextElement(QStringLiteral("date"),
                             value.toDateTime().toUTC().toString(Qt::ISODate));
            break;
        case QMetaType::QVariantList: {
            m_xml.writeStartElement(QStringLiteral("array"));
            const QVariantList list = value.toList();
            for (const QVariant &element : list)
                writeValue(element);
            m_xml.writeEndElement();
            break;
        }
        case QMetaType::QVariantMap: {
            m_xml.writeStartElement(QStringLiteral("dict"));
            const QVariantMap map = value.toMap();
            for (auto it = map.cbegin(); it != map.cend(); ++it) {
                writeTextElement(QStringLiteral("key"), it.key());
                writeValue(it.value());
            }
            m_xml.writeEndElement();
            break;
        }
        default:
            break; // unreachable: the caller normalises the tree first
        }
    }

    QXmlStreamWriter m_xml;
};

// --- XML reading ---

class XmlReader
{
public:
    explicit XmlReader(const QByteArray &bytes) : m_xml(bytes) {}

    std::optional<QVariant> readDocument()
    {
        if (!m_xml.readNextStartElement())
            return std::nullopt;
        std::optional<QVariant> result;
        if (m_xml.name() == u"plist") {
            if (!m_xml.readNextStartElement())
                return std::nullopt;
            result = readValue(0);
            // One value per list: anything after it is not ours to guess about.
            if (result && m_xml.readNextStartElement())
                return std::nullopt;
        } else {
            result = readValue(0);
        }
        while (result && !m_xml.atEnd())
            m_xml.readNext();
        if (m_xml.hasError())
            return std::nullopt;
        return result;
    }

private:
    QString elementText()
    {
        return m_xml.readElementText(QXmlStreamReader::ErrorOnUnexpectedElement);
    }

    // Reads the element that starts at the current token, up to its end tag.
    std::optional<QVariant> readValue(int depth)
    {
        if (depth > kMaxDepth || m_xml.hasError())
            return std::nullopt;
        const QStringView name = m_xml.name();
        if (name == u"dict")
            return readDict(depth);
        if (name == u"array")
            return readArray(depth);
        if (name == u"string") {
            const QString text = elementText();
            return m_xml.hasError() ? std::nullopt : std::optional<QVariant>(text);
        }
        if (name == u"true" || name == u"false") {
            const bool on = name == u"true";
            if (!elementText().isEmpty() || m_xml.hasError())
                return std::nullopt;
            return QVariant(on);
        }
        if (name == u"integer")
            return readInteger(elementText().trimmed());
        if (name == u"real")
            return readReal(elementText().trimmed());
        if (name == u"date")
            return readDate(elementText().trimmed());
        if (name == u"data")
            return readData(elementText());
        return std::nullopt;
    }

    std::optional<QVariant> readDict(int depth)
    {
        QVariantMap map;
        while (m_xml.readNextStartElement()) {
            if (m_xml.name() != u"key")
                return std::nullopt;
            const QString key = elementText();
            if (m_xml.hasError() || !m_xml.readNextStartElement())
                return std::nullopt;
            const auto value = readValue(depth + 1);
            if (!value)
                return std::nullopt;
            map.insert(key, *value);
        }
        if (m_xml.hasError())
            return std::nullopt;
        return QVariant(map);
    }

    std::optional<QVariant> readArray(int depth)
    {
        QVariantList list;
        while (m_xml.readNextStartElement()) {
            const auto value = readValue(depth + 1);
            if (!value)
                return std::nullopt;
            list.append(*value);
        }
        if (m_xml.hasError())
            return std::nullopt;
        return QVariant(list);
    }

    std::optional<QVariant> readInteger(const QString &text)
    {
        bool ok = false;
        const qlonglong value = text.toLongLong(&ok, 10);
        if (ok && !m_xml.hasError())
            return QVariant(value);
        const qulonglong unsignedValue = text.toULongLong(&ok, 10);
        if (ok && !m_xml.hasError())
            return QVariant(unsignedValue);
        return std::nullopt;
    }

    std::optional<QVariant> readReal(const QString &text)
    {
        if (m_xml.hasError())
            return std::nullopt;
        const QString lower = text.toLower();
        if (lower == u"nan")
            return QVariant(std::numeric_limits<double>::quiet_NaN());
        if (lower == u"+infinity" || lower == u"infinity" || lower == u"inf")
            return QVariant(std::numeric_limits<double>::infinity());
        if (lower == u"-infinity" || lower == u"-inf")
            return QVariant(-std::numeric_limits<double>::infinity());
        bool ok = false;
        const double value = text.toDouble(&ok);
        if (!ok)
            return std::nullopt;
        return QVariant(value);
    }

    std::optional<QVariant> readDate(const QString &text)
    {
        if (m_xml.hasError() || !text.endsWith(u'Z'))
            return std::nullopt;
        return NormalizedDate(QDateTime::fromString(text, Qt::ISODateWithMs));
    }

    std::optional<QVariant> readData(const QString &text)
    {
        if (m_xml.hasError())
            return std::nullopt;
        QByteArray base64 = text.toLatin1();
        base64.replace(' ', QByteArray()).replace('\t', QByteArray());
        base64.replace('\n', QByteArray()).replace('\r', QByteArray());
        const auto decoded =
            QByteArray::fromBase64Encoding(base64, QByteArray::AbortOnBase64DecodingErrors);
        if (!decoded)
            return std::nullopt;
        return QVariant(*decoded);
    }

    QXmlStreamReader m_xml;
};

// --- binary reading, through libplist ---

std::optional<QVariant> FromPlistNode(plist_t node, int depth)
{
    if (!node || depth > kMaxDepth)
        return std::nullopt;
    switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
        uint8_t value = 0;
        plist_get_bool_val(node, &value);
        return QVariant(value != 0);
    }
    case PLIST_UINT: {
        // The binary format keeps integers as signed 64-bit values, and libplist hands them
        // over as their unsigned bit pattern: the cast gives negative numbers back.
        uint64_t value = 0;
        plist_get_uint_val(node, &value);
        return QVariant(static_cast<qlonglong>(value));
    }
    case PLIST_REAL: {
        double value = 0;
        plist_get_real_val(node, &value);
        return QVariant(value);
    }
    case PLIST_STRING: {
        uint64_t length = 0;
        const char *text = plist_get_string_ptr(node, &length);
        return QVariant(QString::fromUtf8(text, static_cast<qsizetype>(length)));
    }
    case PLIST_DATE: {
        // libplist splits the reference-date offset into seconds and microseconds.
        int32_t seconds = 0;
        int32_t microseconds = 0;
        plist_get_date_val(node, &seconds, &microseconds);
        const double since2001 = seconds + microseconds / 1e6;
        return NormalizedDate(WholeSecondUtc(static_cast<qint64>(std::floor(since2001)) +
                                             static_cast<qint64>(kAbsoluteTimeIntervalSince1970)));
    }
    case PLIST_DATA: {
        uint64_t length = 0;
        const char *bytes = plist_get_data_ptr(node, &length);
        return QVariant(QByteArray(bytes, static_cast<qsizetype>(length)));
    }
    case PLIST_ARRAY: {
        QVariantList list;
        const uint32_t size = plist_array_get_size(node);
        for (uint32_t i = 0; i < size; ++i) {
            const auto value = FromPlistNode(plist_array_get_item(node, i), depth + 1);
            if (!value)
                return std::nullopt;
            list.append(*value);
        }
        return QVariant(list);
    }
    case PLIST_DICT: {
        QVariantMap map;
        plist_dict_iter iter = nullptr;
        plist_dict_new_iter(node, &iter);
        bool ok = iter != nullptr;
        while (ok) {
            char *key = nullptr;
            plist_t item = nullptr;
            plist_dict_next_item(node, iter, &key, &item);
            if (!item) {
                std::free(key);
                break;
            }
            const auto value = FromPlistNode(item, depth + 1);
            if (value && key)
                map.insert(QString::fromUtf8(key), *value);
            else
                ok = false;
            std::free(key);
        }
        std::free(iter);
        if (!ok)
            return std::nullopt;
        return QVariant(map);
    }
    case PLIST_UID: {
        uint64_t value = 0;
        plist_get_uid_val(node, &value);
        return QVariant(QVariantMap{{QStringLiteral("CF$UID"), static_cast<qlonglong>(value)}});
    }
    default:
        return std::nullopt;
    }
}

std::optional<QVariant> ParseBinary(const QByteArray &bytes)
{
    if (bytes.size() > std::numeric_limits<uint32_t>::max())
        return std::nullopt;
    plist_t root = nullptr;
    plist_from_bin(bytes.constData(), static_cast<uint32_t>(bytes.size()), &root);
    if (!root)
        return std::nullopt;
    auto value = FromPlistNode(root, 0);
    plist_free(root);
    return value;
}

} // namespace

bool PropertyListCanKeepText(QStringView text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        const char16_t u = c.unicode();
        if (c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
            ++i;
            continue;
        }
        if (c.isSurrogate() || u == 0xFFFE || u == 0xFFFF ||
            (u < 0x20 && u != u'\t' && u != u'\n' && u != u'\r'))
            return false;
    }
    return true;
}

std::optional<QString> FirstTextPropertyListCannotKeep(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QString: {
        const QString text = value.toString();
        return PropertyListCanKeepText(text) ? std::nullopt : std::optional<QString>(text);
    }
    case QMetaType::QStringList:
    case QMetaType::QVariantList: {
        const QVariantList list = value.toList();
        for (const QVariant &element : list) {
            if (std::optional<QString> text = FirstTextPropertyListCannotKeep(element))
                return text;
        }
        return std::nullopt;
    }
    case QMetaType::QVariantMap:
    case QMetaType::QVariantHash: {
        const QVariantMap map = value.toMap();
        for (auto it = map.cbegin(); it != map.cend(); ++it) {
            if (!PropertyListCanKeepText(it.key()))
                return it.key();
            if (std::optional<QString> text = FirstTextPropertyListCannotKeep(it.value()))
                return text;
        }
        return std::nullopt;
    }
    default:
        return std::nullopt;
    }
}

std::optional<QVariant> NormalizedPropertyListValue(const QVariant &value)
{
    return Normalized(value, 0);
}

std::optional<QVariant> ParsePropertyList(const QByteArray &bytes)
{
    if (bytes.startsWith("bplist"))
        return ParseBinary(bytes);
    return XmlReader(bytes).readDocument();
}

QByteArray PropertyListToXml(const QVariantMap &dictionary)
{
    QByteArray out;
    XmlWriter writer(&out);
    writer.writeDocument(NormalizedPropertyListValue(dictionary).value_or(QVariantMap()).toMap());
    return out;
}
