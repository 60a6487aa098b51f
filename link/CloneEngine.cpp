#include "link/CloneEngine.h"

#include "core/AppState.h"
#include "core/Language.h"
#include "link/PortCatalogue.h"

#include <utility>

namespace wr {

namespace {

using Action = CloneEngine::Action;
using Actions = CloneEngine::Actions;

constexpr char Ack = CloneEngine::Ack;
constexpr char IdentifyRequest = CloneEngine::IdentifyRequest;
constexpr char ReadCommand = 'R';
constexpr char WriteCommand = 'W';
constexpr char RowByteCount = 0x10;
constexpr int ReadReplyLength = 20;  // 4 bytes the radio echoes, then the row
constexpr int ReadReplyHeader = 4;

// Steps 130-201 are never used: the rows behind them (128-199) hold nothing
// the radio lets the program change.
constexpr qint16 FirstUnusedStep = 130;
constexpr qint16 SecondBlockStep = 202;

Action make(Action::Kind kind, int value = 0)
{
    Action action;
    action.kind = kind;
    action.value = value;
    return action;
}

} // namespace

CloneEngine::CloneEngine(AppState &state, std::function<QStringList()> portList)
    : m_state(state)
    , m_portList(portList ? std::move(portList) : std::function<QStringList()>(&GetPortList))
{
}

int CloneEngine::rowForStep(int step)
{
    if (step >= 2 && step < FirstUnusedStep)
        return step - 2;
    if (step >= SecondBlockStep && step <= 249)
        return step - 2;
    if (step >= 250 && step <= 260)
        return step + 149;
    if (step == 261)
        return 416;
    return -1;
}

const QByteArray &CloneEngine::openingCommand()
{
    static const QByteArray bytes = QByteArrayLiteral("PROGRAM");
    return bytes;
}

const QByteArray &CloneEngine::radioIdentity()
{
    static const QByteArray bytes = QByteArrayLiteral("QAWPD6T");
    return bytes;
}

const QByteArray &CloneEngine::endFrame()
{
    static const QByteArray bytes = QByteArrayLiteral("END");
    return bytes;
}

QByteArray CloneEngine::frameFor(int step) const
{
    if (step == 0)
        return openingCommand();
    if (step == 1)
        return QByteArray(1, IdentifyRequest);
    if (step == m_t.LastStep)
        return endFrame();
    const int row = rowForStep(step);
    if (row < 0)
        return {};
    const int address = row * 16;
    QByteArray frame;
    frame.append(reading() ? ReadCommand : WriteCommand);
    frame.append(static_cast<char>(address >> 8));
    frame.append(static_cast<char>(address & 0xFF));
    frame.append(RowByteCount);
    if (!reading())
        frame.append(m_state.image.row(row));
    return frame;
}

int CloneEngine::replyLengthFor(int step) const
{
    if (step == 0)
        return 1;
    if (step == 1)
        return radioIdentity().size();
    if (step == m_t.LastStep)
        return 0;
    return reading() ? ReadReplyLength : 1;
}

Actions CloneEngine::resetProgress()
{
    m_progress = 0;
    return {make(Action::Progress, 0)};
}

Actions CloneEngine::wait(WaitKind kind, int ms)
{
    m_wait = kind;
    return {make(Action::Wait, ms)};
}

Actions CloneEngine::drain()
{
    m_wait = WaitKind::Drain;
    return {make(Action::Drain, ReplyQuietMs), make(Action::StartTimeout, TimeoutMs)};
}

Actions CloneEngine::setStatus(const TransferStatus &status)
{
    if (status == m_status)
        return {};
    m_status = status;
    Action action = make(Action::Status);
    action.status = status;
    return {action};
}

void CloneEngine::notePortTried(const QString &device)
{
    for (PortTried &port : m_portsTried) {
        if (port.number == m_state.PortNumber) {
            if (!device.isEmpty())
                port.device = device;
            return;
        }
    }
    m_portsTried.append({m_state.PortNumber, device});
}

TransferOutcome CloneEngine::outcomeOf(TransferOutcome::Kind kind) const
{
    TransferOutcome outcome;
    outcome.kind = kind;
    outcome.read = m_direction == Direction::Read;
    outcome.verifying = m_verifying;
    outcome.port = m_state.PortNumber;
    outcome.chosenPort = m_t.SavedPort;
    outcome.portsTried = m_portsTried;
    outcome.partlyWritten = m_partlyWritten;
    return outcome;
}

Actions CloneEngine::askLostConnection(TransferOutcome::Kind kind)
{
    m_asking = true;
    // What Cancel ends with: kept until the answer.
    if (kind != TransferOutcome::Kind::PortLost) {
        m_outcome = outcomeOf(kind);
        if (kind == TransferOutcome::Kind::WrongIdentification)
            m_outcome.identity = m_refusedIdentity;
    }
    // Nothing to send or time while the question is up.
    Actions actions{make(Action::StopSendTimer)};
    actions += setStatus({});
    Action ask = make(Action::AskLostConnection);
    ask.outcome = m_outcome;
    actions += ask;
    return actions;
}

void CloneEngine::prepare()
{
    m_direction = m_state.LinkDirection == 0 ? Direction::Read : Direction::Write;
    m_t.LastStep = m_direction == Direction::Read ? 262 : 261;
}

Actions CloneEngine::start()
{
    prepare();
    Actions actions{make(Action::StopSendTimer), make(Action::StopTimeout)};
    actions += resetProgress();
    m_t.ScanIndex = 0;
    m_t.SavedPort = m_state.PortNumber;
    actions += TransferDatas();
    return actions;
}

Actions CloneEngine::TransferDatas()
{
    if (!m_portOpen) {
        m_opening = true;
        return {make(Action::OpenPort, m_state.PortNumber)};
    }
    return beginAttempt();
}

Actions CloneEngine::portOpened(const QString &device)
{
    if (!m_opening || m_unloaded)
        return {};
    m_opening = false;
    m_scanOpening = false;
    m_portOpen = true;
    notePortTried(device);
    if (m_reopenBeforeAsking) {
        m_reopenBeforeAsking = false;
        return askLostConnection(m_outcome.kind);
    }
    return beginAttempt();
}

Actions CloneEngine::portFailed(const PortProblem &problem)
{
    if (!m_opening || m_unloaded)
        return {};
    m_opening = false;
    m_reopenBeforeAsking = false;
    notePortTried(problem.device);
    m_outcome = outcomeOf(TransferOutcome::Kind::PortFailed);
    m_outcome.problem = problem;
    // The user chose one port; the search may have met another they never meant.
    m_outcome.chosenByScan = std::exchange(m_scanOpening, false);
    Actions actions{make(Action::StopSendTimer), make(Action::StopTimeout)};
    actions += setStatus({});
    Action report = make(Action::Report);
    report.outcome = m_outcome;
    actions += report;
    actions += unload();
    return actions;
}

Actions CloneEngine::portLost(const PortProblem &problem)
{
    if (m_unloaded || !m_portOpen)
        return {};
    // Nothing more can come or go: stop every timer at once and put the
    // question, whatever step the transfer was at. Retry opens the port again.
    m_portOpen = false;
    m_threshold = 0;
    m_wait = WaitKind::None;
    m_staleBytes = false;
    m_resent = false;
    m_t.Rejected = false;
    Actions actions{make(Action::StopSendTimer), make(Action::StopTimeout), make(Action::SetThreshold, 0),
                    make(Action::ClosePort)};
    if (m_asking)
        return actions;
    m_outcome = outcomeOf(TransferOutcome::Kind::PortLost);
    m_outcome.problem = problem;
    actions += askLostConnection(TransferOutcome::Kind::PortLost);
    return actions;
}

Actions CloneEngine::beginAttempt()
{
    m_resent = false;
    m_refusedIdentity.clear();
    Actions actions{make(Action::DiscardBuffers)};
    actions += resetProgress();
    m_t.Step = 0;
    m_t.SentStep = NothingSent;
    actions += make(Action::StartSendTimer, SendIntervalMs);
    m_t.Finished = false;
    m_t.Rejected = false;
    m_t.RetryCount = 0;
    return actions;
}

Actions CloneEngine::sendTick(qint64 bytesWaiting)
{
    if (m_unloaded || waiting() || m_asking || !m_portOpen || m_t.SentStep == m_t.Step)
        return {};
    // Nothing is awaited now, so whatever is on the line is left over from
    // an earlier exchange; it must not run into the answer to this frame.
    if (m_staleBytes || bytesWaiting > 0)
        return drain();
    Actions actions{make(Action::StopSendTimer)};
    Action send = make(Action::Send);
    send.bytes = frameFor(m_t.Step);
    actions += send;
    m_t.ReplyLength = static_cast<quint8>(replyLengthFor(m_t.Step));
    m_threshold = m_t.ReplyLength;
    actions += make(Action::SetThreshold, m_t.ReplyLength);
    actions += make(Action::StartSendTimer, SendIntervalMs);
    m_t.SentStep = m_t.Step;
    actions += make(Action::StartTimeout, TimeoutMs);
    if (!reading()) {
        // From the first row on, the radio on this port may hold part of the
        // write; the end frame says that it took all of it.
        const int port = m_state.PortNumber;
        if (m_t.Step == m_t.LastStep)
            m_partlyWritten.removeAll(port);
        else if (rowForStep(m_t.Step) >= 0 && !m_partlyWritten.contains(port))
            m_partlyWritten.append(port);
    }
    if (m_t.Step != m_t.LastStep) {
        actions += wait(WaitKind::AfterFrame, WaitAfterFrameMs);
        return actions;
    }
    // The end frame is out: the radio leaves clone mode without a reply.
    actions += make(Action::StopSendTimer);
    actions += make(Action::StopTimeout);
    actions += wait(WaitKind::BeforeClose, WaitBeforeCloseMs);
    return actions;
}

Actions CloneEngine::dataWaiting()
{
    if (m_unloaded || waiting() || m_asking || m_t.Rejected || !m_portOpen || m_threshold == 0)
        return {};
    // Let the rest of a reply that is still arriving come in before reading.
    return wait(WaitKind::BeforeReply, WaitBeforeReplyMs);
}

Actions CloneEngine::waitElapsed()
{
    const WaitKind kind = m_wait;
    m_wait = WaitKind::None;
    switch (kind) {
    case WaitKind::Drain:
        // The line is quiet: the send tick sends the frame.
        m_staleBytes = false;
        return {make(Action::StopTimeout)};
    case WaitKind::BeforeReply:
        return {make(Action::StopTimeout), make(Action::ReadReply)};
    case WaitKind::BeforeClose:
        return endOfSession();
    case WaitKind::None:
    case WaitKind::AfterFrame:
    case WaitKind::AfterFinish:
        break;
    }
    return {};
}

Actions CloneEngine::endOfSession()
{
    // A write to be verified keeps the port: the read-back follows at once.
    if (m_direction == Direction::Write && m_verify && !m_verifying)
        return startVerifying();
    Actions actions{make(Action::ClosePort)};
    m_portOpen = false;
    m_threshold = 0;
    actions += finishTransfer();
    return actions;
}

Actions CloneEngine::startVerifying()
{
    m_verifying = true;
    m_readBack = MemoryImage();
    m_threshold = 0;
    Actions actions{make(Action::SetThreshold, 0)};
    actions += setStatus({TransferStatus::Kind::Verifying, m_state.PortNumber, 0, 0});
    actions += beginAttempt();
    return actions;
}

Actions CloneEngine::replyRead(const QByteArray &reply)
{
    if (m_unloaded)
        return {};
    // More than awaited, another answer is arriving behind this one; after a
    // resend one may still come for the other copy of the frame.
    m_staleBytes = reply.size() > m_t.ReplyLength || std::exchange(m_resent, false);
    if (m_t.Step == 0) {
        // Whatever the radio says before its ACK (line noise as it wakes) is ignored.
        if (!reply.isEmpty() && reply.back() == Ack) {
            m_t.Step = 1;
            return afterAccepted();
        }
        return reject();
    }
    if (m_t.Step == 1) {
        if (reply.startsWith(radioIdentity())) {
            m_t.Step = 2;
            return afterAccepted();
        }
        m_refusedIdentity = reply.left(radioIdentity().size());
        return reject();
    }
    if (m_t.Step == m_t.LastStep)
        return {make(Action::StartTimeout, 1)};

    if (reading()) {
        // No checksum: the row is stored as received; the echoed header is not checked.
        if (reply.size() < ReadReplyLength)
            return reject();
        MemoryImage &target = m_verifying ? m_readBack : m_state.image;
        target.setRow(rowForStep(m_t.Step), QByteArrayView(reply).sliced(ReadReplyHeader, MemoryImage::RowSize));
    } else if (reply.isEmpty() || reply.back() != Ack) {
        return reject();
    }
    Actions actions = countRowDone();
    actions += afterAccepted();
    return actions;
}

Actions CloneEngine::countRowDone()
{
    ++m_t.Step;
    ++m_progress;
    return {make(Action::Progress, m_progress)};
}

Actions CloneEngine::afterAccepted()
{
    if (m_t.Step == FirstUnusedStep)
        m_t.Step = SecondBlockStep;
    if (m_t.Step < m_t.LastStep)
        m_t.SentStep = NothingSent;
    if (m_verifying)
        return setStatus({TransferStatus::Kind::Verifying, m_state.PortNumber, 0, 0});
    return setStatus({});
}

Actions CloneEngine::reject()
{
    m_t.Rejected = true;
    return {make(Action::StopSendTimer), make(Action::StartTimeout, 1)};
}

Actions CloneEngine::timeoutTick()
{
    if (m_wait == WaitKind::Drain) {
        // The line never fell quiet: as good as a rejected reply.
        m_wait = WaitKind::None;
        m_staleBytes = false;
        m_t.Rejected = true;
    }
    if (m_unloaded || waiting() || m_asking || m_opening)
        return {};
    Actions actions{make(Action::StopTimeout)};
    if (m_t.Finished) {
        actions += unload();
        return actions;
    }
    if (m_t.RetryCount < RetryBudget) {
        // Same step again; the progress count restarts from here.
        const bool answered = m_t.Rejected;
        ++m_t.RetryCount;
        m_t.Rejected = false;
        actions += resetProgress();
        actions += make(Action::DiscardBuffers);
        m_t.SentStep = NothingSent;
        m_resent = true;
        actions += make(Action::StartSendTimer, SendIntervalMs);
        actions += setStatus({answered ? TransferStatus::Kind::WrongAnswerRetrying
                                       : TransferStatus::Kind::NoAnswerRetrying,
                              m_state.PortNumber, m_t.RetryCount, RetryBudget});
        actions += drain();
        return actions;
    }
    if (m_t.Step == 0 && m_portScan && !m_verifying) {
        // The opening command was never acknowledged: perhaps the radio hangs
        // on another port. Walk the list once, whichever port was in use.
        const QStringList ports = m_portList();
        if (!ports.isEmpty() && !ports.first().isEmpty() && m_t.ScanIndex < ports.size()) {
            if (m_portOpen) {
                actions += make(Action::ClosePort);
                m_portOpen = false;
            }
            m_state.PortNumber = static_cast<quint8>(portNumberOf(ports.at(m_t.ScanIndex)).value_or(0));
            actions += make(Action::PortChanged, m_state.PortNumber);
            actions += setStatus({TransferStatus::Kind::TryingPort, m_state.PortNumber, 0, 0});
            ++m_t.ScanIndex;
            m_scanOpening = true;
            actions += TransferDatas();
            return actions;
        }
    }
    const TransferOutcome::Kind kind = m_t.Step == 1 && !m_refusedIdentity.isEmpty()
        ? TransferOutcome::Kind::WrongIdentification
        : TransferOutcome::Kind::NoAnswer;
    if (!m_portOpen) {
        m_reopenBeforeAsking = true;
        m_opening = true;
        m_outcome.kind = kind;
        actions += make(Action::OpenPort, m_state.PortNumber);
        return actions;
    }
    actions += askLostConnection(kind);
    return actions;
}

Actions CloneEngine::answered(bool retry)
{
    if (!m_asking)
        return {};
    m_asking = false;
    m_t.Rejected = false;
    if (retry) {
        m_t.Step = 0;
        m_outcome = {};
        if (!m_portOpen) {
            // The port went away: open it again; the attempt starts once it is.
            m_opening = true;
            return {make(Action::OpenPort, m_state.PortNumber)};
        }
        m_t.RetryCount = 0;
        m_resent = false;
        m_refusedIdentity.clear();
        Actions actions = resetProgress();
        actions += make(Action::DiscardBuffers);
        m_t.SentStep = NothingSent;
        actions += make(Action::StartSendTimer, SendIntervalMs);
        if (m_verifying)
            actions += setStatus({TransferStatus::Kind::Verifying, m_state.PortNumber, 0, 0});
        return actions;
    }
    m_t.Rejected = true;
    Actions actions;
    // A search that found nothing gives the chosen port back; a read-back
    // stays on the port that took the write.
    if (m_t.Step == 0 && !m_verifying) {
        m_state.PortNumber = m_t.SavedPort;
        actions += make(Action::PortChanged, m_state.PortNumber);
    }
    actions += unload();
    return actions;
}

void CloneEngine::cancelled()
{
    if (m_unloaded)
        return;
    m_unloaded = true;
    m_outcome = outcomeOf(TransferOutcome::Kind::Cancelled);
}

Actions CloneEngine::finishTransfer()
{
    Actions actions;
    m_outcome = outcomeOf(TransferOutcome::Kind::Completed);
    if (m_direction == Direction::Read) {
        m_state.image.TakeSnapshot();
        m_state.LoadBandLimits();
        actions += make(Action::ReadCompleted);
    } else if (m_verifying) {
        // Every row written, compared with what came back, in the order of the steps.
        for (int step = 2; step < m_t.LastStep; ++step) {
            const int row = rowForStep(step);
            if (row >= 0 && m_readBack.row(row) != m_state.image.row(row))
                m_outcome.differingRows.append(row);
        }
        m_outcome.verifying = false;
        m_outcome.verified = m_outcome.differingRows.isEmpty();
        if (!m_outcome.verified)
            m_outcome.kind = TransferOutcome::Kind::VerificationFailed;
    }
    actions += setStatus({});
    Action report = make(Action::Report);
    report.outcome = m_outcome;
    actions += report;
    m_t.Finished = true;
    actions += make(Action::StartTimeout, 1);
    actions += wait(WaitKind::AfterFinish, WaitAfterFrameMs);
    return actions;
}

Actions CloneEngine::unload()
{
    if (m_unloaded)
        return {};
    m_unloaded = true;
    m_wait = WaitKind::None;
    m_threshold = 0;
    Actions actions{make(Action::StopSendTimer), make(Action::StopTimeout), make(Action::SetThreshold, 0)};
    if (m_portOpen) {
        actions += make(Action::ClosePort);
        m_portOpen = false;
    }
    actions += make(Action::Unload);
    return actions;
}

} // namespace wr
