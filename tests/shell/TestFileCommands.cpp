// New, Open, Save and Save As through the main window's menu: the questions,
// the file names, and that a failure never changes the image or the files.
#include "ShellHarness.h"

#include "channels/ChannelRecord.h"
#include "channels/frmChannel.h"
#include "core/AppState.h"
#include "core/BandLimits.h"
#include "file/DataFile.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTableWidget>

#include <csignal>
#include <sys/resource.h>

using namespace Qt::StringLiterals;
using wr::test::ShellHarness;

namespace {

// An image with a few channels, written as a data file.
QByteArray imageWithChannels(int first, int count)
{
    wr::MemoryImage image;
    image.InitImage();
    for (int channel = first; channel < first + count; ++channel) {
        wr::ChannelTexts texts;
        texts.rx = QStringLiteral("%1.12500").arg(430 + channel);
        texts.tx = texts.rx;
        texts.decode = u"88.5"_s;
        texts.encode = u"D023N"_s;
        texts.power = wr::PowerText(true, 0);
        texts.bandwidth = wr::BandwidthText(true, 0);
        texts.scanAdd = wr::ScanAddText(true, 0);
        texts.bcl = wr::BclText(wr::ChannelRecord::Bcl::Off, 0);
        wr::CreateChannel(image, channel);
        wr::SaveChannel(image, channel, texts);
    }
    // As a radio reports them; a file without them opens with limits of 0.
    wr::WriteDefaultBandLimits(image);
    return image.bytes();
}

bool writeDataFile(const QString &path, const QByteArray &bytes)
{
    wr::MemoryImage image;
    image.setBytes(bytes);
    QString error;
    return wr::DataFile::Write(path, image, &error);
}

QByteArray imageOfFile(const QString &path)
{
    const wr::DataFile::ReadResult read = wr::DataFile::Read(path);
    return read.status == wr::DataFile::ReadStatus::Ok ? read.image : QByteArray();
}

// Lets writes past a size limit fail with EFBIG, which even root cannot
// override: the way to make a save fail in the middle of writing.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        getrlimit(RLIMIT_FSIZE, &m_saved);
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit = m_saved;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_saved);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    rlimit m_saved{};
    void (*m_handler)(int) = nullptr;
};

} // namespace

class TestFileCommands : public QObject
{
    Q_OBJECT

private:
    std::optional<ShellHarness> h;

    void trigger(const QString &item) { h->action(item)->trigger(); }

    // A value typed into the grid, not yet in the image.
    void editInGrid(int channel, const QString &rx) { h->window->channelList()->setChannelRx(channel, rx); }

    QString gridRx(int channel) const { return h->window->channelList()->grid()->item(channel, 1)->text(); }

private Q_SLOTS:
    void initTestCase() { wr::test::initTestProcess(); }
    void init()
    {
        h.emplace();
        h->storeSetting(u"language"_s, u"0"_s);
        h->open();
    }
    void cleanup() { h.reset(); }

    void openModifiedImage_data()
    {
        QTest::addColumn<bool>("modified");
        QTest::addColumn<int>("answer");        // to "File has been modified, save it now?"
        QTest::addColumn<QString>("saveName");  // answer of the save dialog, "-" = not asked
        QTest::addColumn<bool>("opened");
        QTest::addColumn<bool>("savedFirst");
        QTest::newRow("not modified: no question") << false << 0 << u"-"_s << true << false;
        QTest::newRow("Yes saves, then opens") << true << int(QMessageBox::Yes) << u"saved.tw"_s << true << true;
        QTest::newRow("No opens without saving") << true << int(QMessageBox::No) << u"-"_s << true << false;
        QTest::newRow("Cancel keeps the edits") << true << int(QMessageBox::Cancel) << u"-"_s << false << false;
        QTest::newRow("Yes, save dialog cancelled: nothing opened")
            << true << int(QMessageBox::Yes) << QString() << false << false;
    }

    void openModifiedImage()
    {
        QFETCH(bool, modified);
        QFETCH(int, answer);
        QFETCH(QString, saveName);
        QFETCH(bool, opened);
        QFETCH(bool, savedFirst);
        const QString other = h->fixture.path(u"other.tw"_s);
        const QByteArray otherImage = imageWithChannels(20, 5);
        QVERIFY(writeDataFile(other, otherImage));

        // The edit sits in the grid only; Open still knows it as a change.
        if (modified)
            editInGrid(1, u"145.5"_s);
        if (answer)
            wr::MessageBox::setNextAnswer(QMessageBox::StandardButton(answer));
        if (saveName != u"-")
            wr::FileDialog::setNextFileName(saveName.isEmpty() ? QString() : h->fixture.path(saveName));
        if (opened)
            wr::FileDialog::setNextFileName(other);
        trigger(u"mnuFile_Open"_s);

        const QList<wr::MessageBox::Shown> shown = wr::MessageBox::history();
        QCOMPARE(shown.size(), modified ? 1 : 0);
        if (modified) {
            QCOMPARE(shown.first().text, u"File has been modified, save it now?"_s);
            QCOMPARE(shown.first().title, QString());
            QCOMPARE(shown.first().icon, QMessageBox::Warning);
            QCOMPARE(shown.first().buttons, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        }
        const QString saved = h->fixture.path(u"saved.tw"_s);
        QCOMPARE(QFile::exists(saved), savedFirst);
        if (savedFirst) {
            QCOMPARE(wr::ReadChannelTexts([&] {
                         wr::MemoryImage image;
                         image.setBytes(imageOfFile(saved));
                         return image;
                     }(), 1, 0).rx,
                     u"145.50000"_s);
            QCOMPARE(wr::app().CurrentFileName, saved);
        } else {
            QCOMPARE(wr::app().CurrentFileName, u"Untitled"_s);
        }
        if (opened) {
            QCOMPARE(wr::app().image.bytes(), otherImage);
            QVERIFY(!wr::app().image.IsModified());
            QCOMPARE(gridRx(20), u"450.12500"_s);
            QCOMPARE(gridRx(1), QString());
        } else {
            QCOMPARE(gridRx(1), u"145.50000"_s);
            QCOMPARE(wr::ReadChannelTexts(wr::app().image, 1, 0).rx, u"145.50000"_s);
            QVERIFY(wr::app().image.IsModified());
        }
    }

    void saveUntitledAsksForName()
    {
        editInGrid(5, u"146.0"_s);
        const QString path = h->fixture.path(u"first.tw"_s);
        wr::FileDialog::setNextFileName(path);
        trigger(u"mnuFile_Save"_s);
        QVERIFY(wr::MessageBox::history().isEmpty());
        QCOMPARE(wr::app().CurrentFileName, path);
        QCOMPARE(imageOfFile(path), wr::app().image.bytes());
        QCOMPARE(wr::ReadChannelTexts(wr::app().image, 5, 0).rx, u"146.00000"_s);
        QCOMPARE(wr::app().image.ReadByte(0x0CD0), 0);
        QVERIFY(!wr::app().image.IsModified());
    }

    void saveCancelledStillTakesSnapshot()
    {
        editInGrid(5, u"146.0"_s);
        wr::FileDialog::setNextFileName(QString());
        trigger(u"mnuFile_Save"_s);
        QCOMPARE(wr::app().CurrentFileName, u"Untitled"_s);
        QVERIFY(!wr::app().image.IsModified());
        // So Open does not ask.
        wr::FileDialog::setNextFileName(QString());
        trigger(u"mnuFile_Open"_s);
        QVERIFY(wr::MessageBox::history().isEmpty());
    }

    void saveAfterOpenWritesTheLastSavedFile()
    {
        const QString saved = h->fixture.path(u"saved.tw"_s);
        const QString opened = h->fixture.path(u"opened.tw"_s);
        wr::FileDialog::setNextFileName(saved);
        trigger(u"mnuFile_Save"_s);
        const QByteArray openedImage = imageWithChannels(1, 3);
        QVERIFY(writeDataFile(opened, openedImage));
        const QByteArray openedFile = wr::test::readFile(opened);
        wr::FileDialog::setNextFileName(opened);
        trigger(u"mnuFile_Open"_s);
        QCOMPARE(wr::app().image.bytes(), openedImage);

        // Open does not change the current file: Save goes to saved.tw
        // without a dialog (a dialog would take the sentinel name).
        editInGrid(10, u"439.0"_s);
        const QString sentinel = h->fixture.path(u"sentinel.tw"_s);
        wr::FileDialog::setNextFileName(sentinel);
        trigger(u"mnuFile_Save"_s);
        QVERIFY(!QFile::exists(sentinel));
        QCOMPARE(wr::app().CurrentFileName, saved);
        QCOMPARE(wr::ReadChannelTexts(wr::MemoryImage(), 1, 0).rx, QString());
        wr::MemoryImage onDisk;
        onDisk.setBytes(imageOfFile(saved));
        QCOMPARE(wr::ReadChannelTexts(onDisk, 10, 0).rx, u"439.00000"_s);
        QCOMPARE(wr::ReadChannelTexts(onDisk, 2, 0).rx, u"432.12500"_s);
        QCOMPARE(wr::test::readFile(opened), openedFile);
    }

    void saveAsProposesAndTakesNewName()
    {
        const QString a = h->fixture.path(u"a.tw"_s);
        const QString b = h->fixture.path(u"b.tw"_s);
        wr::FileDialog::setNextFileName(a);
        trigger(u"mnuFile_SaveAs"_s);
        QCOMPARE(wr::app().CurrentFileName, a);
        editInGrid(2, u"144.0"_s);
        wr::FileDialog::setNextFileName(b);
        trigger(u"mnuFile_SaveAs"_s);
        QCOMPARE(wr::app().CurrentFileName, b);
        QCOMPARE(wr::ReadChannelTexts(wr::MemoryImage(), 2, 0).rx, QString());
        QVERIFY(imageOfFile(a) != imageOfFile(b));
        QCOMPARE(imageOfFile(b), wr::app().image.bytes());
    }

    void badFilesLeaveImageAlone_data()
    {
        QTest::addColumn<QByteArray>("content"); // empty: no such file
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("text");       // empty: the system's own reason
        QByteArray foreign = wr::DataFile::Container(wr::MemoryImage());
        foreign.replace(0, 6, "ABCDEF");
        foreign.append('\0');
        QByteArray shortContainer = wr::DataFile::Container(wr::MemoryImage()).left(16000);
        shortContainer.append('\0');
        QByteArray truncated = *wr::DataFile::Encode(wr::MemoryImage());
        truncated = truncated.left(40) + truncated.right(1);
        QTest::newRow("foreign marker") << foreign << u"WR-PD6T"_s << u"Incorrect File Type."_s;
        QTest::newRow("wrong length") << shortContainer << u"WR-PD6T"_s << u"Incorrect File Type."_s;
        QTest::newRow("damaged packing") << truncated << u"Error"_s << u"Incorrect File Type."_s;
        QTest::newRow("missing file") << QByteArray() << u"Error"_s << QString();
    }

    void badFilesLeaveImageAlone()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, title);
        QFETCH(QString, text);
        const QString path = h->fixture.path(u"bad.tw"_s);
        if (!content.isEmpty())
            QVERIFY(wr::test::writeFile(path, content));
        editInGrid(3, u"145.0"_s);
        h->window->CommitStep();
        editInGrid(4, u"146.0"_s); // modified again, but answered No below
        wr::app().BandLimits[0] = 140;
        const QByteArray image = wr::app().image.bytes();
        wr::MessageBox::setNextAnswer(QMessageBox::No);
        wr::FileDialog::setNextFileName(path);
        trigger(u"mnuFile_Open"_s);

        const QList<wr::MessageBox::Shown> shown = wr::MessageBox::history();
        QCOMPARE(shown.size(), 2);
        QCOMPARE(shown.at(1).title, title);
        QCOMPARE(shown.at(1).icon, QMessageBox::Critical);
        if (text.isEmpty())
            QVERIFY(!shown.at(1).text.isEmpty());
        else
            QCOMPARE(shown.at(1).text, text);
        // The image (with the grid's edit moved in), its snapshot state, the
        // band limits and the grid are as before.
        QCOMPARE(wr::app().image.bytes().size(), image.size());
        QCOMPARE(wr::ReadChannelTexts(wr::app().image, 3, 0).rx, u"145.00000"_s);
        QCOMPARE(wr::ReadChannelTexts(wr::app().image, 4, 0).rx, u"146.00000"_s);
        QVERIFY(wr::app().image.IsModified());
        QCOMPARE(wr::app().BandLimits[0], 140);
        QCOMPARE(gridRx(4), u"146.00000"_s);
        QVERIFY(!QFile::exists(wr::app().AppFolder + u"tempzunk.dat"_s));
    }

    void failedSaveKeepsOldFile()
    {
        const QString path = h->fixture.path(u"kept.tw"_s);
        // Rows no form uses, filled with noise, keep the files from packing small.
        const auto noisy = [](QByteArray image, quint32 seed) {
            QRandomGenerator noise(seed);
            for (int address = 300 * 16; address < 400 * 16; ++address)
                image[address] = char(noise.bounded(256));
            return image;
        };
        QVERIFY(writeDataFile(path, noisy(imageWithChannels(1, 128), 42)));
        const QByteArray oldFile = wr::test::readFile(path);
        QVERIFY2(oldFile.size() > 1500, qPrintable(QString::number(oldFile.size())));

        // Save As over the old file with different data, with writes limited
        // to fewer bytes than the new file needs.
        wr::app().image.setBytes(noisy(imageWithChannels(1, 100), 7));
        h->window->RefreshMainWindow();
        wr::FileDialog::setNextFileName(path);
        {
            FileSizeLimit limit(1024);
            trigger(u"mnuFile_SaveAs"_s);
        }
        const QList<wr::MessageBox::Shown> shown = wr::MessageBox::history();
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown.first().title, u"WR-PD6T"_s);
        QCOMPARE(shown.first().icon, QMessageBox::Warning);
        QVERIFY(!shown.first().text.isEmpty());
        QCOMPARE(wr::test::readFile(path), oldFile);
        // The failed name does not become the current file.
        QCOMPARE(wr::app().CurrentFileName, u"Untitled"_s);
        QCOMPARE(wr::ReadChannelTexts(wr::app().image, 100, 0).rx.isEmpty(), false);
        QCOMPARE(wr::ReadChannelTexts(wr::app().image, 101, 0).rx.isEmpty(), true);
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
        wr::app().image.setBytes(imageWithChannels(1, 10));
        wr::app().image.TakeSnapshot();
        wr::app().CurrentFileName = h->fixture.path(u"current.tw"_s);
        h->window->RefreshMainWindow();
        wr::MessageBox::setNextAnswer(QMessageBox::StandardButton(answer));
        trigger(u"mnuFile_New"_s);
        const QList<wr::MessageBox::Shown> shown = wr::MessageBox::history();
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown.first().title, u"Alert!"_s);
        QCOMPARE(shown.first().text, u"All data will be cleared."_s);
        QCOMPARE(shown.first().icon, QMessageBox::Warning);
        QCOMPARE(shown.first().buttons, QMessageBox::Ok | QMessageBox::Cancel);
        QCOMPARE(shown.first().defaultButton, QMessageBox::Cancel);

        wr::MemoryImage fresh;
        fresh.InitImage();
        QCOMPARE(wr::app().image.bytes() == fresh.bytes(), cleared);
        QCOMPARE(gridRx(1).isEmpty(), cleared);
        QVERIFY(!wr::app().image.IsModified());
        QCOMPARE(wr::app().CurrentFileName, h->fixture.path(u"current.tw"_s));
    }

    void messagesFollowTheLanguage_data()
    {
        QTest::addColumn<int>("language");
        QTest::addColumn<QString>("alert");
        QTest::addColumn<QString>("modified");
        QTest::newRow("Simplified Chinese") << 1 << u"警告!"_s << u"文件已被修改，是否保存？"_s;
        QTest::newRow("Traditional Chinese asks in Simplified") << 2 << u"警告!"_s << u"文件已被修改，是否保存？"_s;
    }

    void messagesFollowTheLanguage()
    {
        QFETCH(int, language);
        wr::app().LanguageIndex = quint8(language);
        h->window->RefreshMainWindow();
        wr::MessageBox::setNextAnswer(QMessageBox::Cancel);
        trigger(u"mnuFile_New"_s);
        editInGrid(1, u"145.5"_s);
        wr::MessageBox::setNextAnswer(QMessageBox::Cancel);
        trigger(u"mnuFile_Open"_s);
        const QList<wr::MessageBox::Shown> shown = wr::MessageBox::history();
        QCOMPARE(shown.size(), 2);
        QFETCH(QString, alert);
        QCOMPARE(shown.at(0).title, alert);
        QFETCH(QString, modified);
        QCOMPARE(shown.at(1).text, modified);
    }
};

QTEST_MAIN(TestFileCommands)
#include "TestFileCommands.moc"
