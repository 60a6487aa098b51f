// The channel list driven as a user drives it: keys and clicks on the real
// form, then a look at the cells and at the memory image.

#include "ChannelListForm.h"

#include "channels/ChannelRecord.h"
#include "channels/frmChannel.h"
#include "core/AppState.h"
#include "core/FrequencyCodec.h"
#include "core/Language.h"
#include "core/ToneCodec.h"

#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>
#include <QWheelEvent>

#include <memory>
#include <optional>

using namespace wr;
using namespace Qt::StringLiterals;

namespace {

enum Col { Rx = 1, Tx, Dec, Enc, Power, Width, Scan, Bcl };

// Puts a channel into the image the way a radio holds it: the empty bit
// cleared and the scan-skip bit following the scan-add flag.
void putChannel(int n, const QString &rx, const QString &tx, const QString &decode = {},
                const QString &encode = {}, quint8 flags = 0x4C, quint8 signalling = 0x00)
{
    MemoryImage &image = app().image;
    image.setRow(n - 1, QByteArray(16, char(0xFF)));
    QVERIFY(WriteFreq(image, Side::Rx, n, rx));
    if (!tx.isEmpty())
        QVERIFY(WriteFreq(image, Side::Tx, n, tx));
    WriteTone(image, Side::Rx, n, decode);
    WriteTone(image, Side::Tx, n, tx.isEmpty() ? QString() : encode);
    image.setRow(n - 1, image.row(n - 1).left(12) + QByteArray::fromHex("0000") + char(flags) + char(signalling));
    ChannelRecord(image, n).setEmptyBit(false);
    ChannelRecord(image, n).setScanSkipBit(!(flags & 0x08));
}

QByteArray recordBytes(int n) { return app().image.row(n - 1); }
const QByteArray erased(16, char(0xFF));

QStringList cells(const char *joined) { return QString::fromUtf8(joined).split(u'|'); }

} // namespace

class TestChannelList : public test::ChannelListSuite
{
    Q_OBJECT

private:
    // The editor a cell of the column opens.
    QWidget *editorOf(int column) const
    {
        return column <= Tx ? static_cast<QWidget *>(text()) : combo(column <= Enc ? 0 : 1);
    }

private Q_SLOTS:
    void typingOnEmptyRowCreatesChannel_data()
    {
        QTest::addColumn<int>("startColumn");
        QTest::addColumn<QString>("keys");
        QTest::addColumn<QString>("stored");
        QTest::newRow("7 with power current") << int(Power) << "7" << "174.00000";
        QTest::newRow("raster snap from tx") << int(Tx) << "136.019" << "136.01875";
        QTest::newRow("comma is a group separator") << int(Rx) << "439,9999" << "490.00000";
    }

    void typingOnEmptyRowCreatesChannel()
    {
        QFETCH(int, startColumn);
        QFETCH(QString, keys);
        QFETCH(QString, stored);
        openForm();
        QVERIFY(text()->isHidden() && combo(0)->isHidden() && combo(1)->isHidden());
        setCurrentCell(20, startColumn);
        QTest::keyClick(grid(), keys.front().toLatin1());
        QCOMPARE(int(app().GridColumn), 1);
        QCOMPARE(int(app().ChannelCursor), 20);
        QVERIFY(text()->isVisible());
        QCOMPARE(text()->text(), keys.left(1));
        QTest::keyClicks(text(), keys.mid(1));
        QTest::keyClick(text(), Qt::Key_Return);

        QVERIFY(text()->isHidden());
        QCOMPARE(rowCells(20), QStringList({stored, stored}) + cells("None|None|High|Wide|On|Off"));
        QCOMPARE(grid()->currentIndex().column(), 2);
        // The new-channel bytes reach the image at once; the rest waits for SaveData.
        QCOMPARE(recordBytes(20).toHex(), QByteArray("ffffffffffffffffffffffff00004c00"));
        form->SaveData();
        QCOMPARE(ReadFreq(app().image, Side::Rx, 20), stored);
        QCOMPARE(ReadFreq(app().image, Side::Tx, 20), stored);
        QCOMPARE(recordBytes(20).mid(8, 4), QByteArray(4, char(0xFF)));
        QVERIFY(!ChannelRecord(app().image, 20).emptyBit());
        QVERIFY(!ChannelRecord(app().image, 20).scanSkipBit());
    }

    void rxOnRowWithEncodeToneChangesOnlyRx()
    {
        putChannel(5, u"145.00000"_s, u"145.60000"_s, u"88.5"_s, u"D754I"_s, 0x01, 0x82);
        openForm();
        const QByteArray before = recordBytes(5);
        const QStringList shown = cells("145.00000|145.60000|88.5|D754I|Low|Narrow|Off|Carrier");
        QCOMPARE(rowCells(5), shown);
        click(5, Rx);
        QTest::keyClicks(text(), u"146"_s);
        QTest::keyClick(text(), Qt::Key_Return);
        QCOMPARE(rowCells(5), QStringList{u"146.00000"_s} + shown.mid(1));
        QCOMPARE(recordBytes(5), before); // nothing reaches the image before a save
    }

    void clearingFrequencies()
    {
        putChannel(7, u"150.00000"_s, u"155.00000"_s, u"100.0"_s, u"D023N"_s, 0xCC, 0x4D);
        putChannel(8, u"160.00000"_s, u"165.00000"_s, u"67.0"_s, u"254.1"_s, 0x5C, 0x31);
        openForm();
        // Clearing the receive frequency empties the whole row; the transmit
        // frequency, it and the encode tone. The whole text opens selected.
        for (const auto &[row, column] : {std::pair{7, int(Rx)}, {8, int(Tx)}}) {
            enterCell(row, column);
            QTest::keyClick(text(), Qt::Key_Backspace);
            QTest::keyClick(text(), Qt::Key_Return);
        }
        QCOMPARE(rowCells(7), QStringList(8, QString()));
        QCOMPARE(rowCells(8), cells("160.00000||67.0||High|Wide|On|Off"));
        form->SaveData();
        QCOMPARE(recordBytes(7), erased);
        QVERIFY(ChannelRecord(app().image, 7).emptyBit());
        QCOMPARE(recordBytes(8).mid(4, 4) + recordBytes(8).mid(10, 2), QByteArray(6, char(0xFF)));
        QCOMPARE(quint8(recordBytes(8).at(15)), quint8(0x31));

        // A click on the encode tone of a row without tx opens its tx cell;
        // the typed frequency brings the tone back as None.
        click(8, Enc);
        QCOMPARE(int(app().GridColumn), 2);
        QVERIFY(text()->isVisible() && text()->hasFocus());
        QTest::keyClicks(text(), u"170"_s);
        QTest::keyClick(text(), Qt::Key_Return);
        QCOMPARE(cell(8, Tx), u"170.00000"_s);
        QCOMPARE(cell(8, Enc), u"None"_s);
    }

    void escapeRestoresSavedText()
    {
        putChannel(2, u"145.00000"_s, u"145.00000"_s, u"D023N"_s, u"None"_s);
        openForm();
        const QByteArray before = recordBytes(2);
        enterCell(2, Tx);
        QTest::keyClicks(text(), u"1"_s);
        QTest::keyClick(text(), Qt::Key_Escape);
        QVERIFY(text()->isHidden() && grid()->hasFocus());
        QCOMPARE(cell(2, Tx), u"145.00000"_s);
        // In a combo Esc puts the text back and leaves the combo open.
        enterCell(2, Dec);
        QTest::keyClicks(combo(0), u"12"_s);
        QTest::keyClick(combo(0), Qt::Key_Escape);
        QVERIFY(combo(0)->isVisible());
        QCOMPARE(combo(0)->currentText(), u"D023N"_s);
        QTest::keyClick(combo(0), Qt::Key_Return);
        form->SaveData();
        QCOMPARE(recordBytes(2), before);
    }

    void enterMovesOn_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("column");
        QTest::addColumn<bool>("withTx");
        QTest::addColumn<int>("nextRow");
        QTest::addColumn<int>("nextColumn");
        QTest::newRow("decode skips the missing encode") << 10 << int(Dec) << false << 10 << int(Power);
        QTest::newRow("BCL to next row") << 10 << int(Bcl) << true << 11 << int(Rx);
        QTest::newRow("last row wraps to the first") << 128 << int(Bcl) << false << 1 << int(Rx);
    }

    void enterMovesOn()
    {
        QFETCH(int, row);
        QFETCH(int, column);
        QFETCH(bool, withTx);
        QFETCH(int, nextRow);
        QFETCH(int, nextColumn);
        putChannel(row, u"146.00000"_s, withTx ? u"146.50000"_s : QString(), u"None"_s, u"77.0"_s);
        openForm();
        enterCell(row, column);
        QVERIFY(editorOf(column)->isVisible());
        QTest::keyClick(editorOf(column), Qt::Key_Return);
        QVERIFY(editorOf(column)->isHidden());
        QCOMPARE(grid()->currentIndex().row(), nextRow);
        QCOMPARE(grid()->currentIndex().column(), nextColumn);
        QCOMPARE(int(app().ChannelCursor), nextRow);
        QCOMPARE(int(app().GridColumn), nextColumn);
    }

    void toneInput_data()
    {
        QTest::addColumn<QString>("typed"); // "=": set as the text, keys cannot produce it
        QTest::addColumn<QString>("cellText");
        QTest::addColumn<QByteArray>("stored"); // bytes 8-9, low then high
        QTest::newRow("below range") << "50" << "60.0" << QByteArray::fromHex("0006");
        QTest::newRow("above range") << "300" << "259.9" << QByteArray::fromHex("9925");
        QTest::newRow("listed tone") << "88.5" << "88.5" << QByteArray::fromHex("8508");
        QTest::newRow("DCS digit above 7") << "D9" << "D007N" << QByteArray::fromHex("0780");
        QTest::newRow("DCS typed lowercase") << "d023i" << "D023I" << QByteArray::fromHex("23c0");
        QTest::newRow("other text") << "=Tone" << "None" << QByteArray::fromHex("ffff");
    }

    void toneInput()
    {
        QFETCH(QString, typed);
        putChannel(30, u"440.00000"_s, u"445.00000"_s, u"D754I"_s, u"None"_s);
        openForm();
        enterCell(30, Dec);
        QCOMPARE(combo(0)->lineEdit()->selectedText(), u"D754I"_s);
        if (typed.startsWith(u'='))
            combo(0)->setEditText(typed.mid(1));
        else
            QTest::keyClicks(combo(0), typed);
        QTest::keyClick(combo(0), Qt::Key_Return);
        QTEST(cell(30, Dec), "cellText");
        form->SaveData();
        QTEST(recordBytes(30).mid(8, 2), "stored");
    }

    // Keys the editors let through; each opens with its cell's text selected
    // (150.00000 and 88.5).
    void editorKeyFilters_data()
    {
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("keys");
        QTest::addColumn<QString>("result");
        QTest::newRow("rx letters signs spaces dropped") << int(Rx) << "1a-4 +B5,." << "145,.";
        QTest::newRow("rx nine characters at most") << int(Rx) << "1234567890" << "123456789";
        QTest::newRow("tone five characters without D") << int(Enc) << "1234567" << "12345";
        QTest::newRow("tone four characters with D") << int(Enc) << "D1234" << "D123";
        QTest::newRow("tone D only at the start") << int(Enc) << "12D" << "12";
        QTest::newRow("tone one point only") << int(Enc) << "1.2.5" << "1.25";
        QTest::newRow("tone polarity only after three digits") << int(Enc) << "D02i3n" << "D023N";
        QTest::newRow("tone polarity needs D") << int(Enc) << "1234N" << "1234";
        QTest::newRow("tone other letters dropped") << int(Enc) << "xyz" << "88.5";
    }

    void editorKeyFilters()
    {
        QFETCH(int, column);
        QFETCH(QString, keys);
        putChannel(40, u"150.00000"_s, u"150.00000"_s, {}, u"88.5"_s);
        openForm();
        enterCell(40, column);
        QTest::keyClicks(editorOf(column), keys);
        QTEST(column == Rx ? text()->text() : combo(0)->currentText(), "result");
    }

    // Leaving an editor by a click elsewhere or by scrolling keeps its text.
    // Tab and Shift+Tab walk the data cells as in a spreadsheet, without
    // opening an editor; from an open one they store it first. (Ctrl+Tab
    // leaving the grid is tried in the main window, whose document area
    // wants the key too.)
    void tabWalksTheCells_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("typed"); // into the cell's editor first
        QTest::addColumn<int>("key");       // Qt::Key_Tab or Qt::Key_Backtab
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<int>("nextRow");
        QTest::addColumn<int>("nextColumn");
        const int shift = Qt::ShiftModifier;
        QTest::newRow("along the row") << 5 << int(Dec) << QString() << int(Qt::Key_Tab) << 0 << 5 << int(Enc);
        QTest::newRow("BCL to the next receive frequency")
            << 5 << int(Bcl) << QString() << int(Qt::Key_Tab) << 0 << 6 << int(Rx);
        QTest::newRow("back from the receive frequency to BCL")
            << 6 << int(Rx) << QString() << int(Qt::Key_Backtab) << shift << 5 << int(Bcl);
        QTest::newRow("the channel number is no stop")
            << 7 << 0 << QString() << int(Qt::Key_Backtab) << shift << 6 << int(Bcl);
        QTest::newRow("the last channel wraps to the first")
            << 128 << int(Bcl) << QString() << int(Qt::Key_Tab) << 0 << 1 << int(Rx);
        QTest::newRow("from an open editor") << 5 << int(Rx) << u"147"_s << int(Qt::Key_Tab) << 0 << 5 << int(Tx);
    }

    void tabWalksTheCells()
    {
        QFETCH(int, row);
        QFETCH(int, column);
        QFETCH(QString, typed);
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QFETCH(int, nextRow);
        QFETCH(int, nextColumn);
        putChannel(5, u"146.00000"_s, u"146.50000"_s, u"None"_s, u"77.0"_s);
        openForm();
        setCurrentCell(row, column);
        grid()->setFocus();
        QWidget *target = grid();
        if (!typed.isEmpty()) {
            QTest::keyClick(grid(), Qt::Key_Return);
            QTest::keyClicks(text(), typed);
            target = text();
        }
        QTest::keyClick(target, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QVERIFY(text()->isHidden() && combo(0)->isHidden() && combo(1)->isHidden());
        if (!typed.isEmpty())
            QCOMPARE(cell(row, column), u"147.00000"_s);
        QCOMPARE(QApplication::focusWidget(), grid());
        QCOMPARE(grid()->currentIndex().row(), nextRow);
        QCOMPARE(grid()->currentIndex().column(), nextColumn);
        QCOMPARE(int(app().ChannelCursor), nextRow);
        QCOMPARE(int(app().GridColumn), nextColumn);
    }

    void leavingEditorCommits()
    {
        putChannel(2, u"150.00000"_s, u"150.00000"_s);
        openForm();
        click(2, Tx);
        QTest::keyClicks(text(), u"151"_s);
        click(3, Rx);
        QCOMPARE(cell(2, Tx), u"151.00000"_s);
        QTest::keyClicks(text(), u"147"_s);
        grid()->verticalScrollBar()->setValue(grid()->verticalScrollBar()->maximum());
        QVERIFY(text()->isHidden());
        QCOMPARE(cell(3, Rx), u"147.00000"_s);
    }

    // Each editor lies exactly over its cell (the list editors once grew or
    // shrank to their words), in every language; CTest runs this at 150 %
    // scale too.
    void editorsCoverTheirCells_data() { test::languageRows(); }

    void editorsCoverTheirCells()
    {
        QFETCH(int, language);
        app().LanguageIndex = quint8(language);
        putChannel(12, u"150.00000"_s, u"150.00000"_s, u"D023N"_s, u"67.0"_s);
        openForm();
        for (int column = Rx; column <= Bcl; ++column) {
            enterCell(12, column);
            QWidget *editor = editorOf(column);
            QVERIFY(editor->isVisible());
            QTest::qWait(40); // a combo box adjusts its size on a timer
            QCOMPARE(editor->geometry(), grid()->visualRect(grid()->model()->index(12, column)));
            QTest::keyClick(editor, Qt::Key_Return);
        }
    }

    void emptyBitShowsEmptyChannel()
    {
        putChannel(90, u"150.00000"_s, u"155.00000"_s, u"67.0"_s, u"67.0"_s, 0xCC, 0x40);
        ChannelRecord(app().image, 90).setEmptyBit(true);
        openForm();
        QCOMPARE(rowCells(90), QStringList(8, QString()));
        form->SaveData();
        QCOMPARE(recordBytes(90), erased);
        QVERIFY(ChannelRecord(app().image, 90).emptyBit());
    }

    void languageSwitch_data()
    {
        // The header of column 3, row 4's words, then the first word its power
        // list offers; what a screen reader says: the list, row 4's decode
        // cell, the list editor open on its power cell.
        test::languageRows<QString, QString>(
            {"words", "spoken"},
            {u"CTCSS/DCS Dec|None|D023N|Low|Narrow|Off|Carrier|High"_s, u"CTCSS/DCS 解码|无|D023N|低|窄|关|载波|高"_s,
             u"CTCSS/DCS 解碼|無|D023N|低|窄|關|載波|高"_s},
            {u"Channel list|decode no tone|TX Power"_s, u"信道列表|解码 无亚音|发射功率"_s, u"信道列表|解碼 無亞音|發射功率"_s});
    }

    // The list is filled in one language, then switched: captions, cells and
    // combos follow, and the words save the same bits, keeping bit 7 of the
    // flags and the signalling byte.
    void languageSwitch()
    {
        QFETCH(int, language);
        QFETCH(QString, words);
        QFETCH(QString, spoken);
        putChannel(4, u"150.00000"_s, u"150.00000"_s, u"None"_s, u"D023N"_s, 0x81, 0x82);
        app().LanguageIndex = SimplifiedChinese == language ? TraditionalChinese : SimplifiedChinese;
        openForm();
        form->SaveData();
        app().LanguageIndex = quint8(language);
        form->RefreshChannel();
        QCOMPARE(grid()->model()->headerData(Dec, Qt::Horizontal).toString(), words.section(u'|', 0, 0));
        click(4, Power);
        QCOMPARE(QStringList{cell(0, Dec)} + rowCells(4).mid(2) + QStringList{combo(1)->itemText(0)}, words.split(u'|'));
        const auto heard = [](QObject *object) {
            return QAccessible::queryAccessibleInterface(object)->text(QAccessible::Name);
        };
        QCOMPARE(QStringList({heard(form.get()), grid()->model()->index(4, Dec).data(Qt::AccessibleTextRole).toString(),
                              heard(combo(1))}),
                 spoken.split(u'|'));
        combo(1)->setCurrentIndex(0);
        QTest::keyClick(combo(1), Qt::Key_Return);
        QCOMPARE(cell(4, Power), words.section(u'|', -1));

        form->SaveData();
        QCOMPARE(recordBytes(4).mid(8).toHex(), QByteArray("ffff238000008582"));
    }

    // An image as a radio might hold it: varied channels, bits the list does
    // not edit set at random, and empty channels with leftovers in their
    // records. Loading and saving it back changes nothing but the leftovers.
    void untouchedGridRoundTrips()
    {
        QRandomGenerator random(20240517);
        const QStringList tones = BuildToneTable(English);
        QByteArray expected(16 * 128, char(0xFF));
        MemoryImage &image = app().image;
        for (int n = 1; n <= 128; ++n) {
            const int kind = random.bounded(10);
            if (kind <= 1) {
                // Empty: a deleted channel's old bytes, or an erased record.
                QByteArray leftovers = erased;
                for (int i = 0; kind == 0 && i < 16; ++i)
                    leftovers[i] = char(random.bounded(256));
                image.setRow(n - 1, leftovers);
                ChannelRecord(image, n).setEmptyBit(true);
                ChannelRecord(image, n).setScanSkipBit(random.bounded(2));
                continue;
            }
            const bool uhf = random.bounded(2);
            const qint64 base = uhf ? 40000000 : 13600000; // 10 Hz units
            const qint64 span = uhf ? 8990000 : 3800000;
            const qint64 raster = random.bounded(2) ? 500 : 625;
            const qint64 rx = base + random.bounded(int(span / raster)) * raster;
            const qint64 tx = kind == 2 ? -1 : std::clamp(rx + (random.bounded(3) - 1) * 500000, base, base + span);
            quint8 flags = quint8((random.bounded(256) & 0xCC) | random.bounded(3)); // BCL 0-2
            flags |= tx > rx ? 0x10 : tx < rx ? 0x20 : 0x00;
            putChannel(n, freq::formatTenHz(rx), tx < 0 ? QString() : freq::formatTenHz(tx),
                       tones.at(random.bounded(tones.size())), tones.at(random.bounded(tones.size())), flags,
                       quint8(random.bounded(256)));
            image.WriteByte(n - 1, 12, quint8(random.bounded(256)));
            image.WriteByte(n - 1, 13, quint8(random.bounded(256)));
            expected.replace((n - 1) * 16, 16, image.row(n - 1));
        }
        const QByteArray bitmaps = image.row(202) + image.row(203);
        openForm();
        form->SaveData();
        QCOMPARE(image.bytes().left(16 * 128).toHex(' '), expected.toHex(' '));
        QCOMPARE((image.row(202) + image.row(203)).toHex(), bitmaps.toHex());
    }

    void wheelPagesTheGrid()
    {
        openForm();
        const QPoint at = grid()->viewport()->rect().center();
        auto notch = [&](int delta, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
            QWheelEvent wheel(at, grid()->viewport()->mapToGlobal(at), QPoint(), QPoint(0, delta), Qt::NoButton,
                              modifiers, Qt::NoScrollPhase, false);
            QApplication::sendEvent(grid()->viewport(), &wheel);
        };
        // A notch moves exactly as Page Down does.
        setCurrentCell(1, Rx);
        QTest::keyClick(grid(), Qt::Key_PageDown);
        const int pageRow = grid()->currentIndex().row();
        const int pageScroll = grid()->verticalScrollBar()->value();
        QVERIFY(pageRow >= 10 && pageScroll > 0);
        setCurrentCell(1, Rx);
        grid()->verticalScrollBar()->setValue(0);
        notch(-120);
        QCOMPARE(grid()->currentIndex().row(), pageRow);
        QCOMPARE(grid()->verticalScrollBar()->value(), pageScroll);
        QCOMPARE(int(app().ChannelCursor), pageRow);
        notch(120);
        QVERIFY(grid()->currentIndex().row() <= pageRow - 10);
        // Not a plain notch: the view scrolls by itself; the current cell stays.
        const int row = grid()->currentIndex().row();
        notch(-120, Qt::ShiftModifier);
        QCOMPARE(grid()->currentIndex().row(), row);
    }
};

QTEST_MAIN(TestChannelList)
#include "TestChannelList.moc"
