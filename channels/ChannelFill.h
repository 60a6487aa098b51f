#pragma once

#include "channels/ChannelTable.h"

#include <QList>
#include <QMap>
#include <QStringList>
#include <QStringView>

#include <optional>

namespace wr {

// One value given to many channels at once (the list's Fill Selection, Fill
// Down and Set for Selected Channels, and wrpd6t-tool set). Each channel
// takes it as typing it into its cell would take it: frequencies through the
// normalisers, tones through the tone rules, a list column only as one of
// its words (in any language; any other text changes nothing). Two rules
// are the fill's own:
// - A receive frequency changes a channel in use only in its receive
//   frequency, and in its transmit frequency where that equalled the receive
//   frequency, so a simplex channel stays simplex; every other cell and byte
//   stays. An empty channel is created with it and the new channel's
//   defaults. (An empty text empties the channels, as it does a typed one.)
// - Every other column changes channels in use only: an empty channel has
//   no cells to change, nor a channel without a transmit frequency an
//   encode tone.

// The channel with `text` in `column` (ColRx to ColBcl).
Channel filledCell(const Channel &channel, int column, QStringView text, const BandLimitArray &limits,
                   Language language);

// The channels, each with `text` in `column`.
ChannelChanges filledColumn(const ChannelTable &table, int column, const QList<int> &channels, QStringView text,
                            const BandLimitArray &limits, Language language);

// Fill down: in each column of `cells` (column -> its channels, in order)
// the cells of the later channels take the text of the first one's, the
// columns taken from left to right. A column whose first cell is empty is
// left as it is: an empty cell holds no value to copy, and copying it would
// empty the channels below.
ChannelChanges filledDown(const ChannelTable &table, const QMap<int, QList<int>> &cells, const BandLimitArray &limits,
                          Language language);

// Receive frequencies in a series: start (MHz, "446.00625"), start + step
// (kHz, "12.5", negative to go down), and so on, `count` of them, each as
// the receive normaliser stores it. Whole numbers of 10 Hz throughout.
// Nothing when start or step is not a number.
struct FrequencySeries
{
    QStringList values;
    int outsideBands = 0; // values moved to a band edge
    int offRaster = 0;    // values in the bands moved onto the raster
};
std::optional<FrequencySeries> frequencySeries(QStringView start, QStringView step, int count,
                                               const BandLimitArray &limits);

// Each channel takes its own receive frequency, channels[i] receive[i], by
// the receive frequency rule above.
ChannelChanges withReceiveFrequencies(const ChannelTable &table, const QList<int> &channels,
                                      const QStringList &receive, const BandLimitArray &limits, Language language);

} // namespace wr
