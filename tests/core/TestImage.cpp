#include "core/AppState.h"
#include "core/BandLimits.h"
#include "core/MemoryImage.h"
#include "core/SettingsStore.h"
#include "TestSuite.h"

#include <QDir>
#include <QTest>

#include <set>

using namespace wr;

namespace {

// Every address a fresh image sets, with its value.
std::map<int, quint8> freshDefaults()
{
    std::map<int, quint8> bytes;
    auto put = [&](int row, int column, std::initializer_list<quint8> values) {
        for (quint8 v : values)
            bytes[row * 16 + column++] = v;
    };
    put(200, 0, {0x13, 0x60, 0x25, 0x00, 0x13, 0x60, 0x25, 0x00});
    put(200, 12, {0x00, 0x00, 0x4C, 0x00});
    put(201, 0, {0x43, 0x50, 0x25, 0x00, 0x43, 0x50, 0x25, 0x00});
    put(201, 12, {0x00, 0x00, 0x4C, 0x00});
    put(205, 0, {0x20, 0x00, 0x08, 0xC0, 0xC0, 0x00, 0x05, 0x00, 0x02, 0x00, 0x02, 0x05, 0x05, 0x0A, 0x04});
    put(206, 8, {0x90, 0xA0, 0x93, 0x17, 0x62, 0x48, 0xB5});
    put(193, 0, {0, 0, 0, 0, 0, 0, 0, 0});
    put(208, 0, {0x0E, 0x0A, 0x00, 0x14, 0x64, 0x05, 0x14, 0x14});
    put(208, 10, {0x01, 0x02, 0x03, 0x04, 0x05});
    for (int row = 209; row <= 218; ++row) {
        put(row, 7, {0x00});
        put(row, 15, {0x00});
    }
    put(224, 0, {0x01, 0x02, 0x03, 0x04, 0x05, 0x14, 0x14});
    put(225, 7, {0x14});
    return bytes;
}

} // namespace

class TestImage : public test::Suite
{
    Q_OBJECT

private Q_SLOTS:
    void freshImageErasedElsewhere()
    {
        MemoryImage image;
        for (int a = 0; a < MemoryImage::Size; ++a)
            image.WriteByte(a, static_cast<quint8>(a));
        image.InitImage();
        const auto defaults = freshDefaults();
        for (int a = 0; a < MemoryImage::Size; ++a) {
            const auto it = defaults.find(a);
            const int expected = it == defaults.end() ? 0xFF : it->second;
            if (image.ReadByte(a) != expected)
                QFAIL(qPrintable(QStringLiteral("address 0x%1").arg(a, 4, 16, QChar(u'0'))));
        }
    }

    void modifiedTracksEveryByte()
    {
        MemoryImage image = test::freshImage();
        for (int a : {0, 0x0CD0, 0x1A0F, MemoryImage::Size - 1}) {
            const quint8 old = image.ReadByte(a);
            image.WriteByte(a, static_cast<quint8>(old ^ 0x01));
            QVERIFY2(image.IsModified(), qPrintable(QString::number(a)));
            image.WriteByte(a, old);
            QVERIFY(!image.IsModified()); // back to the snapshot's value
        }
        image.WriteByte(7, 0x00);
        image.TakeSnapshot();
        QVERIFY(!image.IsModified());
        QCOMPARE(image.ReadByte(0, 7), 0x00);
    }

    void channelRows_data()
    {
        QTest::addColumn<int>("channel");
        QTest::addColumn<int>("row");
        QTest::newRow("first channel") << 1 << 0;
        QTest::newRow("last channel") << 128 << 127;
        QTest::newRow("VFO A") << 129 << 200;
        QTest::newRow("VFO B") << 130 << 201;
    }

    void channelRows()
    {
        QFETCH(int, channel);
        QTEST(ChannelRow(channel), "row");
    }

    void bandLimits_data()
    {
        QTest::addColumn<QByteArray>("row416");
        QTest::addColumn<QList<int>>("limits");
        QTest::newRow("defaults") << QByteArray::fromHex("13601740133017404000490040004900")
                                  << QList<int>{136, 174, 133, 174, 400, 490, 400, 490};
        QTest::newRow("erased") << QByteArray(16, '\xFF') << QList<int>{0, 0, 0, 0, 0, 0, 0, 0};
        QTest::newRow("half MHz rounds up") << QByteArray::fromHex("13651744133417405000520040004900")
                                            << QList<int>{137, 174, 133, 174, 500, 520, 400, 490};
        QTest::newRow("letter digits") << QByteArray::fromHex("A0601A4013FF17404000490040004900")
                                       << QList<int>{6, 14, 130, 174, 400, 490, 400, 490};
    }

    void bandLimits()
    {
        QFETCH(QByteArray, row416);
        MemoryImage image;
        image.setRow(BandLimitsRow, row416);
        const BandLimitArray read = LoadBandLimits(image);
        QTEST(QList<int>(read.begin(), read.end()), "limits");
    }

    void inBands_data()
    {
        QTest::addColumn<qint64>("hz");
        QTest::addColumn<QString>("bands"); // the kinds of band it lies in
        QTest::newRow("below both") << qint64(132'999'990) << QString();
        QTest::newRow("transmit edge only") << qint64(133'000'000) << QStringLiteral("transmit");
        QTest::newRow("receive lower edge") << qint64(136'000'000) << QStringLiteral("receive transmit");
        QTest::newRow("upper edge of band 1") << qint64(174'000'000) << QStringLiteral("receive transmit");
        QTest::newRow("just above band 1") << qint64(174'000'010) << QString();
        QTest::newRow("band 2") << qint64(446'006'250) << QStringLiteral("receive transmit");
        QTest::newRow("above band 2") << qint64(490'000'001) << QString();
    }

    void inBands()
    {
        QFETCH(qint64, hz);
        QStringList in;
        if (inReceiveBands(hz, DefaultBandLimits))
            in << QStringLiteral("receive");
        if (inTransmitBands(hz, DefaultBandLimits))
            in << QStringLiteral("transmit");
        QTEST(in.join(u' '), "bands");
    }

    void startUpBandLimitsThenFreshImage()
    {
        SettingsStore settings(filePath(QStringLiteral("none.ini")));
        AppState state;
        StartUp(state, settings);
        QCOMPARE(state.BandLimits, DefaultBandLimits);
        QCOMPARE(state.image.row(BandLimitsRow), QByteArray(16, '\xFF')); // the fresh image erased it again
        QVERIFY(!state.image.IsModified());
        QCOMPARE(state.ToneTable.size(), 261);
        QCOMPARE(state.ToneTable.first(), QStringLiteral("无")); // Simplified Chinese by default
        QCOMPARE(state.CurrentFileName, QStringLiteral("Untitled"));
        QVERIFY(state.AppFolder.endsWith(QDir::separator()));
        QCOMPARE(state.FormOpenFlags, AppState::ChannelListOpen);
    }
};

QTEST_GUILESS_MAIN(TestImage)
#include "TestImage.moc"
