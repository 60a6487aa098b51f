#pragma once

#include "core/MemoryImage.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QList>

#include <functional>

namespace wr::sim {

// Ways the virtual radio can misbehave, to exercise the program's recovery.
struct RadioFaults
{
    bool silent = false;          // never answers anything
    bool wrongId = false;         // identifies as "QAWPD7T", one character off
    bool noiseBeforeAck = false;  // a few stray bytes before the ACK to "PROGRAM"
    int dropReplyRow = -1;        // ignores the first request for this row
    int delayMs = 0;              // every answer starts this much later
    int hangUpAfterRows = -1;     // stops answering after that many rows, until the next "PROGRAM"
    bool nakWrites = false;       // answers write requests with NAK and keeps nothing
    // The first answer for this row comes LateReplyMs after the request, past
    // the program's time-out; requests that arrive meanwhile wait their turn.
    int lateReplyRow = -1;
    // The first answer for this row starts SplitReplyMs after the request
    // and its second half follows SplitGapMs later, across the time-out.
    int splitReplyRow = -1;
    // The first write of this row is acknowledged twice, the second ACK
    // DuplicateAckMs after the first.
    int duplicateAckRow = -1;
    // Every write of this row is acknowledged, but one byte of it is stored wrong.
    int corruptRow = -1;
    // No radio at all: a cable whose chip sends back every byte it gets.
    bool echo = false;
    // Answers at another line speed: every byte of every answer arrives mangled.
    bool wrongSpeed = false;
};

// The radio's side of the clone protocol, without any port or clock: bytes
// from the PC go in, the radio's answer comes out at once. The radio holds
// its own 16 KB memory, the same layout as the program's image.
//
//   PC -> radio                              radio -> PC
//   "PROGRAM"                                06          (enters clone mode)
//   02                                       "QAWPD6T"
//   'R' hi lo 10                             'R' hi lo 10 + 16 bytes of row (hi lo)/16
//   'W' hi lo 10 + 16 bytes                  06          (row stored)
//   "END"                                    nothing     (clone mode ends)
//
// Outside clone mode everything but "PROGRAM" is ignored; inside it a byte
// that starts no known frame is dropped.
//
// The radio works on one request at a time: an answer never overtakes the
// answer to an earlier request, however late that one is, and one that has
// to wait for another starts AnswerGapMs after it, the time the radio takes
// to turn to the next request.
class VirtualRadio
{
public:
    static constexpr char Ack = 0x06;
    static constexpr char Nak = 0x15;
    static constexpr int LateReplyMs = 450;
    static constexpr int SplitReplyMs = 290;
    static constexpr int SplitGapMs = 20;
    static constexpr int DuplicateAckMs = 40;
    static constexpr int AnswerGapMs = 12;
    static constexpr int CorruptColumn = 7; // the byte --corrupt-row stores wrong

    // Part of an answer: its bytes leave the radio atMs after the request was
    // in, or as soon as the part before them is out, whichever is later.
    struct Piece
    {
        int atMs = 0;
        QByteArray bytes;
    };
    using Answer = QList<Piece>;

    explicit VirtualRadio(RadioFaults faults = {});

    MemoryImage &memory() { return m_memory; }
    const MemoryImage &memory() const { return m_memory; }
    const RadioFaults &faults() const { return m_faults; }

    // Feeds bytes as they arrive (any split); returns the answer to send.
    Answer receive(QByteArrayView bytes);
    // The bytes of an answer, all timing aside.
    static QByteArray bytesOf(const Answer &answer);

    bool inSession() const { return m_inSession; }
    int sessionsEnded() const { return m_sessionsEnded; }
    int rowsAnswered() const { return m_rowsAnswered; }

    // Called when "END" closes a session.
    std::function<void()> onSessionEnded;

private:
    Answer takeFrames();
    Answer answerRow(char command, int address, QByteArrayView rowBytes);
    Answer timed(const QByteArray &bytes) const;

    RadioFaults m_faults;
    MemoryImage m_memory;
    QByteArray m_pending;
    bool m_inSession = false;
    bool m_hungUp = false;
    int m_sessionsEnded = 0;
    int m_rowsAnswered = 0;
};

} // namespace wr::sim
