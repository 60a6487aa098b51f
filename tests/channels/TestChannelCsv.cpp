// Channel lists as CHIRP CSV: rows written for our channels, rows read back
// with the import rules, whole files and pasted text, and a round trip of a
// full radio.

#include "TestSuite.h"

#include "channels/ChannelCsv.h"
#include "core/CsvText.h"
#include "core/FrequencyCodec.h"
#include "core/ToneCodec.h"

#include <QRandomGenerator>
#include <QTest>

using namespace wr;
using namespace Qt::StringLiterals;

namespace {

const QString Header = chirpColumns().join(u',');

ChannelTexts textsOf(const QString &joined)
{
    const QStringList c = joined.split(u'|');
    return {c.value(0), c.value(1), c.value(2), c.value(3), c.value(4), c.value(5), c.value(6), c.value(7)};
}

QString joined(const ChannelTexts &t)
{
    return QStringList{t.rx, t.tx, t.decode, t.encode, t.power, t.bandwidth, t.scanAdd, t.bcl}.join(u'|');
}

// "line column: what happened" for every note.
QStringList notesOf(const CsvImport &import)
{
    QStringList notes;
    for (const ImportNote &note : import.notes)
        notes << u"%1 %2: %3"_s.arg(note.line).arg(note.columnName(English), note.text(English));
    return notes;
}

// "channel=rx" for every channel an import writes.
QStringList channelsOf(const CsvImport &import)
{
    QStringList channels;
    for (const auto &[channel, values] : import.channels)
        channels << u"%1=%2"_s.arg(channel).arg(values.rx);
    return channels;
}

} // namespace

class TestChannelCsv : public test::Suite
{
    Q_OBJECT

private Q_SLOTS:
    // Our channel (rx|tx|decode|encode|power|width|scan|BCL) as the row
    // written after its Location.
    void exportRow_data()
    {
        QTest::addColumn<QString>("channel");
        QTest::addColumn<QString>("row");
        const QString basic = u"|High|Wide|On|Off"_s;
        QTest::newRow("no tone, simplex") << u"145.50000|145.50000|None|None"_s + basic
                                          << u",145.500000,,0.000000,,88.5,88.5,023,NN,023,Tone->Tone,FM,5.00,,5.0W,,,,,"_s;
        QTest::newRow("Tone, minus offset") << u"146.94000|146.34000|None|100.0"_s + basic
                                            << u",146.940000,-,0.600000,Tone,100.0,100.0,023,NN,023,Tone->Tone,FM,5.00,,5.0W,,,,,"_s;
        QTest::newRow("TSQL, plus offset") << u"440.00000|445.00000|67.0|67.0"_s + basic
                                           << u",440.000000,+,5.000000,TSQL,67.0,67.0,023,NN,023,Tone->Tone,FM,5.00,,5.0W,,,,,"_s;
        QTest::newRow("DTCS with both polarities, split")
            << u"145.50000|435.00000|D023N|D023I"_s + basic
            << u",145.500000,split,435.000000,DTCS,88.5,88.5,023,RN,023,Tone->Tone,FM,5.00,,5.0W,,,,,"_s;
        QTest::newRow("receive only, narrow, low, skipped, Carrier")
            << u"145.50000||67.0||Low|Narrow|Off|Carrier"_s
            << u",145.500000,off,0.000000,Cross,67.0,67.0,023,NN,023,->Tone,NFM,5.00,S,1.0W,BCL:Carrier,,,,"_s;
        QTest::newRow("Cross Tone->Tone") << u"145.00625|145.00625|88.5|100.0|High|Wide|On|Opt.Signal"_s
                                          << u",145.006250,,0.000000,Cross,100.0,88.5,023,NN,023,Tone->Tone,FM,6.25,,5.0W,BCL:Opt.Signal,,,,"_s;
        QTest::newRow("Cross Tone->DTCS") << u"145.01250|145.01250|D754I|88.5"_s + basic
                                          << u",145.012500,,0.000000,Cross,88.5,88.5,754,NR,754,Tone->DTCS,FM,12.50,,5.0W,,,,,"_s;
        QTest::newRow("Cross DTCS->Tone") << u"145.50000|145.50000|127.3|D023I"_s + basic
                                          << u",145.500000,,0.000000,Cross,127.3,127.3,023,RN,023,DTCS->Tone,FM,5.00,,5.0W,,,,,"_s;
        QTest::newRow("Cross DTCS->DTCS") << u"145.50000|145.50000|D754N|D023N"_s + basic
                                          << u",145.500000,,0.000000,Cross,88.5,88.5,023,NN,754,DTCS->DTCS,FM,5.00,,5.0W,,,,,"_s;
        QTest::newRow("Cross DTCS->") << u"145.50000|145.50000|None|D051I"_s + basic
                                      << u",145.500000,,0.000000,Cross,88.5,88.5,051,RN,051,DTCS->,FM,5.00,,5.0W,,,,,"_s;
        QTest::newRow("Cross ->DTCS") << u"145.50000|145.50000|D051I|None"_s + basic
                                      << u",145.500000,,0.000000,Cross,88.5,88.5,051,NR,051,->DTCS,FM,5.00,,5.0W,,,,,"_s;
        QTest::newRow("words of another language, 2.5 kHz step")
            << u"145.50313|145.50313|无|無|低|窄|關|載波"_s
            << u",145.503130,,0.000000,,88.5,88.5,023,NN,023,Tone->Tone,NFM,2.50,S,1.0W,BCL:Carrier,,,,"_s;
    }

    void exportRow()
    {
        QFETCH(QString, channel);
        QFETCH(QString, row);
        const QString text = writeChirpCsv({{7, textsOf(channel)}}, u',', u"\n");
        QCOMPARE(text, Header + u"\n7,"_s + row + u'\n');
    }

    // One row under the full header: the channel it gives (in the channel
    // list's English texts) or "-" when it is skipped, and the notes.
    void importRow_data()
    {
        QTest::addColumn<QString>("row");
        QTest::addColumn<QString>("channel");
        QTest::addColumn<QStringList>("notes");
        const auto row = [](const char *middle) { return u"5,,"_s + QString::fromUtf8(middle); };
        const QString fmTail = u",FM,5.00,,5.0W,,,,,"_s;
        const QString basic = u"|High|Wide|On|Off"_s;
        // Squelch modes, the traps of leftover columns included.
        QTest::newRow("Tone sends rToneFreq") << row("146.940000,-,0.600000,Tone,100.0,88.5,023,NN,023,Tone->Tone") + fmTail
                                              << u"146.94000|146.34000|None|100.0"_s + basic << QStringList();
        QTest::newRow("TSQL takes cToneFreq") << row("146.520000,,0.600000,TSQL,100.0,67.0,023,NN,023,Tone->Tone") + fmTail
                                              << u"146.52000|146.52000|67.0|67.0"_s + basic << QStringList();
        QTest::newRow("DTCS takes DtcsCode, polarity tx rx") << row("440.000000,+,5.000000,DTCS,88.5,88.5,754,RN,023,Tone->Tone") + fmTail
                                                             << u"440.00000|445.00000|D754N|D754I"_s + basic << QStringList();
        QTest::newRow("Cross Tone->Tone") << row("145.500000,,,Cross,88.5,100.0,023,NN,023,Tone->Tone") + fmTail
                                          << u"145.50000|145.50000|100.0|88.5"_s + basic << QStringList();
        QTest::newRow("Cross Tone->DTCS") << row("145.500000,,,Cross,88.5,88.5,023,NR,754,Tone->DTCS") + fmTail
                                          << u"145.50000|145.50000|D754I|88.5"_s + basic << QStringList();
        QTest::newRow("Cross DTCS->Tone") << row("145.500000,,,Cross,88.5,127.3,023,RN,754,DTCS->Tone") + fmTail
                                          << u"145.50000|145.50000|127.3|D023I"_s + basic << QStringList();
        QTest::newRow("Cross DTCS->DTCS") << row("145.500000,,,Cross,88.5,88.5,023,NN,754,DTCS->DTCS") + fmTail
                                          << u"145.50000|145.50000|D754N|D023N"_s + basic << QStringList();
        QTest::newRow("Cross Tone->") << row("145.500000,,,Cross,103.5,88.5,023,NN,023,Tone->") + fmTail
                                      << u"145.50000|145.50000|None|103.5"_s + basic << QStringList();
        QTest::newRow("Cross DTCS->") << row("145.500000,,,Cross,88.5,88.5,051,RN,023,DTCS->") + fmTail
                                      << u"145.50000|145.50000|None|D051I"_s + basic << QStringList();
        QTest::newRow("Cross ->Tone") << row("145.500000,,,Cross,88.5,67.0,023,NN,023,->Tone") + fmTail
                                      << u"145.50000|145.50000|67.0|None"_s + basic << QStringList();
        QTest::newRow("Cross ->DTCS") << row("145.500000,,,Cross,88.5,88.5,023,NR,051,->DTCS") + fmTail
                                      << u"145.50000|145.50000|D051I|None"_s + basic << QStringList();
        QTest::newRow("tone within 0.1 Hz is taken") << row("145.500000,,,Tone,88.4,88.5,023,NN,023,") + fmTail
                                                     << u"145.50000|145.50000|None|88.5"_s + basic
                                                     << QStringList{u"3 rToneFreq: CTCSS tone taken as 88.5"_s};
        QTest::newRow("tone not in the list") << row("145.500000,,,TSQL,88.5,69.0,023,NN,023,") + fmTail << u"-"_s
                                              << QStringList{u"3 cToneFreq: CTCSS tone not among the radio's 50: row skipped"_s};
        QTest::newRow("code not in the list") << row("145.500000,,,DTCS,88.5,88.5,017,NN,023,") + fmTail << u"-"_s
                                              << QStringList{u"3 DtcsCode: DCS code not among the radio's 105: row skipped"_s};
        QTest::newRow("reverse squelch") << row("145.500000,,,DTCS-R,88.5,88.5,023,NN,023,") + fmTail << u"-"_s
                                         << QStringList{u"3 Tone: squelch mode the radio does not have: row skipped"_s};
        QTest::newRow("unknown cross mode") << row("145.500000,,,Cross,88.5,88.5,023,NN,023,Tone->NoTone") + fmTail << u"-"_s
                                            << QStringList{u"3 CrossMode: unknown cross mode: row skipped"_s};
        // Duplex and frequencies.
        QTest::newRow("minus with a negative offset") << row("145.600000,-,-0.600000,,,,,,,") + fmTail
                                                      << u"145.60000|145.00000|None|None"_s + basic << QStringList();
        QTest::newRow("transmit off") << row("145.600000,off,0.600000,Tone,100.0,,,,,") + fmTail
                                      << u"145.60000||None|"_s + basic << QStringList();
        QTest::newRow("unknown duplex") << row("145.600000,x,0.600000,,,,,,,") + fmTail << u"-"_s
                                        << QStringList{u"3 Duplex: unknown duplex: row skipped"_s};
        QTest::newRow("between raster steps") << row("145.503000,+,0.600000,,,,,,,") + fmTail
                                              << u"145.50000|146.10000|None|None"_s + basic
                                              << QStringList{u"3 Frequency: moved onto the channel raster: 145.50000"_s};
        QTest::newRow("receive out of band") << row("50.000000,,,,,,,,,") + fmTail << u"-"_s
                                             << QStringList{u"3 Frequency: outside the receive bands: row skipped"_s};
        QTest::newRow("transmit out of band")
            << row("145.500000,split,520.000000,Tone,100.0,,,,,") + fmTail << u"145.50000||None|"_s + basic
            << QStringList{u"3 Offset: transmit frequency 520.000000 outside the transmit bands: channel kept without transmit frequency"_s};
        QTest::newRow("empty frequency") << row(",,,,,,,,,") + u",FM,5.00,,5.0W,x,,,,"_s << u"-"_s
                                         << QStringList{u"3 Frequency: no receive frequency: row skipped"_s};
        QTest::newRow("not a frequency") << row("abc,,,,,,,,,") + fmTail << u"-"_s
                                         << QStringList{u"3 Frequency: not a frequency: row skipped"_s};
        // Mode, skip, power, busy channel lockout.
        QTest::newRow("narrow, skipped, low power, BCL") << row("145.500000,,,,,,,,,,NFM,5.00,S,0.5W,BCL:Opt.Signal,,,,")
                                                         << u"145.50000|145.50000|None|None|Low|Narrow|Off|Opt.Signal"_s
                                                         << QStringList();
        QTest::newRow("power words of any language, priority scan") << row("145.500000,,,,,,,,,,,5.00,P,低,,,,,")
                                                                    << u"145.50000|145.50000|None|None|Low|Wide|On|Off"_s
                                                                    << QStringList();
        QTest::newRow("power not understood") << row("145.500000,,,,,,,,,,FM,5.00,,lots,,,,,")
                                              << u"145.50000|145.50000|None|None"_s + basic
                                              << QStringList{u"3 Power: not understood: High taken"_s};
        QTest::newRow("another mode") << row("145.500000,,,,,,,,,,AM,5.00,,5W,,,,,") << u"-"_s
                                      << QStringList{u"3 Mode: mode the radio does not have: row skipped"_s};
        QTest::newRow("short row") << row("145.500000,,") << u"-"_s
                                   << QStringList{u"3 Tone: only 5 of 21 fields: row skipped"_s};
    }

    void importRow()
    {
        QFETCH(QString, row);
        QFETCH(QString, channel);
        QFETCH(QStringList, notes);
        const CsvImport import = readChannelCsv(u"# one row\n"_s + Header + u'\n' + row + u'\n', DefaultBandLimits);
        QVERIFY(!import.refused);
        QCOMPARE(notesOf(import), notes);
        if (channel == u"-") {
            QVERIFY(import.channels.empty());
            QCOMPARE(import.skipped, 1);
        } else {
            QCOMPARE(joined(import.channels.at(5).texts(English)), channel);
            QCOMPARE(QList<int>({import.imported, import.changed}), QList<int>({1, int(!notes.isEmpty())}));
        }
    }

    // Whole texts: where each row goes, and what is reported. A paste at a
    // channel, or an import (at 0); the grid's current column; the channels
    // in use.
    void importFile_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("at");
        QTest::addColumn<int>("column");
        QTest::addColumn<QList<int>>("inUse");
        QTest::addColumn<QStringList>("channels");
        QTest::addColumn<QStringList>("notes");
        const QList<int> none;
        QTest::newRow("semicolons, decimal comma, BOM, CR LF, comments between rows")
            << u"\uFEFFLocation;Frequency;Duplex;Offset;Tone;rToneFreq\r\n1;145,500000;+;0,600000;Tone;88,5\r\n"
               "# a remark\r\n2;433,000000;;;;\r\n"_s
            << 0 << 1 << none << QStringList{u"1=145.50000"_s, u"2=433.00000"_s} << QStringList();
        QTest::newRow("tabs, any column order, unknown columns")
            << u"\"Location\"\tExtra\tfrequency\tFoo\n9\tx\t145.5\ty\n"_s << 0 << 1 << none
            << QStringList{u"9=145.50000"_s} << QStringList{u"1 : columns not used"_s};
        QTest::newRow("quoted fields with separators, quotes and line breaks")
            << Header + u"\n3,\"Club, \"\"North\"\"\",145.500000,,,,,,,,,,FM,5.00,,5.0W,\"two\nlines\",,,,\n"
                        "4,,146.000000,,,,,,,,,,FM,5.00,,5.0W,,,,,\n"_s
            << 0 << 1 << none << QStringList{u"3=145.50000"_s, u"4=146.00000"_s}
            << QStringList{u"2 Name: not kept: the radio has no channel names (rows with a name: 1)"_s,
                           u"2 Comment: not kept: the radio has no comments (rows with a comment: 1)"_s};
        QTest::newRow("counting from 0") << u"Location,Frequency\n0,145.5\n127,146\n128,147\n"_s << 0 << 1 << none
                                         << QStringList{u"1=145.50000"_s, u"128=146.00000"_s}
                                         << QStringList{u"2 Location: the file counts from 0: every channel number is one more"_s,
                                                        u"4 Location: not a channel number 1-128: row skipped"_s};
        QTest::newRow("the later of two rows wins") << u"Location,Frequency\n7,145.5\n7,146\nx,147\n"_s << 0 << 1 << none
                                                    << QStringList{u"7=146.00000"_s}
                                                    << QStringList{u"2 Location: channel 7 is given again on line 3: row replaced"_s,
                                                                   u"4 Location: not a channel number 1-128: row skipped"_s};
        QTest::newRow("no Frequency column") << u"Location,Name\n1,x\n"_s << 0 << 1 << none << QStringList()
                                             << QStringList();
        QTest::newRow("rows too wide for the grid are CHIRP's columns, past the last channel")
            << u"1,,145.500000,,,,,,\n2,,146.500000,,,,,,\n"_s << 128 << 1 << none << QStringList{u"128=145.50000"_s}
            << QStringList{u"2 Location: would go past channel 128: row skipped"_s};
        // Without a Location column, a row for each line from the channel
        // pasted at; without a header, the grid's cells from the current
        // column on (the number column counts as the receive frequency).
        QTest::newRow("a column of frequencies, a blank line keeping its channel")
            << u"146.52\n146.55\r\n\n146.58\n"_s << 7 << 0 << none
            << QStringList{u"7=146.52000"_s, u"8=146.55000"_s, u"10=146.58000"_s} << QStringList();
        QTest::newRow("a header naming CHIRP's columns without Location")
            << u"Frequency,Name,Tone,rToneFreq\n146.52,Club,Tone,88.5\n146.55,,,\n"_s << 7 << 1 << none
            << QStringList{u"7=146.52000"_s, u"8=146.55000"_s}
            << QStringList{u"2 Name: not kept: the radio has no channel names (rows with a name: 1)"_s};
        QTest::newRow("the list's captions in Chinese, with the channel numbers")
            << u"信道\t接收頻率\tctcss/dcs 解碼\t發射功率\n3\t146.52\tD023N\t低\n4\t146.55\t無\tHigh\n"_s << 0 << 1
            << none << QStringList{u"3=146.52000"_s, u"4=146.55000"_s} << QStringList();
        QTest::newRow("cells from the transmit column change channels in use only")
            << u"146.6\t88.5\n146.7\tD023N\n"_s << 7 << 2 << QList<int>{7} << QStringList{u"7="_s}
            << QStringList{u"2 Rx Freq: no receive frequency: row skipped"_s};
        QTest::newRow("words of the list, one not understood, past the last channel")
            << u"146.52\t\tNone\tNone\tLow\tNarrow\tmaybe\tCarrier\n146.55\n"_s << 128 << 1 << none
            << QStringList{u"128=146.52000"_s}
            << QStringList{u"1 Scan Add: not understood: On taken"_s, u"2 CH.: would go past channel 128: row skipped"_s};
    }

    void importFile()
    {
        QFETCH(QString, text);
        QFETCH(int, at);
        QFETCH(int, column);
        QFETCH(QList<int>, inUse);
        QFETCH(QStringList, channels);
        ChannelTable table;
        for (int channel : inUse)
            table.set(channel, {textsOf(u"145.00000|145.00000|None|None|High|Wide|On|Off"_s), Channel::Created});
        const CsvImport import = readChannelCsv(
            text, DefaultBandLimits,
            {.pasteAt = at, .firstChannel = std::max(at, 1), .firstColumn = column, .table = &table});
        QCOMPARE(import.refused, channels.isEmpty());
        QCOMPARE(channelsOf(import), channels);
        QTEST(notesOf(import), "notes");
    }

    // A row of some of the list's cells changes those of a channel in use,
    // as typing them would, and keeps the bytes no cell shows; a channel not
    // in use is created from it as typing its receive frequency creates it.
    void cellsOfTheList_data()
    {
        QTest::addColumn<QString>("row"); // CH., Rx Freq, Tx Freq, CTCSS/DCS Enc, W/N
        QTest::addColumn<QString>("channel");
        QTest::newRow("only the cells given") << u"7\t\t146.1\t\tWide"_s
                                              << u"145.00000|146.10000|D023N|88.5|Low|Wide|Off|Carrier"_s;
        QTest::newRow("a receive frequency alone") << u"7\t146.52"_s
                                                   << u"146.52000|145.60000|D023N|88.5|Low|Narrow|Off|Carrier"_s;
        QTest::newRow("no transmit side, no encode tone") << u"7\t\t520\tD754I"_s
                                                          << u"145.00000||D023N||Low|Narrow|Off|Carrier"_s;
        QTest::newRow("a channel created") << u"8\t146.52\t\tD754I"_s
                                           << u"146.52000|146.52000|None|D754I|High|Wide|On|Off"_s;
        QTest::newRow("no channel created without its receive frequency") << u"8\t\t146.1"_s << QString();
    }

    void cellsOfTheList()
    {
        QFETCH(QString, row);
        QFETCH(QString, channel);
        ChannelTable table;
        const Channel seven{textsOf(u"145.00000|145.60000|D023N|88.5|Low|Narrow|Off|Carrier"_s), {1, 2, 0x81, 0x82}};
        table.set(7, seven);
        const CsvImport import = readChannelCsv(u"CH.\tRx Freq\tTx Freq\tCTCSS/DCS Enc\tW/N\n"_s + row,
                                                DefaultBandLimits, {.table = &table});
        const ChannelChanges changes = importedChannels(table, import, English);
        const int number = row.section(u'\t', 0, 0).toInt();
        QCOMPARE(changes.contains(number), !channel.isEmpty());
        if (channel.isEmpty())
            return;
        QCOMPARE(joined(changes.value(number).texts), channel);
        QCOMPARE(changes.value(number).hidden, number == 7 ? seven.hidden : Channel::Created);
    }

    // A radio full of varied channels leaves through a file and comes back
    // into a fresh image byte for byte; the file says nothing needed a change.
    void roundTrip()
    {
        QRandomGenerator random(20250101);
        const QStringList tones = BuildToneTable(English);
        MemoryImage original = test::freshImage();
        for (int n = 1; n <= ChannelRecord::ChannelCount; ++n) {
            if (random.bounded(8) == 0)
                continue; // empty
            const bool uhf = random.bounded(2);
            const qint64 base = uhf ? 40000000 : 13600000; // 10 Hz units
            const qint64 raster = random.bounded(2) ? 500 : 625;
            const qint64 rx = base + random.bounded(int((uhf ? 8900000 : 3800000) / raster)) * raster;
            QString tx;
            switch (random.bounded(4)) {
            case 0: tx = freq::formatTenHz(rx); break;
            case 1: tx = freq::formatTenHz(std::clamp<qint64>(rx + (random.bounded(2) ? 500000 : -500000), base, base + 3800000)); break;
            case 2: tx = freq::formatTenHz(uhf ? 14600000 : 43500000); break; // split across the bands
            default: break; // receive only
            }
            const int lang = random.bounded(3);
            const ChannelTexts texts{freq::formatTenHz(rx), tx, tones.at(random.bounded(tones.size())),
                                     tx.isEmpty() ? QString() : tones.at(random.bounded(tones.size())),
                                     PowerText(random.bounded(2), lang), BandwidthText(random.bounded(2), lang),
                                     ScanAddText(random.bounded(2), lang),
                                     BclText(ChannelRecord::Bcl(random.bounded(3)), lang)};
            CreateChannel(original, n);
            SaveChannel(original, n, texts);
        }
        const QByteArray file = chirpCsvFile(ChannelTable::load(original, English).inUse());
        QVERIFY(file.endsWith("\r\n") && !file.contains("\"") && !file.startsWith("\xEF\xBB\xBF"));

        const CsvImport import = readChannelCsv(csv::decode(file), DefaultBandLimits);
        QCOMPARE(notesOf(import), QStringList());
        MemoryImage imported = test::freshImage();
        applyImport(imported, import);
        for (int row : {202, 203})
            QCOMPARE(imported.row(row).toHex(), original.row(row).toHex());
        QCOMPARE(imported.bytes().left(16 * 128).toHex(' '), original.bytes().left(16 * 128).toHex(' '));
    }

    // A channel in use keeps its signalling byte; one created gets the
    // creation bytes, as typing its receive frequency gives.
    void importKeepsSignallingOfChannelsInUse()
    {
        MemoryImage image = test::freshImage();
        CreateChannel(image, 1);
        SaveChannel(image, 1, textsOf(u"145.00000|145.00000|None|None|High|Wide|On|Off"_s));
        ChannelRecord(image, 1).setSignallingFlags(0x82);
        image.WriteByte(1 - 1, 12, 0x5A);
        applyImport(image, readChannelCsv(u"Location,Frequency\n1,146\n2,147\n"_s, DefaultBandLimits));
        QCOMPARE(image.row(0).toHex(), QByteArray("1460000014600000ffffffff5a004c82"));
        QCOMPARE(image.row(1).mid(12).toHex(), QByteArray("00004c00"));
    }
};

QTEST_GUILESS_MAIN(TestChannelCsv)
#include "TestChannelCsv.moc"
