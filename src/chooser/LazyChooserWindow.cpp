#include "chooser/LazyChooserWindow.h"

#include "chooser/QtChooserWindow.h"

#include <cmath>

namespace {

// The value of the window's time field before anything sets it.
AbsoluteTime UnsetPickerValue()
{
    return AbsoluteTimeFromDate(QDateTime(QDate(2000, 1, 1), QTime(0, 0), Qt::LocalTime));
}

} // namespace

LazyChooserWindow::LazyChooserWindow(LocalWindowNotificationCenter &windowCenter)
    : m_windowCenter(windowCenter), m_value(UnsetPickerValue())
{}

LazyChooserWindow::~LazyChooserWindow() = default;

QtChooserWindow &LazyChooserWindow::window()
{
    if (!m_window) {
        m_window = std::make_unique<QtChooserWindow>(m_windowCenter, this);
        m_window->setDateValue(m_value);
        m_window->setFloating(m_floating);
        m_window->setAction(m_action);
    }
    return *m_window;
}

void LazyChooserWindow::makeKeyAndOrderFront()
{
    window().makeKeyAndOrderFront();
}

void LazyChooserWindow::setFloating(bool floating)
{
    m_floating = floating;
    if (m_window)
        m_window->setFloating(floating);
}

void LazyChooserWindow::close()
{
    if (m_window) {
        m_window->close();
        return;
    }
    // A window that was never shown still announces a close, as a hidden one does.
    m_windowCenter.postWindowWillClose(this);
}

bool LazyChooserWindow::isVisible() const
{
    return m_window && m_window->isVisible();
}

std::optional<AbsoluteTime> LazyChooserWindow::dateValue() const
{
    if (m_window)
        return m_window->dateValue();
    return m_value;
}

void LazyChooserWindow::setDateValue(AbsoluteTime value)
{
    if (m_window) {
        m_window->setDateValue(value);
        return;
    }
    // The window keeps whole seconds; it also holds a moment to the years it can show, which
    // matters only once it is open, where it applies.
    m_value = std::floor(value);
}

void LazyChooserWindow::setAction(std::function<void()> action)
{
    m_action = std::move(action);
    if (m_window)
        m_window->setAction(m_action);
}
