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
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTest>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

namespace {

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
                                  QStringLiteral("/config")));
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
    QLineEdit *const editor = typeInCell(1, QStringLiteral("%H:%M"));
    ASSERT_NE(editor, nullptr);
    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::processEvents(); // the delegate commits on the next turn of the loop

    EXPECT_EQ(storedFormats(), (QStringList{QStringLiteral("%Y"), QStringLiteral("%H:%M")}));
    EXPECT_EQ(model().data(model().index(1, 1)).toString(), QStringLiteral("14:31"));
    EXPECT_EQ(memory.distributedCenter.postCount(), 0);
}

TEST_F(PreferencesWindowTest, AListChangedElsewhereKeepsTheUsersTypingInItsRow)
{
    awake({QStringLiteral("%Y"), QStringLiteral("%m")});
    window().makeKeyAndOrderFront();
    ASSERT_NE(typeInCell(1, QStringLiteral("%H:")), nullptr);

    // Another program rewrites the list while the user types.
    memory.store.setAppValue(
        SettingsKey::CustomDates,
        QVariantList{QStringLiteral("%d"), QStringLiteral("%m"), QStringLiteral("%j")},
        AppIdentifier);
    memory.storeWatcher.reportOutsideChange();
    memory.storeWatcher.checkNow();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    ASSERT_EQ(model().rowCount(), 3);
    EXPECT_EQ(model().data(model().index(0, 0)).toString(), QStringLiteral("%d"));
    QLineEdit *const reopened = view().viewport()->findChild<QLineEdit *>();
    ASSERT_NE(reopened, nullptr) << "the edit was closed by the reload";
    EXPECT_EQ(reopened->text(), QStringLiteral("%H:"));
    EXPECT_EQ(model().data(model().index(1, 1)).toString(), QStringLiteral("14:"));

    // Committed, the typing lands in the list as it now stands.
    QTest::keyClick(reopened, Qt::Key_Return);
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(storedFormats(),
              (QStringList{QStringLiteral("%d"), QStringLiteral("%H:"), QStringLiteral("%j")}));
    EXPECT_EQ(view().viewport()->findChild<QLineEdit *>(), nullptr);
    window().close();
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
        const QString symbol = QStringLiteral("%") + QChar(c);
        if (c >= u'0' && c <= u'9')
            continue; // width digits, below
        const QString rendered = DescriptionWithCalendarFormat(date, symbol, nullptr);
        EXPECT_EQ(rendered != symbol, listed.contains(symbol)) << symbol.toStdString();
    }
    // The width digit: listed, and doing what its description says.
    const auto width =
        std::find_if(kFormatSymbols.begin(), kFormatSymbols.end(),
                     [](const FormatSymbol &s) { return s.symbol == QStringLiteral("%1"); });
    ASSERT_NE(width, kFormatSymbols.end());
    EXPECT_TRUE(width->description.contains(QStringLiteral("%1d is 9")));
    EXPECT_EQ(DescriptionWithCalendarFormat(
                  CalendarDateWithTimeIntervalSinceReferenceDate(kFixedInstant - 86400), // the 9th
                  QStringLiteral("%1d|%d"), nullptr),
              QStringLiteral("9|09"));
}

// --- the keyboard ---

TEST_F(PreferencesWindowTest, TabWalksEveryControlInReadingOrderAndLeavesTheTableInOneStep)
{
    awake({QStringLiteral("A"), QStringLiteral("B")});
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
    awake({QStringLiteral("%Y"), QStringLiteral("%m")});
    window().makeKeyAndOrderFront();
    QApplication::setActiveWindow(&window());
    const QModelIndex preview = model().index(1, 1);
    QList<QString> seen;
    QObject::connect(&model(), &QAbstractItemModel::dataChanged, &model(),
                     [&](const QModelIndex &from, const QModelIndex &to) {
                         if (from.row() <= 1 && to.row() >= 1 && to.column() >= 1)
                             seen.append(model().data(preview).toString());
                     });

    QLineEdit *editor = typeInCell(1, QStringLiteral("%H:"));
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(seen,
              (QList<QString>{QStringLiteral("%"), QStringLiteral("14"), QStringLiteral("14:")}));
    EXPECT_EQ(model().data(preview).toString(), QStringLiteral("14:"));
    // Typing stores nothing; the other row's preview is its own.
    EXPECT_EQ(storedFormats(), (QStringList{QStringLiteral("%Y"), QStringLiteral("%m")}));
    EXPECT_EQ(model().data(model().index(0, 1)).toString(), QStringLiteral("2006"));

    // Escape abandons the edit: the preview goes back to the stored format.
    QTest::keyClick(editor, Qt::Key_Escape);
    QCoreApplication::processEvents();
    EXPECT_EQ(model().data(preview).toString(), QStringLiteral("03"));
    EXPECT_EQ(storedFormats(), (QStringList{QStringLiteral("%Y"), QStringLiteral("%m")}));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    // Tab commits and leaves the table for the control after it.
    editor = typeInCell(1, QStringLiteral("%M"));
    ASSERT_NE(editor, nullptr);
    QTest::keyClick(editor, Qt::Key_Tab);
    QCoreApplication::processEvents();
    EXPECT_EQ(storedFormats(), (QStringList{QStringLiteral("%Y"), QStringLiteral("%M")}));
    EXPECT_EQ(model().data(preview).toString(), QStringLiteral("31"));
    EXPECT_EQ(QApplication::focusWidget(), window().addButton());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(view().viewport()->findChild<QLineEdit *>(), nullptr); // the editor is closed
    window().close();
}

// --- starting with the session ---

class AutostartBoxTest : public PreferencesWindowTest
{
protected:
    AutostartBoxTest() { QDir(autostartDir()).removeRecursively(); }
    ~AutostartBoxTest() override { QDir(autostartDir()).removeRecursively(); }
    static QString autostartDir()
    {
        return AutostartEntry::DefaultConfigHome() + QStringLiteral("/autostart");
    }
    static QString entryPath()
    {
        return autostartDir() + QStringLiteral("/org.horalo.Horalo.desktop");
    }
};

TEST_F(AutostartBoxTest, TheBoxWritesAndRemovesTheEntryAndTouchesNoSetting)
{
    awake();
    window().makeKeyAndOrderFront();
    QCheckBox *box = window().autostartBox();
    EXPECT_EQ(box->text().remove(u'&'), QStringLiteral("Start Horalo when you log in"));
    EXPECT_FALSE(box->isChecked());

    box->click();
    EXPECT_TRUE(box->isChecked());
    QFile entry(entryPath());
    ASSERT_TRUE(entry.open(QIODevice::ReadOnly));
    const QByteArray text = entry.readAll();
    EXPECT_TRUE(text.contains("X-GNOME-Autostart-enabled=true\n"));
    EXPECT_TRUE(text.contains("X-KDE-autostart-after=panel\n"));
    EXPECT_FALSE(window().autostartErrorLabel()->isVisible());

    box->click();
    EXPECT_FALSE(box->isChecked());
    EXPECT_FALSE(QFile::exists(entryPath()));
    // Not a setting: the store saw nothing and nobody was told.
    EXPECT_TRUE(memory.ownStore.log.isEmpty());
    EXPECT_EQ(memory.distributedCenter.postCount(), 0);
    window().close();
}

TEST_F(AutostartBoxTest, TheBoxFollowsTheFileEachTimeTheWindowOpensAndShowsFailures)
{
    awake();
    QDir().mkpath(autostartDir());
    {
        QFile entry(entryPath());
        ASSERT_TRUE(entry.open(QIODevice::WriteOnly));
        entry.write("[Desktop Entry]\nType=Application\nExec=horalo\n");
    }
    window().makeKeyAndOrderFront();
    EXPECT_TRUE(window().autostartBox()->isChecked());
    window().close();

    // Now a folder stands where the entry goes: it cannot be written, the box stays off and
    // the window says why.
    ASSERT_TRUE(QFile::remove(entryPath()));
    ASSERT_TRUE(QDir().mkpath(entryPath() + QStringLiteral("/inside")));
    window().makeKeyAndOrderFront();
    EXPECT_FALSE(window().autostartBox()->isChecked());
    window().autostartBox()->click();
    EXPECT_FALSE(window().autostartBox()->isChecked());
    EXPECT_TRUE(window().autostartErrorLabel()->isVisible());
    EXPECT_TRUE(window().autostartErrorLabel()->text().contains(entryPath()));
    window().close();
}

} // namespace
