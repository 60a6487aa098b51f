// The channel sheet as its reader gets it: the words poppler reads back from
// the PDF with where they stand, the fonts it embeds, the tool's sheet
// command and the print preview.

#include "Widgets.h"
#include "Programs.h"
#include "TestSuite.h"

#include "channels/ChannelRecord.h"
#include "core/SettingsStore.h"
#include "file/DataFile.h"
#include "features/FmRadio.h"
#include "features/SettingsReport.h"
#include "sheet/ChannelSheet.h"
#include "sheet/PdfTextMap.h"
#include "sheet/SheetLayout.h"
#include "sheet/SheetPreview.h"
#include "ui/MessageBox.h"

#include <QAction>
#include <QFileInfo>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include <memory>

using namespace wr;
using namespace Qt::StringLiterals;

namespace {

// A word poppler reads, with its box in points from the page's top left.
struct Word
{
    QString text;
    QRectF box;
};

// A page: its size, and its words in lines from the top, each left to right.
struct Page
{
    QSizeF size;
    QList<QList<Word>> lines;

    QString line(qsizetype index) const
    {
        QStringList words;
        for (const Word &word : lines.value(index))
            words.append(word.text);
        return words.join(u' ');
    }
};

QString output(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    return process.waitForFinished(30000) ? QString::fromUtf8(process.readAllStandardOutput()) : QString();
}

QList<Page> readPdf(const QString &path)
{
    static const QRegularExpression tag(uR"re(<page width="([\d.]+)" height="([\d.]+)">|)re"
                                        uR"re(<word xMin="([\d.]+)" yMin="([\d.]+)" xMax="([\d.]+)" )re"
                                        uR"re(yMax="([\d.]+)">([^<]*)</word>)re"_s);
    QList<Page> pages;
    QList<Word> words;
    const auto endPage = [&pages, &words] {
        std::sort(words.begin(), words.end(), [](const Word &a, const Word &b) { return a.box.top() < b.box.top(); });
        for (const Word &word : std::as_const(words)) {
            QList<QList<Word>> &lines = pages.back().lines;
            if (lines.isEmpty() || word.box.top() - lines.back().front().box.top() > 1.5)
                lines.append(QList<Word>());
            lines.back().append(word);
        }
        for (QList<Word> &line : pages.back().lines)
            std::sort(line.begin(), line.end(), [](const Word &a, const Word &b) { return a.box.left() < b.box.left(); });
        words.clear();
    };
    for (const QRegularExpressionMatch &match : tag.globalMatch(output(u"pdftotext"_s, {u"-bbox"_s, path, u"-"_s}))) {
        const auto number = [&match](int index) { return match.captured(index).toDouble(); };
        if (match.capturedLength(1) > 0) {
            if (!pages.isEmpty())
                endPage();
            pages.append({QSizeF(number(1), number(2)), {}});
        } else if (!pages.isEmpty()) {
            QString text = match.captured(7);
            text.replace(u"&lt;"_s, u"<"_s).replace(u"&gt;"_s, u">"_s).replace(u"&quot;"_s, u"\""_s);
            words.append({text.replace(u"&amp;"_s, u"&"_s), QRectF(QPointF(number(3), number(4)),
                                                                   QPointF(number(5), number(6)))});
        }
    }
    if (!pages.isEmpty())
        endPage();
    return pages;
}

// The channel rows of a page: lines that start with a channel number.
QList<qsizetype> channelRows(const Page &page)
{
    QList<qsizetype> rows;
    for (qsizetype line = 0; line < page.lines.size(); ++line) {
        bool number = false;
        page.lines[line].front().text.toInt(&number);
        if (number)
            rows.append(line);
    }
    return rows;
}

// 128 channels, every sixteenth empty: receive from 430.02500 MHz in 25 kHz
// steps, a transmit side on three of four, decode 67.0 Hz, encode D023N;
// power, width, scan add and busy lock varied. FM channel 2 on 98.10 MHz.
MemoryImage sheetImage()
{
    MemoryImage image = test::freshImage();
    for (int channel = 1; channel <= ChannelRecord::ChannelCount; ++channel) {
        if (channel % 16 == 0)
            continue;
        const QByteArray rx = QByteArray::number(43'000'000 + channel * 2'500);
        const QByteArray flags = QByteArray::number((channel % 2 ? 0x44 : 0x08) | channel % 3, 16).rightJustified(2, '0');
        image.setRow(channel - 1, QByteArray::fromHex(rx + (channel % 4 ? rx : "FFFFFFFF") + "7006" "2380" "0000" + flags + "00"));
        ChannelRecord(image, channel).setEmptyBit(false);
    }
    fm::Texts radio = fm::load(image);
    radio.channels[2] = u"98.10"_s;
    fm::save(image, radio);
    return image;
}

// Sheets of the fixture's image: printed at 2026-11-23 14:05.
QByteArray sheetOf(Language language, const QString &file, const QList<int> &channels, QPageSize::PageSizeId paper)
{
    const QDateTime printed(QDate(2026, 11, 23), QTime(14, 5));
    return sheet::sheetPdf(sheet::sheetContent(sheetImage(), language, file, printed, channels),
                           sheet::sheetPageLayout(paper));
}

bool hasRadical(const QString &text)
{
    return std::any_of(text.begin(), text.end(), [](QChar c) { return c.unicode() >= 0x2E80 && c.unicode() <= 0x2FDF; });
}

} // namespace

class TestSheet : public test::Suite
{
    Q_OBJECT

private Q_SLOTS:
    void sheetText_data()
    {
        QTest::addColumn<int>("language");
        QTest::addColumn<int>("paper");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QList<int>>("channels");
        QTest::addColumn<QStringList>("heading");
        QTest::addColumn<QString>("pageNumber");
        const QString date = u"2026-11-23 14:05"_s;
        QTest::newRow("English, A4") << 0 << int(QPageSize::A4) << u"club.tw"_s << QList<int>{}
                                     << QStringList{u"WR-PD6T"_s, u"Channel Sheet"_s, u"File club.tw"_s,
                                                    u"Date "_s + date, u"Channels in use 120"_s}
                                     << u"Page %1 of %2"_s;
        QTest::newRow("Simplified Chinese, Letter, not saved")
            << 1 << int(QPageSize::Letter) << QString() << QList<int>{}
            << QStringList{u"WR-PD6T"_s, u"信道表"_s, u"文件 未保存"_s, u"日期 "_s + date, u"使用中的信道 120"_s}
            << u"第 %1 页，共 %2 页"_s;
        QTest::newRow("Traditional Chinese, A4, Chinese file name beyond U+FFFF")
            << 2 << int(QPageSize::A4) << u"山顶中继𠮟.tw"_s << QList<int>{}
            << QStringList{u"WR-PD6T"_s, u"信道表"_s, u"文件 山顶中继𠮟.tw"_s, u"日期 "_s + date, u"使用中的信道 120"_s}
            << u"第 %1 頁，共 %2 頁"_s;
        QTest::newRow("English, Letter, some channels, one empty")
            << 0 << int(QPageSize::Letter) << u"club.tw"_s << QList<int>{2, 3, 4, 16, 127}
            << QStringList{u"WR-PD6T"_s, u"Channel Sheet"_s, u"File club.tw"_s, u"Date "_s + date,
                           u"Channels in use 120"_s, u"Channels on this sheet 4"_s}
            << u"Page %1 of %2"_s;
    }

    void sheetText()
    {
        QFETCH(int, language);
        QFETCH(int, paper);
        QFETCH(QString, file);
        QFETCH(QList<int>, channels);
        QFETCH(QStringList, heading);
        QFETCH(QString, pageNumber);
        const QString path = filePath(u"sheet.pdf"_s);
        QVERIFY(test::writeFile(path, sheetOf(Language(language), file, channels, QPageSize::PageSizeId(paper))));
        const QList<Page> pages = readPdf(path);
        QVERIFY(!pages.isEmpty());
        QVERIFY(channels.isEmpty() == (pages.size() > 1)); // 120 rows take more than a page, 4 do not

        // The page, and everything on it inside the margins: the table fits the width, nothing runs off the foot.
        const QSizeF paperSize = QPageSize(QPageSize::PageSizeId(paper)).size(QPageSize::Point);
        const qreal margin = 15 / 25.4 * 72 - 1;
        for (const Page &page : pages) {
            QCOMPARE(page.size.toSize(), paperSize.toSize());
            const QRectF inside(QPointF(margin, margin), page.size - QSizeF(2 * margin, 2 * margin));
            for (const QList<Word> &line : page.lines) {
                for (const Word &word : line)
                    QVERIFY2(inside.contains(word.box), qPrintable(word.text));
            }
        }
        for (qsizetype line = 0; line < heading.size(); ++line)
            QCOMPARE(pages[0].line(line), heading[line]);

        // Every row in order, whole on one line of one page, below the captions
        // of the channel list, which each page with rows repeats.
        const MemoryImage image = sheetImage();
        QStringList expected;
        for (int channel = 1; channel <= ChannelRecord::ChannelCount; ++channel) {
            const ChannelTexts texts = ReadChannelTexts(image, channel, language);
            if (texts.isEmpty() || (!channels.isEmpty() && !channels.contains(channel)))
                continue;
            QStringList cells{QString::number(channel), texts.rx,    texts.tx,        texts.decode, texts.encode,
                              texts.power,              texts.bandwidth, texts.scanAdd, texts.bcl};
            cells.removeAll(QString());
            expected.append(cells.join(u' '));
        }
        QStringList captionWords;
        for (const Text &caption : ChannelColumnCaptions)
            captionWords += caption.in(language).split(u' ');
        std::sort(captionWords.begin(), captionWords.end());
        QStringList rows, everything;
        for (qsizetype number = 0; number < pages.size(); ++number) {
            const Page &page = pages[number];
            const QList<qsizetype> pageRows = channelRows(page);
            for (const qsizetype line : pageRows)
                rows.append(page.line(line));
            if (!pageRows.isEmpty()) {
                QStringList above;
                for (qsizetype line = pageRows.front() - 1; line >= 0 && above.size() < captionWords.size(); --line)
                    above = page.line(line).split(u' ') + above;
                std::sort(above.begin(), above.end());
                QCOMPARE(above, captionWords);
            }
            QVERIFY2(page.line(page.lines.size() - 1).endsWith(pageNumber.arg(number + 1).arg(pages.size())),
                     qPrintable(page.line(page.lines.size() - 1)));
            for (qsizetype line = 0; line < page.lines.size(); ++line)
                everything.append(u' ' + page.line(line) + u' ');
        }
        QCOMPARE(rows, expected);

        // The settings as info --settings lists them, and the FM channel.
        const QString all = everything.join(QString());
        for (const FieldLine &line : describeSettingFields(image, language))
            QVERIFY2(all.contains(u' ' + line.caption + u' ' + line.value + u' '), qPrintable(line.text()));
        QVERIFY(all.contains(fm::ChannelHeader.in(language) + u" 2 98.10 MHz"_s));
        // Text that searches as it reads: 高 and 页, never the radicals that
        // share their glyphs.
        QVERIFY2(!hasRadical(all), qPrintable(all));
        QCOMPARE(all.contains(u'高'), language != English);

        // The fonts are in the file, with their text maps.
        const QStringList fonts = output(u"pdffonts"_s, {path}).split(u'\n', Qt::SkipEmptyParts).mid(2);
        QVERIFY(!fonts.isEmpty());
        for (const QString &font : fonts) {
            const QStringList columns = font.split(u' ', Qt::SkipEmptyParts);
            QVERIFY2(columns.size() > 5 && columns.at(columns.size() - 5) == u"yes" && columns.at(columns.size() - 3) == u"yes",
                     qPrintable(font));
        }
    }

    void paginate_data()
    {
        // Blocks: a height, "t" before it for a channel row, "k" for a title
        // kept with the next block. Pages of 30 points, captions of 5.
        QTest::addColumn<QString>("blocks");
        QTest::addColumn<QList<int>>("pages");
        QTest::newRow("filled exactly") << u"10 10 10"_s << QList<int>{0, 0, 0};
        QTest::newRow("a row a little too tall goes over whole") << u"10 10 10.5"_s << QList<int>{0, 0, 1};
        QTest::newRow("captions on every page with rows") << u"t10 t10 t10 t10"_s << QList<int>{0, 0, 1, 1};
        QTest::newRow("captions after the heading count") << u"16 t10 t10"_s << QList<int>{0, 1, 1};
        QTest::newRow("a title goes with its first row") << u"t10 t10 k5 5"_s << QList<int>{0, 0, 1, 1};
        QTest::newRow("a block taller than a page alone") << u"10 40 10"_s << QList<int>{0, 1, 2};
    }

    void paginate()
    {
        QFETCH(QString, blocks);
        QList<sheet::Block> parsed;
        for (QString block : blocks.split(u' ')) {
            const bool row = block.startsWith(u't');
            const bool kept = block.startsWith(u'k');
            parsed.append({block.remove(0, row || kept ? 1 : 0).toDouble(), row, kept});
        }
        QTEST(sheet::paginate(parsed, 30, 5), "pages");
    }

    void textMap_data()
    {
        QTest::addColumn<QByteArray>("cmap");
        QTest::addColumn<QList<int>>("codes");
        QTest::addColumn<QString>("texts"); // one character a code
        QTest::newRow("single codes") << QByteArray("2 beginbfchar\n<0001> <0041>\n<0002> <9AD8>\nendbfchar\n")
                                      << QList<int>{1, 2} << u"A高"_s;
        QTest::newRow("range of listed texts")
            << QByteArray("1 beginbfrange\n<0003> <0005> [<0031> <2FBC> <0020> ]\nendbfrange\n") << QList<int>{3, 4, 5}
            << u"1⾼ "_s;
        QTest::newRow("range counting up, across blocks")
            << QByteArray("1 beginbfrange\n<0010> <0012> <0030>\nendbfrange\n1 beginbfchar\n<0100> <0078>\nendbfchar")
            << QList<int>{16, 17, 18, 256} << u"012x"_s;
    }

    void textMap()
    {
        QFETCH(QByteArray, cmap);
        QFETCH(QList<int>, codes);
        QFETCH(QString, texts);
        std::map<int, QString> expected;
        for (qsizetype i = 0; i < codes.size(); ++i)
            expected[codes[i]] = texts.at(i);
        QCOMPARE(sheet::readTextMap(cmap), expected);
        QCOMPARE(sheet::readTextMap(sheet::writeTextMap(expected)), expected);
    }

    void paper_data()
    {
        QTest::addColumn<QStringList>("environment");
        QTest::addColumn<int>("paper");
        QTest::newRow("LC_PAPER in the US") << QStringList{u"LC_PAPER=en_US.UTF-8"_s, u"LANG=en_GB.UTF-8"_s}
                                            << int(QPageSize::Letter);
        QTest::newRow("LC_PAPER before LC_ALL") << QStringList{u"LC_PAPER=de_DE.UTF-8"_s, u"LC_ALL=en_US.UTF-8"_s}
                                                << int(QPageSize::A4);
        QTest::newRow("LC_ALL in Canada") << QStringList{u"LC_PAPER="_s, u"LC_ALL=fr_CA@euro"_s, u"LANG=C"_s}
                                          << int(QPageSize::Letter);
        QTest::newRow("LANG in Britain") << QStringList{u"LANG=en_GB.UTF-8"_s} << int(QPageSize::A4);
        QTest::newRow("LC_ALL C before a US LANG") << QStringList{u"LC_ALL=C.UTF-8"_s, u"LANG=en_US.UTF-8"_s}
                                                   << int(QPageSize::A4);
    }

    void paper()
    {
        QFETCH(QStringList, environment);
        QProcessEnvironment variables;
        for (const QString &variable : environment)
            variables.insert(variable.section(u'=', 0, 0), variable.section(u'=', 1));
        QTEST(int(sheet::localePaper(variables)), "paper");
    }

    void tool_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QList<int>>("rows");
        QTest::newRow("some channels, Simplified Chinese, Letter")
            << QStringList{u"-l"_s, u"zh-CN"_s, u"--paper"_s, u"letter"_s, u"--channels"_s, u"10-11,3"_s, u"@/in.tw"_s}
            << 0 << QString() << QList<int>{3, 10, 11};
        QTest::newRow("damaged file") << QStringList{u"@/damaged.tw"_s} << 1 << u"Incorrect File Type."_s << QList<int>{};
        QTest::newRow("channel 0") << QStringList{u"-c"_s, u"0-3"_s, u"@/in.tw"_s} << 2 << u"--channels"_s << QList<int>{};
        QTest::newRow("range backwards") << QStringList{u"-c"_s, u"5-3"_s, u"@/in.tw"_s} << 2 << u"--channels"_s
                                         << QList<int>{};
        QTest::newRow("paper") << QStringList{u"-p"_s, u"a5"_s, u"@/in.tw"_s} << 2 << u"--paper"_s << QList<int>{};
        QTest::newRow("language") << QStringList{u"-l"_s, u"fr"_s, u"@/in.tw"_s} << 2 << u"--language"_s << QList<int>{};
    }

    void tool()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, exitCode);
        QFETCH(QString, message);
        QVERIFY(DataFile::Write(filePath(u"in.tw"_s), sheetImage(), nullptr));
        QVERIFY(test::writeFile(filePath(u"damaged.tw"_s), "PDZUNK damaged"));
        const QString out = filePath(u"out.pdf"_s);
        for (const QString &target : {out, filePath(u"missing/out.pdf"_s)}) {
            const test::Run run = test::runTool(QStringList{u"sheet"_s} + arguments + QStringList{target}, tempFolder());
            const QString &errors = run.err;
            // A folder that is not there: the file cannot be written.
            const bool writable = target == out;
            QCOMPARE(run.exitCode, writable || exitCode != 0 ? exitCode : 1);
            QVERIFY2(errors.contains(writable || exitCode != 0 ? message : target + u": "_s), qPrintable(errors));
            if (exitCode == 0 && !writable)
                QVERIFY(errors.contains(u"No such file or directory"_s));
        }
        QCOMPARE(QFileInfo::exists(out), exitCode == 0);
        if (exitCode != 0)
            return;
        const QList<Page> pages = readPdf(out);
        QCOMPARE(pages.size(), 1);
        QCOMPARE(pages[0].size.toSize(), QSize(612, 792));
        QList<int> listed;
        for (const qsizetype line : channelRows(pages[0]))
            listed.append(pages[0].lines[line].front().text.toInt());
        QTEST(listed, "rows");
        QVERIFY(pages[0].line(0).startsWith(u"WR-PD6T"_s));
        QVERIFY(pages[0].line(pages[0].lines.size() - 1).endsWith(u"第 1 页，共 1 页"_s));
    }

    void preview()
    {
        // A Canadian locale: Letter until the user chooses A4, which the next
        // preview starts with.
        qputenv("LC_PAPER", "en_CA.UTF-8");
        FileDialog::reset();
        MessageBox::reset();
        MessageBox::setAutoAnswer(true);
        SettingsStore settings(filePath(u"settings.ini"_s));
        const MemoryImage image = sheetImage();
        const QString saved = filePath(u"saved.pdf"_s);
        const QString printed = filePath(u"printed.pdf"_s);
        QList<QPageSize::PageSizeId> papers;
        QString title;
        int pageCount = 0;
        for (int run = 0; run < 2; ++run) {
            test::whenModal([&](QDialog *dialog) {
                auto *preview = qobject_cast<QPrintPreviewDialog *>(dialog);
                papers.append(preview->printer()->pageLayout().pageSize().id());
                title = dialog->windowTitle();
                pageCount = dialog->findChild<QPrintPreviewWidget *>()->pageCount();
                if (papers.size() == 1) {
                    FileDialog::setNextFileName(saved);
                    dialog->activateWindow();
                    QVERIFY(QTest::qWaitForWindowActive(dialog));
                    QTest::keyClick(dialog, Qt::Key_S, Qt::ControlModifier); // Save as PDF…
                    // What the print dialog's "Print to File" does.
                    preview->printer()->setOutputFileName(printed);
                    dialog->findChild<QPrintPreviewWidget *>()->print();
                    preview->printer()->setPageSize(QPageSize(QPageSize::A4));
                }
                dialog->reject();
            });
            sheet::showChannelSheet(nullptr, image, SimplifiedChinese, u"/radios/club.tw"_s, {3, 10}, settings);
        }
        qunsetenv("LC_PAPER");
        QCOMPARE(papers, (QList<QPageSize::PageSizeId>{QPageSize::Letter, QPageSize::A4}));
        QCOMPARE(title, u"信道表"_s);
        QCOMPARE(pageCount, 1);
        QCOMPARE(FileDialog::history(), QStringList{u"/radios/club.pdf"_s});
        QCOMPARE(MessageBox::history().size(), 0);
        for (const QString &path : {saved, printed}) {
            const QList<Page> pages = readPdf(path);
            QCOMPARE(pages.size(), 1);
            QCOMPARE(channelRows(pages[0]).size(), 2);
            QVERIFY(pages[0].line(channelRows(pages[0])[0]).startsWith(u"3 430.07500 430.07500 67.0 D023N 高"_s));
            QVERIFY(!hasRadical(pages[0].line(channelRows(pages[0])[1])));
        }
    }
};

QTEST_MAIN(TestSheet)
#include "TestSheet.moc"
