// The radio link subcommands of wrpd6t-tool: ports, read and write (and the
// doctor, in DoctorCommand.cpp). They run the same clone engine and serial
// driver as the progress form, with the progress on stderr instead of a
// window. Every transfer is a batch: one radio, which may be looked for on
// the other ports and whose lost-connection question is asked on the
// terminal, or several at once, one cable each.

#include "Commands.h"

#include "core/AppState.h"
#include "core/Language.h"
#include "file/DataFile.h"
#include "link/CloneBatch.h"
#include "link/CloneEngine.h"
#include "link/PortCatalogue.h"
#include "link/PortProblem.h"
#include "link/TransferTexts.h"

#include "DoctorCommand.h"

#include <QDateTime>
#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QSocketNotifier>
#include <QTimer>

#include <csignal>
#include <cstdio>
#include <iterator>
#include <memory>
#include <sys/ioctl.h>
#include <unistd.h>

namespace wr::tool {

namespace {

constexpr int BatchBarWidth = 20;
constexpr int RedrawMs = 100;

int linkFailure(const QString &command, const QString &message)
{
    err() << "wrpd6t-tool " << command << ": " << message << '\n';
    err().flush();
    return Failure;
}

// "COM7", "com7" or "7" -> 7; 0 when it is no port number from 1 to 255.
int parsePort(const QString &text)
{
    const QString trimmed = text.trimmed();
    const bool bare = !trimmed.isEmpty() && trimmed.front().isDigit();
    return portNumberOf(bare ? QStringLiteral("COM") + trimmed : trimmed).value_or(0);
}

bool stderrIsTerminal()
{
    return ::isatty(STDERR_FILENO) != 0;
}

// The width of the terminal on stderr; 0 when it cannot be told.
int terminalColumns()
{
    winsize size{};
    return ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

// "[####....] 94/188 50%"
QString progressBar(int value, int width)
{
    const int filled = value * width / CloneEngine::ProgressMaximum;
    const int percent = (value * 100 + CloneEngine::ProgressMaximum / 2) / CloneEngine::ProgressMaximum;
    return u'[' + QString(filled, QLatin1Char('#')) + QString(width - filled, QLatin1Char('.'))
        + QStringLiteral("] %1/%2 %3%").arg(value).arg(CloneEngine::ProgressMaximum).arg(percent);
}

// Lines after the first indented under a port's name.
QString indented(const QString &text)
{
    return QString(text).replace(u'\n', QStringLiteral("\n  "));
}

// The lost-connection question, with what Cancel would end with under it:
// asked on the terminal, answered Cancel when nobody is there to answer it.
bool askRetry(const TransferOutcome &outcome)
{
    err() << '\n' << lostConnectionText(outcome, English, Wording::CommandLine) << '\n';
    if (::isatty(STDIN_FILENO) == 0) {
        err() << "Cancel (no terminal to answer)\n";
        err().flush();
        return false;
    }
    err() << "[r = Retry, anything else = Cancel] ";
    err().flush();
    char line[64] = {};
    if (!std::fgets(line, sizeof line, stdin))
        return false;
    return line[0] == 'r' || line[0] == 'R';
}

// Ctrl+C (or the system's request to stop) while radios are written: the
// transfers end as Cancel ends one in the progress form, so that the summary
// can still name the radios left partly written. A second one stops the
// tool at once. No SA_RESTART: a question waiting on the terminal gets no
// line and is answered Cancel.
class CancelOnSignal
{
public:
    explicit CancelOnSignal(CloneBatch &batch)
    {
        if (::pipe(s_pipe) != 0)
            return;
        m_notifier = std::make_unique<QSocketNotifier>(s_pipe[0], QSocketNotifier::Read);
        QObject::connect(m_notifier.get(), &QSocketNotifier::activated, [this, &batch] {
            m_notifier->setEnabled(false);
            batch.cancel();
        });
        struct sigaction action = {};
        action.sa_handler = [](int) {
            const char byte = 1;
            [[maybe_unused]] const ssize_t written = ::write(s_pipe[1], &byte, 1);
        };
        action.sa_flags = SA_RESETHAND;
        sigemptyset(&action.sa_mask);
        for (std::size_t i = 0; i < std::size(Signals); ++i)
            ::sigaction(Signals[i], &action, &m_previous[i]);
    }
    ~CancelOnSignal()
    {
        if (!m_notifier)
            return;
        for (std::size_t i = 0; i < std::size(Signals); ++i)
            ::sigaction(Signals[i], &m_previous[i], nullptr);
        m_notifier.reset();
        ::close(s_pipe[0]);
        ::close(s_pipe[1]);
    }
    CancelOnSignal(const CancelOnSignal &) = delete;
    CancelOnSignal &operator=(const CancelOnSignal &) = delete;

private:
    static constexpr int Signals[] = {SIGINT, SIGTERM};
    static inline int s_pipe[2] = {-1, -1};
    std::unique_ptr<QSocketNotifier> m_notifier;
    struct sigaction m_previous[std::size(Signals)] = {};
};

// The progress of the transfers, one line per port: redrawn in place on a
// terminal (at most every RedrawMs), otherwise a plain line for each
// quarter of the way and each retry.
class BatchProgress
{
public:
    explicit BatchProgress(const CloneBatch &batch)
        : m_batch(batch)
        , m_terminal(stderrIsTerminal())
        , m_columns(m_terminal ? terminalColumns() : 0)
        , m_quarters(batch.count(), 0)
        , m_statuses(batch.count())
    {
        for (int i = 0; i < batch.count(); ++i)
            m_labelWidth = std::max(m_labelWidth, label(i).size());
        m_redraw.setSingleShot(true);
        QObject::connect(&m_redraw, &QTimer::timeout, [this] { redraw(); });
        if (m_terminal)
            redraw();
    }

    QString label(int index) const
    {
        const CloneBatch::Radio &radio = m_batch.radio(index);
        return portLabel(radio.port, radio.device);
    }

    void changed(int index)
    {
        if (m_terminal) {
            if (!m_redraw.isActive())
                m_redraw.start(RedrawMs);
            return;
        }
        const CloneBatch::Radio &radio = m_batch.radio(index);
        if (!radio.running)
            return; // the summary tells
        const QString status = statusText(radio.status, English);
        if (!status.isEmpty() && status != m_statuses[index])
            print(index, status);
        m_statuses[index] = status;
        // A retry starts the count over; its quarters are told again.
        const int quarter = radio.progress * 4 / CloneEngine::ProgressMaximum;
        if (quarter < m_quarters[index])
            m_quarters[index] = quarter;
        if (quarter > m_quarters[index]) {
            m_quarters[index] = quarter;
            print(index, progressBar(radio.progress, BatchBarWidth));
        }
    }

    // The lines as the transfers ended.
    void finish()
    {
        m_redraw.stop();
        if (m_terminal)
            redraw();
    }

    // Something else is about to be printed below the lines: the next
    // redraw starts a new block under it instead of overwriting it.
    void detach()
    {
        finish();
        m_drawn = false;
    }

private:
    void print(int index, const QString &text)
    {
        err() << label(index) << ": " << text << '\n';
        err().flush();
    }

    void redraw()
    {
        if (m_drawn)
            err() << "\x1b[" << m_batch.count() << 'A';
        for (int i = 0; i < m_batch.count(); ++i) {
            const CloneBatch::Radio &radio = m_batch.radio(i);
            const char *state = radio.running ? "" : radio.outcome.succeeded() ? "  done" : "  failed";
            const QString status = statusText(radio.status, English);
            QString text = label(i).leftJustified(m_labelWidth) + QStringLiteral("  ")
                + progressBar(radio.progress, BatchBarWidth) + QLatin1String(state)
                + (status.isEmpty() ? QString() : QStringLiteral("  ") + status);
            // A line that wrapped would throw the cursor off the lines to redraw.
            if (m_columns > 1)
                text.truncate(m_columns - 1);
            err() << "\r\x1b[K" << text << '\n';
        }
        err().flush();
        m_drawn = true;
    }

    const CloneBatch &m_batch;
    bool m_terminal;
    int m_columns;
    bool m_drawn = false;
    qsizetype m_labelWidth = 0;
    QList<int> m_quarters;
    QStringList m_statuses;
    QTimer m_redraw;
};

// Moves the radios on ports, each on its own cable, with the progress on
// stderr. A single radio is moved as the progress form moves it: looked for
// on the other ports when it does not answer on its own, and the
// lost-connection question asked on the terminal.
std::unique_ptr<CloneBatch> runBatch(CloneEngine::Direction direction, const QList<int> &ports,
                                     const MemoryImage &image, bool verify)
{
    CloneBatch::Options options;
    options.verify = verify;
    std::unique_ptr<BatchProgress> progress;
    if (ports.size() == 1) {
        options.portScan = true;
        options.askRetry = [&progress](int, const TransferOutcome &outcome) {
            progress->detach();
            return askRetry(outcome);
        };
    }
    auto batch = std::make_unique<CloneBatch>(direction, ports, image, options);
    progress = std::make_unique<BatchProgress>(*batch);
    // A read stopped by Ctrl+C saves nothing and leaves the radio as it was:
    // the tool just stops.
    std::unique_ptr<CancelOnSignal> cancelOnSignal;
    if (direction == CloneEngine::Direction::Write)
        cancelOnSignal = std::make_unique<CancelOnSignal>(*batch);
    QEventLoop loop;
    QObject::connect(batch.get(), &CloneBatch::changed, [&](int index) { progress->changed(index); });
    QObject::connect(batch.get(), &CloneBatch::finished, &loop, &QEventLoop::quit);
    batch->start();
    loop.exec();
    progress->finish();
    return batch;
}

// The summary line of a radio: its port and how the transfer ended, in the
// words of the progress form, what to do on the lines under it, and last
// the warning of a radio left partly written.
QString summary(const CloneBatch::Radio &radio)
{
    QString text = indented(outcomeText(radio.outcome, English, Wording::CommandLine));
    const QString partly = partlyWrittenText(radio.outcome, English);
    if (!partly.isEmpty())
        text += QStringLiteral("\n  ") + indented(partly);
    // The port's problem already begins with the port's name.
    const TransferOutcome::Kind kind = radio.outcome.kind;
    if (kind == TransferOutcome::Kind::PortFailed || kind == TransferOutcome::Kind::PortLost)
        return text;
    return portLabel(radio.port, radio.device) + QStringLiteral(": ") + text;
}

// The ports of a list, or a usage error for the first that is none or is
// given twice.
std::optional<QList<int>> parsePorts(const CommandLine &line, const QStringList &texts)
{
    QList<int> ports;
    for (const QString &text : texts) {
        const int port = parsePort(text);
        if (port == 0) {
            line.usageError(QStringLiteral("'%1' is not a port from COM1 to COM255").arg(text));
            return std::nullopt;
        }
        if (ports.contains(port)) {
            line.usageError(QStringLiteral("COM%1 is given twice").arg(port));
            return std::nullopt;
        }
        ports.append(port);
    }
    return ports;
}

// A name for the file of a radio read in a batch started at `time`, one that
// is not taken yet: COM33_2026-11-23_141502.tw, then COM33_2026-11-23_141502_2.tw.
QString batchFileName(const QDir &folder, int port, const QDateTime &time)
{
    const QString stem = QStringLiteral("COM%1_%2").arg(port).arg(time.toString(QStringLiteral("yyyy-MM-dd_HHmmss")));
    QString path = folder.filePath(stem + QStringLiteral(".tw"));
    for (int sequence = 2; QFileInfo::exists(path); ++sequence)
        path = folder.filePath(QStringLiteral("%1_%2.tw").arg(stem).arg(sequence));
    return path;
}

// Reads the radios on ports; one radio into the file at path, several into
// one file each in the folder at path.
int readRadios(const QList<int> &ports, const QString &path, bool each)
{
    if (each && !QDir().mkpath(path))
        return linkFailure(QStringLiteral("read"), QStringLiteral("%1: cannot create the folder").arg(path));
    const QDir folder(path);
    const QDateTime started = QDateTime::currentDateTime();

    MemoryImage fresh;
    fresh.InitImage();
    const std::unique_ptr<CloneBatch> batch = runBatch(CloneEngine::Direction::Read, ports, fresh, false);

    bool allSaved = true;
    for (int i = 0; i < batch->count(); ++i) {
        const CloneBatch::Radio &radio = batch->radio(i);
        if (!radio.outcome.succeeded()) {
            err() << summary(radio) << '\n';
            allSaved = false;
            continue;
        }
        const QString file = QDir::toNativeSeparators(each ? batchFileName(folder, radio.port, started) : path);
        QString errorString;
        if (DataFile::Write(file, batch->image(i), &errorString)) {
            err() << summary(radio) << " Saved as " << file << '\n';
        } else {
            err() << portLabel(radio.port, radio.device) << ": " << file << ": " << errorString << '\n';
            allSaved = false;
        }
    }
    err().flush();
    return allSaved ? Success : Failure;
}

int writeRadios(const QList<int> &ports, const MemoryImage &image, bool verify)
{
    const std::unique_ptr<CloneBatch> batch = runBatch(CloneEngine::Direction::Write, ports, image, verify);
    // A radio found by the port search may be written whole while the one
    // first tried was left partly written: that is no success either.
    bool partly = false;
    for (int i = 0; i < batch->count(); ++i) {
        err() << summary(batch->radio(i)) << '\n';
        partly = partly || !batch->radio(i).outcome.partlyWritten.isEmpty();
    }
    err().flush();
    return batch->allCompleted() && !partly ? Success : Failure;
}

int ports(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("ports"),
                     QStringLiteral("Lists the serial ports by COM number. Symbolic links com<N> in %1 add ports.")
                         .arg(serialPortsFolder()));
    if (const auto status = line.parse(arguments))
        return *status;
    const QList<PortEntry> catalogue = portCatalogue();
    if (catalogue.isEmpty()) {
        err() << "No serial port found.\n";
        err().flush();
        return Success;
    }
    for (const PortEntry &entry : catalogue) {
        out() << entry.name.leftJustified(7) << ' ' << entry.devicePath.leftJustified(20) << ' '
              << (entry.isLink ? QStringLiteral("link to the device") : entry.description) << '\n';
    }
    return Success;
}

int read(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("read"),
                     QStringLiteral("Reads the radio on COM<N> into a new data file. With --each, reads the radios "
                                    "on all the ports given at once, one file per port in the folder given by "
                                    "--into, named after the port and the time: COM33_2026-11-23_141502.tw."));
    const QCommandLineOption each(QStringLiteral("each"), QStringLiteral("Read every port given, at once."));
    const QCommandLineOption into(QStringLiteral("into"), QStringLiteral("The folder for the files of --each."),
                                  QStringLiteral("FOLDER"));
    line.parser().addOptions({each, into});
    line.addArgument(QStringLiteral("COM<N>"),
                     QStringLiteral("The port the radio is connected to; with --each, one or more ports."));
    line.addArgument(QStringLiteral("OUT.tw"), QStringLiteral("The data file to write (not with --each)."));
    line.setMinimumArguments(1);
    if (const auto status = line.parse(arguments))
        return *status;
    if (line.parser().isSet(each)) {
        if (!line.parser().isSet(into))
            return line.usageError(QStringLiteral("--each needs --into FOLDER"));
        const std::optional<QList<int>> ports = parsePorts(line, line.arguments());
        return ports ? readRadios(*ports, line.parser().value(into), true) : UsageError;
    }
    if (line.parser().isSet(into))
        return line.usageError(QStringLiteral("--into goes with --each"));
    if (line.arguments().size() != 2)
        return line.usageError(line.arguments().size() < 2 ? QStringLiteral("missing argument")
                                                           : QStringLiteral("too many arguments; use --each "
                                                                            "--into FOLDER for several radios"));
    const std::optional<QList<int>> port = parsePorts(line, line.arguments().first(1));
    return port ? readRadios(*port, line.arguments().at(1), false) : UsageError;
}

int write(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("write"),
                     QStringLiteral("Writes a data file into the radio on COM<N>. Given several ports, writes all "
                                    "those radios at once, one line of progress each; the exit status is 0 only "
                                    "when every radio was written (and, with --verify, read back equal). A radio "
                                    "whose write stopped after its first row, Ctrl+C included, is named as only "
                                    "partly written: write it again before using it."));
    const QCommandLineOption verify(QStringLiteral("verify"),
                                    QStringLiteral("Read every radio back after writing it and compare it byte for "
                                                   "byte; a radio that differs names the first rows that do."));
    line.parser().addOption(verify);
    line.addArgument(QStringLiteral("IN.tw"), QStringLiteral("The data file to send."));
    line.addArgument(QStringLiteral("COM<N>..."),
                     QStringLiteral("The port the radio is connected to, or several ports. A radio that does not "
                                    "answer on one of several ports is not looked for on other ports."));
    line.setMinimumArguments(2);
    if (const auto status = line.parse(arguments))
        return *status;
    const std::optional<QList<int>> ports = parsePorts(line, line.arguments().mid(1));
    if (!ports)
        return UsageError;
    const std::optional<MemoryImage> image = readImage(line.arguments().at(0));
    if (!image)
        return Failure;
    return writeRadios(*ports, *image, line.parser().isSet(verify));
}

} // namespace

QList<Command> linkCommands()
{
    return {
        {QStringLiteral("ports"), QStringLiteral("list the serial ports by COM number"), ports},
        {QStringLiteral("read"),
         QStringLiteral("read a radio into a data file: read COM<N> OUT.tw, or read --each COM<N>... --into FOLDER"),
         read},
        {QStringLiteral("write"),
         QStringLiteral("write a data file into radios: write [--verify] IN.tw COM<N>..."), write},
        doctorCommand(),
    };
}

} // namespace wr::tool
