#include "platform/qt/QtPlatform.h"

#include "platform/Version.h"
#include "platform/qt/IconCache.h"
#include "platform/qt/QtAboutPanel.h"
#include "platform/qt/QtWallClockSecondTimer.h"
#include "platform/qt/sni/SniStatusItem.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QCursor>
#include <QDBusConnectionInterface>
#include <QFile>
#include <QKeyEvent>
#include <QMimeData>
#include <QScreen>
#include <QVBoxLayout>

#include <cmath>
#include <utility>

// --- timers ---

namespace {

int g_trackedMenus = 0;

// A QObject so that the scheduler's owner object can hold it: whatever is still scheduled when
// the scheduler goes (the title timer, at exit) goes with it.
class QtTimer final : public QObject, public Timer
{
public:
    QtTimer(double interval, TimerScheduler::Callback callback, QObject *owner)
        : QObject(owner), m_callback(std::move(callback))
    {
        m_timer.setTimerType(interval < 0.5 ? Qt::PreciseTimer : Qt::CoarseTimer);
        m_timer.setInterval(static_cast<int>(interval * 1000.0 + 0.5));
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
            if (!IsTrackingMenu())
                m_callback(this);
        });
        m_timer.start();
    }
    void invalidate() override
    {
        if (!m_valid)
            return;
        m_valid = false;
        m_timer.stop();
        // Holders may still compare the pointer during the current event; delete afterwards.
        deleteLater();
    }

private:
    QTimer m_timer;
    TimerScheduler::Callback m_callback;
    bool m_valid = true;
};

} // namespace

void TrackMenuForTimers(QMenu &qmenu)
{
    // A menu can be hidden without having been shown (a rebuild while closed); count only
    // what was shown.
    auto *shown = new bool(false);
    QObject::connect(&qmenu, &QMenu::aboutToShow, &qmenu, [shown] {
        if (!*shown)
            ++g_trackedMenus;
        *shown = true;
    });
    QObject::connect(&qmenu, &QMenu::aboutToHide, &qmenu, [shown] {
        if (*shown)
            --g_trackedMenus;
        *shown = false;
    });
    QObject::connect(&qmenu, &QObject::destroyed, [shown] {
        if (*shown)
            --g_trackedMenus;
        delete shown;
    });
}

bool IsTrackingMenu()
{
    return g_trackedMenus > 0;
}

Timer *QtTimerScheduler::scheduleRepeatingTimer(double intervalSeconds, Callback callback)
{
    // Ours until it is invalidated, as the interface promises; deleted with us if it never is.
    return new QtTimer(intervalSeconds, std::move(callback), &m_owner);
}

Timer *QtTimerScheduler::scheduleWallClockSecondTimer(Callback callback)
{
    auto *timer = new QtWallClockSecondTimer(std::move(callback));
    timer->setParent(&m_owner); // the title's timer: never invalidated, it goes with us at exit
    return timer;
}

// --- icon ---

QIcon LoadIconResource(const QString &imageName)
{
    return IconCache::iconNamed(imageName);
}

// --- status item ---

void FillQMenu(QMenu &qmenu, Menu *menu)
{
    qmenu.clear();
    if (!menu)
        return;
    for (int i = 0; i < menu->numberOfItems(); ++i) {
        const MenuItem &item = menu->itemAtIndex(i);
        if (item.separator) {
            qmenu.addSeparator();
            continue;
        }
        // An ampersand in a rendered date is text, not a mnemonic.
        QString text = item.title;
        text.replace(QLatin1Char('&'), QLatin1String("&&"));
        QAction *action = qmenu.addAction(text);
        action->setToolTip(item.toolTip);
        action->setEnabled(menu->isItemEnabled(i));
        action->setShortcut(QKeySequence(item.keyEquivalent));
        const quint64 revision = menu->revision();
        QObject::connect(action, &QAction::triggered, &qmenu, [menu, i, revision] {
            // Only act on the menu the user saw; a rebuild in between makes the index stale.
            if (menu->revision() == revision)
                menu->activateItemAtIndex(i);
        });
    }
}

TrayStatusItem::TrayStatusItem() : m_qmenu(std::make_unique<QMenu>())
{
    m_qmenu->setToolTipsVisible(true);
    connect(m_qmenu.get(), &QMenu::aboutToShow, this, &TrayStatusItem::aboutToShow);
    TrackMenuForTimers(*m_qmenu);
    connect(&m_tray, &QSystemTrayIcon::activated, this, &TrayStatusItem::activated);
    m_tray.setContextMenu(m_qmenu.get());
    // The tray needs an icon to be shown at all; without one the menu could not be reached.
    m_shownImage = QStringLiteral("Horalo.tif");
    m_tray.setIcon(LoadIconResource(m_shownImage));
    m_tray.show();
}

TrayStatusItem::~TrayStatusItem()
{
    m_tray.hide();
}

void TrayStatusItem::setTitle(const QString &title)
{
    m_title = title;
    m_tray.setToolTip(title);
}

void TrayStatusItem::setImage(const QString &imageName)
{
    m_imageName = imageName;
    // A tray icon cannot be hidden without hiding the item, and it has no text to fall back on,
    // so "no image" keeps the icon: the clock must stay reachable.
    // The menu sets the image at every opening: only a change is handed to the tray.
    if (!imageName.isEmpty() && imageName != m_shownImage) {
        m_shownImage = imageName;
        m_tray.setIcon(LoadIconResource(imageName));
    }
}

void TrayStatusItem::aboutToShow()
{
    if (m_menu)
        m_menu->willOpen();
    FillQMenu(*m_qmenu, m_menu);
}

void TrayStatusItem::popUpMenu(std::optional<QPoint> position)
{
    // aboutToShow rebuilds the menu, as for a click on the icon.
    m_qmenu->popup(position.value_or(QCursor::pos()));
}

void TrayStatusItem::activated(QSystemTrayIcon::ActivationReason reason)
{
    // XEmbed trays open the context menu on a right click only; a clock's menu should open on
    // any click.
    if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick)
        popUpMenu(std::nullopt);
}

QtStatusItem::QtStatusItem(const QDBusConnection &bus) : m_bus(bus)
{
    if (m_bus.isConnected()) {
        m_watcherWatcher.setConnection(m_bus);
        m_watcherWatcher.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
        m_watcherWatcher.addWatchedService(SniStatusItem::watcherService());
        connect(&m_watcherWatcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
                &QtStatusItem::watcherOwnerChanged);
    }
    if (m_bus.isConnected() &&
        m_bus.interface()->isServiceRegistered(SniStatusItem::watcherService()))
        useStatusNotifierItem();
    else
        useTray();
}

QtStatusItem::~QtStatusItem() = default;

StatusItem *QtStatusItem::backendItem() const
{
    if (m_sni)
        return m_sni.get();
    return m_tray.get();
}

void QtStatusItem::useTray()
{
    m_sni.reset();
    m_tray = std::make_unique<TrayStatusItem>();
    showStateOn(*m_tray);
}

void QtStatusItem::useStatusNotifierItem()
{
    // The tray icon goes before the item appears: never two icons.
    m_tray.reset();
    m_sni = std::make_unique<SniStatusItem>(m_bus);
    // A watcher that refuses the item (or a name we could not take) leaves the tray icon as the
    // way to reach the clock. Queued: the item is not destroyed inside its own signal.
    connect(m_sni.get(), &SniStatusItem::registrationFailed, this, &QtStatusItem::useTray,
            Qt::QueuedConnection);
    showStateOn(*m_sni);
    if (!m_sni->isExported())
        useTray();
}

void QtStatusItem::watcherOwnerChanged(const QString &, const QString &, const QString &newOwner)
{
    // Our item registers itself again with a new watcher; only the tray icon has to give way.
    if (!newOwner.isEmpty() && !m_sni)
        useStatusNotifierItem();
}

void QtStatusItem::showStateOn(StatusItem &backend)
{
    backend.setMenu(m_menu);
    backend.setImage(m_imageName);
    if (!m_title.isNull())
        backend.setTitle(m_title);
}

void QtStatusItem::setTitle(const QString &title)
{
    m_title = title;
    backendItem()->setTitle(title);
}

void QtStatusItem::setImage(const QString &imageName)
{
    m_imageName = imageName;
    backendItem()->setImage(imageName);
}

void QtStatusItem::setMenu(Menu *menu)
{
    m_menu = menu;
    backendItem()->setMenu(menu);
}

void QtStatusItem::popUpMenu(std::optional<QPoint> position)
{
    backendItem()->popUpMenu(position);
}

QtStatusBar::QtStatusBar(const QDBusConnection &bus) : m_bus(bus) {}

StatusItem *QtStatusBar::statusItem()
{
    m_items.push_back(std::make_unique<QtStatusItem>(m_bus));
    return m_items.back().get();
}

// --- clipboard ---

int QtClipboard::writeUtf8PlainText(const QByteArray &bytes)
{
    QClipboard *clipboard = QGuiApplication::clipboard();
    if (!clipboard)
        return -1;
    auto *mime = new QMimeData;
    // Plain text only: X11 readers get UTF8_STRING and text/plain;charset=utf-8 from this.
    mime->setText(QString::fromUtf8(bytes));
    // The new text replaces the old in one step, which clears everything else the clipboard
    // held. On X11 an explicit clear first would leave a gap in which a selection bridge
    // (XWayland's in a Wayland session) takes the selection over, and our own take is refused.
    clipboard->setMimeData(mime, QClipboard::Clipboard);
    return 0;
}

// --- application ---

QtApplication::QtApplication(LocalWindowNotificationCenter &windowCenter)
    : m_windowCenter(windowCenter)
{}

QtApplication::~QtApplication() = default;

void QtApplication::terminate()
{
    // Hidden first: Qt's own quit would close them, and each closing would save and broadcast.
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (window->isVisible())
            window->hide();
    }
    QCoreApplication::exit(0);
}

void QtApplication::setFrontProcess()
{
    // A tray program has no window of its own in front; the window it shows next activates
    // itself. Nothing else to do on this desktop.
}

void QtApplication::orderFrontStandardAboutPanel()
{
    if (!m_aboutPanel) {
        m_aboutPanel = std::make_unique<QtAboutPanel>(
            m_windowCenter, infoDictionaryValue(QStringLiteral("CFBundleName")),
            infoDictionaryValue(QStringLiteral("CFBundleShortVersionString")));
    }
    m_aboutPanel->makeKeyAndOrderFront();
}

void QtApplication::beep()
{
    QApplication::beep();
}

QString QtApplication::imageNamed(const QString &name) const
{
    return QFile::exists(QStringLiteral(":/") + name) ? name : QString();
}

QString QtApplication::infoDictionaryValue(const QString &key) const
{
    if (key == QLatin1String("CFBundleName"))
        return QStringLiteral(HORALO_NAME);
    if (key == QLatin1String("CFBundleShortVersionString"))
        return QStringLiteral(HORALO_VERSION);
    return {};
}

// --- chooser window ---

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
