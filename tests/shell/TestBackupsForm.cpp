// File → Backups…: the automatic backups listed newest first in the
// interface language, opened as File → Open opens a file, and their folder
// shown; and the note at start-up when the last run left unsaved changes.
#include "ShellHarness.h"

#include "file/Backups.h"

#include <QDesktopServices>
#include <QDir>
#include <QPushButton>
#include <QTreeWidget>
#include <QUrl>

using namespace Qt::StringLiterals;
using wr::test::ShellHarness;
using wr::BackupReason;

namespace {

const QDateTime At(QDate(2026, 11, 23), QTime(14, 15, 2));

// Takes the URLs the program asks the desktop to show.
class Desktop : public QObject
{
    Q_OBJECT

public:
    Desktop() { QDesktopServices::setUrlHandler(u"file"_s, this, "show"); }
    ~Desktop() override { QDesktopServices::unsetUrlHandler(u"file"_s); }
    QList<QUrl> shown;

public Q_SLOTS:
    void show(const QUrl &url) { shown.append(url); }
};

} // namespace

class TestBackupsForm : public wr::test::ShellSuite
{
    Q_OBJECT

    // Backups a minute apart, oldest first, each of an image with one more
    // channel than the one before.
    void keepBackups(const QList<BackupReason> &reasons) const
    {
        for (qsizetype i = 0; i < reasons.size(); ++i) {
            wr::MemoryImage image = wr::test::imageOf(ShellHarness::imageWithChannels(1, int(i) + 1));
            wr::Backups::keep(h->backupFolder(), image, reasons.at(i), At.addSecs(60 * (i - reasons.size())));
        }
    }
    // The list's rows as "time|reason|channels".
    static QStringList rows(const QTreeWidget *list)
    {
        QStringList texts;
        for (int row = 0; row < list->topLevelItemCount(); ++row) {
            const QTreeWidgetItem *item = list->topLevelItem(row);
            texts << item->text(0) + u'|' + item->text(1) + u'|' + item->text(2);
        }
        return texts;
    }

private Q_SLOTS:
    void listAndOpen_data()
    {
        // The rows listed; the menu item, label, buttons and column headers.
        wr::test::languageRows<QStringList, QString>(
            {"listed", "captions"},
            {{u"2026-11-23 14:14:02|Unsaved changes before Open|3"_s,
              u"2026-11-23 14:13:02|Program closed with unsaved changes|unreadable"_s,
              u"2026-11-23 14:12:02|Read from the radio|1"_s},
             {u"2026-11-23 14:14:02|打开前未保存的修改|3"_s, u"2026-11-23 14:13:02|程序关闭时有未保存的修改|无法读取"_s,
              u"2026-11-23 14:12:02|从对讲机读取|1"_s},
             {u"2026-11-23 14:14:02|打開前未保存的修改|3"_s, u"2026-11-23 14:13:02|程序關閉時有未保存的修改|無法讀取"_s,
              u"2026-11-23 14:12:02|從對講機讀取|1"_s}},
            {u"&Backups…|Backups the program kept, newest first|Show Folder|Open|Close|Time|Reason|Channels in use"_s,
             u"备份…|程序保留的备份，最新的在前|显示文件夹|打开|关闭|时间|原因|使用中的信道"_s,
             u"備份…|程序保留的備份，最新的在前|顯示文件夾|打開|關閉|時間|原因|使用中的信道"_s});
    }

    // The list speaks the interface language, its controls are named for a
    // screen reader, and a row chosen with the arrow keys opens with Enter,
    // after the question Open asks about unsaved changes.
    void listAndOpen()
    {
        QFETCH(int, language);
        keepBackups({BackupReason::Read, BackupReason::ExitUnsaved, BackupReason::BeforeOpen});
        const QString damaged = wr::Backups::list(h->backupFolder()).at(1).path;
        QVERIFY(wr::test::writeFile(damaged, "damaged"));
        QVERIFY(h->show(language));
        h->editRx(9, u"145.5"_s);
        QStringList shown;
        QStringList spoken{h->action(u"mnuFile_Backups"_s)->text()};
        wr::test::whenModal([&](QDialog *form) {
            auto *list = form->findChild<QTreeWidget *>(u"lstBackups"_s);
            shown = rows(list);
            auto *label = form->findChild<QLabel *>(u"lblBackups"_s);
            QCOMPARE(label->buddy(), list);
            spoken << list->accessibleName();
            for (const QString &button : {u"cmdShowFolder"_s, u"cmdOpen"_s, u"cmdClose"_s})
                spoken << form->findChild<QPushButton *>(button)->accessibleName();
            for (int column = 0; column < 3; ++column)
                spoken << list->headerItem()->text(column);
            QTRY_COMPARE(QApplication::focusWidget(), list); // once the dialog is active
            QCOMPARE(list->currentIndex().row(), 0);
            QTest::keyClick(list, Qt::Key_End);
            QTest::keyClick(list, Qt::Key_Return);
        });
        wr::MessageBox::setNextAnswer(QMessageBox::No);
        h->trigger(u"mnuFile_Backups"_s);

        QTEST(shown, "listed");
        QTEST(spoken.join(u'|'), "captions");
        QCOMPARE(wr::MessageBox::history().size(), 1); // the modified question
        QCOMPARE(wr::app().image.bytes(), ShellHarness::imageWithChannels(1, 1));
        QCOMPARE(h->gridRx(1), u"431.12500"_s);
        // Opening replaced the edit, which is kept; the dialogs' folder stays
        // where the user's own files are.
        const QList<wr::Backups::Entry> backups = wr::Backups::list(h->backupFolder());
        QCOMPARE(backups.first().reason, BackupReason::BeforeOpen);
        QCOMPARE(ShellHarness::rxOf(wr::DataFile::Read(backups.first().path).image, 9), u"145.50000"_s);
        wr::FileDialog::setNextFileName(QString());
        h->trigger(u"mnuFile_Open"_s);
        QCOMPARE(wr::FileDialog::history(), QStringList{QString()});
    }

    // Without backups the list holds a note as its current row, so that a
    // screen reader always finds a current cell; Open is off. Show Folder
    // makes the folder and shows it; Esc closes.
    void noBackupsYet()
    {
        Desktop desktop;
        h->open(0);
        QString note;
        bool openable = true;
        wr::test::whenModal([&](QDialog *form) {
            auto *list = form->findChild<QTreeWidget *>(u"lstBackups"_s);
            note = list->currentItem() ? list->currentItem()->text(0) : QString();
            openable = form->findChild<QPushButton *>(u"cmdOpen"_s)->isEnabled();
            QTest::keyClick(list, Qt::Key_Down);
            QVERIFY(list->currentIndex().isValid());
            QTest::mouseClick(form->findChild<QPushButton *>(u"cmdShowFolder"_s), Qt::LeftButton);
            QTest::keyClick(list, Qt::Key_Escape);
        });
        h->trigger(u"mnuFile_Backups"_s);

        QCOMPARE(note, u"No backups have been kept yet."_s);
        QVERIFY(!openable);
        QCOMPARE(desktop.shown, QList<QUrl>{QUrl::fromLocalFile(h->backupFolder())});
        QVERIFY(QFileInfo(h->backupFolder()).isDir());
        QVERIFY(wr::MessageBox::history().isEmpty());
    }

    void noteAtStartUp_data()
    {
        QTest::addColumn<QList<BackupReason>>("kept"); // oldest first
        QTest::addColumn<int>("language");
        QTest::addColumn<QString>("note");
        using enum BackupReason;
        QTest::newRow("last run closed with unsaved changes")
            << QList<BackupReason>{Read, ExitUnsaved} << 0 << u"Unsaved changes from the last run were kept: File → Backups…"_s;
        QTest::newRow("in Traditional Chinese") << QList<BackupReason>{ExitUnsaved} << 2
                                                << u"上次運行未保存的修改已保留：文件 → 備份…"_s;
        QTest::newRow("last run closed without") << QList<BackupReason>{ExitUnsaved, Exit} << 0 << QString();
        QTest::newRow("read since") << QList<BackupReason>{ExitUnsaved, Read} << 0 << QString();
        QTest::newRow("no backups") << QList<BackupReason>{} << 0 << QString();
    }

    // Once, in the status bar's note, for 15 seconds; the panels come back
    // afterwards.
    void noteAtStartUp()
    {
        QFETCH(QList<BackupReason>, kept);
        QFETCH(int, language);
        QFETCH(QString, note);
        keepBackups(kept);
        h->open(language).show();
        QVERIFY(QTest::qWaitForWindowExposed(h->window.get()));
        auto *noteLabel = h->window->findChild<QLabel *>(u"MSBar_Note"_s);
        QCOMPARE(noteLabel->text(), note);
        auto *shown = h->window->findChild<QTimer *>(u"tmrNote"_s);
        QCOMPARE(shown->isActive(), !note.isEmpty());
        if (note.isEmpty())
            return;
        QCOMPARE(shown->interval(), 15000);
        shown->start(0);
        QTRY_VERIFY(noteLabel->text().isEmpty());
        QCOMPARE(h->panel(5), u"Version 1.03"_s);
    }
};

QTEST_MAIN(TestBackupsForm)
#include "TestBackupsForm.moc"
