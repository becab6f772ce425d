#include "app/AppController.h"

#include "app/settings/Settings.h"
#include "datetext/DateText.h"
#include "statusmenu/CopyActions.h"

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
    m_platform.distributedCenter.addObserver(this, PreferencesChangedCallback,
                                             PreferencesChangedNotification, AppIdentifier,
                                             SuspensionBehavior::DeliverImmediately);
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

void AppController::performAction(const QString &action, const MenuItem &sender)
{
    using Handler = void (AppController::*)(const MenuItem &);
    static const struct
    {
        const char *action;
        Handler handler;
    } kActions[] = {
        {"showCalendar:", &AppController::showCalendar},
        {"selItemPreferences:", &AppController::selItemPreferences},
        {"selItemAbout:", &AppController::selItemAbout},
        {"selItemQuit:", &AppController::selItemQuit},
        {"shortDate:", &AppController::shortDate},
        {"mediumDate:", &AppController::mediumDate},
        {"longDate:", &AppController::longDate},
        {"fullDate:", &AppController::fullDate},
        {"shortDateTime:", &AppController::shortDateTime},
        {"mediumDateTime:", &AppController::mediumDateTime},
        {"longDateTime:", &AppController::longDateTime},
        {"fullDateTime:", &AppController::fullDateTime},
        {"shortTime:", &AppController::shortTime},
        {"mediumTime:", &AppController::mediumTime},
        {"longTime:", &AppController::longTime},
        {"fullTime:", &AppController::fullTime},
        {"gmtDateTime:", &AppController::gmtDateTime},
        {"numericalDate:", &AppController::numericalDate},
        {"numericalDateTime:", &AppController::numericalDateTime},
        {"numericalDateNoHyphens:", &AppController::numericalDateNoHyphens},
        {"customDateFormatter:", &AppController::customDateFormatter},
    };
    for (const auto &entry : kActions) {
        if (action == QLatin1String(entry.action)) {
            (this->*entry.handler)(sender);
            return;
        }
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

std::optional<QByteArray> AppController::copy(const QString &action, const MenuItem &sender)
{
    std::optional<QByteArray> text = CopyTextForAction(m_platform.clock, action, sender);
    if (text && putStringOnClipboard(*text) != 0)
        return std::nullopt;
    return text;
}

void PreferencesChangedCallback(DistributedNotificationCenter *, void *observer, const QString &,
                                const QString &, const QVariantMap &)
{
    static_cast<AppController *>(observer)->setup();
}
