// Reading the channel list's own cells from a text: what a spreadsheet
// copies from a grid like ours, a column of frequencies typed into one, or
// rows under a header of the list's captions. The values are the list's
// texts, read with the same import rules as CHIRP's rows.

#include "channels/CsvRowReader.h"

namespace wr::csvread {

int gridColumnNamed(QStringView name)
{
    for (int column = 0; column < ChannelColumnCount; ++column) {
        for (int language = 0; language < LanguageCount; ++language) {
            if (name.compare(ChannelColumnCaptions[std::size_t(column)].view(language), Qt::CaseInsensitive) == 0)
                return column;
        }
    }
    return -1;
}

bool layoutGridBlock(Layout &layout, qsizetype widest, int firstColumn)
{
    const int first = std::clamp(firstColumn, int(ColRx), int(ColBcl));
    if (widest > ColBcl - first + 1)
        return false;
    layout.gridRows = true;
    layout.fieldCount = widest;
    for (int at = 0; at < widest; ++at)
        layout.cells[std::size_t(first + at)] = at;
    return true;
}

std::optional<ImportedChannel> readGridRow(RowReader &row, int line, const BandLimitArray &limits)
{
    ImportedChannel channel;
    channel.line = line;
    channel.given = 0;
    for (int column = ColRx; column <= ColBcl && !row.failed(); ++column) {
        const Column cell = row.cell(column);
        if (cell.index < 0 || row.trimmed(cell).isEmpty())
            continue; // an empty cell changes nothing
        channel.given |= quint16(1u << column);
        switch (column) {
        case ColRx:
            channel.rx = row.receive(cell);
            break;
        case ColTx:
            if (const std::optional<qint64> hz = row.megahertz(cell))
                channel.tx = row.transmit(cell, *hz);
            break;
        case ColDecode:
            channel.decode = row.tone(cell);
            break;
        case ColEncode:
            channel.encode = row.tone(cell);
            break;
        case ColPower:
            channel.highPower = row.power(cell);
            break;
        case ColBandwidth:
            channel.wide = row.word(cell, {&Words::Wide, &Words::Narrow}) == 0;
            break;
        case ColScanAdd:
            channel.scanAdd = row.word(cell, {&Words::On, &Words::Off}) == 0;
            break;
        default:
            channel.bcl = ChannelRecord::Bcl(row.word(cell, {&Words::Off, &Words::Carrier, &Words::OptSignal}));
            break;
        }
    }
    if (row.failed())
        return std::nullopt;
    if (channel.given == 0) {
        row.fail(row.cell(ColRx), ImportNote::Reason::EmptyFrequency); // a channel number alone
        return std::nullopt;
    }
    // Should the row create its channel, the transmit side follows the
    // receive frequency, as typing it does.
    if (channel.gives(ColRx) && !channel.gives(ColTx))
        channel.tx = NormaliseTxFreq(channel.rx, limits);
    return channel;
}

} // namespace wr::csvread
