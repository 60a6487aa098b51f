// Automatic backups: names, the exit backup that repeats the newest one, the
// limit of kept backups, and folders that cannot take a backup.

#include "TestSuite.h"

#include "file/Backups.h"
#include "file/DataFile.h"

#include <QDir>
#include <QStandardPaths>
#include <QTest>

using namespace wr;
using namespace Qt::Literals::StringLiterals;

namespace {

const QDateTime At = QDateTime(QDate(2026, 11, 23), QTime(14, 15, 2));

// A fresh radio with one byte of channel 1 changed to `mark`.
MemoryImage imageMarked(std::uint8_t mark)
{
    MemoryImage image = test::freshImage();
    image.WriteByte(0, mark);
    return image;
}

QStringList fileNames(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name);
}

} // namespace

class TestBackups : public test::Suite
{
    Q_OBJECT

private Q_SLOTS:
    void keep_data()
    {
        QTest::addColumn<QList<int>>("before"); // marks of the backups kept a minute apart, oldest first
        QTest::addColumn<BackupReason>("reason");
        QTest::addColumn<int>("mark");
        QTest::addColumn<QString>("written"); // the name, or "" for none

        using enum BackupReason;
        QTest::newRow("first read") << QList<int>{} << Read << 1 << u"2026-11-23_141502-read.tw"_s;
        QTest::newRow("first exit") << QList<int>{} << Exit << 1 << u"2026-11-23_141502-exit.tw"_s;
        QTest::newRow("read repeating the newest") << QList<int>{1} << Read << 1 << u"2026-11-23_141502-read.tw"_s;
        QTest::newRow("exit repeating the newest") << QList<int>{2, 1} << Exit << 1 << QString();
        QTest::newRow("exit repeating an older one") << QList<int>{1, 2} << Exit << 1 << u"2026-11-23_141502-exit.tw"_s;
        QTest::newRow("exit after a change") << QList<int>{1} << Exit << 2 << u"2026-11-23_141502-exit.tw"_s;
        QTest::newRow("exit with unsaved changes")
            << QList<int>{1} << ExitUnsaved << 2 << u"2026-11-23_141502-exit-unsaved.tw"_s;
        QTest::newRow("before a read") << QList<int>{1} << BeforeRead << 2 << u"2026-11-23_141502-before-read.tw"_s;
        QTest::newRow("before New") << QList<int>{} << BeforeNew << 2 << u"2026-11-23_141502-before-new.tw"_s;
        QTest::newRow("before Open repeating the newest") << QList<int>{1, 2} << BeforeOpen << 2 << QString();
        QTest::newRow("before the memory map's OK")
            << QList<int>{2} << BeforeMemoryMap << 1 << u"2026-11-23_141502-before-memory-map.tw"_s;
    }

    void keep()
    {
        QFETCH(QList<int>, before);
        QFETCH(BackupReason, reason);
        QFETCH(int, mark);
        QFETCH(QString, written);

        QDateTime time = At.addSecs(-60 * before.size());
        for (int previous : before) {
            QCOMPARE(Backups::keep(folder(), imageMarked(previous), BackupReason::Read, time).status,
                     Backups::Status::Written);
            time = time.addSecs(60);
        }
        const MemoryImage image = imageMarked(static_cast<std::uint8_t>(mark));
        const Backups::Result result = Backups::keep(folder(), image, reason, At);

        const QList<Backups::Entry> entries = Backups::list(folder());
        QCOMPARE(entries.size(), before.size() + (written.isEmpty() ? 0 : 1));
        if (written.isEmpty()) {
            QCOMPARE(result.status, Backups::Status::Unchanged);
            return;
        }
        QCOMPARE(result.status, Backups::Status::Written);
        QCOMPARE(result.path, QDir(folder()).filePath(written));
        QCOMPARE(entries.first().path, result.path);
        QCOMPARE(entries.first().time, At);
        QCOMPARE(entries.first().reason, reason);
        const DataFile::ReadResult file = DataFile::Read(result.path);
        QCOMPARE(file.status, DataFile::ReadStatus::Ok);
        QCOMPARE(file.image, image.bytes());
    }

    void namesInOneSecond()
    {
        Backups::keep(folder(), imageMarked(1), BackupReason::Read, At);
        Backups::keep(folder(), imageMarked(2), BackupReason::Exit, At);
        Backups::keep(folder(), imageMarked(3), BackupReason::Read, At);
        // Files that are not backups are listed neither by name nor by date.
        for (const QString &other : {u"notes.tw"_s, u"2026-13-40_141502-read.tw"_s, u"2026-11-23_141502-read.tw.part"_s})
            QVERIFY(test::writeFile(QDir(folder()).filePath(other), "other"));

        const QList<Backups::Entry> entries = Backups::list(folder());
        QStringList names;
        for (const Backups::Entry &entry : entries)
            names << QFileInfo(entry.path).fileName();
        QCOMPARE(names, QStringList({u"2026-11-23_141502_3-read.tw"_s, u"2026-11-23_141502_2-exit.tw"_s,
                                     u"2026-11-23_141502-read.tw"_s}));
        // The exit backup compares with the newest, the third.
        QCOMPARE(Backups::keep(folder(), imageMarked(3), BackupReason::Exit, At).status, Backups::Status::Unchanged);
    }

    void pruning()
    {
        // Backups from a year of daily reads; their content does not matter here.
        QVERIFY(QDir().mkpath(folder()));
        const QByteArray content = *DataFile::Encode(imageMarked(0));
        for (int day = 0; day < Backups::KeptCount; ++day) {
            const QString name = At.addDays(day - 365).toString(u"yyyy-MM-dd_HHmmss"_s) + u"-read.tw"_s;
            QVERIFY(test::writeFile(QDir(folder()).filePath(name), content));
        }
        QVERIFY(test::writeFile(QDir(folder()).filePath(u"notes.tw"_s), "mine"));

        QCOMPARE(Backups::keep(folder(), imageMarked(1), BackupReason::Read, At).status, Backups::Status::Written);
        const QList<Backups::Entry> entries = Backups::list(folder());
        QCOMPARE(entries.size(), Backups::KeptCount);
        QCOMPARE(entries.first().time, At);
        QCOMPARE(entries.last().time, At.addDays(1 - 365)); // the oldest one went
        QVERIFY(QFile::exists(QDir(folder()).filePath(u"notes.tw"_s)));
        QCOMPARE(fileNames(folder()).size(), Backups::KeptCount + 1);
    }

    void unwritableFolder_data()
    {
        // Root may write anywhere, so what stops the backup is something in the way.
        QTest::addColumn<QString>("backupFolder");
        QTest::addColumn<QString>("inTheWay");
        QTest::addColumn<bool>("isFolder");

        QTest::newRow("backup folder is a file") << u"backups"_s << u"backups"_s << false;
        QTest::newRow("data folder is a file") << u"data/backups"_s << u"data"_s << false;
        QTest::newRow("backup name taken by a folder") << u"backups"_s << u"backups/2026-11-23_141502-read.tw"_s << true;
    }

    void unwritableFolder()
    {
        QFETCH(QString, backupFolder);
        QFETCH(QString, inTheWay);
        QFETCH(bool, isFolder);

        const QString blocker = filePath(inTheWay);
        if (isFolder)
            QVERIFY(QDir().mkpath(blocker));
        else
            QVERIFY(test::writeFile(blocker, "in the way"));
        const QStringList before = fileNames(tempFolder());

        const Backups::Result result =
            Backups::keep(filePath(backupFolder), imageMarked(1), BackupReason::Read, At);
        QCOMPARE(result.status, Backups::Status::Failed);
        QVERIFY(!result.errorString.isEmpty());
        QCOMPARE(fileNames(tempFolder()), before);
        if (isFolder)
            QVERIFY(fileNames(blocker).isEmpty());
        else
            QCOMPARE(test::readFile(blocker), QByteArray("in the way"));
    }

    void defaultFolder()
    {
        // The call the program makes: the application data folder (the test
        // process's own, in test mode), now.
        const QString data = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
        QDir(data).removeRecursively();
        const Backups::Result result = Backups::keep(imageMarked(1), BackupReason::Read);
        QCOMPARE(result.status, Backups::Status::Written);
        QCOMPARE(QFileInfo(result.path).path(), data + u"/backups"_s);
        QVERIFY(qAbs(Backups::list().first().time.secsTo(QDateTime::currentDateTime())) < 60);
        QVERIFY(QDir(data).removeRecursively());
    }

private:
    QString folder() const { return filePath(u"backups"_s); }
};

QTEST_GUILESS_MAIN(TestBackups)
#include "TestBackups.moc"
