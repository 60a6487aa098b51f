#include "channels/ChannelFill.h"

#include "core/FrequencyCodec.h"

#include <algorithm>

namespace wr {

Channel filledCell(const Channel &channel, int column, QStringView text, const BandLimitArray &limits,
                   Language language)
{
    const ChannelTexts &cells = channel.texts;
    Channel filled = channel;
    if (column == ColRx) {
        if (!channel.inUse() || text.isEmpty())
            return withRx(channel, text, limits, language);
        filled.texts.rx = NormaliseRxFreq(text, limits);
        if (!cells.tx.isEmpty() && cells.tx == cells.rx)
            filled.texts.tx = NormaliseTxFreq(filled.texts.rx, limits);
        return filled;
    }
    if (!channel.inUse())
        return channel;
    switch (column) {
    case ColTx:
        return withTx(channel, text, limits, language);
    case ColEncode:
        if (cells.tx.isEmpty())
            return channel;
        [[fallthrough]];
    case ColDecode:
        filled.texts.cell(column) = typedTone(text, language);
        return filled;
    default:
        for (const Text &word : columnWords(column)) {
            if (word.matches(text)) {
                filled.texts.cell(column) = word.in(language);
                return filled;
            }
        }
        return channel;
    }
}

ChannelChanges filledColumn(const ChannelTable &table, int column, const QList<int> &channels, QStringView text,
                            const BandLimitArray &limits, Language language)
{
    ChannelChanges changes;
    for (int channel : channels)
        changes.insert(channel, filledCell(table.at(channel), column, text, limits, language));
    return changes;
}

ChannelChanges filledDown(const ChannelTable &table, const QMap<int, QList<int>> &cells, const BandLimitArray &limits,
                          Language language)
{
    // Columns further right see what the ones before did: a filled receive
    // frequency has created the channels the other columns then fill.
    ChannelTable filled = table;
    ChannelChanges changes;
    for (auto column = cells.begin(); column != cells.end(); ++column) {
        const QList<int> &channels = column.value();
        if (channels.size() < 2 || column.key() < ColRx || column.key() >= ChannelColumnCount)
            continue;
        const QString text = filled.at(channels.front()).texts.cell(column.key());
        if (text.isEmpty())
            continue;
        const ChannelChanges step =
            filledColumn(filled, column.key(), channels.sliced(1), text, limits, language);
        for (auto it = step.begin(); it != step.end(); ++it) {
            filled.set(it.key(), it.value());
            changes.insert(it.key(), it.value());
        }
    }
    return changes;
}

std::optional<FrequencySeries> frequencySeries(QStringView start, QStringView step, int count,
                                               const BandLimitArray &limits)
{
    // Both in 10 Hz: MHz with five decimals, kHz with two.
    const std::optional<qint64> first = freq::parseDecimal(start, 5);
    const std::optional<qint64> increment = freq::parseDecimal(step, 2);
    if (!first || !increment)
        return std::nullopt;
    FrequencySeries series;
    for (int i = 0; i < count; ++i) {
        const qint64 tenHz = std::max<qint64>(0, *first + i * *increment);
        const QString stored = NormaliseRxFreq(freq::formatTenHz(tenHz), limits);
        if (!inReceiveBands(tenHz * 10, limits))
            ++series.outsideBands;
        else if (freq::parseDecimal(stored, 5) != tenHz)
            ++series.offRaster;
        series.values.append(stored);
    }
    return series;
}

ChannelChanges withReceiveFrequencies(const ChannelTable &table, const QList<int> &channels,
                                      const QStringList &receive, const BandLimitArray &limits, Language language)
{
    ChannelChanges changes;
    for (qsizetype i = 0; i < std::min(channels.size(), receive.size()); ++i)
        changes.insert(channels[i], filledCell(table.at(channels[i]), ColRx, receive[i], limits, language));
    return changes;
}

} // namespace wr
