#pragma once

#include "sheet/ChannelSheet.h"
#include "sheet/GlyphText.h"

#include <QColor>
#include <QList>
#include <QSizeF>

#include <array>
#include <functional>

class QPainter;

namespace wr::sheet {

// A piece of a page that is never split: the heading, a row of a table, a
// section's title. Heights are in points.
struct Block
{
    qreal height = 0;
    bool tableRow = false;     // a channel row: a page it starts on repeats the column captions first
    bool keepWithNext = false; // a title: goes to the next page unless the block after it fits too
    std::function<void(QPainter &, qreal top)> paint = {};
};

// The page (from 0) of each block when pages hold `pageHeight` points and
// the column captions above the first channel row of a page take
// `captionHeight`. A block that fits nowhere starts a page of its own.
QList<int> paginate(const QList<Block> &blocks, qreal pageHeight, qreal captionHeight);

// The sheet laid out on pages of a size (points, inside the margins).
class SheetLayout
{
public:
    SheetLayout(const SheetContent &content, GlyphText &text, QSizeF area);
    SheetLayout(const SheetLayout &) = delete; // its blocks paint through `this`
    SheetLayout &operator=(const SheetLayout &) = delete;

    int pageCount() const { return m_pageCount; }
    // Paints a page; the painter's unit is the point, its origin the top
    // left corner of the area.
    void paint(QPainter &painter, int page) const;

private:
    static constexpr int Columns = 9;

    void addHeading();
    void addChannels();
    void addSettings();
    void addFmChannels();
    void addSection(const QStringList &titles, qsizetype items, int perRow, qreal rowHeight,
                    std::function<void(QPainter &, qsizetype item, QPointF topLeft)> paintItem);
    void layOutColumns();
    void paintCaptions(QPainter &painter, qreal top) const;
    void paintFooter(QPainter &painter, int page) const;
    // Text with its top at topLeft; with room >= 0 it ends at room's right
    // edge instead of starting there.
    void paintText(QPainter &painter, QStringView text, qreal size, QPointF topLeft, qreal room = -1,
                   const QColor &colour = Qt::black) const;

    qreal lineHeight(qreal size) const;
    qreal width(QStringView text, qreal size) const;
    // The text, or its start and end with "…" between, within room.
    QString fitted(const QString &text, qreal size, qreal room) const;

    const SheetContent &m_content;
    GlyphText &m_text;
    QSizeF m_area;
    QList<Block> m_blocks;
    QList<int> m_pages; // the page of each block
    int m_pageCount = 1;

    // The channel table: column widths and the captions' lines.
    qreal m_cellSize = 0;
    qreal m_captionSize = 0;
    qreal m_captionHeight = 0;
    std::array<qreal, Columns> m_columnWidths{};
    std::array<QStringList, Columns> m_captionLines;
};

} // namespace wr::sheet
