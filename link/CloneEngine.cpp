#include "link/CloneEngine.h"

#include "core/AppState.h"
#include "core/Language.h"
#include "link/PortCatalogue.h"

#include <utility>

namespace wr {

namespace {

using Action = CloneEngine::Action;
using Actions = CloneEngine::Actions;

constexpr char Ack = 0x06;
constexpr char IdentifyRequest = 0x02;
constexpr char ReadCommand = 'R';
constexpr char WriteCommand = 'W';
constexpr char RowByteCount = 0x10;
constexpr int ReadReplyLength = 20;  // 4 bytes the radio echoes, then the row
constexpr int ReadReplyHeader = 4;

// Steps 130-201 are never used: the rows behind them (128-199) hold nothing
// the radio lets the program change.
constexpr qint16 FirstUnusedStep = 130;
constexpr qint16 SecondBlockStep = 202;

const QByteArray &openingCommand()
{
    static const QByteArray bytes = QByteArrayLiteral("PROGRAM");
    return bytes;
}

const QByteArray &radioIdentity()
{
    static const QByteArray bytes = QByteArrayLiteral("QAWPD6T");
    return bytes;
}

const QByteArray &endFrame()
{
    static const QByteArray bytes = QByteArrayLiteral("END");
    return bytes;
}

constexpr Text ReadCaption{u"Read data from radio", u"从对讲机读取数据", u"從對講機讀取數據"};
constexpr Text WriteCaption{u"Write data to radio", u"向对讲机写入数据", u"向對講機寫入數據"};
constexpr Text ProgressCaption{u"Completion percentage", u"完成进度", u"完成進度"};
constexpr Text LostConnection{u"Check Connection. Retry or Cancel?", u"检测连接。重试或取消？",
                              u"檢測連接。重試或取消？"};
constexpr Text ReadDone{u"Reading completed!", u"成功读完！", u"成功讀完"};
constexpr Text WriteDone{u"Writing completed!", u"成功写完！", u"成功寫完"};

constexpr Text NoAnswer{u"No answer on %1, retrying (%2 of %3)\u2026",
    u"%1 无应答，正在重试（第 %2 次，共 %3 次）\u2026",
    u"%1 無應答，正在重試（第 %2 次，共 %3 次）\u2026"};

constexpr Text WrongAnswer{u"Unexpected answer on %1, retrying (%2 of %3)\u2026",
    u"%1 应答有误，正在重试（第 %2 次，共 %3 次）\u2026",
    u"%1 應答有誤，正在重試（第 %2 次，共 %3 次）\u2026"};

constexpr Text TryingPort{u"Trying %1\u2026",
    u"正在尝试 %1\u2026",
    u"正在嘗試 %1\u2026"};

Action make(Action::Kind kind, int value = 0)
{
    Action action;
    action.kind = kind;
    action.value = value;
    return action;
}

// The number made by the characters after the first three of a port name
// (COM7 gives 7): leading digits only.
quint8 portNumberOf(const QString &name)
{
    int number = 0;
    for (const QChar c : name.mid(3)) {
        if (!c.isDigit())
            break;
        number = number * 10 + c.digitValue();
        if (number > 255)
            return 0;
    }
    return static_cast<quint8>(number);
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

QByteArray CloneEngine::frameFor(int step) const
{
    if (step == 0)
        return openingCommand();
    if (step == 1)
        return QByteArray(1, IdentifyRequest);
    if (step == LastStep)
        return endFrame();
    const int row = rowForStep(step);
    if (row < 0)
        return {};
    const int address = row * 16;
    QByteArray frame;
    frame.append(m_direction == Direction::Read ? ReadCommand : WriteCommand);
    frame.append(static_cast<char>(address >> 8));
    frame.append(static_cast<char>(address & 0xFF));
    frame.append(RowByteCount);
    if (m_direction == Direction::Write)
        frame.append(m_state.image.row(row));
    return frame;
}

int CloneEngine::replyLengthFor(int step) const
{
    if (step == 0)
        return 1;
    if (step == 1)
        return radioIdentity().size();
    if (step == LastStep)
        return 0;
    return m_direction == Direction::Read ? ReadReplyLength : 1;
}

QString CloneEngine::caption() const
{
    return (m_direction == Direction::Read ? ReadCaption : WriteCaption).in(m_state.LanguageIndex);
}

QString CloneEngine::progressText() const
{
    // Whole percent, rounded to nearest; n * 100 / 188 never ends in exactly .5.
    const int percent = (m_progress * 100 + ProgressMaximum / 2) / ProgressMaximum;
    return ProgressCaption.in(m_state.LanguageIndex) + QStringLiteral(":  %1%").arg(percent);
}

Actions CloneEngine::resetProgress()
{
    m_progress = 0;
    Action action = make(Action::Progress, 0);
    action.text = progressText();
    return {action};
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

Actions CloneEngine::setStatus(const QString &text)
{
    if (text == m_status)
        return {};
    m_status = text;
    Action action = make(Action::Status);
    action.text = text;
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

QString CloneEngine::lostConnectionText(int language, const QString &detail)
{
    return LostConnection.in(language) + QStringLiteral("\n\n") + detail;
}

QString CloneEngine::lostConnectionTitle(int language)
{
    return Words::Error.in(language);
}

Actions CloneEngine::askLostConnection(const QString &detail)
{
    m_asking = true;
    // Nothing to send or time while the question is up.
    Actions actions{make(Action::StopSendTimer)};
    actions += setStatus({});
    Action ask = make(Action::AskLostConnection);
    ask.text = lostConnectionText(m_state.LanguageIndex, detail);
    ask.title = lostConnectionTitle(m_state.LanguageIndex);
    actions += ask;
    return actions;
}

void CloneEngine::prepare()
{
    m_direction = m_state.LinkDirection == 0 ? Direction::Read : Direction::Write;
    LastStep = m_direction == Direction::Read ? 262 : 261;
}

Actions CloneEngine::start()
{
    prepare();
    Actions actions{make(Action::StopSendTimer), make(Action::StopTimeout)};
    actions += resetProgress();
    ScanIndex = 0;
    SavedPort = m_state.PortNumber;
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
        return askLostConnection(portsTriedLine(m_portsTried, m_state.LanguageIndex));
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
    Action message = make(Action::ShowMessage);
    message.text = describePortProblem(m_state.PortNumber, problem, m_state.LanguageIndex);
    // The user chose one port; the search may have met another they never meant.
    if (std::exchange(m_scanOpening, false))
        message.text += u'\n' + scanNote(m_state.PortNumber, SavedPort, m_state.LanguageIndex);
    message.title = ModelName();
    message.icon = MessageIcon::Exclamation;
    Actions actions{make(Action::StopSendTimer), make(Action::StopTimeout)};
    actions += setStatus({});
    actions += message;
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
    Rejected = false;
    Actions actions{make(Action::StopSendTimer), make(Action::StopTimeout), make(Action::SetThreshold, 0),
                    make(Action::ClosePort)};
    if (m_asking)
        return actions;
    actions += askLostConnection(describePortProblem(m_state.PortNumber, problem, m_state.LanguageIndex));
    return actions;
}

Actions CloneEngine::beginAttempt()
{
    m_resent = false;
    Actions actions{make(Action::DiscardBuffers)};
    actions += resetProgress();
    Step = 0;
    SentStep = NothingSent;
    actions += make(Action::StartSendTimer, SendIntervalMs);
    Finished = false;
    Rejected = false;
    RetryCount = 0;
    return actions;
}

Actions CloneEngine::sendTick(qint64 bytesWaiting)
{
    if (m_unloaded || waiting() || m_asking || !m_portOpen || SentStep == Step)
        return {};
    // Nothing is awaited now, so whatever is on the line is left over from
    // an earlier exchange; it must not run into the answer to this frame.
    if (m_staleBytes || bytesWaiting > 0)
        return drain();
    Actions actions{make(Action::StopSendTimer)};
    Action send = make(Action::Send);
    send.bytes = frameFor(Step);
    actions += send;
    ReplyLength = static_cast<quint8>(replyLengthFor(Step));
    m_threshold = ReplyLength;
    actions += make(Action::SetThreshold, ReplyLength);
    actions += make(Action::StartSendTimer, SendIntervalMs);
    SentStep = Step;
    actions += make(Action::StartTimeout, TimeoutMs);
    if (Step != LastStep) {
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
    if (m_unloaded || waiting() || m_asking || Rejected || !m_portOpen || m_threshold == 0)
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
    case WaitKind::BeforeClose: {
        Actions actions{make(Action::ClosePort)};
        m_portOpen = false;
        m_threshold = 0;
        actions += finishTransfer();
        return actions;
    }
    case WaitKind::None:
    case WaitKind::AfterFrame:
    case WaitKind::AfterFinish:
        break;
    }
    return {};
}

Actions CloneEngine::replyRead(const QByteArray &reply)
{
    if (m_unloaded)
        return {};
    // More than awaited, another answer is arriving behind this one; after a
    // resend one may still come for the other copy of the frame.
    m_staleBytes = reply.size() > ReplyLength || std::exchange(m_resent, false);
    if (Step == 0) {
        // Whatever the radio says before its ACK (line noise as it wakes) is ignored.
        if (!reply.isEmpty() && reply.back() == Ack) {
            Step = 1;
            return afterAccepted();
        }
        return reject();
    }
    if (Step == 1) {
        if (reply.startsWith(radioIdentity())) {
            Step = 2;
            return afterAccepted();
        }
        return reject();
    }
    if (Step == LastStep)
        return {make(Action::StartTimeout, 1)};

    if (m_direction == Direction::Read) {
        // No checksum: the row is stored as received; the echoed header is not checked.
        if (reply.size() < ReadReplyLength)
            return reject();
        m_state.image.setRow(rowForStep(Step), QByteArrayView(reply).sliced(ReadReplyHeader, MemoryImage::RowSize));
    } else if (reply.isEmpty() || reply.back() != Ack) {
        return reject();
    }
    Actions actions = countRowDone();
    actions += afterAccepted();
    return actions;
}

Actions CloneEngine::countRowDone()
{
    ++Step;
    ++m_progress;
    Action action = make(Action::Progress, m_progress);
    action.text = progressText();
    return {action};
}

Actions CloneEngine::afterAccepted()
{
    if (Step == FirstUnusedStep)
        Step = SecondBlockStep;
    if (Step < LastStep)
        SentStep = NothingSent;
    return setStatus({});
}

Actions CloneEngine::reject()
{
    Rejected = true;
    return {make(Action::StopSendTimer), make(Action::StartTimeout, 1)};
}

Actions CloneEngine::timeoutTick()
{
    if (m_wait == WaitKind::Drain) {
        // The line never fell quiet: as good as a rejected reply.
        m_wait = WaitKind::None;
        m_staleBytes = false;
        Rejected = true;
    }
    if (m_unloaded || waiting() || m_asking || m_opening)
        return {};
    Actions actions{make(Action::StopTimeout)};
    if (Finished) {
        actions += unload();
        return actions;
    }
    if (RetryCount < RetryBudget) {
        // Same step again; the progress count restarts from here.
        const bool answered = Rejected;
        ++RetryCount;
        Rejected = false;
        actions += resetProgress();
        actions += make(Action::DiscardBuffers);
        SentStep = NothingSent;
        m_resent = true;
        actions += make(Action::StartSendTimer, SendIntervalMs);
        actions += setStatus((answered ? WrongAnswer : NoAnswer)
                                 .in(m_state.LanguageIndex)
                                 .arg(QStringLiteral("COM%1").arg(m_state.PortNumber))
                                 .arg(RetryCount)
                                 .arg(RetryBudget));
        actions += drain();
        return actions;
    }
    if (Step == 0 && m_portScan) {
        // The opening command was never acknowledged: perhaps the radio hangs
        // on another port. Walk the list once, whichever port was in use.
        const QStringList ports = m_portList();
        if (!ports.isEmpty() && !ports.first().isEmpty() && ScanIndex < ports.size()) {
            if (m_portOpen) {
                actions += make(Action::ClosePort);
                m_portOpen = false;
            }
            m_state.PortNumber = portNumberOf(ports.at(ScanIndex));
            actions += make(Action::PortChanged, m_state.PortNumber);
            actions += setStatus(
                TryingPort.in(m_state.LanguageIndex).arg(QStringLiteral("COM%1").arg(m_state.PortNumber)));
            ++ScanIndex;
            m_scanOpening = true;
            actions += TransferDatas();
            return actions;
        }
    }
    if (!m_portOpen) {
        m_reopenBeforeAsking = true;
        m_opening = true;
        actions += make(Action::OpenPort, m_state.PortNumber);
        return actions;
    }
    actions += askLostConnection(portsTriedLine(m_portsTried, m_state.LanguageIndex));
    return actions;
}

Actions CloneEngine::answered(bool retry)
{
    if (!m_asking)
        return {};
    m_asking = false;
    Rejected = false;
    if (retry) {
        Step = 0;
        if (!m_portOpen) {
            // The port went away: open it again; the attempt starts once it is.
            m_opening = true;
            return {make(Action::OpenPort, m_state.PortNumber)};
        }
        RetryCount = 0;
        m_resent = false;
        Actions actions = resetProgress();
        actions += make(Action::DiscardBuffers);
        SentStep = NothingSent;
        actions += make(Action::StartSendTimer, SendIntervalMs);
        return actions;
    }
    Rejected = true;
    Actions actions;
    if (Step == 0) {
        m_state.PortNumber = SavedPort;
        actions += make(Action::PortChanged, m_state.PortNumber);
    }
    actions += unload();
    return actions;
}

Actions CloneEngine::finishTransfer()
{
    Actions actions;
    Action message = make(Action::ShowMessage);
    message.title = ModelName();
    message.icon = MessageIcon::Information;
    if (m_direction == Direction::Read) {
        m_state.image.TakeSnapshot();
        m_state.LoadBandLimits();
        actions += make(Action::ReadCompleted);
        message.text = ReadDone.in(m_state.LanguageIndex);
    } else {
        message.text = WriteDone.in(m_state.LanguageIndex);
    }
    actions += message;
    Finished = true;
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
