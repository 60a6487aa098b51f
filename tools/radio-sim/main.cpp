// wrpd6t-radio-sim: a virtual WR-PD6T on a pseudo-terminal, registered as a
// COM port in the program's serial-ports folder, for trying the clone
// transfer without a radio or a cable; with --count, several radios, each on
// a port of its own.

#include "PtyRadio.h"
#include "VirtualRadio.h"

#include "core/AppState.h"
#include "core/BandLimits.h"
#include "file/DataFile.h"
#include "link/PortCatalogue.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSocketNotifier>

#include <csignal>
#include <cstdio>
#include <memory>
#include <vector>
#include <unistd.h>

namespace {

int signalPipe[2] = {-1, -1};

void onSignal(int)
{
    const char byte = 1;
    [[maybe_unused]] const ssize_t n = ::write(signalPipe[1], &byte, 1);
}

void printError(const QString &text)
{
    std::fprintf(stderr, "wrpd6t-radio-sim: %s\n", qPrintable(text));
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    wr::InitApplicationIdentity();

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("A virtual WR-PD6T radio on a pseudo-terminal.\n"
                       "Registers the pseudo-terminal as a COM port of the programming software, prints the port "
                       "and the device on its first line, and answers reads and writes like a radio at the other "
                       "end of the cable until it is stopped with Ctrl+C."));
    parser.addHelpOption();
    // Not addVersionOption(): the application name is the programming
    // software's, which names the folders the two share.
    const QCommandLineOption versionOption({QStringLiteral("v"), QStringLiteral("version")},
                                           QStringLiteral("Displays version information."));
    const QCommandLineOption comOption(QStringLiteral("com"), QStringLiteral("Register as COM<N> (1-255, default 200)."),
                                       QStringLiteral("N"), QStringLiteral("200"));
    const QCommandLineOption countOption(QStringLiteral("count"),
                                         QStringLiteral("Be N radios at once, COM<N> and the N - 1 ports after it, "
                                                        "each with its own memory and pseudo-terminal (default 1)."),
                                         QStringLiteral("N"), QStringLiteral("1"));
    const QCommandLineOption imageOption(QStringLiteral("image"), QStringLiteral("Start with the memory of a .tw file."),
                                         QStringLiteral("FILE.tw"));
    const QCommandLineOption saveOption(QStringLiteral("save"),
                                        QStringLiteral("Save the memory to a .tw file after each session; with --count, "
                                                       "radio COM<N> saves to FILE-COM<N>.tw."),
                                        QStringLiteral("FILE.tw"));
    const QCommandLineOption noPacing(QStringLiteral("no-pacing"), QStringLiteral("Answer at once instead of at 9600 baud."));
    const QCommandLineOption silent(QStringLiteral("silent"), QStringLiteral("Never answer."));
    const QCommandLineOption wrongId(QStringLiteral("wrong-id"), QStringLiteral("Identify as QAWPD7T."));
    const QCommandLineOption noise(QStringLiteral("noise-before-ack"), QStringLiteral("Send stray bytes before each ACK to PROGRAM."));
    const QCommandLineOption dropReply(QStringLiteral("drop-reply"), QStringLiteral("Ignore the first request for ROW."),
                                       QStringLiteral("ROW"));
    const QCommandLineOption delay(QStringLiteral("delay-ms"), QStringLiteral("Start every answer N ms late."),
                                   QStringLiteral("N"));
    const QCommandLineOption hangUp(QStringLiteral("hang-up-after"),
                                    QStringLiteral("Stop answering after ROWS rows, until the next PROGRAM."),
                                    QStringLiteral("ROWS"));
    const QCommandLineOption nakWrites(QStringLiteral("nak-writes"), QStringLiteral("Refuse every written row with NAK."));
    const QCommandLineOption lateReply(QStringLiteral("late-reply"),
                                       QStringLiteral("Answer the first request for ROW %1 ms late.")
                                           .arg(wr::sim::VirtualRadio::LateReplyMs),
                                       QStringLiteral("ROW"));
    const QCommandLineOption splitReply(QStringLiteral("split-reply"),
                                        QStringLiteral("Start the first answer for ROW %1 ms late and send its second "
                                                       "half %2 ms after the first.")
                                            .arg(wr::sim::VirtualRadio::SplitReplyMs)
                                            .arg(wr::sim::VirtualRadio::SplitGapMs),
                                        QStringLiteral("ROW"));
    const QCommandLineOption duplicateAck(QStringLiteral("duplicate-ack"),
                                          QStringLiteral("Acknowledge the first write of ROW twice, %1 ms apart.")
                                              .arg(wr::sim::VirtualRadio::DuplicateAckMs),
                                          QStringLiteral("ROW"));
    const QCommandLineOption corruptRow(QStringLiteral("corrupt-row"),
                                        QStringLiteral("Acknowledge every write of ROW but store one byte of it wrong."),
                                        QStringLiteral("ROW"));
    const QCommandLineOption echo(QStringLiteral("echo"),
                                  QStringLiteral("Be a cable with no radio: send back every byte received."));
    const QCommandLineOption wrongSpeed(QStringLiteral("wrong-speed"),
                                        QStringLiteral("Answer at another line speed: every byte arrives mangled."));
    parser.addOptions({versionOption, comOption, countOption, imageOption, saveOption, noPacing, silent, wrongId, noise,
                       dropReply, delay, hangUp, nakWrites, lateReply, splitReply, duplicateAck, corruptRow, echo,
                       wrongSpeed});
    parser.process(application);
    if (parser.isSet(versionOption)) {
        std::printf("wrpd6t-radio-sim %s\n", qPrintable(QCoreApplication::applicationVersion()));
        return 0;
    }

    auto number = [&](const QCommandLineOption &option, int minimum, int maximum, int fallback) {
        if (!parser.isSet(option))
            return fallback;
        bool ok = false;
        const int value = parser.value(option).toInt(&ok);
        if (!ok || value < minimum || value > maximum) {
            printError(QStringLiteral("--%1 needs a number from %2 to %3").arg(option.names().first()).arg(minimum).arg(maximum));
            std::exit(2);
        }
        return value;
    };

    const int com = number(comOption, 1, 255, 200);
    const int count = number(countOption, 1, 256 - com, 1);
    wr::sim::RadioFaults faults;
    faults.silent = parser.isSet(silent);
    faults.wrongId = parser.isSet(wrongId);
    faults.noiseBeforeAck = parser.isSet(noise);
    faults.dropReplyRow = number(dropReply, 0, wr::MemoryImage::RowCount - 1, -1);
    faults.delayMs = number(delay, 0, 60000, 0);
    faults.hangUpAfterRows = number(hangUp, 0, wr::MemoryImage::RowCount, -1);
    faults.nakWrites = parser.isSet(nakWrites);
    faults.lateReplyRow = number(lateReply, 0, wr::MemoryImage::RowCount - 1, -1);
    faults.splitReplyRow = number(splitReply, 0, wr::MemoryImage::RowCount - 1, -1);
    faults.duplicateAckRow = number(duplicateAck, 0, wr::MemoryImage::RowCount - 1, -1);
    faults.corruptRow = number(corruptRow, 0, wr::MemoryImage::RowCount - 1, -1);
    faults.echo = parser.isSet(echo);
    faults.wrongSpeed = parser.isSet(wrongSpeed);

    wr::MemoryImage memory;
    if (parser.isSet(imageOption)) {
        const wr::DataFile::ReadResult file = wr::DataFile::Read(parser.value(imageOption));
        if (file.status != wr::DataFile::ReadStatus::Ok) {
            printError(file.status == wr::DataFile::ReadStatus::CannotOpen
                           ? file.errorString
                           : QStringLiteral("%1: not a WR-PD6T data file").arg(parser.value(imageOption)));
            return 1;
        }
        memory.setBytes(file.image);
    } else {
        // A fresh radio: the program's defaults plus the band limits a real
        // radio reports in row 416.
        memory.InitImage();
        wr::WriteDefaultBandLimits(memory);
    }

    // Each radio on its own port: its memory, its line, its link and its file.
    struct Radio
    {
        int com = 0;
        std::unique_ptr<wr::sim::VirtualRadio> radio;
        std::unique_ptr<wr::sim::PtyRadio> line;
        QString linkPath;
    };
    std::vector<Radio> radios;
    const auto removeLinks = [&radios] {
        for (const Radio &radio : radios)
            QFile::remove(radio.linkPath);
    };
    const QString folder = wr::serialPortsFolder();
    QDir().mkpath(folder);
    for (int i = 0; i < count; ++i) {
        Radio &r = radios.emplace_back();
        r.com = com + i;
        r.radio = std::make_unique<wr::sim::VirtualRadio>(faults);
        r.radio->memory() = memory;
        QString savePath = parser.value(saveOption);
        if (!savePath.isEmpty() && count > 1) {
            const QString stem = savePath.endsWith(QStringLiteral(".tw")) ? savePath.chopped(3) : savePath;
            savePath = QStringLiteral("%1-COM%2.tw").arg(stem).arg(r.com);
        }
        wr::sim::VirtualRadio &radio = *r.radio;
        radio.onSessionEnded = [&radio, savePath] {
            if (savePath.isEmpty())
                return;
            QString error;
            if (!wr::DataFile::Write(savePath, radio.memory(), &error))
                printError(QStringLiteral("cannot save %1: %2").arg(savePath, error));
        };
        r.line = std::make_unique<wr::sim::PtyRadio>(radio, !parser.isSet(noPacing));
        if (!r.line->open()) {
            printError(QStringLiteral("cannot create a pseudo-terminal: %1").arg(r.line->errorString()));
            removeLinks();
            return 1;
        }
        const QString linkPath = folder + QStringLiteral("/com%1").arg(r.com);
        QFile::remove(linkPath);
        if (!QFile::link(r.line->devicePath(), linkPath)) {
            printError(QStringLiteral("cannot create the link %1").arg(linkPath));
            removeLinks();
            return 1;
        }
        r.linkPath = linkPath;
    }

    if (::pipe(signalPipe) != 0) {
        removeLinks();
        return 1;
    }
    std::signal(SIGINT, onSignal);
    std::signal(SIGTERM, onSignal);
    std::signal(SIGHUP, onSignal);
    QSocketNotifier quitNotifier(signalPipe[0], QSocketNotifier::Read);
    QObject::connect(&quitNotifier, &QSocketNotifier::activated, &application, &QCoreApplication::quit);

    for (const Radio &radio : radios)
        std::printf("COM%d %s\n", radio.com, qPrintable(radio.line->devicePath()));
    std::fflush(stdout);

    const int result = application.exec();
    removeLinks();
    return result;
}
