#include "core/AppState.h"
#include "core/FrequencyCodec.h"
#include "core/Language.h"
#include "core/ToneCodec.h"
#include "TestSuite.h"

#include <QLocale>
#include <QTest>

using namespace wr;
using namespace Qt::StringLiterals;

class TestCodecs : public test::Suite
{
    Q_OBJECT

private Q_SLOTS:
    void readFreq_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("side");
        QTest::addColumn<QString>("text");
        const int rx = int(Side::Rx), tx = int(Side::Tx);
        QTest::newRow("VHF") << QByteArray::fromHex("13602500") << rx << u"136.02500"_s;
        QTest::newRow("UHF") << QByteArray::fromHex("43502500") << rx << u"435.02500"_s;
        QTest::newRow("transmit side") << QByteArray::fromHex("14650000") << tx << u"146.50000"_s;
        QTest::newRow("3.125 kHz step gets its 5 Hz back") << QByteArray::fromHex("13600312") << rx << u"136.00313"_s;
        QTest::newRow("6.25 kHz multiple unchanged") << QByteArray::fromHex("13600625") << rx << u"136.00625"_s;
        QTest::newRow("below 10 MHz") << QByteArray::fromHex("00500000") << rx << u"5.00000"_s;
        QTest::newRow("off-raster 10 Hz") << QByteArray::fromHex("13600001") << rx << u"136.00002"_s;
        QTest::newRow("FF in byte 0") << QByteArray::fromHex("FF602500") << rx << QString();
        QTest::newRow("FF in byte 3") << QByteArray::fromHex("136025FF") << tx << QString();
    }

    void readFreq()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(int, side);
        MemoryImage &image = app().image;
        const int first = side == int(Side::Rx) ? 0 : 4;
        for (int channel : {1, 77, 128, 129, 130}) {
            for (int i = 0; i < 4; ++i)
                image.WriteByte(ChannelRow(channel), first + i, static_cast<quint8>(bytes[i]));
            QTEST(ReadFreq(image, Side(side), channel), "text");
        }
    }

    void writeFreq_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("stored");
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("136.025") << u"136.025"_s << true << QByteArray::fromHex("13602500");
        QTest::newRow("normalised text") << u"435.02500"_s << true << QByteArray::fromHex("43502500");
        QTest::newRow("5 pads to 005.00000") << u"5"_s << true << QByteArray::fromHex("00500000");
        QTest::newRow("highest") << u"999.99999"_s << true << QByteArray::fromHex("99999999");
        QTest::newRow("half 10 Hz rounds away") << u"136.000125"_s << true << QByteArray::fromHex("13600013");
        QTest::newRow("below half rounds down") << u"136.0001249"_s << true << QByteArray::fromHex("13600012");
        QTest::newRow("1000 MHz does not fit") << u"1000"_s << false << QByteArray::fromHex("AABBCCDD");
        QTest::newRow("negative") << u"-5"_s << false << QByteArray::fromHex("AABBCCDD");
        QTest::newRow("not a number") << u"abc"_s << false << QByteArray::fromHex("AABBCCDD");
        QTest::newRow("empty") << QString() << false << QByteArray::fromHex("AABBCCDD");
    }

    void writeFreq()
    {
        QFETCH(QString, text);
        MemoryImage &image = app().image;
        for (Side side : {Side::Rx, Side::Tx}) {
            const int first = side == Side::Rx ? 0 : 4;
            image.setRow(ChannelRow(9), QByteArray::fromHex("AABBCCDDAABBCCDD0102030405060708"));
            QTEST(WriteFreq(image, side, 9, text), "stored");
            QTEST(image.row(ChannelRow(9)).mid(first, 4), "bytes");
            // the other half and the rest of the record are untouched
            QCOMPARE(image.row(ChannelRow(9)).mid(4 - first, 4), QByteArray::fromHex("AABBCCDD"));
            QCOMPARE(image.row(ChannelRow(9)).mid(8), QByteArray::fromHex("0102030405060708"));
        }
    }

    void normalise_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("rx");
        QTest::addColumn<QString>("tx");
        QTest::newRow("below band 1 gives band 1 top") << u"100"_s << u"174.00000"_s << u"174.00000"_s;
        QTest::newRow("between bands") << u"200"_s << u"174.00000"_s << u"174.00000"_s;
        QTest::newRow("above band 2") << u"500"_s << u"490.00000"_s << u"490.00000"_s;
        QTest::newRow("band 2 top itself") << u"490"_s << u"490.00000"_s << u"490.00000"_s;
        QTest::newRow("both rasters round down, 5 kHz nearer") << u"136.0237"_s << u"136.02000"_s << u"136.02000"_s;
        QTest::newRow("6.25 kHz nearer") << u"136.019"_s << u"136.01875"_s << u"136.01875"_s;
        QTest::newRow("on 6.25 kHz raster") << u"146.0125"_s << u"146.01250"_s << u"146.01250"_s;
        QTest::newRow("band 1 top") << u"174"_s << u"174.00000"_s << u"174.00000"_s;
        QTest::newRow("just above band 1") << u"174.001"_s << u"174.00000"_s << u"174.00000"_s;
        QTest::newRow("transmit band reaches lower") << u"134"_s << u"174.00000"_s << u"134.00000"_s;
        QTest::newRow("carry into next MHz steps back") << u"136.999996"_s << u"136.99500"_s << u"136.99500"_s;
        QTest::newRow("carry at band 2 top") << u"489.999999"_s << u"489.99500"_s << u"489.99500"_s;
        QTest::newRow("5 Hz half rounds away then snaps") << u"136.000005"_s << u"136.00000"_s << u"136.00000"_s;
        QTest::newRow("leading number only") << u"145.5abc"_s << u"145.50000"_s << u"145.50000"_s;
        QTest::newRow("empty") << QString() << u"174.00000"_s << u"174.00000"_s;
        QTest::newRow("negative") << u"-145"_s << u"174.00000"_s << u"174.00000"_s;
        QTest::newRow("huge") << u"999999999999999999999"_s << u"490.00000"_s << u"490.00000"_s;
    }

    void normalise()
    {
        QFETCH(QString, typed);
        QTEST(NormaliseRxFreq(typed, DefaultBandLimits), "rx");
        QTEST(NormaliseTxFreq(typed, DefaultBandLimits), "tx");
    }

    void normaliseWithErasedLimits()
    {
        // A file saved from a fresh image has row 416 erased: every limit is 0.
        for (const QString &typed : {u"145.5"_s, u"0"_s, QString()}) {
            QCOMPARE(NormaliseRxFreq(typed, BandLimitArray{}), u"0.00000"_s);
            QCOMPARE(NormaliseTxFreq(typed, BandLimitArray{}), u"0.00000"_s);
        }
    }

    void normaliseCommaThroughLocale_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("rx");
        QTest::newRow("German decimal comma") << u"de_DE"_s << u"145,5"_s << u"145.50000"_s;
        QTest::newRow("French decimal comma") << u"fr_FR"_s << u"436,0125"_s << u"436.01250"_s;
        QTest::newRow("English thousands comma") << u"en_US"_s << u"145,5"_s << u"490.00000"_s;
        QTest::newRow("C locale comma groups digits") << u"C"_s << u"1,45"_s << u"145.00000"_s;
    }

    void normaliseCommaThroughLocale()
    {
        QFETCH(QString, locale);
        QFETCH(QString, typed);
        QLocale::setDefault(QLocale(locale));
        QTEST(NormaliseRxFreq(typed, DefaultBandLimits), "rx");
        QLocale::setDefault(QLocale::c());
    }

    void rasterRoundTrip()
    {
        // Every 5 kHz and 6.25 kHz channel of both bands survives normalise,
        // store and read unchanged.
        MemoryImage &image = app().image;
        for (qint64 step : {500, 625}) {
            for (auto [lower, upper] : {std::pair{136, 174}, std::pair{400, 489}}) {
                for (qint64 tenHz = lower * 100000LL; tenHz <= upper * 100000LL; tenHz += step) {
                    const QString text = freq::formatTenHz(tenHz);
                    QCOMPARE(NormaliseRxFreq(text, DefaultBandLimits), text);
                    QVERIFY(WriteFreq(image, Side::Rx, 5, text));
                    QCOMPARE(ReadFreq(image, Side::Rx, 5), text);
                }
            }
        }
    }

    void toneTable_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("text");
        QTest::newRow("first CTCSS") << 1 << u"67.0"_s;
        QTest::newRow("100 Hz keeps its decimal") << 13 << u"100.0"_s;
        QTest::newRow("last CTCSS") << 50 << u"254.1"_s;
        QTest::newRow("first DCS normal") << 51 << u"D023N"_s;
        QTest::newRow("last DCS normal") << 155 << u"D754N"_s;
        QTest::newRow("first DCS inverted") << 156 << u"D023I"_s;
        QTest::newRow("last DCS inverted") << 260 << u"D754I"_s;
    }

    void toneTable()
    {
        QFETCH(int, index);
        QStringList table = BuildToneTable(English);
        QCOMPARE(table.size(), ToneTableSize);
        QTEST(table.at(index), "text");
        QCOMPARE(table.first(), u"None"_s);
        QCOMPARE(BuildToneTable(SimplifiedChinese).first(), u"无"_s);
        QCOMPARE(BuildToneTable(TraditionalChinese).first(), u"無"_s);
        QCOMPARE(table.removeDuplicates(), 0);
    }

    void readTone_data()
    {
        QTest::addColumn<int>("low");
        QTest::addColumn<int>("high");
        QTest::addColumn<int>("language");
        QTest::addColumn<QString>("text");
        QTest::newRow("none English") << 0xFF << 0xFF << 0 << u"None"_s;
        QTest::newRow("none Simplified") << 0xFF << 0xFF << 1 << u"无"_s;
        QTest::newRow("none Traditional") << 0xFF << 0xFF << 2 << u"無"_s;
        QTest::newRow("67.0") << 0x70 << 0x06 << 0 << u"67.0"_s;
        QTest::newRow("254.1") << 0x41 << 0x25 << 1 << u"254.1"_s;
        QTest::newRow("100.0") << 0x00 << 0x10 << 0 << u"100.0"_s;
        QTest::newRow("D023N") << 0x23 << 0x80 << 0 << u"D023N"_s;
        QTest::newRow("D754I") << 0x54 << 0xC7 << 2 << u"D754I"_s;
        QTest::newRow("not a tone") << 0x00 << 0x40 << 0 << QString();
        QTest::newRow("only low erased") << 0xFF << 0x06 << 0 << u"60.0"_s;
    }

    void readTone()
    {
        QFETCH(int, low);
        QFETCH(int, high);
        QFETCH(int, language);
        QFETCH(QString, text);
        MemoryImage &image = app().image;
        image.WriteByte(ChannelRow(3), 8, static_cast<quint8>(low));
        image.WriteByte(ChannelRow(3), 9, static_cast<quint8>(high));
        image.WriteByte(ChannelRow(130), 10, static_cast<quint8>(low));
        image.WriteByte(ChannelRow(130), 11, static_cast<quint8>(high));
        QCOMPARE(ReadTone(image, Side::Rx, 3, language), text);
        QCOMPARE(ReadTone(image, Side::Tx, 130, language), text);
    }

    void writeTone_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("low");
        QTest::addColumn<int>("high");
        QTest::newRow("D754I") << u"D754I"_s << 0x54 << 0xC7;
        QTest::newRow("D023N") << u"D023N"_s << 0x23 << 0x80;
        QTest::newRow("100.0") << u"100.0"_s << 0x00 << 0x10;
        QTest::newRow("259.9 typed") << u"259.9"_s << 0x99 << 0x25;
        QTest::newRow("empty") << QString() << 0xFF << 0xFF;
        QTest::newRow("None") << u"None"_s << 0xFF << 0xFF;
        QTest::newRow("无") << u"无"_s << 0xFF << 0xFF;
        QTest::newRow("無") << u"無"_s << 0xFF << 0xFF;
    }

    void writeTone()
    {
        QFETCH(QString, text);
        QFETCH(int, low);
        QFETCH(int, high);
        MemoryImage &image = app().image;
        for (int language : {0, 1, 2}) {
            app().LanguageIndex = static_cast<quint8>(language);
            image.setRow(ChannelRow(4), QByteArray(16, '\x11'));
            WriteTone(image, Side::Rx, 4, text);
            WriteTone(image, Side::Tx, 4, text);
            const QByteArray row = image.row(ChannelRow(4));
            QCOMPARE(quint8(row[8]), low);
            QCOMPARE(quint8(row[9]), high);
            QCOMPARE(quint8(row[10]), low);
            QCOMPARE(quint8(row[11]), high);
            QCOMPARE(row.left(8), QByteArray(8, '\x11'));
            QCOMPARE(row.mid(12), QByteArray(4, '\x11'));
        }
    }

    void toneTableRoundTrip()
    {
        MemoryImage &image = app().image;
        for (int language : {0, 1, 2}) {
            const QStringList table = BuildToneTable(language);
            for (const QString &tone : table) {
                WriteTone(image, Side::Tx, 128, tone);
                QCOMPARE(ReadTone(image, Side::Tx, 128, language), tone);
            }
        }
    }
};

QTEST_GUILESS_MAIN(TestCodecs)
#include "TestCodecs.moc"
