#pragma once

// The custom formats table's rows and cells for a Qt item view, every one of them asked of the
// controller (the table's target) when the view wants it, so the preview is as fresh as the
// last repaint. Drags carry the controller's private pasteboard data; drops go back to it.

#include "prefpane/PrefPaneControls.h"

#include <QAbstractTableModel>

class CustomDatesTableModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        CustomDateFormatColumn = 0,
        PreviewColumn = 1,
        ColumnCount = 2,
    };

    // table is the control the controller is told about in every data-source call.
    explicit CustomDatesTableModel(TableView *table, QObject *parent = nullptr);

    void setTarget(HoraloPrefPane *target);
    HoraloPrefPane *target() const { return m_target; }
    void setDraggedTypes(const QStringList &types) { m_draggedTypes = types; }
    // Every row and cell may have changed.
    void reload();

    // The text being typed into a row's format: that row's preview follows it until the edit
    // ends, while the stored list changes only when the edit is committed.
    void setEditedFormat(int row, const QString &format);
    void clearEditedFormat();

    static QString columnIdentifier(int column);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    QStringList mimeTypes() const override;
    QMimeData *mimeData(const QModelIndexList &indexes) const override;
    Qt::DropActions supportedDragActions() const override;
    Qt::DropActions supportedDropActions() const override;
    bool canDropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                         const QModelIndex &parent) const override;
    // The controller moves the rows itself, so the view's move never removes any (this model
    // has no removeRows).
    bool dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                      const QModelIndex &parent) override;

private:
    // Where a drop lands in the controller's terms: onto a row, or above a row (the row count
    // for the end of the table).
    bool dropTarget(int row, const QModelIndex &parent, int *dropRow,
                    TableViewDropOperation *operation) const;
    bool offersDraggedType(const QMimeData *data) const;

    void previewChanged(int row);

    TableView *m_table;
    HoraloPrefPane *m_target = nullptr;
    QStringList m_draggedTypes;
    int m_editedRow = -1;
    QString m_editedFormat;
};
