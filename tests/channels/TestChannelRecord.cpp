#include "channels/ChannelRecord.h"
#include "core/AppState.h"
#include "core/Language.h"
#include "TestSuite.h"

#include <QTest>

using namespace wr;
using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(wr::ChannelTexts)

// (A cleared channel erased on saving, and a channel read in one language and
// saved in another, are tried on the channel list: TestChannelList.)
class TestChannelRecord : public test::Suite
{
    Q_OBJECT

private Q_SLOTS:
    void bitmapAddressing_data()
    {
        QTest::addColumn<int>("channel");
        QTest::addColumn<int>("byte");
        QTest::addColumn<int>("mask");
        QTest::newRow("channel 1") << 1 << 0 << 0x01;
        QTest::newRow("channel 8") << 8 << 0 << 0x80;
        QTest::newRow("channel 9") << 9 << 1 << 0x01;
        QTest::newRow("channel 128") << 128 << 15 << 0x80;
    }

    void bitmapAddressing()
    {
        QFETCH(int, channel);
        QFETCH(int, byte);
        QFETCH(int, mask);
        MemoryImage &image = app().image;
        image.setRow(ChannelRecord::EmptyBitmapRow, QByteArray(16, '\0'));
        image.setRow(ChannelRecord::ScanSkipBitmapRow, QByteArray(16, '\xFF'));
        ChannelRecord record(image, channel);
        record.setEmptyBit(true);
        record.setScanSkipBit(false);
        QCOMPARE(image.ReadByte(0x0CA0 + byte), mask);
        QCOMPARE(image.ReadByte(0x0CB0 + byte), 0xFF & ~mask);
        QVERIFY(record.emptyBit());
        QVERIFY(!record.scanSkipBit());
        // no other channel's bits moved
        for (int other = 1; other <= 128; ++other) {
            if (other != channel) {
                QVERIFY(!ChannelRecord(image, other).emptyBit());
                QVERIFY(ChannelRecord(image, other).scanSkipBit());
            }
        }
    }

    void signallingFields_data()
    {
        QTest::addColumn<int>("flags");
        QTest::addColumn<int>("pttId");
        QTest::addColumn<int>("position");
        QTest::addColumn<int>("optional");
        using R = ChannelRecord;
        QTest::newRow("DTMF at end") << 0x82 << int(R::PttId::Dtmf) << int(R::PttIdPosition::End) << int(R::OptionalSignalling::Off);
        QTest::newRow("MSK at end") << 0x02 << int(R::PttId::Msk) << int(R::PttIdPosition::End) << int(R::OptionalSignalling::Off);
        QTest::newRow("type without position is off") << 0x40 << int(R::PttId::Off) << int(R::PttIdPosition::None) << int(R::OptionalSignalling::Off);
        QTest::newRow("optional 3 means off") << 0x0C << int(R::PttId::Off) << int(R::PttIdPosition::None) << int(R::OptionalSignalling::Off);
        QTest::newRow("optional DTMF") << 0x47 << int(R::PttId::Dtmf) << int(R::PttIdPosition::BeginEnd) << int(R::OptionalSignalling::Dtmf);
        QTest::newRow("optional MSK") << 0x09 << int(R::PttId::Msk) << int(R::PttIdPosition::Begin) << int(R::OptionalSignalling::Msk);
    }

    void signallingFields()
    {
        QFETCH(int, flags);
        ChannelRecord record(app().image, 64);
        record.setSignallingFlags(static_cast<quint8>(flags));
        QTEST(int(record.pttId()), "pttId");
        QTEST(int(record.pttIdPosition()), "position");
        QTEST(int(record.optionalSignalling()), "optional");
    }

    void shownTexts_data()
    {
        QTest::addColumn<QByteArray>("record");
        QTest::addColumn<bool>("emptyBit");
        QTest::addColumn<int>("language");
        QTest::addColumn<QStringList>("texts");
        QTest::newRow("full, English")
            << QByteArray::fromHex("14550000146500007006238000004C00") << false << 0
            << QStringList{u"145.50000"_s, u"146.50000"_s, u"67.0"_s, u"D023N"_s, u"High"_s, u"Wide"_s, u"On"_s, u"Off"_s};
        QTest::newRow("narrow low carrier, Traditional")
            << QByteArray::fromHex("43502500435025005441FFFF00000100") << false << 2
            << QStringList{u"435.02500"_s, u"435.02500"_s, QString() /* 54 41: not a tone */, u"無"_s, u"低"_s, u"窄"_s, u"關"_s, u"載波"_s};
        QTest::newRow("no transmit side hides encode tone")
            << QByteArray::fromHex("14550000FFFFFFFFFFFF70060000CB00") << false << 1
            << QStringList{u"145.50000"_s, QString(), u"无"_s, QString(), u"低"_s, u"宽"_s, u"开"_s, u"可选信令"_s};
        QTest::newRow("empty bit wins over valid bytes")
            << QByteArray::fromHex("14550000145500007006238000004E00") << true << 0 << QStringList(8);
        QTest::newRow("one erased rx byte is empty")
            << QByteArray::fromHex("1455FF00145500007006238000004E00") << false << 0 << QStringList(8);
    }

    void shownTexts()
    {
        QFETCH(QByteArray, record);
        QFETCH(bool, emptyBit);
        QFETCH(int, language);
        MemoryImage &image = app().image;
        image.setRow(ChannelRow(33), record);
        ChannelRecord(image, 33).setEmptyBit(emptyBit);
        const ChannelTexts shown = ReadChannelTexts(image, 33, language);
        const QStringList got{shown.rx, shown.tx, shown.decode, shown.encode,
                              shown.power, shown.bandwidth, shown.scanAdd, shown.bcl};
        QTEST(got, "texts");
    }

    void saveRow_data()
    {
        QTest::addColumn<ChannelTexts>("texts");
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QByteArray>("after");
        QTest::addColumn<bool>("scanSkip");
        const QByteArray used = QByteArray::fromHex("14500000145000007006FFFF00008CB6"); // bit 7 of flags, signalling B6
        QTest::newRow("shift plus")
            << ChannelTexts{u"145.00000"_s, u"145.50000"_s, u"None"_s, u"67.0"_s, u"High"_s, u"Wide"_s, u"On"_s, u"Off"_s}
            << used << QByteArray::fromHex("1450000014550000FFFF70060000DCB6") << false;
        QTest::newRow("shift minus, Chinese words")
            << ChannelTexts{u"145.00000"_s, u"144.50000"_s, u"D023N"_s, u"无"_s, u"低"_s, u"窄"_s, u"关"_s, u"载波"_s}
            << QByteArray::fromHex("14500000145000007006FFFF0000CCB6") // high, wide, scanned
            << QByteArray::fromHex("14500000144500002380FFFF0000A1B6") << true;
        QTest::newRow("equal texts clear both shifts")
            << ChannelTexts{u"435.02500"_s, u"435.02500"_s, u"無"_s, u"D754I"_s, u"高"_s, u"寬"_s, u"開"_s, u"可選信令"_s}
            << QByteArray::fromHex("14500000145000007006FFFF0000BFB6")
            << QByteArray::fromHex("4350250043502500FFFF54C70000CEB6") << false;
        QTest::newRow("unknown words keep power, width, scan; BCL off")
            << ChannelTexts{u"145.00000"_s, u"145.00000"_s, u"None"_s, u"None"_s, u"?"_s, u"?"_s, u"?"_s, u"?"_s}
            << QByteArray::fromHex("1450000014500000FFFFFFFF00004EB6")
            << QByteArray::fromHex("1450000014500000FFFFFFFF00004CB6") << true;
        QTest::newRow("Opt.Signal stores 2")
            << ChannelTexts{u"145.00000"_s, u"145.00000"_s, u"None"_s, u"None"_s, u"Low"_s, u"Narrow"_s, u"Off"_s, u"Opt.Signal"_s}
            << QByteArray::fromHex("1450000014500000FFFFFFFF00000300")
            << QByteArray::fromHex("1450000014500000FFFFFFFF00000200") << true;
        QTest::newRow("no transmit side")
            << ChannelTexts{u"145.00000"_s, QString(), u"None"_s, QString(), u"Low"_s, u"Narrow"_s, u"Off"_s, u"Off"_s}
            << used << QByteArray::fromHex("14500000FFFFFFFFFFFFFFFF0000A0B6") << true;
    }

    void saveRow()
    {
        QFETCH(ChannelTexts, texts);
        QFETCH(QByteArray, before);
        QFETCH(QByteArray, after);
        QFETCH(bool, scanSkip);
        MemoryImage &image = app().image;
        image.setRow(ChannelRow(100), before);
        ChannelRecord(image, 100).setEmptyBit(true);
        ChannelRecord(image, 100).setScanSkipBit(!scanSkip);
        SaveChannel(image, 100, texts);
        QCOMPARE(image.row(ChannelRow(100)).toHex(), after.toHex());
        QVERIFY(!ChannelRecord(image, 100).emptyBit());
        if (texts.scanAdd != u"?"_s)
            QCOMPARE(ChannelRecord(image, 100).scanSkipBit(), scanSkip);
    }
};

QTEST_GUILESS_MAIN(TestChannelRecord)
#include "TestChannelRecord.moc"
