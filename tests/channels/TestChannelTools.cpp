// The channel list's tools driven as a user drives them: rows selected by
// their numbers, keys and the context menu, the clipboard, the import
// preview and the file dialogs; then a look at the cells, the history and
// the memory image.

#include "ChannelListForm.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QUndoStack>

using namespace wr;
using namespace Qt::StringLiterals;

namespace {

// Bytes 12-15 of every record of an image.
QByteArray hiddenBytes(const QByteArray &image)
{
    QByteArray bytes;
    for (int row = 0; row < 128; ++row)
        bytes += image.mid(row * 16 + 12, 4);
    return bytes;
}

} // namespace

class TestChannelTools : public test::ChannelListSuite
{
    Q_OBJECT

private:
    QString rxColumn(int rows = 8) const
    {
        QStringList rx;
        for (int row = 1; row <= rows; ++row)
            rx << cell(row, 1);
        return rx.join(u'|');
    }

    // Channels 1-3, 5 and 6 in use, each with its own bytes 12, 13 and
    // signalling byte, which no cell shows.
    void setUp() override
    {
        ChannelListSuite::setUp();
        putChannels({u"1|146.00000|146.60000|88.5|88.5|High|Wide|On|Off|11",
                     u"2|145.00000|145.00000|D023N|D754I|High|Narrow|Off|Carrier|82",
                     u"3|147.00000||67.0||Low|Wide|On|Off|40",
                     u"5|144.00000|144.00000|None|100.0|High|Wide|On|Opt.Signal|0C",
                     u"6|439.00000|434.00000|None|None|Low|Wide|Off|Off|01"});
    }

private Q_SLOTS:
    void contextMenu_data()
    {
        test::languageRows<QString>(
            {"captions"},
            {u"Undo|Redo||Cut|Copy|Paste|Delete||Fill Selection|Fill Down|Set for Selected Channels|Fill Frequencies…||"
             "Insert empty channel|Delete and move up|Move up|Move down|Sort selected channels by receive frequency||"
             "Import CHIRP CSV…|Export CHIRP CSV…"_s,
             u"撤销|重做||剪切|复制|粘贴|删除||填充所选单元格|向下填充|为所选信道设置|填充频率…||插入空信道|删除并上移|上移|下移|"
             "所选信道按接收频率排序||导入 CHIRP CSV…|导出 CHIRP CSV…"_s,
             u"復原|重做||剪下|複製|貼上|刪除||填滿所選儲存格|向下填滿|為所選信道設置|填入頻率…||插入空信道|刪除並上移|上移|下移|"
             "所選信道按接收頻率排序||匯入 CHIRP CSV…|匯出 CHIRP CSV…"_s});
    }

    // A right click opens the menu over the row clicked; the memory map's
    // Shift+Ctrl+Alt right click does not.
    void contextMenu()
    {
        QFETCH(int, language);
        app().LanguageIndex = quint8(language);
        openForm();
        rightClick(5, 0, Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier);
        QVERIFY(!menu()->isVisible());
        rightClick(5, 0);
        QTRY_VERIFY(menu()->isVisible());
        QStringList shown;
        for (QAction *action : menu()->actions())
            shown << action->text();
        QTEST(shown.join(u'|'), "captions");
        QCOMPARE(form->selectedChannels(), QList<int>{5});
        QVERIFY(!form->findChild<QAction *>(u"undoChannels"_s)->isEnabled());
        menu()->close();
    }

    // From the keyboard the menu opens at the current cell, over its row.
    void contextMenuByKey_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::newRow("Shift+F10") << int(Qt::Key_F10) << int(Qt::ShiftModifier);
        QTest::newRow("the menu key") << int(Qt::Key_Menu) << int(Qt::NoModifier);
    }

    void contextMenuByKey()
    {
        QFETCH(int, key);
        QFETCH(int, modifiers);
        openForm();
        const QModelIndex current = grid()->model()->index(6, ColDecode);
        grid()->setCurrentIndex(current);
        grid()->setFocus();
        QTest::keyClick(grid(), Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QTRY_VERIFY(menu()->isVisible());
        QCOMPARE(form->selectedChannels(), QList<int>{6});
        QCOMPARE(menu()->pos(), grid()->viewport()->mapToGlobal(grid()->visualRect(current).center()));
        menu()->close();
    }

    // Each tool changes the grid in one step; a channel that moves takes the
    // bytes of its record that no cell shows along. Undo puts back the rows
    // and those bytes, redo repeats the step.
    void toolSteps_data()
    {
        QTest::addColumn<QString>("steps");
        QTest::addColumn<QString>("rx"); // receive frequencies of rows 1-8 afterwards
        QTest::addColumn<QString>("redo");
        const QString before = u"146.00000|145.00000|147.00000||144.00000|439.00000||"_s;
        QTest::newRow("Delete clears the rows selected by their numbers")
            << u"n2 +n3 Delete"_s << u"146.00000||||144.00000|439.00000||"_s << u"Ctrl+Y"_s;
        QTest::newRow("Ctrl adds rows to the selection") << u"n1 ^n3 ^n5 Delete"_s << u"|145.00000||||439.00000||"_s
                                                         << u"Ctrl+Shift+Z"_s;
        QTest::newRow("Shift+Delete cuts") << u"n6 Shift+Del"_s << u"146.00000|145.00000|147.00000||144.00000|||"_s
                                           << u"Ctrl+Y"_s;
        QTest::newRow("insert moves the channels below down")
            << u"n2 @insertChannel"_s << u"146.00000||145.00000|147.00000||144.00000|439.00000|"_s << u"Ctrl+Y"_s;
        QTest::newRow("delete and move up closes the gaps")
            << u"n2 ^n4 @removeChannels"_s << u"146.00000|147.00000|144.00000|439.00000||||"_s << u"Ctrl+Y"_s;
        QTest::newRow("move up") << u"n2 +n3 @moveChannelsUp"_s << u"145.00000|147.00000|146.00000||144.00000|439.00000||"_s
                                 << u"Ctrl+Y"_s;
        QTest::newRow("move down") << u"n5 @moveChannelsDown @moveChannelsDown"_s
                                   << u"146.00000|145.00000|147.00000||439.00000||144.00000|"_s << u"Ctrl+Y"_s;
        QTest::newRow("sort by receive frequency, empty rows last")
            << u"n1 +n6 @sortChannels"_s << u"144.00000|145.00000|146.00000|147.00000|439.00000|||"_s << u"Ctrl+Y"_s;
        QTest::newRow("typing creates a channel") << u"c8.1 t:145.5 Return"_s << before + u"145.50000"_s << u"Ctrl+Y"_s;
        QTest::newRow("paste of copied rows") << u"n1 +n2 Ctrl+C n7 Ctrl+V"_s
                                              << u"146.00000|145.00000|147.00000||144.00000|439.00000|146.00000|145.00000"_s
                                              << u"Ctrl+Y"_s;
    }

    void toolSteps()
    {
        QFETCH(QString, steps);
        QFETCH(QString, rx);
        QFETCH(QString, redo);
        openForm();
        const QString rxBefore = rxColumn();
        const QByteArray imageBefore = app().image.bytes();
        QHash<QString, QByteArray> records; // each channel's record, by its receive frequency
        for (int row = 1; row <= 8; ++row)
            records[cell(row, 1)] = app().image.row(row - 1);

        run(steps);
        QCOMPARE(rxColumn(), rx);
        const int steps0 = form->undoStack()->count();
        QVERIFY(steps0 >= 1);
        form->SaveData();
        for (int row = 1; row <= 8; ++row) {
            const QString channel = cell(row, 1);
            if (channel.isEmpty())
                QCOMPARE(app().image.row(row - 1), QByteArray(16, char(0xFF)));
            else if (!steps.contains(u"t:") && !steps.contains(u"Ctrl+V"))
                QCOMPARE(app().image.row(row - 1).toHex(), records.value(channel).toHex());
        }

        // Undo every step of the test: the rows and the hidden bytes are back,
        // and the next save gives the image of before.
        for (int i = 0; i < steps0; ++i)
            run(u"Ctrl+Z"_s);
        QCOMPARE(rxColumn(), rxBefore);
        QCOMPARE(hiddenBytes(app().image.bytes()).toHex(), hiddenBytes(imageBefore).toHex());
        // The scan-skip bit of a channel left empty keeps what the last save
        // wrote; everything else is as it was.
        form->SaveData();
        app().image.setRow(203, imageBefore.mid(203 * 16, 16));
        QCOMPARE(app().image.bytes().toHex(), imageBefore.toHex());

        for (int i = 0; i < steps0; ++i)
            run(redo);
        QCOMPARE(rxColumn(), rx);
    }

    // Rows pasted onto empty rows are created as typed ones are; onto a
    // channel in use they keep its signalling byte.
    void pasteCreatesOrKeeps()
    {
        openForm();
        run(u"n1 +n2 Ctrl+C"_s);
        const QString copied = QGuiApplication::clipboard()->text();
        QVERIFY(copied.startsWith(u"Location\tName\tFrequency\t"));
        QCOMPARE(copied.count(u'\n'), 3);
        run(u"n4 Ctrl+V"_s);
        QCOMPARE(rxColumn(6), u"146.00000|145.00000|147.00000|146.00000|145.00000|439.00000"_s);
        QCOMPARE(app().image.row(3).mid(12).toHex(), QByteArray("00004c00")); // at once, as typing
        form->SaveData();
        for (int row : {4, 5}) {
            QCOMPARE(app().image.row(row - 1).left(12), app().image.row(row - 4).left(12));
            QCOMPARE(app().image.row(row - 1).at(14), app().image.row(row - 4).at(14));
        }
        QCOMPARE(quint8(app().image.row(4).at(15)), quint8(0x0C)); // channel 5 was in use
        QCOMPARE(form->undoStack()->count(), 1);
    }

    // Channel lists reach the list as a paste from a spreadsheet (Ctrl+V),
    // through Import CHIRP CSV… in the context menu, or as a file given to
    // the program (File > Open, its command line, a drop). Rows without a
    // Location go into the channels from the current one on, and cells
    // without a header are read as the grid's columns from the current one
    // on. A doubtful row, or rows placed by position, are shown in the
    // preview before anything changes; the rest goes straight in. What
    // changes is one step, and reaches the image as the grid shows it.
    void importOrPaste_data()
    {
        QTest::addColumn<QString>("how");         // "paste", "menu" (Import CHIRP CSV…) or "file"
        QTest::addColumn<QString>("start");       // steps to the cell it goes to
        QTest::addColumn<QString>("text");        // on the clipboard or in the file; none: no such file
        QTest::addColumn<bool>("accept");         // the preview's OK
        QTest::addColumn<QStringList>("shown");   // "label=text" in the preview, then "message=text" of each box
        QTest::addColumn<QStringList>("changed"); // "channel=cells" afterwards
        const QString club = u"\uFEFF# club channels\r\nLocation,Name,Frequency,Duplex,Offset,Tone,rToneFreq,cToneFreq\r\n"
                             "2,Rpt,439.503000,-,7.6,TSQL,88.5,100.0\r\n3,,433.000000,,,,,\r\n10,,445.000000,,,,,\r\n"
                             "11,,30.000000,,,,,\r\n"_s;
        const QStringList clubShown{
            u"lblSource=File: club.csv"_s, u"lblImported=Rows to import: 3 (changed: 1)"_s, u"lblSkipped=Rows skipped: 1"_s,
            u"lblReplaced=Channels in use that will be replaced: 2-3"_s,
            u"txtReport=Line\tColumn\tValue\tWhat happens\n"
            "3\tName\tRpt\tnot kept: the radio has no channel names (rows with a name: 1)\n"
            "3\tFrequency\t439.503000\tmoved onto the channel raster: 439.50000\n"
            "6\tFrequency\t30.000000\toutside the receive bands: row skipped"_s};
        const QString seven = u"7=146.52000|146.52000|None|None|High|Wide|On|Off"_s;
        const QString eight = u"8=146.55000|146.55000|None|None|High|Wide|On|Off"_s;
        const QString onRx = u"lblReadAs=Read as the columns: Rx Freq"_s;
        QTest::newRow("paste: semicolons and decimal commas go straight in, as copied rows")
            << u"paste"_s << u"n7"_s << u"Location;Frequency;Duplex;Offset\n1;433,5;+;5\n"_s << true << QStringList()
            << QStringList{u"7=433.50000|438.50000|None|None|High|Wide|On|Off"_s};
        QTest::newRow("paste: a tone the radio lacks is shown, OK takes the rest")
            << u"paste"_s << u"n7"_s << u"Location,Frequency,Tone,rToneFreq\n1,433.5,Tone,69.0\n2,434,,\n"_s << true
            << QStringList{u"txtReport=Line\tColumn\tValue\tWhat happens\n"
                           "2\trToneFreq\t69.0\tCTCSS tone not among the radio's 50: row skipped"_s}
            << QStringList{u"8=434.00000|434.00000|None|None|High|Wide|On|Off"_s};
        QTest::newRow("paste: Cancel in the preview changes nothing")
            << u"paste"_s << u"n7"_s << u"Location,Frequency\n1,433.5\n2,999\n"_s << false
            << QStringList{u"txtReport=Line\tColumn\tValue\tWhat happens\n3\tFrequency\t999\toutside the receive bands: row skipped"_s}
            << QStringList();
        QTest::newRow("paste: text with no Frequency column is refused")
            << u"paste"_s << u"n7"_s << u"Location,Name\n1,Club\n"_s << false
            << QStringList{u"message=There is no Frequency column and no column of the channel list, so this is not a "
                           "channel list. Nothing was changed."_s}
            << QStringList();
        QTest::newRow("paste: frequencies onto an empty row's number, its editor just opened")
            << u"paste"_s << u"c7.0"_s << u"146.52\n146.55\n"_s << true
            << QStringList{u"lblTargets=Where the rows go: lines 1-2 → channels 7-8"_s, onRx} << QStringList{seven, eight};
        QTest::newRow("paste: transmit frequencies and tones on the transmit column")
            << u"paste"_s << u"g5.2"_s << u"144.6\tD023N\n434,5\t88.5\n"_s << true
            << QStringList{u"lblTargets=Where the rows go: lines 1-2 → channels 5-6"_s,
                           u"lblReadAs=Read as the columns: Tx Freq, CTCSS/DCS Dec"_s}
            << QStringList{u"5=144.00000|144.60000|D023N|100.0|High|Wide|On|Opt.Signal"_s,
                           u"6=439.00000|434.50000|88.5|None|Low|Wide|Off|Off"_s};
        QTest::newRow("paste: Chinese captions and channel numbers, placed as copied rows are")
            << u"paste"_s << u"c7.0"_s << u"信道\t接收频率\t宽/窄\n3\t146.52\t窄\n"_s << true << QStringList()
            << QStringList{u"7=146.52000|146.52000|None|None|High|Narrow|On|Off"_s};
        QTest::newRow("paste: Cancel changes nothing")
            << u"paste"_s << u"g8.1"_s << u"146.52\n"_s << false
            << QStringList{u"lblTargets=Where the rows go: line 1 → channel 8"_s, onRx} << QStringList();
        QTest::newRow("menu: the preview counts the rows and names what they replace, OK takes them")
            << u"menu"_s << u"n1"_s << club << true << clubShown
            << QStringList{u"2=439.50000|431.90000|100.0|100.0|High|Wide|On|Off"_s,
                           u"3=433.00000|433.00000|None|None|High|Wide|On|Off"_s,
                           u"10=445.00000|445.00000|None|None|High|Wide|On|Off"_s};
        QTest::newRow("menu: Cancel changes nothing") << u"menu"_s << u"n1"_s << club << false << clubShown << QStringList();
        QTest::newRow("file: frequencies alone, from the selected channel")
            << u"file"_s << u"n7"_s << u"146.52\n146.55\n"_s << true
            << QStringList{u"lblTargets=Where the rows go: lines 1-2 → channels 7-8"_s, onRx} << QStringList{seven, eight};
        QTest::newRow("file: a file that cannot be read only says so")
            << u"file"_s << u"n7"_s << QString() << true << QStringList{u"message=No such file or directory"_s}
            << QStringList();
    }

    void importOrPaste()
    {
        QFETCH(QString, how);
        QFETCH(QString, start);
        QFETCH(QString, text);
        QFETCH(bool, accept);
        QFETCH(QStringList, changed);
        const QString path = filePath(u"club.csv"_s);
        if (how != u"paste" && !text.isNull())
            QVERIFY(test::writeFile(path, text.toUtf8()));
        openForm();
        const auto everyChannel = [this] {
            QStringList rows;
            for (int channel = 1; channel <= ChannelRecord::ChannelCount; ++channel)
                rows << u"%1=%2"_s.arg(channel).arg(rowCells(channel).join(u'|'));
            return rows;
        };
        const QStringList before = everyChannel();
        QHash<QString, QString> preview;
        QPointer<QTimer> watch = test::whenModal([&](QDialog *dialog) {
            for (const QLabel *label : dialog->findChildren<QLabel *>())
                preview[label->objectName()] = label->text();
            preview[u"txtReport"_s] = dialog->findChild<QPlainTextEdit *>(u"txtReport"_s)->toPlainText();
            QTest::mouseClick(dialog->findChild<QPushButton *>(accept ? u"cmdOK"_s : u"cmdCancel"_s), Qt::LeftButton);
        });
        run(start);
        if (how == u"paste") {
            QGuiApplication::clipboard()->setText(text);
            run(u"Ctrl+V"_s);
        } else if (how == u"menu") {
            FileDialog::setNextFileName(path);
            run(u"@importCsv"_s);
        } else {
            form->importCsvFile(path);
        }
        delete watch; // rows that went straight in showed none

        QFETCH(QStringList, shown);
        QStringList seen;
        for (const QString &entry : shown) {
            if (const QString name = entry.section(u'=', 0, 0); name != u"message")
                seen << name + u'=' + preview.value(name);
        }
        for (const MessageBox::Shown &box : MessageBox::history())
            seen << u"message="_s + box.text;
        QCOMPARE(seen, shown);
        QCOMPARE(!preview.isEmpty(), !shown.isEmpty() && !shown.front().startsWith(u"message="));
        const QStringList after = everyChannel();
        QStringList differing;
        for (qsizetype channel = 0; channel < after.size(); ++channel) {
            if (after.at(channel) != before.at(channel))
                differing << after.at(channel);
        }
        QCOMPARE(differing, changed);
        QCOMPARE(form->undoStack()->count(), changed.isEmpty() ? 0 : 1);

        // Undo puts every channel back, redo takes the change again, and the
        // image then holds what the grid shows. (The offscreen platform gives
        // the activation back to no window when a dialog closes; a window
        // manager gives it to the list.)
        form->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(form.get()));
        QTest::keySequence(grid(), QKeySequence(u"Ctrl+Z"_s));
        QCOMPARE(everyChannel(), before);
        QTest::keySequence(grid(), QKeySequence(u"Ctrl+Y"_s));
        QCOMPARE(everyChannel(), after);
        form->SaveData();
        form->RefreshChannel();
        QCOMPARE(everyChannel(), after);
    }

    // The channels in use as the grid holds them, unsaved edits included;
    // the suffix is added to a name without it.
    void exportFile()
    {
        openForm();
        run(u"n2 Delete c8.1 t:146.52 Return"_s);
        FileDialog::setNextFileName(filePath(u"list"_s));
        run(u"n1 @exportCsv"_s);
        const QList<QByteArray> lines = test::readFile(filePath(u"list.csv"_s)).split('\n');
        QCOMPARE(lines.size(), 1 + 5 + 1);
        QVERIFY(lines.front().startsWith("Location,Name,Frequency,Duplex,Offset,Tone,"));
        QCOMPARE(lines.at(1), "1,,146.000000,+,0.600000,TSQL,88.5,88.5,023,NN,023,Tone->Tone,FM,5.00,,5.0W,,,,,\r");
        QVERIFY(lines.at(5).startsWith("8,,146.520000,,0.000000,,"));
        QVERIFY(MessageBox::history().isEmpty());
    }

    // In an open editor the clipboard's keys work on its text, as in any
    // text box; a pasted text is typed through the cell's key rules. Nothing
    // reaches the channels: no step, no dialog, the half-typed text not
    // stored. (The main window's Ctrl+X and Ctrl+A stay its own in every
    // editor: TestMainWindow's shortcutsFromEditors.)
    void editorClipboardKeys_data()
    {
        QTest::addColumn<int>("channel"); // 1 in use, 40 empty
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("typed"); // into the open editor first
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("clipboard");
        QTest::addColumn<QString>("text");          // the editor's afterwards
        QTest::addColumn<QString>("clipboardAfter");
        QTest::newRow("Ctrl+V after the half-typed text") << 40 << 1 << u"14"_s << u"Ctrl+V"_s << u"146.52"_s
                                                         << u"14146.52"_s << u"146.52"_s;
        QTest::newRow("Shift+Insert drops what the cell refuses")
            << 1 << 2 << QString() << u"Shift+Ins"_s << u"145.5 MHz\n"_s << u"145.5"_s << u"145.5 MHz\n"_s;
        QTest::newRow("rows pasted into a typed text are typed too")
            << 40 << 1 << u"1"_s << u"Ctrl+V"_s << u"146.52\n146.55"_s << u"1146.5214"_s << u"146.52\n146.55"_s;
        QTest::newRow("a tone by the tone keys") << 1 << 3 << QString() << u"Ctrl+V"_s << u"d023i Hz"_s << u"D023I"_s
                                                 << u"d023i Hz"_s;
        QTest::newRow("Ctrl+C copies the selected text") << 1 << 1 << QString() << u"Ctrl+C"_s << u"x"_s
                                                         << u"146.00000"_s << u"146.00000"_s;
        QTest::newRow("Ctrl+Insert copies a list's word") << 1 << 5 << QString() << u"Ctrl+Ins"_s << u"x"_s
                                                          << u"High"_s << u"High"_s;
    }

    void editorClipboardKeys()
    {
        QFETCH(int, channel);
        QFETCH(int, column);
        QFETCH(QString, typed);
        QFETCH(QString, key);
        QFETCH(QString, clipboard);
        QFETCH(QString, text);
        openForm();
        int dialogs = 0;
        QPointer<QTimer> watch = test::whenModal([&dialogs](QDialog *dialog) {
            ++dialogs;
            dialog->reject();
        });
        const QByteArray image = app().image.bytes();
        const QStringList cells = rowCells(channel);

        enterCell(channel, column);
        QWidget *editor = QApplication::focusWidget();
        QVERIFY(editor && editor != grid());
        QTest::keyClicks(editor, typed);
        QGuiApplication::clipboard()->setText(clipboard);
        QTest::keySequence(editor, QKeySequence(key));
        QCOMPARE(QApplication::focusWidget(), editor);
        const auto *line = qobject_cast<QLineEdit *>(editor);
        QCOMPARE(line ? line->text() : qobject_cast<QComboBox *>(editor)->currentText(), text);
        QTEST(QGuiApplication::clipboard()->text(), "clipboardAfter");
        QTest::qWait(50);
        delete watch;
        QCOMPARE(dialogs, 0);
        QCOMPARE(form->undoStack()->count(), 0);
        QCOMPARE(rowCells(channel), cells);
        QCOMPARE(app().image.bytes(), image);
        QTest::keyClick(editor, Qt::Key_Escape);
    }

    void insertRefusedWhenChannel128IsInUse()
    {
        openForm();
        run(u"c128.1 t:150 Return n3 @insertChannel"_s);
        QCOMPARE(MessageBox::history().size(), 1);
        QCOMPARE(MessageBox::history().front().text, u"Channel 128 is in use: there is no room to insert a channel."_s);
        QCOMPARE(form->undoStack()->count(), 1); // the typing only
    }

    // A reload from the image starts a new history. A language switch (the
    // list saved first, as the main window's commit step does) keeps it, and
    // undo brings the channel back in the new language's words.
    void reloadOrLanguageSwitch_data()
    {
        QTest::addColumn<int>("language");
        QTest::addColumn<QString>("undone"); // channel 3's receive frequency and power after Ctrl+Z
        QTest::newRow("reload clears the history") << int(English) << u"|"_s;
        QTest::newRow("switch to Simplified keeps it") << int(SimplifiedChinese) << u"147.00000|低"_s;
        QTest::newRow("switch to Traditional keeps it") << int(TraditionalChinese) << u"147.00000|低"_s;
    }

    void reloadOrLanguageSwitch()
    {
        QFETCH(int, language);
        openForm();
        run(u"n3 Delete"_s);
        form->SaveData();
        app().LanguageIndex = quint8(language);
        form->RefreshChannel();
        QCOMPARE(form->undoStack()->count(), language == English ? 0 : 1);
        run(u"Ctrl+Z"_s);
        QTEST(cell(3, 1) + u'|' + cell(3, 5), "undone");
    }
};

QTEST_MAIN(TestChannelTools)
#include "TestChannelTools.moc"
