#include "core/BandLimits.h"

#include "core/MemoryImage.h"

namespace wr {

namespace {

// A byte read as the decimal number its two hexadecimal digits spell, the way
// the radio software reads BCD: 0x13 is 13, 0x1A is 1 (the leading digits
// only), 0xA5 or 0xFF is 0.
int leadingDecimal(std::uint8_t byte)
{
    const int high = byte >> 4;
    const int low = byte & 0x0F;
    if (high > 9)
        return 0;
    if (low > 9)
        return high;
    return high * 10 + low;
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
        const int high = leadingDecimal(image.ReadByte(BandLimitsRow, 2 * i));
        const int low = leadingDecimal(image.ReadByte(BandLimitsRow, 2 * i + 1));
        // H * 10 + L / 10 in whole MHz, a half rounded up: 13 65 is 136.5 -> 137.
        limits[static_cast<std::size_t>(i)] = static_cast<qint16>(high * 10 + (low + 5) / 10);
    }
    return limits;
}

} // namespace wr
