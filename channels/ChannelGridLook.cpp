#include "channels/ChannelGridLook.h"

#include "channels/ChannelRecord.h"

#include <QCoreApplication>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QStyle>
#include <QStyleOptionHeader>
#include <QTableView>
#include <QWheelEvent>

namespace wr {

namespace {

// One notch of a standard mouse wheel.
constexpr int WheelNotch = 120;

} // namespace

WheelPager::WheelPager(QTableView *grid)
    : QObject(grid)
    , m_grid(grid)
{
}

bool WheelPager::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Wheel)
        return QObject::eventFilter(watched, event);
    const auto *wheel = static_cast<QWheelEvent *>(event);
    if (wheel->modifiers() != Qt::NoModifier || wheel->buttons() != Qt::NoButton || wheel->angleDelta().x() != 0)
        return false;
    const int delta = wheel->angleDelta().y();
    if (delta != WheelNotch && delta != -WheelNotch)
        return false;
    const auto key = delta > 0 ? Qt::Key_PageUp : Qt::Key_PageDown;
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
    QCoreApplication::sendEvent(m_grid, &press);
    QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier);
    QCoreApplication::sendEvent(m_grid, &release);
    return true; // one page a notch, not a page plus the view's own three lines
}

ChannelHeader::ChannelHeader(QWidget *parent)
    : QHeaderView(Qt::Horizontal, parent)
{
}

QSize ChannelHeader::sectionSizeFromContents(int logicalIndex) const
{
    const QVariant hint = model()->headerData(logicalIndex, orientation(), Qt::SizeHintRole);
    if (hint.isValid())
        return hint.toSize();
    QStyleOptionHeader option;
    initStyleOption(&option);
    option.section = logicalIndex;
    const QVariant font = model()->headerData(logicalIndex, orientation(), Qt::FontRole);
    option.fontMetrics = QFontMetrics(font.canConvert<QFont>() ? font.value<QFont>() : this->font());
    option.text = model()->headerData(logicalIndex, orientation(), Qt::DisplayRole).toString();
    return style()->sizeFromContents(QStyle::CT_HeaderSection, &option, QSize(), this);
}

void NumberDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    if (index.column() != ColNumber)
        return;
    option->font.setPointSize(NumberPointSize);
    option->fontMetrics = QFontMetrics(option->font);
    option->palette.setColor(QPalette::Text, Qt::blue);
    option->backgroundBrush = option->palette.color(QPalette::Active, QPalette::Button);
    option->displayAlignment = Qt::AlignCenter;
}

} // namespace wr
