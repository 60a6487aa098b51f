// How the main window opens the FM radio and scramble forms (hidden menu
// items, modal) and the memory map (the channel list's right click with
// Shift, Ctrl and Alt, beside the window), and what each leaves in the image.
#include "ShellHarness.h"

#include "features/MemoryMapModel.h"
#include "features/frmMemoryMap.h"
#include "file/Backups.h"

#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTableWidget>

using namespace Qt::StringLiterals;
using wr::test::ShellHarness;

class TestFmScrambleMapMenus : public wr::test::ShellSuite
{
    Q_OBJECT

    // The right click with Shift, Ctrl and Alt on a cell of the channel list.
    void gesture(Qt::KeyboardModifiers keys = Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier) const
    {
        QTableView *grid = h->window->channelList()->grid();
        QTest::mouseClick(grid->viewport(), Qt::RightButton, keys, grid->visualRect(grid->model()->index(5, 2)).center());
    }
    QList<wr::frmMemoryMap *> memoryMaps() const { return h->window->findChildren<wr::frmMemoryMap *>(); }

private Q_SLOTS:
    void hiddenItems_data()
    {
        QTest::addColumn<QString>("item");
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("title");
        QTest::addColumn<bool>("stores");
        QTest::newRow("Radio, OK") << u"mnuRadio"_s << u"CmdOK"_s << u"收音機設置"_s << true;
        QTest::newRow("Radio, Cancel") << u"mnuRadio"_s << u"CmdCannel"_s << u"收音機設置"_s << false;
        QTest::newRow("Scramble, OK") << u"mnuScramble"_s << u"CmdOK"_s << u"擾頻(&S)"_s << false;
    }

    // The item opens its form modal in the interface language; channel 5 of
    // the FM radio typed as 100 reaches the image with OK only.
    void hiddenItems()
    {
        QFETCH(QString, item);
        QFETCH(QString, button);
        QFETCH(bool, stores);
        h->open(2).show();
        QVERIFY(QTest::qWaitForWindowExposed(h->window.get()));
        QByteArray expected = wr::app().image.bytes();
        if (stores) {
            expected.replace(0x1900, 1, "\xDF");
            expected.replace(0x1924, 4, QByteArray::fromHex("10000000"));
            expected.replace(0x1990, 4, QByteArray::fromHex("08750000"));
        }
        QString shown;
        wr::test::whenModal([&](QDialog *form) {
            shown = form->windowTitle();
            if (auto *grid = form->findChild<QTableWidget *>(u"MSRadioGrid"_s)) {
                grid->setCurrentCell(2 + 5, 1);
                QTest::keyClick(grid, Qt::Key_1);
                QTest::keyClicks(form->findChild<QLineEdit *>(u"txtRadio"_s), u"00"_s);
            }
            QTest::mouseClick(form->findChild<QPushButton *>(button), Qt::LeftButton);
        });
        h->trigger(item);
        QTEST(shown, "title");
        QCOMPARE(wr::app().image.bytes(), expected);
        QVERIFY(!h->action(item)->isVisible());
    }

    void memoryMapGesture_data()
    {
        QTest::addColumn<bool>("byKey"); // Ctrl+Shift+Alt+M in place of the gesture
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("rx");     // channel 3 in the list afterwards
        QTest::addColumn<bool>("meanwhile"); // channel 9 typed into the list while the map is open
        QTest::newRow("OK keeps the patch") << false << u"cmdOK"_s << u"145.50000"_s << false;
        QTest::newRow("Cancel drops it") << false << u"cmdCancel"_s << u"145.00000"_s << false;
        QTest::newRow("by key, OK keeps the patch") << true << u"cmdOK"_s << u"145.50000"_s << false;
        QTest::newRow("OK over a channel typed meanwhile") << false << u"cmdOK"_s << u"145.50000"_s << true;
        QTest::newRow("Cancel after a channel typed meanwhile") << false << u"cmdCancel"_s << u"145.00000"_s << true;
    }

    // The gesture, or its key, saves the grid and opens one memory map
    // beside the window (without Alt the click opens neither); a patch of
    // channel 3 made there shows in the channel list after OK and survives
    // the next commit step. OK overwrites what changed since the map opened,
    // which is kept as a backup first.
    void memoryMapGesture()
    {
        QFETCH(bool, byKey);
        QFETCH(QString, button);
        QFETCH(QString, rx);
        QFETCH(bool, meanwhile);
        QVERIFY(h->show(0));
        h->editRx(3, u"145"_s);
        gesture(Qt::ShiftModifier | Qt::ControlModifier);
        QVERIFY(memoryMaps().isEmpty());
        QVERIFY(ShellHarness::imageRx(3).isEmpty());
        const auto open = [&] {
            if (byKey)
                QTest::keyClick(h->window.get(), Qt::Key_M, Qt::ControlModifier | Qt::ShiftModifier | Qt::AltModifier);
            else
                gesture();
        };
        open();
        QCOMPARE(memoryMaps().size(), 1);
        wr::frmMemoryMap *map = memoryMaps().first();
        QVERIFY(map->isVisible());
        QVERIFY(!map->isModal());
        QCOMPARE(ShellHarness::imageRx(3), u"145.00000"_s);
        h->window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(h->window.get()));
        open();
        QCOMPARE(memoryMaps(), QList<wr::frmMemoryMap *>{map});

        if (meanwhile)
            h->editRx(9, u"146"_s);
        const QByteArray before = wr::app().image.bytes();
        map->grid()->setCurrentIndex(map->model()->index(2, 1));
        QTest::keyClick(map->grid(), Qt::Key_5);
        QTest::keyClick(map->findChild<QLineEdit *>(u"txtMemory"_s), Qt::Key_5);
        QTest::keyClick(map->findChild<QLineEdit *>(u"txtMemory"_s), Qt::Key_Return);
        QTest::mouseClick(map->findChild<QPushButton *>(button), Qt::LeftButton);
        QVERIFY(!map->isVisible());
        QCOMPARE(h->gridRx(3), rx);
        const bool overwritten = meanwhile && button == u"cmdOK";
        QCOMPARE(h->gridRx(9), meanwhile && !overwritten ? u"146.00000"_s : QString());
        if (button == u"cmdCancel")
            QCOMPARE(wr::app().image.bytes(), before);
        const QList<wr::Backups::Entry> backups = wr::Backups::list(h->backupFolder());
        QCOMPARE(backups.size(), int(overwritten));
        if (overwritten) {
            const QByteArray kept = wr::DataFile::Read(backups.first().path).image;
            QCOMPARE(backups.first().reason, wr::BackupReason::BeforeMemoryMap);
            QCOMPARE(QStringList({ShellHarness::rxOf(kept, 3), ShellHarness::rxOf(kept, 9)}),
                     QStringList({u"145.00000"_s, u"146.00000"_s}));
        }
        h->window->CommitStep();
        QCOMPARE(ShellHarness::imageRx(3), rx);
    }
};

QTEST_MAIN(TestFmScrambleMapMenus)
#include "TestFmScrambleMapMenus.moc"
