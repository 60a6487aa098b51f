#include "FakeLink.h"
#include "LinkTestData.h"
#include "TestSupport.h"

#include "core/AppState.h"
#include "core/BandLimits.h"
#include "link/CloneEngine.h"

#include <QTest>

using namespace wr;
using namespace Qt::Literals::StringLiterals;
using wr::sim::RadioFaults;
using wr::sim::VirtualRadio;

Q_DECLARE_METATYPE(wr::sim::RadioFaults)

namespace {

int countFrames(const QList<QByteArray> &frames, const QByteArray &frame)
{
    return static_cast<int>(std::count(frames.begin(), frames.end(), frame));
}

int addressOf(const QByteArray &frame)
{
    return static_cast<quint8>(frame.at(1)) << 8 | static_cast<quint8>(frame.at(2));
}

} // namespace

class TestCloneEngine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { test::initTestProcess(); }
    void init() { m_fixture = std::make_unique<test::Fixture>(); }
    void cleanup() { m_fixture.reset(); }

    void completeTransfer_data();
    void completeTransfer();
    void faultyRadio_data();
    void faultyRadio();
    void portScan_data();
    void portScan();
    void replyWhileRejectedChangesNothing();
    void cancelledReadKeepsReceivedRows();
    void unopenablePortLeavesImage();

private:
    std::unique_ptr<test::Fixture> m_fixture;
};

void TestCloneEngine::completeTransfer_data()
{
    QTest::addColumn<int>("direction");
    QTest::addColumn<int>("language");
    QTest::addColumn<int>("rows");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("message");

    QTest::newRow("read, English") << 0 << 0 << 188 << u"Completion percentage:  100%"_s << u"Reading completed!"_s;
    QTest::newRow("write ends at 187 of 188, English")
        << 1 << 0 << 187 << u"Completion percentage:  99%"_s << u"Writing completed!"_s;
    QTest::newRow("read, Traditional Chinese") << 0 << 2 << 188 << u"完成進度:  100%"_s << u"成功讀完"_s;
    QTest::newRow("write, Simplified Chinese") << 1 << 1 << 187 << u"完成进度:  99%"_s << u"成功写完！"_s;
}

void TestCloneEngine::completeTransfer()
{
    QFETCH(int, direction);
    QFETCH(int, language);
    QFETCH(int, rows);
    QFETCH(QString, label);
    QFETCH(QString, message);
    const bool read = direction == 0;

    AppState &state = app();
    state.LinkDirection = static_cast<quint8>(direction);
    state.LanguageIndex = static_cast<quint8>(language);
    state.PortNumber = 3;
    test::fillPattern(state.image, 1);
    state.image.TakeSnapshot();
    state.image.WriteByte(5, 0x42); // modified before the transfer
    const MemoryImage before = state.image;
    const BandLimitArray limitsBefore = state.BandLimits;

    VirtualRadio radio;
    test::fillPattern(radio.memory(), 2);
    // Row 416 as a radio for 144-148 / 430-440 MHz reports it.
    radio.memory().setRow(416, QByteArray::fromHex("14401480144014804300440043004400"));
    const MemoryImage radioBefore = radio.memory();

    CloneEngine engine(state, [] { return QStringList{u"COM3"_s}; });
    test::FakeLink link(engine);
    link.attachRadio(3, &radio);
    link.run();

    QVERIFY(link.unloaded());
    QVERIFY(engine.Finished);
    QVERIFY(link.questions().isEmpty());
    QCOMPARE(link.progressAtFirstMessage(), rows);
    QCOMPARE(link.lastProgressText(), label);
    QCOMPARE(link.messages().size(), 1);
    QCOMPARE(link.messages().first().text, message);
    QCOMPARE(link.messages().first().title, u"WR-PD6T"_s);

    // One frame per step: opening, identification, the rows, the end frame;
    // the request after the row at 0x07F0 asks for 0x0C80.
    const QList<QByteArray> frames = link.framesTo(3);
    QCOMPARE(frames.size(), 2 + rows + 1);
    QCOMPARE(frames.first(), QByteArray("PROGRAM"));
    QCOMPARE(frames.at(1), QByteArray(1, 0x02));
    QCOMPARE(frames.last(), QByteArray("END"));
    QCOMPARE(addressOf(frames.at(2 + 127)), 0x07F0);
    QCOMPARE(addressOf(frames.at(2 + 128)), 0x0C80);
    QCOMPARE(frames.at(2 + 128).size(), read ? 4 : 20);
    QCOMPARE(frames.at(2).at(0), read ? 'R' : 'W');

    const QList<int> moved = test::transferredRows(read);
    for (int row = 0; row < MemoryImage::RowCount; ++row) {
        const bool transferred = moved.contains(row);
        if (read) {
            QCOMPARE(state.image.row(row), transferred ? radio.memory().row(row) : before.row(row));
        } else {
            QCOMPARE(radio.memory().row(row), transferred ? before.row(row) : radioBefore.row(row));
        }
    }
    if (read) {
        QVERIFY(!state.image.IsModified());
        QCOMPARE(link.readCompletedCount(), 1);
        QCOMPARE(state.BandLimits, (BandLimitArray{144, 148, 144, 148, 430, 440, 430, 440}));
    } else {
        QVERIFY(state.image == before);
        QVERIFY(state.image.IsModified()); // a write takes no snapshot
        QCOMPARE(link.readCompletedCount(), 0);
        QCOMPARE(state.BandLimits, limitsBefore);
    }
}

void TestCloneEngine::faultyRadio_data()
{
    QTest::addColumn<int>("direction");
    QTest::addColumn<RadioFaults>("faults");
    QTest::addColumn<QList<int>>("lostReplies");
    QTest::addColumn<QList<bool>>("answers");
    QTest::addColumn<bool>("completes");
    QTest::addColumn<int>("questions");
    QTest::addColumn<int>("openingFrames");
    QTest::addColumn<int>("identityRequests");

    RadioFaults noisy;
    noisy.noiseBeforeAck = true;
    QTest::newRow("stray bytes before the ACK are ignored") << 0 << noisy << QList<int>{} << QList<bool>{} << true << 0
                                                           << 1 << 1;
    RadioFaults wrongId;
    wrongId.wrongId = true;
    QTest::newRow("identification one character off: 8 requests, question, no scan")
        << 0 << wrongId << QList<int>{} << QList<bool>{} << false << 1 << 1 << 8;
    QTest::newRow("an eighth lost reply anywhere in an attempt finds the budget spent")
        << 0 << RadioFaults{} << QList<int>{4, 9, 30, 31, 32, 100, 150, 170} << QList<bool>{} << false << 1 << 1 << 1;
    QTest::newRow("seven lost replies are absorbed by resends")
        << 1 << RadioFaults{} << QList<int>{4, 9, 30, 31, 32, 100, 150} << QList<bool>{} << true << 0 << 1 << 1;
    RadioFaults hangUp;
    hangUp.hangUpAfterRows = 10;
    QTest::newRow("Retry starts over from the opening command")
        << 0 << hangUp << QList<int>{} << QList<bool>{true} << true << 1 << 2 << 2;
    RadioFaults nak;
    nak.nakWrites = true;
    QTest::newRow("refused writes end at the question")
        << 1 << nak << QList<int>{} << QList<bool>{} << false << 1 << 1 << 1;
}

void TestCloneEngine::faultyRadio()
{
    QFETCH(int, direction);
    QFETCH(RadioFaults, faults);
    QFETCH(QList<int>, lostReplies);
    QFETCH(QList<bool>, answers);
    QFETCH(bool, completes);
    QFETCH(int, questions);
    QFETCH(int, openingFrames);
    QFETCH(int, identityRequests);

    AppState &state = app();
    state.LinkDirection = static_cast<quint8>(direction);
    state.PortNumber = 2;
    VirtualRadio radio(faults);
    test::fillPattern(radio.memory(), 3);
    const MemoryImage radioBefore = radio.memory();
    const MemoryImage imageBefore = state.image;

    CloneEngine engine(state, [] { return QStringList{u"COM2"_s}; });
    test::FakeLink link(engine);
    link.attachRadio(2, &radio);
    link.loseRepliesTo(QSet<int>(lostReplies.begin(), lostReplies.end()));
    link.answerQuestions(answers);
    link.run();

    QVERIFY(link.unloaded());
    QCOMPARE(engine.Finished, completes);
    QCOMPARE(link.questions().size(), questions);
    QVERIFY(link.portChanges().isEmpty()); // the opening command was answered: no scan
    QCOMPARE(state.PortNumber, quint8{2});
    const QList<QByteArray> frames = link.framesTo(2);
    QCOMPARE(countFrames(frames, "PROGRAM"), openingFrames);
    QCOMPARE(countFrames(frames, QByteArray(1, 0x02)), identityRequests);

    if (completes) {
        const QList<int> moved = test::transferredRows(direction == 0);
        for (int row : moved) {
            if (direction == 0)
                QCOMPARE(state.image.row(row), radio.memory().row(row));
            else if (row != 416)
                QCOMPARE(radio.memory().row(row), imageBefore.row(row));
        }
    } else if (direction == 1) {
        QVERIFY(radio.memory() == radioBefore);
    }
}

void TestCloneEngine::portScan_data()
{
    QTest::addColumn<QStringList>("ports");
    QTest::addColumn<int>("radioPort");
    QTest::addColumn<int>("refusedPort");
    QTest::addColumn<QList<int>>("portChanges");
    QTest::addColumn<int>("finalPort");
    QTest::addColumn<bool>("completes");
    QTest::addColumn<int>("questions");
    QTest::addColumn<int>("openingFramesOnChosenPort");

    QTest::newRow("radio found on a listed port, which is kept")
        << QStringList{u"COM1"_s, u"COM4"_s, u"COM5"_s} << 4 << 0 << QList<int>{1, 4} << 4 << true << 0 << 8;
    QTest::newRow("no radio anywhere: Cancel gives the chosen port back")
        << QStringList{u"COM1"_s, u"COM5"_s} << 0 << 0 << QList<int>{1, 5, 5} << 5 << false << 1 << 16;
    QTest::newRow("no port listed: straight to the question") << QStringList{QString()} << 0 << 0 << QList<int>{5}
                                                              << 5 << false << 1 << 8;
    QTest::newRow("a listed port that will not open ends the transfer")
        << QStringList{u"COM2"_s, u"COM1"_s} << 1 << 2 << QList<int>{2} << 2 << false << 0 << 8;
}

void TestCloneEngine::portScan()
{
    QFETCH(QStringList, ports);
    QFETCH(int, radioPort);
    QFETCH(int, refusedPort);
    QFETCH(QList<int>, portChanges);
    QFETCH(int, finalPort);
    QFETCH(bool, completes);
    QFETCH(int, questions);
    QFETCH(int, openingFramesOnChosenPort);

    AppState &state = app();
    state.LinkDirection = 0;
    state.PortNumber = 5; // opens, but nothing answers there
    VirtualRadio radio;
    CloneEngine engine(state, [ports] { return ports; });
    test::FakeLink link(engine);
    if (radioPort)
        link.attachRadio(radioPort, &radio);
    if (refusedPort)
        link.refusePort(refusedPort, u"Permission denied"_s);
    link.run();

    QVERIFY(link.unloaded());
    QCOMPARE(link.portChanges(), portChanges);
    QCOMPARE(int{state.PortNumber}, finalPort);
    QCOMPARE(engine.Finished, completes);
    QCOMPARE(link.questions().size(), questions);

    // Each port tried gets a full budget: the opening command 1 + 7 times.
    QCOMPARE(countFrames(link.framesTo(5), "PROGRAM"), openingFramesOnChosenPort);
    if (questions > 0 && ports.first().isEmpty()) {
        // A dead attempt is bounded: 8 frames with 300 ms each.
        QVERIFY2(link.questionTimes().first() >= 2400 && link.questionTimes().first() < 2700,
                 qPrintable(QString::number(link.questionTimes().first())));
    }
    if (refusedPort) {
        QCOMPARE(link.messages().size(), 1);
        QCOMPARE(link.messages().first().text, u"Permission denied"_s);
        QVERIFY(link.messages().first().icon == CloneEngine::MessageIcon::Exclamation);
        QVERIFY(link.framesTo(1).isEmpty()); // the ports after it are not tried
    }
}

void TestCloneEngine::replyWhileRejectedChangesNothing()
{
    AppState &state = app();
    state.LinkDirection = 0;
    CloneEngine engine(state, [] { return QStringList{QString()}; });
    engine.start();
    engine.portOpened();
    engine.sendTick();                        // PROGRAM
    engine.waitElapsed();
    engine.replyRead(QByteArray(1, 0x06));    // ACK
    engine.sendTick();                        // 0x02
    engine.waitElapsed();
    const CloneEngine::Actions rejected = engine.replyRead("QAWPD6X");
    QVERIFY(engine.Rejected);
    QCOMPARE(engine.Step, qint16{1});
    QVERIFY(std::any_of(rejected.begin(), rejected.end(), [](const CloneEngine::Action &a) {
        return a.kind == CloneEngine::Action::StartTimeout && a.value == 1;
    }));

    // A late reply arriving now is not even read.
    QVERIFY(engine.dataWaiting().isEmpty());
    QCOMPARE(engine.Step, qint16{1});
    QVERIFY(!engine.waiting());

    // The time-out tick that follows resends the identification request.
    engine.timeoutTick();
    QCOMPARE(engine.RetryCount, quint8{1});
    QVERIFY(!engine.Rejected);
    const CloneEngine::Actions resend = engine.sendTick();
    QVERIFY(std::any_of(resend.begin(), resend.end(), [](const CloneEngine::Action &a) {
        return a.kind == CloneEngine::Action::Send && a.bytes == QByteArray(1, 0x02);
    }));
}

void TestCloneEngine::cancelledReadKeepsReceivedRows()
{
    AppState &state = app();
    state.LinkDirection = 0;
    state.PortNumber = 1;
    test::fillPattern(state.image, 4);
    state.image.TakeSnapshot();
    const MemoryImage before = state.image;
    const BandLimitArray limitsBefore = state.BandLimits;

    RadioFaults faults;
    faults.hangUpAfterRows = 10;
    VirtualRadio radio(faults);
    test::fillPattern(radio.memory(), 5);
    CloneEngine engine(state, [] { return QStringList{u"COM1"_s}; });
    test::FakeLink link(engine);
    link.attachRadio(1, &radio);
    link.answerQuestions({false});
    link.run();

    QVERIFY(link.unloaded());
    QCOMPARE(link.questions().size(), 1);
    QVERIFY(link.messages().isEmpty());
    QCOMPARE(link.readCompletedCount(), 0);
    for (int row = 0; row < MemoryImage::RowCount; ++row)
        QCOMPARE(state.image.row(row), row < 10 ? radio.memory().row(row) : before.row(row));
    QVERIFY(state.image.IsModified()); // compared with the data from before the read
    QCOMPARE(state.BandLimits, limitsBefore);
    QCOMPARE(state.PortNumber, quint8{1});
}

void TestCloneEngine::unopenablePortLeavesImage()
{
    AppState &state = app();
    state.LinkDirection = 0;
    state.PortNumber = 7;
    test::fillPattern(state.image, 6);
    const MemoryImage before = state.image;
    CloneEngine engine(state, [] { return QStringList{u"COM1"_s}; });
    test::FakeLink link(engine);
    link.refusePort(7, u"No such file or directory"_s);
    link.run();

    QVERIFY(link.unloaded());
    QVERIFY(link.frames().isEmpty());
    QCOMPARE(link.messages().size(), 1);
    QCOMPARE(link.messages().first().title, u"WR-PD6T"_s);
    QCOMPARE(link.messages().first().text, u"No such file or directory"_s);
    QVERIFY(state.image == before);
    QCOMPARE(state.PortNumber, quint8{7});
}

QTEST_GUILESS_MAIN(TestCloneEngine)
#include "TestCloneEngine.moc"
