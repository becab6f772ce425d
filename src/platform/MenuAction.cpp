#include "platform/MenuAction.h"

QLatin1String MenuActionName(MenuAction action)
{
    switch (action) {
    case MenuAction::None:
        return QLatin1String("");
    case MenuAction::ShowCalendar:
        return QLatin1String("showCalendar:");
    case MenuAction::ShortDate:
        return QLatin1String("shortDate:");
    case MenuAction::MediumDate:
        return QLatin1String("mediumDate:");
    case MenuAction::LongDate:
        return QLatin1String("longDate:");
    case MenuAction::FullDate:
        return QLatin1String("fullDate:");
    case MenuAction::ShortDateTime:
        return QLatin1String("shortDateTime:");
    case MenuAction::MediumDateTime:
        return QLatin1String("mediumDateTime:");
    case MenuAction::LongDateTime:
        return QLatin1String("longDateTime:");
    case MenuAction::FullDateTime:
        return QLatin1String("fullDateTime:");
    case MenuAction::ShortTime:
        return QLatin1String("shortTime:");
    case MenuAction::MediumTime:
        return QLatin1String("mediumTime:");
    case MenuAction::LongTime:
        return QLatin1String("longTime:");
    case MenuAction::FullTime:
        return QLatin1String("fullTime:");
    case MenuAction::GMTDateTime:
        return QLatin1String("gmtDateTime:");
    case MenuAction::NumericalDate:
        return QLatin1String("numericalDate:");
    case MenuAction::NumericalDateTime:
        return QLatin1String("numericalDateTime:");
    case MenuAction::NumericalDateNoHyphens:
        return QLatin1String("numericalDateNoHyphens:");
    case MenuAction::CustomDateFormatter:
        return QLatin1String("customDateFormatter:");
    case MenuAction::SelItemPreferences:
        return QLatin1String("selItemPreferences:");
    case MenuAction::SelItemAbout:
        return QLatin1String("selItemAbout:");
    case MenuAction::SelItemQuit:
        return QLatin1String("selItemQuit:");
    }
    return QLatin1String("");
}
