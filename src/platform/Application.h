#pragma once

#include <QString>

// The running application as the desktop sees it.
class Application
{
public:
    virtual ~Application() = default;
    virtual void terminate() = 0;
    // Brings the application's windows in front of other applications'.
    virtual void setFrontProcess() = 0;
    virtual void orderFrontStandardAboutPanel() = 0;
    virtual void beep() = 0;
    // The name of an image resource the desktop can show, or empty when there is none.
    virtual QString imageNamed(const QString &name) const = 0;
    // "CFBundleName" and "CFBundleShortVersionString": the application's name and version.
    virtual QString infoDictionaryValue(const QString &key) const = 0;
};
