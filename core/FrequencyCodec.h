#pragma once

#include "core/BandLimits.h"
#include "core/MemoryImage.h"
#include "core/Side.h"

#include <QString>
#include <QStringView>

#include <optional>

namespace wr {

// Channel frequencies are stored as eight BCD digits in units of 10 Hz, two
// digits a byte, most significant first:
//
//   byte 0: hundreds | tens of MHz      byte 1: MHz | 100 kHz
//   byte 2: 10 kHz   | 1 kHz            byte 3: 100 Hz | 10 Hz
//
//   136.02500 MHz = 13 60 25 00        any byte 0xFF = no frequency
//
// Receive frequency in bytes 0-3 of the record, transmit in bytes 4-7. Texts
// are MHz with five decimals ("136.02500"). Everything here works in whole
// numbers; no binary floating point touches a frequency.

// The stored frequency of channel 1-130 as text, or "" when absent. A value
// on neither the 5 kHz nor the 6.25 kHz raster gets the 5 Hz that the 10 Hz
// storage lost back (136.00312 is shown 136.00313).
QString ReadFreq(const MemoryImage &image, Side side, int channel);

// Stores a frequency text ("145.5", "005.00000"). Returns false and writes
// nothing when the text is not a number below 1000 MHz.
bool WriteFreq(MemoryImage &image, Side side, int channel, QStringView text);

// Moves a typed frequency into the receive (transmit) bands and onto the
// nearer of the 5 kHz and 6.25 kHz rasters. Never fails: text that is not a
// number reads as 0.
QString NormaliseRxFreq(QStringView text, const BandLimitArray &limits);
QString NormaliseTxFreq(QStringView text, const BandLimitArray &limits);

// Why a normaliser gives a typed frequency another value: below the lower
// band, between the bands, at or above the upper band's top, or between two
// raster steps. None when the value stays ("146.52" stored as 146.52000).
enum class FreqCorrection : quint8 { None, BelowBands, BetweenBands, AboveBands, OntoRaster };
FreqCorrection RxFreqCorrection(QStringView text, const BandLimitArray &limits);
FreqCorrection TxFreqCorrection(QStringView text, const BandLimitArray &limits);

namespace freq {
// A frequency in 10 Hz units formatted "0.00000" MHz.
QString formatTenHz(qint64 tenHz);
// Parses a decimal number exactly into units of 10^-scale, a half rounded
// away from zero; decimalPoint is '.' or ','. Leading and trailing blanks are
// allowed; anything else makes it fail.
std::optional<qint64> parseDecimal(QStringView text, int scale, QChar decimalPoint = u'.');
// The leading number of a text ("145.5abc" gives 145.5, "abc" gives 0), in
// units of 10^-scale: how a stored setting or a typed tone is read.
qint64 leadingNumber(QStringView text, int scale);
} // namespace freq

} // namespace wr
