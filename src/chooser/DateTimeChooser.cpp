#include "chooser/DateTimeChooser.h"

#include "app/settings/Settings.h"
#include "datetext/DateText.h"

DateTimeChooser::DateTimeChooser(Platform &platform, ChooserInterface ui)
    : m_platform(platform), m_calendarClockWindow(ui.window), m_datePicker(ui.datePicker)
{}

void DateTimeChooser::connectPicker()
{
    m_datePicker->setAction([this] { datePickerAction(); });
}

void DateTimeChooser::setPickerToNow()
{
    m_datePicker->setDateValue(m_platform.clock.currentAbsoluteTime());
}

void DateTimeChooser::raiseWindowLevel()
{
    m_calendarClockWindow->setFloating(true);
}

void DateTimeChooser::restorePickerFromDefaults()
{
    const QVariant stored = m_platform.userDefaults.objectForKey(SettingsKey::DatePickerValue);
    if (stored.typeId() == QMetaType::QDateTime && stored.toDateTime().isValid())
        m_datePicker->setDateValue(AbsoluteTimeFromDate(stored.toDateTime()));
}

void DateTimeChooser::showCalendar()
{
    if (InitDateTimeChooserToCurrentTimeWhenOpened(m_platform.store))
        setPickerToNow();
    else
        restorePickerFromDefaults();

    m_calendarClockWindow->makeKeyAndOrderFront();

    const bool nonePicked = g_selectedDateTime == 0.0;
    if (const auto value = m_datePicker->dateValue()) {
        g_selectedDateTime = *value;
        // The reference instant is also the "nothing picked" sentinel: the menu will show now.
        if (*value == 0.0)
            m_platform.application.beep();
    }
    if (nonePicked && g_selectedDateTime != 0.0 && m_momentPicked)
        m_momentPicked();

    if (DynamicDateTimeChooser(m_platform.store)) {
        m_dateTimeTimer = m_platform.timers.scheduleRepeatingTimer(
            kTickInterval, [this](Timer *timer) { timerAction(timer); });
    } else {
        m_dateTimeTimer = nullptr;
    }
}

void DateTimeChooser::datePickerAction()
{
    storePickerMoment();
    // Remember the user's pick across openings and restarts; the live clock's ticks are not
    // picks and are never written.
    if (const auto value = m_datePicker->dateValue()) {
        m_platform.store.setAppValue(SettingsKey::DatePickerValue, DateFromAbsoluteTime(*value),
                                     AppIdentifier);
        m_platform.store.appSynchronize(AppIdentifier);
    }
}

void DateTimeChooser::timerAction(Timer *timer)
{
    if (timer != m_dateTimeTimer)
        return;
    setPickerToNow();
    storePickerMoment();
}

void DateTimeChooser::windowWillClose(Window *window)
{
    if (window != m_calendarClockWindow)
        return;
    g_selectedDateTime = 0;
    if (!m_dateTimeTimer)
        return;
    // A chooser closed while ticking keeps its last moment picked: the user stopped the clock.
    m_dateTimeTimer->invalidate();
    m_dateTimeTimer = nullptr;
    storePickerMoment();
}

void DateTimeChooser::stopTicking()
{
    if (!m_dateTimeTimer)
        return;
    m_dateTimeTimer->invalidate();
    m_dateTimeTimer = nullptr;
}

void DateTimeChooser::storePickerMoment()
{
    if (const auto value = m_datePicker->dateValue())
        g_selectedDateTime = *value;
}
