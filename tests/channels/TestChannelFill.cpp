// The fills' rules where the channel list's tests do not reach: long
// series of frequencies, and Fill Down from an empty cell.

#include "TestSuite.h"

#include "channels/ChannelFill.h"

#include <QTest>

using namespace wr;
using namespace Qt::StringLiterals;

class TestChannelFill : public test::Suite
{
    Q_OBJECT

private Q_SLOTS:
    void frequencySeries_data()
    {
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("step");
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("values"); // first and last; then how many went to a band edge, onto the raster
        // 127 steps of 6.25 kHz land exactly on 446.79375 MHz: no rounding creeps in.
        QTest::newRow("6.25 kHz over 128 channels") << u"446.00000"_s << u"6.25"_s << 128 << u"446.00000 446.79375 0 0"_s;
        QTest::newRow("down in 2.5 kHz, every other value off the raster")
            << u"145.1"_s << u"-2.5"_s << 4 << u"145.10000 145.09000 0 2"_s;
        QTest::newRow("past the top of the receive bands") << u"489.99"_s << u"10"_s << 3 << u"489.99000 490.00000 1 0"_s;
        QTest::newRow("below zero") << u"0.01"_s << u"-10"_s << 2 << u"174.00000 174.00000 2 0"_s;
        QTest::newRow("a step that is no number") << u"446"_s << u"-"_s << 2 << QString();
    }

    void frequencySeries()
    {
        QFETCH(QString, start);
        QFETCH(QString, step);
        QFETCH(int, count);
        QFETCH(QString, values);
        const std::optional<FrequencySeries> series = wr::frequencySeries(start, step, count, DefaultBandLimits);
        QString got;
        if (series) {
            QCOMPARE(series->values.size(), count);
            got = u"%1 %2 %3 %4"_s.arg(series->values.front(), series->values.back())
                      .arg(series->outsideBands)
                      .arg(series->offRaster);
        }
        QCOMPARE(got, values);
    }

    // A column whose top cell is empty has no value to copy: the channels below
    // keep theirs, and the next column still fills; a word of another language
    // in the top cell is still the list's word.
    void fillDownSkipsEmptyTopCells()
    {
        ChannelTable table;
        table.set(2, withRx({}, u"145.5", DefaultBandLimits, English));
        Channel receiveOnly = withTx(withRx({}, u"146", DefaultBandLimits, English), {}, DefaultBandLimits, English);
        receiveOnly.texts.power = u"低"_s;
        table.set(3, receiveOnly);
        table.set(4, withRx({}, u"147", DefaultBandLimits, English));
        const ChannelChanges changes =
            filledDown(table, {{ColTx, {3, 4}}, {ColPower, {3, 4}}, {ColRx, {1, 2}}}, DefaultBandLimits, English);
        QCOMPARE(changes.keys(), QList<int>{4});
        QCOMPARE(changes.value(4).texts.tx + u' ' + changes.value(4).texts.power, u"147.00000 Low"_s);
    }
};

QTEST_MAIN(TestChannelFill)
#include "TestChannelFill.moc"
