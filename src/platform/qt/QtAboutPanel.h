#pragma once

#include "platform/NotificationCenter.h"
#include "platform/Window.h"

#include <QMessageBox>

// The About panel: the application's name, version and purpose. A window like the others:
// closing it, by its button, Escape or the title bar, announces that it closes, once.
class QtAboutPanel final : public QMessageBox, public Window
{
    Q_OBJECT
public:
    QtAboutPanel(LocalWindowNotificationCenter &windowCenter, const QString &name,
                 const QString &version);

    void makeKeyAndOrderFront() override;
    void setFloating(bool floating) override;
    void close() override { QMessageBox::close(); }

private:
    LocalWindowNotificationCenter &m_windowCenter;
};
