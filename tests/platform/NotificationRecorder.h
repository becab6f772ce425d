#pragma once

#include "platform/NotificationCenter.h"

#include <QList>
#include <QString>
#include <QVariantMap>

// An observer that keeps every notification it is handed.
struct NotificationRecorder
{
    struct Received
    {
        QString name;
        QString object;
        QVariantMap userInfo;
    };

    static void Callback(DistributedNotificationCenter *, void *observer, const QString &name,
                         const QString &object, const QVariantMap &userInfo)
    {
        static_cast<NotificationRecorder *>(observer)->received.append({name, object, userInfo});
    }

    void observe(DistributedNotificationCenter &center, const QString &name, const QString &object)
    {
        center.addObserver(this, Callback, name, object, SuspensionBehavior::DeliverImmediately);
    }

    QList<Received> received;
};
