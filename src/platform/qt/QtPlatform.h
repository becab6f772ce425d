#pragma once

// The real desktop: a tray icon with a QMenu, QClipboard, QTimer, and the chooser window.

#include "platform/Menu.h"
#include "platform/Platform.h"

#include <QCalendarWidget>
#include <QDateTimeEdit>
#include <QIcon>
#include <QMenu>
#include <QObject>
#include <QPointer>
#include <QSystemTrayIcon>
#include <QTimer>
#include <QWidget>

#include <memory>

class QtTimerScheduler final : public TimerScheduler
{
public:
    Timer *scheduleRepeatingTimer(double intervalSeconds, Callback callback) override;
};

// Loads the icon resource of a name as every size it holds (each page of a TIFF, say).
QIcon LoadIconResource(const QString &imageName);

// The status item on an XEmbed or StatusNotifierItem tray through QSystemTrayIcon. The tray
// protocol has no text, so the title is shown as the tool tip.
class QtStatusItem final : public QObject, public StatusItem
{
    Q_OBJECT
public:
    QtStatusItem();
    ~QtStatusItem() override;

    void setTitle(const QString &title) override;
    QString title() const override { return m_title; }
    void setImage(const QString &imageName) override;
    QString image() const override { return m_imageName; }
    void setMenu(Menu *menu) override { m_menu = menu; }
    Menu *menu() const override { return m_menu; }
    void setHighlightMode(bool) override {}

    QSystemTrayIcon &trayIcon() { return m_tray; }
    QMenu &qmenu() { return *m_qmenu; }

private:
    void aboutToShow();
    void syncMenu();
    void activated(QSystemTrayIcon::ActivationReason reason);

    QSystemTrayIcon m_tray;
    std::unique_ptr<QMenu> m_qmenu;
    Menu *m_menu = nullptr;
    QString m_title;
    QString m_imageName;
};

class QtStatusBar final : public StatusBar
{
public:
    StatusItem *statusItemWithLength(double length) override;

private:
    std::vector<std::unique_ptr<QtStatusItem>> m_items;
};

class QtClipboard final : public Clipboard
{
public:
    int open() override;
    void clear() override;
    int putUtf8PlainText(const QByteArray &bytes) override;
};

class QtApplication final : public Application
{
public:
    void terminate() override;
    void setFrontProcess() override;
    void orderFrontStandardAboutPanel() override;
    void beep() override;
    int windowLevelForKey(int key) const override;
    QString imageNamed(const QString &name) const override;
    QString infoDictionaryValue(const QString &key) const override;
};

// The date-time chooser: a calendar to click and a time field to type, to the second.
class QtChooserWindow final : public QWidget, public Window, public DatePicker
{
    Q_OBJECT
public:
    explicit QtChooserWindow(LocalWindowNotificationCenter &windowCenter);

    // Window
    void makeKeyAndOrderFront() override;
    void setLevel(int level) override;
    int level() const override { return m_level; }
    void close() override { QWidget::close(); }
    bool isVisible() const override { return QWidget::isVisible(); }

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
    QCalendarWidget *m_calendar;
    QDateTimeEdit *m_edit;
    std::function<void()> m_action;
    int m_level = 0;
    bool m_placed = false;
};
