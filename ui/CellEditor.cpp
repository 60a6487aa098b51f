#include "ui/CellEditor.h"

#include "ui/Accessible.h"

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QFocusEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionComboBox>
#include <QTableView>

#include <algorithm>

namespace wr {

namespace {

bool isEnterKey(const QKeyEvent *event)
{
    return event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
}

// The printable character a key types, or a null QChar for keys that only
// move or edit (arrows, Delete, function keys), for control characters and
// for anything typed with Ctrl, Alt or Meta held.
QChar typedCharacter(const QKeyEvent *event)
{
    const QString text = event->text();
    if (text.size() != 1 || !text.front().isPrint())
        return {};
    if (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
        return {};
    return text.front();
}

// The clipboard's keys of a text box, the ones of every platform included.
bool isCopyKey(const QKeyEvent *event)
{
    const QKeyCombination key = event->keyCombination();
    return event->matches(QKeySequence::Copy) || key == (Qt::CTRL | Qt::Key_C) || key == (Qt::CTRL | Qt::Key_Insert);
}

bool isPasteKey(const QKeyEvent *event)
{
    const QKeyCombination key = event->keyCombination();
    return event->matches(QKeySequence::Paste) || key == (Qt::CTRL | Qt::Key_V) || key == (Qt::SHIFT | Qt::Key_Insert);
}

QLineEdit *lineEditOf(QWidget *editor)
{
    if (auto *line = qobject_cast<QLineEdit *>(editor))
        return line;
    if (auto *combo = qobject_cast<QComboBox *>(editor))
        return combo->lineEdit();
    return nullptr;
}

// What an editor holds; a list with nothing chosen still holds `unchanged`.
QString textOf(QWidget *editor, const QString &unchanged)
{
    if (QLineEdit *line = lineEditOf(editor))
        return line->text();
    if (auto *combo = qobject_cast<QComboBox *>(editor))
        return combo->currentIndex() >= 0 ? combo->currentText() : unchanged;
    return unchanged;
}

void setTextOf(QWidget *editor, const QString &text)
{
    if (auto *combo = qobject_cast<QComboBox *>(editor); combo && !combo->isEditable())
        combo->setCurrentIndex(combo->findText(text));
    else if (QLineEdit *line = lineEditOf(editor))
        line->setText(text);
}

} // namespace

CellEditRules::Escape CellEditRules::onEscape(QWidget *) const
{
    return Escape::Close;
}

CellEditRules::Scroll CellEditRules::onScroll() const
{
    return Scroll::Commit;
}

QModelIndex CellEditRules::cellAfterTab(const QModelIndex &, bool) const
{
    return {};
}

bool CellEditRules::pasteGoesToGrid(const QString &) const
{
    return false;
}

CellEditor::CellEditor(QAbstractItemView *view, CellEditRules &rules)
    : m_view(view)
    , m_viewport(view->viewport())
    , m_rules(rules)
{
    useSpokenNames(); // the grids' list editors
    view->installEventFilter(this);
    m_viewport->installEventFilter(this);
    for (QScrollBar *bar : {view->verticalScrollBar(), view->horizontalScrollBar()})
        connect(bar, &QScrollBar::valueChanged, this, &CellEditor::scrolled);

    // Ctrl+Tab and Ctrl+Shift+Tab leave the grid, an open editor committed.
    // They are shortcuts of the view because a document area takes those
    // keys from its windows' children to switch between the windows.
    for (const bool backwards : {false, true}) {
        auto *leave = new QAction(view);
        leave->setObjectName(backwards ? QStringLiteral("leaveGridBackwards") : QStringLiteral("leaveGrid"));
        if (backwards)
            leave->setShortcuts({QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Tab),
                                 QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Backtab),
                                 QKeySequence(Qt::CTRL | Qt::Key_Backtab)});
        else
            leave->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Tab));
        leave->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        view->addAction(leave);
        connect(leave, &QAction::triggered, this, [this, backwards] {
            commit();
            leaveView(backwards);
        });
    }
}

void CellEditor::addEditor(QWidget *editor)
{
    editor->setParent(m_viewport);
    editor->hide();
    editor->setAcceptDrops(false);
    editor->setAttribute(Qt::WA_InputMethodEnabled, false);
    editor->setContextMenuPolicy(Qt::NoContextMenu);
    editor->installEventFilter(this);
    if (QLineEdit *line = lineEditOf(editor); line && line != editor) {
        line->setAcceptDrops(false);
        line->setAttribute(Qt::WA_InputMethodEnabled, false);
        line->setContextMenuPolicy(Qt::NoContextMenu);
        line->installEventFilter(this);
    }
}

int CellEditor::comboWidthFor(const QComboBox *combo, const QStringList &texts)
{
    const QFontMetrics metrics = combo->fontMetrics();
    int textWidth = 0;
    for (const QString &text : texts)
        textWidth = std::max(textWidth, metrics.horizontalAdvance(text));
    QStyleOptionComboBox option;
    option.initFrom(combo);
    option.editable = combo->isEditable();
    option.frame = combo->hasFrame();
    // The few pixels a line edit keeps free around its text.
    constexpr int TextMargin = 4;
    const QSize contents(textWidth + (combo->isEditable() ? TextMargin : 0), metrics.height());
    return combo->style()->sizeFromContents(QStyle::CT_ComboBox, &option, contents, combo).width();
}

void CellEditor::moveToEditableCell()
{
    const QModelIndex current = m_view->currentIndex();
    const QModelIndex target = m_rules.editableCell(current);
    if (target.isValid() && target != current)
        m_view->setCurrentIndex(target);
}

bool CellEditor::open()
{
    commit(); // an editor still open belongs to the previous cell
    moveToEditableCell();
    const QModelIndex cell = m_view->currentIndex();
    if (!cell.isValid())
        return false;
    const QString text = cell.data().toString();
    QWidget *editor = m_rules.editorFor(cell, text);
    if (!editor)
        return false;
    m_cell = cell;
    m_savedText = text;
    m_view->scrollTo(cell);
    editor->setGeometry(m_view->visualRect(cell));
    if (QLineEdit *line = lineEditOf(editor))
        line->selectAll();
    m_editor = editor;
    editor->show();
    editor->setFocus(Qt::OtherFocusReason);
    return true;
}

void CellEditor::commit()
{
    if (!m_editor || m_busy)
        return;
    QWidget *editor = m_editor;
    const QString text = textOf(editor, m_savedText);
    const QModelIndex cell = m_cell;
    close();
    const QScopedValueRollback busy(m_busy, true);
    m_rules.commit(cell, editor, text);
}

void CellEditor::cancel()
{
    close();
}

void CellEditor::close()
{
    QWidget *editor = m_editor;
    if (!editor)
        return;
    const QScopedValueRollback busy(m_busy, true);
    const bool hadFocus = ownsFocusWidget();
    m_editor = nullptr;
    if (hadFocus)
        m_view->setFocus(Qt::OtherFocusReason);
    editor->hide();
}

// The focus is in the open editor, or in a window of its own such as a
// combo box's list.
bool CellEditor::ownsFocusWidget() const
{
    for (QWidget *widget = QApplication::focusWidget(); widget; widget = widget->parentWidget()) {
        if (widget == m_editor)
            return true;
    }
    return false;
}

void CellEditor::scrolled()
{
    if (!m_editor || m_busy)
        return;
    if (m_rules.onScroll() == CellEditRules::Scroll::Commit)
        commit();
    else
        close();
}

void CellEditor::enterPressed()
{
    const QModelIndex cell = m_cell;
    commit();
    m_view->setFocus(Qt::OtherFocusReason);
    const QModelIndex next = m_rules.cellAfterEnter(cell);
    if (next.isValid())
        m_view->setCurrentIndex(next);
}

void CellEditor::escapePressed()
{
    switch (m_rules.onEscape(m_editor)) {
    case CellEditRules::Escape::Close:
        close();
        m_view->setFocus(Qt::OtherFocusReason);
        break;
    case CellEditRules::Escape::RevertText:
        setTextOf(m_editor, m_savedText);
        break;
    case CellEditRules::Escape::Ignore:
        break;
    }
}

// Tab and Shift+Tab move along the cells when the rules say where to. True
// when the key was taken.
bool CellEditor::tabPressed(const QKeyEvent *event, const QModelIndex &cell)
{
    if ((event->key() != Qt::Key_Tab && event->key() != Qt::Key_Backtab)
        || (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)))
        return false;
    const bool backwards = event->key() == Qt::Key_Backtab || (event->modifiers() & Qt::ShiftModifier);
    const QModelIndex next = m_rules.cellAfterTab(cell, backwards);
    if (!next.isValid())
        return false;
    commit();
    m_view->setFocus(Qt::OtherFocusReason);
    m_view->setCurrentIndex(next);
    return true;
}

// The focus goes to the widget before or after the view in its window's
// chain, past the view's own children and the windows around it (a document
// sub-window would give the focus straight back).
void CellEditor::leaveView(bool backwards)
{
    QWidget *next = m_view;
    do {
        next = backwards ? next->previousInFocusChain() : next->nextInFocusChain();
    } while (next != m_view
             && (m_view->isAncestorOf(next) || next->isAncestorOf(m_view) || !next->isVisible() || !next->isEnabled()
                 || !(next->focusPolicy() & Qt::TabFocus)));
    if (next != m_view)
        next->setFocus(backwards ? Qt::BacktabFocusReason : Qt::TabFocusReason);
}

bool CellEditor::viewKeyPress(QKeyEvent *event)
{
    if (tabPressed(event, m_view->currentIndex()))
        return true;
    const QChar typed = typedCharacter(event);
    const bool enter = isEnterKey(event);
    const bool editKey = event->key() == Qt::Key_Backspace || event->key() == Qt::Key_Escape;
    if (typed.isNull() && !enter && !editKey)
        return false; // moving around the grid

    moveToEditableCell();
    if (enter) {
        open();
    } else if (!typed.isNull()) {
        const std::optional<QChar> first = m_rules.startingCharacter(m_view->currentIndex(), typed);
        if (first && open()) {
            setTextOf(m_editor, QString(*first));
            if (QLineEdit *line = lineEditOf(m_editor))
                line->setCursorPosition(1);
        }
    }
    return true;
}

// A character about to be typed into the open editor, with what it holds.
TypedKey CellEditor::typedKey(QChar typed) const
{
    const QString text = textOf(m_editor, m_savedText);
    TypedKey key{m_cell, m_editor, typed, text, true, true};
    if (const QLineEdit *line = lineEditOf(m_editor)) {
        key.hasSelection = line->hasSelectedText();
        key.wholeSelected = !text.isEmpty() && line->selectedText() == text;
    }
    return key;
}

bool CellEditor::editorKeyPress(QKeyEvent *event)
{
    if (tabPressed(event, m_cell))
        return true;
    if (isEnterKey(event)) {
        enterPressed();
        return true;
    }
    if (event->key() == Qt::Key_Escape) {
        escapePressed();
        return true;
    }
    if (event->key() == Qt::Key_Backspace)
        return false;
    if (isCopyKey(event)) {
        copyText();
        return true;
    }
    if (isPasteKey(event)) {
        pasteText();
        return true;
    }
    const QChar typed = typedCharacter(event);
    if (typed.isNull()) {
        // Keys that move or edit (arrows, Home, Delete, F4, Alt+Down) go to
        // the editor; a character typed with Ctrl or Alt does not.
        return !event->text().isEmpty() && event->text().front().isPrint();
    }

    const std::optional<QChar> accepted = m_rules.acceptedCharacter(typedKey(typed));
    if (!accepted)
        return true;
    if (*accepted == typed)
        return false;
    if (QLineEdit *line = lineEditOf(m_editor))
        line->insert(QString(*accepted));
    return true;
}

// Enter and Esc belong to the editor, not to a default button; so do the
// clipboard's keys, unless a paste is meant for the grid. Other keys with
// Ctrl or Alt belong to the window's shortcuts, not to the editor's own
// select-all or cut.
bool CellEditor::editorShortcutOverride(QKeyEvent *event)
{
    if (isPasteKey(event) && textOf(m_editor, m_savedText) == m_savedText
        && m_rules.pasteGoesToGrid(QGuiApplication::clipboard()->text())) {
        close(); // nothing typed: nothing to store
        return true;
    }
    if (isEnterKey(event) || event->key() == Qt::Key_Escape || isCopyKey(event) || isPasteKey(event)) {
        event->accept();
        return true;
    }
    return (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0;
}

void CellEditor::copyText()
{
    if (const QLineEdit *line = lineEditOf(m_editor)) {
        if (line->hasSelectedText())
            QGuiApplication::clipboard()->setText(line->selectedText());
    } else {
        QGuiApplication::clipboard()->setText(textOf(m_editor, m_savedText));
    }
}

// The clipboard's text as if typed: each character through the rules, in
// place of the selection and at the caret, within the editor's length.
void CellEditor::pasteText()
{
    QLineEdit *line = lineEditOf(m_editor);
    if (!line)
        return; // a list takes no typing
    const QString text = QGuiApplication::clipboard()->text();
    for (const QChar typed : text) {
        if (!typed.isPrint())
            continue;
        if (const std::optional<QChar> accepted = m_rules.acceptedCharacter(typedKey(typed)))
            line->insert(QString(*accepted));
    }
}

QWidget *CellEditor::editorOf(QObject *watched) const
{
    if (!m_editor)
        return nullptr;
    if (watched == m_editor || watched == lineEditOf(m_editor))
        return m_editor;
    return nullptr;
}

bool CellEditor::eventFilter(QObject *watched, QEvent *event)
{
    const QEvent::Type type = event->type();
    if (watched == m_view) {
        if (type == QEvent::KeyPress)
            return viewKeyPress(static_cast<QKeyEvent *>(event));
        return false;
    }
    if (watched == m_viewport) {
        if (type == QEvent::MouseButtonRelease) {
            const auto *mouse = static_cast<QMouseEvent *>(event);
            if (mouse->button() == Qt::LeftButton && m_view->indexAt(mouse->position().toPoint()).isValid())
                open();
        }
        return false;
    }
    if (!editorOf(watched))
        return false;

    switch (type) {
    case QEvent::KeyPress:
        return editorKeyPress(static_cast<QKeyEvent *>(event));
    case QEvent::ShortcutOverride:
        return editorShortcutOverride(static_cast<QKeyEvent *>(event));
    case QEvent::FocusOut: {
        // Focus leaving the editor commits it, like a click elsewhere in the
        // grid; focus going to its own list or to another window does not.
        const auto reason = static_cast<QFocusEvent *>(event)->reason();
        if (!m_busy && reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason && !ownsFocusWidget())
            commit();
        return false;
    }
    default:
        return false;
    }
}

void prepareEditedGrid(QTableView *grid)
{
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid->setSelectionMode(QAbstractItemView::SingleSelection);
    grid->setSelectionBehavior(QAbstractItemView::SelectItems);
    grid->setTabKeyNavigation(false);
    grid->setWordWrap(false);
    grid->setCornerButtonEnabled(false);
    for (QHeaderView *header : {grid->horizontalHeader(), grid->verticalHeader()}) {
        header->setSectionResizeMode(QHeaderView::Fixed);
        header->setSectionsClickable(false);
        header->setHighlightSections(false);
    }
}

} // namespace wr
