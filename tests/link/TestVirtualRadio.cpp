#include "LinkTestData.h"
#include "TestSupport.h"

#include "VirtualRadio.h"

#include <QTest>

using namespace wr;
using wr::sim::RadioFaults;
using wr::sim::VirtualRadio;

Q_DECLARE_METATYPE(wr::sim::RadioFaults)

namespace {

QByteArray readRequest(int row)
{
    const int address = row * 16;
    return QByteArray("R") + char(address >> 8) + char(address & 0xFF) + char(0x10);
}

QByteArray writeRequest(int row, const QByteArray &bytes)
{
    const int address = row * 16;
    return QByteArray("W") + char(address >> 8) + char(address & 0xFF) + char(0x10) + bytes;
}

QByteArray feedSplit(VirtualRadio &radio, const QByteArray &bytes, int chunk)
{
    QByteArray answer;
    for (qsizetype at = 0; at < bytes.size(); at += chunk)
        answer += radio.receive(bytes.mid(at, chunk));
    return answer;
}

} // namespace

class TestVirtualRadio : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { test::initTestProcess(); }

    void conversation_data();
    void conversation();
    void writeStoresRowAndEndCloses();
    void faultsWearOff_data();
    void faultsWearOff();
};

void TestVirtualRadio::conversation_data()
{
    QTest::addColumn<RadioFaults>("faults");
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QByteArray>("answer");

    const QByteArray row3 = QByteArray::fromHex("00112233445566778899aabbccddeeff");
    QTest::newRow("handshake and a read") << RadioFaults{} << QByteArray("PROGRAM\x02", 8) + readRequest(3)
                                          << QByteArray("\x06QAWPD6T") + readRequest(3) + row3;
    QTest::newRow("noise before PROGRAM is skipped") << RadioFaults{} << QByteArray("xxPRPROGRAM")
                                                     << QByteArray("\x06");
    QTest::newRow("nothing but PROGRAM is heard outside clone mode")
        << RadioFaults{} << QByteArray("\x02") + readRequest(3) + QByteArray("END") << QByteArray();
    QTest::newRow("a request with a bad count or address is dropped")
        << RadioFaults{} << QByteArray("PROGRAM") + QByteArray("R\x00\x31\x10", 4) + QByteArray("R\x00\x30\x08", 4)
        << QByteArray("\x06");
    RadioFaults wrongId;
    wrongId.wrongId = true;
    QTest::newRow("wrong identification") << wrongId << QByteArray("PROGRAM\x02", 8) << QByteArray("\x06QAWPD7T");
    RadioFaults noisy;
    noisy.noiseBeforeAck = true;
    QTest::newRow("noise before the ACK") << noisy << QByteArray("PROGRAM") << QByteArray("\x00\x55\xAA\x06", 4);
    RadioFaults silent;
    silent.silent = true;
    QTest::newRow("silent") << silent << QByteArray("PROGRAM\x02", 8) + readRequest(3) << QByteArray();
    RadioFaults nak;
    nak.nakWrites = true;
    QTest::newRow("refused write") << nak << QByteArray("PROGRAM") + writeRequest(3, QByteArray(16, 'x'))
                                   << QByteArray("\x06\x15");
}

void TestVirtualRadio::conversation()
{
    QFETCH(RadioFaults, faults);
    QFETCH(QByteArray, input);
    QFETCH(QByteArray, answer);
    // However the bytes are split on the way, the radio answers the same.
    for (const int chunk : {1, 3, 1000}) {
        VirtualRadio radio(faults);
        radio.memory().setRow(3, QByteArray::fromHex("00112233445566778899aabbccddeeff"));
        const MemoryImage before = radio.memory();
        QCOMPARE(feedSplit(radio, input, chunk), answer);
        QVERIFY(radio.memory() == before);
    }
}

void TestVirtualRadio::writeStoresRowAndEndCloses()
{
    VirtualRadio radio;
    test::fillPattern(radio.memory(), 1);
    const MemoryImage before = radio.memory();
    int ended = 0;
    radio.onSessionEnded = [&] { ++ended; };

    const QByteArray row = QByteArray::fromHex("0102030405060708090a0b0c0d0e0f10");
    QCOMPARE(radio.receive("PROGRAM"), QByteArray("\x06"));
    QCOMPARE(feedSplit(radio, writeRequest(416, row), 7), QByteArray("\x06"));
    QVERIFY(radio.inSession());
    QCOMPARE(radio.receive("END"), QByteArray());
    QVERIFY(!radio.inSession());
    QCOMPARE(ended, 1);
    QCOMPARE(radio.sessionsEnded(), 1);
    for (int r = 0; r < MemoryImage::RowCount; ++r)
        QCOMPARE(radio.memory().row(r), r == 416 ? row : before.row(r));
    // After END a write request is no longer heard.
    QCOMPARE(radio.receive(writeRequest(5, row)), QByteArray());
    QCOMPARE(radio.memory().row(5), before.row(5));
}

void TestVirtualRadio::faultsWearOff_data()
{
    QTest::addColumn<RadioFaults>("faults");
    QTest::addColumn<QList<int>>("answeredBeforeWakeUp"); // rows 0..n requested one by one; which answered

    RadioFaults drop;
    drop.dropReplyRow = 2;
    QTest::newRow("a dropped reply is dropped once") << drop << QList<int>{0, 1, 3, 4, 5};
    RadioFaults hangUp;
    hangUp.hangUpAfterRows = 3;
    QTest::newRow("hang-up after three rows") << hangUp << QList<int>{0, 1, 2};
}

void TestVirtualRadio::faultsWearOff()
{
    QFETCH(RadioFaults, faults);
    QFETCH(QList<int>, answeredBeforeWakeUp);
    VirtualRadio radio(faults);
    QCOMPARE(radio.receive("PROGRAM"), QByteArray("\x06"));
    QList<int> answered;
    for (int row = 0; row < 6; ++row) {
        if (!radio.receive(readRequest(row)).isEmpty())
            answered.append(row);
    }
    QCOMPARE(answered, answeredBeforeWakeUp);
    // Woken again, the radio answers everything, the same rows included.
    QCOMPARE(radio.receive("PROGRAM"), QByteArray("\x06"));
    for (int row = 0; row < 6; ++row)
        QCOMPARE(radio.receive(readRequest(row)).size(), 20);
}

QTEST_GUILESS_MAIN(TestVirtualRadio)
#include "TestVirtualRadio.moc"
