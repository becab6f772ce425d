#include "platform/qt/QtApplication.h"

#include "platform/Version.h"
#include "platform/qt/QtAboutPanel.h"

#include <QApplication>
#include <QFile>
#include <QWidget>

QtApplication::QtApplication(LocalWindowNotificationCenter &windowCenter)
    : m_windowCenter(windowCenter)
{}

QtApplication::~QtApplication() = default;

void QtApplication::terminate()
{
    // Hidden first: Qt's own quit would close them, and each closing would save and broadcast.
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (window->isVisible())
            window->hide();
    }
    QCoreApplication::exit(0);
}

void QtApplication::setFrontProcess()
{
    // A tray program has no window of its own in front; the window it shows next activates
    // itself. Nothing else to do on this desktop.
}

void QtApplication::orderFrontStandardAboutPanel()
{
    if (!m_aboutPanel) {
        m_aboutPanel = std::make_unique<QtAboutPanel>(
            m_windowCenter, infoDictionaryValue(QStringLiteral("CFBundleName")),
            infoDictionaryValue(QStringLiteral("CFBundleShortVersionString")));
    }
    m_aboutPanel->makeKeyAndOrderFront();
}

void QtApplication::beep()
{
    QApplication::beep();
}

QString QtApplication::imageNamed(const QString &name) const
{
    return QFile::exists(QStringLiteral(":/") + name) ? name : QString();
}

QString QtApplication::infoDictionaryValue(const QString &key) const
{
    if (key == QLatin1String("CFBundleName"))
        return QStringLiteral(HORALO_NAME);
    if (key == QLatin1String("CFBundleShortVersionString"))
        return QStringLiteral(HORALO_VERSION);
    return {};
}
