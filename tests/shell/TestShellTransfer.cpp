// Write and Read through the main window's menu against the virtual radio
// on a pseudo-terminal: the radio's memory, the refreshed channel list, the
// backup of what was read, the read-back of a write, the port dialog's
// connection test, and the whole round with the keyboard alone.
// Cancelled confirmations are in TestMainWindow's shortcuts; the port scan
// is tested with the link.
#include "Programs.h"
#include "ShellHarness.h"

#include "file/Backups.h"

#include <QAccessible>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>

using namespace Qt::StringLiterals;
using wr::test::ShellHarness;


class TestShellTransfer : public wr::test::ShellSuite
{
    Q_OBJECT

private:
    std::optional<wr::test::SimulatedRadios> m_radio;

    // The virtual radio registered as COM200 in the test's own data folder,
    // and the main window on that port; the radio's device, none when it
    // did not start.
    QString startRadioAndWindow(const QStringList &arguments, int language = 0)
    {
        // Only the virtual radio is listed: no real serial device joins in.
        wr::setSystemPortSource([] { return QList<wr::SystemPort>{}; });
        wr::setSerialPortsFolder(filePath(u"data/wrpd6t/serial-ports"_s));
        m_radio.emplace();
        h->storeSetting(u"gbPort"_s, u"200"_s);
        h->open(language);
        return m_radio->start(tempFolder(), 200, 1, arguments).value(200);
    }

    // Runs Read or Write, confirmed with OK; the first and last message are
    // the question and the completion.
    void transfer(const QString &item, const QString &question, const QString &done)
    {
        wr::MessageBox::clearHistory();
        wr::MessageBox::setNextAnswer(QMessageBox::Ok);
        trigger(item);
        const QStringList shown = ShellHarness::shownBoxes();
        QVERIFY(shown.size() >= 2);
        QCOMPARE(shown.first(), u"Question|WR-PD6T|"_s + question);
        QCOMPARE(shown.last().section(u'|', 2), done);
    }

    // A transfer that hangs must not hang the suite: its progress form closes.
    void guardAgainstHanging() const
    {
        QTimer::singleShot(60000, h->window.get(), [] {
            if (auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget()))
                dialog->reject();
        });
    }
    void trigger(const QString &item)
    {
        guardAgainstHanging();
        h->trigger(item);
    }

    void tearDown() override
    {
        ShellSuite::tearDown();
        m_radio.reset();
    }

private Q_SLOTS:
    // Write as it ends. A write that stops after its first row, however it
    // stops, ends with a warning after the prescribed messages: the radio
    // holds part of it. Verify After Writing, in the Set menu, is on unless
    // switched off, and remembered: on, a row the radio stores wrong is
    // named; off, the write is taken on trust.
    void write_data()
    {
        QTest::addColumn<int>("language");
        QTest::addColumn<QString>("verify"); // the setting; empty: never set
        QTest::addColumn<QStringList>("radio");  // the virtual radio's faults
        QTest::addColumn<bool>("cancelInForm");  // at 40 %; else the lost-connection question is answered Cancel
        QTest::addColumn<QStringList>("shown");  // how each message box begins: "Icon|title|text"

        QTest::newRow("Cancel at 40 %, in Simplified Chinese")
            << 1 << QString() << QStringList{} << true
            << QStringList{u"Question|WR-PD6T|向对讲机写入数据。"_s,
                           u"Warning|WR-PD6T|对讲机只写入了一部分：COM200 上的写入没有完成。\n请重新写入对讲机后再使用。"_s};
        QTest::newRow("the radio falls silent at 40 %, the question answered Cancel, in Traditional Chinese")
            << 2 << QString() << QStringList{u"--hang-up-after"_s, u"75"_s} << false
            << QStringList{u"Question|WR-PD6T|向對講機寫入數據。"_s, u"Critical|錯誤|檢測連接。重試或取消？"_s,
                           u"Warning|WR-PD6T|對講機只寫入了一部分：COM200 上的寫入沒有完成。\n請重新寫入對講機後再使用。"_s};
        // Refused before the first row: the radio is as it was.
        QTest::newRow("another radio answers")
            << 0 << QString() << QStringList{u"--wrong-id"_s} << false
            << QStringList{u"Question|WR-PD6T|Write data to radio."_s, u"Critical|Error|Check Connection. Retry or Cancel?"_s};
        QTest::newRow("verified by default: a row stored wrong is named")
            << 0 << QString() << QStringList{u"--corrupt-row"_s, u"120"_s} << false
            << QStringList{u"Question|WR-PD6T|Write data to radio.\nDo you wish to continue?"_s,
                           u"Warning|WR-PD6T|Writing completed, but reading it back found other bytes in row 120 "
                           "(address 0x0780). The radio is not as intended: write it again."_s};
        QTest::newRow("verifying switched off: taken on trust")
            << 0 << u"0"_s << QStringList{u"--corrupt-row"_s, u"120"_s} << false
            << QStringList{u"Question|WR-PD6T|Write data to radio."_s, u"Information|WR-PD6T|Writing completed!"_s};
    }

    void write()
    {
        QFETCH(int, language);
        QFETCH(QString, verify);
        QFETCH(QStringList, radio);
        QFETCH(bool, cancelInForm);
        QFETCH(QStringList, shown);
        if (!verify.isEmpty())
            h->storeSetting(u"VerifyWrites"_s, verify);
        QVERIFY(!startRadioAndWindow(radio, language).isEmpty());
        QAction *verifying = h->action(u"mnuVerify"_s);
        QVERIFY(verifying->isCheckable() && verifying->isVisible());
        QCOMPARE(verifying->isChecked(), verify.isEmpty());
        QCOMPARE(verifying->text(), QStringList({u"Verify After Writing(&V)"_s, u"写入后校验(&V)"_s, u"寫入後校驗(&V)"_s}).at(language));
        wr::MessageBox::clearHistory();
        wr::MessageBox::setNextAnswer(QMessageBox::Ok);
        if (!cancelInForm)
            wr::MessageBox::setNextAnswer(QMessageBox::Cancel);
        QTimer atForty;
        connect(&atForty, &QTimer::timeout, this, [&] {
            QWidget *form = QApplication::activeModalWidget();
            if (form && form->objectName() == u"frmclone" && form->findChild<QProgressBar *>(u"prgPercent"_s)->value() >= 75) {
                atForty.stop();
                QTest::mouseClick(form->findChild<QPushButton *>(u"cmdCancel"_s), Qt::LeftButton);
            }
        });
        if (cancelInForm)
            atForty.start(5);
        trigger(u"mnuWrite"_s);

        const QStringList boxes = ShellHarness::shownBoxes();
        QCOMPARE(boxes.size(), shown.size());
        for (qsizetype i = 0; i < shown.size(); ++i)
            QVERIFY2(boxes.at(i).startsWith(shown.at(i)), qPrintable(boxes.at(i)));
        verifying->trigger(); // the choice is remembered
        QCOMPARE(h->storedSetting(u"VerifyWrites"_s), verify.isEmpty() ? u"0"_s : u"1"_s);
    }

    // Every completed read is kept as a backup, and the unsaved changes it
    // replaces are kept before it, which its question says; a data folder
    // that cannot take a backup changes nothing about the read. (Without
    // changes the question is as prescribed: TestMainWindow's shortcuts.)
    void readKeepsBackup_data()
    {
        QTest::addColumn<bool>("blocked"); // by a file named "backups"
        QTest::newRow("unsaved changes kept first") << false;
        QTest::newRow("backups blocked") << true;
    }

    void readKeepsBackup()
    {
        QFETCH(bool, blocked);
        const QString inRadio = filePath(u"in-radio.tw"_s);
        QVERIFY(ShellHarness::writeDataFile(inRadio, ShellHarness::imageWithChannels(1, 40)));
        if (blocked)
            QVERIFY(QDir().mkpath(h->dataFolder()) && wr::test::writeFile(h->backupFolder(), "in the way"));
        QVERIFY(!startRadioAndWindow({u"--image"_s, inRadio}).isEmpty());
        h->editRx(7, u"145.5"_s);
        transfer(u"mnuRead"_s,
                 u"Read data from radio.\nDo you wish to continue?\n"
                 "The unsaved changes will be kept as a backup (File → Backups…)."_s,
                 u"Reading completed!"_s);

        QCOMPARE(wr::MessageBox::history().size(), 2); // the question and "Reading completed!"
        QCOMPARE(h->gridRx(40), u"440.12500"_s);
        QVERIFY(!wr::app().image.IsModified());
        const QList<wr::Backups::Entry> backups = wr::Backups::list(h->backupFolder());
        if (blocked) {
            QCOMPARE(wr::test::readFile(h->backupFolder()), QByteArray("in the way"));
            return;
        }
        QCOMPARE(backups.size(), 2);
        QCOMPARE(backups.first().reason, wr::BackupReason::Read);
        QCOMPARE(wr::DataFile::Read(backups.first().path).image, wr::app().image.bytes());
        QCOMPARE(backups.last().reason, wr::BackupReason::BeforeRead);
        QCOMPARE(ShellHarness::rxInFile(backups.last().path, 7), u"145.50000"_s);
    }

    // Read, edit a channel and write with the keyboard alone, as a user
    // without a pointer would: every message box is answered with Enter.
    // The read replaces the image, re-reads the band limits and takes the
    // snapshot; the write moves what was typed into the grid into the image
    // first, and the radio then holds the image's rows.
    void keyboardOnly()
    {
        const QString inRadio = filePath(u"in-radio.tw"_s);
        const QString saved = filePath(u"radio-after.tw"_s);
        const QByteArray radio = ShellHarness::imageWithChannels(1, 40);
        QVERIFY(ShellHarness::writeDataFile(inRadio, radio));
        QVERIFY(!startRadioAndWindow({u"--image"_s, inRadio, u"--save"_s, saved}).isEmpty());
        wr::app().BandLimits[0] = 140;
        wr::MessageBox::setAutoAnswer(false);
        QStringList answered;
        QTimer enter;
        connect(&enter, &QTimer::timeout, &enter, [&answered] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box || !box->isVisible())
                return;
            answered << box->text().section(u'\n', 0, 0);
            QTest::keyClick(box, Qt::Key_Return);
        });
        enter.start(20);
        guardAgainstHanging();
        h->window->show();
        QVERIFY(QTest::qWaitForWindowActive(h->window.get()));
        const auto keys = [](QKeyCombination key) { QTest::keyClick(QApplication::focusWidget(), key.key(), key.keyboardModifiers()); };

        keys(Qt::CTRL | Qt::Key_R);
        QCOMPARE(h->gridRx(5), u"435.12500"_s);
        const QByteArray read = wr::app().image.bytes();
        QCOMPARE(read.first(128 * 16), radio.first(128 * 16)); // channel rows
        QCOMPARE(read.sliced(416 * 16, 16), radio.sliced(416 * 16, 16)); // band limits
        QCOMPARE(wr::app().BandLimits[0], 136);
        QVERIFY(!wr::app().image.IsModified());
        // A desktop's window manager activates the main window again once
        // the dialogs close; the offscreen platform has none.
        h->window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(h->window.get()));
        QVERIFY(qobject_cast<QTableView *>(QApplication::focusWidget())); // the channel list kept the focus
        for (int row = 1; row < 5; ++row)
            keys(Qt::Key_Down);
        for (const QChar typed : u"146.525"_s) // each key to wherever the focus is, as typing goes
            QTest::keyClick(QApplication::focusWidget(), typed.toLatin1());
        keys(Qt::Key_Return);
        keys(Qt::CTRL | Qt::Key_W);
        QCOMPARE(answered, (QStringList{u"Read data from radio."_s, u"Reading completed!"_s, u"Write data to radio."_s,
                                        u"Writing completed! (verified)"_s}));
        QTRY_COMPARE_WITH_TIMEOUT(ShellHarness::rxInFile(saved, 5), u"146.52500"_s, 5000);
        const QByteArray stored = wr::DataFile::Read(saved).image, written = wr::app().image.bytes();
        QCOMPARE(stored.first(128 * 16), written.first(128 * 16));
        QCOMPARE(stored.sliced(200 * 16, 48 * 16), written.sliced(200 * 16, 48 * 16));
        QCOMPARE(stored.at(0x0CD0), '\0'); // the commit step's mark, cleared before the write
    }

    void connectionTestInPortDialog_data()
    {
        QTest::addColumn<int>("language");
        QTest::addColumn<QString>("typed");  // the port typed into the list; empty: COM200, the virtual radio's
        QTest::addColumn<QString>("waiting"); // shown while the test waits for the cable; empty: it does not wait
        QTest::addColumn<QString>("result");  // in the label once the test is over

        QTest::newRow("a cable without radio, in Simplified Chinese")
            << 1 << QString() << QString()
            << u"发送到 COM200 (%1) 的数据原样返回，除此之外没有任何应答：写频线已连接，但对讲机没有应答。\n"
               "请打开对讲机，并将写频线插头用力插到底，然后重新测试。"_s;
        QTest::newRow("no cable yet, the wait cancelled")
            << 0 << u"COM99"_s << u"No device for COM99 yet: plug the cable in now (10 s)\u2026"_s
            << u"There is no COM99 now. Serial ports present: COM200 (%1).\nPlug the programming cable in, or choose "
               "one of the ports present, then run the test again."_s;
    }

    // Test in the port dialog runs the connection test on the port in the
    // list, on the event loop: the dialog keeps answering, the button
    // cancels, and the result label says what a screen reader speaks.
    void connectionTestInPortDialog()
    {
        QFETCH(int, language);
        QFETCH(QString, typed);
        QFETCH(QString, waiting);
        QFETCH(QString, result);
        const QString device = startRadioAndWindow({u"--echo"_s});
        QVERIFY(!device.isEmpty());
        wr::app().LanguageIndex = quint8(language); // the dialog is told the window's language

        QString shownWhileWaiting, buttonWhileRunning, shownAfter, heard;
        qint64 longestStallMs = 0;
        wr::test::whenModal([&](QDialog *form) {
            auto *combo = form->findChild<QComboBox *>(u"Combo1"_s);
            auto *test = form->findChild<QPushButton *>(u"cmdTest"_s);
            auto *label = form->findChild<QLabel *>(u"lblTestResult"_s);
            if (!typed.isEmpty()) {
                combo->lineEdit()->selectAll();
                QTest::keyClicks(combo->lineEdit(), typed);
            }
            QElapsedTimer beat;
            QTimer heartbeat;
            QObject::connect(&heartbeat, &QTimer::timeout, [&] {
                longestStallMs = std::max(longestStallMs, beat.restart());
            });
            beat.start();
            heartbeat.start(5);
            QTest::mouseClick(test, Qt::LeftButton);
            buttonWhileRunning = test->text();
            if (!waiting.isEmpty()) {
                QTRY_VERIFY(label->text().contains(u"plug"_s));
                shownWhileWaiting = label->text();
                QTest::mouseClick(test, Qt::LeftButton); // Cancel Test
            }
            QTRY_VERIFY_WITH_TIMEOUT(test->text() != buttonWhileRunning, 10000);
            shownAfter = label->text();
            // A label without a name of its own is named by its text, and
            // tells a screen reader each time that changes.
            heard = QAccessible::queryAccessibleInterface(label)->text(QAccessible::Name);
            heartbeat.stop();
            QTest::mouseClick(form->findChild<QPushButton *>(u"cmdCancel"_s), Qt::LeftButton);
        });
        h->trigger(u"mnuPort"_s);

        QCOMPARE(buttonWhileRunning, language == 0 ? u"Cancel &Test"_s : u"取消测试(&T)"_s);
        QCOMPARE(shownWhileWaiting, waiting);
        QCOMPARE(shownAfter, result.replace(u"%1"_s, device));
        QCOMPARE(heard, shownAfter);
        QVERIFY2(longestStallMs < 100, qPrintable(QString::number(longestStallMs)));
        QCOMPARE(int(wr::app().PortNumber), 200); // Cancel changed nothing
    }
};

QTEST_MAIN(TestShellTransfer)
#include "TestShellTransfer.moc"
