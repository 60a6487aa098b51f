#include "shell/FileCommands.h"

#include "core/AppState.h"
#include "core/Language.h"
#include "file/DataFile.h"
#include "ui/MessageBox.h"

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

QString incorrectFileType()
{
    return text({u"Incorrect File Type.", u"文件类型不正确。", u"文件類型不正確。"});
}

QString saveDialogTitle()
{
    return text({u"Save As", u"另存为", u"另存為"});
}

// Takes a chosen name as the current file once the image is in it.
bool saveTo(QWidget *parent, const QString &path)
{
    if (!WriteDataFile(parent, path))
        return false;
    app().CurrentFileName = path;
    return true;
}

} // namespace

QString DataFileFilter()
{
    return u"tw Files (*.tw)"_s;
}

bool FileNew(QWidget *parent)
{
    const MessageBox::Button answer = MessageBox::show(
        parent, QMessageBox::Warning, text(Words::Alert),
        text({u"All data will be cleared.", u"所有数据将被清空。", u"所有數據將被清空。"}),
        QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Cancel);
    if (answer != QMessageBox::Ok)
        return false;
    app().image.InitImage();
    return true;
}

bool FileOpen(QWidget *parent)
{
    AppState &state = app();
    if (state.image.IsModified()) {
        // The Traditional Chinese interface asks in Simplified Chinese too.
        const MessageBox::Button answer = MessageBox::show(
            parent, QMessageBox::Warning, QString(),
            text({u"File has been modified, save it now?", u"文件已被修改，是否保存？", u"文件已被修改，是否保存？"}),
            QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Yes);
        if (answer == QMessageBox::Yes) {
            if (!FileSave(parent))
                return false;
            state.image.TakeSnapshot();
        } else if (answer != QMessageBox::No) {
            return false;
        }
    }

    const QString path = FileDialog::getOpenFileName(parent, text({u"Open", u"打开", u"打開"}), QString(),
                                                     DataFileFilter());
    if (path.isEmpty())
        return false;

    const DataFile::ReadResult result = DataFile::Read(path);
    switch (result.status) {
    case DataFile::ReadStatus::Ok:
        state.image.setBytes(result.image);
        state.image.TakeSnapshot();
        state.LoadBandLimits();
        return true;
    case DataFile::ReadStatus::WrongType:
        MessageBox::show(parent, QMessageBox::Critical, ModelName(), incorrectFileType());
        return false;
    case DataFile::ReadStatus::Damaged:
        MessageBox::show(parent, QMessageBox::Critical, text(Words::Error), incorrectFileType());
        return false;
    case DataFile::ReadStatus::CannotOpen:
        MessageBox::show(parent, QMessageBox::Critical, text(Words::Error), result.errorString);
        return false;
    }
    return false;
}

bool FileSave(QWidget *parent)
{
    if (app().CurrentFileName != untitled())
        return saveTo(parent, app().CurrentFileName);
    const QString path =
        FileDialog::getSaveFileName(parent, saveDialogTitle(), untitled() + u".tw"_s, DataFileFilter());
    if (path.isEmpty())
        return false;
    return saveTo(parent, path);
}

bool FileSaveAs(QWidget *parent)
{
    const QString current = app().CurrentFileName;
    const QString proposed = current == untitled() ? untitled() + u".tw"_s : current;
    const QString path = FileDialog::getSaveFileName(parent, saveDialogTitle(), proposed, DataFileFilter());
    if (path.isEmpty())
        return false;
    return saveTo(parent, path);
}

bool WriteDataFile(QWidget *parent, const QString &path)
{
    QString error;
    if (DataFile::Write(path, app().image, &error))
        return true;
    MessageBox::show(parent, QMessageBox::Warning, ModelName(), error);
    return false;
}

} // namespace wr
