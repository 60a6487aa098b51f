// New, Open, Save and Save As through the main window's menu, and files
// opened from outside (command line, drop): the questions, the file names and
// folders, and that a failure never changes the image or the files.
#include "Programs.h"
#include "ShellHarness.h"

#include "file/Backups.h"

#include <QDir>
#include <QFile>
#include <QMimeData>
#include <QPushButton>
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
    void openModifiedImage_data()
    {
        QTest::addColumn<int>("answer");       // to "File has been modified, save it now?", 0 = not modified
        QTest::addColumn<QString>("saveName"); // answer of the save dialog, "-" = not asked
        QTest::addColumn<bool>("opened");
        QTest::newRow("not modified: no question") << 0 << u"-"_s << true;
        QTest::newRow("Yes saves Untitled under a new name, then opens") << int(QMessageBox::Yes) << u"saved.tw"_s << true;
        QTest::newRow("No opens without saving") << int(QMessageBox::No) << u"-"_s << true;
        QTest::newRow("Cancel keeps the edits") << int(QMessageBox::Cancel) << u"-"_s << false;
        QTest::newRow("Yes, save dialog cancelled: nothing opened") << int(QMessageBox::Yes) << QString() << false;
    }

    void openModifiedImage()
    {
        QFETCH(int, answer);
        QFETCH(QString, saveName);
        QFETCH(bool, opened);
        const QString other = filePath(u"other.tw"_s);
        const QByteArray otherImage = ShellHarness::imageWithChannels(20, 5);
        QVERIFY(ShellHarness::writeDataFile(other, otherImage));
        const QByteArray otherFile = wr::test::readFile(other);
        if (answer) {
            h->editRx(1, u"145.5"_s); // in the grid only; Open still knows it as a change
            wr::MessageBox::setNextAnswer(QMessageBox::StandardButton(answer));
        }
        if (saveName != u"-")
            wr::FileDialog::setNextFileName(saveName.isEmpty() ? QString() : filePath(saveName));
        if (opened)
            wr::FileDialog::setNextFileName(other);
        h->trigger(u"mnuFile_Open"_s);

        QCOMPARE(ShellHarness::shownBoxes(), answer ? QStringList{u"Warning||File has been modified, save it now?"_s} : QStringList());
        for (const wr::MessageBox::Shown &box : wr::MessageBox::history())
            QCOMPARE(box.buttons, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        const QString saved = filePath(u"saved.tw"_s);
        const bool savedFirst = saveName == u"saved.tw";
        QCOMPARE(QFile::exists(saved), savedFirst);
        QCOMPARE(wr::app().CurrentFileName, savedFirst ? saved : u"Untitled"_s);
        QCOMPARE(wr::app().image.IsModified(), !opened);
        QCOMPARE(wr::app().image.bytes() == otherImage, opened);
        QCOMPARE(h->gridRx(20), opened ? u"450.12500"_s : QString());
        QCOMPARE(h->gridRx(1), opened ? QString() : u"145.50000"_s);
        if (!opened)
            QCOMPARE(ShellHarness::imageRx(1), u"145.50000"_s);
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
        QCOMPARE(wr::test::readFile(other), otherFile);
        QCOMPARE(wr::MessageBox::history().size(), 1);
    }

    // The prescribed message, and on a second line the file and what is
    // wrong with it, in the interface language.
    void badFilesLeaveImageAlone_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<int>("language");
        QTest::addColumn<QString>("shown"); // title|text
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
        else
            QVERIFY(wr::test::writeFile(path, content));
        h->editRx(3, u"145.0"_s);
        h->window->CommitStep();
        h->editRx(4, u"146.0"_s); // modified again, but answered No below
        wr::app().BandLimits[0] = 140;
        wr::MessageBox::setNextAnswer(QMessageBox::No);
        wr::FileDialog::setNextFileName(path);
        h->trigger(u"mnuFile_Open"_s);

        QCOMPARE(ShellHarness::shownBoxes().mid(1), QStringList{u"Critical|"_s + shown});
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

    // What the program does with the file it is started with.
    void openFileFromCommandLine_data()
    {
        QTest::addColumn<QByteArray>("content"); // null: there is no such file
        QTest::addColumn<QString>("shown");      // "%1" stands for the file's path
        const QByteArray good = ShellHarness::fileOf(ShellHarness::imageWithChannels(20, 5));
        QTest::newRow("good file") << good << QString();
        QTest::newRow("damaged file") << good.left(40) + good.right(1)
                                      << u"Critical|Error|Incorrect File Type.\ncustomer.tw: its packing is damaged"_s;
        QTest::newRow("missing file") << QByteArray() << u"Critical|Error|The file does not exist.\n%1"_s;
    }

    void openFileFromCommandLine()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, shown);
        const QString path = filePath(u"customer.tw"_s);
        if (!content.isNull())
            QVERIFY(wr::test::writeFile(path, content));
        wr::app().BandLimits[0] = 140;
        h->window->openFile(path);

        const bool opened = shown.isEmpty();
        QCOMPARE(ShellHarness::shownBoxes(), opened ? QStringList() : QStringList{QString(shown).replace(u"%1"_s, path)});
        QCOMPARE(wr::app().image.bytes(), opened ? ShellHarness::imageWithChannels(20, 5) : wr::test::freshImage().bytes());
        QVERIFY(!wr::app().image.IsModified());
        QCOMPARE(wr::app().BandLimits[0], opened ? 136 : 140);
        QCOMPARE(h->gridRx(20), opened ? u"450.12500"_s : QString());
        QCOMPARE(wr::app().CurrentFileName, u"Untitled"_s);
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

    // Data files dropped on the window.
    void dropOnWindow_data()
    {
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<Qt::KeyboardModifiers>("keys"); // Shift proposes a move
        QTest::addColumn<int>("answer"); // to "File has been modified, save it now?", 0 = drop refused
        QTest::addColumn<bool>("opened");
        const QStringList one{u"other.tw"_s};
        const Qt::KeyboardModifiers none = Qt::NoModifier, shift = Qt::ShiftModifier;
        QTest::newRow("No: the file opens") << one << none << int(QMessageBox::No) << true;
        QTest::newRow("Cancel keeps the edits") << one << none << int(QMessageBox::Cancel) << false;
        QTest::newRow("Shift held: still a copy") << one << shift << int(QMessageBox::No) << true;
        QTest::newRow("suffix in capitals") << QStringList{u"OTHER.TW"_s} << none << int(QMessageBox::No) << true;
        QTest::newRow("another kind of file refused") << QStringList{u"other.txt"_s} << none << 0 << false;
        QTest::newRow("two files refused") << QStringList{u"other.tw"_s, u"more.tw"_s} << none << 0 << false;
    }

    void dropOnWindow()
    {
        QFETCH(QStringList, names);
        QFETCH(Qt::KeyboardModifiers, keys);
        QFETCH(int, answer);
        QFETCH(bool, opened);
        const QByteArray otherImage = ShellHarness::imageWithChannels(20, 5);
        QStringList paths;
        for (const QString &name : names) {
            QVERIFY(ShellHarness::writeDataFile(filePath(name), otherImage));
            paths << filePath(name);
        }
        h->editRx(1, u"145.5"_s);
        if (answer)
            wr::MessageBox::setNextAnswer(QMessageBox::StandardButton(answer));
        QCOMPARE(dropFiles(paths, keys), answer != 0);
        if (answer)
            QTRY_COMPARE(ShellHarness::shownBoxes(), QStringList{u"Warning||File has been modified, save it now?"_s});
        QCOMPARE(wr::app().image.bytes() == otherImage, opened);
        QCOMPARE(h->gridRx(20), opened ? u"450.12500"_s : QString());
        QCOMPARE(h->gridRx(1), opened ? QString() : u"145.50000"_s);
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

    // Unsaved changes that New or Open is about to replace are kept as a
    // backup first, unless the newest backup holds them already; nothing is
    // kept when they were saved, or when nothing is replaced after all.
    void replacingKeepsUnsavedChanges_data()
    {
        QTest::addColumn<QString>("item");
        QTest::addColumn<bool>("edited");      // channel 7 typed into the grid
        QTest::addColumn<int>("answer");       // to New's question or Open's modified question
        QTest::addColumn<bool>("alreadyKept"); // the newest backup holds the edit
        QTest::addColumn<QString>("kept");     // the new backup's reason, "" for none
        const QString newItem = u"mnuFile_New"_s, open = u"mnuFile_Open"_s;
        QTest::newRow("New: kept before clearing") << newItem << true << int(QMessageBox::Ok) << false << u"before-new"_s;
        QTest::newRow("New cancelled") << newItem << true << int(QMessageBox::Cancel) << false << QString();
        QTest::newRow("New without changes") << newItem << false << int(QMessageBox::Ok) << false << QString();
        QTest::newRow("New, changes kept already") << newItem << true << int(QMessageBox::Ok) << true << QString();
        QTest::newRow("Open, not saved: kept before opening") << open << true << int(QMessageBox::No) << false
                                                              << u"before-open"_s;
        QTest::newRow("Open, saved first") << open << true << int(QMessageBox::Yes) << false << QString();
    }

    void replacingKeepsUnsavedChanges()
    {
        QFETCH(QString, item);
        QFETCH(bool, edited);
        QFETCH(int, answer);
        QFETCH(bool, alreadyKept);
        QFETCH(QString, kept);
        const QString other = filePath(u"other.tw"_s);
        QVERIFY(ShellHarness::writeDataFile(other, ShellHarness::imageWithChannels(20, 5)));
        if (edited)
            h->editRx(7, u"145.5"_s);
        if (alreadyKept)
            wr::Backups::keep(h->backupFolder(), h->window->workingImage(), wr::BackupReason::Read,
                              QDateTime::currentDateTime().addSecs(-60));
        wr::MessageBox::setNextAnswer(QMessageBox::StandardButton(answer));
        if (answer == QMessageBox::Yes)
            wr::FileDialog::setNextFileName(filePath(u"saved.tw"_s));
        wr::FileDialog::setNextFileName(other);
        h->trigger(item);

        const QList<wr::Backups::Entry> backups = wr::Backups::list(h->backupFolder());
        QCOMPARE(backups.size(), int(alreadyKept) + int(!kept.isEmpty()));
        QCOMPARE(h->gridRx(7).isEmpty(), answer != QMessageBox::Cancel);
        if (kept.isEmpty())
            return;
        QCOMPARE(wr::Backups::reasonName(backups.first().reason), kept);
        QCOMPARE(ShellHarness::rxOf(wr::DataFile::Read(backups.first().path).image, 7), u"145.50000"_s);
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

    // OK clears the image and keeps the file name. (Cancel changes nothing:
    // TestMainWindow's shortcuts, and the backups kept before New.)
    void fileNew()
    {
        wr::app().image.setBytes(ShellHarness::imageWithChannels(1, 10));
        wr::app().image.TakeSnapshot();
        wr::app().CurrentFileName = filePath(u"current.tw"_s);
        h->window->RefreshMainWindow();
        wr::MessageBox::setNextAnswer(QMessageBox::Ok);
        h->trigger(u"mnuFile_New"_s);
        QCOMPARE(ShellHarness::shownBoxes(), QStringList{u"Warning|Alert!|All data will be cleared."_s});
        QCOMPARE(wr::MessageBox::history().first().buttons, QMessageBox::Ok | QMessageBox::Cancel);
        QCOMPARE(wr::MessageBox::history().first().defaultButton, QMessageBox::Cancel);
        QCOMPARE(wr::app().image.bytes(), wr::test::freshImage().bytes());
        QCOMPARE(h->gridRx(1), QString());
        QVERIFY(!wr::app().image.IsModified());
        QCOMPARE(wr::app().CurrentFileName, filePath(u"current.tw"_s));
    }
};

QTEST_MAIN(TestFileCommands)
#include "TestFileCommands.moc"
