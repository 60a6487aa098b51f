// Runs the built wrpd6t-tool as a separate process, as a user would.

#include "TestSupport.h"

#include "core/MemoryImage.h"
#include "file/DataFile.h"

#include <QDir>
#include <QProcess>
#include <QTest>

#include <memory>

using namespace wr;
namespace DF = wr::DataFile;

namespace {

struct Run
{
    int exitCode = -1;
    QString out;
    QString err;
};

Run runTool(const QStringList &arguments, const QString &workingFolder = {})
{
    QProcess process;
    process.setProgram(QStringLiteral(WRPD6T_TOOL_PATH));
    process.setArguments(arguments);
    if (!workingFolder.isEmpty())
        process.setWorkingDirectory(workingFolder);
    process.start();
    Run run;
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return run;
    run.exitCode = process.exitCode();
    run.out = QString::fromUtf8(process.readAllStandardOutput());
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}

MemoryImage freshImage()
{
    MemoryImage image;
    image.InitImage();
    return image;
}

// Channel 3: 145.50000 / 146.00000, decode 88.5, encode D023N, high, wide,
// scanned, BCL carrier. Channel 10: 435.12500 receive only, no tone, low,
// narrow, not scanned, BCL off. Both marked in use in the empty bitmap.
MemoryImage imageWithChannels()
{
    MemoryImage image = freshImage();
    image.setRow(2, QByteArray::fromHex("14550000" "14600000" "8508" "2380" "0000" "4D" "00"));
    image.setRow(9, QByteArray::fromHex("43512500" "FFFFFFFF" "FFFF" "FFFF" "0000" "00" "00"));
    image.WriteByte(202, 0, 0xFF & ~(1 << 2)); // channel 3 in use
    image.WriteByte(202, 1, 0xFF & ~(1 << 1)); // channel 10 in use
    return image;
}

const QString InfoHeader = QStringLiteral("CH.\tRx Freq\tTx Freq\tCTCSS/DCS Dec\tCTCSS/DCS Enc\tTX Power\tW/N\tScan Add\tBCL");

} // namespace

class TestTool : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { test::initTestProcess(); }
    void init() { m_fixture = std::make_unique<test::Fixture>(); }
    void cleanup() { m_fixture.reset(); }

    void usageErrors_data();
    void usageErrors();
    void helpOnEverySubcommand_data();
    void helpOnEverySubcommand();

    void newWritesFreshImage();
    void infoOfFreshImage();
    void infoListsChannels_data();
    void infoListsChannels();
    void dumpPrintsEveryRow();
    void unpackAndPackRoundTrip();
    void packRejectsWrongContainer_data();
    void packRejectsWrongContainer();
    void badFiles_data();
    void badFiles();
    void writeFailure();

private:
    QString path(const char *name) const { return m_fixture->path(QString::fromLatin1(name)); }
    QString writeDataFile(const char *name, const MemoryImage &image) const
    {
        const QString file = path(name);
        QString errorString;
        if (!DF::Write(file, image, &errorString))
            qWarning() << errorString;
        return file;
    }

    std::unique_ptr<test::Fixture> m_fixture;
};

void TestTool::usageErrors_data()
{
    QTest::addColumn<QStringList>("arguments");

    QTest::newRow("no command") << QStringList{};
    QTest::newRow("unknown command") << QStringList{QStringLiteral("frobnicate")};
    QTest::newRow("new without file") << QStringList{QStringLiteral("new")};
    QTest::newRow("info with two files") << QStringList{QStringLiteral("info"), QStringLiteral("a.tw"), QStringLiteral("b.tw")};
    QTest::newRow("unpack without output") << QStringList{QStringLiteral("unpack"), QStringLiteral("a.tw")};
    QTest::newRow("language out of range")
        << QStringList{QStringLiteral("info"), QStringLiteral("--language"), QStringLiteral("3"), QStringLiteral("a.tw")};
    QTest::newRow("language not a number")
        << QStringList{QStringLiteral("info"), QStringLiteral("--language"), QStringLiteral("en"), QStringLiteral("a.tw")};
    QTest::newRow("unknown option") << QStringList{QStringLiteral("dump"), QStringLiteral("--colour"), QStringLiteral("a.tw")};
}

void TestTool::usageErrors()
{
    QFETCH(QStringList, arguments);
    const Run run = runTool(arguments, m_fixture->folder());
    QCOMPARE(run.exitCode, 2);
    QVERIFY(run.out.isEmpty());
    QVERIFY(!run.err.isEmpty());
    // Nothing was created by a refused command.
    QVERIFY(QDir(m_fixture->folder()).isEmpty());
}

void TestTool::helpOnEverySubcommand_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("usage");

    QTest::newRow("new") << QStringLiteral("new") << QStringLiteral("Usage: wrpd6t-tool new [options] FILE.tw\n");
    QTest::newRow("info") << QStringLiteral("info") << QStringLiteral("Usage: wrpd6t-tool info [options] FILE.tw\n");
    QTest::newRow("dump") << QStringLiteral("dump") << QStringLiteral("Usage: wrpd6t-tool dump [options] FILE.tw\n");
    QTest::newRow("unpack") << QStringLiteral("unpack")
                            << QStringLiteral("Usage: wrpd6t-tool unpack [options] FILE.tw OUT.bin\n");
    QTest::newRow("pack") << QStringLiteral("pack") << QStringLiteral("Usage: wrpd6t-tool pack [options] IN.bin OUT.tw\n");
}

void TestTool::helpOnEverySubcommand()
{
    QFETCH(QString, command);
    QFETCH(QString, usage);

    const Run run = runTool({command, QStringLiteral("--help")});
    QCOMPARE(run.exitCode, 0);
    QVERIFY2(run.out.startsWith(usage), qPrintable(run.out));
    QVERIFY(run.out.contains(QStringLiteral("--help")));

    const Run overview = runTool({QStringLiteral("--help")});
    QCOMPARE(overview.exitCode, 0);
    QVERIFY(overview.out.contains(QStringLiteral("\n  ") + command + QLatin1Char(' ')));
}

void TestTool::newWritesFreshImage()
{
    const QString file = path("fresh.tw");
    const Run run = runTool({QStringLiteral("new"), file});
    QCOMPARE(run.exitCode, 0);
    const QByteArray written = test::readFile(file);
    QCOMPARE(written.size(), 165);
    QCOMPARE(written, *DF::Encode(freshImage()));
    QCOMPARE(QDir(m_fixture->folder()).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("fresh.tw")});
}

void TestTool::infoOfFreshImage()
{
    const Run run = runTool({QStringLiteral("info"), writeDataFile("fresh.tw", freshImage())});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, InfoHeader + QLatin1Char('\n'));
    QVERIFY(run.err.isEmpty());
}

void TestTool::infoListsChannels_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("channel3");
    QTest::addColumn<QString>("channel10");

    QTest::newRow("default English") << QStringList{} << QStringLiteral("3\t145.50000\t146.00000\t88.5\tD023N\tHigh\tWide\tOn\tCarrier")
                                     << QStringLiteral("10\t435.12500\t\tNone\t\tLow\tNarrow\tOff\tOff");
    QTest::newRow("English") << QStringList{QStringLiteral("--language"), QStringLiteral("0")}
                             << QStringLiteral("3\t145.50000\t146.00000\t88.5\tD023N\tHigh\tWide\tOn\tCarrier")
                             << QStringLiteral("10\t435.12500\t\tNone\t\tLow\tNarrow\tOff\tOff");
    QTest::newRow("Simplified Chinese") << QStringList{QStringLiteral("--language"), QStringLiteral("1")}
                                        << QStringLiteral("3\t145.50000\t146.00000\t88.5\tD023N\t高\t宽\t开\t载波")
                                        << QStringLiteral("10\t435.12500\t\t无\t\t低\t窄\t关\t关");
    QTest::newRow("Traditional Chinese") << QStringList{QStringLiteral("-l"), QStringLiteral("2")}
                                         << QStringLiteral("3\t145.50000\t146.00000\t88.5\tD023N\t高\t寬\t開\t載波")
                                         << QStringLiteral("10\t435.12500\t\t無\t\t低\t窄\t關\t關");
}

void TestTool::infoListsChannels()
{
    QFETCH(QStringList, options);
    QFETCH(QString, channel3);
    QFETCH(QString, channel10);

    const QString file = writeDataFile("channels.tw", imageWithChannels());
    const Run run = runTool(QStringList{QStringLiteral("info")} + options + QStringList{file});
    QCOMPARE(run.exitCode, 0);
    // The headers stay English whatever the language of the texts.
    QCOMPARE(run.out.split(QLatin1Char('\n')), (QStringList{InfoHeader, channel3, channel10, QString()}));
}

void TestTool::dumpPrintsEveryRow()
{
    const Run run = runTool({QStringLiteral("dump"), writeDataFile("channels.tw", imageWithChannels())});
    QCOMPARE(run.exitCode, 0);
    QVERIFY(run.out.endsWith(QLatin1Char('\n')));
    const QStringList rows = run.out.chopped(1).split(QLatin1Char('\n'));
    QCOMPARE(rows.size(), 1024);
    QCOMPARE(rows.at(0), QStringLiteral("0000: FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF"));
    QCOMPARE(rows.at(2), QStringLiteral("0020: 14 55 00 00 14 60 00 00 85 08 23 80 00 00 4D 00"));
    QCOMPARE(rows.at(200), QStringLiteral("0C80: 13 60 25 00 13 60 25 00 FF FF FF FF 00 00 4C 00"));
    QCOMPARE(rows.at(202), QStringLiteral("0CA0: FB FD FF FF FF FF FF FF FF FF FF FF FF FF FF FF"));
    QCOMPARE(rows.at(1023), QStringLiteral("3FF0: FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF"));
}

void TestTool::unpackAndPackRoundTrip()
{
    const MemoryImage image = imageWithChannels();
    const QString file = writeDataFile("channels.tw", image);
    const QString container = path("channels.bin");
    const QString repacked = path("repacked.tw");

    QCOMPARE(runTool({QStringLiteral("unpack"), file, container}).exitCode, 0);
    QCOMPARE(test::readFile(container), DF::Container(image));

    QCOMPARE(runTool({QStringLiteral("pack"), container, repacked}).exitCode, 0);
    QCOMPARE(test::readFile(repacked), test::readFile(file));
}

void TestTool::packRejectsWrongContainer_data()
{
    QTest::addColumn<QByteArray>("container");

    const QByteArray good = DF::Container(freshImage());
    QTest::newRow("one byte short") << good.chopped(1);
    QTest::newRow("one byte long") << good + '\xFF';
    QTest::newRow("wrong marker") << QByteArray(good).replace(0, 6, "XDZUNK");
    QTest::newRow("empty") << QByteArray();
}

void TestTool::packRejectsWrongContainer()
{
    QFETCH(QByteArray, container);
    const QString input = path("input.bin");
    const QString output = path("out.tw");
    QVERIFY(test::writeFile(input, container));

    const Run run = runTool({QStringLiteral("pack"), input, output});
    QCOMPARE(run.exitCode, 1);
    QVERIFY(run.err.contains(QStringLiteral("Incorrect File Type.")));
    QVERIFY(run.err.contains(input));
    QVERIFY(!QFile::exists(output));
}

void TestTool::badFiles_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QByteArray>("content");

    const QByteArray garbage = QByteArray::fromHex("89504E470D0A1A0A0000000D4948445200000010");
    const QByteArray fresh = *DF::Encode(freshImage());
    for (const char *command : {"info", "dump", "unpack"}) {
        const QString name = QString::fromLatin1(command);
        QTest::addRow("%s of another program's file", command) << name << garbage;
        QTest::addRow("%s of a truncated file", command) << name << fresh.first(100);
        QTest::addRow("%s of an empty file", command) << name << QByteArray();
    }
}

void TestTool::badFiles()
{
    QFETCH(QString, command);
    QFETCH(QByteArray, content);

    const QString file = path("bad.tw");
    QVERIFY(test::writeFile(file, content));
    QStringList arguments{command, file};
    if (command == u"unpack")
        arguments.append(path("out.bin"));

    const Run run = runTool(arguments);
    QCOMPARE(run.exitCode, 1);
    QVERIFY(run.out.isEmpty());
    QVERIFY2(run.err.contains(QStringLiteral("Incorrect File Type.")), qPrintable(run.err));
    QVERIFY(run.err.contains(file));
    QVERIFY(!QFile::exists(path("out.bin")));

    // A file that cannot be read at all gives the system's reason.
    const QString missing = path("missing.tw");
    arguments[1] = missing;
    const Run missingRun = runTool(arguments);
    QCOMPARE(missingRun.exitCode, 1);
    QVERIFY(missingRun.err.contains(missing));
    QVERIFY(!missingRun.err.contains(QStringLiteral("Incorrect File Type.")));
}

void TestTool::writeFailure()
{
    // A regular file where the folder should be stops root too.
    const QString plain = path("plain");
    QVERIFY(test::writeFile(plain, "previous content"));

    const Run run = runTool({QStringLiteral("new"), plain + QStringLiteral("/radio.tw")});
    QCOMPARE(run.exitCode, 1);
    QVERIFY(run.err.contains(plain));
    QCOMPARE(test::readFile(plain), QByteArray("previous content"));
}

QTEST_GUILESS_MAIN(TestTool)
#include "TestTool.moc"
