#pragma once

#include <QLatin1String>

// What choosing a menu entry does. The set is closed: every entry the menu can hold names one of
// these, and the application controller has one operation for each.
enum class MenuAction
{
    None, // an informational line: choosing it does nothing

    ShowCalendar,

    // The copy actions, one per format of the catalogue, and one for every custom format.
    ShortDate,
    MediumDate,
    LongDate,
    FullDate,
    ShortDateTime,
    MediumDateTime,
    LongDateTime,
    FullDateTime,
    ShortTime,
    MediumTime,
    LongTime,
    FullTime,
    GMTDateTime,
    NumericalDate,
    NumericalDateTime,
    NumericalDateNoHyphens,
    CustomDateFormatter,

    SelItemPreferences,
    SelItemAbout,
    SelItemQuit,
};

// The action's selector name with its colon, such as "shortDate:"; empty for None. `horalo menu`
// prints it, so scripts read these names.
QLatin1String MenuActionName(MenuAction action);
