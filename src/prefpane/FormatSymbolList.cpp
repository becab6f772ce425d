#include "prefpane/FormatSymbolList.h"

#include <QResizeEvent>
#include <QScrollBar>

#include <algorithm>

FormatSymbolList::FormatSymbolList(QWidget *parent) : QListWidget(parent)
{
    setViewMode(QListView::ListMode);
    setFlow(QListView::LeftToRight);
    setWrapping(true);
    setResizeMode(QListView::Adjust);
    // Each title whole: the grid is sized for the longest, so nothing needs eliding.
    setTextElideMode(Qt::ElideNone);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    // Arrow keys move from symbol to symbol; Tab leaves the list.
    setTabKeyNavigation(false);
}

void FormatSymbolList::setTitles(const QStringList &titles)
{
    clear();
    addItems(titles);
    int widest = 0;
    for (const QString &title : titles)
        widest = std::max(widest, fontMetrics().horizontalAdvance(title));
    const int gap = 3 * fontMetrics().averageCharWidth();
    setGridSize(QSize(widest + gap, fontMetrics().height() + 6));
    m_columns = columnsFor(width());
    updateGeometry();
}

int FormatSymbolList::columnsFor(int width) const
{
    // The vertical scroll bar's room is always counted, so that its coming and going cannot
    // change the column count and with it the height asked for.
    const int usable = width - 2 * frameWidth() - verticalScrollBar()->sizeHint().width();
    const int cell = std::max(1, gridSize().width());
    return std::max(1, usable / cell);
}

int FormatSymbolList::heightForRows(int rows) const
{
    return rows * gridSize().height() + 2 * frameWidth() + 2;
}

QSize FormatSymbolList::sizeHint() const
{
    const int columns = std::max(1, m_columns);
    const int rows = (count() + columns - 1) / columns;
    return {QListWidget::sizeHint().width(), heightForRows(rows)};
}

QSize FormatSymbolList::minimumSizeHint() const
{
    return {gridSize().width() + 2 * frameWidth() + verticalScrollBar()->sizeHint().width(),
            heightForRows(3)};
}

void FormatSymbolList::resizeEvent(QResizeEvent *event)
{
    QListWidget::resizeEvent(event);
    const int columns = columnsFor(event->size().width());
    if (columns != m_columns) {
        m_columns = columns;
        updateGeometry();
    }
}
