#include "prefpane/CustomDatesTableView.h"

#include "prefpane/CustomDateFormatDelegate.h"
#include "prefpane/CustomDatesTableModel.h"
#include "prefpane/HoraloPrefPane.h"

#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLineEdit>

#include <optional>
#include <utility>

CustomDatesTableView::CustomDatesTableView(QWidget *parent)
    : QTableView(parent), m_model(new CustomDatesTableModel(this, this)),
      m_delegate(new CustomDateFormatDelegate(m_model, this))
{
    setModel(m_model);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                    QAbstractItemView::SelectedClicked);
    setDragEnabled(true);
    setAcceptDrops(true);
    setDropIndicatorShown(true);
    setDragDropMode(QAbstractItemView::InternalMove);
    setDefaultDropAction(Qt::MoveAction);
    setDragDropOverwriteMode(false);
    setAlternatingRowColors(true);
    setWordWrap(false);
    verticalHeader()->hide();
    // A format and its preview are about as long as each other: they share the width.
    horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    horizontalHeader()->setHighlightSections(false);
    // Arrow keys move between cells; Tab leaves the table for the next control.
    setTabKeyNavigation(false);
    setItemDelegateForColumn(CustomDatesTableModel::CustomDateFormatColumn, m_delegate);

    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &CustomDatesTableView::notifySelectionChange);
}

void CustomDatesTableView::notifySelectionChange()
{
    m_selectionNotified = true;
    if (m_target)
        m_target->tableViewSelectionDidChange(this);
}

void CustomDatesTableView::reloadData()
{
    // The list may change under an open editor (written by another program while the user
    // types): the reset would close the editor and lose the typing, so it is opened again on
    // the same row, when there still is one, with the text as the user left it.
    std::optional<std::pair<int, QString>> typing;
    if (const QLineEdit *editor = m_delegate->openEditor())
        typing.emplace(currentIndex().row(), editor->text());

    const bool hadSelection = selectionModel()->hasSelection();
    m_selectionNotified = false;
    m_model->reload();

    if (typing && typing->first >= 0 && typing->first < m_model->rowCount()) {
        const QModelIndex cell =
            m_model->index(typing->first, CustomDatesTableModel::CustomDateFormatColumn);
        setCurrentIndex(cell);
        edit(cell);
        if (QLineEdit *editor = m_delegate->openEditor()) {
            editor->setText(typing->second);
            m_model->setEditedFormat(typing->first, typing->second);
        }
    }
    // A model reset empties the selection without telling anyone; the delete button must
    // still learn that nothing is selected any more.
    if (hadSelection && !m_selectionNotified)
        notifySelectionChange();
}

IndexSet CustomDatesTableView::selectedRowIndexes() const
{
    IndexSet rows;
    const QModelIndexList indexes = selectionModel()->selectedIndexes();
    for (const QModelIndex &index : indexes)
        rows.insert(index.row());
    return rows;
}

void CustomDatesTableView::selectRowIndexes(const IndexSet &rows, bool byExtendingSelection)
{
    QItemSelection selection;
    const int count = m_model->rowCount();
    for (const int row : rows) {
        if (row >= 0 && row < count)
            selection.select(m_model->index(row, 0),
                             m_model->index(row, CustomDatesTableModel::ColumnCount - 1));
    }
    QItemSelectionModel::SelectionFlags flags = QItemSelectionModel::Rows;
    flags |=
        byExtendingSelection ? QItemSelectionModel::Select : QItemSelectionModel::ClearAndSelect;
    selectionModel()->select(selection, flags);
    if (!rows.empty() && *rows.begin() < count)
        selectionModel()->setCurrentIndex(m_model->index(*rows.begin(), 0),
                                          QItemSelectionModel::NoUpdate);
}

int CustomDatesTableView::numberOfSelectedRows() const
{
    return static_cast<int>(selectedRowIndexes().size());
}

void CustomDatesTableView::registerForDraggedTypes(const QStringList &types)
{
    m_model->setDraggedTypes(types);
}

void CustomDatesTableView::setTarget(HoraloPrefPane *target)
{
    m_target = target;
    m_model->setTarget(target);
}

void CustomDatesTableView::keyPressEvent(QKeyEvent *event)
{
    if (state() != QAbstractItemView::EditingState &&
        (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace) &&
        event->modifiers() == Qt::NoModifier) {
        Q_EMIT deleteKeyPressed();
        event->accept();
        return;
    }
    QTableView::keyPressEvent(event);
}
