#include "platform/UserDefaults.h"

#include "TestSupport.h"
#include "platform/AppIdentifier.h"
#include "platform/store/PlistPreferencesStore.h"

#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;

class UserDefaultsTest : public ::testing::Test
{
protected:
    void store(const QString &key, const QVariant &value)
    {
        m_writer.setAppValue(key, value, AppIdentifier);
        m_writer.appSynchronize(AppIdentifier);
    }

    QTemporaryDir m_dir = ScratchDirectory();
    QString m_path = m_dir.path() + QStringLiteral("/defaults.plist");
    PlistPreferencesStore m_writer{m_path};
    PlistPreferencesStore m_reader{m_path};
    UserDefaults m_defaults{
        m_reader, AppIdentifier, [] {
            return QVariantMap{{u"AppleLocale"_s, u"en_US"_s}, {u"menuTitleFormatter"_s, u"%H"_s}};
        }};
};

TEST_F(UserDefaultsTest, StoredValuesLieOverTheRegistrationLayer)
{
    EXPECT_EQ(m_defaults.objectForKey(u"menuTitleFormatter"_s), QVariant(u"%H"_s));
    store(u"menuTitleFormatter"_s, u"%Y"_s);
    EXPECT_EQ(m_defaults.objectForKey(u"menuTitleFormatter"_s), QVariant(u"%Y"_s));
    EXPECT_EQ(m_defaults.objectForKey(u"AppleLocale"_s), QVariant(u"en_US"_s));
    EXPECT_FALSE(m_defaults.objectForKey(u"missing"_s).isValid());

    const QVariantMap all = m_defaults.dictionaryRepresentation();
    EXPECT_EQ(all.value(u"menuTitleFormatter"_s), QVariant(u"%Y"_s));
    EXPECT_EQ(all.value(u"AppleLocale"_s), QVariant(u"en_US"_s));
    EXPECT_EQ(all.size(), 2);
}

TEST_F(UserDefaultsTest, ALayerThatNamesItsKeysIsBuiltOnlyForThoseKeysAndOnlyWhenNotStored)
{
    int builds = 0;
    UserDefaults defaults(
        m_reader, AppIdentifier,
        [&builds] {
            ++builds;
            return QVariantMap{{u"NSAMPMDesignation"_s, QStringList{u"AM"_s, u"PM"_s}}};
        },
        {u"NSAMPMDesignation"_s, u"NSMonthNameArray"_s});

    // What the title reads every second: never in the layer.
    EXPECT_FALSE(defaults.objectForKey(u"menuTitleFormatter"_s).isValid());
    EXPECT_TRUE(defaults.stringForKey(u"datePickerValue"_s).isNull());
    EXPECT_EQ(builds, 0);

    EXPECT_EQ(defaults.objectForKey(u"NSAMPMDesignation"_s).toStringList(),
              QStringList({u"AM"_s, u"PM"_s}));
    EXPECT_EQ(builds, 1);
    // A key it may hold but does not, for this locale.
    EXPECT_FALSE(defaults.objectForKey(u"NSMonthNameArray"_s).isValid());
    EXPECT_EQ(builds, 2);

    store(u"NSAMPMDesignation"_s, QVariantList{u"a"_s, u"p"_s});
    EXPECT_EQ(defaults.objectForKey(u"NSAMPMDesignation"_s).toStringList(),
              QStringList({u"a"_s, u"p"_s}));
    EXPECT_EQ(builds, 2) << "a stored value needs no layer";
    EXPECT_EQ(defaults.dictionaryRepresentation().size(), 1);
    EXPECT_EQ(builds, 3) << "the whole dictionary still holds the layer";
}

} // namespace
