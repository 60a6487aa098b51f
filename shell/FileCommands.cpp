#include "shell/FileCommands.h"

#include "core/AppState.h"
#include "core/Language.h"
#include "file/DataFile.h"
#include "ui/MessageBox.h"

using namespace Qt::StringLiterals;

namespace wr {

namespace {

const QString &untitled()
{
    static const QString name = u"Untitled"_s;
    return name;
}

QString errorTitle()
{
    return TextFor(u"Error"_s, u"错误"_s, u"錯誤"_s);
}

QString incorrectFileType()
{
    return TextFor(u"Incorrect File Type."_s, u"文件类型不正确。"_s, u"文件類型不正確。"_s);
}

QString saveDialogTitle()
{
    return TextFor(u"Save As"_s, u"另存为"_s, u"另存為"_s);
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
        parent, QMessageBox::Warning, TextFor(u"Alert!"_s, u"警告!"_s, u"警告!"_s),
        TextFor(u"All data will be cleared."_s, u"所有数据将被清空。"_s, u"所有數據將被清空。"_s),
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
            TextFor(u"File has been modified, save it now?"_s, u"文件已被修改，是否保存？"_s,
                    u"文件已被修改，是否保存？"_s),
            QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Yes);
        if (answer == QMessageBox::Yes) {
            if (!FileSave(parent))
                return false;
            state.image.TakeSnapshot();
        } else if (answer != QMessageBox::No) {
            return false;
        }
    }

    const QString path = FileDialog::getOpenFileName(parent, TextFor(u"Open"_s, u"打开"_s, u"打開"_s), QString(),
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
        MessageBox::show(parent, QMessageBox::Critical, errorTitle(), incorrectFileType());
        return false;
    case DataFile::ReadStatus::CannotOpen:
        MessageBox::show(parent, QMessageBox::Critical, errorTitle(), result.errorString);
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
