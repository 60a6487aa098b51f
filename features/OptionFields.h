#pragma once

#include "core/ImageFields.h"

namespace wr {

// The radio's general settings, edited by frmOption: rows 205 and 206 of the
// image.
//
//   address  bits  field
//   0x0CD1   0-1   scan mode: 0 time-operated, 1 carrier-operated, 2 search
//            2 3   key lock, automatic key lock
//            4     battery save
//            6 7   beep, voice annunciation
//   0x0CD2   2 3   roger tone, battery display (0 voltage, 1 percentage)
//            7     tail elimination
//   0x0CD6   0-7   squelch level, 0 off or 1-9
//   0x0CD7   0-7   VOX: bit 0 on, bits 2-7 the level - 1 (1-9); rebuilt whole
//   0x0CD8   0-7   VOX delay, 1-10 half seconds (0 shows no selection)
//   0x0CDA   0-7   time-out timer, 0 off or 1-9 times 30 s
//   0x0CDD   0-7   backlight, 0 always on or 1-20 s
//   0x0CDE   0-7   volume level 0-7, shown as 1-8
//   0x0CEA   4-7   side key, long press  (key P3's byte: KeyFunctions.h);
//            0-3   side key, short press  rebuilt whole
//
// Bits no field covers are kept, except in the two bytes rebuilt whole. The
// lists and check boxes are in the order the dialog loads and stores them.
extern const FieldTable OptionFields;

// The fields as report lines ("caption: value" and the bits behind it), in
// the order the dialog shows them.
QList<FieldLine> describeOptions(const MemoryImage &image, int languageIndex);

} // namespace wr
