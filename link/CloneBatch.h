#pragma once

#include "core/MemoryImage.h"
#include "link/CloneEngine.h"
#include "link/TransferOutcome.h"

#include <QList>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

namespace wr {

// How a CloneBatch moves its radios.
struct CloneBatchOptions
{
    // Look for a radio that does not answer on the other ports. Only for a
    // single radio: with several, the other ports are other radios'.
    bool portScan = false;
    // Read every write back and compare it (CloneEngine::setVerify).
    bool verify = false;
    // Puts the lost-connection question of radio index to someone; true =
    // Retry. Without it the question is answered Cancel.
    std::function<bool(int index, const TransferOutcome &outcome)> askRetry;
};

// Radios, one cable each, at the same time in one event loop: one file
// written into all of them, or each of them read; or a single radio, as the
// command-line tool moves it. Every port gets its own application state,
// clone engine and serial driver, so each transfer follows the protocol
// exactly as a single one does, with its own retries and time-outs, and a
// slow or dead radio holds up no other. By default two things differ from a
// transfer someone watches: a radio that does not answer on its port is
// never looked for on the other ports (they are the cables of other
// radios), and the lost-connection question is answered Cancel at once.
class CloneBatch : public QObject
{
    Q_OBJECT

public:
    using Options = CloneBatchOptions;

    struct Radio
    {
        int port = 0;    // the port it is on (the port search may move it)
        QString device;  // what the COM name stands for ("/dev/ttyUSB0"); empty when unknown
        bool running = true;
        TransferOutcome outcome; // how it ended, once it is not running
        int progress = 0;        // rows moved in the current attempt, 0-188
        TransferStatus status;   // a retry, the port search or the read-back under way
    };

    // image: what a write sends into every radio; a read starts each radio's
    // memory from a fresh image.
    CloneBatch(CloneEngine::Direction direction, const QList<int> &ports, const MemoryImage &image,
               Options options = {}, QObject *parent = nullptr);
    ~CloneBatch() override;

    // Starts the transfers one pass of the event loop apart, in the order of
    // the ports; finished() follows once every one has ended.
    void start();
    bool isRunning() const { return m_running > 0; }
    // Ends every transfer still running as closing its progress form would
    // (each outcome says Cancelled); finished() follows at once.
    void cancel();

    int count() const { return int(m_transfers.size()); }
    const Radio &radio(int index) const;
    // The memory of radio index as read (complete when it succeeded).
    const MemoryImage &image(int index) const;
    bool allCompleted() const;

Q_SIGNALS:
    void changed(int index); // progress, status or outcome
    void finished();

private:
    struct Transfer;

    void ended(Transfer &transfer, int index);

    std::vector<std::unique_ptr<Transfer>> m_transfers;
    int m_running = 0;
};

} // namespace wr
