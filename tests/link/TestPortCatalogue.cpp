#include "TestSupport.h"

#include "link/PortCatalogue.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace wr;
using namespace Qt::Literals::StringLiterals;

namespace {

SystemPort device(const QString &name)
{
    return {name, u"/dev/"_s + name, u"serial "_s + name, u"maker"_s};
}

// "COM1=/dev/ttyS0 COM33=/dev/ttyUSB0": the catalogue in a form that reads
// well in a failure message.
QString describe(const QList<PortEntry> &catalogue)
{
    QStringList parts;
    for (const PortEntry &entry : catalogue)
        parts.append(entry.name + u'=' + entry.devicePath);
    return parts.join(u' ');
}

} // namespace

class TestPortCatalogue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { test::initTestProcess(); }
    void init() { m_fixture = std::make_unique<test::Fixture>(); }
    void cleanup()
    {
        setSystemPortSource({});
        setSerialPortsFolder(QString());
        m_fixture.reset();
    }

    void numbering_data();
    void numbering();
    void links_data();
    void links();
    void portList_data();
    void portList();
    void machineCatalogueUsesHooks();

private:
    std::unique_ptr<test::Fixture> m_fixture;
};

void TestPortCatalogue::numbering_data()
{
    QTest::addColumn<QStringList>("devices");
    QTest::addColumn<bool>("windows");
    QTest::addColumn<QString>("expected");

    QTest::newRow("built-in, USB and ACM ports keep fixed numbers")
        << QStringList{u"ttyS0"_s, u"ttyUSB0"_s, u"ttyACM2"_s, u"ttyS31"_s}
        << false << u"COM1=/dev/ttyS0 COM33=/dev/ttyUSB0 COM67=/dev/ttyACM2 COM32=/dev/ttyS31"_s;
    QTest::newRow("other devices from 129 in name order, after the known kinds")
        << QStringList{u"ttyAMA0"_s, u"ttyUSB1"_s, u"cu.usbserial-1410"_s, u"rfcomm0"_s}
        << false << u"COM34=/dev/ttyUSB1 COM129=/dev/cu.usbserial-1410 COM130=/dev/rfcomm0 COM131=/dev/ttyAMA0"_s;
    QTest::newRow("numbers past a kind's range count as other devices")
        << QStringList{u"ttyS32"_s, u"ttyUSB32"_s, u"ttyACM63"_s, u"ttyACM64"_s}
        << false << u"COM128=/dev/ttyACM63 COM129=/dev/ttyACM64 COM130=/dev/ttyS32 COM131=/dev/ttyUSB32"_s;
    QTest::newRow("Windows names are kept, in the system's order")
        << QStringList{u"COM7"_s, u"COM3"_s} << true << u"COM7=COM7 COM3=COM3"_s;
    QTest::newRow("no device") << QStringList{} << false << QString();
}

void TestPortCatalogue::numbering()
{
    QFETCH(QStringList, devices);
    QFETCH(bool, windows);
    QFETCH(QString, expected);
    QList<SystemPort> ports;
    for (const QString &name : devices)
        ports.append(device(name));
    const QList<PortEntry> catalogue = buildPortCatalogue(ports, m_fixture->path(u"none"_s), windows);
    QCOMPARE(describe(catalogue), expected);
    for (const PortEntry &entry : catalogue) {
        QCOMPARE(entry.description, u"serial "_s + entry.devicePath.section(u'/', -1));
        QCOMPARE(entry.manufacturer, u"maker"_s);
    }
}

void TestPortCatalogue::links_data()
{
    QTest::addColumn<QStringList>("links"); // link name, or name=target for a missing target
    QTest::addColumn<QString>("expected");

    QTest::newRow("a link adds a port after the system's")
        << QStringList{u"com200"_s} << u"COM1=/dev/ttyS0 COM33=/dev/ttyUSB0 COM200=@com200"_s;
    QTest::newRow("a link replaces the device with its number in place")
        << QStringList{u"com33"_s} << u"COM1=/dev/ttyS0 COM33=@com33"_s;
    QTest::newRow("added links come in number order")
        << QStringList{u"com9"_s, u"com10"_s, u"COM2"_s}
        << u"COM1=/dev/ttyS0 COM33=/dev/ttyUSB0 COM2=@COM2 COM9=@com9 COM10=@com10"_s;
    QTest::newRow("a link to a device that is gone is left out")
        << QStringList{u"com5=/dev/pts/nowhere"_s} << u"COM1=/dev/ttyS0 COM33=/dev/ttyUSB0"_s;
    QTest::newRow("names that are no port from 1 to 255 are ignored")
        << QStringList{u"com0"_s, u"com256"_s, u"comx"_s, u"tty5"_s} << u"COM1=/dev/ttyS0 COM33=/dev/ttyUSB0"_s;
}

void TestPortCatalogue::links()
{
    QFETCH(QStringList, links);
    QFETCH(QString, expected);
    const QString folder = m_fixture->path(u"serial-ports"_s);
    QVERIFY(QDir().mkpath(folder));
    // Link targets are plain files here: the catalogue only needs them to exist.
    for (const QString &link : links) {
        const QString name = link.section(u'=', 0, 0);
        QString target = link.section(u'=', 1);
        if (target.isEmpty()) {
            target = m_fixture->path(u"device-"_s + name);
            QVERIFY(test::writeFile(target, {}));
            expected.replace(u'@' + name, target);
        }
        QVERIFY(QFile::link(target, folder + u'/' + name));
    }
    // A plain file with a port's name is not a link and does not count.
    QVERIFY(test::writeFile(folder + u"/com77"_s, {}));

    const QList<PortEntry> catalogue = buildPortCatalogue({device(u"ttyS0"_s), device(u"ttyUSB0"_s)}, folder, false);
    QCOMPARE(describe(catalogue), expected);
}

void TestPortCatalogue::portList_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("upper case, in catalogue order") << QStringList{u"com4"_s, u"COM1"_s}
                                                    << QStringList{u"COM4"_s, u"COM1"_s};
    QTest::newRow("names without COM are left out") << QStringList{u"COM3"_s, u"LPT1"_s, u"Serial0"_s}
                                                    << QStringList{u"COM3"_s};
    QTest::newRow("no port gives one empty element") << QStringList{} << QStringList{QString()};
    QTest::newRow("only ports without COM give one empty element") << QStringList{u"LPT1"_s}
                                                                   << QStringList{QString()};
}

void TestPortCatalogue::portList()
{
    QFETCH(QStringList, names);
    QFETCH(QStringList, expected);
    QList<PortEntry> catalogue;
    for (const QString &name : names)
        catalogue.append({name, u"/dev/x"_s, QString(), QString()});
    QCOMPARE(portListOf(catalogue), expected);
}

void TestPortCatalogue::machineCatalogueUsesHooks()
{
#ifdef Q_OS_WIN
    QSKIP("Windows lists its ports under their COM names");
#endif
    const QString folder = m_fixture->path(u"links"_s);
    QVERIFY(QDir().mkpath(folder));
    const QString target = m_fixture->path(u"pty"_s);
    QVERIFY(test::writeFile(target, {}));
    QVERIFY(QFile::link(target, folder + u"/com200"_s));
    setSerialPortsFolder(folder);
    setSystemPortSource([] { return QList<SystemPort>{device(u"ttyUSB3"_s)}; });

    QCOMPARE(serialPortsFolder(), folder);
    QCOMPARE(GetPortList(), (QStringList{u"COM36"_s, u"COM200"_s}));
    const std::optional<PortEntry> port = findPort(200);
    QVERIFY(port.has_value());
    QCOMPARE(port->devicePath, target);
    QCOMPARE(port->number(), 200);
    QCOMPARE(findPort(36)->devicePath, u"/dev/ttyUSB3"_s);
    QVERIFY(!findPort(5).has_value());

    // Without the hook the folder is the program's data folder.
    setSerialPortsFolder(QString());
    QVERIFY(serialPortsFolder().endsWith(u"/serial-ports"_s));
}

QTEST_GUILESS_MAIN(TestPortCatalogue)
#include "TestPortCatalogue.moc"
