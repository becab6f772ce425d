#pragma once

#include <QString>

// The running application as the desktop sees it.
class Application
{
public:
    virtual ~Application() = default;
    // Ends the run. Windows still open are not closed, so none announces a closing.
    virtual void terminate() = 0;
    // Brings the application's windows in front of other applications'.
    virtual void setFrontProcess() = 0;
    // Shows the About panel (name, version, purpose), a window that announces its closing.
    virtual void orderFrontStandardAboutPanel() = 0;
    // The desktop's alert sound.
    virtual void beep() = 0;
    // The name of an image resource the desktop can show, or empty when there is none.
    virtual QString imageNamed(const QString &name) const = 0;
    // "CFBundleName" and "CFBundleShortVersionString": the application's name and version.
    virtual QString infoDictionaryValue(const QString &key) const = 0;
};
