// What the command line lets through to a terminal, and what it takes from one.

#include "app/cli/TerminalText.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

TEST(TerminalTextTest, MessagesSpellOutEveryControlAndShownTextLosesOnlyItsControls)
{
    EXPECT_EQ(EscapedForMessage(u"a\nb\rc\td"_s), u"a\\nb\\rc\\td"_s);
    EXPECT_EQ(EscapedForMessage(QString(u"\0\u0001\u001f\u007f"_s)), u"\\x00\\x01\\x1f\\x7f"_s);
    EXPECT_EQ(EscapedForMessage(u"\u0080\u009b\u00a0"_s), u"\\u0080\\u009b\u00a0"_s);
    EXPECT_EQ(EscapedForMessage(u"Mär \\n 日本 \U0001F600"_s), u"Mär \\n 日本 \U0001F600"_s)
        << "printable text and backslashes stay as they are";
    EXPECT_EQ(WithoutControlCharacters(u"a\tb\u009bc\u00a0d"_s), u"a\uFFFDb\uFFFDc\u00a0d"_s);
    EXPECT_EQ(WithoutControlCharacters(QString()), QString());
}

TEST(TerminalTextTest, ArgumentsMustBeUtf8)
{
    QString error;
    const char *good[] = {"horalo", "write", "Mär", "\xF0\x9F\x98\x80"};
    const std::optional<QStringList> decoded = DecodeArguments(4, good, error);
    ASSERT_TRUE(decoded.has_value());
    EXPECT_EQ(decoded->at(2), u"Mär"_s);
    EXPECT_EQ(decoded->at(3), u"\U0001F600"_s);

    // Latin-1, a lone continuation byte, an overlong slash, a UTF-8 encoded surrogate, and a
    // sequence cut short at the end.
    for (const char *bad : {"M\xE4r", "\x80", "\xC0\xAF", "\xED\xA0\x80", "ok\xE2\x82"}) {
        const char *argv[] = {"horalo", "defaults", bad};
        EXPECT_FALSE(DecodeArguments(3, argv, error).has_value()) << bad;
        EXPECT_TRUE(error.startsWith(u"argument 2 is not valid UTF-8"_s)) << qPrintable(error);
    }
    const char *latin1[] = {"horalo", "M\xE4r"};
    DecodeArguments(2, latin1, error);
    EXPECT_TRUE(error.endsWith(u"'M\\xe4r'"_s)) << qPrintable(error);
}

} // namespace
