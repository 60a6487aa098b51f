// Read and Write through the main window's menu against the virtual radio
// on a pseudo-terminal: the refreshed channel list and the radio's memory.
// Cancelled confirmations are in TestMainWindow's shortcuts; the port scan
// is tested with the link.
#include "ShellHarness.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QProcess>

#include <optional>

using namespace Qt::StringLiterals;
using wr::test::ShellHarness;

class TestShellTransfer : public QObject
{
    Q_OBJECT

private:
    std::optional<ShellHarness> h;
    QProcess m_radio;

    // The virtual radio registered as COM200 in the test's own data home,
    // and the main window on that port. The radio's first line,
    // "COM200 <device>", says the link is in place.
    bool startRadioAndWindow(const QStringList &arguments)
    {
        const QString dataHome = h->fixture.path(u"data-home"_s);
        QDir().mkpath(dataHome);
        // Only the virtual radio is listed: no real serial device joins in.
        wr::setSystemPortSource([] { return QList<wr::SystemPort>{}; });
        wr::setSerialPortsFolder(dataHome + u"/wrpd6t/serial-ports"_s);
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(u"XDG_DATA_HOME"_s, dataHome);
        m_radio.setProcessEnvironment(env);
        m_radio.start(QStringLiteral(WRPD6T_RADIO_SIM), QStringList{u"--no-pacing"_s, u"--com"_s, u"200"_s} + arguments);
        for (QDeadlineTimer wait(10000); !m_radio.canReadLine() && !wait.hasExpired();)
            QTest::qWait(20);
        h->storeSetting(u"gbPort"_s, u"200"_s);
        h->open(0);
        return m_radio.readLine().startsWith("COM200 ");
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
        h->trigger(item);
        const QStringList shown = ShellHarness::shownTexts();
        QVERIFY(shown.size() >= 2);
        QCOMPARE(shown.first(), question);
        QCOMPARE(wr::MessageBox::history().first().icon, QMessageBox::Question);
        QCOMPARE(shown.last(), done);
    }

private Q_SLOTS:
    void initTestCase() { wr::test::initTestProcess(); }
    void init() { h.emplace(); }
    void cleanup()
    {
        h.reset();
        m_radio.terminate();
        if (!m_radio.waitForFinished(3000))
            m_radio.kill();
        m_radio.waitForFinished(1000);
    }

    void readThroughMenu()
    {
        const QByteArray radioMemory = ShellHarness::imageWithChannels(1, 128, 400);
        const QString memoryFile = h->fixture.path(u"radio.tw"_s);
        QVERIFY(ShellHarness::writeDataFile(memoryFile, radioMemory));
        QVERIFY(startRadioAndWindow({u"--image"_s, memoryFile}));
        transfer(u"mnuRead"_s, u"Read data from radio.\nDo you wish to continue?"_s, u"Reading completed!"_s);
        QCOMPARE(wr::app().LinkDirection, 0);
        // The transferred rows are the radio's, the rest as before; the
        // snapshot was taken and the channel list reloaded.
        const QByteArray image = wr::app().image.bytes();
        QCOMPARE(image.first(128 * 16), radioMemory.first(128 * 16)); // channel rows
        QCOMPARE(image.sliced(416 * 16, 16), radioMemory.sliced(416 * 16, 16)); // band limits
        QVERIFY(!wr::app().image.IsModified());
        QCOMPARE(wr::app().BandLimits[0], 136);
        QCOMPARE(h->gridRx(1), u"401.12500"_s);
    }

    void writeThroughMenu()
    {
        const QString saved = h->fixture.path(u"radio-after.tw"_s);
        QVERIFY(startRadioAndWindow({u"--save"_s, saved}));
        wr::app().image.setBytes(ShellHarness::imageWithChannels(1, 60));
        h->window->RefreshMainWindow();
        h->editRx(100, u"145.5"_s); // Write commits the grid first
        transfer(u"mnuWrite"_s, u"Write data to radio.\nDo you wish to continue?"_s, u"Writing completed!"_s);
        QCOMPARE(wr::app().LinkDirection, 1);
        QTRY_VERIFY_WITH_TIMEOUT(wr::DataFile::Read(saved).status == wr::DataFile::ReadStatus::Ok, 5000);
        const QByteArray inRadio = wr::DataFile::Read(saved).image;
        const QByteArray image = wr::app().image.bytes();
        QCOMPARE(inRadio.first(128 * 16), image.first(128 * 16));
        QCOMPARE(inRadio.sliced(200 * 16, 48 * 16), image.sliced(200 * 16, 48 * 16));
        QCOMPARE(ShellHarness::rxOf(inRadio, 100), u"145.50000"_s);
        QCOMPARE(inRadio.at(0x0CD0), '\0');
    }
};

QTEST_MAIN(TestShellTransfer)
#include "TestShellTransfer.moc"
