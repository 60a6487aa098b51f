#include "core/ToneCodec.h"

#include "core/FrequencyCodec.h"
#include "core/ImageFields.h"
#include "core/Language.h"

#include <algorithm>
#include <array>

namespace wr {

namespace {

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
