#pragma once

#include "core/ImageFields.h"

namespace wr {

// The functions of the radio's seven programmable keys, edited by frmKey:
// one byte per key, P1-P7 at 0x0CE8-0x0CEE, the long press code in the high
// nibble and the short press code in the low one (KeyFunctions.h). Every
// byte is rebuilt whole. The lists are in the order the dialog loads and
// stores them: P1 long, P1 short, P2 long ...
extern const FieldTable KeyFields;

inline constexpr int KeyCount = 7;
inline constexpr int FirstKeyAddress = 0x0CE8;

// The fields as report lines ("caption: value" and the bits behind it), key
// by key.
QList<FieldLine> describeKeys(const MemoryImage &image, int languageIndex);

} // namespace wr
