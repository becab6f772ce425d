#include "app/SessionController.h"

#include "datetext/CopyActions.h"
#include "datetext/DateText.h"

SessionController::SessionController(AppController &controller, SessionService &session)
    : m_controller(controller), m_session(session)
{
    if (StatusItem *item = m_controller.statusMenu().item())
        m_announcedTitle = item->title();
    m_controller.statusMenu().setTitleObserver(
        [this](const QString &title) { titleWasSet(title); });
    m_session.setRequests(this);
}

SessionController::~SessionController()
{
    m_session.setRequests(nullptr);
    m_controller.statusMenu().setTitleObserver({});
}

void SessionController::titleWasSet(const QString &title)
{
    // The title is set every second and mostly reads the same; listeners hear changes only.
    if (title == m_announcedTitle)
        return;
    m_announcedTitle = title;
    m_session.titleChanged(title);
}

QString SessionController::title() const
{
    const StatusItem *item = m_controller.statusMenu().item();
    return item ? item->title() : QString();
}

std::optional<AbsoluteTime> SessionController::pickedMoment() const
{
    if (g_selectedDateTime == 0.0)
        return std::nullopt;
    return g_selectedDateTime;
}

void SessionController::showMenu(std::optional<QPoint> position)
{
    // The item tells the menu it is about to open, which rebuilds it as a click does.
    if (StatusItem *item = m_controller.statusMenu().item())
        item->popUpMenu(position);
}

SessionRequests::CopyResult SessionController::copy(const QString &name)
{
    const std::optional<MenuItem> entry = CopyEntryForName(name);
    if (!entry)
        return {CopyStatus::UnknownFormat, {}};
    if (const std::optional<QByteArray> copied = m_controller.copy(entry->action, *entry))
        return {CopyStatus::Copied, *copied};
    return {CopyStatus::NotRendered, {}};
}

void SessionController::runEntryAction(const QString &title, MenuAction action)
{
    // Choosing an entry always follows an opening of the menu, which ran the rebuild path (and
    // so stopped a ticking chooser); a request from outside gets the same.
    m_controller.setup();
    MenuItem sender;
    sender.title = title;
    sender.action = action;
    m_controller.performAction(action, sender);
}

void SessionController::showChooser()
{
    runEntryAction(QStringLiteral("Date-Time Chooser"), MenuAction::ShowCalendar);
}

void SessionController::showPreferences()
{
    runEntryAction(QStringLiteral("Preferences..."), MenuAction::SelItemPreferences);
}

void SessionController::quit()
{
    runEntryAction(QStringLiteral("Quit"), MenuAction::SelItemQuit);
}
