#include "link/ConnectionDoctor.h"

#include "link/CloneEngine.h"

#include <QSerialPortInfo>

#include <algorithm>

namespace wr {

namespace {

// What came back for frame, with the line's own echo of it taken off the
// front. echoed: the bytes began with the frame, or were the start of it.
QByteArray withoutEcho(const QByteArray &received, const QByteArray &frame, bool *echoed)
{
    if (received.startsWith(frame)) {
        *echoed = true;
        return received.sliced(frame.size());
    }
    if (!received.isEmpty() && frame.startsWith(received)) {
        *echoed = true;
        return {};
    }
    *echoed = false;
    return received;
}

} // namespace

QString causeKey(Diagnosis::Cause cause)
{
    using Cause = Diagnosis::Cause;
    switch (cause) {
    case Cause::Ok: return QStringLiteral("ok");
    case Cause::NoDevice: return QStringLiteral("no-device");
    case Cause::Permission: return QStringLiteral("permission");
    case Cause::Busy: return QStringLiteral("busy");
    case Cause::HeldByModemManager: return QStringLiteral("held-by-modem-manager");
    case Cause::HeldByBrltty: return QStringLiteral("held-by-brltty");
    case Cause::NotSerial: return QStringLiteral("not-serial");
    case Cause::EchoOnly: return QStringLiteral("echo-only");
    case Cause::NoAnswer: return QStringLiteral("no-answer");
    case Cause::WrongRadio: return QStringLiteral("wrong-radio");
    case Cause::Garbled: return QStringLiteral("garbled");
    }
    return {};
}

ConnectionDoctor::ConnectionDoctor(QObject *parent)
    : QObject(parent)
{
    for (QTimer *timer : {&m_window, &m_end}) {
        timer->setSingleShot(true);
        timer->setTimerType(Qt::PreciseTimer);
    }
    connect(&m_window, &QTimer::timeout, this, &ConnectionDoctor::windowEnded);
    connect(&m_poll, &QTimer::timeout, this, &ConnectionDoctor::poll);
    connect(&m_end, &QTimer::timeout, this, [this] {
        m_port.close();
        finish(m_diagnosis.cause);
    });
    connect(&m_port, &QSerialPort::readyRead, this, &ConnectionDoctor::received);
    connect(&m_port, &QSerialPort::errorOccurred, this, [this](QSerialPort::SerialPortError error) {
        // The cable was pulled during the exchange: it is gone now.
        if (error == QSerialPort::ResourceError && m_port.isOpen() && m_phase != Phase::Ending) {
            m_port.close();
            m_diagnosis.facts.systemText = m_port.errorString();
            finish(Diagnosis::Cause::NoDevice);
        }
    });
}

ConnectionDoctor::~ConnectionDoctor()
{
    stop();
}

void ConnectionDoctor::start(int port, int waitMs)
{
    stop();
    m_diagnosis = {};
    m_diagnosis.port = port;
    m_waitMs = std::max(waitMs, 0);
    m_clock.start();
    // The caller hears of the end as of any other: from the event loop,
    // after start() has returned.
    m_phase = Phase::Starting;
    QTimer::singleShot(0, this, [this] {
        if (m_phase != Phase::Starting)
            return;
        const QList<PortEntry> catalogue = portCatalogue();
        if (const std::optional<PortEntry> entry = findPort(catalogue, m_diagnosis.port)) {
            examine(*entry);
            return;
        }
        m_diagnosis.present = catalogue;
        if (m_waitMs == 0) {
            finish(Diagnosis::Cause::NoDevice);
            return;
        }
        m_namesBefore.clear();
        for (const PortEntry &entry : catalogue)
            m_namesBefore.insert(entry.name);
        m_phase = Phase::Waiting;
        m_poll.start(PollMs);
        Q_EMIT waitingForDevice(m_diagnosis.port, int(m_waitMs));
    });
}

void ConnectionDoctor::cancel()
{
    if (m_phase == Phase::Waiting) {
        finish(Diagnosis::Cause::NoDevice);
        return;
    }
    stop();
}

void ConnectionDoctor::stop()
{
    m_poll.stop();
    m_window.stop();
    m_end.stop();
    if (m_port.isOpen()) {
        // A session the radio was put into is ended, even by a cancel.
        if (m_diagnosis.acknowledged && m_phase != Phase::Ending)
            m_port.write(CloneEngine::endFrame());
        // What the port still buffers is handed to the system without
        // waiting: a serial device that is closed sends what it was given.
        m_port.flush();
        m_port.close();
    }
    m_phase = Phase::Idle;
}

void ConnectionDoctor::poll()
{
    const QList<PortEntry> catalogue = portCatalogue();
    m_diagnosis.present = catalogue;
    if (const std::optional<PortEntry> entry = findPort(catalogue, m_diagnosis.port)) {
        m_poll.stop();
        examine(*entry);
        return;
    }
    // Another port came: most likely the cable, under a name of its own.
    for (const PortEntry &entry : catalogue) {
        if (!m_namesBefore.contains(entry.name)) {
            m_diagnosis.appeared = entry;
            finish(Diagnosis::Cause::NoDevice);
            return;
        }
    }
    const qint64 left = m_waitMs - m_clock.elapsed();
    if (left <= 0) {
        finish(Diagnosis::Cause::NoDevice);
        return;
    }
    Q_EMIT waitingForDevice(m_diagnosis.port, int(left));
}

void ConnectionDoctor::examine(const PortEntry &entry)
{
    m_phase = Phase::Opening;
    m_diagnosis.device = entry.devicePath;
    const QSerialPortInfo info(entry.devicePath);
    if (info.hasVendorIdentifier() && info.hasProductIdentifier()) {
        m_diagnosis.usbId = QStringLiteral("%1:%2")
                                .arg(info.vendorIdentifier(), 4, 16, QLatin1Char('0'))
                                .arg(info.productIdentifier(), 4, 16, QLatin1Char('0'));
    }
    DeviceFacts &facts = m_diagnosis.facts;
    facts = inspectDevice(entry.devicePath);
    switch (facts.kind) {
    case DeviceFacts::Kind::Missing:
        m_diagnosis.present = portCatalogue();
        finish(Diagnosis::Cause::NoDevice);
        return;
    case DeviceFacts::Kind::NotSerial:
        finish(Diagnosis::Cause::NotSerial);
        return;
    case DeviceFacts::Kind::Serial:
    case DeviceFacts::Kind::Unknown:
        break;
    }
    if (!facts.mayOpen) {
        finish(Diagnosis::Cause::Permission);
        return;
    }
    // Someone else with the port open spoils every exchange, whether or not
    // the system lets a second program open it too.
    m_diagnosis.holders = scanHolders(entry.devicePath);
    const QList<PortHolder> &holders = m_diagnosis.holders.holders;
    const auto heldBy = [&holders](auto named) { return std::any_of(holders.begin(), holders.end(), named); };
    if (heldBy([](const PortHolder &h) { return h.name == u"ModemManager"; })) {
        finish(Diagnosis::Cause::HeldByModemManager);
        return;
    }
    if (heldBy([](const PortHolder &h) { return h.name.startsWith(u"brltty"); })) {
        finish(Diagnosis::Cause::HeldByBrltty);
        return;
    }
    if (!holders.isEmpty() || facts.busy) {
        finish(Diagnosis::Cause::Busy);
        return;
    }
    exchange();
}

void ConnectionDoctor::exchange()
{
    // The line as a transfer sets it: 9600 baud, 8 data bits, no parity, 2 stop bits.
    m_port.setPortName(m_diagnosis.device);
    const bool opened = m_port.open(QIODevice::ReadWrite) && m_port.setBaudRate(QSerialPort::Baud9600)
        && m_port.setDataBits(QSerialPort::Data8) && m_port.setParity(QSerialPort::NoParity)
        && m_port.setStopBits(QSerialPort::TwoStop) && m_port.setFlowControl(QSerialPort::NoFlowControl);
    if (!opened) {
        const QSerialPort::SerialPortError error = m_port.error();
        m_diagnosis.facts.systemText = m_port.errorString();
        if (m_port.isOpen())
            m_port.close();
        // A lock another program keeps reads as a permission error.
        finish(error == QSerialPort::DeviceNotFoundError ? Diagnosis::Cause::NoDevice
                   : error == QSerialPort::PermissionError ? Diagnosis::Cause::Busy
                                                           : Diagnosis::Cause::NotSerial);
        return;
    }
    Q_EMIT askingRadio(m_diagnosis.port);
    m_phase = Phase::Opening;
    m_attempt = 1;
    send(CloneEngine::openingCommand());
}

void ConnectionDoctor::send(const QByteArray &frame)
{
    m_port.readAll(); // whatever came late belongs to no frame
    m_received.clear();
    m_sent = frame;
    m_port.write(frame);
    m_window.start(WindowMs);
}

void ConnectionDoctor::received()
{
    m_received += m_port.readAll();
    const bool complete = m_phase == Phase::Opening ? judgeOpening(false)
                          : m_phase == Phase::Identifying ? judgeIdentity(false)
                                                          : false;
    if (complete)
        m_window.stop();
}

void ConnectionDoctor::windowEnded()
{
    if (m_phase == Phase::Opening)
        judgeOpening(true);
    else if (m_phase == Phase::Identifying)
        judgeIdentity(true);
}

// The reply to "PROGRAM": an ACK as its last byte moves on to the
// identification. final: the window is over; otherwise more may come.
bool ConnectionDoctor::judgeOpening(bool final)
{
    bool echoed = false;
    const QByteArray reply = withoutEcho(m_received, m_sent, &echoed);
    if (!reply.isEmpty() && reply.back() == CloneEngine::Ack) {
        m_diagnosis.acknowledged = true;
        m_phase = Phase::Identifying;
        m_attempt = 1;
        send(QByteArray(1, CloneEngine::IdentifyRequest));
        return true;
    }
    if (!final)
        return false;
    m_echoed = m_echoed || echoed;
    if (sendAgain(reply))
        return true;
    m_diagnosis.answer = m_stray;
    finish(!m_stray.isEmpty() ? Diagnosis::Cause::Garbled
           : m_echoed         ? Diagnosis::Cause::EchoOnly
                              : Diagnosis::Cause::NoAnswer);
    return true;
}

// The reply to the identification request: seven bytes, "QAWPD6T" for a WR-PD6T.
bool ConnectionDoctor::judgeIdentity(bool final)
{
    bool echoed = false;
    const QByteArray reply = withoutEcho(m_received, m_sent, &echoed);
    const QByteArray &identity = CloneEngine::radioIdentity();
    if (reply.size() >= identity.size()) {
        m_diagnosis.answer = reply;
        m_diagnosis.cause = reply.startsWith(identity) ? Diagnosis::Cause::Ok : Diagnosis::Cause::WrongRadio;
        endSession();
        return true;
    }
    if (!final)
        return false;
    if (sendAgain(reply))
        return true;
    // Part of an identification is another radio's too; none at all is no valid reply.
    m_diagnosis.answer = m_stray;
    m_diagnosis.cause = m_stray.isEmpty() ? Diagnosis::Cause::Garbled : Diagnosis::Cause::WrongRadio;
    endSession();
    return true;
}

// After a frame without a valid reply: keeps what came, if anything, and
// sends the frame again while attempts remain.
bool ConnectionDoctor::sendAgain(const QByteArray &reply)
{
    if (!reply.isEmpty())
        m_stray = reply;
    if (m_attempt >= Attempts)
        return false;
    ++m_attempt;
    send(m_sent);
    return true;
}

// The radio was put into clone mode: "END" takes it out again, as a
// transfer ends, with nothing written.
void ConnectionDoctor::endSession()
{
    m_phase = Phase::Ending;
    m_window.stop();
    m_port.write(CloneEngine::endFrame());
    m_end.start(EndMs);
}

void ConnectionDoctor::finish(Diagnosis::Cause cause)
{
    m_poll.stop();
    m_window.stop();
    m_end.stop();
    if (m_port.isOpen())
        m_port.close();
    m_phase = Phase::Idle;
    m_diagnosis.cause = cause;
    m_diagnosis.elapsedMs = m_clock.elapsed();
    Q_EMIT finished(m_diagnosis);
}

} // namespace wr
