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
        ASSERT_TRUE(WriteFileBytes(m_path, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                           "<plist version=\"1.0\"><dict>" +
                                               body + "</dict></plist>"));
    }

    QTemporaryDir m_dir = ScratchDirectory();
    QString m_path = m_dir.path() + QStringLiteral("/org.horalo.Horalo.plist");
    PlistPreferencesStore m_store{m_path};
};

TEST_F(SettingsOverStoreTest, EachBooleanHasItsDefaultFollowsItsStoredValueAndIgnoresOtherTypes)
{
    const struct
    {
        const QString &key;
        bool (*accessor)(PreferencesStore &);
        bool fallback;
    } booleans[] = {
        {SettingsKey::UseSymbolicNames, UseSymbolicNames, false},
        {SettingsKey::InitDateTimeChooserToCurrentTimeWhenOpened,
         InitDateTimeChooserToCurrentTimeWhenOpened, false},
        {SettingsKey::DynamicDateTimeChooser, DynamicDateTimeChooser, false},
        {SettingsKey::IncludeGMTDateTime, IncludeGMTDateTime, true},
        {SettingsKey::IncludeDateOnlyItems, IncludeDateOnlyItems, false},
        {SettingsKey::IncludeTimeOnlyItems, IncludeTimeOnlyItems, false},
        {SettingsKey::IncludeTitleIcon, IncludeTitleIcon, true},
    };
    for (const auto &c : booleans) {
        const QByteArray key = c.key.toUtf8();
        SCOPED_TRACE(key.constData());
        writeXml("");
        EXPECT_EQ(c.accessor(m_store), c.fallback);
        writeXml("<key>" + key + "</key><true/>");
        EXPECT_TRUE(c.accessor(m_store));
        writeXml("<key>" + key + "</key><false/>");
        EXPECT_FALSE(c.accessor(m_store));
        // Wrong types read as the default, whatever they hold.
        for (const char *wrong :
             {"<integer>1</integer>", "<integer>0</integer>", "<string>true</string>",
              "<string>false</string>", "<real>1</real>", "<array><true/></array>"}) {
            writeXml("<key>" + key + "</key>" + wrong);
            EXPECT_EQ(c.accessor(m_store), c.fallback) << wrong;
        }
    }
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

} // namespace
