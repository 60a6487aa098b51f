#include "sheet/PdfTextMap.h"

#include <QHash>

#include <algorithm>
#include <optional>

namespace wr::sheet {

namespace {

bool isSpace(char c)
{
    return c == ' ' || c == '\n' || c == '\r' || c == '\t' || c == '\f' || c == '\0';
}

bool isDelimiter(char c)
{
    return isSpace(c) || c == '/' || c == '<' || c == '>' || c == '[' || c == ']' || c == '(' || c == ')';
}

// Reads PDF tokens from a stretch of bytes: numbers, names, keywords, <hex>
// strings, brackets. Enough for cross-reference tables, trailers, the
// dictionaries the writer writes and CMaps.
class Scanner
{
public:
    explicit Scanner(QByteArrayView bytes, qsizetype at = 0)
        : m_bytes(bytes)
        , m_at(at)
    {
    }

    qsizetype at() const { return m_at; }
    bool atEnd() { return skipSpace() >= m_bytes.size(); }

    QByteArrayView next()
    {
        const qsizetype start = skipSpace();
        if (start >= m_bytes.size())
            return {};
        qsizetype end = start + 1;
        const char first = m_bytes[start];
        if (first == '<' && end < m_bytes.size() && m_bytes[end] != '<') {
            while (end < m_bytes.size() && m_bytes[end] != '>')
                ++end;
            end = std::min(end + 1, m_bytes.size());
        } else if (first == '<' || first == '>') {
            end = std::min(start + 2, m_bytes.size()); // << or >>
        } else if (first != '[' && first != ']') {
            while (end < m_bytes.size() && !isDelimiter(m_bytes[end]))
                ++end;
        }
        m_at = end;
        return m_bytes.sliced(start, end - start);
    }

    std::optional<qint64> number()
    {
        const QByteArrayView token = next();
        bool ok = false;
        const qint64 value = token.toLongLong(&ok);
        return ok ? std::optional(value) : std::nullopt;
    }

private:
    qsizetype skipSpace()
    {
        while (m_at < m_bytes.size() && isSpace(m_bytes[m_at]))
            ++m_at;
        return m_at;
    }

    QByteArrayView m_bytes;
    qsizetype m_at;
};

// The hexadecimal digits of a <...> token, or nothing.
std::optional<QByteArray> hexDigits(QByteArrayView token)
{
    if (token.size() < 2 || token.front() != '<' || token.back() != '>')
        return std::nullopt;
    return token.sliced(1, token.size() - 2).toByteArray();
}

std::optional<int> hexCode(QByteArrayView token)
{
    const std::optional<QByteArray> digits = hexDigits(token);
    bool ok = false;
    const int code = digits ? digits->toInt(&ok, 16) : 0;
    return ok ? std::optional(code) : std::nullopt;
}

// A <...> destination: UTF-16BE code units, four digits each.
std::optional<QString> hexText(QByteArrayView token)
{
    const std::optional<QByteArray> digits = hexDigits(token);
    if (!digits || digits->isEmpty() || digits->size() % 4 != 0)
        return std::nullopt;
    QString text;
    for (qsizetype at = 0; at < digits->size(); at += 4) {
        bool ok = false;
        text.append(QChar(char16_t(digits->mid(at, 4).toUInt(&ok, 16))));
        if (!ok)
            return std::nullopt;
    }
    return text;
}

// Where a dictionary's key is followed by `count` tokens: their texts.
QList<QByteArray> valueOf(QByteArrayView dictionary, QByteArrayView key, int count)
{
    QList<QByteArray> values;
    for (qsizetype at = dictionary.indexOf(key); at >= 0; at = dictionary.indexOf(key, at + 1)) {
        const qsizetype after = at + key.size();
        if (after < dictionary.size() && !isDelimiter(dictionary[after]))
            continue; // a longer name
        Scanner scanner(dictionary, after);
        for (int i = 0; i < count; ++i)
            values.append(scanner.next().toByteArray());
        return values;
    }
    return values;
}

// An object reference "N G R" after a key: the object number.
std::optional<int> referenceOf(QByteArrayView dictionary, QByteArrayView key)
{
    const QList<QByteArray> tokens = valueOf(dictionary, key, 3);
    bool ok = false;
    const int object = tokens.value(0).toInt(&ok);
    return ok && tokens.size() == 3 && tokens[2] == "R" ? std::optional(object) : std::nullopt;
}

// The last cross-reference table and its trailer.
struct CrossReference
{
    qsizetype position = -1;
    QHash<int, qsizetype> offsets; // objects in use
    QByteArray trailer;
};

std::optional<CrossReference> readCrossReference(const QByteArray &pdf)
{
    const qsizetype keyword = pdf.lastIndexOf("startxref");
    if (keyword < 0)
        return std::nullopt;
    Scanner start(pdf, keyword + 9);
    const std::optional<qint64> position = start.number();
    if (!position || *position < 0 || *position >= pdf.size())
        return std::nullopt;
    CrossReference table;
    table.position = qsizetype(*position);
    Scanner scanner(pdf, table.position);
    if (scanner.next() != "xref")
        return std::nullopt;
    // Subsections "first count", then count entries of 20 bytes:
    // "oooooooooo ggggg n" and a two-byte end of line.
    for (;;) {
        const qsizetype before = scanner.at();
        const std::optional<qint64> first = scanner.number();
        const std::optional<qint64> count = first ? scanner.number() : std::nullopt;
        if (!count) {
            const qsizetype trailer = pdf.indexOf("trailer", before);
            if (trailer < 0)
                return std::nullopt;
            table.trailer = pdf.mid(trailer, keyword - trailer);
            return table;
        }
        qsizetype entry = scanner.at();
        while (entry < pdf.size() && isSpace(pdf[entry]))
            ++entry;
        for (qint64 i = 0; i < *count; ++i, entry += 20) {
            if (entry + 18 > pdf.size())
                return std::nullopt;
            if (pdf[entry + 17] == 'n')
                table.offsets.insert(int(*first + i), qsizetype(pdf.mid(entry, 10).toLongLong()));
        }
        scanner = Scanner(pdf, entry);
    }
}

// The dictionary of an indirect object: the bytes after "N G obj" up to its
// stream or its end.
QByteArrayView dictionaryAt(const QByteArray &pdf, qsizetype offset)
{
    const qsizetype end = pdf.indexOf("endobj", offset);
    if (end < 0)
        return {};
    const qsizetype stream = pdf.indexOf("stream", offset);
    const qsizetype stop = stream >= 0 && stream < end ? stream : end;
    return QByteArrayView(pdf).sliced(offset, stop - offset);
}

// The data of a plain stream (no filter, a direct length).
std::optional<QByteArrayView> streamAt(const QByteArray &pdf, qsizetype offset)
{
    const QByteArrayView dictionary = dictionaryAt(pdf, offset);
    if (dictionary.isEmpty() || dictionary.contains("/Filter") || referenceOf(dictionary, "/Length"))
        return std::nullopt;
    bool ok = false;
    const qsizetype length = valueOf(dictionary, "/Length", 1).value(0).toLongLong(&ok);
    qsizetype start = offset + dictionary.size();
    if (!ok || !QByteArrayView(pdf).sliced(start).startsWith("stream"))
        return std::nullopt;
    start += 6;
    if (start < pdf.size() && pdf[start] == '\r')
        ++start;
    if (start < pdf.size() && pdf[start] == '\n')
        ++start;
    if (length < 0 || start + length > pdf.size())
        return std::nullopt;
    return QByteArrayView(pdf).sliced(start, length);
}

// A font's name without the tag of a subset ("ABCDEF+").
QByteArray fontName(QByteArray baseFont)
{
    if (baseFont.startsWith('/'))
        baseFont.remove(0, 1);
    if (baseFont.size() > 7 && baseFont[6] == '+')
        baseFont.remove(0, 7);
    return baseFont;
}

// The map with each glyph drawn for another character than the one it names
// pointing at the character drawn. False when nothing changed.
//
// The writer names only glyphs that a character below U+10000 reaches; a
// glyph drawn for one beyond (an ideograph of extension B, an emoji) gets no
// text. The writer numbers a font's glyphs from 1 in the order they were
// first drawn: where every glyph it names agrees with the order the font
// noted, the unnamed ones are named from that order too.
bool repairMap(std::map<int, QString> &map, const DrawnFont &font)
{
    bool changed = false;
    bool ordered = true;
    for (auto &[code, text] : map) {
        const QList<quint32> glyphs = font.font.glyphIndexesForString(text);
        if (glyphs.size() != 1 || glyphs[0] == 0)
            continue;
        ordered = ordered && font.order.value(code - 1) == glyphs[0];
        const char32_t drawn = font.characters.value(glyphs[0], 0);
        const QList<uint> named = text.toUcs4();
        if (drawn != 0 && named.size() == 1 && named[0] != drawn) {
            text = QString::fromUcs4(&drawn, 1);
            changed = true;
        }
    }
    for (qsizetype index = 0; ordered && index < font.order.size(); ++index) {
        const char32_t drawn = font.characters.value(font.order[index], 0);
        if (drawn != 0 && map.count(int(index) + 1) == 0) {
            map[int(index) + 1] = QString::fromUcs4(&drawn, 1);
            changed = true;
        }
    }
    return changed;
}

QByteArray hex(int value, int digits)
{
    return QByteArray::number(value, 16).toUpper().rightJustified(digits, '0');
}

} // namespace

std::map<int, QString> readTextMap(QByteArrayView cmap)
{
    std::map<int, QString> map;
    Scanner scanner(cmap);
    while (!scanner.atEnd()) {
        const QByteArrayView keyword = scanner.next();
        if (keyword == "beginbfchar") {
            for (QByteArrayView token = scanner.next(); !token.isEmpty() && token != "endbfchar";
                 token = scanner.next()) {
                const std::optional<int> code = hexCode(token);
                const std::optional<QString> text = hexText(scanner.next());
                if (code && text)
                    map[*code] = *text;
            }
        } else if (keyword == "beginbfrange") {
            // <first> <last> <text>: the last code unit counts up along the
            // range; <first> <last> [<text> ...]: one text per code.
            for (QByteArrayView token = scanner.next(); !token.isEmpty() && token != "endbfrange";
                 token = scanner.next()) {
                const std::optional<int> first = hexCode(token);
                const std::optional<int> last = hexCode(scanner.next());
                QByteArrayView target = scanner.next();
                if (!first || !last || *last < *first)
                    continue;
                if (target == "[") {
                    for (int code = *first; (target = scanner.next()) != "]" && !target.isEmpty(); ++code) {
                        if (const std::optional<QString> text = hexText(target); text && code <= *last)
                            map[code] = *text;
                    }
                } else if (std::optional<QString> text = hexText(target)) {
                    for (int code = *first; code <= *last; ++code) {
                        map[code] = *text;
                        text->back() = QChar(char16_t(text->back().unicode() + 1));
                    }
                }
            }
        }
    }
    return map;
}

QByteArray writeTextMap(const std::map<int, QString> &map)
{
    QByteArray cmap = "/CIDInit /ProcSet findresource begin\n"
                      "12 dict begin\n"
                      "begincmap\n"
                      "/CIDSystemInfo << /Registry (Adobe) /Ordering (UCS) /Supplement 0 >> def\n"
                      "/CMapName /Adobe-Identity-UCS def\n"
                      "/CMapType 2 def\n"
                      "1 begincodespacerange\n"
                      "<0000> <FFFF>\n"
                      "endcodespacerange\n";
    // At most 100 entries a block.
    auto entry = map.begin();
    while (entry != map.end()) {
        const auto count = std::min<std::ptrdiff_t>(100, std::distance(entry, map.end()));
        cmap += QByteArray::number(count) + " beginbfchar\n";
        for (std::ptrdiff_t i = 0; i < count; ++i, ++entry) {
            cmap += '<' + hex(entry->first, 4) + "> <";
            for (const QChar unit : entry->second)
                cmap += hex(unit.unicode(), 4);
            cmap += ">\n";
        }
        cmap += "endbfchar\n";
    }
    cmap += "endcmap\n"
            "CMapName currentdict /CMap defineresource pop\n"
            "end\n"
            "end\n";
    return cmap;
}

QByteArray repairTextMaps(const QByteArray &pdf, const QList<DrawnFont> &fonts)
{
    const std::optional<CrossReference> table = readCrossReference(pdf);
    if (!table)
        return pdf;

    // Each font dictionary with a text map, and the map's new text.
    std::map<int, QByteArray> repaired;
    for (auto object = table->offsets.cbegin(); object != table->offsets.cend(); ++object) {
        const QByteArrayView dictionary = dictionaryAt(pdf, object.value());
        const std::optional<int> mapObject = referenceOf(dictionary, "/ToUnicode");
        if (!mapObject || !table->offsets.contains(*mapObject) || repaired.count(*mapObject))
            continue;
        const QByteArray name = fontName(valueOf(dictionary, "/BaseFont", 1).value(0));
        const auto font = std::find_if(fonts.cbegin(), fonts.cend(), [&name](const DrawnFont &drawn) {
            return !drawn.postScriptName.isEmpty() && drawn.postScriptName == name;
        });
        const std::optional<QByteArrayView> stream =
            font != fonts.cend() ? streamAt(pdf, table->offsets.value(*mapObject)) : std::nullopt;
        if (!stream)
            continue;
        std::map<int, QString> map = readTextMap(*stream);
        if (repairMap(map, *font))
            repaired[*mapObject] = writeTextMap(map);
    }
    const QList<QByteArray> root = valueOf(table->trailer, "/Root", 3);
    const QList<QByteArray> info = valueOf(table->trailer, "/Info", 3);
    const QList<QByteArray> size = valueOf(table->trailer, "/Size", 1);
    if (repaired.empty() || root.size() != 3 || size.size() != 1)
        return pdf;

    // The update: the new maps under their old object numbers, a table of
    // where they are, and a trailer that points back at the table before.
    QByteArray update = pdf;
    if (!update.endsWith('\n'))
        update += '\n';
    QByteArray references = "xref\n";
    for (const auto &[number, cmap] : repaired) {
        references += QByteArray::number(number) + " 1\n"
                      + QByteArray::number(update.size()).rightJustified(10, '0') + " 00000 n \n";
        update += QByteArray::number(number) + " 0 obj\n<< /Length " + QByteArray::number(cmap.size())
                  + " >>\nstream\n" + cmap + "\nendstream\nendobj\n";
    }
    const qsizetype position = update.size();
    update += references + "trailer\n<< /Size " + size[0] + " /Root " + root.join(' ');
    if (info.size() == 3)
        update += " /Info " + info.join(' ');
    update += " /Prev " + QByteArray::number(table->position) + " >>\nstartxref\n" + QByteArray::number(position)
              + "\n%%EOF\n";
    return update;
}

} // namespace wr::sheet
