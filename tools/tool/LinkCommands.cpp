// The radio link subcommands of wrpd6t-tool: ports, read and write. They run
// the same clone engine and serial driver as the progress form, with the
// progress on stderr instead of a window. Given several ports, read and
// write move all those radios at once, one cable each.

#include "Commands.h"

#include "core/AppState.h"
#include "core/Language.h"
#include "file/DataFile.h"
#include "link/CloneBatch.h"
#include "link/CloneDriver.h"
#include "link/CloneEngine.h"
#include "link/PortCatalogue.h"
#include "link/PortProblem.h"

#include <QDateTime>
#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTimer>

#include <cstdio>
#include <sys/ioctl.h>
#include <unistd.h>

namespace wr::tool {

namespace {

constexpr int BarWidth = 40;
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
    static const QRegularExpression pattern(QStringLiteral("^(?:com)?(\\d{1,3})$"),
                                            QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = pattern.match(text.trimmed());
    const int number = match.hasMatch() ? match.captured(1).toInt() : 0;
    return number >= 1 && number <= 255 ? number : 0;
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

void drawProgress(int value, bool final)
{
    const bool terminal = stderrIsTerminal();
    if (!terminal && !final)
        return;
    err() << (terminal ? "\r" : "") << progressBar(value, BarWidth) << (final ? "\n" : "");
    err().flush();
}

// What a transfer that found nobody to answer its question ends with.
QString noValidAnswer(int port)
{
    return QStringLiteral("no valid answer from the radio on COM%1; check the connection").arg(port);
}

// The lost-connection question, with the ports tried under it: asked on the
// terminal, answered Cancel when nobody is there to answer it.
bool askRetry(const QString &text)
{
    err() << '\n' << text << '\n';
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

// Runs one transfer over "COM" + PortNumber of the application state. Returns
// the message to fail with, or an empty string on success.
QString transfer(AppState &state)
{
    CloneEngine engine(state);
    QString failure;
    QString completion;
    int lastProgress = 0;
    CloneDriver::Prompts prompts;
    prompts.askRetry = [&](const QString &, const QString &text) {
        const bool retry = askRetry(text);
        if (!retry)
            failure = noValidAnswer(state.PortNumber);
        return retry;
    };
    prompts.showMessage = [&](CloneEngine::MessageIcon icon, const QString &, const QString &text) {
        if (icon == CloneEngine::MessageIcon::Exclamation)
            failure = text; // the port, the system's reason and what to do about it
        else
            completion = text; // shown under the finished bar
    };
    CloneDriver driver(engine, prompts);
    QEventLoop loop;
    QObject::connect(&driver, &CloneDriver::progressChanged, [&](int value, const QString &) {
        lastProgress = value;
        drawProgress(value, false);
    });
    QObject::connect(&driver, &CloneDriver::statusChanged, [&](const QString &text) {
        // Retries and each port the search moves to, on a line of their
        // own; the bar goes on below.
        if (text.isEmpty())
            return;
        err() << (stderrIsTerminal() ? "\r\x1b[K" : "") << text << '\n';
        err().flush();
    });
    QObject::connect(&driver, &CloneDriver::unloaded, &loop, &QEventLoop::quit);
    driver.start();
    if (driver.isRunning())
        loop.exec();
    if (engine.Finished) {
        drawProgress(lastProgress, true);
        err() << completion << '\n';
        err().flush();
        return {};
    }
    return failure.isEmpty() ? QStringLiteral("the transfer was interrupted") : failure;
}

// The progress of several transfers, one line per port: redrawn in place on
// a terminal (at most every RedrawMs), otherwise a plain line for each
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
        if (radio.outcome != CloneBatch::Outcome::Running)
            return; // the summary tells
        if (!radio.status.isEmpty() && radio.status != m_statuses[index])
            print(index, radio.status);
        m_statuses[index] = radio.status;
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
            const char *state = radio.outcome == CloneBatch::Outcome::Running     ? ""
                                : radio.outcome == CloneBatch::Outcome::Completed ? "  done"
                                                                                  : "  failed";
            QString text = label(i).leftJustified(m_labelWidth) + QStringLiteral("  ")
                + progressBar(radio.progress, BatchBarWidth) + QLatin1String(state)
                + (radio.status.isEmpty() ? QString() : QStringLiteral("  ") + radio.status);
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

// Runs a batch to its end with its progress on stderr.
void runBatch(CloneBatch &batch)
{
    BatchProgress progress(batch);
    QEventLoop loop;
    QObject::connect(&batch, &CloneBatch::changed, [&](int index) { progress.changed(index); });
    QObject::connect(&batch, &CloneBatch::finished, &loop, &QEventLoop::quit);
    batch.start();
    loop.exec();
    progress.finish();
}

// The summary line of a radio that was not moved: the same words as a
// single transfer's message, under the port's name.
QString batchFailure(const CloneBatch::Radio &radio)
{
    const QString label = portLabel(radio.port, radio.device);
    switch (radio.outcome) {
    case CloneBatch::Outcome::NoAnswer:
        return label + QStringLiteral(": ") + noValidAnswer(radio.port);
    case CloneBatch::Outcome::PortFailed:
        // Already under the port's name; the advice goes on an indented line.
        return QString(radio.message).replace(u'\n', QStringLiteral("\n  "));
    case CloneBatch::Outcome::PortLost:
        // The window's advice for a lost port ends in its Retry button; a
        // batch has none, so the user is told to run that port again.
        return radio.message.section(u'\n', 0, 0)
            + QStringLiteral("\n  The port went away during the transfer: check that the cable is still plugged "
                             "in, then run the command again for this port.");
    case CloneBatch::Outcome::Running:
    case CloneBatch::Outcome::Completed:
        break;
    }
    return label + QStringLiteral(": the transfer was interrupted");
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

int readEach(const QList<int> &ports, const QString &folderPath)
{
    if (!QDir().mkpath(folderPath))
        return linkFailure(QStringLiteral("read"), QStringLiteral("%1: cannot create the folder").arg(folderPath));
    const QDir folder(folderPath);
    const QDateTime started = QDateTime::currentDateTime();

    MemoryImage fresh;
    fresh.InitImage();
    CloneBatch batch(CloneEngine::Direction::Read, ports, fresh, English);
    runBatch(batch);

    bool allSaved = true;
    for (int i = 0; i < batch.count(); ++i) {
        const CloneBatch::Radio &radio = batch.radio(i);
        const QString label = portLabel(radio.port, radio.device);
        if (radio.outcome != CloneBatch::Outcome::Completed) {
            err() << batchFailure(radio) << '\n';
            allSaved = false;
            continue;
        }
        const QString path = QDir::toNativeSeparators(batchFileName(folder, radio.port, started));
        QString errorString;
        if (DataFile::Write(path, batch.image(i), &errorString)) {
            err() << label << ": " << radio.message << " Saved as " << path << '\n';
        } else {
            err() << label << ": " << path << ": " << errorString << '\n';
            allSaved = false;
        }
    }
    err().flush();
    return allSaved ? Success : Failure;
}

int writeEach(const QList<int> &ports, const MemoryImage &image)
{
    CloneBatch batch(CloneEngine::Direction::Write, ports, image, English);
    runBatch(batch);
    for (int i = 0; i < batch.count(); ++i) {
        const CloneBatch::Radio &radio = batch.radio(i);
        if (radio.outcome == CloneBatch::Outcome::Completed)
            err() << portLabel(radio.port, radio.device) << ": " << radio.message << '\n';
        else
            err() << batchFailure(radio) << '\n';
    }
    err().flush();
    return batch.allCompleted() ? Success : Failure;
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
        out() << entry.name.leftJustified(7) << ' ' << entry.devicePath.leftJustified(20) << ' ' << entry.description
              << '\n';
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
        return ports ? readEach(*ports, line.parser().value(into)) : UsageError;
    }
    if (line.parser().isSet(into))
        return line.usageError(QStringLiteral("--into goes with --each"));
    if (line.arguments().size() != 2)
        return line.usageError(line.arguments().size() < 2 ? QStringLiteral("missing argument")
                                                           : QStringLiteral("too many arguments; use --each "
                                                                            "--into FOLDER for several radios"));
    const int port = parsePort(line.arguments().at(0));
    if (port == 0)
        return line.usageError(QStringLiteral("'%1' is not a port from COM1 to COM255").arg(line.arguments().at(0)));

    AppState &state = app();
    state.LanguageIndex = 0;
    state.PortNumber = static_cast<quint8>(port);
    state.LinkDirection = 0;
    state.image.InitImage();
    const QString failure = transfer(state);
    if (!failure.isEmpty())
        return linkFailure(QStringLiteral("read"), failure);

    const QString path = line.arguments().at(1);
    QString errorString;
    if (!DataFile::Write(path, state.image, &errorString))
        return linkFailure(QStringLiteral("read"), QStringLiteral("%1: %2").arg(path, errorString));
    return Success;
}

int write(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("write"),
                     QStringLiteral("Writes a data file into the radio on COM<N>. Given several ports, writes all "
                                    "those radios at once, one line of progress each; the exit status is 0 only "
                                    "when every radio was written."));
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

    const QString path = line.arguments().at(0);
    const DataFile::ReadResult file = DataFile::Read(path);
    if (file.status != DataFile::ReadStatus::Ok) {
        return linkFailure(QStringLiteral("write"),
                           QStringLiteral("%1: %2").arg(path, file.status == DataFile::ReadStatus::CannotOpen
                                                                  ? file.errorString
                                                                  : QStringLiteral("Incorrect File Type.")));
    }
    if (ports->size() > 1) {
        MemoryImage image;
        image.setBytes(file.image);
        return writeEach(*ports, image);
    }
    AppState &state = app();
    state.LanguageIndex = 0;
    state.PortNumber = static_cast<quint8>(ports->first());
    state.LinkDirection = 1;
    state.image.setBytes(file.image);
    const QString failure = transfer(state);
    if (!failure.isEmpty())
        return linkFailure(QStringLiteral("write"), failure);
    return Success;
}

} // namespace

QList<Command> linkCommands()
{
    return {
        {QStringLiteral("ports"), QStringLiteral("list the serial ports by COM number"), ports},
        {QStringLiteral("read"),
         QStringLiteral("read a radio into a data file: read COM<N> OUT.tw, or read --each COM<N>... --into FOLDER"),
         read},
        {QStringLiteral("write"), QStringLiteral("write a data file into radios: write IN.tw COM<N>..."), write},
    };
}

} // namespace wr::tool
