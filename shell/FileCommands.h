#pragma once

#include <QString>

#include <optional>

class QWidget;

namespace wr {

class SettingsStore;

// The New, Open, Save and Save As commands on the memory image of wr::app().
// Each shows its own questions and failure messages; none of them touches
// the image unless its load step has succeeded. The main window runs the
// commit step before them and refreshes itself when New or Open report that
// the image was replaced.
//
// The file dialogs open in the folder of the data file last opened or saved,
// by any run of the program: it is kept in the settings store, under a key of
// its own beside the three start-up values.
class FileCommands
{
public:
    // parent: the window the questions and dialogs belong to.
    FileCommands(QWidget *parent, SettingsStore &settings);

    // "All data will be cleared." then a fresh image. True when cleared.
    bool FileNew();

    // Asks to save a modified image first, then loads a ".tw" file into the
    // image with its snapshot and band limits: `path` when the file was chosen
    // outside the program (on the command line or dropped on the window), else
    // the one the file dialog picks. True when the image was replaced. A save
    // that the user cancels or that fails ends the command, so the unsaved data
    // stays where it is.
    bool FileOpen(const std::optional<QString> &path = std::nullopt);

    // Writes the image to CurrentFileName, asking for a name while it is
    // "Untitled". True when the file was written.
    bool FileSave();

    // Asks for a name (proposing CurrentFileName) and writes the image there.
    bool FileSaveAs();

    // Writes the image to path; on failure shows the system's reason. The file
    // is replaced atomically, so a failure leaves the old file as it was.
    bool WriteDataFile(const QString &path);

    // "tw Files (*.tw)", the filter of both file dialogs.
    static QString DataFileFilter();

private:
    // The folder the dialogs open in; "" when none is known or it is gone.
    QString dialogFolder() const;
    bool saveModifiedFirst();
    bool load(const QString &path);
    QString askSaveName(const QString &proposed);
    bool saveTo(const QString &path);
    void rememberFolder(const QString &file);

    QWidget *m_parent;
    SettingsStore &m_settings;
};

} // namespace wr
