// Times packing and unpacking of whole data files. Not a test: run it by hand
// (build/file/wrpd6t-bench-datafile [rounds]) and read the numbers.

#include "file/DataFile.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QTextStream>

#include <cstdio>

using namespace wr;

namespace {

struct Sample
{
    const char *name;
    MemoryImage image;
};

void bench(QTextStream &out, const Sample &sample, int rounds)
{
    QElapsedTimer timer;
    timer.start();
    QByteArray file;
    for (int round = 0; round < rounds; ++round)
        file = *DataFile::Encode(sample.image);
    const double packMs = double(timer.nsecsElapsed()) / 1e6 / rounds;

    timer.restart();
    DataFile::ReadResult read;
    for (int round = 0; round < rounds; ++round)
        read = DataFile::Decode(file);
    const double unpackMs = double(timer.nsecsElapsed()) / 1e6 / rounds;

    const bool same = read.status == DataFile::ReadStatus::Ok && read.image == sample.image.bytes();
    out << qSetFieldWidth(28) << Qt::left << sample.name << qSetFieldWidth(0)
        << " file " << file.size() << " bytes, " << int(std::uint8_t(file.back())) << " passes, pack "
        << QString::number(packMs, 'f', 3) << " ms, unpack " << QString::number(unpackMs, 'f', 3) << " ms"
        << (same ? "" : "  ROUND TRIP FAILED") << Qt::endl;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const int rounds = argc > 1 ? std::max(1, QString::fromLocal8Bit(argv[1]).toInt()) : 200;
    QTextStream out(stdout);

    Sample fresh{"fresh image", {}};
    fresh.image.InitImage();

    QRandomGenerator random(1);
    Sample noise{"random image", {}};
    for (int address = 0; address < MemoryImage::Size; ++address)
        noise.image.WriteByte(address, std::uint8_t(random.bounded(256)));

    // 128 channels in use, the rest of the radio at its defaults.
    Sample channels{"fresh image, 128 channels", {}};
    channels.image.InitImage();
    for (int row = 0; row < 128; ++row) {
        for (int column = 0; column < 12; ++column)
            channels.image.WriteByte(row, column, std::uint8_t(random.bounded(256)));
        channels.image.WriteByte(row, 14, 0x4C);
    }

    out << rounds << " rounds each" << Qt::endl;
    for (const Sample *sample : {&fresh, &channels, &noise})
        bench(out, *sample, rounds);
    return 0;
}
