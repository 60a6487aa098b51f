#pragma once

#include <QList>

#include <functional>

class QEvent;
class QTableView;

namespace wr {

// Whole channels selected on the channel grid, row n being channel n. A
// click on a channel number selects its row; Shift extends the selection
// from the row clicked before, Ctrl adds or removes one row, and dragging
// over the numbers selects the rows passed. A plain click then goes on as
// any click on the grid does (an empty row opens its receive frequency).
class ChannelSelection
{
public:
    // beforeClick runs before a click on a number changes the selection
    // (the list commits its open editor).
    ChannelSelection(QTableView *grid, std::function<void()> beforeClick);

    // The selected rows among 1 to last, else the current row; in order.
    QList<int> channels(int last) const;
    // Selects whole rows; the first becomes current (in the current
    // column) and is scrolled to.
    void select(const QList<int> &channels);

    // A mouse event on the grid's viewport. True when it belongs to a click
    // on the numbers and goes no further.
    bool mouseEvent(QEvent *event);

private:
    QTableView *m_grid;
    std::function<void()> m_beforeClick;
    int m_anchor = 0;         // the channel number clicked last
    bool m_selecting = false; // a click on a number is held
    bool m_dragged = false;
};

} // namespace wr
