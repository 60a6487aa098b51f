// The FM radio, scramble and memory map forms, driven by keys and clicks:
// captions in each language, the grid editing rules, and what OK and Cancel
// leave in the image.
#include "TestSuite.h"
#include "Widgets.h"

#include "core/AppState.h"
#include "features/MemoryMapModel.h"
#include "features/frmMemoryMap.h"
#include "features/frmRadio.h"
#include "features/frmSMB.h"
#include "ui/MessageBox.h"

#include <QApplication>
#include <QClipboard>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTableView>
#include <QTableWidget>
#include <QTest>

using namespace wr;
using namespace Qt::StringLiterals;

namespace {

// The editor's text while it is open, "-" when it is closed.
QString editorText(const QWidget *form, const QString &name)
{
    const auto *editor = form->findChild<QLineEdit *>(name);
    return editor->isVisible() ? editor->text() : u"-"_s;
}

} // namespace

class TestFmScrambleMemoryMap : public test::Suite
{
    Q_OBJECT

    MemoryImage &image() { return app().image; }
    void setUp() override
    {
        MessageBox::reset();
        MessageBox::setAutoAnswer(true);
    }
    void tearDown() override { MessageBox::reset(); }

private Q_SLOTS:
    void radioShowsTheImage_data()
    {
        // The title, frames, headers, VFO row, buttons.
        test::languageRows<QString>({"texts"}, {u"Radio Setup|Radio|Radio CH|CH.|Frequency|VFO|OK|Cancel"_s,
                                                u"收音机设置|收音机|收音机信道|信道|频率|全频|确定|取消"_s,
                                                u"收音機設置|收音機|收機音信道|信道|頻率|全頻|確定|取消"_s});
    }

    // An erased image: 87.50 in the VFO row and 32 empty channels 0-31.
    void radioShowsTheImage()
    {
        QFETCH(int, language);
        frmRadio form(image(), Language(language));
        QCOMPARE(form.missingControls(), QStringList());
        const QTableWidget *grid = form.grid();
        const QStringList shown{form.windowTitle(),
                                form.findChild<QGroupBox *>(u"Frame1"_s)->title(),
                                form.findChild<QGroupBox *>(u"Frame2"_s)->title(),
                                grid->horizontalHeaderItem(0)->text(),
                                grid->horizontalHeaderItem(1)->text(),
                                form.cellText(frmRadio::VfoRow, 0),
                                form.findChild<QPushButton *>(u"CmdOK"_s)->text(),
                                form.findChild<QPushButton *>(u"CmdCannel"_s)->text()};
        QTEST(shown.join(u'|'), "texts");
        QCOMPARE(grid->rowCount(), 34);
        QCOMPARE(form.cellText(frmRadio::VfoRow), u"87.50"_s);
        for (int channel = 0; channel < 32; ++channel) {
            QCOMPARE(form.cellText(frmRadio::FirstChannelRow + channel, 0), QString::number(channel));
            QCOMPARE(form.cellText(frmRadio::FirstChannelRow + channel), QString());
        }
    }

    void radioEditing_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("keys");     // typed on the grid's cell
        QTest::addColumn<QString>("cell");     // the cell's text afterwards
        QTest::addColumn<bool>("told");        // the out-of-range message was shown
        QTest::addColumn<QString>("focus");    // where the focus ends
        QTest::addColumn<int>("currentRow");

        QTest::newRow("a digit starts over, Enter moves down") << 7 << 1 << u"88\r"_s << u"88.00"_s << false << u"MSRadioGrid"_s << 8;
        QTest::newRow("too high: the top channel and the message") << 7 << 1 << u"\r107.98\r"_s << u"107.95"_s << true << u"MSRadioGrid"_s << 8;
        QTest::newRow("too low: the bottom channel and the message") << 1 << 1 << u"\r75.9\r"_s << u"76.00"_s << true << u"MSRadioGrid"_s << 2;
        QTest::newRow("letters and blanks are refused") << 1 << 1 << u"\r9x 1\r"_s << u"91.00"_s << false << u"MSRadioGrid"_s << 2;
        QTest::newRow("clearing puts the text back") << 1 << 1 << u"\r\b\r"_s << u"87.50"_s << false << u"MSRadioGrid"_s << 2;
        QTest::newRow("Esc keeps the text") << 1 << 1 << u"99\x1b"_s << u"87.50"_s << false << u"MSRadioGrid"_s << 1;
        QTest::newRow("a row's name edits its frequency") << 1 << 0 << u"\r99\r"_s << u"99.00"_s << false << u"MSRadioGrid"_s << 2;
        QTest::newRow("Enter on channel 31 goes to OK") << 33 << 1 << u"\r100\r"_s << u"100.00"_s << false << u"CmdOK"_s << 33;
    }

    void radioEditing()
    {
        QFETCH(int, row);
        QFETCH(int, column);
        QFETCH(QString, keys);
        QFETCH(bool, told);
        const QByteArray before = image().bytes();
        frmRadio form(image(), English);
        test::showActive(&form);
        form.grid()->setCurrentCell(row, column);
        form.grid()->setFocus();
        test::type(keys);

        QTEST(form.cellText(row), "cell");
        QCOMPARE(MessageBox::history().size(), told ? 1 : 0);
        if (told)
            QCOMPARE(MessageBox::history().first().text, u"Frequency is out of range."_s);
        QTEST(QApplication::focusWidget()->objectName(), "focus");
        QTEST(form.grid()->currentRow(), "currentRow");
        QCOMPARE(editorText(&form, u"txtRadio"_s), u"-"_s);
        QCOMPARE(image().bytes(), before); // the grid only, until OK
    }

    void scrambleCaptions_data()
    {
        // The title, frame, OK, S0-S7 and their fields.
        const QString table = u"|S0 3.3K|S1 3.2K|S2 3.1K|S3 3.0K|S4 2.9K|S5 2.8K|S6 2.7K|S7 2.6K"_s;
        test::languageRows<QString>({"texts"}, {u"Scramble(&S)|Scramble(&S)|OK"_s + table,
                                                u"扰频(&S)|扰频(&S)|确定"_s + table, u"擾頻(&S)|擾頻(&S)|確定"_s + table});
    }

    void scrambleCaptions()
    {
        QFETCH(int, language);
        frmSMB form(image(), Language(language));
        QStringList shown{form.windowTitle(), form.findChild<QGroupBox *>(u"Frame2"_s)->title(),
                          form.findChild<QPushButton *>(u"CmdOK"_s)->text()};
        for (int index = 0; index < 8; ++index) {
            shown << form.findChild<QLabel *>(u"Label1"_s + QString::number(index))->text() + u' '
                    + form.findChild<QLineEdit *>(u"Txtsmb"_s + QString::number(index))->text();
        }
        QTEST(shown.join(u'|'), "texts");
    }

    void scrambleRefusesKeys_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::newRow("a hexadecimal digit") << int(Qt::Key_A) << int(Qt::NoModifier);
        QTest::newRow("a digit") << int(Qt::Key_7) << int(Qt::NoModifier);
        QTest::newRow("Backspace") << int(Qt::Key_Backspace) << int(Qt::NoModifier);
        QTest::newRow("Delete") << int(Qt::Key_Delete) << int(Qt::NoModifier);
        QTest::newRow("paste") << int(Qt::Key_V) << int(Qt::ControlModifier);
        QTest::newRow("cut") << int(Qt::Key_X) << int(Qt::ControlModifier);
    }

    // Every field keeps its text whatever is typed; OK leaves the image as
    // it was.
    void scrambleRefusesKeys()
    {
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QGuiApplication::clipboard()->setText(u"9.9K"_s);
        const QByteArray before = image().bytes();
        frmSMB form(image(), English);
        test::showActive(&form);
        for (int index = 0; index < 8; ++index) {
            auto *field = form.findChild<QLineEdit *>(u"Txtsmb"_s + QString::number(index));
            const QString text = field->text();
            field->setFocus();
            field->selectAll();
            QTest::keyClick(field, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
            field->end(false);
            QTest::keyClick(field, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
            QCOMPARE(field->text(), text);
        }
        QTest::mouseClick(form.findChild<QPushButton *>(u"CmdOK"_s), Qt::LeftButton);
        QCOMPARE(form.result(), int(QDialog::Accepted));
        QCOMPARE(image().bytes(), before);
    }

    // A fresh image: headers, the VFO A record in row C8, the current cell's
    // address and value.
    void mapShowsTheImage()
    {
        image().WriteByte(0x1A03, 0x5A);
        frmMemoryMap form(image(), English);
        const MemoryMapModel *model = form.model();
        QStringList rowC8;
        for (int column = 0; column < 16; ++column)
            rowC8 << model->index(0xC8, column).data().toString();
        QCOMPARE(rowC8.join(u' '), u"13 60 25 00 13 60 25 00 FF FF FF FF 00 00 4C 00"_s);
        const QStringList headers{model->headerData(0, Qt::Vertical).toString(),
                                  model->headerData(0xC8, Qt::Vertical).toString(),
                                  model->headerData(0x3FF, Qt::Vertical).toString(),
                                  model->headerData(0xF, Qt::Horizontal).toString()};
        QCOMPARE(headers, (QStringList{u"0"_s, u"C8"_s, u"3FF"_s, u"F"_s}));

        const auto labels = [&form] {
            return form.findChild<QLabel *>(u"lblAddr"_s)->text() + u' ' + form.findChild<QLabel *>(u"LblValue"_s)->text();
        };
        QCOMPARE(labels(), u"00 255"_s);
        form.grid()->setCurrentIndex(model->index(0x1A0, 3));
        QCOMPARE(labels(), u"1A03 90"_s);
        form.grid()->setCurrentIndex(model->index(0xC, 0xE));
        QCOMPARE(labels(), u"CE 255"_s);
    }

    void mapEditing_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("keys");   // typed on the grid's cell
        QTest::addColumn<QString>("cell");   // the cell's text afterwards
        QTest::addColumn<QString>("editor"); // the open editor's text, "-" when closed
        QTest::addColumn<int>("currentRow");
        QTest::addColumn<int>("currentColumn");

        QTest::newRow("a opens the editor with A") << 0xC8 << 0 << u"a"_s << u"13"_s << u"A"_s << 0xC8 << 0;
        QTest::newRow("5 then Enter stores 05, one right") << 0xC8 << 0 << u"5\r"_s << u"05"_s << u"-"_s << 0xC8 << 1;
        QTest::newRow("a third digit is refused") << 0xC8 << 0 << u"\rab7\r"_s << u"AB"_s << u"-"_s << 0xC8 << 1;
        QTest::newRow("other keys are refused") << 0xC8 << 0 << u"g\r9g\r"_s << u"09"_s << u"-"_s << 0xC8 << 1;
        QTest::newRow("cleared is FF") << 0xC8 << 0 << u"\r\b\r"_s << u"FF"_s << u"-"_s << 0xC8 << 1;
        QTest::newRow("Esc puts the text back") << 0xC8 << 0 << u"7\x1b"_s << u"13"_s << u"-"_s << 0xC8 << 0;
        QTest::newRow("end of row 7E goes on to row 7F") << 0x7E << 15 << u"\r\r"_s << u"FF"_s << u"-"_s << 0x7F << 0;
        QTest::newRow("end of row 7F stays") << 0x7F << 15 << u"\r\r"_s << u"FF"_s << u"-"_s << 0x7F << 15;
        QTest::newRow("end of row C8 stays") << 0xC8 << 15 << u"\r\r"_s << u"00"_s << u"-"_s << 0xC8 << 15;
    }

    void mapEditing()
    {
        QFETCH(int, row);
        QFETCH(int, column);
        QFETCH(QString, keys);
        QFETCH(int, currentRow);
        QFETCH(int, currentColumn);
        const QByteArray before = image().bytes();
        frmMemoryMap form(image(), English);
        test::showActive(&form);
        const QModelIndex start = form.model()->index(row, column);
        form.grid()->setCurrentIndex(start);
        form.grid()->setFocus();
        test::type(keys);

        QTEST(start.data().toString(), "cell");
        QTEST(editorText(&form, u"txtMemory"_s), "editor");
        QCOMPARE(form.grid()->currentIndex(), form.model()->index(currentRow, currentColumn));
        QCOMPARE(image().bytes(), before); // the copy only, until OK
    }

    // Once the grid scrolls, the editor would sit over another cell: the
    // edit is dropped.
    void mapScrollingCancels()
    {
        frmMemoryMap form(image(), English);
        test::showActive(&form);
        form.StartByteEdit(3, 2);
        test::type(u"\b1"_s);
        form.grid()->verticalScrollBar()->setValue(40);
        QCOMPARE(editorText(&form, u"txtMemory"_s), u"-"_s);
        QCOMPARE(form.model()->index(2, 3).data().toString(), u"FF"_s);
    }

    void mapOkAndCancel_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("keys");
        QTest::addColumn<bool>("patched");
        QTest::newRow("OK without edits") << u"cmdOK"_s << QString() << false;
        QTest::newRow("Cancel after an edit") << u"cmdCancel"_s << u"\r7E\r"_s << false;
        QTest::newRow("an edit still open at OK") << u"cmdOK"_s << u"7E"_s << true;
    }

    // Every byte differs from its neighbours, so a byte written to the wrong
    // place shows.
    void mapOkAndCancel()
    {
        QFETCH(QString, button);
        QFETCH(QString, keys);
        QFETCH(bool, patched);
        for (int address = 0; address < MemoryImage::Size; ++address)
            image().WriteByte(address, static_cast<std::uint8_t>(address * 7 + address / 256));
        QByteArray expected = image().bytes();
        if (patched)
            expected[0x3FF5] = '\x7E';
        frmMemoryMap form(image(), English);
        test::showActive(&form);
        form.grid()->setCurrentIndex(form.model()->index(0x3FF, 5));
        form.grid()->setFocus();
        test::type(keys);
        QTest::mouseClick(form.findChild<QPushButton *>(button), Qt::LeftButton);
        QVERIFY(!form.isVisible());
        QCOMPARE(image().bytes(), expected);
    }

    // What a screen reader hears on the grids' cells and the map's boxes, in
    // the interface language while the map's own captions stay English.
    void spokenTexts_data()
    {
        // The map's cell, address box, value box; the FM VFO, channel 4 typed, channel 5.
        test::languageRows<QString>(
            {"texts"},
            {u"row C8, column E, value 76, hex 4C|Address C8E|Value 76|VFO, 87.50 megahertz|Channel 4, 99.00 megahertz|"
             "Channel 5, empty"_s,
             u"第 C8 行，第 E 列，值 76，十六进制 4C|地址 C8E|值 76|全频，87.50 兆赫|信道 4，99.00 兆赫|信道 5，空"_s,
             u"第 C8 行，第 E 列，值 76，十六進位 4C|位址 C8E|值 76|全頻，87.50 兆赫|信道 4，99.00 兆赫|信道 5，空"_s});
    }

    void spokenTexts()
    {
        QFETCH(int, language);
        frmMemoryMap map(image(), Language(language));
        map.grid()->setCurrentIndex(map.model()->index(0xC8, 0xE));
        frmRadio radio(image(), Language(language));
        test::showActive(&radio);
        radio.grid()->setCurrentCell(frmRadio::FirstChannelRow + 4, 1);
        radio.grid()->setFocus();
        test::type(u"99\r"_s);
        const auto spoken = [](const QTableWidget *grid, int row) {
            return grid->item(row, 1)->data(Qt::AccessibleTextRole).toString();
        };
        const QStringList heard{map.grid()->currentIndex().data(Qt::AccessibleTextRole).toString(),
                                map.findChild<QLabel *>(u"lblAddr"_s)->accessibleName(),
                                map.findChild<QLabel *>(u"LblValue"_s)->accessibleName(),
                                spoken(radio.grid(), frmRadio::VfoRow),
                                spoken(radio.grid(), frmRadio::FirstChannelRow + 4),
                                spoken(radio.grid(), frmRadio::FirstChannelRow + 5)};
        QTEST(heard.join(u'|'), "texts");
    }
};

QTEST_MAIN(TestFmScrambleMemoryMap)
#include "TestFmScrambleMemoryMap.moc"
