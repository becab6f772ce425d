#pragma once

// Text that reaches a terminal from the command line. Whatever a user typed or a settings file
// holds can carry control characters; written raw they would split a one-line message or be
// taken by the terminal as commands of its own.

#include <QString>
#include <QStringList>
#include <QStringView>
#include <QTextStream>

#include <optional>

// C0 controls, DEL and the C1 controls: the characters a terminal may act on.
bool IsControlCharacter(char32_t c);

// The text on one line, controls spelled out: "\n", "\r", "\t", "\x01" (C0 and DEL) and
// "\u009b" (C1). Backslashes are left alone, so text escaped once can pass through again.
QString EscapedForMessage(QStringView text);

// The text with every control character replaced by U+FFFD, for what is shown rather than
// read back (the title, the menu's rows).
QString WithoutControlCharacters(const QString &text);

// Prints a command-line error as one line: "horalo: MESSAGE". Anything the message quotes is
// escaped here, so no argument can break the line or reach the terminal raw.
void PrintCommandLineError(QTextStream &err, QStringView message);

// The arguments as text, when every one is valid UTF-8. Otherwise std::nullopt, and `error`
// names the first argument that is not, its bytes shown as "\xff".
std::optional<QStringList> DecodeArguments(int argc, const char *const argv[], QString &error);
