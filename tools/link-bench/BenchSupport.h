#pragma once

#include "link/PortCatalogue.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>

namespace wr::bench {

// Paced virtual radios, COM<com> and the ports after it, in a process of
// their own. They register their ports in a private data folder, not the
// user's, and this process's port catalogue looks only there.
class VirtualRadios
{
public:
    explicit VirtualRadios(const QString &program)
        : m_program(program)
    {
    }
    ~VirtualRadios() { stop(); }

    // Prints the radios' first lines ("COM250 /dev/pts/3"); false when they did not start.
    bool start(int com, int count)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_DATA_HOME"), m_data.path());
        m_process.setProcessEnvironment(environment);
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(m_program, {QStringLiteral("--com"), QString::number(com), QStringLiteral("--count"),
                                    QString::number(count)});
        if (!m_process.waitForStarted())
            return false;
        for (int i = 0; i < count; ++i) {
            if (!m_process.canReadLine() && !m_process.waitForReadyRead(5000))
                return false;
            std::printf("virtual radio: %s", m_process.readLine().constData());
        }
        setSerialPortsFolder(m_data.path() + QStringLiteral("/wrpd6t/serial-ports"));
        setSystemPortSource([] { return QList<SystemPort>{}; });
        return true;
    }

    void stop()
    {
        if (m_process.state() == QProcess::NotRunning)
            return;
        m_process.terminate();
        m_process.waitForFinished(3000);
    }

private:
    QString m_program;
    QTemporaryDir m_data;
    QProcess m_process;
};

// A 1 ms heartbeat on the calling thread's event loop: the widest gap
// between two beats is the longest time anything kept the loop from
// running, from start() on.
class StallWatch
{
public:
    StallWatch()
    {
        m_heartbeat.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_heartbeat, &QTimer::timeout, [this] {
            const qint64 now = m_clock.nsecsElapsed();
            if (now - m_lastBeat > m_widest) {
                m_widest = now - m_lastBeat;
                m_widestAt = m_lastBeat;
            }
            m_lastBeat = now;
        });
    }

    void start()
    {
        m_lastBeat = m_widest = m_widestAt = 0;
        m_clock.start();
        m_heartbeat.start(1);
    }
    void stop() { m_heartbeat.stop(); }

    double elapsedMs() const { return m_clock.nsecsElapsed() / 1e6; }
    double widestMs() const { return m_widest / 1e6; }
    double widestAtMs() const { return m_widestAt / 1e6; } // when it began, from start()

private:
    QElapsedTimer m_clock;
    QTimer m_heartbeat;
    qint64 m_lastBeat = 0;
    qint64 m_widest = 0;
    qint64 m_widestAt = 0;
};

} // namespace wr::bench
