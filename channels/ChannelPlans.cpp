#include "channels/ChannelPlans.h"

#include "channels/ChannelRecord.h"
#include "core/FrequencyCodec.h"

#include <algorithm>
#include <limits>
#include <map>
#include <numeric>

namespace wr {

RowPlan planInsert(int at, int last)
{
    RowPlan plan{{at, 0}};
    for (int row = at + 1; row <= last; ++row)
        plan.append({row, row - 1});
    return plan;
}

RowPlan planRemove(const QList<int> &rows, int last)
{
    if (rows.isEmpty())
        return {};
    RowPlan plan;
    int to = rows.front();
    for (int from = rows.front(); from <= last; ++from) {
        if (!rows.contains(from))
            plan.append({to++, from});
    }
    while (to <= last)
        plan.append({to++, 0});
    return plan;
}

RowPlan planMove(const QList<int> &rows, int by, int last)
{
    if (rows.isEmpty() || rows.front() + by < 1 || rows.back() + by > last)
        return {};
    const int first = std::min(rows.front(), rows.front() + by);
    const int end = std::max(rows.back(), rows.back() + by);
    // Where each row's channel comes from: moved ones from one row away,
    // the ones passed fill the places left, in their order.
    QList<int> from(end - first + 1, 0);
    QList<int> passed;
    for (int row = first; row <= end; ++row) {
        if (rows.contains(row))
            from[row + by - first] = row;
        else
            passed.append(row);
    }
    RowPlan plan;
    for (qsizetype i = 0, next = 0; i < from.size(); ++i)
        plan.append({first + int(i), from[i] != 0 ? from[i] : passed[next++]});
    return plan;
}

RowPlan planSort(const QList<int> &rows, const QStringList &receive)
{
    const auto frequency = [&](qsizetype at) {
        const QString &rx = receive.at(at);
        return rx.isEmpty() ? std::numeric_limits<qint64>::max() : freq::parseDecimal(rx, 5).value_or(0);
    };
    QList<qsizetype> order(rows.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](qsizetype a, qsizetype b) { return frequency(a) < frequency(b); });
    RowPlan plan;
    for (qsizetype i = 0; i < rows.size(); ++i)
        plan.append({rows[i], rows[order[i]]});
    return plan;
}

Placement placeRows(const QList<RowLocation> &rows, int pasteAt)
{
    Placement placement;
    int shift = 0;
    if (pasteAt > 0) {
        std::optional<int> lowest;
        for (const RowLocation &row : rows) {
            if (row.number)
                lowest = std::min(lowest.value_or(*row.number), *row.number);
        }
        shift = pasteAt - lowest.value_or(pasteAt);
    } else {
        const auto zero =
            std::find_if(rows.begin(), rows.end(), [](const RowLocation &row) { return row.number == 0; });
        if (zero != rows.end()) {
            shift = 1;
            placement.firstZero = int(zero - rows.begin());
        }
    }

    std::map<int, int> winners; // channel -> row
    for (qsizetype at = 0; at < rows.size(); ++at) {
        PlacedRow placed;
        if (rows[at].isChannel && rows[at].number) {
            placed.channel = *rows[at].number + shift;
            const bool inList = placed.channel >= 1 && placed.channel <= ChannelRecord::ChannelCount;
            placed.outcome = inList ? PlacedRow::Placed : PlacedRow::Outside;
        }
        if (placed.outcome == PlacedRow::Placed) {
            if (const auto earlier = winners.find(placed.channel); earlier != winners.end()) {
                PlacedRow &lost = placement.rows[earlier->second];
                lost.outcome = PlacedRow::Replaced;
                lost.replacedBy = int(at);
            }
            winners[placed.channel] = int(at);
        }
        placement.rows.append(placed);
    }
    return placement;
}

} // namespace wr
