#pragma once

#include "core/Language.h"
#include "core/MemoryImage.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <array>
#include <cstdint>

namespace wr {

// One channel record, a 16-byte row of the image (channel n in row n - 1;
// the VFOs 129 and 130 share the layout in rows 200 and 201):
//
//   byte  0-3   RxFrequency      8 BCD digits, 10 Hz units (FrequencyCodec.h)
//   byte  4-7   TxFrequency      same; FF FF FF FF = no separate transmit
//   byte  8-9   DecodeTone       low, high (ToneCodec.h)
//   byte 10-11  EncodeTone       low, high
//   byte 12     00 when created
//   byte 13     00 when created
//   byte 14     ChannelFlags     bit 7 keep | 6 wide | 5 shift - | 4 shift + | 3 scan add | 2 high power | 1-0 BCL
//   byte 15     SignallingFlags  bits 7-6 PTT ID type | 5-4 keep | 3-2 opt. signalling | 1-0 PTT ID position
//
// BCL: 0 Off, 1 Carrier, 2 Opt.Signal (3 reads as Opt.Signal).
// Optional signalling: 0 Off, 1 DTMF, 2 MSK (3 reads as Off).
// PTT ID: position 0 = off; with a position, type 00 = MSK, anything else DTMF.
//
// Two bitmaps hold one bit per channel, channel n at bit (n-1) % 8 of byte
// (n-1) / 8: row 202 (0x0CA0) 1 = channel empty, row 203 (0x0CB0) 1 = left out
// of scanning.
class ChannelRecord
{
public:
    enum class Bcl : std::uint8_t { Off = 0, Carrier = 1, OptSignal = 2 };
    enum class OptionalSignalling : std::uint8_t { Off = 0, Dtmf = 1, Msk = 2 };
    enum class PttId : std::uint8_t { Off, Dtmf, Msk };
    enum class PttIdPosition : std::uint8_t { None = 0, Begin = 1, End = 2, BeginEnd = 3 };

    static constexpr int ChannelCount = 128;
    static constexpr int EmptyBitmapRow = 202;
    static constexpr int ScanSkipBitmapRow = 203;
    static constexpr int FlagsByte = 14;
    static constexpr int SignallingByte = 15;
    static constexpr std::uint8_t NewChannelFlags = 0x4C; // high, scan add, wide

    // A record of a const image can only be read.
    ChannelRecord(MemoryImage &image, int channel);
    ChannelRecord(const MemoryImage &image, int channel);

    int channel() const { return m_channel; }
    int row() const { return m_row; }

    std::uint8_t channelFlags() const;
    void setChannelFlags(std::uint8_t value);
    std::uint8_t signallingFlags() const;
    void setSignallingFlags(std::uint8_t value);

    Bcl bcl() const;
    void setBcl(Bcl value);
    bool highPower() const;
    void setHighPower(bool on);
    bool scanAdd() const;
    void setScanAdd(bool on);
    bool shiftPlus() const;
    bool shiftMinus() const;
    void setShift(bool plus, bool minus);
    bool wide() const;
    void setWide(bool on);

    PttIdPosition pttIdPosition() const;
    PttId pttId() const;
    OptionalSignalling optionalSignalling() const;

    // Bitmap bits of this channel (channels 1-128 only).
    bool emptyBit() const;
    void setEmptyBit(bool empty);
    bool scanSkipBit() const;
    void setScanSkipBit(bool skip);

    // Writes 0xFF into all 16 bytes.
    void erase();

private:
    std::uint8_t byte(int column) const;
    void setBits(int column, std::uint8_t mask, std::uint8_t value);
    void setBitmapBit(int bitmapRow, bool on);
    bool bitmapBit(int bitmapRow) const;

    MemoryImage &writable();

    const MemoryImage &m_image;
    MemoryImage *m_writable;
    int m_channel;
    int m_row;
};

// The channel list's nine columns: the channel number, then the cells of
// ChannelTexts in their order.
enum ChannelColumn : int {
    ColNumber, ColRx, ColTx, ColDecode, ColEncode, ColPower, ColBandwidth, ColScanAdd, ColBcl,
};
constexpr int ChannelColumnCount = 9;

// The cells of one row of the channel list, as texts in the current language.
// An empty rx means the channel is empty; an empty tx means no separate
// transmit side, and then the encode tone is empty too.
struct ChannelTexts
{
    QString rx, tx, decode, encode, power, bandwidth, scanAdd, bcl;

    bool isEmpty() const { return rx.isEmpty(); }
    bool operator==(const ChannelTexts &) const = default;

    // The cell of a column ColRx-ColBcl.
    const QString &cell(int column) const { return this->*Members[std::size_t(column - ColRx)]; }
    QString &cell(int column) { return this->*Members[std::size_t(column - ColRx)]; }

    // The cells ColRx-ColBcl in column order, under the captions after the number's.
    QStringList cells() const
    {
        QStringList all;
        for (QString ChannelTexts::*member : Members)
            all.append(this->*member);
        return all;
    }

private:
    static constexpr std::array<QString ChannelTexts::*, ChannelColumnCount - 1> Members{
        &ChannelTexts::rx,    &ChannelTexts::tx,        &ChannelTexts::decode,  &ChannelTexts::encode,
        &ChannelTexts::power, &ChannelTexts::bandwidth, &ChannelTexts::scanAdd, &ChannelTexts::bcl};
};

// The words a cell of a column shows, in the order its list offers them:
// the no-tone word for the tone columns, the values for the list columns,
// none for the frequencies.
QList<Text> columnWords(int column);

// The texts with every word put into a language; words of any language are
// recognised, other texts stay as they are.
ChannelTexts recaptioned(ChannelTexts texts, Language language);

// Captions of the channel list's nine columns.
inline constexpr std::array<Text, ChannelColumnCount> ChannelColumnCaptions{{
    {u"CH.", u"信道", u"信道"},
    {u"Rx Freq", u"接收频率", u"接收頻率"},
    {u"Tx Freq", u"发射频率", u"發射頻率"},
    {u"CTCSS/DCS Dec", u"CTCSS/DCS 解码", u"CTCSS/DCS 解碼"},
    {u"CTCSS/DCS Enc", u"CTCSS/DCS 编码", u"CTCSS/DCS 編碼"},
    {u"TX Power", u"发射功率", u"發射功率"},
    {u"W/N", u"宽/窄", u"寬/窄"},
    {u"Scan Add", u"扫描添加", u"掃描添加"},
    {u"BCL", u"繁忙锁定", u"繁忙鎖定"},
}};

// Whether channel 1-128 is in use. A channel with its empty bit set or any
// receive byte erased is empty, and the channel list shows an empty row.
bool ChannelInUse(const MemoryImage &image, int channel);
// How many of the 128 channels are in use.
int ChannelsInUse(const MemoryImage &image);

// The texts of channel 1-128 as the channel list shows them in a language;
// all empty for a channel not in use.
ChannelTexts ReadChannelTexts(const MemoryImage &image, int channel, int languageIndex);

// The bytes a new channel gets at once, before its row is first saved:
// byte 12 = 0, ChannelFlags = 0x4C, SignallingFlags = 0, byte 13 = 0.
void CreateChannel(MemoryImage &image, int channel);

// Saves one row of the channel list into the image. Value words of any
// language are recognised; SignallingFlags and bit 7 of ChannelFlags are
// never touched. An empty rx erases the record and marks it empty.
void SaveChannel(MemoryImage &image, int channel, const ChannelTexts &texts);

// Display words of each value in a language.
QString PowerText(bool high, int languageIndex);
QString BandwidthText(bool wide, int languageIndex);
QString ScanAddText(bool on, int languageIndex);
QString BclText(ChannelRecord::Bcl value, int languageIndex);

} // namespace wr
