#pragma once

// Edits a custom format in place: the row's preview follows every keystroke, and Tab or
// Shift+Tab commit the edit and leave the table, as they do when no cell is being edited.

#include <QLineEdit>
#include <QPointer>
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

    // The editor open in a cell, if any; null once it is closed, even before it is deleted.
    QLineEdit *openEditor() const { return m_openEditor; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    CustomDatesTableModel *m_model;
    mutable QPointer<QLineEdit> m_openEditor;
};
