// The diff subcommand of wrpd6t-tool: what differs between two data files,
// in the words a dealer reads elsewhere: the channels as the channel list
// shows them (a channel new or deleted on one line with its values), the
// settings and keys as info --settings prints them, the FM radio as info --fm
// does, the band limits in MHz, and every other differing byte by its
// address.

#include "Commands.h"

#include "channels/ChannelRecord.h"
#include "core/BandLimits.h"
#include "core/ImageFields.h"
#include "core/Language.h"
#include "core/MemoryImage.h"
#include "features/FmRadio.h"
#include "features/SettingsReport.h"

#include <algorithm>
#include <array>
#include <span>

namespace wr::tool {

namespace {

// Some bits of a run of bytes.
struct Span
{
    int offset;
    int length;
    std::uint8_t mask;
};

// Where the bits that one line of a listing shows lie in the image: a record
// of `stride` bytes per item from `first`, the spans of the record the line
// shows, and the item's bit in each bitmap that goes with the line (bit
// n % 8 of byte bitmap + n / 8).
struct ItemLayout
{
    int first;
    int stride;
    std::span<const Span> shown;
    std::span<const int> bitmaps;
};

// A row of the channel list shows the frequencies (bytes 0-7), the tones
// (8-11) and, of ChannelFlags, BCL (bits 0-1), power (2), scan add (3) and
// bandwidth (6); not the shift bits, bit 7, bytes 12-13 nor the signalling
// flags. Its empty bit, and its scan-skip bit, which the list saves with
// scan add, go with it. Channel n is item n - 1.
constexpr Span ChannelSpans[]{{0, 12, 0xFF}, {ChannelRecord::FlagsByte, 1, 0x4F}};
constexpr int ChannelBitmaps[]{ChannelRecord::EmptyBitmapRow * MemoryImage::RowSize,
                               ChannelRecord::ScanSkipBitmapRow * MemoryImage::RowSize};
constexpr ItemLayout ChannelLayout{0, MemoryImage::RowSize, ChannelSpans, ChannelBitmaps};
constexpr Span WholeChannel[]{{0, MemoryImage::RowSize, 0xFF}};
constexpr ItemLayout WholeChannelLayout{0, MemoryImage::RowSize, WholeChannel, {}};

// An FM channel or the VFO: four bytes of frequency.
constexpr Span FrequencySpans[]{{0, 4, 0xFF}};
constexpr int FmBitmaps[]{fm::EmptyBitmapAddress};
constexpr ItemLayout FmChannelLayout{fm::FirstChannelAddress, 4, FrequencySpans, FmBitmaps};
constexpr ItemLayout FmVfoLayout{fm::VfoAddress, 0, FrequencySpans, {}};

// An empty cell: a channel not in use, no separate transmit side, an empty
// FM channel, a list with no selection.
constexpr Text EmptyCell{u"(empty)", u"（空）", u"（空）"};

// A channel in use on one side only.
constexpr Text NewChannel{u"new", u"新增", u"新增"};
constexpr Text DeletedChannel{u"deleted", u"已删除", u"已刪除"};

// The band limits the radio reports in row 416, by direction: the limits of
// band 1 and band 2 (BandLimit order) and the bytes that hold them.
struct BandLine
{
    Text caption;
    std::array<int, 4> limits; // lower and upper of band 1, then of band 2
};
constexpr BandLine BandLines[]{
    {{u"Rx bands", u"接收频段", u"接收頻段"}, {RxLower1, RxUpper1, RxLower2, RxUpper2}},
    {{u"Tx bands", u"发射频段", u"發射頻段"}, {TxLower1, TxUpper1, TxLower2, TxUpper2}},
};

QString hex(int value, int digits)
{
    return QString::number(value, 16).toUpper().rightJustified(digits, QLatin1Char('0'));
}

// The two images and, for each byte, the bits the lines listed so far show.
class Comparison
{
public:
    Comparison(const MemoryImage &a, const MemoryImage &b, int languageIndex)
        : m_a(a)
        , m_b(b)
        , m_language(languageIndex)
    {
        m_shown.fill(0);
    }

    QStringList lines()
    {
        compareChannels();
        compareSettings();
        compareFm();
        compareBandLimits();
        compareBytes();
        return m_lines;
    }

private:
    QString change(const QString &before, const QString &after) const
    {
        const auto shown = [this](const QString &text) { return text.isEmpty() ? EmptyCell.in(m_language) : text; };
        return shown(before) + QStringLiteral(" -> ") + shown(after);
    }

    void explain(int address, std::uint8_t mask)
    {
        if (address >= 0 && address < MemoryImage::Size)
            m_shown[std::size_t(address)] |= mask;
    }

    void explain(const ItemLayout &layout, int item)
    {
        const int record = layout.first + layout.stride * item;
        for (const Span &span : layout.shown) {
            for (int i = 0; i < span.length; ++i)
                explain(record + span.offset + i, span.mask);
        }
        for (const int bitmap : layout.bitmaps)
            explain(bitmap + item / 8, static_cast<std::uint8_t>(1u << (item % 8)));
    }

    void compareChannels()
    {
        for (int channel = 1; channel <= ChannelRecord::ChannelCount; ++channel) {
            const QStringList before = ReadChannelTexts(m_a, channel, m_language).cells();
            const QStringList after = ReadChannelTexts(m_b, channel, m_language).cells();
            if (before == after)
                continue;
            QString line = QStringLiteral("%1 %2").arg(ChannelColumnCaptions[0].in(m_language)).arg(channel);
            const bool added = isEmpty(before);
            explain(ChannelLayout, channel - 1);
            if (added || isEmpty(after)) {
                // The whole record came or went with it, the bytes no
                // column shows (a new channel's defaults) included.
                explain(WholeChannelLayout, channel - 1);
                line += u' ' + (added ? NewChannel : DeletedChannel).in(m_language) + QStringLiteral(": ")
                    + values(added ? after : before);
            } else {
                line += QStringLiteral(": ") + changes(before, after);
            }
            m_lines.append(line);
        }
    }

    static bool isEmpty(const QStringList &row)
    {
        return std::all_of(row.begin(), row.end(), [](const QString &cell) { return cell.isEmpty(); });
    }

    // The cells a channel has, each after its column's caption.
    QString values(const QStringList &row) const
    {
        QStringList shown;
        for (qsizetype cell = 0; cell < row.size(); ++cell) {
            if (!row[cell].isEmpty())
                shown.append(ChannelColumnCaptions[std::size_t(cell) + 1].in(m_language) + u' ' + row[cell]);
        }
        return shown.join(QStringLiteral(", "));
    }

    QString changes(const QStringList &before, const QStringList &after) const
    {
        QStringList shown;
        for (qsizetype cell = 0; cell < before.size(); ++cell) {
            if (before[cell] != after[cell])
                shown.append(ChannelColumnCaptions[std::size_t(cell) + 1].in(m_language) + u' '
                             + change(before[cell], after[cell]));
        }
        return shown.join(QStringLiteral(", "));
    }

    void compareSettings()
    {
        const QList<FieldLine> before = describeSettingFields(m_a, m_language);
        const QList<FieldLine> after = describeSettingFields(m_b, m_language);
        for (qsizetype i = 0; i < before.size() && i < after.size(); ++i) {
            if (before[i].value == after[i].value)
                continue;
            m_lines.append(before[i].caption + QStringLiteral(": ") + change(before[i].value, after[i].value));
            explain(before[i].bits.address, before[i].bits.mask());
        }
    }

    void compareFm()
    {
        const fm::Texts before = fm::load(m_a);
        const fm::Texts after = fm::load(m_b);
        if (before.vfo != after.vfo) {
            m_lines.append(QStringLiteral("FM %1: ").arg(fm::VfoName.in(m_language)) + change(before.vfo, after.vfo));
            explain(FmVfoLayout, 0);
        }
        for (int channel = 0; channel < fm::ChannelCount; ++channel) {
            const QString &was = before.channels[std::size_t(channel)];
            const QString &is = after.channels[std::size_t(channel)];
            if (was == is)
                continue;
            m_lines.append(QStringLiteral("FM %1 %2: ").arg(fm::ChannelHeader.in(m_language)).arg(channel)
                           + change(was, is));
            explain(FmChannelLayout, channel);
        }
    }

    // The band limits as ranges in MHz, "136-174, 400-490 MHz", as the radio
    // stores them: four BCD digits of 100 kHz each, so a limit may have a
    // tenth. A radio never read has none (erased).
    QString bands(const MemoryImage &image, const BandLine &line) const
    {
        const auto limit = [&image](int which) {
            const int tenths = bcdByteValue(image.ReadByte(BandLimitsRow, 2 * which)) * 100
                + bcdByteValue(image.ReadByte(BandLimitsRow, 2 * which + 1));
            return tenths % 10 ? QStringLiteral("%1.%2").arg(tenths / 10).arg(tenths % 10) : QString::number(tenths / 10);
        };
        if (std::all_of(line.limits.begin(), line.limits.end(),
                        [&image](int which) { return image.ReadByte(BandLimitsRow, 2 * which) == MemoryImage::Erased; }))
            return {};
        return QStringLiteral("%1-%2, %3-%4 MHz")
            .arg(limit(line.limits[0]), limit(line.limits[1]), limit(line.limits[2]), limit(line.limits[3]));
    }

    void compareBandLimits()
    {
        for (const BandLine &line : BandLines) {
            const QString before = bands(m_a, line);
            const QString after = bands(m_b, line);
            if (before == after)
                continue;
            m_lines.append(line.caption.in(m_language) + QStringLiteral(": ") + change(before, after));
            for (const int which : line.limits) {
                explain(BandLimitsRow * MemoryImage::RowSize + 2 * which, 0xFF);
                explain(BandLimitsRow * MemoryImage::RowSize + 2 * which + 1, 0xFF);
            }
        }
    }

    // Whatever differs in bits no line above shows.
    void compareBytes()
    {
        for (int address = 0; address < MemoryImage::Size; ++address) {
            const std::uint8_t was = m_a.ReadByte(address);
            const std::uint8_t is = m_b.ReadByte(address);
            if ((was ^ is) & ~m_shown[std::size_t(address)])
                m_lines.append(QStringLiteral("0x%1: %2 -> %3").arg(hex(address, 4), hex(was, 2), hex(is, 2)));
        }
    }

    const MemoryImage &m_a;
    const MemoryImage &m_b;
    int m_language;
    std::array<std::uint8_t, MemoryImage::Size> m_shown{};
    QStringList m_lines;
};

int runDiff(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("diff"),
                     QStringLiteral("Lists what differs between two data files, one line each: channels (number, "
                                    "then the columns that differ; a channel new or deleted with its values), "
                                    "settings and keys as info --settings names them, the FM radio, the band "
                                    "limits in MHz, then any other byte by its image address. Exit status 0 "
                                    "when the memories are the same, 1 when they differ, 2 when a file cannot be "
                                    "read."));
    line.addLanguageOption();
    line.addArgument(QStringLiteral("A.tw"), QStringLiteral("The data file to compare from."));
    line.addArgument(QStringLiteral("B.tw"), QStringLiteral("The data file to compare with."));
    if (const auto status = line.parse(arguments))
        return *status;
    const std::optional<int> languageIndex = line.language();
    if (!languageIndex)
        return UsageError;

    const std::optional<MemoryImage> a = readImage(line.arguments().at(0));
    const std::optional<MemoryImage> b = a ? readImage(line.arguments().at(1)) : std::nullopt;
    if (!a || !b)
        return UsageError;
    if (*a == *b)
        return Success;
    for (const QString &text : Comparison(*a, *b, *languageIndex).lines())
        out() << text << '\n';
    return Failure;
}

} // namespace

QList<Command> diffCommands()
{
    return {{QStringLiteral("diff"), QStringLiteral("list what differs between two data files"), runDiff}};
}

} // namespace wr::tool
