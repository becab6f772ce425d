#pragma once

// The controls of the preferences window as its controller sees them. The window's layout
// provides the real ones (PreferencesWindow); the tests drive in-memory ones by hand. Only QtCore
// types cross this line.

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>
#include <set>

class HoraloPrefPane;

// A set of table rows, walked in ascending order.
using IndexSet = std::set<int>;

// Anything that can send an action. Most actions ignore their sender.
class Control
{
public:
    virtual ~Control() = default;
};

// An entry that carries a title, such as one of the format-symbol list's entries.
class TitledItem final : public Control
{
public:
    explicit TitledItem(QString title) : m_title(std::move(title)) {}
    QString title() const { return m_title; }

private:
    QString m_title;
};

class CheckBox : public Control
{
public:
    // Check-box states as integers: off is 0, and any non-zero state (on, or mixed) counts as
    // true when the box is written to the store.
    static constexpr int kOffState = 0;
    static constexpr int kOnState = 1;
    static constexpr int kMixedState = -1;

    virtual int state() const = 0;
    // Sets the state without sending the box's action.
    virtual void setState(int state) = 0;
};

class PopUpButton : public Control
{
public:
    // -1 when no item is selected.
    virtual int indexOfSelectedItem() const = 0;
    // A null QString when there is no item at that index.
    virtual QString itemTitleAtIndex(int index) const = 0;
    // Selects the first item with that title, without sending the action. False, with the
    // selection left as it was, when no item has that title.
    virtual bool selectItemWithTitle(const QString &title) = 0;
};

class TextField : public Control
{
public:
    virtual QString stringValue() const = 0;
    virtual void setStringValue(const QString &value) = 0;
};

class Button : public Control
{
public:
    virtual bool isEnabled() const = 0;
    virtual void setEnabled(bool enabled) = 0;
};

// The pasteboard of one drag: a set of typed data blobs, declared by the drag's source.
class DragPasteboard
{
public:
    virtual ~DragPasteboard() = default;
    virtual QStringList types() const = 0;
    // No value when the pasteboard holds nothing of that type.
    virtual std::optional<QByteArray> dataForType(const QString &type) const = 0;
    // Replaces whatever the pasteboard held with these (still empty) types.
    virtual void declareTypes(const QStringList &types, const void *owner) = 0;
    // False when the type was not declared first.
    virtual bool setDataForType(const QByteArray &data, const QString &type) = 0;
};

// Where a drop lands: onto a row, or in the gap above it.
enum class TableViewDropOperation
{
    On = 0,
    Above = 1,
};

// The drag operations a drop target agrees to, as a mask; 0 refuses the drop.
using DragOperation = quint32;
inline constexpr DragOperation kDragOperationNone = 0;
inline constexpr DragOperation kDragOperationEvery = 0xFFFFFFFFu;

// A table whose rows and cells come from its target, the controller, on demand.
class TableView : public Control
{
public:
    // Asks the target for every row and cell again. Rows that were selected are deselected,
    // and the target hears of the selection change.
    virtual void reloadData() = 0;
    virtual IndexSet selectedRowIndexes() const = 0;
    virtual void selectRowIndexes(const IndexSet &rows, bool byExtendingSelection) = 0;
    virtual int numberOfSelectedRows() const = 0;
    // The only drag types the table accepts as drops.
    virtual void registerForDraggedTypes(const QStringList &types) = 0;
    // The data source and delegate: it supplies rows and cells, takes edits and drops, and
    // hears of selection changes. Nothing is shown until a target is set.
    virtual void setTarget(HoraloPrefPane *target) = 0;
};
