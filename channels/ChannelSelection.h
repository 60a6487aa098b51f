#pragma once

#include <QList>
#include <QModelIndex>
#include <QTableView>

#include <functional>

class QEvent;

namespace wr {

// The channel grid's view. A current cell the program sets (Enter moving on,
// a click on an empty row going to its receive frequency, the filter's first
// channel) selects that cell alone, whatever keys are held at the time; only
// the user's own keys and clicks extend a selection.
class ChannelGridView : public QTableView
{
public:
    using QTableView::QTableView;

protected:
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex &index,
                                                         const QEvent *event) const override;
};

// Whole channels selected on the channel grid, row n being channel n. A
// click on a channel number selects its row; Shift extends the selection
// from the row clicked before, Ctrl adds or removes one row, and dragging
// over the numbers selects the rows passed. A plain click then goes on as
// any click on the grid does (an empty row opens its receive frequency).
//
// Cells are selected too: a click with Shift selects the rectangle from the
// cell the selection started at, Ctrl+Shift adds it, and a click with Ctrl
// adds or removes one cell; such clicks open no editor. (Plain clicks,
// dragging and Shift with the arrow keys are the view's own.) A row hidden
// by the filter is never among the channels selected, whatever a rectangle
// spans.
class ChannelSelection
{
public:
    // beforeClick runs before a click on a number changes the selection
    // (the list commits its open editor).
    ChannelSelection(QTableView *grid, std::function<void()> beforeClick);

    // The rows shown with a cell selected among 1 to last, else the current
    // row if shown; in order.
    QList<int> channels(int last) const;
    // Selects whole rows; the first becomes current (in the current
    // column) and is scrolled to.
    void select(const QList<int> &channels);

    // A mouse event on the grid's viewport. True when it belongs to a click
    // on the numbers and goes no further.
    bool mouseEvent(QEvent *event);

private:
    void selectCells(const QModelIndex &cell, Qt::KeyboardModifiers keys);

    QTableView *m_grid;
    std::function<void()> m_beforeClick;
    int m_anchor = 0;         // the channel number clicked last
    bool m_selecting = false; // a click on a number is held
    bool m_dragged = false;
    bool m_cells = false;     // the click held selects cells
};

} // namespace wr
