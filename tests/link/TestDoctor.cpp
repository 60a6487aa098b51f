// The connection test on real pseudo-terminals, each cause in the situation
// that gives it: no device, a device this user may not open, a process
// holding the port (ModemManager and brltty among them, and one of another
// user that cannot be looked into), a path that is no serial device, and a
// cable with an echoing, silent, wrong, garbling or proper radio behind it.

#include "LinkTestData.h"
#include "RadioOnPty.h"
#include "TestSuite.h"

#include "core/Language.h"
#include "link/ConnectionDoctor.h"
#include "link/DoctorTexts.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <fcntl.h>
#include <grp.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace wr;
using namespace Qt::Literals::StringLiterals;
using Cause = wr::Diagnosis::Cause;

namespace {

enum class Setup {
    Missing,         // COM201 is not there; nothing comes
    OtherAppears,    // COM201 is not there; COM205 appears while the test waits
    ItAppears,       // COM201 is not there; it appears while the test waits
    NoPermission,    // the radio's pseudo-terminal, which this user may not open
    DialoutDevice,   // ... given to the group dialout
    Held,            // a process has the port open
    HeldByModemManager,
    HeldByBrltty,
    HeldUnseen,      // a process of another user holds it exclusively; brltty runs
    RegularFile,     // com200 links to a plain file
    Echo,
    Silent,
    WrongRadio,
    WrongSpeed,
    Radio,
};

constexpr uid_t Nobody = 65534;
constexpr uid_t SomeoneElse = 65533;

// sleep, started through a link named `name` (the system names the process
// after it) with `device` open; as another user the device is held
// exclusively, as a daemon of its own would.
bool startHolder(QProcess &process, const QString &folder, const QString &name, const QString &device,
                 bool otherUser)
{
    const QString program = folder + u'/' + name;
    if (!QFile::link(QStringLiteral("/bin/sleep"), program))
        return false;
    const QByteArray path = QFile::encodeName(device);
    process.setChildProcessModifier([path, otherUser] {
        const int fd = ::open(path.constData(), O_RDWR | O_NOCTTY | O_NONBLOCK); // kept across exec
        if (fd < 0 || !otherUser)
            return;
        ::ioctl(fd, TIOCEXCL);
        if (::setgroups(0, nullptr) != 0 || ::setgid(Nobody) != 0 || ::setuid(Nobody) != 0)
            ::_exit(127);
    });
    process.start(program, {u"60"_s});
    return process.waitForStarted(5000);
}

} // namespace

Q_DECLARE_METATYPE(Setup)

class TestDoctor : public test::Suite
{
    Q_OBJECT

    void tearDown() override
    {
        if (::geteuid() != ::getuid())
            QVERIFY(::seteuid(::getuid()) == 0);
        m_holder.kill();
        m_holder.waitForFinished(3000);
    }

private Q_SLOTS:
    void diagnose_data()
    {
        QTest::addColumn<Setup>("setup");
        QTest::addColumn<Cause>("cause");
        QTest::addColumn<QString>("detail"); // found in the detail; %1: the device
        QTest::addColumn<QString>("advice"); // found in the advice
        QTest::addColumn<int>("leastMs");
        QTest::addColumn<int>("mostMs");

        const QString rule = u"70-wrpd6t-cable.rules"_s;
        QTest::newRow("no device") << Setup::Missing << Cause::NoDevice
                                   << u"There is no COM201 now. Serial ports present: COM200 (%1)."_s
                                   << u"Plug the programming cable in"_s << 0 << 500;
        QTest::newRow("another port appears while waiting")
            << Setup::OtherAppears << Cause::NoDevice << u"While the test waited, COM205 ("_s
            << u"choose COM205 and run the test again"_s << 500 << 2000;
        QTest::newRow("the port appears while waiting")
            << Setup::ItAppears << Cause::Ok << u"identified itself as a WR-PD6T"_s << u"Nothing to do"_s << 500 << 2000;
        QTest::newRow("permission") << Setup::NoPermission << Cause::Permission << u"%1 belongs to the group"_s << rule
                                    << 0 << 500;
        QTest::newRow("permission, group dialout")
            << Setup::DialoutDevice << Cause::Permission << u"belongs to the group \u201Cdialout\u201D"_s
            << u"Add yourself to the group \u201Cdialout\u201D"_s << 0 << 500;
        QTest::newRow("busy") << Setup::Held << Cause::Busy << u"%1 is in use by holder (PID "_s
                              << u"Close that program"_s << 0 << 1000;
        QTest::newRow("held by ModemManager") << Setup::HeldByModemManager << Cause::HeldByModemManager
                                              << u"ModemManager (PID "_s << u"tells ModemManager to leave"_s << 0 << 1000;
        // Braille users need brltty: the advice spares it the cable, never removes it.
        QTest::newRow("held by brltty") << Setup::HeldByBrltty << Cause::HeldByBrltty << u"the braille display service"_s
                                        << u"Keep brltty, and stop it claiming this cable"_s << 0 << 1000;
        QTest::newRow("busy, the holder unseen")
            << Setup::HeldUnseen << Cause::Busy << u"which this user cannot see. brltty is running."_s
            << u"Keep brltty, and stop it claiming this cable"_s << 0 << 1000;
        QTest::newRow("not serial") << Setup::RegularFile << Cause::NotSerial << u"COM200 (%1) is not a serial device"_s
                                    << u"Choose the port of the programming cable"_s << 0 << 500;
        // A silent line is given as many tries as a transfer gives it: 8 of 300 ms.
        QTest::newRow("echo only") << Setup::Echo << Cause::EchoOnly << u"comes straight back"_s
                                   << u"Switch the radio on"_s << 2400 << 3500;
        QTest::newRow("no answer") << Setup::Silent << Cause::NoAnswer << u"Nothing comes back on COM200 (%1)"_s
                                   << u"firm push"_s << 2400 << 3500;
        QTest::newRow("wrong radio") << Setup::WrongRadio << Cause::WrongRadio
                                     << u"\u201CQAWPD7T\u201D (51 41 57 50 44 37 54)"_s << u"serves the WR-PD6T only"_s << 0
                                     << 1000;
        QTest::newRow("garbled") << Setup::WrongSpeed << Cause::Garbled << u"but no valid reply"_s
                                 << u"another cable"_s << 2400 << 3500;
        QTest::newRow("ok") << Setup::Radio << Cause::Ok << u"COM200 (%1) answered"_s << u"Nothing to do"_s << 0 << 1000;
    }

    void diagnose()
    {
        QFETCH(Setup, setup);
        QFETCH(Cause, cause);
        QFETCH(QString, detail);
        QFETCH(QString, advice);
        QFETCH(int, leastMs);
        QFETCH(int, mostMs);

        const bool root = ::geteuid() == 0;
        if ((setup == Setup::DialoutDevice || setup == Setup::HeldUnseen) && !root)
            QSKIP("only root can give a device to the group dialout or start a process of another user");
        if (setup == Setup::DialoutDevice && !::getgrnam("dialout"))
            QSKIP("this system has no group dialout");

        sim::RadioFaults faults;
        faults.echo = setup == Setup::Echo;
        faults.silent = setup == Setup::Silent;
        faults.wrongId = setup == Setup::WrongRadio;
        faults.wrongSpeed = setup == Setup::WrongSpeed;
        const QString folder = filePath(u"serial-ports"_s);
        test::RadioOnPty line(folder, faults);
        QVERIFY2(line.isOpen(), qPrintable(line.errorString()));
        test::fillPattern(line.radio.memory(), 2);
        const MemoryImage radioBefore = line.radio.memory();
        QString device = line.devicePath();
        std::optional<test::RadioOnPty> later;
        const auto plugInLater = [&](int com) {
            QTimer::singleShot(500, [&, com] { later.emplace(folder, sim::RadioFaults{}, false, com); });
        };

        // Another user must still find the port's link and the holder's program.
        const auto openUpFolders = [&] {
            const auto listable = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadGroup
                | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther;
            return QFile::setPermissions(tempFolder(), listable) && QFile::setPermissions(folder, listable);
        };
        int port = 200;
        int waitMs = 0;
        uid_t testAs = ::geteuid();
        const QByteArray path = QFile::encodeName(device);
        switch (setup) {
        case Setup::Missing:
            port = 201;
            break;
        case Setup::OtherAppears:
        case Setup::ItAppears:
            port = 201;
            waitMs = 3000;
            plugInLater(setup == Setup::ItAppears ? 201 : 205);
            break;
        case Setup::NoPermission:
        case Setup::DialoutDevice:
            // Root may open anything: the test becomes nobody while it runs.
            if (root) {
                testAs = Nobody;
                if (setup == Setup::DialoutDevice)
                    QVERIFY(::chown(path.constData(), 0, ::getgrnam("dialout")->gr_gid) == 0
                            && ::chmod(path.constData(), 0660) == 0);
            } else {
                QVERIFY(::chmod(path.constData(), 0) == 0);
            }
            break;
        case Setup::Held:
        case Setup::HeldByModemManager:
        case Setup::HeldByBrltty:
        case Setup::HeldUnseen: {
            const QString name = setup == Setup::Held                 ? u"holder"_s
                                 : setup == Setup::HeldByModemManager ? u"ModemManager"_s
                                                                      : u"brltty"_s;
            QVERIFY(openUpFolders());
            QVERIFY(startHolder(m_holder, tempFolder(), name, device, setup == Setup::HeldUnseen));
            if (setup == Setup::HeldUnseen) {
                QVERIFY(::chmod(path.constData(), 0666) == 0);
                testAs = SomeoneElse;
            }
            break;
        }
        case Setup::RegularFile:
            device = filePath(u"not-a-port"_s);
            QVERIFY(test::writeFile(device, "text") && QFile::remove(folder + u"/com200"_s)
                    && QFile::link(device, folder + u"/com200"_s));
            break;
        default:
            break;
        }
        if (testAs != ::geteuid())
            QVERIFY(openUpFolders() && ::seteuid(testAs) == 0);

        ConnectionDoctor doctor;
        QSignalSpy finished(&doctor, &ConnectionDoctor::finished);
        QElapsedTimer clock;
        clock.start();
        doctor.start(port, waitMs);
        QVERIFY(finished.wait(15000));
        const qint64 elapsed = clock.elapsed();
        if (::geteuid() != ::getuid())
            QVERIFY(::seteuid(::getuid()) == 0);

        const Diagnosis diagnosis = finished.first().first().value<Diagnosis>();
        const QString said = diagnosisDetail(diagnosis, English);
        QCOMPARE(causeKey(diagnosis.cause), causeKey(cause));
        QVERIFY2(said.contains(QString(detail).replace(u"%1"_s, device)), qPrintable(said));
        const QString todo = diagnosisAdvice(diagnosis, English);
        QVERIFY2(todo.contains(advice) && !todo.contains(u"remove"_s, Qt::CaseInsensitive), qPrintable(todo));
        QVERIFY2(elapsed >= leastMs && elapsed <= mostMs, qPrintable(QString::number(elapsed)));
        QVERIFY(diagnosis.elapsedMs <= elapsed);
        QCOMPARE(finished.size(), 1);
        // Nothing is ever written into a radio; one that was asked is let go with "END".
        QCOMPARE(line.radio.rowsAnswered(), 0);
        QVERIFY(line.radio.memory() == radioBefore);
        if (setup == Setup::Radio || setup == Setup::WrongRadio)
            QCOMPARE(line.radio.sessionsEnded(), 1);
    }

    void permissionAdvice_data()
    {
        QTest::addColumn<QString>("group");
        QTest::addColumn<bool>("listed");      // the user database puts the user in the group
        QTest::addColumn<bool>("processHas");  // this session runs with it
        QTest::addColumn<QString>("advice");   // found in the advice

        QTest::newRow("dialout, joined but not logged in again")
            << u"dialout"_s << true << false << u"You are already in the group \u201Cdialout\u201D"_s;
        QTest::newRow("uucp, not joined") << u"uucp"_s << false << false << u"sudo usermod -aG uucp "_s;
        QTest::newRow("dialout, joined, yet the device shuts the group out")
            << u"dialout"_s << true << true << u"udev rule"_s;
        for (const QString &group : {u"root"_s, u"sudo"_s, u"wheel"_s, u"adm"_s, u"disk"_s, u"tty"_s})
            QTest::addRow("%s: never joined", qPrintable(group)) << group << false << false << u"udev rule"_s;
    }

    // What a user who may not open the port is told to do; a group that gives
    // more than serial ports is never one to join.
    void permissionAdvice()
    {
        QFETCH(QString, group);
        QFETCH(bool, listed);
        QFETCH(bool, processHas);
        QFETCH(QString, advice);

        Diagnosis diagnosis;
        diagnosis.cause = Cause::Permission;
        diagnosis.device = u"/dev/ttyUSB0"_s;
        diagnosis.facts.group = group;
        diagnosis.facts.serialGroup = isSerialGroup(group);
        diagnosis.facts.userListed = listed;
        diagnosis.facts.processHasGroup = processHas;
        for (int language = English; language < LanguageCount; ++language) {
            const QString said = diagnosisAdvice(diagnosis, language);
            QVERIFY2(!said.isEmpty(), qPrintable(said));
            if (!isSerialGroup(group))
                QVERIFY2(!said.contains(u"-aG "_s + group), qPrintable(said));
        }
        QVERIFY2(diagnosisAdvice(diagnosis, English).contains(advice), qPrintable(diagnosisAdvice(diagnosis, English)));
    }

private:
    QProcess m_holder;
};

QTEST_GUILESS_MAIN(TestDoctor)
#include "TestDoctor.moc"
