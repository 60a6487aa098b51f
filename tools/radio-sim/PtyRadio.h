#pragma once

#include "VirtualRadio.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <deque>

class QSocketNotifier;

namespace wr::sim {

// Puts a VirtualRadio behind a pseudo-terminal. The program opens the slave
// side like any serial port; this object works the master side on the
// calling thread's event loop. With pacing on, every byte takes as long as it
// would on the radio's cable at 9600 baud with one start, eight data and two
// stop bits, in both directions.
class PtyRadio : public QObject
{
    Q_OBJECT

public:
    static constexpr qint64 ByteTimeNs = 11LL * 1000000000LL / 9600; // ~1.146 ms
    static constexpr qint64 HalfMillisecondNs = 500000;
    static constexpr int IdleCheckMs = 5;

    PtyRadio(VirtualRadio &radio, bool pacing, QObject *parent = nullptr);
    ~PtyRadio() override;

    // Creates the pseudo-terminal in raw mode; false with errorString() set.
    bool open();
    // Closes the pseudo-terminal as a pulled cable would: the program's side
    // reports the device gone and the device itself disappears.
    void hangUp();
    QString devicePath() const { return m_devicePath; }
    QString errorString() const { return m_error; }

private:
    struct TimedByte
    {
        qint64 dueNs;
        char byte;
    };

    void readMaster();
    void pump();
    void schedule();

    VirtualRadio &m_radio;
    bool m_pacing;
    int m_master = -1;
    QString m_devicePath;
    QString m_error;
    QSocketNotifier *m_notifier = nullptr;
    QElapsedTimer m_clock;
    QTimer m_timer;
    QTimer m_idle; // while no program has the port open
    std::deque<TimedByte> m_inbound;   // bytes on their way to the radio
    std::deque<TimedByte> m_outbound;  // bytes on their way to the PC
    qint64 m_inFreeNs = 0;
    qint64 m_outFreeNs = 0;
};

} // namespace wr::sim
