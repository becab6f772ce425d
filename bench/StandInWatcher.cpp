// The panel's side of a StatusNotifierItem session for the whole-process benchmarks: owns the
// watcher's name, says a host is registered, and appends each registered item's bus name to a
// file. Qt decides whether to export its tray icon over D-Bus by reading the watcher's
// IsStatusNotifierHostRegistered property through introspection, so the properties must be
// introspectable, as they are here.
//
//   horalo_bench_watcher FILE

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QFile>
#include <QObject>

#include <cstdio>

class StandInWatcher final : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isHostRegistered)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion)
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ registeredItems)
public:
    explicit StandInWatcher(QString record) : m_record(std::move(record)) {}

    bool isHostRegistered() const { return true; }
    int protocolVersion() const { return 0; }
    QStringList registeredItems() const { return m_items; }

public Q_SLOTS:
    // Items register either their bus name or their object path.
    void RegisterStatusNotifierItem(const QString &service)
    {
        const QString name = service.startsWith(u'/') ? message().service() : service;
        m_items.append(name);
        QFile file(m_record);
        if (file.open(QIODevice::Append))
            file.write(name.toUtf8() + '\n');
    }
    void RegisterStatusNotifierHost(const QString &) {}

private:
    QString m_record;
    QStringList m_items;
};

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: horalo_bench_watcher FILE\n");
        return 2;
    }
    StandInWatcher watcher(QString::fromLocal8Bit(argv[1]));
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.registerObject(QStringLiteral("/StatusNotifierWatcher"), &watcher,
                            QDBusConnection::ExportAllSlots |
                                QDBusConnection::ExportAllProperties) ||
        !bus.registerService(QStringLiteral("org.kde.StatusNotifierWatcher"))) {
        std::fprintf(stderr, "cannot own org.kde.StatusNotifierWatcher\n");
        return 1;
    }
    return QCoreApplication::exec();
}

#include "StandInWatcher.moc"
