#pragma once

// Controls of the preferences window that live in memory. They behave as the desktop's do
// (a table asks its target for rows, a reload drops the selection, a drag goes through a
// pasteboard) and add the user's side: click, choose, select, edit, drag.

#include "prefpane/HoraloPrefPane.h"
#include "prefpane/MimeDataPasteboard.h"
#include "prefpane/PrefPaneControlSet.h"
#include "prefpane/PrefPaneControls.h"

#include <QMimeData>

#include <functional>
#include <memory>
#include <vector>

using ControlAction = std::function<void(Control *sender)>;

class InMemoryCheckBox final : public CheckBox
{
public:
    int state() const override { return m_state; }
    void setState(int state) override { m_state = state; }
    void setAction(ControlAction action) { m_action = std::move(action); }
    // A user's click: an off box turns on, an on or mixed box turns off, then the action runs.
    void click();

private:
    int m_state = kOffState;
    ControlAction m_action;
};

class InMemoryPopUpButton final : public PopUpButton
{
public:
    explicit InMemoryPopUpButton(QStringList titles = {}, int selectedIndex = -1)
        : m_titles(std::move(titles)), m_selected(selectedIndex)
    {}
    int indexOfSelectedItem() const override { return m_selected; }
    QString itemTitleAtIndex(int index) const override;
    bool selectItemWithTitle(const QString &title) override;
    QString titleOfSelectedItem() const { return itemTitleAtIndex(m_selected); }
    void setAction(ControlAction action) { m_action = std::move(action); }
    // A user's choice of the item at that index (-1 for none), then the action runs.
    void userSelectsItemAtIndex(int index);

private:
    QStringList m_titles;
    int m_selected;
    ControlAction m_action;
};

class InMemoryTextField final : public TextField
{
public:
    QString stringValue() const override { return m_value; }
    void setStringValue(const QString &value) override { m_value = value; }

private:
    QString m_value;
};

class InMemoryButton final : public Button
{
public:
    explicit InMemoryButton(bool enabled = true) : m_enabled(enabled) {}
    bool isEnabled() const override { return m_enabled; }
    void setEnabled(bool enabled) override { m_enabled = enabled; }
    void setAction(ControlAction action) { m_action = std::move(action); }
    // A disabled button ignores the click; returns whether the action ran.
    bool click();

private:
    bool m_enabled;
    ControlAction m_action;
};

// A drag's pasteboard as the desktop's table carries it, over mime data of its own, which also
// remembers who declared its types.
class InMemoryDragPasteboard final : public MimeDataPasteboard
{
public:
    // The base is made before m_data, but only keeps its address.
    InMemoryDragPasteboard() : MimeDataPasteboard(&m_data) {}
    void declareTypes(const QStringList &types, const void *owner) override;
    const void *owner() const { return m_owner; }

private:
    QMimeData m_data;
    const void *m_owner = nullptr;
};

class InMemoryTableView final : public TableView
{
public:
    void reloadData() override;
    IndexSet selectedRowIndexes() const override { return m_selection; }
    void selectRowIndexes(const IndexSet &rows, bool byExtendingSelection) override;
    int numberOfSelectedRows() const override { return static_cast<int>(m_selection.size()); }
    void registerForDraggedTypes(const QStringList &types) override { m_draggedTypes = types; }
    void setTarget(HoraloPrefPane *target) override { m_target = target; }

    QStringList registeredDraggedTypes() const { return m_draggedTypes; }
    HoraloPrefPane *target() const { return m_target; }
    int reloadCount() const { return m_reloadCount; }

    // What the table shows, asked of the target as a drawing table would.
    int numberOfRows() const;
    QVariant cellValue(const QString &columnIdentifier, int row) const;
    // The whole "Custom Date Format" column.
    QStringList columnValues(const QString &columnIdentifier) const;

    // The user's side.
    void userSelectsRows(const IndexSet &rows) { selectRowIndexes(rows, false); }
    void userEditsCell(const QString &columnIdentifier, int row, const QVariant &value);
    // Drags the rows and drops them at the row: the target writes the pasteboard, validates
    // and, unless it refuses, accepts. Returns whether the drop was accepted.
    bool userDragsRows(const IndexSet &rows, int dropRow,
                       TableViewDropOperation operation = TableViewDropOperation::Above);
    // Drops a pasteboard that did not come from this table.
    bool userDropsPasteboard(const DragPasteboard &pasteboard, int dropRow,
                             TableViewDropOperation operation = TableViewDropOperation::Above);

private:
    HoraloPrefPane *m_target = nullptr;
    QStringList m_draggedTypes;
    IndexSet m_selection;
    int m_reloadCount = 0;
};

// The whole window's worth of controls, laid out as the desktop window lays them out: the
// pop-up holds the nine title names with "Medium Date" selected, the delete button starts
// disabled. The window is the caller's (an InMemoryWindow, say).
class InMemoryPrefPaneControls
    : public PrefPaneControlSet<InMemoryCheckBox, InMemoryPopUpButton, InMemoryButton,
                                InMemoryTextField, InMemoryTextField>
{
public:
    explicit InMemoryPrefPaneControls(Window *preferencesWindow);

    PrefPaneOutlets outlets();
    // Wires every control's action to the controller, as the layout does.
    void connectActions(HoraloPrefPane &controller);
    // Chooses the format-symbol entry at that index of kFormatSymbols.
    void chooseFormatSymbol(std::size_t index);

    Window *window;
    InMemoryTableView customDatesTable;
    InMemoryTextField formattedDateTextField;
    std::vector<TitledItem> formatSymbolEntries;

private:
    HoraloPrefPane *m_controller = nullptr;
};
