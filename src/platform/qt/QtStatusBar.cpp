#include "platform/qt/QtStatusBar.h"

#include "platform/qt/QtStatusItem.h"

QtStatusBar::QtStatusBar(const QDBusConnection &bus) : m_bus(bus) {}

QtStatusBar::~QtStatusBar() = default;

StatusItem *QtStatusBar::statusItem()
{
    m_items.push_back(std::make_unique<QtStatusItem>(m_bus));
    return m_items.back().get();
}
