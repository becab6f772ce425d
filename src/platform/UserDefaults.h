#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>

#include <functional>

class PreferencesStore;

// The application's own defaults: the store's domain, read afresh at every call, over a
// registration layer that supplies values nobody stored (the current locale's names and
// patterns, for instance). The application never writes through this object.
//
// Building the registration layer can cost far more than a read of the store, so a layer that
// names the keys it can hold is built only for those keys; a layer given without keys is built
// for every lookup that the store does not answer.
class UserDefaults
{
public:
    using RegistrationProvider = std::function<QVariantMap()>;

    UserDefaults(PreferencesStore &store, QString domain, RegistrationProvider registration = {},
                 QStringList registeredKeys = {});

    QVariant objectForKey(const QString &key) const;
    // The value when it is a string; a null QString otherwise.
    QString stringForKey(const QString &key) const;
    // The registration layer with the stored values laid over it.
    QVariantMap dictionaryRepresentation() const;

    void setRegistrationProvider(RegistrationProvider registration,
                                 QStringList registeredKeys = {});

private:
    PreferencesStore &m_store;
    QString m_domain;
    RegistrationProvider m_registration;
    QStringList m_registeredKeys;
};
