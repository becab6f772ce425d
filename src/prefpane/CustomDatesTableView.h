#pragma once

// The custom formats table: a row-selecting table view whose rows come from its target through
// CustomDatesTableModel, reordered by dragging rows between rows.

#include "prefpane/PrefPaneControls.h"

#include <QTableView>

class CustomDateFormatDelegate;
class CustomDatesTableModel;

class CustomDatesTableView final : public QTableView, public TableView
{
    Q_OBJECT

public:
    explicit CustomDatesTableView(QWidget *parent = nullptr);

    CustomDatesTableModel *customDatesModel() const { return m_model; }

    void reloadData() override;
    IndexSet selectedRowIndexes() const override;
    void selectRowIndexes(const IndexSet &rows, bool byExtendingSelection) override;
    int numberOfSelectedRows() const override;
    void registerForDraggedTypes(const QStringList &types) override;
    void setTarget(HoraloPrefPane *target) override;

Q_SIGNALS:
    // Delete or Backspace while the table, not an editor in it, has the focus.
    void deleteKeyPressed();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void notifySelectionChange();

    CustomDatesTableModel *m_model;
    CustomDateFormatDelegate *m_delegate;
    HoraloPrefPane *m_target = nullptr;
    bool m_selectionNotified = false;
};
