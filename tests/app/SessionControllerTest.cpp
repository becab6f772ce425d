// The running application's answers to other programs of the session, on the in-memory
// platform: the same copy actions and menu as a click, the title announced once per change, and
// the one-per-session start.

#include "app/SessionController.h"

#include "app/DeferToRunningInstance.h"
#include "datetext/DateFormatCatalogue.h"
#include "support/ControllerFixture.h"

#include <QBuffer>

#include <algorithm>

namespace {

using namespace Qt::StringLiterals;

// An instant no calendar can show: every text of it fails to render.
constexpr AbsoluteTime kBeyondAnyCalendar = 1e300;

class SessionRequestsTest : public ControllerFixture
{
protected:
    void SetUp() override
    {
        ControllerFixture::SetUp();
        launch();
        requests = std::make_unique<SessionController>(controller, session);
    }
    void TearDown() override
    {
        requests.reset();
        ControllerFixture::TearDown();
    }

    SessionRequests::CopyResult copy(const char *name)
    {
        return session.requests->copy(QString::fromUtf8(name));
    }

    InMemorySessionService session;
    std::unique_ptr<SessionController> requests;
};

using CopyRequest = SessionRequestsTest;

TEST_F(CopyRequest, EveryMenuNameCopiesTheTextOfTheEntryOfThatName)
{
    ASSERT_EQ(session.requests, requests.get());
    set(SettingsKey::IncludeDateOnlyItems, true);
    set(SettingsKey::IncludeTimeOnlyItems, true);
    set(SettingsKey::UseSymbolicNames, true);
    item().openMenu();
    const QList<MenuItem> named = controller.statusMenu().menu()->items();
    set(SettingsKey::UseSymbolicNames, false);
    item().openMenu();
    const QList<MenuItem> shown = controller.statusMenu().menu()->items();
    ASSERT_EQ(named.size(), shown.size());

    // The date-and-time entries keep their hyphen in the menu's names ("Short Date-Time").
    for (const CatalogueFormat &format : DateFormatCatalogue()) {
        const QString name = format.menuName.toString();
        SCOPED_TRACE(name.toStdString());
        const auto entry = std::find_if(named.begin(), named.end(), [&name](const MenuItem &item) {
            return item.title == name;
        });
        ASSERT_NE(entry, named.end());
        const SessionRequests::CopyResult result = copy(name.toUtf8().constData());
        EXPECT_EQ(result.status, SessionRequests::CopyStatus::Copied);
        EXPECT_EQ(result.text, shown.at(entry - named.begin()).title.toUtf8());
        EXPECT_EQ(platform.clipboard.contents(), result.text);
    }
    EXPECT_EQ(copy("Numerical Date No Hyphens").text, QByteArray("20060310"));
}

TEST_F(CopyRequest, CustomFormatsFollowThePrefixAndThePickedMoment)
{
    g_selectedDateTime = kFriday + 300 * kDay;
    SessionRequests::CopyResult result = copy("custom:%Y-%m-%d %% «%A»");
    EXPECT_EQ(result.status, SessionRequests::CopyStatus::Copied);
    EXPECT_EQ(result.text, QByteArray("2007-01-04 % «Thursday»"));
    EXPECT_EQ(platform.clipboard.contents(), result.text);

    // Everything after the prefix is the format, even nothing at all: an empty text is copied.
    result = copy("custom:");
    EXPECT_EQ(result.status, SessionRequests::CopyStatus::Copied);
    EXPECT_EQ(platform.clipboard.contents(), QByteArray());
}

TEST_F(CopyRequest, WhatIsNoFormatOrCannotBeProducedOrPutCopiesNothing)
{
    platform.clipboard.setContents("kept");
    // Title names lack the hyphen, case matters, and the prefix is exact.
    for (const char *name : {"", "Medium Date Time", "numerical date", "Numerical Date ",
                             "Custom:%Y", "Preferences...", "Quit", "customDateFormatter:"})
        EXPECT_EQ(copy(name).status, SessionRequests::CopyStatus::UnknownFormat) << name;

    g_selectedDateTime = kBeyondAnyCalendar;
    EXPECT_EQ(copy("Medium Date").status, SessionRequests::CopyStatus::NotRendered);
    EXPECT_EQ(copy("custom:%Y").status, SessionRequests::CopyStatus::NotRendered);
    g_selectedDateTime = 0;
    platform.clipboard.setUnreachableStatus(-1);
    EXPECT_EQ(copy("Medium Date").status, SessionRequests::CopyStatus::NotRendered)
        << "a clipboard that cannot be reached copies nothing";
    EXPECT_EQ(platform.clipboard.contents(), QByteArray("kept"));
    EXPECT_EQ(platform.clipboard.writeCount(), 0);
}

using TitleAnnouncements = SessionRequestsTest;

TEST_F(TitleAnnouncements, OnlyATitleThatReadsDifferentlyIsAnnounced)
{
    set(SettingsKey::MenuTitleFormatter, u"%H:%M"_s);
    EXPECT_EQ(session.requests->title(), QString()) << "no title before the first tick";
    platform.timers.advance(1.0);
    EXPECT_EQ(session.requests->title(), u"14:31"_s);
    platform.timers.advance(5.0); // 14:31:53: the minute has not changed
    EXPECT_EQ(session.announcedTitles, QStringList{u"14:31"_s});

    platform.timers.advance(10.0); // past 14:32
    set(SettingsKey::MenuTitleFormatter, u"%H:%M:%S"_s);
    platform.timers.advance(2.0);
    EXPECT_EQ(session.announcedTitles,
              (QStringList{u"14:31"_s, u"14:32"_s, u"14:32:04"_s, u"14:32:05"_s}));
    EXPECT_EQ(session.requests->title(), u"14:32:05"_s);
}

TEST_F(TitleAnnouncements, PickedMomentIsTheChoosersValueAndAStoppedControllerSaysNothing)
{
    EXPECT_FALSE(session.requests->pickedMoment().has_value());
    g_selectedDateTime = kFriday - 3 * kDay;
    EXPECT_EQ(session.requests->pickedMoment(), kFriday - 3 * kDay);

    set(SettingsKey::MenuTitleFormatter, u"%S"_s);
    platform.timers.advance(1.0);
    requests.reset();
    EXPECT_EQ(session.requests, nullptr);
    platform.timers.advance(3.0);
    EXPECT_EQ(session.announcedTitles.size(), 1);
}

using EntryRequests = SessionRequestsTest;

TEST_F(EntryRequests, ShowMenuOpensTheRebuiltMenuWhereAsked)
{
    const int setups = controller.setupCount();
    set(SettingsKey::CustomDates, QVariantList{u"%Y"_s});
    session.requests->showMenu(QPoint(40, 12));
    EXPECT_EQ(item().popUpCount(), 1);
    EXPECT_EQ(item().lastPopUpPosition(), QPoint(40, 12));
    EXPECT_EQ(controller.setupCount(), setups + 1);
    EXPECT_EQ(titleOf(MenuAction::CustomDateFormatter), u"2006"_s)
        << "the menu shows the settings as of this opening";

    session.requests->showMenu(std::nullopt);
    EXPECT_EQ(item().lastPopUpPosition(), std::nullopt);
    // Choosing from the opened menu copies, as from the panel.
    ASSERT_TRUE(item().chooseItemTitled(u"20060310"_s));
    EXPECT_EQ(platform.clipboard.contents(), QByteArray("20060310"));
}

TEST_F(EntryRequests, ShowChooserStopsALiveChooserBeforeOpeningIt)
{
    set(SettingsKey::DynamicDateTimeChooser, true);
    session.requests->showChooser();
    EXPECT_TRUE(platform.chooserWindow.isVisible());
    Timer *first = controller.chooser().dateTimeTimer();
    ASSERT_NE(first, nullptr);
    session.requests->showChooser();
    EXPECT_FALSE(platform.timers.validTimers().contains(first))
        << "a second request must not leave the first clock running";
    ASSERT_NE(controller.chooser().dateTimeTimer(), nullptr);
    EXPECT_TRUE(platform.timers.validTimers().contains(controller.chooser().dateTimeTimer()));
}

TEST_F(EntryRequests, PreferencesAndQuitDoWhatTheirEntriesDo)
{
    session.requests->showPreferences();
    EXPECT_TRUE(preferencesWindow.isKey());
    EXPECT_EQ(platform.application.frontCount, 1);
    EXPECT_EQ(platform.application.terminateCount, 0);
    session.requests->quit();
    EXPECT_EQ(platform.application.terminateCount, 1);
}

class SecondStart : public ::testing::Test
{
protected:
    std::optional<int> start()
    {
        output.clear();
        QTextStream out(&output);
        return DeferToRunningInstance(session, out);
    }

    InMemorySessionService session;
    QString output;
};

TEST_F(SecondStart, TheFirstRunsSilentlyALaterOneAsksForPreferencesAndSaysSoInOneLine)
{
    EXPECT_EQ(start(), std::nullopt);
    EXPECT_EQ(session.preferencesAsked, 0);
    EXPECT_EQ(output, QString());

    session.heldByAnother = true;
    EXPECT_EQ(start(), 0);
    EXPECT_EQ(session.preferencesAsked, 1);
    EXPECT_EQ(output, u"Horalo is already running; its Preferences window is open.\n"_s);

    session.holderAnswers = false;
    EXPECT_EQ(start(), 0);
    EXPECT_EQ(output, u"Horalo is already running in this session.\n"_s)
        << "a holder that cannot be asked (no bus, only a lock) is not said to show anything";
}

} // namespace
