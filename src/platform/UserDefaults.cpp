#include "platform/UserDefaults.h"

#include "platform/PreferencesStore.h"

UserDefaults::UserDefaults(PreferencesStore &store, QString domain,
                           RegistrationProvider registration, QStringList registeredKeys)
    : m_store(store), m_domain(std::move(domain)), m_registration(std::move(registration)),
      m_registeredKeys(std::move(registeredKeys))
{}

QVariant UserDefaults::objectForKey(const QString &key) const
{
    m_store.appSynchronize(m_domain);
    QVariant value = m_store.copyAppValue(key, m_domain);
    if (!value.isValid() && m_registration &&
        (m_registeredKeys.isEmpty() || m_registeredKeys.contains(key)))
        value = m_registration().value(key);
    return value;
}

QString UserDefaults::stringForKey(const QString &key) const
{
    const QVariant value = objectForKey(key);
    if (value.typeId() != QMetaType::QString)
        return {};
    return value.toString();
}

QVariantMap UserDefaults::dictionaryRepresentation() const
{
    QVariantMap all = m_registration ? m_registration() : QVariantMap();
    m_store.appSynchronize(m_domain);
    const QVariantMap stored = m_store.copyAllValues(m_domain);
    for (auto it = stored.cbegin(); it != stored.cend(); ++it)
        all.insert(it.key(), it.value());
    return all;
}

void UserDefaults::setRegistrationProvider(RegistrationProvider registration,
                                           QStringList registeredKeys)
{
    m_registration = std::move(registration);
    m_registeredKeys = std::move(registeredKeys);
}
