#include "platform/qt/sni/DBusMenuAdaptor.h"

#include "platform/qt/sni/DBusMenuExporter.h"

#include <QGuiApplication>

DBusMenuAdaptor::DBusMenuAdaptor(DBusMenuExporter *exporter)
    : QDBusAbstractAdaptor(exporter), m_exporter(exporter)
{
    connect(exporter, &DBusMenuExporter::layoutUpdated, this, &DBusMenuAdaptor::LayoutUpdated);
    connect(exporter, &DBusMenuExporter::itemsPropertiesUpdated, this,
            &DBusMenuAdaptor::ItemsPropertiesUpdated);
}

QString DBusMenuAdaptor::textDirection() const
{
    return QGuiApplication::isRightToLeft() ? QStringLiteral("rtl") : QStringLiteral("ltr");
}

void DBusMenuAdaptor::unknownId(int id)
{
    m_exporter->failCurrentCall(QStringLiteral("No menu entry has id %1").arg(id));
}

uint DBusMenuAdaptor::GetLayout(int parentId, int recursionDepth, const QStringList &propertyNames,
                                DBusMenuLayoutItem &layout)
{
    const std::optional<DBusMenuLayoutItem> found =
        m_exporter->layout(parentId, recursionDepth, propertyNames);
    if (!found) {
        unknownId(parentId);
        return 0;
    }
    layout = *found;
    return m_exporter->layoutRevision();
}

DBusMenuItemList DBusMenuAdaptor::GetGroupProperties(const QList<int> &ids,
                                                     const QStringList &propertyNames)
{
    return m_exporter->groupProperties(ids, propertyNames);
}

QDBusVariant DBusMenuAdaptor::GetProperty(int id, const QString &name)
{
    const std::optional<QVariant> value = m_exporter->property(id, name);
    if (!value) {
        m_exporter->failCurrentCall(
            QStringLiteral("Menu entry %1 has no property %2").arg(id).arg(name));
        return QDBusVariant(QString());
    }
    return QDBusVariant(*value);
}

void DBusMenuAdaptor::Event(int id, const QString &eventId, const QDBusVariant &, uint)
{
    if (!m_exporter->handleItemEvent(id, eventId))
        unknownId(id);
}

QList<int> DBusMenuAdaptor::EventGroup(const DBusMenuEventList &events)
{
    QList<int> idErrors;
    for (const DBusMenuEvent &event : events) {
        if (!m_exporter->handleItemEvent(event.id, event.eventId))
            idErrors.append(event.id);
    }
    return idErrors;
}

bool DBusMenuAdaptor::AboutToShow(int id)
{
    if (!m_exporter->hasId(id)) {
        unknownId(id);
        return false;
    }
    return m_exporter->aboutToShow(id);
}

QList<int> DBusMenuAdaptor::AboutToShowGroup(const QList<int> &ids, QList<int> &idErrors)
{
    QList<int> updatesNeeded;
    for (const int id : ids) {
        if (!m_exporter->hasId(id))
            idErrors.append(id);
        else if (m_exporter->aboutToShow(id))
            updatesNeeded.append(id);
    }
    return updatesNeeded;
}
