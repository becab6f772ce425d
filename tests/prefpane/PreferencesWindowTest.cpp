// The desktop window over the controller, offscreen: its layout, its table model, in-place
// edits, real drag data, the delete button and key, and closing.

#include "app/settings/Settings.h"
#include "datetext/DateText.h"
#include "datetext/DateTextTestSupport.h"
#include "platform/memory/InMemoryPlatform.h"
#include "prefpane/CustomDatesTableModel.h"
#include "prefpane/CustomDatesTableView.h"
#include "prefpane/PrefPaneLayout.h"
#include "prefpane/PreferencesUi.h"
#include "support/QtPrinters.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMimeData>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>

namespace {

constexpr AbsoluteTime kFixedInstant = 163711907.0; // 2006-03-10 14:31:47 in New York

// One application for the whole run, made before the first test and gone before main returns.
class QtApplicationEnvironment final : public ::testing::Environment
{
public:
    void SetUp() override { m_application = std::make_unique<QApplication>(m_argc, m_argv); }
    void TearDown() override { m_application.reset(); }

private:
    int m_argc = 1;
    char m_name[28] = "horalo_test_prefpane_window";
    char *m_argv[2] = {m_name, nullptr};
    std::unique_ptr<QApplication> m_application;
};

::testing::Environment *const g_qtApplication =
    ::testing::AddGlobalTestEnvironment(new QtApplicationEnvironment);

class PreferencesWindowTest : public ::testing::Test
{
protected:
    PreferencesWindowTest()
    {
        memory.application.infoDictionary.insert(QStringLiteral("CFBundleName"),
                                                 QStringLiteral("Horalo"));
        memory.application.infoDictionary.insert(QStringLiteral("CFBundleShortVersionString"),
                                                 QStringLiteral("2.0"));
        m_environment.setLocaleAndZone("en_US.UTF-8", "America/New_York");
        memory.userDefaults.setRegistrationProvider(LocaleDefaultsRegistration,
                                                    LocaleDefaultsKeys());
    }

    void awake(const QStringList &formats = {})
    {
        QVariantList list;
        for (const QString &format : formats)
            list.append(format);
        if (!formats.isEmpty())
            memory.store.setAppValue(SettingsKey::CustomDates, list, AppIdentifier);
        ui.controller->awakeFromNib();
        memory.ownStore.log.clear();
    }
    QStringList storedFormats()
    {
        return CustomDatesFromValue(
            memory.store.copyAppValue(SettingsKey::CustomDates, AppIdentifier));
    }
    PreferencesWindow &window() { return *ui.window; }
    CustomDatesTableView &view() { return *ui.window->customDatesTableView(); }
    CustomDatesTableModel &model() { return *view().customDatesModel(); }
    QModelIndexList rowIndexes(const QList<int> &rows)
    {
        QModelIndexList indexes;
        for (const int row : rows) {
            for (int column = 0; column < model().columnCount(); ++column)
                indexes.append(model().index(row, column));
        }
        return indexes;
    }
    QList<int> selectedRows()
    {
        QList<int> rows;
        const QModelIndexList selected = view().selectionModel()->selectedRows();
        for (const QModelIndex &index : selected)
            rows.append(index.row());
        std::sort(rows.begin(), rows.end());
        return rows;
    }

    ScopedDateEnvironment m_environment;
    InMemoryPlatform memory{kFixedInstant};
    Platform platform = memory.platform();
    PreferencesUi ui = CreatePreferencesUi(platform, memory.windowCenter);
};

// --- layout ---

TEST_F(PreferencesWindowTest, LayoutOffersTheNineTitlesAndEverySymbol)
{
    QComboBox *titles = window().titleDisplayComboBox();
    ASSERT_EQ(titles->count(), 9);
    for (int i = 0; i < titles->count(); ++i)
        EXPECT_EQ(titles->itemText(i), kTitleDisplayNames[static_cast<std::size_t>(i)]);
    EXPECT_EQ(titles->currentText(), QStringLiteral("Medium Date"));
    EXPECT_EQ(window().formatSymbolList()->count(), static_cast<int>(kFormatSymbols.size()));
    EXPECT_FALSE(window().deleteButton()->isEnabled());

    awake();
    EXPECT_EQ(window().versionLabel()->text(), QStringLiteral("Horalo 2.0"));
    EXPECT_TRUE(window().includeGMTDateTimeBox()->isChecked());
    EXPECT_TRUE(window().includeTitleIconBox()->isChecked());
    EXPECT_FALSE(window().useSymbolicNamesBox()->isChecked());
    EXPECT_EQ(titles->currentText(), QStringLiteral("Medium Date"));
}

TEST_F(PreferencesWindowTest, ControlsWriteTheirKeysWithoutBroadcast)
{
    awake();
    window().includeDateOnlyItemsBox()->click();
    EXPECT_EQ(memory.store.copyAppValue(SettingsKey::IncludeDateOnlyItems, AppIdentifier),
              QVariant(true));
    window().includeTitleIconBox()->click();
    EXPECT_EQ(memory.store.copyAppValue(SettingsKey::IncludeTitleIcon, AppIdentifier),
              QVariant(false));
    window().titleDisplayComboBox()->setCurrentIndex(8);
    Q_EMIT window().titleDisplayComboBox()->activated(8);
    EXPECT_EQ(memory.store.copyAppValue(SettingsKey::LastTitleDisplayName, AppIdentifier),
              QVariant(QStringLiteral("GMT")));
    EXPECT_EQ(memory.distributedCenter.postCount(), 0);
}

// --- the table model ---

TEST_F(PreferencesWindowTest, ModelShowsFormatsAndPreviews)
{
    awake({QStringLiteral("%Y-%m-%d"), QStringLiteral("plain")});
    ASSERT_EQ(model().rowCount(), 2);
    ASSERT_EQ(model().columnCount(), 2);
    EXPECT_EQ(model().headerData(0, Qt::Horizontal).toString(),
              QStringLiteral("Custom Date Format"));
    EXPECT_EQ(model().headerData(1, Qt::Horizontal).toString(), QStringLiteral("Preview"));
    EXPECT_EQ(model().data(model().index(0, 0)).toString(), QStringLiteral("%Y-%m-%d"));
    EXPECT_EQ(model().data(model().index(0, 1)).toString(), QStringLiteral("2006-03-10"));
    EXPECT_EQ(model().data(model().index(1, 1)).toString(), QStringLiteral("plain"));
    EXPECT_TRUE(model().flags(model().index(0, 0)) & Qt::ItemIsEditable);
    EXPECT_FALSE(model().flags(model().index(0, 1)) & Qt::ItemIsEditable);
    EXPECT_FALSE(model().flags(model().index(0, 0)) & Qt::ItemIsDropEnabled);
    EXPECT_TRUE(model().flags(QModelIndex()) & Qt::ItemIsDropEnabled);
}

TEST_F(PreferencesWindowTest, InPlaceEditReachesTheStore)
{
    awake({QStringLiteral("%Y"), QStringLiteral("%m")});
    window().makeKeyAndOrderFront();
    const QModelIndex cell = model().index(1, 0);
    view().setCurrentIndex(cell);
    view().edit(cell);
    auto *editor = qobject_cast<QLineEdit *>(view().indexWidget(cell));
    if (!editor)
        editor = view().viewport()->findChild<QLineEdit *>();
    ASSERT_NE(editor, nullptr);
    editor->selectAll();
    QTest::keyClicks(editor, QStringLiteral("%H:%M"));
    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::processEvents(); // the delegate commits on the next turn of the loop

    EXPECT_EQ(storedFormats(), (QStringList{QStringLiteral("%Y"), QStringLiteral("%H:%M")}));
    EXPECT_EQ(model().data(model().index(1, 1)).toString(), QStringLiteral("14:31"));
    EXPECT_EQ(memory.distributedCenter.postCount(), 0);
}

// --- dragging ---

TEST_F(PreferencesWindowTest, DragDataRoundTripsThroughTheDrop)
{
    const QString a = QStringLiteral("A"), b = QStringLiteral("B"), c = QStringLiteral("C"),
                  d = QStringLiteral("D"), e = QStringLiteral("E");
    awake({a, b, c, d, e});
    std::unique_ptr<QMimeData> data(model().mimeData(rowIndexes({0, 1})));
    ASSERT_TRUE(data);
    EXPECT_EQ(data->formats(), QStringList{QStringLiteral("MyPrivateTableViewDataType")});
    EXPECT_EQ(model().mimeTypes(), QStringList{QStringLiteral("MyPrivateTableViewDataType")});

    EXPECT_TRUE(model().canDropMimeData(data.get(), Qt::MoveAction, 4, 0, QModelIndex()));
    EXPECT_FALSE(model().canDropMimeData(data.get(), Qt::MoveAction, -1, -1, model().index(2, 0)));
    EXPECT_TRUE(model().dropMimeData(data.get(), Qt::MoveAction, 4, 0, QModelIndex()));

    EXPECT_EQ(storedFormats(), (QStringList{c, d, a, b, e}));
    EXPECT_EQ(model().data(model().index(2, 0)).toString(), a);
    EXPECT_EQ(selectedRows(), (QList<int>{2, 3}));
    EXPECT_TRUE(window().deleteButton()->isEnabled());
}

TEST_F(PreferencesWindowTest, DropBelowTheLastRowIsADropAtTheEnd)
{
    awake({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")});
    std::unique_ptr<QMimeData> data(model().mimeData(rowIndexes({0})));
    ASSERT_TRUE(data);
    EXPECT_TRUE(model().dropMimeData(data.get(), Qt::MoveAction, -1, -1, QModelIndex()));
    EXPECT_EQ(storedFormats(),
              (QStringList{QStringLiteral("B"), QStringLiteral("C"), QStringLiteral("A")}));
}

TEST_F(PreferencesWindowTest, ForeignDropsAndDropsOntoRowsAreRefused)
{
    awake({QStringLiteral("A"), QStringLiteral("B")});
    QMimeData text;
    text.setText(QStringLiteral("A"));
    EXPECT_FALSE(model().canDropMimeData(&text, Qt::MoveAction, 0, 0, QModelIndex()));
    EXPECT_FALSE(model().dropMimeData(&text, Qt::MoveAction, 0, 0, QModelIndex()));
    std::unique_ptr<QMimeData> data(model().mimeData(rowIndexes({1})));
    EXPECT_FALSE(model().dropMimeData(data.get(), Qt::MoveAction, -1, -1, model().index(0, 0)));
    EXPECT_EQ(storedFormats(), (QStringList{QStringLiteral("A"), QStringLiteral("B")}));
}

// --- adding and deleting ---

TEST_F(PreferencesWindowTest, DeleteButtonFollowsTheSelection)
{
    awake({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")});
    QPushButton *deleteButton = window().deleteButton();
    view().selectRow(1);
    EXPECT_TRUE(deleteButton->isEnabled());
    view().clearSelection();
    EXPECT_FALSE(deleteButton->isEnabled());

    view().selectionModel()->select(model().index(0, 0),
                                    QItemSelectionModel::Select | QItemSelectionModel::Rows);
    view().selectionModel()->select(model().index(2, 0),
                                    QItemSelectionModel::Select | QItemSelectionModel::Rows);
    deleteButton->click();
    EXPECT_EQ(storedFormats(), QStringList{QStringLiteral("B")});
    EXPECT_EQ(model().rowCount(), 1);
    EXPECT_FALSE(deleteButton->isEnabled());
}

TEST_F(PreferencesWindowTest, DeleteKeyOnTheTableDeletes)
{
    awake({QStringLiteral("A"), QStringLiteral("B")});
    view().selectRow(0);
    QTest::keyClick(&view(), Qt::Key_Delete);
    EXPECT_EQ(storedFormats(), QStringList{QStringLiteral("B")});
}

TEST_F(PreferencesWindowTest, AddButtonAppendsTheDefaultFormat)
{
    awake();
    window().addButton()->click();
    EXPECT_EQ(model().rowCount(), 1);
    EXPECT_EQ(storedFormats(), QStringList{QStringLiteral("%a %d %b, %Y %I:%M:%S %p (%z)")});
    EXPECT_TRUE(selectedRows().isEmpty());
}

TEST_F(PreferencesWindowTest, ChoosingASymbolCopiesIt)
{
    awake();
    QListWidget *symbols = window().formatSymbolList();
    const QList<QListWidgetItem *> found =
        symbols->findItems(QStringLiteral("%B"), Qt::MatchStartsWith | Qt::MatchCaseSensitive);
    ASSERT_EQ(found.size(), 1);
    Q_EMIT symbols->itemClicked(found.first());
    EXPECT_EQ(window().formatCharacterEdit()->text(), QStringLiteral("%B"));
    EXPECT_EQ(memory.clipboard.contents(), QByteArrayLiteral("%B"));
}

// --- closing ---

TEST_F(PreferencesWindowTest, ClosingPostsWindowWillCloseAndSaves)
{
    awake();
    int heard = 0;
    Window *closing = nullptr;
    memory.windowCenter.addWindowWillCloseObserver([&](Window *w) {
        ++heard;
        closing = w;
    });
    window().close(); // not shown: nothing closes
    EXPECT_EQ(heard, 0);

    window().makeKeyAndOrderFront();
    EXPECT_TRUE(window().isVisible());
    window().close();
    EXPECT_EQ(heard, 1);
    EXPECT_EQ(closing, static_cast<Window *>(&window()));
    EXPECT_FALSE(window().isVisible());
    EXPECT_EQ(memory.distributedCenter.postCount(), 1);

    window().makeKeyAndOrderFront();
    QTest::keyClick(&window(), Qt::Key_Escape);
    EXPECT_EQ(heard, 2);
    EXPECT_FALSE(window().isVisible());
    EXPECT_EQ(memory.distributedCenter.postCount(), 2);
}

} // namespace
