// Whole transfers through the real serial driver, a real pseudo-terminal and
// the virtual radio, with each way the radio can misbehave.

#include "LinkTestData.h"
#include "RadioOnPty.h"
#include "TestSuite.h"

#include "core/AppState.h"
#include "core/Language.h"
#include "link/CloneBatch.h"
#include "link/CloneDriver.h"
#include "link/CloneEngine.h"
#include "link/TransferTexts.h"

#include <QElapsedTimer>
#include <QSerialPort>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <sys/resource.h>
#include <unistd.h>

using namespace wr;
using namespace Qt::Literals::StringLiterals;
using wr::sim::RadioFaults;
using Kind = wr::TransferOutcome::Kind;

Q_DECLARE_METATYPE(wr::sim::RadioFaults)

namespace {

// Prompts that answer the lost-connection question with `retry` and keep
// what the transfer asked and reported.
struct Recorder
{
    QList<TransferOutcome> asked, reported;
    std::function<bool()> retry = [] { return false; };

    CloneDriver::Prompts prompts()
    {
        return {[this](const TransferOutcome &outcome) { return asked.append(outcome), retry(); },
                [this](const TransferOutcome &outcome) { reported.append(outcome); }};
    }
};

} // namespace

enum class PortSetup {
    NoDevice,       // COM201 is not listed at all
    HeldByAnother,  // COM200 is open in another QSerialPort
    NotPermitted,   // this user may not open COM200's device
    ScanMeetsHeld,  // COM200 stays silent; the port search then meets COM199, held open
};
Q_DECLARE_METATYPE(PortSetup)

class TestLinkEndToEnd : public test::Suite
{
    Q_OBJECT

private Q_SLOTS:
    void transfer_data()
    {
        QTest::addColumn<bool>("read");
        QTest::addColumn<RadioFaults>("faults");
        QTest::addColumn<bool>("pacing"); // bytes at 9600 baud, where their timing is the fault
        QTest::addColumn<int>("rowsMoved"); // 188 read or 187 written when complete; else a question, answered Cancel

        QTest::newRow("read, noise before the ACK") << true << RadioFaults{.noiseBeforeAck = true} << false << 188;
        QTest::newRow("write, a dropped reply and a late second ACK")
            << false << RadioFaults{.dropReplyRow = 200, .duplicateAckRow = 40} << false << 187;
        QTest::newRow("read, late replies") << true << RadioFaults{.delayMs = 20} << false << 188;
        QTest::newRow("silent: scan, Cancel") << true << RadioFaults{.silent = true} << false << 0;
        QTest::newRow("hang-up, Cancel keeps 20 rows") << true << RadioFaults{.hangUpAfterRows = 20} << false << 20;
        QTest::newRow("refused writes: radio untouched") << false << RadioFaults{.nakWrites = true} << false << 0;
        // The answer to a resend follows the late answer at once, and the rest
        // of a split answer comes after the time-out; no byte of either may end
        // up in another row.
        QTest::newRow("read, replies past and across the time-out")
            << true << RadioFaults{.lateReplyRow = 40, .splitReplyRow = 100} << true << 188;
    }

    void transfer()
    {
        QFETCH(bool, read);
        QFETCH(RadioFaults, faults);
        QFETCH(bool, pacing);
        QFETCH(int, rowsMoved);
        const bool completes = rowsMoved >= 187;

        test::RadioOnPty line(filePath(u"serial-ports"_s), faults, pacing);
        QVERIFY2(line.isOpen(), qPrintable(line.errorString()));
        test::fillPattern(line.radio.memory(), 7);
        const MemoryImage radioBefore = line.radio.memory();
        AppState &state = test::transferState(0, read, 200);
        test::fillPattern(state.image, 8);
        state.image.TakeSnapshot();
        const MemoryImage imageBefore = state.image;

        CloneEngine engine(state);
        Recorder recorder;
        CloneDriver driver(engine, recorder.prompts());
        driver.start();
        QTRY_VERIFY_WITH_TIMEOUT(!driver.isRunning(), 60000);
        QCOMPARE(engine.outcome().succeeded(), completes);
        QCOMPARE(recorder.asked.size(), completes ? 0 : 1);
        QCOMPARE(recorder.reported.size(), completes ? 1 : 0);
        // Row by row: what moved is an exact copy, everything else is as it was.
        const QList<int> moved = test::transferredRows(read).first(rowsMoved);
        for (int row = 0; row < MemoryImage::RowCount; ++row) {
            if (read)
                QCOMPARE(state.image.row(row), moved.contains(row) ? radioBefore.row(row) : imageBefore.row(row));
            else
                QCOMPARE(line.radio.memory().row(row), moved.contains(row) ? imageBefore.row(row) : radioBefore.row(row));
        }
        QCOMPARE(state.image.IsModified(), read && !completes && rowsMoved > 0);
        QVERIFY(read || state.image == imageBefore);
        QCOMPARE(line.radio.sessionsEnded(), completes ? 1 : 0); // "END" took the radio out of clone mode
    }

    // The cable is pulled in the middle of a read. The transfer goes straight to
    // the lost-connection question and, while it is up, costs no more CPU than
    // waiting; Retry reopens the port and reports that the device is gone.
    void cablePulled()
    {
        test::RadioOnPty line(filePath(u"serial-ports"_s));
        QVERIFY2(line.isOpen(), qPrintable(line.errorString()));
        test::fillPattern(line.radio.memory(), 3);
        const QString device = line.devicePath();
        AppState &state = test::transferState(0, true, 200);
        test::fillPattern(state.image, 4);
        const MemoryImage before = state.image;

        QElapsedTimer sincePulled;
        QTimer puller;
        QObject::connect(&puller, &QTimer::timeout, [&] {
            if (line.radio.rowsAnswered() >= 20 && !sincePulled.isValid()) {
                line.hangUp();
                sincePulled.start();
                puller.stop();
            }
        });
        puller.start(1);

        const auto cpuSeconds = [] {
            rusage usage{};
            getrusage(RUSAGE_SELF, &usage);
            return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec)
                + double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
        };
        qint64 askedAfterMs = -1;
        double questionCpu = -1;
        Recorder recorder;
        recorder.retry = [&] {
            askedAfterMs = sincePulled.isValid() ? sincePulled.elapsed() : -1;
            // The question stays up for a second, its event loop running.
            const double start = cpuSeconds();
            QTest::qWait(1000);
            questionCpu = cpuSeconds() - start;
            return true;
        };
        CloneEngine engine(state);
        CloneDriver driver(engine, recorder.prompts());
        driver.start();
        QTRY_VERIFY_WITH_TIMEOUT(!driver.isRunning(), 20000);

        QCOMPARE(recorder.asked.size(), 1);
        const TransferOutcome &lost = recorder.asked.first();
        QCOMPARE(lost.kind, Kind::PortLost);
        QCOMPARE(lost.port, 200);
        QCOMPARE(lost.problem.device, device);
        QVERIFY2(askedAfterMs >= 0 && askedAfterMs < 1000, qPrintable(QString::number(askedAfterMs)));
        // Waiting costs next to nothing; a loop polling the dead port costs the whole second.
        QVERIFY2(questionCpu >= 0 && questionCpu < 0.15, qPrintable(QString::number(questionCpu)));
        // Retry finds the device gone, and names it by the device it had.
        QCOMPARE(engine.outcome().kind, Kind::PortFailed);
        QCOMPARE(engine.outcome().problem.kind, PortProblem::Kind::Missing);
        QVERIFY2(outcomeText(engine.outcome(), English).startsWith(u"COM200 (%1): No such file or directory"_s.arg(device)),
                 qPrintable(outcomeText(engine.outcome(), English)));
        // The rows read before the cable went are kept, nothing is snapshotted.
        for (int row = 0; row < 10; ++row)
            QCOMPARE(state.image.row(row), line.radio.memory().row(row));
        for (int row = 128; row < 200; ++row)
            QCOMPARE(state.image.row(row), before.row(row));
        QVERIFY(state.image.IsModified());
    }

    void portErrors_data()
    {
        QTest::addColumn<PortSetup>("setup");
        QTest::addColumn<QString>("message"); // %1: the device

        const QString busy = u"Permission error while locking the device\n"
                             "Another program is using the port: close it, then try again."_s;
        QTest::newRow("no such port") << PortSetup::NoDevice
                                      << u"COM201: No such file or directory\nCheck that the programming cable is "
                                         "plugged in and that this is the right port."_s;
        QTest::newRow("port in use") << PortSetup::HeldByAnother << u"COM200 (%1): "_s + busy;
        // The pseudo-terminal belongs to the group tty, which nobody should join for a port.
        QTest::newRow("port not permitted")
            << PortSetup::NotPermitted
            << u"COM200 (%1): Permission denied\nThis user may not use the port: ask for access to the device, then log "
               "out and log in again."_s;
        QTest::newRow("port search meets a port in use")
            << PortSetup::ScanMeetsHeld
            << u"COM199 (%1): "_s + busy + u"\nThe radio did not answer on COM200, so the automatic port search tried COM199."_s;
    }

    // A port that cannot be opened ends the transfer with the serial layer's
    // text, the port and its device, and what to do about it.
    void portErrors()
    {
        QFETCH(PortSetup, setup);
        QFETCH(QString, message);

        const QString folder = filePath(u"serial-ports"_s);
        test::RadioOnPty line(folder, sim::RadioFaults{.silent = setup == PortSetup::ScanMeetsHeld});
        QVERIFY2(line.isOpen(), qPrintable(line.errorString()));
        sim::VirtualRadio other;
        sim::PtyRadio otherLine(other, false);
        QVERIFY(otherLine.open() && QFile::link(otherLine.devicePath(), folder + u"/com199"_s));
        const QString device = setup == PortSetup::ScanMeetsHeld ? otherLine.devicePath() : line.devicePath();
        QSerialPort holder(device);
        if (setup == PortSetup::HeldByAnother || setup == PortSetup::ScanMeetsHeld)
            QVERIFY(holder.open(QIODevice::ReadWrite));

        AppState &state = test::transferState(0, true, setup == PortSetup::NoDevice ? 201 : 200);
        Recorder recorder;
        CloneEngine engine(state);
        CloneDriver driver(engine, recorder.prompts());
        if (setup == PortSetup::NotPermitted) {
            // Root may open anything; it becomes nobody for the open, which
            // happens as the transfer starts, and nobody must find the port.
            if (::geteuid() == 0) {
                const auto listable = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadGroup
                    | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther;
                QVERIFY(QFile::setPermissions(tempFolder(), listable) && QFile::setPermissions(folder, listable));
                QVERIFY(::seteuid(65534) == 0);
            } else {
                QVERIFY(QFile::setPermissions(device, {}));
            }
        }
        driver.start();
        if (::getuid() == 0)
            QVERIFY(::seteuid(0) == 0);
        QTRY_VERIFY_WITH_TIMEOUT(!driver.isRunning(), 10000);

        QVERIFY(recorder.asked.isEmpty());
        QCOMPARE(recorder.reported.size(), 1);
        QCOMPARE(recorder.reported.first().kind, Kind::PortFailed);
        QCOMPARE(outcomeText(recorder.reported.first(), English),
                 message.replace(u"%1"_s, device)
                     + u"\nRun the connection test: Set \u2192 Communication Port \u2192 Test."_s);
        // The port search keeps the port it stopped at.
        QCOMPARE(int{state.PortNumber}, setup == PortSetup::ScanMeetsHeld ? 199 : setup == PortSetup::NoDevice ? 201 : 200);
        QFile::remove(folder + u"/com199"_s);
    }

    void batchWithTroubledPort_data()
    {
        QTest::addColumn<bool>("pullCable"); // else COM201 is held open by another port object from the start
        QTest::addColumn<Kind>("ends");

        QTest::newRow("cable pulled from one radio") << true << Kind::PortLost;
        QTest::newRow("one port busy") << false << Kind::PortFailed;
    }

    // Two radios written at once; the second one's cable is pulled halfway, or
    // its port is held by someone else. That radio alone fails, with how, and
    // is not looked for anywhere else; the other is written all the same.
    void batchWithTroubledPort()
    {
        QFETCH(bool, pullCable);
        const QString folder = filePath(u"serial-ports"_s);
        test::RadioOnPty first(folder);
        test::RadioOnPty second(folder, {}, false, 201);
        QVERIFY(first.isOpen() && second.isOpen());
        const QString device = second.devicePath();
        QSerialPort holder(device);
        QVERIFY(pullCable || holder.open(QIODevice::ReadWrite));
        QTimer puller;
        QObject::connect(&puller, &QTimer::timeout, [&] {
            if (second.radio.rowsAnswered() >= 20)
                second.hangUp(), puller.stop();
        });
        if (pullCable)
            puller.start(1);

        MemoryImage image;
        test::fillPattern(image, 5);
        CloneBatch batch(CloneEngine::Direction::Write, {200, 201}, image);
        QSignalSpy finished(&batch, &CloneBatch::finished);
        batch.start();
        QVERIFY(finished.wait(30000));

        QCOMPARE(finished.size(), 1);
        QVERIFY(!batch.allCompleted());
        const CloneBatch::Radio &written = batch.radio(0);
        QVERIFY(!written.running);
        QCOMPARE(written.outcome.kind, Kind::Completed);
        for (const int row : test::transferredRows(false))
            QCOMPARE(first.radio.memory().row(row), image.row(row));
        const CloneBatch::Radio &troubled = batch.radio(1);
        QTEST(troubled.outcome.kind, "ends");
        QCOMPARE(troubled.port, 201);
        QCOMPARE(troubled.device, device); // named by its device, even once it is gone
        QCOMPARE(troubled.outcome.problem.kind, pullCable ? PortProblem::Kind::Lost : PortProblem::Kind::Busy);
        QCOMPARE(troubled.outcome.portsTried.size(), 1);
        QCOMPARE(troubled.outcome.partlyWritten, pullCable ? QList<int>{201} : QList<int>{});
        // The words a batch prints for it send the user back to this port, never to a Retry button.
        const QString words = outcomeText(troubled.outcome, English, Wording::CommandLine);
        QVERIFY2(words.startsWith(u"COM201 (%1): "_s.arg(device)), qPrintable(words));
        QVERIFY2(words.endsWith(u"Run the connection test: wrpd6t-tool doctor COM201"_s), qPrintable(words));
        QVERIFY2(!words.contains(u"Retry"_s), qPrintable(words));
    }
};

QTEST_GUILESS_MAIN(TestLinkEndToEnd)
#include "TestLinkEndToEnd.moc"
