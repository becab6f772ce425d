#pragma once

#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <functional>

class PreferencesStore;

// The application's own defaults: the store's domain, read afresh at every call, over a
// registration layer that supplies values nobody stored (the current locale's names and
// patterns, for instance). The application never writes through this object.
class UserDefaults
{
public:
    using RegistrationProvider = std::function<QVariantMap()>;

    UserDefaults(PreferencesStore &store, QString domain, RegistrationProvider registration = {});

    QVariant objectForKey(const QString &key) const;
    // The value when it is a string; a null QString otherwise.
    QString stringForKey(const QString &key) const;
    // The registration layer with the stored values laid over it.
    QVariantMap dictionaryRepresentation() const;

    void setRegistrationProvider(RegistrationProvider registration);

private:
    PreferencesStore &m_store;
    QString m_domain;
    RegistrationProvider m_registration;
};
