// The main window: start-up from the settings store, menus and hidden
// items, the commit step, settings at close, the language switch, the port
// dialog and the about box.
#include "ShellHarness.h"

#include "file/Backups.h"

#include "shell/LanguageForm.h"
#include "shell/QtTranslations.h"
#include "shell/frmAbout.h"
#include "shell/frmComPort.h"

#include <QAccessible>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QGlyphRun>
#include <QHeaderView>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QRawFont>
#include <QScreen>
#include <QStatusBar>
#include <QTextLayout>
#include <QToolButton>
#include <QTreeWidget>

#include <cmath>

using namespace Qt::StringLiterals;
using wr::test::ShellHarness;

class TestMainWindow : public wr::test::ShellSuite
{
    Q_OBJECT

    // The main window shown in a language, a channel typed into the list
    // and one of its cells made current, the grid focused; false when the
    // window never became active.
    QTableView *gridAt(int language, int channel, int column, const QString &rx)
    {
        if (!h->show(language))
            return nullptr;
        h->editRx(channel, rx);
        QTableView *grid = h->window->channelList()->grid();
        grid->setCurrentIndex(grid->model()->index(channel, column));
        grid->setFocus();
        return grid;
    }

    QTreeWidgetItem *treeNode(const QString &key) const
    {
        for (QTreeWidgetItemIterator it(h->window->findChild<QTreeWidget *>(u"Tree0"_s)); *it; ++it) {
            if ((*it)->data(0, Qt::UserRole).toString() == key)
                return *it;
        }
        return nullptr;
    }

private Q_SLOTS:

    // Nothing stored: Simplified Chinese on COM1, model 1, a fresh image
    // (stored values are read back in settingsWrittenAtClose). Menu items and
    // separators in order; "-" marks those never shown.
    void startsWithDefaultsAndMenus()
    {
        wr::MDIForm1 &window = h->open();
        QCOMPARE(QList<int>({wr::app().LanguageIndex, wr::app().ModelIndex}), QList<int>({1, 1}));
        QCOMPARE(h->panel(1), u"COM1"_s);
        QCOMPARE(h->panel(5), u"Version 1.03"_s);
        QCOMPARE(window.windowTitle(), u"WR-PD6T"_s);
        QCOMPARE(window.channelList()->grid()->model()->rowCount(), 129);
        QVERIFY(!wr::app().image.IsModified());
        QCOMPARE(wr::app().CurrentFileName, u"Untitled"_s);
        QCOMPARE(h->action(u"mnuRead"_s)->text(), u"从对讲机读取数据(&R)"_s);
        const QList<std::pair<QString, QString>> menus{
            {u"mnuFile"_s, u"mnuFile_New mnuFile_Open mnuFile_Save mnuFile_SaveAs mnuFile_Backups -mnuFile_Bar1 -mnuFile_Print "
                           "-mnuFile_PrintView mnuFile_Bar2 mnuFile_Exit"_s},
            {u"mnuEdit"_s, u"mnuChannel_Info mnuFile_Bar3 mnuOptiom_Features -mnuFile_Bar14 -mnuVFO -mnuFile_Bar4 "
                           "-mnuDTMF -mnuFile_Bar8 -mnuMSK -mnuFile_Bar9 -mnuScramble -mnuFile_Bar7 -mnuRadio"_s},
            {u"mnuProgram"_s, u"mnuRead mnuWrite"_s},
            {u"mnuSet"_s, u"mnuPort mnuVerify mnuFile_Bar5 mnuLanguage -mnuChange_Password -mnuFile_Bar6 -mnuGet_Password"_s},
            {u"mnuHelp"_s, u"mnuHelp_About"_s},
            {QString(), u"mnuFile -mnuMachine mnuEdit mnuProgram mnuSet mnuHelp"_s}};
        for (const auto &[name, items] : menus) {
            const QWidget *menu = name.isEmpty() ? static_cast<QWidget *>(h->window->menuBar()) : h->window->findChild<QMenu *>(name);
            QStringList shown;
            for (QAction *a : menu->actions())
                shown << (a->isVisible() ? QString() : u"-"_s) + (a->menu() ? a->menu()->objectName() : a->objectName());
            QCOMPARE(shown.join(u' '), items);
        }
    }

    // A menu shortcut runs its command from the window and from inside any
    // of the channel list's editors, the open edit committed first. Every
    // confirmation is cancelled: nothing runs after it. The hidden Print and
    // Print View take no keys.
    void shortcuts_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("column");  // of channel 3's editor the key is pressed in; 0: the window
        QTest::addColumn<QString>("cell"); // what the editor commits
        QTest::addColumn<QString>("ran");  // "saved", "closed", or the message the key leads to ("" for none)
        const QString read = u"Question|WR-PD6T|Read data from radio.\nDo you wish to continue?"_s;
        QTest::newRow("Ctrl+N asks before clearing") << int(Qt::Key_N) << 0 << QString()
                                                     << u"Warning|Alert!|All data will be cleared."_s;
        QTest::newRow("Ctrl+R asks before reading") << int(Qt::Key_R) << 0 << QString() << read;
        QTest::newRow("Ctrl+W asks before writing") << int(Qt::Key_W) << 0 << QString()
                                                    << u"Question|WR-PD6T|Write data to radio.\nDo you wish to continue?"_s;
        QTest::newRow("Ctrl+P of the hidden Print does nothing") << int(Qt::Key_P) << 0 << QString() << QString();
        QTest::newRow("Ctrl+V of the hidden Print View does nothing") << int(Qt::Key_V) << 0 << QString() << QString();
        QTest::newRow("Ctrl+A in the frequency editor") << int(Qt::Key_A) << 1 << u"146.00000"_s << u"saved"_s;
        QTest::newRow("Ctrl+X in the frequency editor") << int(Qt::Key_X) << 1 << u"146.00000"_s << u"closed"_s;
        QTest::newRow("Ctrl+A in the tone editor") << int(Qt::Key_A) << 3 << u"D023N"_s << u"saved"_s;
        QTest::newRow("Ctrl+R in a list editor")
            << int(Qt::Key_R) << 5 << u"Low"_s
            << read + u"\nThe unsaved changes will be kept as a backup (File → Backups…)."_s;
    }

    void shortcuts()
    {
        QFETCH(int, key);
        QFETCH(int, column);
        QFETCH(QString, ran);
        QTableView *grid = gridAt(0, 3, std::max(column, 1), u"145.5"_s);
        QVERIFY(grid);
        QWidget *target = h->window.get();
        if (column) {
            QTest::keyClick(grid, Qt::Key_Return);
            target = QApplication::focusWidget();
            if (auto *list = qobject_cast<QComboBox *>(target); list && !list->isEditable())
                list->setCurrentIndex(1);
            else
                QTest::keyClicks(target, column == 1 ? u"146"_s : u"D023N"_s);
        } else {
            h->window->CommitStep();
        }
        const QByteArray before = wr::app().image.bytes();
        wr::app().LinkDirection = 5; // neither: shows whether Read or Write set it
        const QString path = filePath(u"saved.tw"_s);
        wr::FileDialog::setNextFileName(path);
        wr::MessageBox::setNextAnswer(QMessageBox::Cancel);
        QTest::keyClick(target, Qt::Key(key), Qt::ControlModifier);
        QCOMPARE(QFile::exists(path), ran == u"saved");
        QCOMPARE(h->window->isVisible(), ran != u"closed");
        const bool asked = !ran.isEmpty() && ran != u"saved" && ran != u"closed";
        QCOMPARE(ShellHarness::shownBoxes(), asked ? QStringList{ran} : QStringList());
        QCOMPARE(wr::app().LinkDirection, 5);
        if (!column) {
            QCOMPARE(wr::app().image.bytes(), before);
            return;
        }
        QTEST(h->window->channelList()->cellText(3, column), "cell");
        QVERIFY(!target->isVisible());
    }

    // Ctrl+Tab and Ctrl+Shift+Tab leave the channel grid, the open editor
    // stored: forwards for the tree, backwards for the filter line above the
    // grid; the document area would keep them for switching between its
    // windows.
    void ctrlTabLeavesTheGrid_data()
    {
        QTest::addColumn<bool>("backwards");
        QTest::addColumn<QString>("typed"); // into an editor of channel 3 first
        QTest::addColumn<QString>("lands");
        QTest::newRow("Ctrl+Tab from the grid") << false << QString() << u"Tree0"_s;
        QTest::newRow("Ctrl+Shift+Tab from an editor") << true << u"147"_s << u"txtFilter"_s;
    }

    void ctrlTabLeavesTheGrid()
    {
        QFETCH(bool, backwards);
        QFETCH(QString, typed);
        QTableView *grid = gridAt(0, 3, 1, QString());
        QVERIFY(grid);
        if (!typed.isEmpty()) {
            QTest::keyClick(grid, Qt::Key_Return);
            QTest::keyClicks(QApplication::focusWidget(), typed);
        }
        const Qt::Key key = backwards ? Qt::Key_Backtab : Qt::Key_Tab;
        QTest::keyClick(QApplication::focusWidget(), key, Qt::ControlModifier | (backwards ? Qt::ShiftModifier : Qt::NoModifier));
        QTEST(QApplication::focusWidget()->objectName(), "lands");
        QCOMPARE(h->gridRx(3), typed.isEmpty() ? QString() : u"147.00000"_s);
    }

    // A typed value stored as another is explained in the status bar, in
    // place of the panels, for 10 s, on a label a screen reader hears; the
    // panels come back after it. A value kept as typed says nothing.
    void correctionInTheStatusBar_data()
    {
        QTest::addColumn<int>("language");
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("note"); // empty: none
        QTest::newRow("English, below the band") << 0 << 1 << u"7"_s << u"Channel 7 Rx: 7 → 174.00000, below the band"_s;
        QTest::newRow("Simplified, above the band") << 1 << 2 << u"1234"_s
                                                    << u"信道 7 发射：1234 → 490.00000，高于频段"_s;
        QTest::newRow("Traditional, a tone") << 2 << 3 << u"50"_s << u"信道 7 解碼：50 → 60.0，低於 60.0 Hz"_s;
        QTest::newRow("kept as typed") << 0 << 1 << u"146.52"_s << QString();
    }

    void correctionInTheStatusBar()
    {
        QFETCH(int, language);
        QFETCH(int, column);
        QFETCH(QString, typed);
        QFETCH(QString, note);
        QTableView *grid = gridAt(language, 7, column, u"150"_s);
        QVERIFY(grid);
        QTest::keyClick(grid, Qt::Key_Return);
        QTest::keyClicks(QApplication::focusWidget(), typed);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);

        auto *shown = h->window->findChild<QLabel *>(u"MSBar_Note"_s);
        auto *time = h->window->findChild<QTimer *>(u"tmrNote"_s);
        const auto panelsShown = [this] {
            for (int panel = 1; panel <= 5; ++panel) {
                if (!h->window->findChild<QLabel *>(u"MSBar_Panel%1"_s.arg(panel))->isVisible())
                    return false;
            }
            return true;
        };
        if (note.isEmpty()) {
            QVERIFY(!shown->isVisible() && panelsShown());
            return;
        }
        QVERIFY(shown->isVisible() && !panelsShown());
        QCOMPARE(shown->text(), note);
        QCOMPARE(QAccessible::queryAccessibleInterface(shown)->text(QAccessible::Name), note);
        QCOMPARE(time->interval(), 10'000);
        QVERIFY(time->isActive());
        time->start(0); // the ten seconds pass
        QTRY_VERIFY(!shown->isVisible() && panelsShown());
        QCOMPARE(h->panel(1), u"COM1"_s);
    }

    // The channel list's Ctrl keys work beside the menu's: the hidden Print
    // View's Ctrl+V is switched off with its item, so it pastes rows, and
    // Ctrl+A stays Save As.
    void gridKeysBesideMenuKeys()
    {
        QTableView *grid = gridAt(0, 3, 1, u"145.5"_s);
        QVERIFY(grid);
        QTest::keyClick(grid, Qt::Key_C, Qt::ControlModifier);
        grid->setCurrentIndex(grid->model()->index(9, 1));
        QTest::keyClick(grid, Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(h->gridRx(9), u"145.50000"_s);
        QTest::keyClick(grid, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(h->gridRx(9), QString());
        const QString path = filePath(u"saved.tw"_s);
        wr::FileDialog::setNextFileName(path);
        QTest::keyClick(grid, Qt::Key_A, Qt::ControlModifier);
        QVERIFY(QFile::exists(path));
        QVERIFY(wr::MessageBox::history().isEmpty());
        QGuiApplication::clipboard()->clear();
    }

    void commitStepEntries_data()
    {
        QTest::addColumn<QString>("how");
        QTest::addColumn<bool>("commits");
        QTest::newRow("Print button only commits") << u"tool:Print"_s << true;
        QTest::newRow("tree Optiom Features commits") << u"tree:Item2"_s << true;
        QTest::newRow("tree CH Information does not commit") << u"tree:Item1"_s << false;
    }

    void commitStepEntries()
    {
        QFETCH(QString, how);
        QFETCH(bool, commits);
        h->open();
        h->editRx(7, u"146.5"_s);
        if (how == u"tree:Item2")
            wr::test::whenModal([](QDialog *form) { form->reject(); }); // the optional features
        if (how.startsWith(u"tool:"_s))
            QTest::mouseClick(h->window->findChild<QToolButton *>(how.mid(5)), Qt::LeftButton);
        else
            Q_EMIT h->window->findChild<QTreeWidget *>(u"Tree0"_s)->itemClicked(treeNode(how.mid(5)), 0);
        QVERIFY(wr::MessageBox::history().isEmpty());
        // The commit step moves the grid into the image, clears 0x0CD0 and
        // takes the snapshot; a new channel's default bytes reach the image
        // at once, so without the snapshot the image stays modified.
        QCOMPARE(ShellHarness::imageRx(7).isEmpty(), !commits);
        QCOMPARE(wr::app().image.ReadByte(0x0CD0), commits ? 0x00 : 0x20);
        QCOMPARE(wr::app().image.IsModified(), !commits);
    }

    // At the prescribed 894 x 763 pixels the channel list's nine columns are
    // whole in every language.
    void wholeGridAtStartUp()
    {
        for (int language = 0; language < 3; ++language) {
            wr::MDIForm1 &window = h->open(language);
            window.show();
            QVERIFY(QTest::qWaitForWindowExposed(&window));
            QCOMPARE(window.size(), QSize(894, 763));
            QCOMPARE(window.channelList()->gridWidthLacking(), 0);
        }
    }

    // Restored from maximised, the channel list takes the size it opens
    // with, not the few pixels it was given before it was first maximised;
    // where the document area is smaller, as much of it as there is, so that
    // the list's scroll bar and right edge stay in sight.
    void channelListRestoresToOpeningSize_data()
    {
        QTest::addColumn<QSize>("window");
        QTest::addColumn<bool>("fits"); // the opening size fits the document area
        QTest::newRow("prescribed size: the area is narrower") << QSize(894, 763) << false;
        QTest::newRow("a larger window") << QSize(1400, 1000) << true;
    }

    void channelListRestoresToOpeningSize()
    {
        QFETCH(QSize, window);
        QFETCH(bool, fits);
        h->open().show();
        QVERIFY(QTest::qWaitForWindowExposed(h->window.get()));
        h->window->resize(window);
        auto *subWindow = qobject_cast<QMdiSubWindow *>(h->window->channelList()->parentWidget());
        QVERIFY(subWindow->isMaximized());
        subWindow->showNormal();
        const QSize opening(994, 653); // 14910 x 9800 twips
        const QRect area = subWindow->mdiArea()->viewport()->rect();
        QCOMPARE(subWindow->size(), fits ? opening : opening.boundedTo(area.size()));
        QVERIFY(area.contains(subWindow->geometry()));
    }

    // The window keeps its prescribed size where the screen has room for it
    // and is never larger than the screen's available area, so its status
    // bar shows. CTest runs this on a large screen, a laptop's and at 150 %.
    void opensWithinTheScreen()
    {
        wr::MDIForm1 &window = h->open(0);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        const QSize available = window.screen()->availableGeometry().size();
        const QSize frame = window.frameGeometry().size() - window.size();
        const QSize prescribed(894, 763); // 13410 x 11440 twips
        QVERIFY2(window.frameGeometry().height() <= available.height(), qPrintable(u"%1 > %2"_s.arg(window.frameGeometry().height()).arg(available.height())));
        QVERIFY(window.frameGeometry().width() <= available.width());
        if ((prescribed + frame).height() <= available.height())
            QCOMPARE(window.size(), prescribed);
        QVERIFY(window.statusBar()->isVisible());
        QVERIFY(window.rect().contains(window.statusBar()->geometry()));
    }

    // Chinese texts are drawn with the Simplified or Traditional Chinese face
    // of the CJK font for the interface language, not with whichever face
    // the system's locale prefers; it follows a switch of the language.
    void chineseFontFollowsTheLanguage()
    {
        const auto faceOf = [](const QFont &font, const QString &text) {
            QTextLayout layout(text, font);
            layout.beginLayout();
            layout.createLine();
            layout.endLayout();
            const QList<QGlyphRun> runs = layout.glyphRuns();
            return runs.isEmpty() ? QString() : runs.first().rawFont().familyName();
        };
        wr::MDIForm1 &window = h->open(1);
        window.show();
        const QStringList faces{u"Noto Sans CJK SC"_s, u"Noto Sans CJK TC"_s};
        for (const int language : {1, 2, 1}) {
            wr::app().LanguageIndex = quint8(language);
            window.RefreshMainWindow();
            auto *tree = window.findChild<QTreeWidget *>(u"Tree0"_s);
            QCOMPARE(faceOf(tree->font(), treeNode(u"Item1"_s)->text(0)), faces.at(language - 1));
            QTableView *grid = window.channelList()->grid();
            QCOMPARE(faceOf(grid->horizontalHeader()->font(), grid->model()->headerData(1, Qt::Horizontal).toString()),
                     faces.at(language - 1));
        }
    }

    // Enter and Space on a node of the tree run it as a click does, and the
    // tree shows whether it has the focus: its current node is highlighted
    // only while it has.
    void treeFromTheKeyboard_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("move"); // an arrow key to the node first, 0 for none
        QTest::addColumn<QString>("opened"); // "" for nothing
        QTest::newRow("Enter on CH Information") << int(Qt::Key_Return) << 0 << u"frmChannel"_s;
        QTest::newRow("Space on Optiom Features") << int(Qt::Key_Space) << int(Qt::Key_Down) << u"frmOption"_s;
        QTest::newRow("Enter on the root") << int(Qt::Key_Enter) << int(Qt::Key_Up) << QString();
    }

    void treeFromTheKeyboard()
    {
        QFETCH(int, key);
        QFETCH(int, move);
        QFETCH(QString, opened);
        QVERIFY(h->show(0));
        h->window->channelList()->parentWidget()->close();
        QTRY_VERIFY(!h->window->channelList());
        auto *tree = h->window->findChild<QTreeWidget *>(u"Tree0"_s);
        const auto marked = [tree] {
            const QRect node = tree->visualItemRect(tree->currentItem());
            return tree->viewport()->grab().toImage().pixelColor(2, node.center().y());
        };
        const QColor highlight = QApplication::palette().color(QPalette::Highlight);
        QVERIFY(marked() != highlight);
        tree->setFocus(Qt::TabFocusReason);
        QCOMPARE(marked(), highlight);

        if (move)
            QTest::keyClick(tree, Qt::Key(move));
        QString shown;
        if (opened == u"frmOption")
            wr::test::whenModal([&shown](QDialog *form) {
                shown = form->objectName();
                form->reject();
            });
        QTest::keyClick(tree, Qt::Key(key));
        if (opened == u"frmChannel")
            shown = h->window->channelList() ? h->window->channelList()->objectName() : QString();
        QCOMPARE(shown, opened);
        QVERIFY(wr::MessageBox::history().isEmpty());
    }

    void channelInfoReopensClosedList()
    {
        h->open();
        QPointer<wr::frmChannel> list = h->window->channelList();
        h->editRx(9, u"147.0"_s);
        list->parentWidget()->close(); // the sub-window's close box
        QTRY_VERIFY(!list);
        QVERIFY(!(wr::app().FormOpenFlags & wr::AppState::ChannelListOpen));
        QVERIFY(!ShellHarness::imageRx(9).isEmpty()); // closing saved the grid
        h->trigger(u"mnuChannel_Info"_s);
        QVERIFY(wr::app().FormOpenFlags & wr::AppState::ChannelListOpen);
        QCOMPARE(h->gridRx(9), u"147.00000"_s);
    }

    // Closing also keeps the memory as a backup, with what was typed into the
    // grid and not saved (Exit's commit step does not save it); a backup that
    // cannot be written goes unnoticed.
    void settingsWrittenAtClose_data()
    {
        QTest::addColumn<bool>("viaExit");
        QTest::addColumn<bool>("backupBlocked"); // by a file named "backups"
        QTest::newRow("close box: settings, no commit") << false << false;
        QTest::newRow("Exit item: commit, then settings") << true << false;
        QTest::newRow("close box, backups blocked") << false << true;
        QTest::newRow("Exit item, backups blocked") << true << true;
    }

    void settingsWrittenAtClose()
    {
        QFETCH(bool, viaExit);
        QFETCH(bool, backupBlocked);
        if (backupBlocked)
            QVERIFY(QDir().mkpath(h->dataFolder()) && wr::test::writeFile(h->backupFolder(), "in the way"));
        h->open();
        h->window->show();
        wr::app().LanguageIndex = 2;
        wr::app().PortNumber = 17;
        wr::app().ModelIndex = 9;
        h->editRx(4, u"438.1"_s);
        if (viaExit)
            h->trigger(u"mnuFile_Exit"_s);
        else
            h->window->close();
        QCOMPARE(QStringList({h->storedSetting(u"Model"_s), h->storedSetting(u"Language"_s), h->storedSetting(u"gbPort"_s)}),
                 QStringList({u"9"_s, u"2"_s, u"17"_s}));
        QCOMPARE(wr::app().image.ReadByte(0x0CD0), viaExit ? 0x00 : 0x20);
        QCOMPARE(ShellHarness::imageRx(4).isEmpty(), !viaExit);
        QVERIFY(!h->window->isVisible());
        QCOMPARE(ShellHarness::shownBoxes(), QStringList());
        const QList<wr::Backups::Entry> backups = wr::Backups::list(h->backupFolder());
        if (backupBlocked) {
            QCOMPARE(wr::test::readFile(h->backupFolder()), QByteArray("in the way"));
        } else {
            QCOMPARE(backups.size(), 1);
            QCOMPARE(backups.first().reason, wr::BackupReason::ExitUnsaved);
            QCOMPARE(ShellHarness::rxOf(wr::DataFile::Read(backups.first().path).image, 4), u"438.10000"_s);
        }

        // The next start reads them back.
        h->window.reset();
        wr::app() = wr::AppState{};
        h->open();
        QCOMPARE(QList<int>({wr::app().LanguageIndex, int(wr::app().PortNumber), wr::app().ModelIndex}), QList<int>({2, 17, 9}));
        QCOMPARE(h->action(u"mnuFile"_s)->text() + wr::app().ToneTable.value(0), u"文件(&F)無"_s);
    }

    void languageSwitch_data()
    {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("choice");
        QTest::addColumn<bool>("ok");
        // File menu, tree item, Qt's own Cancel, channel 2's power; what a
        // screen reader says for the tree, the icon-only Print and Read
        // buttons (whose tool tips stay English) and the status bar.
        QTest::addColumn<QString>("texts");
        QTest::newRow("English to Traditional Chinese")
            << 0 << 2 << true << u"文件(&F)|可選功能|取消|高|編輯項目|打印|讀取 Read|狀態列"_s;
        QTest::newRow("Simplified Chinese to English")
            << 1 << 0 << true << u"File(&F)|Optiom Features|Cancel|High|Editors|Print|Read Read|Status bar"_s;
        QTest::newRow("Cancel keeps English")
            << 0 << 1 << false << u"File(&F)|Optiom Features|Cancel|High|Editors|Print|Read Read|Status bar"_s;
    }

    void languageSwitch()
    {
        QFETCH(int, from);
        QFETCH(int, choice);
        QFETCH(bool, ok);
        QFETCH(QString, texts);
        const int expected = ok ? choice : from;
        h->open(from);
        h->editRx(2, u"145.2"_s);
        wr::test::whenModal([&](QDialog *form) {
            auto *list = form->findChild<QComboBox *>(u"cboLang"_s);
            QCOMPARE(list->currentIndex(), from);
            list->setCurrentIndex(choice);
            QTest::mouseClick(form->findChild<QPushButton *>(ok ? u"CmdOK"_s : u"cmdCancel"_s), Qt::LeftButton);
        });
        h->trigger(u"mnuLanguage"_s);
        QCOMPARE(wr::app().LanguageIndex, expected);
        QCOMPARE(wr::InstalledQtTranslation(), expected);
        // The form's commit step kept the grid edit, and the grid reloaded it
        // in the new language's words.
        const auto spoken = [this](const QString &name) {
            QWidget *part = h->window->findChild<QWidget *>(name);
            return QAccessible::queryAccessibleInterface(part)->text(QAccessible::Name);
        };
        auto *read = h->window->findChild<QToolButton *>(u"Read"_s);
        QCOMPARE(QStringList({h->action(u"mnuFile"_s)->text(), treeNode(u"Item2"_s)->text(0),
                              QCoreApplication::translate("QPlatformTheme", "Cancel"),
                              h->window->channelList()->cellText(2, 5), spoken(u"Tree0"_s),
                              spoken(u"Print"_s), spoken(u"Read"_s) + u' ' + read->toolTip(), spoken(u"MSBar"_s)}),
                 texts.split(u'|'));
        QVERIFY(!wr::app().image.IsModified());
    }

    // Every control the main window's own dialogs caption exists; the
    // titles speak the language.
    void dialogsCaptioned()
    {
        const QStringList titles{u"Language File Setup|Communication Port|WR-PD6T RADIO PROGRAMMING SOFTWARE"_s,
                                 u"语言设置|通信端口|WR-PD6T  对讲机编程软件"_s,
                                 u"語言設置|通信端口|WR-PD6T  對講機編程軟件 "_s};
        for (const wr::Language language : {wr::English, wr::SimplifiedChinese, wr::TraditionalChinese}) {
            wr::LanguageForm languageForm(language);
            wr::frmComPort port(1, language);
            wr::frmAbout about(language);
            QStringList shown;
            for (const wr::FormDialog *dialog : std::initializer_list<const wr::FormDialog *>{&languageForm, &port, &about}) {
                QCOMPARE(dialog->missingControls(), QStringList());
                shown << dialog->windowTitle();
            }
            QCOMPARE(shown.join(u'|'), titles.at(language));
        }
    }

    // Two ports, COM1 and COM3.
    void portDialog_data()
    {
        QTest::addColumn<int>("portNumber");
        QTest::addColumn<QString>("typed"); // empty: keep the selection
        QTest::addColumn<QString>("expectedShown");
        QTest::addColumn<int>("stored");
        QTest::newRow("current port is shown") << 3 << QString() << u"COM3"_s << 3;
        QTest::newRow("unknown port selects the first entry") << 5 << QString() << u"COM1"_s << 1;
        QTest::newRow("typed COM12 is taken") << 1 << u"COM12"_s << u"COM1"_s << 12;
        QTest::newRow("typed text without COM is ignored") << 4 << u"USB"_s << u"COM1"_s << 4;
    }

    void portDialog()
    {
        QFETCH(int, portNumber);
        QFETCH(QString, typed);
        QFETCH(int, stored);
        wr::setSerialPortsFolder(filePath(u"serial-ports"_s));
        wr::setSystemPortSource([] {
            return QList<wr::SystemPort>{{u"ttyS0"_s, u"/dev/ttyS0"_s, {}, {}}, {u"ttyS2"_s, u"/dev/ttyS2"_s, {}, {}}};
        });
        h->storeSetting(u"gbPort"_s, QString::number(portNumber));
        h->open(0);
        QString shown;
        wr::test::whenModal([&](QDialog *form) {
            auto *combo = form->findChild<QComboBox *>(u"Combo1"_s);
            shown = combo->currentText();
            combo->lineEdit()->selectAll();
            QTest::keyClicks(combo->lineEdit(), typed);
            QTest::mouseClick(form->findChild<QPushButton *>(u"CmdOK"_s), Qt::LeftButton);
        });
        h->trigger(u"mnuPort"_s);
        QTEST(shown, "expectedShown");
        QCOMPARE(int(wr::app().PortNumber), stored);
        QCOMPARE(h->panel(1), u"COM"_s + QString::number(stored));
    }

    void portDetailsFramed_data()
    {
        QTest::addColumn<int>("language");
        QTest::addColumn<QString>("described"); // a port named by the user's link
        QTest::newRow("English") << 0 << u"Link to this device"_s;
        QTest::newRow("Simplified Chinese") << 1 << u"指向该设备的链接"_s;
        QTest::newRow("Traditional Chinese") << 2 << u"指向該設備的連結"_s;
    }

    // The box beside the port list shows all four sides, wherever the
    // language's captions put it, and describes the port in the language.
    // CTest runs this at 150 % too, where a line on a widget's edge can fall
    // outside the pixels it paints.
    void portDetailsFramed()
    {
        QFETCH(int, language);
        QFETCH(QString, described);
        QVERIFY(QDir().mkpath(filePath(u"serial-ports"_s)));
        QVERIFY(QFile::link(filePath(u"device"_s), filePath(u"serial-ports/com1"_s)));
        QVERIFY(wr::test::writeFile(filePath(u"device"_s), QByteArray()));
        wr::setSerialPortsFolder(filePath(u"serial-ports"_s));
        wr::setSystemPortSource([] { return QList<wr::SystemPort>(); });
        wr::frmComPort dialog(1, wr::Language(language));
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        QCOMPARE(dialog.findChild<QLabel *>(u"lblDescription"_s)->text(), described);
        const QImage image = dialog.grab().toImage();
        const qreal scale = image.devicePixelRatio();
        const QRectF box(dialog.findChild<QFrame *>(u"fraDetails"_s)->geometry());
        const QRect pixels(QPoint(int(box.left() * scale), int(box.top() * scale)),
                           QPoint(int(std::ceil((box.right() + 1) * scale)) - 1,
                                  int(std::ceil((box.bottom() + 1) * scale)) - 1));
        const int background = qGray(dialog.palette().color(QPalette::Window).rgb());
        // A line within the three outermost pixels, half way along the side.
        const auto lined = [&](QPoint edge, QPoint inward) {
            for (int i = 0; i < 3; ++i) {
                if (qGray(image.pixel(edge + inward * i)) < background - 24)
                    return true;
            }
            return false;
        };
        const QPoint middle = pixels.center();
        QStringList missing;
        if (!lined({middle.x(), pixels.top()}, {0, 1}))
            missing << u"top"_s;
        if (!lined({pixels.left(), middle.y()}, {1, 0}))
            missing << u"left"_s;
        if (!lined({middle.x(), pixels.bottom()}, {0, -1}))
            missing << u"bottom"_s;
        if (!lined({pixels.right(), middle.y()}, {-1, 0}))
            missing << u"right"_s;
        QCOMPARE(missing, QStringList());
    }

    // The prescribed button and three lines, and the notice ending in the
    // licence, in the interface language.
    void aboutBox_data()
    {
        QTest::addColumn<int>("language");
        QTest::addColumn<QString>("shown"); // the button | the three lines
        QTest::addColumn<QStringList>("licence"); // in the notice's last paragraph
        QTest::newRow("English") << 0 << u"&OK|WR-PD6T PROGRAM SOFTWARE\nVERSION：VER 1.03\nDATE: 05/25/2018"_s
                                 << QStringList{u"free software"_s, u"GNU General Public License"_s,
                                                u"version 3 or any later"_s, u"no warranty"_s};
        QTest::newRow("Simplified Chinese")
            << 1 << u"确定(&O)|WR-PD6T 对讲机编程软件\n版本：VER 1.03\n日期：2018年05月25日"_s
            << QStringList{u"自由软件"_s, u"GNU 通用公共许可证"_s, u"第 3 版或任何更高版本"_s, u"不提供任何形式的担保"_s};
        QTest::newRow("Traditional Chinese")
            << 2 << u"確定(&O)|WR-PD6T 對講機編程軟件\n版本：VER 1.03\n日期：2018年05月25日"_s
            << QStringList{u"自由軟體"_s, u"GNU 通用公共授權條款"_s, u"第 3 版或任何更新的版本"_s, u"不提供任何形式的擔保"_s};
    }

    void aboutBox()
    {
        QFETCH(int, language);
        QFETCH(QString, shown);
        QFETCH(QStringList, licence);
        h->open(language);
        QString texts;
        QString notice;
        wr::test::whenModal([&](QDialog *about) {
            texts = about->findChild<QPushButton *>(u"Command1"_s)->text() + u'|'
                + about->findChild<QLabel *>(u"Label1"_s)->text();
            notice = about->findChild<QPlainTextEdit *>(u"Text1"_s)->toPlainText();
            QTest::mouseClick(about->findChild<QPushButton *>(u"Command1"_s), Qt::LeftButton);
        });
        QTest::mouseClick(h->window->findChild<QToolButton *>(u"About"_s), Qt::LeftButton);
        QCOMPARE(texts, shown);
        const QString lastParagraph = notice.section(u"\n\n"_s, -1);
        for (const QString &words : licence)
            QVERIFY2(lastParagraph.contains(words), qPrintable(lastParagraph));
        QVERIFY(lastParagraph.contains(u"https://www.gnu.org/licenses/gpl-3.0.html"_s));
    }
};

QTEST_MAIN(TestMainWindow)
#include "TestMainWindow.moc"
