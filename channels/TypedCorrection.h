#pragma once

#include "core/BandLimits.h"
#include "core/Language.h"

#include <QString>
#include <QStringView>

#include <optional>

namespace wr {

// A value typed into the channel list that was stored as another: the
// normalisers move a frequency into the bands and onto the raster and a tone
// into the range the radio has, without a word. The list reports each such
// change so the user learns what became of the input:
//
//   Channel 7 Rx: 7 → 174.00000, below the band
//   信道 7 解码：50 → 60.0，低于 60.0 Hz
struct TypedCorrection
{
    enum class Reason : quint8 {
        BelowBands, BetweenBands, AboveBands, OntoRaster,           // frequencies
        ToneBelowRange, ToneAboveRange, ToneRounded, DcsDigits, NotATone, // tones
    };

    int channel = 0;
    int column = 0; // ChannelColumn: the receive or transmit frequency, a tone
    QString typed;
    QString stored;
    Reason reason = Reason::OntoRaster;

    // The line the status bar shows, in a language.
    QString text(Language language) const;
};

// What typing `typed` into a frequency cell (ColRx or ColTx) changed, given
// the text stored; nothing when the value stayed or the cell was cleared.
std::optional<TypedCorrection> frequencyCorrection(int channel, int column, QStringView typed, const QString &stored,
                                                   const BandLimitArray &limits);
// The same for a tone cell (ColDecode or ColEncode). A CTCSS value the
// radio's list lacks is stored as typed: no correction.
std::optional<TypedCorrection> toneCorrection(int channel, int column, QStringView typed, const QString &stored);

} // namespace wr
