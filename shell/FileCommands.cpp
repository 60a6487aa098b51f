#include "shell/FileCommands.h"

#include "core/AppState.h"
#include "core/Language.h"
#include "core/SettingsStore.h"
#include "file/DataFile.h"
#include "file/FileKind.h"
#include "ui/MessageBox.h"

#include <QDir>
#include <QFileInfo>
#include <QUrl>

#include <utility>

using namespace Qt::StringLiterals;

namespace wr {

namespace {

// The commands speak the interface language of the application state.
QString text(const Text &text)
{
    return text.in(app().LanguageIndex);
}

const QString &untitled()
{
    static const QString name = u"Untitled"_s;
    return name;
}

QString saveDialogTitle()
{
    return text({u"Save As", u"另存为", u"另存為"});
}

// The dialogs' folder, under a key of its own so that the three start-up
// values keep their key to themselves. It is kept as a file URL: plain ASCII,
// which survives a store that keeps texts in a narrow code page.
QString folderKey()
{
    return SettingsStore::keyPath() + u"\\File Dialogs"_s;
}

const QString FolderValue = u"Folder"_s;

} // namespace

FileCommands::FileCommands(QWidget *parent, SettingsStore &settings)
    : m_parent(parent)
    , m_settings(settings)
{
}

QString FileCommands::DataFileFilter()
{
    return u"tw Files (*.tw)"_s;
}

QString FileCommands::OpenFilter()
{
    return DataFileFilter() + u";;"_s + text({u"All files (*)", u"所有文件 (*)", u"所有文件 (*)"});
}

void FileCommands::setBeforeReplacing(std::function<void()> beforeReplacing)
{
    m_beforeReplacing = std::move(beforeReplacing);
}

QString FileCommands::dialogFolder() const
{
    const QString stored = m_settings.GetKeyValue(SettingsStore::Root::LocalMachine, folderKey(), FolderValue);
    const QString folder = QUrl(stored).toLocalFile();
    return !folder.isEmpty() && QFileInfo(folder).isDir() ? folder : QString();
}

void FileCommands::rememberFolder(const QString &file)
{
    const QString folder = QFileInfo(file).absolutePath();
    if (!QFileInfo(folder).isDir())
        return;
    const QString url = QUrl::fromLocalFile(folder).toString(QUrl::FullyEncoded);
    m_settings.SetKeyValue(SettingsStore::Root::LocalMachine, folderKey(), FolderValue, url);
}

bool FileCommands::FileNew()
{
    const MessageBox::Button answer = MessageBox::show(
        m_parent, QMessageBox::Warning, text(Words::Alert),
        text({u"All data will be cleared.", u"所有数据将被清空。", u"所有數據將被清空。"}),
        QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Cancel);
    if (answer != QMessageBox::Ok)
        return false;
    if (m_beforeReplacing)
        m_beforeReplacing();
    app().image.InitImage();
    return true;
}

bool FileCommands::saveModifiedFirst()
{
    AppState &state = app();
    if (!state.image.IsModified())
        return true;
    // The Traditional Chinese interface asks in Simplified Chinese too.
    const MessageBox::Button answer = MessageBox::show(
        m_parent, QMessageBox::Warning, QString(),
        text({u"File has been modified, save it now?", u"文件已被修改，是否保存？", u"文件已被修改，是否保存？"}),
        QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Yes);
    if (answer == QMessageBox::No)
        return true;
    if (answer != QMessageBox::Yes || !FileSave())
        return false;
    state.image.TakeSnapshot();
    return true;
}

FileCommands::Opened FileCommands::FileOpen(const std::optional<QString> &path, Folder folder)
{
    if (path && fileKindOf(*path) == FileKind::ChannelCsv) {
        m_chosen = *path;
        return Opened::ChannelCsv;
    }
    if (!saveModifiedFirst())
        return Opened::Nothing;
    m_chosen = path ? *path
                    : FileDialog::getOpenFileName(m_parent, text({u"Open", u"打开", u"打開"}), dialogFolder(),
                                                  OpenFilter());
    if (m_chosen.isEmpty())
        return Opened::Nothing;
    if (!path && fileKindOf(m_chosen) == FileKind::ChannelCsv) {
        rememberFolder(m_chosen);
        return Opened::ChannelCsv;
    }
    return load(m_chosen, folder) ? Opened::Image : Opened::Nothing;
}

bool FileCommands::load(const QString &path, Folder folder)
{
    if (folder == Folder::Remember)
        rememberFolder(path);
    if (!QFileInfo::exists(path)) {
        // Reached from outside the program, a name may well be wrong; say which.
        MessageBox::show(m_parent, QMessageBox::Critical, text(Words::Error),
                         text({u"The file does not exist.", u"文件不存在。", u"文件不存在。"}) + u'\n'
                             + QDir::toNativeSeparators(path));
        return false;
    }

    AppState &state = app();
    const DataFile::ReadResult result = DataFile::Read(path);
    switch (result.status) {
    case DataFile::ReadStatus::Ok:
        if (m_beforeReplacing)
            m_beforeReplacing();
        state.image.setBytes(result.image);
        state.image.TakeSnapshot();
        state.LoadBandLimits();
        return true;
    case DataFile::ReadStatus::WrongType:
        MessageBox::show(m_parent, QMessageBox::Critical, ModelName(),
                         DataFile::IncorrectFileType(path, result.problem, state.LanguageIndex));
        return false;
    case DataFile::ReadStatus::Damaged:
        MessageBox::show(m_parent, QMessageBox::Critical, text(Words::Error),
                         DataFile::IncorrectFileType(path, result.problem, state.LanguageIndex));
        return false;
    case DataFile::ReadStatus::CannotOpen:
        MessageBox::show(m_parent, QMessageBox::Critical, text(Words::Error), result.errorString);
        return false;
    }
    return false;
}

// The save dialog; a name typed without a suffix gets ".tw". The dialog's own
// overwrite question was about the name as typed, so when the name with the
// suffix exists the question is asked again for that file, and No goes back to
// the dialog.
QString FileCommands::askSaveName(const QString &proposed)
{
    QString start = proposed;
    if (const QString folder = dialogFolder(); !folder.isEmpty() && QFileInfo(start).fileName() == start)
        start = QDir(folder).filePath(start);
    for (;;) {
        QString path = FileDialog::getSaveFileName(m_parent, saveDialogTitle(), start, DataFileFilter());
        if (path.isEmpty())
            return {};
        rememberFolder(path);
        if (!QFileInfo(path).suffix().isEmpty())
            return path;
        path += path.endsWith(u'.') ? u"tw"_s : u".tw"_s;
        if (!QFileInfo::exists(path))
            return path;
        const MessageBox::Button answer = MessageBox::show(
            m_parent, QMessageBox::Warning, ModelName(),
            text({u"%1 already exists.\nDo you want to replace it?", u"%1 已存在。\n要替换它吗？",
                  u"%1 已存在。\n要替換它嗎？"})
                .arg(QFileInfo(path).fileName()),
            QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
        if (answer == QMessageBox::Yes)
            return path;
        start = path;
    }
}

bool FileCommands::saveTo(const QString &path)
{
    if (!WriteDataFile(path))
        return false;
    app().CurrentFileName = path;
    return true;
}

bool FileCommands::FileSave()
{
    if (app().CurrentFileName != untitled())
        return saveTo(app().CurrentFileName);
    const QString path = askSaveName(untitled() + u".tw"_s);
    return !path.isEmpty() && saveTo(path);
}

bool FileCommands::FileSaveAs()
{
    const QString current = app().CurrentFileName;
    const QString path = askSaveName(current == untitled() ? untitled() + u".tw"_s : current);
    return !path.isEmpty() && saveTo(path);
}

bool FileCommands::WriteDataFile(const QString &path)
{
    QString error;
    if (DataFile::Write(path, app().image, &error))
        return true;
    MessageBox::show(m_parent, QMessageBox::Warning, ModelName(), error);
    return false;
}

} // namespace wr
