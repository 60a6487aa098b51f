#pragma once

#include "link/CloneEngine.h"

#include "VirtualRadio.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QSet>
#include <QString>

namespace wr::test {

// Runs a CloneEngine against virtual radios on numbered ports with a made-up
// clock in milliseconds: the engine's timers, waits and the radios' answers
// happen in time order, so a test can follow a whole transfer, time-outs and
// port scan included, in a few milliseconds of real time.
class FakeLink
{
public:
    struct SentFrame
    {
        qint64 atMs;
        int port;
        QByteArray bytes;
    };

    explicit FakeLink(CloneEngine &engine);

    // A radio answering on a port; ports without one are silent but open.
    void attachRadio(int port, sim::VirtualRadio *radio) { m_radios[port] = radio; }
    // A port that refuses to open with this text.
    void refusePort(int port, const QString &errorText) { m_refused[port] = errorText; }
    // Answers of the radio to these frames (counted from 0 over the run) are lost.
    void loseRepliesTo(const QSet<int> &frameIndexes) { m_lost = frameIndexes; }
    // Answers to the lost-connection question, used in order; Cancel when none is left.
    void answerQuestions(const QList<bool> &retries) { m_answers = retries; }

    int replyDelayMs = 5;

    // Starts the engine and runs until the form unloads or limitMs passes.
    void run(qint64 limitMs = 600000);

    qint64 now() const { return m_now; }
    bool unloaded() const { return m_unloaded; }
    const QList<SentFrame> &frames() const { return m_frames; }
    QList<QByteArray> framesTo(int port) const;
    const QList<int> &portChanges() const { return m_portChanges; }
    const QList<int> &progressValues() const { return m_progress; }
    QString lastProgressText() const { return m_progressText; }
    const QStringList &questions() const { return m_questions; }
    QList<qint64> questionTimes() const { return m_questionTimes; }
    const QList<CloneEngine::Action> &messages() const { return m_messages; }
    int readCompletedCount() const { return m_readCompleted; }
    int progressAtFirstMessage() const { return m_progressAtMessage; }

private:
    struct Timer
    {
        bool active = false;
        qint64 dueMs = 0;
        int intervalMs = 0;
    };

    void perform(const CloneEngine::Actions &actions);
    void checkData();

    CloneEngine &m_engine;
    QMap<int, sim::VirtualRadio *> m_radios;
    QMap<int, QString> m_refused;
    QSet<int> m_lost;
    QList<bool> m_answers;

    qint64 m_now = 0;
    Timer m_send;
    Timer m_timeout;
    Timer m_wait;
    int m_openPort = 0;
    QByteArray m_rx;
    QList<QPair<qint64, QByteArray>> m_inFlight;
    int m_threshold = 0;
    bool m_unloaded = false;

    QList<SentFrame> m_frames;
    QList<int> m_portChanges;
    QList<int> m_progress;
    QString m_progressText;
    QStringList m_questions;
    QList<qint64> m_questionTimes;
    QList<CloneEngine::Action> m_messages;
    int m_readCompleted = 0;
    int m_progressAtMessage = -1;
};

} // namespace wr::test
