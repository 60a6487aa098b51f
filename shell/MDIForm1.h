#pragma once

#include "core/Language.h"

#include <QList>
#include <QMainWindow>
#include <QPointer>

#include <memory>
#include <utility>

class QAction;
class QLabel;
class QMdiArea;
class QMdiSubWindow;
class QMenu;
class QTimer;
class QToolBar;
class QTreeWidget;
class QTreeWidgetItem;

namespace wr {

class SettingsStore;
class frmChannel;

// The main window: menus, toolbar, the tree of editors, the status bar and
// the channel list as its child window. It runs the start-up sequence when
// it is built and writes the settings back when it closes.
//
// Every command first commits a value still open in the channel list's
// in-place editors; the commands that hand the whole image on (Save, Save
// As, Write, Exit, the language and optional features forms) then run the
// commit step, which moves the grid into the image and takes the snapshot.
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

    // The confirmations before a transfer; on OK the progress form runs it.
    void ReadCommand();
    void WriteCommand();

    // The channel list, or null while it is closed.
    frmChannel *channelList() const;

private:
    // The interface language of the application state.
    int language() const;
    void Form_Load();
    void buildMenus();
    void buildToolBar();
    void buildStatusBar();
    void buildTree();
    void captionStep();
    void showPortPanel();
    void Time_Timer();

    QMenu *addMenu(const QString &name, Text caption, bool shown = true);
    QAction *addItem(QMenu *menu, const QString &name, Text caption, const QKeySequence &shortcut = {},
                     bool shown = true);
    void addSeparator(QMenu *menu, const QString &name, bool shown);

    // Menu, toolbar and tree commands.
    void mnuFile_New_Click();
    void mnuFile_Open_Click();
    void mnuFile_Save_Click();
    void mnuFile_SaveAs_Click();
    void mnuFile_Exit_Click();
    void mnuChannel_Info_Click();
    void mnuOptiom_Features_Click();
    void mnuVFO_Click();
    void mnuScramble_Click();
    void mnuRadio_Click();
    void mnuRead_Click();
    void mnuWrite_Click();
    void mnuPort_Click();
    void mnuLanguage_Click();
    void mnuHelp_About_Click();
    void tlbActions_ButtonClick(const QString &key);
    void Tree0_NodeClick(QTreeWidgetItem *node);

    void showChannelList();
    void runTransfer();

    // Editors built by the feature forms work. Until they are part of the
    // program these entry points only mark where the forms open (modal,
    // owned by this window); their commit steps have already run.
    void openOptionalFeatures();
    void openKeySetting();
    void openScramble();
    void openRadio();
    void openMemoryMap();

protected:
    void closeEvent(QCloseEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    std::unique_ptr<SettingsStore> m_ownedSettings;
    SettingsStore *m_settings;

    QMdiArea *m_mdiArea = nullptr;
    QPointer<frmChannel> m_channels;
    QPointer<QMdiSubWindow> m_channelWindow;
    QTreeWidget *m_tree = nullptr;
    QToolBar *m_toolBar = nullptr;
    QTimer *m_time = nullptr;
    QList<QLabel *> m_panels; // MSBar panels 1-5
    QList<std::pair<QAction *, Text>> m_captions;
    bool m_shownOnce = false;
};

} // namespace wr
