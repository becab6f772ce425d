#include "platform/memory/InMemoryPlatform.h"

#include "platform/AppIdentifier.h"
#include "platform/Version.h"

#include <algorithm>
#include <cmath>
#include <limits>

// --- store ---

QVariant InMemoryPreferencesStore::copyAppValue(const QString &key, const QString &domain)
{
    return m_domains.value(domain).value(key);
}

void InMemoryPreferencesStore::setAppValue(const QString &key, const QVariant &value,
                                           const QString &domain)
{
    log.append(QStringLiteral("set ") + key);
    if (value.isValid())
        m_domains[domain].insert(key, value);
    else
        m_domains[domain].remove(key);
}

bool InMemoryPreferencesStore::appSynchronize(const QString &)
{
    log.append(QStringLiteral("sync"));
    return true;
}

QVariantMap InMemoryPreferencesStore::copyAllValues(const QString &domain)
{
    return m_domains.value(domain);
}

void InMemoryPreferencesStoreWatcher::checkNow()
{
    if (!m_changed)
        return;
    m_changed = false;
    const std::vector<Observer> observers = m_observers; // an observer may add observers
    for (const Observer &observer : observers)
        observer();
}

// --- timers ---

class ManualTimerScheduler::ManualTimer final : public Timer
{
public:
    ManualTimer(double interval, AbsoluteTime firstFire, Callback onFire, bool onWholeSeconds)
        : m_interval(interval), nextFire(firstFire), callback(std::move(onFire)),
          wholeSeconds(onWholeSeconds)
    {}
    void invalidate() override { m_valid = false; }
    bool isValid() const { return m_valid; }
    double timeInterval() const { return m_interval; }

    double m_interval;
    AbsoluteTime nextFire;
    Callback callback;
    bool wholeSeconds;
    bool m_valid = true;
};

ManualTimerScheduler::ManualTimerScheduler(ManualClock &clock) : m_clock(clock) {}

ManualTimerScheduler::~ManualTimerScheduler() = default;

Timer *ManualTimerScheduler::scheduleRepeatingTimer(double intervalSeconds, Callback callback)
{
    // A zero or negative interval would fire forever within one advance().
    const double interval = std::max(intervalSeconds, 0.0001);
    m_timers.push_back(std::make_unique<ManualTimer>(
        interval, m_clock.currentAbsoluteTime() + interval, std::move(callback), false));
    return m_timers.back().get();
}

Timer *ManualTimerScheduler::scheduleWallClockSecondTimer(Callback callback)
{
    m_timers.push_back(std::make_unique<ManualTimer>(
        1.0, std::floor(m_clock.currentAbsoluteTime()) + 1.0, std::move(callback), true));
    return m_timers.back().get();
}

void ManualTimerScheduler::fire(Timer *timer)
{
    for (const auto &candidate : m_timers) {
        if (candidate.get() == timer && candidate->isValid()) {
            const Callback callback = candidate->callback; // the callback may schedule timers
            callback(candidate.get());
            return;
        }
    }
}

void ManualTimerScheduler::advance(double seconds)
{
    const AbsoluteTime end = m_clock.currentAbsoluteTime() + seconds;
    // A clock set back since the last tick: the next tick is the next whole second again.
    for (const auto &timer : m_timers) {
        const AbsoluteTime next = std::floor(m_clock.currentAbsoluteTime()) + 1.0;
        if (timer->wholeSeconds && timer->nextFire > next)
            timer->nextFire = next;
    }
    for (;;) {
        ManualTimer *next = nullptr;
        for (const auto &timer : m_timers) {
            if (timer->isValid() && timer->nextFire <= end &&
                (!next || timer->nextFire < next->nextFire))
                next = timer.get();
        }
        if (!next)
            break;
        m_clock.set(std::max(m_clock.currentAbsoluteTime(), next->nextFire));
        next->nextFire = next->wholeSeconds ? std::floor(m_clock.currentAbsoluteTime()) + 1.0
                                            : next->nextFire + next->timeInterval();
        const Callback callback = next->callback;
        callback(next);
    }
    m_clock.set(end);
}

QList<Timer *> ManualTimerScheduler::validTimers() const
{
    QList<Timer *> valid;
    for (const auto &timer : m_timers) {
        if (timer->isValid())
            valid.append(timer.get());
    }
    return valid;
}

double ManualTimerScheduler::intervalOf(const Timer *timer) const
{
    for (const auto &candidate : m_timers) {
        if (candidate.get() == timer)
            return candidate->timeInterval();
    }
    return 0;
}

// --- status item ---

void InMemoryStatusItem::setTitle(const QString &title)
{
    m_title = title;
    ++m_titleSetCount;
}

void InMemoryStatusItem::openMenu()
{
    if (m_menu)
        m_menu->willOpen();
}

void InMemoryStatusItem::popUpMenu(std::optional<QPoint> position)
{
    ++m_popUpCount;
    m_lastPopUpPosition = position;
    openMenu();
}

bool InMemoryStatusItem::chooseItemTitled(const QString &title)
{
    if (!m_menu)
        return false;
    for (int i = 0; i < m_menu->numberOfItems(); ++i) {
        if (!m_menu->itemAtIndex(i).separator && m_menu->itemAtIndex(i).title == title)
            return m_menu->activateItemAtIndex(i);
    }
    return false;
}

StatusItem *InMemoryStatusBar::statusItem()
{
    m_items.push_back(std::make_unique<InMemoryStatusItem>());
    return m_items.back().get();
}

// --- windows ---

void InMemoryWindow::makeKeyAndOrderFront()
{
    m_visible = true;
    m_key = true;
    ++m_orderFrontCount;
}

void InMemoryWindow::close()
{
    if (!m_visible)
        return;
    m_center.postWindowWillClose(this);
    m_visible = false;
    m_key = false;
}

void InMemoryDatePicker::setDateValue(AbsoluteTime value)
{
    m_value = std::floor(value);
}

void InMemoryDatePicker::userChangesDateValue(AbsoluteTime value)
{
    setDateValue(value);
    if (m_action)
        m_action();
}

// --- clipboard ---

int InMemoryClipboard::writeUtf8PlainText(const QByteArray &bytes)
{
    if (m_unreachableStatus != 0)
        return m_unreachableStatus;
    m_contents = bytes;
    ++m_writeCount;
    return 0;
}

// --- application ---

QString InMemoryApplication::imageNamed(const QString &name) const
{
    return imageResources.contains(name) ? name : QString();
}

QString InMemoryApplication::infoDictionaryValue(const QString &key) const
{
    if (infoDictionary.contains(key))
        return infoDictionary.value(key);
    if (key == QLatin1String("CFBundleName"))
        return QStringLiteral(HORALO_NAME);
    if (key == QLatin1String("CFBundleShortVersionString"))
        return QStringLiteral(HORALO_VERSION);
    return {};
}

// --- notifications ---

InMemoryDistributedCenter::InMemoryDistributedCenter(InMemoryNotificationBus *bus) : m_bus(bus)
{
    if (m_bus)
        m_bus->attach(this);
}

InMemoryDistributedCenter::~InMemoryDistributedCenter()
{
    if (m_bus)
        m_bus->detach(this);
}

void InMemoryDistributedCenter::addObserver(const QString &name, const QString &object,
                                            Observer observer)
{
    m_observations.append({name, object, std::move(observer)});
}

void InMemoryDistributedCenter::postNotification(const QString &name, const QString &object)
{
    ++m_postCount;
    if (m_bus)
        m_bus->broadcast(name, object);
    else
        enqueue({name, object});
}

int InMemoryDistributedCenter::deliverPending()
{
    int ran = 0;
    while (!m_pending.isEmpty()) {
        const Pending pending = m_pending.takeFirst();
        const auto observations = m_observations;
        for (const Observation &o : observations) {
            if (o.name == pending.name && o.object == pending.object) {
                o.observer();
                ++ran;
            }
        }
    }
    return ran;
}

void InMemoryNotificationBus::broadcast(const QString &name, const QString &object)
{
    for (InMemoryDistributedCenter *center : std::as_const(m_centers))
        center->enqueue({name, object});
}

// --- the whole platform ---

InMemoryPlatform::InMemoryPlatform(AbsoluteTime now, PreferencesStore *externalStore,
                                   InMemoryNotificationBus *bus)
    : store(externalStore ? *externalStore : ownStore), userDefaults(store, AppIdentifier),
      distributedCenter(bus), clock(now), timers(clock), chooserWindow(windowCenter)
{}

Platform InMemoryPlatform::platform()
{
    return Platform{store,  userDefaults, distributedCenter, windowCenter, clock,
                    timers, statusBar,    clipboard,         application,  storeWatcher};
}
