// wrpd6t-link-bench: a full read and a full write against the virtual radio
// at its real 9600-baud pace, timing each and watching how long the event
// loop is ever kept from running during the transfer.
//
//   wrpd6t-link-bench [path/to/wrpd6t-radio-sim]

#include "core/AppState.h"
#include "core/BandLimits.h"
#include "link/CloneDriver.h"
#include "link/CloneEngine.h"

#include "BenchSupport.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFileInfo>

#include <cstdio>

namespace {

constexpr double ByteMs = 11.0 * 1000.0 / 9600.0;

// The shortest a transfer can take on the cable: every byte at 9600 baud
// with two stop bits, plus the 10 ms pause before each reply is read; the
// two handshake steps are held by the 20 ms pause after their frame.
double floorMs(bool read)
{
    const int rows = read ? 188 : 187;
    const double rowMs = (read ? 4 + 20 : 20 + 1) * ByteMs + 10.0;
    return 2 * (20.0 + 10.0) + rows * rowMs;
}

struct Result
{
    bool ok = false;
    double ms = 0;
    double stallMs = 0;
    double stallAtMs = 0; // when it began, from the start of the transfer
    QString failure;
};

Result runTransfer(wr::AppState &state)
{
    Result result;
    wr::CloneEngine engine(state);
    wr::CloneDriver::Prompts prompts;
    prompts.askRetry = [&](const QString &, const QString &text) {
        result.failure = text;
        return false;
    };
    prompts.showMessage = [&](wr::CloneEngine::MessageIcon icon, const QString &, const QString &text) {
        if (icon == wr::CloneEngine::MessageIcon::Exclamation)
            result.failure = text;
    };
    wr::CloneDriver driver(engine, prompts);

    wr::bench::StallWatch watch;
    QEventLoop loop;
    QObject::connect(&driver, &wr::CloneDriver::unloaded, &loop, &QEventLoop::quit);
    watch.start();
    driver.start();
    if (driver.isRunning())
        loop.exec();
    result.ms = watch.elapsedMs();
    result.stallMs = watch.widestMs();
    result.stallAtMs = watch.widestAtMs();
    result.ok = engine.Finished;
    return result;
}

void report(const char *name, bool read, const Result &result)
{
    const double floor = floorMs(read);
    std::printf("%-5s %s  %.2f s  (floor %.2f s, %+.1f %%)  longest event-loop stall %.1f ms (at %.0f ms)\n", name,
                result.ok ? "ok    " : "FAILED", result.ms / 1000.0, floor / 1000.0, (result.ms / floor - 1.0) * 100.0,
                result.stallMs, result.stallAtMs);
    if (!result.ok)
        std::printf("      %s\n", qPrintable(result.failure));
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    wr::InitApplicationIdentity();

    const QString sim = argc > 1 ? QString::fromLocal8Bit(argv[1])
                                 : QCoreApplication::applicationDirPath() + QStringLiteral("/wrpd6t-radio-sim");
    if (!QFileInfo(sim).isExecutable()) {
        std::fprintf(stderr, "wrpd6t-link-bench: %s is not the virtual radio\n", qPrintable(sim));
        return 2;
    }

    wr::bench::VirtualRadios radio(sim);
    if (!radio.start(250, 1)) {
        std::fprintf(stderr, "wrpd6t-link-bench: the virtual radio did not start\n");
        return 1;
    }

    wr::AppState &state = wr::app();
    state.LanguageIndex = 0;
    state.PortNumber = 250;
    state.image.InitImage();

    state.LinkDirection = 0;
    const Result read = runTransfer(state);
    report("read", true, read);

    // What a fresh radio holds: its defaults and its band limits.
    wr::MemoryImage expected;
    expected.InitImage();
    wr::WriteDefaultBandLimits(expected);
    const bool readExact = read.ok && state.image == expected;
    if (read.ok && !readExact)
        std::printf("      the image read differs from the radio's memory\n");

    state.LinkDirection = 1;
    const Result write = runTransfer(state);
    report("write", false, write);

    return read.ok && readExact && write.ok ? 0 : 1;
}
