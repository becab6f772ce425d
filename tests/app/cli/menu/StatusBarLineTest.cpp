// The lines `horalo title --follow` gives a status bar: one title a line, and for Waybar one
// JSON object a line whose texts survive both JSON and Pango markup.

#include "app/cli/StatusBarLine.h"

#include "support/QtPrinters.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QJsonObject Parsed(const QString &line)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(line.toUtf8(), &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << line.toStdString();
    EXPECT_FALSE(line.contains(u'\n')) << "one object, one line";
    return document.object();
}

TEST(StatusBarLine, PlainLineIsTheTitleOnOneLine)
{
    EXPECT_EQ(PlainStatusBarLine({u"Nov 23, 2026"_s, u"tip"_s, true}), u"Nov 23, 2026"_s);
    // A custom title can hold anything; a bar reads one line per title.
    EXPECT_EQ(PlainStatusBarLine({u"a\nb\x1b[2J"_s, {}, false}), u"a\uFFFDb\uFFFD[2J"_s);
}

TEST(StatusBarLine, TextsSurviveJsonAndPangoMarkup)
{
    // What a custom title may hold: quotes and backslashes (JSON), markup characters (Pango),
    // text beyond ASCII, and controls that are no text at all.
    const QJsonObject parsed =
        Parsed(JsonStatusBarLine({u"\"%Y\" \\ <b>R&D</b> «Mär» \t\x01"_s, u"a < b\nc"_s, false}));
    EXPECT_EQ(parsed.value(u"text"_s).toString(),
              u"\"%Y\" \\ &lt;b&gt;R&amp;D&lt;/b&gt; «Mär» \uFFFD\uFFFD"_s);
    EXPECT_EQ(parsed.value(u"tooltip"_s).toString(), u"a &lt; b\nc"_s);
    EXPECT_EQ(PangoEscaped(u"&amp;"_s), u"&amp;amp;"_s)
        << "an entity in a title is text, shown as typed";
    EXPECT_EQ(PangoEscaped(QString()), QString());
}

} // namespace
