#include "platform/qt/sni/DBusMenuExporter.h"

#include "SniItemFixture.h"

namespace {

QVariantList EventArguments(int id, const QString &eventId = QStringLiteral("clicked"))
{
    return {id, eventId, QVariant::fromValue(QDBusVariant(0)), 0u};
}

} // namespace

// The item with a menu built once, as at start-up; a host that fetched nothing yet.
class DBusMenuTest : public SniItemFixture
{
protected:
    void SetUp() override
    {
        SniItemFixture::SetUp();
        controller.menuNeedsUpdate(&controller.menu);
        item->setMenu(&controller.menu);
        Settle(50);
        host->clearSignals();
    }

    // The id under which the host sees the entry titled so, in the layout it fetches now.
    int idOf(const QString &label)
    {
        for (const DBusMenuLayoutItem &child : host->layout().second.children) {
            if (child.properties.value(QStringLiteral("label")).toString() == label)
                return child.id;
        }
        return -1;
    }
    int layoutUpdates() { return int(host->signalsNamed(QStringLiteral("LayoutUpdated")).size()); }

    RecordingController controller;
};

TEST_F(DBusMenuTest, AboutToShowRebuildsAndAnnouncesOneRevisionPerRebuild)
{
    const uint before = host->layout().first;
    const QDBusMessage reply = host->callMenu(QStringLiteral("AboutToShow"), {0});
    ASSERT_EQ(reply.type(), QDBusMessage::ReplyMessage);
    EXPECT_TRUE(reply.arguments().first().toBool());
    EXPECT_EQ(controller.builds, 2);

    // The rebuild removed and added a dozen entries: still one announcement.
    ASSERT_TRUE(WaitFor([this] { return layoutUpdates() == 1; }));
    Settle();
    ASSERT_EQ(layoutUpdates(), 1);
    EXPECT_EQ(host->signalsNamed(QStringLiteral("LayoutUpdated")).first().arguments(),
              QVariantList({before + 1, 0}));
    EXPECT_EQ(host->layout().first, before + 1);

    host->callMenu(QStringLiteral("AboutToShow"), {0});
    Settle();
    EXPECT_EQ(layoutUpdates(), 2);
    EXPECT_EQ(host->layout().first, before + 2);
}

TEST_F(DBusMenuTest, LayoutCarriesEveryKindOfRow)
{
    host->callMenu(QStringLiteral("AboutToShow"), {0});
    const DBusMenuLayoutItem root = host->layout().second;
    EXPECT_EQ(root.id, 0);
    EXPECT_EQ(root.properties.value(QStringLiteral("children-display")).toString(), u"submenu");
    ASSERT_EQ(root.children.size(), 8);
    QStringList rows;
    for (int i = 0; i < root.children.size(); ++i) {
        const DBusMenuLayoutItem &child = root.children.at(i);
        EXPECT_EQ(child.id, i + 1);
        EXPECT_TRUE(child.children.isEmpty());
        const QVariantMap &p = child.properties;
        if (p.value(QStringLiteral("type")).toString() == u"separator") {
            rows.append(QStringLiteral("-"));
            continue;
        }
        rows.append(p.value(QStringLiteral("label")).toString() +
                    (p.value(QStringLiteral("enabled"), true).toBool() ? QString()
                                                                       : QStringLiteral(" [off]")));
    }
    EXPECT_EQ(rows, QStringList({
                        QStringLiteral("Date-Time Chooser"),
                        QStringLiteral("It is now: Mar 10, 2006, 2:31\u202FPM [off]"),
                        QStringLiteral("-"),
                        QStringLiteral("20060310"),
                        QStringLiteral("Fr, 10. M\u00e4rz 2006 \u2600"),
                        // Underscores doubled: the host must not make mnemonics of them.
                        QStringLiteral("2006__03__10"),
                        QStringLiteral("-"),
                        QStringLiteral("Quit"),
                    }));
    EXPECT_EQ(root.children.at(5).properties.value(QStringLiteral("accessible-desc")).toString(),
              u"%Y_%m_%d");
}

TEST_F(DBusMenuTest, ClickedRunsTheEntrysAction)
{
    host->callMenu(QStringLiteral("AboutToShow"), {0});
    const int id = idOf(QStringLiteral("20060310"));
    ASSERT_GT(id, 0);
    const QDBusMessage reply = host->callMenu(QStringLiteral("Event"), EventArguments(id));
    EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(controller.performed,
              (RecordingController::Performed{
                  {MenuAction::NumericalDateNoHyphens, QStringLiteral("20060310")}}));
}

TEST_F(DBusMenuTest, RowsWithoutAnActionCannotBeChosen)
{
    host->callMenu(QStringLiteral("Event"), EventArguments(2)); // "It is now"
    host->callMenu(QStringLiteral("Event"), EventArguments(3)); // a separator
    host->callMenu(QStringLiteral("Event"), EventArguments(4, QStringLiteral("hovered")));
    EXPECT_TRUE(controller.performed.isEmpty());
    EXPECT_EQ(host->callMenu(QStringLiteral("Event"), EventArguments(99)).type(),
              QDBusMessage::ErrorMessage);
}

TEST_F(DBusMenuTest, ARebuildOutsideAnOpeningIsAnnouncedOnce)
{
    const uint before = host->layout().first;
    // What the settings broadcast does: the controller rebuilds on its own.
    controller.menuNeedsUpdate(&controller.menu);
    ASSERT_TRUE(WaitFor([this] { return layoutUpdates() == 1; }));
    Settle();
    EXPECT_EQ(layoutUpdates(), 1);
    EXPECT_EQ(host->layout().first, before + 1);
}

TEST_F(DBusMenuTest, ARebuildOfTheSameShapeAlsoSendsTheChangedLabels)
{
    controller.numericalDate = QStringLiteral("20060311");
    controller.customToolTip.clear();
    controller.menuNeedsUpdate(&controller.menu);
    ASSERT_TRUE(WaitFor([this] { return layoutUpdates() == 1; }));
    const QList<QDBusMessage> updates =
        host->signalsNamed(QStringLiteral("ItemsPropertiesUpdated"));
    ASSERT_EQ(updates.size(), 1);
    const auto changed = qdbus_cast<DBusMenuItemList>(updates.first().arguments().at(0));
    ASSERT_EQ(changed.size(), 1);
    EXPECT_EQ(changed.first().id, 4);
    EXPECT_EQ(changed.first().properties,
              QVariantMap({{QStringLiteral("label"), QStringLiteral("20060311")}}));
    // A property gone is announced too, or hosts would keep showing the old one.
    const auto removed = qdbus_cast<DBusMenuItemKeysList>(updates.first().arguments().at(1));
    ASSERT_EQ(removed.size(), 1);
    EXPECT_EQ(removed.first().id, 6);
    EXPECT_EQ(removed.first().names, QStringList{QStringLiteral("accessible-desc")});

    // A rebuild that moves rows is only a new layout.
    host->clearSignals();
    controller.withChooserLines = true;
    controller.menuNeedsUpdate(&controller.menu);
    ASSERT_TRUE(WaitFor([this] { return layoutUpdates() == 1; }));
    EXPECT_TRUE(host->signalsNamed(QStringLiteral("ItemsPropertiesUpdated")).isEmpty());
}

TEST_F(DBusMenuTest, AClickFromALayoutRebuiltSinceRunsTheEntryTheUserSaw)
{
    const int seen = idOf(QStringLiteral("20060310"));
    // The settings change while the menu is open: a row appears above, and the host has not
    // fetched the new layout when the user clicks.
    controller.withChooserLines = true;
    controller.menuNeedsUpdate(&controller.menu);
    host->callMenu(QStringLiteral("Event"), EventArguments(seen));
    EXPECT_EQ(controller.performed,
              (RecordingController::Performed{
                  {MenuAction::NumericalDateNoHyphens, QStringLiteral("20060310")}}));
}

TEST_F(DBusMenuTest, PropertiesOneByOneAndByGroup)
{
    const QDBusMessage group =
        host->callMenu(QStringLiteral("GetGroupProperties"),
                       {QVariant::fromValue(QList<int>{1, 3, 77}),
                        QVariant::fromValue(QStringList{QStringLiteral("label")})});
    const auto items = qdbus_cast<DBusMenuItemList>(group.arguments().first());
    ASSERT_EQ(items.size(), 2); // 77 is no entry
    EXPECT_EQ(items.at(0).id, 1);
    EXPECT_EQ(items.at(0).properties,
              QVariantMap({{QStringLiteral("label"), QStringLiteral("Date-Time Chooser")}}));
    EXPECT_EQ(items.at(1).id, 3);
    EXPECT_TRUE(items.at(1).properties.isEmpty());

    const auto property = [this](int id, const QString &name) {
        return host->callMenu(QStringLiteral("GetProperty"), {id, name});
    };
    EXPECT_FALSE(property(2, QStringLiteral("enabled"))
                     .arguments()
                     .first()
                     .value<QDBusVariant>()
                     .variant()
                     .toBool());
    // Values not sent because they are the protocol's defaults still read as such.
    EXPECT_TRUE(property(1, QStringLiteral("enabled"))
                    .arguments()
                    .first()
                    .value<QDBusVariant>()
                    .variant()
                    .toBool());
    EXPECT_EQ(property(1, QStringLiteral("no-such-property")).type(), QDBusMessage::ErrorMessage);
}

TEST_F(DBusMenuTest, GroupCallsReportUnknownIds)
{
    const QDBusMessage shown = host->callMenu(QStringLiteral("AboutToShowGroup"),
                                              {QVariant::fromValue(QList<int>{0, 42})});
    ASSERT_EQ(shown.arguments().size(), 2);
    EXPECT_EQ(qdbus_cast<QList<int>>(shown.arguments().at(0)), QList<int>{0});
    EXPECT_EQ(qdbus_cast<QList<int>>(shown.arguments().at(1)), QList<int>{42});
    EXPECT_EQ(controller.builds, 2);

    const int id = idOf(QStringLiteral("Quit"));
    const DBusMenuEventList events{{id, QStringLiteral("clicked"), QDBusVariant(0), 0},
                                   {99, QStringLiteral("clicked"), QDBusVariant(0), 0}};
    const QDBusMessage clicked =
        host->callMenu(QStringLiteral("EventGroup"), {QVariant::fromValue(events)});
    EXPECT_EQ(qdbus_cast<QList<int>>(clicked.arguments().first()), QList<int>{99});
    EXPECT_EQ(controller.performed,
              (RecordingController::Performed{{MenuAction::SelItemQuit, QStringLiteral("Quit")}}));
}
