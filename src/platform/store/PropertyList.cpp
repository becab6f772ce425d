#include "platform/store/PropertyList.h"

#include "platform/AbsoluteTime.h"
#include "platform/store/BinaryPropertyListReader.h"

#include <QDateTime>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <cmath>
#include <limits>

// XML is read and written here with QtCore; binary lists are read by our own bounded reader,
// since a settings file may be damaged or hostile and a general-purpose parser (libplist, for
// one) can abort or exhaust the stack on such input before any check of ours could run.

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

    // A carriage return would come back as a line feed: it is written as a character
    // reference. Text XML cannot carry at all never gets here (PropertyListToXml() checks).
    void writeText(const QString &text)
    {
        const QStringList lines = text.split(u'\r');
        for (qsizetype i = 0; i < lines.size(); ++i) {
            if (i > 0)
                m_xml.writeEntityReference(QStringLiteral("#13"));
            m_xml.writeCharacters(lines.at(i));
        }
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
        return BinaryPropertyListReader(bytes).read();
    return XmlReader(bytes).readDocument();
}

std::optional<QByteArray> PropertyListToXml(const QVariantMap &dictionary)
{
    if (FirstTextPropertyListCannotKeep(dictionary))
        return std::nullopt;
    QByteArray out;
    XmlWriter writer(&out);
    writer.writeDocument(NormalizedPropertyListValue(dictionary).value_or(QVariantMap()).toMap());
    return out;
}
