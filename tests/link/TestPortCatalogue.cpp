#include "TestSuite.h"

#include "link/PortCatalogue.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace wr;
using namespace Qt::Literals::StringLiterals;

class TestPortCatalogue : public test::Suite
{
    Q_OBJECT

private Q_SLOTS:
    void catalogue_data()
    {
        QTest::addColumn<QStringList>("devices");
        QTest::addColumn<QStringList>("links"); // com<N> links in the folder; "name=target" for a missing target
        QTest::addColumn<bool>("windows");
        QTest::addColumn<QString>("expected"); // "@name" is the made-up target of the link name

        QTest::newRow("built-in, USB and ACM ports keep fixed numbers")
            << QStringList{u"ttyS0"_s, u"ttyUSB0"_s, u"ttyACM2"_s, u"ttyS31"_s} << QStringList{} << false
            << u"COM1=/dev/ttyS0 COM33=/dev/ttyUSB0 COM67=/dev/ttyACM2 COM32=/dev/ttyS31"_s;
        QTest::newRow("others from 129 in name order, after the known kinds")
            << QStringList{u"ttyAMA0"_s, u"ttyUSB1"_s, u"cu.usbserial-1410"_s, u"ttyACM64"_s} << QStringList{} << false
            << u"COM34=/dev/ttyUSB1 COM129=/dev/cu.usbserial-1410 COM130=/dev/ttyACM64 COM131=/dev/ttyAMA0"_s;
        QTest::newRow("Windows names are kept, in the system's order")
            << QStringList{u"COM7"_s, u"COM3"_s} << QStringList{} << true << u"COM7=COM7 COM3=COM3"_s;
        QTest::newRow("a link replaces the device of its number in place, others follow in number order")
            << QStringList{u"ttyS0"_s, u"ttyUSB0"_s} << QStringList{u"com200"_s, u"com9"_s, u"COM2"_s, u"com33"_s} << false
            << u"COM1=/dev/ttyS0 COM33=@com33 COM2=@COM2 COM9=@com9 COM200=@com200"_s;
        QTest::newRow("links to nothing or without a port number are ignored")
            << QStringList{u"ttyS0"_s} << QStringList{u"com5=/dev/pts/nowhere"_s, u"com0"_s, u"com256"_s, u"comx"_s}
            << false << u"COM1=/dev/ttyS0"_s;
    }

    void catalogue()
    {
        QFETCH(QStringList, devices);
        QFETCH(QStringList, links);
        QFETCH(bool, windows);
        QFETCH(QString, expected);
        const QString folder = filePath(u"serial-ports"_s);
        QVERIFY(QDir().mkpath(folder));
        // Link targets are plain files here: the catalogue only needs them to exist.
        for (const QString &link : links) {
            const QString name = link.section(u'=', 0, 0);
            QString target = link.section(u'=', 1);
            if (target.isEmpty()) {
                target = filePath(u"device-"_s + name);
                QVERIFY(test::writeFile(target, {}));
                expected.replace(u'@' + name, target);
            }
            QVERIFY(QFile::link(target, folder + u'/' + name));
        }
        QVERIFY(test::writeFile(folder + u"/com77"_s, {})); // a plain file, no link: does not count

        QList<SystemPort> ports;
        for (const QString &name : devices)
            ports.append({name, u"/dev/"_s + name, u"serial"_s, u"maker"_s});
        QStringList described;
        for (const PortEntry &entry : buildPortCatalogue(ports, folder, windows))
            described.append(entry.name + u'=' + entry.devicePath);
        QCOMPARE(described.join(u' '), expected);
    }

    void portList()
    {
        QList<PortEntry> catalogue;
        for (const QString &name : {u"com4"_s, u"LPT1"_s, u"COM1"_s})
            catalogue.append({name, u"/dev/x"_s, QString(), QString()});
        // Upper case, in catalogue order, COM ports only; none gives one empty element.
        QCOMPARE(portListOf(catalogue), (QStringList{u"COM4"_s, u"COM1"_s}));
        QCOMPARE(portListOf(catalogue.mid(1, 1)), QStringList{QString()});
    }
};

QTEST_GUILESS_MAIN(TestPortCatalogue)
#include "TestPortCatalogue.moc"
