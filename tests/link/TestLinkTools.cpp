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

class TestLinkTools : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { test::initTestProcess(); }
    void init();
    void cleanup();

    void readAndWrite();
    void failures_data();
    void failures();

private:
    // Starts the virtual radio on COM77; returns its first line ("COM77 /dev/pts/3").
    QString startRadio(const QStringList &faults);
    // Runs the tool; the exit code, and the error output in *err.
    int tool(const QStringList &arguments, QString *err, QString *out = nullptr);
    QString path(const QString &name) const { return m_fixture->path(name); }
    MemoryImage imageIn(const QString &name) const
    {
        MemoryImage image;
        image.setBytes(DataFile::Read(path(name)).image);
        return image;
    }

    std::unique_ptr<test::Fixture> m_fixture;
    QProcessEnvironment m_environment;
    QProcess m_radio;
    MemoryImage m_radioImage;
};

void TestLinkTools::init()
{
    m_fixture = std::make_unique<test::Fixture>();
    m_environment = QProcessEnvironment::systemEnvironment();
    m_environment.insert(u"XDG_DATA_HOME"_s, path(u"data"_s));
    test::fillPattern(m_radioImage, 11);
    QString error;
    QVERIFY(DataFile::Write(path(u"start.tw"_s), m_radioImage, &error));
}

void TestLinkTools::cleanup()
{
    m_radio.terminate(); // SIGTERM: the radio removes its link
    m_radio.waitForFinished(5000);
    m_fixture.reset();
}

QString TestLinkTools::startRadio(const QStringList &faults)
{
    m_radio.setProcessEnvironment(m_environment);
    m_radio.start(QStringLiteral(WRPD6T_SIM_PATH), QStringList{u"--no-pacing"_s, u"--com"_s, u"77"_s, u"--image"_s,
                                                               path(u"start.tw"_s), u"--save"_s, path(u"radio.tw"_s)}
                      + faults);
    if (!m_radio.waitForStarted(5000) || !m_radio.waitForReadyRead(5000))
        return {};
    return QString::fromUtf8(m_radio.readLine()).trimmed();
}

int TestLinkTools::tool(const QStringList &arguments, QString *err, QString *out)
{
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.start(QStringLiteral(WRPD6T_TOOL_PATH), arguments);
    process.closeWriteChannel(); // nobody at a terminal to answer
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return -1;
    *err = QString::fromUtf8(process.readAllStandardError());
    if (out)
        *out = QString::fromUtf8(process.readAllStandardOutput());
    return process.exitCode();
}

void TestLinkTools::readAndWrite()
{
    const QString first = startRadio({});
    QVERIFY2(first.startsWith(u"COM77 /dev/"_s), qPrintable(first));
    const QString link = path(u"data/wrpd6t/serial-ports/com77"_s);
    QCOMPARE(QFileInfo(link).symLinkTarget(), first.section(u' ', 1));
    QString err, out;
    QCOMPARE(tool({u"ports"_s}, &err, &out), 0);
    QVERIFY2(out.contains(u"COM77"_s), qPrintable(out));

    // Read: the radio's rows into a fresh image, saved as a data file.
    QCOMPARE(tool({u"read"_s, u"COM77"_s, path(u"read.tw"_s)}, &err), 0);
    QVERIFY2(err.contains(u"Reading completed!"_s), qPrintable(err));
    MemoryImage fresh;
    fresh.InitImage();
    const MemoryImage read = imageIn(u"read.tw"_s);
    const QList<int> readRows = test::transferredRows(true);
    for (int row = 0; row < MemoryImage::RowCount; ++row)
        QCOMPARE(read.row(row), readRows.contains(row) ? m_radioImage.row(row) : fresh.row(row));

    // Write: the file's rows into the radio, which saves its memory after "END".
    MemoryImage toWrite;
    test::fillPattern(toWrite, 12);
    QVERIFY(DataFile::Write(path(u"write.tw"_s), toWrite, &err));
    QCOMPARE(tool({u"write"_s, path(u"write.tw"_s), u"com77"_s}, &err), 0);
    QVERIFY2(err.contains(u"Writing completed!"_s), qPrintable(err));
    QTRY_VERIFY(QFileInfo::exists(path(u"radio.tw"_s)));
    const MemoryImage radio = imageIn(u"radio.tw"_s);
    const QList<int> writeRows = test::transferredRows(false);
    for (int row = 0; row < MemoryImage::RowCount; ++row)
        QCOMPARE(radio.row(row), writeRows.contains(row) ? toWrite.row(row) : m_radioImage.row(row));

    m_radio.terminate();
    QVERIFY(m_radio.waitForFinished(5000) && m_radio.exitStatus() == QProcess::NormalExit);
    QVERIFY(!QFileInfo(link).isSymLink());
}

void TestLinkTools::failures_data()
{
    QTest::addColumn<QStringList>("faults"); // empty: no radio running
    QTest::addColumn<QStringList>("arguments"); // "@" stands for the test's folder
    QTest::addColumn<QString>("message");

    QTest::newRow("read from a port that does not exist")
        << QStringList{} << QStringList{u"read"_s, u"COM77"_s, u"@/out.tw"_s} << u"COM77"_s;
    QTest::newRow("read from a radio that identifies wrongly")
        << QStringList{u"--wrong-id"_s} << QStringList{u"read"_s, u"COM77"_s, u"@/out.tw"_s}
        << u"no valid answer from the radio on COM77"_s;
    QTest::newRow("write of a damaged file") << QStringList{u"--silent"_s}
                                             << QStringList{u"write"_s, u"@/damaged.tw"_s, u"COM77"_s}
                                             << u"Incorrect File Type."_s;
}

void TestLinkTools::failures()
{
    QFETCH(QStringList, faults);
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    QVERIFY(faults.isEmpty() || !startRadio(faults).isEmpty());
    QVERIFY(test::writeFile(path(u"damaged.tw"_s), QByteArray(40, '\x11')));
    arguments.replaceInStrings(u"@"_s, m_fixture->folder());

    QString err;
    QCOMPARE(tool(arguments, &err), 1);
    QVERIFY2(err.contains(message), qPrintable(err));
    QVERIFY(!QFileInfo::exists(path(u"out.tw"_s))); // a failed read writes no file
}

QTEST_GUILESS_MAIN(TestLinkTools)
#include "TestLinkTools.moc"
