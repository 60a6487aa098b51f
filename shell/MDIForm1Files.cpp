// The main window's file side: New, Open, Save and Save As, files dropped
// on the window or handed over as channel lists in CSV, and the automatic
// backups that keep what a command is about to replace.
#include "shell/MDIForm1.h"

#include "channels/frmChannel.h"
#include "core/AppState.h"
#include "file/Backups.h"
#include "file/FileKind.h"
#include "shell/StatusPanels.h"
#include "shell/frmBackups.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QTimer>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace wr {

namespace {

// The file a drag brings: one local file named *.tw, or a channel list in
// CSV. The window takes it as a copy, since it only reads it: taken as a
// move (Shift held), the file manager would delete the file afterwards.
// Anything else it refuses and gives "".
QString acceptDataFile(QDropEvent *event)
{
    const QList<QUrl> urls = event->mimeData() ? event->mimeData()->urls() : QList<QUrl>();
    const QString path = urls.size() == 1 && urls.first().isLocalFile() ? urls.first().toLocalFile() : QString();
    const bool dataFile = QFileInfo(path).suffix().compare(u"tw", Qt::CaseInsensitive) == 0;
    if (path.isEmpty() || !(dataFile || fileKindOf(path) == FileKind::ChannelCsv)
        || !(event->possibleActions() & Qt::CopyAction)) {
        event->ignore();
        return {};
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
    return path;
}

} // namespace

void MDIForm1::fileNew()
{
    FileCommands files(this, *m_settings);
    files.setBeforeReplacing([this] { keepUnsavedChanges(BackupReason::BeforeNew); });
    if (files.FileNew())
        RefreshMainWindow();
}

void MDIForm1::fileOpen()
{
    openFile();
}

void MDIForm1::openFile(const std::optional<QString> &path)
{
    open(path, FileCommands::Folder::Remember);
}

void MDIForm1::open(const std::optional<QString> &path, FileCommands::Folder folder)
{
    // Edits typed into the grid count as modifications: they are moved into
    // the image before the modified test, so the question can protect them.
    CommitChannelEdit();
    if (m_channels)
        m_channels->SaveData();
    FileCommands files(this, *m_settings);
    files.setBeforeReplacing([this] { keepUnsavedChanges(BackupReason::BeforeOpen); });
    switch (files.FileOpen(path, folder)) {
    case FileCommands::Opened::Image:
        RefreshMainWindow();
        break;
    case FileCommands::Opened::ChannelCsv:
        importChannelCsv(files.chosenFile());
        break;
    case FileCommands::Opened::Nothing:
        break;
    }
}

void MDIForm1::fileSave()
{
    FileCommands(this, *m_settings).FileSave();
}

void MDIForm1::fileSaveAs()
{
    FileCommands(this, *m_settings).FileSaveAs();
}

void MDIForm1::importChannelCsv(const QString &path)
{
    showChannelList();
    m_channels->importCsvFile(path);
}

void MDIForm1::showBackups()
{
    frmBackups form(backupFolder(), language(), this);
    if (form.exec() == QDialog::Accepted)
        open(form.chosenBackup(), FileCommands::Folder::Forget);
}

void MDIForm1::setBackupFolder(const QString &folder)
{
    m_backupFolder = folder;
}

QString MDIForm1::backupFolder() const
{
    return m_backupFolder.isEmpty() ? Backups::defaultFolder() : m_backupFolder;
}

MemoryImage MDIForm1::workingImage() const
{
    MemoryImage working = app().image;
    if (m_channels)
        m_channels->saveInto(working);
    return working;
}

// A backup is kept behind the user's back: whatever becomes of it, the
// command that caused it goes on as if there were none.
void MDIForm1::keepBackup(BackupReason reason, const MemoryImage &image)
{
    Backups::keep(backupFolder(), image, reason, QDateTime::currentDateTime());
}

void MDIForm1::keepUnsavedChanges(BackupReason reason)
{
    const MemoryImage image = workingImage();
    if (image.IsModified())
        keepBackup(reason, image);
}

// What is lost at exit is mostly what was typed into the channel list and
// never saved, so the exit backup holds the list as it stands; the image
// itself stays as it is: closing other than by Exit commits nothing.
void MDIForm1::keepExitBackup()
{
    const MemoryImage image = workingImage();
    const bool unsaved = m_exitWithUnsavedChanges || image.IsModified();
    keepBackup(unsaved ? BackupReason::ExitUnsaved : BackupReason::Exit, image);
}

void MDIForm1::noteUnsavedChangesOfLastRun()
{
    static constexpr Text Note{u"Unsaved changes from the last run were kept: File → Backups…",
                               u"上次运行未保存的修改已保留：文件 → 备份…", u"上次運行未保存的修改已保留：文件 → 備份…"};
    constexpr int Shown = 15'000; // milliseconds
    const QList<Backups::Entry> backups = Backups::list(backupFolder());
    if (!backups.isEmpty() && backups.first().reason == BackupReason::ExitUnsaved)
        m_status->showNote(Note, Shown);
}

void MDIForm1::dragEnterEvent(QDragEnterEvent *event)
{
    acceptDataFile(event);
}

void MDIForm1::dragMoveEvent(QDragMoveEvent *event)
{
    acceptDataFile(event);
}

void MDIForm1::dropEvent(QDropEvent *event)
{
    const QString path = acceptDataFile(event);
    if (path.isEmpty())
        return;
    // The program the file came from waits until the drop is over; the
    // questions of Open come after that.
    QTimer::singleShot(0, this, [this, path] { openFile(path); });
}

} // namespace wr
