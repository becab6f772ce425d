#pragma once

#include "datetext/DateFormatCatalogue.h"
#include "platform/Menu.h"
#include "platform/Platform.h"

#include <QStringList>

#include <functional>
#include <memory>

// The status item, its menu and its title. The menu is never edited in place: buildMenu()
// empties it and builds it again from the settings, the custom formats and the clock, so what
// it shows is always the state as of its opening.
class StatusMenu
{
public:
    // Chosen entries go to target; delegate hears that the menu is about to open.
    StatusMenu(Platform &platform, MenuDelegate &delegate, MenuTarget &target);

    // Creates the status item, variable length and highlighted while its menu is open.
    void createStatusItem();

    // Empties the menu and builds it again; sets or clears the icon; on the first build only,
    // starts the title timer.
    void buildMenu(const QStringList &customDates);
    void addNumericalDateTimeItems();
    void addDateTimeItems();
    void addDateItems();
    void addTimeItems();
    void addCustomDateFormatterItems(const QStringList &customDates);

    // The title timer's tick: renders the hidden override, or else the named title format.
    void itemTitleTimerAction(Timer *timer);
    // Hears every title the refresh sets, changed or not, after the item shows it. One observer
    // at a time; an empty function for none.
    void setTitleObserver(std::function<void(const QString &title)> observer)
    {
        m_titleObserver = std::move(observer);
    }

    StatusItem *item() const { return m_item; }
    Menu *menu() const { return m_menu; }
    Timer *itemTitleTimer() const { return m_itemTitleTimer; }

private:
    void addStyledGroup(DateFormatGroup group);
    void addItem(const QString &title, MenuAction action, const QString &toolTip = {});
    void addSeparator();
    void setTitle(const QString &title);

    Platform &m_platform;
    MenuDelegate &m_delegate;
    MenuTarget &m_target;
    StatusItem *m_item = nullptr;
    std::unique_ptr<Menu> m_ownedMenu;
    Menu *m_menu = nullptr;
    Timer *m_itemTitleTimer = nullptr;
    std::function<void(const QString &)> m_titleObserver;
};

// The menu's head lines: "It is now: ..." (always the current time) and "Days To ...: N days"
// (for the chooser's moment, meaningful only while one is picked).
QString ItIsNowLine(const Clock &clock);
QString DaysToLine(const Clock &clock);
