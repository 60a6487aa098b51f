#include "ui/Accessible.h"

#include "core/Language.h"

#include <QAbstractItemView>
#include <QAbstractScrollArea>
#include <QAccessible>
#include <QAccessibleWidget>
#include <QApplication>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOptionFocusRect>
#include <QTableView>

#include <utility>

using namespace Qt::StringLiterals;

namespace wr {

void nameControlsAfterLabels(QWidget *form)
{
    for (const QLabel *label : form->findChildren<QLabel *>()) {
        // A label that is another's buddy keeps its text as its name: it
        // shows a value ("/dev/ttyUSB0"), which its label's relation names.
        if (QWidget *buddy = label->buddy(); buddy && !qobject_cast<QLabel *>(buddy))
            buddy->setAccessibleName(captionName(label->text()));
    }
    nameListTexts(form);
}

void nameListTexts(QWidget *form)
{
    for (const QComboBox *list : form->findChildren<QComboBox *>()) {
        if (QLineEdit *line = list->lineEdit())
            line->setAccessibleName(list->accessibleName());
    }
}

namespace {

// A list box (QComboBox) as Qt's own interface shows it, but named by its
// accessible name. On Linux Qt 6.4 names a list box by the item it shows and
// leaves what it is to a label's relation, so a list without a label of its
// own ("P1 Short Press" under a column heading) would be read as its item
// alone. A list with a name of its own is read by that name, without the
// label's relation that a screen reader would prefer to it; one without is
// named as Qt names it. The value stays the item shown.
class AccessibleListBox : public QAccessibleWidget
{
public:
    explicit AccessibleListBox(QComboBox *list)
        : QAccessibleWidget(list, QAccessible::ComboBox)
    {
    }

    QComboBox *list() const { return static_cast<QComboBox *>(widget()); }

    int childCount() const override { return list()->lineEdit() ? 2 : 1; }
    QAccessibleInterface *child(int index) const override
    {
        if (index == 0)
            return QAccessible::queryAccessibleInterface(list()->view());
        if (index == 1 && list()->lineEdit())
            return QAccessible::queryAccessibleInterface(list()->lineEdit());
        return nullptr;
    }
    int indexOfChild(const QAccessibleInterface *child) const override
    {
        if (!child)
            return -1;
        if (child->object() == list()->view())
            return 0;
        return child->object() && child->object() == list()->lineEdit() ? 1 : -1;
    }
    QAccessibleInterface *childAt(int x, int y) const override
    {
        QLineEdit *line = list()->lineEdit();
        if (line && line->isVisible() && QRect(line->mapToGlobal(QPoint(0, 0)), line->size()).contains(x, y))
            return child(1);
        return nullptr;
    }

    QString text(QAccessible::Text kind) const override
    {
        if (kind == QAccessible::Value)
            return list()->currentText();
        if (kind == QAccessible::Name && list()->accessibleName().isEmpty())
            return list()->currentText();
        return QAccessibleWidget::text(kind);
    }

    QList<std::pair<QAccessibleInterface *, QAccessible::Relation>> relations(QAccessible::Relation match) const override
    {
        auto all = QAccessibleWidget::relations(match);
        if (!list()->accessibleName().isEmpty())
            all.removeIf([](const auto &relation) { return relation.second & QAccessible::Label; });
        return all;
    }

    QStringList actionNames() const override { return {showMenuAction(), pressAction(), setFocusAction()}; }
    void doAction(const QString &action) override
    {
        if (action != showMenuAction() && action != pressAction()) {
            QAccessibleWidget::doAction(action);
            return;
        }
        if (list()->view()->isVisible())
            list()->hidePopup();
        else
            list()->showPopup();
    }
};

// A child window of the main window, named by its title as Qt names it, or
// where the title is empty (the channel list's caption is) by the
// accessible name of the window or of the form it holds.
class AccessibleSubWindow : public QAccessibleWidget
{
public:
    explicit AccessibleSubWindow(QMdiSubWindow *window)
        : QAccessibleWidget(window, QAccessible::Window)
    {
    }

    QString text(QAccessible::Text kind) const override
    {
        const auto *window = static_cast<const QMdiSubWindow *>(widget());
        if (kind != QAccessible::Name)
            return QAccessibleWidget::text(kind);
        QString name = window->windowTitle().remove(u"[*]"_s);
        if (name.isEmpty())
            name = window->accessibleName();
        if (name.isEmpty() && window->widget())
            name = window->widget()->accessibleName();
        return name;
    }
};

QAccessibleInterface *spokenInterface(const QString &className, QObject *object)
{
    if (className == u"QComboBox")
        return new AccessibleListBox(static_cast<QComboBox *>(object));
    if (className == u"QMdiSubWindow")
        return new AccessibleSubWindow(static_cast<QMdiSubWindow *>(object));
    return nullptr;
}


// The first cell of the view that is not hidden, or an invalid index.
QModelIndex firstShownCell(const QAbstractItemView *view)
{
    const QAbstractItemModel *model = view->model();
    if (!model)
        return {};
    const auto *table = qobject_cast<const QTableView *>(view);
    for (int row = 0; row < model->rowCount(view->rootIndex()); ++row) {
        if (table && table->isRowHidden(row))
            continue;
        for (int column = 0; column < model->columnCount(view->rootIndex()); ++column) {
            if (!table || !table->isColumnHidden(column))
                return model->index(row, column, view->rootIndex());
        }
    }
    return {};
}

void ensureCurrentCell(QAbstractItemView *view)
{
    if (view->currentIndex().isValid() || !view->selectionModel())
        return;
    const QModelIndex cell = firstShownCell(view);
    if (cell.isValid())
        view->selectionModel()->setCurrentIndex(cell, QItemSelectionModel::NoUpdate);
}

// The application's style, with a focus frame where it draws none or one
// that looks like something else: inside a push button (the default button
// has the same outline as a focused one), and around a grid, tree or text
// box (the current cell looks the same with the focus elsewhere).
class FocusFrameStyle : public QProxyStyle
{
public:
    using QProxyStyle::QProxyStyle;

    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override
    {
        QProxyStyle::drawControl(element, option, painter, widget);
        if (!(option->state & State_HasFocus))
            return;
        if (element == CE_PushButton) {
            QStyleOptionFocusRect focus;
            focus.QStyleOption::operator=(*option);
            focus.rect = subElementRect(SE_PushButtonFocusRect, option, widget);
            drawPrimitive(PE_FrameFocusRect, &focus, painter, widget);
        } else if (element == CE_ShapedFrame && qobject_cast<const QAbstractScrollArea *>(widget)) {
            const int width = std::max(2, pixelMetric(PM_DefaultFrameWidth, option, widget));
            painter->save();
            painter->setPen(QPen(option->palette.color(QPalette::Highlight), width));
            painter->setBrush(Qt::NoBrush);
            painter->drawRect(QRectF(option->rect).adjusted(width / 2.0, width / 2.0, -width / 2.0, -width / 2.0));
            painter->restore();
        }
    }
};

// Shift+F10 and the menu key as a context menu event of the keyboard. Some
// platforms turn the menu key into such an event of their own just before
// its key press; that key press then opens nothing.
class MenuKeys : public QObject
{
public:
    explicit MenuKeys(QAbstractItemView *view)
        : QObject(view)
        , m_view(view)
    {
        view->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::ContextMenu) {
            const auto *menu = static_cast<QContextMenuEvent *>(event);
            m_openedByPlatform = menu->reason() == QContextMenuEvent::Keyboard && menu->spontaneous();
            return false;
        }
        if (event->type() != QEvent::KeyPress)
            return false;
        const auto *key = static_cast<QKeyEvent *>(event);
        const bool opened = std::exchange(m_openedByPlatform, false);
        const bool menuKey = key->key() == Qt::Key_Menu && key->modifiers() == Qt::NoModifier;
        if (!menuKey && !(key->key() == Qt::Key_F10 && key->modifiers() == Qt::ShiftModifier))
            return false;
        if (!(opened && menuKey)) {
            const QPoint cell = m_view->visualRect(m_view->currentIndex()).center();
            QContextMenuEvent menu(QContextMenuEvent::Keyboard, cell, m_view->viewport()->mapToGlobal(cell));
            QCoreApplication::sendEvent(m_view, &menu);
        }
        return true;
    }

private:
    QAbstractItemView *m_view;
    bool m_openedByPlatform = false;
};

} // namespace

void openMenuByKeys(QAbstractItemView *view)
{
    new MenuKeys(view);
}

void useFocusFrames()
{
    if (dynamic_cast<FocusFrameStyle *>(QApplication::style()))
        return;
    QApplication::setStyle(new FocusFrameStyle(QStyleFactory::create(QApplication::style()->name())));
}

// Qt's own factory is installed when the application is made, and the one
// installed last is asked first.
void useSpokenNames()
{
    static const bool installed = [] {
        QAccessible::installFactory(spokenInterface);
        return true;
    }();
    Q_UNUSED(installed);
}

void keepCurrentCell(QAbstractItemView *view)
{
    ensureCurrentCell(view);
    QAbstractItemModel *model = view->model();
    if (!model)
        return;
    // Connected after the view and its selection model, so this runs once
    // they have dealt with the change, and before anyone can ask again.
    // A QTableWidget deletes its own model while it is being destroyed, and
    // that model announces a reset on its way out: by then the view is only
    // a QWidget, so the check asks what the object still is before using it.
    QObject *const viewObject = view;
    const auto check = [viewObject] {
        if (auto *liveView = qobject_cast<QAbstractItemView *>(viewObject))
            ensureCurrentCell(liveView);
    };
    QObject::connect(model, &QAbstractItemModel::modelReset, view, check);
    QObject::connect(model, &QAbstractItemModel::layoutChanged, view, check);
    QObject::connect(model, &QAbstractItemModel::rowsRemoved, view, check);
    QObject::connect(model, &QAbstractItemModel::columnsRemoved, view, check);
    QObject::connect(model, &QAbstractItemModel::rowsInserted, view, check);
    QObject::connect(model, &QAbstractItemModel::columnsInserted, view, check);
}

} // namespace wr
