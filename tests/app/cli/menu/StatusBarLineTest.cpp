// The lines `horalo title --follow` gives a status bar: one title a line, and for Waybar one
// JSON object a line whose texts survive both JSON and Pango markup.

#include "app/cli/StatusBarLine.h"

#include "support/QtPrinters.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

namespace {

QJsonObject Parsed(const QString &line)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(line.toUtf8(), &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << line.toStdString();
    EXPECT_TRUE(document.isObject());
    return document.object();
}

TEST(StatusBarLine, PlainLineIsTheTitleOnOneLine)
{
    EXPECT_EQ(PlainStatusBarLine({QStringLiteral("Nov 23, 2026"), QStringLiteral("tip"), true}),
              QStringLiteral("Nov 23, 2026"));
    // A custom title can hold anything; a bar reads one line per title.
    EXPECT_EQ(PlainStatusBarLine({QStringLiteral("a\nb\x1b[2J"), {}, false}),
              QStringLiteral("a\uFFFDb\uFFFD[2J"));
}

TEST(StatusBarLine, JsonLineCarriesTextTooltipAndClass)
{
    const QJsonObject now =
        Parsed(JsonStatusBarLine({QStringLiteral("09:41:07"),
                                  QStringLiteral("It is now: Nov 23, 2026, 9:41\u202fAM"), false}));
    EXPECT_EQ(now.value(QStringLiteral("text")).toString(), QStringLiteral("09:41:07"));
    EXPECT_EQ(now.value(QStringLiteral("tooltip")).toString(),
              QStringLiteral("It is now: Nov 23, 2026, 9:41\u202fAM"));
    EXPECT_EQ(now.value(QStringLiteral("class")).toString(), QStringLiteral("now"));
    EXPECT_EQ(now.size(), 3);

    const QString picked = JsonStatusBarLine(
        {QStringLiteral("Mar 20, 2026"),
         QStringLiteral("It is now: Mar 10, 2026, 2:31\u202fPM\nDays To Mar 20, 2026: 10 days"),
         true});
    EXPECT_FALSE(picked.contains(QLatin1Char('\n'))) << "one object, one line";
    const QJsonObject parsed = Parsed(picked);
    EXPECT_EQ(parsed.value(QStringLiteral("class")).toString(), QStringLiteral("picked"));
    EXPECT_EQ(parsed.value(QStringLiteral("tooltip")).toString().split(QLatin1Char('\n')).size(),
              2);
}

TEST(StatusBarLine, TextsSurviveJsonAndPangoMarkup)
{
    // What a custom title may hold: quotes and backslashes (JSON), markup characters (Pango),
    // text beyond ASCII, and controls that are no text at all.
    const QString title = QStringLiteral("\"%Y\" \\ <b>R&D</b> «Mär» \t\x01");
    const QJsonObject parsed = Parsed(JsonStatusBarLine({title, QStringLiteral("a < b"), false}));
    EXPECT_EQ(parsed.value(QStringLiteral("text")).toString(),
              QStringLiteral("\"%Y\" \\ &lt;b&gt;R&amp;D&lt;/b&gt; «Mär» \uFFFD\uFFFD"));
    EXPECT_EQ(parsed.value(QStringLiteral("tooltip")).toString(), QStringLiteral("a &lt; b"));

    EXPECT_EQ(PangoEscaped(QStringLiteral("&amp;")), QStringLiteral("&amp;amp;"))
        << "an entity in a title is text, shown as typed";
    EXPECT_EQ(PangoEscaped(QString()), QString());
}

} // namespace
