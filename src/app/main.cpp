// Horalo: the date and time in the desktop's status area. `horalo` with no command runs this
// program; the commands are the separate, lighter executable of app/cli.

#include "app/AppController.h"
#include "app/DeferToRunningInstance.h"
#include "app/SessionController.h"
#include "chooser/LazyChooserWindow.h"
#include "datetext/LocaleDefaults.h"
#include "platform/Version.h"
#include "platform/dbus/DBusNotificationCenter.h"
#include "platform/qt/DesktopSession.h"
#include "platform/qt/IconCache.h"
#include "platform/qt/QtApplication.h"
#include "platform/qt/QtStatusBar.h"
#include "platform/qt/QtTimerScheduler.h"
#include "platform/qt/StatusAreaNotice.h"
#include "platform/qt/session/DBusSessionService.h"
#include "platform/store/PlistPreferencesStore.h"
#include "platform/store/PlistPreferencesStoreWatcher.h"
#include "prefpane/PreferencesUi.h"

#include <QApplication>

#include <cstdio>
#include <cstdlib>

namespace {

bool HasDesktopSession()
{
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
           qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
}

int RunDesktopApplication(int argc, char *argv[])
{
    DesktopSession::chooseQtPlatform();
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Horalo"));
    QApplication::setApplicationVersion(QStringLiteral(HORALO_VERSION));
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setWindowIcon(LoadIconResource(QStringLiteral("Horalo.svg")));

    DBusSessionService session(QDBusConnection::sessionBus());
    QTextStream out(stdout);
    if (const std::optional<int> status = DeferToRunningInstance(session, out))
        return *status;

    PlistPreferencesStore store;
    UserDefaults userDefaults(store, AppIdentifier, LocaleDefaultsRegistration,
                              LocaleDefaultsKeys());
    DBusNotificationCenter distributedCenter;
    LocalWindowNotificationCenter windowCenter;
    SystemClock clock;
    QtTimerScheduler timers;
    QtStatusBar statusBar;
    DesktopSession desktop;
    QtApplication application(windowCenter);
    PlistPreferencesStoreWatcher storeWatcher(store);
    Platform platform{store,  userDefaults, distributedCenter,   windowCenter, clock,
                      timers, statusBar,    desktop.clipboard(), application,  storeWatcher};

    LazyChooserWindow chooserWindow(windowCenter);
    PreferencesUi preferences = CreatePreferencesUi(platform, windowCenter);
    AppController controller(platform, {&chooserWindow, &chooserWindow},
                             preferences.controller->window());

    // The same order as every start: the interface is loaded and wired (the application
    // controller first, then the preferences controller), then the launch snapshot is taken,
    // then the event loop runs.
    controller.awakeFromNib();
    preferences.controller->awakeFromNib();
    controller.applicationWillFinishLaunching();
    SessionController sessionController(controller, session);
    StatusAreaNotice statusAreaNotice(QDBusConnection::sessionBus());
    const int status = QApplication::exec();
    controller.applicationWillTerminate();
    preferences.controller.reset();
    return status;
}

} // namespace

int main(int argc, char *argv[])
{
    if (!HasDesktopSession()) {
        std::fprintf(stderr, "horalo: no desktop session here (DISPLAY and WAYLAND_DISPLAY are "
                             "unset); 'horalo render', 'horalo menu' and 'horalo defaults' work "
                             "anywhere.\n");
        return 1;
    }
    return RunDesktopApplication(argc, argv);
}
