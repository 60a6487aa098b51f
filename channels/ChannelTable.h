#pragma once

#include "channels/ChannelPlans.h"
#include "channels/ChannelRecord.h"
#include "core/BandLimits.h"
#include "core/Language.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringView>

#include <array>
#include <cstdint>

namespace wr {

// One channel of the channel list's working copy: the cells the list shows,
// and bytes 12-15 of its record, which no cell shows but which belong to the
// channel wherever it moves:
//
//   hidden[0] byte 12   hidden[1] byte 13   hidden[2] ChannelFlags   hidden[3] SignallingFlags
//
// ChannelFlags keeps the bits the cells do not show (bit 7; the shift bits
// are recomputed at every save).
struct Channel
{
    using Hidden = std::array<std::uint8_t, 4>;
    static constexpr int FirstHiddenByte = 12;
    static constexpr Hidden Erased{0xFF, 0xFF, 0xFF, 0xFF};
    // What a channel gets when it is created: byte 12 and 13 zero, high
    // power, scan add, wide, BCL off, no signalling.
    static constexpr Hidden Created{0x00, 0x00, ChannelRecord::NewChannelFlags, 0x00};

    ChannelTexts texts;
    Hidden hidden = Erased;

    bool inUse() const { return !texts.isEmpty(); }
    bool operator==(const Channel &) const = default;
};

// A channel in use with its number.
struct NumberedChannel
{
    int channel = 0;
    ChannelTexts texts;
};

// What typing into a row does (the text editor's commit):
// - a receive frequency is moved into the bands and onto the raster; on a
//   row without an encode tone it creates the channel: transmit = receive
//   (in the transmit bands), no tones, High, Wide, On, Off, and the created
//   bytes 12-15;
// - an empty receive text empties the row;
// - a transmit frequency brings an empty encode tone back as None; an empty
//   one empties the transmit side and its encode tone.
Channel withRx(Channel channel, QStringView text, const BandLimitArray &limits, Language language);
Channel withTx(Channel channel, QStringView text, const BandLimitArray &limits, Language language);

// A typed tone brought onto something the radio can store: a CTCSS value in
// 60.0-259.9 Hz (kept as typed, in the list or not), a DCS code with three
// octal digits and a polarity ("D8" gives D007N), or the no-tone word.
QString typedTone(QStringView text, Language language);

// Channels by number, as a change of the table holds them.
using ChannelChanges = QMap<int, Channel>;

// The working copy of the 128 channels between a load from the image and a
// save into it. Channel n is at(n). Nothing here knows of a view: the cells
// are texts in the language the table was loaded or recaptioned in.
class ChannelTable
{
public:
    static constexpr int Count = ChannelRecord::ChannelCount;

    ChannelTable(); // every channel empty

    // The channels of an image as the list shows them in a language; a
    // channel not in use (its empty bit set or no receive frequency) is an
    // empty row that still carries its record's bytes 12-15.
    static ChannelTable load(const MemoryImage &image, Language language);

    // Saves channels 1 to last into an image: bytes 12-15 of each channel in
    // use, then its cells (SaveChannel: an empty row erases its record and
    // sets its empty bit).
    void save(MemoryImage &image, int last = Count) const;
    void saveChannel(MemoryImage &image, int channel) const;

    const Channel &at(int channel) const { return m_channels.at(channel - 1); }
    void set(int channel, const Channel &value) { m_channels[channel - 1] = value; }

    // The rows a plan changes, with the channels they get.
    ChannelChanges rearranged(const RowPlan &plan) const;

    // Every word of every cell in another language.
    void recaption(Language language);

    // The channels in use among `channels`, with their numbers.
    QList<NumberedChannel> inUse(const QList<int> &channels) const;
    QList<NumberedChannel> inUse() const;

    // Whether saving either table would give the same records: the same
    // cells, and the same hidden bytes where a channel is in use.
    bool savesAs(const ChannelTable &other) const;

private:
    QList<Channel> m_channels;
};

} // namespace wr
