// Many channels at once, as a user works on them: the filter line, cells
// selected with Shift and Ctrl by mouse and keys, Ctrl+Enter, Ctrl+D, the
// context menu and its dialogs. Then a look at the rows shown and at the
// memory image, and at it again after undo.

#include "ChannelListForm.h"

#include <QLabel>
#include <QSignalSpy>
#include <QUndoStack>

using namespace wr;
using namespace Qt::StringLiterals;

namespace {

// The rows of two images that differ, one line each; "" when none does.
QString differences(const QByteArray &got, const QByteArray &expected)
{
    QStringList lines;
    for (int row = 0; row < MemoryImage::RowCount; ++row) {
        const QByteArray a = got.mid(row * 16, 16), b = expected.mid(row * 16, 16);
        if (a != b)
            lines << u"row %1: %2, expected %3"_s.arg(row).arg(QString::fromLatin1(a.toHex()),
                                                             QString::fromLatin1(b.toHex()));
    }
    return lines.join(u'\n');
}

// An image with rows replaced: "2=1455000014560000238054c702221182" gives
// channel 2's record (row 1), "r202=..." row 202.
QByteArray withRows(QByteArray image, const QString &rows)
{
    for (const QString &entry : rows.split(u' ', Qt::SkipEmptyParts)) {
        const QString where = entry.section(u'=', 0, 0);
        const int row = where.startsWith(u'r') ? where.mid(1).toInt() : where.toInt() - 1;
        image.replace(row * 16, 16, QByteArray::fromHex(entry.section(u'=', 1).toLatin1()));
    }
    return image;
}

} // namespace

class TestChannelBulkEdit : public test::ChannelListSuite
{
    Q_OBJECT

    // Channels 1-3, 5 and 6 in use, each with a signalling byte of its own:
    //
    //   ch  rx         tx         dec    enc    power  W/N     scan  BCL
    //   1   146.00000  146.00000  88.5   88.5   High   Wide    On    Off
    //   2   145.00000  145.60000  D023N  D754I  Low    Narrow  Off   Carrier
    //   3   147.00000             67.0          Low    Wide    On    Off
    //   5   446.00625  446.00625  None   100.0  High   Narrow  On    Opt.Signal
    //   6   439.00000  434.00000  None   None   Low    Wide    Off   Off
    void setUp() override
    {
        ChannelListSuite::setUp();
        putChannels({u"1|146.00000|146.00000|88.5|88.5|High|Wide|On|Off|11",
                     u"2|145.00000|145.60000|D023N|D754I|Low|Narrow|Off|Carrier|82",
                     u"3|147.00000||67.0||Low|Wide|On|Off|40",
                     u"5|446.00625|446.00625|None|100.0|High|Narrow|On|Opt.Signal|0C",
                     u"6|439.00000|434.00000|None|None|Low|Wide|Off|Off|01"});
    }

private Q_SLOTS:
    // Every word typed must be found in one cell of a channel, in the words of
    // the interface; empty channels go while any word is typed.
    void filter_data()
    {
        QTest::addColumn<int>("language");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<int>("count"); // as the status bar gets it
        const struct
        {
            const char *name;
            Text typed;
            const char *shown;
            int count;
        } rows[]{
            {"nothing typed", {u""}, "all", -1},
            {"spaces only", {u"  \u3000 "}, "all", -1},
            {"a frequency", {u"446"}, "5", 1},
            {"a number matches channels and cells, never empty rows", {u"1"}, "1 2 3 5", 4},
            {"power and W/N words, each in its own cell", {u"wide low", u"宽 低", u"寬\u3000低"}, "3 6", 2},
            {"a DCS code in another case and a frequency", {u"d754i 145."}, "2", 1},
            {"no channel", {u"low 446"}, "", 0},
        };
        for (int language = English; language < LanguageCount; ++language) {
            for (const auto &row : rows) {
                QTest::addRow("%s, %s", row.name, test::LanguageNames[language])
                    << language << row.typed.in(language) << QString::fromLatin1(row.shown) << row.count;
            }
        }
    }

    void filter()
    {
        QFETCH(int, language);
        QFETCH(QString, typed);
        QFETCH(int, count);
        openForm(Language(language));
        QSignalSpy counts(form.get(), &frmChannel::channelsShown);
        typeFilter(typed);
        QTEST(shownChannels(), "shown");
        QCOMPARE(counts.size(), typed.size()); // a count at every keystroke
        QCOMPARE(counts.isEmpty() ? -1 : counts.constLast().at(0).toInt(), count);
        QCOMPARE(form->cellText(6, ColNumber), u"6"_s); // rows keep their channels
    }

    // Typing never moves the focus; Enter or Down moves it to the first channel
    // shown, Esc clears the line, Tab leaves it.
    void filterKeepsTheFocus()
    {
        openForm();
        run(u"c6.5 Escape"_s);
        typeFilter(u"low"_s);
        QCOMPARE(QApplication::focusWidget(), filterLine());
        QTest::keyClick(filterLine(), Qt::Key_Down);
        QCOMPARE(QApplication::focusWidget(), grid());
        QCOMPARE(grid()->currentIndex(), grid()->model()->index(2, ColPower));

        typeFilter(u"zzz"_s); // Ctrl+F selected "low": it is replaced
        QCOMPARE(filterLine()->text(), u"zzz"_s);
        QTest::keyClick(filterLine(), Qt::Key_Enter, Qt::KeypadModifier);
        QCOMPARE(QApplication::focusWidget(), filterLine()); // no channel to go to
        QTest::keyClick(filterLine(), Qt::Key_Escape);
        QCOMPARE(filterLine()->text(), QString());
        QCOMPARE(shownChannels(), u"all"_s);
        QTest::keyClick(filterLine(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), grid());
    }

    // An edit leaves its row shown until the filter applies again: when its
    // text changes, or the language switches. Tools on the selected channels
    // leave the hidden ones alone.
    void filterLeavesEditsAndHiddenRowsAlone()
    {
        openForm();
        typeFilter(u"low"_s);
        run(u"c2.5 Up Return"_s); // channel 2's power: High
        QCOMPARE(form->cellText(2, ColPower), u"High"_s);
        QCOMPARE(shownChannels(), u"2 3 6"_s);
        typeFilter(u"low "_s);
        QCOMPARE(shownChannels(), u"3 6"_s);
        run(u"Tab Return"_s); // the current cell is on hidden channel 2: no editor opens unseen
        QCOMPARE(QApplication::focusWidget(), grid());

        run(u"n3 +n6 Delete"_s); // rows 3 to 6 selected, only 3 and 6 shown
        QCOMPARE(form->cellText(5, ColRx), u"446.00625"_s);
        QCOMPARE(form->cellText(3, ColRx) + form->cellText(6, ColRx), QString());

        form->SaveData(); // as the main window's language switch does
        app().LanguageIndex = SimplifiedChinese;
        QSignalSpy counts(form.get(), &frmChannel::channelsShown);
        form->RefreshChannel();
        QCOMPARE(shownChannels(), QString()); // "low" is no Chinese word
        QCOMPARE(counts.constLast().at(0).toInt(), 0);
    }

    // Shift and Ctrl select cells with the mouse and with the arrow keys, and
    // such clicks open no editor; a plain click still does.
    void selectCells_data()
    {
        QTest::addColumn<QString>("steps");
        QTest::addColumn<QString>("selected");
        QTest::newRow("Shift+click, a rectangle") << u"g2.5 +c3.6"_s << u"2.5 2.6 3.5 3.6"_s;
        QTest::newRow("Shift+click from the corner the rectangle started at")
            << u"g3.6 +c2.5 +c2.7"_s << u"2.6 2.7 3.6 3.7"_s;
        QTest::newRow("Ctrl+click adds and removes cells") << u"g1.3 ^c5.3 ^c6.4 ^c1.3"_s << u"5.3 6.4"_s;
        QTest::newRow("Ctrl+Shift+click adds a rectangle") << u"g1.1 ^c5.2 ^+c6.3"_s << u"1.1 5.2 5.3 6.2 6.3"_s;
        QTest::newRow("Shift and the arrow keys") << u"g5.7 Shift+Up Shift+Right"_s << u"4.7 4.8 5.7 5.8"_s;
        QTest::newRow("a plain click selects one cell") << u"g1.1 ^c5.2 c6.1 Escape"_s << u"6.1"_s;
    }

    void selectCells()
    {
        QFETCH(QString, steps);
        openForm();
        run(steps);
        QTEST(selectedCells(), "selected");
        QCOMPARE(QApplication::focusWidget(), grid());
    }

    // Each way of changing many channels at once, with the filter on and off,
    // in each language: the image afterwards holds the expected bytes, and one
    // undo gives back the image of before, byte for byte.
    void bulkEdits_data()
    {
        QTest::addColumn<int>("language");
        QTest::addColumn<bool>("filtered");
        QTest::addColumn<QString>("steps");
        QTest::addColumn<QString>("changed"); // records (by channel) and rows (r202) afterwards

        // Records: rx tx dec enc, bytes 12-13, ChannelFlags, SignallingFlags.
        const struct
        {
            const char *name;
            const char16_t *steps;
            const char16_t *unfiltered;
            const char16_t *filtered; // "low": channels 2, 3 and 6 shown
        } rows[]{
            {"Ctrl+Enter in the frequency editor fills Rx; a simplex Tx follows, an empty channel is created",
             u"c2.1 +c6.1 Return t:145.5 Ctrl+Return",
             u"2=1455000014560000238054c702221182 3=14550000ffffffff7006ffff03236840 4=1455000014550000ffffffff00004c00 "
             u"5=1455000014550000ffff001005250e0c 6=1455000043400000ffffffff06265001 "
             u"r202=c0ffffffffffffffffffffffffffffff r203=e2ffffffffffffffffffffffffffffff",
             u"2=1455000014560000238054c702221182 3=14550000ffffffff7006ffff03236840 "
             u"6=1455000043400000ffffffff06265001"},
            {"Shift+arrows, then Ctrl+Enter on the grid fills the current cell's W/N",
             u"g2.6 Shift+Down Shift+Down Shift+Down Shift+Down Ctrl+Enter",
             u"2=1450000014560000238054c702225182 5=4460062544600625ffff001005254e0c",
             u"2=1450000014560000238054c702225182"},
            {"Ctrl+D fills each column down from its top cell", u"g2.3 +c6.5 Ctrl+D",
             u"3=14700000ffffffff2380ffff03236840 5=4460062544600625238054c705250a0c "
             u"6=4390000043400000238054c706266001",
             u"3=14700000ffffffff2380ffff03236840 6=4390000043400000238054c706266001"},
            {"a list word for the selected channels", u"n2 +n6 @setForSelected/setBandwidth/setBandwidth_Wide",
             u"2=1450000014560000238054c702225182 5=4460062544600625ffff001005254e0c",
             u"2=1450000014560000238054c702225182"},
            {"a tone from the tone list for the selected channels", u"d:cboTone=d023i n2 +n6 @setForSelected/setEncode",
             u"2=1450000014560000238023c002221182 5=4460062544600625ffff23c005250e0c 6=4390000043400000ffff23c006266001",
             u"2=1450000014560000238023c002221182 6=4390000043400000ffff23c006266001"},
            {"a series of receive frequencies", u"d:txtStart=446.00625;txtStep=12.5 n2 +n6 @fillFrequencies",
             u"2=4460062514560000238054c702222182 3=44601875ffffffff7006ffff03236840 "
             u"4=4460312544603125ffffffff00004c00 5=4460437544604375ffff001005250e0c "
             u"6=4460562543400000ffffffff06266001 r202=c0ffffffffffffffffffffffffffffff "
             u"r203=e2ffffffffffffffffffffffffffffff",
             u"2=4460062514560000238054c702222182 3=44601875ffffffff7006ffff03236840 "
             u"6=4460312543400000ffffffff06266001"},
        };
        for (int language = English; language < LanguageCount; ++language) {
            for (const auto &row : rows) {
                for (const bool filtered : {false, true}) {
                    QTest::addRow("%s, %s, %s", row.name, filtered ? "filtered" : "unfiltered", test::LanguageNames[language])
                        << language << filtered << QString::fromUtf16(row.steps)
                        << QString::fromUtf16(filtered ? row.filtered : row.unfiltered);
                }
            }
        }
    }

    void bulkEdits()
    {
        QFETCH(int, language);
        QFETCH(bool, filtered);
        QFETCH(QString, steps);
        QFETCH(QString, changed);
        openForm(Language(language));
        // Saving the list untouched leaves the image as it is: the image of
        // before is the one every undo must give back.
        const QByteArray before = app().image.bytes();
        MemoryImage saved = app().image;
        form->saveInto(saved);
        QCOMPARE(differences(saved.bytes(), before), QString());
        if (filtered) {
            typeFilter(Words::Low.in(language));
            run(u"Down"_s);
        }

        run(steps);
        QCOMPARE(form->undoStack()->count(), 1);
        saved = app().image;
        form->saveInto(saved);
        QCOMPARE(differences(saved.bytes(), withRows(before, changed)), QString());

        // The offscreen platform gives the activation back to no window when a
        // dialog closes; a window manager gives it to the list.
        form->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(form.get()));
        QTest::keyClick(grid(), Qt::Key_Z, Qt::ControlModifier);
        saved = app().image;
        form->saveInto(saved);
        QCOMPARE(differences(saved.bytes(), before), QString());
    }

    // The dialog shows the first and last value as they will be stored, and
    // what the bands and the raster move, while the user types.
    void fillFrequenciesShowsTheSeries_data()
    {
        QTest::addColumn<int>("language");
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("step");
        QTest::addColumn<QStringList>("shown"); // first, last, what moved; OK offered
        QTest::newRow("on the raster") << int(English) << u"446.00625"_s << u"6.25"_s
                                       << QStringList{u"446.00625 MHz (channel 2)"_s, u"446.03125 MHz (channel 6)"_s,
                                                      u"Every value lies in the receive bands, on the raster."_s, u"OK"_s};
        QTest::newRow("going down, off the raster")
            << int(SimplifiedChinese) << u"145.1"_s << u"-2.5"_s
            << QStringList{u"145.10000 MHz（信道 2）"_s, u"145.09000 MHz（信道 6）"_s, u"调整到频率栅格：2"_s, u"确定"_s};
        QTest::newRow("past the band's edge")
            << int(TraditionalChinese) << u"173.98"_s << u"10"_s
            << QStringList{u"173.98000 MHz（信道 2）"_s, u"174.00000 MHz（信道 6）"_s, u"超出接收頻段，移至頻段邊緣：2"_s,
                           u"確定"_s};
        QTest::newRow("no step yet") << int(English) << u"446"_s << QString()
                                     << QStringList{u"—"_s, u"—"_s, QString(), QString()};
    }

    void fillFrequenciesShowsTheSeries()
    {
        QFETCH(int, language);
        QFETCH(QString, start);
        QFETCH(QString, step);
        openForm(Language(language));
        QStringList seen;
        test::whenModal([&](QDialog *dialog) {
            for (const auto &[name, text] : {std::pair{u"txtStart"_s, start}, std::pair{u"txtStep"_s, step}}) {
                auto *field = dialog->findChild<QLineEdit *>(name);
                field->selectAll();
                QTest::keyClick(field, Qt::Key_Backspace);
                QTest::keyClicks(field, text);
            }
            for (const char *name : {"lblFirst", "lblLast", "lblMoved"})
                seen << dialog->findChild<QLabel *>(QString::fromLatin1(name))->text();
            auto *ok = dialog->findChild<QPushButton *>(u"cmdOK"_s);
            seen << (ok->isEnabled() ? ok->text() : QString());
            dialog->reject();
        });
        run(u"n2 +n6 @fillFrequencies"_s);
        QTEST(seen, "shown");
        QCOMPARE(form->undoStack()->count(), 0);
    }

private:
    QLineEdit *filterLine() const { return form->findChild<QLineEdit *>(u"txtFilter"_s); }

    // Ctrl+F from the grid, then the text key by key.
    void typeFilter(const QString &text)
    {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_F, Qt::ControlModifier);
        QCOMPARE(QApplication::focusWidget(), filterLine());
        test::type(text);
    }

    QString shownChannels() const
    {
        QStringList shown;
        for (int row = 1; row <= ChannelRecord::ChannelCount; ++row) {
            if (!grid()->isRowHidden(row))
                shown << QString::number(row);
        }
        return shown.size() == ChannelRecord::ChannelCount ? u"all"_s : shown.join(u' ');
    }

    // "2.1 3.1" for the cells of rows 2 and 3 in column 1, in order.
    QString selectedCells() const
    {
        QModelIndexList cells = grid()->selectionModel()->selectedIndexes();
        std::sort(cells.begin(), cells.end());
        QStringList names;
        for (const QModelIndex &cell : cells)
            names << u"%1.%2"_s.arg(cell.row()).arg(cell.column());
        return names.join(u' ');
    }
};

QTEST_MAIN(TestChannelBulkEdit)
#include "TestChannelBulkEdit.moc"
