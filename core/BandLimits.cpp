#include "core/BandLimits.h"

#include "core/ImageFields.h"
#include "core/MemoryImage.h"

namespace wr {

namespace {

bool inBands(qint64 hz, qint64 lower1, qint64 upper1, qint64 lower2, qint64 upper2)
{
    constexpr qint64 HzPerMHz = 1'000'000;
    return (hz >= lower1 * HzPerMHz && hz <= upper1 * HzPerMHz) || (hz >= lower2 * HzPerMHz && hz <= upper2 * HzPerMHz);
}

} // namespace

void WriteDefaultBandLimits(MemoryImage &image)
{
    for (int i = 0; i < 8; ++i) {
        const int tenthsMHz = DefaultBandLimits[static_cast<std::size_t>(i)] * 10; // 136 -> 1360
        const int high = tenthsMHz / 100;
        const int low = tenthsMHz % 100;
        image.WriteByte(BandLimitsRow, 2 * i, static_cast<std::uint8_t>((high / 10) << 4 | high % 10));
        image.WriteByte(BandLimitsRow, 2 * i + 1, static_cast<std::uint8_t>((low / 10) << 4 | low % 10));
    }
}

BandLimitArray LoadBandLimits(const MemoryImage &image)
{
    BandLimitArray limits{};
    for (int i = 0; i < 8; ++i) {
        const int high = bcdByteValue(image.ReadByte(BandLimitsRow, 2 * i));
        const int low = bcdByteValue(image.ReadByte(BandLimitsRow, 2 * i + 1));
        // H * 10 + L / 10 in whole MHz, a half rounded up: 13 65 is 136.5 -> 137.
        limits[static_cast<std::size_t>(i)] = static_cast<qint16>(high * 10 + (low + 5) / 10);
    }
    return limits;
}

bool inReceiveBands(qint64 hz, const BandLimitArray &limits)
{
    return inBands(hz, limits[RxLower1], limits[RxUpper1], limits[RxLower2], limits[RxUpper2]);
}

bool inTransmitBands(qint64 hz, const BandLimitArray &limits)
{
    return inBands(hz, limits[TxLower1], limits[TxUpper1], limits[TxLower2], limits[TxUpper2]);
}

} // namespace wr
