// wrpd6t-link-bench: a full read, a full write and a verified write against
// the virtual radio at its real 9600-baud pace, timing each and watching how
// long the event loop is ever kept from running during the transfer. A
// verified write reads the written rows back: it should cost no more than
// a write and a read together (at most 1.02 times their sum).
//
//   wrpd6t-link-bench [path/to/wrpd6t-radio-sim] [RUNS]      (RUNS: 3 unless given; medians)

#include "core/AppState.h"
#include "core/BandLimits.h"
#include "core/Language.h"
#include "link/CloneDriver.h"
#include "link/CloneEngine.h"
#include "link/TransferTexts.h"

#include "BenchSupport.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFileInfo>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

constexpr double ByteMs = 11.0 * 1000.0 / 9600.0;
constexpr double MostVerifyRatio = 1.02;

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

Result runTransfer(wr::AppState &state, bool verify)
{
    Result result;
    wr::CloneEngine engine(state);
    engine.setVerify(verify);
    wr::CloneDriver::Prompts prompts;
    prompts.askRetry = [&](const wr::TransferOutcome &outcome) {
        result.failure = wr::outcomeText(outcome, wr::English, wr::Wording::CommandLine);
        return false;
    };
    prompts.report = [&](const wr::TransferOutcome &outcome) {
        if (!outcome.succeeded())
            result.failure = wr::outcomeText(outcome, wr::English, wr::Wording::CommandLine);
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
    result.ok = engine.outcome().succeeded() && (!verify || engine.outcome().verified);
    return result;
}

// The run of the median time among runs of one transfer.
Result medianRun(wr::AppState &state, bool verify, int runs)
{
    std::vector<Result> results;
    for (int run = 0; run < runs; ++run)
        results.push_back(runTransfer(state, verify));
    std::sort(results.begin(), results.end(), [](const Result &a, const Result &b) { return a.ms < b.ms; });
    Result middle = results[results.size() / 2];
    for (const Result &result : results)
        middle.ok = middle.ok && result.ok;
    return middle;
}

void report(const char *name, double floor, const Result &result)
{
    std::printf("%-14s %s  %.2f s  (floor %.2f s, %+.1f %%)  longest event-loop stall %.1f ms (at %.0f ms)\n", name,
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
    const int runs = argc > 2 ? std::max(1, QByteArray(argv[2]).toInt()) : 3;
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

    std::printf("median of %d runs each\n", runs);
    state.LinkDirection = 0;
    const Result read = medianRun(state, false, runs);
    report("read", floorMs(true), read);

    // What a fresh radio holds: its defaults and its band limits.
    wr::MemoryImage expected;
    expected.InitImage();
    wr::WriteDefaultBandLimits(expected);
    const bool readExact = read.ok && state.image == expected;
    if (read.ok && !readExact)
        std::printf("      the image read differs from the radio's memory\n");

    state.LinkDirection = 1;
    const Result write = medianRun(state, false, runs);
    report("write", floorMs(false), write);
    const Result verified = medianRun(state, true, runs);
    // The read-back moves the 187 rows written, one fewer than a full read.
    const double verifiedFloor = floorMs(false) + floorMs(true) - (4 + 20) * ByteMs - 10.0;
    report("verified write", verifiedFloor, verified);
    const double ratio = verified.ms / (write.ms + read.ms);
    std::printf("verified write / (write + read) = %.3f (goal at most %.2f)\n", ratio, MostVerifyRatio);

    return read.ok && readExact && write.ok && verified.ok && ratio <= MostVerifyRatio ? 0 : 1;
}
