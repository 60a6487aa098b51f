#include "FakeLink.h"

#include <limits>

namespace wr::test {

FakeLink::FakeLink(CloneEngine &engine)
    : m_engine(engine)
{
}

QList<QByteArray> FakeLink::framesTo(int port) const
{
    QList<QByteArray> result;
    for (const SentFrame &frame : m_frames) {
        if (frame.port == port)
            result.append(frame.bytes);
    }
    return result;
}

void FakeLink::run(qint64 limitMs)
{
    perform(m_engine.start());
    while (!m_unloaded && m_now <= limitMs) {
        // The next thing to happen: a wait ending, an answer arriving, a tick.
        qint64 next = std::numeric_limits<qint64>::max();
        for (const Timer *timer : {&m_wait, &m_timeout, &m_send}) {
            if (timer->active)
                next = std::min(next, timer->dueMs);
        }
        for (const auto &[at, bytes] : std::as_const(m_inFlight))
            next = std::min(next, at);
        if (next == std::numeric_limits<qint64>::max())
            return; // nothing left that could move the transfer on
        m_now = std::max(m_now, next);

        if (!m_inFlight.isEmpty() && m_inFlight.first().first <= m_now) {
            m_rx += m_inFlight.takeFirst().second;
            checkData();
        } else if (m_wait.active && m_wait.dueMs <= m_now) {
            m_wait.active = false;
            perform(m_engine.waitElapsed());
            checkData();
        } else if (m_timeout.active && m_timeout.dueMs <= m_now) {
            m_timeout.dueMs = m_now + m_timeout.intervalMs;
            perform(m_engine.timeoutTick());
            checkData();
        } else if (m_send.active && m_send.dueMs <= m_now) {
            m_send.dueMs = m_now + m_send.intervalMs;
            perform(m_engine.sendTick());
            checkData();
        }
    }
}

void FakeLink::checkData()
{
    if (m_unloaded || m_threshold <= 0 || m_openPort == 0 || m_rx.size() < m_threshold || m_engine.waiting()
        || m_engine.asking())
        return;
    perform(m_engine.dataWaiting());
}

void FakeLink::perform(const CloneEngine::Actions &actions)
{
    using Kind = CloneEngine::Action::Kind;
    for (const CloneEngine::Action &action : actions) {
        if (m_unloaded)
            return;
        switch (action.kind) {
        case Kind::OpenPort:
            if (m_refused.contains(action.value)) {
                perform(m_engine.portFailed(m_refused.value(action.value)));
            } else {
                m_openPort = action.value;
                perform(m_engine.portOpened());
            }
            break;
        case Kind::ClosePort:
            m_openPort = 0;
            m_rx.clear();
            m_inFlight.clear();
            break;
        case Kind::DiscardBuffers:
            m_rx.clear();
            break;
        case Kind::Send: {
            const int index = static_cast<int>(m_frames.size());
            m_frames.append({m_now, m_openPort, action.bytes});
            sim::VirtualRadio *radio = m_radios.value(m_openPort);
            if (radio) {
                const QByteArray answer = radio->receive(action.bytes);
                if (!answer.isEmpty() && !m_lost.contains(index))
                    m_inFlight.append({m_now + replyDelayMs, answer});
            }
            break;
        }
        case Kind::SetThreshold:
            m_threshold = action.value;
            break;
        case Kind::StartSendTimer:
            m_send = {true, m_now + action.value, action.value};
            break;
        case Kind::StopSendTimer:
            m_send.active = false;
            break;
        case Kind::StartTimeout:
            m_timeout = {true, m_now + action.value, action.value};
            break;
        case Kind::StopTimeout:
            m_timeout.active = false;
            break;
        case Kind::Wait:
            m_wait = {true, m_now + action.value, action.value};
            break;
        case Kind::ReadReply: {
            const QByteArray reply = m_rx;
            m_rx.clear();
            perform(m_engine.replyRead(reply));
            break;
        }
        case Kind::Progress:
            m_progress.append(action.value);
            m_progressText = action.text;
            break;
        case Kind::PortChanged:
            m_portChanges.append(action.value);
            break;
        case Kind::AskLostConnection:
            m_questions.append(action.text);
            m_questionTimes.append(m_now);
            perform(m_engine.answered(m_answers.isEmpty() ? false : m_answers.takeFirst()));
            break;
        case Kind::ShowMessage:
            if (m_progressAtMessage < 0)
                m_progressAtMessage = m_progress.isEmpty() ? 0 : m_progress.last();
            m_messages.append(action);
            break;
        case Kind::ReadCompleted:
            ++m_readCompleted;
            break;
        case Kind::Unload:
            m_unloaded = true;
            m_send.active = m_timeout.active = m_wait.active = false;
            break;
        }
    }
}

} // namespace wr::test
