#include "app/AppController.h"

#include "app/settings/Settings.h"
#include "datetext/CopyActions.h"
#include "datetext/DateText.h"

AppController::AppController(Platform &platform, ChooserInterface chooser,
                             Window *preferencesWindow)
    : m_platform(platform), m_preferencesWindow(preferencesWindow),
      m_statusMenu(platform, *this, *this), m_chooser(platform, chooser)
{}

void AppController::awakeFromNib()
{
    // The title timer starts unset (the status menu's own state); the picker is wired and set
    // to now, the chooser floats above other windows, and no live clock runs yet.
    m_chooser.connectPicker();
    m_chooser.setPickerToNow();
    m_chooser.raiseWindowLevel();
    m_chooser.clearTimer();
    m_statusMenu.createStatusItem();
    m_chooser.restorePickerFromDefaults();
    m_chooser.setMomentPickedObserver([this] { setup(); });
    m_customDates.clear();
    m_customDates.reserve(50);
    setup();
    m_platform.distributedCenter.addObserver(PreferencesChangedNotification, AppIdentifier,
                                             [this] { PreferencesChangedCallback(*this); });
    // A settings file changed by another writer is a change of settings like any broadcast.
    m_platform.storeWatcher.addObserver([this] { setup(); });
    // The chooser window tells its owner it is closing; every window posts to this centre.
    m_platform.windowCenter.addWindowWillCloseObserver(
        [this](Window *window) { windowWillClose(window); });
}

void AppController::applicationWillFinishLaunching()
{
    gUserDefaultsDictionary = m_platform.userDefaults.dictionaryRepresentation();
}

void AppController::setup()
{
    ++m_setupCount;
    m_platform.store.appSynchronize(AppIdentifier);
    m_customDates = CustomDatesFromValue(
        m_platform.store.copyAppValue(SettingsKey::CustomDates, AppIdentifier));
    m_chooser.stopTicking();
    m_statusMenu.buildMenu(m_customDates);
}

void AppController::menuNeedsUpdate(Menu *)
{
    setup();
}

bool AppController::validateMenuItem(const MenuItem &)
{
    return true;
}

void AppController::performAction(MenuAction action, const MenuItem &sender)
{
    switch (action) {
    case MenuAction::None:
        return;
    case MenuAction::ShowCalendar:
        return showCalendar(sender);
    case MenuAction::SelItemPreferences:
        return selItemPreferences(sender);
    case MenuAction::SelItemAbout:
        return selItemAbout(sender);
    case MenuAction::SelItemQuit:
        return selItemQuit(sender);
    case MenuAction::ShortDate:
        return shortDate(sender);
    case MenuAction::MediumDate:
        return mediumDate(sender);
    case MenuAction::LongDate:
        return longDate(sender);
    case MenuAction::FullDate:
        return fullDate(sender);
    case MenuAction::ShortDateTime:
        return shortDateTime(sender);
    case MenuAction::MediumDateTime:
        return mediumDateTime(sender);
    case MenuAction::LongDateTime:
        return longDateTime(sender);
    case MenuAction::FullDateTime:
        return fullDateTime(sender);
    case MenuAction::ShortTime:
        return shortTime(sender);
    case MenuAction::MediumTime:
        return mediumTime(sender);
    case MenuAction::LongTime:
        return longTime(sender);
    case MenuAction::FullTime:
        return fullTime(sender);
    case MenuAction::GMTDateTime:
        return gmtDateTime(sender);
    case MenuAction::NumericalDate:
        return numericalDate(sender);
    case MenuAction::NumericalDateTime:
        return numericalDateTime(sender);
    case MenuAction::NumericalDateNoHyphens:
        return numericalDateNoHyphens(sender);
    case MenuAction::CustomDateFormatter:
        return customDateFormatter(sender);
    }
}

void AppController::selItemPreferences(const MenuItem &)
{
    m_platform.application.setFrontProcess();
    if (m_preferencesWindow)
        m_preferencesWindow->makeKeyAndOrderFront();
}

void AppController::selItemAbout(const MenuItem &)
{
    m_platform.application.setFrontProcess();
    m_platform.application.orderFrontStandardAboutPanel();
}

void AppController::selItemQuit(const MenuItem &)
{
    m_platform.application.terminate();
}

int AppController::putStringOnClipboard(const QByteArray &utf8)
{
    return PutStringOnClipboard(m_platform.clipboard, utf8);
}

std::optional<QByteArray> AppController::copy(MenuAction action, const MenuItem &sender)
{
    std::optional<QByteArray> text = CopyTextForAction(m_platform.clock, action, sender);
    if (text && putStringOnClipboard(*text) != 0)
        return std::nullopt;
    return text;
}

void PreferencesChangedCallback(AppController &controller)
{
    controller.setup();
}
