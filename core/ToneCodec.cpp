#include "core/ToneCodec.h"

#include "core/FrequencyCodec.h"
#include "core/ImageFields.h"
#include "core/Language.h"

#include <algorithm>
#include <array>

namespace wr {

namespace {

// CTCSS tones in 0.1 Hz.
constexpr std::array<int, 50> CtcssTones{
    670,  693,  719,  744,  770,  797,  825,  854,  885,  915,  948,  974,  1000, 1035, 1072, 1109, 1148,
    1188, 1230, 1273, 1318, 1365, 1413, 1462, 1514, 1567, 1598, 1622, 1655, 1679, 1713, 1738, 1773, 1799,
    1835, 1862, 1899, 1928, 1966, 1995, 2035, 2065, 2107, 2181, 2257, 2291, 2336, 2418, 2503, 2541};

// DCS codes, written in octal digits.
constexpr std::array<int, 105> DcsCodes{
    23,  25,  26,  31,  32,  36,  43,  47,  51,  53,  54,  65,  71,  72,  73,  74,  114, 115, 116, 122, 125,
    131, 132, 134, 143, 145, 152, 155, 156, 162, 165, 172, 174, 205, 212, 223, 225, 226, 243, 244, 245, 246,
    251, 252, 255, 261, 263, 265, 266, 271, 274, 306, 311, 315, 325, 331, 332, 343, 346, 351, 356, 364, 365,
    371, 411, 412, 413, 423, 431, 432, 445, 446, 452, 454, 455, 462, 464, 465, 466, 503, 506, 516, 523, 526,
    532, 546, 565, 606, 612, 624, 627, 631, 632, 645, 654, 662, 664, 703, 712, 723, 731, 732, 734, 743, 754};

constexpr std::uint8_t KindMask = 0xC0;
constexpr std::uint8_t Ctcss = 0x00;
constexpr std::uint8_t DcsNormal = 0x80;
constexpr std::uint8_t DcsInverted = 0xC0;

QString ctcssText(int tenthsHz)
{
    return QStringLiteral("%1.%2").arg(tenthsHz / 10).arg(tenthsHz % 10);
}

QString dcsText(int code, QChar polarity)
{
    return QStringLiteral("D%1%2").arg(code, 3, 10, QChar(u'0')).arg(polarity);
}

int hexDigit(QChar c)
{
    const char16_t u = c.unicode();
    if (u >= u'0' && u <= u'9')
        return u - u'0';
    if (u >= u'A' && u <= u'F')
        return u - u'A' + 10;
    if (u >= u'a' && u <= u'f')
        return u - u'a' + 10;
    return -1;
}

// The value of the leading hexadecimal digits of a text; no digit gives 0.
int hexValue(QStringView digits)
{
    int value = 0;
    for (QChar c : digits) {
        const int digit = hexDigit(c);
        if (digit < 0)
            break;
        value = value * 16 + digit;
    }
    return value;
}

struct ToneBytes
{
    int low;
    int high;
};

ToneBytes toneColumns(Side side)
{
    return side == Side::Rx ? ToneBytes{8, 9} : ToneBytes{10, 11};
}

} // namespace

QStringList BuildToneTable(int languageIndex)
{
    QStringList table;
    table.reserve(ToneTableSize);
    table.append(Words::None.in(languageIndex));
    for (int tone : CtcssTones)
        table.append(ctcssText(tone));
    for (int code : DcsCodes)
        table.append(dcsText(code, u'N'));
    for (int code : DcsCodes)
        table.append(dcsText(code, u'I'));
    return table;
}

bool IsNoTone(QStringView text)
{
    return text.isEmpty() || Words::None.matches(text.toString());
}

QString ReadTone(const MemoryImage &image, Side side, int channel, int languageIndex)
{
    const int row = ChannelRow(channel);
    const ToneBytes at = toneColumns(side);
    const std::uint8_t low = image.ReadByte(row, at.low);
    const std::uint8_t high = image.ReadByte(row, at.high);
    if (low == 0xFF && high == 0xFF)
        return Words::None.in(languageIndex);

    const int value = bcdByteValue(high & 0x3F) * 100 + bcdByteValue(low);
    switch (high & KindMask) {
    case Ctcss:
        return ctcssText(value);
    case DcsNormal:
        return dcsText(value, u'N');
    case DcsInverted:
        return dcsText(value, u'I');
    default:
        return {};
    }
}

void WriteTone(MemoryImage &image, Side side, int channel, QStringView text)
{
    const int row = ChannelRow(channel);
    const ToneBytes at = toneColumns(side);
    int low = 0xFF;
    int high = 0xFF;
    if (IsNoTone(text)) {
        // no tone: FF FF
    } else if (text.startsWith(u'D')) {
        high = hexValue(text.mid(1, 1));
        low = hexValue(text.mid(2, 2));
        high = text.endsWith(u'I') ? (high | DcsInverted) : ((high & 0x3F) | DcsNormal);
    } else {
        // CTCSS as four BCD digits of 0.1 Hz: 67.0 -> "0670" -> 06 70.
        const qint64 tenths = std::clamp<qint64>(freq::leadingNumber(text, 1), 0, 9999);
        const QString digits = QStringLiteral("%1").arg(tenths, 4, 10, QChar(u'0'));
        high = hexValue(QStringView(digits).left(2)) & 0x3F;
        low = hexValue(QStringView(digits).mid(2, 2));
    }
    image.WriteByte(row, at.low, static_cast<std::uint8_t>(low));
    image.WriteByte(row, at.high, static_cast<std::uint8_t>(high));
}

} // namespace wr
