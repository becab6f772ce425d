#include "app/cli/TerminalText.h"

#include <QStringDecoder>

namespace {

QString HexEscape(char32_t c, int digits, QChar letter)
{
    return u'\\' + QString(letter) +
           QString::number(static_cast<uint>(c), 16).rightJustified(digits, u'0');
}

QString EscapedBytes(QByteArrayView bytes)
{
    QString text;
    for (const char byte : bytes) {
        const auto u = static_cast<unsigned char>(byte);
        if (u >= 0x20 && u < 0x7f)
            text += QLatin1Char(byte);
        else
            text += HexEscape(u, 2, u'x');
    }
    return text;
}

} // namespace

bool IsControlCharacter(char32_t c)
{
    return c < 0x20 || (c >= 0x7f && c <= 0x9f);
}

QString EscapedForMessage(QStringView text)
{
    QString escaped;
    escaped.reserve(text.size());
    for (const QChar ch : text) {
        const char16_t c = ch.unicode();
        if (c == u'\n') {
            escaped += QStringLiteral("\\n");
        } else if (c == u'\r') {
            escaped += QStringLiteral("\\r");
        } else if (c == u'\t') {
            escaped += QStringLiteral("\\t");
        } else if (c < 0x20 || c == 0x7f) {
            escaped += HexEscape(c, 2, u'x');
        } else if (IsControlCharacter(c)) {
            escaped += HexEscape(c, 4, u'u');
        } else {
            escaped += ch;
        }
    }
    return escaped;
}

QString WithoutControlCharacters(const QString &text)
{
    QString shown = text;
    for (QChar &c : shown) {
        if (IsControlCharacter(c.unicode()))
            c = QChar::ReplacementCharacter;
    }
    return shown;
}

void PrintCommandLineError(QTextStream &err, QStringView message)
{
    err << "horalo: " << EscapedForMessage(message) << '\n';
}

std::optional<QStringList> DecodeArguments(int argc, const char *const argv[], QString &error)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        const QByteArrayView bytes(argv[i]);
        QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        QString text = decoder(bytes);
        if (decoder.hasError()) {
            error = QStringLiteral("argument %1 is not valid UTF-8: '%2'")
                        .arg(i)
                        .arg(EscapedBytes(bytes));
            return std::nullopt;
        }
        arguments.append(std::move(text));
    }
    return arguments;
}
