#pragma once

#include "core/MemoryImage.h"
#include "link/CloneEngine.h"

#include <QList>
#include <QObject>
#include <QString>

#include <memory>
#include <vector>

namespace wr {

// Several radios, one cable each, at the same time in one event loop: one
// file written into all of them, or each of them read. Every port gets its
// own application state, clone engine and serial driver, so each transfer
// follows the protocol exactly as a single one does, with its own retries
// and time-outs, and a slow or dead radio holds up no other. Two things
// differ from a transfer someone watches: a radio that does not answer on
// its port is never looked for on the other ports (they are the cables of
// other radios), and the lost-connection question is answered Cancel at
// once.
class CloneBatch : public QObject
{
    Q_OBJECT

public:
    enum class Outcome {
        Running,
        Completed,  // message: "Writing completed!" or "Reading completed!"
        NoAnswer,   // the retries were spent; message: the port tried, with its device
        PortFailed, // message: the port, the system's reason and what to do about it
        PortLost,   // the device went away during the transfer; message as for PortFailed
    };

    struct Radio
    {
        int port = 0;
        QString device; // what the COM name stands for ("/dev/ttyUSB0"); empty when unknown
        Outcome outcome = Outcome::Running;
        QString message;
        int progress = 0; // rows moved in the current attempt, 0-188
        QString status;   // a retry under way; empty when there is none
    };

    // image: what a write sends into every radio; a read starts each radio's
    // memory from a fresh image. language: of the texts.
    CloneBatch(CloneEngine::Direction direction, const QList<int> &ports, const MemoryImage &image, int language,
               QObject *parent = nullptr);
    ~CloneBatch() override;

    // Starts the transfers one pass of the event loop apart, in the order of
    // the ports; finished() follows once every one has ended.
    void start();
    bool isRunning() const { return m_running > 0; }

    int count() const { return int(m_transfers.size()); }
    const Radio &radio(int index) const;
    // The memory of radio index as read (complete when its outcome is Completed).
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
