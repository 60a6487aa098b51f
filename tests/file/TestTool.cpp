// Runs the built wrpd6t-tool as a separate process, as a user would.

#include "TestSuite.h"
#include "Programs.h"

#include "core/MemoryImage.h"
#include "file/Backups.h"
#include "file/DataFile.h"

#include <QDir>
#include <QTest>

#include <sys/stat.h>

using namespace wr;
using namespace Qt::Literals::StringLiterals;
namespace DF = wr::DataFile;
using wr::test::Run;
using wr::test::runTool;

namespace {

// Channel 3: 145.50000 / 146.00000, decode 88.5, encode D023N, high, wide,
// scanned, BCL carrier. Channel 10: 435.12500 receive only, no tone, low,
// narrow, not scanned, BCL off. Both marked in use in the empty bitmap.
MemoryImage imageWithChannels()
{
    MemoryImage image = test::freshImage();
    image.setRow(2, QByteArray::fromHex("14550000" "14600000" "8508" "2380" "0000" "4D" "00"));
    image.setRow(9, QByteArray::fromHex("43512500" "FFFFFFFF" "FFFF" "FFFF" "0000" "00" "00"));
    image.WriteByte(202, 0, 0xFF & ~(1 << 2)); // channel 3 in use
    image.WriteByte(202, 1, 0xFF & ~(1 << 1)); // channel 10 in use
    // FM radio: VFO 101.70 MHz, channel 1 on 98.10 MHz.
    image.setRow(409, QByteArray::fromHex("10170000") + QByteArray(12, '\xFF'));
    image.setRow(401, QByteArray::fromHex("FFFFFFFF" "09810000") + QByteArray(8, '\xFF'));
    image.WriteByte(400, 0, 0xFF & ~(1 << 1));
    return image;
}

} // namespace

class TestTool : public test::Suite
{
    Q_OBJECT

    void setUp() override
    {
        const QString folder = tempFolder();
        QString error;
        QVERIFY(DF::Write(folder + u"/channels.tw"_s, imageWithChannels(), &error));
        QVERIFY(test::writeFile(folder + u"/short.bin"_s, DF::Container(imageWithChannels()).chopped(1)));
        QVERIFY(test::writeFile(folder + u"/png.tw"_s, QByteArray::fromHex("89504E470D0A1A0A0000000D49484452")));
        QVERIFY(test::writeFile(folder + u"/truncated.tw"_s, test::readFile(folder + u"/channels.tw"_s).first(60)));
        QVERIFY(test::writeFile(folder + u"/plain"_s, "previous content"));
        QVERIFY(QDir(folder).mkdir(u"folder.bin"_s));
        QCOMPARE(::mkfifo(QFile::encodeName(folder + u"/pipe.tw"_s).constData(), 0600), 0);
        QVERIFY(test::writeFile(folder + u"/names.csv"_s, "Location,Name\r\n1,Club\r\n"));
        QVERIFY(test::writeFile(folder + u"/far.csv"_s, "Location,Frequency\n1,27.125\n"));
    }

private Q_SLOTS:
    void exitCodes_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("message"); // in the standard output for 0, the error output otherwise

        QTest::newRow("no command") << QStringList{} << 2 << u"Usage"_s;
        QTest::newRow("unknown command") << QStringList{u"frobnicate"_s} << 2 << u"frobnicate"_s;
        QTest::newRow("file missing") << QStringList{u"unpack"_s, u"@/channels.tw"_s} << 2 << u"missing argument"_s;
        QTest::newRow("language out of range") << QStringList{u"info"_s, u"-l"_s, u"3"_s, u"@/channels.tw"_s} << 2
                                               << u"language"_s;
        QTest::newRow("unknown option") << QStringList{u"dump"_s, u"--colour"_s, u"@/channels.tw"_s} << 2 << u"colour"_s;
        // Info lists the channels in use; the headers stay English.
        QTest::newRow("info, English")
            << QStringList{u"info"_s, u"@/channels.tw"_s} << 0
            << u"CH.\tRx Freq\tTx Freq\tCTCSS/DCS Dec\tCTCSS/DCS Enc\tTX Power\tW/N\tScan Add\tBCL\n"
               "3\t145.50000\t146.00000\t88.5\tD023N\tHigh\tWide\tOn\tCarrier\n"
               "10\t435.12500\t\tNone\t\tLow\tNarrow\tOff\tOff\n"_s;
        QTest::newRow("info, Simplified Chinese")
            << QStringList{u"info"_s, u"-l"_s, u"1"_s, u"@/channels.tw"_s} << 0
            << u"BCL\n3\t145.50000\t146.00000\t88.5\tD023N\t高\t宽\t开\t载波\n10\t435.12500\t\t无\t\t低\t窄\t关\t关\n"_s;
        QTest::newRow("info --settings, Traditional Chinese")
            << QStringList{u"info"_s, u"--settings"_s, u"-l"_s, u"2"_s, u"@/channels.tw"_s} << 0
            << u"\n側鍵 長按: 監聽\n側鍵 短按: 背光燈\nP1 長按: 監聽\n"_s;
        // The FM radio's VFO and all its channels, empty ones included.
        QTest::newRow("info --fm") << QStringList{u"info"_s, u"--fm"_s, u"@/channels.tw"_s} << 0
                                   << u"CH.\tFrequency\nVFO\t101.70\n0\t\n1\t98.10\n2\t\n"_s;
        QTest::newRow("info --fm, Traditional Chinese")
            << QStringList{u"info"_s, u"--fm"_s, u"-l"_s, u"2"_s, u"@/channels.tw"_s} << 0
            << u"全頻\t101.70\n0\t\n1\t98.10\n"_s;
        QTest::newRow("overview") << QStringList{u"--help"_s} << 0 << u"\n  unpack "_s;
        QTest::newRow("help of a command") << QStringList{u"pack"_s, u"--help"_s} << 0
                                           << u"Usage: wrpd6t-tool pack [options] IN.bin OUT.tw\n"_s;
        QTest::newRow("help of backups names the folder") << QStringList{u"backups"_s, u"--help"_s} << 0
                                                          << u"@/data/wrpd6t/backups"_s;
        QTest::newRow("backups with an argument") << QStringList{u"backups"_s, u"@/channels.tw"_s} << 2
                                                  << u"too many arguments"_s;
        QTest::newRow("info of another program's file") << QStringList{u"info"_s, u"@/png.tw"_s} << 1
                                                        << u"@/png.tw: Incorrect File Type."_s;
        QTest::newRow("diff with another program's file")
            << QStringList{u"diff"_s, u"@/channels.tw"_s, u"@/png.tw"_s} << 2 << u"@/png.tw: Incorrect File Type."_s;
        QTest::newRow("diff of a missing file") << QStringList{u"diff"_s, u"@/missing.tw"_s, u"@/channels.tw"_s} << 2
                                                << u"@/missing.tw: No such file"_s;
        QTest::newRow("diff of one file") << QStringList{u"diff"_s, u"@/channels.tw"_s} << 2 << u"missing argument"_s;
        QTest::newRow("write, a port given twice")
            << QStringList{u"write"_s, u"@/channels.tw"_s, u"COM5"_s, u"com5"_s} << 2 << u"COM5 is given twice"_s;
        QTest::newRow("read --each without a folder")
            << QStringList{u"read"_s, u"--each"_s, u"COM5"_s, u"COM6"_s} << 2 << u"--each needs --into FOLDER"_s;
        QTest::newRow("read, two ports without --each")
            << QStringList{u"read"_s, u"COM5"_s, u"COM6"_s, u"@/out.tw"_s} << 2 << u"use --each"_s;
        QTest::newRow("unpack of a truncated file") << QStringList{u"unpack"_s, u"@/truncated.tw"_s, u"@/out.bin"_s}
                                                    << 1 << u"@/truncated.tw: Incorrect File Type."_s;
        QTest::newRow("dump of a missing file") << QStringList{u"dump"_s, u"@/missing.tw"_s} << 1 << u"@/missing.tw: "_s;
        QTest::newRow("pack of a short container") << QStringList{u"pack"_s, u"@/short.bin"_s, u"@/out.tw"_s} << 1
                                                   << u"@/short.bin: Incorrect File Type."_s;
        QTest::newRow("import-csv without its output") << QStringList{u"import-csv"_s, u"@/channels.tw"_s, u"@/far.csv"_s}
                                                       << 2 << u"missing argument"_s;
        QTest::newRow("import-csv of a file that is no channel list")
            << QStringList{u"import-csv"_s, u"@/channels.tw"_s, u"@/names.csv"_s, u"@/out.tw"_s} << 1
            << u"@/names.csv: no Frequency column and no column of the channel list"_s;
        QTest::newRow("import-csv with no usable row")
            << QStringList{u"import-csv"_s, u"@/channels.tw"_s, u"@/far.csv"_s, u"@/out.tw"_s} << 1
            << u"@/far.csv:2: Frequency \"27.125\": outside the receive bands: row skipped\n"
               "@/far.csv: 0 rows imported (0 changed), 1 skipped\n"_s;
        QTest::newRow("export-csv of another program's file") << QStringList{u"export-csv"_s, u"@/png.tw"_s, u"@/out.csv"_s}
                                                              << 1 << u"@/png.tw: Incorrect File Type."_s;
        QTest::newRow("new under a regular file") << QStringList{u"new"_s, u"@/plain/radio.tw"_s} << 1 << u"@/plain"_s;
        // Nobody writes into the pipe: reading it would wait for ever.
        QTest::newRow("info of a pipe") << QStringList{u"info"_s, u"@/pipe.tw"_s} << 1
                                        << u"@/pipe.tw: Incorrect File Type.\npipe.tw: not a regular file\n"_s;
        QTest::newRow("pack of a folder") << QStringList{u"pack"_s, u"@/folder.bin"_s, u"@/out.tw"_s} << 1
                                          << u"@/folder.bin: Incorrect File Type."_s;
    }

    void exitCodes()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, exitCode);
        QFETCH(QString, message);
        const QString folder = tempFolder();
        const QStringList before = QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);

        const Run run = runTool(arguments, folder);
        QCOMPARE(run.exitCode, exitCode);
        const QString shown = exitCode == 0 ? run.out : run.err;
        QVERIFY2(shown.contains(message.replace(u"@"_s, folder)), qPrintable(shown));
        QVERIFY(exitCode == 0 ? run.err.isEmpty() : run.out.isEmpty());
        // A refused or failed command creates and changes nothing.
        QCOMPARE(QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), before);
        QCOMPARE(test::readFile(folder + u"/plain"_s), QByteArray("previous content"));
    }

    void fileCommands()
    {
        const QString folder = tempFolder();
        // "new" writes the fresh radio's 165-byte file.
        QCOMPARE(runTool({u"new"_s, u"@/fresh.tw"_s}, folder).exitCode, 0);
        MemoryImage fresh = test::freshImage();
        QCOMPARE(test::readFile(folder + u"/fresh.tw"_s), *DF::Encode(fresh));

        const Run dump = runTool({u"dump"_s, u"@/channels.tw"_s}, folder);
        QCOMPARE(dump.exitCode, 0);
        const QStringList rows = dump.out.split(u'\n');
        QCOMPARE(rows.size(), 1024 + 1); // every row, each ending in a newline
        QCOMPARE(rows.at(2), u"0020: 14 55 00 00 14 60 00 00 85 08 23 80 00 00 4D 00"_s);
        QCOMPARE(rows.at(202), u"0CA0: FB FD FF FF FF FF FF FF FF FF FF FF FF FF FF FF"_s);

        QCOMPARE(runTool({u"unpack"_s, u"@/channels.tw"_s, u"@/channels.bin"_s}, folder).exitCode, 0);
        QCOMPARE(test::readFile(folder + u"/channels.bin"_s), DF::Container(imageWithChannels()));
        QCOMPARE(runTool({u"pack"_s, u"@/channels.bin"_s, u"@/repacked.tw"_s}, folder).exitCode, 0);
        QCOMPARE(test::readFile(folder + u"/repacked.tw"_s), test::readFile(folder + u"/channels.tw"_s));
    }

    void backups()
    {
        const QString folder = tempFolder();
        const QString backups = folder + u"/data/wrpd6t/backups"_s;
        MemoryImage fresh = test::freshImage();
        const QDate day(2026, 11, 23);
        QVERIFY(Backups::keep(backups, imageWithChannels(), BackupReason::Read, QDateTime(day, QTime(14, 15, 2))).status
                == Backups::Status::Written);
        QVERIFY(Backups::keep(backups, fresh, BackupReason::Exit, QDateTime(day, QTime(18, 0))).status
                == Backups::Status::Written);
        QVERIFY(test::writeFile(backups + u"/2026-11-24_090000-read.tw"_s, "damaged"));

        const Run run = runTool({u"backups"_s}, folder);
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.out, u"Time\tReason\tChannels\tFile\n"
                          "2026-11-24 09:00:00\tread\tunreadable\t@/2026-11-24_090000-read.tw\n"
                          "2026-11-23 18:00:00\texit\t0\t@/2026-11-23_180000-exit.tw\n"
                          "2026-11-23 14:15:02\tread\t2\t@/2026-11-23_141502-read.tw\n"_s.replace(u"@"_s, backups));
    }

    // Channels leave a data file as CHIRP CSV and come back into a fresh one as
    // they were; the report names each row not taken as it stood.
    void csvCommands()
    {
        const QString folder = tempFolder();
        const Run exported = runTool({u"export-csv"_s, u"@/channels.tw"_s, u"@/list"_s}, folder);
        QCOMPARE(exported.exitCode, 0);
        QCOMPARE(test::readFile(folder + u"/list"_s),
                 "Location,Name,Frequency,Duplex,Offset,Tone,rToneFreq,cToneFreq,DtcsCode,DtcsPolarity,RxDtcsCode,"
                 "CrossMode,Mode,TStep,Skip,Power,Comment,URCALL,RPT1CALL,RPT2CALL,DVCODE\r\n"
                 "3,,145.500000,+,0.500000,Cross,88.5,88.5,023,NN,023,DTCS->Tone,FM,5.00,,5.0W,BCL:Carrier,,,,\r\n"
                 "10,,435.125000,off,0.000000,,88.5,88.5,023,NN,023,Tone->Tone,NFM,5.00,S,1.0W,,,,,\r\n");

        QVERIFY(test::writeFile(folder + u"/list"_s, test::readFile(folder + u"/list"_s) + "11,,999,,,,,,,,,,FM,,,,,,,,\r\n"));
        QCOMPARE(runTool({u"new"_s, u"@/fresh.tw"_s}, folder).exitCode, 0);
        const Run imported = runTool({u"import-csv"_s, u"@/fresh.tw"_s, u"@/list"_s, u"@/out.tw"_s}, folder);
        QCOMPARE(imported.exitCode, 0);
        QCOMPARE(imported.err, u"@/fresh.tw: no band limits (never read from a radio); using 136-174 and 400-490 MHz\n"
                               "@/list:4: Frequency \"999\": outside the receive bands: row skipped\n"
                               "@/list: 2 rows imported (0 changed), 1 skipped\n"_s.replace(u"@"_s, folder));
        QCOMPARE(runTool({u"info"_s, u"@/out.tw"_s}, folder).out, runTool({u"info"_s, u"@/channels.tw"_s}, folder).out);
    }

    void diff_data()
    {
        QTest::addColumn<QList<int>>("changes"); // address, new value, ... applied to channels.tw
        QTest::addColumn<int>("language");
        QTest::addColumn<QString>("listed");

        QTest::newRow("identical") << QList<int>{} << 0 << QString();
        QTest::newRow("channel 3: power and bandwidth") << QList<int>{0x2E, 0x09} << 0
                                                        << u"CH. 3: TX Power High -> Low, W/N Wide -> Narrow\n"_s;
        QTest::newRow("channel 3, Simplified Chinese") << QList<int>{0x2E, 0x09} << 1
                                                       << u"信道 3: 发射功率 高 -> 低, 宽/窄 宽 -> 窄\n"_s;
        // Its bit in the empty bitmap is what changed; that byte is not listed again.
        QTest::newRow("channel 10 out of use")
            << QList<int>{0x0CA1, 0xFF} << 0
            << u"CH. 10 deleted: Rx Freq 435.12500, CTCSS/DCS Dec None, TX Power Low, W/N Narrow, Scan Add Off, BCL Off\n"_s;
        QTest::newRow("channel 5 new, Traditional Chinese")
            << QList<int>{0x40, 0x14, 0x41, 0x52, 0x42, 0, 0x43, 0, 0x44, 0x14, 0x45, 0x52, 0x46, 0, 0x47, 0, 0x48, 0x85,
                          0x49, 0x08, 0x4E, 0x4C, 0x0CA0, 0xEB}
            << 2 << u"信道 5 新增: 接收頻率 145.20000, 發射頻率 145.20000, CTCSS/DCS 解碼 88.5, CTCSS/DCS 編碼 無, "
                    "發射功率 高, 寬/窄 寬, 掃描添加 開, 繁忙鎖定 關\n"_s;
        // The limits a radio reports, against a file that has none; a limit
        // of 133.5 MHz keeps its tenth.
        QTest::newRow("band limits") << QList<int>{0x1A00, 0x13, 0x1A01, 0x60, 0x1A02, 0x17, 0x1A03, 0x40, 0x1A04, 0x13,
                                                   0x1A05, 0x35, 0x1A06, 0x17, 0x1A07, 0x40, 0x1A08, 0x40, 0x1A09, 0x00,
                                                   0x1A0A, 0x49, 0x1A0B, 0x00, 0x1A0C, 0x40, 0x1A0D, 0x00, 0x1A0E, 0x49,
                                                   0x1A0F, 0x00}
                                     << 0
                                     << u"Rx bands: (empty) -> 136-174, 400-490 MHz\nTx bands: (empty) -> 133.5-174, 400-490 MHz\n"_s;
        QTest::newRow("channel bits the list does not show") << QList<int>{0x2E, 0xCD, 0x2F, 0x44} << 0
                                                             << u"0x002E: 4D -> CD\n0x002F: 00 -> 44\n"_s;
        QTest::newRow("a channel's shown and hidden bits in one byte")
            << QList<int>{0x2E, 0x8D} << 0 << u"CH. 3: W/N Wide -> Narrow\n0x002E: 4D -> 8D\n"_s;
        // The list saves scan add into the scan-skip bitmap too: that bit goes
        // with the channel's line.
        QTest::newRow("scan add with its scan-skip bit")
            << QList<int>{0x2E, 0x45, 0x0CB0, 0xFB} << 0 << u"CH. 3: Scan Add On -> Off\n"_s;
        QTest::newRow("squelch level") << QList<int>{0x0CD6, 3} << 0 << u"Squelch Level: 5 -> 3\n"_s;
        QTest::newRow("side key, which is key P3 too")
            << QList<int>{0x0CEA, 0x92} << 2 << u"側鍵 短按: 背光燈 -> 掃描\nP3 短按: 背光燈 -> 掃描\n"_s;
        QTest::newRow("a settings bit no field shows") << QList<int>{0x0CD1, 0x20} << 0 << u"0x0CD1: 00 -> 20\n"_s;
        QTest::newRow("FM channel 1 emptied, Simplified Chinese")
            << QList<int>{0x1900, 0xFF} << 1 << u"FM 信道 1: 98.10 -> （空）\n"_s;
        QTest::newRow("FM VFO erased, Traditional Chinese")
            << QList<int>{0x1990, 0xFF} << 2 << u"FM 全頻: 101.70 -> 87.50\n"_s;
        // Channel 5 is not in use: its record's bytes are only bytes.
        QTest::newRow("one of each, in this order")
            << QList<int>{0x3000, 0x12, 0x1915, 0x01, 0x0CD6, 3, 0x2E, 0x0D, 0x4E, 0x0D} << 0
            << u"CH. 3: W/N Wide -> Narrow\nSquelch Level: 5 -> 3\nFM CH. 1: 98.10 -> 90.10\n0x004E: FF -> 0D\n"
               "0x3000: FF -> 12\n"_s;
    }

    // The dealer's view of two files: what the channel list, the settings
    // dialogs and the FM radio would show differently, and the other bytes.
    void diff()
    {
        QFETCH(QList<int>, changes);
        QFETCH(int, language);
        QFETCH(QString, listed);
        MemoryImage changed = imageWithChannels();
        for (qsizetype i = 0; i + 1 < changes.size(); i += 2)
            changed.WriteByte(changes.at(i), static_cast<std::uint8_t>(changes.at(i + 1)));
        const QString folder = tempFolder();
        QVERIFY(DF::Write(folder + u"/changed.tw"_s, changed, nullptr));

        const Run run = runTool({u"diff"_s, u"-l"_s, QString::number(language), u"@/channels.tw"_s, u"@/changed.tw"_s},
                                folder);
        QCOMPARE(run.exitCode, listed.isEmpty() ? 0 : 1);
        QCOMPARE(run.out, listed);
        QCOMPARE(run.err, QString());
    }

    // On a disk that fills up half way through the file, the tool says so in
    // the system's words. The disk is a small memory file system that only this
    // run sees, where the system allows one.
    void fullDisk()
    {
        const QString folder = tempFolder();
        const QString disk = folder + u"/disk"_s;
        QVERIFY(QDir().mkdir(disk));
        QProcess process;
        process.start(u"unshare"_s, {u"--map-root-user"_s, u"--mount"_s, u"sh"_s, u"-c"_s,
                                     u"mount -t tmpfs -o size=8k none \"$1\" || exit 99; "
                                     "exec \"$2\" unpack \"$3\" \"$1/channels.bin\""_s,
                                     u"sh"_s, disk, QStringLiteral(WRPD6T_TOOL_PATH), folder + u"/channels.tw"_s});
        if (!process.waitForFinished(10000) || process.exitStatus() != QProcess::NormalExit || process.exitCode() == 99
            || process.error() == QProcess::FailedToStart)
            QSKIP("no private memory file system can be mounted here");
        QCOMPARE(process.exitCode(), 1);
        QCOMPARE(QString::fromUtf8(process.readAllStandardError()),
                 u"wrpd6t-tool: %1/channels.bin: No space left on device\n"_s.arg(disk));
    }
};

QTEST_GUILESS_MAIN(TestTool)
#include "TestTool.moc"
