#include "LinkTestData.h"
#include "RadioOnPty.h"
#include "TestSupport.h"

#include "core/AppState.h"
#include "link/CloneDriver.h"
#include "link/CloneEngine.h"

#include <QEventLoop>
#include <QTest>
#include <QTimer>

using namespace wr;
using namespace Qt::Literals::StringLiterals;
using wr::sim::RadioFaults;

Q_DECLARE_METATYPE(wr::sim::RadioFaults)

namespace {

struct Outcome
{
    bool finished = false;
    QStringList questions;
    QStringList messages;
    QList<int> portChanges;
};

// One transfer through the real serial driver and a real pseudo-terminal.
Outcome runTransfer(QList<bool> answers)
{
    Outcome outcome;
    CloneEngine engine(app());
    CloneDriver::Prompts prompts;
    prompts.askRetry = [&](const QString &, const QString &text) {
        outcome.questions.append(text);
        return answers.isEmpty() ? false : answers.takeFirst();
    };
    prompts.showMessage = [&](CloneEngine::MessageIcon, const QString &, const QString &text) {
        outcome.messages.append(text);
    };
    CloneDriver driver(engine, prompts);
    QObject::connect(&driver, &CloneDriver::portNumberChanged, [&](int port) { outcome.portChanges.append(port); });
    QEventLoop loop;
    QObject::connect(&driver, &CloneDriver::unloaded, &loop, &QEventLoop::quit);
    QTimer::singleShot(60000, &loop, &QEventLoop::quit);
    driver.start();
    if (driver.isRunning())
        loop.exec();
    outcome.finished = engine.Finished && !driver.isRunning();
    return outcome;
}

} // namespace

class TestLinkEndToEnd : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { test::initTestProcess(); }
    void init() { m_fixture = std::make_unique<test::Fixture>(); }
    void cleanup() { m_fixture.reset(); }

    void transfer_data();
    void transfer();

private:
    std::unique_ptr<test::Fixture> m_fixture;
};

void TestLinkEndToEnd::transfer_data()
{
    QTest::addColumn<int>("direction");
    QTest::addColumn<RadioFaults>("faults");
    QTest::addColumn<QList<bool>>("answers");
    QTest::addColumn<bool>("completes");
    QTest::addColumn<int>("questions");
    QTest::addColumn<int>("rowsMoved"); // before the failure, when it fails

    QTest::newRow("read gives exactly the radio's rows") << 0 << RadioFaults{} << QList<bool>{} << true << 0 << 188;
    QTest::newRow("write leaves the image's rows in the radio") << 1 << RadioFaults{} << QList<bool>{} << true << 0
                                                               << 187;
    RadioFaults noisy;
    noisy.noiseBeforeAck = true;
    QTest::newRow("read: stray bytes before the ACK") << 0 << noisy << QList<bool>{} << true << 0 << 188;
    RadioFaults drop;
    drop.dropReplyRow = 200;
    QTest::newRow("write: one lost reply is resent") << 1 << drop << QList<bool>{} << true << 0 << 187;
    RadioFaults wrongId;
    wrongId.wrongId = true;
    QTest::newRow("read: wrong identification, Cancel, image untouched")
        << 0 << wrongId << QList<bool>{} << false << 1 << 0;
    RadioFaults hangUp;
    hangUp.hangUpAfterRows = 20;
    QTest::newRow("read: radio hangs up, Cancel keeps 20 rows") << 0 << hangUp << QList<bool>{} << false << 1 << 20;
    QTest::newRow("read: radio hangs up, Retry completes") << 0 << hangUp << QList<bool>{true} << true << 1 << 188;
    RadioFaults nak;
    nak.nakWrites = true;
    QTest::newRow("write: refused rows, radio untouched") << 1 << nak << QList<bool>{} << false << 1 << 0;
    RadioFaults silent;
    silent.silent = true;
    QTest::newRow("read: silent radio, scan, Cancel") << 0 << silent << QList<bool>{} << false << 1 << 0;
}

void TestLinkEndToEnd::transfer()
{
    QFETCH(int, direction);
    QFETCH(RadioFaults, faults);
    QFETCH(QList<bool>, answers);
    QFETCH(bool, completes);
    QFETCH(int, questions);
    QFETCH(int, rowsMoved);
    const bool read = direction == 0;

    test::RadioOnPty line(m_fixture->path(u"serial-ports"_s), faults);
    QVERIFY2(line.isOpen(), qPrintable(line.errorString()));
    test::fillPattern(line.radio.memory(), 7);
    const MemoryImage radioBefore = line.radio.memory();

    AppState &state = app();
    state.LanguageIndex = 0;
    state.LinkDirection = static_cast<quint8>(direction);
    state.PortNumber = 200;
    test::fillPattern(state.image, 8);
    state.image.TakeSnapshot();
    const MemoryImage imageBefore = state.image;

    const Outcome outcome = runTransfer(answers);

    QCOMPARE(outcome.finished, completes);
    QCOMPARE(outcome.questions.size(), questions);
    QCOMPARE(int{state.PortNumber}, 200);
    if (completes)
        QCOMPARE(outcome.messages, QStringList{read ? u"Reading completed!"_s : u"Writing completed!"_s});
    else
        QVERIFY(outcome.messages.isEmpty());

    // Row by row: what moved is an exact copy, everything else is as it was.
    const QList<int> moved = test::transferredRows(read).first(rowsMoved);
    for (int row = 0; row < MemoryImage::RowCount; ++row) {
        const bool copied = moved.contains(row);
        if (read)
            QCOMPARE(state.image.row(row), copied ? radioBefore.row(row) : imageBefore.row(row));
        else
            QCOMPARE(line.radio.memory().row(row), copied ? imageBefore.row(row) : radioBefore.row(row));
    }
    if (read)
        QCOMPARE(state.image.IsModified(), !completes && rowsMoved > 0);
    else
        QVERIFY(state.image == imageBefore);
    if (completes)
        QCOMPARE(line.radio.sessionsEnded(), 1); // the radio saw "END" and left clone mode
}

QTEST_GUILESS_MAIN(TestLinkEndToEnd)
#include "TestLinkEndToEnd.moc"
