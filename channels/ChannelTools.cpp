// The channel list's tools: the context menu and its keys, the clipboard,
// insert, delete, move, sort, CSV import and export, all on the model
// through its history.

#include "channels/ChannelTools.h"

#include "channels/ChannelCsv.h"
#include "channels/ChannelHistory.h"
#include "channels/ChannelModel.h"
#include "channels/CsvImportPreview.h"
#include "core/CsvText.h"
#include "file/DataFile.h"
#include "ui/MessageBox.h"

#include <QAction>
#include <QClipboard>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMenu>
#include <QUndoStack>
#include <QWidget>

#include <algorithm>
#include <numeric>

namespace wr {

using namespace Qt::StringLiterals;

namespace {

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
constexpr Text InsertStep{u"Insert", u"插入", u"插入"};
constexpr Text MoveStep{u"Move", u"移动", u"移動"};
constexpr Text SortStep{u"Sort", u"排序", u"排序"};
constexpr Text ImportStep{u"Import", u"导入", u"匯入"};

constexpr Text NoRoomToInsert{u"Channel 128 is in use: there is no room to insert a channel.",
                              u"信道 128 已被使用，无法插入信道。", u"信道 128 已被使用，無法插入信道。"};
constexpr Text NotAChannelList{
    u"There is no Frequency column and no column of the channel list, so this is not a channel list. Nothing was "
    u"changed.",
    u"没有 Frequency 列，也没有信道列表的列，不是信道列表。未做任何更改。",
    u"沒有 Frequency 欄，也沒有信道列表的欄，不是信道列表。未做任何變更。"};
constexpr Text TooLarge{u"The file is too large for a channel list.", u"文件太大，不是信道列表。",
                        u"檔案太大，不是信道列表。"};
constexpr Text ReplaceFile{u"%1 already exists. Replace it?", u"%1 已存在，是否替换？", u"%1 已存在，是否取代？"};

QString openFilter()
{
    return u"CSV Files (*.csv);;All Files (*)"_s;
}

} // namespace

ChannelTools::ChannelTools(ChannelToolHost &host, ChannelModel &model, ChannelHistory &history,
                           const BandLimitArray &limits, QWidget *grid)
    : QObject(grid)
    , m_host(host)
    , m_model(model)
    , m_history(history)
    , m_limits(limits)
    , m_grid(grid)
{
    build();
    caption();
}

Language ChannelTools::language() const
{
    return m_model.language();
}

QAction *ChannelTools::action(QStringView name) const
{
    return m_grid->findChild<QAction *>(name.toString());
}

void ChannelTools::build()
{
    m_menu = new QMenu(m_grid);
    m_menu->setObjectName(u"channelMenu"_s);

    using Handler = void (ChannelTools::*)();
    struct Entry
    {
        Tool tool;
        Handler handler;
    };
    const Entry entries[]{
        {{u"undoChannels", UndoCaption, {Qt::CTRL | Qt::Key_Z}}, nullptr},
        {{u"redoChannels", RedoCaption, {Qt::CTRL | Qt::Key_Y, Qt::CTRL | Qt::SHIFT | Qt::Key_Z}}, nullptr},
        {{}, nullptr},
        {{u"cutChannels", CutCaption, {Qt::SHIFT | Qt::Key_Delete}}, &ChannelTools::cutChannels},
        {{u"copyChannels", CopyCaption, {Qt::CTRL | Qt::Key_C, Qt::CTRL | Qt::Key_Insert}}, &ChannelTools::copyChannels},
        {{u"pasteChannels", PasteCaption, {Qt::CTRL | Qt::Key_V, Qt::SHIFT | Qt::Key_Insert}}, &ChannelTools::pasteChannels},
        {{u"clearChannels", DeleteCaption, {QKeyCombination(Qt::Key_Delete)}}, &ChannelTools::clearChannels},
        {{}, nullptr},
        {{u"insertChannel", InsertCaption}, &ChannelTools::insertChannel},
        {{u"removeChannels", RemoveCaption}, &ChannelTools::removeChannels},
        {{u"moveChannelsUp", MoveUpCaption}, nullptr},
        {{u"moveChannelsDown", MoveDownCaption}, nullptr},
        {{u"sortChannels", SortCaption}, &ChannelTools::sortChannels},
        {{}, nullptr},
        {{u"importCsv", ImportCaption}, &ChannelTools::importCsv},
        {{u"exportCsv", ExportCaption}, &ChannelTools::exportCsv},
    };
    for (const Entry &entry : entries) {
        if (entry.tool.name.isEmpty()) {
            m_menu->addSeparator();
            continue;
        }
        auto *tool = new QAction(m_grid);
        tool->setObjectName(entry.tool.name.toString());
        QList<QKeySequence> keys;
        for (const QKeyCombination &key : entry.tool.keys) {
            if (key.key() != Qt::Key_unknown)
                keys.append(QKeySequence(key));
        }
        tool->setShortcuts(keys);
        // Keys with Ctrl work in the grid and in its editors, which leave
        // such keys to shortcuts, all but their own copy and paste: there
        // Ctrl+C, Ctrl+V, Ctrl+Insert and Shift+Insert work on the editor's
        // text, unless rows are pasted into an editor nothing was typed
        // into (frmChannel::pasteGoesToGrid). Delete and Shift+Delete act on
        // rows only from the grid; in an open editor they edit its text.
        // None of the keys is one of the main window's (Ctrl+X Exit, Ctrl+A
        // Save As).
        const bool withCtrl = !keys.isEmpty() && (keys.front()[0].keyboardModifiers() & Qt::ControlModifier);
        tool->setShortcutContext(withCtrl ? Qt::WidgetWithChildrenShortcut : Qt::WidgetShortcut);
        m_grid->addAction(tool);
        m_menu->addAction(tool);
        m_actions.append({tool, entry.tool.caption});
        if (entry.handler)
            connect(tool, &QAction::triggered, this, entry.handler);
    }
    QUndoStack *steps = m_history.stack();
    QAction *undo = action(u"undoChannels");
    QAction *redo = action(u"redoChannels");
    connect(undo, &QAction::triggered, this, [this, steps] {
        m_host.commitEdit();
        steps->undo();
    });
    connect(redo, &QAction::triggered, this, [this, steps] {
        m_host.commitEdit();
        steps->redo();
    });
    connect(steps, &QUndoStack::canUndoChanged, undo, &QAction::setEnabled);
    connect(steps, &QUndoStack::canRedoChanged, redo, &QAction::setEnabled);
    undo->setEnabled(false);
    redo->setEnabled(false);
    connect(action(u"moveChannelsUp"), &QAction::triggered, this, [this] { moveChannels(-1); });
    connect(action(u"moveChannelsDown"), &QAction::triggered, this, [this] { moveChannels(+1); });

    // While the menu is up it shows what the selection allows; afterwards
    // every key works again (a key on a channel that cannot move does
    // nothing).
    connect(m_menu, &QMenu::aboutToShow, this, [this] {
        const QList<int> rows = m_host.selectedChannels();
        const bool any = !rows.isEmpty();
        const bool inUse = !m_model.table().inUse(rows).isEmpty();
        action(u"cutChannels")->setEnabled(inUse);
        action(u"copyChannels")->setEnabled(inUse);
        action(u"pasteChannels")->setEnabled(any && !QGuiApplication::clipboard()->text().trimmed().isEmpty());
        action(u"clearChannels")->setEnabled(inUse);
        action(u"insertChannel")->setEnabled(any);
        action(u"removeChannels")->setEnabled(any);
        action(u"moveChannelsUp")->setEnabled(any && rows.front() > 1);
        action(u"moveChannelsDown")->setEnabled(any && rows.back() < m_host.lastChannel());
        action(u"sortChannels")->setEnabled(rows.size() > 1);
    });
    connect(m_menu, &QMenu::aboutToHide, this, [this] {
        for (const auto &[tool, caption] : std::as_const(m_actions)) {
            if (tool->objectName() != u"undoChannels" && tool->objectName() != u"redoChannels")
                tool->setEnabled(true);
        }
    });
}

void ChannelTools::caption()
{
    for (const auto &[tool, caption] : std::as_const(m_actions))
        tool->setText(caption.in(language()));
}

void ChannelTools::showMenu(const QPoint &globalPosition)
{
    m_menu->popup(globalPosition);
}

// One step; the rows selected afterwards are `selectedAfter`, or the same
// as before when that is empty.
void ChannelTools::change(const Text &name, const ChannelChanges &after, const QList<int> &selectedAfter)
{
    const QList<int> selected = m_host.selectedChannels();
    m_history.change(name, after, selected, selectedAfter.isEmpty() ? selected : selectedAfter);
    if (!selectedAfter.isEmpty())
        m_host.selectChannels(selectedAfter);
}

void ChannelTools::rearrange(const Text &name, const RowPlan &plan, const QList<int> &selectedAfter)
{
    change(name, m_model.table().rearranged(plan), selectedAfter);
}

void ChannelTools::copyChannels()
{
    m_host.commitEdit();
    const QList<NumberedChannel> channels = m_model.table().inUse(m_host.selectedChannels());
    if (!channels.isEmpty())
        QGuiApplication::clipboard()->setText(writeChirpCsv(channels, u'\t', u"\n"));
}

void ChannelTools::cutChannels()
{
    m_host.commitEdit();
    if (m_model.table().inUse(m_host.selectedChannels()).isEmpty())
        return;
    copyChannels();
    emptyChannels(CutCaption);
}

void ChannelTools::clearChannels()
{
    m_host.commitEdit();
    emptyChannels(DeleteCaption);
}

// Delete and Cut empty the rows' cells, as clearing their receive
// frequencies does; the next save erases their records.
void ChannelTools::emptyChannels(const Text &name)
{
    const QList<int> rows = m_host.selectedChannels();
    ChannelChanges emptied;
    for (int row : rows)
        emptied[row] = {ChannelTexts{}, m_model.table().at(row).hidden};
    change(name, emptied, {});
}

// Rows from the clipboard (a copy of this list, a spreadsheet, another
// programmer's CHIRP rows) go in from the first selected channel on; a block
// of cells without a header holds the grid's columns from the current one on.
// Rows that would be changed or skipped are shown first, as an import does.
void ChannelTools::pasteChannels()
{
    m_host.commitEdit();
    const QString text = QGuiApplication::clipboard()->text();
    const QList<int> rows = m_host.selectedChannels();
    if (text.trimmed().isEmpty() || rows.isEmpty())
        return;
    const CsvImport import = readChannelCsv(
        text, m_limits,
        {.pasteAt = rows.front(), .firstChannel = rows.front(), .firstColumn = m_host.currentColumn(), .table = &m_model.table()});
    if (import.refused) {
        MessageBox::show(m_grid, QMessageBox::Warning, ModelName(), NotAChannelList.in(language()));
        return;
    }
    // Rows that named their channels and went in unchanged need no look
    // first; rows placed by their lines or read by position do.
    if (import.notes.isEmpty() && import.imported > 0 && import.byLocation) {
        applyImport(import, PasteCaption);
        return;
    }
    CsvImportPreview preview(import, replacedChannels(import), QString(), PasteCaption, language(), m_grid);
    if (preview.exec() == QDialog::Accepted)
        applyImport(import, PasteCaption);
}

// Each row of an import replaces its channel's cells; a channel not in use
// is created first, as typing its receive frequency creates it.
void ChannelTools::applyImport(const CsvImport &import, const Text &name)
{
    QList<int> rows;
    for (const auto &[channel, values] : import.channels)
        rows.append(channel);
    change(name, importedChannels(m_model.table(), import, language()), rows);
}

QList<int> ChannelTools::replacedChannels(const CsvImport &import) const
{
    QList<int> replaced;
    for (const auto &[channel, values] : import.channels) {
        if (m_model.table().at(channel).inUse())
            replaced.append(channel);
    }
    return replaced;
}

void ChannelTools::insertChannel()
{
    m_host.commitEdit();
    const QList<int> selected = m_host.selectedChannels();
    if (selected.isEmpty())
        return;
    if (m_model.table().at(m_host.lastChannel()).inUse()) {
        MessageBox::show(m_grid, QMessageBox::Warning, ModelName(), NoRoomToInsert.in(language()));
        return;
    }
    rearrange(InsertStep, planInsert(selected.front(), m_host.lastChannel()), {selected.front()});
}

// The selected channels go; the ones below move up into their places.
void ChannelTools::removeChannels()
{
    m_host.commitEdit();
    const QList<int> selected = m_host.selectedChannels();
    if (!selected.isEmpty())
        rearrange(RemoveCaption, planRemove(selected, m_host.lastChannel()), {selected.front()});
}

// The selected channels move one row up (by -1) or down (+1).
void ChannelTools::moveChannels(int by)
{
    m_host.commitEdit();
    const QList<int> selected = m_host.selectedChannels();
    const RowPlan plan = planMove(selected, by, m_host.lastChannel());
    if (plan.isEmpty())
        return;
    QList<int> moved = selected;
    for (int &row : moved)
        row += by;
    rearrange(MoveStep, plan, moved);
}

// The selected channels in the order of their receive frequencies, in the
// rows they held; empty rows go last.
void ChannelTools::sortChannels()
{
    m_host.commitEdit();
    const QList<int> rows = m_host.selectedChannels();
    if (rows.size() < 2)
        return;
    QStringList receive;
    for (int row : rows)
        receive.append(m_model.table().at(row).texts.rx);
    rearrange(SortStep, planSort(rows, receive), rows);
}

void ChannelTools::importCsv()
{
    m_host.commitEdit();
    const QString path =
        FileDialog::getOpenFileName(m_grid, dialogTitle(ImportCaption, language()), QString(), openFilter());
    if (!path.isEmpty())
        importCsvFile(path);
}

// A file's channels go to their Locations, or without that column from the
// first selected channel on; what changes is shown first.
void ChannelTools::importCsvFile(const QString &path)
{
    m_host.commitEdit();
    const csv::File file = csv::readFile(path);
    if (file.problem == csv::File::Problem::Unreadable) {
        MessageBox::show(m_grid, QMessageBox::Critical, Words::Error.in(language()), file.error);
        return;
    }
    if (file.problem == csv::File::Problem::TooLarge) {
        MessageBox::show(m_grid, QMessageBox::Warning, ModelName(), TooLarge.in(language()));
        return;
    }
    const QList<int> selected = m_host.selectedChannels();
    const CsvImport import =
        readChannelCsv(file.text, m_limits, {.firstChannel = selected.value(0, 1), .table = &m_model.table()});
    if (import.refused) {
        MessageBox::show(m_grid, QMessageBox::Warning, ModelName(), NotAChannelList.in(language()));
        return;
    }
    CsvImportPreview preview(import, replacedChannels(import), QFileInfo(path).fileName(), ImportCaption, language(),
                             m_grid);
    if (preview.exec() == QDialog::Accepted)
        applyImport(import, ImportStep);
}

void ChannelTools::exportCsv()
{
    m_host.commitEdit();
    QString path = FileDialog::getSaveFileName(m_grid, dialogTitle(ExportCaption, language()), u"channels.csv"_s,
                                               u"CSV Files (*.csv)"_s);
    if (path.isEmpty())
        return;
    if (!path.endsWith(u".csv", Qt::CaseInsensitive)) {
        path += u".csv"_s;
        // The dialog asked about the name as typed, not about this one.
        if (QFileInfo::exists(path)
            && MessageBox::show(m_grid, QMessageBox::Question, ModelName(),
                                ReplaceFile.in(language()).arg(QFileInfo(path).fileName()),
                                QMessageBox::Yes | QMessageBox::No, QMessageBox::No)
                != QMessageBox::Yes)
            return;
    }
    QList<int> rows(m_host.lastChannel());
    std::iota(rows.begin(), rows.end(), 1);
    QString error;
    if (!DataFile::WriteBytes(path, chirpCsvFile(m_model.table().inUse(rows)), &error))
        MessageBox::show(m_grid, QMessageBox::Critical, Words::Error.in(language()), error);
}

} // namespace wr
