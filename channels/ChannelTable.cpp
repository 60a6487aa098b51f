#include "channels/ChannelTable.h"

#include "core/FrequencyCodec.h"
#include "core/ToneCodec.h"

#include <algorithm>
#include <numeric>

namespace wr {

namespace {

bool isAsciiDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

} // namespace

Channel withRx(Channel channel, QStringView text, const BandLimitArray &limits, Language language)
{
    ChannelTexts &cells = channel.texts;
    if (text.isEmpty()) {
        cells = {};
        return channel;
    }
    cells.rx = NormaliseRxFreq(text, limits);
    if (!cells.encode.isEmpty())
        return channel;

    // A new channel: the transmit side follows the receive frequency.
    const QString none = Words::None.in(language);
    cells.tx = NormaliseTxFreq(cells.rx, limits);
    cells.decode = none;
    cells.encode = none;
    cells.power = Words::High.in(language);
    cells.bandwidth = Words::Wide.in(language);
    cells.scanAdd = Words::On.in(language);
    cells.bcl = Words::Off.in(language);
    channel.hidden = Channel::Created;
    return channel;
}

Channel withTx(Channel channel, QStringView text, const BandLimitArray &limits, Language language)
{
    ChannelTexts &cells = channel.texts;
    if (text.isEmpty()) {
        cells.tx.clear();
        cells.encode.clear();
        return channel;
    }
    cells.tx = NormaliseTxFreq(text, limits);
    if (cells.encode.isEmpty())
        cells.encode = Words::None.in(language);
    return channel;
}

QString typedTone(QStringView text, Language language)
{
    if (!text.isEmpty() && isAsciiDigit(text.front())) {
        constexpr int Scale = 6; // compare the typed value exactly, format in tenths
        const qint64 micro = freq::leadingNumber(text, Scale);
        qint64 tenths;
        if (micro < 60'000'000)
            tenths = 600;
        else if (micro >= 260'000'000)
            tenths = 2599;
        else
            tenths = (micro + 50'000) / 100'000; // a half away from zero
        return QStringLiteral("%1.%2").arg(tenths / 10).arg(tenths % 10);
    }
    if (text.startsWith(u'D')) {
        const qint64 number = std::clamp<qint64>(freq::leadingNumber(text.mid(1), 0), 0, 777);
        QString digits = QStringLiteral("%1").arg(number, 3, 10, QChar(u'0'));
        for (QChar &digit : digits) {
            if (digit > u'7')
                digit = u'7';
        }
        const QChar polarity = text.endsWith(u'I') ? u'I' : u'N';
        return u'D' + digits + polarity;
    }
    return Words::None.in(language);
}

ChannelTable::ChannelTable()
    : m_channels(Count)
{
}

ChannelTable ChannelTable::load(const MemoryImage &image, Language language)
{
    ChannelTable table;
    for (int channel = 1; channel <= Count; ++channel) {
        Channel &loaded = table.m_channels[channel - 1];
        loaded.texts = ReadChannelTexts(image, channel, language);
        for (std::size_t i = 0; i < loaded.hidden.size(); ++i)
            loaded.hidden[i] = image.ReadByte(ChannelRow(channel), Channel::FirstHiddenByte + int(i));
    }
    return table;
}

void ChannelTable::saveChannel(MemoryImage &image, int channel) const
{
    const Channel &saved = at(channel);
    if (saved.inUse()) {
        for (std::size_t i = 0; i < saved.hidden.size(); ++i)
            image.WriteByte(ChannelRow(channel), Channel::FirstHiddenByte + int(i), saved.hidden[i]);
    }
    SaveChannel(image, channel, saved.texts);
}

void ChannelTable::save(MemoryImage &image, int last) const
{
    for (int channel = 1; channel <= std::min(last, Count); ++channel)
        saveChannel(image, channel);
}

void ChannelTable::recaption(Language language)
{
    for (Channel &channel : m_channels)
        channel.texts = recaptioned(std::move(channel.texts), language);
}

QList<NumberedChannel> ChannelTable::inUse(const QList<int> &channels) const
{
    QList<NumberedChannel> numbered;
    for (int channel : channels) {
        if (at(channel).inUse())
            numbered.append({channel, at(channel).texts});
    }
    return numbered;
}

QList<NumberedChannel> ChannelTable::inUse() const
{
    QList<int> all(Count);
    std::iota(all.begin(), all.end(), 1);
    return inUse(all);
}

ChannelChanges ChannelTable::rearranged(const RowPlan &plan) const
{
    ChannelChanges changes;
    for (const RowMove &move : plan)
        changes[move.to] = move.from != 0 ? at(move.from) : Channel{};
    return changes;
}

bool ChannelTable::savesAs(const ChannelTable &other) const
{
    const auto savedAlike = [](const Channel &a, const Channel &b) {
        return a.texts == b.texts && (!a.inUse() || a.hidden == b.hidden);
    };
    return std::equal(m_channels.begin(), m_channels.end(), other.m_channels.begin(), savedAlike);
}

} // namespace wr
