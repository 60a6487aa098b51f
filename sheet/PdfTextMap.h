#pragma once

#include "sheet/GlyphText.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <map>

namespace wr::sheet {

// Gives every glyph that GlyphText drew into a PDF the character it was
// drawn for, so that the PDF's text copies and searches as it reads.
//
// The PDF writer maps each glyph of a font to text (the font's ToUnicode
// CMap) by the lowest code point the font's character map gives that glyph.
// Where a font draws two characters with one glyph, the lower one wins,
// whichever was drawn: Noto CJK draws 高 with the glyph of the Kangxi
// radical ⾼ (U+2FBC), 页 with that of ⻚ (U+2EDA), the space with that of
// the tab, so a reader copies radicals and finds no 高.
//
// Each such map of `fonts` (matched by PostScript name) is rewritten so that
// a glyph drawn for a character maps to that character, and so that glyphs
// the writer left without text (drawn for characters beyond U+FFFF) get
// theirs. The new maps are
// appended as an incremental update: the bytes before it stay as they were.
// The PDF comes back unchanged when nothing needs repair, or when it is not
// laid out the way the writer lays it out (a cross-reference table, maps as
// plain streams of a direct length).
QByteArray repairTextMaps(const QByteArray &pdf, const QList<DrawnFont> &fonts);

// A ToUnicode CMap: character code -> text. Reads the bfchar and bfrange
// entries; writes bfchar entries only.
std::map<int, QString> readTextMap(QByteArrayView cmap);
QByteArray writeTextMap(const std::map<int, QString> &map);

} // namespace wr::sheet
