#pragma once

#include "core/MemoryImage.h"
#include "core/Side.h"

#include <QString>
#include <QStringList>
#include <QStringView>

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

constexpr int ToneTableSize = 261;

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
