#include "platform/qt/sni/DBusMenuExporter.h"

#include "platform/qt/sni/DBusMenuAdaptor.h"

#include <QPointer>

DBusMenuExporter::DBusMenuExporter(const QDBusConnection &connection, const QString &objectPath,
                                   QObject *parent)
    : QObject(parent), m_connection(connection), m_objectPath(objectPath)
{
    RegisterSniTypes();
    m_settle.setSingleShot(true);
    m_settle.setInterval(0);
    connect(&m_settle, &QTimer::timeout, this, &DBusMenuExporter::publishLayout);
    new DBusMenuAdaptor(this);
    m_exported = m_connection.isConnected() &&
                 m_connection.registerObject(m_objectPath, this, QDBusConnection::ExportAdaptors);
}

DBusMenuExporter::~DBusMenuExporter()
{
    // The menu is not touched here: at the end of the process it may already be gone, and its
    // observer only holds a guarded pointer to us.
    if (m_exported)
        m_connection.unregisterObject(m_objectPath);
}

void DBusMenuExporter::setMenu(Menu *menu)
{
    if (menu == m_menu)
        return;
    if (m_menu)
        m_menu->setChangeObserver({});
    m_menu = menu;
    m_fetchedItems.clear();
    if (m_menu) {
        m_menu->setChangeObserver([self = QPointer<DBusMenuExporter>(this)] {
            if (self)
                self->menuChanged();
        });
    }
    m_settle.stop();
    m_publishedModelRevision = m_menu ? m_menu->revision() : 0;
    m_publishedProperties = allItemProperties();
    ++m_layoutRevision;
    Q_EMIT layoutUpdated(m_layoutRevision, 0);
}

void DBusMenuExporter::menuChanged()
{
    if (!m_settle.isActive())
        m_settle.start();
}

bool DBusMenuExporter::publishLayout()
{
    m_settle.stop();
    if (!m_menu || m_menu->revision() == m_publishedModelRevision)
        return false;
    const QList<QVariantMap> before = m_publishedProperties;
    m_publishedModelRevision = m_menu->revision();
    m_publishedProperties = allItemProperties();
    ++m_layoutRevision;
    announceChangedProperties(before, m_publishedProperties);
    Q_EMIT layoutUpdated(m_layoutRevision, 0);
    return true;
}

void DBusMenuExporter::announceChangedProperties(const QList<QVariantMap> &before,
                                                 const QList<QVariantMap> &after)
{
    // Only a rebuild that kept every entry's kind in its place can be told as changed
    // properties; hosts that update items in place then need no new layout to show fresh texts.
    if (before.size() != after.size() || after.isEmpty())
        return;
    DBusMenuItemList updated;
    DBusMenuItemKeysList removed;
    for (int i = 0; i < after.size(); ++i) {
        if (before.at(i).value(QStringLiteral("type")) != after.at(i).value(QStringLiteral("type")))
            return;
        DBusMenuItem changed{i + 1, {}};
        DBusMenuItemKeys gone{i + 1, {}};
        for (auto it = after.at(i).cbegin(); it != after.at(i).cend(); ++it) {
            if (before.at(i).value(it.key()) != it.value())
                changed.properties.insert(it.key(), it.value());
        }
        for (auto it = before.at(i).cbegin(); it != before.at(i).cend(); ++it) {
            if (!after.at(i).contains(it.key()))
                gone.names.append(it.key());
        }
        if (!changed.properties.isEmpty())
            updated.append(changed);
        if (!gone.names.isEmpty())
            removed.append(gone);
    }
    if (!updated.isEmpty() || !removed.isEmpty())
        Q_EMIT itemsPropertiesUpdated(updated, removed);
}

QVariantMap DBusMenuExporter::rootProperties() const
{
    return {{QStringLiteral("children-display"), QStringLiteral("submenu")}};
}

QVariantMap DBusMenuExporter::itemProperties(int index) const
{
    const MenuItem &item = m_menu->itemAtIndex(index);
    if (item.separator)
        return {{QStringLiteral("type"), QStringLiteral("separator")}};
    // An underscore marks a mnemonic in this protocol; a date text's own underscores are text.
    QString label = item.title;
    label.replace(QLatin1Char('_'), QLatin1String("__"));
    QVariantMap properties{{QStringLiteral("label"), label}};
    if (!m_menu->isItemEnabled(index))
        properties.insert(QStringLiteral("enabled"), false);
    if (!item.toolTip.isEmpty())
        properties.insert(QStringLiteral("accessible-desc"), item.toolTip);
    return properties;
}

QList<QVariantMap> DBusMenuExporter::allItemProperties() const
{
    QList<QVariantMap> result;
    if (!m_menu)
        return result;
    for (int i = 0; i < m_menu->numberOfItems(); ++i)
        result.append(itemProperties(i));
    return result;
}

QVariantMap DBusMenuExporter::filtered(const QVariantMap &properties, const QStringList &names)
{
    if (names.isEmpty())
        return properties;
    QVariantMap result;
    for (const QString &name : names) {
        if (properties.contains(name))
            result.insert(name, properties.value(name));
    }
    return result;
}

bool DBusMenuExporter::hasId(int id) const
{
    return id == 0 || (m_menu && id > 0 && id <= m_menu->numberOfItems());
}

void DBusMenuExporter::failCurrentCall(const QString &message)
{
    if (calledFromDBus())
        sendErrorReply(QDBusError::InvalidArgs, message);
}

std::optional<DBusMenuLayoutItem> DBusMenuExporter::layout(int parentId, int depth,
                                                           const QStringList &propertyNames)
{
    publishLayout();
    if (!hasId(parentId))
        return std::nullopt;
    if (parentId != 0)
        return DBusMenuLayoutItem{
            parentId, filtered(itemProperties(parentId - 1), propertyNames), {}};
    DBusMenuLayoutItem root{0, filtered(rootProperties(), propertyNames), {}};
    if (depth != 0 && m_menu) {
        m_fetchedItems = m_menu->items();
        for (int i = 0; i < m_menu->numberOfItems(); ++i)
            root.children.append({i + 1, filtered(itemProperties(i), propertyNames), {}});
    }
    return root;
}

DBusMenuItemList DBusMenuExporter::groupProperties(const QList<int> &ids,
                                                   const QStringList &propertyNames)
{
    publishLayout();
    DBusMenuItemList result;
    if (ids.isEmpty()) {
        for (int i = 0; m_menu && i < m_menu->numberOfItems(); ++i)
            result.append({i + 1, filtered(itemProperties(i), propertyNames)});
        return result;
    }
    for (const int id : ids) {
        if (!hasId(id))
            continue;
        result.append(
            {id, filtered(id == 0 ? rootProperties() : itemProperties(id - 1), propertyNames)});
    }
    return result;
}

std::optional<QVariant> DBusMenuExporter::property(int id, const QString &name)
{
    publishLayout();
    if (!hasId(id))
        return std::nullopt;
    const QVariantMap properties = id == 0 ? rootProperties() : itemProperties(id - 1);
    if (properties.contains(name))
        return properties.value(name);
    // What the protocol defines as a property's value when it is not sent.
    if (name == QLatin1String("enabled") || name == QLatin1String("visible"))
        return true;
    if (name == QLatin1String("type"))
        return QStringLiteral("standard");
    if (name == QLatin1String("label"))
        return QString();
    return std::nullopt;
}

int DBusMenuExporter::indexForClick(int id) const
{
    if (!m_menu || id <= 0)
        return -1;
    const int index = id - 1;
    const QList<MenuItem> &current = m_menu->items();
    const QList<MenuItem> &seen = m_fetchedItems.isEmpty() ? current : m_fetchedItems;
    if (index >= seen.size() || !seen.at(index).hasAction())
        return -1;
    // The host shows the layout it fetched last; if the model was rebuilt since (the settings
    // changed while the menu was open), the chosen entry is found again by what it does.
    const MenuItem &chosen = seen.at(index);
    const auto sameEntry = [&chosen](const MenuItem &item) {
        return item.hasAction() && item.action == chosen.action && item.toolTip == chosen.toolTip;
    };
    if (index < current.size() && sameEntry(current.at(index)))
        return index;
    for (int i = 0; i < current.size(); ++i) {
        if (sameEntry(current.at(i)))
            return i;
    }
    return -1;
}

bool DBusMenuExporter::handleItemEvent(int id, const QString &eventId)
{
    if (!hasId(id) && !(id > 0 && id <= m_fetchedItems.size()))
        return false;
    if (eventId == QLatin1String("clicked")) {
        const int index = indexForClick(id);
        if (index >= 0)
            m_menu->activateItemAtIndex(index);
    }
    return true;
}

bool DBusMenuExporter::aboutToShow(int id)
{
    // Only the whole menu opens; its entries have no submenus.
    if (id != 0 || !m_menu)
        return false;
    m_menu->willOpen();
    return publishLayout();
}
