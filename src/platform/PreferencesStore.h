#pragma once

#include <QString>
#include <QVariant>

// A per-user store of typed values, one domain per application identifier. Values keep their
// types: bool, qlonglong, double, QString, QDateTime (UTC), QVariantList and QVariantMap.
//
// Reads see this process's own writes at once; what other processes wrote becomes visible at
// the next appSynchronize(), which also makes this process's pending writes visible to them.
class PreferencesStore
{
public:
    virtual ~PreferencesStore() = default;

    // The stored value, or an invalid QVariant when the key is not set.
    virtual QVariant copyAppValue(const QString &key, const QString &domain) = 0;
    // An invalid QVariant removes the key.
    virtual void setAppValue(const QString &key, const QVariant &value, const QString &domain) = 0;
    // True when the domain is now in step with the backing store.
    virtual bool appSynchronize(const QString &domain) = 0;
    // Every key of the domain, as last synchronised plus this process's pending writes.
    virtual QVariantMap copyAllValues(const QString &domain) = 0;
    // One line on the latest trouble with the backing store (a damaged file read as empty or
    // kept aside, a write refused), for the command line to show; empty when there was none.
    // Taking it clears it. The desktop side never asks: its failures stay silent.
    virtual QString takeProblem() { return {}; }
};
