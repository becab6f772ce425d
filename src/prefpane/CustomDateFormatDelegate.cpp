#include "prefpane/CustomDateFormatDelegate.h"

#include "prefpane/CustomDatesTableModel.h"

#include <QAbstractItemView>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>

CustomDateFormatDelegate::CustomDateFormatDelegate(CustomDatesTableModel *model, QObject *parent)
    : QStyledItemDelegate(parent), m_model(model)
{}

QWidget *CustomDateFormatDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                                                const QModelIndex &index) const
{
    QWidget *editor = QStyledItemDelegate::createEditor(parent, option, index);
    if (auto *lineEdit = qobject_cast<QLineEdit *>(editor)) {
        const int row = index.row();
        // textEdited, not textChanged: the editor's first filling with the stored format is
        // no keystroke.
        connect(lineEdit, &QLineEdit::textEdited, m_model,
                [model = m_model, row](const QString &text) { model->setEditedFormat(row, text); });
        m_openEditor = lineEdit;
    }
    return editor;
}

void CustomDateFormatDelegate::destroyEditor(QWidget *editor, const QModelIndex &index) const
{
    // Committed or abandoned, the preview goes back to the stored format.
    m_model->clearEditedFormat();
    if (editor == m_openEditor)
        m_openEditor = nullptr;
    QStyledItemDelegate::destroyEditor(editor, index);
}

bool CustomDateFormatDelegate::eventFilter(QObject *watched, QEvent *event)
{
    auto *editor = qobject_cast<QWidget *>(watched);
    auto *view = qobject_cast<QAbstractItemView *>(parent());
    if (editor && view && event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab) {
            // The base class would open the next cell's editor; keyboard users expect Tab to
            // reach the control after the table, as it does when no cell is being edited. The
            // view hands Tab to the window's focus chain, since it does not navigate by Tab.
            Q_EMIT commitData(editor);
            Q_EMIT closeEditor(editor, QAbstractItemDelegate::NoHint);
            view->setFocus(Qt::OtherFocusReason);
            QKeyEvent tab(QEvent::KeyPress, key->key(), key->modifiers());
            QCoreApplication::sendEvent(view, &tab);
            return true;
        }
    }
    return QStyledItemDelegate::eventFilter(watched, event);
}
