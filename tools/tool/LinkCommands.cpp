// The radio link subcommands of wrpd6t-tool: ports, read and write. They run
// the same clone engine and serial driver as the progress form, with the
// progress on stderr instead of a window.

#include "Commands.h"

#include "core/AppState.h"
#include "file/DataFile.h"
#include "link/CloneDriver.h"
#include "link/CloneEngine.h"
#include "link/PortCatalogue.h"

#include <QEventLoop>
#include <QRegularExpression>

#include <cstdio>
#include <unistd.h>

namespace wr::tool {

namespace {

constexpr int BarWidth = 40;

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

void drawProgress(int value, bool final)
{
    const bool terminal = ::isatty(STDERR_FILENO) != 0;
    if (!terminal && !final)
        return;
    const int filled = value * BarWidth / CloneEngine::ProgressMaximum;
    const int percent = (value * 100 + CloneEngine::ProgressMaximum / 2) / CloneEngine::ProgressMaximum;
    err() << (terminal ? "\r" : "") << '[' << QString(filled, QLatin1Char('#'))
          << QString(BarWidth - filled, QLatin1Char('.')) << "] " << value << '/' << CloneEngine::ProgressMaximum << ' '
          << percent << '%' << (final ? "\n" : "");
    err().flush();
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
            failure = QStringLiteral("no valid answer from the radio on COM%1; check the connection")
                          .arg(state.PortNumber);
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
        err() << (::isatty(STDERR_FILENO) != 0 ? "\r\x1b[K" : "") << text << '\n';
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
    CommandLine line(QStringLiteral("read"), QStringLiteral("Reads the radio on COM<N> into a new data file."));
    line.addArgument(QStringLiteral("COM<N>"), QStringLiteral("The port the radio is connected to."));
    line.addArgument(QStringLiteral("OUT.tw"), QStringLiteral("The data file to write."));
    if (const auto status = line.parse(arguments))
        return *status;
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
    CommandLine line(QStringLiteral("write"), QStringLiteral("Writes a data file into the radio on COM<N>."));
    line.addArgument(QStringLiteral("IN.tw"), QStringLiteral("The data file to send."));
    line.addArgument(QStringLiteral("COM<N>"), QStringLiteral("The port the radio is connected to."));
    if (const auto status = line.parse(arguments))
        return *status;
    const int port = parsePort(line.arguments().at(1));
    if (port == 0)
        return line.usageError(QStringLiteral("'%1' is not a port from COM1 to COM255").arg(line.arguments().at(1)));

    const QString path = line.arguments().at(0);
    const DataFile::ReadResult file = DataFile::Read(path);
    if (file.status != DataFile::ReadStatus::Ok) {
        return linkFailure(QStringLiteral("write"),
                           QStringLiteral("%1: %2").arg(path, file.status == DataFile::ReadStatus::CannotOpen
                                                                  ? file.errorString
                                                                  : QStringLiteral("Incorrect File Type.")));
    }
    AppState &state = app();
    state.LanguageIndex = 0;
    state.PortNumber = static_cast<quint8>(port);
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
        {QStringLiteral("read"), QStringLiteral("read a radio into a data file: read COM<N> OUT.tw"), read},
        {QStringLiteral("write"), QStringLiteral("write a data file into a radio: write IN.tw COM<N>"), write},
    };
}

} // namespace wr::tool
