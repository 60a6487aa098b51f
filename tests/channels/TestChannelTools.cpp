// The channel list's tools driven as a user drives them: rows selected by
// their numbers, keys and the context menu, the clipboard, the import
// preview and the file dialogs; then a look at the cells, the history and
// the memory image.

#include "ModalDialog.h"
#include "ChannelListForm.h"
#include "TestSupport.h"

#include "channels/ChannelRecord.h"
#include "channels/frmChannel.h"
#include "core/AppState.h"
#include "core/FrequencyCodec.h"
#include "core/ToneCodec.h"
#include "ui/MessageBox.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <QUndoStack>

#include <memory>
#include <optional>

using namespace wr;
using namespace Qt::StringLiterals;

namespace {

// Channels 1-3, 5 and 6 in use, each with its own bytes 12, 13 and
// signalling byte, which no cell shows.
void putChannels()
{
    const struct
    {
        int channel;
        const char *rx, *tx, *decode, *encode;
        quint8 flags, signalling;
    } channels[]{
        {1, "146.00000", "146.60000", "88.5", "88.5", 0x4C, 0x11},
        {2, "145.00000", "145.00000", "D023N", "D754I", 0x05, 0x82},
        {3, "147.00000", "", "67.0", "", 0x48, 0x40},
        {5, "144.00000", "144.00000", "None", "100.0", 0x4E, 0x0C},
        {6, "439.00000", "434.00000", "None", "None", 0x40, 0x01},
    };
    MemoryImage &image = app().image;
    for (const auto &c : channels) {
        const ChannelTexts texts{QString::fromLatin1(c.rx), QString::fromLatin1(c.tx), QString::fromLatin1(c.decode),
                                 QString::fromLatin1(c.encode), PowerText(c.flags & 0x04, English),
                                 BandwidthText(c.flags & 0x40, English), ScanAddText(c.flags & 0x08, English),
                                 BclText(ChannelRecord::Bcl(c.flags & 0x03), English)};
        CreateChannel(image, c.channel);
        SaveChannel(image, c.channel, texts);
        image.WriteByte(c.channel - 1, 12, quint8(c.channel));
        image.WriteByte(c.channel - 1, 13, quint8(0x20 + c.channel));
        ChannelRecord(image, c.channel).setSignallingFlags(c.signalling);
    }
}

// Bytes 12-15 of every record.
QByteArray hiddenBytes()
{
    QByteArray bytes;
    for (int row = 0; row < 128; ++row)
        bytes += app().image.row(row).mid(12);
    return bytes;
}

} // namespace

class TestChannelTools : public QObject
{
    Q_OBJECT

private:
    std::optional<test::Fixture> m_fixture;
    std::unique_ptr<frmChannel> m_form;

    void openForm()
    {
        m_form = test::openChannelList();
        QVERIFY(m_form);
    }
    QTableView *grid() const { return m_form->grid(); }
    QMenu *menu() const { return m_form->findChild<QMenu *>(u"channelMenu"_s); }
    QString rxColumn(int rows = 8) const
    {
        QStringList rx;
        for (int row = 1; row <= rows; ++row)
            rx << m_form->cellText(row, 1);
        return rx.join(u'|');
    }
    QPoint cellCentre(int row, int column) const
    {
        const QModelIndex index = grid()->model()->index(row, column);
        grid()->scrollTo(index);
        return grid()->visualRect(index).center();
    }
    void click(int row, int column, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::mouseClick(grid()->viewport(), Qt::LeftButton, modifiers, cellCentre(row, column));
    }
    // A right click as the window system reports it.
    void rightClick(int row, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        const QPoint at = cellCentre(row, 0);
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, grid()->viewport()->mapToGlobal(at), modifiers);
        QApplication::sendEvent(grid()->viewport(), &event);
    }
    void chooseTool(int row, const QString &name)
    {
        rightClick(row);
        QTRY_VERIFY(menu()->isVisible());
        QAction *action = m_form->findChild<QAction *>(name);
        QVERIFY(action && action->isEnabled());
        QTest::mouseClick(menu(), Qt::LeftButton, {}, menu()->actionGeometry(action).center());
        QTRY_VERIFY(!menu()->isVisible());
    }
    void key(const QString &keys) { QTest::keySequence(grid(), QKeySequence(keys)); }

    // Steps: "2" clicks channel number 2, "+4" Shift-clicks, "^5" Ctrl-clicks,
    // "Del" or "Ctrl+V" are keys, "@insertChannel" chooses a tool from the
    // context menu, "8=145.5" types a receive frequency.
    void run(const QString &steps)
    {
        for (const QString &step : steps.split(u' ')) {
            if (step.front().isDigit() && step.contains(u'=')) {
                click(step.section(u'=', 0, 0).toInt(), 1);
                QTest::keyClicks(QApplication::focusWidget(), step.section(u'=', 1));
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
            } else if (step.front().isDigit()) {
                click(step.toInt(), 0);
            } else if (step.front() == u'+' || step.front() == u'^') {
                click(step.mid(1).toInt(), 0, step.front() == u'+' ? Qt::ShiftModifier : Qt::ControlModifier);
            } else if (step.front() == u'@') {
                chooseTool(m_form->selectedChannels().value(0), step.mid(1));
            } else {
                key(step);
            }
        }
    }

private Q_SLOTS:
    void initTestCase() { test::initTestProcess(); }
    void init()
    {
        m_fixture.emplace();
        app().LanguageIndex = English;
        MessageBox::reset();
        MessageBox::setAutoAnswer(true);
        FileDialog::reset();
        QGuiApplication::clipboard()->clear();
        putChannels();
    }
    void cleanup()
    {
        m_form.reset();
        m_fixture.reset();
        MessageBox::reset();
        FileDialog::reset();
    }

    void contextMenu_data()
    {
        QTest::addColumn<int>("language");
        QTest::addColumn<QString>("captions");
        QTest::newRow("English") << int(English)
                                 << u"Undo|Redo||Cut|Copy|Paste|Delete||Insert empty channel|Delete and move up|Move up|"
                                    "Move down|Sort selected channels by receive frequency||Import CHIRP CSV…|Export CHIRP CSV…"_s;
        QTest::newRow("Simplified") << int(SimplifiedChinese)
                                    << u"撤销|重做||剪切|复制|粘贴|删除||插入空信道|删除并上移|上移|下移|所选信道按接收频率排序||"
                                       "导入 CHIRP CSV…|导出 CHIRP CSV…"_s;
        QTest::newRow("Traditional") << int(TraditionalChinese)
                                     << u"復原|重做||剪下|複製|貼上|刪除||插入空信道|刪除並上移|上移|下移|所選信道按接收頻率排序||"
                                        "匯入 CHIRP CSV…|匯出 CHIRP CSV…"_s;
    }

    // A right click opens the menu over the row clicked; the memory map's
    // Shift+Ctrl+Alt right click does not.
    void contextMenu()
    {
        QFETCH(int, language);
        QFETCH(QString, captions);
        app().LanguageIndex = quint8(language);
        openForm();
        rightClick(5, Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier);
        QVERIFY(!menu()->isVisible());
        rightClick(5);
        QTRY_VERIFY(menu()->isVisible());
        QStringList shown;
        for (QAction *action : menu()->actions())
            shown << action->text();
        QCOMPARE(shown.join(u'|'), captions);
        QCOMPARE(m_form->selectedChannels(), QList<int>{5});
        QVERIFY(!m_form->findChild<QAction *>(u"undoChannels"_s)->isEnabled());
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
        QCOMPARE(m_form->selectedChannels(), QList<int>{6});
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
            << u"2 +3 Del"_s << u"146.00000||||144.00000|439.00000||"_s << u"Ctrl+Y"_s;
        QTest::newRow("Ctrl adds rows to the selection") << u"1 ^3 ^5 Del"_s << u"|145.00000||||439.00000||"_s
                                                         << u"Ctrl+Shift+Z"_s;
        QTest::newRow("Shift+Delete cuts") << u"6 Shift+Del"_s << u"146.00000|145.00000|147.00000||144.00000|||"_s
                                           << u"Ctrl+Y"_s;
        QTest::newRow("insert moves the channels below down")
            << u"2 @insertChannel"_s << u"146.00000||145.00000|147.00000||144.00000|439.00000|"_s << u"Ctrl+Y"_s;
        QTest::newRow("delete and move up closes the gaps")
            << u"2 ^4 @removeChannels"_s << u"146.00000|147.00000|144.00000|439.00000||||"_s << u"Ctrl+Y"_s;
        QTest::newRow("move up") << u"2 +3 @moveChannelsUp"_s << u"145.00000|147.00000|146.00000||144.00000|439.00000||"_s
                                 << u"Ctrl+Y"_s;
        QTest::newRow("move down") << u"5 @moveChannelsDown @moveChannelsDown"_s
                                   << u"146.00000|145.00000|147.00000||439.00000||144.00000|"_s << u"Ctrl+Y"_s;
        QTest::newRow("sort by receive frequency, empty rows last")
            << u"1 +6 @sortChannels"_s << u"144.00000|145.00000|146.00000|147.00000|439.00000|||"_s << u"Ctrl+Y"_s;
        QTest::newRow("typing creates a channel") << u"8=145.5"_s << before + u"145.50000"_s << u"Ctrl+Y"_s;
        QTest::newRow("paste of copied rows") << u"1 +2 Ctrl+C 7 Ctrl+V"_s
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
            records[m_form->cellText(row, 1)] = app().image.row(row - 1);

        run(steps);
        QCOMPARE(rxColumn(), rx);
        const int steps0 = m_form->undoStack()->count();
        QVERIFY(steps0 >= 1);
        m_form->SaveData();
        for (int row = 1; row <= 8; ++row) {
            const QString channel = m_form->cellText(row, 1);
            if (channel.isEmpty())
                QCOMPARE(app().image.row(row - 1), QByteArray(16, char(0xFF)));
            else if (!steps.contains(u'=') && !steps.contains(u"Ctrl+V"))
                QCOMPARE(app().image.row(row - 1).toHex(), records.value(channel).toHex());
        }

        // Undo every step of the test: the rows and the hidden bytes are back,
        // and the next save gives the image of before.
        for (int i = 0; i < steps0; ++i)
            key(u"Ctrl+Z"_s);
        QCOMPARE(rxColumn(), rxBefore);
        QCOMPARE(hiddenBytes().toHex(), hiddenBytesOf(imageBefore).toHex());
        // The scan-skip bit of a channel left empty keeps what the last save
        // wrote; everything else is as it was.
        m_form->SaveData();
        app().image.setRow(203, imageBefore.mid(203 * 16, 16));
        QCOMPARE(app().image.bytes().toHex(), imageBefore.toHex());

        for (int i = 0; i < steps0; ++i)
            key(redo);
        QCOMPARE(rxColumn(), rx);
    }

    // Rows pasted onto empty rows are created as typed ones are; onto a
    // channel in use they keep its signalling byte.
    void pasteCreatesOrKeeps()
    {
        openForm();
        run(u"1 +2 Ctrl+C"_s);
        const QString copied = QGuiApplication::clipboard()->text();
        QVERIFY(copied.startsWith(u"Location\tName\tFrequency\t"));
        QCOMPARE(copied.count(u'\n'), 3);
        run(u"4 Ctrl+V"_s);
        QCOMPARE(rxColumn(6), u"146.00000|145.00000|147.00000|146.00000|145.00000|439.00000"_s);
        QCOMPARE(app().image.row(3).mid(12).toHex(), QByteArray("00004c00")); // at once, as typing
        m_form->SaveData();
        for (int row : {4, 5}) {
            QCOMPARE(app().image.row(row - 1).left(12), app().image.row(row - 4).left(12));
            QCOMPARE(app().image.row(row - 1).at(14), app().image.row(row - 4).at(14));
        }
        QCOMPARE(quint8(app().image.row(4).at(15)), quint8(0x0C)); // channel 5 was in use
        QCOMPARE(m_form->undoStack()->count(), 1);
    }

    // Text from a spreadsheet goes through the import rules; a doubtful row
    // is shown before anything changes.
    void pasteFromSpreadsheet_data()
    {
        QTest::addColumn<QString>("clipboard");
        QTest::addColumn<bool>("accept");
        QTest::addColumn<QString>("rx");
        QTest::addColumn<QString>("shown"); // the preview's report, or the message
        QTest::addColumn<int>("steps");
        QTest::newRow("semicolons and decimal commas go straight in")
            << u"Location;Frequency;Duplex;Offset\n1;433,5;+;5\n"_s << true
            << u"146.00000|145.00000|147.00000||144.00000|439.00000|433.50000|"_s << QString() << 1;
        QTest::newRow("a tone the radio lacks is shown, OK takes the rest")
            << u"Location,Frequency,Tone,rToneFreq\n1,433.5,Tone,69.0\n2,434,,\n"_s << true
            << u"146.00000|145.00000|147.00000||144.00000|439.00000||434.00000"_s
            << u"Line\tColumn\tValue\tWhat happens\n2\trToneFreq\t69.0\tCTCSS tone not among the radio's 50: row skipped"_s
            << 1;
        QTest::newRow("Cancel in the preview changes nothing")
            << u"Location,Frequency\n1,433.5\n2,999\n"_s << false << u"146.00000|145.00000|147.00000||144.00000|439.00000||"_s
            << u"Line\tColumn\tValue\tWhat happens\n3\tFrequency\t999\toutside the receive bands: row skipped"_s << 0;
        QTest::newRow("text with no Frequency column is refused")
            << u"Location,Name\n1,Club\n"_s << false << u"146.00000|145.00000|147.00000||144.00000|439.00000||"_s
            << u"There is no Location or no Frequency column, so this is not a CHIRP channel list. Nothing was changed."_s
            << 0;
    }

    void pasteFromSpreadsheet()
    {
        QFETCH(QString, clipboard);
        QFETCH(bool, accept);
        QFETCH(QString, rx);
        QFETCH(QString, shown);
        QFETCH(int, steps);
        openForm();
        QGuiApplication::clipboard()->setText(clipboard);
        QString report;
        if (shown.startsWith(u"Line")) {
            test::whenModal([&](QDialog *preview) {
                report = preview->findChild<QPlainTextEdit *>(u"txtReport"_s)->toPlainText();
                QTest::mouseClick(preview->findChild<QPushButton *>(accept ? u"cmdOK"_s : u"cmdCancel"_s), Qt::LeftButton);
            });
        }
        run(u"7 Ctrl+V"_s);
        QCOMPARE(rxColumn(), rx);
        const QString message = MessageBox::history().isEmpty() ? QString() : MessageBox::history().front().text;
        QCOMPARE(report.isEmpty() ? message : report, shown);
        QCOMPARE(m_form->undoStack()->count(), steps);
    }

    void importFile_data()
    {
        QTest::addColumn<bool>("accept");
        QTest::newRow("OK applies it as one step") << true;
        QTest::newRow("Cancel changes nothing") << false;
    }

    // The preview counts the rows, names the channels in use it replaces
    // and lists every changed or skipped row.
    void importFile()
    {
        QFETCH(bool, accept);
        const QString path = m_fixture->path(u"club.csv"_s);
        QVERIFY(test::writeFile(path, "\xEF\xBB\xBF# club channels\r\n"
                                      "Location,Name,Frequency,Duplex,Offset,Tone,rToneFreq,cToneFreq\r\n"
                                      "2,Rpt,439.503000,-,7.6,TSQL,88.5,100.0\r\n"
                                      "3,,433.000000,,,,,\r\n"
                                      "10,,445.000000,,,,,\r\n"
                                      "11,,30.000000,,,,,\r\n"));
        openForm();
        const QString before = rxColumn(11);
        QStringList labels;
        QString report;
        test::whenModal([&](QDialog *preview) {
            for (const char *name : {"lblSource", "lblImported", "lblSkipped", "lblReplaced"})
                labels << preview->findChild<QLabel *>(QString::fromLatin1(name))->text();
            report = preview->findChild<QPlainTextEdit *>(u"txtReport"_s)->toPlainText();
            QTest::mouseClick(preview->findChild<QPushButton *>(accept ? u"cmdOK"_s : u"cmdCancel"_s), Qt::LeftButton);
        });
        FileDialog::setNextFileName(path);
        chooseTool(1, u"importCsv"_s);
        QCOMPARE(labels, QStringList({u"File: club.csv"_s, u"Rows to import: 3 (changed: 1)"_s, u"Rows skipped: 1"_s,
                                      u"Channels in use that will be replaced: 2-3"_s}));
        QCOMPARE(report.split(u'\n'),
                 QStringList({u"Line\tColumn\tValue\tWhat happens"_s,
                              u"3\tName\tRpt\tnot kept: the radio has no channel names (rows with a name: 1)"_s,
                              u"3\tFrequency\t439.503000\tmoved onto the channel raster: 439.50000"_s,
                              u"6\tFrequency\t30.000000\toutside the receive bands: row skipped"_s}));
        if (!accept) {
            QCOMPARE(rxColumn(11), before);
            QCOMPARE(m_form->undoStack()->count(), 0);
            return;
        }
        QCOMPARE(rxColumn(11), u"146.00000|439.50000|433.00000||144.00000|439.00000||||445.00000|"_s);
        QCOMPARE(m_form->cellText(2, 2) + u' ' + m_form->cellText(2, 3), u"431.90000 100.0"_s);
        QCOMPARE(m_form->undoStack()->count(), 1);
        // The offscreen platform gives the activation back to no window
        // when a dialog closes; a window manager gives it to the list.
        m_form->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_form.get()));
        key(u"Ctrl+Z"_s);
        QCOMPARE(rxColumn(11), before);
    }

    // The channels in use as the grid holds them, unsaved edits included;
    // the suffix is added to a name without it.
    void exportFile()
    {
        openForm();
        run(u"2 Del 8=146.52"_s);
        FileDialog::setNextFileName(m_fixture->path(u"list"_s));
        chooseTool(1, u"exportCsv"_s);
        const QList<QByteArray> lines = test::readFile(m_fixture->path(u"list.csv"_s)).split('\n');
        QCOMPARE(lines.size(), 1 + 5 + 1);
        QVERIFY(lines.front().startsWith("Location,Name,Frequency,Duplex,Offset,Tone,"));
        QCOMPARE(lines.at(1), "1,,146.000000,+,0.600000,TSQL,88.5,88.5,023,NN,023,Tone->Tone,FM,5.00,,5.0W,,,,,\r");
        QVERIFY(lines.at(5).startsWith("8,,146.520000,,0.000000,,"));
        QVERIFY(MessageBox::history().isEmpty());
    }

    void insertRefusedWhenChannel128IsInUse()
    {
        openForm();
        run(u"128=150 3 @insertChannel"_s);
        QCOMPARE(MessageBox::history().size(), 1);
        QCOMPARE(MessageBox::history().front().text, u"Channel 128 is in use: there is no room to insert a channel."_s);
        QCOMPARE(m_form->undoStack()->count(), 1); // the typing only
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
        QFETCH(QString, undone);
        openForm();
        run(u"3 Del"_s);
        m_form->SaveData();
        app().LanguageIndex = quint8(language);
        m_form->RefreshChannel();
        QCOMPARE(m_form->undoStack()->count(), language == English ? 0 : 1);
        key(u"Ctrl+Z"_s);
        QCOMPARE(m_form->cellText(3, 1) + u'|' + m_form->cellText(3, 5), undone);
    }

private:
    static QByteArray hiddenBytesOf(const QByteArray &image)
    {
        QByteArray bytes;
        for (int row = 0; row < 128; ++row)
            bytes += image.mid(row * 16 + 12, 4);
        return bytes;
    }
};

QTEST_MAIN(TestChannelTools)
#include "TestChannelTools.moc"
