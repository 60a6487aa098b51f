#pragma once

#include <QtGlobal>

#include <array>

namespace wr {

class MemoryImage;

// The eight band edges the radio reports in row 416, in whole MHz, in the
// order the radio stores them.
//
//   bytes  0-1 rx band 1 lower   2-3 rx band 1 upper   4-5 tx band 1 lower   6-7 tx band 1 upper
//   bytes  8-9 rx band 2 lower 10-11 rx band 2 upper 12-13 tx band 2 lower 14-15 tx band 2 upper
//
// Each value is four BCD digits in 100 kHz units, hundreds and tens of MHz in
// the first byte: 0x13 0x60 = 136.0 MHz.
enum BandLimit {
    RxLower1, RxUpper1, TxLower1, TxUpper1,
    RxLower2, RxUpper2, TxLower2, TxUpper2,
};
using BandLimitArray = std::array<qint16, 8>;

constexpr int BandLimitsRow = 416;

// Limits of a radio of the usual VHF/UHF build, used until a radio is read.
constexpr BandLimitArray DefaultBandLimits{136, 174, 133, 174, 400, 490, 400, 490};

// Writes the default limits into row 416 in the radio's encoding.
void WriteDefaultBandLimits(MemoryImage &image);

// Reads the eight limits from row 416. Erased bytes read as 0.
BandLimitArray LoadBandLimits(const MemoryImage &image);

// Whether a frequency in hertz lies in one of the two receive (transmit)
// bands, edges included.
bool inReceiveBands(qint64 hz, const BandLimitArray &limits);
bool inTransmitBands(qint64 hz, const BandLimitArray &limits);

} // namespace wr
