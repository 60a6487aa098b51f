#pragma once

#include "link/PortCatalogue.h"
#include "link/PortInspection.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QList>
#include <QObject>
#include <QSerialPort>
#include <QSet>
#include <QTimer>

#include <optional>

namespace wr {

// What the connection test found on one port: exactly one cause, with the
// facts its words need (DoctorTexts.h).
struct Diagnosis
{
    enum class Cause {
        Ok,                 // the radio answered its identification
        NoDevice,           // no such port now
        Permission,         // this user may not open the device
        Busy,               // another process has the port
        HeldByModemManager, // ... and it is ModemManager
        HeldByBrltty,       // ... and it is brltty
        NotSerial,          // the port's path is no serial device
        EchoOnly,           // what is sent comes straight back, nothing else
        NoAnswer,           // nothing comes back
        WrongRadio,         // something answers the identification with other bytes
        Garbled,            // bytes come back, but no valid reply
    };

    Cause cause = Cause::NoAnswer;
    int port = 0;
    QString device;           // the device the port name resolves to; empty when there is none
    QString usbId;            // the USB vendor and product of the cable's chip ("1a86:7523"); empty when unknown
    qint64 elapsedMs = 0;
    QList<PortEntry> present; // NoDevice: the serial ports there are
    std::optional<PortEntry> appeared; // NoDevice: a port that came while the test waited
    DeviceFacts facts;        // the device as the system describes it
    HolderScan holders;       // Busy and its kinds
    QByteArray answer;        // WrongRadio, Garbled: what came back, without the echo
    bool acknowledged = false; // the radio acknowledged the opening command
};

// "ok", "no-device", "permission", "busy", "held-by-modem-manager",
// "held-by-brltty", "not-serial", "echo-only", "no-answer", "wrong-radio",
// "garbled": the keys scripts and bug reports use, in every language.
QString causeKey(Diagnosis::Cause cause);

// The connection test. It examines one port the way a transfer would meet
// it and names the first thing that stands in the way: the device, its
// permissions, another program holding it, then an exchange with the radio
// that only asks it to identify itself ("PROGRAM", 02) and ends the clone
// session with "END"; nothing is ever written into the radio. Everything
// runs on the calling thread's event loop, on timers and the port's
// signals, like a transfer: a window stays responsive throughout.
//
// The exchange is as patient as a transfer: each frame gets 300 ms and is
// sent up to eight times, so at most about 2.5 s pass on a silent line; a
// diagnosis never takes more than 10 s apart from the wait for a device.
class ConnectionDoctor : public QObject
{
    Q_OBJECT

public:
    static constexpr int Attempts = 8;
    static constexpr int WindowMs = 300;
    static constexpr int PollMs = 250;
    static constexpr int EndMs = 50;        // for "END" to leave before the port closes
    static constexpr int DefaultWaitMs = 10000;

    explicit ConnectionDoctor(QObject *parent = nullptr);
    ~ConnectionDoctor() override;

    // Examines "COM" + port. A port that is not there is waited for up to
    // waitMs: when it, or any other serial port, appears, the test goes on
    // with it or names it. finished() follows, always, unless cancelled.
    void start(int port, int waitMs = 0);
    // Stops the test. While it waits for a device, it finishes at once with
    // what it knows; during an exchange it ends the session and says nothing.
    void cancel();
    bool isRunning() const { return m_phase != Phase::Idle; }

Q_SIGNALS:
    // No device yet: the user can plug the cable in now.
    void waitingForDevice(int port, int msLeft);
    // The device is there and the radio is being asked.
    void askingRadio(int port);
    void finished(const wr::Diagnosis &diagnosis);

private:
    enum class Phase { Idle, Starting, Waiting, Opening, Identifying, Ending };

    void examine(const PortEntry &entry);
    void poll();
    void exchange();
    void send(const QByteArray &frame);
    void received();
    void windowEnded();
    bool judgeOpening(bool final);
    bool judgeIdentity(bool final);
    bool sendAgain(const QByteArray &reply);
    void endSession();
    void finish(Diagnosis::Cause cause);
    void stop();

    Diagnosis m_diagnosis;
    Phase m_phase = Phase::Idle;
    QSerialPort m_port;
    QTimer m_window;
    QTimer m_poll;
    QTimer m_end;
    QElapsedTimer m_clock;
    qint64 m_waitMs = 0;
    QSet<QString> m_namesBefore; // the ports there were when the wait began
    QByteArray m_sent;
    QByteArray m_received;
    int m_attempt = 0;
    bool m_echoed = false;       // some attempt got its own bytes back
    QByteArray m_stray;          // bytes of some attempt that were no valid reply
};

} // namespace wr

Q_DECLARE_METATYPE(wr::Diagnosis)
