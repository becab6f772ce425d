// The desktop window over the controller, offscreen: its layout, its table model, in-place
// edits, real drag data, the delete button and key, and closing.

#include "app/settings/Settings.h"
#include "datetext/DateText.h"
#include "datetext/DateTextTestSupport.h"
#include "datetext/LocaleDefaults.h"
#include "platform/memory/InMemoryPlatform.h"
#include "prefpane/AutostartEntry.h"
#include "prefpane/CustomDatesTableModel.h"
#include "prefpane/CustomDatesTableView.h"
#include "prefpane/FormatSymbolList.h"
#include "prefpane/PrefPaneLayout.h"
#include "prefpane/PreferencesUi.h"
#include "support/QtPrinters.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTest>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

namespace {

using namespace Qt::StringLiterals;

constexpr AbsoluteTime kFixedInstant = 163711907.0; // 2006-03-10 14:31:47 in New York

// One application for the whole run, made before the first test and gone before main returns.
class QtApplicationEnvironment final : public ::testing::Environment
{
public:
    void SetUp() override
    {
        // The autostart check box reads and writes under the configuration directory: a
        // private one, never the developer's own.
        qputenv("XDG_CONFIG_HOME",
                QFile::encodeName(qEnvironmentVariable("HORALO_TEST_TMP", QDir::tempPath()) +
                                  u"/config"_s));
        m_application = std::make_unique<QApplication>(m_argc, m_argv);
    }
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
        memory.application.infoDictionary.insert(u"CFBundleName"_s, u"Horalo"_s);
        memory.application.infoDictionary.insert(u"CFBundleShortVersionString"_s, u"2.0"_s);
        m_environment.setLocaleAndZone("en_US.UTF-8", "America/New_York");
        memory.userDefaults.setRegistrationProvider(LocaleDefaultsRegistration,
                                                    LocaleDefaultsKeys());
    }

    void awake(const QStringList &formats = {})
    {
        if (!formats.isEmpty())
            memory.store.setAppValue(SettingsKey::CustomDates, QVariant(formats).toList(),
                                     AppIdentifier);
        ui.controller->awakeFromNib();
        memory.ownStore.log.clear();
    }
    QVariant stored(const QString &key) { return memory.store.copyAppValue(key, AppIdentifier); }
    QStringList storedFormats() { return CustomDatesFromValue(stored(SettingsKey::CustomDates)); }
    PreferencesWindow &window() { return *ui.window; }
    CustomDatesTableView &view() { return *ui.window->customDatesTableView(); }
    CustomDatesTableModel &model() { return *view().customDatesModel(); }
    // Opens the format cell of a row in place and types over its text; null when no editor
    // opened. The typing is not committed.
    QLineEdit *typeInCell(int row, const QString &text)
    {
        const QModelIndex cell = model().index(row, 0);
        view().setCurrentIndex(cell);
        view().edit(cell);
        auto *editor = view().viewport()->findChild<QLineEdit *>();
        if (editor) {
            editor->selectAll();
            QTest::keyClicks(editor, text);
        }
        return editor;
    }
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
        for (const QModelIndex &index : view().selectionModel()->selectedRows())
            rows.append(index.row());
        std::sort(rows.begin(), rows.end());
        return rows;
    }

    ScopedDateEnvironment m_environment;
    InMemoryPlatform memory{kFixedInstant};
    Platform platform = memory.platform();
    PreferencesUi ui = CreatePreferencesUi(platform, memory.windowCenter);
};

// --- layout, controls and the table model ---

TEST_F(PreferencesWindowTest, LayoutOffersTheNineTitlesAndEverySymbolAndEachControlWritesItsKey)
{
    QComboBox *titles = window().titleDisplayComboBox();
    ASSERT_EQ(titles->count(), 9);
    for (int i = 0; i < titles->count(); ++i)
        EXPECT_EQ(titles->itemText(i), kTitleDisplayNames[static_cast<std::size_t>(i)]);
    EXPECT_EQ(window().formatSymbolList()->count(), static_cast<int>(kFormatSymbols.size()));
    EXPECT_FALSE(window().deleteButton()->isEnabled());

    awake();
    EXPECT_EQ(window().versionLabel()->text(), u"Horalo 2.0"_s);
    EXPECT_TRUE(window().includeGMTDateTimeBox()->isChecked());
    EXPECT_TRUE(window().includeTitleIconBox()->isChecked());
    EXPECT_FALSE(window().useSymbolicNamesBox()->isChecked());
    EXPECT_EQ(titles->currentText(), u"Medium Date"_s);

    window().includeDateOnlyItemsBox()->click();
    EXPECT_EQ(stored(SettingsKey::IncludeDateOnlyItems), QVariant(true));
    window().includeTitleIconBox()->click();
    EXPECT_EQ(stored(SettingsKey::IncludeTitleIcon), QVariant(false));
    titles->setCurrentIndex(8);
    Q_EMIT titles->activated(8);
    EXPECT_EQ(stored(SettingsKey::LastTitleDisplayName), QVariant(u"GMT"_s));

    QListWidget *symbols = window().formatSymbolList();
    const QList<QListWidgetItem *> found =
        symbols->findItems(u"%B"_s, Qt::MatchStartsWith | Qt::MatchCaseSensitive);
    ASSERT_EQ(found.size(), 1);
    Q_EMIT symbols->itemClicked(found.first());
    EXPECT_EQ(window().formatCharacterEdit()->text(), u"%B"_s);
    EXPECT_EQ(memory.clipboard.contents(), QByteArrayLiteral("%B"));
    EXPECT_EQ(memory.distributedCenter.postCount(), 0);
}

TEST_F(PreferencesWindowTest, ModelShowsFormatsAndPreviews)
{
    awake({u"%Y-%m-%d"_s, u"plain"_s});
    ASSERT_EQ(model().rowCount(), 2);
    ASSERT_EQ(model().columnCount(), 2);
    EXPECT_EQ(model().headerData(0, Qt::Horizontal).toString(), u"Custom Date Format"_s);
    EXPECT_EQ(model().headerData(1, Qt::Horizontal).toString(), u"Preview"_s);
    EXPECT_EQ(model().data(model().index(0, 0)).toString(), u"%Y-%m-%d"_s);
    EXPECT_EQ(model().data(model().index(0, 1)).toString(), u"2006-03-10"_s);
    EXPECT_EQ(model().data(model().index(1, 1)).toString(), u"plain"_s);
    EXPECT_TRUE(model().flags(model().index(0, 0)) & Qt::ItemIsEditable);
    EXPECT_FALSE(model().flags(model().index(0, 1)) & Qt::ItemIsEditable);
    EXPECT_FALSE(model().flags(model().index(0, 0)) & Qt::ItemIsDropEnabled);
    EXPECT_TRUE(model().flags(QModelIndex()) & Qt::ItemIsDropEnabled);
}

TEST_F(PreferencesWindowTest, AListChangedElsewhereKeepsTheUsersTypingInItsRow)
{
    awake({u"%Y"_s, u"%m"_s});
    window().makeKeyAndOrderFront();
    ASSERT_NE(typeInCell(1, u"%H:"_s), nullptr);

    // Another program rewrites the list while the user types.
    memory.store.setAppValue(SettingsKey::CustomDates, QVariantList{u"%d"_s, u"%m"_s, u"%j"_s},
                             AppIdentifier);
    memory.storeWatcher.reportOutsideChange();
    memory.storeWatcher.checkNow();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    ASSERT_EQ(model().rowCount(), 3);
    EXPECT_EQ(model().data(model().index(0, 0)).toString(), u"%d"_s);
    QLineEdit *const reopened = view().viewport()->findChild<QLineEdit *>();
    ASSERT_NE(reopened, nullptr) << "the edit was closed by the reload";
    EXPECT_EQ(reopened->text(), u"%H:"_s);
    EXPECT_EQ(model().data(model().index(1, 1)).toString(), u"14:"_s);

    // Committed with Return, the typing lands in the list as it now stands.
    QTest::keyClick(reopened, Qt::Key_Return);
    QCoreApplication::processEvents(); // the delegate commits on the next turn of the loop
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(storedFormats(), (QStringList{u"%d"_s, u"%H:"_s, u"%j"_s}));
    EXPECT_EQ(view().viewport()->findChild<QLineEdit *>(), nullptr);
    EXPECT_EQ(memory.distributedCenter.postCount(), 0);
    window().close();
}

// --- dragging, adding and deleting ---

TEST_F(PreferencesWindowTest, DragDataRoundTripsThroughTheDropAndOtherDropsAreRefused)
{
    awake({u"A"_s, u"B"_s, u"C"_s, u"D"_s, u"E"_s});
    std::unique_ptr<QMimeData> data(model().mimeData(rowIndexes({0, 1})));
    ASSERT_TRUE(data);
    EXPECT_EQ(data->formats(), QStringList{u"MyPrivateTableViewDataType"_s});
    EXPECT_EQ(model().mimeTypes(), QStringList{u"MyPrivateTableViewDataType"_s});
    EXPECT_TRUE(model().canDropMimeData(data.get(), Qt::MoveAction, 4, 0, QModelIndex()));
    EXPECT_FALSE(model().canDropMimeData(data.get(), Qt::MoveAction, -1, -1, model().index(2, 0)));
    EXPECT_TRUE(model().dropMimeData(data.get(), Qt::MoveAction, 4, 0, QModelIndex()));
    EXPECT_EQ(storedFormats(), (QStringList{u"C"_s, u"D"_s, u"A"_s, u"B"_s, u"E"_s}));
    EXPECT_EQ(model().data(model().index(2, 0)).toString(), u"A"_s);
    EXPECT_EQ(selectedRows(), (QList<int>{2, 3}));
    EXPECT_TRUE(window().deleteButton()->isEnabled());

    // Below the last row is a drop at the end.
    data.reset(model().mimeData(rowIndexes({0})));
    EXPECT_TRUE(model().dropMimeData(data.get(), Qt::MoveAction, -1, -1, QModelIndex()));
    EXPECT_EQ(storedFormats(), (QStringList{u"D"_s, u"A"_s, u"B"_s, u"E"_s, u"C"_s}));

    // Foreign data, and any drop onto a row, are refused.
    QMimeData text;
    text.setText(u"A"_s);
    EXPECT_FALSE(model().canDropMimeData(&text, Qt::MoveAction, 0, 0, QModelIndex()));
    EXPECT_FALSE(model().dropMimeData(&text, Qt::MoveAction, 0, 0, QModelIndex()));
    EXPECT_FALSE(model().dropMimeData(data.get(), Qt::MoveAction, -1, -1, model().index(0, 0)));
    EXPECT_EQ(storedFormats(), (QStringList{u"D"_s, u"A"_s, u"B"_s, u"E"_s, u"C"_s}));
}

TEST_F(PreferencesWindowTest, AddAppendsTheDefaultFormatAndDeleteFollowsTheSelection)
{
    awake({u"A"_s, u"B"_s});
    window().addButton()->click();
    EXPECT_EQ(model().rowCount(), 3);
    EXPECT_EQ(storedFormats(), (QStringList{u"A"_s, u"B"_s, u"%a %d %b, %Y %I:%M:%S %p (%z)"_s}));
    EXPECT_TRUE(selectedRows().isEmpty());

    QPushButton *deleteButton = window().deleteButton();
    view().selectRow(1);
    EXPECT_TRUE(deleteButton->isEnabled());
    view().clearSelection();
    EXPECT_FALSE(deleteButton->isEnabled());
    for (const int row : {0, 2})
        view().selectionModel()->select(model().index(row, 0),
                                        QItemSelectionModel::Select | QItemSelectionModel::Rows);
    deleteButton->click();
    EXPECT_EQ(storedFormats(), QStringList{u"B"_s});
    EXPECT_EQ(model().rowCount(), 1);
    EXPECT_FALSE(deleteButton->isEnabled());

    // The Delete key on the table does the same.
    view().selectRow(0);
    QTest::keyClick(&view(), Qt::Key_Delete);
    EXPECT_TRUE(storedFormats().isEmpty());
}

// --- closing ---

TEST_F(PreferencesWindowTest, ClosingPostsWindowWillCloseAndSaves)
{
    awake();
    QList<Window *> closing;
    memory.windowCenter.addWindowWillCloseObserver([&](Window *w) { closing.append(w); });
    window().close(); // not shown: nothing closes
    EXPECT_TRUE(closing.isEmpty());

    window().makeKeyAndOrderFront();
    EXPECT_TRUE(window().isVisible());
    window().close();
    EXPECT_EQ(closing, QList<Window *>{&window()});
    EXPECT_FALSE(window().isVisible());
    EXPECT_EQ(memory.distributedCenter.postCount(), 1);

    window().makeKeyAndOrderFront();
    QTest::keyClick(&window(), Qt::Key_Escape);
    EXPECT_EQ(closing.size(), 2);
    EXPECT_FALSE(window().isVisible());
    EXPECT_EQ(memory.distributedCenter.postCount(), 2);
}

// --- fitting small screens ---

TEST_F(PreferencesWindowTest, FitsASmallScreenAndShowsEverythingAtItsDefaultSize)
{
    awake({kDefaultCustomDateFormat});
    // Whatever the screen, the window can be made this small with every control on it.
    const QSize minimum = window().minimumSizeHint().expandedTo(window().minimumSize());
    EXPECT_LE(minimum.width(), 760);
    EXPECT_LE(minimum.height(), 480);

    const QSize screen = window().screen()->availableGeometry().size();
    const QSize opened = window().defaultSize();
    EXPECT_LE(opened.width(), screen.width());
    EXPECT_LE(opened.height(), screen.height());

    window().resize(opened);
    window().makeKeyAndOrderFront();
    QCoreApplication::processEvents();
    // The Format and Preview columns share the width, and the default format's preview has
    // room for all of its text.
    const QString preview = model().data(model().index(0, 1)).toString();
    const int needed =
        view().fontMetrics().horizontalAdvance(preview) +
        2 * view().style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, &view()) + 2;
    EXPECT_LE(std::abs(view().horizontalHeader()->sectionSize(0) -
                       view().horizontalHeader()->sectionSize(1)),
              1);
    EXPECT_GE(view().columnWidth(1), needed) << preview.toStdString();
    // Every symbol shows without scrolling the list.
    EXPECT_EQ(window().formatSymbolList()->verticalScrollBar()->maximum(), 0);
    // Room to spare: the window's frame fits on the screen with a margin.
    EXPECT_LE(window().frameGeometry().width(), screen.width() * 95 / 100);
    EXPECT_LE(window().frameGeometry().height(), screen.height() * 95 / 100);
    window().close();
}

TEST_F(PreferencesWindowTest, SymbolListHoldsEveryConversionTheRendererKnows)
{
    QStringList listed;
    for (int i = 0; i < window().formatSymbolList()->count(); ++i)
        listed.append(window().formatSymbolList()->item(i)->text().left(2));
    // A conversion is what the renderer does not copy as it stands.
    const CalendarDate date = CalendarDateWithTimeIntervalSinceReferenceDate(kFixedInstant);
    for (char16_t c = 0x21; c < 0x7f; ++c) {
        const QString symbol = u"%"_s + QChar(c);
        if (c >= u'0' && c <= u'9')
            continue; // width digits, below
        const QString rendered = DescriptionWithCalendarFormat(date, symbol, nullptr);
        EXPECT_EQ(rendered != symbol, listed.contains(symbol)) << symbol.toStdString();
    }
    EXPECT_EQ(QSet<QString>(listed.begin(), listed.end()).size(), listed.size()) << "no repeats";
    // The width digit: listed, and doing what its description says.
    const auto width = std::find_if(kFormatSymbols.begin(), kFormatSymbols.end(),
                                    [](const FormatSymbol &s) { return s.symbol == u"%1"_s; });
    ASSERT_NE(width, kFormatSymbols.end());
    EXPECT_TRUE(width->description.contains(u"%1d is 9"_s));
    EXPECT_EQ(DescriptionWithCalendarFormat(
                  CalendarDateWithTimeIntervalSinceReferenceDate(kFixedInstant - 86400), // the 9th
                  u"%1d|%d"_s, nullptr),
              u"9|09"_s);
}

// --- the keyboard ---

TEST_F(PreferencesWindowTest, TabWalksEveryControlInReadingOrderAndLeavesTheTableInOneStep)
{
    awake({u"A"_s, u"B"_s});
    view().selectRow(0); // so that Delete is enabled and takes part
    window().makeKeyAndOrderFront();
    QApplication::setActiveWindow(&window());
    const QList<QWidget *> expected = {
        window().useSymbolicNamesBox(),
        window().includeGMTDateTimeBox(),
        window().includeDateOnlyItemsBox(),
        window().includeTimeOnlyItemsBox(),
        window().titleDisplayComboBox(),
        window().includeTitleIconBox(),
        window().initDateTimeChooserToCurrentTimeWhenOpenedBox(),
        window().dynamicDateTimeChooserBox(),
        window().autostartBox(),
        &view(),
        window().addButton(),
        window().deleteButton(),
        window().formatCharacterEdit(),
        window().formatSymbolList(),
    };
    expected.first()->setFocus(Qt::TabFocusReason);
    ASSERT_EQ(QApplication::focusWidget(), expected.first());
    for (qsizetype i = 1; i < expected.size(); ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(QApplication::focusWidget(), expected.at(i)) << "stop " << i;
    }
    // Around the end and back again.
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), expected.first());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ShiftModifier);
    EXPECT_EQ(QApplication::focusWidget(), expected.last());
    for (qsizetype i = expected.size() - 2; i >= 0; --i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ShiftModifier);
        EXPECT_EQ(QApplication::focusWidget(), expected.at(i)) << "stop " << i;
    }

    // Inside the table the arrow keys move from row to row.
    view().setFocus(Qt::TabFocusReason);
    view().setCurrentIndex(model().index(0, 0));
    QTest::keyClick(&view(), Qt::Key_Down);
    EXPECT_EQ(view().currentIndex().row(), 1);
    EXPECT_EQ(QApplication::focusWidget(), &view());
    window().close();
}

TEST_F(PreferencesWindowTest, PreviewFollowsEachKeystrokeAndTheListChangesOnlyOnCommit)
{
    awake({u"%Y"_s, u"%m"_s});
    window().makeKeyAndOrderFront();
    QApplication::setActiveWindow(&window());
    const QModelIndex preview = model().index(1, 1);
    QList<QString> seen;
    QObject::connect(&model(), &QAbstractItemModel::dataChanged, &model(),
                     [&](const QModelIndex &from, const QModelIndex &to) {
                         if (from.row() <= 1 && to.row() >= 1 && to.column() >= 1)
                             seen.append(model().data(preview).toString());
                     });

    QLineEdit *editor = typeInCell(1, u"%H:"_s);
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(seen, (QList<QString>{u"%"_s, u"14"_s, u"14:"_s}));
    EXPECT_EQ(model().data(preview).toString(), u"14:"_s);
    // Typing stores nothing; the other row's preview is its own.
    EXPECT_EQ(storedFormats(), (QStringList{u"%Y"_s, u"%m"_s}));
    EXPECT_EQ(model().data(model().index(0, 1)).toString(), u"2006"_s);

    // Escape abandons the edit: the preview goes back to the stored format.
    QTest::keyClick(editor, Qt::Key_Escape);
    QCoreApplication::processEvents();
    EXPECT_EQ(model().data(preview).toString(), u"03"_s);
    EXPECT_EQ(storedFormats(), (QStringList{u"%Y"_s, u"%m"_s}));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    // Tab commits and leaves the table for the control after it.
    editor = typeInCell(1, u"%M"_s);
    ASSERT_NE(editor, nullptr);
    QTest::keyClick(editor, Qt::Key_Tab);
    QCoreApplication::processEvents();
    EXPECT_EQ(storedFormats(), (QStringList{u"%Y"_s, u"%M"_s}));
    EXPECT_EQ(model().data(preview).toString(), u"31"_s);
    EXPECT_EQ(QApplication::focusWidget(), window().addButton());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(view().viewport()->findChild<QLineEdit *>(), nullptr); // the editor is closed
    window().close();
}

// --- starting with the session ---

TEST_F(PreferencesWindowTest, TheAutostartBoxFollowsTheEntryWritesItAndShowsFailures)
{
    const QString folder = AutostartEntry::DefaultConfigHome() + u"/autostart"_s;
    const QString entryPath = folder + u"/org.horalo.Horalo.desktop"_s;
    QDir(folder).removeRecursively();
    awake();
    window().makeKeyAndOrderFront();
    QCheckBox *box = window().autostartBox();
    EXPECT_EQ(box->text().remove(u'&'), u"Start Horalo when you log in"_s);
    EXPECT_FALSE(box->isChecked());

    box->click();
    EXPECT_TRUE(box->isChecked());
    QFile entry(entryPath);
    ASSERT_TRUE(entry.open(QIODevice::ReadOnly));
    const QByteArray text = entry.readAll();
    entry.close();
    EXPECT_TRUE(text.contains("X-GNOME-Autostart-enabled=true\n"));
    EXPECT_TRUE(text.contains("X-KDE-autostart-after=panel\n"));
    EXPECT_FALSE(window().autostartErrorLabel()->isVisible());
    box->click();
    EXPECT_FALSE(box->isChecked());
    EXPECT_FALSE(QFile::exists(entryPath));
    // Not a setting: the store saw nothing and nobody was told.
    EXPECT_TRUE(memory.ownStore.log.isEmpty());
    EXPECT_EQ(memory.distributedCenter.postCount(), 0);
    window().close();

    // The box reads the file each time the window opens.
    ASSERT_TRUE(entry.open(QIODevice::WriteOnly));
    entry.write("[Desktop Entry]\nType=Application\nExec=horalo\n");
    entry.close();
    window().makeKeyAndOrderFront();
    EXPECT_TRUE(box->isChecked());
    window().close();

    // Now a folder stands where the entry goes: it cannot be written, the box stays off and
    // the window says why.
    ASSERT_TRUE(QFile::remove(entryPath));
    ASSERT_TRUE(QDir().mkpath(entryPath + u"/inside"_s));
    window().makeKeyAndOrderFront();
    EXPECT_FALSE(box->isChecked());
    box->click();
    EXPECT_FALSE(box->isChecked());
    EXPECT_TRUE(window().autostartErrorLabel()->isVisible());
    EXPECT_TRUE(window().autostartErrorLabel()->text().contains(entryPath));
    window().close();
    QDir(folder).removeRecursively();
}

} // namespace
