#pragma once

#include "platform/AbsoluteTime.h"

#include <functional>
#include <optional>

// A top-level window of the application. Closing it posts "window will close" to the
// process's WindowNotificationCenter first.
class Window
{
public:
    virtual ~Window() = default;
    // Shows the window in front of the others and gives it the keyboard.
    virtual void makeKeyAndOrderFront() = 0;
    // A floating window stays above every other window, whichever application is active.
    virtual void setFloating(bool floating) = 0;
    // Announces the closing, then hides the window; a window that is not shown may skip both.
    virtual void close() = 0;
};

// A date-and-time picker with whole-second precision. The action runs each time the user
// changes the value, never when the program sets it.
class DatePicker
{
public:
    virtual ~DatePicker() = default;
    // No value when the picker holds no date.
    virtual std::optional<AbsoluteTime> dateValue() const = 0;
    virtual void setDateValue(AbsoluteTime value) = 0;
    virtual void setAction(std::function<void()> action) = 0;
};
