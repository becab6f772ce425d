#pragma once

#include "platform/Platform.h"

#include <functional>

// The floating date-time chooser. While it holds a moment, g_selectedDateTime carries it and
// every rendering shows that moment instead of now. It can also follow the clock live, ticking
// every 0.03 s until the menu opens (which freezes it) or the window closes.
class DateTimeChooser
{
public:
    static constexpr double kTickInterval = 0.03;

    DateTimeChooser(Platform &platform, ChooserInterface ui);

    // Start-up, in the order the application controller runs them.
    void connectPicker();
    void setPickerToNow();
    void raiseWindowLevel();
    void clearTimer() { m_dateTimeTimer = nullptr; }
    // Sets the picker to the stored datePickerValue when that is a date.
    void restorePickerFromDefaults();

    void showCalendar();
    // Runs when opening the chooser picks a moment where none was picked, before a live clock
    // starts: the menu gains its chooser lines then, and a panel that shows the menu it fetched
    // last, before asking for a new one, must have them before it next opens.
    void setMomentPickedObserver(std::function<void()> observer)
    {
        m_momentPicked = std::move(observer);
    }
    void datePickerAction();
    void timerAction(Timer *timer);
    void windowWillClose(Window *window);

    // Stops a live clock, leaving the window open with its picker frozen.
    void stopTicking();

    Timer *dateTimeTimer() const { return m_dateTimeTimer; }
    Window *window() const { return m_calendarClockWindow; }
    DatePicker *datePicker() const { return m_datePicker; }

private:
    void storePickerMoment();

    Platform &m_platform;
    Window *m_calendarClockWindow;
    DatePicker *m_datePicker;
    Timer *m_dateTimeTimer = nullptr;
    std::function<void()> m_momentPicked;
};
