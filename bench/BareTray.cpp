// The floor the whole-process benchmarks measure Horalo against: the least a Qt tray clock can
// do. An icon, a tool tip set to the time every second, and a fixed menu of as many entries as
// Horalo's default menu, built once and never rebuilt. Whatever Qt itself costs at rest, at an
// opening of that menu over D-Bus, and in memory, this program pays too.
//
//   horalo_bare_tray [EXTRA_ENTRIES]
//
// EXTRA_ENTRIES adds that many entries more, for Qt's own cost per entry of a menu over D-Bus.

#include <QAction>
#include <QApplication>
#include <QDateTime>
#include <QMenu>
#include <QPixmap>
#include <QSystemTrayIcon>
#include <QTimer>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("BareTray"));
    QApplication::setQuitOnLastWindowClosed(false);

    // Horalo's default menu: the chooser, "It is now", ten formats, a separator and three
    // commands.
    QMenu menu;
    const int extra = argc > 1 ? QString::fromLocal8Bit(argv[1]).toInt() : 0;
    for (int i = 0; i < 12 + extra; ++i)
        menu.addAction(QStringLiteral("Entry %1").arg(i));
    menu.addSeparator();
    for (const char *command : {"Preferences...", "About", "Quit"})
        menu.addAction(QString::fromLatin1(command));

    QPixmap pixmap(22, 22);
    pixmap.fill(Qt::darkCyan);
    QSystemTrayIcon tray{QIcon(pixmap)};
    tray.setContextMenu(&menu);
    tray.show();

    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, &tray, [&tray] {
        tray.setToolTip(QDateTime::currentDateTime().toString(QStringLiteral("HH:mm:ss")));
    });
    tick.start(1000);
    return QApplication::exec();
}
