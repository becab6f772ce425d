#pragma once

#include "platform/StatusItem.h"

#include <QDBusConnection>

#include <memory>
#include <vector>

class QtStatusItem;

class QtStatusBar final : public StatusBar
{
public:
    explicit QtStatusBar(const QDBusConnection &bus = QDBusConnection::sessionBus());
    ~QtStatusBar() override;
    StatusItem *statusItem() override;

private:
    QDBusConnection m_bus;
    std::vector<std::unique_ptr<QtStatusItem>> m_items;
};
