#include "shell/AppIcon.h"

#include <QApplication>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QStyle>
#include <QStyleOption>

namespace wr {

namespace {

// Each picture is drawn on its own square grid of units (24 for the toolbar,
// 16 for the tree, 256 for the program's icon) and scaled to the size asked
// for. Lines sit on half units so that they stay sharp at the design size.
using DrawFunction = void (*)(QPainter &);

const QColor Outline(61, 70, 80);
const QColor Paper(255, 255, 255);
const QColor Blue(47, 109, 181);
const QColor DarkBlue(29, 74, 128);
const QColor Green(46, 157, 70);
const QColor DarkGreen(30, 110, 48);
const QColor Orange(224, 123, 31);
const QColor DarkOrange(160, 82, 12);
const QColor RadioBody(43, 48, 56);
const QColor RadioScreen(159, 224, 138);

QPen pen(const QColor &colour, qreal width = 1.0)
{
    QPen result(colour, width);
    result.setJoinStyle(Qt::RoundJoin);
    result.setCapStyle(Qt::RoundCap);
    return result;
}

QPainterPath polygonPath(std::initializer_list<QPointF> points)
{
    QPainterPath path;
    path.addPolygon(QPolygonF(QList<QPointF>(points)));
    path.closeSubpath();
    return path;
}

void drawNew(QPainter &p)
{
    // A blank page with its corner folded, and a green plus.
    p.setPen(pen(Outline));
    p.setBrush(Paper);
    p.drawPath(polygonPath({{4.5, 1.5}, {13.5, 1.5}, {18.5, 6.5}, {18.5, 21.5}, {4.5, 21.5}}));
    p.setBrush(QColor(223, 229, 236));
    p.drawPath(polygonPath({{13.5, 1.5}, {13.5, 6.5}, {18.5, 6.5}}));
    p.setPen(pen(DarkGreen));
    p.setBrush(Green);
    p.drawEllipse(QPointF(17.5, 17.5), 5.0, 5.0);
    p.setPen(pen(Paper, 2.0));
    p.drawLine(QPointF(17.5, 14.5), QPointF(17.5, 20.5));
    p.drawLine(QPointF(14.5, 17.5), QPointF(20.5, 17.5));
}

void drawOpen(QPainter &p)
{
    // A folder with a sheet inside and its front flap tipped open.
    const QColor edge(154, 109, 16);
    p.setPen(pen(edge));
    p.setBrush(QColor(217, 162, 39));
    p.drawPath(polygonPath({{1.5, 4.5}, {8.5, 4.5}, {10.5, 6.5}, {19.5, 6.5}, {19.5, 19.5}, {1.5, 19.5}}));
    p.setPen(pen(QColor(150, 160, 170)));
    p.setBrush(Paper);
    p.drawRect(QRectF(4.5, 8.5, 13.0, 6.0));
    p.setPen(pen(edge));
    p.setBrush(QColor(244, 197, 66));
    p.drawPath(polygonPath({{5.5, 10.5}, {22.5, 10.5}, {19.5, 19.5}, {1.5, 19.5}}));
}

void drawSave(QPainter &p)
{
    // A diskette: blue case, metal shutter at the top, label at the bottom.
    p.setPen(pen(DarkBlue));
    p.setBrush(Blue);
    p.drawPath(polygonPath({{2.5, 2.5}, {18.5, 2.5}, {21.5, 5.5}, {21.5, 21.5}, {2.5, 21.5}}));
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(214, 222, 232));
    p.drawRect(QRectF(7.0, 3.0, 10.0, 7.0));
    p.setBrush(DarkBlue);
    p.drawRect(QRectF(13.0, 4.0, 2.5, 5.0));
    p.setPen(pen(DarkBlue));
    p.setBrush(Paper);
    p.drawRect(QRectF(5.5, 13.5, 13.0, 8.0));
    p.setPen(pen(QColor(150, 175, 200)));
    p.drawLine(QPointF(7.5, 16.5), QPointF(16.5, 16.5));
    p.drawLine(QPointF(7.5, 18.5), QPointF(16.5, 18.5));
}

void drawPrint(QPainter &p)
{
    // A printer with a sheet going in at the back and one coming out.
    const QColor sheetEdge(140, 150, 160);
    p.setPen(pen(sheetEdge));
    p.setBrush(Paper);
    p.drawRect(QRectF(6.5, 2.5, 11.0, 7.0));
    p.setPen(pen(QColor(45, 52, 60)));
    p.setBrush(QColor(104, 116, 130));
    p.drawRoundedRect(QRectF(2.5, 8.5, 19.0, 9.0), 2.0, 2.0);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(111, 220, 90));
    p.drawEllipse(QPointF(18.5, 11.5), 1.2, 1.2);
    p.setPen(pen(sheetEdge));
    p.setBrush(Paper);
    p.drawRect(QRectF(6.5, 13.5, 11.0, 8.0));
    p.setPen(pen(QColor(120, 130, 140)));
    p.drawLine(QPointF(8.5, 16.5), QPointF(15.5, 16.5));
    p.drawLine(QPointF(8.5, 18.5), QPointF(13.5, 18.5));
}

// The hand-held radio of the Read and Write pictures, on the left half.
void drawSmallRadio(QPainter &p)
{
    p.setPen(Qt::NoPen);
    p.setBrush(RadioBody);
    p.drawRoundedRect(QRectF(9.0, 1.0, 2.0, 7.0), 0.8, 0.8);
    p.drawRoundedRect(QRectF(2.0, 6.0, 10.0, 17.0), 2.0, 2.0);
    p.setBrush(RadioScreen);
    p.drawRect(QRectF(3.5, 8.0, 7.0, 4.5));
    p.setBrush(QColor(201, 210, 220));
    for (int row = 0; row < 2; ++row) {
        for (int column = 0; column < 3; ++column)
            p.drawRect(QRectF(3.5 + column * 2.5, 14.5 + row * 3.0, 1.6, 1.8));
    }
}

void drawRead(QPainter &p)
{
    // Data coming out of the radio: a green arrow leaving it.
    drawSmallRadio(p);
    p.setPen(pen(DarkGreen));
    p.setBrush(Green);
    p.drawPath(polygonPath({{12.5, 10.5}, {16.5, 10.5}, {16.5, 6.5}, {22.5, 13.0}, {16.5, 19.5}, {16.5, 15.5},
                            {12.5, 15.5}}));
}

void drawWrite(QPainter &p)
{
    // Data going into the radio: an orange arrow pointing at it.
    drawSmallRadio(p);
    p.setPen(pen(DarkOrange));
    p.setBrush(Orange);
    p.drawPath(polygonPath({{22.5, 10.5}, {18.5, 10.5}, {18.5, 6.5}, {12.5, 13.0}, {18.5, 19.5}, {18.5, 15.5},
                            {22.5, 15.5}}));
}

void drawAbout(QPainter &p)
{
    // A white "i" on a blue disc, drawn as shapes so no font is needed.
    p.setPen(pen(DarkBlue));
    p.setBrush(Blue);
    p.drawEllipse(QPointF(12.0, 12.0), 10.0, 10.0);
    p.setPen(Qt::NoPen);
    p.setBrush(Paper);
    p.drawEllipse(QPointF(12.0, 7.0), 1.7, 1.7);
    p.drawRoundedRect(QRectF(10.5, 10.0, 3.0, 8.5), 1.0, 1.0);
}

void drawChannelList(QPainter &p) // 16 units
{
    // A small table with a blue header row and a number column.
    p.setPen(Qt::NoPen);
    p.setBrush(Paper);
    p.drawRect(QRectF(1.5, 2.5, 13.0, 11.0));
    p.setBrush(Blue);
    p.drawRect(QRectF(1.5, 2.5, 13.0, 3.0));
    p.setBrush(QColor(214, 226, 242));
    p.drawRect(QRectF(1.5, 5.5, 4.0, 8.0));
    p.setPen(pen(QColor(150, 165, 185)));
    p.drawLine(QPointF(1.5, 8.5), QPointF(14.5, 8.5));
    p.drawLine(QPointF(1.5, 11.0), QPointF(14.5, 11.0));
    p.drawLine(QPointF(5.5, 5.5), QPointF(5.5, 13.5));
    p.drawLine(QPointF(10.0, 5.5), QPointF(10.0, 13.5));
    p.setPen(pen(DarkBlue));
    p.setBrush(Qt::NoBrush);
    p.drawRect(QRectF(1.5, 2.5, 13.0, 11.0));
}

void drawOptionalFeatures(QPainter &p) // 16 units
{
    // Three sliders, as on a settings panel.
    const qreal knobs[3] = {5.0, 11.0, 7.5};
    for (int i = 0; i < 3; ++i) {
        const qreal y = 3.5 + i * 4.5;
        p.setPen(pen(Outline, 1.5));
        p.drawLine(QPointF(1.5, y), QPointF(14.5, y));
        p.setPen(pen(DarkOrange));
        p.setBrush(Orange);
        p.drawRoundedRect(QRectF(knobs[i] - 1.5, y - 2.0, 3.0, 4.0), 0.8, 0.8);
    }
}

void drawProgram(QPainter &p) // 256 units, the picture of resources/wrpd6t.svg
{
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0x1f, 0x5f, 0xa8));
    p.drawRoundedRect(QRectF(8, 8, 240, 240), 44, 44);
    p.setBrush(QColor(0x2f, 0x76, 0xc4));
    p.drawRoundedRect(QRectF(8, 8, 240, 120), 44, 44);
    p.setBrush(QColor(0x20, 0x24, 0x2a));
    p.drawRoundedRect(QRectF(150, 22, 16, 64), 6, 6);
    p.drawRoundedRect(QRectF(78, 70, 100, 166), 18, 18);
    p.setBrush(QColor(0x9f, 0xe0, 0x8a));
    p.drawRoundedRect(QRectF(92, 86, 72, 42), 5, 5);
    p.setBrush(QColor(0x2e, 0x5a, 0x22));
    p.drawRoundedRect(QRectF(100, 96, 40, 8), 2, 2);
    p.drawRoundedRect(QRectF(100, 110, 56, 8), 2, 2);
    p.setBrush(QColor(0xc9, 0xd2, 0xdc));
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column)
            p.drawRoundedRect(QRectF(94 + column * 25, 142 + row * 22, 18, 14), 3, 3);
    }
    p.setBrush(QColor(0xe8, 0xb2, 0x3a));
    p.drawEllipse(QPointF(106, 218), 5, 5);
    p.drawEllipse(QPointF(150, 218), 5, 5);
}

// An icon painted by one of the functions above at whatever size a widget
// asks for; each size and mode is drawn once and kept.
class DrawnIconEngine final : public QIconEngine
{
public:
    DrawnIconEngine(DrawFunction draw, int units, QList<QSize> sizes)
        : m_draw(draw)
        , m_units(units)
        , m_sizes(std::move(sizes))
    {
    }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override
    {
        const qreal ratio = painter->device() ? painter->device()->devicePixelRatio() : 1.0;
        QPixmap image = pixmap(rect.size() * ratio, mode, state);
        image.setDevicePixelRatio(ratio);
        painter->drawPixmap(rect, image);
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State) override
    {
        if (size.isEmpty())
            return {};
        const quint64 key = (quint64(size.width()) << 32) | (quint64(size.height()) << 8) | quint64(mode);
        if (const auto found = m_cache.constFind(key); found != m_cache.constEnd())
            return *found;

        QPixmap image(size);
        image.fill(Qt::transparent);
        {
            QPainter painter(&image);
            painter.setRenderHint(QPainter::Antialiasing);
            // Square pictures, centred in a rectangle that is not square.
            const int side = std::min(size.width(), size.height());
            painter.translate((size.width() - side) / 2.0, (size.height() - side) / 2.0);
            painter.scale(qreal(side) / m_units, qreal(side) / m_units);
            m_draw(painter);
        }
        if (mode != QIcon::Normal && qApp) {
            // Greyed when disabled, tinted when selected, as the style does
            // for its own icons.
            QStyleOption option;
            option.palette = QApplication::palette();
            image = QApplication::style()->generatedIconPixmap(mode, image, &option);
        }
        m_cache.insert(key, image);
        return image;
    }

    QSize actualSize(const QSize &size, QIcon::Mode, QIcon::State) override
    {
        const int side = std::min(size.width(), size.height());
        return {side, side};
    }

    QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override
    {
        return m_sizes;
    }

    QIconEngine *clone() const override
    {
        return new DrawnIconEngine(*this);
    }

    QString key() const override
    {
        return QStringLiteral("wrpd6t-drawn");
    }

private:
    DrawFunction m_draw;
    int m_units;
    QList<QSize> m_sizes;
    QHash<quint64, QPixmap> m_cache;
};

QIcon drawnIcon(DrawFunction draw, int units, QList<QSize> sizes)
{
    return QIcon(new DrawnIconEngine(draw, units, std::move(sizes)));
}

} // namespace

QIcon AppIcon()
{
    // A window manager picks from these sizes for title bars and task
    // switchers; larger ones are drawn when asked for.
    static const QIcon icon = drawnIcon(drawProgram, 256, {{16, 16}, {32, 32}, {48, 48}, {64, 64}});
    return icon;
}

QIcon CommandIconFor(CommandIcon which)
{
    const QList<QSize> toolSizes{{24, 24}, {48, 48}};
    const QList<QSize> treeSizes{{16, 16}, {32, 32}};
    switch (which) {
    case CommandIcon::New:
        return drawnIcon(drawNew, 24, toolSizes);
    case CommandIcon::Open:
        return drawnIcon(drawOpen, 24, toolSizes);
    case CommandIcon::Save:
        return drawnIcon(drawSave, 24, toolSizes);
    case CommandIcon::Print:
        return drawnIcon(drawPrint, 24, toolSizes);
    case CommandIcon::Read:
        return drawnIcon(drawRead, 24, toolSizes);
    case CommandIcon::Write:
        return drawnIcon(drawWrite, 24, toolSizes);
    case CommandIcon::About:
        return drawnIcon(drawAbout, 24, toolSizes);
    case CommandIcon::ChannelList:
        return drawnIcon(drawChannelList, 16, treeSizes);
    case CommandIcon::OptionalFeatures:
        return drawnIcon(drawOptionalFeatures, 16, treeSizes);
    }
    return {};
}

} // namespace wr
