#include "shell/MDIForm1.h"

#include "channels/frmChannel.h"
#include "core/AppState.h"
#include "core/SettingsStore.h"
#include "link/frmclone.h"
#include "shell/AppIcon.h"
#include "shell/FileCommands.h"
#include "shell/LanguageForm.h"
#include "ui/MessageBox.h"
#include "shell/QtTranslations.h"
#include "shell/frmAbout.h"
#include "shell/frmComPort.h"

#include <QAction>
#include <QCloseEvent>
#include <QDate>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QShowEvent>
#include <QSplitter>
#include <QStatusBar>
#include <QTime>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace wr {

namespace {

// The radio software sizes its window in twips; 15 twips make one pixel at
// the usual 96 dots per inch.
constexpr int twips(int value)
{
    return (value + 7) / 15;
}

constexpr int StartUpWidth = 13410;
constexpr int StartUpHeight = 11440;
constexpr int TreePaneWidth = 158;

// Image address 0x0CD0 (row 205, byte 0) holds 0x20 in a fresh image; the
// radio software clears it whenever the whole image is handed on.
constexpr int CommitClearedAddress = 0x0CD0;

constexpr Text ContinueQuestion{u"Do you wish to continue?", u"是否继续？", u"是否繼續？"};

QString versionText()
{
    return u"Version 1.03"_s;
}

QLocale interfaceLocale()
{
    switch (app().LanguageIndex) {
    case SimplifiedChinese:
        return QLocale(QLocale::Chinese, QLocale::SimplifiedHanScript, QLocale::China);
    case TraditionalChinese:
        return QLocale(QLocale::Chinese, QLocale::TraditionalHanScript, QLocale::Taiwan);
    default:
        return QLocale(QLocale::English, QLocale::UnitedStates);
    }
}

enum Panel { PortPanel, DatePanel, ClockPanel, EmptyPanel, VersionPanel, PanelCount };

} // namespace

MDIForm1::MDIForm1(SettingsStore *settings, QWidget *parent)
    : QMainWindow(parent)
    , m_ownedSettings(settings ? nullptr : std::make_unique<SettingsStore>())
    , m_settings(settings ? settings : m_ownedSettings.get())
{
    setObjectName(u"MDIForm1"_s);
    setWindowIcon(AppIcon());
    setWindowTitle(ModelName());

    // The tree of editors sits in a plain panel on the left, beside the
    // document area that holds the channel list.
    auto *split = new QSplitter(Qt::Horizontal, this);
    split->setObjectName(u"PicClone"_s);
    split->setChildrenCollapsible(false);
    m_tree = new QTreeWidget(split);
    m_tree->setObjectName(u"Tree0"_s);
    m_tree->setHeaderHidden(true);
    // A narrow pane: the channel grid needs the width more than the tree,
    // whose root stays expanded anyway.
    m_tree->setRootIsDecorated(false);
    m_tree->setIndentation(14);
    m_mdiArea = new QMdiArea(split);
    m_mdiArea->setObjectName(u"MDIArea"_s);
    split->addWidget(m_tree);
    split->addWidget(m_mdiArea);
    split->setStretchFactor(0, 0);
    split->setStretchFactor(1, 1);
    split->setSizes({TreePaneWidth, twips(StartUpWidth) - TreePaneWidth});
    setCentralWidget(split);

    buildMenus();
    buildToolBar();
    buildStatusBar();

    m_time = new QTimer(this);
    m_time->setObjectName(u"Time"_s);
    m_time->setTimerType(Qt::PreciseTimer);
    m_time->setSingleShot(true);
    connect(m_time, &QTimer::timeout, this, &MDIForm1::Time_Timer);

    Form_Load();
}

MDIForm1::~MDIForm1() = default;

int MDIForm1::language() const
{
    return app().LanguageIndex;
}

void MDIForm1::Form_Load()
{
    // Settings, the open-forms flags, the tone table, the grid sizes, the
    // file name and the fresh image with its band limits.
    StartUp(app(), *m_settings);
    resize(width(), twips(StartUpHeight));
    resize(twips(StartUpWidth), height());
    buildTree();
    RefreshMainWindow();
    Time_Timer();
    showChannelList();
}

QMenu *MDIForm1::addMenu(const QString &name, Text caption, bool shown)
{
    QMenu *menu = menuBar()->addMenu(caption.in(English));
    menu->setObjectName(name);
    menu->menuAction()->setVisible(shown);
    m_captions.append({menu->menuAction(), caption});
    return menu;
}

QAction *MDIForm1::addItem(QMenu *menu, const QString &name, Text caption, const QKeySequence &shortcut, bool shown)
{
    QAction *action = menu->addAction(caption.in(English));
    action->setObjectName(name);
    action->setShortcut(shortcut);
    // A hidden item is never shown, and Qt also switches its shortcut off,
    // so its key does nothing.
    action->setVisible(shown);
    m_captions.append({action, caption});
    return action;
}

void MDIForm1::addSeparator(QMenu *menu, const QString &name, bool shown)
{
    QAction *separator = menu->addSeparator();
    separator->setObjectName(name);
    separator->setVisible(shown);
}

void MDIForm1::buildMenus()
{
    menuBar()->setObjectName(u"MenuBar"_s);
    const auto ctrl = [](Qt::Key key) { return QKeySequence(Qt::CTRL | key); };

    QMenu *file = addMenu(u"mnuFile"_s, {u"File(&F)", u"文件(&F)", u"文件(&F)"});
    connect(addItem(file, u"mnuFile_New"_s, {u"&New", u"新建(&N)", u"新建(&N)"}, ctrl(Qt::Key_N)),
            &QAction::triggered, this, &MDIForm1::mnuFile_New_Click);
    connect(addItem(file, u"mnuFile_Open"_s, {u"&Open", u"打开(&O)", u"打開(&O)"}, ctrl(Qt::Key_O)),
            &QAction::triggered, this, &MDIForm1::mnuFile_Open_Click);
    connect(addItem(file, u"mnuFile_Save"_s, {u"&Save", u"保存(&S)", u"保存(&S)"}, ctrl(Qt::Key_S)),
            &QAction::triggered, this, &MDIForm1::mnuFile_Save_Click);
    connect(addItem(file, u"mnuFile_SaveAs"_s, {u"Save &As", u"另存为(&A)", u"另存為(&A)"}, ctrl(Qt::Key_A)),
            &QAction::triggered, this, &MDIForm1::mnuFile_SaveAs_Click);
    addSeparator(file, u"mnuFile_Bar1"_s, false);
    // Printing does not exist; the two items stay hidden and do nothing.
    addItem(file, u"mnuFile_Print"_s, {u"&Print", u"打印(&P)", u"打印(&P)"}, ctrl(Qt::Key_P), false);
    addItem(file, u"mnuFile_PrintView"_s, {u"P&rint View", u"打印预览(&R)", u"打印預覽(&R)"}, ctrl(Qt::Key_V),
            false);
    addSeparator(file, u"mnuFile_Bar2"_s, true);
    connect(addItem(file, u"mnuFile_Exit"_s, {u"&Exit", u"退出(&E)", u"退出(&E)"}, ctrl(Qt::Key_X)),
            &QAction::triggered, this, &MDIForm1::mnuFile_Exit_Click);

    QMenu *machine = addMenu(u"mnuMachine"_s, {u"Machine(&M)", u"机型(&M)", u"機型(&M)"}, false);
    addItem(machine, u"mnuMachine_Info"_s, {u"Machine Info(&M)", u"机型信息(&M)", u"機型信息(&M)"});

    QMenu *edit = addMenu(u"mnuEdit"_s, {u"Edit(&E)", u"编辑(&E)", u"編輯(&E)"});
    connect(addItem(edit, u"mnuChannel_Info"_s, {u"Channel Info(&C)", u"信道信息(&C)", u"信道信息(&C)"}),
            &QAction::triggered, this, &MDIForm1::mnuChannel_Info_Click);
    addSeparator(edit, u"mnuFile_Bar3"_s, true);
    connect(addItem(edit, u"mnuOptiom_Features"_s,
                    {u"Optiom Features(&O)", u"可选功能(&O)", u"可選功能(&O)"}),
            &QAction::triggered, this, &MDIForm1::mnuOptiom_Features_Click);
    addSeparator(edit, u"mnuFile_Bar14"_s, false);
    connect(addItem(edit, u"mnuVFO"_s, {u"Key Setting", u"键定义", u"鍵定義"}, {}, false),
            &QAction::triggered, this, &MDIForm1::mnuVFO_Click);
    addSeparator(edit, u"mnuFile_Bar4"_s, false);
    addItem(edit, u"mnuDTMF"_s, Text(u"DTMF(&D)"), {}, false);
    addSeparator(edit, u"mnuFile_Bar8"_s, false);
    addItem(edit, u"mnuMSK"_s, Text(u"MSK(&M)"), {}, false);
    addSeparator(edit, u"mnuFile_Bar9"_s, false);
    connect(addItem(edit, u"mnuScramble"_s, {u"Scramble(&S)", u"扰频(&S)", u"擾頻(&S)"}, {}, false),
            &QAction::triggered, this, &MDIForm1::mnuScramble_Click);
    addSeparator(edit, u"mnuFile_Bar7"_s, false);
    connect(addItem(edit, u"mnuRadio"_s, {u"Radio(&R)", u"收音机(&R)", u"收音機(&R)"}, {}, false),
            &QAction::triggered, this, &MDIForm1::mnuRadio_Click);

    QMenu *program = addMenu(u"mnuProgram"_s, {u"Program(&P)", u"编程(&P)", u"編程(&P)"});
    connect(addItem(program, u"mnuRead"_s,
                    {u"Read Data From InterPhone(&R)", u"从对讲机读取数据(&R)", u"從對講機讀取數據(&R)"},
                    ctrl(Qt::Key_R)),
            &QAction::triggered, this, &MDIForm1::mnuRead_Click);
    connect(addItem(program, u"mnuWrite"_s,
                    {u"Write Data To InterPhone(&W)", u"向对讲机写入数据(&W)", u"向對講機寫入數據(&W)"},
                    ctrl(Qt::Key_W)),
            &QAction::triggered, this, &MDIForm1::mnuWrite_Click);

    QMenu *set = addMenu(u"mnuSet"_s, {u"Set(&S)", u"设置(&S)", u"設置(&S)"});
    connect(addItem(set, u"mnuPort"_s, {u"Communication Port(&C)", u"通信端口(&C)", u"通信端口(&C)"}),
            &QAction::triggered, this, &MDIForm1::mnuPort_Click);
    addSeparator(set, u"mnuFile_Bar5"_s, true);
    connect(addItem(set, u"mnuLanguage"_s, {u"Language File Setup(&L)", u"语言设置(&L)", u"語言設置(&L)"}),
            &QAction::triggered, this, &MDIForm1::mnuLanguage_Click);
    addItem(set, u"mnuChange_Password"_s, {u"Change Password(&Y)", u"更改密码(&Y)", u"更改密碼(&Y)"}, {}, false);
    addSeparator(set, u"mnuFile_Bar6"_s, false);
    addItem(set, u"mnuGet_Password"_s, {u"Get Password(&Z)", u"获取读写密码(&Z)", u"獲取讀寫密碼(&Z)"}, {},
            false);

    QMenu *help = addMenu(u"mnuHelp"_s, {u"About(&A)", u"关于(&A)", u"關於(&A)"});
    connect(addItem(help, u"mnuHelp_About"_s, {u"About(&A)", u"关于(&A)", u"關於(&A)"}), &QAction::triggered,
            this, &MDIForm1::mnuHelp_About_Click);
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

    struct Button
    {
        const char16_t *key;
        CommandIcon icon;
    };
    // Key and tool tip are the same English word in every language.
    const QList<QList<Button>> groups = {
        {{u"New", CommandIcon::New},
         {u"Open", CommandIcon::Open},
         {u"Save", CommandIcon::Save},
         {u"Print", CommandIcon::Print}},
        {{u"Read", CommandIcon::Read}, {u"Write", CommandIcon::Write}},
        {{u"About", CommandIcon::About}},
    };
    for (const QList<Button> &group : groups) {
        if (group.constData() != groups.first().constData())
            m_toolBar->addSeparator();
        for (const Button &button : group) {
            const QString key = QString::fromUtf16(button.key);
            QAction *action = m_toolBar->addAction(CommandIconFor(button.icon), key);
            action->setObjectName(key);
            action->setToolTip(key);
            m_toolBar->widgetForAction(action)->setObjectName(key);
            connect(action, &QAction::triggered, this, [this, key] { tlbActions_ButtonClick(key); });
        }
    }
}

void MDIForm1::buildStatusBar()
{
    QStatusBar *bar = statusBar();
    bar->setObjectName(u"MSBar"_s);
    bar->setSizeGripEnabled(true);
    const int widths[PanelCount] = {70, 100, 80, 0, 110};
    for (int i = 0; i < PanelCount; ++i) {
        auto *panel = new QLabel(bar);
        panel->setObjectName(u"MSBar_Panel"_s + QString::number(i + 1));
        panel->setFrameStyle(QFrame::Panel | QFrame::Sunken);
        panel->setContentsMargins(4, 0, 4, 0);
        if (widths[i] > 0)
            panel->setMinimumWidth(widths[i]);
        // Permanent widgets stay visible while a menu shows status tips.
        bar->addPermanentWidget(panel, i == EmptyPanel ? 1 : 0);
        m_panels.append(panel);
    }
}

void MDIForm1::buildTree()
{
    m_tree->clear();
    auto *root = new QTreeWidgetItem(m_tree);
    root->setData(0, Qt::UserRole, u"Root"_s);
    root->setIcon(0, AppIcon());
    auto *item1 = new QTreeWidgetItem(root);
    item1->setData(0, Qt::UserRole, u"Item1"_s);
    item1->setIcon(0, CommandIconFor(CommandIcon::ChannelList));
    auto *item2 = new QTreeWidgetItem(root);
    item2->setData(0, Qt::UserRole, u"Item2"_s);
    item2->setIcon(0, CommandIconFor(CommandIcon::OptionalFeatures));
    m_tree->expandItem(root);
    m_tree->setCurrentItem(item1);
    connect(m_tree, &QTreeWidget::itemClicked, this, &MDIForm1::Tree0_NodeClick, Qt::UniqueConnection);
}

void MDIForm1::captionStep()
{
    const int language = app().LanguageIndex;
    for (const auto &[action, caption] : std::as_const(m_captions))
        action->setText(caption.in(language));

    constexpr Text item1{u"CH Information", u"信道信息", u"信道信息"};
    constexpr Text item2{u"Optiom Features", u"可选功能", u"可選功能"};
    for (QTreeWidgetItemIterator it(m_tree); *it; ++it) {
        const QString key = (*it)->data(0, Qt::UserRole).toString();
        if (key == u"Root")
            (*it)->setText(0, ModelName());
        else if (key == u"Item1")
            (*it)->setText(0, item1.in(language));
        else if (key == u"Item2")
            (*it)->setText(0, item2.in(language));
    }
}

void MDIForm1::RefreshMainWindow()
{
    InstallQtTranslations(app().LanguageIndex);
    captionStep();
    if (m_channels)
        m_channels->RefreshChannel();
    showPortPanel();
    m_panels[VersionPanel]->setText(versionText());
    m_panels[DatePanel]->setText(interfaceLocale().toString(QDate::currentDate(), QLocale::ShortFormat));
    setWindowTitle(ModelName());
}

void MDIForm1::showPortPanel()
{
    m_panels[PortPanel]->setText(u"COM"_s + QString::number(app().PortNumber));
}

void MDIForm1::Time_Timer()
{
    // One tick a second is all the clock needs. Each tick re-arms the timer
    // for just after the next full second, so the shown seconds never lag or
    // skip however long the previous tick was delayed.
    const QTime now = QTime::currentTime();
    m_panels[ClockPanel]->setText(now.toString(u"hh:mm:ss"_s));
    m_panels[DatePanel]->setText(interfaceLocale().toString(QDate::currentDate(), QLocale::ShortFormat));
    m_time->start(1000 - now.msec() + 2);
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
        // Bit 0 of the open-forms flags follows the channel list's life.
        app().FormOpenFlags |= AppState::ChannelListOpen;
        connect(form, &QObject::destroyed, this, [] { app().FormOpenFlags &= ~AppState::ChannelListOpen; });
        m_channelWindow->showMaximized();
    }
    m_channelWindow->show();
    m_mdiArea->setActiveSubWindow(m_channelWindow);
    m_channelWindow->raise();
}

void MDIForm1::mnuFile_New_Click()
{
    CommitChannelEdit();
    if (FileNew(this))
        RefreshMainWindow();
}

void MDIForm1::mnuFile_Open_Click()
{
    CommitChannelEdit();
    // Edits typed into the grid count as modifications: they are moved into
    // the image before the modified test, so the question can protect them.
    if (m_channels)
        m_channels->SaveData();
    if (FileOpen(this))
        RefreshMainWindow();
}

void MDIForm1::mnuFile_Save_Click()
{
    CommitChannelEdit();
    CommitStep();
    FileSave(this);
}

void MDIForm1::mnuFile_SaveAs_Click()
{
    CommitChannelEdit();
    CommitStep();
    FileSaveAs(this);
}

void MDIForm1::mnuFile_Exit_Click()
{
    CommitChannelEdit();
    CommitStep();
    close();
}

void MDIForm1::mnuChannel_Info_Click()
{
    CommitChannelEdit();
    showChannelList();
}

void MDIForm1::mnuOptiom_Features_Click()
{
    CommitChannelEdit();
    CommitStep();
    openOptionalFeatures();
}

void MDIForm1::mnuVFO_Click()
{
    CommitChannelEdit();
    openKeySetting();
}

void MDIForm1::mnuScramble_Click()
{
    CommitChannelEdit();
    openScramble();
}

void MDIForm1::mnuRadio_Click()
{
    CommitChannelEdit();
    openRadio();
}

void MDIForm1::mnuRead_Click()
{
    CommitChannelEdit();
    ReadCommand();
}

void MDIForm1::mnuWrite_Click()
{
    CommitChannelEdit();
    CommitStep();
    WriteCommand();
}

void MDIForm1::mnuPort_Click()
{
    CommitChannelEdit();
    frmComPort form(app().PortNumber, app().LanguageIndex, this);
    if (form.exec() == QDialog::Accepted)
        app().PortNumber = form.portNumber();
    showPortPanel();
}

void MDIForm1::mnuLanguage_Click()
{
    CommitChannelEdit();
    CommitStep();
    LanguageForm form(app().LanguageIndex, this);
    if (form.exec() == QDialog::Accepted)
        app().LanguageIndex = static_cast<quint8>(form.chosenLanguage());
    RefreshMainWindow();
}

void MDIForm1::mnuHelp_About_Click()
{
    CommitChannelEdit();
    frmAbout form(app().LanguageIndex, this);
    form.exec();
}

void MDIForm1::tlbActions_ButtonClick(const QString &key)
{
    if (key == u"New") {
        mnuFile_New_Click();
    } else if (key == u"Open") {
        mnuFile_Open_Click();
    } else if (key == u"Save") {
        mnuFile_Save_Click();
    } else if (key == u"Print") {
        // There is no printing; the button only hands the grid to the image.
        CommitChannelEdit();
        CommitStep();
    } else if (key == u"Read") {
        mnuRead_Click();
    } else if (key == u"Write") {
        mnuWrite_Click();
    } else if (key == u"About") {
        mnuHelp_About_Click();
    }
}

void MDIForm1::Tree0_NodeClick(QTreeWidgetItem *node)
{
    if (!node)
        return;
    const QString key = node->data(0, Qt::UserRole).toString();
    if (key == u"Item1")
        mnuChannel_Info_Click();
    else if (key == u"Item2")
        mnuOptiom_Features_Click();
}

void MDIForm1::ReadCommand()
{
    const QString text = Text(u"Read data from radio.", u"从对讲机读取数据。", u"從對講機讀取數據。").in(language())
        + u'\n' + ContinueQuestion.in(language());
    if (MessageBox::show(this, QMessageBox::Question, ModelName(), text, QMessageBox::Ok | QMessageBox::Cancel,
                         QMessageBox::Ok)
        != QMessageBox::Ok)
        return;
    app().LinkDirection = 0;
    runTransfer();
}

void MDIForm1::WriteCommand()
{
    const QString text = Text(u"Write data to radio.", u"向对讲机写入数据。", u"向對講機寫入數據。").in(language())
        + u'\n' + ContinueQuestion.in(language());
    if (MessageBox::show(this, QMessageBox::Question, ModelName(), text, QMessageBox::Ok | QMessageBox::Cancel,
                         QMessageBox::Ok)
        != QMessageBox::Ok)
        return;
    app().LinkDirection = 1;
    runTransfer();
}

void MDIForm1::runTransfer()
{
    // The progress form owns the port for the length of one transfer and
    // may release itself when it unloads, hence the guarded pointer.
    QPointer<frmclone> form = new frmclone(this);
    connect(form, &frmclone::portNumberChanged, this, &MDIForm1::showPortPanel);
    connect(form, &frmclone::readCompleted, this, &MDIForm1::RefreshMainWindow);
    form->exec();
    delete form.data();
    // A cancelled scan puts the chosen port back.
    showPortPanel();
}

void MDIForm1::openOptionalFeatures()
{
    // frmOption (optional features, modal) opens here.
}

void MDIForm1::openKeySetting()
{
    // frmKey (key assignment, modal) opens here.
}

void MDIForm1::openScramble()
{
    // frmSMB (scramble table, modal) opens here.
}

void MDIForm1::openRadio()
{
    // frmRadio (FM broadcast channels, modal) opens here.
}

void MDIForm1::openMemoryMap()
{
    // frmMemoryMap (raw image view, beside this window) opens here; the
    // channel list has already saved its grid.
}

void MDIForm1::showEvent(QShowEvent *event)
{
    QMainWindow::showEvent(event);
    if (m_shownOnce || event->spontaneous())
        return;
    m_shownOnce = true;
    // The tree pane is as wide as its captions; the channel grid needs the
    // width more.
    if (auto *split = qobject_cast<QSplitter *>(centralWidget())) {
        const QAbstractItemView *items = m_tree; // where sizeHintForColumn is public
        const int tree = items->sizeHintForColumn(0) + 2 * m_tree->frameWidth();
        split->setSizes({tree, split->width() - tree - split->handleWidth()});
    }
    // The prescribed start-up width is the least the window opens with. If
    // the channel list's columns (fitted to the language's captions and
    // words, or to a larger desktop font) do not all fit in it, the window
    // opens just wide enough to show them, as far as the screen allows. The
    // layout is already done here and the window is not on the screen yet,
    // so it appears once, at its final size.
    if (!m_channels || isMaximized() || isFullScreen())
        return;
    const int lacking = m_channels->gridWidthLacking();
    if (lacking <= 0)
        return;
    const int available = screen() ? screen()->availableGeometry().width() : width();
    const int wanted = std::min(width() + lacking, available);
    if (wanted > width())
        resize(wanted, height());
}

void MDIForm1::closeEvent(QCloseEvent *event)
{
    // Closing by any means writes the settings back; only Exit commits.
    SaveSettings(app(), *m_settings);
    QMainWindow::closeEvent(event);
}

} // namespace wr
