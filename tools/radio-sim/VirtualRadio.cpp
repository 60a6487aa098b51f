#include "VirtualRadio.h"

#include <utility>

namespace wr::sim {

namespace {

const QByteArray &programCommand()
{
    static const QByteArray bytes = QByteArrayLiteral("PROGRAM");
    return bytes;
}

constexpr int ReadFrameLength = 4;
constexpr int WriteFrameLength = 4 + MemoryImage::RowSize;
constexpr char RowByteCount = 0x10;

} // namespace

VirtualRadio::VirtualRadio(RadioFaults faults)
    : m_faults(faults)
{
}

VirtualRadio::Answer VirtualRadio::receive(QByteArrayView bytes)
{
    if (m_faults.echo)
        return {Piece{0, bytes.toByteArray()}};
    m_pending.append(bytes);
    Answer answer = takeFrames();
    if (m_faults.wrongSpeed) {
        // Read at the wrong speed, each byte turns into another; the ACK never shows.
        for (Piece &piece : answer) {
            for (char &byte : piece.bytes)
                byte = static_cast<char>((static_cast<quint8>(byte) >> 1) | 0x80);
        }
    }
    return answer;
}

QByteArray VirtualRadio::bytesOf(const Answer &answer)
{
    QByteArray bytes;
    for (const Piece &piece : answer)
        bytes += piece.bytes;
    return bytes;
}

VirtualRadio::Answer VirtualRadio::timed(const QByteArray &bytes) const
{
    return {Piece{m_faults.delayMs, bytes}};
}

VirtualRadio::Answer VirtualRadio::takeFrames()
{
    Answer answer;
    auto reply = [&](const QByteArray &bytes) {
        if (!m_faults.silent && !m_hungUp)
            answer += timed(bytes);
    };
    auto openSession = [&] {
        m_inSession = true;
        if (m_hungUp) {
            // A radio that dropped out comes back when it is woken up again; once.
            m_hungUp = false;
            m_faults.hangUpAfterRows = -1;
        }
        reply(m_faults.noiseBeforeAck ? QByteArrayLiteral("\x00\x55\xAA\x06") : QByteArray(1, Ack));
    };

    for (;;) {
        if (!m_inSession) {
            const qsizetype at = m_pending.indexOf(programCommand());
            if (at < 0) {
                // Keep only what could still begin "PROGRAM".
                if (m_pending.size() > programCommand().size())
                    m_pending = m_pending.right(programCommand().size() - 1);
                return answer;
            }
            m_pending.remove(0, at + programCommand().size());
            openSession();
            continue;
        }
        if (m_pending.isEmpty())
            return answer;

        const char first = m_pending.at(0);
        if (first == 0x02) {
            m_pending.remove(0, 1);
            reply(m_faults.wrongId ? QByteArrayLiteral("QAWPD7T") : QByteArrayLiteral("QAWPD6T"));
        } else if (first == 'R' || first == 'W') {
            const int length = first == 'R' ? ReadFrameLength : WriteFrameLength;
            if (m_pending.size() < length)
                return answer;
            const auto hi = static_cast<quint8>(m_pending.at(1));
            const auto lo = static_cast<quint8>(m_pending.at(2));
            const int address = hi << 8 | lo;
            if (m_pending.at(3) != RowByteCount || (address & 0x0F) != 0 || address >= MemoryImage::Size) {
                m_pending.remove(0, 1);
                continue;
            }
            const QByteArray rowBytes = m_pending.mid(ReadFrameLength, MemoryImage::RowSize);
            m_pending.remove(0, length);
            answer += answerRow(first, address, rowBytes);
        } else if (first == 'E' || first == 'P') {
            const QByteArray &word = first == 'E' ? QByteArrayLiteral("END") : programCommand();
            if (m_pending.size() < word.size()) {
                if (!word.startsWith(m_pending))
                    m_pending.remove(0, 1);
                return answer;
            }
            if (!m_pending.startsWith(word)) {
                m_pending.remove(0, 1);
                continue;
            }
            m_pending.remove(0, word.size());
            if (first == 'P') {
                openSession();
            } else {
                m_inSession = false;
                ++m_sessionsEnded;
                if (onSessionEnded)
                    onSessionEnded();
            }
        } else {
            m_pending.remove(0, 1);
        }
    }
}

VirtualRadio::Answer VirtualRadio::answerRow(char command, int address, QByteArrayView rowBytes)
{
    const int row = address / MemoryImage::RowSize;
    if (m_faults.silent || m_hungUp)
        return {};
    if (row == m_faults.dropReplyRow) {
        m_faults.dropReplyRow = -1;
        return {};
    }
    if (m_faults.hangUpAfterRows >= 0 && m_rowsAnswered >= m_faults.hangUpAfterRows) {
        m_hungUp = true;
        return {};
    }
    ++m_rowsAnswered;
    QByteArray bytes;
    if (command == 'R') {
        bytes.append('R');
        bytes.append(static_cast<char>(address >> 8));
        bytes.append(static_cast<char>(address & 0xFF));
        bytes.append(RowByteCount);
        bytes.append(m_memory.row(row));
    } else if (m_faults.nakWrites) {
        bytes = QByteArray(1, Nak);
    } else {
        QByteArray stored = rowBytes.toByteArray();
        if (row == m_faults.corruptRow)
            stored[CorruptColumn] = static_cast<char>(~stored[CorruptColumn]);
        m_memory.setRow(row, stored);
        bytes = QByteArray(1, Ack);
    }

    // Each timing fault strikes the first answer for its row only.
    const auto strikes = [row](int &faultRow) { return row == faultRow && std::exchange(faultRow, -1) >= 0; };
    if (strikes(m_faults.lateReplyRow))
        return {Piece{LateReplyMs, bytes}};
    if (strikes(m_faults.splitReplyRow)) {
        const qsizetype half = bytes.size() / 2;
        return {Piece{SplitReplyMs, bytes.first(half)}, Piece{SplitReplyMs + SplitGapMs, bytes.sliced(half)}};
    }
    Answer answer = timed(bytes);
    if (command == 'W' && strikes(m_faults.duplicateAckRow))
        answer += Piece{m_faults.delayMs + DuplicateAckMs, bytes};
    return answer;
}

} // namespace wr::sim
