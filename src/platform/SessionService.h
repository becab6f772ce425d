#pragma once

#include "platform/AbsoluteTime.h"

#include <QByteArray>
#include <QPoint>
#include <QString>

#include <optional>

// What other programs of the user's session (a second launch, a status bar, a script) may ask
// of the running application. The application answers; the desktop delivers each request on
// the main event loop, never inside another operation.
class SessionRequests
{
public:
    enum class CopyStatus
    {
        Copied,
        NotRendered,   // a format, but its text cannot be produced now: nothing was copied
        UnknownFormat, // no menu format has that name
    };
    struct CopyResult
    {
        CopyStatus status;
        QByteArray text; // the bytes put on the clipboard when copied
    };

    virtual ~SessionRequests() = default;

    // The text the title shows now; empty before its first refresh.
    virtual QString title() const = 0;
    // The moment picked in the chooser, or none while the menu and title show "now".
    virtual std::optional<AbsoluteTime> pickedMoment() const = 0;
    // Pops the status menu up as a click on the item does, at a screen position or, without
    // one, at the pointer.
    virtual void showMenu(std::optional<QPoint> position) = 0;
    // Copies what the menu entry of that format name copies, or a custom format written as
    // "custom:FORMAT".
    virtual CopyResult copy(const QString &name) = 0;
    virtual void showChooser() = 0;
    virtual void showPreferences() = 0;
    virtual void quit() = 0;
};

// The running application's place in the session: there is one per session, and it answers
// the requests above.
class SessionService
{
public:
    enum class Claim
    {
        Claimed,       // this process is the session's application
        HeldByAnother, // another process already is
    };

    virtual ~SessionService() = default;

    // Claims the session's one place. Called once, before the application touches its settings.
    virtual Claim claim() = 0;
    // Asks the process that holds the place to show its preferences window. False when it
    // cannot be asked or did not answer.
    virtual bool askHolderToShowPreferences() = 0;
    // From now on requests go to these; they must outlive the service or be withdrawn with
    // a null pointer.
    virtual void setRequests(SessionRequests *requests) = 0;
    // Tells every listener that the title now reads differently.
    virtual void titleChanged(const QString &title) = 0;
};
