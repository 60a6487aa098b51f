#include "LinkTestData.h"
#include "RadioOnPty.h"
#include "TestSupport.h"

#include "core/AppState.h"
#include "link/frmclone.h"
#include "shell/MessageBox.h"

#include <QDir>
#include <QLabel>
#include <QProgressBar>
#include <QSerialPort>
#include <QSignalSpy>
#include <QTest>

using namespace wr;
using namespace Qt::Literals::StringLiterals;

class TestFrmclone : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { test::initTestProcess(); }
    void init()
    {
        m_fixture = std::make_unique<test::Fixture>();
        MessageBox::reset();
        MessageBox::setAutoAnswer(true);
    }
    void cleanup()
    {
        MessageBox::reset();
        m_fixture.reset();
    }

    void captions_data();
    void captions();
    void transfer_data();
    void transfer();
    void closingMidReadKeepsRowsAndFreesPort();

private:
    std::unique_ptr<test::Fixture> m_fixture;
};

void TestFrmclone::captions_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<int>("direction");
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QString>("label");

    QTest::newRow("English read") << 0 << 0 << u"Read data from radio"_s << u"Completion percentage:  0%"_s;
    QTest::newRow("English write") << 0 << 1 << u"Write data to radio"_s << u"Completion percentage:  0%"_s;
    QTest::newRow("Simplified read") << 1 << 0 << u"从对讲机读取数据"_s << u"完成进度:  0%"_s;
    QTest::newRow("Simplified write") << 1 << 1 << u"向对讲机写入数据"_s << u"完成进度:  0%"_s;
    QTest::newRow("Traditional read") << 2 << 0 << u"從對講機讀取數據"_s << u"完成進度:  0%"_s;
    QTest::newRow("Traditional write") << 2 << 1 << u"向對講機寫入數據"_s << u"完成進度:  0%"_s;
}

void TestFrmclone::captions()
{
    QFETCH(int, language);
    QFETCH(int, direction);
    QFETCH(QString, caption);
    QFETCH(QString, label);
    app().LanguageIndex = static_cast<quint8>(language);
    app().LinkDirection = static_cast<quint8>(direction);

    frmclone form; // not shown: no transfer starts
    QCOMPARE(form.windowTitle(), caption);
    QCOMPARE(form.findChild<QLabel *>(u"lblPercent"_s)->text(), label);
    QCOMPARE(form.findChild<QProgressBar *>(u"prgPercent"_s)->maximum(), 188);
    // WRPD6T_SCREENSHOTS=<folder> keeps a picture of each caption for review.
    const QString folder = qEnvironmentVariable("WRPD6T_SCREENSHOTS");
    if (!folder.isEmpty() && QDir().mkpath(folder))
        QVERIFY(form.grab().save(folder + u"/frmclone-%1-%2.png"_s.arg(language).arg(direction)));
}

void TestFrmclone::transfer_data()
{
    QTest::addColumn<int>("port");
    QTest::addColumn<int>("result");
    QTest::addColumn<QMessageBox::Icon>("icon");

    QTest::newRow("read from the radio") << 200 << int{QDialog::Accepted} << QMessageBox::Information;
    QTest::newRow("port that will not open") << 201 << int{QDialog::Rejected} << QMessageBox::Warning;
}

void TestFrmclone::transfer()
{
    QFETCH(int, port);
    QFETCH(int, result);
    QFETCH(QMessageBox::Icon, icon);
    const bool reads = result == QDialog::Accepted;

    test::RadioOnPty line(m_fixture->path(u"serial-ports"_s)); // on COM200
    QVERIFY2(line.isOpen(), qPrintable(line.errorString()));
    test::fillPattern(line.radio.memory(), 9);
    AppState &state = app();
    state.LanguageIndex = 0;
    state.LinkDirection = 0;
    state.PortNumber = static_cast<quint8>(port);
    test::fillPattern(state.image, 10);
    state.image.TakeSnapshot();
    const MemoryImage before = state.image;
    const BandLimitArray limitsBefore = state.BandLimits;

    frmclone form;
    QSignalSpy completed(&form, &frmclone::readCompleted);
    QSignalSpy portChanged(&form, &frmclone::portNumberChanged);
    form.show();
    QVERIFY(form.isModal());
    QTRY_VERIFY_WITH_TIMEOUT(!form.isVisible(), 30000);

    QCOMPARE(form.result(), result);
    QCOMPARE(completed.size(), reads ? 1 : 0);
    QCOMPARE(portChanged.size(), 0);
    QCOMPARE(int{state.PortNumber}, port);
    const QList<MessageBox::Shown> shown = MessageBox::history();
    QCOMPARE(shown.size(), 1);
    QCOMPARE(shown.first().title, u"WR-PD6T"_s);
    QCOMPARE(shown.first().icon, icon);
    QVERIFY(reads ? shown.first().text == u"Reading completed!"_s : !shown.first().text.isEmpty());
    if (reads)
        QCOMPARE(form.findChild<QLabel *>(u"lblPercent"_s)->text(), u"Completion percentage:  100%"_s);

    const QList<int> moved = reads ? test::transferredRows(true) : QList<int>{};
    for (int row = 0; row < MemoryImage::RowCount; ++row)
        QCOMPARE(state.image.row(row), moved.contains(row) ? line.radio.memory().row(row) : before.row(row));
    QVERIFY(!state.image.IsModified());
    QCOMPARE(state.BandLimits, reads ? LoadBandLimits(line.radio.memory()) : limitsBefore);
}

void TestFrmclone::closingMidReadKeepsRowsAndFreesPort()
{
    test::RadioOnPty line(m_fixture->path(u"serial-ports"_s));
    QVERIFY(line.isOpen());
    test::fillPattern(line.radio.memory(), 14);
    AppState &state = app();
    state.LinkDirection = 0;
    state.PortNumber = 200;
    test::fillPattern(state.image, 15);
    state.image.TakeSnapshot();
    const MemoryImage before = state.image;
    const BandLimitArray limitsBefore = state.BandLimits;

    frmclone form;
    form.show();
    auto *bar = form.findChild<QProgressBar *>(u"prgPercent"_s);
    QTRY_VERIFY_WITH_TIMEOUT(bar->value() >= 20, 10000);
    QTest::keyClick(&form, Qt::Key_Escape);
    QVERIFY(!form.isVisible() && !form.isTransferring());
    const int rowsRead = bar->value();
    QVERIFY(rowsRead < 128);

    QTest::qWait(100); // a reply still on its way must not land anywhere
    for (int row = 0; row < MemoryImage::RowCount; ++row)
        QCOMPARE(state.image.row(row), row < rowsRead ? line.radio.memory().row(row) : before.row(row));
    QVERIFY(state.image.IsModified()); // no snapshot: the old data is what the image is compared with
    QCOMPARE(state.BandLimits, limitsBefore);
    QVERIFY(MessageBox::history().isEmpty());
    // The port is free again: nobody else could open it while the form held it.
    QSerialPort port(findPort(200)->devicePath);
    QVERIFY2(port.open(QIODevice::ReadWrite), qPrintable(port.errorString()));
}

QTEST_MAIN(TestFrmclone)
#include "TestFrmclone.moc"
