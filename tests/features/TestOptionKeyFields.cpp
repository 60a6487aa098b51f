// The optional features and key setting tables without widgets: bytes of
// the image in, the texts the lists would show and the check states out;
// then those values (or the user's changes) stored, and the whole image
// compared, so a field that strays into a neighbour's bits shows.
//
// Rows name bytes as "0CEA=52 0CD7=25" on top of a fresh image, and fields
// as "CobKeyL=No Set; Check10=1" by objectName, lists by their English text
// ("" for no selection), check boxes by 0 or 1.
#include "TestSuite.h"

#include "core/ImageFields.h"
#include "features/KeyFields.h"
#include "features/OptionFields.h"
#include "features/SettingsReport.h"

#include <QTest>

using namespace wr;
using namespace Qt::StringLiterals;

namespace {

void writeBytes(MemoryImage &image, const QString &bytes)
{
    for (const QString &entry : bytes.split(u' ', Qt::SkipEmptyParts)) {
        const QStringList parts = entry.split(u'=');
        image.WriteByte(parts.at(0).toInt(nullptr, 16), quint8(parts.at(1).toInt(nullptr, 16)));
    }
}

QList<std::pair<QString, QString>> fieldsOf(const QString &fields)
{
    QList<std::pair<QString, QString>> parsed;
    for (const QString &entry : fields.split(u';', Qt::SkipEmptyParts)) {
        const qsizetype equals = entry.indexOf(u'=');
        parsed.append({entry.left(equals).trimmed(), entry.mid(equals + 1).trimmed()});
    }
    return parsed;
}

// The index of the list or check box of that name in its part of the table; -1 for none.
template <typename Fields>
qsizetype indexOf(const Fields &fields, const QString &control)
{
    const auto field = std::find_if(fields.begin(), fields.end(), [&](const auto &f) { return f.control == control; });
    return field == fields.end() ? -1 : qsizetype(field - fields.begin());
}

// What a field shows: a list's English text, a check box's 0 or 1.
QString shown(const FieldTable &table, const FieldValues &values, const QString &control)
{
    if (const qsizetype list = indexOf(table.lists, control); list >= 0)
        return table.lists[std::size_t(list)].items(English).value(values.positions.at(list));
    if (const qsizetype check = indexOf(table.checks, control); check >= 0)
        return values.checked.at(check) ? u"1"_s : u"0"_s;
    return u"(no such field)"_s;
}

void choose(const FieldTable &table, FieldValues &values, const QString &control, const QString &text)
{
    if (const qsizetype list = indexOf(table.lists, control); list >= 0)
        values.positions[list] = int(table.lists[std::size_t(list)].items(English).indexOf(text));
    else if (const qsizetype check = indexOf(table.checks, control); check >= 0)
        values.checked[check] = text == u"1";
    else
        QFAIL(qPrintable(u"no field "_s + control));
}

void addColumns()
{
    QTest::addColumn<QString>("bytes");   // written on a fresh image
    QTest::addColumn<QString>("expected"); // what the fields show
    QTest::addColumn<QString>("changes");  // what the user then chooses
    QTest::addColumn<QString>("stored");   // bytes that differ after storing
}

void loadAndStore(const FieldTable &table)
{
    QFETCH(QString, bytes);
    QFETCH(QString, expected);
    QFETCH(QString, changes);
    QFETCH(QString, stored);
    MemoryImage image = test::freshImage();
    writeBytes(image, bytes);
    MemoryImage after = image;
    writeBytes(after, stored);

    FieldValues values = loadFields(image, table);
    for (const auto &[control, text] : fieldsOf(expected))
        QCOMPARE(control + u'=' + shown(table, values, control), control + u'=' + text);
    for (const auto &[control, text] : fieldsOf(changes))
        choose(table, values, control, text);
    storeFields(image, table, values);
    QCOMPARE(image.bytes().toHex(' '), after.bytes().toHex(' '));
}

} // namespace

class TestOptionKeyFields : public test::Suite
{
    Q_OBJECT

private Q_SLOTS:
    void optionFields_data()
    {
        addColumns();
        QTest::newRow("fresh image, stored back unchanged")
            << QString()
            << u"Combo10=5; Combo11=60; Combo12=Off; Combo13=1.0; Combo14=Off; Combo15=TO; Combo16=10; Combo17=5;"
               "Combo18=Percentage; CobKeyL=Monitor; CobKeyS=Backlight; Check10=0; Check11=0; Check12=0;"
               "Check13=0; Check14=0; Check15=0"_s
            << QString() << QString();
        QTest::newRow("side key 0x52: 5 is no long press code")
            << u"0CEA=52"_s << u"CobKeyL=No Set; CobKeyS=Scan"_s << QString() << u"0CEA=02"_s;
        QTest::newRow("long press scan is not offered")
            << u"0CEA=23"_s << u"CobKeyL=No Set; CobKeyS=Backlight"_s << QString() << u"0CEA=03"_s;
        QTest::newRow("side key as the key setting leaves it")
            << u"0CEA=A6"_s << u"CobKeyL=1750; CobKeyS=Scan Add/Del"_s << QString() << QString();
        QTest::newRow("short press monitor is not offered")
            << u"0CEA=69"_s << u"CobKeyL=Scan Add/Del; CobKeyS=No Set"_s << QString() << u"0CEA=60"_s;
        QTest::newRow("VOX 0x21 is level 9")
            << u"0CD7=21"_s << u"Combo12=9"_s << QString() << QString();
        QTest::newRow("VOX 0x25 (k = 9) is off")
            << u"0CD7=25"_s << u"Combo12=Off"_s << QString() << u"0CD7=00"_s;
        QTest::newRow("VOX byte rebuilt without its stray bits")
            << u"0CD7=07"_s << u"Combo12=2"_s << QString() << u"0CD7=05"_s;
        QTest::newRow("backlight 21 is always on")
            << u"0CDD=15"_s << u"Combo16=Cont"_s << QString() << u"0CDD=00"_s;
        QTest::newRow("VOX delay 0 shows nothing and stays 0")
            << u"0CD8=00"_s << u"Combo13="_s << QString() << QString();
        QTest::newRow("VOX delay beyond 5 s shows 0.5")
            << u"0CD8=0B"_s << u"Combo13=0.5"_s << QString() << u"0CD8=01"_s;
        QTest::newRow("squelch, timer and volume beyond their lists")
            << u"0CD6=0A 0CDA=0A 0CDE=08"_s << u"Combo10=Off; Combo11=Off; Combo17=1"_s << QString()
            << u"0CD6=00 0CDA=00 0CDE=00"_s;
        QTest::newRow("bits outside the fields kept")
            << u"0CD1=20 0CD2=73"_s
            << u"Combo15=TO; Combo14=Off; Combo18=Voltage; Check10=0; Check14=0; Check15=0"_s << QString()
            << QString();
        QTest::newRow("erased settings")
            << u"0CD1=FF 0CD2=FF 0CD6=FF 0CD7=FF 0CD8=FF 0CDA=FF 0CDD=FF 0CDE=FF 0CEA=FF"_s
            << u"Combo10=Off; Combo11=Off; Combo12=Off; Combo13=0.5; Combo14=On; Combo15=TO; Combo16=Cont;"
               "Combo17=1; Combo18=Percentage; CobKeyL=No Set; CobKeyS=No Set; Check10=1; Check11=1; Check12=1;"
               "Check13=1; Check14=1; Check15=1"_s
            << QString() << u"0CD1=FC 0CD6=00 0CD7=00 0CD8=01 0CDA=00 0CDD=00 0CDE=00 0CEA=00"_s;
        QTest::newRow("every field changed")
            << QString() << QString()
            << u"Combo10=9; Combo11=270; Combo12=1; Combo13=5.0; Combo14=On; Combo15=SO; Combo16=20; Combo17=8;"
               "Combo18=Voltage; CobKeyL=1750; CobKeyS=Scan Add/Del; Check10=1; Check11=0; Check12=1;"
               "Check13=0; Check14=0; Check15=1"_s
            << u"0CD1=C6 0CD2=80 0CD6=09 0CD7=01 0CD8=0A 0CDA=09 0CDD=14 0CDE=07 0CEA=A6"_s;
        QTest::newRow("every check box cleared")
            << u"0CD1=FF 0CD2=FF"_s << QString()
            << u"Check10=0; Check11=0; Check12=0; Check13=0; Check14=0; Check15=0"_s
            << u"0CD1=A0 0CD2=7B"_s;
    }

    void optionFields() { loadAndStore(OptionFields); }

    void keyFields_data()
    {
        addColumns();
        QTest::newRow("fresh image, stored back unchanged")
            << QString()
            << u"CobKeyL0=Monitor; CobKeyS0=No Set; CobKeyL1=1750; CobKeyS1=No Set; CobKeyL2=Monitor;"
               "CobKeyS2=Backlight; CobKeyL3=High/Low Power; CobKeyS3=Vol +; CobKeyL4=Scan Add/Del;"
               "CobKeyS4=Scan; CobKeyL5=VOX; CobKeyS5=Vol -; CobKeyL6=Key Lock; CobKeyS6=Power Prompt"_s
            << QString() << QString();
        QTest::newRow("0xA3 stored back unchanged")
            << u"0CE9=A3"_s << u"CobKeyL1=1750; CobKeyS1=Backlight"_s << QString() << QString();
        QTest::newRow("0xC9: no code 12, monitor not offered for a short press")
            << u"0CEE=C9"_s << u"CobKeyL6=No Set; CobKeyS6=No Set"_s << QString() << u"0CEE=00"_s;
        QTest::newRow("erased 0xFF")
            << u"0CE8=FF"_s << u"CobKeyL0=No Set; CobKeyS0=No Set"_s << QString() << u"0CE8=00"_s;
        QTest::newRow("last codes of each list")
            << u"0CEB=B8"_s << u"CobKeyL3=Key Lock; CobKeyS3=Vol -"_s << QString() << QString();
        QTest::newRow("short press scan, which the side key offers too")
            << u"0CEA=02"_s << u"CobKeyL2=No Set; CobKeyS2=Scan"_s << QString() << QString();
        QTest::newRow("changes reach their own nibble only")
            << QString() << QString() << u"CobKeyL0=No Set; CobKeyS0=Vol -; CobKeyS6=No Set; CobKeyL2=Scan"_s
            << u"0CE8=08 0CEA=23 0CEE=B0"_s;
    }

    void keyFields() { loadAndStore(KeyFields); }

    // The settings as text, in the dialogs' words.
    void report_data()
    {
        QTest::addColumn<QString>("bytes");
        QTest::addColumn<int>("language");
        QTest::addColumn<QString>("lines"); // a run of consecutive lines of the report
        QTest::newRow("lists, English")
            << u"0CD8=00"_s << int(English)
            << u"Squelch Level: 5|Time Out Timer[s]: 60|VOX Level: Off|Delay Time[s]:|Voice Annunciation: Off"_s;
        QTest::newRow("check boxes and side key, Simplified Chinese")
            << u"0CD1=04"_s << int(SimplifiedChinese)
            << u"尾音消除: 关|侧键 长按: 监听|侧键 短按: 背光灯|P1 长按: 监听|P1 短按: 无定义"_s;
        QTest::newRow("check boxes, Traditional Chinese")
            << u"0CD1=04"_s << int(TraditionalChinese) << u"電量顯示: 百分比|鍵盤鎖: 開|自動鍵盤鎖: 關"_s;
        QTest::newRow("last key, English")
            << QString() << int(English) << u"P7 Long Press: Key Lock|P7 Short Press: Power Prompt"_s;
    }

    void report()
    {
        QFETCH(QString, bytes);
        QFETCH(int, language);
        QFETCH(QString, lines);
        MemoryImage image = test::freshImage();
        writeBytes(image, bytes);
        const QStringList report = describeSettings(image, language);
        QCOMPARE(report.size(), 9 + 6 + 2 + 2 * KeyCount);
        QVERIFY2(report.join(u'|').contains(lines), qPrintable(report.join(u'\n')));
    }
};

QTEST_MAIN(TestOptionKeyFields)
#include "TestOptionKeyFields.moc"
