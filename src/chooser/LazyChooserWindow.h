#pragma once

#include "platform/NotificationCenter.h"
#include "platform/Window.h"

#include <memory>

class QtChooserWindow;

// The date-time chooser as the application holds it from start-up: the picker's value, whether
// the window floats and the picker's action are plain state until the window is first opened,
// when the real window is built from them. Most runs never open the chooser, and building it
// is a large share of start-up.
class LazyChooserWindow final : public Window, public DatePicker
{
public:
    explicit LazyChooserWindow(LocalWindowNotificationCenter &windowCenter);
    ~LazyChooserWindow() override;

    // Window
    void makeKeyAndOrderFront() override;
    void setFloating(bool floating) override;
    bool isFloating() const { return m_floating; }
    void close() override;
    bool isVisible() const;

    // DatePicker: whole seconds, as the window keeps them.
    std::optional<AbsoluteTime> dateValue() const override;
    void setDateValue(AbsoluteTime value) override;
    void setAction(std::function<void()> action) override;

    // The window, once something needed it; null before.
    QtChooserWindow *createdWindow() const { return m_window.get(); }

private:
    QtChooserWindow &window();

    LocalWindowNotificationCenter &m_windowCenter;
    std::unique_ptr<QtChooserWindow> m_window;
    AbsoluteTime m_value;
    bool m_floating = false;
    std::function<void()> m_action;
};
