#pragma once

// Edits a custom format in place: the row's preview follows every keystroke, and Tab or
// Shift+Tab commit the edit and leave the table, as they do when no cell is being edited.

#include <QStyledItemDelegate>

class CustomDatesTableModel;

class CustomDateFormatDelegate final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    CustomDateFormatDelegate(CustomDatesTableModel *model, QObject *parent = nullptr);

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void destroyEditor(QWidget *editor, const QModelIndex &index) const override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    CustomDatesTableModel *m_model;
};
