// The channel list's filter in the main window: Ctrl+F from anywhere, and
// the count of channels shown in the status bar, spoken to a screen reader.
#include "ShellHarness.h"

#include <QAccessible>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QTreeWidget>

using namespace Qt::StringLiterals;

class TestMainWindowFilter : public wr::test::ShellSuite
{
    Q_OBJECT

    // What a screen reader reads in the status bar's fourth panel.
    QString spoken() const
    {
        auto *panel = h->window->findChild<QLabel *>(u"MSBar_Panel4"_s);
        return QAccessible::queryAccessibleInterface(panel)->text(QAccessible::Name);
    }

private Q_SLOTS:
    // The filter sits above the grid, but the program still starts with the
    // focus in the grid: a digit typed at once edits channel 1.
    void startsInTheGrid()
    {
        wr::MDIForm1 &window = h->open(0);
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QCOMPARE(QApplication::focusWidget()->objectName(), u"ChannelGrid"_s);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_1);
        QCOMPARE(QApplication::focusWidget()->objectName(), u"TxtChannel"_s);
        QCOMPARE(window.findChild<QLineEdit *>(u"txtFilter"_s)->text(), QString());
    }

    void countInTheStatusBar_data()
    {
        // 12 channels shown, 2, then 2 after the switch to English.
        const QString two = u"2 of 128 channels shown"_s;
        wr::test::languageRows<QStringList>({"counts"}, {{u"12 of 128 channels shown"_s, two, two},
                                                         {u"显示 12 / 128 个信道"_s, u"显示 2 / 128 个信道"_s, two},
                                                         {u"顯示 12 / 128 個信道"_s, u"顯示 2 / 128 個信道"_s, two}});
    }

    // Ctrl+F reaches the filter from the tree; the count follows each
    // keystroke and the language, and goes with the filter or the list.
    void countInTheStatusBar()
    {
        QFETCH(int, language);
        QFETCH(QStringList, counts);
        wr::MDIForm1 &window = h->open(language);
        wr::app().image.setBytes(wr::test::ShellHarness::imageWithChannels(1, 12)); // 431.12500 to 442.12500
        window.RefreshMainWindow();
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        auto *tree = window.findChild<QTreeWidget *>(u"Tree0"_s);
        tree->setFocus();

        QTest::keyClick(tree, Qt::Key_F, Qt::ControlModifier);
        auto *filter = window.findChild<QLineEdit *>(u"txtFilter"_s);
        QCOMPARE(QApplication::focusWidget(), filter);
        QTest::keyClicks(filter, u"125"_s);
        QCOMPARE(h->panel(4), counts.front());
        QCOMPARE(spoken(), counts.front());

        QTest::keyClicks(filter, u" 2.1"_s); // 432.12500 and 442.12500 are left
        QCOMPARE(h->panel(4), counts.at(1));
        wr::app().LanguageIndex = 0;
        window.RefreshMainWindow();
        QCOMPARE(h->panel(4), counts.back());
        QCOMPARE(spoken(), counts.back());

        QTest::keyClick(filter, Qt::Key_Escape);
        QCOMPARE(h->panel(4), QString());
        QTest::keyClicks(filter, u"4"_s);
        QVERIFY(!h->panel(4).isEmpty());
        delete window.findChild<QMdiSubWindow *>();
        QCOMPARE(h->panel(4), QString());
    }
};

QTEST_MAIN(TestMainWindowFilter)
#include "TestMainWindowFilter.moc"
