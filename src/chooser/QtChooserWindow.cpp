#include "chooser/QtChooserWindow.h"

#include <QCloseEvent>
#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QScreen>
#include <QVBoxLayout>

#include <cmath>

QtChooserWindow::QtChooserWindow(LocalWindowNotificationCenter &windowCenter, Window *announceAs)
    : QWidget(nullptr, Qt::Tool), m_windowCenter(windowCenter),
      m_announceAs(announceAs ? announceAs : this), m_calendar(new QCalendarWidget),
      m_edit(new QDateTimeEdit)
{
    setWindowTitle(QStringLiteral("Date-Time Chooser"));
    setAttribute(Qt::WA_QuitOnClose, false);
    m_calendar->setGridVisible(false);
    m_calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    m_edit->setDisplayFormat(QStringLiteral("yyyy-MM-dd  HH:mm:ss"));
    m_edit->setTimeSpec(Qt::LocalTime);
    m_edit->setMinimumDate(QDate(1, 1, 1));
    m_edit->setMaximumDate(QDate(9999, 12, 31));
    m_edit->setAlignment(Qt::AlignCenter);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_calendar);
    layout->addWidget(m_edit);
    setFocusProxy(m_edit);

    connect(m_edit, &QDateTimeEdit::dateTimeChanged, this, &QtChooserWindow::userChanged);
    connect(m_calendar, &QCalendarWidget::clicked, this, [this](QDate date) {
        QDateTime value = m_edit->dateTime();
        value.setDate(date);
        m_edit->setDateTime(value); // reaches userChanged through dateTimeChanged
    });
}

void QtChooserWindow::makeKeyAndOrderFront()
{
    if (!m_placed) {
        // Open where the user is looking: near the top right of the screen under the pointer,
        // below the panel, as a tray's companion window usually is.
        adjustSize();
        if (QScreen *screen = QGuiApplication::screenAt(QCursor::pos())) {
            const QRect area = screen->availableGeometry();
            move(area.right() - width() - 16, area.top() + 16);
        }
        m_placed = true;
    }
    show();
    raise();
    activateWindow();
    m_edit->setFocus(Qt::OtherFocusReason);
}

void QtChooserWindow::setFloating(bool floating)
{
    setWindowFlag(Qt::WindowStaysOnTopHint, floating);
}

std::optional<AbsoluteTime> QtChooserWindow::dateValue() const
{
    const QDateTime value = m_edit->dateTime();
    if (!value.isValid())
        return std::nullopt;
    return AbsoluteTimeFromDate(value);
}

void QtChooserWindow::setDateValue(AbsoluteTime value)
{
    // The program's own changes are not the user's: no action for them.
    const QSignalBlocker blockEdit(m_edit);
    const QSignalBlocker blockCalendar(m_calendar);
    const QDateTime local = DateFromAbsoluteTime(std::floor(value)).toLocalTime();
    // A live clock sets the picker 33 times a second while it shows whole seconds: only a new
    // second may touch (and so repaint) the widgets.
    if (m_edit->dateTime() == local)
        return;
    m_edit->setDateTime(local);
    m_calendar->setSelectedDate(local.date());
}

void QtChooserWindow::userChanged(const QDateTime &value)
{
    {
        const QSignalBlocker blockCalendar(m_calendar);
        m_calendar->setSelectedDate(value.date());
    }
    if (m_action)
        m_action();
}

void QtChooserWindow::closeEvent(QCloseEvent *event)
{
    m_windowCenter.postWindowWillClose(m_announceAs);
    QWidget::closeEvent(event);
}

void QtChooserWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        close();
        return;
    }
    QWidget::keyPressEvent(event);
}
