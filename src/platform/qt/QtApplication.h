#pragma once

#include "platform/Application.h"
#include "platform/NotificationCenter.h"

#include <memory>

class QtAboutPanel;

class QtApplication final : public Application
{
public:
    // The About panel announces its closing to windowCenter, as every window does.
    explicit QtApplication(LocalWindowNotificationCenter &windowCenter);
    ~QtApplication() override;

    // Ends the event loop. Windows still open are hidden, not closed: quitting is not a
    // window's closing, so it neither saves nor broadcasts anything.
    void terminate() override;
    void setFrontProcess() override;
    void orderFrontStandardAboutPanel() override;
    void beep() override;
    QString imageNamed(const QString &name) const override;
    QString infoDictionaryValue(const QString &key) const override;

    // The About panel once it has been shown, or null.
    QtAboutPanel *aboutPanel() const { return m_aboutPanel.get(); }

private:
    LocalWindowNotificationCenter &m_windowCenter;
    std::unique_ptr<QtAboutPanel> m_aboutPanel;
};
