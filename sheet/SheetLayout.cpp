#include "sheet/SheetLayout.h"

#include "channels/ChannelRecord.h"
#include "features/FmRadio.h"

#include <QPainter>

#include <algorithm>
#include <numeric>

using namespace Qt::StringLiterals;

namespace wr::sheet {

namespace {

// Sizes and distances in points.
constexpr qreal TitleSize = 18;
constexpr qreal SubtitleSize = 11;
constexpr qreal InfoSize = 9;
constexpr qreal CellSize = 9;
constexpr qreal CaptionSize = 8;
constexpr qreal SectionSize = 10.5;
constexpr qreal SettingSize = 8.5;
constexpr qreal FooterSize = 8;
constexpr qreal SmallestSize = 6;   // a table shrinks no further to fit the width
constexpr qreal CellPadding = 4;    // left and right of a cell's text
constexpr qreal RowPadding = 1.5;   // above and below a row's text
constexpr qreal SectionGap = 14;    // above a section's title
constexpr qreal ColumnGap = 18;     // between the settings' two halves
constexpr int FmColumns = 4;        // FM channels a row

const QColor Ink(0x00, 0x00, 0x00);
const QColor Grey(0x55, 0x55, 0x55);
const QColor Rule(0xB0, 0xB0, 0xB0);
const QColor CaptionFill(0xE4, 0xE4, 0xE4);
const QColor StripeFill(0xF4, 0xF4, 0xF4);

constexpr Text FileLabel{u"File", u"文件", u"文件"};
constexpr Text NotSaved{u"not saved", u"未保存", u"未保存"};
constexpr Text DateLabel{u"Date", u"日期", u"日期"};
constexpr Text InUseLabel{u"Channels in use", u"使用中的信道", u"使用中的信道"};
constexpr Text ListedLabel{u"Channels on this sheet", u"本表所列信道", u"本表所列信道"};
constexpr Text NoChannels{u"No channel to list.", u"没有可列出的信道。", u"沒有可列出的信道。"};
constexpr Text OptionsTitle{u"Optional Features", u"可选功能", u"可選功能"};
constexpr Text KeysTitle{u"Key Setting", u"键定义", u"鍵定義"};
constexpr Text FmTitle{u"FM Radio", u"收音机", u"收音機"};
constexpr Text PageOf{u"Page %1 of %2", u"第 %1 页，共 %2 页", u"第 %1 頁，共 %2 頁"};

QString dateText(const QDateTime &when)
{
    return when.toString(u"yyyy-MM-dd HH:mm"_s);
}

void rule(QPainter &painter, qreal y, qreal from, qreal to, const QColor &colour, qreal width)
{
    painter.setPen(QPen(colour, width));
    painter.drawLine(QPointF(from, y), QPointF(to, y));
}

} // namespace

QList<int> paginate(const QList<Block> &blocks, qreal pageHeight, qreal captionHeight)
{
    QList<int> pages;
    int page = 0;
    qreal used = 0;
    bool captioned = false; // the column captions are on this page already
    for (qsizetype i = 0; i < blocks.size(); ++i) {
        const Block &block = blocks[i];
        const auto needed = [&] {
            qreal height = block.height + (block.tableRow && !captioned ? captionHeight : 0);
            if (block.keepWithNext && i + 1 < blocks.size())
                height += blocks[i + 1].height;
            return height;
        };
        if (used > 0 && used + needed() > pageHeight) {
            ++page;
            used = 0;
            captioned = false;
        }
        if (block.tableRow && !captioned) {
            used += captionHeight;
            captioned = true;
        }
        used += block.height;
        pages.append(page);
    }
    return pages;
}

SheetLayout::SheetLayout(const SheetContent &content, GlyphText &text, QSizeF area)
    : m_content(content)
    , m_text(text)
    , m_area(area)
{
    layOutColumns();
    addHeading();
    addChannels();
    addSettings();
    addFmChannels();
    const qreal footer = lineHeight(FooterSize) + 6;
    m_pages = paginate(m_blocks, m_area.height() - footer, m_captionHeight);
    m_pageCount = m_pages.isEmpty() ? 1 : m_pages.back() + 1;
}

qreal SheetLayout::lineHeight(qreal size) const
{
    return m_text.ascent(size) + m_text.descent(size);
}

qreal SheetLayout::width(QStringView text, qreal size) const
{
    return m_text.layout(text, size).width;
}

QString SheetLayout::fitted(const QString &text, qreal size, qreal room) const
{
    if (width(text, size) <= room)
        return text;
    // The start and the end (a file's suffix) stay; the middle goes.
    const QList<uint> characters = text.toUcs4();
    const auto part = [&characters](qsizetype from, qsizetype count) {
        return QString::fromUcs4(reinterpret_cast<const char32_t *>(characters.constData() + from), count);
    };
    for (qsizetype dropped = 1; dropped < characters.size(); ++dropped) {
        const qsizetype head = (characters.size() - dropped + 1) / 2;
        const qsizetype tail = characters.size() - dropped - head;
        const QString candidate = part(0, head) + u'…' + part(characters.size() - tail, tail);
        if (width(candidate, size) <= room)
            return candidate;
    }
    return u"…"_s;
}

void SheetLayout::paintText(QPainter &painter, QStringView text, qreal size, QPointF topLeft, qreal room,
                            const QColor &colour) const
{
    const TextLine line = m_text.layout(text, size);
    // With room given the text ends at its right edge.
    const qreal x = room >= 0 ? topLeft.x() + room - line.width : topLeft.x();
    painter.setPen(colour);
    m_text.draw(painter, QPointF(x, topLeft.y() + m_text.ascent(size)), line);
}

void SheetLayout::layOutColumns()
{
    const Language language = m_content.language;
    // The widest cell, caption and caption word of each column.
    std::array<qreal, Columns> cells{}, captions{}, words{};
    for (const QStringList &row : m_content.channels) {
        for (int column = 0; column < Columns; ++column)
            cells[column] = std::max(cells[column], width(row.value(column), CellSize));
    }
    for (int column = 0; column < Columns; ++column) {
        const QString caption = ChannelColumnCaptions[std::size_t(column)].in(language);
        captions[column] = width(caption, CaptionSize);
        for (const QString &word : caption.split(u' '))
            words[column] = std::max(words[column], width(word, CaptionSize));
    }
    // Captions on one line if the table fits so, else broken at spaces;
    // if it still does not fit, all of it smaller.
    const auto naturalWidths = [&cells](const std::array<qreal, Columns> &captionWidths, qreal scale) {
        std::array<qreal, Columns> widths{};
        for (int column = 0; column < Columns; ++column)
            widths[column] = std::max(cells[column], captionWidths[column]) * scale + 2 * CellPadding;
        return widths;
    };
    const auto sum = [](const std::array<qreal, Columns> &widths) {
        return std::accumulate(widths.begin(), widths.end(), qreal(0));
    };
    const qreal room = m_area.width();
    std::array<qreal, Columns> natural = naturalWidths(captions, 1);
    if (sum(natural) > room)
        natural = naturalWidths(words, 1);
    qreal scale = 1;
    if (const qreal total = sum(natural); total > room) {
        const qreal padding = 2 * CellPadding * Columns;
        scale = std::max(SmallestSize / CellSize, (room - padding) / (total - padding));
        natural = naturalWidths(words, scale);
    }
    m_cellSize = CellSize * scale;
    m_captionSize = CaptionSize * scale;
    // The spare width goes to the columns in proportion to their widths.
    const qreal total = sum(natural);
    int lines = 1;
    for (int column = 0; column < Columns; ++column) {
        m_columnWidths[column] = natural[column] * std::max(qreal(1), room / total);
        QStringList &captionLines = m_captionLines[column];
        for (const QString &word : ChannelColumnCaptions[std::size_t(column)].in(language).split(u' ')) {
            const qreal captionRoom = m_columnWidths[column] - 2 * CellPadding;
            if (!captionLines.isEmpty() && width(captionLines.back() + u' ' + word, m_captionSize) <= captionRoom)
                captionLines.back() += u' ' + word;
            else
                captionLines.append(word);
        }
        lines = std::max(lines, int(captionLines.size()));
    }
    m_captionHeight = lines * lineHeight(m_captionSize) + 2 * RowPadding + 1;
}

void SheetLayout::addHeading()
{
    const Language language = m_content.language;
    QList<std::pair<QString, QString>> facts{
        {FileLabel.in(language), m_content.fileName.isEmpty() ? NotSaved.in(language) : m_content.fileName},
        {DateLabel.in(language), dateText(m_content.printed)},
        {InUseLabel.in(language), QString::number(m_content.channelsInUse)},
    };
    if (m_content.selected)
        facts.append({ListedLabel.in(language), QString::number(m_content.channels.size())});
    qreal labelWidth = 0;
    for (const auto &fact : std::as_const(facts))
        labelWidth = std::max(labelWidth, width(fact.first, InfoSize));
    labelWidth += 12;
    const qreal titleHeight = lineHeight(TitleSize);
    const qreal factHeight = lineHeight(InfoSize) + 1;
    const qreal height = titleHeight + 8 + factHeight * qreal(facts.size()) + 10;
    m_blocks.append({height, false, false, [=, this](QPainter &painter, qreal top) {
                         const QString model = ModelName();
                         paintText(painter, model, TitleSize, {0, top});
                         // The subtitle on the title's baseline.
                         const qreal raise = m_text.ascent(TitleSize) - m_text.ascent(SubtitleSize);
                         paintText(painter, SheetTitle.in(language), SubtitleSize,
                                   {width(model, TitleSize) + 10, top + raise}, -1, Grey);
                         rule(painter, top + titleHeight + 3, 0, m_area.width(), Ink, 0.8);
                         qreal y = top + titleHeight + 8;
                         for (const auto &[label, value] : facts) {
                             paintText(painter, label, InfoSize, {0, y}, -1, Grey);
                             paintText(painter, fitted(value, InfoSize, m_area.width() - labelWidth), InfoSize,
                                       {labelWidth, y});
                             y += factHeight;
                         }
                     }});
}

void SheetLayout::addChannels()
{
    const qreal height = lineHeight(m_cellSize) + 2 * RowPadding;
    if (m_content.channels.isEmpty()) {
        m_blocks.append({height, false, false, [this](QPainter &painter, qreal top) {
                             paintText(painter, NoChannels.in(m_content.language), m_cellSize, {0, top + RowPadding},
                                       -1, Grey);
                         }});
        return;
    }
    for (qsizetype row = 0; row < m_content.channels.size(); ++row) {
        m_blocks.append({height, true, false, [this, row, height](QPainter &painter, qreal top) {
                             if (row % 2)
                                 painter.fillRect(QRectF(0, top, m_area.width(), height), StripeFill);
                             const QStringList &cells = m_content.channels[row];
                             qreal x = 0;
                             for (int column = 0; column < Columns; ++column) {
                                 // Channel numbers line up on the right.
                                 const qreal room = column == 0 ? m_columnWidths[0] - 2 * CellPadding : -1;
                                 paintText(painter, cells.value(column), m_cellSize,
                                           {x + CellPadding, top + RowPadding}, room);
                                 x += m_columnWidths[column];
                             }
                             rule(painter, top + height, 0, m_area.width(), Rule, 0.4);
                         }});
    }
}

void SheetLayout::paintCaptions(QPainter &painter, qreal top) const
{
    painter.fillRect(QRectF(0, top, m_area.width(), m_captionHeight), CaptionFill);
    qreal x = 0;
    for (int column = 0; column < Columns; ++column) {
        qreal y = top + RowPadding;
        for (const QString &line : m_captionLines[column]) {
            const qreal room = column == 0 ? m_columnWidths[0] - 2 * CellPadding : -1;
            paintText(painter, line, m_captionSize, {x + CellPadding, y}, room);
            y += lineHeight(m_captionSize);
        }
        x += m_columnWidths[column];
    }
    rule(painter, top + m_captionHeight, 0, m_area.width(), Ink, 0.6);
}

// A section: its title (kept with what follows) and its rows, `perRow`
// items a row, each painted by `paintItem` at the left of its share.
void SheetLayout::addSection(const QStringList &titles, qsizetype items, int perRow, qreal rowHeight,
                             std::function<void(QPainter &, qsizetype item, QPointF topLeft)> paintItem)
{
    const qreal share = (m_area.width() - ColumnGap * (perRow - 1)) / perRow;
    const qreal titleHeight = SectionGap + lineHeight(SectionSize) + 4;
    m_blocks.append({titleHeight, false, true, [this, titles, share](QPainter &painter, qreal top) {
                         const qreal y = top + SectionGap;
                         for (qsizetype i = 0; i < titles.size(); ++i) {
                             const qreal left = qreal(i) * (share + ColumnGap);
                             paintText(painter, titles[i], SectionSize, {left, y});
                             rule(painter, y + lineHeight(SectionSize) + 1.5, left, left + share, Ink, 0.6);
                         }
                     }});
    const qsizetype rows = (items + perRow - 1) / perRow;
    for (qsizetype row = 0; row < rows; ++row) {
        m_blocks.append({rowHeight, false, false, [=, this](QPainter &painter, qreal top) {
                             for (int column = 0; column < perRow; ++column) {
                                 if (const qsizetype item = row * perRow + column; item < items)
                                     paintItem(painter, item, {qreal(column) * (share + ColumnGap), top + 1});
                             }
                         }});
    }
}

void SheetLayout::addSettings()
{
    // Options on the left, keys on the right, each "caption  value"; the
    // text gets smaller where a half would not hold its widest pair.
    const std::array<const QList<FieldLine> *, 2> halves{&m_content.options, &m_content.keys};
    const qreal share = (m_area.width() - ColumnGap) / 2;
    std::array<qreal, 2> captionWidths{};
    qreal size = SettingSize;
    for (std::size_t half = 0; half < halves.size(); ++half) {
        qreal valueWidth = 0;
        for (const FieldLine &line : *halves[half]) {
            captionWidths[half] = std::max(captionWidths[half], width(line.caption, SettingSize) + 10);
            valueWidth = std::max(valueWidth, width(line.value, SettingSize));
        }
        if (captionWidths[half] + valueWidth > share)
            size = std::min(size, std::max(SmallestSize, SettingSize * share / (captionWidths[half] + valueWidth)));
    }
    const Language language = m_content.language;
    const qsizetype rows = std::max(m_content.options.size(), m_content.keys.size());
    addSection({OptionsTitle.in(language), KeysTitle.in(language)}, rows * 2, 2, lineHeight(size) + 2,
               [=, this](QPainter &painter, qsizetype item, QPointF topLeft) {
                   const std::size_t half = std::size_t(item % 2);
                   const qsizetype row = item / 2;
                   if (row >= halves[half]->size())
                       return;
                   const FieldLine &line = halves[half]->at(row);
                   paintText(painter, line.caption, size, topLeft, -1, Grey);
                   const qreal valueLeft = captionWidths[half] * size / SettingSize;
                   paintText(painter, line.value, size, topLeft + QPointF(valueLeft, 0));
               });
}

void SheetLayout::addFmChannels()
{
    if (m_content.fmChannels.isEmpty())
        return;
    const Language language = m_content.language;
    const qreal numberWidth = std::max(width(fm::ChannelHeader.in(language), SettingSize), width(u"00", SettingSize));
    const QString caption = fm::ChannelHeader.in(language);
    addSection({FmTitle.in(language)},
               m_content.fmChannels.size(), FmColumns, lineHeight(SettingSize) + 2,
               [=, this](QPainter &painter, qsizetype item, QPointF topLeft) {
                   const auto &[channel, frequency] = m_content.fmChannels[item];
                   paintText(painter, caption + u' ' + QString::number(channel), SettingSize, topLeft, -1, Grey);
                   paintText(painter, frequency + u" MHz"_s, SettingSize,
                             topLeft + QPointF(width(caption, SettingSize) + numberWidth + 12, 0));
               });
}

void SheetLayout::paintFooter(QPainter &painter, int page) const
{
    const Language language = m_content.language;
    const qreal top = m_area.height() - lineHeight(FooterSize);
    rule(painter, top - 3, 0, m_area.width(), Rule, 0.5);
    const QString pageText = PageOf.in(language).arg(page + 1).arg(m_pageCount);
    const qreal pageWidth = width(pageText, FooterSize);
    paintText(painter, pageText, FooterSize, {0, top}, m_area.width(), Grey);
    const QString file = m_content.fileName.isEmpty() ? NotSaved.in(language) : m_content.fileName;
    const QString where = ModelName() + u" · "_s + file + u" · "_s + dateText(m_content.printed);
    paintText(painter, fitted(where, FooterSize, m_area.width() - pageWidth - 20), FooterSize, {0, top}, -1, Grey);
}

void SheetLayout::paint(QPainter &painter, int page) const
{
    qreal top = 0;
    bool captioned = false;
    for (qsizetype i = 0; i < m_blocks.size(); ++i) {
        if (m_pages[i] != page)
            continue;
        const Block &block = m_blocks[i];
        if (block.tableRow && !captioned) {
            paintCaptions(painter, top);
            top += m_captionHeight;
            captioned = true;
        }
        block.paint(painter, top);
        top += block.height;
    }
    paintFooter(painter, page);
}

} // namespace wr::sheet
