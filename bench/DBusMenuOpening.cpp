// What a panel waits for when the user clicks a status item: AboutToShow on the item's dbusmenu
// object, then GetLayout of the whole menu, each answered before the next is sent.
//
//   horalo_bench_dbusmenu PID [OPENINGS]
//
// finds the StatusNotifierItem that process PID registered on the session bus, opens its menu
// OPENINGS times (default 200) after a few openings to warm up, and prints one line:
//   <median µs> <10th percentile µs> <90th percentile µs> <entries in the layout>
// With OPENINGS 0 it only prints the bus name the item answers on.
// Exit status 1 when the item or its menu cannot be reached.

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <optional>
#include <vector>

namespace {

const QString kMenuInterface = QStringLiteral("com.canonical.dbusmenu");

struct MenuObject
{
    QString service;
    QString path;
};

// Items register under a well-known name of their own (org.kde.StatusNotifierItem-<pid>-<n>) or,
// as Qt's do, under their connection's unique name; either way the name belongs to the process,
// and the item names its menu's path.
std::optional<MenuObject> FindMenu(QDBusConnection &bus, qint64 pid)
{
    QDBusConnectionInterface *daemon = bus.interface();
    const QStringList names = daemon->registeredServiceNames().value();
    for (const QString &name : names) {
        if (daemon->servicePid(name).value() != pid)
            continue;
        QDBusMessage get = QDBusMessage::createMethodCall(
            name, QStringLiteral("/StatusNotifierItem"),
            QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
        get << QStringLiteral("org.kde.StatusNotifierItem") << QStringLiteral("Menu");
        const QDBusMessage reply = bus.call(get);
        if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
            continue;
        const QVariant path = reply.arguments().first().value<QDBusVariant>().variant();
        return MenuObject{name, path.value<QDBusObjectPath>().path()};
    }
    return std::nullopt;
}

// The number of top-level entries in a GetLayout reply: (revision, (id, properties, children)).
int CountEntries(const QDBusMessage &reply)
{
    if (reply.arguments().size() < 2)
        return -1;
    const QDBusArgument layout = reply.arguments().at(1).value<QDBusArgument>();
    layout.beginStructure();
    int id = 0;
    QVariantMap properties;
    layout >> id >> properties;
    int entries = 0;
    layout.beginArray();
    while (!layout.atEnd()) {
        QDBusVariant child;
        layout >> child;
        ++entries;
    }
    layout.endArray();
    layout.endStructure();
    return entries;
}

// One opening as a host makes it; the entries of the layout, or -1 when a call failed.
int OpenMenu(QDBusConnection &bus, const MenuObject &menu)
{
    QDBusMessage aboutToShow = QDBusMessage::createMethodCall(
        menu.service, menu.path, kMenuInterface, QStringLiteral("AboutToShow"));
    aboutToShow << 0;
    if (bus.call(aboutToShow).type() != QDBusMessage::ReplyMessage)
        return -1;
    QDBusMessage getLayout = QDBusMessage::createMethodCall(menu.service, menu.path, kMenuInterface,
                                                            QStringLiteral("GetLayout"));
    getLayout << 0 << -1 << QStringList();
    const QDBusMessage reply = bus.call(getLayout);
    if (reply.type() != QDBusMessage::ReplyMessage)
        return -1;
    return CountEntries(reply);
}

double Percentile(std::vector<double> values, double fraction)
{
    std::sort(values.begin(), values.end());
    const auto index = static_cast<std::size_t>(fraction * static_cast<double>(values.size() - 1));
    return values[index];
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: horalo_bench_dbusmenu PID [OPENINGS]\n");
        return 2;
    }
    const qint64 pid = QString::fromLocal8Bit(argv[1]).toLongLong();
    const int openings = argc > 2 ? std::max(0, QString::fromLocal8Bit(argv[2]).toInt()) : 200;

    QDBusConnection bus = QDBusConnection::sessionBus();
    const std::optional<MenuObject> menu = FindMenu(bus, pid);
    if (!menu) {
        std::fprintf(stderr, "no status item with a menu for process %lld\n",
                     static_cast<long long>(pid));
        return 1;
    }
    if (openings == 0) {
        std::printf("%s\n", qPrintable(menu->service));
        return 0;
    }

    int entries = 0;
    for (int i = 0; i < 5; ++i)
        entries = OpenMenu(bus, *menu);
    std::vector<double> micros;
    micros.reserve(static_cast<std::size_t>(openings));
    for (int i = 0; i < openings && entries >= 0; ++i) {
        const auto start = std::chrono::steady_clock::now();
        entries = OpenMenu(bus, *menu);
        const std::chrono::duration<double, std::micro> took =
            std::chrono::steady_clock::now() - start;
        micros.push_back(took.count());
    }
    if (entries < 0) {
        std::fprintf(stderr, "the menu of %s did not answer\n", qPrintable(menu->service));
        return 1;
    }
    std::printf("%.1f %.1f %.1f %d\n", Percentile(micros, 0.5), Percentile(micros, 0.1),
                Percentile(micros, 0.9), entries);
    return 0;
}
