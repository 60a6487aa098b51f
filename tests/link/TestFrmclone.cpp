#include "LinkTestData.h"
#include "RadioOnPty.h"
#include "TestSuite.h"

#include "core/AppState.h"
#include "link/frmclone.h"
#include "ui/MessageBox.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

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
    void cancelWhileRetrying();
};

void TestFrmclone::transfer_data()
{
    QTest::addColumn<int>("port");
    QTest::addColumn<int>("language");
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QString>("label"); // when the form closes

    QTest::newRow("read from the radio") << 200 << 0 << u"Read data from radio"_s << u"Completion percentage:  100%"_s;
    QTest::newRow("port that will not open, in Chinese") << 201 << 1 << u"从对讲机读取数据"_s << u"完成进度:  0%"_s;
}

void TestFrmclone::transfer()
{
    QFETCH(int, port);
    QFETCH(int, language);
    QFETCH(QString, caption);
    QFETCH(QString, label);
    const bool reads = port == 200;

    test::RadioOnPty line(filePath(u"serial-ports"_s)); // on COM200
    QVERIFY2(line.isOpen(), qPrintable(line.errorString()));
    test::fillPattern(line.radio.memory(), 9);
    AppState &state = test::transferState(language, true, port);
    test::fillPattern(state.image, 10);
    state.image.TakeSnapshot();
    const MemoryImage before = state.image;
    const BandLimitArray limitsBefore = state.BandLimits;

    frmclone form;
    QSignalSpy completed(&form, &frmclone::readCompleted);
    form.show();
    QVERIFY(form.isModal());
    QCOMPARE(form.windowTitle(), caption);
    QTRY_VERIFY_WITH_TIMEOUT(!form.isVisible(), 30000);

    QCOMPARE(form.result(), int{reads ? QDialog::Accepted : QDialog::Rejected});
    QCOMPARE(form.findChild<QLabel *>(u"lblPercent"_s)->text(), label);
    QCOMPARE(completed.size(), reads ? 1 : 0);
    QCOMPARE(int{state.PortNumber}, port);
    const QList<MessageBox::Shown> shown = MessageBox::history();
    QCOMPARE(shown.size(), 1);
    QCOMPARE(shown.first().title, u"WR-PD6T"_s);
    QCOMPARE(shown.first().icon, reads ? QMessageBox::Information : QMessageBox::Warning);
    QCOMPARE(shown.first().text, reads ? u"Reading completed!"_s
                                       : u"COM201: No such file or directory\n请检查写频线是否插好，以及所选端口是否正确。"_s);

    const QList<int> moved = reads ? test::transferredRows(true) : QList<int>{};
    for (int row = 0; row < MemoryImage::RowCount; ++row)
        QCOMPARE(state.image.row(row), moved.contains(row) ? line.radio.memory().row(row) : before.row(row));
    QVERIFY(!state.image.IsModified());
    QCOMPARE(state.BandLimits, reads ? LoadBandLimits(line.radio.memory()) : limitsBefore);
}

// The radio stops answering after five rows: the line under the bar says
// that the form retries, and Cancel ends the transfer with the rows read.
void TestFrmclone::cancelWhileRetrying()
{
    test::RadioOnPty line(filePath(u"serial-ports"_s), sim::RadioFaults{.hangUpAfterRows = 5});
    QVERIFY2(line.isOpen(), qPrintable(line.errorString()));
    test::fillPattern(line.radio.memory(), 1);
    AppState &state = test::transferState(2, true, 200);
    test::fillPattern(state.image, 2);
    const MemoryImage before = state.image;

    frmclone form;
    form.show();
    auto *status = form.findChild<QLabel *>(u"lblStatus"_s);
    auto *cancel = form.findChild<QPushButton *>(u"cmdCancel"_s);
    QVERIFY(status && cancel);
    QCOMPARE(cancel->text(), u"取消"_s);
    QTRY_COMPARE_WITH_TIMEOUT(status->text(), u"COM200 無應答，正在重試（第 2 次，共 7 次）\u2026"_s, 10000);
    QCOMPARE(form.findChild<QLabel *>(u"lblPercent"_s)->text(), u"完成進度:  0%"_s);
    QTest::mouseClick(cancel, Qt::LeftButton);

    QVERIFY(!form.isVisible());
    QCOMPARE(form.result(), int{QDialog::Rejected});
    QVERIFY(!form.isTransferring());
    QVERIFY(MessageBox::history().isEmpty());
    for (int row = 0; row < MemoryImage::RowCount; ++row)
        QCOMPARE(state.image.row(row), row < 5 ? line.radio.memory().row(row) : before.row(row));
}

QTEST_MAIN(TestFrmclone)
#include "TestFrmclone.moc"
