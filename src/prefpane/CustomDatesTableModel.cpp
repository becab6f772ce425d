#include "prefpane/CustomDatesTableModel.h"

#include "prefpane/HoraloPrefPane.h"
#include "prefpane/MimeDataPasteboard.h"

#include <QMimeData>

CustomDatesTableModel::CustomDatesTableModel(TableView *table, QObject *parent)
    : QAbstractTableModel(parent), m_table(table)
{}

void CustomDatesTableModel::setTarget(HoraloPrefPane *target)
{
    beginResetModel();
    m_target = target;
    endResetModel();
}

void CustomDatesTableModel::reload()
{
    beginResetModel();
    // The rows may have moved under the editor; its preview would show on the wrong row.
    m_editedRow = -1;
    m_editedFormat.clear();
    endResetModel();
}

void CustomDatesTableModel::setEditedFormat(int row, const QString &format)
{
    if (row < 0 || row >= rowCount())
        return;
    const int previous = m_editedRow;
    m_editedRow = row;
    m_editedFormat = format;
    if (previous >= 0 && previous != row)
        previewChanged(previous);
    previewChanged(row);
}

void CustomDatesTableModel::clearEditedFormat()
{
    const int previous = m_editedRow;
    m_editedRow = -1;
    m_editedFormat.clear();
    if (previous >= 0 && previous < rowCount())
        previewChanged(previous);
}

void CustomDatesTableModel::previewChanged(int row)
{
    const QModelIndex cell = index(row, PreviewColumn);
    Q_EMIT dataChanged(cell, cell, {Qt::DisplayRole});
}

QString CustomDatesTableModel::columnIdentifier(int column)
{
    switch (column) {
    case CustomDateFormatColumn:
        return kCustomDateFormatColumn;
    case PreviewColumn:
        return kPreviewColumn;
    default:
        return {};
    }
}

int CustomDatesTableModel::rowCount(const QModelIndex &parent) const
{
    if (parent.isValid() || !m_target)
        return 0;
    return m_target->numberOfRowsInTableView(m_table);
}

int CustomDatesTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant CustomDatesTableModel::data(const QModelIndex &index, int role) const
{
    if (!m_target || !index.isValid())
        return {};
    if (role != Qt::DisplayRole && role != Qt::EditRole && role != Qt::ToolTipRole)
        return {};
    if (role == Qt::ToolTipRole && index.column() != CustomDateFormatColumn)
        return {};
    if (index.column() == PreviewColumn && index.row() == m_editedRow)
        return m_target->previewOfCustomDateFormat(m_editedFormat);
    return m_target->tableViewObjectValueForTableColumnRow(
        m_table, columnIdentifier(index.column()), index.row());
}

bool CustomDatesTableModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!m_target || !index.isValid() || role != Qt::EditRole)
        return false;
    m_target->tableViewSetObjectValueForTableColumnRow(
        m_table, value, columnIdentifier(index.column()), index.row());
    // The preview of the row follows its format.
    Q_EMIT dataChanged(this->index(index.row(), 0), this->index(index.row(), ColumnCount - 1));
    return true;
}

QVariant CustomDatesTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    return columnIdentifier(section);
}

Qt::ItemFlags CustomDatesTableModel::flags(const QModelIndex &index) const
{
    // Drops land between rows only, so only the table itself takes them.
    if (!index.isValid())
        return Qt::ItemIsDropEnabled;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled;
    // An edit of the preview would replace the row's format with the typed text.
    if (index.column() == CustomDateFormatColumn)
        flags |= Qt::ItemIsEditable;
    return flags;
}

QStringList CustomDatesTableModel::mimeTypes() const
{
    return m_draggedTypes;
}

QMimeData *CustomDatesTableModel::mimeData(const QModelIndexList &indexes) const
{
    if (!m_target || indexes.isEmpty())
        return nullptr;
    IndexSet rows;
    for (const QModelIndex &index : indexes) {
        if (index.isValid())
            rows.insert(index.row());
    }
    auto *data = new QMimeData;
    MimeDataPasteboard pasteboard(data);
    if (!m_target->tableViewWriteRowsWithIndexesToPasteboard(m_table, rows, pasteboard)) {
        delete data;
        return nullptr;
    }
    return data;
}

Qt::DropActions CustomDatesTableModel::supportedDragActions() const
{
    return Qt::MoveAction;
}

Qt::DropActions CustomDatesTableModel::supportedDropActions() const
{
    return Qt::MoveAction;
}

bool CustomDatesTableModel::dropTarget(int row, const QModelIndex &parent, int *dropRow,
                                       TableViewDropOperation *operation) const
{
    if (!m_target)
        return false;
    if (parent.isValid()) {
        *dropRow = parent.row();
        *operation = TableViewDropOperation::On;
    } else {
        // -1: below the last row, or on the empty part of the table.
        *dropRow = row < 0 ? rowCount() : row;
        *operation = TableViewDropOperation::Above;
    }
    return true;
}

bool CustomDatesTableModel::offersDraggedType(const QMimeData *data) const
{
    if (!data)
        return false;
    for (const QString &type : m_draggedTypes) {
        if (data->hasFormat(type))
            return true;
    }
    return false;
}

bool CustomDatesTableModel::canDropMimeData(const QMimeData *data, Qt::DropAction, int row, int,
                                            const QModelIndex &parent) const
{
    int dropRow = 0;
    TableViewDropOperation operation = TableViewDropOperation::Above;
    if (!offersDraggedType(data) || !dropTarget(row, parent, &dropRow, &operation))
        return false;
    const MimeDataPasteboard pasteboard(data);
    return m_target->tableViewValidateDropProposedRowProposedDropOperation(
               m_table, pasteboard, dropRow, operation) != kDragOperationNone;
}

bool CustomDatesTableModel::dropMimeData(const QMimeData *data, Qt::DropAction action, int row,
                                         int column, const QModelIndex &parent)
{
    // The view drops without asking first, so the validation runs here too.
    if (!canDropMimeData(data, action, row, column, parent))
        return false;
    int dropRow = 0;
    TableViewDropOperation operation = TableViewDropOperation::Above;
    dropTarget(row, parent, &dropRow, &operation);
    const MimeDataPasteboard pasteboard(data);
    return m_target->tableViewAcceptDropRowDropOperation(m_table, pasteboard, dropRow, operation);
}
