// The settings accessors over the real file store: defaults, type rules, and reading afresh.

#include "TestSupport.h"
#include "app/settings/Settings.h"
#include "platform/store/PlistPreferencesStore.h"

#include <QDir>
#include <QFileInfo>

#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;

class SettingsOverStoreTest : public ::testing::Test
{
protected:
    // Puts the given dictionary body in the file as XML, so each value arrives with the type
    // written there, as a hand edit or another program would leave it.
    void writeXml(const QByteArray &body)
    {
        QDir().mkpath(QFileInfo(m_path).path());
        ASSERT_TRUE(WriteFileBytes(m_path, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                           "<plist version=\"1.0\"><dict>" +
                                               body + "</dict></plist>"));
    }

    QTemporaryDir m_dir = ScratchDirectory();
    QString m_path = m_dir.path() + QStringLiteral("/org.horalo.Horalo.plist");
    PlistPreferencesStore m_store{m_path};
};

TEST_F(SettingsOverStoreTest, AnEmptyStoreGivesEveryDefault)
{
    EXPECT_TRUE(IncludeGMTDateTime(m_store));
    EXPECT_TRUE(IncludeTitleIcon(m_store));
    EXPECT_FALSE(UseSymbolicNames(m_store));
    EXPECT_FALSE(InitDateTimeChooserToCurrentTimeWhenOpened(m_store));
    EXPECT_FALSE(DynamicDateTimeChooser(m_store));
    EXPECT_FALSE(IncludeDateOnlyItems(m_store));
    EXPECT_FALSE(IncludeTimeOnlyItems(m_store));
    EXPECT_EQ(TitleDisplayName(m_store), u"Medium Date"_s);
    EXPECT_TRUE(CustomDatesFromValue(m_store.copyAppValue(SettingsKey::CustomDates, AppIdentifier))
                    .isEmpty());
}

using Accessor = bool (*)(PreferencesStore &);

struct BooleanCase
{
    const QString &key;
    Accessor accessor;
};

const BooleanCase kAccessors[] = {
    {SettingsKey::UseSymbolicNames, UseSymbolicNames},
    {SettingsKey::InitDateTimeChooserToCurrentTimeWhenOpened,
     InitDateTimeChooserToCurrentTimeWhenOpened},
    {SettingsKey::DynamicDateTimeChooser, DynamicDateTimeChooser},
    {SettingsKey::IncludeGMTDateTime, IncludeGMTDateTime},
    {SettingsKey::IncludeDateOnlyItems, IncludeDateOnlyItems},
    {SettingsKey::IncludeTimeOnlyItems, IncludeTimeOnlyItems},
    {SettingsKey::IncludeTitleIcon, IncludeTitleIcon},
};

TEST_F(SettingsOverStoreTest, EachBooleanFollowsItsStoredValueAndIgnoresOtherTypes)
{
    for (const BooleanCase &c : kAccessors) {
        const bool fallback = BooleanSettingDefault(c.key);
        const QByteArray key = c.key.toUtf8();
        writeXml("<key>" + key + "</key><true/>");
        EXPECT_TRUE(c.accessor(m_store)) << key.constData();
        writeXml("<key>" + key + "</key><false/>");
        EXPECT_FALSE(c.accessor(m_store)) << key.constData();
        // Wrong types read as the default, whatever they hold.
        for (const char *wrong :
             {"<integer>1</integer>", "<integer>0</integer>", "<string>true</string>",
              "<string>false</string>", "<real>1</real>", "<array><true/></array>"}) {
            writeXml("<key>" + key + "</key>" + wrong);
            EXPECT_EQ(c.accessor(m_store), fallback) << key.constData() << ' ' << wrong;
        }
    }
}

TEST_F(SettingsOverStoreTest, TheTypeRulesTheMenuDependsOn)
{
    writeXml("<key>UseSymbolicNames</key><integer>1</integer>"
             "<key>IncludeGMTDateTime</key><string>NO</string>"
             "<key>LastTitleDisplayName</key><integer>3</integer>");
    EXPECT_FALSE(UseSymbolicNames(m_store));
    EXPECT_TRUE(IncludeGMTDateTime(m_store));
    EXPECT_EQ(TitleDisplayName(m_store), u"Medium Date"_s);

    writeXml("<key>LastTitleDisplayName</key><string>No Such Format</string>");
    EXPECT_EQ(TitleDisplayName(m_store), u"No Such Format"_s) << "names are not checked here";
}

TEST_F(SettingsOverStoreTest, EveryReadGoesToTheFileAfresh)
{
    PlistPreferencesStore writer(m_path);
    EXPECT_FALSE(UseSymbolicNames(m_store));

    writer.setAppValue(SettingsKey::UseSymbolicNames, true, AppIdentifier);
    writer.setAppValue(SettingsKey::LastTitleDisplayName, u"GMT"_s, AppIdentifier);
    writer.appSynchronize(AppIdentifier);
    EXPECT_TRUE(UseSymbolicNames(m_store));
    EXPECT_EQ(TitleDisplayName(m_store), u"GMT"_s);

    writer.setAppValue(SettingsKey::UseSymbolicNames, QVariant(), AppIdentifier);
    writer.setAppValue(SettingsKey::IncludeTitleIcon, false, AppIdentifier);
    writer.appSynchronize(AppIdentifier);
    EXPECT_FALSE(UseSymbolicNames(m_store));
    EXPECT_FALSE(IncludeTitleIcon(m_store));
}

TEST_F(SettingsOverStoreTest, CustomDatesKeepOrderAndSkipWhatIsNotAString)
{
    writeXml("<key>Custom Dates</key><array><string>%Y</string><integer>4</integer>"
             "<string>%d %b</string><dict/></array>");
    m_store.appSynchronize(AppIdentifier);
    EXPECT_EQ(CustomDatesFromValue(m_store.copyAppValue(SettingsKey::CustomDates, AppIdentifier)),
              (QStringList{u"%Y"_s, u"%d %b"_s}));

    writeXml("<key>Custom Dates</key><string>%Y</string>");
    m_store.appSynchronize(AppIdentifier);
    EXPECT_TRUE(CustomDatesFromValue(m_store.copyAppValue(SettingsKey::CustomDates, AppIdentifier))
                    .isEmpty());
}

} // namespace
