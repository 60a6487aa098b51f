// The channel list driven as a user drives it: keys and clicks on the real
// form, then a look at the cells and at the memory image.

#include "TestSupport.h"

#include "channels/ChannelRecord.h"
#include "channels/frmChannel.h"
#include "core/AppState.h"
#include "core/FrequencyCodec.h"
#include "core/Language.h"
#include "core/ToneCodec.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTest>
#include <QWheelEvent>

#include <memory>

using namespace wr;

namespace {

enum Col { Rx = 1, Tx, Dec, Enc, Power, Width, Scan, Bcl };

struct Channel
{
    QString rx, tx, decode, encode;
    std::uint8_t flags = 0x4C;
    std::uint8_t signalling = 0x00;
};

// Puts a channel into the image the way a radio would hold it: frequencies,
// tones, flag bytes, the empty bit cleared and the scan-skip bit following
// the scan-add flag.
void putChannel(int n, const Channel &c)
{
    MemoryImage &image = app().image;
    const int row = n - 1;
    for (int column = 0; column < 16; ++column)
        image.WriteByte(row, column, 0xFF);
    QVERIFY(WriteFreq(image, Side::Rx, n, c.rx));
    if (!c.tx.isEmpty())
        QVERIFY(WriteFreq(image, Side::Tx, n, c.tx));
    WriteTone(image, Side::Rx, n, c.decode);
    WriteTone(image, Side::Tx, n, c.tx.isEmpty() ? QString() : c.encode);
    image.WriteByte(row, 12, 0x00);
    image.WriteByte(row, 13, 0x00);
    image.WriteByte(row, 14, c.flags);
    image.WriteByte(row, 15, c.signalling);
    ChannelRecord record(image, n);
    record.setEmptyBit(false);
    record.setScanSkipBit(!(c.flags & 0x08));
}

QByteArray recordBytes(int n)
{
    return app().image.row(n - 1);
}

// A string list from UTF-8 literals.
QStringList texts(std::initializer_list<const char *> items)
{
    QStringList list;
    for (const char *item : items)
        list << QString::fromUtf8(item);
    return list;
}

QByteArray erasedRecord()
{
    return QByteArray(16, char(0xFF));
}

} // namespace

class TestChannelList : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<test::Fixture> m_fixture;
    std::unique_ptr<frmChannel> m_form;

    void openForm()
    {
        m_form = std::make_unique<frmChannel>();
        m_form->show();
        m_form->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_form.get()));
        grid()->setFocus();
    }
    QTableWidget *grid() const { return m_form->findChild<QTableWidget *>(QStringLiteral("ChannelGrid")); }
    QLineEdit *text() const { return m_form->findChild<QLineEdit *>(QStringLiteral("TxtChannel")); }
    QComboBox *combo(int index) const
    {
        return m_form->findChild<QComboBox *>(QStringLiteral("CboChannel%1").arg(index));
    }
    QString cell(int row, int column) const { return grid()->item(row, column)->text(); }
    QString word(const Triple &triple) const { return triple.in(app().LanguageIndex); }

    void clickCell(int row, int column, Qt::MouseButton button = Qt::LeftButton,
                   Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        const QModelIndex index = grid()->model()->index(row, column);
        grid()->scrollTo(index);
        QTest::mouseClick(grid()->viewport(), button, modifiers, grid()->visualRect(index).center());
    }
    // Makes (row, column) current and presses Enter on the grid.
    void enterCell(int row, int column)
    {
        grid()->setCurrentCell(row, column);
        grid()->setFocus();
        QTest::keyClick(grid(), Qt::Key_Return);
    }

private Q_SLOTS:
    void initTestCase() { test::initTestProcess(); }

    void init()
    {
        m_fixture = std::make_unique<test::Fixture>();
        app().LanguageIndex = English;
        app().ToneTable = BuildToneTable(English);
    }

    void cleanup()
    {
        m_form.reset();
        m_fixture.reset();
    }

    void opensWithGridLaidOut()
    {
        putChannel(3, {QStringLiteral("145.50000"), QStringLiteral("145.00000"), QStringLiteral("88.5"),
                       QStringLiteral("D023N")});
        openForm();
        QCOMPARE(grid()->rowCount(), 129);
        QCOMPARE(grid()->columnCount(), 9);
        QCOMPARE(int(app().ChannelCursor), 1);
        QCOMPARE(int(app().GridColumn), 1);
        QCOMPARE(cell(0, 3), QStringLiteral("CTCSS/DCS Dec"));
        QCOMPARE(grid()->horizontalHeaderItem(8)->text(), QStringLiteral("BCL"));
        QCOMPARE(grid()->horizontalHeaderItem(1)->foreground().color(), QColor(19, 58, 149));
        QCOMPARE(grid()->horizontalHeaderItem(1)->font().pointSize(), 10);
        QCOMPARE(cell(128, 0), QStringLiteral("128"));
        QCOMPARE(grid()->item(7, 0)->foreground().color(), QColor(Qt::blue));
        QCOMPARE(grid()->item(7, 0)->font().pointSize(), 12);
        QVERIFY(grid()->columnWidth(1) >= 83);
        const QStringList row3{cell(3, Rx), cell(3, Tx), cell(3, Dec), cell(3, Enc),
                               cell(3, Power), cell(3, Width), cell(3, Scan), cell(3, Bcl)};
        QCOMPARE(row3, texts({"145.50000", "145.00000", "88.5", "D023N", "High", "Wide", "On", "Off"}));
        QVERIFY(cell(4, Rx).isEmpty());
        QVERIFY(text()->isHidden() && combo(0)->isHidden() && combo(1)->isHidden());

        // The grid fills the window when it is resized.
        m_form->resize(600, 400);
        QTRY_COMPARE(grid()->geometry(), m_form->rect());
    }

    void typingOnEmptyRowCreatesChannel_data()
    {
        QTest::addColumn<int>("startColumn");
        QTest::addColumn<QString>("keys");
        QTest::addColumn<QString>("rx");
        QTest::addColumn<QString>("tx");

        QTest::newRow("7 with power current") << int(Power) << "7" << "174.00000" << "174.00000";
        QTest::newRow("7 in rx") << int(Rx) << "7" << "174.00000" << "174.00000";
        QTest::newRow("point with tone current") << int(Enc) << "." << "174.00000" << "174.00000";
        QTest::newRow("typed frequency in BCL") << int(Bcl) << "145.52" << "145.52000" << "145.52000";
        QTest::newRow("raster snap") << int(Tx) << "136.019" << "136.01875" << "136.01875";
        QTest::newRow("UHF") << int(Width) << "439.9999" << "439.99500" << "439.99500";
        QTest::newRow("comma as group separator in C") << int(Rx) << "439,9999" << "490.00000" << "490.00000";
    }

    void typingOnEmptyRowCreatesChannel()
    {
        QFETCH(int, startColumn);
        QFETCH(QString, keys);
        QFETCH(QString, rx);
        QFETCH(QString, tx);
        openForm();
        const int row = 20;
        grid()->setCurrentCell(row, startColumn);
        QTest::keyClick(grid(), keys.front().toLatin1());

        QCOMPARE(int(app().GridColumn), 1);
        QCOMPARE(int(app().ChannelCursor), row);
        QVERIFY(text()->isVisible());
        QCOMPARE(text()->text(), keys.left(1));
        QCOMPARE(text()->cursorPosition(), 1);
        QTest::keyClicks(text(), keys.mid(1));
        QTest::keyClick(text(), Qt::Key_Return);

        QVERIFY(text()->isHidden());
        QCOMPARE(cell(row, Rx), rx);
        QCOMPARE(cell(row, Tx), tx);
        QCOMPARE(cell(row, Dec), QStringLiteral("None"));
        QCOMPARE(cell(row, Enc), QStringLiteral("None"));
        QCOMPARE(cell(row, Power), QStringLiteral("High"));
        QCOMPARE(cell(row, Width), QStringLiteral("Wide"));
        QCOMPARE(cell(row, Scan), QStringLiteral("On"));
        QCOMPARE(cell(row, Bcl), QStringLiteral("Off"));
        QCOMPARE(int(app().GridColumn), 2);
        QCOMPARE(grid()->currentColumn(), 2);

        // The new-channel bytes are in the image before any save; the rest of
        // the record waits for SaveData.
        QCOMPARE(recordBytes(row).mid(12), QByteArray::fromHex("00004c00"));
        QCOMPARE(recordBytes(row).left(12), QByteArray(12, char(0xFF)));

        m_form->SaveData();
        QCOMPARE(ReadFreq(app().image, Side::Rx, row), rx);
        QCOMPARE(ReadFreq(app().image, Side::Tx, row), tx);
        QCOMPARE(recordBytes(row).mid(8, 4), QByteArray(4, char(0xFF)));
        QCOMPARE(quint8(recordBytes(row).at(14)), quint8(0x4C));
        QVERIFY(!ChannelRecord(app().image, row).emptyBit());
        QVERIFY(!ChannelRecord(app().image, row).scanSkipBit());
    }

    void rxOnRowWithEncodeToneChangesOnlyRx()
    {
        putChannel(5, {QStringLiteral("145.00000"), QStringLiteral("145.60000"), QStringLiteral("88.5"),
                       QStringLiteral("D754I"), 0x01, 0x82});
        openForm();
        const QByteArray before = recordBytes(5);
        enterCell(5, Rx);
        QTest::keyClicks(text(), QStringLiteral("146"));
        QTest::keyClick(text(), Qt::Key_Enter);
        QCOMPARE(cell(5, Rx), QStringLiteral("146.00000"));
        QCOMPARE(cell(5, Tx), QStringLiteral("145.60000"));
        QCOMPARE(cell(5, Dec), QStringLiteral("88.5"));
        QCOMPARE(cell(5, Power), QStringLiteral("Low"));
        QCOMPARE(cell(5, Bcl), QStringLiteral("Carrier"));
        QCOMPARE(recordBytes(5), before); // nothing reaches the image before a save
    }

    void clearingFrequencies()
    {
        putChannel(7, {QStringLiteral("150.00000"), QStringLiteral("155.00000"), QStringLiteral("100.0"),
                       QStringLiteral("D023N"), 0xCC, 0x4D});
        putChannel(8, {QStringLiteral("160.00000"), QStringLiteral("165.00000"), QStringLiteral("67.0"),
                       QStringLiteral("254.1"), 0x5C, 0x31});
        openForm();

        // Clearing the receive frequency empties the whole row.
        enterCell(7, Rx);
        QCOMPARE(text()->selectedText(), QStringLiteral("150.00000"));
        QTest::keyClick(text(), Qt::Key_Backspace);
        QTest::keyClick(text(), Qt::Key_Return);
        for (int column = Rx; column <= Bcl; ++column)
            QVERIFY2(cell(7, column).isEmpty(), qPrintable(QString::number(column)));

        // Clearing the transmit frequency empties it and the encode tone ...
        enterCell(8, Tx);
        QTest::keyClick(text(), Qt::Key_Backspace);
        QTest::keyClick(text(), Qt::Key_Return);
        QVERIFY(cell(8, Tx).isEmpty());
        QVERIFY(cell(8, Enc).isEmpty());
        QCOMPARE(cell(8, Dec), QStringLiteral("67.0"));

        m_form->SaveData();
        QCOMPARE(recordBytes(7), erasedRecord());
        QVERIFY(ChannelRecord(app().image, 7).emptyBit());
        QCOMPARE(recordBytes(8).mid(4, 4), QByteArray(4, char(0xFF)));
        QCOMPARE(recordBytes(8).mid(10, 2), QByteArray(2, char(0xFF)));
        QCOMPARE(quint8(recordBytes(8).at(15)), quint8(0x31));

        // ... and a transmit frequency typed again brings the tone back as
        // None; a key on the encode tone of such a row goes to its tx cell.
        grid()->setCurrentCell(8, Enc);
        QTest::keyClick(grid(), '1');
        QCOMPARE(int(app().GridColumn), 2);
        QTest::keyClicks(text(), QStringLiteral("70"));
        QTest::keyClick(text(), Qt::Key_Return);
        QCOMPARE(cell(8, Tx), QStringLiteral("170.00000"));
        QCOMPARE(cell(8, Enc), QStringLiteral("None"));
    }

    void escapeRestoresSavedText()
    {
        putChannel(2, {QStringLiteral("145.00000"), QStringLiteral("145.00000"), QStringLiteral("D023N"),
                       QStringLiteral("None")});
        openForm();
        const QByteArray before = recordBytes(2);

        enterCell(2, Tx);
        QTest::keyClicks(text(), QStringLiteral("1"));
        QCOMPARE(text()->text(), QStringLiteral("1"));
        QTest::keyClick(text(), Qt::Key_Escape);
        QVERIFY(text()->isHidden());
        QCOMPARE(cell(2, Tx), QStringLiteral("145.00000"));
        QVERIFY(grid()->hasFocus());

        // In a combo Esc puts the text back and leaves the combo open.
        enterCell(2, Dec);
        QVERIFY(combo(0)->isVisible());
        QTest::keyClicks(combo(0), QStringLiteral("12"));
        QCOMPARE(combo(0)->currentText(), QStringLiteral("12"));
        QTest::keyClick(combo(0), Qt::Key_Escape);
        QVERIFY(combo(0)->isVisible());
        QCOMPARE(combo(0)->currentText(), QStringLiteral("D023N"));
        QTest::keyClick(combo(0), Qt::Key_Return);
        QCOMPARE(cell(2, Dec), QStringLiteral("D023N"));

        m_form->SaveData();
        QCOMPARE(recordBytes(2), before);
    }

    void enterMovesOn_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("column");
        QTest::addColumn<bool>("withTx");
        QTest::addColumn<int>("nextRow");
        QTest::addColumn<int>("nextColumn");

        QTest::newRow("rx to tx") << 10 << int(Rx) << true << 10 << int(Tx);
        QTest::newRow("tx to decode") << 10 << int(Tx) << true << 10 << int(Dec);
        QTest::newRow("decode to encode") << 10 << int(Dec) << true << 10 << int(Enc);
        QTest::newRow("decode skips the missing encode") << 10 << int(Dec) << false << 10 << int(Power);
        QTest::newRow("encode to power") << 10 << int(Enc) << true << 10 << int(Power);
        QTest::newRow("scan add to BCL") << 10 << int(Scan) << true << 10 << int(Bcl);
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
        putChannel(row, {QStringLiteral("146.00000"), withTx ? QStringLiteral("146.50000") : QString(),
                         QStringLiteral("None"), QStringLiteral("77.0")});
        openForm();
        enterCell(row, column);
        QWidget *editor = column <= Tx ? static_cast<QWidget *>(text())
                          : column <= Enc ? static_cast<QWidget *>(combo(0))
                                          : static_cast<QWidget *>(combo(1));
        QVERIFY(editor->isVisible());
        QTest::keyClick(editor, Qt::Key_Return);
        QVERIFY(editor->isHidden());
        QCOMPARE(grid()->currentRow(), nextRow);
        QCOMPARE(grid()->currentColumn(), nextColumn);
        QCOMPARE(int(app().ChannelCursor), nextRow);
        QCOMPARE(int(app().GridColumn), nextColumn);
        QVERIFY(grid()->hasFocus());
    }

    void toneInput_data()
    {
        QTest::addColumn<QString>("keys");
        QTest::addColumn<QString>("typed"); // set as the combo's text when keys cannot produce it
        QTest::addColumn<QString>("cellText");
        QTest::addColumn<QByteArray>("stored"); // bytes 8-9, low then high

        QTest::newRow("below range") << "50" << "" << "60.0" << QByteArray::fromHex("0006");
        QTest::newRow("above range") << "300" << "" << "259.9" << QByteArray::fromHex("9925");
        QTest::newRow("listed tone") << "88.5" << "" << "88.5" << QByteArray::fromHex("8508");
        QTest::newRow("unlisted tone kept") << "100" << "" << "100.0" << QByteArray::fromHex("0010");
        QTest::newRow("top of range") << "259.9" << "" << "259.9" << QByteArray::fromHex("9925");
        QTest::newRow("DCS digit above 7") << "D9" << "" << "D007N" << QByteArray::fromHex("0780");
        QTest::newRow("DCS typed lowercase") << "d023i" << "" << "D023I" << QByteArray::fromHex("23c0");
        QTest::newRow("DCS too large") << "D999" << "" << "D777N" << QByteArray::fromHex("7787");
        QTest::newRow("DCS without digits") << "D" << "" << "D000N" << QByteArray::fromHex("0080");
        QTest::newRow("other text") << "" << "Tone" << "None" << QByteArray::fromHex("ffff");
        QTest::newRow("emptied") << "" << "" << "None" << QByteArray::fromHex("ffff");
        QTest::newRow("Chinese no-tone word") << "" << "无" << "None" << QByteArray::fromHex("ffff");
    }

    void toneInput()
    {
        QFETCH(QString, keys);
        QFETCH(QString, typed);
        QFETCH(QString, cellText);
        QFETCH(QByteArray, stored);
        putChannel(30, {QStringLiteral("440.00000"), QStringLiteral("445.00000"), QStringLiteral("D754I"),
                        QStringLiteral("None")});
        openForm();
        enterCell(30, Dec);
        QComboBox *box = combo(0);
        QVERIFY(box->isVisible());
        QCOMPARE(box->lineEdit()->selectedText(), QStringLiteral("D754I"));
        if (keys.isEmpty())
            box->setEditText(typed);
        else
            QTest::keyClicks(box, keys);
        QTest::keyClick(box, Qt::Key_Return);
        QCOMPARE(cell(30, Dec), cellText);
        m_form->SaveData();
        QCOMPARE(recordBytes(30).mid(8, 2), stored);
    }

    void textEditorKeys_data()
    {
        QTest::addColumn<QString>("keys");
        QTest::addColumn<QString>("result");

        QTest::newRow("digits and separators") << "14,5.2" << "14,5.2";
        QTest::newRow("letters discarded") << "1a4Bx5" << "145";
        QTest::newRow("signs and spaces discarded") << "-1 +4=" << "14";
        QTest::newRow("nine characters at most") << "1234567890" << "123456789";
        QTest::newRow("backspace") << "146\b7" << "147";
    }

    void textEditorKeys()
    {
        QFETCH(QString, keys);
        QFETCH(QString, result);
        putChannel(12, {QStringLiteral("146.00000"), QStringLiteral("146.00000"), {}, {}});
        openForm();
        enterCell(12, Rx);
        QTest::keyClick(text(), Qt::Key_Backspace); // the whole text was selected
        for (QChar c : keys) {
            if (c == u'\b')
                QTest::keyClick(text(), Qt::Key_Backspace);
            else
                QTest::keyClick(text(), c.toLatin1());
        }
        QCOMPARE(text()->text(), result);
        QApplication::clipboard()->setText(QStringLiteral("x1"));
        QTest::keyClick(text(), Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(text()->text(), result);
    }

    void toneComboKeys_data()
    {
        QTest::addColumn<QString>("start");
        QTest::addColumn<bool>("selected");
        QTest::addColumn<QString>("keys");
        QTest::addColumn<QString>("result");

        QTest::newRow("digit replaces a selected text") << "88.5" << true << "1" << "1";
        QTest::newRow("five characters without D") << "" << false << "1234567" << "12345";
        QTest::newRow("four characters with D") << "" << false << "D1234" << "D123";
        QTest::newRow("d becomes D") << "" << false << "d" << "D";
        QTest::newRow("D replaces a selected text") << "67.0" << true << "D" << "D";
        QTest::newRow("D only at the start") << "12" << false << "D" << "12";
        QTest::newRow("point not first") << "" << false << "." << "";
        QTest::newRow("one point only") << "12" << false << ".5." << "12.5";
        QTest::newRow("no point after four characters") << "1234" << false << "." << "1234";
        QTest::newRow("polarity after three digits") << "D023" << false << "n" << "D023N";
        QTest::newRow("inverted polarity") << "D023" << false << "I" << "D023I";
        QTest::newRow("polarity too early") << "D02" << false << "i" << "D02";
        QTest::newRow("polarity needs D") << "1234" << false << "N" << "1234";
        QTest::newRow("other letters discarded") << "" << false << "xyz" << "";
        QTest::newRow("backspace") << "D02" << false << "\b" << "D0";
    }

    void toneComboKeys()
    {
        QFETCH(QString, start);
        QFETCH(bool, selected);
        QFETCH(QString, keys);
        QFETCH(QString, result);
        putChannel(40, {QStringLiteral("150.00000"), QStringLiteral("150.00000"), {}, {}});
        openForm();
        enterCell(40, Enc);
        QComboBox *box = combo(0);
        QVERIFY(box->isVisible());
        box->setEditText(start);
        if (selected)
            box->lineEdit()->selectAll();
        else
            box->lineEdit()->end(false);
        for (QChar c : keys) {
            if (c == u'\b')
                QTest::keyClick(box, Qt::Key_Backspace);
            else
                QTest::keyClick(box, c.toLatin1());
        }
        QCOMPARE(box->currentText(), result);
    }

    void listComboOffersColumnChoices_data()
    {
        QTest::addColumn<int>("column");
        QTest::addColumn<QStringList>("choices");
        QTest::addColumn<int>("pick");
        QTest::addColumn<quint8>("flags");

        QTest::newRow("power") << int(Power) << texts({"High", "Low"}) << 1 << quint8(0xC8);
        QTest::newRow("bandwidth") << int(Width) << texts({"Wide", "Narrow"}) << 1 << quint8(0x8C);
        QTest::newRow("scan add") << int(Scan) << texts({"Off", "On"}) << 0 << quint8(0xC4);
        QTest::newRow("BCL") << int(Bcl) << texts({"Off", "Carrier", "Opt.Signal"}) << 2 << quint8(0xCE);
    }

    void listComboOffersColumnChoices()
    {
        QFETCH(int, column);
        QFETCH(QStringList, choices);
        QFETCH(int, pick);
        QFETCH(quint8, flags);
        putChannel(50, {QStringLiteral("150.00000"), QStringLiteral("150.00000"), {}, {}, 0xCC, 0xFF});
        openForm();
        clickCell(50, column);
        QComboBox *box = combo(1);
        QVERIFY(box->isVisible());
        QStringList offered;
        for (int i = 0; i < box->count(); ++i)
            offered << box->itemText(i);
        QCOMPARE(offered, choices);
        QCOMPARE(box->currentText(), cell(50, column));
        QTest::keyClick(box, 'x'); // discarded
        QCOMPARE(box->currentText(), cell(50, column));
        box->setCurrentIndex(pick);
        QTest::keyClick(box, Qt::Key_Return);
        QCOMPARE(cell(50, column), choices.at(pick));
        m_form->SaveData();
        QCOMPARE(quint8(recordBytes(50).at(14)), flags);
        QCOMPARE(quint8(recordBytes(50).at(15)), quint8(0xFF));
        QCOMPARE(ChannelRecord(app().image, 50).scanSkipBit(), !(flags & 0x08));
    }

    void clicksForceTheColumn_data()
    {
        QTest::addColumn<bool>("withRx");
        QTest::addColumn<bool>("withTx");
        QTest::addColumn<int>("clicked");
        QTest::addColumn<int>("edited");
        QTest::addColumn<QString>("editor");

        QTest::newRow("empty row opens rx") << false << false << int(Scan) << int(Rx) << "TxtChannel";
        QTest::newRow("empty row number cell") << false << false << 0 << int(Rx) << "TxtChannel";
        QTest::newRow("encode without tx opens tx") << true << false << int(Enc) << int(Tx) << "TxtChannel";
        QTest::newRow("encode with tx") << true << true << int(Enc) << int(Enc) << "CboChannel0";
        QTest::newRow("decode") << true << false << int(Dec) << int(Dec) << "CboChannel0";
        QTest::newRow("bandwidth") << true << true << int(Width) << int(Width) << "CboChannel1";
    }

    void clicksForceTheColumn()
    {
        QFETCH(bool, withRx);
        QFETCH(bool, withTx);
        QFETCH(int, clicked);
        QFETCH(int, edited);
        QFETCH(QString, editor);
        if (withRx)
            putChannel(60, {QStringLiteral("150.00000"), withTx ? QStringLiteral("151.00000") : QString(),
                            QStringLiteral("None"), QStringLiteral("None")});
        openForm();
        clickCell(60, clicked);
        QCOMPARE(int(app().ChannelCursor), 60);
        QCOMPARE(int(app().GridColumn), edited);
        QWidget *open = m_form->findChild<QWidget *>(editor);
        QVERIFY(open->isVisible());
        QCOMPARE(QApplication::focusWidget() == open || open->isAncestorOf(QApplication::focusWidget()), true);
        const QRect cellRect = grid()->visualRect(grid()->model()->index(60, edited));
        QCOMPARE(open->geometry().topLeft(), cellRect.topLeft());
    }

    void listComboShowsItsWordWhole_data()
    {
        QTest::addColumn<int>("language");
        QTest::addColumn<int>("column");
        QTest::addColumn<bool>("gridEdgeAtColumn"); // the grid ends where the column does

        QTest::newRow("English BCL, room to the right") << int(English) << int(Bcl) << false;
        QTest::newRow("English BCL at the grid's edge") << int(English) << int(Bcl) << true;
        QTest::newRow("English W/N") << int(English) << int(Width) << false;
        QTest::newRow("Simplified BCL at the grid's edge") << int(SimplifiedChinese) << int(Bcl) << true;
        QTest::newRow("Traditional scan add") << int(TraditionalChinese) << int(Scan) << false;
    }

    // A list column is as wide as its words, not its words plus the combo's
    // arrow; the open combo stands out of the cell instead, and stays inside
    // the grid.
    void listComboShowsItsWordWhole()
    {
        QFETCH(int, language);
        QFETCH(int, column);
        QFETCH(bool, gridEdgeAtColumn);
        app().LanguageIndex = static_cast<quint8>(language);
        app().ToneTable = BuildToneTable(language);
        putChannel(5, {QStringLiteral("150.00000"), QStringLiteral("150.00000"), QStringLiteral("None"),
                       QStringLiteral("None")});
        openForm();
        if (gridEdgeAtColumn) {
            int columns = 0;
            for (int c = 0; c <= column; ++c)
                columns += grid()->columnWidth(c);
            m_form->resize(m_form->width() - grid()->viewport()->width() + columns, m_form->height());
            QTRY_COMPARE(grid()->viewport()->width(), columns);
        }
        enterCell(5, column);
        QComboBox *open = combo(1);
        QVERIFY(open->isVisible());
        QVERIFY2(open->width() >= open->sizeHint().width(),
                 qPrintable(QStringLiteral("%1 < %2").arg(open->width()).arg(open->sizeHint().width())));
        for (int i = 0; i < open->count(); ++i) {
            QVERIFY2(grid()->fontMetrics().horizontalAdvance(open->itemText(i)) < open->width(),
                     qPrintable(open->itemText(i)));
        }
        const QRect cellRect = grid()->visualRect(grid()->model()->index(5, column));
        QCOMPARE(open->geometry().top(), cellRect.top());
        QVERIFY(grid()->viewport()->rect().contains(open->geometry()));
        if (!gridEdgeAtColumn)
            QCOMPARE(open->geometry().left(), cellRect.left());
        QVERIFY(open->geometry().intersects(cellRect));
    }

    void focusLeavingEditorCommits()
    {
        putChannel(2, {QStringLiteral("150.00000"), QStringLiteral("150.00000"), {}, {}});
        putChannel(3, {QStringLiteral("160.00000"), QStringLiteral("160.00000"), {}, {}});
        openForm();
        const int scrolled = grid()->verticalScrollBar()->value();
        clickCell(2, Tx);
        QTest::keyClicks(text(), QStringLiteral("151"));
        clickCell(3, Dec); // the click commits row 2 and opens row 3's tone
        QCOMPARE(grid()->verticalScrollBar()->value(), scrolled);
        QCOMPARE(cell(2, Tx), QStringLiteral("151.00000"));
        QVERIFY(text()->isHidden());
        QVERIFY(combo(0)->isVisible());
        QCOMPARE(int(app().ChannelCursor), 3);

        // Tab leaves the combo for the grid, which commits too.
        QTest::keyClicks(combo(0), QStringLiteral("D25"));
        QTest::keyClick(combo(0), Qt::Key_Tab);
        QCOMPARE(cell(3, Dec), QStringLiteral("D025N"));
        QVERIFY(combo(0)->isHidden());

        clickCell(3, Enc);
        QTest::keyClicks(combo(0), QStringLiteral("7"));
        m_form->commitOpenEditor();
        QCOMPARE(cell(3, Enc), QStringLiteral("60.0"));
        QVERIFY(combo(0)->isHidden());
        QVERIFY(grid()->hasFocus());
    }

    void keysOnTheGrid_data()
    {
        QTest::addColumn<int>("column");
        QTest::addColumn<int>("key");
        QTest::addColumn<QString>("editor"); // empty: nothing opens

        QTest::newRow("digit in rx") << int(Rx) << int(Qt::Key_4) << "TxtChannel";
        QTest::newRow("letter in rx") << int(Rx) << int(Qt::Key_A) << "";
        QTest::newRow("digit in a tone") << int(Dec) << int(Qt::Key_4) << "";
        QTest::newRow("enter in a tone") << int(Dec) << int(Qt::Key_Return) << "CboChannel0";
        QTest::newRow("enter in BCL") << int(Bcl) << int(Qt::Key_Enter) << "CboChannel1";
        QTest::newRow("enter in the number column") << 0 << int(Qt::Key_Return) << "";
    }

    void keysOnTheGrid()
    {
        QFETCH(int, column);
        QFETCH(int, key);
        QFETCH(QString, editor);
        putChannel(9, {QStringLiteral("150.00000"), QStringLiteral("150.00000"), {}, {}});
        openForm();
        grid()->setCurrentCell(9, column);
        QTest::keyClick(grid(), Qt::Key(key));
        for (const QString &name : {QStringLiteral("TxtChannel"), QStringLiteral("CboChannel0"),
                                    QStringLiteral("CboChannel1")})
            QCOMPARE(m_form->findChild<QWidget *>(name)->isVisible(), name == editor);
        if (editor == QStringLiteral("TxtChannel"))
            QCOMPARE(text()->text(), QStringLiteral("4"));
        // Arrow keys still move around the grid.
        m_form->commitOpenEditor();
        QTest::keyClick(grid(), Qt::Key_Down);
        QCOMPARE(int(app().ChannelCursor), 10);
    }

    void emptyChannelsShowEmpty_data()
    {
        QTest::addColumn<int>("damage"); // -1: empty bit set; else the rx byte erased
        QTest::newRow("empty bit set") << -1;
        QTest::newRow("rx byte 2 erased") << 2;
        QTest::newRow("rx byte 0 erased") << 0;
    }

    void emptyChannelsShowEmpty()
    {
        QFETCH(int, damage);
        putChannel(90, {QStringLiteral("150.00000"), QStringLiteral("155.00000"), QStringLiteral("67.0"),
                        QStringLiteral("67.0"), 0xCC, 0x40});
        if (damage < 0)
            ChannelRecord(app().image, 90).setEmptyBit(true);
        else
            app().image.WriteByte(89, damage, 0xFF);
        openForm();
        for (int column = Rx; column <= Bcl; ++column)
            QVERIFY(cell(90, column).isEmpty());
        m_form->SaveData();
        QCOMPARE(recordBytes(90), erasedRecord());
        QVERIFY(ChannelRecord(app().image, 90).emptyBit());
    }

    void saveKeepsSignallingAndBit7_data()
    {
        QTest::addColumn<quint8>("flags");
        QTest::addColumn<quint8>("signalling");
        QTest::newRow("bit 7 set, DTMF PTT ID") << quint8(0xC5) << quint8(0x82);
        QTest::newRow("bit 7 clear, kept bits 4-5") << quint8(0x49) << quint8(0x3F);
        QTest::newRow("all set") << quint8(0xFF) << quint8(0xFF);
    }

    void saveKeepsSignallingAndBit7()
    {
        QFETCH(quint8, flags);
        QFETCH(quint8, signalling);
        putChannel(100, {QStringLiteral("450.00000"), QStringLiteral("455.00000"), {}, {}, flags, signalling});
        openForm();
        // Edit every list column and both frequencies.
        for (int column : {int(Power), int(Width), int(Scan), int(Bcl)}) {
            clickCell(100, column);
            combo(1)->setCurrentIndex(combo(1)->currentIndex() == 0 ? 1 : 0);
            QTest::keyClick(combo(1), Qt::Key_Return);
        }
        clickCell(100, Tx);
        QTest::keyClicks(text(), QStringLiteral("445"));
        QTest::keyClick(text(), Qt::Key_Return);
        m_form->SaveData();
        QCOMPARE(quint8(recordBytes(100).at(15)), signalling);
        QCOMPARE(quint8(recordBytes(100).at(14)) & 0x80, flags & 0x80);
        QCOMPARE(quint8(recordBytes(100).at(14)) & 0x30, 0x20); // transmit below receive
    }

    void languageSwitch_data()
    {
        QTest::addColumn<int>("language");
        QTest::addColumn<QString>("header");
        QTest::addColumn<QStringList>("words");

        QTest::newRow("Simplified") << int(SimplifiedChinese) << "CTCSS/DCS 解码"
                                    << texts({"无", "低", "窄", "关", "载波"});
        QTest::newRow("Traditional") << int(TraditionalChinese) << "CTCSS/DCS 解碼"
                                     << texts({"無", "低", "窄", "關", "載波"});
        QTest::newRow("English") << int(English) << "CTCSS/DCS Dec"
                                 << texts({"None", "Low", "Narrow", "Off", "Carrier"});
    }

    void languageSwitch()
    {
        QFETCH(int, language);
        QFETCH(QString, header);
        QFETCH(QStringList, words);
        putChannel(4, {QStringLiteral("150.00000"), QStringLiteral("150.00000"), QStringLiteral("None"),
                       QStringLiteral("D023N"), 0x81, 0x00});
        putChannel(6, {QStringLiteral("151.00000"), QStringLiteral("151.00000"), {}, {}, 0x4E, 0x00});
        app().LanguageIndex = SimplifiedChinese == language ? TraditionalChinese : SimplifiedChinese;
        openForm();

        // Words of the language the form was filled in are saved correctly
        // after the switch, too.
        m_form->SaveData();
        app().LanguageIndex = quint8(language);
        m_form->RefreshChannel();
        QCOMPARE(grid()->horizontalHeaderItem(Dec)->text(), header);
        QCOMPARE(cell(0, Dec), header);
        QCOMPARE((QStringList{cell(4, Dec), cell(4, Power), cell(4, Width), cell(4, Scan), cell(4, Bcl)}), words);
        QCOMPARE(cell(4, Enc), QStringLiteral("D023N"));

        // The list combo offers the new language; the tone combo's no-tone entry too.
        clickCell(4, Power);
        QCOMPARE(combo(1)->itemText(0), Words::High().in(language));
        QTest::keyClick(combo(1), Qt::Key_Escape);
        QTest::keyClick(combo(1), Qt::Key_Return);
        clickCell(4, Dec);
        QCOMPARE(combo(0)->itemText(0), Words::None().in(language));
        QTest::keyClick(combo(0), Qt::Key_Return);

        // Cells holding words of every language save the same bits.
        grid()->item(6, Power)->setText(Words::Low().in((language + 1) % 3));
        grid()->item(6, Width)->setText(Words::Narrow().in((language + 2) % 3));
        grid()->item(6, Scan)->setText(Words::Off().in((language + 1) % 3));
        grid()->item(6, Bcl)->setText(Words::OptSignal().in((language + 2) % 3));
        grid()->item(6, Dec)->setText(Words::None().in((language + 1) % 3));
        m_form->SaveData();
        QCOMPARE(quint8(recordBytes(6).at(14)), quint8(0x02));
        QVERIFY(ChannelRecord(app().image, 6).scanSkipBit());
        QCOMPARE(quint8(recordBytes(4).at(14)), quint8(0x81));
        QCOMPARE(recordBytes(4).mid(8, 4), QByteArray::fromHex("ffff2380"));
    }

    // An image as a radio might hold it: varied channels, bits the list does
    // not edit set at random, and empty channels with leftovers in their
    // records. Loading it into the grid and saving it back changes nothing but
    // the leftovers of the empty channels.
    void untouchedGridRoundTrips()
    {
        QRandomGenerator random(20240517);
        const QStringList tones = BuildToneTable(English);
        QByteArray expected(16 * 128, char(0xFF));
        MemoryImage &image = app().image;
        for (int n = 1; n <= 128; ++n) {
            const int kind = random.bounded(10);
            if (kind == 0) {
                // Empty with leftovers: a deleted channel's old bytes.
                for (int column = 0; column < 16; ++column)
                    image.WriteByte(n - 1, column, quint8(random.bounded(256)));
                ChannelRecord(image, n).setEmptyBit(true);
                ChannelRecord(image, n).setScanSkipBit(random.bounded(2));
                continue;
            }
            if (kind == 1) {
                for (int column = 0; column < 16; ++column)
                    image.WriteByte(n - 1, column, 0xFF);
                ChannelRecord(image, n).setEmptyBit(true);
                continue;
            }
            const bool uhf = random.bounded(2);
            const qint64 base = uhf ? 40000000 : 13600000; // 10 Hz units
            const qint64 span = uhf ? 8990000 : 3800000;
            const qint64 raster = random.bounded(2) ? 500 : 625;
            const qint64 rx = base + random.bounded(int(span / raster)) * raster;
            const qint64 offset = (random.bounded(3) - 1) * 500000;
            const qint64 tx = std::clamp(rx + offset, base, base + span);
            Channel c;
            c.rx = freq::formatTenHz(rx);
            c.tx = kind == 2 ? QString() : freq::formatTenHz(tx);
            c.decode = tones.at(random.bounded(tones.size()));
            c.encode = tones.at(random.bounded(tones.size()));
            const int order = c.tx.isEmpty() ? -1 : c.tx.compare(c.rx);
            c.flags = quint8(random.bounded(256) & 0xCF & ~0x03);
            c.flags |= quint8(random.bounded(3)); // BCL 0-2
            c.flags |= order > 0 ? 0x10 : order < 0 ? 0x20 : 0x00;
            c.signalling = quint8(random.bounded(256));
            putChannel(n, c);
            image.WriteByte(n - 1, 12, quint8(random.bounded(256)));
            image.WriteByte(n - 1, 13, quint8(random.bounded(256)));
            expected.replace((n - 1) * 16, 16, image.row(n - 1));
        }
        // Scan-skip bits of empty channels are whatever the radio left.
        const QByteArray emptyBitmap = image.row(202);
        const QByteArray skipBitmap = image.row(203);

        openForm();
        m_form->SaveData();
        QCOMPARE(image.bytes().left(16 * 128).toHex(' '), expected.toHex(' '));
        QCOMPARE(image.row(202).toHex(), emptyBitmap.toHex());
        QCOMPARE(image.row(203).toHex(), skipBitmap.toHex());
    }

    void wheelPagesTheGrid()
    {
        openForm();
        grid()->setCurrentCell(1, Rx);
        grid()->setFocus();
        QTRY_VERIFY(grid()->hasFocus());
        const QPoint at = grid()->viewport()->rect().center();
        auto notch = [&](int delta, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
            QWheelEvent wheel(at, grid()->viewport()->mapToGlobal(at), QPoint(), QPoint(0, delta), Qt::NoButton,
                              modifiers, Qt::NoScrollPhase, false);
            QApplication::sendEvent(grid()->viewport(), &wheel);
        };
        // A notch moves exactly as Page Down does.
        QTest::keyClick(grid(), Qt::Key_PageDown);
        const int pageRow = grid()->currentRow();
        const int pageScroll = grid()->verticalScrollBar()->value();
        grid()->setCurrentCell(1, Rx);
        grid()->verticalScrollBar()->setValue(0);
        notch(-120);
        QCOMPARE(grid()->currentRow(), pageRow);
        QCOMPARE(grid()->verticalScrollBar()->value(), pageScroll);
        const int first = grid()->currentRow();
        QVERIFY2(first >= 10, qPrintable(QString::number(first)));
        QVERIFY(grid()->verticalScrollBar()->value() > 0);
        QCOMPARE(int(app().ChannelCursor), first);
        notch(-120);
        const int second = grid()->currentRow();
        QVERIFY(second >= first + 10);
        notch(120);
        const int back = grid()->currentRow();
        QVERIFY(back <= second - 10);
        // Not a plain notch: the view scrolls by itself; the current cell stays.
        notch(-120, Qt::ShiftModifier);
        QCOMPARE(grid()->currentRow(), back);
    }

    void scrollingCommitsTheEditor()
    {
        openForm();
        clickCell(3, Rx);
        QTest::keyClicks(text(), QStringLiteral("147"));
        grid()->verticalScrollBar()->setValue(grid()->verticalScrollBar()->maximum());
        QVERIFY(text()->isHidden());
        QCOMPARE(cell(3, Rx), QStringLiteral("147.00000"));
    }

    void memoryMapGestureSavesFirst()
    {
        putChannel(15, {QStringLiteral("150.00000"), QStringLiteral("150.00000"), {}, {}});
        openForm();
        QSignalSpy spy(m_form.get(), &frmChannel::memoryMapRequested);
        clickCell(15, Rx);
        QTest::keyClicks(text(), QStringLiteral("162.5"));
        clickCell(20, Scan, Qt::RightButton, Qt::ShiftModifier | Qt::ControlModifier);
        QCOMPARE(spy.count(), 0); // Alt missing
        QCOMPARE(ReadFreq(app().image, Side::Rx, 15), QStringLiteral("150.00000"));
        clickCell(20, Scan, Qt::RightButton, Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier);
        QCOMPARE(spy.count(), 1);
        QVERIFY(text()->isHidden());
        QCOMPARE(ReadFreq(app().image, Side::Rx, 15), QStringLiteral("162.50000"));
    }

    void closingSaves()
    {
        openForm();
        clickCell(1, Rx);
        QTest::keyClicks(text(), QStringLiteral("433"));
        m_form->close();
        QCOMPARE(ReadFreq(app().image, Side::Rx, 1), QStringLiteral("433.00000"));
        QVERIFY(!ChannelRecord(app().image, 1).emptyBit());
    }
};

QTEST_MAIN(TestChannelList)
#include "TestChannelList.moc"
