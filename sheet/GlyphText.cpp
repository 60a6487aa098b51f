#include "sheet/GlyphText.h"

#include <QFont>
#include <QFontDatabase>
#include <QGlyphRun>
#include <QPainter>
#include <QtEndian>

namespace wr::sheet {

namespace {

// The PostScript name (name ID 6) in a face's naming table, which is how the
// PDF writer names the face. Records: platform, encoding, language, name
// ID, length, offset, 16 bits each; Windows and Unicode names are UTF-16BE,
// Macintosh ones ASCII.
QByteArray postScriptName(const QRawFont &font)
{
    const QByteArray table = font.fontTable("name");
    const auto field = [&table](qsizetype at) -> int {
        return at >= 0 && at + 2 <= table.size() ? qFromBigEndian<quint16>(table.constData() + at) : -1;
    };
    const int count = field(2);
    const int strings = field(4);
    for (int i = 0; i < count; ++i) {
        const qsizetype record = 6 + 12 * qsizetype(i);
        if (field(record + 6) != 6)
            continue;
        const int platform = field(record);
        const int length = field(record + 8);
        const qsizetype start = qsizetype(strings) + field(record + 10);
        if (length <= 0 || start + length > table.size())
            continue;
        const QByteArray bytes = table.mid(start, length);
        if (platform == 1)
            return bytes;
        QByteArray name;
        for (qsizetype at = 1; at < bytes.size(); at += 2)
            name.append(bytes.at(at)); // PostScript names are printable ASCII
        return name;
    }
    return {};
}

QRawFont rawFont(const QFont &from)
{
    // Unhinted outlines and advances: the sheet is laid out in points and
    // drawn at any resolution.
    QFont font = from;
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setPixelSize(100);
    return QRawFont::fromFont(font);
}

} // namespace

GlyphText::GlyphText(const QStringList &families)
{
    QList<QRawFont> fonts;
    const QStringList installed = QFontDatabase::families();
    for (const QString &family : families) {
        if (installed.contains(family)) {
            fonts.append(rawFont(QFont(family)));
            break;
        }
    }
    fonts.append(rawFont(QFontDatabase::systemFont(QFontDatabase::GeneralFont)));
    for (const QRawFont &font : std::as_const(fonts)) {
        if (!font.isValid())
            continue;
        const QByteArray name = postScriptName(font);
        const bool known = std::any_of(m_faces.begin(), m_faces.end(),
                                       [&name](const Face &face) { return face.postScriptName == name; });
        if (!known)
            m_faces.push_back({font, name, {}, {}, {}});
    }
}

QRawFont GlyphText::faceAt(int face, qreal size) const
{
    const Face &entry = m_faces.at(std::size_t(face));
    auto sized = entry.sized.find(size);
    if (sized == entry.sized.end()) {
        QRawFont font = entry.font;
        font.setPixelSize(size);
        sized = entry.sized.insert(size, font);
    }
    return *sized;
}

TextLine GlyphText::layout(QStringView text, qreal size) const
{
    TextLine line;
    line.size = size;
    if (m_faces.empty())
        return line;
    const auto faceFor = [this](char32_t character) {
        for (std::size_t face = 0; face < m_faces.size(); ++face) {
            if (m_faces[face].font.supportsCharacter(character))
                return int(face);
        }
        return 0; // its missing-glyph box
    };
    const QList<uint> characters = text.toUcs4();
    for (qsizetype start = 0; start < characters.size();) {
        const int face = faceFor(characters[start]);
        qsizetype end = start + 1;
        while (end < characters.size() && faceFor(characters[end]) == face)
            ++end;
        const QRawFont font = faceAt(face, size);
        const QString stretch =
            QString::fromUcs4(reinterpret_cast<const char32_t *>(characters.constData() + start), end - start);
        TextLine::Run run{face, line.width, font.glyphIndexesForString(stretch), {}, {}};
        const QList<QPointF> advances =
            font.advancesForGlyphIndexes(run.glyphs, QRawFont::KernedAdvances | QRawFont::UseDesignMetrics);
        qreal x = 0;
        for (qsizetype i = 0; i < run.glyphs.size() && start + i < end; ++i) {
            run.positions.append(QPointF(x, 0));
            run.characters.append(characters[start + i]);
            x += advances.value(i).x();
        }
        run.glyphs.resize(run.positions.size());
        line.width += x;
        line.runs.append(std::move(run));
        start = end;
    }
    return line;
}

qreal GlyphText::ascent(qreal size) const
{
    return m_faces.empty() ? size : faceAt(0, size).ascent();
}

qreal GlyphText::descent(qreal size) const
{
    return m_faces.empty() ? 0 : faceAt(0, size).descent();
}

void GlyphText::draw(QPainter &painter, QPointF origin, const TextLine &line)
{
    for (const TextLine::Run &run : line.runs) {
        QGlyphRun glyphs;
        glyphs.setRawFont(faceAt(run.face, line.size));
        glyphs.setGlyphIndexes(run.glyphs);
        glyphs.setPositions(run.positions);
        painter.drawGlyphRun(origin + QPointF(run.x, 0), glyphs);
        Face &face = m_faces[std::size_t(run.face)];
        for (qsizetype i = 0; i < run.glyphs.size(); ++i) {
            if (run.glyphs[i] != 0 && !face.drawn.contains(run.glyphs[i]))
                face.order.append(run.glyphs[i]);
            face.drawn.insert(run.glyphs[i], run.characters[i]);
        }
    }
}

QList<DrawnFont> GlyphText::drawnFonts() const
{
    QList<DrawnFont> fonts;
    for (const Face &face : m_faces) {
        if (!face.drawn.isEmpty())
            fonts.append({face.postScriptName, face.font, face.drawn, face.order});
    }
    return fonts;
}

} // namespace wr::sheet
