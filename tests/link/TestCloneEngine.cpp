#include "TestSupport.h"

#include "core/AppState.h"
#include "link/CloneEngine.h"

#include "VirtualRadio.h"

#include <QTest>

#include <utility>

using namespace wr;
using namespace Qt::Literals::StringLiterals;
using wr::sim::RadioFaults;
using wr::sim::VirtualRadio;
using Action = wr::CloneEngine::Action;

Q_DECLARE_METATYPE(wr::sim::RadioFaults)

namespace {

// Drives a CloneEngine against virtual radios on numbered ports with a made-up
// millisecond clock: the earliest of the reply (5 ms after its frame), the
// wait, the time-out and the send tick happens next, so a whole transfer,
// time-outs and port scan included, takes a few milliseconds of real time.
struct FakeLink
{
    FakeLink(CloneEngine &e, int radioPort, VirtualRadio *radio) : engine(e) { radios[radioPort] = radio; }
    CloneEngine &engine;
    QMap<int, VirtualRadio *> radios; // ports without one are silent but open
    QSet<int> lostReplies;            // indexes of frames whose answer is lost
    bool retry = false;               // the first answer to the lost-connection question; then Cancel

    QList<QPair<int, QByteArray>> frames; // port, bytes
    QList<int> portChanges;
    QList<qint64> questionTimes;
    int messages = 0;
    int port = 0, threshold = 0;
    bool unloaded = false;
    qint64 now = 0, due[4] = {-1, -1, -1, -1}; // reply, wait, time-out, send tick; -1 when idle
    int every[4] = {};
    QByteArray rx, pending;

    int count(int onPort, const QByteArray &frame) const { return int(frames.count({onPort, frame})); }

    void run()
    {
        perform(engine.start());
        while (!unloaded) {
            int next = -1; // ties go to the lower index
            for (int i = 0; i < 4; ++i)
                next = due[i] >= 0 && (next < 0 || due[i] < due[next]) ? i : next;
            if (next < 0)
                return; // nothing left that could move the transfer on
            now = std::max(now, due[next]);
            due[next] = next < 2 ? -1 : now + every[next];
            if (next == 0)
                rx += std::exchange(pending, {});
            else
                perform(next == 1 ? engine.waitElapsed() : next == 2 ? engine.timeoutTick() : engine.sendTick());
            if (!unloaded && threshold > 0 && port && rx.size() >= threshold && !engine.waiting() && !engine.asking())
                perform(engine.dataWaiting());
        }
    }

    void perform(const CloneEngine::Actions &actions)
    {
        for (const Action &a : actions) {
            if (unloaded)
                return;
            switch (a.kind) {
            case Action::OpenPort: port = a.value; perform(engine.portOpened()); break;
            case Action::ClosePort: port = 0; pending.clear(); due[0] = -1; [[fallthrough]];
            case Action::DiscardBuffers: rx.clear(); break;
            case Action::Send: {
                VirtualRadio *radio = radios.value(port);
                const QByteArray answer = radio ? radio->receive(a.bytes) : QByteArray();
                if (!answer.isEmpty() && !lostReplies.contains(int(frames.size())))
                    pending += answer, due[0] = now + 5;
                frames.append({port, a.bytes});
                break;
            }
            case Action::SetThreshold: threshold = a.value; break;
            case Action::StartSendTimer: due[3] = now + (every[3] = a.value); break;
            case Action::StopSendTimer: due[3] = -1; break;
            case Action::StartTimeout: due[2] = now + (every[2] = a.value); break;
            case Action::StopTimeout: due[2] = -1; break;
            case Action::Wait: due[1] = now + a.value; break;
            case Action::ReadReply: perform(engine.replyRead(std::exchange(rx, {}))); break;
            case Action::PortChanged: portChanges.append(a.value); break;
            case Action::AskLostConnection:
                questionTimes.append(now);
                perform(engine.answered(std::exchange(retry, false)));
                break;
            case Action::ShowMessage: ++messages; break;
            case Action::Unload: unloaded = true; break;
            default: break; // progress and refresh: what the form shows
            }
        }
    }
};

int addressOf(const QByteArray &frame)
{
    return frame.size() < 4 ? -1 : quint8(frame.at(1)) << 8 | quint8(frame.at(2));
}

} // namespace

class TestCloneEngine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { test::initTestProcess(); }
    void init() { m_fixture = std::make_unique<test::Fixture>(); }
    void cleanup() { m_fixture.reset(); }

    void transfer_data();
    void transfer();
    void portScan_data();
    void portScan();
    void replyWhileRejectedChangesNothing();

private:
    std::unique_ptr<test::Fixture> m_fixture;
};

void TestCloneEngine::transfer_data()
{
    QTest::addColumn<bool>("read");
    QTest::addColumn<RadioFaults>("faults");
    QTest::addColumn<QList<int>>("lostReplies");
    QTest::addColumn<bool>("retry");
    QTest::addColumn<int>("progress"); // at the closing message; -1: the transfer failed
    QTest::addColumn<int>("identityRequests");

    const QList<int> none, seven{4, 9, 30, 31, 32, 100, 150};
    QTest::newRow("read ends at 188") << true << RadioFaults{} << none << false << 188 << 1;
    QTest::newRow("write ends at 187") << false << RadioFaults{} << none << false << 187 << 1;
    QTest::newRow("identification one off: 8 requests, no scan")
        << true << RadioFaults{.wrongId = true} << none << false << -1 << 8;
    // Each resend starts the bar over: 46 rows follow the last lost reply.
    QTest::newRow("seven lost replies are resent") << true << RadioFaults{} << seven << false << 46 << 1;
    QTest::newRow("eighth lost reply spends the budget") << true << RadioFaults{} << seven + QList<int>{170} << false
                                                         << -1 << 1;
    QTest::newRow("Retry starts over from PROGRAM")
        << true << RadioFaults{.hangUpAfterRows = 10} << none << true << 188 << 2;
}

void TestCloneEngine::transfer()
{
    QFETCH(bool, read);
    QFETCH(RadioFaults, faults);
    QFETCH(QList<int>, lostReplies);
    QFETCH(bool, retry);
    QFETCH(int, progress);
    QFETCH(int, identityRequests);
    const bool completes = progress > 0;

    AppState &state = app();
    state.LinkDirection = read ? 0 : 1;
    state.LanguageIndex = 0;
    state.PortNumber = 2;
    VirtualRadio radio(faults);
    CloneEngine engine(state, [] { return QStringList{u"COM2"_s}; });
    FakeLink link(engine, 2, &radio);
    link.lostReplies = {lostReplies.begin(), lostReplies.end()};
    link.retry = retry;
    link.run();

    QVERIFY(link.unloaded);
    QCOMPARE(engine.Finished, completes);
    QCOMPARE(link.questionTimes.size(), completes && !retry ? 0 : 1);
    QVERIFY(link.portChanges.isEmpty()); // the opening command was answered: no scan
    QCOMPARE(link.count(2, "PROGRAM"), retry ? 2 : 1);
    QCOMPARE(link.count(2, QByteArray(1, 0x02)), identityRequests);
    QCOMPARE(link.messages, completes ? 1 : 0); // "Reading completed!"
    if (!completes)
        return;
    QCOMPARE(engine.progress(), progress);
    if (lostReplies.isEmpty()) { // one frame per step of the last attempt
        QCOMPARE(engine.progressText(), u"Completion percentage:  %1%"_s.arg(read ? 100 : 99));
        QCOMPARE(link.frames.size() - (retry ? link.frames.indexOf({2, "PROGRAM"}, 1) : 0), 2 + progress + 1);
    }
    QCOMPARE(link.frames.last().second, QByteArray("END"));
    // The request after the row at 0x07F0 asks for 0x0C80.
    const auto last7F0 = std::find_if(link.frames.rbegin(), link.frames.rend(),
                                      [](const auto &frame) { return addressOf(frame.second) == 0x07F0; });
    const QByteArray jump = std::prev(last7F0)->second;
    QCOMPARE(addressOf(jump), 0x0C80);
    QCOMPARE(jump.size(), read ? 4 : 20);
    QCOMPARE(jump.at(0), read ? 'R' : 'W');
}

void TestCloneEngine::portScan_data()
{
    QTest::addColumn<QStringList>("ports");
    QTest::addColumn<int>("radioPort");
    QTest::addColumn<QList<int>>("portChanges");
    QTest::addColumn<int>("openingFramesOnChosenPort");

    // The chosen port 5 opens, but nothing answers there; each port tried
    // gets the opening command 1 + 7 times.
    QTest::newRow("radio found on a listed port, which is kept")
        << QStringList{u"COM1"_s, u"COM4"_s, u"COM5"_s} << 4 << QList<int>{1, 4} << 8;
    QTest::newRow("no radio: Cancel gives the chosen port back")
        << QStringList{u"COM1"_s, u"COM5"_s} << 0 << QList<int>{1, 5, 5} << 16;
    QTest::newRow("no port listed: straight to the question") << QStringList{QString()} << 0 << QList<int>{5} << 8;
}

void TestCloneEngine::portScan()
{
    QFETCH(QStringList, ports);
    QFETCH(int, radioPort);
    QFETCH(QList<int>, portChanges);
    QFETCH(int, openingFramesOnChosenPort);

    AppState &state = app();
    state.LinkDirection = 0;
    state.PortNumber = 5;
    VirtualRadio radio;
    CloneEngine engine(state, [ports] { return ports; });
    FakeLink link(engine, radioPort, &radio);
    link.run();

    QVERIFY(link.unloaded);
    QCOMPARE(link.portChanges, portChanges);
    QCOMPARE(int{state.PortNumber}, radioPort ? radioPort : 5);
    QCOMPARE(engine.Finished, radioPort != 0);
    QCOMPARE(link.count(5, "PROGRAM"), openingFramesOnChosenPort);
    if (ports.first().isEmpty()) // a dead attempt is bounded: 8 frames, 300 ms each
        QVERIFY(link.questionTimes.value(0) >= 2400 && link.questionTimes.value(0) < 2700);
}

void TestCloneEngine::replyWhileRejectedChangesNothing()
{
    CloneEngine engine(app(), [] { return QStringList{QString()}; });
    const auto has = [](const CloneEngine::Actions &actions, Action::Kind kind, int value, const QByteArray &bytes) {
        return std::any_of(actions.begin(), actions.end(),
                           [&](const Action &a) { return a.kind == kind && a.value == value && a.bytes == bytes; });
    };
    engine.start();
    engine.portOpened();
    engine.sendTick(); // PROGRAM
    engine.waitElapsed();
    engine.replyRead(QByteArray(1, 0x06));
    engine.sendTick(); // 02
    engine.waitElapsed();
    QVERIFY(has(engine.replyRead("QAWPD6X"), Action::StartTimeout, 1, {}));
    QVERIFY(engine.Rejected);
    // A late reply arriving now is not even read.
    QVERIFY(engine.dataWaiting().isEmpty());
    QCOMPARE(engine.Step, qint16{1});
    // The time-out tick that follows resends the identification request.
    engine.timeoutTick();
    QCOMPARE(engine.RetryCount, quint8{1});
    QVERIFY(!engine.Rejected);
    QVERIFY(has(engine.sendTick(), Action::Send, 0, QByteArray(1, 0x02)));
}

QTEST_GUILESS_MAIN(TestCloneEngine)
#include "TestCloneEngine.moc"
