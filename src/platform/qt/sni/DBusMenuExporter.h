#pragma once

// Our menu model over com.canonical.dbusmenu, for StatusNotifierItem hosts to draw.

#include "platform/Menu.h"
#include "platform/qt/sni/SniTypes.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QObject>
#include <QTimer>

#include <optional>

// Entry ids are the entry's index plus one (0 is the root), so a host that keeps its items across
// layouts updates them in place. The layout revision grows by one for every rebuild of the model,
// however many entries the rebuild changed, and the rebuild is announced once with LayoutUpdated.
// (The exporter is a QDBusContext because the bus hands the context of a call made through an
// adaptor to the adaptor's parent.)
class DBusMenuExporter final : public QObject, protected QDBusContext
{
    Q_OBJECT
public:
    DBusMenuExporter(const QDBusConnection &connection, const QString &objectPath,
                     QObject *parent = nullptr);
    ~DBusMenuExporter() override;

    // Whether the object is on the bus.
    bool isExported() const { return m_exported; }
    QString objectPath() const { return m_objectPath; }

    // The menu is borrowed; the exporter observes its changes until another menu is set.
    void setMenu(Menu *menu);
    Menu *menu() const { return m_menu; }
    uint layoutRevision() const { return m_layoutRevision; }

    // The protocol's operations, as the adaptor forwards them.
    std::optional<DBusMenuLayoutItem> layout(int parentId, int depth,
                                             const QStringList &propertyNames);
    DBusMenuItemList groupProperties(const QList<int> &ids, const QStringList &propertyNames);
    std::optional<QVariant> property(int id, const QString &name);
    // Returns false when the id is unknown.
    bool handleItemEvent(int id, const QString &eventId);
    // Returns whether the host must fetch the layout again.
    bool aboutToShow(int id);
    bool hasId(int id) const;
    // Answers the call being handled, if any, with an invalid-arguments error.
    void failCurrentCall(const QString &message);

Q_SIGNALS:
    void layoutUpdated(uint revision, int parentId);
    void itemsPropertiesUpdated(const DBusMenuItemList &updated,
                                const DBusMenuItemKeysList &removed);

private:
    void menuChanged();
    bool publishLayout();
    QVariantMap rootProperties() const;
    QVariantMap itemProperties(int index) const;
    static QVariantMap filtered(const QVariantMap &properties, const QStringList &names);
    void announceChangedProperties(const QList<QVariantMap> &before,
                                   const QList<QVariantMap> &after);
    QList<QVariantMap> allItemProperties() const;
    int indexForClick(int id) const;

    QDBusConnection m_connection;
    QString m_objectPath;
    bool m_exported = false;
    Menu *m_menu = nullptr;
    uint m_layoutRevision = 1;
    quint64 m_publishedModelRevision = 0;
    QList<QVariantMap> m_publishedProperties;
    // The entries of the layout the host fetched last: a click names one of them.
    QList<MenuItem> m_fetchedItems;
    // A rebuild changes the model entry by entry; it is announced once the event that made it
    // has been handled.
    QTimer m_settle;
};
