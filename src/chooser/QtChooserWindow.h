#pragma once

#include "platform/NotificationCenter.h"
#include "platform/Window.h"

#include <QCalendarWidget>
#include <QDateTimeEdit>
#include <QWidget>

#include <functional>

// The date-time chooser: a calendar to click and a time field to type, to the second.
class QtChooserWindow final : public QWidget, public Window, public DatePicker
{
    Q_OBJECT
public:
    // Its closing is announced as announceAs's when given (a window that stands in for it).
    explicit QtChooserWindow(LocalWindowNotificationCenter &windowCenter,
                             Window *announceAs = nullptr);

    // Window
    void makeKeyAndOrderFront() override;
    void setFloating(bool floating) override;
    void close() override { QWidget::close(); }

    // DatePicker
    std::optional<AbsoluteTime> dateValue() const override;
    void setDateValue(AbsoluteTime value) override;
    void setAction(std::function<void()> action) override { m_action = std::move(action); }

    QDateTimeEdit *timeField() const { return m_edit; }
    QCalendarWidget *calendar() const { return m_calendar; }

protected:
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void userChanged(const QDateTime &value);

    LocalWindowNotificationCenter &m_windowCenter;
    Window *m_announceAs;
    QCalendarWidget *m_calendar;
    QDateTimeEdit *m_edit;
    std::function<void()> m_action;
    bool m_placed = false;
};
