#include "statusmenu/StatusMenu.h"

#include "app/settings/Settings.h"
#include "datetext/DateFormatCatalogue.h"
#include "datetext/DateText.h"
#include "datetext/NSDateExtensions.h"

namespace {

const char kIconName[] = "Horalo.tif";

// "%@" placeholders are filled left to right; a missing text leaves the line without it.
QString FillPlaceholders(const QString &pattern, const QStringList &values)
{
    QString result;
    qsizetype from = 0;
    int next = 0;
    for (;;) {
        const qsizetype at = pattern.indexOf(QLatin1String("%@"), from);
        if (at < 0)
            break;
        result += pattern.mid(from, at - from);
        if (next < values.size())
            result += values.at(next);
        ++next;
        from = at + 2;
    }
    result += pattern.mid(from);
    return result;
}

} // namespace

QString ItIsNowLine(const Clock &clock)
{
    return FillPlaceholders(QStringLiteral("It is now: %@"),
                            {CurrentDateTimeString(clock, kMediumStyle, kShortStyle)});
}

QString DaysToLine(const Clock &clock)
{
    QString days = NSDateExtensions::daysSinceAbsoluteTme(clock, g_selectedDateTime);
    // Past and future moments read alike: the count is shown without its sign.
    if (days.startsWith(QLatin1Char('-')))
        days.remove(0, 1);
    return FillPlaceholders(QStringLiteral("Days To %@: %@"),
                            {MakeCurrentDateTimeStringRef(clock, kMediumStyle, kShortStyle), days});
}

StatusMenu::StatusMenu(Platform &platform, MenuDelegate &delegate, MenuTarget &target)
    : m_platform(platform), m_delegate(delegate), m_target(target)
{}

void StatusMenu::createStatusItem()
{
    m_item = m_platform.statusBar.statusItem();
}

void StatusMenu::addItem(const QString &title, MenuAction action, const QString &toolTip)
{
    MenuItem item;
    item.title = title;
    item.action = action;
    item.keyEquivalent = QString(); // no entry has a keyboard shortcut
    item.toolTip = toolTip;
    m_menu->addItem(item);
}

void StatusMenu::addSeparator()
{
    m_menu->addItem(MenuItem::separatorItem());
}

void StatusMenu::buildMenu(const QStringList &customDates)
{
    m_menu = m_item ? m_item->menu() : m_menu;
    if (!m_menu) {
        m_ownedMenu = std::make_unique<Menu>();
        m_menu = m_ownedMenu.get();
        m_menu->setAutoenablesItems(true);
        m_menu->setDelegate(&m_delegate);
        m_menu->setTarget(&m_target);
        if (m_item)
            m_item->setMenu(m_menu);
    }

    while (m_menu->numberOfItems() > 0)
        m_menu->removeItemAtIndex(0);

    const Clock &clock = m_platform.clock;
    addItem(QStringLiteral("Date-Time Chooser"), MenuAction::ShowCalendar);
    addItem(ItIsNowLine(clock), MenuAction::None);

    if (g_selectedDateTime != 0.0) {
        addItem(DaysToLine(clock), MenuAction::None);

        QString phrase;
        if (const auto date = NSDateExtensions::dateFromCFAbsoluteTime(clock, g_selectedDateTime))
            phrase = date->timesinceWithDepth(7).remove(QLatin1Char('-'));
        addItem(FillPlaceholders(QStringLiteral("(%@)"), {phrase}), MenuAction::None);
    }
    addSeparator();

    if (IncludeGMTDateTime(m_platform.store))
        addNumericalDateTimeItems();

    addDateTimeItems();

    if (IncludeDateOnlyItems(m_platform.store)) {
        addSeparator();
        addDateItems();
    }
    if (IncludeTimeOnlyItems(m_platform.store)) {
        addSeparator();
        addTimeItems();
    }
    if (!customDates.isEmpty()) {
        addSeparator();
        addItem(QStringLiteral("Custom Dates"), MenuAction::None);
        addCustomDateFormatterItems(customDates);
    }

    addSeparator();
    addItem(QStringLiteral("Preferences..."), MenuAction::SelItemPreferences);
    addSeparator();
    addItem(QStringLiteral("About Horalo"), MenuAction::SelItemAbout);
    addItem(QStringLiteral("Quit"), MenuAction::SelItemQuit);

    if (m_item) {
        m_item->setImage(IncludeTitleIcon(m_platform.store)
                             ? m_platform.application.imageNamed(QString::fromLatin1(kIconName))
                             : QString());
    }

    if (!m_itemTitleTimer) {
        // Once a second, on the second: a clock showing seconds must turn over with the real one.
        m_itemTitleTimer = m_platform.timers.scheduleWallClockSecondTimer(
            [this](Timer *timer) { itemTitleTimerAction(timer); });
    }
}

void StatusMenu::addStyledGroup(DateFormatGroup group)
{
    const bool symbolic = UseSymbolicNames(m_platform.store);
    for (const CatalogueFormat &format : DateFormatCatalogue()) {
        if (format.group != group)
            continue;
        if (symbolic) {
            addItem(format.menuName.toString(), format.copyAction);
            continue;
        }
        const QString text =
            MakeCurrentDateTimeStringRef(m_platform.clock, format.dateStyle, format.timeStyle);
        if (!text.isNull())
            addItem(text, format.copyAction);
    }
}

void StatusMenu::addDateTimeItems()
{
    addStyledGroup(DateFormatGroup::DateTime);
}

void StatusMenu::addDateItems()
{
    addStyledGroup(DateFormatGroup::DateOnly);
}

void StatusMenu::addTimeItems()
{
    addStyledGroup(DateFormatGroup::TimeOnly);
}

void StatusMenu::addNumericalDateTimeItems()
{
    if (UseSymbolicNames(m_platform.store)) {
        for (const CatalogueFormat &format : DateFormatCatalogue()) {
            if (format.group == DateFormatGroup::Numerical)
                addItem(format.menuName.toString(), format.copyAction);
        }
        addSeparator();
        return;
    }

    const QString description = DefaultDescription(WorkingInstant(m_platform.clock));
    addItem(description, MenuAction::GMTDateTime);

    const QString date = NumericalDateFromDescription(description);
    if (date.isNull()) {
        addSeparator();
        return;
    }
    // The entry shows the date alone when the description has no time field; its copy action
    // refuses half a date-time.
    QString dateTime = NumericalDateTimeFromDescription(description);
    if (dateTime.isNull())
        dateTime = date;

    addItem(dateTime, MenuAction::NumericalDateTime);
    addItem(date, MenuAction::NumericalDate);
    addItem(NumericalDateNoHyphensFromDescription(description), MenuAction::NumericalDateNoHyphens);
    addSeparator();
}

void StatusMenu::addCustomDateFormatterItems(const QStringList &customDates)
{
    const CalendarDate date =
        CalendarDateWithTimeIntervalSinceReferenceDate(WorkingInstant(m_platform.clock));
    for (qsizetype i = 0; i < customDates.size(); ++i) {
        const QString &format = customDates.at(i);
        const QString text = MakeFormattedDateString(date, format);
        if (!text.isNull())
            addItem(text, MenuAction::CustomDateFormatter, format);
    }
}

void StatusMenu::itemTitleTimerAction(Timer *)
{
    if (!m_item)
        return;
    const QString override = m_platform.userDefaults.stringForKey(SettingsKey::MenuTitleFormatter);
    if (!override.isEmpty()) {
        const CalendarDate date =
            CalendarDateWithTimeIntervalSinceReferenceDate(WorkingInstant(m_platform.clock));
        const QString text = MakeFormattedDateString(date, override);
        setTitle(text.isNull() ? QStringLiteral("Bad Format") : text);
        return;
    }

    QString name = TitleDisplayName(m_platform.store);
    if (name.isNull())
        name = DefaultTitleDisplayName;
    if (const std::optional<QString> text = TitleFormatText(name, m_platform.clock))
        setTitle(*text);
    // An unknown name leaves whatever title the item had.
}

void StatusMenu::setTitle(const QString &title)
{
    m_item->setTitle(title);
    if (m_titleObserver)
        m_titleObserver(title);
}
