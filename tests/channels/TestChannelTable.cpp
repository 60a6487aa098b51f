// The channels as data, without a widget: the tools' plans, where pasted
// and imported rows go, and the working copy as a table model with its
// undo history.

#include "TestSuite.h"

#include "channels/ChannelHistory.h"
#include "channels/ChannelModel.h"
#include "channels/ChannelPlans.h"
#include "channels/ChannelTable.h"
#include "channels/TypedCorrection.h"
#include "core/AppState.h"

#include <QAbstractItemModelTester>
#include <QTest>
#include <QUndoStack>

using namespace wr;
using namespace Qt::StringLiterals;

namespace {

// Rows 1 to n as letters, '.' for an empty row, after a plan.
QString rearranged(const QString &rows, const RowPlan &plan)
{
    QString after = rows;
    for (const RowMove &move : plan)
        after[move.to - 1] = move.from != 0 ? rows[move.from - 1] : u'.';
    return after;
}

// A letter's receive frequency for sorting: A and a are 140 MHz, B and b
// 141 MHz, and so on; '.' is an empty row.
QString receiveOf(QChar label)
{
    return label == u'.' ? QString() : u"%1.00000"_s.arg(140 + label.toUpper().unicode() - u'A');
}

} // namespace

class TestChannelTable : public test::Suite
{
    Q_OBJECT

private Q_SLOTS:
    void plans_data()
    {
        QTest::addColumn<QString>("tool");
        QTest::addColumn<QList<int>>("rows"); // the selection; the first row for insert
        QTest::addColumn<QString>("before");  // rows 1 to the last
        QTest::addColumn<QString>("after");
        QTest::newRow("insert") << u"insert"_s << QList<int>{3} << u"ABCDEF.."_s << u"AB.CDEF."_s;
        QTest::newRow("insert at the last row") << u"insert"_s << QList<int>{8} << u"ABCDEFG."_s << u"ABCDEFG."_s;
        QTest::newRow("remove a non-contiguous selection")
            << u"remove"_s << QList<int>{2, 4} << u"ABCDEF.."_s << u"ACEF...."_s;
        QTest::newRow("remove the last row") << u"remove"_s << QList<int>{8} << u"ABCDEFGH"_s << u"ABCDEFG."_s;
        QTest::newRow("move a block up") << u"up"_s << QList<int>{3, 4} << u"ABCDEF.."_s << u"ACDBEF.."_s;
        QTest::newRow("move a non-contiguous selection down")
            << u"down"_s << QList<int>{2, 4} << u"ABCDEF.."_s << u"ACBEDF.."_s;
        QTest::newRow("move a non-contiguous selection up to the top")
            << u"up"_s << QList<int>{2, 3, 6} << u"ABCDEFG."_s << u"BCADFEG."_s;
        QTest::newRow("move the last row up") << u"up"_s << QList<int>{8} << u"ABCDEFGH"_s << u"ABCDEFHG"_s;
        QTest::newRow("no move above the first row") << u"up"_s << QList<int>{1, 3} << u"ABCDEFGH"_s << u"ABCDEFGH"_s;
        QTest::newRow("no move below the last row") << u"down"_s << QList<int>{5, 8} << u"ABCDEFGH"_s << u"ABCDEFGH"_s;
        QTest::newRow("sort: equal frequencies keep their order, empty rows last")
            << u"sort"_s << QList<int>{1, 2, 3, 4, 5, 6} << u"CbAB.a.."_s << u"AabBC..."_s;
        QTest::newRow("sort a non-contiguous selection in its rows")
            << u"sort"_s << QList<int>{1, 4, 6, 8} << u"DxyCzBwA"_s << u"AxyBzCwD"_s;
    }

    void plans()
    {
        QFETCH(QString, tool);
        QFETCH(QList<int>, rows);
        QFETCH(QString, before);
        const int last = int(before.size());
        RowPlan plan;
        if (tool == u"insert") {
            plan = planInsert(rows.front(), last);
        } else if (tool == u"remove") {
            plan = planRemove(rows, last);
        } else if (tool == u"sort") {
            QStringList receive;
            for (int row : rows)
                receive << receiveOf(before[row - 1]);
            plan = planSort(rows, receive);
        } else {
            plan = planMove(rows, tool == u"up" ? -1 : +1, last);
        }
        QTEST(rearranged(before, plan), "after");
    }

    // Rows as "Location" tokens: a number, x for none, ? after a number for
    // a row that did not become a channel. Placed: the channel, - for a row
    // that goes nowhere, > outside 1-128, = replaced by a later row.
    void placeRows_data()
    {
        QTest::addColumn<QString>("rows");
        QTest::addColumn<int>("pasteAt");
        QTest::addColumn<QString>("placed");
        QTest::addColumn<int>("firstZero");
        QTest::newRow("imported to their Locations") << u"3 5 x 9?"_s << 0 << u"3 5 - -"_s << -1;
        QTest::newRow("a text counting from 0") << u"2 0? 0 128"_s << 0 << u"3 - 1 >"_s << 1;
        QTest::newRow("the later of two rows wins") << u"7 7 8"_s << 0 << u"= 7 8"_s << -1;
        QTest::newRow("pasted: the distances kept") << u"5 3 x"_s << 20 << u"22 20 -"_s << -1;
        QTest::newRow("pasted past channel 128") << u"1 2 4"_s << 127 << u"127 128 >"_s << -1;
        QTest::newRow("pasted: a row not taken still sets the distance") << u"1? 3"_s << 10 << u"- 12"_s << -1;
        QTest::newRow("pasted: Location 0 is only the lowest") << u"0 1"_s << 5 << u"5 6"_s << -1;
    }

    void placeRows()
    {
        QFETCH(QString, rows);
        QFETCH(int, pasteAt);
        QList<RowLocation> locations;
        for (const QString &token : rows.split(u' ')) {
            bool number = false;
            const int location = QString(token).remove(u'?').toInt(&number);
            locations.append({number ? std::optional(location) : std::nullopt, !token.endsWith(u'?')});
        }
        const Placement placement = wr::placeRows(locations, pasteAt);
        QStringList shown;
        for (const PlacedRow &row : placement.rows) {
            const QChar marks[]{u'-', u'>', u'='};
            shown << (row.outcome == PlacedRow::Placed ? QString::number(row.channel)
                                                       : QString(marks[row.outcome - PlacedRow::NotAChannel]));
        }
        QTEST(shown.join(u' '), "placed");
        QTEST(placement.firstZero, "firstZero");
    }

    // The model over a working copy, checked by Qt's model tester all along:
    // a created channel's bytes 12-15 reach the image at once and go back on
    // undo. (A language switch keeping the history is tried on the list:
    // TestChannelTools' reloadOrLanguageSwitch.)
    void modelAndHistory()
    {
        MemoryImage &image = app().image;
        image.setRow(ChannelRow(5), QByteArray::fromHex("1450000014500000ffffffff123456ff"));
        ChannelRecord(image, 5).setEmptyBit(true);
        ChannelModel model;
        const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        ChannelHistory history(model, image);
        model.setTable(ChannelTable::load(image, English), English);
        QCOMPARE(model.table().at(5).hidden, (Channel::Hidden{0x12, 0x34, 0x56, 0xFF})); // carried while empty
        QCOMPARE(model.rowCount(), 129);
        QCOMPARE(model.index(7, ColNumber).data().toString(), u"7"_s);

        const Channel created = withRx(model.table().at(5), u"145.5"_s, DefaultBandLimits, English);
        history.change(Text(u"Edit"), {{5, created}}, {}, {});
        QCOMPARE(model.index(5, ColPower).data().toString(), u"High"_s);
        QCOMPARE(image.row(ChannelRow(5)).mid(12).toHex(), QByteArray("00004c00"));
        history.change(Text(u"Edit"), {{5, created}}, {}, {}); // nothing differs: no step
        QCOMPARE(history.stack()->count(), 1);

        history.stack()->undo();
        QCOMPARE(model.index(5, ColRx).data().toString(), QString());
        QCOMPARE(image.row(ChannelRow(5)).mid(12).toHex(), QByteArray("123456ff"));
        history.stack()->redo();
        QCOMPARE(model.index(5, ColScanAdd).data().toString(), u"On"_s);

        // Saving writes the cells and the bytes 12-15 of the channels in use.
        MemoryImage saved = image;
        saved.setRow(ChannelRow(5), QByteArray(16, '\0'));
        model.table().save(saved);
        QCOMPARE(saved.row(ChannelRow(5)).toHex(), QByteArray("1455000014550000ffffffff00004c00"));
        QVERIFY(ChannelTable::load(saved, English).savesAs(model.table()));
    }

    // What a screen reader hears on the cells, in the language of the words.
    void spokenCells_data()
    {
        // Channel 12: Rx, Tx (none), decode, encode (none), power; channel 3:
        // decode (none), encode, lockout; channel 7 (empty): number, Rx.
        test::languageRows<QString>(
            {"heard"},
            {u"Channel 12, Rx 145.50000 megahertz|no Tx frequency|decode tone D023 inverted|encode no tone|power Low|"
             "decode no tone|encode tone 88.5 hertz|busy channel lockout Carrier|Channel 7, empty|Channel 7, empty"_s,
             u"信道 12，接收 145.50000 兆赫|无发射频率|解码 数字亚音 D023 反相|编码 无亚音|功率 低|"
             "解码 无亚音|编码 亚音 88.5 赫兹|繁忙锁定 载波|信道 7，空|信道 7，空"_s,
             u"信道 12，接收 145.50000 兆赫|無發射頻率|解碼 數字亞音 D023 反相|編碼 無亞音|功率 低|"
             "解碼 無亞音|編碼 亞音 88.5 赫茲|繁忙鎖定 載波|信道 7，空|信道 7，空"_s});
    }

    void spokenCells()
    {
        QFETCH(int, language);
        const Language in = Language(language);
        ChannelTable table;
        table.set(12, {{u"145.50000"_s, {}, u"D023I"_s, {}, Words::Low.in(in), Words::Wide.in(in), Words::On.in(in),
                        Words::Off.in(in)}, Channel::Created});
        table.set(3, {{u"146.00000"_s, u"146.60000"_s, Words::None.in(in), u"88.5"_s, Words::High.in(in),
                       Words::Narrow.in(in), Words::Off.in(in), Words::Carrier.in(in)}, Channel::Created});
        ChannelModel model;
        model.setTable(table, in);
        QStringList spoken;
        for (const auto &[row, column] : {std::pair{12, ColRx}, {12, ColTx}, {12, ColDecode}, {12, ColEncode},
                                          {12, ColPower}, {3, ColDecode}, {3, ColEncode}, {3, ColBcl},
                                          {7, ColNumber}, {7, ColRx}})
            spoken << model.index(row, column).data(Qt::AccessibleTextRole).toString();
        QTEST(spoken.join(u'|'), "heard");
    }

    // What the status bar says when a typed value was stored as another,
    // and nothing when only its writing changed.
    void typedCorrections_data()
    {
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("stored"); // as the list stored it
        QTest::addColumn<int>("language");
        QTest::addColumn<QString>("line");   // empty: no correction
        QTest::newRow("below the band") << 1 << u"7"_s << u"174.00000"_s << 0
                                        << u"Channel 7 Rx: 7 → 174.00000, below the band"_s;
        QTest::newRow("above the band, Simplified") << 1 << u"1234"_s << u"490.00000"_s << 1
                                                    << u"信道 7 接收：1234 → 490.00000，高于频段"_s;
        QTest::newRow("between the bands, Traditional") << 2 << u"300"_s << u"174.00000"_s << 2
                                                        << u"信道 7 發射：300 → 174.00000，在兩個頻段之間"_s;
        QTest::newRow("onto the raster") << 1 << u"136.0237"_s << u"136.02000"_s << 0
                                         << u"Channel 7 Rx: 136.0237 → 136.02000, moved onto the channel raster"_s;
        QTest::newRow("the same value written shorter") << 1 << u"146.52"_s << u"146.52000"_s << 0 << QString();
        QTest::newRow("the band's top") << 2 << u"174"_s << u"174.00000"_s << 0 << QString();
        QTest::newRow("a cleared frequency") << 1 << QString() << QString() << 0 << QString();
        QTest::newRow("tone below the range") << 3 << u"50"_s << u"60.0"_s << 0
                                              << u"Channel 7 Dec: 50 → 60.0, below 60.0 Hz"_s;
        QTest::newRow("tone above the range, Simplified") << 4 << u"300"_s << u"259.9"_s << 1
                                                          << u"信道 7 编码：300 → 259.9，高于 259.9 Hz"_s;
        QTest::newRow("tone rounded") << 3 << u"88.55"_s << u"88.6"_s << 0
                                      << u"Channel 7 Dec: 88.55 → 88.6, rounded to 0.1 Hz"_s;
        QTest::newRow("DCS digit above 7, Traditional") << 3 << u"D9"_s << u"D007N"_s << 2
                                                        << u"信道 7 解碼：D9 → D007N，DCS 數字最大為 7"_s;
        QTest::newRow("not a tone") << 4 << u"Tone"_s << u"None"_s << 0 << u"Channel 7 Enc: Tone → None, not a tone"_s;
        QTest::newRow("a tone off the radio's list stays") << 3 << u"69.0"_s << u"69.0"_s << 0 << QString();
        QTest::newRow("a DCS code completed") << 4 << u"D023"_s << u"D023N"_s << 0 << QString();
        QTest::newRow("the no-tone word of another language") << 3 << u"無"_s << u"None"_s << 0 << QString();
    }

    void typedCorrections()
    {
        QFETCH(int, column);
        QFETCH(QString, typed);
        QFETCH(QString, stored);
        QFETCH(int, language);
        const std::optional<TypedCorrection> correction =
            column <= ColTx ? frequencyCorrection(7, column, typed, stored, DefaultBandLimits)
                            : toneCorrection(7, column, typed, stored);
        QTEST(correction ? correction->text(Language(language)) : QString(), "line");
    }
};

QTEST_GUILESS_MAIN(TestChannelTable)
#include "TestChannelTable.moc"
