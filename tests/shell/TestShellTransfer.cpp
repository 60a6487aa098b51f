// Read and Write through the main window's menu against the virtual radio
// on a pseudo-terminal: the refreshed channel list, the radio's memory, and
// the status bar following the port scan. Cancelled confirmations are in
// TestMainWindow's shortcuts.
#include "ShellHarness.h"

#include "channels/frmChannel.h"
#include "core/AppState.h"
#include "link/PortCatalogue.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTableWidget>


using namespace Qt::StringLiterals;
using wr::test::ShellHarness;

namespace {

// One virtual radio process, registered as COM<number> in a serial-ports
// folder under its own data home.
class VirtualRadio
{
public:
    bool start(int number, const QString &dataHome, const QStringList &extra)
    {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(u"XDG_DATA_HOME"_s, dataHome);
        m_process.setProcessEnvironment(env);
        m_process.setProgram(QStringLiteral(WRPD6T_RADIO_SIM));
        m_process.setArguments(QStringList{u"--no-pacing"_s, u"--com"_s, QString::number(number)} + extra);
        m_process.start();
        if (!m_process.waitForStarted(5000))
            return false;
        // The first line, "COM<n> <device>", says the link is in place.
        QElapsedTimer waited;
        waited.start();
        while (!m_process.canReadLine() && waited.elapsed() < 10000)
            QTest::qWait(20);
        const QString line = QString::fromLocal8Bit(m_process.readLine()).trimmed();
        return line.startsWith(u"COM"_s + QString::number(number) + u' ');
    }

    ~VirtualRadio()
    {
        m_process.terminate();
        if (!m_process.waitForFinished(3000))
            m_process.kill();
        m_process.waitForFinished(1000);
    }

private:
    QProcess m_process;
};

QByteArray rows(const QByteArray &image, int first, int last)
{
    return image.mid(first * 16, (last - first + 1) * 16);
}

} // namespace

class TestShellTransfer : public QObject
{
    Q_OBJECT

private:
    std::optional<ShellHarness> h;
    QString m_dataHome;

    void openOn(int port)
    {
        h->storeSetting(u"gbPort"_s, QString::number(port));
        h->open();
        QCOMPARE(h->panel(1), u"COM"_s + QString::number(port));
    }

    // Runs Read or Write, confirmed with OK; the first and last message are
    // the question and the completion.
    void transfer(const QString &item, const QString &question, const QString &done)
    {
        wr::MessageBox::setNextAnswer(QMessageBox::Ok);
        // A transfer that hangs must not hang the suite: close the progress form.
        QTimer::singleShot(30000, h->window.get(), [] {
            if (auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget()))
                dialog->reject();
        });
        h->action(item)->trigger();
        const QList<wr::MessageBox::Shown> shown = wr::MessageBox::history();
        QVERIFY(shown.size() >= 2);
        QCOMPARE(shown.first().text, question);
        QCOMPARE(shown.first().icon, QMessageBox::Question);
        QCOMPARE(shown.last().text, done);
    }

private Q_SLOTS:
    void initTestCase() { wr::test::initTestProcess(); }
    void init()
    {
        h.emplace();
        m_dataHome = h->fixture.path(u"data-home"_s);
        QDir().mkpath(m_dataHome);
        // Only the virtual radios are listed: no real serial device joins the scan.
        wr::setSystemPortSource([] { return QList<wr::SystemPort>{}; });
        wr::setSerialPortsFolder(m_dataHome + u"/wrpd6t/serial-ports"_s);
        h->storeSetting(u"language"_s, u"0"_s);
    }
    void cleanup()
    {
        h.reset();
        wr::setSystemPortSource({});
        wr::setSerialPortsFolder({});
    }

    void readThroughMenu_data()
    {
        QTest::addColumn<int>("chosenPort");
        QTest::newRow("radio on the chosen port") << 200;
        QTest::newRow("radio found by the port scan") << 7; // a silent radio there
    }

    void readThroughMenu()
    {
        QFETCH(int, chosenPort);
        const QByteArray radioMemory = ShellHarness::imageWithChannels(1, 128, 400);
        const QString memoryFile = h->fixture.path(u"radio.tw"_s);
        QVERIFY(ShellHarness::writeDataFile(memoryFile, radioMemory));
        VirtualRadio radio, silent;
        QVERIFY(radio.start(200, m_dataHome, {u"--image"_s, memoryFile}));
        if (chosenPort != 200)
            QVERIFY(silent.start(chosenPort, m_dataHome, {u"--silent"_s}));
        openOn(chosenPort);
        transfer(u"mnuRead"_s, u"Read data from radio.\nDo you wish to continue?"_s, u"Reading completed!"_s);
        QCOMPARE(wr::app().LinkDirection, 0);
        // The transferred rows are the radio's, the rest as before; the
        // snapshot was taken and the channel list reloaded.
        const QByteArray image = wr::app().image.bytes();
        QCOMPARE(rows(image, 0, 127), rows(radioMemory, 0, 127));
        QCOMPARE(rows(image, 416, 416), rows(radioMemory, 416, 416));
        QVERIFY(!wr::app().image.IsModified());
        QCOMPARE(wr::app().BandLimits[0], 136);
        QCOMPARE(h->window->channelList()->grid()->item(1, 1)->text(), u"401.12500"_s);
        // After a scan the port stays where the radio answered, and the
        // status bar says so.
        QCOMPARE(int(wr::app().PortNumber), 200);
        QCOMPARE(h->panel(1), u"COM200"_s);
    }

    void writeThroughMenu()
    {
        const QString saved = h->fixture.path(u"radio-after.tw"_s);
        VirtualRadio radio;
        QVERIFY(radio.start(200, m_dataHome, {u"--save"_s, saved}));
        openOn(200);
        wr::app().image.setBytes(ShellHarness::imageWithChannels(1, 60));
        h->window->RefreshMainWindow();
        // A value still in the grid goes to the radio too: Write commits first.
        h->window->channelList()->setChannelRx(100, u"145.5"_s);
        transfer(u"mnuWrite"_s, u"Write data to radio.\nDo you wish to continue?"_s, u"Writing completed!"_s);
        QCOMPARE(wr::app().LinkDirection, 1);
        QTRY_VERIFY_WITH_TIMEOUT(wr::DataFile::Read(saved).status == wr::DataFile::ReadStatus::Ok, 5000);
        const QByteArray inRadio = wr::DataFile::Read(saved).image;
        const QByteArray image = wr::app().image.bytes();
        QCOMPARE(rows(inRadio, 0, 127), rows(image, 0, 127));
        QCOMPARE(rows(inRadio, 200, 247), rows(image, 200, 247));
        wr::MemoryImage radioImage;
        radioImage.setBytes(inRadio);
        QCOMPARE(wr::ReadChannelTexts(radioImage, 100, 0).rx, u"145.50000"_s);
        QCOMPARE(radioImage.ReadByte(0x0CD0), 0);
    }
};

QTEST_MAIN(TestShellTransfer)
#include "TestShellTransfer.moc"
