// A second process for the store and broadcast tests.
//
//   write PATH PREFIX COUNT       sets PREFIX0..PREFIX<COUNT-1> to their index, synchronising
//                                 after each; exits 1 if a synchronise failed
//   crash-before-rename PATH KEY VALUE
//                                 sets KEY and dies by SIGKILL between writing the temporary
//                                 file and renaming it over the store
//   listen NAME OBJECT            prints "ready" once observing; at the first "Sentinel" OBJECT
//                                 prints "heard N", N the notifications NAME OBJECT before it,
//                                 and exits
//   post NAME OBJECT              posts and waits for the bus

#include "platform/dbus/DBusNotificationCenter.h"
#include "platform/store/PlistPreferencesStore.h"

#include <QCoreApplication>
#include <QTimer>

#include <csignal>
#include <cstdio>

namespace {

int Write(const QStringList &args)
{
    PlistPreferencesStore store(args.at(0));
    const int count = args.at(2).toInt();
    bool ok = true;
    for (int i = 0; i < count; ++i) {
        store.setAppValue(args.at(1) + QString::number(i), i, AppIdentifier);
        ok = store.appSynchronize(AppIdentifier) && ok;
    }
    return ok ? 0 : 1;
}

int CrashBeforeRename(const QStringList &args)
{
    PlistPreferencesStore store(args.at(0));
    store.setBeforeRenameHookForTesting([](const QString &) { std::raise(SIGKILL); });
    store.setAppValue(args.at(1), args.at(2), AppIdentifier);
    store.appSynchronize(AppIdentifier);
    return 0; // not reached
}

int Listen(const QStringList &args)
{
    DBusNotificationCenter center;
    if (!center.isConnectedToBus())
        return 2;
    int heard = 0;
    // Observed first, so a centre that filtered nothing would report at the first notification,
    // before the count could reach 1.
    center.addObserver(QStringLiteral("Sentinel"), args.at(1), [&] {
        std::printf("heard %d\n", heard);
        std::fflush(stdout);
        QCoreApplication::exit(0);
    });
    center.addObserver(args.at(0), args.at(1), [&] { ++heard; });
    // The round trip makes sure the bus has our match rule before anyone posts.
    center.flush();
    std::printf("ready\n");
    std::fflush(stdout);
    QTimer::singleShot(10000, [] { QCoreApplication::exit(3); });
    return QCoreApplication::exec();
}

int Post(const QStringList &args)
{
    DBusNotificationCenter center;
    center.postNotification(args.at(0), args.at(1));
    return center.flush() ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList args = application.arguments().mid(2);
    const QString mode = application.arguments().value(1);
    if (mode == u"write" && args.size() == 3)
        return Write(args);
    if (mode == u"crash-before-rename" && args.size() == 3)
        return CrashBeforeRename(args);
    if (mode == u"listen" && args.size() == 2)
        return Listen(args);
    if (mode == u"post" && args.size() == 2)
        return Post(args);
    std::fprintf(stderr, "usage: see the top of PlatformPeer.cpp\n");
    return 64;
}
