// New, Open, Save and Save As through the main window's menu: the questions,
// the file names, and that a failure never changes the image or the files.
#include "ShellHarness.h"

#include <QFile>

#include <csignal>
#include <optional>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;
using wr::test::ShellHarness;

namespace {

QString rxInFile(const QString &path, int channel)
{
    return ShellHarness::rxOf(wr::DataFile::Read(path).image, channel);
}

} // namespace

class TestFileCommands : public QObject
{
    Q_OBJECT

private:
    std::optional<ShellHarness> h;

private Q_SLOTS:
    void initTestCase() { wr::test::initTestProcess(); }
    void init()
    {
        h.emplace();
        h->open(0);
    }
    void cleanup() { h.reset(); }

    void openModifiedImage_data()
    {
        QTest::addColumn<int>("answer");       // to "File has been modified, save it now?", 0 = not modified
        QTest::addColumn<QString>("saveName"); // answer of the save dialog, "-" = not asked
        QTest::addColumn<bool>("opened");
        QTest::newRow("not modified: no question") << 0 << u"-"_s << true;
        QTest::newRow("Yes saves Untitled under a new name, then opens") << int(QMessageBox::Yes) << u"saved.tw"_s << true;
        QTest::newRow("No opens without saving") << int(QMessageBox::No) << u"-"_s << true;
        QTest::newRow("Cancel keeps the edits") << int(QMessageBox::Cancel) << u"-"_s << false;
        QTest::newRow("Yes, save dialog cancelled: nothing opened") << int(QMessageBox::Yes) << QString() << false;
    }

    void openModifiedImage()
    {
        QFETCH(int, answer);
        QFETCH(QString, saveName);
        QFETCH(bool, opened);
        const QString other = h->fixture.path(u"other.tw"_s);
        const QByteArray otherImage = ShellHarness::imageWithChannels(20, 5);
        QVERIFY(ShellHarness::writeDataFile(other, otherImage));
        const QByteArray otherFile = wr::test::readFile(other);
        if (answer) {
            h->editRx(1, u"145.5"_s); // in the grid only; Open still knows it as a change
            wr::MessageBox::setNextAnswer(QMessageBox::StandardButton(answer));
        }
        if (saveName != u"-")
            wr::FileDialog::setNextFileName(saveName.isEmpty() ? QString() : h->fixture.path(saveName));
        if (opened)
            wr::FileDialog::setNextFileName(other);
        h->trigger(u"mnuFile_Open"_s);

        QCOMPARE(ShellHarness::shownBoxes(), answer ? QStringList{u"Warning||File has been modified, save it now?"_s} : QStringList());
        for (const wr::MessageBox::Shown &box : wr::MessageBox::history())
            QCOMPARE(box.buttons, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        const QString saved = h->fixture.path(u"saved.tw"_s);
        const bool savedFirst = saveName == u"saved.tw";
        QCOMPARE(QFile::exists(saved), savedFirst);
        QCOMPARE(wr::app().CurrentFileName, savedFirst ? saved : u"Untitled"_s);
        QCOMPARE(wr::app().image.IsModified(), !opened);
        QCOMPARE(wr::app().image.bytes() == otherImage, opened);
        QCOMPARE(h->gridRx(20), opened ? u"450.12500"_s : QString());
        QCOMPARE(h->gridRx(1), opened ? QString() : u"145.50000"_s);
        if (!opened)
            QCOMPARE(ShellHarness::imageRx(1), u"145.50000"_s);
        if (!savedFirst)
            return;
        QCOMPARE(rxInFile(saved, 1), u"145.50000"_s);
        // After Open, Save goes to the file last saved without a dialog and
        // leaves the opened file alone.
        h->editRx(10, u"439.0"_s);
        const QString sentinel = h->fixture.path(u"sentinel.tw"_s);
        wr::FileDialog::setNextFileName(sentinel); // a dialog would take it
        h->trigger(u"mnuFile_Save"_s);
        QVERIFY(!QFile::exists(sentinel));
        QCOMPARE(rxInFile(saved, 10), u"439.00000"_s);
        QCOMPARE(rxInFile(saved, 20), u"450.12500"_s);
        QCOMPARE(wr::test::readFile(other), otherFile);
        QCOMPARE(wr::MessageBox::history().size(), 1);
    }

    void badFilesLeaveImageAlone_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("title");
        QByteArray foreign = wr::DataFile::Container(wr::MemoryImage());
        foreign.replace(0, 6, "ABCDEF");
        foreign.append('\0');
        const QByteArray packed = *wr::DataFile::Encode(wr::MemoryImage());
        QTest::newRow("foreign marker") << foreign << u"WR-PD6T"_s;
        QTest::newRow("damaged packing") << packed.left(40) + packed.right(1) << u"Error"_s;
        // Null content: a pipe that nobody writes into, refused without waiting.
        QTest::newRow("pipe") << QByteArray() << u"WR-PD6T"_s;
    }

    void badFilesLeaveImageAlone()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, title);
        const QString path = h->fixture.path(u"bad.tw"_s);
        if (content.isNull())
            QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
        else
            QVERIFY(wr::test::writeFile(path, content));
        h->editRx(3, u"145.0"_s);
        h->window->CommitStep();
        h->editRx(4, u"146.0"_s); // modified again, but answered No below
        wr::app().BandLimits[0] = 140;
        wr::MessageBox::setNextAnswer(QMessageBox::No);
        wr::FileDialog::setNextFileName(path);
        h->trigger(u"mnuFile_Open"_s);

        QCOMPARE(ShellHarness::shownBoxes().mid(1), QStringList{u"Critical|%1|Incorrect File Type."_s.arg(title)});
        // The image (with the grid's edit moved in), its snapshot state, the
        // band limits and the grid are as before.
        QCOMPARE(ShellHarness::imageRx(3), u"145.00000"_s);
        QCOMPARE(ShellHarness::imageRx(4), u"146.00000"_s);
        QVERIFY(wr::app().image.IsModified());
        QCOMPARE(wr::app().BandLimits[0], 140);
        QCOMPARE(h->gridRx(4), u"146.00000"_s);
        QVERIFY(!QFile::exists(wr::app().AppFolder + u"tempzunk.dat"_s));
    }

    void failedSaveKeepsOldFile()
    {
        const QString path = h->fixture.path(u"kept.tw"_s);
        QVERIFY(ShellHarness::writeDataFile(path, ShellHarness::imageWithChannels(1, 128)));
        const QByteArray oldFile = wr::test::readFile(path);
        // Save As over the old file with different data, with writes limited
        // to fewer bytes than the new file needs: past the limit they fail
        // with EFBIG, which even root cannot override.
        wr::app().image.setBytes(ShellHarness::imageWithChannels(1, 100));
        h->window->RefreshMainWindow();
        wr::FileDialog::setNextFileName(path);
        rlimit usual{};
        getrlimit(RLIMIT_FSIZE, &usual);
        const rlimit limit{64, usual.rlim_max};
        const auto handler = std::signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &limit);
        h->trigger(u"mnuFile_SaveAs"_s);
        setrlimit(RLIMIT_FSIZE, &usual);
        std::signal(SIGXFSZ, handler);
        // The system's own words, not "Unknown error".
        QCOMPARE(ShellHarness::shownBoxes(), QStringList{u"Warning|WR-PD6T|"_s + qt_error_string(EFBIG)});
        QCOMPARE(wr::test::readFile(path), oldFile);
        QCOMPARE(wr::app().CurrentFileName, u"Untitled"_s); // the failed name is not taken
        QVERIFY(!ShellHarness::imageRx(100).isEmpty());
        QVERIFY(ShellHarness::imageRx(101).isEmpty());
    }

    void fileNew_data()
    {
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("cleared");
        QTest::newRow("Cancel keeps the channels") << int(QMessageBox::Cancel) << false;
        QTest::newRow("OK clears the image") << int(QMessageBox::Ok) << true;
    }

    void fileNew()
    {
        QFETCH(int, answer);
        QFETCH(bool, cleared);
        wr::app().image.setBytes(ShellHarness::imageWithChannels(1, 10));
        wr::app().image.TakeSnapshot();
        wr::app().CurrentFileName = h->fixture.path(u"current.tw"_s);
        h->window->RefreshMainWindow();
        wr::MessageBox::setNextAnswer(QMessageBox::StandardButton(answer));
        h->trigger(u"mnuFile_New"_s);
        QCOMPARE(ShellHarness::shownBoxes(), QStringList{u"Warning|Alert!|All data will be cleared."_s});
        QCOMPARE(wr::MessageBox::history().first().buttons, QMessageBox::Ok | QMessageBox::Cancel);
        QCOMPARE(wr::MessageBox::history().first().defaultButton, QMessageBox::Cancel);
        wr::MemoryImage fresh;
        fresh.InitImage();
        QCOMPARE(wr::app().image.bytes() == fresh.bytes(), cleared);
        QCOMPARE(h->gridRx(1).isEmpty(), cleared);
        QVERIFY(!wr::app().image.IsModified());
        QCOMPARE(wr::app().CurrentFileName, h->fixture.path(u"current.tw"_s));
    }
};

QTEST_MAIN(TestFileCommands)
#include "TestFileCommands.moc"
