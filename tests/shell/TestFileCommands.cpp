// New, Open, Save and Save As through the main window's menu, and files
// opened from outside (command line, drop): the questions, the file names and
// folders, and that a failure never changes the image or the files.
#include "Programs.h"
#include "ShellHarness.h"

#include "file/Backups.h"

#include <QDir>
#include <QFile>
#include <QMimeData>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QTableView>
#include <QUrl>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;
using wr::test::ShellHarness;


class TestFileCommands : public wr::test::ShellSuite
{
    Q_OBJECT

    void setUp() override
    {
        ShellSuite::setUp();
        h->open(0);
    }

    // Drags local files over the channel list, which covers most of the
    // window, and drops them; true when the window took them as a copy, so
    // that the file stays where it is.
    bool dropFiles(const QStringList &paths, Qt::KeyboardModifiers keys = Qt::NoModifier) const
    {
        QList<QUrl> urls;
        for (const QString &path : paths)
            urls << QUrl::fromLocalFile(path);
        QMimeData data;
        data.setUrls(urls);
        QWidget *target = h->window->channelList()->grid()->viewport();
        const QPoint where = target->rect().center();
        const Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction;
        QDragEnterEvent enter(where, actions, &data, Qt::LeftButton, keys);
        QDragMoveEvent move(where, actions, &data, Qt::LeftButton, keys);
        QDropEvent drop(where, actions, &data, Qt::LeftButton, keys);
        bool taken = true;
        for (QDropEvent *event : {static_cast<QDropEvent *>(&enter), static_cast<QDropEvent *>(&move), &drop}) {
            QApplication::sendEvent(target, event);
            taken = taken && event->isAccepted() && event->dropAction() == Qt::CopyAction;
        }
        return taken;
    }

private Q_SLOTS:
    // File > Open, a data file given on the command line or dropped on the
    // window (as a copy, so that the file stays where it is) and File > New
    // replace the image; an image opened brings its band limits along. Unsaved
    // changes are asked about first (Open: save them?; New: they will be
    // cleared), and kept as a backup before the image goes unless they were
    // saved. A drop of anything but one data file is refused. New keeps the
    // file name.
    void replacingTheImage_data()
    {
        QTest::addColumn<QString>("how");      // "open", "argument", "drop" or "new"
        QTest::addColumn<QStringList>("names"); // the files opened or dropped, each holding other.tw's image
        QTest::addColumn<Qt::KeyboardModifiers>("keys"); // held during a drop: Shift proposes a move
        QTest::addColumn<bool>("edited");      // channel 1 typed into the grid
        QTest::addColumn<int>("answer");       // to the question; 0: none is asked
        QTest::addColumn<QString>("saveName"); // answer of the save dialog, "-" = not asked
        QTest::addColumn<bool>("replaced");
        QTest::addColumn<QString>("kept");     // the reason of the backup kept, "" for none
        const QStringList one{u"other.tw"_s};
        const Qt::KeyboardModifiers none = Qt::NoModifier;
        const int yes = QMessageBox::Yes, no = QMessageBox::No, cancel = QMessageBox::Cancel, ok = QMessageBox::Ok;
        QTest::newRow("Open, not modified: no question") << u"open"_s << one << none << false << 0 << u"-"_s << true << QString();
        QTest::newRow("Open, Yes saves Untitled under a new name, then opens")
            << u"open"_s << one << none << true << yes << u"saved.tw"_s << true << QString();
        QTest::newRow("Open, No opens without saving") << u"open"_s << one << none << true << no << u"-"_s << true
                                                       << u"before-open"_s;
        QTest::newRow("Open, Cancel keeps the edits") << u"open"_s << one << none << true << cancel << u"-"_s << false
                                                      << QString();
        QTest::newRow("Open, Yes, save dialog cancelled: nothing opened")
            << u"open"_s << one << none << true << yes << QString() << false << QString();
        QTest::newRow("argument, not modified: no question") << u"argument"_s << one << none << false << 0 << u"-"_s
                                                             << true << QString();
        QTest::newRow("drop, No: the file opens") << u"drop"_s << one << none << true << no << u"-"_s << true
                                                  << u"before-open"_s;
        QTest::newRow("drop, Cancel keeps the edits") << u"drop"_s << one << none << true << cancel << u"-"_s << false
                                                      << QString();
        QTest::newRow("drop, Shift held: still a copy") << u"drop"_s << one << Qt::KeyboardModifiers(Qt::ShiftModifier)
                                                        << true << no << u"-"_s << true << u"before-open"_s;
        QTest::newRow("drop, suffix in capitals") << u"drop"_s << QStringList{u"OTHER.TW"_s} << none << true << no
                                                  << u"-"_s << true << u"before-open"_s;
        QTest::newRow("drop, another kind of file refused") << u"drop"_s << QStringList{u"other.txt"_s} << none << true
                                                            << 0 << u"-"_s << false << QString();
        QTest::newRow("drop, two files refused") << u"drop"_s << QStringList{u"other.tw"_s, u"more.tw"_s} << none << true
                                                 << 0 << u"-"_s << false << QString();
        QTest::newRow("New, kept before clearing") << u"new"_s << one << none << true << ok << u"-"_s << true
                                                   << u"before-new"_s;
        QTest::newRow("New cancelled") << u"new"_s << one << none << true << cancel << u"-"_s << false << QString();
        QTest::newRow("New without changes") << u"new"_s << one << none << false << ok << u"-"_s << true << QString();
    }

    void replacingTheImage()
    {
        QFETCH(QString, how);
        QFETCH(QStringList, names);
        QFETCH(Qt::KeyboardModifiers, keys);
        QFETCH(bool, edited);
        QFETCH(int, answer);
        QFETCH(QString, saveName);
        QFETCH(bool, replaced);
        QFETCH(QString, kept);
        const QByteArray otherImage = ShellHarness::imageWithChannels(20, 5);
        QStringList paths;
        for (const QString &name : names) {
            QVERIFY(ShellHarness::writeDataFile(filePath(name), otherImage));
            paths << filePath(name);
        }
        const QByteArray otherFile = wr::test::readFile(paths.front());
        const bool clearing = how == u"new";
        if (clearing)
            wr::app().CurrentFileName = filePath(u"current.tw"_s);
        wr::app().BandLimits[0] = 140;
        if (edited)
            h->editRx(1, u"145.5"_s); // in the grid only; Open still knows it as a change
        if (answer)
            wr::MessageBox::setNextAnswer(QMessageBox::StandardButton(answer));
        if (saveName != u"-")
            wr::FileDialog::setNextFileName(saveName.isEmpty() ? QString() : filePath(saveName));
        if (how == u"open")
            wr::FileDialog::setNextFileName(paths.front());
        if (how == u"drop")
            QCOMPARE(dropFiles(paths, keys), answer != 0);
        else if (how == u"argument")
            h->window->openFile(paths.front());
        else
            h->trigger(how == u"new" ? u"mnuFile_New"_s : u"mnuFile_Open"_s);

        QTRY_COMPARE(ShellHarness::shownBoxes(),
                     !answer      ? QStringList()
                     : clearing ? QStringList{u"Warning|Alert!|All data will be cleared."_s}
                                : QStringList{u"Warning||File has been modified, save it now?"_s});
        for (const wr::MessageBox::Shown &box : wr::MessageBox::history()) {
            QCOMPARE(box.buttons, clearing ? QMessageBox::Ok | QMessageBox::Cancel
                                           : QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
            QVERIFY(!clearing || box.defaultButton == QMessageBox::Cancel);
        }
        const QString saved = filePath(u"saved.tw"_s);
        const bool savedFirst = saveName == u"saved.tw";
        QCOMPARE(QFile::exists(saved), savedFirst);
        QCOMPARE(wr::app().CurrentFileName, savedFirst ? saved : clearing ? filePath(u"current.tw"_s) : u"Untitled"_s);
        QCOMPARE(wr::app().image.bytes() == (clearing ? wr::test::freshImage().bytes() : otherImage), replaced);
        QCOMPARE(h->gridRx(20), replaced && !clearing ? u"450.12500"_s : QString());
        QVERIFY(clearing || wr::app().BandLimits[0] == (replaced ? 136 : 140));
        QCOMPARE(h->gridRx(1), replaced || !edited ? QString() : u"145.50000"_s);
        if (how != u"drop")
            QCOMPARE(wr::app().image.IsModified(), !replaced);
        if (how == u"open" && !replaced)
            QCOMPARE(ShellHarness::imageRx(1), u"145.50000"_s);
        const QList<wr::Backups::Entry> backups = wr::Backups::list(h->backupFolder());
        QCOMPARE(backups.size(), int(!kept.isEmpty()));
        if (!kept.isEmpty()) {
            QCOMPARE(wr::Backups::reasonName(backups.first().reason), kept);
            QCOMPARE(ShellHarness::rxInFile(backups.first().path, 1), u"145.50000"_s);
        }
        if (!savedFirst)
            return;
        QCOMPARE(ShellHarness::rxInFile(saved, 1), u"145.50000"_s);
        // After Open, Save goes to the file last saved without a dialog and
        // leaves the opened file alone.
        h->editRx(10, u"439.0"_s);
        const QString sentinel = filePath(u"sentinel.tw"_s);
        wr::FileDialog::setNextFileName(sentinel); // a dialog would take it
        h->trigger(u"mnuFile_Save"_s);
        QVERIFY(!QFile::exists(sentinel));
        QCOMPARE(ShellHarness::rxInFile(saved, 10), u"439.00000"_s);
        QCOMPARE(ShellHarness::rxInFile(saved, 20), u"450.12500"_s);
        QCOMPARE(wr::test::readFile(paths.front()), otherFile);
        QCOMPARE(wr::MessageBox::history().size(), 1);
    }

    // The prescribed message, and on a second line the file and what is
    // wrong with it, in the interface language; a name given from outside
    // that leads nowhere is named.
    void badFilesLeaveImageAlone_data()
    {
        QTest::addColumn<QByteArray>("content"); // "-": no such file
        QTest::addColumn<int>("language");
        QTest::addColumn<QString>("shown"); // title|text; %1: the file's path
        QByteArray foreign = wr::DataFile::Container(wr::MemoryImage());
        foreign.replace(0, 6, "ABCDEF");
        foreign.append('\0');
        const QByteArray packed = *wr::DataFile::Encode(wr::MemoryImage());
        QTest::newRow("foreign marker") << foreign << 0 << u"WR-PD6T|Incorrect File Type.\nbad.tw: no data file marker at its start"_s;
        QTest::newRow("damaged packing") << packed.left(40) + packed.right(1) << 0
                                         << u"Error|Incorrect File Type.\nbad.tw: its packing is damaged"_s;
        QTest::newRow("too short, Simplified Chinese") << foreign.first(100) + '\0' << 1
                                                      << u"WR-PD6T|文件类型不正确。\nbad.tw：文件太短，不是数据文件"_s;
        // Null content: a pipe that nobody writes into, refused without waiting.
        QTest::newRow("pipe, Traditional Chinese") << QByteArray() << 2 << u"WR-PD6T|文件類型不正確。\nbad.tw：不是普通文件"_s;
        QTest::newRow("no such file, from the command line") << QByteArray("-") << 0
                                                             << u"Error|The file does not exist.\n%1"_s;
    }

    void badFilesLeaveImageAlone()
    {
        QFETCH(QByteArray, content);
        QFETCH(int, language);
        QFETCH(QString, shown);
        wr::app().LanguageIndex = quint8(language);
        const QString path = filePath(u"bad.tw"_s);
        if (content.isNull())
            QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
        else if (content != "-")
            QVERIFY(wr::test::writeFile(path, content));
        h->editRx(3, u"145.0"_s);
        h->window->CommitStep();
        h->editRx(4, u"146.0"_s); // modified again, but answered No below
        wr::app().BandLimits[0] = 140;
        wr::MessageBox::setNextAnswer(QMessageBox::No);
        wr::FileDialog::setNextFileName(path);
        if (content == "-")
            h->window->openFile(path);
        else
            h->trigger(u"mnuFile_Open"_s);

        QCOMPARE(ShellHarness::shownBoxes().mid(1), QStringList{u"Critical|"_s + shown.replace(u"%1"_s, path)});
        // No backup: the image was not replaced.
        QVERIFY(wr::Backups::list(h->backupFolder()).isEmpty());
        // The image (with the grid's edit moved in), its snapshot state, the
        // band limits and the grid are as before.
        QCOMPARE(ShellHarness::imageRx(3), u"145.00000"_s);
        QCOMPARE(ShellHarness::imageRx(4), u"146.00000"_s);
        QVERIFY(wr::app().image.IsModified());
        QCOMPARE(wr::app().BandLimits[0], 140);
        QCOMPARE(h->gridRx(4), u"146.00000"_s);
        QVERIFY(!QFile::exists(wr::app().AppFolder + u"tempzunk.dat"_s));
    }

    void failedSaveKeepsOldFile()
    {
        const QString path = filePath(u"kept.tw"_s);
        QVERIFY(ShellHarness::writeDataFile(path, ShellHarness::imageWithChannels(1, 128)));
        const QByteArray oldFile = wr::test::readFile(path);
        // Save As over the old file with different data, with writes limited
        // to fewer bytes than the new file needs: past the limit they fail
        // with EFBIG, which even root cannot override.
        wr::app().image.setBytes(ShellHarness::imageWithChannels(1, 100));
        h->window->RefreshMainWindow();
        wr::FileDialog::setNextFileName(path);
        rlimit usual{};
        getrlimit(RLIMIT_FSIZE, &usual);
        const rlimit limit{64, usual.rlim_max};
        const auto handler = std::signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &limit);
        h->trigger(u"mnuFile_SaveAs"_s);
        setrlimit(RLIMIT_FSIZE, &usual);
        std::signal(SIGXFSZ, handler);
        // The system's own words, not "Unknown error".
        QCOMPARE(ShellHarness::shownBoxes(), QStringList{u"Warning|WR-PD6T|"_s + qt_error_string(EFBIG)});
        QCOMPARE(wr::test::readFile(path), oldFile);
        QCOMPARE(wr::app().CurrentFileName, u"Untitled"_s); // the failed name is not taken
        QVERIFY(!ShellHarness::imageRx(100).isEmpty());
        QVERIFY(ShellHarness::imageRx(101).isEmpty());
    }

    // The program itself: what it accepts on its command line before any
    // window opens.
    void commandLine_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("output"); // on standard output, or standard error on failure
        QTest::newRow("version") << QStringList{u"--version"_s} << 0 << u"wrpd6t 1.03\n"_s;
        QTest::newRow("two files") << QStringList{u"a.tw"_s, u"b.tw"_s} << 1 << u"wrpd6t: give at most one file"_s;
    }

    void commandLine()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, exitCode);
        QFETCH(QString, output);
        const wr::test::Run run = wr::test::runProgram(QStringLiteral(WRPD6T_PATH), arguments, tempFolder());
        QCOMPARE(run.exitCode, exitCode);
        QVERIFY2((exitCode ? run.err : run.out).contains(output), qPrintable(run.err + run.out));
    }

    // A channel list in CSV handed to Open, however it comes, goes to the
    // channel list's import with its preview; it replaces nothing, so from
    // outside the program it is not preceded by the modified question. The
    // Open dialog offers all files besides the data files.
    void channelListsGoToImport_data()
    {
        QTest::addColumn<QString>("how"); // "dialog", "argument" or "drop"
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<bool>("imported");
        const QByteArray list = "Location,Frequency\r\n3,146.52\r\n";
        QTest::newRow("dialog: suffix in capitals") << u"dialog"_s << u"list.CSV"_s << list << true;
        QTest::newRow("dialog: a CSV header under another name") << u"dialog"_s << u"list.txt"_s << list << true;
        QTest::newRow("argument: quoted header after a byte-order mark")
            << u"argument"_s << u"list.dat"_s << QByteArray("\xEF\xBB\xBF\"Location\",\"Frequency\"\n3,146.52\n") << true;
        QTest::newRow("drop") << u"drop"_s << u"list.csv"_s << list << true;
        QTest::newRow("argument: columns separated otherwise")
            << u"argument"_s << u"list.txt"_s << QByteArray("Location;Frequency\r\n3;146.52\r\n") << false;
    }

    void channelListsGoToImport()
    {
        QFETCH(QString, how);
        QFETCH(QString, name);
        QFETCH(QByteArray, content);
        QFETCH(bool, imported);
        const QString path = filePath(name);
        QVERIFY(wr::test::writeFile(path, content));
        h->editRx(1, u"145.5"_s);
        QString preview;
        if (imported) {
            wr::test::whenModal([&preview](QDialog *form) {
                preview = form->objectName();
                QTest::mouseClick(form->findChild<QPushButton *>(u"cmdOK"_s), Qt::LeftButton);
            });
        }
        // The modified question, where Open asks it.
        if (how == u"dialog" || !imported)
            wr::MessageBox::setNextAnswer(QMessageBox::No);
        if (how == u"dialog") {
            wr::FileDialog::setNextFileName(path);
            h->trigger(u"mnuFile_Open"_s);
            QCOMPARE(wr::FileDialog::lastFilter(), u"tw Files (*.tw);;All files (*)"_s);
        } else if (how == u"drop") {
            QVERIFY(dropFiles({path}));
        } else {
            h->window->openFile(path);
        }

        QTRY_COMPARE(preview, imported ? u"CsvImportPreview"_s : QString());
        QStringList shown = ShellHarness::shownBoxes();
        if (how == u"dialog" || !imported)
            QCOMPARE(shown.takeFirst(), u"Warning||File has been modified, save it now?"_s);
        QCOMPARE(shown, imported ? QStringList()
                                 : QStringList{u"Critical|Error|Incorrect File Type.\nlist.txt: its packing is damaged"_s});
        // Imported into the list, beside what was typed there; the image
        // learns it at the next commit step.
        QCOMPARE(h->gridRx(3), imported ? u"146.52000"_s : QString());
        QCOMPARE(h->gridRx(1), u"145.50000"_s);
        QVERIFY(ShellHarness::imageRx(3).isEmpty());
    }

    // Names typed into the save dialog without a suffix get ".tw"; the file
    // then written must not replace another without asking.
    void saveAsAddsSuffix_data()
    {
        QTest::addColumn<QStringList>("typed");    // into successive dialogs; "" cancels
        QTest::addColumn<QString>("existing");     // a file there before, "" for none
        QTest::addColumn<QList<int>>("answers");   // to "... already exists."
        QTest::addColumn<QString>("written");      // "" for none
        QTest::newRow("no suffix") << QStringList{u"radio"_s} << QString() << QList<int>{} << u"radio.tw"_s;
        QTest::newRow("a dot at the end") << QStringList{u"radio."_s} << QString() << QList<int>{} << u"radio.tw"_s;
        QTest::newRow("a suffix of its own") << QStringList{u"radio.bak"_s} << QString() << QList<int>{} << u"radio.bak"_s;
        QTest::newRow("suffixed name taken, Yes replaces it") << QStringList{u"radio"_s} << u"radio.tw"_s
                                                              << QList<int>{QMessageBox::Yes} << u"radio.tw"_s;
        QTest::newRow("suffixed name taken, No asks again") << QStringList{u"radio"_s, u"copy"_s} << u"radio.tw"_s
                                                            << QList<int>{QMessageBox::No} << u"copy.tw"_s;
        QTest::newRow("suffixed name taken, No, then cancelled") << QStringList{u"radio"_s, QString()} << u"radio.tw"_s
                                                                 << QList<int>{QMessageBox::No} << QString();
    }

    void saveAsAddsSuffix()
    {
        QFETCH(QStringList, typed);
        QFETCH(QString, existing);
        QFETCH(QList<int>, answers);
        QFETCH(QString, written);
        if (!existing.isEmpty())
            QVERIFY(wr::test::writeFile(filePath(existing), "theirs"));
        for (const QString &name : typed)
            wr::FileDialog::setNextFileName(name.isEmpty() ? QString() : filePath(name));
        for (int answer : answers)
            wr::MessageBox::setNextAnswer(QMessageBox::StandardButton(answer));
        h->editRx(7, u"439.5"_s);
        h->trigger(u"mnuFile_SaveAs"_s);

        QStringList questions;
        for (qsizetype i = 0; i < answers.size(); ++i)
            questions << u"Warning|WR-PD6T|%1 already exists.\nDo you want to replace it?"_s.arg(existing);
        QCOMPARE(ShellHarness::shownBoxes(), questions);
        // A dialog that comes back starts from the name that was refused.
        QStringList proposed{u"Untitled.tw"_s};
        if (typed.size() > 1)
            proposed << filePath(existing);
        QCOMPARE(wr::FileDialog::history(), proposed);
        QCOMPARE(wr::app().CurrentFileName, written.isEmpty() ? u"Untitled"_s : filePath(written));
        if (!written.isEmpty())
            QCOMPARE(ShellHarness::rxInFile(filePath(written), 7), u"439.50000"_s);
        if (!existing.isEmpty() && existing != written)
            QCOMPARE(wr::test::readFile(filePath(existing)), QByteArray("theirs"));
        // No file under the name as typed.
        QStringList files{u"settings.ini"_s, existing, written};
        files.removeAll(QString());
        files.removeDuplicates();
        files.sort();
        QCOMPARE(QDir(tempFolder()).entryList(QDir::Files, QDir::Name), files);
    }

    // Open and save dialogs start in the folder of the file last opened or
    // saved, in this run or an earlier one, by a dialog or from outside.
    void dialogsRememberTheFolder()
    {
        const QString first = filePath(u"first"_s);
        const QString second = filePath(u"客户 2"_s);
        const QString third = filePath(u"third"_s);
        for (const QString &folder : {first, second, third})
            QVERIFY(QDir().mkpath(folder));
        QVERIFY(ShellHarness::writeDataFile(first + u"/a.tw"_s, ShellHarness::imageWithChannels(1, 3)));
        QVERIFY(ShellHarness::writeDataFile(third + u"/c.tw"_s, ShellHarness::imageWithChannels(1, 3)));

        wr::FileDialog::setNextFileName(first + u"/a.tw"_s);
        h->trigger(u"mnuFile_Open"_s);
        wr::FileDialog::setNextFileName(second + u"/b.tw"_s);
        h->trigger(u"mnuFile_SaveAs"_s);
        QVERIFY(QFile::exists(second + u"/b.tw"_s));
        // The next run.
        h->window.reset();
        h->open(0);
        wr::FileDialog::setNextFileName(QString());
        h->trigger(u"mnuFile_Open"_s);
        h->window->openFile(third + u"/c.tw"_s);
        wr::FileDialog::setNextFileName(QString());
        h->trigger(u"mnuFile_Save"_s); // Untitled: Save asks for a name
        QVERIFY(QDir(third).removeRecursively());
        wr::FileDialog::setNextFileName(QString());
        h->trigger(u"mnuFile_Open"_s);

        QCOMPARE(wr::FileDialog::history(),
                 QStringList({QString(), first + u"/Untitled.tw"_s, second, third + u"/Untitled.tw"_s, QString()}));
    }
    void channelSheet_data()
    {
        wr::test::languageRows<QString, QString>({"caption", "title"},
                                                 {u"Channel Sheet…"_s, u"信道表…"_s, u"信道表…"_s},
                                                 {u"Channel Sheet"_s, u"信道表"_s, u"信道表"_s});
    }

    // Channel Sheet…, last in the channel list's menu, prints the rows
    // selected as the list holds them: a frequency typed and not saved is on
    // the sheet, and the image stays as it was. The sheet is saved from the
    // preview with Ctrl+S and read back.
    void channelSheet()
    {
        QFETCH(int, language);
        QFETCH(QString, caption);
        QFETCH(QString, title);
        wr::MDIForm1 &window = h->open(language);
        wr::app().image.setBytes(wr::test::ShellHarness::imageWithChannels(1, 12)); // channel 3 on 433.12500
        window.RefreshMainWindow();
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        h->editRx(10, u"145.50000"_s);
        const QByteArray image = wr::app().image.bytes();
        QTableView *grid = window.channelList()->grid();
        for (const auto &[channel, modifier] : {std::pair{3, Qt::NoModifier}, std::pair{10, Qt::ControlModifier}}) {
            const QModelIndex number = grid->model()->index(channel, 0);
            grid->scrollTo(number);
            QTest::mouseClick(grid->viewport(), Qt::LeftButton, modifier, grid->visualRect(number).center());
        }

        const QString pdf = filePath(u"sheet.pdf"_s);
        QString shownTitle;
        wr::test::whenModal([&](QDialog *preview) {
            shownTitle = preview->windowTitle();
            wr::FileDialog::setNextFileName(pdf);
            // The offscreen platform leaves the main window the active one
            // for the widgets; a window manager activates the preview.
            QApplication::setActiveWindow(preview);
            QTest::keyClick(preview, Qt::Key_S, Qt::ControlModifier);
            preview->reject();
        });
        QTest::keyClick(grid, Qt::Key_Menu);
        auto *menu = window.findChild<QMenu *>(u"channelMenu"_s);
        QTRY_VERIFY(menu->isVisible());
        QAction *command = menu->actions().constLast();
        QCOMPARE(command->objectName(), u"mnuChannelSheet"_s);
        QCOMPARE(command->text(), caption);
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(command).center());
        QTRY_COMPARE(shownTitle, title);
        QCOMPARE(wr::app().image.bytes(), image);

        QProcess text;
        text.start(u"pdftotext"_s, {u"-layout"_s, pdf, u"-"_s});
        QVERIFY(text.waitForFinished(30000));
        // A channel's row: its number, then its receive frequency.
        static const QRegularExpression row(uR"(^\s*(\d+)\s+(\d+\.\d{5})\s)"_s, QRegularExpression::MultilineOption);
        QStringList rows;
        for (const QRegularExpressionMatch &match : row.globalMatch(QString::fromUtf8(text.readAllStandardOutput())))
            rows << match.captured(1) + u' ' + match.captured(2);
        QCOMPARE(rows, QStringList({u"3 433.12500"_s, u"10 145.50000"_s}));
        QCOMPARE(h->shownBoxes(), QStringList());
    }
};

QTEST_MAIN(TestFileCommands)
#include "TestFileCommands.moc"
