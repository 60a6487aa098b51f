#pragma once

#include <QList>
#include <QStringList>

#include <optional>

namespace wr {

// How the channel list's tools rearrange whole channels, worked out from
// channel numbers alone. A plan lists the rows that change: row `to` takes
// the channel that row `from` held before the plan; from 0 leaves `to`
// empty, its record's bytes erased. Rows not in the plan keep their
// channels. (Delete and Cut need no plan: they empty the cells, as clearing
// the receive frequency does.) `last` is the last row
// of the list (128).
struct RowMove
{
    int to = 0;
    int from = 0;
    bool operator==(const RowMove &) const = default;
};
using RowPlan = QList<RowMove>;

// An empty row at `at`; the channels from there move one row down. The
// caller makes sure the last row is free.
RowPlan planInsert(int at, int last);

// The rows go; the channels below them move up into their places and the
// rows freed at the end are left empty.
RowPlan planRemove(const QList<int> &rows, int last);

// The rows (any selection, not only a block) move one row up (by -1) or
// down (+1); each channel they pass takes a place they left, in its order.
// Empty when a row would leave 1 to last.
RowPlan planMove(const QList<int> &rows, int by, int last);

// The rows' channels in the order of their receive frequencies (texts
// "145.50000"), in the rows they held; equal frequencies keep their order,
// empty rows go last.
RowPlan planSort(const QList<int> &rows, const QStringList &receive);

// Where rows read from a CSV text go. Each row has its Location (none when
// it is not a whole number) and whether it became a channel; a row that did
// not still counts for the distances.
//
// Imported (pasteAt 0) each row goes to its Location, all one further on
// when a Location is 0 (the text counts from 0). Pasted, the lowest
// Location goes to pasteAt and the others keep their distances from it. A
// row whose channel falls outside 1-128 goes nowhere; of two rows for one
// channel the later wins.
struct PlacedRow
{
    enum Outcome { Placed, NotAChannel, Outside, Replaced };
    Outcome outcome = NotAChannel;
    int channel = 0;     // where it goes, or the channel it lost (Replaced)
    int replacedBy = -1; // the row that won it
};
struct Placement
{
    QList<PlacedRow> rows;
    int firstZero = -1; // the first row with Location 0 when that shifted the rows
};
struct RowLocation
{
    std::optional<int> number;
    bool isChannel = false;
};
Placement placeRows(const QList<RowLocation> &rows, int pasteAt);

} // namespace wr
