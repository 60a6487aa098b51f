#include "core/FrequencyCodec.h"

#include <QLocale>

#include <limits>

namespace wr {

namespace {

constexpr qint64 TenHzPerMHz = 100'000;
constexpr int FineScale = 12;                    // typed frequencies are compared in 10^-12 MHz
constexpr qint64 FinePerMHz = 1'000'000'000'000; // 10^FineScale
constexpr qint64 FinePerTenHz = FinePerMHz / TenHzPerMHz;

qint64 pow10(int exponent)
{
    qint64 value = 1;
    while (exponent-- > 0)
        value *= 10;
    return value;
}

qint64 floorDiv(qint64 a, qint64 b)
{
    const qint64 q = a / b;
    return (a % b != 0 && (a < 0) != (b < 0)) ? q - 1 : q;
}

qint64 roundDiv(qint64 a, qint64 b) // b > 0, a half away from zero
{
    return a >= 0 ? (a + b / 2) / b : -((-a + b / 2) / b);
}

bool isAsciiDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

struct Scanned
{
    qint64 value = 0;   // in units of 10^-scale, saturated
    qsizetype end = 0;  // index after the last character taken
    bool anyDigit = false;
};

// Reads [blanks][sign]digits[point digits] from the start of text.
Scanned scanNumber(QStringView text, int scale, QChar decimalPoint)
{
    Scanned result;
    qsizetype i = 0;
    while (i < text.size() && text[i].isSpace())
        ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == u'+' || text[i] == u'-')) {
        negative = text[i] == u'-';
        ++i;
    }
    const qint64 unit = pow10(scale);
    // Saturates far beyond any value a radio or a setting can hold.
    constexpr qint64 saturation = std::numeric_limits<qint64>::max() / 1000;
    qint64 magnitude = 0;
    for (; i < text.size() && isAsciiDigit(text[i]); ++i) {
        result.anyDigit = true;
        if (magnitude < saturation)
            magnitude = magnitude * 10 + (text[i].unicode() - u'0') * unit;
    }
    if (i < text.size() && text[i] == decimalPoint) {
        ++i;
        qint64 place = unit / 10;
        bool roundUp = false;
        bool first = true;
        for (; i < text.size() && isAsciiDigit(text[i]); ++i) {
            result.anyDigit = true;
            const int digit = text[i].unicode() - u'0';
            if (place > 0) {
                magnitude += digit * place;
                place /= 10;
            } else if (first) {
                roundUp = digit >= 5; // the first digit beyond the scale decides the half
                first = false;
            }
        }
        if (roundUp)
            magnitude += 1;
    }
    result.value = negative ? -magnitude : magnitude;
    result.end = i;
    return result;
}

// The typed number in 10^-12 MHz: through the user's locale when it holds a
// comma, else its leading number with a point as decimal separator.
qint64 typedFrequency(QStringView text)
{
    if (!text.contains(u',')) {
        return freq::leadingNumber(text, FineScale);
    }
    const QLocale locale;
    QString plain = text.toString();
    if (locale.decimalPoint() != QStringLiteral(",")) {
        plain.remove(locale.groupSeparator());
        plain.remove(u',');
    } else {
        plain.remove(locale.groupSeparator());
        plain.replace(u',', u'.');
    }
    return freq::parseDecimal(plain, FineScale).value_or(0);
}

QString normalise(QStringView text, qint64 lower1, qint64 upper1, qint64 lower2, qint64 upper2)
{
    const qint64 f = typedFrequency(text);
    const qint64 l1 = lower1 * FinePerMHz, u1 = upper1 * FinePerMHz;
    const qint64 l2 = lower2 * FinePerMHz, u2 = upper2 * FinePerMHz;

    if (f >= u2)
        return freq::formatTenHz(upper2 * TenHzPerMHz);
    // Below band 1 and between the bands both give band 1's upper edge.
    if (f < l1 || (f > u1 && f < l2))
        return freq::formatTenHz(upper1 * TenHzPerMHz);

    // Snap to the nearer of the 5 kHz and 6.25 kHz rasters, rounding down on
    // each; a tie goes to 5 kHz.
    const qint64 x = roundDiv(f, FinePerTenHz);
    const qint64 a = floorDiv(x, 500) * 500;
    const qint64 b = floorDiv(x, 625) * 625;
    const qint64 distanceA = qAbs(f - a * FinePerTenHz);
    const qint64 distanceB = qAbs(f - b * FinePerTenHz);
    qint64 chosen = distanceB < distanceA ? b : a;

    // Rounding to 10 Hz can carry a typed 136.999996 into 137.00000; such a
    // result is stepped back by 5 kHz, so that files and radios programmed
    // by other programs read the same frequency.
    if (chosen == (floorDiv(f, FinePerMHz) + 1) * TenHzPerMHz)
        chosen -= 500;
    return freq::formatTenHz(chosen);
}

FreqCorrection correction(QStringView text, qint64 lower1, qint64 upper1, qint64 lower2, qint64 upper2)
{
    const qint64 f = typedFrequency(text);
    const QString stored = normalise(text, lower1, upper1, lower2, upper2);
    if (freq::parseDecimal(stored, FineScale) == f)
        return FreqCorrection::None;
    if (f >= upper2 * FinePerMHz)
        return FreqCorrection::AboveBands;
    if (f < lower1 * FinePerMHz)
        return FreqCorrection::BelowBands;
    if (f > upper1 * FinePerMHz && f < lower2 * FinePerMHz)
        return FreqCorrection::BetweenBands;
    return FreqCorrection::OntoRaster;
}

int frequencyColumn(Side side)
{
    return side == Side::Rx ? 0 : 4;
}

} // namespace

namespace freq {

QString formatTenHz(qint64 tenHz)
{
    const bool negative = tenHz < 0;
    const qint64 magnitude = qAbs(tenHz);
    return QStringLiteral("%1%2.%3")
        .arg(negative ? QStringLiteral("-") : QString())
        .arg(magnitude / TenHzPerMHz)
        .arg(magnitude % TenHzPerMHz, 5, 10, QChar(u'0'));
}

std::optional<qint64> parseDecimal(QStringView text, int scale, QChar decimalPoint)
{
    const Scanned scanned = scanNumber(text, scale, decimalPoint);
    if (!scanned.anyDigit)
        return std::nullopt;
    for (qsizetype i = scanned.end; i < text.size(); ++i) {
        if (!text[i].isSpace())
            return std::nullopt;
    }
    return scanned.value;
}

qint64 leadingNumber(QStringView text, int scale)
{
    return scanNumber(text, scale, u'.').value;
}

} // namespace freq

QString ReadFreq(const MemoryImage &image, Side side, int channel)
{
    const int row = ChannelRow(channel);
    const int first = frequencyColumn(side);
    QString digits;
    for (int i = 0; i < 4; ++i) {
        const std::uint8_t byte = image.ReadByte(row, first + i);
        if (byte == 0xFF)
            return {};
        digits += QStringLiteral("%1").arg(byte, 2, 16, QChar(u'0'));
    }
    // BCD as the radio writes it; a stray hexadecimal letter ends the number.
    qint64 hz = freq::leadingNumber(digits, 0) * 10;
    if (hz % 625 != 0 && hz % 500 != 0)
        hz += 5;
    return freq::formatTenHz((hz + 5) / 10);
}

bool WriteFreq(MemoryImage &image, Side side, int channel, QStringView text)
{
    const std::optional<qint64> tenHz = freq::parseDecimal(text, 5);
    if (!tenHz || *tenHz < 0 || *tenHz >= 1000 * TenHzPerMHz)
        return false;
    const int row = ChannelRow(channel);
    const int first = frequencyColumn(side);
    qint64 rest = *tenHz;
    for (int i = 3; i >= 0; --i) {
        const int pair = static_cast<int>(rest % 100);
        rest /= 100;
        image.WriteByte(row, first + i, static_cast<std::uint8_t>((pair / 10) << 4 | pair % 10));
    }
    return true;
}

QString NormaliseRxFreq(QStringView text, const BandLimitArray &limits)
{
    return normalise(text, limits[RxLower1], limits[RxUpper1], limits[RxLower2], limits[RxUpper2]);
}

QString NormaliseTxFreq(QStringView text, const BandLimitArray &limits)
{
    return normalise(text, limits[TxLower1], limits[TxUpper1], limits[TxLower2], limits[TxUpper2]);
}

FreqCorrection RxFreqCorrection(QStringView text, const BandLimitArray &limits)
{
    return correction(text, limits[RxLower1], limits[RxUpper1], limits[RxLower2], limits[RxUpper2]);
}

FreqCorrection TxFreqCorrection(QStringView text, const BandLimitArray &limits)
{
    return correction(text, limits[TxLower1], limits[TxUpper1], limits[TxLower2], limits[TxUpper2]);
}

} // namespace wr
