#pragma once

#include "link/CloneEngine.h"

#include <QObject>
#include <QSerialPort>
#include <QTimer>

#include <functional>

namespace wr {

// Connects a CloneEngine to a real serial port and three timers on the
// calling thread: the 1 ms send timer, the 300 ms time-out and a one-shot
// timer for the short waits. Shared by the progress form and the tool.
class CloneDriver : public QObject
{
    Q_OBJECT

public:
    // The two questions the transfer may put to a person. Both are called
    // synchronously; the engine ignores ticks while they are open.
    struct Prompts
    {
        std::function<bool(const QString &title, const QString &text)> askRetry; // true = Retry
        std::function<void(CloneEngine::MessageIcon, const QString &title, const QString &text)> showMessage;
    };

    CloneDriver(CloneEngine &engine, Prompts prompts, QObject *parent = nullptr);
    ~CloneDriver() override;

    // Starts the transfer (form load). unloaded() follows, always.
    void start();
    bool isRunning() const { return m_running; }
    // Closes the port and stops the timers, as unloading the form does.
    void abort();

Q_SIGNALS:
    void progressChanged(int value, const QString &text);
    void portNumberChanged(int portNumber);
    void readCompleted();
    void unloaded();

private:
    void run(const CloneEngine::Actions &actions);
    void perform(const CloneEngine::Action &action);
    void checkWaitingBytes();
    void kickSendTimer();
    void openPort(int number);
    void stopAll();

    CloneEngine &m_engine;
    Prompts m_prompts;
    QSerialPort m_port;
    QTimer m_sendTimer;
    QTimer m_timeoutTimer;
    QTimer m_waitTimer;
    int m_threshold = 0;
    int m_depth = 0;
    bool m_running = false;
    bool m_kickPending = false;
};

} // namespace wr
