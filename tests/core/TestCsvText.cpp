// Comma-separated text: records split as spreadsheets write them, fields
// quoted only where they must be, and whole files read within their cap.

#include "TestSuite.h"

#include "core/CsvText.h"

#include <QTest>

using namespace wr;
using namespace Qt::StringLiterals;

namespace {

// "line:field|field" for each record.
QStringList shown(const QList<csv::Record> &records)
{
    QStringList lines;
    for (const csv::Record &record : records)
        lines << u"%1:%2"_s.arg(record.line).arg(record.fields.join(u'|'));
    return lines;
}

} // namespace

class TestCsvText : public test::Suite
{
    Q_OBJECT

private Q_SLOTS:
    void records_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("separator");
        QTest::addColumn<QStringList>("records");
        QTest::newRow("plain, no last line end") << u"a,b,c\nd,e"_s << u","_s << QStringList{u"1:a|b|c"_s, u"2:d|e"_s};
        QTest::newRow("empty fields at either end") << u",x,\n"_s << u","_s << QStringList{u"1:|x|"_s};
        QTest::newRow("quoted separator and doubled quote")
            << u"\"a,b\",\"say \"\"hi\"\"\"\n"_s << u","_s << QStringList{u"1:a,b|say \"hi\""_s};
        QTest::newRow("a quote inside a field is kept") << u"5\"x,y\n"_s << u","_s << QStringList{u"1:5\"x|y"_s};
        QTest::newRow("line breaks inside quotes count lines")
            << u"\"one\r\ntwo\",x\r\n\"a\rb\nc\",y\r\nz"_s << u","_s
            << QStringList{u"1:one\ntwo|x"_s, u"3:a\rb\nc|y"_s, u"6:z"_s};
        QTest::newRow("comments and blank lines dropped, lone CR ends a line")
            << u"# head\n\n  \ra;b\r# x,y\r\nc;d"_s << u";"_s << QStringList{u"4:a|b"_s, u"6:c|d"_s};
        QTest::newRow("a # inside a record is text") << u"a\t#b\n"_s << u"\t"_s << QStringList{u"1:a|#b"_s};
    }

    void records()
    {
        QFETCH(QString, text);
        QFETCH(QString, separator);
        QTEST(shown(csv::records(text, separator.front())), "records");
    }

    // Written lines read back as the fields they were made of.
    void lineQuotesOnlyWhereNeeded_data()
    {
        QTest::addColumn<QStringList>("fields");
        QTest::addColumn<QString>("line");
        QTest::newRow("nothing to quote") << QStringList{u"1"_s, QString(), u"145.500000"_s} << u"1,,145.500000"_s;
        QTest::newRow("separator") << QStringList{u"Club, North"_s, u"x"_s} << u"\"Club, North\",x"_s;
        QTest::newRow("quote") << QStringList{u"5\" mast"_s} << u"\"5\"\" mast\""_s;
        QTest::newRow("line breaks") << QStringList{u"a\nb"_s, u"c\rd"_s} << u"\"a\nb\",\"c\rd\""_s;
    }

    void lineQuotesOnlyWhereNeeded()
    {
        QFETCH(QStringList, fields);
        QFETCH(QString, line);
        QCOMPARE(csv::line(fields, u','), line);
        QCOMPARE(csv::records(line, u',').value(0).fields, fields);
    }

    void readFile_data()
    {
        QTest::addColumn<QByteArray>("bytes"); // "-": no such file
        QTest::addColumn<int>("problem");
        QTest::addColumn<QString>("text");
        QTest::newRow("byte-order mark dropped")
            << QByteArray("\xEF\xBB\xBF" "a,\xC3\xA9\r\n") << int(csv::File::Problem::None) << u"a,é\r\n"_s;
        QTest::newRow("as large as allowed") << QByteArray(csv::MaxFileSize, 'x') << int(csv::File::Problem::None)
                                             << QString(csv::MaxFileSize, u'x');
        QTest::newRow("one byte more") << QByteArray(csv::MaxFileSize + 1, 'x') << int(csv::File::Problem::TooLarge)
                                       << QString();
        QTest::newRow("missing") << QByteArray("-") << int(csv::File::Problem::Unreadable) << QString();
    }

    void readFile()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(int, problem);
        const QString path = filePath(u"list.csv"_s);
        if (bytes != "-")
            QVERIFY(test::writeFile(path, bytes));
        const csv::File file = csv::readFile(path);
        QCOMPARE(int(file.problem), problem);
        QTEST(file.text, "text");
        QCOMPARE(file.error.isEmpty(), problem != int(csv::File::Problem::Unreadable));
    }
};

QTEST_GUILESS_MAIN(TestCsvText)
#include "TestCsvText.moc"
