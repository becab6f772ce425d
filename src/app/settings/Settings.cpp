#include "app/settings/Settings.h"

#include "platform/PreferencesStore.h"

bool BooleanSettingDefault(const QString &key)
{
    for (const BooleanSetting &setting : kBooleanSettings) {
        if (setting.key == key)
            return setting.defaultValue;
    }
    return false;
}

bool ReadBooleanSetting(PreferencesStore &store, const QString &key)
{
    const QVariant value = store.copyAppValue(key, AppIdentifier);
    if (value.typeId() != QMetaType::Bool)
        return BooleanSettingDefault(key);
    return value.toBool();
}

static bool SynchronizedBoolean(PreferencesStore &store, const QString &key)
{
    store.appSynchronize(AppIdentifier);
    return ReadBooleanSetting(store, key);
}

bool IncludeGMTDateTime(PreferencesStore &store)
{
    return SynchronizedBoolean(store, SettingsKey::IncludeGMTDateTime);
}

bool UseSymbolicNames(PreferencesStore &store)
{
    return SynchronizedBoolean(store, SettingsKey::UseSymbolicNames);
}

bool InitDateTimeChooserToCurrentTimeWhenOpened(PreferencesStore &store)
{
    return SynchronizedBoolean(store, SettingsKey::InitDateTimeChooserToCurrentTimeWhenOpened);
}

bool DynamicDateTimeChooser(PreferencesStore &store)
{
    return SynchronizedBoolean(store, SettingsKey::DynamicDateTimeChooser);
}

bool IncludeDateOnlyItems(PreferencesStore &store)
{
    return SynchronizedBoolean(store, SettingsKey::IncludeDateOnlyItems);
}

bool IncludeTimeOnlyItems(PreferencesStore &store)
{
    return SynchronizedBoolean(store, SettingsKey::IncludeTimeOnlyItems);
}

bool IncludeTitleIcon(PreferencesStore &store)
{
    return SynchronizedBoolean(store, SettingsKey::IncludeTitleIcon);
}

QString TitleDisplayName(PreferencesStore &store)
{
    store.appSynchronize(AppIdentifier);
    const QVariant value = store.copyAppValue(SettingsKey::LastTitleDisplayName, AppIdentifier);
    if (value.typeId() != QMetaType::QString)
        return DefaultTitleDisplayName;
    return value.toString();
}

QStringList CustomDatesFromValue(const QVariant &value)
{
    QStringList formats;
    if (value.typeId() != QMetaType::QVariantList && value.typeId() != QMetaType::QStringList)
        return formats;
    const QVariantList list = value.toList();
    for (const QVariant &element : list) {
        if (element.typeId() == QMetaType::QString)
            formats.append(element.toString());
    }
    return formats;
}
