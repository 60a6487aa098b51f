#include "channels/ChannelRecord.h"

#include "core/FrequencyCodec.h"
#include "core/Language.h"
#include "core/ToneCodec.h"

namespace wr {

namespace {

// ChannelFlags (byte 14)
constexpr std::uint8_t BclMask = 0x03;
constexpr std::uint8_t HighPowerBit = 0x04;
constexpr std::uint8_t ScanAddBit = 0x08;
constexpr std::uint8_t ShiftPlusBit = 0x10;
constexpr std::uint8_t ShiftMinusBit = 0x20;
constexpr std::uint8_t WideBit = 0x40;

// SignallingFlags (byte 15)
constexpr std::uint8_t PttIdPositionMask = 0x03;
constexpr std::uint8_t OptionalSignallingMask = 0x0C;
constexpr std::uint8_t PttIdTypeMask = 0xC0;

} // namespace

ChannelRecord::ChannelRecord(MemoryImage &image, int channel)
    : m_image(image)
    , m_writable(&image)
    , m_channel(channel)
    , m_row(ChannelRow(channel))
{
}

ChannelRecord::ChannelRecord(const MemoryImage &image, int channel)
    : m_image(image)
    , m_writable(nullptr)
    , m_channel(channel)
    , m_row(ChannelRow(channel))
{
}

MemoryImage &ChannelRecord::writable()
{
    Q_ASSERT_X(m_writable, "ChannelRecord", "record of a const image written");
    return *m_writable;
}

std::uint8_t ChannelRecord::byte(int column) const
{
    return m_image.ReadByte(m_row, column);
}

void ChannelRecord::setBits(int column, std::uint8_t mask, std::uint8_t value)
{
    const auto old = byte(column);
    writable().WriteByte(m_row, column, static_cast<std::uint8_t>((old & ~mask) | (value & mask)));
}

std::uint8_t ChannelRecord::channelFlags() const { return byte(FlagsByte); }
void ChannelRecord::setChannelFlags(std::uint8_t value) { writable().WriteByte(m_row, FlagsByte, value); }
std::uint8_t ChannelRecord::signallingFlags() const { return byte(SignallingByte); }
void ChannelRecord::setSignallingFlags(std::uint8_t value) { writable().WriteByte(m_row, SignallingByte, value); }

ChannelRecord::Bcl ChannelRecord::bcl() const
{
    const int value = channelFlags() & BclMask;
    return value == 0 ? Bcl::Off : value == 1 ? Bcl::Carrier : Bcl::OptSignal; // 3 reads as Opt.Signal
}

void ChannelRecord::setBcl(Bcl value)
{
    setBits(FlagsByte, BclMask, static_cast<std::uint8_t>(value));
}

bool ChannelRecord::highPower() const { return channelFlags() & HighPowerBit; }
void ChannelRecord::setHighPower(bool on) { setBits(FlagsByte, HighPowerBit, on ? HighPowerBit : 0); }
bool ChannelRecord::scanAdd() const { return channelFlags() & ScanAddBit; }
void ChannelRecord::setScanAdd(bool on) { setBits(FlagsByte, ScanAddBit, on ? ScanAddBit : 0); }
bool ChannelRecord::shiftPlus() const { return channelFlags() & ShiftPlusBit; }
bool ChannelRecord::shiftMinus() const { return channelFlags() & ShiftMinusBit; }
bool ChannelRecord::wide() const { return channelFlags() & WideBit; }
void ChannelRecord::setWide(bool on) { setBits(FlagsByte, WideBit, on ? WideBit : 0); }

void ChannelRecord::setShift(bool plus, bool minus)
{
    setBits(FlagsByte, ShiftPlusBit | ShiftMinusBit,
            static_cast<std::uint8_t>((plus ? ShiftPlusBit : 0) | (minus ? ShiftMinusBit : 0)));
}

ChannelRecord::PttIdPosition ChannelRecord::pttIdPosition() const
{
    return static_cast<PttIdPosition>(signallingFlags() & PttIdPositionMask);
}

ChannelRecord::PttId ChannelRecord::pttId() const
{
    if (pttIdPosition() == PttIdPosition::None)
        return PttId::Off;
    return (signallingFlags() & PttIdTypeMask) ? PttId::Dtmf : PttId::Msk;
}

ChannelRecord::OptionalSignalling ChannelRecord::optionalSignalling() const
{
    const int value = (signallingFlags() & OptionalSignallingMask) >> 2;
    return value == 1 ? OptionalSignalling::Dtmf : value == 2 ? OptionalSignalling::Msk : OptionalSignalling::Off;
}

bool ChannelRecord::bitmapBit(int bitmapRow) const
{
    Q_ASSERT(m_channel >= 1 && m_channel <= ChannelCount);
    const int index = m_channel - 1;
    return m_image.ReadByte(bitmapRow, index / 8) & (1u << (index % 8));
}

void ChannelRecord::setBitmapBit(int bitmapRow, bool on)
{
    Q_ASSERT(m_channel >= 1 && m_channel <= ChannelCount);
    const int index = m_channel - 1;
    const auto mask = static_cast<std::uint8_t>(1u << (index % 8));
    const auto old = m_image.ReadByte(bitmapRow, index / 8);
    writable().WriteByte(bitmapRow, index / 8, static_cast<std::uint8_t>(on ? (old | mask) : (old & ~mask)));
}

bool ChannelRecord::emptyBit() const { return bitmapBit(EmptyBitmapRow); }
void ChannelRecord::setEmptyBit(bool empty) { setBitmapBit(EmptyBitmapRow, empty); }
bool ChannelRecord::scanSkipBit() const { return bitmapBit(ScanSkipBitmapRow); }
void ChannelRecord::setScanSkipBit(bool skip) { setBitmapBit(ScanSkipBitmapRow, skip); }

void ChannelRecord::erase()
{
    for (int column = 0; column < MemoryImage::RowSize; ++column)
        writable().WriteByte(m_row, column, 0xFF);
}

QString PowerText(bool high, int languageIndex)
{
    return (high ? Words::High : Words::Low).in(languageIndex);
}

QString BandwidthText(bool wide, int languageIndex)
{
    return (wide ? Words::Wide : Words::Narrow).in(languageIndex);
}

QString ScanAddText(bool on, int languageIndex)
{
    return (on ? Words::On : Words::Off).in(languageIndex);
}

QString BclText(ChannelRecord::Bcl value, int languageIndex)
{
    switch (value) {
    case ChannelRecord::Bcl::Carrier:
        return Words::Carrier.in(languageIndex);
    case ChannelRecord::Bcl::OptSignal:
        return Words::OptSignal.in(languageIndex);
    case ChannelRecord::Bcl::Off:
        break;
    }
    return Words::Off.in(languageIndex);
}

QList<Text> columnWords(int column)
{
    switch (column) {
    case ColDecode:
    case ColEncode:
        return {Words::None};
    case ColPower:
        return {Words::High, Words::Low};
    case ColBandwidth:
        return {Words::Wide, Words::Narrow};
    case ColScanAdd:
        return {Words::Off, Words::On};
    case ColBcl:
        return {Words::Off, Words::Carrier, Words::OptSignal};
    default:
        return {};
    }
}

ChannelTexts recaptioned(ChannelTexts texts, Language language)
{
    for (int column = ColDecode; column < ChannelColumnCount; ++column) {
        QString &cell = texts.cell(column);
        for (const Text &word : columnWords(column)) {
            if (word.matches(cell)) {
                cell = word.in(language);
                break;
            }
        }
    }
    return texts;
}

bool ChannelInUse(const MemoryImage &image, int channel)
{
    return !ChannelRecord(image, channel).emptyBit() && !ReadFreq(image, Side::Rx, channel).isEmpty();
}

int ChannelsInUse(const MemoryImage &image)
{
    int inUse = 0;
    for (int channel = 1; channel <= ChannelRecord::ChannelCount; ++channel)
        inUse += ChannelInUse(image, channel) ? 1 : 0;
    return inUse;
}

ChannelTexts ReadChannelTexts(const MemoryImage &image, int channel, int languageIndex)
{
    ChannelTexts texts;
    if (!ChannelInUse(image, channel))
        return texts;

    const ChannelRecord record(image, channel);
    texts.rx = ReadFreq(image, Side::Rx, channel);
    texts.decode = ReadTone(image, Side::Rx, channel, languageIndex);
    texts.power = PowerText(record.highPower(), languageIndex);
    texts.bandwidth = BandwidthText(record.wide(), languageIndex);
    texts.scanAdd = ScanAddText(record.scanAdd(), languageIndex);
    texts.bcl = BclText(record.bcl(), languageIndex);
    texts.tx = ReadFreq(image, Side::Tx, channel);
    if (!texts.tx.isEmpty())
        texts.encode = ReadTone(image, Side::Tx, channel, languageIndex);
    return texts;
}

void CreateChannel(MemoryImage &image, int channel)
{
    const int row = ChannelRow(channel);
    image.WriteByte(row, 12, 0x00);
    image.WriteByte(row, ChannelRecord::FlagsByte, ChannelRecord::NewChannelFlags);
    image.WriteByte(row, ChannelRecord::SignallingByte, 0x00);
    image.WriteByte(row, 13, 0x00);
}

void SaveChannel(MemoryImage &image, int channel, const ChannelTexts &texts)
{
    ChannelRecord record(image, channel);
    if (texts.rx.isEmpty()) {
        record.erase();
        record.setEmptyBit(true);
        return;
    }

    record.setEmptyBit(false);
    WriteFreq(image, Side::Rx, channel, texts.rx);
    if (texts.tx.isEmpty() || !WriteFreq(image, Side::Tx, channel, texts.tx)) {
        for (int column = 4; column < 8; ++column)
            image.WriteByte(record.row(), column, 0xFF);
    }
    WriteTone(image, Side::Rx, channel, texts.decode);
    WriteTone(image, Side::Tx, channel, texts.encode);

    if (Words::High.matches(texts.power))
        record.setHighPower(true);
    else if (Words::Low.matches(texts.power))
        record.setHighPower(false);

    if (Words::Wide.matches(texts.bandwidth))
        record.setWide(true);
    else if (Words::Narrow.matches(texts.bandwidth))
        record.setWide(false);

    if (Words::On.matches(texts.scanAdd)) {
        record.setScanAdd(true);
        record.setScanSkipBit(false);
    } else if (Words::Off.matches(texts.scanAdd)) {
        record.setScanAdd(false);
        record.setScanSkipBit(true);
    }

    if (Words::Carrier.matches(texts.bcl))
        record.setBcl(ChannelRecord::Bcl::Carrier);
    else if (Words::OptSignal.matches(texts.bcl))
        record.setBcl(ChannelRecord::Bcl::OptSignal);
    else
        record.setBcl(ChannelRecord::Bcl::Off);

    // The repeater shift follows the order of the two frequency texts.
    const int order = texts.tx.compare(texts.rx);
    record.setShift(order > 0, order < 0);
}

} // namespace wr
