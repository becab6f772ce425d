// The custom formats table: adding, deleting and editing rows, the preview, the format-symbol
// list, and reordering by dragging with its deliberate moves.

#include "PrefPaneFixture.h"
#include "datetext/DateText.h"
#include "datetext/DateTextTestSupport.h"
#include "datetext/LocaleDefaults.h"
#include "prefpane/PrefPaneLayout.h"

#include <QDataStream>
#include <QIODevice>

namespace {

const QString A = QStringLiteral("A");
const QString B = QStringLiteral("B");
const QString C = QStringLiteral("C");
const QString D = QStringLiteral("D");
const QString E = QStringLiteral("E");
const QString F = QStringLiteral("F");

const QStringList kWriteAndSync = {QStringLiteral("set Custom Dates"), QStringLiteral("sync")};

// --- add, delete, edit ---

using CustomDatesEditing = PrefPaneTest;

TEST_F(CustomDatesEditing, AddAppendsTheDefaultFormatUnselected)
{
    awake();
    const int reloads = table().reloadCount();
    controls.addCusomDateButton.click();
    EXPECT_EQ(pane->customDateFormats(), QStringList{kDefaultCustomDateFormat});
    EXPECT_EQ(kDefaultCustomDateFormat, QStringLiteral("%a %d %b, %Y %I:%M:%S %p (%z)"));
    EXPECT_EQ(storedFormats(), QStringList{kDefaultCustomDateFormat});
    EXPECT_EQ(storeLog(), kWriteAndSync);
    EXPECT_GT(table().reloadCount(), reloads);
    EXPECT_TRUE(table().selectedRowIndexes().empty());

    controls.addCusomDateButton.click();
    EXPECT_EQ(storedFormats(), (QStringList{kDefaultCustomDateFormat, kDefaultCustomDateFormat}));
    EXPECT_EQ(deliveredBroadcasts(), 0);
}

TEST_F(CustomDatesEditing, DeleteRemovesEverySelectedRowAtOnce)
{
    putFormats({A, B, C, D});
    awake();
    table().userSelectsRows({0, 2});
    EXPECT_TRUE(controls.deleteCustomDateButton.isEnabled());
    storeLog().clear();
    controls.deleteCustomDateButton.click();
    EXPECT_EQ(pane->customDateFormats(), (QStringList{B, D}));
    EXPECT_EQ(storedFormats(), (QStringList{B, D}));
    EXPECT_EQ(storeLog(), kWriteAndSync);
    // The reload drops the selection, and the button follows it.
    EXPECT_TRUE(table().selectedRowIndexes().empty());
    EXPECT_FALSE(controls.deleteCustomDateButton.isEnabled());
}

TEST_F(CustomDatesEditing, DeleteWithoutSelectionStillRewrites)
{
    putFormats({A, B});
    awake();
    pane->deleteCustomDate(nullptr);
    EXPECT_EQ(pane->customDateFormats(), (QStringList{A, B}));
    EXPECT_EQ(storeLog(), kWriteAndSync);
}

TEST_F(CustomDatesEditing, DeleteButtonFollowsOnlyThisTablesSelection)
{
    putFormats({A, B, C});
    awake();
    EXPECT_FALSE(controls.deleteCustomDateButton.isEnabled()); // as laid out
    table().userSelectsRows({1});
    EXPECT_TRUE(controls.deleteCustomDateButton.isEnabled());

    InMemoryTableView otherTable;
    pane->tableViewSelectionDidChange(&otherTable); // nothing selected there
    EXPECT_TRUE(controls.deleteCustomDateButton.isEnabled());

    table().userSelectsRows({});
    EXPECT_FALSE(controls.deleteCustomDateButton.isEnabled());
    EXPECT_FALSE(controls.deleteCustomDateButton.click());
    EXPECT_EQ(pane->customDateFormats().size(), 3);
}

TEST_F(CustomDatesEditing, EditReplacesTheRowWhateverTheColumn)
{
    putFormats({A, B, C});
    awake();
    table().userEditsCell(kCustomDateFormatColumn, 1, QStringLiteral("%Y"));
    EXPECT_EQ(storedFormats(), (QStringList{A, QStringLiteral("%Y"), C}));
    EXPECT_EQ(storeLog(), kWriteAndSync);
    // The preview column must never be editable in a layout: its edit would land here too.
    table().userEditsCell(kPreviewColumn, 2, QStringLiteral("typed"));
    EXPECT_EQ(storedFormats(), (QStringList{A, QStringLiteral("%Y"), QStringLiteral("typed")}));
}

TEST_F(CustomDatesEditing, NonStringOrOutOfRangeEditChangesNothingButRewrites)
{
    putFormats({A, B});
    awake();
    table().userEditsCell(kCustomDateFormatColumn, 0, QVariant(qlonglong(42)));
    table().userEditsCell(kCustomDateFormatColumn, 0, QVariant());
    table().userEditsCell(kCustomDateFormatColumn, 2, QStringLiteral("X"));
    table().userEditsCell(kCustomDateFormatColumn, -1, QStringLiteral("X"));
    EXPECT_EQ(pane->customDateFormats(), (QStringList{A, B}));
    EXPECT_EQ(storeLog(), kWriteAndSync + kWriteAndSync + kWriteAndSync + kWriteAndSync);
}

TEST_F(CustomDatesEditing, CellValues)
{
    putFormats({A});
    awake();
    EXPECT_EQ(table().cellValue(kCustomDateFormatColumn, 0), QVariant(A));
    EXPECT_FALSE(table().cellValue(QStringLiteral("Other"), 0).isValid());
    EXPECT_FALSE(table().cellValue(kCustomDateFormatColumn, 1).isValid());
    EXPECT_FALSE(table().cellValue(kPreviewColumn, -1).isValid());
}

TEST_F(CustomDatesEditing, UpdateReloadsFromTheStoreOnlyWhenItHoldsAList)
{
    putFormats({A});
    awake();
    putFormats({B, C});
    storeLog().clear();
    pane->updateCustomDatesTable();
    EXPECT_EQ(storeLog().first(), QStringLiteral("sync"));
    EXPECT_EQ(table().columnValues(kCustomDateFormatColumn), (QStringList{B, C}));

    put(SettingsKey::CustomDates, QStringLiteral("not a list"));
    pane->updateCustomDatesTable();
    EXPECT_EQ(pane->customDateFormats(), (QStringList{B, C}));
    memory.store.setAppValue(SettingsKey::CustomDates, QVariant(), AppIdentifier);
    pane->updateCustomDatesTable();
    EXPECT_EQ(pane->customDateFormats(), (QStringList{B, C}));

    put(SettingsKey::CustomDates, QVariantList{});
    pane->updateCustomDatesTable();
    EXPECT_TRUE(pane->customDateFormats().isEmpty());
}

// --- the preview ---

class CustomDatesPreview : public PrefPaneTest
{
protected:
    void SetUp() override
    {
        memory.userDefaults.setRegistrationProvider(LocaleDefaultsRegistration,
                                                    LocaleDefaultsKeys());
    }
    void TearDown() override { g_selectedDateTime = 0; }
};

TEST_F(CustomDatesPreview, RendersTheCurrentMomentWithLocalisedNames)
{
    putFormats({QStringLiteral("%Y-%m-%d %H:%M:%S"), QStringLiteral("%A, %B %e"),
                QStringLiteral("no conversion here")});
    awake();
    EXPECT_EQ(
        table().columnValues(kPreviewColumn),
        (QStringList{QStringLiteral("2006-03-10 14:31:47"), QStringLiteral("Friday, March 10"),
                     QStringLiteral("no conversion here")}));
}

TEST_F(CustomDatesPreview, IsRecomputedAtEveryAskAndIgnoresTheChooser)
{
    putFormats({QStringLiteral("%H:%M:%S")});
    awake();
    g_selectedDateTime = kFixedInstant - 86400 * 30;
    EXPECT_EQ(table().cellValue(kPreviewColumn, 0), QVariant(QStringLiteral("14:31:47")));
    memory.clock.advance(2);
    EXPECT_EQ(table().cellValue(kPreviewColumn, 0), QVariant(QStringLiteral("14:31:49")));
}

// --- the format-symbol list ---

using FormatSymbols = PrefPaneTest;

TEST_F(FormatSymbols, ChoosingAnEntryShowsAndCopiesExactlyItsSymbol)
{
    awake();
    for (std::size_t i = 0; i < kFormatSymbols.size(); ++i) {
        SCOPED_TRACE(kFormatSymbols[i].symbol.toStdString());
        controls.chooseFormatSymbol(i);
        EXPECT_EQ(controls.formatCharacterTextField.stringValue(), kFormatSymbols[i].symbol);
        EXPECT_EQ(memory.clipboard.contents(), kFormatSymbols[i].symbol.toUtf8());
    }
    EXPECT_EQ(memory.clipboard.writeCount(), static_cast<int>(kFormatSymbols.size()));
}

TEST_F(FormatSymbols, TheListCoversEveryConversionOfTheNotation)
{
    QStringList symbols;
    for (const FormatSymbol &entry : kFormatSymbols) {
        EXPECT_EQ(entry.title().left(2), entry.symbol);
        EXPECT_GT(entry.title().size(), 3) << "a description follows the symbol";
        symbols.append(entry.symbol);
    }
    const QString conversions = QStringLiteral("%aAbBcdeFHIjmMpSwxXyYZz");
    for (const QChar conversion : conversions) {
        const QString symbol = QStringLiteral("%") + conversion;
        EXPECT_TRUE(symbols.contains(symbol)) << symbol.toStdString();
    }
    symbols.removeDuplicates();
    EXPECT_EQ(symbols.size(), static_cast<qsizetype>(kFormatSymbols.size()));
}

TEST_F(FormatSymbols, AClipboardThatCannotBeReachedIsLeftAlone)
{
    awake();
    memory.clipboard.setContents(QByteArrayLiteral("before"));
    memory.clipboard.setUnreachableStatus(-25);
    pane->selectFormatSymbol(TitledItem(QStringLiteral("%d  day of the month")));
    EXPECT_EQ(controls.formatCharacterTextField.stringValue(), QStringLiteral("%d"));
    EXPECT_EQ(memory.clipboard.contents(), QByteArrayLiteral("before"));
    EXPECT_EQ(pane->putStringOnClipboard(QStringLiteral("x")), -25);
}

TEST_F(FormatSymbols, ClipboardGetsUtf8WithoutTerminator)
{
    awake();
    EXPECT_EQ(pane->putStringOnClipboard(QStringLiteral("%é")), 0);
    EXPECT_EQ(memory.clipboard.contents(), QByteArray("%\xC3\xA9"));
}

// --- MoveArrayItem ---

TEST(MoveArrayItem, MovesOneElementShiftingTheRun)
{
    const QStringList original{A, B, C, D, E};
    const struct
    {
        qint32 from;
        qint32 to;
        QStringList expected;
    } cases[] = {
        {0, 4, {B, C, D, E, A}}, {4, 0, {E, A, B, C, D}}, {1, 3, {A, C, D, B, E}},
        {3, 1, {A, D, B, C, E}}, {0, 1, {B, A, C, D, E}}, {4, 3, {A, B, C, E, D}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << c.from << " -> " << c.to);
        QStringList list = original;
        EXPECT_EQ(MoveArrayItem(list, c.from, c.to), 0);
        EXPECT_EQ(list, c.expected);
    }
}

TEST(MoveArrayItem, RefusesEqualAndOutOfRangeIndexes)
{
    const QStringList original{A, B, C, D, E};
    const std::pair<qint32, qint32> refused[] = {
        {2, 2}, {-1, 3}, {1, 5}, {5, 1}, {0, -1}, {std::numeric_limits<qint32>::min(), 0},
    };
    for (const auto &[from, to] : refused) {
        QStringList list = original;
        EXPECT_EQ(MoveArrayItem(list, from, to), 0);
        EXPECT_EQ(list, original) << from << " -> " << to;
    }
    QStringList empty;
    EXPECT_EQ(MoveArrayItem(empty, 0, 0), 0);
    EXPECT_EQ(MoveArrayItem(empty, 0, 1), 0);
    EXPECT_TRUE(empty.isEmpty());
}

// --- the private drag data ---

QByteArray Archive(quint32 magic, quint16 version, quint32 count, const QList<quint32> &rows)
{
    QByteArray data;
    QDataStream stream(&data, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_6_0);
    stream << magic << version << count;
    for (const quint32 row : rows)
        stream << row;
    return data;
}

TEST(RowIndexArchive, RoundTrips)
{
    for (const IndexSet &rows : {IndexSet{}, IndexSet{0}, IndexSet{1, 2, 7},
                                 IndexSet{0, std::numeric_limits<int>::max()}}) {
        EXPECT_EQ(UnarchiveRowIndexes(ArchiveRowIndexes(rows)), rows);
    }
}

TEST(RowIndexArchive, RefusesWhatItCouldNotHaveWritten)
{
    const QByteArray good = ArchiveRowIndexes({1, 3});
    ASSERT_EQ(good, Archive(0x48524958, 1, 2, {1, 3})) << "the layout these cases forge";

    EXPECT_FALSE(UnarchiveRowIndexes(QByteArray()));
    EXPECT_FALSE(UnarchiveRowIndexes(QByteArrayLiteral("1,3")));
    EXPECT_FALSE(UnarchiveRowIndexes(good.left(good.size() - 1)));
    EXPECT_FALSE(UnarchiveRowIndexes(good + '\0'));
    EXPECT_FALSE(UnarchiveRowIndexes(Archive(0x48524959, 1, 2, {1, 3})));
    EXPECT_FALSE(UnarchiveRowIndexes(Archive(0x48524958, 2, 2, {1, 3})));
    EXPECT_FALSE(UnarchiveRowIndexes(Archive(0x48524958, 1, 3, {1, 3})));
    EXPECT_FALSE(UnarchiveRowIndexes(Archive(0x48524958, 1, 0xFFFFFFFF, {1, 3})));
    EXPECT_FALSE(UnarchiveRowIndexes(Archive(0x48524958, 1, 2, {3, 1})));
    EXPECT_FALSE(UnarchiveRowIndexes(Archive(0x48524958, 1, 2, {3, 3})));
    EXPECT_FALSE(UnarchiveRowIndexes(Archive(0x48524958, 1, 1, {0x80000000u})));
}

// --- dragging rows ---

class CustomDatesDrop : public PrefPaneTest
{
protected:
    // Loads the list, drags the rows, drops them above the row.
    bool drag(const QStringList &formats, const IndexSet &rows, int dropRow)
    {
        putFormats(formats);
        awake();
        return table().userDragsRows(rows, dropRow);
    }
    QStringList list() const { return pane->customDateFormats(); }
    IndexSet selection() { return table().selectedRowIndexes(); }
};

TEST_F(CustomDatesDrop, DraggingFromTheTopMovesAsExpected)
{
    EXPECT_TRUE(drag({A, B, C, D, E}, {0, 1}, 4));
    EXPECT_EQ(list(), (QStringList{C, D, A, B, E}));
    EXPECT_EQ(selection(), (IndexSet{2, 3}));
    EXPECT_EQ(storedFormats(), list());
    EXPECT_EQ(storeLog(), kWriteAndSync);
    EXPECT_TRUE(controls.deleteCustomDateButton.isEnabled());
    EXPECT_EQ(deliveredBroadcasts(), 0);
}

// Where the rows land and which row stays selected, for drops that move something.
TEST_F(CustomDatesDrop, RowsLandWhereTheirMovesPutThem)
{
    struct Case
    {
        const char *what;
        QStringList formats;
        IndexSet rows;
        int dropRow;
        QStringList result;
        IndexSet selected;
    };
    const Case cases[] = {
        {"a downward drop from below the top lands early",
         {A, B, C, D, E, F},
         {1, 2},
         5,
         {A, D, B, C, E, F},
         {2, 3}},
        {"one row dropped downward lands early", {A, B, C, D, E}, {1}, 4, {A, C, B, D, E}, {2}},
        {"rows that are not adjacent move one by one",
         {A, B, C, D, E},
         {1, 3},
         4,
         {A, C, B, D, E},
         {2}},
        {"a drop just above the first row sends the rows to the top reversed",
         {A, B, C, D, E},
         {1, 2},
         2,
         {C, B, A, D, E},
         {0, 1}},
        {"a drop just below the only row sends it to the top",
         {A, B, C, D, E},
         {2},
         2,
         {C, A, B, D, E},
         {0}},
        {"the top row dropped at the end goes last", {A, B, C, D, E}, {0}, 5, {B, C, D, E, A}, {4}},
        {"the top row dropped where it is stays", {A, B, C}, {0}, 0, {A, B, C}, {0}},
        {"duplicates select the first equal row", {A, A, B, C}, {0, 1}, 4, {B, C, A, A}, {2}},
        // F = 3, D = 1, T = -2: refused; the selection marks the first C.
        {"a duplicate elsewhere captures the selection", {C, A, B, C}, {3}, 1, {C, A, B, C}, {0}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_TRUE(drag(c.formats, c.rows, c.dropRow));
        EXPECT_EQ(list(), c.result);
        EXPECT_EQ(selection(), c.selected);
    }
}

TEST_F(CustomDatesDrop, UpwardDropAboveTheFirstRowMovesNothing)
{
    EXPECT_TRUE(drag({A, B, C, D, E}, {3, 4}, 0));
    EXPECT_EQ(list(), (QStringList{A, B, C, D, E}));
    EXPECT_EQ(selection(), (IndexSet{3, 4}));
    EXPECT_EQ(storeLog(), kWriteAndSync);
}

TEST_F(CustomDatesDrop, OutOfRangeTargetsMoveNothingButSelectAndRewrite)
{
    EXPECT_TRUE(drag({A, B, C}, {0}, 100));
    EXPECT_EQ(list(), (QStringList{A, B, C}));
    EXPECT_EQ(selection(), IndexSet{0});
    EXPECT_EQ(storeLog(), kWriteAndSync);

    storeLog().clear();
    EXPECT_TRUE(table().userDragsRows({1}, -5));
    EXPECT_EQ(list(), (QStringList{A, B, C}));
    EXPECT_EQ(selection(), IndexSet{1});
    EXPECT_EQ(storeLog(), kWriteAndSync);

    EXPECT_TRUE(table().userDragsRows({1}, std::numeric_limits<int>::min()));
    EXPECT_TRUE(table().userDragsRows({2}, std::numeric_limits<int>::max()));
    EXPECT_EQ(list(), (QStringList{A, B, C}));
}

TEST_F(CustomDatesDrop, DropOntoARowIsRefusedDuringValidation)
{
    putFormats({A, B, C});
    awake();
    EXPECT_FALSE(table().userDragsRows({0}, 2, TableViewDropOperation::On));
    EXPECT_EQ(list(), (QStringList{A, B, C}));
    EXPECT_TRUE(storeLog().isEmpty());
}

TEST_F(CustomDatesDrop, WritingTheDragDeclaresOnlyThePrivateType)
{
    putFormats({A, B, C});
    awake();
    InMemoryDragPasteboard pasteboard;
    pasteboard.declareTypes({QStringLiteral("text/plain")}, nullptr);
    EXPECT_TRUE(pane->tableViewWriteRowsWithIndexesToPasteboard(&table(), {0, 2}, pasteboard));
    EXPECT_EQ(pasteboard.types(), QStringList{kPrivateTableViewDataType});
    EXPECT_EQ(pasteboard.owner(), pane.get());
    const std::optional<QByteArray> data = pasteboard.dataForType(kPrivateTableViewDataType);
    ASSERT_TRUE(data);
    EXPECT_EQ(UnarchiveRowIndexes(*data), (IndexSet{0, 2}));
    EXPECT_EQ(pane->tableViewValidateDropProposedRowProposedDropOperation(
                  &table(), pasteboard, 1, TableViewDropOperation::Above),
              kDragOperationEvery);
    EXPECT_EQ(pane->tableViewValidateDropProposedRowProposedDropOperation(
                  &table(), pasteboard, 1, TableViewDropOperation::On),
              kDragOperationNone);
}

TEST_F(CustomDatesDrop, ForeignOrMalformedDataIsRefusedButTheListIsRewritten)
{
    putFormats({A, B, C});
    awake();
    InMemoryDragPasteboard foreign;
    foreign.declareTypes({QStringLiteral("text/plain")}, nullptr);
    foreign.setDataForType(QByteArrayLiteral("A"), QStringLiteral("text/plain"));
    InMemoryDragPasteboard garbage;
    garbage.declareTypes({kPrivateTableViewDataType}, nullptr);
    garbage.setDataForType(QByteArrayLiteral("\x01\x02"), kPrivateTableViewDataType);
    InMemoryDragPasteboard beyond; // rows of some longer list
    beyond.declareTypes({kPrivateTableViewDataType}, nullptr);
    beyond.setDataForType(ArchiveRowIndexes({1, 3}), kPrivateTableViewDataType);

    for (const InMemoryDragPasteboard *pasteboard : {&foreign, &garbage}) {
        EXPECT_EQ(pane->tableViewValidateDropProposedRowProposedDropOperation(
                      &table(), *pasteboard, 1, TableViewDropOperation::Above),
                  kDragOperationNone);
    }
    for (const InMemoryDragPasteboard *pasteboard : {&foreign, &garbage, &beyond}) {
        storeLog().clear();
        EXPECT_FALSE(pane->tableViewAcceptDropRowDropOperation(&table(), *pasteboard, 1,
                                                               TableViewDropOperation::Above));
        EXPECT_EQ(storeLog(), kWriteAndSync);
        EXPECT_EQ(list(), (QStringList{A, B, C}));
    }
    EXPECT_FALSE(table().userDropsPasteboard(foreign, 1));
}

TEST_F(CustomDatesDrop, EmptyDragIsAcceptedAndMovesNothing)
{
    putFormats({A, B});
    awake();
    table().userSelectsRows({1});
    EXPECT_TRUE(table().userDragsRows({}, 0));
    EXPECT_EQ(list(), (QStringList{A, B}));
    EXPECT_TRUE(selection().empty());
    EXPECT_FALSE(controls.deleteCustomDateButton.isEnabled());
}

} // namespace
