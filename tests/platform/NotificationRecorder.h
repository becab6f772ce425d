#pragma once

#include "platform/NotificationCenter.h"

#include <QString>

// An observer that counts the notifications of one name and object that reach it.
struct NotificationRecorder
{
    void observe(DistributedNotificationCenter &center, const QString &name, const QString &object)
    {
        center.addObserver(name, object, [this] { ++received; });
    }

    int received = 0;
};
