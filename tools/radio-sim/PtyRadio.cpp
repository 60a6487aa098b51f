#include "PtyRadio.h"

#include <QSocketNotifier>

#include <utility>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace wr::sim {

PtyRadio::PtyRadio(VirtualRadio &radio, bool pacing, QObject *parent)
    : QObject(parent)
    , m_radio(radio)
    , m_pacing(pacing)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &PtyRadio::pump);
    m_idle.setSingleShot(true);
    connect(&m_idle, &QTimer::timeout, this, [this] {
        if (m_notifier)
            m_notifier->setEnabled(true);
    });
    m_clock.start();
}

PtyRadio::~PtyRadio()
{
    hangUp();
}

void PtyRadio::hangUp()
{
    delete m_notifier;
    m_notifier = nullptr;
    m_timer.stop();
    m_inbound.clear();
    m_outbound.clear();
    m_idle.stop();
    if (m_master >= 0)
        ::close(std::exchange(m_master, -1));
}

bool PtyRadio::open()
{
    m_master = ::posix_openpt(O_RDWR | O_NOCTTY);
    if (m_master < 0 || ::grantpt(m_master) != 0 || ::unlockpt(m_master) != 0) {
        m_error = QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
    const char *name = ::ptsname(m_master);
    if (!name) {
        m_error = QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
    m_devicePath = QString::fromLocal8Bit(name);

    // Raw mode stops the line discipline echoing or translating bytes. The
    // radio's side keeps no hold on the port itself: to the program, and to
    // the connection test looking for other programs on it, the port is as
    // free as a real cable's.
    const int slave = ::open(name, O_RDWR | O_NOCTTY);
    termios settings{};
    if (slave < 0 || ::tcgetattr(slave, &settings) != 0) {
        m_error = QString::fromLocal8Bit(std::strerror(errno));
        if (slave >= 0)
            ::close(slave);
        return false;
    }
    ::cfmakeraw(&settings);
    ::cfsetispeed(&settings, B9600);
    ::cfsetospeed(&settings, B9600);
    ::tcsetattr(slave, TCSANOW, &settings);
    ::close(slave);
    ::fcntl(m_master, F_SETFL, ::fcntl(m_master, F_GETFL) | O_NONBLOCK);

    m_notifier = new QSocketNotifier(m_master, QSocketNotifier::Read);
    connect(m_notifier, &QSocketNotifier::activated, this, &PtyRadio::readMaster);
    return true;
}

void PtyRadio::readMaster()
{
    char buffer[512];
    for (;;) {
        const ssize_t count = ::read(m_master, buffer, sizeof buffer);
        if (count < 0 && errno == EIO && m_notifier) {
            // No program has the port open: the master reports a hang-up
            // for as long as that lasts. Look again a little later instead
            // of spinning on it.
            m_notifier->setEnabled(false);
            m_idle.start(IdleCheckMs);
            break;
        }
        if (count <= 0)
            break;
        const qint64 now = m_clock.nsecsElapsed();
        for (ssize_t i = 0; i < count; ++i) {
            qint64 due = now;
            if (m_pacing) {
                due = std::max(now, m_inFreeNs) + ByteTimeNs;
                m_inFreeNs = due;
            }
            m_inbound.push_back({due, buffer[i]});
        }
    }
    pump();
}

void PtyRadio::pump()
{
    // Timers fire up to a millisecond late; a byte due within half a
    // millisecond goes now, so the line keeps its pace on average.
    const qint64 now = m_clock.nsecsElapsed();
    const qint64 horizon = m_pacing ? now + HalfMillisecondNs : now;

    QByteArray arrived;
    qint64 arrivedAt = now;
    while (!m_inbound.empty() && m_inbound.front().dueNs <= horizon) {
        arrived.append(m_inbound.front().byte);
        arrivedAt = m_inbound.front().dueNs;
        m_inbound.pop_front();
    }
    if (!arrived.isEmpty()) {
        // The radio answers from the moment the last byte is in, not from
        // when this process got round to looking, and one answer after the
        // other: a late one holds back those behind it.
        const VirtualRadio::Answer answer = m_radio.receive(arrived);
        for (const VirtualRadio::Piece &piece : answer) {
            qint64 ready = arrivedAt + qint64{piece.atMs} * 1000000;
            if (ready < m_outFreeNs)
                ready = m_outFreeNs + qint64{VirtualRadio::AnswerGapMs} * 1000000;
            for (const char byte : piece.bytes) {
                const qint64 due = std::max(ready, m_outFreeNs) + (m_pacing ? ByteTimeNs : 0);
                m_outFreeNs = due;
                m_outbound.push_back({due, byte});
            }
        }
    }

    QByteArray leaving;
    while (!m_outbound.empty() && m_outbound.front().dueNs <= horizon) {
        leaving.append(m_outbound.front().byte);
        m_outbound.pop_front();
    }
    qsizetype written = 0;
    while (written < leaving.size()) {
        const ssize_t n = ::write(m_master, leaving.constData() + written, static_cast<size_t>(leaving.size() - written));
        if (n <= 0)
            break; // the line is full or gone; the program will time out and retry
        written += n;
    }
    schedule();
}

void PtyRadio::schedule()
{
    qint64 next = -1;
    if (!m_inbound.empty())
        next = m_inbound.front().dueNs;
    if (!m_outbound.empty() && (next < 0 || m_outbound.front().dueNs < next))
        next = m_outbound.front().dueNs;
    if (next < 0) {
        m_timer.stop();
        return;
    }
    const qint64 waitNs = next - m_clock.nsecsElapsed();
    m_timer.start(waitNs <= HalfMillisecondNs ? 0 : static_cast<int>((waitNs - HalfMillisecondNs + 999999) / 1000000));
}

} // namespace wr::sim
