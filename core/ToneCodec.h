#pragma once

#include "core/MemoryImage.h"
#include "core/Side.h"

#include <QString>
#include <QStringList>
#include <QStringView>

#include <array>

namespace wr {

// Squelch tones are stored in two bytes, low byte first (decode tone in bytes
// 8-9 of the record, encode tone in bytes 10-11):
//
//   high byte  7 6 | 5 4 3 2 1 0         low byte
//              0 0 | BCD thousands,hundreds  BCD tens,units   CTCSS in 0.1 Hz (67.0 = 06 70)
//              1 0 | first code digit        2nd, 3rd digit   DCS normal   (D023N = 80 23)
//              1 1 | first code digit        2nd, 3rd digit   DCS inverted (D754I = C7 54)
//              0 1 | not a tone, reads as ""
//   FF FF = no tone
//
// Tone texts: the no-tone word ("None", "无", "無"), "67.0"-"254.1", "D023N".

// The radio's 50 CTCSS tones in tenths of a hertz, lowest first.
inline constexpr std::array<int, 50> CtcssTones{
    670,  693,  719,  744,  770,  797,  825,  854,  885,  915,  948,  974,  1000, 1035, 1072, 1109, 1148,
    1188, 1230, 1273, 1318, 1365, 1413, 1462, 1514, 1567, 1598, 1622, 1655, 1679, 1713, 1738, 1773, 1799,
    1835, 1862, 1899, 1928, 1966, 1995, 2035, 2065, 2107, 2181, 2257, 2291, 2336, 2418, 2503, 2541};

// Its 105 DCS codes, each as the three octal digits the radio shows read as
// a decimal number (23 is D023).
inline constexpr std::array<int, 105> DcsCodes{
    23,  25,  26,  31,  32,  36,  43,  47,  51,  53,  54,  65,  71,  72,  73,  74,  114, 115, 116, 122, 125,
    131, 132, 134, 143, 145, 152, 155, 156, 162, 165, 172, 174, 205, 212, 223, 225, 226, 243, 244, 245, 246,
    251, 252, 255, 261, 263, 265, 266, 271, 274, 306, 311, 315, 325, 331, 332, 343, 346, 351, 356, 364, 365,
    371, 411, 412, 413, 423, 431, 432, 445, 446, 452, 454, 455, 462, 464, 465, 466, 503, 506, 516, 523, 526,
    532, 546, 565, 606, 612, 624, 627, 631, 632, 645, 654, 662, 664, 703, 712, 723, 731, 732, 734, 743, 754};

constexpr int ToneTableSize = 261;
static_assert(std::size_t(ToneTableSize) == 1 + CtcssTones.size() + 2 * DcsCodes.size());

// The 261 tone texts the forms offer: the no-tone word of the language, the
// 50 CTCSS tones, the 105 DCS codes normal, then the same codes inverted.
QStringList BuildToneTable(int languageIndex);

// The tone of channel 1-130 as text; no tone is the word of languageIndex.
QString ReadTone(const MemoryImage &image, Side side, int channel, int languageIndex);

// Stores a tone text. "" and the no-tone word of any language store FF FF.
void WriteTone(MemoryImage &image, Side side, int channel, QStringView text);

// True for "" and for the no-tone word of any of the three languages.
bool IsNoTone(QStringView text);

} // namespace wr
