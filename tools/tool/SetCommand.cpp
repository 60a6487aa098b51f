// The set subcommand of wrpd6t-tool: one value for a column of many
// channels, as the channel list's Set for Selected Channels and Fill
// Selection give it.

#include "Commands.h"

#include "channels/ChannelFill.h"
#include "channels/ChannelTable.h"
#include "core/BandLimits.h"
#include "core/FrequencyCodec.h"
#include "core/Language.h"

#include <QRegularExpression>

#include <array>

namespace wr::tool {

namespace {

// The columns by the names the command takes, in the order of the list.
constexpr std::array<std::pair<QStringView, int>, 8> Columns{{
    {u"rx", ColRx},
    {u"tx", ColTx},
    {u"decode", ColDecode},
    {u"encode", ColEncode},
    {u"power", ColPower},
    {u"bandwidth", ColBandwidth},
    {u"scanadd", ColScanAdd},
    {u"bcl", ColBcl},
}};

QString columnName(int column)
{
    for (const auto &[name, number] : Columns) {
        if (number == column)
            return name.toString();
    }
    return {};
}

// One COLUMN=VALUE, the value as the channel list will store it.
struct Assignment
{
    int column = ColRx;
    QString given;
    QString value;
};

// Why a value is refused, or "" when it is taken; `value` becomes what the
// list stores. Values are English words and texts as the grid shows them.
QString checkFrequency(Assignment &assignment, const BandLimitArray &limits)
{
    const bool receive = assignment.column == ColRx;
    if (assignment.given.isEmpty())
        return receive ? QStringLiteral("a receive frequency is needed") : QString();
    const std::optional<qint64> hz = freq::parseDecimal(assignment.given, 6);
    if (!hz)
        return QStringLiteral("not a frequency in MHz");
    const bool inBands = receive ? inReceiveBands(*hz, limits) : inTransmitBands(*hz, limits);
    if (!inBands) {
        const int first = receive ? RxLower1 : TxLower1;
        return QStringLiteral("outside the %1 bands (%2-%3 and %4-%5 MHz)")
            .arg(receive ? u"receive" : u"transmit")
            .arg(limits[first])
            .arg(limits[first + 1])
            .arg(limits[first + 4])
            .arg(limits[first + 5]);
    }
    assignment.value = receive ? NormaliseRxFreq(assignment.given, limits) : NormaliseTxFreq(assignment.given, limits);
    return {};
}

// The tone editor's rules would bring any text onto a tone; here only a
// tone the radio can hold is taken, written as the grid writes it or close
// to it ("D23" is D023N, "88.50" is 88.5).
QString checkTone(Assignment &assignment)
{
    const QString &given = assignment.given;
    static const QRegularExpression dcs(QStringLiteral("^D[0-7]{1,3}[NI]?$"), QRegularExpression::CaseInsensitiveOption);
    const std::optional<qint64> tenths = freq::parseDecimal(given, 1);
    const bool ctcss = tenths && *tenths >= 600 && *tenths <= 2599 && given.front().isDigit();
    if (given.compare(u"none", Qt::CaseInsensitive) != 0 && !ctcss && !dcs.match(given).hasMatch())
        return QStringLiteral("not a tone: None, a CTCSS tone from 60.0 to 259.9 Hz, or a DCS code such as D023N");
    assignment.value = typedTone(given.toUpper(), English);
    return {};
}

QString checkWord(Assignment &assignment)
{
    QStringList words;
    for (const Text &word : columnWords(assignment.column)) {
        if (assignment.given.compare(word.view(English), Qt::CaseInsensitive) == 0) {
            assignment.value = word.in(English);
            return {};
        }
        words << word.in(English);
    }
    return QStringLiteral("not one of %1").arg(words.join(u", "));
}

QString check(Assignment &assignment, const BandLimitArray &limits)
{
    switch (assignment.column) {
    case ColRx:
    case ColTx:
        return checkFrequency(assignment, limits);
    case ColDecode:
    case ColEncode:
        return checkTone(assignment);
    default:
        return checkWord(assignment);
    }
}

// "3: rx 145.50000 -> 446.00625, tx 145.50000 -> 446.00625"; a new channel
// lists all its cells.
QString changeLine(int channel, const Channel &before, const Channel &after)
{
    QStringList cells;
    for (int column = ColRx; column <= ColBcl; ++column) {
        const QString &now = after.texts.cell(column);
        const QString &was = before.texts.cell(column);
        if (!before.inUse())
            cells << columnName(column) + u' ' + (now.isEmpty() ? QStringLiteral("(empty)") : now);
        else if (now != was)
            cells << QStringLiteral("%1 %2 -> %3")
                         .arg(columnName(column), was.isEmpty() ? QStringLiteral("(empty)") : was,
                              now.isEmpty() ? QStringLiteral("(empty)") : now);
    }
    return QStringLiteral("%1: %2%3").arg(channel).arg(before.inUse() ? QString() : QStringLiteral("new channel: "),
                                                         cells.join(u", "));
}

int runSet(const QStringList &arguments)
{
    CommandLine line(
        QStringLiteral("set"),
        QStringLiteral(
            "Sets columns of channels as the channel list would: COLUMN=VALUE, COLUMN one of rx, tx, decode, "
            "encode, power, bandwidth, scanadd, bcl, VALUE as the English channel list shows it (rx=446.00625, "
            "decode=D023N, decode=None, power=Low, bandwidth=Narrow, scanadd=Off, bcl=Carrier; tx= leaves a "
            "channel without transmit frequency). A receive frequency changes the transmit frequency too where "
            "the two were equal, and creates an empty channel with the new channel's settings; the other columns "
            "leave empty channels alone. A frequency between raster steps is moved onto the raster and said so. "
            "A frequency outside the bands, or a value the column does not take, is refused with exit status 2 "
            "and the file is not written. Prints one line per channel changed, or \"no change\"; the file is "
            "replaced only once it is completely written."));
    const QCommandLineOption channels({QStringLiteral("c"), QStringLiteral("channels")},
                                      QStringLiteral("The channels to change, such as 1-16,20; by default those in "
                                                     "use."),
                                      QStringLiteral("list"));
    line.parser().addOption(channels);
    line.addArgument(QStringLiteral("FILE.tw"), QStringLiteral("The data file to change."));
    line.addArgument(QStringLiteral("COLUMN=VALUE..."), QStringLiteral("What to set; one or more."));
    line.setMinimumArguments(2);
    if (const auto status = line.parse(arguments))
        return *status;

    std::optional<QList<int>> chosen;
    if (line.parser().isSet(channels)) {
        chosen = parseChannelList(line.parser().value(channels));
        if (!chosen)
            return line.usageError(QStringLiteral("--channels must list channels 1-128, such as 1-16,20"));
    }
    QList<Assignment> assignments;
    for (const QString &argument : line.arguments().mid(1)) {
        const qsizetype equals = argument.indexOf(u'=');
        const QString name = argument.left(equals).toLower();
        const auto column = std::find_if(Columns.begin(), Columns.end(),
                                         [&](const auto &entry) { return entry.first == name; });
        if (equals < 0 || column == Columns.end())
            return line.usageError(QStringLiteral("%1: not COLUMN=VALUE with a column of rx, tx, decode, encode, "
                                                  "power, bandwidth, scanadd, bcl")
                                       .arg(argument));
        if (std::any_of(assignments.begin(), assignments.end(),
                        [&](const Assignment &given) { return given.column == column->second; }))
            return line.usageError(QStringLiteral("%1 is given twice").arg(name));
        assignments.append({column->second, argument.mid(equals + 1).trimmed(), {}});
    }

    const QString path = line.arguments().at(0);
    std::optional<MemoryImage> image = readImage(path);
    if (!image)
        return Failure;
    const BandLimitArray limits = bandLimitsOf(*image, path);
    for (Assignment &assignment : assignments) {
        if (const QString refused = check(assignment, limits); !refused.isEmpty()) {
            err() << "wrpd6t-tool set: " << columnName(assignment.column) << '=' << assignment.given << ": "
                  << refused << "; " << path << " is left as it was\n";
            return UsageError;
        }
    }
    for (const Assignment &assignment : std::as_const(assignments)) {
        const bool frequency = assignment.column == ColRx || assignment.column == ColTx;
        if (frequency && freq::parseDecimal(assignment.value, 6) != freq::parseDecimal(assignment.given, 6))
            out() << columnName(assignment.column) << '=' << assignment.given << ": moved onto the channel raster: "
                  << assignment.value << '\n';
        else if (!frequency && assignment.value.compare(assignment.given, Qt::CaseInsensitive) != 0)
            out() << columnName(assignment.column) << '=' << assignment.given << ": taken as " << assignment.value
                  << '\n';
    }

    ChannelTable table = ChannelTable::load(*image, English);
    QList<int> numbers = chosen.value_or(QList<int>());
    if (!chosen) {
        for (const NumberedChannel &channel : table.inUse())
            numbers.append(channel.channel);
    }
    QStringList changes;
    for (int channel : numbers) {
        const Channel before = table.at(channel);
        Channel after = before;
        for (const Assignment &assignment : std::as_const(assignments))
            after = filledCell(after, assignment.column, assignment.value, limits, English);
        if (after == before)
            continue;
        table.set(channel, after);
        table.saveChannel(*image, channel);
        changes << changeLine(channel, before, after);
    }
    if (changes.isEmpty()) {
        out() << "no change\n";
        return Success;
    }
    QString error;
    if (!DataFile::Write(path, *image, &error))
        return fileFailure(path, error);
    out() << changes.join(u'\n') << '\n';
    return Success;
}

} // namespace

QList<Command> setCommands()
{
    return {{QStringLiteral("set"), QStringLiteral("set columns of many channels of a data file at once"), runSet}};
}

} // namespace wr::tool
