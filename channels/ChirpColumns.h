#pragma once

// What the CHIRP CSV writer and reader share: the columns and the way the
// files write frequencies (ChannelCsv.h describes the layout).

#include "core/FrequencyCodec.h"
#include "core/Language.h"

#include <QString>
#include <QStringView>

#include <array>

namespace wr::chirp {

enum Column : int {
    Location, Name, Frequency, Duplex, Offset, Tone, RToneFreq, CToneFreq, DtcsCode, DtcsPolarity, RxDtcsCode,
    CrossMode, Mode, TStep, Skip, Power, Comment, UrCall, Rpt1Call, Rpt2Call, DvCode, ColumnCount
};

inline constexpr std::array<QStringView, ColumnCount> Names{
    u"Location", u"Name",      u"Frequency", u"Duplex",   u"Offset",  u"Tone",   u"rToneFreq",
    u"cToneFreq", u"DtcsCode", u"DtcsPolarity", u"RxDtcsCode", u"CrossMode", u"Mode", u"TStep",
    u"Skip",     u"Power",     u"Comment",   u"URCALL",   u"RPT1CALL", u"RPT2CALL", u"DVCODE"};

constexpr qint64 HzPerMHz = 1'000'000;

// Busy channel lockout has no column; it travels in Comment as "BCL:Carrier".
inline constexpr Text BclPrefix{u"BCL:"};

// MHz with six decimals, the way the files write frequencies.
inline QString mhzText(qint64 hz)
{
    const qint64 magnitude = qAbs(hz);
    return (hz < 0 ? QStringLiteral("-") : QString())
        + QStringLiteral("%1.%2").arg(magnitude / HzPerMHz).arg(magnitude % HzPerMHz, 6, 10, QChar(u'0'));
}

// A channel list text ("146.52000") in hertz.
inline qint64 hzOf(const QString &text)
{
    return freq::parseDecimal(text, 5).value_or(0) * 10;
}

} // namespace wr::chirp
