#pragma once

// The catalogue of built-in formats: sixteen named formats in four groups, each with its menu
// name, its title name (empty when the title cannot show it), its copy action and how its text is
// made. The date-and-time formats are spelt with a hyphen in the menu ("Short Date-Time") and with
// a space in the title list ("Short Date Time"), and the GMT format is "GMT Date Time" in the menu
// but "GMT" in the title list; both spellings are stored settings and must not be unified.

#include "datetext/DateText.h"
#include "platform/MenuAction.h"

#include <QStringView>

#include <array>
#include <optional>

enum class DateFormatGroup
{
    DateTime,
    DateOnly,
    TimeOnly,
    Numerical
};

enum class DateFormatKind
{
    Styled,                 // the locale's rendering in (dateStyle, timeStyle)
    GMTDateTime,            // the whole default description
    NumericalDateTime,      // its first two fields
    NumericalDate,          // its first field
    NumericalDateNoHyphens, // its first field without "-"
};

struct CatalogueFormat
{
    DateFormatGroup group;
    QStringView menuName;
    QStringView titleName;
    MenuAction copyAction;
    DateFormatKind kind;
    DateFormatterStyle dateStyle;
    DateFormatterStyle timeStyle;
};

const std::array<CatalogueFormat, 16> &DateFormatCatalogue();

// The entry with that name (compared case-sensitively), or null.
const CatalogueFormat *CatalogueFormatWithMenuName(QStringView menuName);
const CatalogueFormat *CatalogueFormatWithTitleName(QStringView titleName);

// The text of a format for an instant, as its menu entry and copy action make it; null when it
// cannot be produced.
QString CatalogueFormatText(const CatalogueFormat &format, AbsoluteTime instant);

// The numerical derivations, cut from a default description split at single spaces; null when
// the description has too few fields.
QString NumericalDateFromDescription(const QString &description);
QString NumericalDateTimeFromDescription(const QString &description);
QString NumericalDateNoHyphensFromDescription(const QString &description);

// What the title shows for a title name: the styled title operations (the working instant, or
// "Horalo") and "GMT" (always the present). None for a name that is not a title name.
std::optional<QString> TitleFormatText(QStringView titleName, const Clock &clock);
