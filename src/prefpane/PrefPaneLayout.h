#pragma once

// What the preferences window's layout lists, shared by the desktop window and the in-memory
// controls so that both offer the same choices.

#include <QString>

#include <array>

// The title pop-up's items, in order: exactly the names LastTitleDisplayName may hold.
inline const std::array<QString, 9> kTitleDisplayNames = {
    QStringLiteral("Short Date"),
    QStringLiteral("Medium Date"),
    QStringLiteral("Long Date"),
    QStringLiteral("Full Date"),
    QStringLiteral("Short Date Time"),
    QStringLiteral("Medium Date Time"),
    QStringLiteral("Long Date Time"),
    QStringLiteral("Full Date Time"),
    QStringLiteral("GMT"),
};

// The pop-up's selection as laid out, before any stored title is applied.
inline const QString kLaidOutTitleDisplayName = QStringLiteral("Medium Date");

// One entry of the format-symbol list. Its title is the symbol, two spaces and the
// description: choosing it copies the title's first two characters.
struct FormatSymbol
{
    QString symbol;
    QString description;

    QString title() const { return symbol + QStringLiteral("  ") + description; }
};

// Every conversion of the calendar-format notation.
inline const std::array<FormatSymbol, 23> kFormatSymbols = {{
    {QStringLiteral("%%"), QStringLiteral("a literal percent sign")},
    {QStringLiteral("%a"), QStringLiteral("abbreviated weekday name")},
    {QStringLiteral("%A"), QStringLiteral("full weekday name")},
    {QStringLiteral("%b"), QStringLiteral("abbreviated month name")},
    {QStringLiteral("%B"), QStringLiteral("full month name")},
    {QStringLiteral("%c"), QStringLiteral("the locale's date and time")},
    {QStringLiteral("%d"), QStringLiteral("day of the month (01-31)")},
    {QStringLiteral("%e"), QStringLiteral("day of the month without leading zero (1-31)")},
    {QStringLiteral("%F"), QStringLiteral("milliseconds (000-999)")},
    {QStringLiteral("%H"), QStringLiteral("hour on a 24-hour clock (00-23)")},
    {QStringLiteral("%I"), QStringLiteral("hour on a 12-hour clock (01-12)")},
    {QStringLiteral("%j"), QStringLiteral("day of the year (001-366)")},
    {QStringLiteral("%m"), QStringLiteral("month (01-12)")},
    {QStringLiteral("%M"), QStringLiteral("minute (00-59)")},
    {QStringLiteral("%p"), QStringLiteral("AM/PM designation")},
    {QStringLiteral("%S"), QStringLiteral("second (00-59)")},
    {QStringLiteral("%w"), QStringLiteral("weekday as a number (0-6, Sunday is 0)")},
    {QStringLiteral("%x"), QStringLiteral("the locale's date")},
    {QStringLiteral("%X"), QStringLiteral("the locale's time")},
    {QStringLiteral("%y"), QStringLiteral("year without century (00-99)")},
    {QStringLiteral("%Y"), QStringLiteral("year with century")},
    {QStringLiteral("%Z"), QStringLiteral("time zone name")},
    {QStringLiteral("%z"), QStringLiteral("time zone offset from GMT (+HHMM)")},
}};
