// The FM receiver's memory and its typing rule, without a window: what a
// typed frequency becomes, how the channels load and how they are saved.
#include "TestSuite.h"

#include "core/MemoryImage.h"
#include "features/FmRadio.h"

#include <QLocale>
#include <QTest>

using namespace wr;
using namespace Qt::StringLiterals;

namespace {

constexpr int Vfo = -1; // the VFO in a row of "channel, bytes"

// Bytes as hexadecimal digits at an address.
void put(MemoryImage &image, int address, const char *hex)
{
    const QByteArray bytes = QByteArray::fromHex(hex);
    for (int i = 0; i < bytes.size(); ++i)
        image.WriteByte(address + i, static_cast<std::uint8_t>(bytes.at(i)));
}

QByteArray bytesAt(const MemoryImage &image, int address, int count)
{
    return image.bytes().mid(address, count);
}

void markInUse(MemoryImage &image, int channel)
{
    const int address = fm::EmptyBitmapAddress + channel / 8;
    image.WriteByte(address, image.ReadByte(address) & ~(1 << channel % 8));
}

} // namespace

class TestFmRadio : public test::Suite
{
    Q_OBJECT

    // A locale a test chose must not reach the next data function.
    void tearDown() override { QLocale::setDefault(QLocale::c()); }

private Q_SLOTS:
    void entered_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("kept");
        QTest::addColumn<bool>("outOfRange");

        QTest::newRow("whole MHz") << u"C"_s << u"88"_s << u"88.00"_s << false;
        QTest::newRow("down onto the 50 kHz raster") << u"C"_s << u"88.123"_s << u"88.10"_s << false;
        QTest::newRow("rounding to 10 Hz reaches the next step") << u"C"_s << u"88.149996"_s << u"88.15"_s << false;
        QTest::newRow("half of 10 Hz to even reaches the next step") << u"C"_s << u"88.149995"_s << u"88.15"_s << false;
        QTest::newRow("107.97 is the top channel") << u"C"_s << u"107.97"_s << u"107.95"_s << false;
        QTest::newRow("107.975 still is") << u"C"_s << u"107.975"_s << u"107.95"_s << false;
        QTest::newRow("107.98 is too high") << u"C"_s << u"107.98"_s << u"107.95"_s << true;
        QTest::newRow("75.9 is too low") << u"C"_s << u"75.9"_s << u"76.00"_s << true;
        QTest::newRow("76 is the bottom channel") << u"C"_s << u"76"_s << u"76.00"_s << false;
        QTest::newRow("a point alone reads as 0") << u"C"_s << u"."_s << u"76.00"_s << true;
        QTest::newRow("with a point, the leading number") << u"C"_s << u"98.5.7"_s << u"98.50"_s << false;
        QTest::newRow("with a point, a comma ends the number") << u"C"_s << u"98,7.5"_s << u"98.00"_s << false;
        QTest::newRow("nothing typed keeps the text") << u"C"_s << QString() << u"99.00"_s << false;
        QTest::newRow("a comma where the point is the separator") << u"C"_s << u"1,5"_s << u"99.00"_s << false;
        QTest::newRow("1,5 with a decimal comma") << u"de_DE"_s << u"1,5"_s << u"76.00"_s << true;
        QTest::newRow("88,55 with a decimal comma") << u"de_DE"_s << u"88,55"_s << u"88.55"_s << false;
        QTest::newRow("two commas are no number") << u"de_DE"_s << u"1,2,3"_s << u"99.00"_s << false;
    }

    void entered()
    {
        QFETCH(QString, locale);
        QFETCH(QString, typed);
        QLocale::setDefault(QLocale(locale));
        const fm::Entry entry = fm::entered(typed, u"99.00"_s);
        QTEST(entry.text, "kept");
        QTEST(entry.outOfRange, "outOfRange");
    }

    void load_data()
    {
        QTest::addColumn<int>("channel"); // Vfo or 0-31
        QTest::addColumn<bool>("inUse");  // the channel's bit is 0
        QTest::addColumn<QString>("bytes");
        QTest::addColumn<QString>("shown");

        QTest::newRow("erased VFO") << Vfo << true << u"FFFFFFFF"_s << u"87.50"_s;
        QTest::newRow("VFO 107.95") << Vfo << true << u"10795000"_s << u"107.95"_s;
        QTest::newRow("VFO 0") << Vfo << true << u"00000000"_s << u"87.50"_s;
        QTest::newRow("VFO with an erased first byte") << Vfo << true << u"FF795000"_s << u"87.50"_s;
        QTest::newRow("channel 0, 87.50") << 0 << true << u"08750000"_s << u"87.50"_s;
        QTest::newRow("channel 31, off the raster") << 31 << true << u"08751250"_s << u"87.51"_s;
        QTest::newRow("channel marked empty") << 9 << false << u"08750000"_s << QString();
        QTest::newRow("channel in use but erased") << 17 << true << u"FFFFFFFF"_s << QString();
        QTest::newRow("channel in use but zero") << 24 << true << u"00000000"_s << QString();
        QTest::newRow("a digit that is no BCD ends the number") << 3 << true << u"0875A000"_s << u"0.01"_s;
    }

    void load()
    {
        QFETCH(int, channel);
        QFETCH(bool, inUse);
        QFETCH(QString, bytes);
        MemoryImage image = test::freshImage();
        put(image, channel == Vfo ? fm::VfoAddress : fm::FirstChannelAddress + 4 * channel, qPrintable(bytes));
        if (channel != Vfo && inUse)
            markInUse(image, channel);

        const fm::Texts texts = fm::load(image);
        QTEST(channel == Vfo ? texts.vfo : texts.channels[std::size_t(channel)], "shown");
        // Every other channel of the fresh image is empty.
        for (int other = 0; other < fm::ChannelCount; ++other) {
            if (other != channel)
                QVERIFY2(texts.channels[std::size_t(other)].isEmpty(), qPrintable(QString::number(other)));
        }
    }

    // Only channel 5 set: its bytes and bit, every other channel erased and
    // marked empty, the VFO encoded and the rest of rows 400 and 409 kept.
    void saveOneChannel()
    {
        MemoryImage image = test::freshImage();
        put(image, 0x1904, "123456");
        put(image, 0x1994, "ABCDEF");
        for (int channel = 0; channel < fm::ChannelCount; ++channel) {
            put(image, fm::FirstChannelAddress + 4 * channel, "09000000");
            markInUse(image, channel);
        }
        fm::Texts texts;
        texts.vfo = u"87.50"_s;
        texts.channels[5] = u"100.00"_s;
        fm::save(image, texts);

        QCOMPARE(bytesAt(image, fm::EmptyBitmapAddress, 7).toHex(), "dfffffff123456");
        QCOMPARE(bytesAt(image, 0x1924, 4).toHex(), "10000000");
        QCOMPARE(bytesAt(image, fm::VfoAddress, 7).toHex(), "08750000abcdef");
        QByteArray channels = bytesAt(image, fm::FirstChannelAddress, 128);
        channels.replace(0x14, 4, QByteArray(4, '\xFF'));
        QCOMPARE(channels, QByteArray(128, '\xFF'));
        QCOMPARE(fm::load(image).channels, texts.channels);
    }
};

QTEST_GUILESS_MAIN(TestFmRadio)
#include "TestFmRadio.moc"
