#pragma once

#include "Widgets.h"
#include "TestSuite.h"

#include "channels/ChannelRecord.h"
#include "channels/frmChannel.h"
#include "core/AppState.h"
#include "core/ToneCodec.h"
#include "ui/MessageBox.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTableView>
#include <QTest>

#include <memory>

namespace wr::test {

// The base of the suites that drive the channel list as a user meets it:
// shown, active, the grid focused, in English unless a test says otherwise;
// the message box and file dialog seams answered in advance and the
// clipboard empty. With the ways a user reaches its cells and tools. The
// form goes before the fixture does.
class ChannelListSuite : public Suite
{
protected:
    void setUp() override
    {
        app().LanguageIndex = English;
        app().ToneTable = BuildToneTable(English);
        MessageBox::reset();
        MessageBox::setAutoAnswer(true);
        FileDialog::reset();
        QGuiApplication::clipboard()->clear();
    }
    void tearDown() override
    {
        form.reset();
        MessageBox::reset();
        FileDialog::reset();
    }

    // Puts channels into the image as typing their cells would, from rows of
    // "channel|rx|tx|decode|encode|power|W/N|scan add|BCL|signalling" (the
    // last in hexadecimal). Bytes 12 and 13 of each record, which no cell
    // shows, get the channel's number and 0x20 more.
    static void putChannels(std::initializer_list<const char16_t *> rows)
    {
        for (const char16_t *row : rows) {
            const QStringList cells = QString::fromUtf16(row).split(u'|');
            const int channel = cells.front().toInt();
            ChannelTexts texts;
            for (int column = ColRx; column <= ColBcl; ++column)
                texts.cell(column) = cells.at(column);
            CreateChannel(app().image, channel);
            SaveChannel(app().image, channel, texts);
            app().image.WriteByte(channel - 1, 12, quint8(channel));
            app().image.WriteByte(channel - 1, 13, quint8(0x20 + channel));
            app().image.WriteByte(channel - 1, 15, quint8(cells.back().toUInt(nullptr, 16)));
        }
    }

    // Opens the list on the image as it stands; fails the test when the
    // window never became active.
    void openForm()
    {
        form = std::make_unique<frmChannel>(app());
        showActive(form.get());
        form->grid()->setFocus();
    }
    void openForm(Language language)
    {
        app().LanguageIndex = language;
        openForm();
    }

    QTableView *grid() const { return form->grid(); }
    QLineEdit *text() const { return form->findChild<QLineEdit *>(QStringLiteral("TxtChannel")); }
    QComboBox *combo(int index) const
    {
        return form->findChild<QComboBox *>(QStringLiteral("CboChannel%1").arg(index));
    }
    QMenu *menu() const { return form->findChild<QMenu *>(QStringLiteral("channelMenu")); }
    QString cell(int row, int column) const { return form->cellText(row, column); }
    // The eight cells of a channel after its number.
    QStringList rowCells(int row) const
    {
        QStringList cells;
        for (int column = ColRx; column <= ColBcl; ++column)
            cells << cell(row, column);
        return cells;
    }
    void setCurrentCell(int row, int column) const
    {
        grid()->setCurrentIndex(grid()->model()->index(row, column));
    }
    QPoint cellCentre(int row, int column) const
    {
        const QModelIndex index = grid()->model()->index(row, column);
        grid()->scrollTo(index);
        return grid()->visualRect(index).center();
    }
    void click(int row, int column, Qt::MouseButton button = Qt::LeftButton,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::mouseClick(grid()->viewport(), button, modifiers, cellCentre(row, column));
    }
    // The cell made current from the keyboard, then Enter: its editor opens.
    void enterCell(int row, int column)
    {
        setCurrentCell(row, column);
        grid()->setFocus();
        QTest::keyClick(grid(), Qt::Key_Return);
    }
    // A right click on a cell as the window system reports it.
    void rightClick(int row, int column, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        const QPoint at = cellCentre(row, column);
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, grid()->viewport()->mapToGlobal(at), modifiers);
        QApplication::sendEvent(grid()->viewport(), &event);
    }

    // Steps, one a word: "c3.5" clicks the cell of row 3, column 5, "+c3.5"
    // with Shift, "^c3.5" with Ctrl, "^+c3.5" with both; "n3", "+n3", "^n3"
    // click channel number 3; "g3.5" only makes that cell current; "t:145.5"
    // types into whatever has the focus; "@a/b" chooses item b of submenu a
    // of the context menu opened over the current cell;
    // "d:txtStart=446;txtStep=12.5" answers the next dialog and presses OK;
    // anything else is a key sequence ("Shift+Down", "Ctrl+Return").
    void run(const QString &steps)
    {
        for (const QString &step : steps.split(u' ', Qt::SkipEmptyParts)) {
            Qt::KeyboardModifiers modifiers;
            qsizetype at = 0;
            for (; at < step.size() && (step[at] == u'+' || step[at] == u'^'); ++at)
                modifiers |= step[at] == u'+' ? Qt::ShiftModifier : Qt::ControlModifier;
            const QChar kind = step[at];
            const QString place = step.mid(at + 1);
            const int row = place.section(u'.', 0, 0).toInt();
            const int column = place.section(u'.', 1).toInt();
            if ((kind == u'c' || kind == u'n' || kind == u'g') && row > 0) {
                QVERIFY2(!grid()->isRowHidden(row), qPrintable(step));
                if (kind == u'g') {
                    setCurrentCell(row, column);
                    grid()->setFocus();
                } else {
                    click(row, kind == u'n' ? int(ColNumber) : column, Qt::LeftButton, modifiers);
                }
            } else if (step.startsWith(u"t:")) {
                type(step.mid(2));
            } else if (kind == u'@') {
                chooseFromMenu(step.mid(1).split(u'/'));
            } else if (step.startsWith(u"d:")) {
                whenModal([answers = step.mid(2).split(u';')](QDialog *dialog) {
                    for (const QString &answer : answers) {
                        auto *field = dialog->findChild<QWidget *>(answer.section(u'=', 0, 0));
                        field->setFocus();
                        QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
                        QTest::keyClicks(field, answer.section(u'=', 1));
                    }
                    QTest::mouseClick(dialog->findChild<QPushButton *>(QStringLiteral("cmdOK")), Qt::LeftButton);
                });
            } else {
                QTest::keySequence(QApplication::focusWidget(), QKeySequence(step));
            }
        }
    }

    // A right click over the current cell, then a click on each item.
    void chooseFromMenu(const QStringList &path)
    {
        rightClick(grid()->currentIndex().row(), grid()->currentIndex().column());
        QMenu *open = menu();
        for (const QString &name : path) {
            QTRY_VERIFY(open->isVisible());
            auto *item = form->findChild<QAction *>(name);
            QVERIFY2(item && item->isEnabled(), qPrintable(name));
            QTest::mouseClick(open, Qt::LeftButton, {}, open->actionGeometry(item).center());
            if (item->menu())
                open = item->menu();
        }
        QTRY_VERIFY(!menu()->isVisible());
    }

    std::unique_ptr<frmChannel> form;
};

} // namespace wr::test
