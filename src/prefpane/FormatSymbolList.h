#pragma once

// The format-symbol list: the symbols in rows, as many columns as its width holds, asking the
// layout for the height that shows every one of them at that width.

#include <QListWidget>

class FormatSymbolList final : public QListWidget
{
    Q_OBJECT

public:
    explicit FormatSymbolList(QWidget *parent = nullptr);

    // Lays the titles out on a grid wide enough for the longest.
    void setTitles(const QStringList &titles);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    int columnsFor(int width) const;
    int heightForRows(int rows) const;

    int m_columns = 0;
};
