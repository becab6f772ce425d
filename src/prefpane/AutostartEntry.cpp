#include "prefpane/AutostartEntry.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

#include <utility>

namespace {

const QLatin1String kFileName("org.horalo.Horalo.desktop");

// Reads "Key=value" of the [Desktop Entry] group; an empty string when the key is absent.
QString DesktopEntryValue(const QByteArray &text, QByteArrayView key)
{
    bool inMainGroup = false;
    for (const QByteArray &rawLine : text.split('\n')) {
        const QByteArray line = rawLine.trimmed();
        if (line.startsWith('[')) {
            inMainGroup = line == "[Desktop Entry]";
            continue;
        }
        if (!inMainGroup)
            continue;
        const qsizetype equals = line.indexOf('=');
        if (equals > 0 && line.first(equals).trimmed() == key)
            return QString::fromUtf8(line.sliced(equals + 1).trimmed());
    }
    return {};
}

} // namespace

AutostartEntry::AutostartEntry(QString configHome, QString program)
    : m_configHome(std::move(configHome)), m_program(std::move(program))
{}

QString AutostartEntry::DefaultConfigHome()
{
    const QString configured = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (!configured.isEmpty() && QDir::isAbsolutePath(configured))
        return configured;
    return QDir::homePath() + QLatin1String("/.config");
}

QString AutostartEntry::DefaultProgram()
{
    return LaunchCommand(QCoreApplication::applicationFilePath());
}

QString AutostartEntry::LaunchCommand(const QString &runningExecutable)
{
    QString program = runningExecutable;
    const QFileInfo running(runningExecutable);
    if (running.fileName() == QLatin1String("horalo-desktop")) {
        const QString dir = running.absolutePath();
        for (const QString &candidate :
             {dir + QLatin1String("/horalo"), dir + QLatin1String("/../../bin/horalo")}) {
            const QFileInfo launcher(candidate);
            if (launcher.isFile() && launcher.isExecutable()) {
                program = QDir::cleanPath(launcher.absoluteFilePath());
                break;
            }
        }
    }
    const QString name = QFileInfo(program).fileName();
    const QString found = QStandardPaths::findExecutable(name);
    if (!found.isEmpty() &&
        QFileInfo(found).canonicalFilePath() == QFileInfo(program).canonicalFilePath())
        return name;
    return program;
}

QString AutostartEntry::ExecArgument(const QString &program)
{
    // Exec= splits at spaces and gives a meaning to quotes, backslashes, "$", "`" and "%";
    // a path holding any of them goes in double quotes with the four escapable characters
    // escaped. The value is then a desktop-entry string, whose own escape is the backslash.
    static const QString reserved = QStringLiteral(" \t\n\"'\\><~|&;$*?#()`%");
    bool needsQuotes = program.isEmpty();
    for (const QChar c : program)
        needsQuotes = needsQuotes || reserved.contains(c);
    QString argument;
    if (!needsQuotes) {
        argument = program;
    } else {
        argument = QStringLiteral("\"");
        for (const QChar c : program) {
            if (c == u'"' || c == u'`' || c == u'$' || c == u'\\')
                argument += u'\\';
            argument += c;
        }
        argument += u'"';
    }
    argument.replace(u'%', QStringLiteral("%%"));
    argument.replace(u'\\', QStringLiteral("\\\\"));
    argument.replace(u'\n', QStringLiteral("\\n"));
    argument.replace(u'\t', QStringLiteral("\\t"));
    return argument;
}

QString AutostartEntry::filePath() const
{
    return m_configHome + QLatin1String("/autostart/") + kFileName;
}

QString AutostartEntry::contents() const
{
    return QStringLiteral("[Desktop Entry]\n"
                          "Type=Application\n"
                          "Name=Horalo\n"
                          "Comment=The date and time in your status area\n"
                          "Exec=%1\n"
                          "Icon=horalo\n"
                          "Terminal=false\n"
                          "StartupNotify=false\n"
                          "X-GNOME-Autostart-enabled=true\n"
                          "X-KDE-autostart-after=panel\n")
        .arg(ExecArgument(m_program));
}

bool AutostartEntry::isEnabled() const
{
    QFile file(filePath());
    if (!file.open(QIODevice::ReadOnly))
        return false;
    // An autostart entry is a few hundred bytes; whatever is past 64 KiB is not ours.
    const QByteArray text = file.read(64 * 1024);
    return DesktopEntryValue(text, "Hidden") != QLatin1String("true") &&
           DesktopEntryValue(text, "X-GNOME-Autostart-enabled") != QLatin1String("false");
}

bool AutostartEntry::setEnabled(bool enabled, QString *error)
{
    const QString path = filePath();
    if (!enabled) {
        QFile file(path);
        if (!file.exists() || file.remove())
            return true;
        if (error)
            *error = QCoreApplication::translate("AutostartEntry", "Could not remove %1: %2.")
                         .arg(QDir::toNativeSeparators(path), file.errorString());
        return false;
    }

    const QString directory = QFileInfo(path).path();
    if (!QDir().mkpath(directory)) {
        if (error)
            *error =
                QCoreApplication::translate("AutostartEntry", "Could not create the folder %1.")
                    .arg(QDir::toNativeSeparators(directory));
        return false;
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(contents().toUtf8()) < 0 || !file.commit()) {
        if (error)
            *error = QCoreApplication::translate("AutostartEntry", "Could not write %1: %2.")
                         .arg(QDir::toNativeSeparators(path), file.errorString());
        return false;
    }
    return true;
}
