// Reading CHIRP CSV: the columns a header names, each row on its own
// (reading), where the rows go (placing, ChannelPlans.h), and what the whole
// text gives (counting). Rows of the channel list's own cells are read in
// ChannelCsvGrid.cpp.

#include "channels/CsvRowReader.h"

#include <span>
#include <utility>

namespace wr {

using namespace Qt::StringLiterals;
using namespace chirp;
using namespace csvread;

namespace {

using enum ImportNote::Reason;
using csvread::Column; // not CHIRP's enumeration of its columns

// What each reason says, in the order of the reasons.
struct ReasonText
{
    ImportNote::Reason reason;
    Text text;
};
constexpr ReasonText ReasonTexts[]{
    {NotAChannelNumber,
     {u"not a channel number 1-128: row skipped", u"不是 1-128 的信道号：跳过此行", u"不是 1-128 的信道號：略過此列"}},
    {PastLastChannel,
     {u"would go past channel 128: row skipped", u"超出信道 128：跳过此行", u"超出信道 128：略過此列"}},
    {EmptyFrequency, {u"no receive frequency: row skipped", u"没有接收频率：跳过此行", u"沒有接收頻率：略過此列"}},
    {ShortRow,
     {u"only %1 of %2 fields: row skipped", u"只有 %1 个字段（应有 %2 个）：跳过此行",
      u"只有 %1 個欄位（應有 %2 個）：略過此列"}},
    {NotAFrequency, {u"not a frequency: row skipped", u"不是频率：跳过此行", u"不是頻率：略過此列"}},
    {RxOutOfBand, {u"outside the receive bands: row skipped", u"超出接收频段：跳过此行", u"超出接收頻段：略過此列"}},
    {NotATone, {u"not a tone: row skipped", u"不是亚音：跳过此行", u"不是亞音：略過此列"}},
    {ToneNotListed,
     {u"CTCSS tone not among the radio's 50: row skipped", u"不是本机的 50 个 CTCSS 之一：跳过此行",
      u"不是本機的 50 個 CTCSS 之一：略過此列"}},
    {CodeNotListed,
     {u"DCS code not among the radio's 105: row skipped", u"不是本机的 105 个 DCS 之一：跳过此行",
      u"不是本機的 105 個 DCS 之一：略過此列"}},
    {PolarityUnknown, {u"not a DCS polarity: row skipped", u"不是 DCS 极性：跳过此行", u"不是 DCS 極性：略過此列"}},
    {SquelchUnsupported,
     {u"squelch mode the radio does not have: row skipped", u"本机没有此亚音方式：跳过此行",
      u"本機沒有此亞音方式：略過此列"}},
    {CrossModeUnknown, {u"unknown cross mode: row skipped", u"未知的交叉方式：跳过此行", u"未知的交叉方式：略過此列"}},
    {DuplexUnknown, {u"unknown duplex: row skipped", u"未知的收发方式：跳过此行", u"未知的收發方式：略過此列"}},
    {ModeUnsupported,
     {u"mode the radio does not have: row skipped", u"本机没有此调制方式：跳过此行", u"本機沒有此調變方式：略過此列"}},
    {Replaced,
     {u"channel %1 is given again on line %2: row replaced", u"信道 %1 在第 %2 行再次出现：此行被取代",
      u"信道 %1 在第 %2 行再次出現：此列被取代"}},
    {MovedOntoRaster, {u"moved onto the channel raster: %1", u"已移到信道步进上：%1", u"已移到信道步進上：%1"}},
    {TxOutOfBand,
     {u"transmit frequency %1 outside the transmit bands: channel kept without transmit frequency",
      u"发射频率 %1 超出发射频段：保留信道，不设发射频率", u"發射頻率 %1 超出發射頻段：保留信道，不設發射頻率"}},
    {ToneTaken, {u"CTCSS tone taken as %1", u"CTCSS 取为 %1", u"CTCSS 取為 %1"}},
    {NotUnderstood, {u"not understood: %1 taken", u"无法识别：取为%1", u"無法識別：取為%1"}},
    {LocationZero,
     {u"the file counts from 0: every channel number is one more", u"文件从 0 开始计数：信道号均加一",
      u"檔案從 0 開始計數：信道號均加一"}},
    {ColumnsIgnored, {u"columns not used", u"未使用的列", u"未使用的欄"}},
    {NamesNotKept,
     {u"not kept: the radio has no channel names (rows with a name: %1)", u"不保存：本机没有信道名称（有名称的行：%1）",
      u"不保存：本機沒有信道名稱（有名稱的列：%1）"}},
    {CommentsNotKept,
     {u"not kept: the radio has no comments (rows with a comment: %1)", u"不保存：本机没有备注（有备注的行：%1）",
      u"不保存：本機沒有備註（有備註的列：%1）"}},
};
static_assert([] {
    int at = 0;
    for (const ReasonText &entry : ReasonTexts) {
        if (int(entry.reason) != at++)
            return false;
    }
    return at == int(ImportNote::Reason::CommentsNotKept) + 1;
}());

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

// The CHIRP column a header's name is, in any case; -1 when it is none.
int chirpColumnNamed(QStringView name)
{
    const auto found = std::find_if(Names.begin(), Names.end(), [name](QStringView known) {
        return name.compare(known, Qt::CaseInsensitive) == 0;
    });
    return found == Names.end() ? -1 : int(found - Names.begin());
}

// A field that reads as a number (a frequency, a tone, a channel number) is
// a row's, never a header's.
bool isNumber(const QString &field)
{
    return freq::parseDecimal(field, 6).has_value() || freq::parseDecimal(field, 6, u',').has_value();
}

// A first line is a header when, split at a TAB, ';' or ',', its fields name
// known columns and none is a number; of the separators, the one giving the
// most names. Rows alone, as a spreadsheet copies them, are separated by
// the TAB, ';' or ',' their first line holds: the channel list's cells from
// firstColumn on, or CHIRP's columns in order when they are too many for
// the list.
Layout layoutOf(QStringView text, int firstColumn)
{
    Layout layout;
    const QStringView first = firstLine(text);
    qsizetype mostNames = 0;
    for (const QChar separator : {u'\t', u';', u','}) {
        const QStringList fields = csv::records(first, separator).value(0).fields;
        if (std::any_of(fields.begin(), fields.end(), isNumber))
            continue;
        const qsizetype names = std::count_if(fields.begin(), fields.end(), [](const QString &field) {
            return chirpColumnNamed(field.trimmed()) >= 0 || gridColumnNamed(field.trimmed()) >= 0;
        });
        if (names > mostNames) {
            mostNames = names;
            layout.separator = separator;
            layout.hasHeader = true;
        }
    }
    if (layout.hasHeader)
        return layout;

    layout.separator = first.contains(u'\t') ? u'\t' : first.count(u';') > first.count(u',') ? u';' : u',';
    qsizetype widest = 0;
    for (const csv::Record &row : csv::records(text, layout.separator))
        widest = std::max(widest, row.fields.size());
    if (layoutGridBlock(layout, widest, firstColumn))
        return layout;
    layout.fieldCount = std::min<qsizetype>(widest, ColumnCount);
    for (int column = 0; column < layout.fieldCount; ++column) {
        layout.at[std::size_t(column)] = column;
        layout.names.append(Names[std::size_t(column)].toString());
    }
    return layout;
}

// The fields a header names: CHIRP's columns, whose rows need a Frequency,
// or else the channel list's cells (a Location column then gives the
// channel numbers). Names of the other kind, unknown and repeated names
// are not used.
void readHeader(Layout &layout, const csv::Record &header)
{
    for (int at = 0; at < header.fields.size(); ++at) {
        const QString name = header.fields.at(at).trimmed();
        layout.names.append(name);
        if (name.isEmpty())
            continue;
        layout.fieldCount = at + 1;
        const int chirpColumn = chirpColumnNamed(name);
        const int gridColumn = gridColumnNamed(name);
        int *slot = chirpColumn >= 0 ? &layout.at[std::size_t(chirpColumn)]
            : gridColumn >= 0        ? &layout.cells[std::size_t(gridColumn)]
                                     : nullptr;
        if (slot && *slot < 0)
            *slot = at;
    }
    const bool anyCell = std::any_of(layout.cells.begin() + ColRx, layout.cells.end(), [](int at) { return at >= 0; });
    layout.gridRows = layout.at[Frequency] < 0 && anyCell;
    if (layout.gridRows && layout.cells[ColNumber] < 0)
        layout.cells[ColNumber] = std::exchange(layout.at[Location], -1);
    layout.refused = layout.at[Frequency] < 0 && !layout.gridRows;

    QList<int> used;
    for (int at : layout.gridRows ? std::span<const int>(layout.cells) : std::span<const int>(layout.at)) {
        if (at >= 0)
            used.append(at);
    }
    for (int at = 0; at < layout.names.size(); ++at) {
        if (!layout.names.at(at).isEmpty() && !used.contains(at))
            layout.ignored.append(layout.names.at(at));
    }
}

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

// A whole channel number, or nothing.
std::optional<int> channelNumber(const QString &text)
{
    bool ok = false;
    const int number = text.trimmed().toInt(&ok);
    return ok ? std::optional<int>(number) : std::nullopt;
}

ImportNote makeNote(int line, const Column &column, const QString &value, ImportNote::Reason reason,
                    const QString &argument1 = {}, const QString &argument2 = {})
{
    return {line, column.name, value, reason, argument1, argument2, nullptr, column.gridColumn};
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

// Reading: each row on its own, and once for the text the names and
// comments that are not kept, at the first row holding one. Rows without a
// Location take the channels from firstChannel on, one for each line.
QList<Candidate> readRows(const QList<csv::Record> &records, const Layout &layout, const BandLimitArray &limits,
                          int firstChannel, QList<ImportNote> &notes)
{
    QList<Candidate> candidates;
    int names = 0, comments = 0;
    ImportNote firstName, firstComment;
    const int firstLine = records.isEmpty() ? 0 : records.front().line;
    for (const csv::Record &record : records) {
        // A spreadsheet's empty rows (",,,,") are no rows.
        if (std::all_of(record.fields.begin(), record.fields.end(), [](const QString &f) { return f.trimmed().isEmpty(); }))
            continue;
        RowReader row(record, layout, limits);
        Candidate candidate;
        candidate.line = record.line;
        candidate.locationColumn = layout.gridRows ? row.cell(ColNumber) : row.chirp(Location);
        candidate.location = row.field(candidate.locationColumn);
        if (layout.gridRows) {
            // A row of cells may stop short: the cells it lacks are not given.
            candidate.number = layout.hasLocation() ? channelNumber(candidate.location)
                                                    : firstChannel + record.line - firstLine;
            if (!candidate.number)
                row.fail(candidate.locationColumn, NotAChannelNumber);
            else
                candidate.channel = readGridRow(row, record.line, limits);
            candidate.notes = row.notes();
            candidates.append(candidate);
            continue;
        }
        if (record.fields.size() < layout.fieldCount) {
            row.fail({-1, layout.names.value(record.fields.size())}, ShortRow);
            candidate.notes = row.notes();
            candidate.notes.front().argument1 = QString::number(record.fields.size());
            candidate.notes.front().argument2 = QString::number(layout.fieldCount);
            candidates.append(candidate);
            continue;
        }
        candidate.number = layout.hasLocation() ? channelNumber(candidate.location)
                                                : firstChannel + record.line - firstLine;
        if (!candidate.number) {
            row.fail(candidate.locationColumn, NotAChannelNumber);
        } else if ((candidate.channel = readChirpRow(row, record.line))) {
            const Column name = row.chirp(Name), comment = row.chirp(Comment);
            if (!row.trimmed(name).isEmpty() && names++ == 0)
                firstName = makeNote(record.line, name, row.field(name), NamesNotKept);
            bool otherComment = false;
            bclOfComment(row.trimmed(comment), &otherComment);
            if (otherComment && comments++ == 0)
                firstComment = makeNote(record.line, comment, row.field(comment), CommentsNotKept);
        }
        candidate.notes = row.notes();
        candidates.append(candidate);
    }
    if (names > 0) {
        firstName.argument1 = QString::number(names);
        notes.append(firstName);
    }
    if (comments > 0) {
        firstComment.argument1 = QString::number(comments);
        notes.append(firstComment);
    }
    return candidates;
}

// Placing: the channel of each row; a row that goes nowhere keeps only the
// note that says why. Rows numbered by their lines go to those channels; a
// row giving some cells only goes to a channel in use.
void placeCandidates(QList<Candidate> &candidates, const CsvTarget &target, bool byLocation, CsvImport &result)
{
    QList<RowLocation> locations;
    for (const Candidate &candidate : std::as_const(candidates))
        locations.append({candidate.number, candidate.channel.has_value()});
    const Placement placement = placeRows(locations, byLocation ? target.pasteAt : 0);
    if (placement.firstZero >= 0) {
        const Candidate &zero = candidates[placement.firstZero];
        result.notes.append(makeNote(zero.line, zero.locationColumn, zero.location, LocationZero));
    }
    for (qsizetype at = 0; at < candidates.size(); ++at) {
        Candidate &candidate = candidates[at];
        const PlacedRow &placed = placement.rows[at];
        const auto skip = [&](ImportNote::Reason reason, const QString &argument1 = {}, const QString &argument2 = {}) {
            candidate.channel.reset();
            candidate.notes = {
                makeNote(candidate.line, candidate.locationColumn, candidate.location, reason, argument1, argument2)};
        };
        switch (placed.outcome) {
        case PlacedRow::Placed:
            if (!candidate.channel->gives(ColRx) && !(target.table && target.table->at(placed.channel).inUse())) {
                candidate.channel.reset();
                candidate.notes = {makeNote(candidate.line, {-1, {}, ColRx}, {}, EmptyFrequency)};
                break;
            }
            result.channels[placed.channel] = *candidate.channel;
            break;
        case PlacedRow::Outside:
            skip(target.pasteAt > 0 || !byLocation ? PastLastChannel : NotAChannelNumber);
            break;
        case PlacedRow::Replaced:
            skip(Replaced, QString::number(placed.channel), QString::number(candidates[placed.replacedBy].line));
            break;
        case PlacedRow::NotAChannel:
            break;
        }
    }
}

// Counting: rows imported, changed and skipped, and every note in the
// order of the text's lines.
void countRows(const QList<Candidate> &candidates, CsvImport &result)
{
    for (const Candidate &candidate : candidates) {
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
}

} // namespace

QString ImportNote::text(Language language) const
{
    QString result = ReasonTexts[int(reason)].text.in(language);
    if (word)
        result = result.arg(word->in(language));
    else if (result.contains(u"%2"))
        result = result.arg(argument1, argument2);
    else if (result.contains(u"%1"))
        result = result.arg(argument1);
    return result;
}

QString ImportNote::columnName(Language language) const
{
    if (column.isEmpty() && gridColumn >= 0 && gridColumn < ChannelColumnCount)
        return ChannelColumnCaptions[std::size_t(gridColumn)].in(language);
    return column;
}

ChannelTexts ImportedChannel::texts(Language language) const
{
    const QString none = Words::None.in(language);
    ChannelTexts cells;
    cells.rx = rx;
    cells.tx = tx;
    cells.decode = decode.isEmpty() ? none : decode;
    cells.encode = tx.isEmpty() ? QString() : encode.isEmpty() ? none : encode;
    cells.power = PowerText(highPower, language);
    cells.bandwidth = BandwidthText(wide, language);
    cells.scanAdd = ScanAddText(scanAdd, language);
    cells.bcl = BclText(bcl, language);
    return cells;
}

Channel ImportedChannel::appliedTo(Channel channel, Language language) const
{
    const ChannelTexts row = texts(language);
    if (!channel.inUse()) {
        channel.hidden = Channel::Created;
        channel.texts = row;
        return channel;
    }
    ChannelTexts &cells = channel.texts;
    for (int column = ColRx; column <= ColBcl; ++column) {
        if (gives(column))
            cells.cell(column) = row.cell(column);
    }
    // As typing keeps a row: an encode tone only with a transmit frequency.
    if (cells.tx.isEmpty())
        cells.encode.clear();
    else if (cells.encode.isEmpty())
        cells.encode = Words::None.in(language);
    return channel;
}

CsvImport readChannelCsv(QStringView text, const BandLimitArray &limits, const CsvTarget &target)
{
    if (text.startsWith(QChar(0xFEFF)))
        text = text.mid(1);
    CsvImport result;
    Layout layout = layoutOf(text, target.firstColumn);
    QList<csv::Record> records = csv::records(text, layout.separator);
    if (layout.hasHeader) {
        const csv::Record header = records.takeFirst();
        readHeader(layout, header);
        if (layout.refused) {
            result.refused = true;
            return result;
        }
        if (!layout.ignored.isEmpty())
            result.notes.append(makeNote(header.line, {}, layout.ignored.join(u", "), ColumnsIgnored));
    } else if (layout.gridRows) {
        for (int column = ColRx; column <= ColBcl; ++column) {
            if (layout.cells[std::size_t(column)] >= 0)
                result.readAs.append(column);
        }
    }
    result.byLocation = layout.hasLocation();
    QList<Candidate> candidates = readRows(records, layout, limits, target.firstChannel, result.notes);
    placeCandidates(candidates, target, result.byLocation, result);
    countRows(candidates, result);
    return result;
}

ChannelChanges importedChannels(const ChannelTable &table, const CsvImport &import, Language language)
{
    ChannelChanges changes;
    for (const auto &[number, values] : import.channels)
        changes[number] = values.appliedTo(table.at(number), language);
    return changes;
}

void applyImport(MemoryImage &image, const CsvImport &import)
{
    ChannelTable table = ChannelTable::load(image, English);
    const ChannelChanges changes = importedChannels(table, import, English);
    for (auto it = changes.begin(); it != changes.end(); ++it) {
        table.set(it.key(), it.value());
        table.saveChannel(image, it.key());
    }
}

} // namespace wr
