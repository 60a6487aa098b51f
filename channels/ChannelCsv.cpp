#include "channels/ChannelCsv.h"

#include "core/FrequencyCodec.h"
#include "core/ToneCodec.h"

#include <algorithm>
#include <array>
#include <optional>

namespace wr {

using namespace Qt::StringLiterals;

namespace {

enum Chirp : int {
    Location, Name, Frequency, Duplex, Offset, Tone, RToneFreq, CToneFreq, DtcsCode, DtcsPolarity, RxDtcsCode,
    CrossMode, Mode, TStep, Skip, Power, Comment, UrCall, Rpt1Call, Rpt2Call, DvCode, ChirpColumnCount
};

constexpr std::array<QStringView, ChirpColumnCount> ChirpNames{
    u"Location", u"Name",      u"Frequency", u"Duplex",   u"Offset",  u"Tone",   u"rToneFreq",
    u"cToneFreq", u"DtcsCode", u"DtcsPolarity", u"RxDtcsCode", u"CrossMode", u"Mode", u"TStep",
    u"Skip",     u"Power",     u"Comment",   u"URCALL",   u"RPT1CALL", u"RPT2CALL", u"DVCODE"};

// The channel list's columns: the channel number, then the cells.
enum GridField : int { GridNumber, GridRx, GridTx, GridDecode, GridEncode, GridPower, GridBandwidth, GridScanAdd,
                       GridBcl, GridFieldCount };

constexpr qint64 HzPerMHz = 1'000'000;
constexpr qint64 HzPerTenHz = 10;
// Transmit further than this from receive is written as a split, not as an
// offset: no repeater shifts by more.
constexpr qint64 LargestOffsetHz = 70 * HzPerMHz;
// A tone in a file counts as one of ours when it is this close (hundredths
// of a hertz).
constexpr int ToneTolerance = 10;
// Power from this many tenths of a watt upward is the radio's high power.
constexpr qint64 HighPowerTenthsOfWatt = 30;

constexpr Text BclPrefix{u"BCL:"};

// MHz with six decimals, the way the files write frequencies.
QString mhzText(qint64 hz)
{
    const qint64 magnitude = qAbs(hz);
    return (hz < 0 ? u"-"_s : QString()) + u"%1.%2"_s.arg(magnitude / HzPerMHz).arg(magnitude % HzPerMHz, 6, 10, QChar(u'0'));
}

// A channel list text ("146.52000") in hertz.
qint64 hzOf(const QString &text)
{
    return freq::parseDecimal(text, 5).value_or(0) * HzPerTenHz;
}

bool inBands(qint64 hz, qint64 lower1, qint64 upper1, qint64 lower2, qint64 upper2)
{
    return (hz >= lower1 * HzPerMHz && hz <= upper1 * HzPerMHz) || (hz >= lower2 * HzPerMHz && hz <= upper2 * HzPerMHz);
}

bool inRxBands(qint64 hz, const BandLimitArray &limits)
{
    return inBands(hz, limits[RxLower1], limits[RxUpper1], limits[RxLower2], limits[RxUpper2]);
}

bool inTxBands(qint64 hz, const BandLimitArray &limits)
{
    return inBands(hz, limits[TxLower1], limits[TxUpper1], limits[TxLower2], limits[TxUpper2]);
}

// The radio's 50 CTCSS tones in tenths of a hertz and its 105 DCS codes.
struct ToneLists
{
    QList<int> ctcss;
    QStringList dcs;
};

const ToneLists &toneLists()
{
    static const ToneLists lists = [] {
        ToneLists made;
        const QStringList table = BuildToneTable(English);
        for (const QString &tone : table) {
            if (tone.startsWith(u'D') && tone.endsWith(u'N'))
                made.dcs.append(tone.mid(1, 3));
            else if (const auto tenths = freq::parseDecimal(tone, 1))
                made.ctcss.append(int(*tenths));
        }
        return made;
    }();
    return lists;
}

QString ctcssText(qint64 tenths)
{
    return u"%1.%2"_s.arg(tenths / 10).arg(tenths % 10);
}

// A tone cell of the channel list taken apart.
struct Squelch
{
    enum Kind { None, Ctcss, Dcs } kind = None;
    QString value;          // "88.5", or the code "023"
    QChar polarity = u'N';  // N normal, R reversed (our I)

    static Squelch of(const QString &text)
    {
        if (IsNoTone(text))
            return {};
        if (text.startsWith(u'D'))
            return {Dcs, text.mid(1, 3), text.endsWith(u'I') ? u'R' : u'N'};
        return {Ctcss, text};
    }
    QString crossName() const { return kind == Ctcss ? u"Tone"_s : kind == Dcs ? u"DTCS"_s : QString(); }
};

// The tuning step a frequency sits on, the coarsest listed first.
QString tuningStep(qint64 hz)
{
    static constexpr std::pair<qint64, QStringView> Steps[]{
        {5000, u"5.00"}, {10000, u"10.00"}, {12500, u"12.50"}, {6250, u"6.25"}};
    for (const auto &[step, text] : Steps) {
        if (hz % step == 0)
            return text.toString();
    }
    return u"2.50"_s;
}

QStringList chirpRow(const NumberedChannel &channel)
{
    const ChannelTexts &texts = channel.texts;
    QStringList row(ChirpColumnCount);
    row[Location] = QString::number(channel.channel);
    const qint64 rx = hzOf(texts.rx);
    row[Frequency] = mhzText(rx);
    row[Offset] = mhzText(0);
    if (texts.tx.isEmpty()) {
        row[Duplex] = u"off"_s;
    } else if (const qint64 tx = hzOf(texts.tx); tx != rx) {
        const bool split = qAbs(tx - rx) > LargestOffsetHz;
        row[Duplex] = split ? u"split"_s : tx > rx ? u"+"_s : u"-"_s;
        row[Offset] = mhzText(split ? tx : qAbs(tx - rx));
    }

    // Encode is the transmit side, decode the receive side. The tone or code
    // that matters goes into both columns of its kind, so that a reader
    // taking the other column still gets it.
    const Squelch encode = texts.tx.isEmpty() ? Squelch{} : Squelch::of(texts.encode);
    const Squelch decode = Squelch::of(texts.decode);
    QString rTone = u"88.5"_s, cTone = u"88.5"_s, txCode = u"023"_s, rxCode = u"023"_s, crossMode = u"Tone->Tone"_s;
    QString polarity = u"NN"_s;
    QString mode;
    if (encode.kind == Squelch::None && decode.kind == Squelch::None) {
    } else if (encode.kind == Squelch::Ctcss && decode.kind == Squelch::None) {
        mode = u"Tone"_s;
        rTone = cTone = encode.value;
    } else if (encode.kind == Squelch::Ctcss && decode.kind == Squelch::Ctcss && encode.value == decode.value) {
        mode = u"TSQL"_s;
        rTone = cTone = encode.value;
    } else if (encode.kind == Squelch::Dcs && decode.kind == Squelch::Dcs && encode.value == decode.value) {
        mode = u"DTCS"_s;
        txCode = rxCode = encode.value;
        polarity = QString(encode.polarity) + decode.polarity;
    } else {
        mode = u"Cross"_s;
        crossMode = encode.crossName() + u"->"_s + decode.crossName();
        if (encode.kind == Squelch::Ctcss)
            rTone = cTone = encode.value;
        if (decode.kind == Squelch::Ctcss) {
            cTone = decode.value;
            if (encode.kind != Squelch::Ctcss)
                rTone = decode.value;
        }
        if (encode.kind == Squelch::Dcs)
            txCode = rxCode = encode.value;
        if (decode.kind == Squelch::Dcs) {
            rxCode = decode.value;
            if (encode.kind != Squelch::Dcs)
                txCode = decode.value;
        }
        polarity = QString(encode.kind == Squelch::Dcs ? encode.polarity : u'N')
            + (decode.kind == Squelch::Dcs ? decode.polarity : u'N');
    }
    row[Tone] = mode;
    row[RToneFreq] = rTone;
    row[CToneFreq] = cTone;
    row[DtcsCode] = txCode;
    row[DtcsPolarity] = polarity;
    row[RxDtcsCode] = rxCode;
    row[CrossMode] = crossMode;

    row[Mode] = Words::Narrow.matches(texts.bandwidth) ? u"NFM"_s : u"FM"_s;
    row[TStep] = tuningStep(rx);
    row[Skip] = Words::Off.matches(texts.scanAdd) ? u"S"_s : QString();
    row[Power] = Words::Low.matches(texts.power) ? u"1.0W"_s : u"5.0W"_s;
    if (Words::Carrier.matches(texts.bcl))
        row[Comment] = BclPrefix.in(English) + Words::Carrier.in(English);
    else if (Words::OptSignal.matches(texts.bcl))
        row[Comment] = BclPrefix.in(English) + Words::OptSignal.in(English);
    return row;
}

QString csvLine(const QStringList &fields, QChar separator)
{
    QStringList quoted;
    quoted.reserve(fields.size());
    for (const QString &field : fields) {
        if (field.contains(separator) || field.contains(u'"') || field.contains(u'\n') || field.contains(u'\r'))
            quoted.append(u'"' + QString(field).replace(u"\""_s, u"\"\""_s) + u'"');
        else
            quoted.append(field);
    }
    return quoted.join(separator);
}

// ---- Reading ----

struct Record
{
    int line = 0; // where the record starts
    QStringList fields;
};

// Splits text into records of fields: a field in quotes may hold the
// separator, doubled quotes and line breaks; lines starting with # are
// comments; blank lines are dropped. CR LF, LF and a lone CR end a line.
QList<Record> splitRecords(QStringView text, QChar separator)
{
    QList<Record> records;
    int line = 1;
    qsizetype i = 0;
    const qsizetype size = text.size();
    const auto endOfLine = [&](qsizetype at) { return text[at] == u'\n' || text[at] == u'\r'; };
    const auto skipLineEnd = [&] {
        if (text[i] == u'\r' && i + 1 < size && text[i + 1] == u'\n')
            ++i;
        ++i;
        ++line;
    };
    while (i < size) {
        if (text[i] == u'#') {
            while (i < size && !endOfLine(i))
                ++i;
            if (i < size)
                skipLineEnd();
            continue;
        }
        Record record{line, {}};
        QString field;
        bool quoted = false;
        bool fieldStart = true;
        bool ended = false;
        while (i < size && !ended) {
            const QChar c = text[i];
            if (quoted) {
                if (c == u'"') {
                    if (i + 1 < size && text[i + 1] == u'"') {
                        field += u'"';
                        ++i;
                    } else {
                        quoted = false;
                    }
                } else if (c == u'\r' && i + 1 < size && text[i + 1] == u'\n') {
                    field += u'\n';
                    ++i;
                    ++line;
                } else {
                    field += c;
                    if (c == u'\n' || c == u'\r')
                        ++line;
                }
                ++i;
            } else if (c == u'"' && fieldStart) {
                quoted = true;
                fieldStart = false;
                ++i;
            } else if (c == separator) {
                record.fields.append(field);
                field.clear();
                fieldStart = true;
                ++i;
            } else if (endOfLine(i)) {
                skipLineEnd();
                ended = true;
            } else {
                field += c;
                fieldStart = false;
                ++i;
            }
        }
        record.fields.append(field);
        if (record.fields.size() > 1 || !record.fields.front().trimmed().isEmpty())
            records.append(record);
    }
    return records;
}

// Where each column stands in the rows.
struct Layout
{
    bool grid = false; // the channel list's own columns, not CHIRP's
    bool hasHeader = false;
    bool refused = false;
    QChar separator = u',';
    std::array<int, ChirpColumnCount> chirp{};
    std::array<int, GridFieldCount> gridAt{};
    QStringList names;         // the header's names by field
    qsizetype fieldCount = 0;  // fields of a whole row
    QStringList ignored;       // header names not used

    Layout()
    {
        chirp.fill(-1);
        gridAt.fill(-1);
    }
};

// The first line that is neither blank nor a comment.
QStringView firstLine(QStringView text)
{
    for (QStringView line : text.tokenize(u'\n')) {
        if (line.endsWith(u'\r'))
            line.chop(1);
        if (!line.trimmed().isEmpty() && !line.startsWith(u'#'))
            return line;
    }
    return {};
}

bool isGridNumberCaption(const QString &name)
{
    return ChannelColumnCaptions[GridNumber].matches(name);
}

Layout layoutOf(QStringView text)
{
    Layout layout;
    const QStringView first = firstLine(text);
    // A header starts with Location (the CHIRP layout) or the channel
    // number's caption (the channel list's layout); its separator follows
    // that first name.
    for (const QChar separator : {u'\t', u';', u','}) {
        const QString name = splitRecords(first, separator).value(0).fields.value(0).trimmed();
        if (name == ChirpNames[Location] || isGridNumberCaption(name)) {
            layout.hasHeader = true;
            layout.separator = separator;
            layout.grid = name != ChirpNames[Location];
            break;
        }
    }
    if (!layout.hasHeader) {
        // Rows alone, as a spreadsheet copies them: the channel list's when
        // the power column holds a power word, else CHIRP's, column by column.
        layout.separator = first.contains(u'\t') ? u'\t' : first.count(u';') > first.count(u',') ? u';' : u',';
        const QList<Record> rows = splitRecords(text, layout.separator);
        qsizetype widest = 0;
        for (const Record &row : rows)
            widest = std::max(widest, row.fields.size());
        const QString power = rows.value(0).fields.value(GridPower).trimmed();
        layout.grid = Words::High.matches(power) || Words::Low.matches(power);
        layout.fieldCount = std::min<qsizetype>(widest, layout.grid ? int(GridFieldCount) : int(ChirpColumnCount));
        for (int column = 0; column < layout.fieldCount; ++column) {
            if (layout.grid) {
                layout.gridAt[std::size_t(column)] = column;
                layout.names.append(ChannelColumnCaptions[std::size_t(column)].in(English));
            } else {
                layout.chirp[std::size_t(column)] = column;
                layout.names.append(ChirpNames[std::size_t(column)].toString());
            }
        }
    }
    return layout;
}

void readHeader(Layout &layout, const Record &header)
{
    for (int at = 0; at < header.fields.size(); ++at) {
        const QString name = header.fields.at(at).trimmed();
        layout.names.append(name);
        if (name.isEmpty())
            continue;
        layout.fieldCount = at + 1;
        int *slot = nullptr;
        if (layout.grid) {
            for (std::size_t column = 0; column < GridFieldCount && !slot; ++column) {
                if (ChannelColumnCaptions[column].matches(name))
                    slot = &layout.gridAt[column];
            }
        } else if (const auto found = std::find(ChirpNames.begin(), ChirpNames.end(), name); found != ChirpNames.end()) {
            slot = &layout.chirp[std::size_t(found - ChirpNames.begin())];
        }
        if (slot && *slot < 0)
            *slot = at;
        else
            layout.ignored.append(name);
    }
    layout.refused = layout.grid ? (layout.gridAt[GridNumber] < 0 || layout.gridAt[GridRx] < 0)
                                 : (layout.chirp[Location] < 0 || layout.chirp[Frequency] < 0);
}

// A column of the layout: where its field is and what the file calls it.
struct Column
{
    int index = -1;
    QString name;
};

// Turns one row into a channel, or finds why it must be skipped. The notes
// of a skipped row are only the reason it was skipped.
class RowReader
{
public:
    RowReader(const Record &record, const Layout &layout, const BandLimitArray &limits)
        : m_record(record)
        , m_layout(layout)
        , m_limits(limits)
    {
    }

    Column chirp(Chirp column) const { return columnAt(m_layout.chirp[std::size_t(column)], ChirpNames[std::size_t(column)]); }
    Column grid(GridField column) const
    {
        return columnAt(m_layout.gridAt[std::size_t(column)], ChannelColumnCaptions[std::size_t(column)].view(English));
    }

    QString field(const Column &column) const { return m_record.fields.value(column.index); }
    QString trimmed(const Column &column) const { return field(column).trimmed(); }

    void note(const Column &column, ImportNote::Reason reason, const QString &argument1 = {},
              const QString &argument2 = {}, const Text *word = nullptr)
    {
        if (!m_failed)
            m_notes.append({m_record.line, column.name, field(column), reason, argument1, argument2, word});
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
        if (!inRxBands(*hz, m_limits)) {
            fail(column, ImportNote::Reason::RxOutOfBand);
            return {};
        }
        const QString text = NormaliseRxFreq(mhzText(*hz), m_limits);
        if (hzOf(text) != *hz)
            note(column, ImportNote::Reason::MovedOntoRaster, text);
        return text;
    }

    // A transmit frequency, dropped when outside the transmit bands.
    QString transmit(const Column &column, qint64 hz)
    {
        if (!inTxBands(hz, m_limits)) {
            note(column, ImportNote::Reason::TxOutOfBand, mhzText(hz));
            return {};
        }
        const QString text = NormaliseTxFreq(mhzText(hz), m_limits);
        if (hzOf(text) != hz)
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
        const QList<int> &tones = toneLists().ctcss;
        const auto nearest = std::min_element(tones.begin(), tones.end(), [&](int a, int b) {
            return qAbs(a * 10 - *hundredths) < qAbs(b * 10 - *hundredths);
        });
        const qint64 distance = qAbs(*nearest * 10 - *hundredths);
        if (distance > ToneTolerance) {
            fail(column, ImportNote::Reason::ToneNotListed);
            return {};
        }
        const QString tone = ctcssText(*nearest);
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

    // The field of a channel list tone: the no-tone word, a CTCSS tone or
    // "D023N".
    QString gridTone(const Column &column)
    {
        const QString text = trimmed(column);
        if (IsNoTone(text))
            return {};
        if (!text.startsWith(u'D'))
            return ctcss(column);
        const QChar last = text.back();
        if (text.size() != 5 || (last != u'N' && last != u'I')) {
            fail(column, ImportNote::Reason::NotATone);
            return {};
        }
        return dcsTone(column, text.mid(1, 3), last == u'I' ? u'R' : u'N');
    }

    // A value word of the channel list, or its default when the field is
    // empty or not understood.
    bool word(const Column &column, const Text &yes, const Text &no, bool byDefault)
    {
        const QString text = trimmed(column);
        if (yes.matches(text))
            return true;
        if (no.matches(text))
            return false;
        if (!text.isEmpty())
            note(column, ImportNote::Reason::NotUnderstood, {}, {}, byDefault ? &yes : &no);
        return byDefault;
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

    ChannelRecord::Bcl bcl(const Column &column)
    {
        const QString text = trimmed(column);
        if (Words::Carrier.matches(text))
            return ChannelRecord::Bcl::Carrier;
        if (Words::OptSignal.matches(text))
            return ChannelRecord::Bcl::OptSignal;
        if (!text.isEmpty() && !Words::Off.matches(text))
            note(column, ImportNote::Reason::NotUnderstood, {}, {}, &Words::Off);
        return ChannelRecord::Bcl::Off;
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
        if (!toneLists().dcs.contains(code)) {
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

    const Record &m_record;
    const Layout &m_layout;
    const BandLimitArray &m_limits;
    QList<ImportNote> m_notes;
    bool m_failed = false;
};

void readChirpTones(RowReader &row, ImportedChannel &channel)
{
    const QString mode = row.trimmed(row.chirp(Tone));
    if (mode.isEmpty())
        return;
    // Transmit then receive; a file without the column means normal both ways.
    const Column polarityColumn = row.chirp(DtcsPolarity);
    const QString polarity = row.trimmed(polarityColumn).isEmpty() ? u"NN"_s : row.trimmed(polarityColumn);
    const bool polarityKnown = polarity.size() == 2
        && std::all_of(polarity.begin(), polarity.end(), [](QChar c) { return c == u'N' || c == u'R'; });
    if (!polarityKnown && (mode == u"DTCS" || (mode == u"Cross" && row.trimmed(row.chirp(CrossMode)).contains(u"DTCS")))) {
        row.fail(polarityColumn, ImportNote::Reason::PolarityUnknown);
        return;
    }
    if (mode == u"Tone") {
        channel.encode = row.ctcss(row.chirp(RToneFreq));
    } else if (mode == u"TSQL") {
        channel.encode = channel.decode = row.ctcss(row.chirp(CToneFreq));
    } else if (mode == u"DTCS") {
        channel.encode = row.dcs(row.chirp(DtcsCode), polarity[0]);
        channel.decode = row.dcs(row.chirp(DtcsCode), polarity[1]);
    } else if (mode == u"Cross") {
        const Column crossColumn = row.chirp(CrossMode);
        const QString cross = row.trimmed(crossColumn);
        const qsizetype arrow = cross.indexOf(u"->");
        const QString transmit = cross.left(arrow), receive = cross.mid(arrow + 2);
        const auto known = [](const QString &side) { return side.isEmpty() || side == u"Tone" || side == u"DTCS"; };
        if (arrow < 0 || !known(transmit) || !known(receive)) {
            row.fail(crossColumn, ImportNote::Reason::CrossModeUnknown);
            return;
        }
        if (transmit == u"Tone")
            channel.encode = row.ctcss(row.chirp(RToneFreq));
        else if (transmit == u"DTCS")
            channel.encode = row.dcs(row.chirp(DtcsCode), polarity[0]);
        if (receive == u"Tone")
            channel.decode = row.ctcss(row.chirp(CToneFreq));
        else if (receive == u"DTCS")
            channel.decode = row.dcs(row.chirp(RxDtcsCode), polarity[1]);
    } else {
        row.fail(row.chirp(Tone), ImportNote::Reason::SquelchUnsupported);
    }
}

// Busy channel lockout from a "BCL:Carrier" in the comment; the rest of
// the comment goes.
ChannelRecord::Bcl bclOfComment(const QString &comment, bool *otherText = nullptr)
{
    ChannelRecord::Bcl bcl = ChannelRecord::Bcl::Off;
    QString rest = comment;
    const qsizetype at = comment.indexOf(BclPrefix.view(English));
    if (at >= 0) {
        const qsizetype start = at + BclPrefix.view(English).size();
        qsizetype end = start;
        while (end < comment.size() && !comment[end].isSpace() && comment[end] != u';' && comment[end] != u',')
            ++end;
        const QString word = comment.mid(start, end - start);
        if (Words::Carrier.matches(word))
            bcl = ChannelRecord::Bcl::Carrier;
        else if (Words::OptSignal.matches(word))
            bcl = ChannelRecord::Bcl::OptSignal;
        rest.remove(at, end - at);
    }
    if (otherText)
        *otherText = !rest.trimmed().isEmpty();
    return bcl;
}

std::optional<ImportedChannel> readChirpRow(RowReader &row, int line)
{
    ImportedChannel channel;
    channel.line = line;
    channel.rx = row.receive(row.chirp(Frequency));
    if (row.failed())
        return std::nullopt;
    const qint64 rx = hzOf(channel.rx);

    const Column duplexColumn = row.chirp(Duplex);
    const Column offsetColumn = row.chirp(Offset);
    const QString duplex = row.trimmed(duplexColumn);
    std::optional<qint64> tx;
    if (duplex.isEmpty()) {
        tx = rx;
    } else if (duplex == u"+" || duplex == u"-" || duplex == u"split") {
        // Some files write the offset of a - duplex as a negative number:
        // its size is what counts.
        const std::optional<qint64> offset = row.trimmed(offsetColumn).isEmpty() ? 0 : row.megahertz(offsetColumn);
        if (!offset)
            return std::nullopt;
        tx = duplex == u"+" ? rx + qAbs(*offset) : duplex == u"-" ? rx - qAbs(*offset) : qAbs(*offset);
    } else if (duplex != u"off") {
        row.fail(duplexColumn, ImportNote::Reason::DuplexUnknown);
        return std::nullopt;
    }
    if (tx)
        channel.tx = row.transmit(duplex.isEmpty() ? duplexColumn : offsetColumn, *tx);

    readChirpTones(row, channel);
    if (channel.tx.isEmpty())
        channel.encode.clear();

    const Column modeColumn = row.chirp(Mode);
    const QString mode = row.trimmed(modeColumn);
    if (mode == u"NFM")
        channel.wide = false;
    else if (!mode.isEmpty() && mode != u"FM")
        row.fail(modeColumn, ImportNote::Reason::ModeUnsupported);

    const Column skipColumn = row.chirp(Skip);
    const QString skip = row.trimmed(skipColumn);
    channel.scanAdd = skip != u"S";
    if (!skip.isEmpty() && skip != u"S" && skip != u"P")
        row.note(skipColumn, ImportNote::Reason::NotUnderstood, {}, {}, &Words::On);

    channel.highPower = row.power(row.chirp(Power));
    channel.bcl = bclOfComment(row.trimmed(row.chirp(Comment)));
    if (row.failed())
        return std::nullopt;
    return channel;
}

std::optional<ImportedChannel> readGridRow(RowReader &row, int line)
{
    ImportedChannel channel;
    channel.line = line;
    channel.rx = row.receive(row.grid(GridRx));
    if (row.failed())
        return std::nullopt;
    const Column txColumn = row.grid(GridTx);
    if (!row.trimmed(txColumn).isEmpty()) {
        const std::optional<qint64> tx = row.megahertz(txColumn);
        if (!tx)
            return std::nullopt;
        channel.tx = row.transmit(txColumn, *tx);
    }
    channel.decode = row.gridTone(row.grid(GridDecode));
    if (!channel.tx.isEmpty())
        channel.encode = row.gridTone(row.grid(GridEncode));
    channel.highPower = row.power(row.grid(GridPower));
    channel.wide = row.word(row.grid(GridBandwidth), Words::Wide, Words::Narrow, true);
    channel.scanAdd = row.word(row.grid(GridScanAdd), Words::On, Words::Off, true);
    channel.bcl = row.bcl(row.grid(GridBcl));
    if (row.failed())
        return std::nullopt;
    return channel;
}

// A whole channel number, or nothing.
std::optional<int> channelNumber(const QString &text)
{
    bool ok = false;
    const int number = text.trimmed().toInt(&ok);
    return ok ? std::optional<int>(number) : std::nullopt;
}

ImportNote makeNote(int line, const QString &column, const QString &value, ImportNote::Reason reason,
                    const QString &argument1 = {}, const QString &argument2 = {})
{
    return {line, column, value, reason, argument1, argument2, nullptr};
}

// A row read, before it is given its channel.
struct Candidate
{
    int line = 0;
    Column locationColumn;
    QString location;
    std::optional<int> number;
    std::optional<ImportedChannel> channel;
    QList<ImportNote> notes;
};

} // namespace

QList<NumberedChannel> ChannelsInUse(const MemoryImage &image)
{
    QList<NumberedChannel> channels;
    for (int channel = 1; channel <= ChannelRecord::ChannelCount; ++channel) {
        if (ChannelInUse(image, channel))
            channels.append({channel, ReadChannelTexts(image, channel, English)});
    }
    return channels;
}

QStringList ChirpColumns()
{
    QStringList names;
    for (QStringView name : ChirpNames)
        names.append(name.toString());
    return names;
}

QString WriteChirpCsv(const QList<NumberedChannel> &channels, QChar separator, QStringView lineEnd)
{
    QString text = csvLine(ChirpColumns(), separator) + lineEnd.toString();
    for (const NumberedChannel &channel : channels)
        text += csvLine(chirpRow(channel), separator) + lineEnd.toString();
    return text;
}

QByteArray ChirpCsvFile(const QList<NumberedChannel> &channels)
{
    return WriteChirpCsv(channels, u',', u"\r\n").toUtf8();
}

QString DecodeCsvFile(const QByteArray &bytes)
{
    QString text = QString::fromUtf8(bytes);
    if (text.startsWith(QChar(0xFEFF)))
        text.remove(0, 1);
    return text;
}

namespace {

Text reasonText(ImportNote::Reason reason)
{
    using enum ImportNote::Reason;
    switch (reason) {
    case NotAChannelNumber:
        return {u"not a channel number 1-128: row skipped", u"不是 1-128 的信道号：跳过此行",
                      u"不是 1-128 的信道號：略過此列"};
    case PastLastChannel:
        return {u"would go past channel 128: row skipped", u"超出信道 128：跳过此行", u"超出信道 128：略過此列"};
    case EmptyFrequency:
        return {u"no receive frequency: row skipped", u"没有接收频率：跳过此行", u"沒有接收頻率：略過此列"};
    case ShortRow:
        return {u"only %1 of %2 fields: row skipped", u"只有 %1 个字段（应有 %2 个）：跳过此行",
                      u"只有 %1 個欄位（應有 %2 個）：略過此列"};
    case NotAFrequency:
        return {u"not a frequency: row skipped", u"不是频率：跳过此行", u"不是頻率：略過此列"};
    case RxOutOfBand:
        return {u"outside the receive bands: row skipped", u"超出接收频段：跳过此行", u"超出接收頻段：略過此列"};
    case NotATone:
        return {u"not a tone: row skipped", u"不是亚音：跳过此行", u"不是亞音：略過此列"};
    case ToneNotListed:
        return {u"CTCSS tone not among the radio's 50: row skipped", u"不是本机的 50 个 CTCSS 之一：跳过此行",
                      u"不是本機的 50 個 CTCSS 之一：略過此列"};
    case CodeNotListed:
        return {u"DCS code not among the radio's 105: row skipped", u"不是本机的 105 个 DCS 之一：跳过此行",
                      u"不是本機的 105 個 DCS 之一：略過此列"};
    case PolarityUnknown:
        return {u"not a DCS polarity: row skipped", u"不是 DCS 极性：跳过此行", u"不是 DCS 極性：略過此列"};
    case SquelchUnsupported:
        return {u"squelch mode the radio does not have: row skipped", u"本机没有此亚音方式：跳过此行",
                      u"本機沒有此亞音方式：略過此列"};
    case CrossModeUnknown:
        return {u"unknown cross mode: row skipped", u"未知的交叉方式：跳过此行", u"未知的交叉方式：略過此列"};
    case DuplexUnknown:
        return {u"unknown duplex: row skipped", u"未知的收发方式：跳过此行", u"未知的收發方式：略過此列"};
    case ModeUnsupported:
        return {u"mode the radio does not have: row skipped", u"本机没有此调制方式：跳过此行",
                      u"本機沒有此調變方式：略過此列"};
    case Replaced:
        return {u"channel %1 is given again on line %2: row replaced", u"信道 %1 在第 %2 行再次出现：此行被取代",
                      u"信道 %1 在第 %2 行再次出現：此列被取代"};
    case MovedOntoRaster:
        return {u"moved onto the channel raster: %1", u"已移到信道步进上：%1", u"已移到信道步進上：%1"};
    case TxOutOfBand:
        return {u"transmit frequency %1 outside the transmit bands: channel kept without transmit frequency",
                      u"发射频率 %1 超出发射频段：保留信道，不设发射频率",
                      u"發射頻率 %1 超出發射頻段：保留信道，不設發射頻率"};
    case ToneTaken:
        return {u"CTCSS tone taken as %1", u"CTCSS 取为 %1", u"CTCSS 取為 %1"};
    case NotUnderstood:
        return {u"not understood: %1 taken", u"无法识别：取为%1", u"無法識別：取為%1"};
    case LocationZero:
        return {u"the file counts from 0: every channel number is one more", u"文件从 0 开始计数：信道号均加一",
                      u"檔案從 0 開始計數：信道號均加一"};
    case ColumnsIgnored:
        return {u"columns not used", u"未使用的列", u"未使用的欄"};
    case NamesNotKept:
        return {u"not kept: the radio has no channel names (rows with a name: %1)",
                u"不保存：本机没有信道名称（有名称的行：%1）", u"不保存：本機沒有信道名稱（有名稱的列：%1）"};
    case CommentsNotKept:
        return {u"not kept: the radio has no comments (rows with a comment: %1)",
                u"不保存：本机没有备注（有备注的行：%1）", u"不保存：本機沒有備註（有備註的列：%1）"};
    }
    return {u""};
}

} // namespace

QString ImportNote::text(int languageIndex) const
{
    QString result = reasonText(reason).in(languageIndex);
    if (word)
        result = result.arg(word->in(languageIndex));
    else if (result.contains(u"%2"))
        result = result.arg(argument1, argument2);
    else if (result.contains(u"%1"))
        result = result.arg(argument1);
    return result;
}

ChannelTexts ImportedChannel::texts(int languageIndex) const
{
    const QString none = Words::None.in(languageIndex);
    ChannelTexts cells;
    cells.rx = rx;
    cells.tx = tx;
    cells.decode = decode.isEmpty() ? none : decode;
    cells.encode = tx.isEmpty() ? QString() : encode.isEmpty() ? none : encode;
    cells.power = PowerText(highPower, languageIndex);
    cells.bandwidth = BandwidthText(wide, languageIndex);
    cells.scanAdd = ScanAddText(scanAdd, languageIndex);
    cells.bcl = BclText(bcl, languageIndex);
    return cells;
}

CsvImport ReadChannelCsv(QStringView text, const BandLimitArray &limits, int pasteAt)
{
    if (text.startsWith(QChar(0xFEFF)))
        text = text.mid(1);
    CsvImport result;
    Layout layout = layoutOf(text);
    QList<Record> records = splitRecords(text, layout.separator);
    if (layout.hasHeader && !records.isEmpty()) {
        const Record header = records.takeFirst();
        readHeader(layout, header);
        if (layout.refused) {
            result.refused = true;
            return result;
        }
        if (!layout.ignored.isEmpty())
            result.notes.append(makeNote(header.line, QString(), layout.ignored.join(u", "), ImportNote::Reason::ColumnsIgnored));
    }

    // Each row read on its own first; where it goes needs all of them.
    QList<Candidate> candidates;
    int names = 0, comments = 0;
    ImportNote firstName, firstComment;
    for (const Record &record : std::as_const(records)) {
        // A spreadsheet's empty rows (",,,,") are no rows.
        if (std::all_of(record.fields.begin(), record.fields.end(), [](const QString &f) { return f.trimmed().isEmpty(); }))
            continue;
        RowReader row(record, layout, limits);
        Candidate candidate;
        candidate.line = record.line;
        candidate.locationColumn = layout.grid ? row.grid(GridNumber) : row.chirp(Location);
        candidate.location = row.field(candidate.locationColumn);
        if (record.fields.size() < layout.fieldCount) {
            row.fail({-1, layout.names.value(record.fields.size())}, ImportNote::Reason::ShortRow);
            candidate.notes = row.notes();
            candidate.notes.front().argument1 = QString::number(record.fields.size());
            candidate.notes.front().argument2 = QString::number(layout.fieldCount);
            candidates.append(candidate);
            continue;
        }
        candidate.number = channelNumber(candidate.location);
        if (!candidate.number) {
            row.fail(candidate.locationColumn, ImportNote::Reason::NotAChannelNumber);
        } else {
            candidate.channel = layout.grid ? readGridRow(row, record.line) : readChirpRow(row, record.line);
            if (candidate.channel && !layout.grid) {
                const Column name = row.chirp(Name), comment = row.chirp(Comment);
                if (!row.trimmed(name).isEmpty() && names++ == 0)
                    firstName = makeNote(record.line, name.name, row.field(name), ImportNote::Reason::NamesNotKept);
                bool otherComment = false;
                bclOfComment(row.trimmed(comment), &otherComment);
                if (otherComment && comments++ == 0)
                    firstComment = makeNote(record.line, comment.name, row.field(comment),
                                            ImportNote::Reason::CommentsNotKept);
            }
        }
        candidate.notes = row.notes();
        candidates.append(candidate);
    }
    // Names and comments once for the file, at the first row holding one.
    if (names > 0) {
        firstName.argument1 = QString::number(names);
        result.notes.append(firstName);
    }
    if (comments > 0) {
        firstComment.argument1 = QString::number(comments);
        result.notes.append(firstComment);
    }

    // Where the rows go: to their Location (one further on when the file
    // counts from 0), or, pasted, from pasteAt on as far apart as their
    // Locations are.
    int shift = 0;
    if (pasteAt > 0) {
        std::optional<int> lowest;
        for (const Candidate &candidate : std::as_const(candidates)) {
            if (candidate.number)
                lowest = std::min(lowest.value_or(*candidate.number), *candidate.number);
        }
        shift = pasteAt - lowest.value_or(pasteAt);
    } else {
        for (const Candidate &candidate : std::as_const(candidates)) {
            if (candidate.number == 0) {
                shift = 1;
                result.notes.append(makeNote(candidate.line, candidate.locationColumn.name, candidate.location,
                                             ImportNote::Reason::LocationZero));
                break;
            }
        }
    }

    std::map<int, qsizetype> winners; // channel -> candidate
    for (qsizetype at = 0; at < candidates.size(); ++at) {
        Candidate &candidate = candidates[at];
        if (!candidate.channel)
            continue;
        const int channel = *candidate.number + shift;
        if (channel < 1 || channel > ChannelRecord::ChannelCount) {
            candidate.channel.reset();
            candidate.notes = {makeNote(candidate.line, candidate.locationColumn.name, candidate.location,
                                        pasteAt > 0 ? ImportNote::Reason::PastLastChannel
                                                    : ImportNote::Reason::NotAChannelNumber)};
            continue;
        }
        if (const auto earlier = winners.find(channel); earlier != winners.end()) {
            Candidate &replaced = candidates[earlier->second];
            replaced.channel.reset();
            replaced.notes = {makeNote(replaced.line, replaced.locationColumn.name, replaced.location,
                                       ImportNote::Reason::Replaced, QString::number(channel),
                                       QString::number(candidate.line))};
        }
        winners[channel] = at;
    }

    for (const auto &[channel, at] : winners)
        result.channels[channel] = *candidates[at].channel;
    for (const Candidate &candidate : std::as_const(candidates)) {
        if (!candidate.channel)
            ++result.skipped;
        else if (!candidate.notes.isEmpty())
            ++result.changed;
        if (candidate.channel)
            ++result.imported;
        result.notes += candidate.notes;
    }
    std::stable_sort(result.notes.begin(), result.notes.end(),
                     [](const ImportNote &a, const ImportNote &b) { return a.line < b.line; });
    return result;
}

QList<ChannelWrite> ImportWrites(const CsvImport &import, int languageIndex, const std::function<bool(int)> &inUse)
{
    QList<ChannelWrite> writes;
    for (const auto &[channel, values] : import.channels)
        writes.append({channel, values.texts(languageIndex), !inUse(channel)});
    return writes;
}

void ApplyImport(MemoryImage &image, const CsvImport &import)
{
    const auto inUse = [&image](int channel) { return ChannelInUse(image, channel); };
    for (const ChannelWrite &write : ImportWrites(import, English, inUse)) {
        if (write.creates)
            CreateChannel(image, write.channel);
        SaveChannel(image, write.channel, write.texts);
    }
}

} // namespace wr
