#include "TestSuite.h"

#include "file/DataFile.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTest>

#include <algorithm>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace wr;
namespace DF = wr::DataFile;

namespace {

// What a row of the pass table says about its two columns.
enum class Pass {
    Both,    // PackPass(plain) == packed, and UnpackPass(packed) == plain
    Unpacks, // UnpackPass(packed) == plain (a pass the packer would not write)
    Kept,    // PackPass(plain) keeps a pass, which unpacks to plain
    NotKept, // PackPass(plain) keeps no pass
    Invalid, // UnpackPass(packed) refuses the bytes
};

QByteArray hex(const char *text) { return QByteArray::fromHex(text); }
QByteArray repeated(qsizetype count, std::uint8_t value) { return QByteArray(count, static_cast<char>(value)); }

// count distinct bytes 1, 2, ... count: none of them is ever the most frequent.
QByteArray ascending(int count)
{
    QByteArray bytes;
    for (int i = 1; i <= count; ++i)
        bytes.append(static_cast<char>(i));
    return bytes;
}

QByteArray randomBytes(QRandomGenerator &random, int count)
{
    QByteArray bytes(count, Qt::Uninitialized);
    for (char &ch : bytes)
        ch = static_cast<char>(random.bounded(256));
    return bytes;
}

} // namespace

using test::freshImage;
using test::imageOf;

Q_DECLARE_METATYPE(Pass)

class TestDataFile : public test::Suite
{
    Q_OBJECT

private Q_SLOTS:
    void onePass_data()
    {
        QTest::addColumn<Pass>("way");
        QTest::addColumn<QByteArray>("plain");
        QTest::addColumn<QByteArray>("packed");

        QTest::newRow("run of M fills whole groups") << Pass::Both << repeated(21, 0xAA) << hex("000007AA0000157F7F7F");
        QTest::newRow("group mixing M and data")
            << Pass::Both << hex("AA01AA01AA01AAAAAAAAAAAAAAAA") << hex("000006AA00000B557F010101");
        QTest::newRow("last M ends a partial group")
            << Pass::Both << (repeated(8, 0xAA) + hex("0102")) << hex("000006AA0000087F400102");
        // Equal counts: the higher value goes; one byte longer still keeps the pass.
        QTest::newRow("tie, one byte longer")
            << Pass::Both << (repeated(8, 0x01) + repeated(8, 0x02)) << hex("00000602000008817F0101010101010101");
        // 134 data bytes are one FF control byte without an M; 133 then an M are FE.
        QTest::newRow("run FF") << Pass::Both << (repeated(21, 0xEE) + ascending(134) + hex("EE"))
                                << (hex("000009EE0000167F7F7FFF40") + ascending(134));
        QTest::newRow("run FE") << Pass::Both << (repeated(21, 0xEE) + ascending(133) + hex("EE"))
                                << (hex("000008EE0000167F7F7FFE") + ascending(133));
        QTest::newRow("two bytes longer") << Pass::NotKept << (repeated(7, 0x01) + repeated(7, 0x02)) << QByteArray();
        QTest::newRow("nothing repeats") << Pass::NotKept << ascending(255) << QByteArray();
        // 1100 eliminated bytes keep a pass even when it makes the data longer.
        QByteArray spread;
        for (int i = 0; i < 1100; ++i)
            spread += hex("EE") + ascending(8);
        QTest::newRow("1100 M, longer") << Pass::Kept << spread << QByteArray();
        QTest::newRow("1099 M, longer") << Pass::NotKept << spread.sliced(9) << QByteArray();

        QTest::newRow("C reached mid-group") << Pass::Unpacks << hex("01AA020304") << hex("000005AA0000012001020304");
        QTest::newRow("zero group") << Pass::Unpacks << hex("01020304050607AA08")
                                    << hex("000006AA00000100400102030405060708");
        QTest::newRow("run 80") << Pass::Unpacks << hex("01020304050607AA") << hex("000005AA0000018001020304050607");

        const QByteArray none;
        QTest::newRow("shorter than a header") << Pass::Invalid << none << hex("000005AA00");
        QTest::newRow("P below four") << Pass::Invalid << none << hex("000003AA000000");
        QTest::newRow("huge C") << Pass::Invalid << none << hex("000005AAFFFFFF7F01");
        QTest::newRow("run past the data") << Pass::Invalid << none << hex("000005AA000001800102");
        QTest::newRow("group past the data") << Pass::Invalid << none << hex("000005AA0000010101");
        QTest::newRow("control ends before C") << Pass::Invalid << none << hex("000005AA00000540");
        QTest::newRow("control left over") << Pass::Invalid << none << hex("000006AA0000014040");
        // Consistent counts that would unpack to more than a megabyte.
        const int controls = 200000;
        const auto three = [](int v) { return QByteArray::fromHex(QByteArray::number(v, 16).rightJustified(6, '0')); };
        QTest::newRow("megabytes") << Pass::Invalid << none
                                   << (three(4 + controls) + hex("AA") + three(controls * 7) + repeated(controls, 0x7F));
    }

    void onePass()
    {
        QFETCH(Pass, way);
        QFETCH(QByteArray, plain);
        QFETCH(QByteArray, packed);

        const std::optional<QByteArray> pass = DF::PackPass(plain);
        if (way == Pass::NotKept)
            QVERIFY(!pass);
        if (way == Pass::Both)
            QCOMPARE(pass.value_or("none").toHex(), packed.toHex());
        if (way == Pass::Kept)
            packed = pass.value_or(QByteArray());
        const std::optional<QByteArray> unpacked = DF::UnpackPass(packed);
        if (way == Pass::Invalid)
            QVERIFY(!unpacked);
        else if (way != Pass::NotKept)
            QCOMPARE(unpacked.value_or("none").toHex(), plain.toHex());
    }

    void freshImageFile()
    {
        const QByteArray container = DF::Container(freshImage());
        QCOMPARE(container.first(16), QByteArray("PDZUNK") + repeated(10, 0xFF));

        // The first pass eliminates 0xFF and puts back 16 299 of them.
        const std::optional<QByteArray> firstPass = DF::PackPass(container);
        QVERIFY(firstPass);
        QCOMPARE(firstPass->mid(3, 4).toHex(), QByteArray("ff003fab"));

        const QByteArray file = *DF::Encode(freshImage());
        QCOMPARE(file.size(), 165);
        QCOMPARE(int(std::uint8_t(file.back())), 6);
        QCOMPARE(DF::Decode(file).container, container);
    }

    void packData_data()
    {
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QByteArray>("file"); // empty: packing fails

        // A rejected pass leaves the data as the kept passes left it.
        const QByteArray twoLonger = repeated(7, 0x01) + repeated(7, 0x02);
        QTest::newRow("first pass rejected") << twoLonger << twoLonger + '\0';
        QTest::newRow("second pass rejected") << repeated(21, 0xAA) << hex("000007AA0000157F7F7F01");
        // In 400 000 random bytes every value occurs about 1560 times, and each
        // pass adds as many run control bytes again, so passes that eliminate
        // 1100 or more are kept without end and the count would pass 255.
        QRandomGenerator random(7);
        QTest::newRow("more than 255 passes") << randomBytes(random, 400000) << QByteArray();
    }

    void packData()
    {
        QFETCH(QByteArray, input);
        QFETCH(QByteArray, file);
        QCOMPARE(DF::PackData(input).value_or(QByteArray()).toHex(), file.toHex());
    }

    void roundTrip_data()
    {
        QTest::addColumn<QByteArray>("imageBytes");

        for (quint32 seed : {1u, 2u}) {
            QRandomGenerator random(seed);
            QTest::addRow("random bytes %u", seed) << randomBytes(random, MemoryImage::Size);
            QByteArray scattered = freshImage().bytes();
            for (int i = 0; i < 300; ++i)
                scattered[random.bounded(MemoryImage::Size)] = static_cast<char>(random.bounded(256));
            QTest::addRow("fresh image, scattered changes %u", seed) << scattered;
            QByteArray runs;
            while (runs.size() < MemoryImage::Size)
                runs += repeated(random.bounded(1, 400), std::uint8_t(random.bounded(4) ? random.bounded(256) : 0xFF));
            QTest::addRow("long runs %u", seed) << runs.first(MemoryImage::Size);
        }
        QTest::newRow("all erased") << repeated(MemoryImage::Size, 0xFF);
        QByteArray ramp(MemoryImage::Size, Qt::Uninitialized);
        for (int i = 0; i < MemoryImage::Size; ++i)
            ramp[i] = static_cast<char>(i);
        QTest::newRow("every value equally often") << ramp;
        QByteArray runsOf134;
        for (int i = 0; runsOf134.size() < MemoryImage::Size; ++i)
            runsOf134 += ascending(134) + repeated(i % 2, 0xFF);
        QTest::newRow("runs of exactly 134 and 133") << runsOf134.first(MemoryImage::Size);
    }

    void roundTrip()
    {
        QFETCH(QByteArray, imageBytes);
        const std::optional<QByteArray> file = DF::Encode(imageOf(imageBytes));
        QVERIFY(file);
        const DF::ReadResult read = DF::Decode(*file);
        QCOMPARE(read.status, DF::ReadStatus::Ok);
        QVERIFY(read.image == imageBytes);
    }

    void hostileFiles_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<DF::ReadStatus>("status");
        QTest::addColumn<DF::ReadProblem>("problem"); // what the message about it says

        const QByteArray fresh = *DF::Encode(freshImage());
        const QByteArray container = DF::Container(freshImage());
        const auto patched = [&fresh](qsizetype offset, const QByteArray &bytes) {
            return QByteArray(fresh).replace(offset, bytes.size(), bytes);
        };
        const qsizetype last = fresh.size() - 1;
        using S = DF::ReadStatus;
        using P = DF::ReadProblem;

        QTest::newRow("plain container, count zero") << container + '\0' << S::Ok << P::None;
        QTest::newRow("missing file") << QByteArray() << S::CannotOpen << P::None; // null: not written
        QTest::newRow("empty file") << QByteArray("") << S::Damaged << P::TooShort;
        QTest::newRow("truncated by one byte") << (fresh.first(last - 1) + fresh.back()) << S::Damaged << P::BadPacking;
        QTest::newRow("count one too high") << patched(last, hex("07")) << S::Damaged << P::BadPacking;
        QTest::newRow("count 255") << patched(last, hex("FF")) << S::Damaged << P::BadPacking;
        QTest::newRow("count one too low") << patched(last, hex("05")) << S::WrongType << P::TooShort;
        QTest::newRow("huge P") << patched(0, hex("FFFFFF")) << S::Damaged << P::BadPacking;
        QTest::newRow("huge C") << patched(4, hex("FFFFFF")) << S::Damaged << P::BadPacking;
        QTest::newRow("wrong marker") << *DF::PackData(QByteArray(container).replace(0, 6, "PDZUNX")) << S::WrongType
                                      << P::NoMarker;
        QTest::newRow("container one byte long") << *DF::PackData(container + 'x') << S::WrongType << P::TooLong;
        QTest::newRow("two megabytes") << repeated(2 << 20, 0x00) << S::WrongType << P::TooLarge;
    }

    void hostileFiles()
    {
        QFETCH(QByteArray, file);
        QFETCH(DF::ReadStatus, status);
        // The same through the file system, where the reading starts.
        const QString path = filePath(QStringLiteral("hostile.tw"));
        QVERIFY(file.isNull() || test::writeFile(path, file));
        const DF::ReadResult read = DF::Read(path);
        QCOMPARE(read.status, status);
        QTEST(read.problem, "problem");
        QCOMPARE(read.image.size(), status == DF::ReadStatus::Ok ? MemoryImage::Size : 0);
        QCOMPARE(read.errorString.isEmpty(), status != DF::ReadStatus::CannotOpen);
    }

    void notRegularFiles_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("folder") << QStringLiteral("folder");
        QTest::newRow("device") << QStringLiteral("device");
        QTest::newRow("pipe without a writer") << QStringLiteral("pipe");
        QTest::newRow("socket") << QStringLiteral("socket");
    }

    // Only regular files are read: anything else is refused at once, where a
    // pipe with no writer would otherwise hold the reader for ever.
    void notRegularFiles()
    {
        QFETCH(QString, kind);
        QString path = filePath(kind);
        const QByteArray name = QFile::encodeName(path);
        const int socket = kind == u"socket" ? ::socket(AF_UNIX, SOCK_STREAM, 0) : -1;
        if (kind == u"folder") {
            QVERIFY(QDir().mkdir(path));
        } else if (kind == u"device") {
            path = QStringLiteral("/dev/zero");
        } else if (kind == u"pipe") {
            QCOMPARE(::mkfifo(name.constData(), 0600), 0);
        } else {
            sockaddr_un address{};
            address.sun_family = AF_UNIX;
            QVERIFY(name.size() < qsizetype(sizeof address.sun_path));
            std::copy(name.begin(), name.end(), address.sun_path);
            QCOMPARE(::bind(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
        }
        const DF::ReadResult read = DF::Read(path);
        if (socket >= 0)
            ::close(socket);
        QCOMPARE(read.status, DF::ReadStatus::WrongType);
        QCOMPARE(read.problem, DF::ReadProblem::NotAFile);
    }

    void garbageNeverCrashes()
    {
        QRandomGenerator random(42);
        const auto rejected = [](const DF::ReadResult &read) {
            return read.status == DF::ReadStatus::Damaged || read.status == DF::ReadStatus::WrongType;
        };
        for (int size : {1, 8, 165, 16401, 1 << 20}) {
            for (int round = 0; round < 5; ++round)
                QVERIFY2(rejected(DF::Decode(randomBytes(random, size))), qPrintable(QString::number(size)));
        }
        // A valid file with a few bytes changed gives a rejection or a whole image.
        const QByteArray file = *DF::Encode(imageOf(randomBytes(random, 4096) + repeated(MemoryImage::Size - 4096, 0xFF)));
        for (int round = 0; round < 2000; ++round) {
            QByteArray damaged = file;
            for (int i = random.bounded(1, 4); i > 0; --i)
                damaged[random.bounded(damaged.size())] = static_cast<char>(random.bounded(256));
            const DF::ReadResult read = DF::Decode(damaged);
            QVERIFY(rejected(read) || (read.status == DF::ReadStatus::Ok && read.image.size() == MemoryImage::Size));
        }
    }

    void write_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("succeeds");

        QTest::newRow("replaces a longer file") << QStringLiteral("plain") << true;
        QTest::newRow("missing folder") << QStringLiteral("no such folder/radio.tw") << false;
        // chmod does not stop root; a regular file as the folder stops everyone.
        QTest::newRow("parent is a regular file") << QStringLiteral("plain/radio.tw") << false;
        QTest::newRow("existing file in proc") << QStringLiteral("/proc/version") << false;
        QTest::newRow("new file in proc") << QStringLiteral("/proc/radio.tw") << false;
    }

    void write()
    {
        QFETCH(QString, path);
        QFETCH(bool, succeeds);
        const QString target = QDir::isAbsolutePath(path) ? path : filePath(path);
        QVERIFY(test::writeFile(filePath(QStringLiteral("plain")), repeated(100000, 0x33)));
        const QDir folder(tempFolder());
        const QStringList before = folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
        const bool existed = QFile::exists(target);
        const QByteArray previous = test::readFile(target);
        QRandomGenerator random(11);
        const MemoryImage image = imageOf(randomBytes(random, MemoryImage::Size));

        QString errorString;
        QCOMPARE(DF::Write(target, image, &errorString), succeeds);
        QCOMPARE(errorString.isEmpty(), succeeds);
        QCOMPARE(QFile::exists(target), existed || succeeds);
        QVERIFY(test::readFile(target) == (succeeds ? *DF::Encode(image) : previous));
        if (!succeeds)
            QCOMPARE(test::readFile(filePath(QStringLiteral("plain"))), repeated(100000, 0x33));
        // Nothing else is left in the folder, nor a staging file where the program runs.
        QCOMPARE(folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot), before);
        for (const QString &place : {QCoreApplication::applicationDirPath(), QDir::currentPath()})
            QVERIFY(!QFile::exists(QDir(place).filePath(QStringLiteral("tempzunk.dat"))));
    }
};

QTEST_GUILESS_MAIN(TestDataFile)
#include "TestDataFile.moc"
