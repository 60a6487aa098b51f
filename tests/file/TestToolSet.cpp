// wrpd6t-tool set, run as a user runs it: what it prints, its exit status,
// and the channels of the file afterwards, or the file untouched.

#include "TestSuite.h"
#include "Programs.h"

#include "channels/ChannelRecord.h"
#include "core/BandLimits.h"
#include "file/DataFile.h"

#include <QTest>

using namespace wr;
using namespace Qt::Literals::StringLiterals;

namespace {

// The channels of a club's file, as `wrpd6t-tool info` lists them.
const QStringList ClubChannels{
    u"146.00000|146.00000|88.5|88.5|High|Wide|On|Off"_s,
    u"145.00000|145.60000|D023N|D754I|Low|Narrow|Off|Carrier"_s,
    u"147.00000||67.0||Low|Wide|On|Off"_s,
};

// Channels 1 to 4 of a data file, "|"-joined cells each, "" when empty.
QStringList channelsOf(const QString &path)
{
    const DataFile::ReadResult file = DataFile::Read(path);
    MemoryImage image = test::imageOf(file.image);
    QStringList channels;
    for (int channel = 1; channel <= 4; ++channel) {
        const ChannelTexts texts = ReadChannelTexts(image, channel, English);
        QStringList cells;
        for (int column = ColRx; column <= ColBcl; ++column)
            cells << texts.cell(column);
        channels << (texts.isEmpty() ? QString() : cells.join(u'|'));
    }
    return channels;
}

} // namespace

class TestToolSet : public test::Suite
{
    Q_OBJECT

    void setUp() override
    {
        MemoryImage image = test::freshImage();
        WriteDefaultBandLimits(image);
        for (int channel = 1; channel <= ClubChannels.size(); ++channel) {
            const QStringList cells = ClubChannels.at(channel - 1).split(u'|');
            ChannelTexts texts;
            for (int column = ColRx; column <= ColBcl; ++column)
                texts.cell(column) = cells.at(column - ColRx);
            CreateChannel(image, channel);
            SaveChannel(image, channel, texts);
        }
        QString error;
        QVERIFY2(DataFile::Write(filePath(u"club.tw"_s), image, &error), qPrintable(error));
    }

private Q_SLOTS:
    void set_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("printed"); // standard output, or for a refusal what standard error begins with
        QTest::addColumn<QStringList>("changed"); // channel 1-4 -> its cells afterwards; none for an untouched file

        QTest::newRow("a word in any case, for the channels in use")
            << QStringList{u"power=low"_s} << 0 << u"1: power High -> Low\n"_s
            << QStringList{u"1=146.00000|146.00000|88.5|88.5|Low|Wide|On|Off"_s};
        QTest::newRow("rx: Tx follows where equal, an empty channel listed is created")
            << QStringList{u"--channels"_s, u"2-4"_s, u"RX=446.00625"_s} << 0
            << u"2: rx 145.00000 -> 446.00625\n3: rx 147.00000 -> 446.00625\n4: new channel: rx 446.00625, "
               "tx 446.00625, decode None, encode None, power High, bandwidth Wide, scanadd On, bcl Off\n"_s
            << QStringList{u"2=446.00625|145.60000|D023N|D754I|Low|Narrow|Off|Carrier"_s,
                           u"3=446.00625||67.0||Low|Wide|On|Off"_s,
                           u"4=446.00625|446.00625|None|None|High|Wide|On|Off"_s};
        QTest::newRow("values moved onto the raster or written out are said; a side the channel lacks is left")
            << QStringList{u"-c"_s, u"1-3"_s, u"tx=145.603"_s, u"encode=d23i"_s} << 0
            << u"tx=145.603: moved onto the channel raster: 145.60000\nencode=d23i: taken as D023I\n"
               "1: tx 146.00000 -> 145.60000, encode 88.5 -> D023I\n2: encode D754I -> D023I\n"
               "3: tx (empty) -> 145.60000, encode (empty) -> D023I\n"_s
            << QStringList{u"1=146.00000|145.60000|88.5|D023I|High|Wide|On|Off"_s,
                           u"2=145.00000|145.60000|D023N|D023I|Low|Narrow|Off|Carrier"_s,
                           u"3=147.00000|145.60000|67.0|D023I|Low|Wide|On|Off"_s};
        QTest::newRow("nothing to change") << QStringList{u"scanadd=On"_s, u"-c"_s, u"1"_s} << 0 << u"no change\n"_s
                                           << QStringList{};

        // Refused: the file stays as it was.
        const struct
        {
            const char *name;
            QStringList arguments;
            QString message;
        } refused[]{
            {"rx outside the bands", {u"rx=30"_s}, u"wrpd6t-tool set: rx=30: outside the receive bands (136-174 and 400-490"_s},
            {"tx outside the bands", {u"tx=500"_s}, u"wrpd6t-tool set: tx=500: outside the transmit bands"_s},
            {"a word the column lacks", {u"power=low"_s, u"bcl=busy"_s}, u"wrpd6t-tool set: bcl=busy: not one of Off, Carrier, Opt.Signal"_s},
            {"a DCS code with a digit above 7", {u"decode=D8"_s}, u"wrpd6t-tool set: decode=D8: not a tone"_s},
            {"a CTCSS tone out of range", {u"decode=300"_s}, u"wrpd6t-tool set: decode=300: not a tone"_s},
            {"no receive frequency", {u"rx="_s}, u"wrpd6t-tool set: rx=: a receive frequency is needed"_s},
            {"an unknown column", {u"squelch=3"_s}, u"wrpd6t-tool set: squelch=3: not COLUMN=VALUE"_s},
            {"a column twice", {u"power=low"_s, u"Power=high"_s}, u"wrpd6t-tool set: power is given twice"_s},
            {"channels outside 1-128", {u"-c"_s, u"0-3"_s, u"power=low"_s}, u"wrpd6t-tool set: --channels must"_s},
        };
        for (const auto &row : refused)
            QTest::newRow(row.name) << row.arguments << 2 << row.message << QStringList{};
    }

    void set()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, exitCode);
        QFETCH(QString, printed);
        QFETCH(QStringList, changed);
        const QString path = filePath(u"club.tw"_s);
        const QByteArray before = test::readFile(path);
        QStringList expected = channelsOf(path);
        for (const QString &channel : changed)
            expected[channel.section(u'=', 0, 0).toInt() - 1] = channel.section(u'=', 1);

        const test::Run run = test::runTool(QStringList{u"set"_s, path} + arguments, tempFolder());
        QCOMPARE(run.exitCode, exitCode);
        if (exitCode == 0) {
            QCOMPARE(run.out, printed);
            QCOMPARE(run.err, QString());
        } else {
            QVERIFY2(run.err.startsWith(printed), qPrintable(run.err));
            QCOMPARE(run.out, QString());
        }
        if (changed.isEmpty())
            QCOMPARE(test::readFile(path), before);
        QCOMPARE(channelsOf(path), expected);
    }
};

QTEST_MAIN(TestToolSet)
#include "TestToolSet.moc"
