#include "app/cli/StatusBarLine.h"

#include "app/cli/TerminalText.h"

#include <QJsonDocument>
#include <QJsonObject>

QString PangoEscaped(const QString &text)
{
    QString escaped;
    escaped.reserve(text.size());
    for (const QChar c : text) {
        if (c == QLatin1Char('&'))
            escaped += QLatin1String("&amp;");
        else if (c == QLatin1Char('<'))
            escaped += QLatin1String("&lt;");
        else if (c == QLatin1Char('>'))
            escaped += QLatin1String("&gt;");
        else
            escaped += c;
    }
    return escaped;
}

QString PlainStatusBarLine(const StatusBarState &state)
{
    return WithoutControlCharacters(state.title);
}

QString JsonStatusBarLine(const StatusBarState &state)
{
    // The tooltip's lines stay lines; anything else that is a control is not text to show.
    QString tooltip;
    const QStringList lines = state.tooltip.split(QLatin1Char('\n'));
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (i > 0)
            tooltip += QLatin1Char('\n');
        tooltip += WithoutControlCharacters(lines.at(i));
    }
    const QJsonObject object{
        {QStringLiteral("text"), PangoEscaped(WithoutControlCharacters(state.title))},
        {QStringLiteral("tooltip"), PangoEscaped(tooltip)},
        {QStringLiteral("class"), state.picked ? QStringLiteral("picked") : QStringLiteral("now")},
    };
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}
