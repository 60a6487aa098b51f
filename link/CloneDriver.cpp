#include "link/CloneDriver.h"

#include "link/PortCatalogue.h"
#include "link/PortProblem.h"

namespace wr {

namespace {

constexpr qint64 ReceiveBufferSize = 1024;

// What a failed open means for the user. The serial layer reports a port in
// use by another program (its lock, or the device's exclusive mode) and one
// this user may not open as the same permission error; the device's own
// permissions tell them apart.
PortProblem openProblem(QSerialPort::SerialPortError error, const QString &device, const QString &text)
{
    PortProblem problem;
    problem.device = device;
    problem.systemText = text;
    if (error == QSerialPort::DeviceNotFoundError) {
        problem.kind = PortProblem::Kind::Missing;
    } else if (error == QSerialPort::PermissionError) {
        problem.kind = mayOpenDevice(device) ? PortProblem::Kind::Busy : PortProblem::Kind::NoPermission;
        if (problem.kind == PortProblem::Kind::NoPermission)
            problem.group = deviceGroup(device);
    }
    return problem;
}

} // namespace

CloneDriver::CloneDriver(CloneEngine &engine, Prompts prompts, QObject *parent)
    : QObject(parent)
    , m_engine(engine)
    , m_prompts(std::move(prompts))
{
    // Waits of 5-20 ms and a 1 ms send tick: coarse timers would stretch a
    // 188-row transfer by seconds.
    for (QTimer *timer : {&m_sendTimer, &m_timeoutTimer, &m_waitTimer})
        timer->setTimerType(Qt::PreciseTimer);
    m_waitTimer.setSingleShot(true);

    connect(&m_sendTimer, &QTimer::timeout, this, &CloneDriver::sendTick);
    connect(&m_timeoutTimer, &QTimer::timeout, this, [this] { run(m_engine.timeoutTick()); });
    connect(&m_waitTimer, &QTimer::timeout, this, [this] {
        m_draining = false;
        run(m_engine.waitElapsed());
    });
    connect(&m_port, &QSerialPort::readyRead, this, [this] {
        if (!m_draining) {
            run({});
            return;
        }
        // Anything that comes while draining is stale; the quiet starts again.
        discardInput();
        m_waitTimer.start(m_quietMs);
    });
    connect(&m_port, &QSerialPort::errorOccurred, this, &CloneDriver::portError);
}

CloneDriver::~CloneDriver()
{
    stopAll();
}

void CloneDriver::start()
{
    m_running = true;
    run(m_engine.start());
}

void CloneDriver::abort()
{
    if (!m_running)
        return;
    stopAll();
    m_running = false;
    m_engine.cancelled();
}

void CloneDriver::stopAll()
{
    m_sendTimer.stop();
    m_timeoutTimer.stop();
    m_waitTimer.stop();
    m_threshold = 0;
    m_draining = false;
    if (m_port.isOpen())
        m_port.close();
}

void CloneDriver::portError(QSerialPort::SerialPortError error)
{
    if (error != QSerialPort::ResourceError || !m_port.isOpen())
        return;
    PortProblem problem;
    problem.kind = PortProblem::Kind::Lost;
    problem.device = m_openDevice;
    problem.systemText = m_port.errorString();
    stopAll();
    // The engine hears of it once the serial layer is done with its signal.
    QTimer::singleShot(0, this, [this, problem] { run(m_engine.portLost(problem)); });
}

// The receive side is emptied by reading, never by flushing the system's
// buffer: a flush can empty it between the port's notice that bytes are in
// and Qt's read, which Qt then reports as a resource error and stops
// reading the port. Bytes the system still holds arrive later as usual and
// count as stale then.
void CloneDriver::discardInput()
{
    if (m_port.isOpen())
        m_port.readAll();
}

void CloneDriver::sendTick()
{
    run(m_engine.sendTick(m_port.isOpen() ? m_port.bytesAvailable() : 0));
}

void CloneDriver::run(const CloneEngine::Actions &actions)
{
    if (!m_running)
        return;
    ++m_depth;
    for (const CloneEngine::Action &action : actions) {
        perform(action);
        if (!m_running)
            break;
    }
    --m_depth;
    // The port's receive event: raised once the awaited number of bytes is
    // waiting and the engine is free to look at them.
    if (m_depth == 0 && m_running) {
        checkWaitingBytes();
        kickSendTimer();
    }
}

void CloneDriver::kickSendTimer()
{
    // The send timer ticks every millisecond; a frame that is due goes out on
    // the next pass of the event loop instead, which saves about half a
    // millisecond a row.
    const CloneEngine::TransferState &t = m_engine.transfer();
    if (m_kickPending || !m_sendTimer.isActive() || t.SentStep == t.Step || m_engine.waiting() || m_engine.asking())
        return;
    m_kickPending = true;
    QTimer::singleShot(0, this, [this] {
        m_kickPending = false;
        if (m_sendTimer.isActive())
            sendTick();
    });
}

void CloneDriver::checkWaitingBytes()
{
    if (m_threshold <= 0 || !m_port.isOpen() || m_engine.waiting() || m_engine.asking())
        return;
    if (m_port.bytesAvailable() < m_threshold)
        return;
    ++m_depth;
    const CloneEngine::Actions actions = m_engine.dataWaiting();
    for (const CloneEngine::Action &action : actions)
        perform(action);
    --m_depth;
}

void CloneDriver::openPort(int number)
{
    const std::optional<PortEntry> entry = findPort(number);
    const QString name = QStringLiteral("COM%1").arg(number);
    m_port.setPortName(entry ? entry->devicePath : name);
    m_port.setReadBufferSize(ReceiveBufferSize);
    const bool opened = m_port.open(QIODevice::ReadWrite) && m_port.setBaudRate(QSerialPort::Baud9600)
        && m_port.setDataBits(QSerialPort::Data8) && m_port.setParity(QSerialPort::NoParity)
        && m_port.setStopBits(QSerialPort::TwoStop) && m_port.setFlowControl(QSerialPort::NoFlowControl);
    // The device behind the name, for the messages. On Windows it is the
    // name itself; a port that is no longer listed (an adapter unplugged)
    // is named by the device it had while it was.
    QString device = entry ? entry->devicePath : m_devices.value(number);
    if (device == name)
        device.clear();
    if (!opened) {
        const QSerialPort::SerialPortError error = m_port.error();
        const QString text = m_port.errorString();
        if (m_port.isOpen())
            m_port.close();
        run(m_engine.portFailed(openProblem(error, device, text)));
        return;
    }
    m_devices.insert(number, device);
    m_openDevice = device;
    run(m_engine.portOpened(device));
}

void CloneDriver::perform(const CloneEngine::Action &action)
{
    using Kind = CloneEngine::Action::Kind;
    switch (action.kind) {
    case Kind::OpenPort:
        openPort(action.value);
        break;
    case Kind::ClosePort:
        m_threshold = 0;
        m_draining = false;
        if (m_port.isOpen())
            m_port.close();
        break;
    case Kind::DiscardBuffers:
        if (m_port.isOpen()) {
            m_port.clear(QSerialPort::Output);
            discardInput();
        }
        break;
    case Kind::Send:
        if (m_port.isOpen())
            m_port.write(action.bytes);
        break;
    case Kind::SetThreshold:
        m_threshold = action.value;
        break;
    case Kind::StartSendTimer:
        m_sendTimer.start(action.value);
        break;
    case Kind::StopSendTimer:
        m_sendTimer.stop();
        break;
    case Kind::StartTimeout:
        m_timeoutTimer.start(action.value);
        break;
    case Kind::StopTimeout:
        m_timeoutTimer.stop();
        break;
    case Kind::Wait:
        m_draining = false;
        m_waitTimer.start(action.value);
        break;
    case Kind::Drain:
        m_draining = true;
        m_quietMs = action.value;
        discardInput();
        m_waitTimer.start(action.value);
        break;
    case Kind::ReadReply:
        run(m_engine.replyRead(m_port.isOpen() ? m_port.readAll() : QByteArray()));
        break;
    case Kind::Progress:
        Q_EMIT progressChanged(action.value);
        break;
    case Kind::Status:
        Q_EMIT statusChanged(action.status);
        break;
    case Kind::PortChanged:
        Q_EMIT portNumberChanged(action.value);
        break;
    case Kind::AskLostConnection: {
        const bool retry = m_prompts.askRetry ? m_prompts.askRetry(action.outcome) : false;
        run(m_engine.answered(retry));
        break;
    }
    case Kind::Report:
        if (m_prompts.report)
            m_prompts.report(action.outcome);
        break;
    case Kind::ReadCompleted:
        Q_EMIT readCompleted();
        break;
    case Kind::Unload:
        stopAll();
        m_running = false;
        Q_EMIT unloaded();
        break;
    }
}

} // namespace wr
