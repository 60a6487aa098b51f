// Runs the built virtual radio and wrpd6t-tool as separate processes, as a
// user would, with their data folder in a temporary place.

#include "LinkTestData.h"
#include "TestSupport.h"

#include "core/MemoryImage.h"
#include "file/DataFile.h"

#include <QFileInfo>
#include <QProcess>
#include <QTest>

using namespace wr;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Run
{
    int exitCode = -1;
    QString out;
    QString err;
};

class LinkTools
{
public:
    explicit LinkTools(const QString &dataFolder)
    {
        m_environment = QProcessEnvironment::systemEnvironment();
        m_environment.insert(u"XDG_DATA_HOME"_s, dataFolder);
        m_linkFolder = dataFolder + u"/wrpd6t/serial-ports"_s;
    }

    ~LinkTools() { stopRadio(); }

    // Starts the virtual radio; returns its first line ("COM77 /dev/pts/3").
    QString startRadio(const QStringList &arguments)
    {
        m_radio.setProgram(QStringLiteral(WRPD6T_SIM_PATH));
        m_radio.setArguments(QStringList{u"--no-pacing"_s} + arguments);
        m_radio.setProcessEnvironment(m_environment);
        m_radio.start();
        if (!m_radio.waitForStarted(5000) || !m_radio.waitForReadyRead(5000))
            return {};
        return QString::fromUtf8(m_radio.readLine()).trimmed();
    }

    bool stopRadio()
    {
        if (m_radio.state() == QProcess::NotRunning)
            return true;
        m_radio.terminate(); // SIGTERM: the radio removes its link
        return m_radio.waitForFinished(5000) && m_radio.exitStatus() == QProcess::NormalExit;
    }

    Run tool(const QStringList &arguments)
    {
        QProcess process;
        process.setProgram(QStringLiteral(WRPD6T_TOOL_PATH));
        process.setArguments(arguments);
        process.setProcessEnvironment(m_environment);
        process.start();
        process.closeWriteChannel(); // nobody at a terminal to answer
        Run run;
        if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
            return run;
        run.exitCode = process.exitCode();
        run.out = QString::fromUtf8(process.readAllStandardOutput());
        run.err = QString::fromUtf8(process.readAllStandardError());
        return run;
    }

    QString linkFolder() const { return m_linkFolder; }

private:
    QProcessEnvironment m_environment;
    QString m_linkFolder;
    QProcess m_radio;
};

MemoryImage decoded(const QString &path)
{
    const DataFile::ReadResult file = DataFile::Read(path);
    MemoryImage image;
    if (file.status == DataFile::ReadStatus::Ok)
        image.setBytes(file.image);
    return image;
}

} // namespace

class TestLinkTools : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { test::initTestProcess(); }
    void init() { m_fixture = std::make_unique<test::Fixture>(); }
    void cleanup() { m_fixture.reset(); }

    void readAndWriteThroughTheTool();
    void failuresExitWithMessage_data();
    void failuresExitWithMessage();

private:
    std::unique_ptr<test::Fixture> m_fixture;
};

void TestLinkTools::readAndWriteThroughTheTool()
{
    LinkTools tools(m_fixture->path(u"data"_s));
    MemoryImage radioImage;
    test::fillPattern(radioImage, 11);
    QString error;
    QVERIFY(DataFile::Write(m_fixture->path(u"start.tw"_s), radioImage, &error));

    const QString first = tools.startRadio({u"--com"_s, u"77"_s, u"--image"_s, m_fixture->path(u"start.tw"_s),
                                            u"--save"_s, m_fixture->path(u"radio.tw"_s)});
    QVERIFY2(first.startsWith(u"COM77 /dev/"_s), qPrintable(first));
    const QFileInfo link(tools.linkFolder() + u"/com77"_s);
    QVERIFY(link.isSymLink());
    QCOMPARE(link.symLinkTarget(), first.section(u' ', 1));

    const Run ports = tools.tool({u"ports"_s});
    QCOMPARE(ports.exitCode, 0);
    QVERIFY2(ports.out.contains(u"COM77"_s), qPrintable(ports.out));

    // Read: the radio's rows into a fresh image, saved as a data file.
    const Run read = tools.tool({u"read"_s, u"COM77"_s, m_fixture->path(u"read.tw"_s)});
    QCOMPARE(read.exitCode, 0);
    QVERIFY2(read.err.contains(u"Reading completed!"_s), qPrintable(read.err));
    MemoryImage fresh;
    fresh.InitImage();
    const MemoryImage readImage = decoded(m_fixture->path(u"read.tw"_s));
    const QList<int> readRows = test::transferredRows(true);
    for (int row = 0; row < MemoryImage::RowCount; ++row)
        QCOMPARE(readImage.row(row), readRows.contains(row) ? radioImage.row(row) : fresh.row(row));

    // Write: the file's rows into the radio, which saves its memory after "END".
    MemoryImage toWrite;
    test::fillPattern(toWrite, 12);
    QVERIFY(DataFile::Write(m_fixture->path(u"write.tw"_s), toWrite, &error));
    const Run write = tools.tool({u"write"_s, m_fixture->path(u"write.tw"_s), u"com77"_s});
    QCOMPARE(write.exitCode, 0);
    QVERIFY2(write.err.contains(u"Writing completed!"_s), qPrintable(write.err));
    QTRY_VERIFY(QFileInfo::exists(m_fixture->path(u"radio.tw"_s)));
    const MemoryImage radioAfter = decoded(m_fixture->path(u"radio.tw"_s));
    const QList<int> writeRows = test::transferredRows(false);
    for (int row = 0; row < MemoryImage::RowCount; ++row)
        QCOMPARE(radioAfter.row(row), writeRows.contains(row) ? toWrite.row(row) : radioImage.row(row));

    QVERIFY(tools.stopRadio());
    QVERIFY(!QFileInfo(tools.linkFolder() + u"/com77"_s).isSymLink());
}

void TestLinkTools::failuresExitWithMessage_data()
{
    QTest::addColumn<QStringList>("radio"); // empty: no radio running
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("message");

    QTest::newRow("read from a port that does not exist") << QStringList{} << u"read"_s << u"COM78"_s;
    QTest::newRow("read from a radio that identifies wrongly")
        << QStringList{u"--wrong-id"_s} << u"read"_s << u"no valid answer from the radio on COM78"_s;
    QTest::newRow("write to a radio that refuses rows")
        << QStringList{u"--nak-writes"_s} << u"write"_s << u"no valid answer from the radio on COM78"_s;
    QTest::newRow("write of a damaged file") << QStringList{u"--silent"_s} << u"write-damaged"_s
                                             << u"Incorrect File Type."_s;
}

void TestLinkTools::failuresExitWithMessage()
{
    QFETCH(QStringList, radio);
    QFETCH(QString, command);
    QFETCH(QString, message);

    LinkTools tools(m_fixture->path(u"data"_s));
    if (!radio.isEmpty())
        QVERIFY(!tools.startRadio(radio + QStringList{u"--com"_s, u"78"_s}).isEmpty());

    MemoryImage image;
    test::fillPattern(image, 13);
    QString error;
    QVERIFY(DataFile::Write(m_fixture->path(u"in.tw"_s), image, &error));
    QVERIFY(test::writeFile(m_fixture->path(u"damaged.tw"_s), QByteArray(40, '\x11')));
    const QString output = m_fixture->path(u"out.tw"_s);

    Run run;
    if (command == u"read")
        run = tools.tool({u"read"_s, u"COM78"_s, output});
    else
        run = tools.tool({u"write"_s, m_fixture->path(command == u"write" ? u"in.tw"_s : u"damaged.tw"_s), u"COM78"_s});

    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.err.contains(message), qPrintable(run.err));
    QVERIFY(!QFileInfo::exists(output)); // a failed read writes no file
}

QTEST_GUILESS_MAIN(TestLinkTools)
#include "TestLinkTools.moc"
