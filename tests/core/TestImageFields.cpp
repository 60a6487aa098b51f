// Fields of the image described as data: bytes in, list positions and check
// states out, and back. The table is made up for the test but has the odd
// encodings real forms meet: a level kept with an on bit, a list that can
// show no selection, two nibbles of one byte offering different subsets, a
// two-bit mode sharing its byte with check boxes, and bytes rebuilt whole.
#include "TestSuite.h"

#include "core/ImageFields.h"

#include <QTest>

using namespace wr;
using namespace Qt::StringLiterals;

namespace {

constexpr int Base = 0x100;

// Level k (1-9) is stored as ((k - 1) << 2) | 1; bit 0 clear is off.
int levelCode(int stored)
{
    const int k = stored >> 2;
    return (stored & 1) && k < 9 ? k + 1 : 0;
}
int levelStored(int code)
{
    return code == 0 ? 0 : ((code - 1) << 2) | 1;
}
// 1-10 are half seconds; 0 shows no selection, anything above 10 the first entry.
int delayCode(int stored)
{
    return stored == 0 ? ListField::NoSelection : stored < 11 ? stored : 1;
}

constexpr Choice OffWord[]{{0, Words::Off}};
constexpr Choice LongPress[]{{0, {u"No Set"}}, {1, {u"Power"}}, {3, {u"Light"}}, {9, {u"Monitor"}}};
constexpr Choice ShortPress[]{{0, {u"No Set"}}, {2, {u"Scan"}}, {6, {u"Scan Add"}}};
constexpr Choice Modes[]{{0, {u"TO"}}, {1, {u"CO"}}, {2, {u"SO"}}};

constexpr ListField Lists[]{
    {.control = u"level", .bits = BitField{Base}, .words = OffWord, .numbers = {.first = 1, .last = 9},
     .codeOf = levelCode, .storedOf = levelStored},
    {.control = u"delay", .bits = BitField{Base + 1}, .numbers = {.first = 1, .last = 10, .times = 5, .decimals = 1},
     .codeOf = delayCode},
    {.control = u"long", .bits = BitField{Base + 2, 4, 4}, .words = LongPress},
    {.control = u"short", .bits = BitField{Base + 2, 0, 4}, .words = ShortPress},
    {.control = u"mode", .bits = BitField{Base + 3, 0, 2}, .words = Modes},
    {.control = u"spare", .words = Modes, .numbers = {.first = 0, .last = 7, .plus = 1}},
};
constexpr CheckField Checks[]{
    {u"lock", {u"Lock"}, BitField{Base + 3, 2, 1}},
    {u"beep", {u"Beep"}, BitField{Base + 3, 6, 1}},
};
constexpr int Rebuilt[]{Base, Base + 2};
constexpr FieldTable Table{.lists = Lists, .checks = Checks, .rebuiltBytes = Rebuilt};

MemoryImage imageWith(const QByteArray &bytes)
{
    MemoryImage image;
    for (int i = 0; i < bytes.size(); ++i)
        image.WriteByte(Base + i, quint8(bytes.at(i)));
    return image;
}

} // namespace

class TestImageFields : public test::Suite
{
    Q_OBJECT

private Q_SLOTS:
    void load_data()
    {
        QTest::addColumn<QByteArray>("bytes"); // Base .. Base + 3
        QTest::addColumn<QList<int>>("positions");
        QTest::addColumn<QList<bool>>("checked");
        QTest::newRow("erased bytes show the first entries, checks on")
            << QByteArray::fromHex("ffffffff") << QList<int>{0, 0, 0, 0, 0, -1} << QList<bool>{true, true};
        QTest::newRow("every field in range")
            << QByteArray::fromHex("210a9246") << QList<int>{9, 9, 3, 1, 2, -1} << QList<bool>{true, true};
        QTest::newRow("codes the lists do not offer")
            << QByteArray::fromHex("25355203") << QList<int>{0, 0, 0, 1, 0, -1} << QList<bool>{false, false};
        QTest::newRow("zero shows no selection where the converter says so")
            << QByteArray::fromHex("00000000") << QList<int>{0, -1, 0, 0, 0, -1} << QList<bool>{false, false};
    }

    void load()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QList<int>, positions);
        QFETCH(QList<bool>, checked);
        QCOMPARE(loadFields(imageWith(bytes), Table), (FieldValues{positions, checked}));
    }

    void store_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QList<int>>("positions");
        QTest::addColumn<QList<bool>>("checked");
        QTest::addColumn<QByteArray>("after");
        QTest::newRow("rebuilt bytes lose stray bits, shared byte keeps them")
            << QByteArray::fromHex("ffffffff") << QList<int>{3, 1, 2, 2, 1, 2} << QList<bool>{false, true}
            << QByteArray::fromHex("090236f9");
        QTest::newRow("no selection leaves the field as it is")
            << QByteArray::fromHex("ff00ffff") << QList<int>{0, -1, 0, 0, 0, -1} << QList<bool>{false, false}
            << QByteArray::fromHex("000000b8");
        QTest::newRow("last entries")
            << QByteArray::fromHex("00000000") << QList<int>{9, 9, 3, 2, 2, 11} << QList<bool>{true, false}
            << QByteArray::fromHex("210a9606");
    }

    void store()
    {
        QFETCH(QByteArray, before);
        QFETCH(QList<int>, positions);
        QFETCH(QList<bool>, checked);
        QFETCH(QByteArray, after);
        MemoryImage image = imageWith(before);
        const MemoryImage untouched = image;
        storeFields(image, Table, {positions, checked});
        QCOMPARE(image.bytes().mid(Base, after.size()).toHex(), after.toHex());
        QCOMPARE(image.bytes().left(Base), untouched.bytes().left(Base));
        QCOMPARE(image.bytes().mid(Base + after.size()), untouched.bytes().mid(Base + after.size()));
    }

    void items_data()
    {
        QTest::addColumn<int>("list");
        QTest::addColumn<int>("language");
        QTest::addColumn<QString>("items");
        QTest::newRow("word then numbers") << 0 << int(TraditionalChinese) << u"關 1 2 3 4 5 6 7 8 9"_s;
        QTest::newRow("half seconds") << 1 << int(English) << u"0.5 1.0 1.5 2.0 2.5 3.0 3.5 4.0 4.5 5.0"_s;
        QTest::newRow("numbers shifted by one") << 5 << int(English) << u"TO CO SO 1 2 3 4 5 6 7 8"_s;
    }

    void items()
    {
        QFETCH(int, list);
        QFETCH(int, language);
        QTEST(Lists[list].items(language).join(u' '), "items");
    }
};

QTEST_MAIN(TestImageFields)
#include "TestImageFields.moc"
