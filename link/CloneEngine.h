#pragma once

#include "link/PortProblem.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

namespace wr {

struct AppState;

// The radio's clone protocol, half duplex, one frame in flight, no checksum:
//
//   PC -> radio                                      radio -> PC
//   "PROGRAM"  50 52 4F 47 52 41 4D                  06 (ACK; earlier bytes ignored)
//   02                                               "QAWPD6T" (7 bytes)
//   'R' addrHi addrLo 10                             4 bytes (not examined) + 16 row bytes
//   'W' addrHi addrLo 10 + 16 row bytes              06
//   "END"      45 4E 44                              nothing
//
// A transfer is a fixed list of steps, one frame each:
//
//   step     read                         write
//   0        "PROGRAM"                    "PROGRAM"
//   1        02                           02
//   2-129    R rows 0-127                 W rows 0-127      (after 129 comes 202)
//   202-249  R rows 200-247               W rows 200-247
//   250-260  R rows 399-409               W rows 399-409
//   261      R row 416 (band limits)      "END"
//   262      "END"                        -
//
// The engine owns neither the port nor any timer. The driver feeds it events
// (send tick, time-out tick, bytes waiting, a finished wait, the user's
// answer, the port opened, failed or lost) and carries out the actions it
// returns, in order. A short wait is an action too, so the user-interface
// thread never blocks; until the driver reports it elapsed the engine
// ignores ticks and leaves waiting bytes alone, which keeps the order of the
// exchange.
//
// Keeping replies in step. Nothing in a reply says which request it answers,
// so a reply that comes late, or is cut in two by the time-out, would run
// into the answer to the resend and put bytes of one row into another. The
// line is therefore drained before a frame is sent again: whatever is
// waiting is dropped, and so is every byte that follows, until nothing has
// come in for ReplyQuietMs, the time one whole read reply takes on the cable
// (20 bytes of 11 bits at 9600 baud: 23 ms). A new frame meets the same
// drain only when bytes may be stale: when the frame before it had to be
// sent again (the radio may yet answer the other copy), when the reply just
// read was longer than awaited, or when bytes are waiting as the frame falls
// due. A radio that answers just what it is asked never meets it and sees
// the same bytes at the same times as ever.
//
// Where the drain sits among the waits. Each frame still goes: send, wait
// 20 ms, reply complete, wait 10 ms, read; 300 ms after the send the
// time-out tick gives up on it. After a time-out or a rejected reply the
// steps stay in their order (count the retry, progress back to 0, discard
// both buffers, start the send timer) and the drain stretches the discard
// until the line is quiet; the send timer runs meanwhile but sends nothing,
// as it sends nothing during a wait. A drain before a new frame stands in
// the same place between the read and the send. While a drain lasts the
// 300 ms time-out is armed, so a line that never falls quiet counts as one
// more failed frame against the retry budget of 7.
class CloneEngine
{
public:
    enum class Direction { Read = 0, Write = 1 };
    enum class MessageIcon { Information, Exclamation };

    struct Action
    {
        enum Kind {
            OpenPort,          // value: port number; answer with portOpened() or portFailed()
            ClosePort,
            DiscardBuffers,    // drop what is waiting in and queued out
            Send,              // bytes
            SetThreshold,      // value: bytes waiting that raise dataWaiting(); 0 = off
            StartSendTimer,    // value: interval in ms, periodic
            StopSendTimer,
            StartTimeout,      // value: interval in ms, periodic until stopped
            StopTimeout,
            Wait,              // value: ms; answer with waitElapsed()
            Drain,             // value: ms; drop every byte waiting or arriving until none has
                               // come for that long, then answer with waitElapsed()
            ReadReply,         // read every waiting byte; answer with replyRead()
            Progress,          // value: 0-188, text: the label
            Status,            // text: what the transfer is doing beyond the progress; empty when nothing
            PortChanged,       // value: the new PortNumber, for the status bar
            AskLostConnection, // text, title; answer with answered()
            ShowMessage,       // text, title, icon
            ReadCompleted,     // image, snapshot and band limits are new: refresh
            Unload,            // the transfer is over; close the form
        };
        Kind kind = Unload;
        int value = 0;
        QByteArray bytes;
        QString text;
        QString title;
        MessageIcon icon = MessageIcon::Information;
    };
    using Actions = QList<Action>;

    static constexpr int ProgressMaximum = 188;
    static constexpr int RetryBudget = 7;
    static constexpr int TimeoutMs = 300;
    static constexpr int SendIntervalMs = 1;
    static constexpr int WaitAfterFrameMs = 20;
    static constexpr int WaitBeforeReplyMs = 10;
    static constexpr int WaitBeforeCloseMs = 5;
    static constexpr int ReplyQuietMs = 25;
    static constexpr qint16 NothingSent = 1800; // SentStep when the frame of Step is still to go

    // The image, band limits, PortNumber and language of state are used and
    // changed in place. portList gives the PortList of the scan (GetPortList
    // when empty).
    explicit CloneEngine(AppState &state, std::function<QStringList()> portList = {});

    // With the port scan off, a radio that never acknowledges the opening
    // command is not looked for on the other ports: the question follows the
    // spent budget at once. For several radios on their own cables, where
    // another port belongs to another transfer. On by default.
    void setPortScan(bool on) { m_portScan = on; }
    bool portScan() const { return m_portScan; }

    // Takes the direction from LinkDirection (enough for the captions).
    void prepare();
    // Form load: remembers the port and starts the transfer.
    Actions start();

    // bytesWaiting: what the receive buffer holds as the tick comes.
    Actions sendTick(qint64 bytesWaiting);
    Actions timeoutTick();
    Actions dataWaiting();
    Actions waitElapsed();
    Actions replyRead(const QByteArray &reply);
    // device: what the port's name stands for, for the messages.
    Actions portOpened(const QString &device = {});
    Actions portFailed(const PortProblem &problem);
    // The open port went away (a cable pulled); the driver has closed it.
    Actions portLost(const PortProblem &problem);
    Actions answered(bool retry);

    // The frame and the awaited reply length of a step, for the direction.
    QByteArray frameFor(int step) const;
    int replyLengthFor(int step) const;
    // Image row moved by a data step; -1 for steps that move none.
    static int rowForStep(int step);
    // The lost-connection question with what is said under it, and its title.
    static QString lostConnectionText(int language, const QString &detail);
    static QString lostConnectionTitle(int language);

    Direction direction() const { return m_direction; }
    QString caption() const;
    QString progressText() const;
    QString status() const { return m_status; }
    int progress() const { return m_progress; }
    bool waiting() const { return m_wait != WaitKind::None; }
    bool asking() const { return m_asking; }
    bool portOpen() const { return m_portOpen; }
    int threshold() const { return m_threshold; }

    // The transfer state, under the names the clone protocol gives it.
    qint16 Step = 0;
    qint16 SentStep = NothingSent;
    qint16 LastStep = 262;
    quint8 ReplyLength = 0;
    bool Finished = false;
    bool Rejected = false;
    quint8 RetryCount = 0;
    quint8 ScanIndex = 0;
    quint8 SavedPort = 1;

private:
    enum class WaitKind { None, AfterFrame, BeforeReply, BeforeClose, AfterFinish, Drain };

    Actions TransferDatas();
    Actions drain();
    Actions setStatus(const QString &text);
    Actions askLostConnection(const QString &detail);
    void notePortTried(const QString &device);
    Actions beginAttempt();
    Actions reject();
    Actions countRowDone();
    Actions afterAccepted();
    Actions finishTransfer();
    Actions resetProgress();
    Actions wait(WaitKind kind, int ms);
    Actions unload();

    AppState &m_state;
    std::function<QStringList()> m_portList;
    Direction m_direction = Direction::Read;
    WaitKind m_wait = WaitKind::None;
    int m_progress = 0;
    int m_threshold = 0;
    bool m_portScan = true;
    bool m_portOpen = false;
    bool m_opening = false;
    bool m_asking = false;
    bool m_unloaded = false;
    bool m_reopenBeforeAsking = false;
    bool m_scanOpening = false; // the port being opened was chosen by the port scan
    bool m_staleBytes = false;  // drain before the next frame: the last reply was long, or followed a resend
    bool m_resent = false;      // the frame awaiting its reply has been sent more than once
    QString m_status;
    QList<PortTried> m_portsTried;
};

} // namespace wr
