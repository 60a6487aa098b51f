#pragma once

#include "channels/ChannelTable.h"
#include "core/BandLimits.h"
#include "core/Language.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

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
// Spreadsheets also hand over the channel list's own cells (separated by
// TABs here), under its captions in any of the three languages or with no
// header at all, from the grid's current column on:
//
//   Rx Freq   Tx Freq   CTCSS/DCS Dec           146.52   146.52   88.5
//   146.52    146.52    88.5                    146.55   146.55   D023N
//
// A cell left empty changes nothing; without a CH. (or Location) column the
// rows go to consecutive channels.
//
// Everything works on the channel list's texts, so an import changes the
// channels exactly as typing the same values would. Frequencies are whole
// numbers throughout.

// The header, in the order written.
QStringList chirpColumns();

// The header and a row for each channel (value words of any language),
// fields joined by separator and quoted only when they hold the separator, a
// quote or a line break; every line ends in lineEnd.
QString writeChirpCsv(const QList<NumberedChannel> &channels, QChar separator, QStringView lineEnd);
// A file: UTF-8, commas, CR LF.
QByteArray chirpCsvFile(const QList<NumberedChannel> &channels);

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
    int gridColumn = -1; // the channel list's column, for a block without a header

    bool skipsRow() const { return reason <= Reason::Replaced; }
    // What was done, in a language.
    QString text(Language language) const;
    // The column as the file names it, or as the channel list captions it.
    QString columnName(Language language) const;
};

// A row that becomes a channel, as language-free values: frequencies as
// "0.00000" texts (tx empty: no transmit frequency), tones "" (none), "88.5"
// or "D023N".
//
// A row of the channel list's cells may give some of them only (given, a bit
// for each ChannelColumn): a channel in use keeps the others; one created
// gets for them what typing its receive frequency gives (tx then holds the
// receive frequency in the transmit bands).
struct ImportedChannel
{
    static constexpr quint16 AllCells = 0x1FE; // ColRx to ColBcl

    int line = 0;
    QString rx, tx, decode, encode;
    bool highPower = true;
    bool wide = true;
    bool scanAdd = true;
    ChannelRecord::Bcl bcl = ChannelRecord::Bcl::Off;
    quint16 given = AllCells;

    bool gives(int column) const { return (given >> column) & 1; }
    // The row's cells as the channel list shows them in a language.
    ChannelTexts texts(Language language) const;
    // A channel with the row's cells: created from them when it is not in
    // use, else with the cells the row gives.
    Channel appliedTo(Channel channel, Language language) const;
};

// What reading a file or a pasted text gives.
struct CsvImport
{
    bool refused = false; // a header naming neither a Frequency column nor a cell of the list
    bool byLocation = true; // the rows named their channels
    QList<int> readAs;      // the grid columns a block without a header was read as
    std::map<int, ImportedChannel> channels; // by channel number
    QList<ImportNote> notes;                 // in the order of the file's lines
    int imported = 0; // rows that become channels, the changed ones included
    int changed = 0;
    int skipped = 0;
};

// Where the rows of a text go, and how a block without a header is read.
struct CsvTarget
{
    // 0: each row to its Location. A channel: the rows there and on, keeping
    // the distances of their Locations (a paste).
    int pasteAt = 0;
    // Rows without a Location column go into consecutive channels from
    // here, a row for each line.
    int firstChannel = 1;
    // A block without a header holds the grid's cells from this column on
    // (the number column counts as the receive frequency); one wider than
    // the grid holds CHIRP's columns in their order.
    int firstColumn = ColRx;
    // The channels as they stand: a row giving some cells only changes a
    // channel in use and cannot create one. Null: no channel is in use.
    const ChannelTable *table = nullptr;
};

// Reads rows with the import rules: receive frequencies outside the receive
// bands of limits, tones and codes the radio does not have and anything
// doubtful skip their row; frequencies between raster steps are moved onto
// the raster as typing does. A first line is a header when its fields name
// known columns (CHIRP's, or the channel list's captions in any language)
// and hold no number. Rows go where target says (placeRows, ChannelPlans.h).
CsvImport readChannelCsv(QStringView text, const BandLimitArray &limits, const CsvTarget &target = {});

// What an import does to a table: each imported channel gets its new cells
// in a language (ImportedChannel::appliedTo); a channel not in use is
// created (its bytes 12-15 as typing a receive frequency gives them), one in
// use keeps its bytes.
ChannelChanges importedChannels(const ChannelTable &table, const CsvImport &import, Language language);

// Writes an import straight into an image, as the channel list would on its
// next save; only the imported channels' records and bits change.
void applyImport(MemoryImage &image, const CsvImport &import);

} // namespace wr
