#pragma once

#include <QColor>
#include <QHeaderView>
#include <QStyledItemDelegate>

class QTableView;

namespace wr {

// How the channel grid looks and scrolls, apart from what it shows: the
// header row's captions in 10 points and dark blue, the channel numbers in
// 12 points and pure blue, and a wheel that pages.
constexpr int HeaderPointSize = 10;
constexpr int NumberPointSize = 12;
inline const QColor HeaderColour(19, 58, 149);

// While the grid has the focus, one notch of the wheel pages the list up or
// down, as Page Up and Page Down would; anything else (a touchpad's small
// steps, a notch with a key or button held) scrolls as usual.
class WheelPager : public QObject
{
public:
    explicit WheelPager(QTableView *grid);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QTableView *m_grid;
};

// The grid's column header. Qt's header measures each caption in bold, the
// look of a highlighted section; this grid never highlights one, so captions
// are measured in the font they are drawn in. That also spares loading bold
// fonts (a Chinese one included) only to measure.
class ChannelHeader final : public QHeaderView
{
public:
    explicit ChannelHeader(QWidget *parent);

protected:
    QSize sectionSizeFromContents(int logicalIndex) const override;
};

// The channel numbers in their own style: larger, blue and centred, on the
// colour of fixed cells.
class NumberDelegate final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;
};

} // namespace wr
