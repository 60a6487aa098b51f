#include "LinkTestData.h"
#include "RadioOnPty.h"
#include "TestSuite.h"

#include "core/AppState.h"
#include "link/CloneEngine.h"
#include "link/TransferTexts.h"
#include "link/frmclone.h"
#include "ui/MessageBox.h"

#include <QAccessible>
#include <QLabel>
#include <QProgressBar>
#include <QScopeGuard>
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
    void transfer_data()
    {
        QTest::addColumn<int>("port");
        QTest::addColumn<int>("language");
        QTest::addColumn<bool>("read");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<QString>("label"); // when the form closes
        QTest::addColumn<QMessageBox::Icon>("icon");
        QTest::addColumn<QString>("message");

        QTest::newRow("read from the radio")
            << 200 << 0 << true << u"Read data from radio"_s << u"Completion percentage:  100%"_s
            << QMessageBox::Information << u"Reading completed!"_s;
        QTest::newRow("port that will not open, in Chinese")
            << 201 << 1 << true << u"从对讲机读取数据"_s << u"完成进度:  0%"_s << QMessageBox::Warning
            << u"COM201: No such file or directory\n请检查写频线是否插好，以及所选端口是否正确。\n"
               "请运行连接测试：设置 \u2192 通信端口 \u2192 测试。"_s;
        QTest::newRow("verified write, in Traditional Chinese")
            << 200 << 2 << false << u"向對講機寫入數據"_s << u"完成進度:  99%"_s << QMessageBox::Information
            << u"成功寫完（已校驗）"_s;
    }

    void transfer()
    {
        QFETCH(int, port);
        QFETCH(int, language);
        QFETCH(bool, read);
        const bool moves = port == 200;

        test::RadioOnPty line(filePath(u"serial-ports"_s)); // COM200
        QVERIFY2(line.isOpen(), qPrintable(line.errorString()));
        test::fillPattern(line.radio.memory(), 9);
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
        QTEST(form.windowTitle(), "caption");
        QTRY_VERIFY_WITH_TIMEOUT(!form.isVisible(), 60000);

        QCOMPARE(form.result(), int{moves ? QDialog::Accepted : QDialog::Rejected});
        QTEST(form.findChild<QLabel *>(u"lblPercent"_s)->text(), "label");
        QCOMPARE(completed.size(), moves && read ? 1 : 0);
        QCOMPARE(int{state.PortNumber}, port);
        const QList<MessageBox::Shown> shown = MessageBox::history();
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown.first().title, u"WR-PD6T"_s);
        QTEST(shown.first().icon, "icon");
        QTEST(shown.first().text, "message");
        QCOMPARE(statuses.contains(u"正在校驗\u2026"_s), moves && !read); // only the write, in Traditional Chinese

        // Only a read changes the image and its band limits, and takes a new
        // snapshot. (Which rows a transfer moves, and that each arrives whole,
        // is tried in TestLinkEndToEnd.)
        QCOMPARE(state.image == before, !(moves && read));
        QCOMPARE(state.BandLimits == limitsBefore, !(moves && read));
        QVERIFY(!state.image.IsModified());
    }

    // The radio stops answering after five rows: the line under the bar says
    // that the form retries (and tells a screen reader so), and Cancel ends the
    // transfer with the rows read.
    void cancelWhileRetrying()
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
        QAccessibleInterface *bar = QAccessible::queryAccessibleInterface(form.findChild<QProgressBar *>(u"prgPercent"_s));
        // Its value out of its maximum is the percentage a screen reader says.
        QCOMPARE(QStringList({bar->text(QAccessible::Name), bar->valueInterface()->currentValue().toString(),
                              bar->valueInterface()->maximumValue().toString()}),
                 (QStringList{u"完成進度"_s, u"0"_s, QString::number(CloneEngine::ProgressMaximum)}));
        QTest::mouseClick(cancel, Qt::LeftButton);

        QVERIFY(!form.isVisible());
        QCOMPARE(form.result(), int{QDialog::Rejected});
        QVERIFY(!form.isTransferring());
        QVERIFY(MessageBox::history().isEmpty());
        for (int row = 0; row < MemoryImage::RowCount; ++row)
            QCOMPARE(state.image.row(row), row < 5 ? line.radio.memory().row(row) : before.row(row));
    }

    // A screen reader hears the line under the bar each time it changes: its
    // name is its text, and a change of it is announced. Events reach a screen
    // reader only through the platform's accessibility bridge, so this runs on
    // the accessibility bus (test_frmclone_announced).
    void retryLineIsAnnounced()
    {
        if (!qEnvironmentVariableIsSet("QT_LINUX_ACCESSIBILITY_ALWAYS_ON"))
            QSKIP("needs the accessibility bus: run as test_frmclone_announced");
        QTRY_VERIFY_WITH_TIMEOUT(QAccessible::isActive(), 10000);
        static QList<std::pair<QAccessible::Event, QObject *>> told;
        told.clear();
        const QAccessible::UpdateHandler bridge = QAccessible::installUpdateHandler(
            [](QAccessibleEvent *event) { told.append({event->type(), event->object()}); });
        const auto restore = qScopeGuard([bridge] { QAccessible::installUpdateHandler(bridge); });
        test::RadioOnPty line(filePath(u"serial-ports"_s), sim::RadioFaults{.hangUpAfterRows = 5});
        QVERIFY2(line.isOpen(), qPrintable(line.errorString()));
        test::transferState(0, true, 200);

        frmclone form;
        form.show();
        auto *status = form.findChild<QLabel *>(u"lblStatus"_s);
        QTRY_VERIFY_WITH_TIMEOUT(status->text().contains(u"retrying"_s), 10000);
        QVERIFY(told.contains({QAccessible::NameChanged, status}));
        QCOMPARE(QAccessible::queryAccessibleInterface(status)->text(QAccessible::Name), status->text());
        form.close();
    }
};

QTEST_MAIN(TestFrmclone)
#include "TestFrmclone.moc"
