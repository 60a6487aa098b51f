#pragma once

#include <QObject>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <optional>

class QAbstractItemView;
class QComboBox;
class QKeyEvent;
class QTableView;

namespace wr {

// A character typed into an open editor, with what the editor held before.
struct TypedKey
{
    QModelIndex cell;
    QWidget *editor;
    QChar typed;
    QString text;       // the editor's text before the key
    bool hasSelection;  // some of it is selected
    bool wholeSelected; // all of it is selected; a list without a caret always is
};

// The rules of one grid edited in place: which editor a cell opens, which
// characters it takes, how its text is stored and where Enter goes next.
class CellEditRules
{
public:
    enum class Escape {
        Close,      // close the editor; the cell keeps its text
        RevertText, // put the cell's text back into the editor, which stays open
        Ignore,     // discard the key
    };
    enum class Scroll { Commit, Cancel };

    virtual ~CellEditRules() = default;

    // The cell an edit started on `cell` really goes to; the editor makes it
    // current first. By default the cell itself.
    virtual QModelIndex editableCell(const QModelIndex &cell) const { return cell; }
    // The editor of a cell, set up to show text (list filled, text set), or
    // null when the cell opens none. It is placed and shown afterwards.
    virtual QWidget *editorFor(const QModelIndex &cell, const QString &text) = 0;
    // A character typed on the grid: what the editor opens holding in place
    // of the cell's text, or nothing when the key does not start an edit.
    virtual std::optional<QChar> startingCharacter(const QModelIndex &cell, QChar typed) const = 0;
    // A character typed into the open editor: the character that goes in
    // (the typed one, or for example its upper case), or nothing to drop it.
    virtual std::optional<QChar> acceptedCharacter(const TypedKey &key) const = 0;
    // Stores an editor's text into the grid, normalised as the grid wants.
    virtual void commit(const QModelIndex &cell, QWidget *editor, const QString &text) = 0;
    // The cell made current after Enter committed `cell`, or an invalid
    // index to stay (the rules may then give the focus to another widget).
    virtual QModelIndex cellAfterEnter(const QModelIndex &cell) = 0;
    // The cell Tab (or Shift+Tab, backwards) makes current, as in a
    // spreadsheet; an open editor is committed first and none opens. An
    // invalid index, the default, leaves Tab to move the focus on. Every
    // grid is left with Ctrl+Tab and Ctrl+Shift+Tab.
    virtual QModelIndex cellAfterTab(const QModelIndex &cell, bool backwards) const;
    virtual Escape onEscape(QWidget *editor) const;
    virtual Scroll onScroll() const;
    // Text pasted into an editor nothing was typed into: true when it is
    // meant for the grid rather than for the cell (rows of a spreadsheet,
    // say). The editor then closes without storing, and the paste goes on
    // to the window's commands. By default every paste is the cell's.
    virtual bool pasteGoesToGrid(const QString &text) const;
};

// Edits the cells of an item view in place. The grid's rules decide what is
// edited and how; this class places an editor exactly over the cell, opens
// it on Enter, on a typed character (which then replaces the text) or on a
// click, commits it on Enter (then moves on as the rules say) or when the
// focus leaves it, closes or reverts it on Esc, and commits or cancels it
// when the view scrolls. Committing may move the focus; a commit that runs
// into another never stores twice.
//
// Keys with Ctrl or Alt are left to the window's shortcuts while an editor
// is open, so menu commands run wherever the focus is; only Enter, Esc and
// the clipboard's keys are kept from them. Copy (Ctrl+C, Ctrl+Insert) takes
// the editor's selected text; paste (Ctrl+V, Shift+Insert) types the
// clipboard's text into the editor character by character, so the rules
// drop what the cell would refuse from the keyboard.
//
// It watches the view and its editors and calls the rules for as long as it
// lives, so its owner holds it (a member, for instance) and destroys it
// before the view and the rules go.
class CellEditor : public QObject
{
    Q_OBJECT

public:
    CellEditor(QAbstractItemView *view, CellEditRules &rules);

    // Takes an editor (a QLineEdit or a QComboBox) onto the view's viewport,
    // hidden. Only typed keys that pass the rules put text into it, a paste
    // typed as keys: no dropping, input-method composition or text box menu
    // (a right click on it is the grid's).
    void addEditor(QWidget *editor);

    // Opens the editor of the view's current cell (after editableCell).
    // Returns false when the cell opens none.
    bool open();
    // Stores the open editor's text through the rules and closes it.
    void commit();
    // Closes the open editor without storing.
    void cancel();

    bool isOpen() const { return m_editor != nullptr; }
    QWidget *openEditor() const { return m_editor; }
    QModelIndex editedCell() const { return m_cell; }
    // The cell's text when its editor opened.
    QString savedText() const { return m_savedText; }

    // The width a combo box needs to show each text whole, arrow included.
    static int comboWidthFor(const QComboBox *combo, const QStringList &texts);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool viewKeyPress(QKeyEvent *event);
    bool editorKeyPress(QKeyEvent *event);
    bool editorShortcutOverride(QKeyEvent *event);
    bool tabPressed(const QKeyEvent *event, const QModelIndex &cell);
    void leaveView(bool backwards);
    TypedKey typedKey(QChar typed) const;
    void copyText();
    void pasteText();
    void enterPressed();
    void escapePressed();
    void scrolled();
    void close();
    void moveToEditableCell();
    QWidget *editorOf(QObject *watched) const;
    bool ownsFocusWidget() const;

    QAbstractItemView *m_view;
    QWidget *m_viewport;
    CellEditRules &m_rules;
    QPointer<QWidget> m_editor;
    QPersistentModelIndex m_cell;
    QString m_savedText;
    bool m_busy = false; // committing or closing: the focus it moves is not a user's
};

// Sets up a grid whose cells only a CellEditor edits: none of the view's own
// editing, one cell selected at a time, Tab leaving the grid, single-line
// cells, no corner button, and headers that neither resize nor select.
void prepareEditedGrid(QTableView *grid);

} // namespace wr
