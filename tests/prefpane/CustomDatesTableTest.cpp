// The custom formats table: adding, deleting and editing rows, the preview, the format-symbol
// list, and reordering by dragging with its deliberate moves.

#include "PrefPaneFixture.h"
#include "datetext/LocaleDefaults.h"
#include "prefpane/PrefPaneLayout.h"

#include <QDataStream>
#include <QIODevice>

#include <limits>

namespace {

using namespace Qt::StringLiterals;

// A list of one-letter formats: "ABC" is A, B, C.
QStringList Letters(const char *letters)
{
    QStringList list;
    for (const char *letter = letters; *letter; ++letter)
        list.append(QString(QLatin1Char(*letter)));
    return list;
}

const QStringList kWriteAndSync = {u"set Custom Dates"_s, u"sync"_s};

// --- add, delete, edit ---

using CustomDatesEditing = PrefPaneTest;

TEST_F(CustomDatesEditing, AddAppendsTheDefaultFormatAndDropsTheSelection)
{
    putFormats({u"A"_s});
    awake();
    table().userSelectsRows({0});
    controls.addCusomDateButton.click();
    controls.addCusomDateButton.click();
    EXPECT_EQ(storedFormats(),
              (QStringList{u"A"_s, kDefaultCustomDateFormat, kDefaultCustomDateFormat}));
    EXPECT_EQ(pane->customDateFormats(), storedFormats());
    EXPECT_EQ(storeLog(), kWriteAndSync + kWriteAndSync);
    EXPECT_TRUE(table().selectedRowIndexes().empty());
    EXPECT_FALSE(controls.deleteCustomDateButton.isEnabled());
    EXPECT_EQ(deliveredBroadcasts(), 0);
}

TEST_F(CustomDatesEditing, DeleteRemovesEverySelectedRowAndFollowsOnlyThisTablesSelection)
{
    putFormats(Letters("ABCD"));
    awake();
    EXPECT_FALSE(controls.deleteCustomDateButton.isEnabled()); // as laid out
    table().userSelectsRows({0, 2});
    EXPECT_TRUE(controls.deleteCustomDateButton.isEnabled());
    InMemoryTableView otherTable;
    pane->tableViewSelectionDidChange(&otherTable); // nothing selected there
    EXPECT_TRUE(controls.deleteCustomDateButton.isEnabled());

    controls.deleteCustomDateButton.click();
    EXPECT_EQ(pane->customDateFormats(), Letters("BD"));
    EXPECT_EQ(storedFormats(), Letters("BD"));
    // The reload drops the selection, and the button follows it.
    EXPECT_TRUE(table().selectedRowIndexes().empty());
    EXPECT_FALSE(controls.deleteCustomDateButton.isEnabled());
    EXPECT_FALSE(controls.deleteCustomDateButton.click());

    // Asked without a selection, it removes nothing but still writes the list back.
    storeLog().clear();
    pane->deleteCustomDate(nullptr);
    EXPECT_EQ(pane->customDateFormats(), Letters("BD"));
    EXPECT_EQ(storeLog(), kWriteAndSync);
}

TEST_F(CustomDatesEditing, AnEditReplacesItsRowWhateverTheColumnAndAnyOtherOnlyRewrites)
{
    putFormats(Letters("ABC"));
    awake();
    table().userEditsCell(kCustomDateFormatColumn, 1, u"%Y"_s);
    // The preview column must never be editable in a layout: its edit would land here too.
    table().userEditsCell(kPreviewColumn, 2, u"typed"_s);
    const QStringList edited{u"A"_s, u"%Y"_s, u"typed"_s};
    EXPECT_EQ(storedFormats(), edited);

    storeLog().clear();
    table().userEditsCell(kCustomDateFormatColumn, 0, QVariant(qlonglong(42)));
    table().userEditsCell(kCustomDateFormatColumn, 0, QVariant());
    table().userEditsCell(kCustomDateFormatColumn, 3, u"X"_s);
    table().userEditsCell(kCustomDateFormatColumn, -1, u"X"_s);
    EXPECT_EQ(pane->customDateFormats(), edited);
    EXPECT_EQ(storeLog(), kWriteAndSync + kWriteAndSync + kWriteAndSync + kWriteAndSync);
}

TEST_F(CustomDatesEditing, CellsOutsideTheListAreEmptyAndAnUpdateTakesOnlyAStoredList)
{
    putFormats({u"A"_s});
    awake();
    EXPECT_EQ(table().cellValue(kCustomDateFormatColumn, 0), QVariant(u"A"_s));
    EXPECT_FALSE(table().cellValue(u"Other"_s, 0).isValid());
    EXPECT_FALSE(table().cellValue(kCustomDateFormatColumn, 1).isValid());
    EXPECT_FALSE(table().cellValue(kPreviewColumn, -1).isValid());

    putFormats(Letters("BC"));
    storeLog().clear();
    pane->updateCustomDatesTable();
    EXPECT_EQ(storeLog().value(0), u"sync"_s) << "another process's list is read afresh";
    EXPECT_EQ(table().columnValues(kCustomDateFormatColumn), Letters("BC"));
    for (const QVariant &notAList : {QVariant(u"not a list"_s), QVariant()}) {
        put(SettingsKey::CustomDates, notAList);
        pane->updateCustomDatesTable();
        EXPECT_EQ(pane->customDateFormats(), Letters("BC"));
    }
    put(SettingsKey::CustomDates, QVariantList{});
    pane->updateCustomDatesTable();
    EXPECT_TRUE(pane->customDateFormats().isEmpty());
}

TEST_F(CustomDatesEditing, PreviewRendersThePresentAtEveryAskWhateverTheChooserHolds)
{
    memory.userDefaults.setRegistrationProvider(LocaleDefaultsRegistration, LocaleDefaultsKeys());
    putFormats({u"%Y-%m-%d %H:%M:%S"_s, u"%A, %B %e"_s, u"no conversion here"_s});
    awake();
    g_selectedDateTime = kFixedInstant - 86400 * 30;
    EXPECT_EQ(
        table().columnValues(kPreviewColumn),
        (QStringList{u"2006-03-10 14:31:47"_s, u"Friday, March 10"_s, u"no conversion here"_s}));
    memory.clock.advance(2);
    EXPECT_EQ(table().cellValue(kPreviewColumn, 0), QVariant(u"2006-03-10 14:31:49"_s));
}

// --- the format-symbol list ---

TEST_F(CustomDatesEditing, ChoosingASymbolShowsItAndCopiesItAsUtf8WhenTheClipboardCanBeReached)
{
    awake();
    for (std::size_t i = 0; i < kFormatSymbols.size(); ++i) {
        SCOPED_TRACE(kFormatSymbols[i].symbol.toStdString());
        controls.chooseFormatSymbol(i);
        EXPECT_EQ(controls.formatCharacterTextField.stringValue(), kFormatSymbols[i].symbol);
        EXPECT_EQ(memory.clipboard.contents(), kFormatSymbols[i].symbol.toUtf8());
    }
    EXPECT_EQ(memory.clipboard.writeCount(), static_cast<int>(kFormatSymbols.size()));
    EXPECT_EQ(pane->putStringOnClipboard(u"%é"_s), 0);
    EXPECT_EQ(memory.clipboard.contents(), QByteArray("%\xC3\xA9")) << "no terminator";

    memory.clipboard.setContents(QByteArrayLiteral("before"));
    memory.clipboard.setUnreachableStatus(-25);
    pane->selectFormatSymbol(TitledItem(u"%d  day of the month"_s));
    EXPECT_EQ(controls.formatCharacterTextField.stringValue(), u"%d"_s);
    EXPECT_EQ(memory.clipboard.contents(), QByteArrayLiteral("before"));
    EXPECT_EQ(pane->putStringOnClipboard(u"x"_s), -25);
}

// --- MoveArrayItem and the private drag data ---

TEST(MoveArrayItem, MovesOneElementShiftingTheRunAndRefusesEqualOrOutOfRangeIndexes)
{
    const struct
    {
        qint32 from;
        qint32 to;
        const char *expected;
    } cases[] = {
        {0, 4, "BCDEA"}, {4, 0, "EABCD"},  {1, 3, "ACDBE"},
        {3, 1, "ADBCE"}, {0, 1, "BACDE"},  {4, 3, "ABCED"},
        {2, 2, "ABCDE"}, {-1, 3, "ABCDE"}, {1, 5, "ABCDE"},
        {5, 1, "ABCDE"}, {0, -1, "ABCDE"}, {std::numeric_limits<qint32>::min(), 0, "ABCDE"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << c.from << " -> " << c.to);
        QStringList list = Letters("ABCDE");
        EXPECT_EQ(MoveArrayItem(list, c.from, c.to), 0);
        EXPECT_EQ(list, Letters(c.expected));
    }
    QStringList empty;
    EXPECT_EQ(MoveArrayItem(empty, 0, 0), 0);
    EXPECT_EQ(MoveArrayItem(empty, 0, 1), 0);
    EXPECT_TRUE(empty.isEmpty());
}

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

TEST(RowIndexArchive, RoundTripsAndRefusesWhatItCouldNotHaveWritten)
{
    for (const IndexSet &rows :
         {IndexSet{}, IndexSet{0}, IndexSet{1, 2, 7}, IndexSet{0, std::numeric_limits<int>::max()}})
        EXPECT_EQ(UnarchiveRowIndexes(ArchiveRowIndexes(rows)), rows);

    const QByteArray good = ArchiveRowIndexes({1, 3});
    ASSERT_EQ(good, Archive(0x48524958, 1, 2, {1, 3})) << "the layout these cases forge";
    for (const QByteArray &bad : {
             QByteArray(),
             QByteArrayLiteral("1,3"),
             good.left(good.size() - 1),
             good + '\0',
             Archive(0x48524959, 1, 2, {1, 3}),
             Archive(0x48524958, 2, 2, {1, 3}),
             Archive(0x48524958, 1, 3, {1, 3}),
             Archive(0x48524958, 1, 0xFFFFFFFF, {1, 3}),
             Archive(0x48524958, 1, 2, {3, 1}),
             Archive(0x48524958, 1, 2, {3, 3}),
             Archive(0x48524958, 1, 1, {0x80000000u}),
         })
        EXPECT_FALSE(UnarchiveRowIndexes(bad)) << bad.toHex().constData();
}

// --- dragging rows ---

class CustomDatesDrop : public PrefPaneTest
{
protected:
    QStringList list() const { return pane->customDateFormats(); }
    IndexSet selection() { return table().selectedRowIndexes(); }
    DragOperation validate(const DragPasteboard &pasteboard, TableViewDropOperation operation)
    {
        return pane->tableViewValidateDropProposedRowProposedDropOperation(&table(), pasteboard, 1,
                                                                           operation);
    }
};

// Where the rows land and which rows stay selected, for every drop that is accepted.
TEST_F(CustomDatesDrop, RowsLandWhereTheirMovesPutThem)
{
    constexpr int kMin = std::numeric_limits<int>::min();
    constexpr int kMax = std::numeric_limits<int>::max();
    const struct
    {
        const char *what;
        const char *formats;
        IndexSet rows;
        int dropRow;
        const char *result;
        IndexSet selected;
    } cases[] = {
        {"rows from the top dropped lower", "ABCDE", {0, 1}, 4, "CDABE", {2, 3}},
        {"a downward drop from below the top lands early", "ABCDEF", {1, 2}, 5, "ADBCEF", {2, 3}},
        {"one row dropped downward lands early", "ABCDE", {1}, 4, "ACBDE", {2}},
        {"rows that are not adjacent move one by one", "ABCDE", {1, 3}, 4, "ACBDE", {2}},
        {"just above the first row: to the top, reversed", "ABCDE", {1, 2}, 2, "CBADE", {0, 1}},
        {"just below the only row: to the top", "ABCDE", {2}, 2, "CABDE", {0}},
        {"an upward drop above the first row moves nothing", "ABCDE", {3, 4}, 0, "ABCDE", {3, 4}},
        {"the top row dropped at the end goes last", "ABCDE", {0}, 5, "BCDEA", {4}},
        {"the top row dropped where it is stays", "ABC", {0}, 0, "ABC", {0}},
        {"a target beyond the end moves nothing", "ABC", {0}, 100, "ABC", {0}},
        {"a target before the start moves nothing", "ABC", {1}, -5, "ABC", {1}},
        {"the lowest target moves nothing", "ABC", {1}, kMin, "ABC", {1}},
        {"the highest target moves nothing", "ABC", {2}, kMax, "ABC", {2}},
        {"duplicates select the first equal row", "AABC", {0, 1}, 4, "BCAA", {2}},
        // F = 3, D = 1, T = -2: refused; the selection marks the first C.
        {"a duplicate elsewhere captures the selection", "CABC", {3}, 1, "CABC", {0}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        putFormats(Letters(c.formats));
        awake();
        EXPECT_TRUE(table().userDragsRows(c.rows, c.dropRow));
        EXPECT_EQ(list(), Letters(c.result));
        EXPECT_EQ(selection(), c.selected);
        EXPECT_TRUE(controls.deleteCustomDateButton.isEnabled());
        EXPECT_EQ(storedFormats(), list());
        EXPECT_EQ(storeLog(), kWriteAndSync);
    }
    EXPECT_EQ(memory.distributedCenter.postCount(), 0);
}

TEST_F(CustomDatesDrop, TheDragCarriesOnlyThePrivateTypeAndADropOntoARowIsRefused)
{
    putFormats(Letters("ABC"));
    awake();
    InMemoryDragPasteboard pasteboard;
    pasteboard.declareTypes({u"text/plain"_s}, nullptr);
    EXPECT_TRUE(pane->tableViewWriteRowsWithIndexesToPasteboard(&table(), {0, 2}, pasteboard));
    EXPECT_EQ(pasteboard.types(), QStringList{kPrivateTableViewDataType});
    EXPECT_EQ(pasteboard.owner(), pane.get());
    const std::optional<QByteArray> data = pasteboard.dataForType(kPrivateTableViewDataType);
    ASSERT_TRUE(data);
    EXPECT_EQ(UnarchiveRowIndexes(*data), (IndexSet{0, 2}));
    EXPECT_EQ(validate(pasteboard, TableViewDropOperation::Above), kDragOperationEvery);
    EXPECT_EQ(validate(pasteboard, TableViewDropOperation::On), kDragOperationNone);

    EXPECT_FALSE(table().userDragsRows({0}, 2, TableViewDropOperation::On));
    EXPECT_EQ(list(), Letters("ABC"));
    EXPECT_TRUE(storeLog().isEmpty());
}

TEST_F(CustomDatesDrop, ForeignOrMalformedDataIsRefusedButTheListIsRewritten)
{
    putFormats(Letters("ABC"));
    awake();
    InMemoryDragPasteboard foreign;
    foreign.declareTypes({u"text/plain"_s}, nullptr);
    foreign.setDataForType(QByteArrayLiteral("A"), u"text/plain"_s);
    InMemoryDragPasteboard garbage;
    garbage.declareTypes({kPrivateTableViewDataType}, nullptr);
    garbage.setDataForType(QByteArrayLiteral("\x01\x02"), kPrivateTableViewDataType);
    InMemoryDragPasteboard beyond; // rows of some longer list
    beyond.declareTypes({kPrivateTableViewDataType}, nullptr);
    beyond.setDataForType(ArchiveRowIndexes({1, 3}), kPrivateTableViewDataType);

    EXPECT_EQ(validate(foreign, TableViewDropOperation::Above), kDragOperationNone);
    EXPECT_EQ(validate(garbage, TableViewDropOperation::Above), kDragOperationNone);
    for (const InMemoryDragPasteboard *pasteboard : {&foreign, &garbage, &beyond}) {
        storeLog().clear();
        EXPECT_FALSE(pane->tableViewAcceptDropRowDropOperation(&table(), *pasteboard, 1,
                                                               TableViewDropOperation::Above));
        EXPECT_EQ(storeLog(), kWriteAndSync);
        EXPECT_EQ(list(), Letters("ABC"));
    }
    EXPECT_FALSE(table().userDropsPasteboard(foreign, 1));
}

TEST_F(CustomDatesDrop, AnEmptyDragIsAcceptedMovesNothingAndDropsTheSelection)
{
    putFormats(Letters("AB"));
    awake();
    table().userSelectsRows({1});
    EXPECT_TRUE(table().userDragsRows({}, 0));
    EXPECT_EQ(list(), Letters("AB"));
    EXPECT_TRUE(selection().empty());
    EXPECT_FALSE(controls.deleteCustomDateButton.isEnabled());
}

} // namespace
