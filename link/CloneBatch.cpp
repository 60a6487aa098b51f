#include "link/CloneBatch.h"

#include "core/AppState.h"
#include "link/CloneDriver.h"
#include "link/PortCatalogue.h"

#include <QTimer>

#include <algorithm>

namespace wr {

struct CloneBatch::Transfer
{
    AppState state;
    CloneEngine engine{state};
    Radio radio;
    std::unique_ptr<CloneDriver> driver; // last: it goes first
};

namespace {

// The device of a port as the catalogue lists it; empty where the name is the device.
QString deviceOf(const QList<PortEntry> &catalogue, int port)
{
    const std::optional<PortEntry> entry = findPort(catalogue, port);
    return entry && entry->devicePath != entry->name ? entry->devicePath : QString();
}

} // namespace

CloneBatch::CloneBatch(CloneEngine::Direction direction, const QList<int> &ports, const MemoryImage &image,
                       Options options, QObject *parent)
    : QObject(parent)
{
    // One look at the system's devices names every port; the driver looks
    // again as it opens each.
    const QList<PortEntry> catalogue = portCatalogue();
    for (const int port : ports) {
        auto transfer = std::make_unique<Transfer>();
        Transfer &t = *transfer;
        t.state.PortNumber = static_cast<quint8>(port);
        t.state.LinkDirection = direction == CloneEngine::Direction::Read ? 0 : 1;
        t.state.image = image;
        t.engine.setPortScan(options.portScan);
        t.engine.setVerify(options.verify);
        t.radio.port = port;
        t.radio.device = deviceOf(catalogue, port);

        const int index = int(m_transfers.size());
        CloneDriver::Prompts prompts;
        prompts.askRetry = [ask = options.askRetry, index](const TransferOutcome &outcome) {
            return ask && ask(index, outcome);
        };
        t.driver = std::make_unique<CloneDriver>(t.engine, prompts);
        connect(t.driver.get(), &CloneDriver::progressChanged, this, [this, &t, index](int value) {
            t.radio.progress = value;
            Q_EMIT changed(index);
        });
        connect(t.driver.get(), &CloneDriver::statusChanged, this, [this, &t, index](const TransferStatus &status) {
            t.radio.status = status;
            Q_EMIT changed(index);
        });
        connect(t.driver.get(), &CloneDriver::portNumberChanged, this, [this, &t, index](int number) {
            t.radio.port = number;
            t.radio.device = deviceOf(portCatalogue(), number);
            Q_EMIT changed(index);
        });
        connect(t.driver.get(), &CloneDriver::unloaded, this, [this, &t, index] { ended(t, index); });
        m_transfers.push_back(std::move(transfer));
    }
}

CloneBatch::~CloneBatch() = default;

void CloneBatch::start()
{
    m_running = count();
    if (m_running == 0) {
        QTimer::singleShot(0, this, &CloneBatch::finished);
        return;
    }
    // Opening a port looks through the system's devices; one pass of the
    // event loop between two keeps the transfers already going on time.
    // A transfer cancelled before its turn never starts.
    for (const std::unique_ptr<Transfer> &transfer : m_transfers) {
        QTimer::singleShot(0, transfer->driver.get(), [t = transfer.get()] {
            if (t->radio.running)
                t->driver->start();
        });
    }
}

void CloneBatch::cancel()
{
    for (int index = 0; index < count(); ++index) {
        Transfer &transfer = *m_transfers.at(std::size_t(index));
        if (!transfer.radio.running)
            continue;
        transfer.driver->abort();
        ended(transfer, index);
    }
}

const CloneBatch::Radio &CloneBatch::radio(int index) const
{
    return m_transfers.at(std::size_t(index))->radio;
}

const MemoryImage &CloneBatch::image(int index) const
{
    return m_transfers.at(std::size_t(index))->state.image;
}

bool CloneBatch::allCompleted() const
{
    return std::all_of(m_transfers.begin(), m_transfers.end(),
                       [](const auto &transfer) { return transfer->radio.outcome.succeeded(); });
}

void CloneBatch::ended(Transfer &t, int index)
{
    Radio &radio = t.radio;
    radio.running = false;
    radio.outcome = t.engine.outcome();
    radio.port = radio.outcome.port;
    // The device as the transfer met it: a port that went away is still named by it.
    for (const PortTried &tried : std::as_const(radio.outcome.portsTried)) {
        if (tried.number == radio.port && !tried.device.isEmpty())
            radio.device = tried.device;
    }
    radio.status = {};
    Q_EMIT changed(index);
    if (--m_running == 0)
        Q_EMIT finished();
}

} // namespace wr
