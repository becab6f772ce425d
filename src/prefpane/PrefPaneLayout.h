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

// Every conversion the calendar-format renderer knows, and the width digit it accepts after
// the percent sign, in the order a reader scans them: names, numbers, time, zone, the locale's
// composites, then the two that are not conversions of their own.
inline const std::array<FormatSymbol, 24> kFormatSymbols = {{
    {QStringLiteral("%a"), QStringLiteral("weekday, short (Mon)")},
    {QStringLiteral("%A"), QStringLiteral("weekday (Monday)")},
    {QStringLiteral("%b"), QStringLiteral("month, short (Nov)")},
    {QStringLiteral("%B"), QStringLiteral("month (November)")},
    {QStringLiteral("%d"), QStringLiteral("day of month (01-31)")},
    {QStringLiteral("%e"), QStringLiteral("day of month (1-31)")},
    {QStringLiteral("%j"), QStringLiteral("day of year (001-366)")},
    {QStringLiteral("%w"), QStringLiteral("weekday number (0-6)")},
    {QStringLiteral("%m"), QStringLiteral("month (01-12)")},
    {QStringLiteral("%y"), QStringLiteral("year (00-99)")},
    {QStringLiteral("%Y"), QStringLiteral("year (2006)")},
    {QStringLiteral("%H"), QStringLiteral("hour, 24h (00-23)")},
    {QStringLiteral("%I"), QStringLiteral("hour, 12h (01-12)")},
    {QStringLiteral("%p"), QStringLiteral("AM or PM")},
    {QStringLiteral("%M"), QStringLiteral("minute (00-59)")},
    {QStringLiteral("%S"), QStringLiteral("second (00-59)")},
    {QStringLiteral("%F"), QStringLiteral("milliseconds (000-999)")},
    {QStringLiteral("%z"), QStringLiteral("zone offset (-0500)")},
    {QStringLiteral("%Z"), QStringLiteral("zone name (EST)")},
    {QStringLiteral("%c"), QStringLiteral("locale's date and time")},
    {QStringLiteral("%x"), QStringLiteral("locale's date")},
    {QStringLiteral("%X"), QStringLiteral("locale's time")},
    {QStringLiteral("%%"), QStringLiteral("a percent sign")},
    {QStringLiteral("%1"), QStringLiteral("width digit: %1d is 9")},
}};
