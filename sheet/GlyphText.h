#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QPointF>
#include <QRawFont>
#include <QStringList>
#include <QStringView>

#include <vector>

class QPainter;

namespace wr::sheet {

// A face the sheet drew with, and for each glyph drawn the character it was
// drawn for. A PDF names its fonts by their PostScript names.
struct DrawnFont
{
    QByteArray postScriptName;
    QRawFont font;
    QHash<quint32, char32_t> characters; // glyph index -> character
    QList<quint32> order;                // the glyphs in the order first drawn
};

// One line of text set in the faces of a GlyphText: a run of glyphs for each
// stretch of one face, and the character behind each glyph.
struct TextLine
{
    struct Run
    {
        int face;
        qreal x; // from the start of the line
        QList<quint32> glyphs;
        QList<QPointF> positions;
        QList<char32_t> characters;
    };
    QList<Run> runs;
    qreal size = 0;
    qreal width = 0;
};

// Single lines of text, measured and drawn as the glyphs the faces' character
// maps give, with their kerning and no further shaping.
//
// Why not QPainter::drawText: the PDF writer names a glyph in its text map by
// the lowest code point its font maps to it, and knows only the glyphs a
// character map reaches. Shaping may pick glyphs no character map reaches (a
// CJK font sets digits after Latin letters in other glyphs), whose text is
// then lost; and where Noto CJK draws a Kangxi radical and an ideograph with
// one glyph (⾼ and 高), the map names the radical. Drawing only the
// character map's glyphs, and noting which character each one was drawn
// for, lets repairTextMaps() give every glyph its own character back.
class GlyphText
{
public:
    // The first of `families` that is installed sets every character it
    // has; the platform's sans-serif face fills in the rest.
    explicit GlyphText(const QStringList &families);

    // The line at `size` points (the painter's unit is the point).
    TextLine layout(QStringView text, qreal size) const;
    qreal ascent(qreal size) const;
    qreal descent(qreal size) const;

    // Draws a line with its baseline starting at `origin`, and notes the
    // characters of its glyphs.
    void draw(QPainter &painter, QPointF origin, const TextLine &line);

    // The faces drawn with so far.
    QList<DrawnFont> drawnFonts() const;

private:
    struct Face
    {
        QRawFont font; // at 1 point
        QByteArray postScriptName;
        QHash<quint32, char32_t> drawn;
        QList<quint32> order;
        mutable QHash<qreal, QRawFont> sized;
    };

    QRawFont faceAt(int face, qreal size) const;

    std::vector<Face> m_faces;
};

} // namespace wr::sheet
