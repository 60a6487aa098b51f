// Writing channels as CHIRP CSV rows.

#include "channels/ChannelCsv.h"

#include "channels/ChirpColumns.h"
#include "core/CsvText.h"
#include "core/ToneCodec.h"

namespace wr {

using namespace Qt::StringLiterals;
using namespace chirp;

namespace {

// Transmit further than this from receive is written as a split, not as an
// offset: no repeater shifts by more.
constexpr qint64 LargestOffsetHz = 70 * HzPerMHz;

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
    QStringList row(ColumnCount);
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

} // namespace

QStringList chirpColumns()
{
    QStringList names;
    for (QStringView name : Names)
        names.append(name.toString());
    return names;
}

QString writeChirpCsv(const QList<NumberedChannel> &channels, QChar separator, QStringView lineEnd)
{
    QString text = csv::line(chirpColumns(), separator) + lineEnd.toString();
    for (const NumberedChannel &channel : channels)
        text += csv::line(chirpRow(channel), separator) + lineEnd.toString();
    return text;
}

QByteArray chirpCsvFile(const QList<NumberedChannel> &channels)
{
    return writeChirpCsv(channels, u',', u"\r\n").toUtf8();
}

} // namespace wr
