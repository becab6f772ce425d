#include "platform/Menu.h"

void Menu::addItem(const MenuItem &item)
{
    m_items.append(item);
    ++m_revision;
    if (m_changeObserver)
        m_changeObserver();
}

void Menu::removeItemAtIndex(int index)
{
    if (index < 0 || index >= m_items.size())
        return;
    m_items.removeAt(index);
    ++m_revision;
    if (m_changeObserver)
        m_changeObserver();
}

bool Menu::isItemEnabled(int index) const
{
    if (index < 0 || index >= m_items.size())
        return false;
    const MenuItem &item = m_items.at(index);
    if (!item.hasAction())
        return false;
    if (!m_autoenablesItems)
        return true;
    return m_target && m_target->validateMenuItem(item);
}

void Menu::willOpen()
{
    if (m_delegate)
        m_delegate->menuNeedsUpdate(this);
}

bool Menu::activateItemAtIndex(int index)
{
    if (!isItemEnabled(index) || !m_target)
        return false;
    // Copy: the action may rebuild the menu under our feet.
    const MenuItem item = m_items.at(index);
    m_target->performAction(item.action, item);
    return true;
}
