#pragma once

// The running application on the session bus: the name org.horalo.Horalo, held by one process
// per session, and the object that answers other programs (see
// resources/dbus/org.horalo.Horalo.xml). Without a session bus, a lock file in the user's
// runtime directory (or configuration directory) keeps the one-per-session rule.

#include "platform/SessionService.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QObject>

#include <memory>

class QLockFile;

class DBusSessionService final : public QObject, protected QDBusContext, public SessionService
{
    Q_OBJECT
    // Read by the generated adaptor.
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString PickedMoment READ pickedMoment)

public:
    // lockDirectory: where the lock file goes when there is no bus; empty for the default
    // ($XDG_RUNTIME_DIR/horalo, else the configuration directory's horalo).
    explicit DBusSessionService(const QDBusConnection &bus, const QString &lockDirectory = {});
    ~DBusSessionService() override;

    Claim claim() override;
    bool askHolderToShowPreferences() override;
    void setRequests(SessionRequests *requests) override;
    void titleChanged(const QString &title) override;

    // Where the lock file is, or would be.
    QString lockFilePath() const;
    bool isOnBus() const { return m_exported; }

    QString title() const;
    QString pickedMoment() const;

public Q_SLOTS:
    // The interface's methods, as the generated adaptor calls them.
    void ShowMenu(int x, int y);
    QString Copy(const QString &name);
    void ShowChooser();
    void ShowPreferences();
    void Quit();

Q_SIGNALS:
    void TitleChanged(const QString &title);

private:
    Claim claimBusName();
    Claim claimLockFile();
    bool answering();

    QDBusConnection m_bus;
    QString m_lockDirectory;
    std::unique_ptr<QLockFile> m_lock;
    SessionRequests *m_requests = nullptr;
    bool m_exported = false;
    bool m_ownsName = false;
    // A second launch may ask for the preferences while this process is still starting.
    bool m_preferencesRequested = false;
};
