#include "platform/qt/OpenMenuTracker.h"

#include <QMenu>

void OpenMenuTracker::track(QMenu &qmenu)
{
    new OpenMenuTracker(qmenu); // the menu's child, destroyed with it
}

OpenMenuTracker::OpenMenuTracker(QMenu &qmenu) : QObject(&qmenu)
{
    connect(&qmenu, &QMenu::aboutToShow, this, &OpenMenuTracker::shown);
    connect(&qmenu, &QMenu::aboutToHide, this, &OpenMenuTracker::hidden);
}

OpenMenuTracker::~OpenMenuTracker()
{
    hidden();
}

void OpenMenuTracker::shown()
{
    if (!m_open)
        ++s_openMenus;
    m_open = true;
}

void OpenMenuTracker::hidden()
{
    // A menu can be hidden without having been shown (a rebuild while closed); only a shown
    // one was counted.
    if (m_open)
        --s_openMenus;
    m_open = false;
}
