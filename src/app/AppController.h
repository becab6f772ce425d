#pragma once

#include "chooser/DateTimeChooser.h"
#include "platform/Menu.h"
#include "platform/Platform.h"
#include "statusmenu/StatusMenu.h"

#include <QByteArray>
#include <QStringList>

#include <optional>

// The one application controller: start-up, the single rebuild path, and every action the
// status menu sends.
class AppController final : public MenuDelegate, public MenuTarget
{
public:
    // preferencesWindow is the preferences window's, shown by "Preferences..."; it may be null
    // where there is no such window (the command line).
    AppController(Platform &platform, ChooserInterface chooser, Window *preferencesWindow);

    // Start-up, in this order: awakeFromNib() once the interface exists, then
    // applicationWillFinishLaunching(), then the event loop.
    void awakeFromNib();
    void applicationWillFinishLaunching();
    void applicationWillTerminate() {}

    // The single rebuild path: reloads the custom formats, freezes a ticking chooser and
    // rebuilds the menu. Runs at start-up, on "Preferences Changed", and as the menu opens.
    void setup();

    // MenuDelegate, MenuTarget
    void menuNeedsUpdate(Menu *menu) override;
    bool validateMenuItem(const MenuItem &item) override;
    void performAction(MenuAction action, const MenuItem &sender) override;

    void selItemPreferences(const MenuItem &sender);
    void selItemAbout(const MenuItem &sender);
    void selItemQuit(const MenuItem &sender);

    // The copy actions: each renders its format afresh and puts it on the clipboard.
    void shortDate(const MenuItem &sender) { copy(MenuAction::ShortDate, sender); }
    void mediumDate(const MenuItem &sender) { copy(MenuAction::MediumDate, sender); }
    void longDate(const MenuItem &sender) { copy(MenuAction::LongDate, sender); }
    void fullDate(const MenuItem &sender) { copy(MenuAction::FullDate, sender); }
    void shortDateTime(const MenuItem &sender) { copy(MenuAction::ShortDateTime, sender); }
    void mediumDateTime(const MenuItem &sender) { copy(MenuAction::MediumDateTime, sender); }
    void longDateTime(const MenuItem &sender) { copy(MenuAction::LongDateTime, sender); }
    void fullDateTime(const MenuItem &sender) { copy(MenuAction::FullDateTime, sender); }
    void shortTime(const MenuItem &sender) { copy(MenuAction::ShortTime, sender); }
    void mediumTime(const MenuItem &sender) { copy(MenuAction::MediumTime, sender); }
    void longTime(const MenuItem &sender) { copy(MenuAction::LongTime, sender); }
    void fullTime(const MenuItem &sender) { copy(MenuAction::FullTime, sender); }
    void gmtDateTime(const MenuItem &sender) { copy(MenuAction::GMTDateTime, sender); }
    void numericalDate(const MenuItem &sender) { copy(MenuAction::NumericalDate, sender); }
    void numericalDateTime(const MenuItem &sender) { copy(MenuAction::NumericalDateTime, sender); }
    void numericalDateNoHyphens(const MenuItem &sender)
    {
        copy(MenuAction::NumericalDateNoHyphens, sender);
    }
    // Reads the format back from the chosen entry's tool tip.
    void customDateFormatter(const MenuItem &sender)
    {
        copy(MenuAction::CustomDateFormatter, sender);
    }
    // Clears the clipboard and puts the UTF-8 bytes as its one item; 0 on success.
    int putStringOnClipboard(const QByteArray &utf8);
    // Runs a copy action as choosing its entry does, and tells what reached the clipboard:
    // nothing when the text cannot be produced or the clipboard refuses it.
    std::optional<QByteArray> copy(MenuAction action, const MenuItem &sender);

    void itemTitleTimerAction(Timer *timer) { m_statusMenu.itemTitleTimerAction(timer); }

    // The chooser's operations.
    void showCalendar(const MenuItem &) { m_chooser.showCalendar(); }
    void datePickerAction() { m_chooser.datePickerAction(); }
    void timerAction(Timer *timer) { m_chooser.timerAction(timer); }
    void windowWillClose(Window *window) { m_chooser.windowWillClose(window); }

    const QStringList &customDates() const { return m_customDates; }
    StatusMenu &statusMenu() { return m_statusMenu; }
    DateTimeChooser &chooser() { return m_chooser; }
    int setupCount() const { return m_setupCount; }

private:
    Platform &m_platform;
    Window *m_preferencesWindow;
    StatusMenu m_statusMenu;
    DateTimeChooser m_chooser;
    QStringList m_customDates;
    int m_setupCount = 0;
};

// The "Preferences Changed" observer: rebuilds through the controller it was registered for.
void PreferencesChangedCallback(AppController &controller);
