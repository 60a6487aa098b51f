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
    QString question;  // what was said under the lost-connection question
    bool lost = false; // the device had gone away when the question came
    std::unique_ptr<CloneDriver> driver; // last: it goes first
};

CloneBatch::CloneBatch(CloneEngine::Direction direction, const QList<int> &ports, const MemoryImage &image,
                       int language, QObject *parent)
    : QObject(parent)
{
    // One look at the system's devices names every port; the driver looks
    // again as it opens each.
    const QList<PortEntry> catalogue = portCatalogue();
    for (const int port : ports) {
        auto transfer = std::make_unique<Transfer>();
        Transfer &t = *transfer;
        t.state.LanguageIndex = static_cast<quint8>(language);
        t.state.PortNumber = static_cast<quint8>(port);
        t.state.LinkDirection = direction == CloneEngine::Direction::Read ? 0 : 1;
        t.state.image = image;
        t.engine.setPortScan(false);
        t.radio.port = port;
        if (const std::optional<PortEntry> entry = findPort(catalogue, port); entry && entry->devicePath != entry->name)
            t.radio.device = entry->devicePath;

        const int index = int(m_transfers.size());
        CloneDriver::Prompts prompts;
        prompts.askRetry = [&t](const QString &, const QString &text) {
            t.question = text;
            t.lost = !t.engine.portOpen();
            return false;
        };
        prompts.showMessage = [&t](CloneEngine::MessageIcon icon, const QString &, const QString &text) {
            t.radio.message = text;
            if (icon == CloneEngine::MessageIcon::Exclamation)
                t.radio.outcome = Outcome::PortFailed;
        };
        t.driver = std::make_unique<CloneDriver>(t.engine, prompts);
        connect(t.driver.get(), &CloneDriver::progressChanged, this, [this, &t, index](int value) {
            t.radio.progress = value;
            Q_EMIT changed(index);
        });
        connect(t.driver.get(), &CloneDriver::statusChanged, this, [this, &t, index](const QString &text) {
            t.radio.status = text;
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
    for (const std::unique_ptr<Transfer> &transfer : m_transfers)
        QTimer::singleShot(0, transfer->driver.get(), &CloneDriver::start);
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
                       [](const auto &transfer) { return transfer->radio.outcome == Outcome::Completed; });
}

void CloneBatch::ended(Transfer &t, int index)
{
    Radio &radio = t.radio;
    if (t.engine.Finished) {
        radio.outcome = Outcome::Completed;
    } else if (radio.outcome != Outcome::PortFailed) {
        // Cancel answered the question: the retries were spent, or the
        // device went away. What the question said under it stays.
        radio.outcome = t.lost ? Outcome::PortLost : Outcome::NoAnswer;
        radio.message = t.question.section(QStringLiteral("\n\n"), 1, -1);
    }
    radio.status.clear();
    Q_EMIT changed(index);
    if (--m_running == 0)
        Q_EMIT finished();
}

} // namespace wr
