#pragma once

#include <QString>

#include <functional>
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

    // Runs just before New or Open replaces the image, once it is sure to:
    // the last moment to keep what is about to go.
    void setBeforeReplacing(std::function<void()> beforeReplacing);

    // "All data will be cleared." then a fresh image. True when cleared.
    bool FileNew();

    enum class Opened {
        Nothing,    // cancelled, or the file could not be loaded (and said so)
        Image,      // the image was replaced
        ChannelCsv, // the file is a channel list in CSV: chosenFile() names it
    };
    // How the chosen file's folder is treated: remembered for the next
    // dialog, unless it is one of the program's own folders.
    enum class Folder { Remember, Forget };

    // Asks to save a modified image first, then loads a ".tw" file into the
    // image with its snapshot and band limits: `path` when the file was chosen
    // outside the program (on the command line, dropped on the window, a
    // backup), else the one the file dialog picks. A save that the user
    // cancels or that fails ends the command, so the unsaved data stays where
    // it is. A CSV file is not loaded but handed back: from outside the
    // program before any question, as it replaces nothing.
    Opened FileOpen(const std::optional<QString> &path = std::nullopt, Folder folder = Folder::Remember);
    QString chosenFile() const { return m_chosen; }

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
    // The open dialog's filters: the data files, then all files.
    static QString OpenFilter();

private:
    // The folder the dialogs open in; "" when none is known or it is gone.
    QString dialogFolder() const;
    bool saveModifiedFirst();
    bool load(const QString &path, Folder folder);
    QString askSaveName(const QString &proposed);
    bool saveTo(const QString &path);
    void rememberFolder(const QString &file);

    QWidget *m_parent;
    SettingsStore &m_settings;
    std::function<void()> m_beforeReplacing;
    QString m_chosen;
};

} // namespace wr
