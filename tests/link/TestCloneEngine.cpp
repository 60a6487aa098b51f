#include "LinkTestData.h"
#include "TestSupport.h"

#include "core/AppState.h"
#include "link/CloneEngine.h"

#include "VirtualRadio.h"

#include <QTest>

#include <limits>
#include <utility>

using namespace wr;
using namespace Qt::Literals::StringLiterals;
using wr::sim::RadioFaults;
using wr::sim::VirtualRadio;
using Action = wr::CloneEngine::Action;

Q_DECLARE_METATYPE(wr::sim::RadioFaults)

namespace {

// Runs a CloneEngine against virtual radios on numbered ports with a made-up
// clock in milliseconds: timers, waits and answers (5 ms after each frame)
// happen in time order, so a whole transfer, time-outs and port scan
// included, takes a few milliseconds of real time.
class FakeLink
{
public:
    explicit FakeLink(CloneEngine &engine) : m_engine(engine) {}

    QMap<int, VirtualRadio *> radios;   // ports without one are silent but open
    QMap<int, QString> refused;         // ports that will not open, with the reason
    QSet<int> lostReplies;              // indexes of frames whose answer is lost
    QList<bool> answers;                // to the lost-connection question; then Cancel

    QList<QPair<int, QByteArray>> frames; // port, bytes
    QList<int> portChanges;
    QList<qint64> questionTimes;
    QList<Action> messages;
    QString progressText;
    int progressAtMessage = -1;
    int readCompleted = 0;
    bool unloaded = false;

    int count(int port, const QByteArray &frame) const
    {
        return static_cast<int>(frames.count({port, frame}));
    }

    void run()
    {
        perform(m_engine.start());
        while (!unloaded) {
            qint64 next = std::numeric_limits<qint64>::max();
            for (const Timer *timer : {&m_wait, &m_timeout, &m_send})
                next = timer->active ? std::min(next, timer->due) : next;
            if (!m_inFlight.isEmpty())
                next = std::min(next, m_inFlight.first().first);
            if (next == std::numeric_limits<qint64>::max())
                return; // nothing left that could move the transfer on
            m_now = std::max(m_now, next);
            if (!m_inFlight.isEmpty() && m_inFlight.first().first <= m_now) {
                m_rx += m_inFlight.takeFirst().second;
            } else if (m_wait.active && m_wait.due <= m_now) {
                m_wait.active = false;
                perform(m_engine.waitElapsed());
            } else if (m_timeout.active && m_timeout.due <= m_now) {
                m_timeout.due = m_now + m_timeout.interval;
                perform(m_engine.timeoutTick());
            } else {
                m_send.due = m_now + m_send.interval;
                perform(m_engine.sendTick());
            }
            if (!unloaded && m_threshold > 0 && m_port != 0 && m_rx.size() >= m_threshold && !m_engine.waiting()
                && !m_engine.asking())
                perform(m_engine.dataWaiting());
        }
    }

private:
    struct Timer
    {
        bool active = false;
        qint64 due = 0;
        int interval = 0;
    };

    void perform(const CloneEngine::Actions &actions)
    {
        for (const Action &action : actions) {
            if (unloaded)
                return;
            switch (action.kind) {
            case Action::OpenPort:
                if (refused.contains(action.value)) {
                    perform(m_engine.portFailed(refused.value(action.value)));
                } else {
                    m_port = action.value;
                    perform(m_engine.portOpened());
                }
                break;
            case Action::ClosePort:
                m_port = 0;
                m_inFlight.clear();
                [[fallthrough]];
            case Action::DiscardBuffers:
                m_rx.clear();
                break;
            case Action::Send: {
                VirtualRadio *radio = radios.value(m_port);
                const QByteArray answer = radio ? radio->receive(action.bytes) : QByteArray();
                if (!answer.isEmpty() && !lostReplies.contains(static_cast<int>(frames.size())))
                    m_inFlight.append({m_now + 5, answer});
                frames.append({m_port, action.bytes});
                break;
            }
            case Action::SetThreshold: m_threshold = action.value; break;
            case Action::StartSendTimer: m_send = {true, m_now + action.value, action.value}; break;
            case Action::StopSendTimer: m_send.active = false; break;
            case Action::StartTimeout: m_timeout = {true, m_now + action.value, action.value}; break;
            case Action::StopTimeout: m_timeout.active = false; break;
            case Action::Wait: m_wait = {true, m_now + action.value, action.value}; break;
            case Action::ReadReply: perform(m_engine.replyRead(std::exchange(m_rx, {}))); break;
            case Action::Progress:
                m_progress = action.value;
                progressText = action.text;
                break;
            case Action::PortChanged: portChanges.append(action.value); break;
            case Action::AskLostConnection:
                questionTimes.append(m_now);
                perform(m_engine.answered(!answers.isEmpty() && answers.takeFirst()));
                break;
            case Action::ShowMessage:
                progressAtMessage = messages.isEmpty() ? m_progress : progressAtMessage;
                messages.append(action);
                break;
            case Action::ReadCompleted: ++readCompleted; break;
            case Action::Unload: unloaded = true; break;
            }
        }
    }

    CloneEngine &m_engine;
    qint64 m_now = 0;
    Timer m_send, m_timeout, m_wait;
    int m_port = 0;
    int m_threshold = 0;
    int m_progress = 0;
    QByteArray m_rx;
    QList<QPair<qint64, QByteArray>> m_inFlight;
};

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

private:
    std::unique_ptr<test::Fixture> m_fixture;
};

void TestCloneEngine::completeTransfer_data()
{
    QTest::addColumn<bool>("read");
    QTest::addColumn<int>("progress");
    QTest::addColumn<QString>("label");

    QTest::newRow("read ends at 188") << true << 188 << u"Completion percentage:  100%"_s;
    QTest::newRow("write ends at 187") << false << 187 << u"Completion percentage:  99%"_s;
}

// Row contents are checked byte for byte end to end, over a pseudo-terminal.
void TestCloneEngine::completeTransfer()
{
    QFETCH(bool, read);
    QFETCH(int, progress);
    QFETCH(QString, label);

    AppState &state = app();
    state.LinkDirection = read ? 0 : 1;
    state.LanguageIndex = 0;
    state.PortNumber = 3;
    VirtualRadio radio;
    CloneEngine engine(state, [] { return QStringList{u"COM3"_s}; });
    FakeLink link(engine);
    link.radios[3] = &radio;
    link.run();

    QVERIFY(link.unloaded && engine.Finished && link.questionTimes.isEmpty());
    QCOMPARE(link.progressAtMessage, progress);
    QCOMPARE(link.progressText, label);
    QCOMPARE(link.readCompleted, read ? 1 : 0);
    // One frame per step; the request after the row at 0x07F0 asks for 0x0C80.
    QCOMPARE(link.frames.size(), 2 + progress + 1);
    QCOMPARE(link.frames.last().second, QByteArray("END"));
    const QByteArray jump = link.frames.at(2 + 128).second;
    QCOMPARE(addressOf(link.frames.at(2 + 127).second), 0x07F0);
    QCOMPARE(addressOf(jump), 0x0C80);
    QCOMPARE(jump.size(), read ? 4 : 20);
    QCOMPARE(jump.at(0), read ? 'R' : 'W');
}

void TestCloneEngine::faultyRadio_data()
{
    QTest::addColumn<RadioFaults>("faults");
    QTest::addColumn<QList<int>>("lostReplies");
    QTest::addColumn<bool>("retry");
    QTest::addColumn<bool>("completes");
    QTest::addColumn<int>("openingFrames");
    QTest::addColumn<int>("identityRequests");

    RadioFaults noisy, wrongId, hangUp;
    noisy.noiseBeforeAck = true;
    wrongId.wrongId = true;
    hangUp.hangUpAfterRows = 10;
    QTest::newRow("stray bytes before the ACK") << noisy << QList<int>{} << false << true << 1 << 1;
    QTest::newRow("identification one off: 8 requests, no scan") << wrongId << QList<int>{} << false << false << 1 << 8;
    QTest::newRow("eighth lost reply spends the budget")
        << RadioFaults{} << QList<int>{4, 9, 30, 31, 32, 100, 150, 170} << false << false << 1 << 1;
    QTest::newRow("seven lost replies are resent")
        << RadioFaults{} << QList<int>{4, 9, 30, 31, 32, 100, 150} << false << true << 1 << 1;
    QTest::newRow("Retry starts over from PROGRAM") << hangUp << QList<int>{} << true << true << 2 << 2;
}

void TestCloneEngine::faultyRadio()
{
    QFETCH(RadioFaults, faults);
    QFETCH(QList<int>, lostReplies);
    QFETCH(bool, retry);
    QFETCH(bool, completes);
    QFETCH(int, openingFrames);
    QFETCH(int, identityRequests);

    AppState &state = app();
    state.LinkDirection = 0;
    state.PortNumber = 2;
    VirtualRadio radio(faults);
    test::fillPattern(radio.memory(), 3);
    CloneEngine engine(state, [] { return QStringList{u"COM2"_s}; });
    FakeLink link(engine);
    link.radios[2] = &radio;
    link.lostReplies = QSet<int>(lostReplies.begin(), lostReplies.end());
    link.answers = {retry};
    link.run();

    QVERIFY(link.unloaded);
    QCOMPARE(engine.Finished, completes);
    QCOMPARE(link.questionTimes.size(), completes && !retry ? 0 : 1);
    QVERIFY(link.portChanges.isEmpty()); // the opening command was answered: no scan
    QCOMPARE(link.count(2, "PROGRAM"), openingFrames);
    QCOMPARE(link.count(2, QByteArray(1, 0x02)), identityRequests);
    for (int row : test::transferredRows(true))
        QVERIFY(!completes || state.image.row(row) == radio.memory().row(row));
}

void TestCloneEngine::portScan_data()
{
    QTest::addColumn<QStringList>("ports");
    QTest::addColumn<int>("radioPort");
    QTest::addColumn<int>("refusedPort");
    QTest::addColumn<QList<int>>("portChanges");
    QTest::addColumn<int>("finalPort");
    QTest::addColumn<int>("openingFramesOnChosenPort");

    // The chosen port 5 opens, but nothing answers there; each port tried
    // gets the opening command 1 + 7 times.
    QTest::newRow("radio found on a listed port, which is kept")
        << QStringList{u"COM1"_s, u"COM4"_s, u"COM5"_s} << 4 << 0 << QList<int>{1, 4} << 4 << 8;
    QTest::newRow("no radio: Cancel gives the chosen port back")
        << QStringList{u"COM1"_s, u"COM5"_s} << 0 << 0 << QList<int>{1, 5, 5} << 5 << 16;
    QTest::newRow("no port listed: straight to the question") << QStringList{QString()} << 0 << 0 << QList<int>{5}
                                                              << 5 << 8;
    QTest::newRow("a listed port that will not open ends it")
        << QStringList{u"COM2"_s, u"COM1"_s} << 1 << 2 << QList<int>{2} << 2 << 8;
}

void TestCloneEngine::portScan()
{
    QFETCH(QStringList, ports);
    QFETCH(int, radioPort);
    QFETCH(int, refusedPort);
    QFETCH(QList<int>, portChanges);
    QFETCH(int, finalPort);
    QFETCH(int, openingFramesOnChosenPort);

    AppState &state = app();
    state.LinkDirection = 0;
    state.PortNumber = 5;
    VirtualRadio radio;
    CloneEngine engine(state, [ports] { return ports; });
    FakeLink link(engine);
    link.radios[radioPort] = &radio;
    link.refused[refusedPort] = u"Permission denied"_s;
    link.run();

    QVERIFY(link.unloaded);
    QCOMPARE(link.portChanges, portChanges);
    QCOMPARE(int{state.PortNumber}, finalPort);
    QCOMPARE(engine.Finished, radioPort == finalPort);
    QCOMPARE(link.count(5, "PROGRAM"), openingFramesOnChosenPort);
    if (ports.first().isEmpty()) // a dead attempt is bounded: 8 frames, 300 ms each
        QVERIFY(link.questionTimes.value(0) >= 2400 && link.questionTimes.value(0) < 2700);
    if (refusedPort) {
        QCOMPARE(link.messages.size(), 1);
        QCOMPARE(link.messages.first().text, u"Permission denied"_s);
        QVERIFY(link.messages.first().icon == CloneEngine::MessageIcon::Exclamation);
        QCOMPARE(link.count(1, "PROGRAM"), 0); // the ports after it are not tried
    }
}

void TestCloneEngine::replyWhileRejectedChangesNothing()
{
    CloneEngine engine(app(), [] { return QStringList{QString()}; });
    engine.start();
    engine.portOpened();
    engine.sendTick(); // PROGRAM
    engine.waitElapsed();
    engine.replyRead(QByteArray(1, 0x06));
    engine.sendTick(); // 02
    engine.waitElapsed();
    const CloneEngine::Actions rejected = engine.replyRead("QAWPD6X");
    QVERIFY(engine.Rejected);
    QVERIFY(std::any_of(rejected.begin(), rejected.end(),
                        [](const Action &a) { return a.kind == Action::StartTimeout && a.value == 1; }));

    // A late reply arriving now is not even read.
    QVERIFY(engine.dataWaiting().isEmpty());
    QCOMPARE(engine.Step, qint16{1});
    // The time-out tick that follows resends the identification request.
    engine.timeoutTick();
    QCOMPARE(engine.RetryCount, quint8{1});
    QVERIFY(!engine.Rejected);
    const CloneEngine::Actions resend = engine.sendTick();
    QVERIFY(std::any_of(resend.begin(), resend.end(),
                        [](const Action &a) { return a.kind == Action::Send && a.bytes == QByteArray(1, 0x02); }));
}

QTEST_GUILESS_MAIN(TestCloneEngine)
#include "TestCloneEngine.moc"
