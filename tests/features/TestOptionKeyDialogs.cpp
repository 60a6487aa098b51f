// The optional features and key setting dialogs through the main window's
// menu: OK stores what the user chose with the keyboard, Cancel leaves the
// whole image as the dialog found it, the dialogs speak the interface
// language, and every control the tables name exists.
#include "ShellHarness.h"

#include "features/frmKey.h"
#include "features/frmOption.h"

#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QPushButton>

using namespace Qt::StringLiterals;
using wr::test::ShellHarness;

class TestOptionKeyDialogs : public wr::test::ShellSuite
{
    Q_OBJECT

private Q_SLOTS:
    // The image holds bytes no list can show (side key 0x52, VOX 0x25, key
    // P2 0xC9); OK rewrites them with what the lists show, Cancel keeps
    // them. The user presses Down in one list: squelch 5 becomes 6, P1's
    // long press Monitor becomes 1750.
    void throughTheMenu_data()
    {
        QTest::addColumn<QString>("menuItem");
        QTest::addColumn<int>("language");
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("captions"); // the title, then the texts of captioned controls
        // What a screen reader says: the dialog, then two lists (the side
        // key's or P1's long press, then the side key's or P4's short press).
        QTest::addColumn<QString>("spoken");
        const QString option = u"mnuOptiom_Features"_s;
        const QString key = u"mnuVFO"_s;
        QTest::newRow("optional features, English, OK")
            << option << 0 << u"CmdOK"_s << u"Optiom Features(&O)|Squelch Level|KeyLock|Long Press|Scan|OK"_s
            << u"Optiom Features|SideKey Long Press|SideKey Short Press"_s;
        QTest::newRow("optional features, Simplified Chinese, Cancel")
            << option << 1 << u"CmdCannel"_s << u"可选功能(&O)|静噪等级|键盘锁|长按|扫描|确定"_s << u"可选功能|侧键 长按|侧键 短按"_s;
        QTest::newRow("optional features, Traditional Chinese, OK")
            << option << 2 << u"CmdOK"_s << u"可選功能(&O)|靜噪等級|鍵盤鎖|長按|掃描|確定"_s << u"可選功能|側鍵 長按|側鍵 短按"_s;
        QTest::newRow("key setting, English, OK")
            << key << 0 << u"CmdOK"_s << u"Key Setting|P1：|Long Press|Short Press|Key Lock|Cancel"_s
            << u"Key Setting|P1 Long Press|P4 Short Press"_s;
        QTest::newRow("key setting, Simplified Chinese, OK")
            << key << 1 << u"CmdOK"_s << u"键定义|P1：|长按|短按|键盘锁|取消"_s << u"键定义|P1 长按|P4 短按"_s;
        QTest::newRow("key setting, Traditional Chinese, Cancel")
            << key << 2 << u"CmdCannel"_s << u"鍵定義|P1：|長按|短按|鍵盤鎖|取消"_s << u"鍵定義|P1 長按|P4 短按"_s;
    }

    void throughTheMenu()
    {
        QFETCH(QString, menuItem);
        QFETCH(int, language);
        QFETCH(QString, button);
        const bool option = menuItem == u"mnuOptiom_Features";
        const bool ok = button == u"CmdOK";
        h->open(language);
        wr::app().image.WriteByte(0x0CEA, 0x52);
        wr::app().image.WriteByte(0x0CD7, 0x25);
        wr::app().image.WriteByte(0x0CE9, 0xC9);
        // The optional features bring a closed channel list back when its
        // row count changed; the key setting leaves it closed.
        h->window->channelList()->parentWidget()->close();
        QTRY_VERIFY(!h->window->channelList());
        wr::app().ChannelGridRowsShown = 0;
        const QByteArray before = wr::app().image.bytes();

        const QStringList captioned = option
            ? QStringList{u"Label10"_s, u"Check10"_s, u"Label22"_s, u"CobKeyS"_s, u"CmdOK"_s}
            : QStringList{u"Label10"_s, u"Label20"_s, u"Label21"_s, u"CobKeyL6"_s, u"CmdCannel"_s};
        QStringList shown;
        QStringList heard;
        QByteArray found;
        wr::test::whenModal([&](QDialog *form) {
            found = wr::app().image.bytes();
            for (const QString &name : option ? QStringList{QString(), u"CobKeyL"_s, u"CobKeyS"_s}
                                              : QStringList{QString(), u"CobKeyL0"_s, u"CobKeyS3"_s}) {
                QWidget *control = name.isEmpty() ? form : form->findChild<QWidget *>(name);
                heard << QAccessible::queryAccessibleInterface(control)->text(QAccessible::Name);
            }
            shown = QStringList{form->windowTitle()};
            for (const QString &name : captioned) {
                if (auto *label = form->findChild<QLabel *>(name))
                    shown << label->text();
                else if (auto *check = form->findChild<QAbstractButton *>(name))
                    shown << check->text();
                else if (auto *combo = form->findChild<QComboBox *>(name))
                    shown << combo->currentText();
            }
            QTest::keyClick(form->findChild<QComboBox *>(option ? u"Combo10"_s : u"CobKeyL0"_s), Qt::Key_Down);
            QTest::mouseClick(form->findChild<QPushButton *>(button), Qt::LeftButton);
        });
        h->trigger(menuItem);
        QTEST(shown.join(u'|'), "captions");
        QTEST(heard.join(u'|'), "spoken");

        // The commit step (address 0x0CD0 cleared) runs before the optional
        // features only.
        wr::MemoryImage expected = wr::test::imageOf(before);
        if (option)
            expected.WriteByte(0x0CD0, 0x00);
        QCOMPARE(found.toHex(' '), expected.bytes().toHex(' '));
        if (ok && option) {
            expected.WriteByte(0x0CD6, 0x06);
            expected.WriteByte(0x0CD7, 0x00);
            expected.WriteByte(0x0CEA, 0x02);
        } else if (ok) {
            expected.WriteByte(0x0CE8, 0xA0);
            expected.WriteByte(0x0CE9, 0x00); // 0x52 is P3's power prompt and scan: kept
        }
        QCOMPARE(wr::app().image.bytes().toHex(' '), expected.bytes().toHex(' '));
        QCOMPARE(int(wr::app().ChannelGridRowsShown), ok && option ? 129 : 0);
        QCOMPARE(h->window->channelList() != nullptr, ok && option);
    }

    // Every control the tables name exists with the right kind; the ones
    // that only carry texts are filled but out of sight.
    void everyControlBound()
    {
        wr::MemoryImage image = wr::test::freshImage();
        wr::frmOption option(image, wr::TraditionalChinese);
        wr::frmKey key(image, wr::TraditionalChinese);
        QCOMPARE(option.missingControls(), QStringList());
        QCOMPARE(key.missingControls(), QStringList());
        option.show();
        key.show();
        QVERIFY(QTest::qWaitForWindowExposed(&option));
        QVERIFY(option.findChild<QComboBox *>(u"Combo18"_s)->isVisible());
        QVERIFY(key.findChild<QWidget *>(u"Picture1"_s)->isVisible());
        // The painted picture reads as one, with where the keys are.
        QAccessibleInterface *picture = QAccessible::queryAccessibleInterface(key.findChild<QWidget *>(u"Picture1"_s));
        QCOMPARE(picture->role(), QAccessible::Graphic);
        QVERIFY(picture->text(QAccessible::Description).contains(u"P7"_s));
        QStringList outOfSight;
        for (const QString &name : {u"Check16"_s, u"Check17"_s, u"Combo114"_s, u"cboRadio3"_s, u"cboCH1"_s,
                                    u"ComKey"_s, u"Combo20"_s, u"Check2"_s}) {
            auto *control = option.findChild<QWidget *>(name);
            QVERIFY2(control && !control->isVisible(), qPrintable(name));
            const auto *list = qobject_cast<QComboBox *>(control);
            outOfSight << (list ? list->itemText(list->count() - 1) : qobject_cast<QAbstractButton *>(control)->text());
        }
        QCOMPARE(outOfSight.join(u'|'), u"啟動雙守候|收音機使能|MSK|開|20|背光燈|信道號|VFO模式"_s);
    }
};

QTEST_MAIN(TestOptionKeyDialogs)
#include "TestOptionKeyDialogs.moc"
