#include "support/InMemoryPrefPaneControls.h"

#include "prefpane/PrefPaneLayout.h"

void InMemoryCheckBox::click()
{
    m_state = m_state == kOffState ? kOnState : kOffState;
    if (m_action)
        m_action(this);
}

QString InMemoryPopUpButton::itemTitleAtIndex(int index) const
{
    if (index < 0 || index >= m_titles.size())
        return {};
    return m_titles.at(index);
}

bool InMemoryPopUpButton::selectItemWithTitle(const QString &title)
{
    const qsizetype index = m_titles.indexOf(title);
    if (index < 0)
        return false;
    m_selected = static_cast<int>(index);
    return true;
}

void InMemoryPopUpButton::userSelectsItemAtIndex(int index)
{
    m_selected = index;
    if (m_action)
        m_action(this);
}

bool InMemoryButton::click()
{
    if (!m_enabled)
        return false;
    if (m_action)
        m_action(this);
    return true;
}

void InMemoryDragPasteboard::declareTypes(const QStringList &types, const void *owner)
{
    m_owner = owner;
    MimeDataPasteboard::declareTypes(types, owner);
}

void InMemoryTableView::reloadData()
{
    ++m_reloadCount;
    if (m_selection.empty())
        return;
    m_selection.clear();
    if (m_target)
        m_target->tableViewSelectionDidChange(this);
}

void InMemoryTableView::selectRowIndexes(const IndexSet &rows, bool byExtendingSelection)
{
    IndexSet selection = byExtendingSelection ? m_selection : IndexSet{};
    const int count = numberOfRows();
    for (const int row : rows) {
        if (row >= 0 && row < count)
            selection.insert(row);
    }
    if (selection == m_selection)
        return;
    m_selection = std::move(selection);
    if (m_target)
        m_target->tableViewSelectionDidChange(this);
}

int InMemoryTableView::numberOfRows() const
{
    return m_target ? m_target->numberOfRowsInTableView(const_cast<InMemoryTableView *>(this)) : 0;
}

QVariant InMemoryTableView::cellValue(const QString &columnIdentifier, int row) const
{
    if (!m_target)
        return {};
    return m_target->tableViewObjectValueForTableColumnRow(const_cast<InMemoryTableView *>(this),
                                                           columnIdentifier, row);
}

QStringList InMemoryTableView::columnValues(const QString &columnIdentifier) const
{
    QStringList values;
    const int count = numberOfRows();
    for (int row = 0; row < count; ++row)
        values.append(cellValue(columnIdentifier, row).toString());
    return values;
}

void InMemoryTableView::userEditsCell(const QString &columnIdentifier, int row,
                                      const QVariant &value)
{
    if (m_target)
        m_target->tableViewSetObjectValueForTableColumnRow(this, value, columnIdentifier, row);
}

bool InMemoryTableView::userDragsRows(const IndexSet &rows, int dropRow,
                                      TableViewDropOperation operation)
{
    if (!m_target)
        return false;
    InMemoryDragPasteboard pasteboard;
    if (!m_target->tableViewWriteRowsWithIndexesToPasteboard(this, rows, pasteboard))
        return false;
    return userDropsPasteboard(pasteboard, dropRow, operation);
}

bool InMemoryTableView::userDropsPasteboard(const DragPasteboard &pasteboard, int dropRow,
                                            TableViewDropOperation operation)
{
    if (!m_target)
        return false;
    // As the desktop's table does, types it was not registered for are not even offered.
    bool registered = false;
    for (const QString &type : pasteboard.types())
        registered = registered || m_draggedTypes.contains(type);
    if (!registered)
        return false;
    if (m_target->tableViewValidateDropProposedRowProposedDropOperation(
            this, pasteboard, dropRow, operation) == kDragOperationNone)
        return false;
    return m_target->tableViewAcceptDropRowDropOperation(this, pasteboard, dropRow, operation);
}

InMemoryPrefPaneControls::InMemoryPrefPaneControls(Window *preferencesWindow)
    : window(preferencesWindow)
{
    deleteCustomDateButton.setEnabled(false);
    QStringList titles;
    for (const QString &title : kTitleDisplayNames)
        titles.append(title);
    menuTitleDisplayPopupButton =
        InMemoryPopUpButton(titles, static_cast<int>(titles.indexOf(kLaidOutTitleDisplayName)));
    formatSymbolEntries.reserve(kFormatSymbols.size());
    for (const FormatSymbol &symbol : kFormatSymbols)
        formatSymbolEntries.emplace_back(symbol.title());
}

PrefPaneOutlets InMemoryPrefPaneControls::outlets()
{
    return PrefPaneControlSet::outlets(window, &customDatesTable, &formattedDateTextField);
}

void InMemoryPrefPaneControls::connectActions(HoraloPrefPane &controller)
{
    m_controller = &controller;
    const auto wire = [&controller](auto action) {
        return [&controller, action](Control *sender) { (controller.*action)(sender); };
    };
    wireCheckBoxes([&wire](InMemoryCheckBox &box, auto action) { box.setAction(wire(action)); });
    menuTitleDisplayPopupButton.setAction(
        wire(&HoraloPrefPane::menuTitleDisplayPopupButtonClicked));
    addCusomDateButton.setAction(wire(&HoraloPrefPane::addCustomDate));
    deleteCustomDateButton.setAction(wire(&HoraloPrefPane::deleteCustomDate));
}

void InMemoryPrefPaneControls::chooseFormatSymbol(std::size_t index)
{
    if (m_controller && index < formatSymbolEntries.size())
        m_controller->selectFormatSymbol(formatSymbolEntries[index]);
}
