// Runs the built virtual radio and wrpd6t-tool as separate processes, as a
// user would, with their data folder in a temporary place.

#include "LinkTestData.h"
#include "Programs.h"
#include "TestSuite.h"

#include "core/MemoryImage.h"
#include "core/SettingsStore.h"
#include "file/DataFile.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QSerialPort>
#include <QTest>

using namespace wr;
using namespace Qt::Literals::StringLiterals;
using test::runTool;

namespace {

// What a run of the tool said, on both outputs.
QString said(const test::Run &run)
{
    return run.err + run.out;
}

} // namespace

class TestLinkTools : public test::Suite
{
    Q_OBJECT

    void setUp() override
    {
        m_radios.emplace();
        test::fillPattern(m_radioImage, 11);
        QVERIFY(DataFile::Write(filePath(u"start.tw"_s), m_radioImage, nullptr));
    }
    void tearDown() override { m_radios.reset(); }

private Q_SLOTS:
    // The radio listed among the ports, read into a data file, and its link gone
    // with it. (Writing one radio is among writeSeveral's rows.)
    void readOneRadio()
    {
        const QString device = startRadio();
        QVERIFY2(device.startsWith(u"/dev/"_s), qPrintable(device));
        const QString link = filePath(u"data/wrpd6t/serial-ports/com77"_s);
        QCOMPARE(QFileInfo(link).symLinkTarget(), device);
        test::Run run = runTool({u"ports"_s}, tempFolder());
        QCOMPARE(run.exitCode, 0);
        QVERIFY2(said(run).contains(u"COM77"_s), qPrintable(said(run)));

        // Read: the radio's rows into a fresh image, saved as a data file.
        run = runTool({u"read"_s, u"COM77"_s, u"@/read.tw"_s}, tempFolder());
        QCOMPARE(run.exitCode, 0);
        QVERIFY2(said(run).contains(u"Reading completed!"_s), qPrintable(said(run)));
        checkRows(u"read.tw"_s, test::transferredRows(true), m_radioImage, test::freshImage());

        m_radios->last().terminate();
        QVERIFY(m_radios->last().waitForFinished(5000) && m_radios->last().exitStatus() == QProcess::NormalExit);
        QVERIFY(!QFileInfo(link).isSymLink());
    }

    void failedReadKeepsFile_data()
    {
        QTest::addColumn<QStringList>("faults");
        QTest::addColumn<bool>("portHeld"); // open in this process, so the tool finds it in use
        QTest::addColumn<QString>("port");
        QTest::addColumn<QString>("message"); // on standard error; %1: the radio's device

        QTest::newRow("wrong identification: what answered")
            << QStringList{u"--wrong-id"_s} << false << u"COM77"_s
            << u"Cancel (no terminal to answer)\n"
               "COM77 (%1): The radio on COM77 answered as \u201CQAWPD7T\u201D (51 41 57 50 44 37 54): this program "
               "serves the WR-PD6T only.\n  Run the connection test: wrpd6t-tool doctor COM77\n"_s;
        QTest::newRow("port in use") << QStringList{} << true << u"COM77"_s
                                     << u"COM77 (%1): Permission error while locking the device\n"
                                        "  Another program is using the port: close it, then try again.\n"
                                        "  Run the connection test: wrpd6t-tool doctor COM77\n"_s;
        QTest::newRow("no such port") << QStringList{} << false << u"COM78"_s
                                      << u"COM78: No such file or directory\n  Check that the programming cable is "
                                         "plugged in and that this is the right port.\n"
                                         "  Run the connection test: wrpd6t-tool doctor COM78\n"_s;
    }

    // A read that fails says why and what to do, and leaves the file it would
    // have written as it was.
    void failedReadKeepsFile()
    {
        QFETCH(QStringList, faults);
        QFETCH(bool, portHeld);
        QFETCH(QString, port);
        QFETCH(QString, message);
        const QString device = startRadio(faults);
        QVERIFY(!device.isEmpty());
        QSerialPort holder(device);
        QVERIFY(!portHeld || holder.open(QIODevice::ReadWrite));
        QVERIFY(test::writeFile(filePath(u"out.tw"_s), "an older file"));

        const test::Run run = runTool({u"read"_s, port, u"@/out.tw"_s}, tempFolder());
        QCOMPARE(run.exitCode, 1);
        QVERIFY2(said(run).endsWith(message.replace(u"%1"_s, device)), qPrintable(said(run)));
        QCOMPARE(test::readFile(filePath(u"out.tw"_s)), QByteArray("an older file"));
    }

    void writeSeveral_data()
    {
        QTest::addColumn<int>("count");           // radios, COM80 up
        QTest::addColumn<QStringList>("lastFaults"); // of the radio on the last port
        QTest::addColumn<bool>("verify");
        QTest::addColumn<QString>("lastSays");      // its summary after "COM<N> (device): "; %1: the port

        QTest::newRow("four radios") << 4 << QStringList{} << false << u"Writing completed!\n"_s;
        QTest::newRow("one silent radio among four")
            << 4 << QStringList{u"--silent"_s} << false
            << u"The radio did not answer.\n  Port tried: COM%1 (%2)\n  Run the connection test: wrpd6t-tool doctor COM%1\n"_s;
        // Rows taken, then silence: the question is answered Cancel off a terminal.
        const QString partly = u"The radio did not answer.\n  Port tried: COM%1 (%2)\n  Run the connection test: "
                               "wrpd6t-tool doctor COM%1\n  The radio is only partly written: the write on COM%1 did not "
                               "finish.\n  Write the radio again before using it.\n"_s;
        QTest::newRow("one radio falls silent at 40 %") << 1 << QStringList{u"--hang-up-after"_s, u"75"_s} << false << partly;
        QTest::newRow("one radio among three falls silent at 40 %")
            << 3 << QStringList{u"--hang-up-after"_s, u"75"_s} << false << partly;
        QTest::newRow("one radio, verified") << 1 << QStringList{} << true << u"Writing completed! (verified)\n"_s;
        QTest::newRow("three radios verified, one storing a row wrong")
            << 3 << QStringList{u"--corrupt-row"_s, u"409"_s} << true
            << u"Writing completed, but reading it back found other bytes in row 409 (address 0x1990). The radio is "
               "not as intended: write it again.\n"_s;
    }

    // One file into radios at once, each on its own port, and with --verify
    // read back. A radio that never answers, or holds other bytes than were
    // written, fails alone, in the words a single write would use, and is not
    // looked for on the other ports; the others are written all the same.
    void writeSeveral()
    {
        QFETCH(int, count);
        QFETCH(QStringList, lastFaults);
        QFETCH(bool, verify);
        QFETCH(QString, lastSays);
        const int last = 80 + count - 1;
        QMap<int, QString> devices = count > 1 ? startRadios(80, count - 1) : QMap<int, QString>{};
        devices.insert(startRadios(last, 1, lastFaults));
        QCOMPARE(devices.size(), count);
        MemoryImage toWrite;
        test::fillPattern(toWrite, 12);
        QVERIFY(DataFile::Write(filePath(u"write.tw"_s), toWrite, nullptr));

        QStringList arguments{u"write"_s};
        if (verify)
            arguments.append(u"--verify"_s);
        arguments.append(filePath(u"write.tw"_s));
        for (const int port : devices.keys())
            arguments.append(u"COM%1"_s.arg(port));
        const bool lastFails = !lastFaults.isEmpty();
        const test::Run run = runTool(arguments, tempFolder());
        const QString err = said(run);
        QCOMPARE(run.exitCode, lastFails ? 1 : 0);
        for (auto radio = devices.cbegin(); radio != devices.cend(); ++radio) {
            const int port = radio.key();
            const QString label = u"COM%1 (%2): "_s.arg(port).arg(radio.value());
            // The last radio runs on its own and saves without its port in the name.
            const QString saved = port == last ? u"radio.tw"_s : u"radio-COM%1.tw"_s.arg(port);
            if (port == last) {
                QVERIFY2(err.contains(label + QString(lastSays).replace(u"%1"_s, QString::number(port))
                                                  .replace(u"%2"_s, radio.value())),
                         qPrintable(err));
                if (lastFaults.value(0) == u"--silent")
                    QVERIFY(!QFileInfo::exists(filePath(saved)));
                if (lastFails)
                    continue;
            } else {
                QVERIFY2(err.contains(label + (verify ? u"Writing completed! (verified)\n"_s : u"Writing completed!\n"_s)),
                         qPrintable(err));
            }
            QTRY_VERIFY(QFileInfo::exists(filePath(saved)));
            checkRows(saved, test::transferredRows(false), toWrite, m_radioImage);
        }
        QVERIFY(!err.contains(u"Trying"_s)); // no port scan
        QCOMPARE(err.count(u"partly written"_s), lastSays.count(u"partly written"_s));
    }

    // Ctrl+C while two radios are written: each is named as partly written.
    void writeInterrupted()
    {
        const QMap<int, QString> devices = startRadios(80, 2);
        QCOMPARE(devices.size(), 2);
        const test::Run run = runTool({u"write"_s, u"@/start.tw"_s, u"COM80"_s, u"COM81"_s}, tempFolder(), 2);
        const QString err = said(run);
        QCOMPARE(run.exitCode, 1);
        for (auto radio = devices.cbegin(); radio != devices.cend(); ++radio) {
            const QString summary = u"COM%1 (%2): The transfer was cancelled.\n  The radio is only partly written: the write "
                                    "on COM%1 did not finish.\n  Write the radio again before using it.\n"_s;
            QVERIFY2(err.contains(summary.arg(radio.key()).arg(radio.value())), qPrintable(err));
        }
    }

    // Two radios read at once, one file each, named after the port and the time.
    void readEach()
    {
        const QMap<int, QString> devices = startRadios(80, 2);
        QCOMPARE(devices.size(), 2);
        const test::Run run = runTool({u"read"_s, u"--each"_s, u"COM80"_s, u"COM81"_s, u"--into"_s, u"@/batch"_s}, tempFolder());
        const QString err = said(run);
        QCOMPARE(run.exitCode, 0);

        const QStringList files = QDir(filePath(u"batch"_s)).entryList(QDir::Files, QDir::Name);
        QCOMPARE(files.size(), 2);
        for (int i = 0; i < 2; ++i) {
            const QString &name = files.at(i);
            QVERIFY2(QRegularExpression(u"^COM8%1_\\d{4}-\\d\\d-\\d\\d_\\d{6}\\.tw$"_s.arg(i)).match(name).hasMatch(),
                     qPrintable(name));
            QVERIFY2(err.contains(u"COM8%1 (%2): Reading completed! Saved as %3\n"_s.arg(i).arg(devices.value(80 + i),
                                                                                          filePath(u"batch/"_s + name))),
                     qPrintable(err));
            checkRows(u"batch/"_s + name, test::transferredRows(true), m_radioImage, test::freshImage());
        }
    }

    void doctor_data()
    {
        QTest::addColumn<QStringList>("faults"); // of the virtual radio on COM77
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("output"); // its first line, or the JSON object; %1: the radio's device

        QTest::newRow("the radio answers, as JSON")
            << QStringList{} << QStringList{u"COM77"_s, u"--json"_s} << 0
            << u"{\"port\":\"COM77\",\"device\":\"%1\",\"cause\":\"ok\",\"detail\":\"The radio on COM77 (%1) answered and "
               "identified itself as a WR-PD6T. Nothing in the radio was changed.\",\"advice\":\"Nothing to do: Read and "
               "Write can use this port.\"}"_s;
        QTest::newRow("a cable with no radio, in Simplified Chinese")
            << QStringList{u"--echo"_s} << QStringList{u"com77"_s, u"--json"_s, u"--language"_s, u"zh-CN"_s} << 1
            << u"{\"port\":\"COM77\",\"device\":\"%1\",\"cause\":\"echo-only\",\"detail\":\"发送到 COM77 (%1) 的数据原样返回，"
               "除此之外没有任何应答：写频线已连接，但对讲机没有应答。\",\"advice\":\"请打开对讲机，并将写频线插头用力插到底，"
               "然后重新测试。\"}"_s;
        QTest::newRow("the port the program uses, as text")
            << QStringList{u"--wrong-id"_s} << QStringList{} << 1 << u"COM77 (%1): wrong-radio"_s;
        QTest::newRow("no such port, no wait off a terminal")
            << QStringList{} << QStringList{u"COM78"_s} << 1 << u"COM78: no-device"_s;
        QTest::newRow("port 0") << QStringList{} << QStringList{u"COM0"_s} << 2 << QString();
        QTest::newRow("unknown language") << QStringList{} << QStringList{u"--language"_s, u"fr"_s} << 2 << QString();
        QTest::newRow("negative wait") << QStringList{} << QStringList{u"--wait"_s, u"-1"_s} << 2 << QString();
    }

    // The connection test from the command line: one cause, its words in the
    // language asked for, as text or one JSON object, and an exit status a
    // script can act on. The port the program saved is the one tested by default.
    void doctor()
    {
        QFETCH(QStringList, faults);
        QFETCH(QStringList, arguments);
        QFETCH(int, exitCode);
        QFETCH(QString, output);
        const QString device = startRadio(faults);
        QVERIFY(!device.isEmpty());
        SettingsStore(filePath(u"config/wrpd6t/settings.ini"_s))
            .SetKeyValue(SettingsStore::Root::LocalMachine, SettingsStore::keyPath(), u"gbPort"_s, u"77"_s);

        const test::Run run = runTool(QStringList{u"doctor"_s} + arguments, tempFolder());
        QCOMPARE(run.exitCode, exitCode);
        if (exitCode == 2)
            return;
        QVERIFY2(said(run).startsWith(output.replace(u"%1"_s, device) + u'\n'), qPrintable(said(run)));
    }

    // A port that is not there is waited for; the port that comes instead is named.
    void doctorWaitsForThePort()
    {
        QProcess doctor;
        doctor.setProcessEnvironment(test::environmentIn(tempFolder()));
        QElapsedTimer clock;
        clock.start();
        doctor.start(QStringLiteral(WRPD6T_TOOL_PATH), {u"doctor"_s, u"COM79"_s, u"--wait"_s, u"5"_s, u"--json"_s});
        QVERIFY(doctor.waitForStarted(5000));
        QTest::qWait(1000);
        const QString device = startRadio(); // on COM77
        QVERIFY(!device.isEmpty());
        QVERIFY(doctor.waitForFinished(10000));
        QVERIFY2(clock.elapsed() < 3000, qPrintable(QString::number(clock.elapsed())));
        QCOMPARE(doctor.exitCode(), 1);
        const QString json = QString::fromUtf8(doctor.readAllStandardOutput());
        QVERIFY2(json.contains(u"\"cause\":\"no-device\""_s), qPrintable(json));
        QVERIFY2(json.contains(u"While the test waited, COM77 (%1) appeared."_s.arg(device)), qPrintable(json));
        QVERIFY2(json.contains(u"choose COM77 and run the test again"_s), qPrintable(json));
    }

private:
    // Starts `count` virtual radios from COM<com> in one process, holding
    // start.tw and saving to radio.tw (radio-COM<N>.tw when there are
    // several); their devices by number, none when they did not start.
    QMap<int, QString> startRadios(int com, int count, const QStringList &faults = {})
    {
        return m_radios->start(tempFolder(), com, count,
                               QStringList{u"--image"_s, filePath(u"start.tw"_s), u"--save"_s, filePath(u"radio.tw"_s)}
                                   + faults);
    }
    // One radio on COM77; its device.
    QString startRadio(const QStringList &faults = {}) { return startRadios(77, 1, faults).value(77); }
    // Each row of the data file `name`: from `moved` where listed, else from `others`.
    void checkRows(const QString &name, const QList<int> &listed, const MemoryImage &moved, const MemoryImage &others)
    {
        const MemoryImage image = test::imageOf(DataFile::Read(filePath(name)).image);
        for (int row = 0; row < MemoryImage::RowCount; ++row)
            QCOMPARE(image.row(row), listed.contains(row) ? moved.row(row) : others.row(row));
    }

    std::optional<test::SimulatedRadios> m_radios;
    MemoryImage m_radioImage;
};

QTEST_GUILESS_MAIN(TestLinkTools)
#include "TestLinkTools.moc"
