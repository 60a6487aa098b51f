#pragma once

#include "link/CloneEngine.h"

#include <QHash>
#include <QObject>
#include <QSerialPort>
#include <QTimer>

#include <functional>

namespace wr {

// Connects a CloneEngine to a real serial port and three timers on the
// calling thread: the 1 ms send timer, the 300 ms time-out and a one-shot
// timer for the short waits and for the quiet time a drain looks for.
// Shared by the progress form and the tool.
//
// A port whose device goes away (a cable pulled) is closed at once: left
// open it would wake the event loop without end, each time failing again.
class CloneDriver : public QObject
{
    Q_OBJECT

public:
    // What the transfer may put to a person: the lost-connection question
    // (what Cancel would end with; true = Retry) and how it ended, at the
    // moment the progress form shows its message. Both are called
    // synchronously; the engine ignores ticks while they are open.
    struct Prompts
    {
        std::function<bool(const TransferOutcome &)> askRetry;
        std::function<void(const TransferOutcome &)> report;
    };

    CloneDriver(CloneEngine &engine, Prompts prompts, QObject *parent = nullptr);
    ~CloneDriver() override;

    // Starts the transfer (form load). unloaded() follows, always.
    void start();
    bool isRunning() const { return m_running; }
    // Closes the port and stops the timers, as unloading the form does; the
    // engine's outcome says Cancelled unless the transfer had ended.
    void abort();

Q_SIGNALS:
    void progressChanged(int value);
    void statusChanged(const wr::TransferStatus &status);
    void portNumberChanged(int portNumber);
    void readCompleted();
    void unloaded();

private:
    void run(const CloneEngine::Actions &actions);
    void perform(const CloneEngine::Action &action);
    void checkWaitingBytes();
    void kickSendTimer();
    void sendTick();
    void openPort(int number);
    void portError(QSerialPort::SerialPortError error);
    void discardInput();
    void stopAll();

    CloneEngine &m_engine;
    Prompts m_prompts;
    QSerialPort m_port;
    QTimer m_sendTimer;
    QTimer m_timeoutTimer;
    QTimer m_waitTimer;
    int m_threshold = 0;
    int m_depth = 0;
    int m_quietMs = 0;       // while draining: the quiet the drain waits for
    bool m_draining = false;
    bool m_running = false;
    bool m_kickPending = false;
    QHash<int, QString> m_devices; // port number -> device, as opened in this transfer
    QString m_openDevice;
};

} // namespace wr
