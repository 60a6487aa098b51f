#pragma once

#include "link/PortProblem.h"

#include <QByteArray>
#include <QList>

namespace wr {

// How a transfer ended, as data. The clone engine says what happened; the
// progress form, the batch and the tool choose the words (TransferTexts.h).
struct TransferOutcome
{
    enum class Kind {
        Completed,           // every row moved; a verified write was also read back equal
        Cancelled,           // the progress form was closed before the end
        NoAnswer,            // the retries were spent without an accepted reply
        WrongIdentification, // the opening command was acknowledged, the identification was another radio's
        PortFailed,          // the port could not be opened: problem says why
        PortLost,            // the port's device went away during the transfer
        VerificationFailed,  // the write completed, but reading it back found other bytes
    };

    Kind kind = Kind::Cancelled;
    bool read = true;        // the direction of the transfer
    bool verified = false;   // Completed write: its rows were read back and are equal
    bool verifying = false;  // the end came while a completed write was being read back
    int port = 0;            // the port the transfer ended on
    int chosenPort = 0;      // the port chosen before the transfer; the port search may have moved on
    bool chosenByScan = false; // PortFailed: the port search, not the user, picked the port
    PortProblem problem;     // PortFailed, PortLost
    QByteArray identity;     // WrongIdentification: what came back for the identification request
    QList<PortTried> portsTried;
    QList<int> differingRows; // VerificationFailed: image rows read back with other bytes, in transfer order
    // Ports whose radio was sent rows of this write but never the end of it:
    // it holds some new rows beside old ones and must be written again.
    // Empty for a read, and for a write that stopped before its first row.
    QList<int> partlyWritten;

    bool succeeded() const { return kind == Kind::Completed; }
};

// What a running transfer is doing beyond the progress bar, for the line
// under it; Idle when there is nothing to say.
struct TransferStatus
{
    enum class Kind {
        Idle,
        NoAnswerRetrying,    // a frame went unanswered; retry of budget
        WrongAnswerRetrying, // a reply was refused; retry of budget
        TryingPort,          // the port search moved to port
        Verifying,           // reading back the rows just written
    };
    Kind kind = Kind::Idle;
    int port = 0;
    int retry = 0;
    int budget = 0;

    friend bool operator==(const TransferStatus &, const TransferStatus &) = default;
};

} // namespace wr
