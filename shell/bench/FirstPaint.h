#pragma once

// Shared by the start-up benchmark and its yardstick, so both stop their
// clock at the same moment: the first paint of the watched widget.
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QObject>
#include <QWidget>

#include <cstdio>
#include <ctime>

class FirstPaint : public QObject
{
public:
    FirstPaint(QWidget *target, const QElapsedTimer &clock)
        : m_target(target)
        , m_clock(clock)
    {
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (watched == m_target && event->type() == QEvent::Paint && !m_done) {
            m_done = true;
            // Milliseconds since main() and the wall clock in nanoseconds, so
            // the script can also count the loading before main().
            timespec now{};
            clock_gettime(CLOCK_REALTIME, &now);
            std::printf("%.2f %lld\n", static_cast<double>(m_clock.nsecsElapsed()) / 1e6,
                        static_cast<long long>(now.tv_sec) * 1000000000LL + now.tv_nsec);
            std::fflush(stdout);
            QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
        }
        return false;
    }

private:
    QWidget *m_target;
    const QElapsedTimer &m_clock;
    bool m_done = false;
};
