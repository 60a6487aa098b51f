#include "channels/TypedCorrection.h"

#include "channels/ChannelRecord.h"
#include "core/FrequencyCodec.h"
#include "core/ToneCodec.h"

#include <algorithm>
#include <array>

namespace wr {

namespace {

using Reason = TypedCorrection::Reason;

constexpr Text LineText{u"Channel %1 %2: %3 → %4, %5", u"信道 %1 %2：%3 → %4，%5", u"信道 %1 %2：%3 → %4，%5"};

// The cells as the line names them, from the receive frequency on.
constexpr std::array<Text, 4> CellNames{{
    {u"Rx", u"接收", u"接收"},
    {u"Tx", u"发射", u"發射"},
    {u"Dec", u"解码", u"解碼"},
    {u"Enc", u"编码", u"編碼"},
}};

// What each reason says, in the order of the reasons.
constexpr std::array<Text, 9> ReasonTexts{{
    {u"below the band", u"低于频段", u"低於頻段"},
    {u"between the bands", u"在两个频段之间", u"在兩個頻段之間"},
    {u"above the band", u"高于频段", u"高於頻段"},
    {u"moved onto the channel raster", u"已移到信道步进上", u"已移到信道步進上"},
    {u"below 60.0 Hz", u"低于 60.0 Hz", u"低於 60.0 Hz"},
    {u"above 259.9 Hz", u"高于 259.9 Hz", u"高於 259.9 Hz"},
    {u"rounded to 0.1 Hz", u"取整到 0.1 Hz", u"取整到 0.1 Hz"},
    {u"DCS digits go up to 7", u"DCS 数字最大为 7", u"DCS 數字最大為 7"},
    {u"not a tone", u"不是亚音", u"不是亞音"},
}};
static_assert(ReasonTexts.size() == std::size_t(Reason::NotATone) + 1);
// The frequency reasons follow the codec's, which has None first.
static_assert(int(Reason::BelowBands) == int(FreqCorrection::BelowBands) - 1
              && int(Reason::OntoRaster) == int(FreqCorrection::OntoRaster) - 1);

bool isAsciiDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

// Tones are typed in tenths of a hertz; the leading number is compared in
// millionths, as the tone normaliser reads it.
constexpr int ToneScale = 6;
constexpr qint64 MicroPerTenth = 100'000;
constexpr qint64 LowestTone = 600 * MicroPerTenth;
constexpr qint64 AboveHighestTone = 2600 * MicroPerTenth;

std::optional<Reason> toneReason(QStringView typed)
{
    if (IsNoTone(typed))
        return std::nullopt;
    if (isAsciiDigit(typed.front())) {
        const qint64 micro = freq::leadingNumber(typed, ToneScale);
        if (micro < LowestTone)
            return Reason::ToneBelowRange;
        if (micro >= AboveHighestTone)
            return Reason::ToneAboveRange;
        if (micro % MicroPerTenth != 0)
            return Reason::ToneRounded;
        return std::nullopt;
    }
    if (typed.startsWith(u'D')) {
        const QString digits = QString::number(freq::leadingNumber(typed.mid(1), 0));
        if (std::any_of(digits.begin(), digits.end(), [](QChar digit) { return digit > u'7'; }))
            return Reason::DcsDigits;
        return std::nullopt;
    }
    return Reason::NotATone;
}

} // namespace

QString TypedCorrection::text(Language language) const
{
    const std::size_t cell = std::size_t(std::clamp(column, int(ColRx), int(ColEncode)) - ColRx);
    return LineText.in(language)
        .arg(QString::number(channel), CellNames[cell].in(language), typed, stored,
             ReasonTexts[std::size_t(reason)].in(language));
}

std::optional<TypedCorrection> frequencyCorrection(int channel, int column, QStringView typed, const QString &stored,
                                                   const BandLimitArray &limits)
{
    if (typed.isEmpty())
        return std::nullopt;
    const FreqCorrection why = column == ColRx ? RxFreqCorrection(typed, limits) : TxFreqCorrection(typed, limits);
    if (why == FreqCorrection::None)
        return std::nullopt;
    return TypedCorrection{channel, column, typed.toString(), stored, Reason(int(why) - 1)};
}

std::optional<TypedCorrection> toneCorrection(int channel, int column, QStringView typed, const QString &stored)
{
    const std::optional<Reason> why = toneReason(typed);
    if (!why)
        return std::nullopt;
    return TypedCorrection{channel, column, typed.toString(), stored, *why};
}

} // namespace wr
