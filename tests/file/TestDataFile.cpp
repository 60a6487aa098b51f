#include "TestSupport.h"

#include "file/DataFile.h"

#include <QDir>
#include <QDirIterator>
#include <QRandomGenerator>
#include <QTest>

#include <memory>

using namespace wr;
namespace DF = wr::DataFile;

namespace {

QByteArray hex(const char *text)
{
    return QByteArray::fromHex(text);
}

QByteArray repeated(int count, std::uint8_t value)
{
    return QByteArray(count, static_cast<char>(value));
}

// count distinct bytes 1, 2, ... count: none of them is ever the most frequent.
QByteArray ascending(int count)
{
    QByteArray bytes;
    for (int i = 1; i <= count; ++i)
        bytes.append(static_cast<char>(i));
    return bytes;
}

QByteArray threeBytes(qsizetype value)
{
    QByteArray bytes;
    bytes.append(static_cast<char>((value >> 16) & 0xFF));
    bytes.append(static_cast<char>((value >> 8) & 0xFF));
    bytes.append(static_cast<char>(value & 0xFF));
    return bytes;
}

qsizetype readThree(const QByteArray &bytes, int offset)
{
    return (qsizetype(std::uint8_t(bytes[offset])) << 16) | (qsizetype(std::uint8_t(bytes[offset + 1])) << 8)
        | qsizetype(std::uint8_t(bytes[offset + 2]));
}

QByteArray randomBytes(QRandomGenerator &random, int count)
{
    QByteArray bytes(count, Qt::Uninitialized);
    for (char &ch : bytes)
        ch = static_cast<char>(random.bounded(256));
    return bytes;
}

MemoryImage imageOf(const QByteArray &bytes)
{
    MemoryImage image;
    image.setBytes(bytes);
    return image;
}

MemoryImage freshImage()
{
    MemoryImage image;
    image.InitImage();
    return image;
}

QByteArray freshFile()
{
    return *DF::Encode(freshImage());
}

// Files named like a staging file, anywhere the program might have put one.
QStringList stagingFilesIn(const QString &folder)
{
    QStringList found;
    QDirIterator it(folder, {QStringLiteral("tempzunk.dat")}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        found.append(it.next());
    return found;
}

// In the hostile file rows: the bytes must be refused, either way.
constexpr DF::ReadStatus AnyRejection = DF::ReadStatus::Ok;

} // namespace

class TestDataFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { test::initTestProcess(); }
    void init() { m_fixture = std::make_unique<test::Fixture>(); }
    void cleanup() { m_fixture.reset(); }

    void packPass_data();
    void packPass();
    void unpackPass_data();
    void unpackPass();
    void unpackRejects_data();
    void unpackRejects();

    void freshImageFile();
    void countByteZeroIsThePlainContainer();
    void rejectedPassLeavesDataUnchanged();
    void tooManyPassesIsAFailure();
    void roundTrip_data();
    void roundTrip();

    void hostileFiles_data();
    void hostileFiles();
    void damagedFilesNeverCrash();
    void readFailures();

    void writeReadsBack();
    void writeFailureKeepsPreviousFile_data();
    void writeFailureKeepsPreviousFile();

private:
    std::unique_ptr<test::Fixture> m_fixture;
};

void TestDataFile::packPass_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QByteArray>("pass"); // empty: the pass is not kept

    QTest::newRow("run of M fills whole groups") << repeated(21, 0xAA) << hex("000007" "AA" "000015" "7F7F7F");
    QTest::newRow("group mixing M and data")
        << hex("AA01AA01AA01AA" "AAAAAAAAAAAAAA") << hex("000006" "AA" "00000B" "557F" "010101");
    QTest::newRow("bytes after the last M stay data")
        << (repeated(14, 0xAA) + hex("010203")) << hex("000006" "AA" "00000E" "7F7F" "010203");
    QTest::newRow("last M ends a partial group")
        << (repeated(8, 0xAA) + hex("0102")) << hex("000006" "AA" "000008" "7F40" "0102");
    // Equal counts: the higher value is eliminated. The result is one byte
    // longer than the input, which still keeps the pass.
    QTest::newRow("tie goes to higher value, one byte longer kept")
        << (repeated(8, 0x01) + repeated(8, 0x02)) << hex("000006" "02" "000008" "817F" "0101010101010101");
    QTest::newRow("two bytes longer is rejected") << (repeated(7, 0x01) + repeated(7, 0x02)) << QByteArray();
    QTest::newRow("single byte is rejected") << hex("41") << QByteArray();
    QTest::newRow("empty input is rejected") << QByteArray() << QByteArray();
    QTest::newRow("no repeated value is rejected") << ascending(255) << QByteArray();

    // Runs: 134 data bytes are one 0xFF control byte without an M; 133 data
    // bytes followed by an M are 0xFE.
    QTest::newRow("134 data bytes coded FF without M")
        << (repeated(21, 0xEE) + ascending(134) + repeated(1, 0xEE))
        << (hex("000009" "EE" "000016" "7F7F7F" "FF" "40") + ascending(134));
    QTest::newRow("133 data bytes then M coded FE")
        << (repeated(21, 0xEE) + ascending(133) + repeated(1, 0xEE))
        << (hex("000008" "EE" "000016" "7F7F7F" "FE") + ascending(133));
    QTest::newRow("7 data bytes then M coded 80")
        << (repeated(14, 0xEE) + ascending(7) + repeated(1, 0xEE))
        << (hex("000007" "EE" "00000F" "7F7F" "80") + ascending(7));

    // 1100 eliminated bytes keep a pass even though it makes the data longer.
    QByteArray spread;
    for (int i = 0; i < 1100; ++i)
        spread += hex("EE") + ascending(8);
    const std::optional<QByteArray> spreadPass = DF::PackPass(spread);
    QVERIFY(spreadPass && spreadPass->size() > spread.size() + 1);
    QTest::newRow("1100 M kept though longer") << spread << *spreadPass;
    QByteArray spreadShort = spread.sliced(9); // 1099 M
    QTest::newRow("1099 M rejected when longer") << spreadShort << QByteArray();
}

void TestDataFile::packPass()
{
    QFETCH(QByteArray, input);
    QFETCH(QByteArray, pass);

    const std::optional<QByteArray> packed = DF::PackPass(input);
    if (pass.isEmpty()) {
        QVERIFY(!packed);
        return;
    }
    QVERIFY(packed);
    QCOMPARE(packed->toHex(), pass.toHex());
    // Every kept pass unpacks to its input.
    const std::optional<QByteArray> unpacked = DF::UnpackPass(*packed);
    QVERIFY(unpacked);
    QCOMPARE(unpacked->toHex(), input.toHex());
}

void TestDataFile::unpackPass_data()
{
    QTest::addColumn<QByteArray>("pass");
    QTest::addColumn<QByteArray>("output");

    QTest::newRow("stops inserting after C inside a group")
        << hex("000005" "AA" "000002" "7F" "0102") << hex("AAAA0102");
    QTest::newRow("stops after C, rest of data copied")
        << hex("000005" "AA" "000001" "20" "01020304") << hex("01AA020304");
    QTest::newRow("C zero copies the data") << hex("000004" "AA" "000000" "010203") << hex("010203");
    QTest::newRow("zero group is seven data bytes")
        << hex("000006" "AA" "000001" "00" "40" "0102030405060708") << hex("01020304050607AA08");
    QTest::newRow("run 80 is seven data bytes then M")
        << hex("000005" "AA" "000001" "80" "01020304050607") << hex("01020304050607AA");
    QTest::newRow("run FF is 134 data bytes without M")
        << (hex("000006" "AA" "000001" "FF" "40") + ascending(134)) << (ascending(134) + hex("AA"));
}

void TestDataFile::unpackPass()
{
    QFETCH(QByteArray, pass);
    QFETCH(QByteArray, output);

    const std::optional<QByteArray> unpacked = DF::UnpackPass(pass);
    QVERIFY(unpacked);
    QCOMPARE(unpacked->toHex(), output.toHex());
}

void TestDataFile::unpackRejects_data()
{
    QTest::addColumn<QByteArray>("pass");

    QTest::newRow("empty") << QByteArray();
    QTest::newRow("shorter than the pass header") << hex("000005AA00");
    QTest::newRow("P below four") << hex("000003" "AA" "000000");
    QTest::newRow("P beyond the end") << hex("FFFFFF" "AA" "000001" "80");
    QTest::newRow("C more than the control bytes hold") << hex("000005" "AA" "000008" "7F" "01");
    QTest::newRow("huge C") << hex("000005" "AA" "FFFFFF" "7F" "01");
    QTest::newRow("run longer than the data") << hex("000005" "AA" "000001" "80" "0102");
    QTest::newRow("group longer than the data") << hex("000005" "AA" "000001" "01" "01");
    QTest::newRow("control bytes end before C") << hex("000005" "AA" "000005" "40");
    QTest::newRow("control bytes left over") << hex("000006" "AA" "000001" "4040");

    // A pass that is consistent but would unpack to more than a megabyte.
    const int controlBytes = 200000;
    QByteArray bomb = threeBytes(4 + controlBytes) + hex("AA") + threeBytes(controlBytes * 7)
        + repeated(controlBytes, 0x7F);
    QTest::newRow("unpacks to megabytes") << bomb;
}

void TestDataFile::unpackRejects()
{
    QFETCH(QByteArray, pass);
    QVERIFY(!DF::UnpackPass(pass));
}

void TestDataFile::freshImageFile()
{
    const QByteArray container = DF::Container(freshImage());
    QCOMPARE(container.size(), DF::ContainerSize);
    QVERIFY(container.startsWith("PDZUNK"));
    QCOMPARE(container.mid(6, 10), repeated(10, 0xFF));
    QCOMPARE(container.mid(16 + 0x0C80, 4).toHex(), QByteArray("13602500"));

    const std::optional<QByteArray> firstPass = DF::PackPass(container);
    QVERIFY(firstPass);
    QCOMPARE(std::uint8_t(firstPass->at(3)), std::uint8_t(0xFF));
    QCOMPARE(readThree(*firstPass, 4), qsizetype(16299));

    const QByteArray file = freshFile();
    QCOMPARE(file.size(), 165);
    QCOMPARE(int(std::uint8_t(file.back())), 6);

    const DF::ReadResult read = DF::Decode(file);
    QCOMPARE(read.status, DF::ReadStatus::Ok);
    QCOMPARE(read.container, container);
    QCOMPARE(read.image, freshImage().bytes());
}

void TestDataFile::countByteZeroIsThePlainContainer()
{
    MemoryImage image = freshImage();
    image.WriteByte(0x1234, 0x5A);
    const QByteArray plain = DF::Container(image) + '\0';

    const std::optional<QByteArray> unpacked = DF::UnpackData(plain);
    QVERIFY(unpacked);
    QCOMPARE(*unpacked, DF::Container(image));
    const DF::ReadResult read = DF::Decode(plain);
    QCOMPARE(read.status, DF::ReadStatus::Ok);
    QCOMPARE(read.image, image.bytes());
}

void TestDataFile::rejectedPassLeavesDataUnchanged()
{
    // The first pass on this input would make it two bytes longer.
    const QByteArray input = repeated(7, 0x01) + repeated(7, 0x02);
    const std::optional<QByteArray> packed = DF::PackData(input);
    QVERIFY(packed);
    QCOMPARE(packed->toHex(), (input + '\0').toHex());

    // A later rejected pass leaves the result of the kept ones.
    const QByteArray runs = repeated(21, 0xAA);
    const std::optional<QByteArray> twice = DF::PackData(runs);
    QVERIFY(twice);
    const std::optional<QByteArray> once = DF::PackPass(runs);
    QVERIFY(once);
    QVERIFY(!DF::PackPass(*once));
    QCOMPARE(twice->toHex(), (*once + '\1').toHex());
}

void TestDataFile::tooManyPassesIsAFailure()
{
    // Passes that eliminate 1100 or more bytes are kept even when they grow
    // the data. In 400 000 random bytes every value occurs about 1560 times,
    // and each pass leaves as many run control bytes again, so passes are
    // kept without end and the count would pass 255.
    QRandomGenerator random(7);
    const QByteArray input = randomBytes(random, 400000);
    int kept = 0;
    QByteArray data = input;
    while (kept <= DF::MaxPasses) {
        std::optional<QByteArray> pass = DF::PackPass(data);
        if (!pass)
            break;
        data = *pass;
        ++kept;
    }
    QVERIFY2(kept > DF::MaxPasses, "the input no longer needs more than 255 passes");
    QVERIFY(!DF::PackData(input));
}

void TestDataFile::roundTrip_data()
{
    QTest::addColumn<QByteArray>("imageBytes");

    for (quint32 seed : {1u, 2u, 3u, 4u}) {
        QRandomGenerator random(seed);
        QTest::addRow("random bytes, seed %u", seed) << randomBytes(random, MemoryImage::Size);
    }
    for (quint32 seed : {5u, 6u}) {
        QRandomGenerator random(seed);
        QByteArray bytes = freshImage().bytes();
        for (int i = 0; i < 300; ++i)
            bytes[random.bounded(MemoryImage::Size)] = static_cast<char>(random.bounded(256));
        QTest::addRow("fresh image with scattered changes, seed %u", seed) << bytes;
    }
    for (quint32 seed : {7u, 8u, 9u}) {
        QRandomGenerator random(seed);
        QByteArray bytes;
        while (bytes.size() < MemoryImage::Size) {
            const int run = random.bounded(1, 400);
            bytes += repeated(run, std::uint8_t(random.bounded(4) == 0 ? 0xFF : random.bounded(256)));
        }
        bytes.truncate(MemoryImage::Size);
        QTest::addRow("long runs, seed %u", seed) << bytes;
    }
    QTest::newRow("all erased") << repeated(MemoryImage::Size, 0xFF);
    QTest::newRow("all zero") << repeated(MemoryImage::Size, 0x00);
    QByteArray alternating;
    for (int i = 0; i < MemoryImage::Size; ++i)
        alternating.append(static_cast<char>(i % 2 ? 0x55 : 0xAA));
    QTest::newRow("alternating") << alternating;
    QByteArray ramp;
    for (int i = 0; i < MemoryImage::Size; ++i)
        ramp.append(static_cast<char>(i % 256));
    QTest::newRow("every value equally often") << ramp;
    QByteArray runsOf134;
    for (int i = 0; runsOf134.size() < MemoryImage::Size; ++i)
        runsOf134 += ascending(134) + (i % 2 ? repeated(1, 0xFF) : QByteArray());
    runsOf134.truncate(MemoryImage::Size);
    QTest::newRow("runs of exactly 134 and 133") << runsOf134;
}

void TestDataFile::roundTrip()
{
    QFETCH(QByteArray, imageBytes);
    const MemoryImage image = imageOf(imageBytes);

    const std::optional<QByteArray> file = DF::Encode(image);
    QVERIFY(file);
    const DF::ReadResult read = DF::Decode(*file);
    QCOMPARE(read.status, DF::ReadStatus::Ok);
    QVERIFY(read.image == imageBytes);
    QCOMPARE(read.container, DF::Container(image));

    // Every kept pass on the way unpacks to its input.
    QByteArray data = DF::Container(image);
    int passes = 0;
    while (std::optional<QByteArray> pass = DF::PackPass(data)) {
        const std::optional<QByteArray> back = DF::UnpackPass(*pass);
        QVERIFY(back && *back == data);
        data = *pass;
        ++passes;
    }
    QCOMPARE(int(std::uint8_t(file->back())), passes);
}

void TestDataFile::hostileFiles_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<DF::ReadStatus>("status");

    const QByteArray fresh = freshFile();
    auto patched = [&fresh](int offset, const QByteArray &bytes) {
        QByteArray file = fresh;
        file.replace(offset, bytes.size(), bytes);
        return file;
    };
    const int last = int(fresh.size()) - 1;

    QTest::newRow("empty file") << QByteArray() << DF::ReadStatus::Damaged;
    QTest::newRow("count byte only") << hex("00") << DF::ReadStatus::WrongType;
    QTest::newRow("truncated by one byte") << (fresh.first(last - 1) + fresh.back()) << AnyRejection;
    QTest::newRow("truncated to half") << (fresh.first(last / 2) + fresh.back()) << AnyRejection;
    QTest::newRow("truncated to the header") << (fresh.first(7) + fresh.back()) << DF::ReadStatus::Damaged;
    QTest::newRow("count one too high") << patched(last, hex("07")) << DF::ReadStatus::Damaged;
    QTest::newRow("count 255") << patched(last, hex("FF")) << DF::ReadStatus::Damaged;
    QTest::newRow("count one too low") << patched(last, hex("05")) << DF::ReadStatus::WrongType;
    QTest::newRow("count zero") << patched(last, hex("00")) << DF::ReadStatus::WrongType;
    QTest::newRow("huge P") << patched(0, hex("FFFFFF")) << DF::ReadStatus::Damaged;
    QTest::newRow("huge C") << patched(4, hex("FFFFFF")) << DF::ReadStatus::Damaged;
    QTest::newRow("C off by one") << patched(6, QByteArray(1, char(fresh[6] + 1))) << DF::ReadStatus::Damaged;

    QByteArray wrongMarker = DF::Container(freshImage());
    wrongMarker.replace(0, 6, "PDZUNX");
    QTest::newRow("wrong marker") << *DF::PackData(wrongMarker) << DF::ReadStatus::WrongType;
    QTest::newRow("container one byte short")
        << *DF::PackData(DF::Container(freshImage()).chopped(1)) << DF::ReadStatus::WrongType;
    QTest::newRow("container one byte long")
        << *DF::PackData(DF::Container(freshImage()) + 'x') << DF::ReadStatus::WrongType;
    QTest::newRow("text file") << QByteArray("Channel 1 145.500\nChannel 2 146.000\n") << DF::ReadStatus::Damaged;
    QTest::newRow("two megabytes") << repeated(2 << 20, 0x00) << DF::ReadStatus::WrongType;
}

void TestDataFile::hostileFiles()
{
    QFETCH(QByteArray, file);
    QFETCH(DF::ReadStatus, status);

    const DF::ReadResult decoded = DF::Decode(file);
    if (status == AnyRejection)
        QVERIFY(decoded.status == DF::ReadStatus::Damaged || decoded.status == DF::ReadStatus::WrongType);
    else
        QCOMPARE(decoded.status, status);
    QVERIFY(decoded.image.isEmpty());

    // The same through the file system.
    const QString path = m_fixture->path(QStringLiteral("hostile.tw"));
    QVERIFY(test::writeFile(path, file));
    QCOMPARE(DF::Read(path).status, decoded.status);
}

void TestDataFile::damagedFilesNeverCrash()
{
    QRandomGenerator random(42);

    // Garbage of many sizes, a megabyte of it included.
    for (int size : {1, 2, 7, 8, 100, 165, 16401, 100000, 1 << 20}) {
        for (int round = 0; round < 5; ++round) {
            const DF::ReadResult read = DF::Decode(randomBytes(random, size));
            QVERIFY2(read.status == DF::ReadStatus::Damaged || read.status == DF::ReadStatus::WrongType,
                     qPrintable(QStringLiteral("size %1 round %2").arg(size).arg(round)));
        }
    }

    // Valid files with a few bytes changed: whatever comes out is either a
    // rejection or a complete image.
    const QByteArray file = *DF::Encode(imageOf(randomBytes(random, MemoryImage::Size / 4)
                                                + repeated(MemoryImage::Size * 3 / 4, 0xFF)));
    for (int round = 0; round < 2000; ++round) {
        QByteArray damaged = file;
        const int changes = random.bounded(1, 4);
        for (int i = 0; i < changes; ++i)
            damaged[random.bounded(damaged.size())] = static_cast<char>(random.bounded(256));
        const DF::ReadResult read = DF::Decode(damaged);
        if (read.status == DF::ReadStatus::Ok)
            QCOMPARE(read.image.size(), MemoryImage::Size);
        else
            QVERIFY(read.status == DF::ReadStatus::Damaged || read.status == DF::ReadStatus::WrongType);
    }
}

void TestDataFile::readFailures()
{
    const DF::ReadResult missing = DF::Read(m_fixture->path(QStringLiteral("missing.tw")));
    QCOMPARE(missing.status, DF::ReadStatus::CannotOpen);
    QVERIFY(!missing.errorString.isEmpty());

    const DF::ReadResult folder = DF::Read(m_fixture->folder());
    QCOMPARE(folder.status, DF::ReadStatus::CannotOpen);
    QVERIFY(!folder.errorString.isEmpty());
}

void TestDataFile::writeReadsBack()
{
    QRandomGenerator random(11);
    const MemoryImage image = imageOf(randomBytes(random, MemoryImage::Size));
    const QString path = m_fixture->path(QStringLiteral("radio.tw"));
    // A longer previous file is replaced completely.
    QVERIFY(test::writeFile(path, repeated(100000, 0x33)));

    QString errorString;
    QVERIFY(DF::Write(path, image, &errorString));
    QCOMPARE(test::readFile(path), *DF::Encode(image));
    const DF::ReadResult read = DF::Read(path);
    QCOMPARE(read.status, DF::ReadStatus::Ok);
    QCOMPARE(read.image, image.bytes());

    // Nothing but the data file is left in the folder, and no staging file
    // anywhere the program works.
    QCOMPARE(QDir(m_fixture->folder()).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("radio.tw")});
    QVERIFY(stagingFilesIn(m_fixture->folder()).isEmpty());
    QVERIFY(!QFile::exists(QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("tempzunk.dat"))));
    QVERIFY(!QFile::exists(QDir::current().filePath(QStringLiteral("tempzunk.dat"))));
}

void TestDataFile::writeFailureKeepsPreviousFile_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("createsParentFile");

    QTest::newRow("missing folder") << QStringLiteral("no such folder/radio.tw") << false;
    // chmod does not stop root; a regular file as the folder stops everyone.
    QTest::newRow("parent is a regular file") << QStringLiteral("plain/radio.tw") << true;
    QTest::newRow("existing file in proc") << QStringLiteral("/proc/version") << false;
    QTest::newRow("new file in proc") << QStringLiteral("/proc/radio.tw") << false;
}

void TestDataFile::writeFailureKeepsPreviousFile()
{
    QFETCH(QString, path);
    QFETCH(bool, createsParentFile);

    const QString target = QDir::isAbsolutePath(path) ? path : m_fixture->path(path);
    if (createsParentFile)
        QVERIFY(test::writeFile(m_fixture->path(QStringLiteral("plain")), "previous content"));
    const QStringList before = QDir(m_fixture->folder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    const bool existed = QFile::exists(target);
    const QByteArray previous = test::readFile(target);

    QString errorString;
    QVERIFY(!DF::Write(target, freshImage(), &errorString));
    QVERIFY(!errorString.isEmpty());

    QCOMPARE(QFile::exists(target), existed);
    QCOMPARE(test::readFile(target), previous);
    if (createsParentFile)
        QCOMPARE(test::readFile(m_fixture->path(QStringLiteral("plain"))), QByteArray("previous content"));
    QCOMPARE(QDir(m_fixture->folder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot), before);
    QVERIFY(stagingFilesIn(m_fixture->folder()).isEmpty());
}

QTEST_GUILESS_MAIN(TestDataFile)
#include "TestDataFile.moc"
