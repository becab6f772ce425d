#include "platform/NotificationCenter.h"

void LocalWindowNotificationCenter::addWindowWillCloseObserver(Observer observer)
{
    m_observers.push_back(std::move(observer));
}

void LocalWindowNotificationCenter::postWindowWillClose(Window *closing)
{
    // An observer may register another one while we walk the list.
    const auto observers = m_observers;
    for (const auto &observer : observers)
        observer(closing);
}
