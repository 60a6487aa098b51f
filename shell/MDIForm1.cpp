#include "shell/MDIForm1.h"

#include "channels/frmChannel.h"
#include "shell/ChannelSheetCommand.h"
#include "core/AppState.h"
#include "core/SettingsStore.h"
#include "features/frmKey.h"
#include "features/frmOption.h"
#include "file/Backups.h"
#include "features/frmMemoryMap.h"
#include "features/frmRadio.h"
#include "features/frmSMB.h"
#include "link/frmclone.h"
#include "shell/AppIcon.h"
#include "shell/EditorTree.h"
#include "shell/LanguageForm.h"
#include "shell/MainWindowNames.h"
#include "shell/QtTranslations.h"
#include "shell/StatusPanels.h"
#include "shell/frmAbout.h"
#include "shell/frmComPort.h"
#include "ui/InterfaceFont.h"
#include "ui/MessageBox.h"
#include "ui/Twips.h"

#include <QAction>
#include <QCloseEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QShowEvent>
#include <QStyle>
#include <QWindow>
#include <QSplitter>
#include <QToolBar>
#include <QTreeWidget>

#include <span>

using namespace Qt::StringLiterals;

namespace wr {

namespace {

constexpr QSize StartUpSize = twipsToPixels(13410, 11440);
constexpr int TreePaneWidth = 158; // until the tree's captions are known

// Image address 0x0CD0 (row 205, byte 0) holds 0x20 in a fresh image and is
// cleared whenever the whole image is handed on; what it means to the radio
// is not known, and it travels with row 205.
constexpr int CommitClearedAddress = 0x0CD0;

constexpr Text ContinueQuestion{u"Do you wish to continue?", u"是否继续？", u"是否繼續？"};

// How long the status bar says what became of a corrected value.
constexpr int CorrectionNoteTime = 10'000; // ms

// The values of LinkDirection.
constexpr QStringView VerifySetting = u"VerifyWrites"; // "0": writes are not read back

constexpr quint8 ReadFromRadio = 0;
constexpr quint8 WriteToRadio = 1;

// The tree node's data holding the QAction a click runs.
constexpr int CommandRole = Qt::UserRole + 1;

} // namespace

MDIForm1::MDIForm1(SettingsStore *settings, QWidget *parent)
    : QMainWindow(parent)
    , m_ownedSettings(settings ? nullptr : std::make_unique<SettingsStore>())
    , m_settings(settings ? settings : m_ownedSettings.get())
{
    setObjectName(u"MDIForm1"_s);
    setWindowIcon(AppIcon());
    setWindowTitle(ModelName());
    setAcceptDrops(true);

    // The tree of editors sits in a plain panel on the left, beside the
    // document area that holds the channel list.
    auto *split = new QSplitter(Qt::Horizontal, this);
    split->setObjectName(u"PicClone"_s);
    split->setChildrenCollapsible(false);
    m_tree = new EditorTree(split);
    m_tree->setObjectName(u"Tree0"_s);
    m_tree->setHeaderHidden(true);
    // A narrow pane: the channel grid needs the width more than the tree,
    // whose root stays expanded anyway.
    m_tree->setRootIsDecorated(false);
    m_tree->setIndentation(14);
    // The pane is as wide as the captions (fitTreePane); a pane dragged
    // narrower elides them rather than scrolling sideways.
    m_tree->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_mdiArea = new QMdiArea(split);
    m_mdiArea->setObjectName(u"MDIArea"_s);
    split->addWidget(m_tree);
    split->addWidget(m_mdiArea);
    split->setStretchFactor(0, 0);
    split->setStretchFactor(1, 1);
    split->setSizes({TreePaneWidth, StartUpSize.width() - TreePaneWidth});
    setCentralWidget(split);

    buildMenus();
    m_verify = findChild<QAction *>(u"mnuVerify"_s);
    buildToolBar();
    m_status = new StatusPanels(statusBar());

    // The memory map's key, beside the channel list's mouse gesture.
    auto *memoryMap = new QAction(this);
    memoryMap->setObjectName(u"actMemoryMap"_s);
    memoryMap->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::ALT | Qt::Key_M));
    connect(memoryMap, &QAction::triggered, this, [this] {
        if (m_channels)
            m_channels->requestMemoryMap();
    });
    addAction(memoryMap);

    Form_Load();
}

MDIForm1::~MDIForm1() = default;

Language MDIForm1::language() const
{
    return Language(app().LanguageIndex);
}

void MDIForm1::Form_Load()
{
    // Settings, the open-forms flags, the tone table, the grid sizes, the
    // file name and the fresh image with its band limits.
    StartUp(app(), *m_settings);
    // Writes are read back unless the user said otherwise.
    const auto root = SettingsStore::Root::LocalMachine;
    m_verify->setChecked(m_settings->GetKeyValue(root, SettingsStore::keyPath(), VerifySetting.toString()) != u"0");
    resize(StartUpSize);
    buildTree();
    RefreshMainWindow();
    showChannelList();
}

// The menu bar as data. Items without a handler have no function; hidden
// ones are never shown, and Qt also switches their shortcuts off.
struct MenuItem
{
    QStringView name;
    Text caption = {u""};
    MDIForm1::Commit commit = MDIForm1::Commit::Nothing;
    void (MDIForm1::*handler)() = nullptr;
    QKeyCombination shortcut = {};
    bool shown = true;
    bool separator = false;
    bool checkable = false; // a setting, ticked or not
};

struct Menu
{
    QStringView name;
    Text caption;
    bool shown;
    std::span<const MenuItem> items;
};

constexpr MenuItem separator(QStringView name, bool shown)
{
    return {.name = name, .shown = shown, .separator = true};
}

QAction *MDIForm1::addCommand(QAction *action, Commit commit, Handler handler)
{
    connect(action, &QAction::triggered, this, [this, commit, handler] { runCommand(commit, handler); });
    return action;
}

void MDIForm1::runCommand(Commit commit, Handler handler)
{
    if (commit != Commit::Nothing)
        CommitChannelEdit();
    if (commit == Commit::ChannelEditAndStep)
        CommitStep();
    if (handler)
        (this->*handler)();
}

void MDIForm1::buildMenus()
{
    using enum Commit;
    constexpr auto ctrl = [](Qt::Key key) { return Qt::CTRL | key; };
    static constexpr MenuItem File[]{
        {u"mnuFile_New", {u"&New", u"新建(&N)", u"新建(&N)"}, ChannelEdit, &MDIForm1::fileNew, ctrl(Qt::Key_N)},
        {u"mnuFile_Open", {u"&Open", u"打开(&O)", u"打開(&O)"}, ChannelEdit, &MDIForm1::fileOpen, ctrl(Qt::Key_O)},
        {u"mnuFile_Save", {u"&Save", u"保存(&S)", u"保存(&S)"}, ChannelEditAndStep, &MDIForm1::fileSave,
         ctrl(Qt::Key_S)},
        {u"mnuFile_SaveAs", {u"Save &As", u"另存为(&A)", u"另存為(&A)"}, ChannelEditAndStep, &MDIForm1::fileSaveAs,
         ctrl(Qt::Key_A)},
        // The automatic backups, which would otherwise go unnoticed. The
        // Chinese captions have no access key, which would add "(B)".
        {u"mnuFile_Backups", {u"&Backups…", u"备份…", u"備份…"}, ChannelEdit, &MDIForm1::showBackups},
        separator(u"mnuFile_Bar1", false),
        // Printing does not exist.
        {u"mnuFile_Print", {u"&Print", u"打印(&P)", u"打印(&P)"}, Nothing, nullptr, ctrl(Qt::Key_P), false},
        {u"mnuFile_PrintView", {u"P&rint View", u"打印预览(&R)", u"打印預覽(&R)"}, Nothing, nullptr, ctrl(Qt::Key_V),
         false},
        separator(u"mnuFile_Bar2", true),
        // Exit's commit step is its handler's first step (fileExit).
        {u"mnuFile_Exit", {u"&Exit", u"退出(&E)", u"退出(&E)"}, ChannelEdit, &MDIForm1::fileExit, ctrl(Qt::Key_X)},
    };
    static constexpr MenuItem Machine[]{
        {u"mnuMachine_Info", {u"Machine Info(&M)", u"机型信息(&M)", u"機型信息(&M)"}},
    };
    static constexpr MenuItem Edit[]{
        {u"mnuChannel_Info", {u"Channel Info(&C)", u"信道信息(&C)", u"信道信息(&C)"}, ChannelEdit,
         &MDIForm1::showChannelList},
        separator(u"mnuFile_Bar3", true),
        {u"mnuOptiom_Features", {u"Optiom Features(&O)", u"可选功能(&O)", u"可選功能(&O)"}, ChannelEditAndStep,
         &MDIForm1::openOptionalFeatures},
        separator(u"mnuFile_Bar14", false),
        {u"mnuVFO", {u"Key Setting", u"键定义", u"鍵定義"}, ChannelEdit, &MDIForm1::openKeySetting, {}, false},
        separator(u"mnuFile_Bar4", false),
        {u"mnuDTMF", {u"DTMF(&D)"}, Nothing, nullptr, {}, false},
        separator(u"mnuFile_Bar8", false),
        {u"mnuMSK", {u"MSK(&M)"}, Nothing, nullptr, {}, false},
        separator(u"mnuFile_Bar9", false),
        {u"mnuScramble", {u"Scramble(&S)", u"扰频(&S)", u"擾頻(&S)"}, ChannelEdit, &MDIForm1::openScramble, {}, false},
        separator(u"mnuFile_Bar7", false),
        {u"mnuRadio", {u"Radio(&R)", u"收音机(&R)", u"收音機(&R)"}, ChannelEdit, &MDIForm1::openRadio, {}, false},
    };
    static constexpr MenuItem Program[]{
        {u"mnuRead", {u"Read Data From InterPhone(&R)", u"从对讲机读取数据(&R)", u"從對講機讀取數據(&R)"}, ChannelEdit,
         &MDIForm1::ReadCommand, ctrl(Qt::Key_R)},
        {u"mnuWrite", {u"Write Data To InterPhone(&W)", u"向对讲机写入数据(&W)", u"向對講機寫入數據(&W)"},
         ChannelEditAndStep, &MDIForm1::WriteCommand, ctrl(Qt::Key_W)},
    };
    static constexpr MenuItem Set[]{
        {u"mnuPort", {u"Communication Port(&C)", u"通信端口(&C)", u"通信端口(&C)"}, ChannelEdit, &MDIForm1::choosePort},
        {u"mnuVerify", {u"Verify After Writing(&V)", u"写入后校验(&V)", u"寫入後校驗(&V)"}, Nothing,
         &MDIForm1::rememberVerify, {}, true, false, true},
        separator(u"mnuFile_Bar5", true),
        {u"mnuLanguage", {u"Language File Setup(&L)", u"语言设置(&L)", u"語言設置(&L)"}, ChannelEditAndStep,
         &MDIForm1::chooseLanguage},
        {u"mnuChange_Password", {u"Change Password(&Y)", u"更改密码(&Y)", u"更改密碼(&Y)"}, Nothing, nullptr, {}, false},
        separator(u"mnuFile_Bar6", false),
        {u"mnuGet_Password", {u"Get Password(&Z)", u"获取读写密码(&Z)", u"獲取讀寫密碼(&Z)"}, Nothing, nullptr, {},
         false},
    };
    static constexpr MenuItem Help[]{
        {u"mnuHelp_About", {u"About(&A)", u"关于(&A)", u"關於(&A)"}, ChannelEdit, &MDIForm1::showAbout},
    };
    static constexpr Menu Menus[]{
        {u"mnuFile", {u"File(&F)", u"文件(&F)", u"文件(&F)"}, true, File},
        {u"mnuMachine", {u"Machine(&M)", u"机型(&M)", u"機型(&M)"}, false, Machine},
        {u"mnuEdit", {u"Edit(&E)", u"编辑(&E)", u"編輯(&E)"}, true, Edit},
        {u"mnuProgram", {u"Program(&P)", u"编程(&P)", u"編程(&P)"}, true, Program},
        {u"mnuSet", {u"Set(&S)", u"设置(&S)", u"設置(&S)"}, true, Set},
        {u"mnuHelp", {u"About(&A)", u"关于(&A)", u"關於(&A)"}, true, Help},
    };

    menuBar()->setObjectName(u"MenuBar"_s);
    for (const Menu &entry : Menus) {
        QMenu *menu = menuBar()->addMenu(QString());
        menu->setObjectName(entry.name.toString());
        menu->menuAction()->setVisible(entry.shown);
        m_captions.append({menu->menuAction(), entry.caption});
        for (const MenuItem &item : entry.items) {
            QAction *action = item.separator ? menu->addSeparator() : menu->addAction(QString());
            action->setObjectName(item.name.toString());
            action->setVisible(item.shown);
            if (item.separator)
                continue;
            action->setShortcut(item.shortcut);
            action->setCheckable(item.checkable);
            m_captions.append({action, item.caption});
            addCommand(action, item.commit, item.handler);
        }
    }
}

void MDIForm1::buildToolBar()
{
    m_toolBar = addToolBar(u"tlbActions"_s);
    m_toolBar->setObjectName(u"tlbActions"_s);
    m_toolBar->setMovable(false);
    m_toolBar->setFloatable(false);
    m_toolBar->setIconSize(QSize(24, 24));
    m_toolBar->toggleViewAction()->setVisible(false);
    setContextMenuPolicy(Qt::NoContextMenu);

    // The buttons run the menu's own commands. Print, which does not exist,
    // only commits. Key and tool tip are the same English word in every
    // language; an empty key is a separator.
    struct Button
    {
        QStringView key;
        CommandIcon icon;
        QStringView menuItem;
    };
    static constexpr Button Buttons[]{
        {u"New", CommandIcon::New, u"mnuFile_New"},
        {u"Open", CommandIcon::Open, u"mnuFile_Open"},
        {u"Save", CommandIcon::Save, u"mnuFile_Save"},
        {u"Print", CommandIcon::Print, {}},
        {{}, {}, {}},
        {u"Read", CommandIcon::Read, u"mnuRead"},
        {u"Write", CommandIcon::Write, u"mnuWrite"},
        {{}, {}, {}},
        {u"About", CommandIcon::About, u"mnuHelp_About"},
    };
    for (const Button &button : Buttons) {
        if (button.key.isEmpty()) {
            m_toolBar->addSeparator();
            continue;
        }
        QAction *action = button.menuItem.isEmpty()
            ? addCommand(new QAction(this), Commit::ChannelEditAndStep, nullptr)
            : findChild<QAction *>(button.menuItem.toString());
        action->setIcon(CommandIconFor(button.icon));
        action->setIconVisibleInMenu(false);
        action->setToolTip(button.key.toString());
        m_toolBar->addAction(action);
        m_toolBar->widgetForAction(action)->setObjectName(button.key.toString());
    }
}

// The tree of editors as data, like the menus: under the root, which
// names the model in every language and runs nothing, each node runs a menu
// command. Keys are the nodes' data under Qt::UserRole.
void MDIForm1::buildTree()
{
    struct Node
    {
        QStringView key;
        Text caption;
        CommandIcon icon;
        QStringView menuItem;
    };
    static constexpr Node Nodes[]{
        {u"Item1", {u"CH Information", u"信道信息", u"信道信息"}, CommandIcon::ChannelList, u"mnuChannel_Info"},
        {u"Item2", {u"Optiom Features", u"可选功能", u"可選功能"}, CommandIcon::OptionalFeatures, u"mnuOptiom_Features"},
    };
    auto *root = new QTreeWidgetItem(m_tree);
    root->setData(0, Qt::UserRole, u"Root"_s);
    root->setText(0, ModelName());
    root->setIcon(0, AppIcon());
    for (const Node &entry : Nodes) {
        auto *node = new QTreeWidgetItem(root);
        node->setData(0, Qt::UserRole, entry.key.toString());
        node->setData(0, CommandRole, QVariant::fromValue<QObject *>(findChild<QAction *>(entry.menuItem.toString())));
        node->setIcon(0, CommandIconFor(entry.icon));
        m_nodeCaptions.append({node, entry.caption});
    }
    m_tree->expandItem(root);
    m_tree->setCurrentItem(root->child(0));
    connect(m_tree, &QTreeWidget::itemClicked, this, &MDIForm1::Tree0_NodeClick);
    connect(m_tree, &EditorTree::nodeChosen, this, &MDIForm1::Tree0_NodeClick);
}

void MDIForm1::captionStep()
{
    for (const auto &[action, caption] : std::as_const(m_captions))
        action->setText(caption.in(language()));
    for (const auto &[node, caption] : std::as_const(m_nodeCaptions))
        node->setText(0, caption.in(language()));
}

void MDIForm1::RefreshMainWindow()
{
    InstallQtTranslations(language());
    useInterfaceFont(language());
    captionStep();
    nameMainWindowParts(this, language());
    if (m_channels)
        m_channels->RefreshChannel();
    showPortPanel();
    m_status->showLanguage(language());
    setWindowTitle(ModelName());
    if (m_shownOnce)
        fitTreePane();
}

void MDIForm1::showPortPanel()
{
    m_status->showPort(app().PortNumber);
}

void MDIForm1::CommitChannelEdit()
{
    if (m_channels)
        m_channels->commitOpenEditor();
}

void MDIForm1::CommitStep()
{
    if (m_channels)
        m_channels->SaveData();
    app().image.WriteByte(CommitClearedAddress, 0);
    app().image.TakeSnapshot();
}

frmChannel *MDIForm1::channelList() const
{
    return m_channels;
}

void MDIForm1::showChannelList()
{
    if (!m_channels) {
        auto *form = new frmChannel(app());
        new ChannelSheetCommand(app(), *form, *m_settings);
        m_channelWindow = m_mdiArea->addSubWindow(form);
        m_channelWindow->setAttribute(Qt::WA_DeleteOnClose);
        m_channelWindow->setWindowIcon(AppIcon());
        // The sub-window's own Close key is Ctrl+W on most desktops, which
        // is the Write command here; the child closes with Ctrl+F4 instead.
        for (QAction *action : m_channelWindow->systemMenu()->actions()) {
            if (action->shortcut() == QKeySequence(QKeySequence::Close))
                action->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_F4));
        }
        m_channels = form;
        connect(form, &frmChannel::memoryMapRequested, this, &MDIForm1::openMemoryMap);
        connect(form, &frmChannel::valueCorrected, this, [this](const TypedCorrection &correction) {
            m_status->showNote(correction.text(language()), CorrectionNoteTime);
        });
        addAction(form->findChannelsAction()); // Ctrl+F from the tree and the toolbar too
        connect(form, &frmChannel::channelsShown, m_status, &StatusPanels::showChannelsShown);
        connect(form, &QObject::destroyed, m_status, [status = m_status] { status->showChannelsShown(-1); });
        // Bit 0 of the open-forms flags follows the channel list's life.
        app().FormOpenFlags |= AppState::ChannelListOpen;
        connect(form, &QObject::destroyed, this, [] { app().FormOpenFlags &= ~AppState::ChannelListOpen; });
        m_channelWindow->resize(frmChannel::OpeningSize);
        connect(m_channelWindow, &QMdiSubWindow::windowStateChanged, this,
                [this](Qt::WindowStates before, Qt::WindowStates now) {
                    if ((before & Qt::WindowMaximized) && !(now & (Qt::WindowMaximized | Qt::WindowMinimized)))
                        restoreChannelWindow();
                });
        m_channelWindow->showMaximized();
    }
    m_channelWindow->show();
    m_mdiArea->setActiveSubWindow(m_channelWindow);
    m_channelWindow->raise();
}

// Restored from maximised, the channel list comes back at the size it opens
// with, not the few pixels it had before it was first maximised; where the
// document area is smaller, as large as the area, so that its scroll bar
// and its right edge stay in sight.
void MDIForm1::restoreChannelWindow()
{
    const QSize room = m_mdiArea->viewport()->size();
    QRect frame(m_channelWindow->pos(), frmChannel::OpeningSize.boundedTo(room));
    frame.moveTo(std::clamp(frame.left(), 0, room.width() - frame.width()),
                 std::clamp(frame.top(), 0, room.height() - frame.height()));
    m_channelWindow->setGeometry(frame);
}

// Exit runs the commit step, which takes the snapshot; whether there were
// unsaved changes is asked before, for the exit backup.
void MDIForm1::fileExit()
{
    m_exitWithUnsavedChanges = workingImage().IsModified();
    CommitStep();
    close();
}

void MDIForm1::choosePort()
{
    frmComPort form(app().PortNumber, language(), this);
    if (form.exec() == QDialog::Accepted)
        app().PortNumber = form.portNumber();
    showPortPanel();
}

void MDIForm1::rememberVerify()
{
    m_settings->SetKeyValue(SettingsStore::Root::LocalMachine, SettingsStore::keyPath(), VerifySetting.toString(),
                            m_verify->isChecked() ? u"1"_s : u"0"_s);
}

void MDIForm1::chooseLanguage()
{
    LanguageForm form(language(), this);
    if (form.exec() == QDialog::Accepted)
        app().LanguageIndex = static_cast<quint8>(form.chosenLanguage());
    RefreshMainWindow();
}

void MDIForm1::showAbout()
{
    frmAbout form(language(), this);
    form.exec();
}

void MDIForm1::Tree0_NodeClick(QTreeWidgetItem *node)
{
    if (auto *command = node ? qobject_cast<QAction *>(node->data(0, CommandRole).value<QObject *>()) : nullptr)
        command->trigger();
}

void MDIForm1::ReadCommand()
{
    transfer(ReadFromRadio);
}

void MDIForm1::WriteCommand()
{
    transfer(WriteToRadio);
}

void MDIForm1::transfer(quint8 direction)
{
    // What the question names, by LinkDirection.
    static constexpr Text Transfers[]{{u"Read data from radio.", u"从对讲机读取数据。", u"從對講機讀取數據。"},
                                      {u"Write data to radio.", u"向对讲机写入数据。", u"向對講機寫入數據。"}};
    static constexpr Text KeptAsBackup{u"The unsaved changes will be kept as a backup (File → Backups…).",
                                       u"未保存的修改将保留为备份（文件 → 备份…）。",
                                       u"未保存的修改將保留為備份（文件 → 備份…）。"};
    QString text = Transfers[direction].in(language()) + u'\n' + ContinueQuestion.in(language());
    // A read replaces the whole image, and its rows as they come in: what
    // was not saved is kept first, and the question says so.
    const bool keepsChanges = direction == ReadFromRadio && workingImage().IsModified();
    if (keepsChanges)
        text += u'\n' + KeptAsBackup.in(language());
    if (MessageBox::show(this, QMessageBox::Question, ModelName(), text, QMessageBox::Ok | QMessageBox::Cancel,
                         QMessageBox::Ok)
        != QMessageBox::Ok)
        return;
    if (keepsChanges)
        keepUnsavedChanges(BackupReason::BeforeRead);
    app().LinkDirection = direction;

    // The progress form owns the port for the length of one transfer and
    // may release itself when it unloads, hence the guarded pointer.
    QPointer<frmclone> form = new frmclone(this);
    form->setVerifyAfterWrite(m_verify->isChecked());
    connect(form, &frmclone::portNumberChanged, this, &MDIForm1::showPortPanel);
    connect(form, &frmclone::readCompleted, this, &MDIForm1::RefreshMainWindow);
    connect(form, &frmclone::readCompleted, this, [this] { keepBackup(BackupReason::Read, app().image); });
    form->exec();
    delete form.data();
    // A cancelled scan puts the chosen port back.
    showPortPanel();
}

template <typename Form>
bool MDIForm1::editModal()
{
    Form form(app().image, language(), this);
    return form.exec() == QDialog::Accepted;
}

void MDIForm1::openOptionalFeatures()
{
    if (!editModal<frmOption>())
        return;
    // The channel list follows a change of its row count once the settings
    // are stored, and is opened for it if it was closed.
    if (app().ChannelGridRowsShown != app().ChannelGridRows) {
        showChannelList();
        m_channels->RefreshChannelOP();
        m_channels->RefreshChannel();
        app().ChannelGridRowsShown = app().ChannelGridRows;
    }
}

void MDIForm1::openKeySetting()
{
    editModal<frmKey>();
}

void MDIForm1::openScramble()
{
    editModal<frmSMB>();
}

void MDIForm1::openRadio()
{
    editModal<frmRadio>();
}

// The memory map stays open beside this window; a second gesture brings it
// to the front. Its OK writes every byte it shows, over whatever changed
// since it opened: that is kept as a backup first. After its OK the channel
// list reloads from the image, or its older texts would undo a patch of the
// channel rows at the next save.
void MDIForm1::openMemoryMap()
{
    if (!m_memoryMap) {
        m_memoryMap = new frmMemoryMap(app().image, language(), this);
        m_memoryMap->setAttribute(Qt::WA_DeleteOnClose);
        m_memoryMapOpenedWith = app().image.bytes();
        connect(m_memoryMap, &frmMemoryMap::aboutToStore, this, [this] {
            const MemoryImage now = workingImage();
            if (now.bytes() != m_memoryMapOpenedWith)
                keepBackup(BackupReason::BeforeMemoryMap, now);
        });
        connect(m_memoryMap, &QDialog::accepted, this, [this] {
            if (m_channels)
                m_channels->RefreshChannel();
        });
    }
    m_memoryMap->show();
    m_memoryMap->raise();
    m_memoryMap->activateWindow();
}

void MDIForm1::closeEvent(QCloseEvent *event)
{
    // Closing by any means writes the settings back; only Exit commits.
    SaveSettings(app(), *m_settings);
    keepExitBackup();
    QMainWindow::closeEvent(event);
}

void MDIForm1::showEvent(QShowEvent *event)
{
    QMainWindow::showEvent(event);
    if (m_shownOnce || event->spontaneous())
        return;
    m_shownOnce = true;
    // The layout is done here and the window is not on the screen yet, so
    // it appears once, at its final size.
    fitToScreen();
    noteUnsavedChangesOfLastRun();
}

// The tree pane is as wide as its captions, in the language and font of the
// moment: a language switch changes both.
void MDIForm1::fitTreePane()
{
    auto *split = qobject_cast<QSplitter *>(centralWidget());
    if (!split)
        return;
    const QAbstractItemView *items = m_tree; // where sizeHintForColumn is public
    const int tree = items->sizeHintForColumn(0) + 2 * m_tree->frameWidth();
    const int both = split->sizes().value(0) + split->sizes().value(1);
    split->setSizes({tree, std::max(0, both - tree)});
}

// The window opens at its prescribed size, the tree pane as wide as its
// captions. It grows wider when the channel list's columns (fitted to the
// language's words or a larger desktop font) do not all fit, and never
// opens larger than the screen's available area, frame included.
void MDIForm1::fitToScreen()
{
    fitTreePane();
    if (!screen() || isMaximized() || isFullScreen())
        return;
    QMargins frame = windowHandle() ? windowHandle()->frameMargins() : QMargins();
    if (frame.isNull()) {
        // Not framed by the window manager yet: allow for a title bar.
        const int border = style()->pixelMetric(QStyle::PM_DefaultFrameWidth) + 2;
        frame = QMargins(border, style()->pixelMetric(QStyle::PM_TitleBarHeight) + border, border, border);
    }
    const QSize room = screen()->availableGeometry().size() - QSize(frame.left() + frame.right(), frame.top() + frame.bottom());
    QSize wanted = size();
    if (m_channels)
        wanted.rwidth() += m_channels->gridWidthLacking();
    wanted = wanted.boundedTo(room);
    if (wanted != size())
        resize(wanted);
}

} // namespace wr
