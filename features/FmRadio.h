#pragma once

#include "core/Language.h"
#include "core/MemoryImage.h"

#include <QString>
#include <QStringView>

#include <array>

namespace wr {

// The radio's FM broadcast receiver: one free-tuning frequency (the VFO) and
// 32 memory channels, 0 to 31.
//
//   row 400  0x1900-0x1903  channel-empty bitmap: channel n is bit n % 8 of
//                           byte 0x1900 + n / 8, 1 = empty
//   rows 401-408  0x1910 + 4n  channel n, four bytes
//   row 409  0x1990-0x1993  the VFO, four bytes
//
// A frequency is eight BCD digits in 10 Hz units, most significant first:
// 87.50 MHz is 08 75 00 00, 107.95 MHz is 10 79 50 00. The receiver tunes
// 76.00-107.95 MHz in 50 kHz steps; the texts are MHz with two decimals.
namespace fm {

constexpr int ChannelCount = 32;
constexpr int EmptyBitmapAddress = 0x1900;
constexpr int FirstChannelAddress = 0x1910;
constexpr int VfoAddress = 0x1990;

// Texts of the grid's header cells and of the VFO row.
inline constexpr Text ChannelHeader{u"CH.", u"信道", u"信道"};
inline constexpr Text FrequencyHeader{u"Frequency", u"频率", u"頻率"};
inline constexpr Text VfoName{u"VFO", u"全频", u"全頻"};

// The texts the grid shows: the VFO (87.50 when unset) and each channel,
// empty when the channel is empty.
struct Texts
{
    QString vfo;
    std::array<QString, ChannelCount> channels;
};

Texts load(const MemoryImage &image);

// Erases every channel's bytes, then stores the VFO and each channel with
// its bit in the empty bitmap. A text that is not a frequency below
// 1000 MHz stores as empty (an empty VFO stays erased and reads as 87.50).
void save(MemoryImage &image, const Texts &texts);

// A typed frequency as the cell keeps it.
struct Entry
{
    QString text;
    bool outOfRange = false; // moved to the nearest band edge; the user is told
};

// The text a cell keeps after the user typed `typed` over `oldText`:
// - nothing typed: the old text (a frequency cannot be removed);
// - a text with a point: its leading number ("88.5abc" is 88.5);
// - otherwise a number with the default locale's decimal separator ("88,5"
//   where the comma is one); a text that is no such number leaves the old
//   text in place.
// Above 107.975 MHz gives 107.95, below 76 gives 76.00, both out of range;
// anything else is rounded to 10 Hz (a half to even), then down onto the
// 50 kHz raster.
Entry entered(QStringView typed, const QString &oldText);

} // namespace fm

} // namespace wr
