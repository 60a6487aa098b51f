#pragma once

#include "core/MemoryImage.h"
#include "link/TransferOutcome.h"

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
//
// Reading back a write. The radio answers a write row with an ACK that says
// nothing about what it stored. With verification on, the session that
// wrote the rows ends with "END" as always, and a second session on the
// same port reads the same rows in the same order (steps 2-260 as read
// requests, "END" at 261), keeping them apart from the image; the write
// counts as done only when every row came back equal. The read-back is an
// attempt like any other, with its own retry budget and the question at its
// end, but no port search: the radio was on this port a moment ago.
//
// A radio partly written. The radio stores each row as it takes it, and
// nothing in the protocol rolls one back. From the first write request sent
// on a port until the end frame of that write has gone out, the radio on
// that port may hold new rows beside old ones: channels without their
// in-use marks, or without the settings that go with them. A write that
// fails before its first row (no answer to "PROGRAM", another radio's
// identification, a port that will not open) leaves the radio as it was;
// so does a read-back that fails after the write went through. Whatever
// ends the transfer, the outcome lists the ports left partly written.
//
// The engine speaks no language: it ends with a TransferOutcome and reports
// its progress and status as numbers; the forms and the tool word them.
class CloneEngine
{
public:
    enum class Direction { Read = 0, Write = 1 };

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
            Progress,          // value: 0-188
            Status,            // status: what the transfer is doing beyond the progress
            PortChanged,       // value: the new PortNumber, for the status bar
            AskLostConnection, // outcome: what Cancel would end with; answer with answered()
            Report,            // outcome: how the transfer ended, told before the form closes
            ReadCompleted,     // image, snapshot and band limits are new: refresh
            Unload,            // the transfer is over (outcome()); close the form
        };
        Kind kind = Unload;
        int value = 0;
        QByteArray bytes;
        TransferStatus status;
        TransferOutcome outcome;
    };
    using Actions = QList<Action>;

    // The transfer state, under the names the clone protocol gives it.
    struct TransferState
    {
        qint16 Step = 0;            // the step being worked on; 0 at the start of an attempt
        qint16 SentStep = NothingSent; // the step whose frame is out
        qint16 LastStep = 262;      // the end frame's step: 262 for a read, 261 for a write
        quint8 ReplyLength = 0;     // awaited length of the reply to the frame just sent
        bool Finished = false;      // the transfer has ended and the form is to unload
        bool Rejected = false;      // a reply was refused or the user cancelled
        quint8 RetryCount = 0;      // automatic retries since the attempt began, 0-7
        quint8 ScanIndex = 0;       // next entry of the port list for the port search
        quint8 SavedPort = 1;       // PortNumber as the transfer started
    };

    static constexpr int ProgressMaximum = 188;
    static constexpr int RetryBudget = 7;
    static constexpr int TimeoutMs = 300;
    static constexpr int SendIntervalMs = 1;
    static constexpr int WaitAfterFrameMs = 20;
    static constexpr int WaitBeforeReplyMs = 10;
    static constexpr int WaitBeforeCloseMs = 5;
    static constexpr int ReplyQuietMs = 25;
    static constexpr qint16 NothingSent = 1800; // SentStep when the frame of Step is still to go
    static constexpr char Ack = 0x06;
    static constexpr char IdentifyRequest = 0x02;
    static const QByteArray &openingCommand(); // "PROGRAM"
    static const QByteArray &radioIdentity();  // "QAWPD6T"
    static const QByteArray &endFrame();       // "END"

    // The image, band limits and PortNumber of state are used and changed in
    // place. portList gives the PortList of the scan (GetPortList when empty).
    explicit CloneEngine(AppState &state, std::function<QStringList()> portList = {});

    // With the port scan off, a radio that never acknowledges the opening
    // command is not looked for on the other ports: the question follows the
    // spent budget at once. For several radios on their own cables, where
    // another port belongs to another transfer. On by default.
    void setPortScan(bool on) { m_portScan = on; }
    bool portScan() const { return m_portScan; }
    // With verification on, a completed write is read back, row by row over
    // the same port, and compared with the image before it counts as done.
    // Off by default; reads ignore it.
    void setVerify(bool on) { m_verify = on; }
    bool verify() const { return m_verify; }

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
    // The form was closed: the driver has stopped everything. The outcome
    // says Cancelled unless the transfer had already ended.
    void cancelled();

    // The frame and the awaited reply length of a step, for the direction
    // (a read while the write is verified).
    QByteArray frameFor(int step) const;
    int replyLengthFor(int step) const;
    // Image row moved by a data step; -1 for steps that move none.
    static int rowForStep(int step);

    Direction direction() const { return m_direction; }
    const TransferState &transfer() const { return m_t; }
    // How the transfer ended; meaningful once it has unloaded.
    const TransferOutcome &outcome() const { return m_outcome; }
    TransferStatus status() const { return m_status; }
    int progress() const { return m_progress; }
    bool waiting() const { return m_wait != WaitKind::None; }
    bool asking() const { return m_asking; }
    bool portOpen() const { return m_portOpen; }
    bool verifying() const { return m_verifying; }
    int threshold() const { return m_threshold; }

private:
    enum class WaitKind { None, AfterFrame, BeforeReply, BeforeClose, AfterFinish, Drain };

    Actions TransferDatas();
    Actions drain();
    Actions setStatus(const TransferStatus &status);
    Actions askLostConnection(TransferOutcome::Kind kind);
    TransferOutcome outcomeOf(TransferOutcome::Kind kind) const;
    void notePortTried(const QString &device);
    Actions beginAttempt();
    Actions reject();
    Actions countRowDone();
    Actions afterAccepted();
    Actions endOfSession();
    Actions startVerifying();
    Actions finishTransfer();
    Actions resetProgress();
    Actions wait(WaitKind kind, int ms);
    Actions unload();
    bool reading() const { return m_direction == Direction::Read || m_verifying; }

    AppState &m_state;
    std::function<QStringList()> m_portList;
    TransferState m_t;
    TransferOutcome m_outcome;
    Direction m_direction = Direction::Read;
    WaitKind m_wait = WaitKind::None;
    int m_progress = 0;
    int m_threshold = 0;
    bool m_portScan = true;
    bool m_verify = false;
    bool m_verifying = false;   // the write is done; its rows are being read back
    bool m_portOpen = false;
    bool m_opening = false;
    bool m_asking = false;
    bool m_unloaded = false;
    bool m_reopenBeforeAsking = false;
    bool m_scanOpening = false; // the port being opened was chosen by the port scan
    bool m_staleBytes = false;  // drain before the next frame: the last reply was long, or followed a resend
    bool m_resent = false;      // the frame awaiting its reply has been sent more than once
    QByteArray m_refusedIdentity; // the last identification refused, empty when none
    QList<int> m_partlyWritten; // ports sent write requests whose end frame has not gone out
    TransferStatus m_status;
    QList<PortTried> m_portsTried;
    MemoryImage m_readBack;     // the rows read back while verifying, in their image rows
};

} // namespace wr
