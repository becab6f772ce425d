#pragma once

// The real desktop: a status item (our StatusNotifierItem or a tray icon), QClipboard, QTimer,
// and the chooser window.

#include "platform/Menu.h"
#include "platform/Platform.h"

#include <QCalendarWidget>
#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QDateTimeEdit>
#include <QIcon>
#include <QMenu>
#include <QObject>
#include <QPointer>
#include <QSystemTrayIcon>
#include <QTimer>
#include <QWidget>

#include <memory>

class SniStatusItem;

class QtTimerScheduler final : public TimerScheduler
{
public:
    Timer *scheduleRepeatingTimer(double intervalSeconds, Callback callback) override;
    Timer *scheduleWallClockSecondTimer(Callback callback) override;

private:
    QObject m_owner; // the parent of every timer not yet invalidated and deleted
};

// The icon resource of a name as every size it holds (each page of a TIFF, say), decoded once
// per name: every call for a name returns the same icon.
QIcon LoadIconResource(const QString &imageName);

// Fills a QMenu with the entries of our menu model. Choosing one runs its action, unless the
// model has been rebuilt since the QMenu was filled.
void FillQMenu(QMenu &qmenu, Menu *menu);

// While the user tracks one of our menus, timers hold their fire, as they would in a run loop's
// default mode: the title is not redrawn under an open menu, and it refreshes at the next tick
// after the menu closes.
void TrackMenuForTimers(QMenu &qmenu);
bool IsTrackingMenu();

// The status item on an XEmbed tray through QSystemTrayIcon. The tray protocol has no text, so
// the title is shown as the tool tip.
class TrayStatusItem final : public QObject, public StatusItem
{
    Q_OBJECT
public:
    TrayStatusItem();
    ~TrayStatusItem() override;

    void setTitle(const QString &title) override;
    QString title() const override { return m_title; }
    void setImage(const QString &imageName) override;
    void setMenu(Menu *menu) override { m_menu = menu; }
    Menu *menu() const override { return m_menu; }
    void popUpMenu(std::optional<QPoint> position) override;

    QSystemTrayIcon &trayIcon() { return m_tray; }
    QMenu &qmenu() { return *m_qmenu; }

private:
    void aboutToShow();
    void activated(QSystemTrayIcon::ActivationReason reason);

    QSystemTrayIcon m_tray;
    std::unique_ptr<QMenu> m_qmenu;
    Menu *m_menu = nullptr;
    QString m_title;
    QString m_imageName;
    QString m_shownImage; // the icon's name: a "no image" keeps the last one
};

// The status item the logic holds for the whole run. It shows itself through our own
// StatusNotifierItem (the title as a text label, the menu over D-Bus) when a watcher owns its
// name on the session bus, and through QSystemTrayIcon otherwise. A watcher that appears later
// (a panel started or restarted) takes the item over from the tray icon; there is never more
// than one of the two.
class QtStatusItem final : public QObject, public StatusItem
{
    Q_OBJECT
public:
    enum class Backend
    {
        Tray,
        StatusNotifierItem
    };

    explicit QtStatusItem(const QDBusConnection &bus);
    ~QtStatusItem() override;

    void setTitle(const QString &title) override;
    QString title() const override { return m_title; }
    void setImage(const QString &imageName) override;
    void setMenu(Menu *menu) override;
    Menu *menu() const override { return m_menu; }
    void popUpMenu(std::optional<QPoint> position) override;

    Backend backend() const { return m_sni ? Backend::StatusNotifierItem : Backend::Tray; }
    // The backend in use: a TrayStatusItem or an SniStatusItem.
    StatusItem *backendItem() const;

private:
    void useTray();
    void useStatusNotifierItem();
    void watcherOwnerChanged(const QString &service, const QString &oldOwner,
                             const QString &newOwner);
    void showStateOn(StatusItem &backend);

    QDBusConnection m_bus;
    QDBusServiceWatcher m_watcherWatcher;
    std::unique_ptr<TrayStatusItem> m_tray;
    std::unique_ptr<SniStatusItem> m_sni;
    Menu *m_menu = nullptr;
    QString m_title;
    QString m_imageName;
};

class QtStatusBar final : public StatusBar
{
public:
    explicit QtStatusBar(const QDBusConnection &bus = QDBusConnection::sessionBus());
    StatusItem *statusItem() override;

private:
    QDBusConnection m_bus;
    std::vector<std::unique_ptr<QtStatusItem>> m_items;
};

class QtClipboard final : public Clipboard
{
public:
    int writeUtf8PlainText(const QByteArray &bytes) override;
};

class QtAboutPanel;

class QtApplication final : public Application
{
public:
    // The About panel announces its closing to windowCenter, as every window does.
    explicit QtApplication(LocalWindowNotificationCenter &windowCenter);
    ~QtApplication() override;

    // Ends the event loop. Windows still open are hidden, not closed: quitting is not a
    // window's closing, so it neither saves nor broadcasts anything.
    void terminate() override;
    void setFrontProcess() override;
    void orderFrontStandardAboutPanel() override;
    void beep() override;
    QString imageNamed(const QString &name) const override;
    QString infoDictionaryValue(const QString &key) const override;

    // The About panel once it has been shown, or null.
    QtAboutPanel *aboutPanel() const { return m_aboutPanel.get(); }

private:
    LocalWindowNotificationCenter &m_windowCenter;
    std::unique_ptr<QtAboutPanel> m_aboutPanel;
};

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
