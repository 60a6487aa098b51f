#pragma once

#include "channels/ChannelRecord.h"
#include "core/BandLimits.h"
#include "core/Language.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <map>

namespace wr {

// Channel lists in the CSV layout that other radio programmers, repeater
// directories and spreadsheets exchange ("CHIRP CSV"). One row a channel:
//
//   Location,Name,Frequency,Duplex,Offset,Tone,rToneFreq,cToneFreq,DtcsCode,
//   DtcsPolarity,RxDtcsCode,CrossMode,Mode,TStep,Skip,Power,Comment,URCALL,
//   RPT1CALL,RPT2CALL,DVCODE
//   3,,145.500000,+,0.500000,Cross,88.5,88.5,023,NN,023,Tone->DTCS,FM,5.00,,5.0W,BCL:Carrier,,,,
//
// Frequencies are MHz with six decimals; Duplex says how transmit follows
// receive ("" equal, + / - by Offset, split: Offset is the transmit
// frequency, off: no transmit). Tone names the squelch: "" none, Tone = CTCSS
// sent only (rToneFreq), TSQL = CTCSS both ways (cToneFreq), DTCS = the same
// DCS code both ways (DtcsCode, DtcsPolarity transmit then receive, R for our
// inverted), Cross = each side spelled out by CrossMode "transmit->receive"
// (rToneFreq / DtcsCode transmit, cToneFreq / RxDtcsCode receive). Busy
// channel lockout has no column and travels in Comment as "BCL:Carrier".
//
// Reading also takes the channel list's own nine columns (its captions in
// any of the three languages, or none), as a spreadsheet made from a copy of
// the list holds them.
//
// Everything works on the channel list's texts, so an import changes the
// channels exactly as typing the same values would. Frequencies are whole
// numbers throughout.

// A channel in use with its number.
struct NumberedChannel
{
    int channel = 0;
    ChannelTexts texts;
};

// The channels in use of an image, as the channel list shows them in English.
QList<NumberedChannel> ChannelsInUse(const MemoryImage &image);

// The header, in the order written.
QStringList ChirpColumns();

// The header and a row for each channel (value words of any language),
// fields joined by separator and quoted only when they hold the separator, a
// quote or a line break; every line ends in lineEnd.
QString WriteChirpCsv(const QList<NumberedChannel> &channels, QChar separator, QStringView lineEnd);
// A file: UTF-8, commas, CR LF.
QByteArray ChirpCsvFile(const QList<NumberedChannel> &channels);

// A file larger than this is not a channel list.
constexpr qsizetype MaxCsvFileSize = 4 * 1024 * 1024;

// A file's bytes as text: UTF-8, a byte-order mark dropped.
QString DecodeCsvFile(const QByteArray &bytes);

// One row that an import changes or skips, or a remark on the whole file,
// with where it stands in the file (line 1 is the first line).
struct ImportNote
{
    enum class Reason : quint8 {
        // The row is skipped.
        NotAChannelNumber,
        PastLastChannel,
        EmptyFrequency,
        ShortRow,          // argument: fields present, fields expected
        NotAFrequency,
        RxOutOfBand,
        NotATone,
        ToneNotListed,
        CodeNotListed,
        PolarityUnknown,
        SquelchUnsupported,
        CrossModeUnknown,
        DuplexUnknown,
        ModeUnsupported,
        Replaced,          // argument: channel, line of the row that wins
        // The row is imported with a change.
        MovedOntoRaster,   // argument: the frequency taken
        TxOutOfBand,       // argument: the transmit frequency dropped
        ToneTaken,         // argument: the tone taken
        NotUnderstood,     // word: the value taken
        // Remarks on the whole file.
        LocationZero,
        ColumnsIgnored,    // value: their names
        NamesNotKept,      // argument: how many rows
        CommentsNotKept,   // argument: how many rows
    };

    int line = 0;
    QString column; // as the file names it
    QString value;  // as the file holds it
    Reason reason = Reason::NotAFrequency;
    QString argument1;
    QString argument2;
    const Text *word = nullptr;

    bool skipsRow() const { return reason <= Reason::Replaced; }
    // What was done, in a language.
    QString text(int languageIndex) const;
};

// A row that becomes a channel, as language-free values: frequencies as
// "0.00000" texts (tx empty: no transmit frequency), tones "" (none), "88.5"
// or "D023N".
struct ImportedChannel
{
    int line = 0;
    QString rx, tx, decode, encode;
    bool highPower = true;
    bool wide = true;
    bool scanAdd = true;
    ChannelRecord::Bcl bcl = ChannelRecord::Bcl::Off;

    // The row's cells as the channel list shows them in a language.
    ChannelTexts texts(int languageIndex) const;
};

// What reading a file or a pasted text gives.
struct CsvImport
{
    bool refused = false; // a header without a Location or a Frequency column
    std::map<int, ImportedChannel> channels; // by channel number
    QList<ImportNote> notes;                 // in the order of the file's lines
    int imported = 0; // rows that become channels, the changed ones included
    int changed = 0;
    int skipped = 0;
};

// Reads rows with the import rules: receive frequencies outside the receive
// bands of limits, tones and codes the radio does not have and anything
// doubtful skip their row; frequencies between raster steps are moved onto
// the raster as typing does. With pasteAt 0 each row goes to its Location;
// with a channel number the rows go there and on, keeping the distances of
// their Locations (in their order when there is no Location).
CsvImport ReadChannelCsv(QStringView text, const BandLimitArray &limits, int pasteAt = 0);

// What an import writes: each channel's new cells in a language, and whether
// the channel is created first (it was not in use), as typing a receive
// frequency into an empty row creates it.
struct ChannelWrite
{
    int channel = 0;
    ChannelTexts texts;
    bool creates = false;
};
QList<ChannelWrite> ImportWrites(const CsvImport &import, int languageIndex, const std::function<bool(int)> &inUse);

// Writes an import straight into an image, as the channel list would on its
// next save: new channels get their creation bytes, channels in use keep
// their signalling byte.
void ApplyImport(MemoryImage &image, const CsvImport &import);

} // namespace wr
