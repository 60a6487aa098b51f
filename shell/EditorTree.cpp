#include "shell/EditorTree.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QStyledItemDelegate>

namespace wr {

namespace {

// The style's own focus outline barely shows on the highlight: the node
// with the focus gets a dotted frame in the highlight's text colour.
class FocusFrame : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        QStyleOptionViewItem shown(option);
        shown.state &= ~QStyle::State_HasFocus;
        QStyledItemDelegate::paint(painter, shown, index);
        if (!(option.state & QStyle::State_HasFocus) || !option.widget || !option.widget->hasFocus())
            return;
        painter->save();
        const bool selected = option.state & QStyle::State_Selected;
        QPen pen(option.palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
        pen.setStyle(Qt::DotLine);
        painter->setPen(pen);
        painter->drawRect(option.rect.adjusted(1, 1, -2, -2));
        painter->restore();
    }
};

} // namespace

EditorTree::EditorTree(QWidget *parent)
    : QTreeWidget(parent)
{
    setItemDelegate(new FocusFrame(this));
    showFocus(false);
}

// Without the focus the current node is marked in a quiet grey, which the
// style would draw in the same highlight as with the focus.
void EditorTree::showFocus(bool focused)
{
    if (focused) {
        setPalette(QPalette());
        return;
    }
    QPalette quiet = QApplication::palette(this);
    quiet.setColor(QPalette::Highlight, quiet.color(QPalette::Window).darker(112));
    quiet.setColor(QPalette::HighlightedText, quiet.color(QPalette::WindowText));
    setPalette(quiet);
}

void EditorTree::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        if (event->modifiers() & ~Qt::KeypadModifier)
            break;
        Q_EMIT nodeChosen(currentItem());
        event->accept();
        return;
    default:
        break;
    }
    QTreeWidget::keyPressEvent(event);
}

void EditorTree::focusInEvent(QFocusEvent *event)
{
    showFocus(true);
    QTreeWidget::focusInEvent(event);
}

void EditorTree::focusOutEvent(QFocusEvent *event)
{
    showFocus(false);
    QTreeWidget::focusOutEvent(event);
}

} // namespace wr
