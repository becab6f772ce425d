// What a running program reads while nothing changes: the title's tick and the menu's opening
// ask the settings file whether it changed, and parse it or build the locale dictionary only
// when there is something new to learn.

#include "app/AppController.h"
#include "app/cli/DescribeMenu.h"
#include "datetext/DateText.h"
#include "datetext/LocaleDefaults.h"
#include "platform/TestSupport.h"
#include "platform/memory/InMemoryPlatform.h"
#include "platform/store/PlistPreferencesStore.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <thread>

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

// 2006-03-10 14:31:47 -0500.
constexpr AbsoluteTime kFriday = 163711907.0;
constexpr auto kGranularity = 40ms;

class ReadsAtRest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        setenv("TZ", "America/New_York", 1);
        setenv("LANG", "en_US.UTF-8", 1);
        g_selectedDateTime = 0;
        QVariantList custom;
        for (int i = 0; i < 50; ++i)
            custom.append(u"%Y #"_s + QString::number(i));
        write(u"Custom Dates"_s, custom);
        std::this_thread::sleep_for(kGranularity + 20ms);

        m_store.setTimestampGranularityForTesting(kGranularity);
        m_platform.userDefaults.setRegistrationProvider(
            [this] {
                ++m_dictionaryBuilds;
                return LocaleDefaultsRegistration();
            },
            LocaleDefaultsKeys());
        m_controller.awakeFromNib();
        m_controller.applicationWillFinishLaunching();
    }
    void TearDown() override { gUserDefaultsDictionary.reset(); }

    void write(const QString &key, const QVariant &value)
    {
        PlistPreferencesStore writer(m_path);
        writer.setAppValue(key, value, AppIdentifier);
        ASSERT_TRUE(writer.appSynchronize(AppIdentifier));
    }

    void tickAndOpen(int times)
    {
        for (int i = 0; i < times; ++i) {
            m_platform.timers.advance(1.0);
            m_platform.statusItem()->openMenu();
        }
    }

    QStringList menuTitles()
    {
        QStringList titles;
        for (const QString &line : DescribeMenu(*m_controller.statusMenu().menu()))
            titles.append(line.section(u'\t', 0, 0));
        return titles;
    }

    QTemporaryDir m_dir = ScratchDirectory();
    QString m_path = m_dir.path() + u"/org.horalo.Horalo.plist"_s;
    PlistPreferencesStore m_store{m_path};
    InMemoryPlatform m_platform{kFriday, &m_store};
    Platform m_services = m_platform.platform();
    AppController m_controller{m_services, m_platform.chooserInterface(), nullptr};
    int m_dictionaryBuilds = 0;
};

TEST_F(ReadsAtRest, AnUnchangedFileIsNeitherParsedNorItsDictionaryBuiltAndAChangeShowsAtOnce)
{
    tickAndOpen(1);
    const int reads = m_store.fileReadCount();
    const int builds = m_dictionaryBuilds;
    tickAndOpen(10);
    EXPECT_EQ(m_store.fileReadCount(), reads);
    EXPECT_EQ(m_dictionaryBuilds, builds);
    // Still the file's values.
    EXPECT_TRUE(menuTitles().contains(u"2006 #49")) << menuTitles().join(u'\n').toStdString();

    // A change shows at the next tick and the next opening.
    write(u"LastTitleDisplayName"_s, u"Numerical Date"_s);
    write(u"menuTitleFormatter"_s, u"%Y!"_s);
    m_platform.timers.advance(1.0);
    EXPECT_EQ(m_platform.statusItem()->title(), u"2006!");
    EXPECT_GT(m_store.fileReadCount(), reads);

    write(u"Custom Dates"_s, QVariantList{u"only %Y"_s});
    m_platform.statusItem()->openMenu();
    const QStringList menu = menuTitles();
    EXPECT_TRUE(menu.contains(u"only 2006"));
    EXPECT_FALSE(menu.contains(u"2006 #49"));
}

} // namespace
