#pragma once

// What the CSV reader's parts share (ChannelCsvRead.cpp reads CHIRP's rows,
// ChannelCsvGrid.cpp the channel list's cells): where each column stands,
// and the reader of one row with the import rules.

#include "channels/ChannelCsv.h"
#include "channels/ChirpColumns.h"
#include "core/CsvText.h"
#include "core/ToneCodec.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <optional>

namespace wr::csvread {

// A tone in a file counts as one of ours when it is this close (hundredths
// of a hertz).
constexpr int ToneTolerance = 10;
// Power from this many tenths of a watt upward is the radio's high power.
constexpr qint64 HighPowerTenthsOfWatt = 30;

// Where each column stands in the rows.
//
// Rows hold CHIRP's columns (at), or some of the channel list's cells
// (cells, gridRows): a spreadsheet's copy of the grid, or a header naming
// the grid's captions. A column a row does not have is at -1.
struct Layout
{
    bool hasHeader = false;
    bool refused = false;
    QChar separator = u',';
    std::array<int, chirp::ColumnCount> at{};
    bool gridRows = false;
    std::array<int, ChannelColumnCount> cells{}; // ColNumber: the channel number
    QStringList names;        // the header's names by field
    qsizetype fieldCount = 0; // fields of a whole row
    QStringList ignored;      // header names not used

    Layout()
    {
        at.fill(-1);
        cells.fill(-1);
    }
    // Whether the rows name their channels.
    bool hasLocation() const { return gridRows ? cells[ColNumber] >= 0 : at[chirp::Location] >= 0; }
};

// A column of the layout: where its field is and what the file calls it.
// A grid column has a caption in each language rather than one name.
struct Column
{
    int index = -1;
    QString name;
    int gridColumn = -1;
};

// Turns one row into a channel, or finds why it must be skipped. The notes
// of a skipped row are only the reason it was skipped.
class RowReader
{
public:
    RowReader(const csv::Record &record, const Layout &layout, const BandLimitArray &limits)
        : m_record(record)
        , m_layout(layout)
        , m_limits(limits)
    {
    }

    Column chirp(chirp::Column column) const
    {
        return columnAt(m_layout.at[std::size_t(column)], chirp::Names[std::size_t(column)]);
    }
    Column cell(int column) const
    {
        const int index = m_layout.cells[std::size_t(column)];
        return {index, m_layout.hasHeader ? m_layout.names.value(index) : QString(), column};
    }
    QString field(const Column &column) const { return m_record.fields.value(column.index); }
    QString trimmed(const Column &column) const { return field(column).trimmed(); }

    void note(const Column &column, ImportNote::Reason reason, const QString &argument1 = {},
              const QString &argument2 = {}, const Text *word = nullptr)
    {
        if (!m_failed)
            m_notes.append(
                {m_record.line, column.name, field(column), reason, argument1, argument2, word, column.gridColumn});
    }
    void fail(const Column &column, ImportNote::Reason reason)
    {
        if (m_failed)
            return;
        m_notes.clear();
        note(column, reason);
        m_failed = true;
    }
    bool failed() const { return m_failed; }
    const QList<ImportNote> &notes() const { return m_notes; }

    std::optional<qint64> megahertz(const Column &column)
    {
        const QString text = trimmed(column);
        const std::optional<qint64> hz = freq::parseDecimal(text, 6, decimalPoint(text));
        if (!hz)
            fail(column, ImportNote::Reason::NotAFrequency);
        return hz;
    }

    // The receive frequency, in the bands and on the raster.
    QString receive(const Column &column)
    {
        if (trimmed(column).isEmpty()) {
            fail(column, ImportNote::Reason::EmptyFrequency);
            return {};
        }
        const std::optional<qint64> hz = megahertz(column);
        if (!hz)
            return {};
        if (!inReceiveBands(*hz, m_limits)) {
            fail(column, ImportNote::Reason::RxOutOfBand);
            return {};
        }
        const QString text = NormaliseRxFreq(chirp::mhzText(*hz), m_limits);
        if (chirp::hzOf(text) != *hz)
            note(column, ImportNote::Reason::MovedOntoRaster, text);
        return text;
    }

    // A transmit frequency, dropped when outside the transmit bands.
    QString transmit(const Column &column, qint64 hz)
    {
        if (!inTransmitBands(hz, m_limits)) {
            note(column, ImportNote::Reason::TxOutOfBand, chirp::mhzText(hz));
            return {};
        }
        const QString text = NormaliseTxFreq(chirp::mhzText(hz), m_limits);
        if (chirp::hzOf(text) != hz)
            note(column, ImportNote::Reason::MovedOntoRaster, text);
        return text;
    }

    // A CTCSS tone of the radio's list within a tenth of a hertz.
    QString ctcss(const Column &column)
    {
        const QString text = trimmed(column);
        const std::optional<qint64> hundredths = freq::parseDecimal(text, 2, decimalPoint(text));
        if (!hundredths) {
            fail(column, ImportNote::Reason::NotATone);
            return {};
        }
        const auto nearest = std::min_element(CtcssTones.begin(), CtcssTones.end(), [&](int a, int b) {
            return qAbs(a * 10 - *hundredths) < qAbs(b * 10 - *hundredths);
        });
        const qint64 distance = qAbs(*nearest * 10 - *hundredths);
        if (distance > ToneTolerance) {
            fail(column, ImportNote::Reason::ToneNotListed);
            return {};
        }
        const QString tone = QStringLiteral("%1.%2").arg(*nearest / 10).arg(*nearest % 10);
        if (distance != 0)
            note(column, ImportNote::Reason::ToneTaken, tone);
        return tone;
    }

    // A DCS code of the radio's list ("23" or "023"), as the tone text with
    // its polarity N or R.
    QString dcs(const Column &column, QChar polarity)
    {
        const QString text = trimmed(column);
        return dcsTone(column, text.size() <= 3 ? text.rightJustified(3, u'0') : text, polarity);
    }

    bool power(const Column &column)
    {
        QString text = trimmed(column);
        if (text.isEmpty() || Words::High.matches(text))
            return true;
        if (Words::Low.matches(text))
            return false;
        if (text.endsWith(u'W') || text.endsWith(u'w'))
            text.chop(1);
        if (const auto tenths = freq::parseDecimal(text, 1, decimalPoint(text)))
            return *tenths >= HighPowerTenthsOfWatt;
        note(column, ImportNote::Reason::NotUnderstood, {}, {}, &Words::High);
        return true;
    }

    // A tone as the channel list writes it: the no-tone word of any
    // language (""), "88.5", or "D023N" with N or I.
    QString tone(const Column &column)
    {
        const QString text = trimmed(column).toUpper();
        if (IsNoTone(trimmed(column)))
            return {};
        if (!text.startsWith(u'D'))
            return ctcss(column);
        QString code = text.mid(1);
        QChar polarity = u'N';
        if (code.endsWith(u'N') || code.endsWith(u'I')) {
            polarity = code.back() == u'I' ? u'R' : u'N';
            code.chop(1);
        }
        return dcsTone(column, code, polarity);
    }

    // Which of a cell's words (of any language) the field holds; the first
    // one, noted, when it holds none of them.
    qsizetype word(const Column &column, std::initializer_list<const Text *> words)
    {
        const QString text = trimmed(column);
        qsizetype at = 0;
        for (const Text *word : words) {
            if (word->matches(text))
                return at;
            ++at;
        }
        note(column, ImportNote::Reason::NotUnderstood, {}, {}, *words.begin());
        return 0;
    }

private:
    Column columnAt(int index, QStringView name) const
    {
        return {index, m_layout.names.value(index, name.toString())};
    }

    QString dcsTone(const Column &column, const QString &code, QChar polarity)
    {
        const auto digit = [](QChar c) { return c >= u'0' && c <= u'9'; };
        if (code.size() != 3 || !std::all_of(code.begin(), code.end(), digit)) {
            fail(column, ImportNote::Reason::NotATone);
            return {};
        }
        if (std::find(DcsCodes.begin(), DcsCodes.end(), code.toInt()) == DcsCodes.end()) {
            fail(column, ImportNote::Reason::CodeNotListed);
            return {};
        }
        return u'D' + code + (polarity == u'R' ? u'I' : u'N');
    }

    // Files separated by ';' or a TAB may write a decimal comma.
    QChar decimalPoint(const QString &text) const
    {
        return m_layout.separator != u',' && text.contains(u',') ? u',' : u'.';
    }

    const csv::Record &m_record;
    const Layout &m_layout;
    const BandLimitArray &m_limits;
    QList<ImportNote> m_notes;
    bool m_failed = false;
};

// The channel list's cells, for rows that hold them (ChannelCsvGrid.cpp).

// The grid column a header's name is the caption of, in any language; -1
// when it is none.
int gridColumnNamed(QStringView name);
// A block without a header: the grid's cells from firstColumn on (the
// number column counts as the receive frequency), as many as its widest row
// holds. False, the layout unchanged, when they do not fit in the grid.
bool layoutGridBlock(Layout &layout, qsizetype widest, int firstColumn);
// The cells of one row; those empty or missing are not given.
std::optional<ImportedChannel> readGridRow(RowReader &row, int line, const BandLimitArray &limits);

} // namespace wr::csvread
