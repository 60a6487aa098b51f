#include "features/FmRadio.h"

#include "core/FrequencyCodec.h"

#include <QLocale>

#include <optional>

namespace wr::fm {

namespace {

constexpr int FrequencySize = 4;
constexpr qint64 TenHzPerHundredth = 1000; // 0.01 MHz
constexpr qint64 TenHzLimit = 100'000'000; // eight BCD digits
constexpr qint64 Raster = 5000;            // 50 kHz
constexpr qint64 Lowest = 7'600'000;       // 76.00 MHz
constexpr qint64 Highest = 10'795'000;     // 107.95 MHz

// Typed values are compared exactly in 10^-12 MHz, far below the 10 Hz the
// radio stores; 107.975 MHz is the highest that still rounds down to the
// top channel.
constexpr int FineScale = 12;
constexpr qint64 FinePerTenHz = 10'000'000;
constexpr qint64 FineCeiling = 107'975'000'000'000;
constexpr qint64 FineFloor = 76'000'000'000'000;

// "0.00" MHz of a value in 10 Hz units, a half hundredth rounded up.
QString hundredthsText(qint64 tenHz)
{
    const qint64 hundredths = (tenHz + TenHzPerHundredth / 2) / TenHzPerHundredth;
    return QStringLiteral("%1.%2").arg(hundredths / 100).arg(hundredths % 100, 2, 10, QChar(u'0'));
}

// The four bytes at address written as eight hexadecimal digits and read as
// a decimal number, as the radio's BCD is meant: a byte that is not BCD
// (an erased FF included) ends the number there.
qint64 storedTenHz(const MemoryImage &image, int address)
{
    QString digits;
    for (int i = 0; i < FrequencySize; ++i)
        digits += QStringLiteral("%1").arg(image.ReadByte(address + i), 2, 16, QChar(u'0'));
    return freq::leadingNumber(digits, 0);
}

// A cell's text in 10 Hz units, or nothing when it is not a frequency the
// eight digits can hold.
std::optional<qint64> textTenHz(const QString &text)
{
    const std::optional<qint64> tenHz = freq::parseDecimal(text, 5);
    if (!tenHz || *tenHz < 0 || *tenHz >= TenHzLimit)
        return std::nullopt;
    return tenHz;
}

void writeFrequency(MemoryImage &image, int address, qint64 tenHz)
{
    for (int i = FrequencySize - 1; i >= 0; --i) {
        const int pair = static_cast<int>(tenHz % 100);
        tenHz /= 100;
        image.WriteByte(address + i, static_cast<std::uint8_t>((pair / 10) << 4 | pair % 10));
    }
}

void erase(MemoryImage &image, int address, int count)
{
    for (int i = 0; i < count; ++i)
        image.WriteByte(address + i, MemoryImage::Erased);
}

bool isEmpty(const MemoryImage &image, int channel)
{
    return (image.ReadByte(EmptyBitmapAddress + channel / 8) >> (channel % 8)) & 1;
}

void setEmpty(MemoryImage &image, int channel, bool empty)
{
    const int address = EmptyBitmapAddress + channel / 8;
    const auto bit = static_cast<std::uint8_t>(1u << (channel % 8));
    const std::uint8_t byte = image.ReadByte(address);
    image.WriteByte(address, empty ? byte | bit : byte & ~bit);
}

int channelAddress(int channel)
{
    return FirstChannelAddress + FrequencySize * channel;
}

QChar localeDecimalPoint()
{
    const QString point = QLocale().decimalPoint();
    return point.size() == 1 ? point.front() : QChar(u'.');
}

} // namespace

Texts load(const MemoryImage &image)
{
    Texts texts;
    const qint64 vfo = image.ReadByte(VfoAddress) == MemoryImage::Erased ? 0 : storedTenHz(image, VfoAddress);
    texts.vfo = hundredthsText(vfo != 0 ? vfo : 8'750'000);
    for (int channel = 0; channel < ChannelCount; ++channel) {
        if (isEmpty(image, channel))
            continue;
        if (const qint64 tenHz = storedTenHz(image, channelAddress(channel)); tenHz != 0)
            texts.channels[std::size_t(channel)] = hundredthsText(tenHz);
    }
    return texts;
}

void save(MemoryImage &image, const Texts &texts)
{
    erase(image, FirstChannelAddress, ChannelCount * FrequencySize);
    if (const std::optional<qint64> vfo = textTenHz(texts.vfo))
        writeFrequency(image, VfoAddress, *vfo);
    else
        erase(image, VfoAddress, FrequencySize);
    for (int channel = 0; channel < ChannelCount; ++channel) {
        const std::optional<qint64> tenHz = textTenHz(texts.channels[std::size_t(channel)]);
        if (tenHz)
            writeFrequency(image, channelAddress(channel), *tenHz);
        setEmpty(image, channel, !tenHz);
    }
}

Entry entered(QStringView typed, const QString &oldText)
{
    if (typed.isEmpty())
        return {oldText};
    qint64 fine;
    if (typed.contains(u'.')) {
        fine = freq::leadingNumber(typed, FineScale);
    } else {
        const std::optional<qint64> number = freq::parseDecimal(typed, FineScale, localeDecimalPoint());
        if (!number)
            return {oldText};
        fine = *number;
    }
    if (fine > FineCeiling)
        return {hundredthsText(Highest), true};
    if (fine < FineFloor)
        return {hundredthsText(Lowest), true};

    qint64 tenHz = fine / FinePerTenHz;
    const qint64 rest = fine % FinePerTenHz;
    if (rest > FinePerTenHz / 2 || (rest == FinePerTenHz / 2 && tenHz % 2 != 0))
        ++tenHz;
    return {hundredthsText(tenHz / Raster * Raster)};
}

} // namespace wr::fm
