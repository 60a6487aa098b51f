// wrpd6t-batch-bench: one file written into 1, 2, 4 and 8 paced virtual
// radios at once, as wrpd6t-tool write does with several ports. Each count
// is timed a few times; writing N radios should take no longer than 1.05
// times writing one, and the event loop should never stall for 30 ms.
//
//   wrpd6t-batch-bench [RUNS] [path/to/wrpd6t-radio-sim]      (RUNS: 3 unless given)

#include "core/AppState.h"
#include "core/Language.h"
#include "link/CloneBatch.h"
#include "link/TransferTexts.h"

#include "BenchSupport.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFileInfo>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

constexpr int FirstPort = 240;
constexpr double MostRatio = 1.05;
constexpr double MostStallMs = 30.0;

struct Run
{
    bool ok = false;
    double ms = 0;
    double stallMs = 0;
};

Run writeAll(int count, const wr::MemoryImage &image)
{
    QList<int> ports;
    for (int i = 0; i < count; ++i)
        ports.append(FirstPort + i);
    wr::bench::StallWatch watch;
    watch.start();
    wr::CloneBatch batch(wr::CloneEngine::Direction::Write, ports, image);
    QEventLoop loop;
    QObject::connect(&batch, &wr::CloneBatch::finished, &loop, &QEventLoop::quit);
    batch.start();
    loop.exec();
    Run run{batch.allCompleted(), watch.elapsedMs(), watch.widestMs()};
    for (int i = 0; i < batch.count(); ++i) {
        const wr::CloneBatch::Radio &radio = batch.radio(i);
        if (!radio.outcome.succeeded())
            std::printf("      COM%d failed: %s\n", radio.port,
                        qPrintable(wr::outcomeText(radio.outcome, wr::English, wr::Wording::CommandLine)));
    }
    return run;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    wr::InitApplicationIdentity();

    const int runs = argc > 1 ? std::max(1, QByteArray(argv[1]).toInt()) : 3;
    const QString sim = argc > 2 ? QString::fromLocal8Bit(argv[2])
                                 : QCoreApplication::applicationDirPath() + QStringLiteral("/wrpd6t-radio-sim");
    if (!QFileInfo(sim).isExecutable()) {
        std::fprintf(stderr, "wrpd6t-batch-bench: %s is not the virtual radio\n", qPrintable(sim));
        return 2;
    }

    wr::MemoryImage image;
    image.InitImage();

    bool ok = true;
    double oneRadioMs = 0;
    std::printf("radios  write (median of %d)  x one radio  longest event-loop stall\n", runs);
    for (const int count : {1, 2, 4, 8}) {
        wr::bench::VirtualRadios radios(sim);
        if (!radios.start(FirstPort, count)) {
            std::fprintf(stderr, "wrpd6t-batch-bench: the virtual radios did not start\n");
            return 1;
        }
        std::vector<double> times;
        double stallMs = 0;
        for (int run = 0; run < runs; ++run) {
            const Run result = writeAll(count, image);
            ok = ok && result.ok;
            times.push_back(result.ms);
            stallMs = std::max(stallMs, result.stallMs);
        }
        const double ms = median(times);
        if (count == 1)
            oneRadioMs = ms;
        const double ratio = ms / oneRadioMs;
        ok = ok && ratio <= MostRatio && stallMs < MostStallMs;
        std::printf("%6d  %17.2f s  %11.3f  %20.1f ms\n", count, ms / 1000.0, ratio, stallMs);
    }
    std::printf("%s\n", ok ? "ok" : "FAILED");
    return ok ? 0 : 1;
}
