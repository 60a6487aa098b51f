// The channel list's tools on whole channels: the context menu and its
// keys, selecting rows by their numbers, the clipboard, insert, delete,
// move, sort, CSV import and export, and the undo history.

#include "channels/ChannelCsv.h"
#include "channels/CsvImportPreview.h"
#include "channels/frmChannel.h"
#include "core/AppState.h"
#include "core/FrequencyCodec.h"
#include "file/DataFile.h"
#include "ui/CellEditor.h"
#include "ui/MessageBox.h"

#include <QAction>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QItemSelectionModel>
#include <QMenu>
#include <QMouseEvent>
#include <QTableWidget>
#include <QUndoStack>

#include <algorithm>
#include <limits>
#include <numeric>

namespace wr {

using namespace Qt::StringLiterals;

namespace {

constexpr int HiddenFirstByte = 12; // bytes 12-15 of a record

// The tools in the order of the context menu; an empty name is a separator.
struct Tool
{
    QStringView name;
    Text caption = {u""};
    QKeyCombination keys[2] = {};
};

constexpr Text UndoCaption{u"Undo", u"撤销", u"復原"};
constexpr Text RedoCaption{u"Redo", u"重做", u"重做"};
constexpr Text CutCaption{u"Cut", u"剪切", u"剪下"};
constexpr Text CopyCaption{u"Copy", u"复制", u"複製"};
constexpr Text PasteCaption{u"Paste", u"粘贴", u"貼上"};
constexpr Text DeleteCaption{u"Delete", u"删除", u"刪除"};
constexpr Text InsertCaption{u"Insert empty channel", u"插入空信道", u"插入空信道"};
constexpr Text RemoveCaption{u"Delete and move up", u"删除并上移", u"刪除並上移"};
constexpr Text MoveUpCaption{u"Move up", u"上移", u"上移"};
constexpr Text MoveDownCaption{u"Move down", u"下移", u"下移"};
constexpr Text SortCaption{u"Sort selected channels by receive frequency", u"所选信道按接收频率排序",
                           u"所選信道按接收頻率排序"};
constexpr Text ImportCaption{u"Import CHIRP CSV…", u"导入 CHIRP CSV…", u"匯入 CHIRP CSV…"};
constexpr Text ExportCaption{u"Export CHIRP CSV…", u"导出 CHIRP CSV…", u"匯出 CHIRP CSV…"};

// Names of the steps of the history.
constexpr Text EditStep{u"Edit", u"编辑", u"編輯"};
constexpr Text InsertStep{u"Insert", u"插入", u"插入"};
constexpr Text MoveStep{u"Move", u"移动", u"移動"};
constexpr Text SortStep{u"Sort", u"排序", u"排序"};
constexpr Text ImportStep{u"Import", u"导入", u"匯入"};

constexpr Text NoRoomToInsert{u"Channel 128 is in use: there is no room to insert a channel.",
                              u"信道 128 已被使用，无法插入信道。", u"信道 128 已被使用，無法插入信道。"};
constexpr Text NotAChannelList{
    u"There is no Location or no Frequency column, so this is not a CHIRP channel list. Nothing was changed.",
    u"没有 Location 或 Frequency 列，不是 CHIRP 信道列表。未做任何更改。",
    u"沒有 Location 或 Frequency 欄，不是 CHIRP 信道列表。未做任何變更。"};
constexpr Text TooLarge{u"The file is too large for a channel list.", u"文件太大，不是信道列表。",
                        u"檔案太大，不是信道列表。"};
constexpr Text ReplaceFile{u"%1 already exists. Replace it?", u"%1 已存在，是否替换？", u"%1 已存在，是否取代？"};

QString openFilter()
{
    return u"CSV Files (*.csv);;All Files (*)"_s;
}

// A caption without its trailing ellipsis, as a dialog's title.
QString titleOf(const Text &caption, int languageIndex)
{
    QString title = caption.in(languageIndex);
    if (title.endsWith(u'…'))
        title.chop(1);
    return title;
}

} // namespace

// One step of the history: the rows it changed, before and after, and the
// rows selected before and after it.
class ChannelStep : public QUndoCommand
{
public:
    struct Change
    {
        int row;
        frmChannel::RowState before, after;
    };

    ChannelStep(frmChannel &form, const QString &text, QList<Change> changes, QList<int> selectedBefore,
                QList<int> selectedAfter)
        : QUndoCommand(text)
        , m_form(form)
        , m_changes(std::move(changes))
        , m_selectedBefore(std::move(selectedBefore))
        , m_selectedAfter(std::move(selectedAfter))
    {
    }

    void undo() override
    {
        for (const Change &change : std::as_const(m_changes))
            m_form.setRowState(change.row, change.before);
        m_form.selectChannels(m_selectedBefore);
    }

    void redo() override
    {
        // The first redo is the push: the grid already shows the step.
        if (!m_pushed) {
            m_pushed = true;
            return;
        }
        for (const Change &change : std::as_const(m_changes))
            m_form.setRowState(change.row, change.after);
        m_form.selectChannels(m_selectedAfter);
    }

private:
    frmChannel &m_form;
    QList<Change> m_changes;
    QList<int> m_selectedBefore, m_selectedAfter;
    bool m_pushed = false;
};

QUndoStack *frmChannel::undoStack() const
{
    return m_undo;
}

void frmChannel::buildTools()
{
    m_undo = new QUndoStack(this);
    m_toolMenu = new QMenu(this);
    m_toolMenu->setObjectName(u"channelMenu"_s);

    using Handler = void (frmChannel::*)();
    struct Entry
    {
        Tool tool;
        Handler handler;
    };
    const Entry entries[]{
        {{u"undoChannels", UndoCaption, {Qt::CTRL | Qt::Key_Z}}, nullptr},
        {{u"redoChannels", RedoCaption, {Qt::CTRL | Qt::Key_Y, Qt::CTRL | Qt::SHIFT | Qt::Key_Z}}, nullptr},
        {{}, nullptr},
        {{u"cutChannels", CutCaption, {Qt::SHIFT | Qt::Key_Delete}}, &frmChannel::cutChannels},
        {{u"copyChannels", CopyCaption, {Qt::CTRL | Qt::Key_C}}, &frmChannel::copyChannels},
        {{u"pasteChannels", PasteCaption, {Qt::CTRL | Qt::Key_V}}, &frmChannel::pasteChannels},
        {{u"clearChannels", DeleteCaption, {QKeyCombination(Qt::Key_Delete)}}, &frmChannel::clearChannels},
        {{}, nullptr},
        {{u"insertChannel", InsertCaption}, &frmChannel::insertChannel},
        {{u"removeChannels", RemoveCaption}, &frmChannel::removeChannels},
        {{u"moveChannelsUp", MoveUpCaption}, nullptr},
        {{u"moveChannelsDown", MoveDownCaption}, nullptr},
        {{u"sortChannels", SortCaption}, &frmChannel::sortChannels},
        {{}, nullptr},
        {{u"importCsv", ImportCaption}, &frmChannel::importCsv},
        {{u"exportCsv", ExportCaption}, &frmChannel::exportCsv},
    };
    for (const Entry &entry : entries) {
        if (entry.tool.name.isEmpty()) {
            m_toolMenu->addSeparator();
            continue;
        }
        auto *action = new QAction(m_grid);
        action->setObjectName(entry.tool.name.toString());
        QList<QKeySequence> keys;
        for (const QKeyCombination &key : entry.tool.keys) {
            if (key.key() != Qt::Key_unknown)
                keys.append(QKeySequence(key));
        }
        action->setShortcuts(keys);
        // Keys with Ctrl work in the grid and in its editors, which leave
        // such keys to shortcuts and never paste themselves (a click on an
        // empty row's number opens its receive frequency, where Ctrl+V must
        // still paste rows). Delete and Shift+Delete act on rows only from
        // the grid; in an open editor they edit its text. None of the keys is
        // one of the main window's (Ctrl+X Exit, Ctrl+A Save As).
        const bool withCtrl = !keys.isEmpty() && (keys.front()[0].keyboardModifiers() & Qt::ControlModifier);
        action->setShortcutContext(withCtrl ? Qt::WidgetWithChildrenShortcut : Qt::WidgetShortcut);
        m_grid->addAction(action);
        m_toolMenu->addAction(action);
        m_tools.append({action, entry.tool.caption});
        if (entry.handler)
            connect(action, &QAction::triggered, this, entry.handler);
    }
    const auto tool = [this](QStringView name) { return m_grid->findChild<QAction *>(name.toString()); };
    const auto committed = [this](auto run) {
        return [this, run] {
            m_editor->commit();
            run();
        };
    };
    QAction *undo = tool(u"undoChannels");
    QAction *redo = tool(u"redoChannels");
    connect(undo, &QAction::triggered, this, committed([this] { m_undo->undo(); }));
    connect(redo, &QAction::triggered, this, committed([this] { m_undo->redo(); }));
    connect(m_undo, &QUndoStack::canUndoChanged, undo, &QAction::setEnabled);
    connect(m_undo, &QUndoStack::canRedoChanged, redo, &QAction::setEnabled);
    undo->setEnabled(false);
    redo->setEnabled(false);
    connect(tool(u"moveChannelsUp"), &QAction::triggered, this, [this] { moveChannels(-1); });
    connect(tool(u"moveChannelsDown"), &QAction::triggered, this, [this] { moveChannels(+1); });

    // While the menu is up it shows what the selection allows; afterwards
    // every key works again (a key on a channel that cannot move does
    // nothing).
    connect(m_toolMenu, &QMenu::aboutToShow, this, [this, tool] {
        const QList<int> rows = selectedChannels();
        const bool any = !rows.isEmpty();
        const bool inUse = std::any_of(rows.begin(), rows.end(), [this](int row) { return !cellText(row, ColRx).isEmpty(); });
        tool(u"cutChannels")->setEnabled(inUse);
        tool(u"copyChannels")->setEnabled(inUse);
        tool(u"pasteChannels")->setEnabled(any && !QGuiApplication::clipboard()->text().trimmed().isEmpty());
        tool(u"clearChannels")->setEnabled(inUse);
        tool(u"insertChannel")->setEnabled(any);
        tool(u"removeChannels")->setEnabled(any);
        tool(u"moveChannelsUp")->setEnabled(any && rows.front() > 1);
        tool(u"moveChannelsDown")->setEnabled(any && rows.back() < lastRow());
        tool(u"sortChannels")->setEnabled(rows.size() > 1);
    });
    connect(m_toolMenu, &QMenu::aboutToHide, this, [this] {
        for (const auto &[action, caption] : std::as_const(m_tools)) {
            if (action->objectName() != u"undoChannels" && action->objectName() != u"redoChannels")
                action->setEnabled(true);
        }
    });
}

void frmChannel::captionTools()
{
    for (const auto &[action, caption] : std::as_const(m_tools))
        action->setText(caption.in(language()));
}

void frmChannel::showToolMenu(const QPoint &globalPosition)
{
    m_toolMenu->popup(globalPosition);
}

QList<int> frmChannel::selectedChannels() const
{
    QList<int> rows;
    for (const QModelIndex &index : m_grid->selectionModel()->selectedIndexes()) {
        if (index.row() >= 1 && index.row() <= lastRow() && !rows.contains(index.row()))
            rows.append(index.row());
    }
    if (rows.isEmpty() && m_grid->currentRow() >= 1 && m_grid->currentRow() <= lastRow())
        rows.append(m_grid->currentRow());
    std::sort(rows.begin(), rows.end());
    return rows;
}

void frmChannel::selectChannels(const QList<int> &channels)
{
    QItemSelection selection;
    for (int row : channels)
        selection.select(m_grid->model()->index(row, 0), m_grid->model()->index(row, ColumnCount - 1));
    if (!channels.isEmpty()) {
        const int column = std::max(0, m_grid->currentColumn());
        const QModelIndex current = m_grid->model()->index(channels.front(), column);
        m_grid->selectionModel()->setCurrentIndex(current, QItemSelectionModel::NoUpdate);
        m_grid->scrollTo(current);
    }
    m_grid->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

// A click on a channel number selects its row; Shift extends the selection
// from the row clicked before, Ctrl adds or removes one row, and dragging
// over the numbers selects the rows passed. A plain click then goes on as
// any click on the grid does (an empty row opens its receive frequency).
bool frmChannel::numberClick(QEvent *event)
{
    const QEvent::Type type = event->type();
    if (type != QEvent::MouseButtonPress && type != QEvent::MouseMove && type != QEvent::MouseButtonRelease)
        return false;
    const auto *mouse = static_cast<QMouseEvent *>(event);
    const QModelIndex index = m_grid->indexAt(mouse->position().toPoint());
    const int row = index.row();
    const Qt::KeyboardModifiers extend = mouse->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier);

    if (type == QEvent::MouseButtonPress) {
        if (mouse->button() != Qt::LeftButton || index.column() != ColNumber || row < 1)
            return false;
        m_editor->commit();
        QList<int> rows; // the whole rows selected so far
        for (const QModelIndex &selected : m_grid->selectionModel()->selectedRows())
            rows.append(selected.row());
        if (extend & Qt::ShiftModifier) {
            const int anchor = m_selectionAnchor >= 1 ? m_selectionAnchor : row;
            if (!(extend & Qt::ControlModifier))
                rows.clear();
            for (int r = std::min(anchor, row); r <= std::max(anchor, row); ++r) {
                if (!rows.contains(r))
                    rows.append(r);
            }
        } else if (extend & Qt::ControlModifier) {
            if (!rows.removeOne(row))
                rows.append(row);
            m_selectionAnchor = row;
        } else {
            rows = {row};
            m_selectionAnchor = row;
        }
        std::sort(rows.begin(), rows.end());
        selectChannels(rows);
        m_grid->selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
        m_selectingRows = true;
        m_rowsDragged = false;
        return true;
    }
    if (!m_selectingRows)
        return false;
    if (type == QEvent::MouseMove) {
        if ((mouse->buttons() & Qt::LeftButton) && row >= 1 && row != m_selectionAnchor) {
            QList<int> rows(std::abs(row - m_selectionAnchor) + 1);
            std::iota(rows.begin(), rows.end(), std::min(row, m_selectionAnchor));
            selectChannels(rows);
            m_rowsDragged = true;
        }
        return true;
    }
    m_selectingRows = false;
    return extend || m_rowsDragged;
}

frmChannel::RowState frmChannel::rowState(int row) const
{
    RowState state{rowTexts(row), {}};
    for (std::size_t i = 0; i < state.hidden.size(); ++i)
        state.hidden[i] = m_state.image.ReadByte(ChannelRow(row), HiddenFirstByte + int(i));
    return state;
}

void frmChannel::setRowState(int row, const RowState &state)
{
    writeRow(row, state.texts);
    for (std::size_t i = 0; i < state.hidden.size(); ++i)
        m_state.image.WriteByte(ChannelRow(row), HiddenFirstByte + int(i), state.hidden[i]);
}

void frmChannel::recordStep(const Text &name, const QList<int> &rows, const std::function<void()> &change)
{
    QList<RowState> before;
    for (int row : rows)
        before.append(rowState(row));
    const QList<int> selectedBefore = selectedChannels();
    change();
    QList<ChannelStep::Change> changes;
    for (qsizetype i = 0; i < rows.size(); ++i) {
        RowState after = rowState(rows[i]);
        if (!(after == before[i]))
            changes.append({rows[i], before[i], std::move(after)});
    }
    if (!changes.isEmpty())
        m_undo->push(new ChannelStep(*this, name.in(language()), std::move(changes), selectedBefore, selectedChannels()));
}

void frmChannel::recordEdit(int row, const std::function<void()> &change)
{
    recordStep(EditStep, {row}, change);
}

void frmChannel::moveRows(const QList<int> &to, const QList<int> &from, const QList<int> &vacated)
{
    QList<RowState> states;
    for (int row : from)
        states.append(rowState(row));
    for (qsizetype i = 0; i < to.size(); ++i)
        setRowState(to[i], states[i]);
    // An emptied row keeps nothing of a channel; the save erases its record.
    for (int row : vacated)
        setRowState(row, {ChannelTexts{}, {0xFF, 0xFF, 0xFF, 0xFF}});
}

QList<NumberedChannel> frmChannel::channelsInUse(const QList<int> &rows) const
{
    QList<NumberedChannel> channels;
    for (int row : rows) {
        if (!cellText(row, ColRx).isEmpty())
            channels.append({row, rowTexts(row)});
    }
    return channels;
}

void frmChannel::copyChannels()
{
    m_editor->commit();
    const QList<NumberedChannel> channels = channelsInUse(selectedChannels());
    if (!channels.isEmpty())
        QGuiApplication::clipboard()->setText(WriteChirpCsv(channels, u'\t', u"\n"));
}

void frmChannel::cutChannels()
{
    m_editor->commit();
    const QList<int> rows = selectedChannels();
    if (channelsInUse(rows).isEmpty())
        return;
    copyChannels();
    recordStep(CutCaption, rows, [&] {
        for (int row : rows)
            writeRow(row, ChannelTexts{});
    });
}

void frmChannel::clearChannels()
{
    m_editor->commit();
    const QList<int> rows = selectedChannels();
    recordStep(DeleteCaption, rows, [&] {
        for (int row : rows)
            writeRow(row, ChannelTexts{});
    });
}

// Rows from the clipboard (a copy of this list, a spreadsheet, another
// programmer's CHIRP rows) go in from the first selected channel on. Rows
// that would be changed or skipped are shown first, as an import does.
void frmChannel::pasteChannels()
{
    m_editor->commit();
    const QString text = QGuiApplication::clipboard()->text();
    const QList<int> rows = selectedChannels();
    if (text.trimmed().isEmpty() || rows.isEmpty())
        return;
    const CsvImport import = ReadChannelCsv(text, m_state.BandLimits, rows.front());
    if (import.refused) {
        MessageBox::show(this, QMessageBox::Warning, ModelName(), NotAChannelList.in(language()));
        return;
    }
    if (import.notes.isEmpty() && import.imported > 0) {
        applyImport(import, PasteCaption);
        return;
    }
    CsvImportPreview preview(import, replacedChannels(import), QString(), PasteCaption, language(), this);
    if (preview.exec() == QDialog::Accepted)
        applyImport(import, PasteCaption);
}

// Each row of an import replaces its channel's cells; a channel not in use
// is created first, as typing its receive frequency creates it.
void frmChannel::applyImport(const CsvImport &import, const Text &name)
{
    QList<int> rows;
    for (const auto &[channel, values] : import.channels)
        rows.append(channel);
    recordStep(name, rows, [&] {
        const auto inUse = [this](int channel) { return !cellText(channel, ColRx).isEmpty(); };
        for (const ChannelWrite &write : ImportWrites(import, language(), inUse)) {
            if (write.creates)
                CreateChannel(m_state.image, write.channel);
            writeRow(write.channel, write.texts);
        }
        selectChannels(rows);
    });
}

QList<int> frmChannel::replacedChannels(const CsvImport &import) const
{
    QList<int> replaced;
    for (const auto &[channel, values] : import.channels) {
        if (!cellText(channel, ColRx).isEmpty())
            replaced.append(channel);
    }
    return replaced;
}

void frmChannel::insertChannel()
{
    m_editor->commit();
    const QList<int> selected = selectedChannels();
    if (selected.isEmpty())
        return;
    const int at = selected.front();
    if (!cellText(lastRow(), ColRx).isEmpty()) {
        MessageBox::show(this, QMessageBox::Warning, ModelName(), NoRoomToInsert.in(language()));
        return;
    }
    QList<int> rows(lastRow() - at + 1);
    std::iota(rows.begin(), rows.end(), at);
    recordStep(InsertStep, rows, [&] {
        moveRows(rows.mid(1), rows.first(rows.size() - 1), {at});
        selectChannels({at});
    });
}

// The selected channels go; the ones below move up into their places.
void frmChannel::removeChannels()
{
    m_editor->commit();
    const QList<int> selected = selectedChannels();
    if (selected.isEmpty())
        return;
    QList<int> rows(lastRow() - selected.front() + 1);
    std::iota(rows.begin(), rows.end(), selected.front());
    QList<int> kept;
    for (int row : rows) {
        if (!selected.contains(row))
            kept.append(row);
    }
    recordStep(RemoveCaption, rows, [&] {
        moveRows(rows.first(kept.size()), kept, rows.mid(kept.size()));
        selectChannels({selected.front()});
    });
}

// The selected channels move one row up (by -1) or down (+1); each channel
// they pass takes the place they left.
void frmChannel::moveChannels(int by)
{
    m_editor->commit();
    const QList<int> selected = selectedChannels();
    if (selected.isEmpty() || selected.front() + by < 1 || selected.back() + by > lastRow())
        return;
    const int first = std::min(selected.front(), selected.front() + by);
    const int last = std::max(selected.back(), selected.back() + by);
    QList<int> rows(last - first + 1);
    std::iota(rows.begin(), rows.end(), first);
    // Where each row's channel comes from: selected ones from one row away,
    // the others fill the places left, in their order.
    QList<int> from(rows.size(), 0);
    QList<int> passed;
    for (int row : rows) {
        if (selected.contains(row))
            from[row + by - first] = row;
        else
            passed.append(row);
    }
    for (qsizetype i = 0, next = 0; i < from.size(); ++i) {
        if (from[i] == 0)
            from[i] = passed[next++];
    }
    QList<int> moved = selected;
    for (int &row : moved)
        row += by;
    recordStep(MoveStep, rows, [&] {
        moveRows(rows, from);
        selectChannels(moved);
    });
}

// The selected channels in the order of their receive frequencies, in the
// rows they held; empty rows go last.
void frmChannel::sortChannels()
{
    m_editor->commit();
    const QList<int> rows = selectedChannels();
    if (rows.size() < 2)
        return;
    QList<int> from = rows;
    const auto frequency = [this](int row) {
        const QString rx = cellText(row, ColRx);
        return rx.isEmpty() ? std::numeric_limits<qint64>::max() : freq::parseDecimal(rx, 5).value_or(0);
    };
    std::stable_sort(from.begin(), from.end(), [&](int a, int b) { return frequency(a) < frequency(b); });
    recordStep(SortStep, rows, [&] {
        moveRows(rows, from);
        selectChannels(rows);
    });
}

void frmChannel::importCsv()
{
    m_editor->commit();
    const QString path = FileDialog::getOpenFileName(this, titleOf(ImportCaption, language()), QString(), openFilter());
    if (path.isEmpty())
        return;
    QFile file(path);
    QByteArray bytes;
    if (file.open(QIODevice::ReadOnly))
        bytes = file.read(MaxCsvFileSize + 1);
    if (!file.isOpen() || file.error() != QFileDevice::NoError) {
        MessageBox::show(this, QMessageBox::Critical, Words::Error.in(language()), file.errorString());
        return;
    }
    if (bytes.size() > MaxCsvFileSize) {
        MessageBox::show(this, QMessageBox::Warning, ModelName(), TooLarge.in(language()));
        return;
    }
    const CsvImport import = ReadChannelCsv(DecodeCsvFile(bytes), m_state.BandLimits);
    if (import.refused) {
        MessageBox::show(this, QMessageBox::Warning, ModelName(), NotAChannelList.in(language()));
        return;
    }
    CsvImportPreview preview(import, replacedChannels(import), QFileInfo(path).fileName(), ImportCaption, language(),
                             this);
    if (preview.exec() == QDialog::Accepted)
        applyImport(import, ImportStep);
}

void frmChannel::exportCsv()
{
    m_editor->commit();
    QString path = FileDialog::getSaveFileName(this, titleOf(ExportCaption, language()), u"channels.csv"_s,
                                               u"CSV Files (*.csv)"_s);
    if (path.isEmpty())
        return;
    if (!path.endsWith(u".csv", Qt::CaseInsensitive)) {
        path += u".csv"_s;
        // The dialog asked about the name as typed, not about this one.
        if (QFileInfo::exists(path)
            && MessageBox::show(this, QMessageBox::Question, ModelName(),
                                ReplaceFile.in(language()).arg(QFileInfo(path).fileName()),
                                QMessageBox::Yes | QMessageBox::No, QMessageBox::No)
                != QMessageBox::Yes)
            return;
    }
    QList<int> rows(lastRow());
    std::iota(rows.begin(), rows.end(), 1);
    QString error;
    if (!DataFile::WriteBytes(path, ChirpCsvFile(channelsInUse(rows)), &error))
        MessageBox::show(this, QMessageBox::Critical, Words::Error.in(language()), error);
}

} // namespace wr
