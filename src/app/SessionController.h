#pragma once

#include "app/AppController.h"
#include "platform/SessionService.h"

// Answers the session's requests with the application controller's own operations (a copy
// request runs the same copy action as the menu entry, a menu request opens the same menu) and
// tells the session each time the title changes.
class SessionController final : public SessionRequests
{
public:
    // Starts answering at once; stops when destroyed.
    SessionController(AppController &controller, SessionService &session);
    ~SessionController() override;
    SessionController(const SessionController &) = delete;
    SessionController &operator=(const SessionController &) = delete;

    QString title() const override;
    std::optional<AbsoluteTime> pickedMoment() const override;
    void showMenu(std::optional<QPoint> position) override;
    CopyResult copy(const QString &name) override;
    void showChooser() override;
    void showPreferences() override;
    void quit() override;

private:
    void titleWasSet(const QString &title);
    void runEntryAction(const QString &title, MenuAction action);

    AppController &m_controller;
    SessionService &m_session;
    QString m_announcedTitle;
};
