#pragma once

#include "platform/AppIdentifier.h"

#include <QString>
#include <QStringList>

class PreferencesStore;

inline const QString PreferencesChangedNotification = QStringLiteral("Preferences Changed");

namespace SettingsKey {
inline const QString UseSymbolicNames = QStringLiteral("UseSymbolicNames");
inline const QString InitDateTimeChooserToCurrentTimeWhenOpened =
    QStringLiteral("InitDateTimeChooserToCurrentTimeWhenOpened");
inline const QString DynamicDateTimeChooser = QStringLiteral("DynamicDateTimeChooser");
inline const QString IncludeGMTDateTime = QStringLiteral("IncludeGMTDateTime");
inline const QString IncludeDateOnlyItems = QStringLiteral("IncludeDateOnlyItems");
inline const QString IncludeTimeOnlyItems = QStringLiteral("IncludeTimeOnlyItems");
inline const QString IncludeTitleIcon = QStringLiteral("IncludeTitleIcon");
inline const QString LastTitleDisplayName = QStringLiteral("LastTitleDisplayName");
inline const QString CustomDates = QStringLiteral("Custom Dates");
// Read through the user defaults, never written by the application itself.
inline const QString DatePickerValue = QStringLiteral("datePickerValue");
inline const QString MenuTitleFormatter = QStringLiteral("menuTitleFormatter");
} // namespace SettingsKey

inline const QString DefaultTitleDisplayName = QStringLiteral("Medium Date");

// One boolean setting: its key and what it reads as when missing or not a boolean. Every
// reader, the status menu's and the preferences window's, goes through this table.
struct BooleanSetting
{
    const QString &key;
    bool defaultValue;
};

inline const BooleanSetting kBooleanSettings[] = {
    {SettingsKey::UseSymbolicNames, false},
    {SettingsKey::InitDateTimeChooserToCurrentTimeWhenOpened, false},
    {SettingsKey::DynamicDateTimeChooser, false},
    {SettingsKey::IncludeGMTDateTime, true},
    {SettingsKey::IncludeDateOnlyItems, false},
    {SettingsKey::IncludeTimeOnlyItems, false},
    {SettingsKey::IncludeTitleIcon, true},
};

// The default of a boolean key; false for a key that is not in the table.
bool BooleanSettingDefault(const QString &key);

// Reads a boolean key as stored, without synchronising: the stored boolean, or the key's
// default when it is missing or of another type.
bool ReadBooleanSetting(PreferencesStore &store, const QString &key);

// The accessors of the status-menu side. Each synchronises first, so a value another process
// wrote is seen, and never writes.
bool IncludeGMTDateTime(PreferencesStore &store);
bool UseSymbolicNames(PreferencesStore &store);
bool InitDateTimeChooserToCurrentTimeWhenOpened(PreferencesStore &store);
bool DynamicDateTimeChooser(PreferencesStore &store);
bool IncludeDateOnlyItems(PreferencesStore &store);
bool IncludeTimeOnlyItems(PreferencesStore &store);
bool IncludeTitleIcon(PreferencesStore &store);
QString TitleDisplayName(PreferencesStore &store);

// The custom formats as stored, in order. A value that is not a list reads as empty, and
// elements that are not strings are skipped: a hand-edited store never breaks the menu.
QStringList CustomDatesFromValue(const QVariant &value);
