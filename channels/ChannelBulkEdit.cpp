// The channel list's fills: Fill Selection, Fill Down, Set for Selected
// Channels and Fill Frequencies, on the model through its history.

#include "channels/ChannelBulkEdit.h"

#include "channels/ChannelFill.h"
#include "channels/ChannelHistory.h"
#include "channels/ChannelModel.h"
#include "channels/ChannelTools.h"
#include "channels/FillFrequenciesDialog.h"
#include "channels/ToneChoiceDialog.h"
#include "ui/CellEditor.h"

#include <QAction>
#include <QComboBox>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QTableView>

#include <algorithm>

namespace wr {

using namespace Qt::StringLiterals;

namespace {

constexpr Text FillSelectionCaption{u"Fill Selection", u"填充所选单元格", u"填滿所選儲存格"};
constexpr Text FillDownCaption{u"Fill Down", u"向下填充", u"向下填滿"};
constexpr Text SetCaption{u"Set for Selected Channels", u"为所选信道设置", u"為所選信道設置"};
constexpr Text FillFrequenciesCaption{u"Fill Frequencies…", u"填充频率…", u"填入頻率…"};
constexpr Text FillFrequenciesStep{u"Fill Frequencies", u"填充频率", u"填入頻率"};
constexpr Text DecodeCaption{u"CTCSS/DCS Dec…", u"CTCSS/DCS 解码…", u"CTCSS/DCS 解碼…"};
constexpr Text EncodeCaption{u"CTCSS/DCS Enc…", u"CTCSS/DCS 编码…", u"CTCSS/DCS 編碼…"};

// The list columns a word is set in, with the names their menus and
// actions take ("setPower_Low").
struct ListColumn
{
    int column;
    QStringView name;
};
constexpr ListColumn ListColumns[]{
    {ColPower, u"Power"}, {ColBandwidth, u"Bandwidth"}, {ColScanAdd, u"ScanAdd"}, {ColBcl, u"Bcl"}};

bool isFillKey(const QKeyEvent *key)
{
    return (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter)
        && (key->modifiers() & ~Qt::KeypadModifier) == Qt::ControlModifier;
}

// The text an open editor holds; a list with nothing chosen holds its
// cell's text still.
QString editorText(const CellEditor &editor)
{
    QWidget *open = editor.openEditor();
    if (auto *line = qobject_cast<QLineEdit *>(open))
        return line->text();
    if (auto *combo = qobject_cast<QComboBox *>(open); combo && (combo->isEditable() || combo->currentIndex() >= 0))
        return combo->currentText();
    return editor.savedText();
}

} // namespace

ChannelBulkEdit::ChannelBulkEdit(ChannelToolHost &host, ChannelModel &model, ChannelHistory &history,
                                 CellEditor &editor, const BandLimitArray &limits, QTableView *grid, QMenu *menu)
    : QObject(grid)
    , m_host(host)
    , m_model(model)
    , m_history(history)
    , m_editor(editor)
    , m_limits(limits)
    , m_grid(grid)
{
    build(menu);
    caption();
}

Language ChannelBulkEdit::language() const
{
    return m_model.language();
}

QAction *ChannelBulkEdit::addAction(QMenu *menu, const QString &name, const Text &caption)
{
    auto *action = new QAction(m_grid);
    action->setObjectName(name);
    if (menu)
        menu->addAction(action);
    m_captions.append({action, caption});
    return action;
}

QMenu *ChannelBulkEdit::addSubmenu(QMenu *parent, const QString &name, const Text &caption)
{
    auto *menu = new QMenu(parent);
    menu->setObjectName(u"mnu"_s + name.front().toUpper() + name.mid(1)); // "mnuSetPower" for "setPower"
    menu->menuAction()->setObjectName(name);
    m_captions.append({menu->menuAction(), caption});
    return menu;
}

void ChannelBulkEdit::build(QMenu *menu)
{
    QAction *fill = addAction(nullptr, u"fillSelection"_s, FillSelectionCaption);
    fill->setShortcuts({Qt::CTRL | Qt::Key_Return, Qt::CTRL | Qt::Key_Enter});
    connect(fill, &QAction::triggered, this, &ChannelBulkEdit::fillSelection);
    QAction *down = addAction(nullptr, u"fillDown"_s, FillDownCaption);
    down->setShortcut(Qt::CTRL | Qt::Key_D);
    connect(down, &QAction::triggered, this, &ChannelBulkEdit::fillDown);
    // Both keys work in the grid and in its open editors, as the list's
    // other keys with Ctrl do.
    for (QAction *keyed : {fill, down}) {
        keyed->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        m_grid->addAction(keyed);
    }

    QMenu *set = addSubmenu(menu, u"setForSelected"_s, SetCaption);
    for (const auto &[column, caption] : {std::pair{ColDecode, DecodeCaption}, std::pair{ColEncode, EncodeCaption}}) {
        QAction *tone = addAction(set, column == ColDecode ? u"setDecode"_s : u"setEncode"_s, caption);
        connect(tone, &QAction::triggered, this, [this, column] { setToneForSelected(column); });
    }
    for (const ListColumn &list : ListColumns) {
        QMenu *words = addSubmenu(set, u"set"_s + list.name.toString(), ChannelColumnCaptions[std::size_t(list.column)]);
        set->addMenu(words);
        for (const Text &word : columnWords(list.column)) {
            QString name = u"set%1_%2"_s.arg(list.name, word.in(English));
            name.remove(u'.');
            QAction *choice = addAction(words, name, word);
            connect(choice, &QAction::triggered, this, [this, column = list.column, word] {
                setForSelected(column, word);
            });
        }
    }
    QAction *series = addAction(nullptr, u"fillFrequencies"_s, FillFrequenciesCaption);
    connect(series, &QAction::triggered, this, &ChannelBulkEdit::fillFrequencies);

    // Into the list's menu after its clipboard tools, as a group between
    // separators.
    const QList<QAction *> tools = menu->actions();
    const qsizetype rowTools = tools.indexOf(m_grid->findChild<QAction *>(u"insertChannel"_s));
    QAction *before = rowTools > 0 ? tools.at(rowTools - 1) : nullptr;
    const QList<QAction *> group{fill, down, set->menuAction(), series};
    menu->insertActions(before, group);
    menu->insertSeparator(fill);

    connect(menu, &QMenu::aboutToShow, this, &ChannelBulkEdit::enableForSelection);
    // Afterwards the keys work again whatever the menu allowed.
    connect(menu, &QMenu::aboutToHide, this, [group] {
        for (QAction *action : group)
            action->setEnabled(true);
    });
}

void ChannelBulkEdit::caption()
{
    for (const auto &[action, caption] : std::as_const(m_captions))
        action->setText(caption.in(language()));
}

void ChannelBulkEdit::watchEditor(QWidget *editor)
{
    editor->installEventFilter(this);
}

// The in-place editor keeps Enter for itself, whatever keys are held: Ctrl+
// Enter is taken from it before, and fills the selection with its text.
bool ChannelBulkEdit::eventFilter(QObject *watched, QEvent *event)
{
    const QEvent::Type type = event->type();
    if ((type != QEvent::ShortcutOverride && type != QEvent::KeyPress) || !isFillKey(static_cast<QKeyEvent *>(event)))
        return QObject::eventFilter(watched, event);
    if (type == QEvent::ShortcutOverride)
        event->accept(); // the key comes as a key press, here
    else
        fillSelection();
    return true;
}

QMap<int, QList<int>> ChannelBulkEdit::selectedCells() const
{
    QMap<int, QList<int>> cells;
    for (const QModelIndex &cell : m_grid->selectionModel()->selectedIndexes()) {
        const int row = cell.row();
        if (cell.column() >= ColRx && row >= 1 && row <= m_host.lastChannel() && !m_grid->isRowHidden(row))
            cells[cell.column()].append(row);
    }
    for (QList<int> &rows : cells)
        std::sort(rows.begin(), rows.end());
    return cells;
}

// While the menu is up it offers what the selection allows.
void ChannelBulkEdit::enableForSelection()
{
    const QModelIndex current = m_grid->currentIndex();
    const auto action = [this](const QString &name) { return m_grid->findChild<QAction *>(name); };
    action(u"fillSelection"_s)
        ->setEnabled(current.column() >= ColRx && !m_grid->isRowHidden(current.row())
                     && !m_model.cellText(current.row(), current.column()).isEmpty());
    const QMap<int, QList<int>> cells = selectedCells();
    const bool down = std::any_of(cells.keyValueBegin(), cells.keyValueEnd(), [this](const auto &column) {
        return column.second.size() > 1 && !m_model.cellText(column.second.front(), column.first).isEmpty();
    });
    action(u"fillDown"_s)->setEnabled(down);
    const QList<int> channels = m_host.selectedChannels();
    action(u"setForSelected"_s)->setEnabled(!m_model.table().inUse(channels).isEmpty());
    action(u"fillFrequencies"_s)->setEnabled(!channels.isEmpty());
}

void ChannelBulkEdit::change(const Text &name, const ChannelChanges &changes)
{
    const QList<int> selected = m_host.selectedChannels();
    m_history.change(name, changes, selected, selected);
}

// The open editor's text, or else the current cell's, into every selected
// cell of its column; the edited cell is one of them even when not selected.
void ChannelBulkEdit::fillSelection()
{
    const bool editing = m_editor.isOpen();
    const QModelIndex cell = editing ? m_editor.editedCell() : m_grid->currentIndex();
    const int column = cell.column();
    if (column < ColRx || cell.row() < 1 || m_grid->isRowHidden(cell.row()))
        return;
    QString text = m_model.cellText(cell.row(), column);
    if (editing) {
        text = editorText(m_editor);
        m_editor.cancel(); // the fill stores it, with the others, as one step
    } else if (text.isEmpty()) {
        return;
    }
    QList<int> channels = selectedCells().value(column);
    if (!channels.contains(cell.row())) {
        channels.append(cell.row());
        std::sort(channels.begin(), channels.end());
    }
    change(FillSelectionCaption, filledColumn(m_model.table(), column, channels, text, m_limits, language()));
}

// An editor still open stores its text first, as Enter would.
void ChannelBulkEdit::fillDown()
{
    m_host.commitEdit();
    change(FillDownCaption, filledDown(m_model.table(), selectedCells(), m_limits, language()));
}

void ChannelBulkEdit::setForSelected(int column, const Text &word)
{
    m_host.commitEdit();
    const QList<int> channels = m_host.selectedChannels();
    change(SetCaption, filledColumn(m_model.table(), column, channels, word.in(language()), m_limits, language()));
}

// The tone list opens at the tone of the first selected channel that has
// one.
void ChannelBulkEdit::setToneForSelected(int column)
{
    m_host.commitEdit();
    const QList<int> channels = m_host.selectedChannels();
    QString shown = Words::None.in(language());
    for (const NumberedChannel &channel : m_model.table().inUse(channels)) {
        if (!channel.texts.cell(column).isEmpty()) {
            shown = channel.texts.cell(column);
            break;
        }
    }
    ToneChoiceDialog dialog(ChannelColumnCaptions[std::size_t(column)], shown, language(), m_grid);
    if (dialog.exec() == QDialog::Accepted)
        change(SetCaption, filledColumn(m_model.table(), column, channels, dialog.tone(), m_limits, language()));
}

// The series starts at the receive frequency of the first selected channel
// in use, which the user then changes or keeps.
void ChannelBulkEdit::fillFrequencies()
{
    m_host.commitEdit();
    const QList<int> channels = m_host.selectedChannels();
    if (channels.isEmpty())
        return;
    const QList<NumberedChannel> inUse = m_model.table().inUse(channels);
    FillFrequenciesDialog dialog(channels, inUse.isEmpty() ? QString() : inUse.front().texts.rx, m_limits,
                                 language(), m_grid);
    if (dialog.exec() != QDialog::Accepted || !dialog.series())
        return;
    change(FillFrequenciesStep,
           withReceiveFrequencies(m_model.table(), channels, dialog.series()->values, m_limits, language()));
}

} // namespace wr
