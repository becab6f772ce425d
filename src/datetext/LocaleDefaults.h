#pragma once

// The registration layer of the user defaults: the current locale's names and patterns under the
// keys the calendar-format notation reads.

#include <QString>
#include <QStringList>
#include <QStringView>
#include <QVariantMap>

// The current locale's names and patterns under the locale-dictionary keys (NSMonthNameArray,
// NSShortMonthNameArray, NSWeekDayNameArray, NSShortWeekDayNameArray, NSAMPMDesignation,
// NSTimeDateFormatString, NSDateFormatString, NSTimeFormatString): the registration layer of
// the user defaults.
QVariantMap LocaleDefaultsRegistration();
// Every key that LocaleDefaultsRegistration() can hold, whatever the locale.
QStringList LocaleDefaultsKeys();

// Turns an ICU date pattern ("MMM d, y, h:mm:ss a") into the calendar-format notation
// ("%b %e, %Y, %1I:%M:%S %p"). Fields the notation cannot show (eras, quarters, week numbers)
// are left out. With fourDigitYears, a two-digit year ("yy") becomes %Y.
QString CalendarFormatFromIcuPattern(QStringView pattern, bool fourDigitYears = false);
