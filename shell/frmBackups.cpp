#include "shell/frmBackups.h"

#include "ui/Accessible.h"

#include "channels/ChannelRecord.h"
#include "file/DataFile.h"
#include "shell/AppIcon.h"
#include "ui/MessageBox.h"

#include <QDesktopServices>
#include <QDir>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QTreeWidget>
#include <QUrl>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace wr {

namespace {

constexpr Caption Captions[]{
    {u"frmBackups", {u"Backups", u"备份", u"備份"}},
    {u"lblBackups",
     {u"&Backups the program kept, newest first:", u"程序保留的备份(&B)，最新的在前：", u"程序保留的備份(&B)，最新的在前："}},
    {u"cmdShowFolder", {u"Show &Folder", u"显示文件夹(&F)", u"顯示文件夾(&F)"}},
    {u"cmdOpen", {u"&Open", u"打开(&O)", u"打開(&O)"}},
    {u"cmdClose", {u"&Close", u"关闭(&C)", u"關閉(&C)"}},
};
constexpr FieldTable Texts{.captions = Captions};

enum Column { TimeColumn, ReasonColumn, ChannelsColumn, ColumnCount };
constexpr Text Headers[ColumnCount]{
    {u"Time", u"时间", u"時間"},
    {u"Reason", u"原因", u"原因"},
    {u"Channels in use", u"使用中的信道", u"使用中的信道"},
};
constexpr Text NoBackups{u"No backups have been kept yet.", u"尚未保留任何备份。", u"尚未保留任何備份。"};
constexpr Text Unreadable{u"unreadable", u"无法读取", u"無法讀取"};
constexpr Text FolderNotShown{u"The folder could not be shown:\n%1", u"无法显示文件夹：\n%1", u"無法顯示文件夾：\n%1"};

// Rows in sight when the form opens.
constexpr int VisibleRows = 12;

// How many channels a backup holds, or why that cannot be told.
QString channelsIn(const QString &path, Language language)
{
    const DataFile::ReadResult file = DataFile::Read(path);
    if (file.status != DataFile::ReadStatus::Ok)
        return Unreadable.in(language);
    MemoryImage image;
    image.setBytes(file.image);
    return QString::number(ChannelsInUse(image));
}

} // namespace

frmBackups::frmBackups(const QString &folder, Language language, QWidget *parent)
    : FormDialog(language, parent)
    , m_folder(folder)
{
    setObjectName(u"frmBackups"_s);
    setWindowIcon(AppIcon());
    auto *label = makeControl<QLabel>(u"lblBackups"_s);
    m_list = makeControl<QTreeWidget>(u"lstBackups"_s);
    auto *showFolder = makeControl<QPushButton>(u"cmdShowFolder"_s);
    label->setBuddy(m_list);
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setAllColumnsShowFocus(true);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setColumnCount(ColumnCount);

    const ButtonRow buttons = makeButtonRow(u"cmdOpen"_s, u"cmdClose"_s);
    m_open = buttons.ok;
    buttons.layout->insertWidget(0, showFolder);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(m_list, 1);
    layout->addSpacing(4);
    layout->addLayout(buttons.layout);

    caption(Texts);
    QStringList headers;
    for (const Text &header : Headers)
        headers << header.in(language);
    m_list->setHeaderLabels(headers);
    // The buttons are named with their captions; the list has its label.
    m_list->setAccessibleName(captionName(label->text()));

    connect(showFolder, &QPushButton::clicked, this, &frmBackups::showFolder);
    connect(m_list, &QTreeWidget::itemDoubleClicked, m_open, &QPushButton::click);
    fill();
}

void frmBackups::fill()
{
    m_entries = Backups::list(m_folder);
    m_list->clear();
    for (const Backups::Entry &entry : std::as_const(m_entries)) {
        auto *row = new QTreeWidgetItem(m_list);
        row->setText(TimeColumn, entry.time.toString(u"yyyy-MM-dd HH:mm:ss"_s));
        row->setText(ReasonColumn, Backups::reasonText(entry.reason).in(language()));
        row->setText(ChannelsColumn, channelsIn(entry.path, language()));
        row->setTextAlignment(ChannelsColumn, Qt::AlignCenter);
        row->setToolTip(TimeColumn, QDir::toNativeSeparators(entry.path));
    }
    // Wide enough for every column, high enough for a dozen rows.
    int width = 0;
    for (int column = 0; column < ColumnCount; ++column) {
        m_list->resizeColumnToContents(column);
        m_list->setColumnWidth(column, std::max(m_list->columnWidth(column), m_list->header()->sectionSizeHint(column)) + 12);
        width += m_list->columnWidth(column);
    }
    // Spanning the columns, the note does not widen the first one.
    if (m_entries.isEmpty()) {
        auto *note = new QTreeWidgetItem(m_list);
        note->setText(TimeColumn, NoBackups.in(language()));
        note->setFlags(Qt::ItemIsEnabled);
        note->setFirstColumnSpanned(true);
        // A screen reader finds the columns under the span too: they say it.
        for (int column = 0; column < ColumnCount; ++column)
            note->setData(column, Qt::AccessibleTextRole, NoBackups.in(language()));
    }
    m_list->setCurrentItem(m_list->topLevelItem(0));
    m_open->setEnabled(!m_entries.isEmpty());

    const int rows = m_list->sizeHintForRow(0) * VisibleRows;
    m_list->setMinimumSize(width + 2 * m_list->frameWidth() + m_list->verticalScrollBar()->sizeHint().width(),
                           rows + m_list->header()->sizeHint().height() + 2 * m_list->frameWidth());
}

QString frmBackups::chosenBackup() const
{
    const int row = m_list->indexOfTopLevelItem(m_list->currentItem());
    return result() == Accepted && row >= 0 && row < m_entries.size() ? m_entries.at(row).path : QString();
}

// The folder is made first, so that there is something to show before the
// first backup.
void frmBackups::showFolder()
{
    QDir().mkpath(m_folder);
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(m_folder)))
        MessageBox::show(this, QMessageBox::Warning, ModelName(),
                         FolderNotShown.in(language()).arg(QDir::toNativeSeparators(m_folder)));
}

} // namespace wr
