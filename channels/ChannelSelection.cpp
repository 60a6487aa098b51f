#include "channels/ChannelSelection.h"

#include "channels/ChannelRecord.h"

#include <QItemSelectionModel>
#include <QMouseEvent>
#include <QTableView>

#include <algorithm>
#include <numeric>

namespace wr {

ChannelSelection::ChannelSelection(QTableView *grid, std::function<void()> beforeClick)
    : m_grid(grid)
    , m_beforeClick(std::move(beforeClick))
{
}

QList<int> ChannelSelection::channels(int last) const
{
    QList<int> rows;
    for (const QModelIndex &index : m_grid->selectionModel()->selectedIndexes()) {
        if (index.row() >= 1 && index.row() <= last && !rows.contains(index.row()))
            rows.append(index.row());
    }
    const int current = m_grid->currentIndex().row();
    if (rows.isEmpty() && current >= 1 && current <= last)
        rows.append(current);
    std::sort(rows.begin(), rows.end());
    return rows;
}

void ChannelSelection::select(const QList<int> &channels)
{
    QItemSelection selection;
    for (int row : channels)
        selection.select(m_grid->model()->index(row, 0), m_grid->model()->index(row, ChannelColumnCount - 1));
    if (!channels.isEmpty()) {
        const int column = std::max(0, m_grid->currentIndex().column());
        const QModelIndex current = m_grid->model()->index(channels.front(), column);
        m_grid->selectionModel()->setCurrentIndex(current, QItemSelectionModel::NoUpdate);
        m_grid->scrollTo(current);
    }
    m_grid->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

bool ChannelSelection::mouseEvent(QEvent *event)
{
    const QEvent::Type type = event->type();
    if (type != QEvent::MouseButtonPress && type != QEvent::MouseMove && type != QEvent::MouseButtonRelease)
        return false;
    const auto *mouse = static_cast<QMouseEvent *>(event);
    const QModelIndex index = m_grid->indexAt(mouse->position().toPoint());
    const int row = index.row();
    const Qt::KeyboardModifiers extend = mouse->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier);

    if (type == QEvent::MouseButtonPress) {
        if (mouse->button() != Qt::LeftButton || index.column() != ColNumber || row < 1)
            return false;
        m_beforeClick();
        QList<int> rows; // the whole rows selected so far
        for (const QModelIndex &selected : m_grid->selectionModel()->selectedRows())
            rows.append(selected.row());
        if (extend & Qt::ShiftModifier) {
            const int anchor = m_anchor >= 1 ? m_anchor : row;
            if (!(extend & Qt::ControlModifier))
                rows.clear();
            for (int r = std::min(anchor, row); r <= std::max(anchor, row); ++r) {
                if (!rows.contains(r))
                    rows.append(r);
            }
        } else if (extend & Qt::ControlModifier) {
            if (!rows.removeOne(row))
                rows.append(row);
            m_anchor = row;
        } else {
            rows = {row};
            m_anchor = row;
        }
        std::sort(rows.begin(), rows.end());
        select(rows);
        m_grid->selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
        m_selecting = true;
        m_dragged = false;
        return true;
    }
    if (!m_selecting)
        return false;
    if (type == QEvent::MouseMove) {
        if ((mouse->buttons() & Qt::LeftButton) && row >= 1 && row != m_anchor) {
            QList<int> rows(std::abs(row - m_anchor) + 1);
            std::iota(rows.begin(), rows.end(), std::min(row, m_anchor));
            select(rows);
            m_dragged = true;
        }
        return true;
    }
    m_selecting = false;
    return extend || m_dragged;
}

} // namespace wr
