#pragma once

#include "core/Language.h"
#include "shell/FileCommands.h"

#include <QList>
#include <QMainWindow>
#include <QPointer>

#include <memory>
#include <optional>
#include <utility>

class QAction;
class QMdiArea;
class QMdiSubWindow;
class QToolBar;
class QTreeWidgetItem;

namespace wr {

class MemoryImage;
class EditorTree;
class SettingsStore;
class StatusPanels;
class frmChannel;
enum class BackupReason;
class frmMemoryMap;

// The main window: menus, toolbar, the tree of editors, the status bar and
// the channel list as its child window. It runs the start-up sequence when
// it is built and writes the settings back when it closes.
//
// Its commands are one table: each names its action, how much it commits
// before it runs and its handler. Every command first commits a value still
// open in the channel list's in-place editors; those that hand the whole
// image on (Save, Save As, Write, Exit, the language and optional features
// forms) then run the commit step, which moves the grid into the image and
// takes the snapshot. The toolbar and the tree run the menu's own actions.
class MDIForm1 : public QMainWindow
{
    Q_OBJECT

public:
    // settings: where Model, language and gbPort are read at start-up and
    // written when the window closes; null uses the machine's own store.
    explicit MDIForm1(SettingsStore *settings = nullptr, QWidget *parent = nullptr);
    ~MDIForm1() override;

    // Captions everything in the current language, reloads the channel list
    // from the image and rewrites the status panels and the title.
    void RefreshMainWindow();
    // Stores a value still open in one of the channel list's editors.
    void CommitChannelEdit();
    // Grid into the image, address 0x0CD0 cleared, snapshot taken.
    void CommitStep();

    // Read and Write: the question before the transfer; on OK the progress
    // form runs it.
    void ReadCommand();
    void WriteCommand();

    // The channel list, or null while it is closed.
    frmChannel *channelList() const;

    // Open: the modified question, then the file: `path` when it was chosen
    // outside the program (given on the command line or dropped on the
    // window), else the one the file dialog picks. A channel list in CSV goes
    // to the channel list's import instead.
    void openFile(const std::optional<QString> &path = std::nullopt);

    // Where the automatic backups go; the application data folder's unless a
    // test gives a folder of its own.
    void setBackupFolder(const QString &folder);

    // The image as the channel list's edits would leave it, with the
    // snapshot: what the modified test compares, without touching the image.
    MemoryImage workingImage() const;

    // How much a command commits before it runs.
    enum class Commit {
        Nothing,
        ChannelEdit,         // CommitChannelEdit
        ChannelEditAndStep,  // CommitChannelEdit, then CommitStep
    };

protected:
    void closeEvent(QCloseEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    using Handler = void (MDIForm1::*)();

    Language language() const; // the interface language of the application state
    void Form_Load();
    void buildMenus();
    void buildToolBar();
    void buildTree();
    void captionStep();
    void showPortPanel();
    void fitToScreen();
    void fitTreePane();

    QAction *addCommand(QAction *action, Commit commit, Handler handler);
    void runCommand(Commit commit, Handler handler);
    // Opens an editor of the image modal to this window, in the interface
    // language; true when it was closed with OK.
    template <typename Form>
    bool editModal();

    // Command handlers; the commit the table names has already run.
    void fileNew();
    void fileOpen();
    void showBackups();
    void fileSave();
    void fileSaveAs();
    void fileExit();
    void showChannelList();
    void choosePort();
    // Keeps Verify After Writing's tick for the next run.
    void rememberVerify();
    void chooseLanguage();
    void showAbout();
    // Asks before a transfer in a direction (LinkDirection's 0 reads, 1
    // writes), then runs it.
    void transfer(quint8 direction);

    // Entry points of the feature editors (their forms come with them):
    // the optional features command (after the commit step), the hidden
    // mnuVFO, mnuScramble and mnuRadio items, and the channel list's memory
    // map gesture (after the grid was saved).
    void openOptionalFeatures();
    void openKeySetting();
    void openScramble();
    void openRadio();
    void openMemoryMap();

    void Tree0_NodeClick(QTreeWidgetItem *node);

    // Automatic backups (MDIForm1Backups.cpp).
    QString backupFolder() const;
    void keepBackup(BackupReason reason, const MemoryImage &image);
    // Keeps the working image when the modified test reports changes that
    // a read, New or Open is about to replace.
    void keepUnsavedChanges(BackupReason reason);
    void keepExitBackup();
    // Once a start: a note when the last run left unsaved changes behind.
    void noteUnsavedChangesOfLastRun();

    // Open of a file from outside or of one of the program's own (a backup),
    // whose folder the file dialogs do not take up.
    void open(const std::optional<QString> &path, FileCommands::Folder folder);
    // A channel list in CSV handed to Open goes to the channel list's import.
    void importChannelCsv(const QString &path);
    // Restored from maximised, the channel list comes back at its opening
    // size, or smaller where the document area is.
    void restoreChannelWindow();

    std::unique_ptr<SettingsStore> m_ownedSettings;
    SettingsStore *m_settings;

    QMdiArea *m_mdiArea = nullptr;
    QPointer<frmChannel> m_channels;
    QPointer<QMdiSubWindow> m_channelWindow;
    QPointer<frmMemoryMap> m_memoryMap; // open beside this window, at most one
    EditorTree *m_tree = nullptr;
    QToolBar *m_toolBar = nullptr;
    QAction *m_verify = nullptr; // Verify After Writing
    StatusPanels *m_status = nullptr;
    QList<std::pair<QAction *, Text>> m_captions;       // the menus'
    QList<std::pair<QTreeWidgetItem *, Text>> m_nodeCaptions; // the tree's
    bool m_shownOnce = false;
    QString m_backupFolder;
    bool m_exitWithUnsavedChanges = false; // the modified test before Exit's commit step
    QByteArray m_memoryMapOpenedWith;      // the image the open memory map shows
};

} // namespace wr
