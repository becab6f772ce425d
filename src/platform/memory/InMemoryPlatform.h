#pragma once

// A complete platform that lives in memory: a clock and timers that the caller drives, a
// recorded clipboard, status item, windows and beeps. Tests and the command line run the real
// controllers on it.

#include "platform/Menu.h"
#include "platform/Platform.h"
#include "platform/SessionService.h"

#include <QList>
#include <QMap>

#include <memory>
#include <optional>
#include <vector>

class InMemoryPreferencesStore final : public PreferencesStore
{
public:
    QVariant copyAppValue(const QString &key, const QString &domain) override;
    void setAppValue(const QString &key, const QVariant &value, const QString &domain) override;
    bool appSynchronize(const QString &domain) override;
    QVariantMap copyAllValues(const QString &domain) override;

    // What happened, in order: "set KEY" and "sync", so tests can check writes and
    // synchronisations without caring about their values.
    QStringList log;

private:
    QMap<QString, QVariantMap> m_domains;
};

// Nothing watches a store in memory: the test or tool that plays the other writer says when it
// wrote.
class InMemoryPreferencesStoreWatcher final : public PreferencesStoreWatcher
{
public:
    void addObserver(Observer observer) override { m_observers.push_back(std::move(observer)); }
    // Runs a change reported since the last check.
    void checkNow() override;
    // Another writer changed the store: the observers run at the next processEvents() of the
    // platform, or at a checkNow() before it.
    void reportOutsideChange() { m_changed = true; }

private:
    std::vector<Observer> m_observers;
    bool m_changed = false;
};

class ManualClock final : public Clock
{
public:
    explicit ManualClock(AbsoluteTime now = 0) : m_now(now) {}
    AbsoluteTime currentAbsoluteTime() const override { return m_now; }
    void set(AbsoluteTime now) { m_now = now; }
    void advance(double seconds) { m_now += seconds; }

private:
    AbsoluteTime m_now;
};

class ManualTimerScheduler final : public TimerScheduler
{
public:
    class ManualTimer;

    explicit ManualTimerScheduler(ManualClock &clock);
    ~ManualTimerScheduler() override;

    Timer *scheduleRepeatingTimer(double intervalSeconds, Callback callback) override;
    // Ticks at every whole second of the clock; a clock set back is followed at the next
    // advance().
    Timer *scheduleWallClockSecondTimer(Callback callback) override;

    // Fires one timer now, whether or not it is due (a stale timer the caller kept fires too,
    // as long as it was not invalidated).
    void fire(Timer *timer);
    // Moves the clock forward, firing every due timer in time order as the clock passes it.
    void advance(double seconds);
    // The timers that are scheduled and valid, oldest first.
    QList<Timer *> validTimers() const;
    // The interval a timer was scheduled with, 1 for a wall-clock second timer; 0 for a timer
    // this scheduler did not make.
    double intervalOf(const Timer *timer) const;

private:
    ManualClock &m_clock;
    std::vector<std::unique_ptr<ManualTimer>> m_timers; // kept until the end: pointers stay valid
};

class InMemoryStatusItem final : public StatusItem
{
public:
    void setTitle(const QString &title) override;
    QString title() const override { return m_title; }
    void setImage(const QString &imageName) override { m_image = imageName; }
    QString image() const { return m_image; }
    void setMenu(Menu *menu) override { m_menu = menu; }
    Menu *menu() const override { return m_menu; }
    // Opens the menu as openMenu() does and remembers where it was asked to show.
    void popUpMenu(std::optional<QPoint> position) override;
    int popUpCount() const { return m_popUpCount; }
    std::optional<QPoint> lastPopUpPosition() const { return m_lastPopUpPosition; }
    int titleSetCount() const { return m_titleSetCount; }

    // What the user does: opens the menu (the delegate rebuilds it first) and chooses an entry.
    void openMenu();
    bool chooseItemTitled(const QString &title);

private:
    QString m_title;
    QString m_image;
    Menu *m_menu = nullptr;
    int m_titleSetCount = 0;
    int m_popUpCount = 0;
    std::optional<QPoint> m_lastPopUpPosition;
};

class InMemoryStatusBar final : public StatusBar
{
public:
    StatusItem *statusItem() override;
    const std::vector<std::unique_ptr<InMemoryStatusItem>> &items() const { return m_items; }
    InMemoryStatusItem *lastItem() const
    {
        return m_items.empty() ? nullptr : m_items.back().get();
    }

private:
    std::vector<std::unique_ptr<InMemoryStatusItem>> m_items;
};

class InMemoryWindow final : public Window
{
public:
    explicit InMemoryWindow(LocalWindowNotificationCenter &center) : m_center(center) {}
    void makeKeyAndOrderFront() override;
    void setFloating(bool floating) override { m_floating = floating; }
    void close() override;
    bool isVisible() const { return m_visible; }
    bool isKey() const { return m_key; }
    bool isFloating() const { return m_floating; }
    int orderFrontCount() const { return m_orderFrontCount; }

private:
    LocalWindowNotificationCenter &m_center;
    bool m_floating = false;
    bool m_visible = false;
    bool m_key = false;
    int m_orderFrontCount = 0;
};

class InMemoryDatePicker final : public DatePicker
{
public:
    std::optional<AbsoluteTime> dateValue() const override { return m_value; }
    // Whole seconds, as a real picker shows them.
    void setDateValue(AbsoluteTime value) override;
    void setAction(std::function<void()> action) override { m_action = std::move(action); }
    // The user types or clicks a new moment: the value changes and the action runs.
    void userChangesDateValue(AbsoluteTime value);
    void clearDateValue() { m_value.reset(); }

private:
    std::optional<AbsoluteTime> m_value;
    std::function<void()> m_action;
};

class InMemoryClipboard final : public Clipboard
{
public:
    int writeUtf8PlainText(const QByteArray &bytes) override;

    // The one item, or none before any write.
    std::optional<QByteArray> contents() const { return m_contents; }
    // Successful writes.
    int writeCount() const { return m_writeCount; }
    // A non-zero status makes every write fail with it and change nothing, as a clipboard that
    // cannot be reached does; 0 makes the clipboard reachable again.
    void setUnreachableStatus(int status) { m_unreachableStatus = status; }
    void setContents(const QByteArray &bytes) { m_contents = bytes; }

private:
    std::optional<QByteArray> m_contents;
    int m_writeCount = 0;
    int m_unreachableStatus = 0;
};

class InMemoryApplication final : public Application
{
public:
    void terminate() override { ++terminateCount; }
    void setFrontProcess() override { ++frontCount; }
    void orderFrontStandardAboutPanel() override { ++aboutCount; }
    void beep() override { ++beepCount; }
    QString imageNamed(const QString &name) const override;
    QString infoDictionaryValue(const QString &key) const override;

    int terminateCount = 0;
    int frontCount = 0;
    int aboutCount = 0;
    int beepCount = 0;
    QStringList imageResources{QStringLiteral("Horalo.tif")};
    QMap<QString, QString> infoDictionary;
};

// Connects the in-memory centres of several simulated processes; a notification reaches
// every attached centre when the bus delivers.
class InMemoryNotificationBus;

class InMemoryDistributedCenter final : public DistributedNotificationCenter
{
public:
    explicit InMemoryDistributedCenter(InMemoryNotificationBus *bus = nullptr);
    ~InMemoryDistributedCenter() override;

    void addObserver(const QString &name, const QString &object, Observer observer) override;
    void postNotification(const QString &name, const QString &object) override;

    // Runs the observers of everything posted so far, as the event loop would. Returns how
    // many observers ran.
    int deliverPending();
    int postCount() const { return m_postCount; }

private:
    friend class InMemoryNotificationBus;
    struct Observation
    {
        QString name;
        QString object;
        Observer observer;
    };
    struct Pending
    {
        QString name;
        QString object;
    };
    void enqueue(const Pending &pending) { m_pending.append(pending); }

    InMemoryNotificationBus *m_bus;
    QList<Observation> m_observations;
    QList<Pending> m_pending;
    int m_postCount = 0;
};

class InMemoryNotificationBus
{
public:
    void attach(InMemoryDistributedCenter *center) { m_centers.append(center); }
    void detach(InMemoryDistributedCenter *center) { m_centers.removeAll(center); }
    void broadcast(const QString &name, const QString &object);

private:
    QList<InMemoryDistributedCenter *> m_centers;
};

// The session as one process sees it: whether another process holds the claim, whether it
// answers, and what was announced.
class InMemorySessionService final : public SessionService
{
public:
    Claim claim() override
    {
        ++claimCount;
        return heldByAnother ? Claim::HeldByAnother : Claim::Claimed;
    }
    bool askHolderToShowPreferences() override
    {
        ++preferencesAsked;
        return holderAnswers;
    }
    void setRequests(SessionRequests *newRequests) override { requests = newRequests; }
    void titleChanged(const QString &title) override { announcedTitles.append(title); }

    bool heldByAnother = false;
    bool holderAnswers = true;
    int claimCount = 0;
    int preferencesAsked = 0;
    SessionRequests *requests = nullptr;
    QStringList announcedTitles;
};

// All of the above, wired together.
class InMemoryPlatform
{
public:
    explicit InMemoryPlatform(AbsoluteTime now = 0, PreferencesStore *store = nullptr,
                              InMemoryNotificationBus *bus = nullptr);

    Platform platform();
    ChooserInterface chooserInterface() { return {&chooserWindow, &datePicker}; }
    InMemoryStatusItem *statusItem() const { return statusBar.lastItem(); }

    // Lets pending notifications and store changes through, as one turn of the event loop
    // would. Returns how many broadcast observers ran.
    int processEvents()
    {
        storeWatcher.checkNow();
        return distributedCenter.deliverPending();
    }

    InMemoryPreferencesStore ownStore;
    PreferencesStore &store;
    UserDefaults userDefaults;
    InMemoryDistributedCenter distributedCenter;
    LocalWindowNotificationCenter windowCenter;
    ManualClock clock;
    ManualTimerScheduler timers;
    InMemoryStatusBar statusBar;
    InMemoryClipboard clipboard;
    InMemoryApplication application;
    InMemoryWindow chooserWindow;
    InMemoryDatePicker datePicker;
    InMemoryPreferencesStoreWatcher storeWatcher;
};
