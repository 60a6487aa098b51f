#include "LinkTestData.h"
#include "RadioOnPty.h"
#include "TestSuite.h"

#include "core/AppState.h"
#include "link/TransferTexts.h"
#include "link/frmclone.h"
#include "ui/MessageBox.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using namespace wr;
using namespace Qt::Literals::StringLiterals;

class TestFrmclone : public test::Suite
{
    Q_OBJECT

    void setUp() override
    {
        MessageBox::reset();
        MessageBox::setAutoAnswer(true);
    }
    void tearDown() override { MessageBox::reset(); }

private Q_SLOTS:
    void transfer_data();
    void transfer();
    void cancelWhileRetrying_data();
    void cancelWhileRetrying();
};

void TestFrmclone::transfer_data()
{
    QTest::addColumn<int>("port");
    QTest::addColumn<int>("language");
    QTest::addColumn<bool>("read");
    QTest::addColumn<int>("corruptRow"); // written wrong by the radio; -1: none. A write is verified.
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QString>("label"); // when the form closes
    QTest::addColumn<QMessageBox::Icon>("icon");
    QTest::addColumn<QString>("message");

    QTest::newRow("read from the radio")
        << 200 << 0 << true << -1 << u"Read data from radio"_s << u"Completion percentage:  100%"_s
        << QMessageBox::Information << u"Reading completed!"_s;
    QTest::newRow("port that will not open, in Chinese")
        << 201 << 1 << true << -1 << u"从对讲机读取数据"_s << u"完成进度:  0%"_s << QMessageBox::Warning
        << u"COM201: No such file or directory\n请检查写频线是否插好，以及所选端口是否正确。\n"
           "请运行连接测试：设置 \u2192 通信端口 \u2192 测试。"_s;
    QTest::newRow("verified write, in Traditional Chinese")
        << 200 << 2 << false << -1 << u"向對講機寫入數據"_s << u"完成進度:  99%"_s << QMessageBox::Information
        << u"成功寫完（已校驗）"_s;
    QTest::newRow("write read back with a row stored wrong")
        << 200 << 0 << false << 401 << u"Write data to radio"_s << u"Completion percentage:  99%"_s
        << QMessageBox::Warning
        << u"Writing completed, but reading it back found other bytes in row 401 (address 0x1910). The radio is "
           "not as intended: write it again."_s;
}

void TestFrmclone::transfer()
{
    QFETCH(int, port);
    QFETCH(int, language);
    QFETCH(bool, read);
    QFETCH(int, corruptRow);
    QFETCH(QString, caption);
    QFETCH(QString, label);
    QFETCH(QMessageBox::Icon, icon);
    QFETCH(QString, message);
    const bool moves = port == 200;

    test::RadioOnPty line(filePath(u"serial-ports"_s), sim::RadioFaults{.corruptRow = corruptRow}); // COM200
    QVERIFY2(line.isOpen(), qPrintable(line.errorString()));
    test::fillPattern(line.radio.memory(), 9);
    const MemoryImage radioBefore = line.radio.memory();
    AppState &state = test::transferState(language, read, port);
    test::fillPattern(state.image, 10);
    state.image.TakeSnapshot();
    const MemoryImage before = state.image;
    const BandLimitArray limitsBefore = state.BandLimits;

    frmclone form;
    form.setVerifyAfterWrite(true);
    QSignalSpy completed(&form, &frmclone::readCompleted);
    // What the line under the bar said while the form was up.
    QStringList statuses;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        const QString text = form.findChild<QLabel *>(u"lblStatus"_s)->text();
        if (statuses.isEmpty() || statuses.last() != text)
            statuses.append(text);
    });
    watch.start(5);
    form.show();
    QVERIFY(form.isModal());
    QCOMPARE(form.windowTitle(), caption);
    QTRY_VERIFY_WITH_TIMEOUT(!form.isVisible(), 60000);

    QCOMPARE(form.result(), int{moves && corruptRow < 0 ? QDialog::Accepted : QDialog::Rejected});
    QCOMPARE(form.findChild<QLabel *>(u"lblPercent"_s)->text(), label);
    QCOMPARE(completed.size(), moves && read ? 1 : 0);
    QCOMPARE(int{state.PortNumber}, port);
    const QList<MessageBox::Shown> shown = MessageBox::history();
    QCOMPARE(shown.size(), 1);
    QCOMPARE(shown.first().title, u"WR-PD6T"_s);
    QCOMPARE(shown.first().icon, icon);
    QCOMPARE(shown.first().text, message);
    QCOMPARE(statuses.contains(statusText({TransferStatus::Kind::Verifying}, language)), moves && !read);

    const QList<int> moved = moves ? test::transferredRows(read) : QList<int>{};
    for (int row = 0; row < MemoryImage::RowCount; ++row) {
        if (read) {
            QCOMPARE(state.image.row(row), moved.contains(row) ? line.radio.memory().row(row) : before.row(row));
            continue;
        }
        // Written, read back, and left as it was in the image.
        QCOMPARE(state.image.row(row), before.row(row));
        if (row != corruptRow)
            QCOMPARE(line.radio.memory().row(row), moved.contains(row) ? before.row(row) : radioBefore.row(row));
    }
    QVERIFY(!state.image.IsModified());
    QCOMPARE(state.BandLimits, moves && read ? LoadBandLimits(line.radio.memory()) : limitsBefore);
}

void TestFrmclone::cancelWhileRetrying_data()
{
    QTest::addColumn<bool>("read");
    QTest::addColumn<int>("language");
    QTest::addColumn<QString>("status");  // under the bar as the form retries
    QTest::addColumn<QString>("warning"); // once Cancel is clicked; empty: no message

    QTest::newRow("read, in Traditional Chinese: no message")
        << true << 2 << u"COM200 無應答，正在重試（第 2 次，共 7 次）\u2026"_s << QString();
    QTest::newRow("write, in Simplified Chinese: the radio is only partly written")
        << false << 1 << u"COM200 无应答，正在重试（第 2 次，共 7 次）\u2026"_s
        << u"对讲机只写入了一部分：COM200 上的写入没有完成。\n请重新写入对讲机后再使用。"_s;
}

// The radio stops answering after five rows: the line under the bar says
// that the form retries, and Cancel ends the transfer. The rows read stay in
// the image; the rows written stay in the radio, and the form says so.
void TestFrmclone::cancelWhileRetrying()
{
    QFETCH(bool, read);
    QFETCH(int, language);
    QFETCH(QString, status);
    QFETCH(QString, warning);
    test::RadioOnPty line(filePath(u"serial-ports"_s), sim::RadioFaults{.hangUpAfterRows = 5});
    QVERIFY2(line.isOpen(), qPrintable(line.errorString()));
    test::fillPattern(line.radio.memory(), 1);
    AppState &state = test::transferState(language, read, 200);
    test::fillPattern(state.image, 2);
    const MemoryImage before = state.image;

    frmclone form;
    form.show();
    auto *shown = form.findChild<QLabel *>(u"lblStatus"_s);
    auto *cancel = form.findChild<QPushButton *>(u"cmdCancel"_s);
    QVERIFY(shown && cancel);
    QCOMPARE(cancel->text(), u"取消"_s);
    QTRY_COMPARE_WITH_TIMEOUT(shown->text(), status, 10000);
    QCOMPARE(form.findChild<QLabel *>(u"lblPercent"_s)->text(), language == 1 ? u"完成进度:  0%"_s : u"完成進度:  0%"_s);
    QTest::mouseClick(cancel, Qt::LeftButton);

    QVERIFY(!form.isVisible());
    QCOMPARE(form.result(), int{QDialog::Rejected});
    QVERIFY(!form.isTransferring());
    QStringList boxes;
    for (const MessageBox::Shown &box : MessageBox::history())
        boxes.append(u"%1|%2|%3"_s.arg(box.icon).arg(box.title, box.text));
    QCOMPARE(boxes, warning.isEmpty() ? QStringList{} : QStringList{u"%1|WR-PD6T|"_s.arg(QMessageBox::Warning) + warning});
    for (int row = 0; row < 5; ++row) // moved before the radio fell silent
        QCOMPARE(state.image.row(row), line.radio.memory().row(row));
    for (int row = 5; row < MemoryImage::RowCount && read; ++row)
        QCOMPARE(state.image.row(row), before.row(row));
}

QTEST_MAIN(TestFrmclone)
#include "TestFrmclone.moc"
