// Times the channel list's two bulk operations on 128 full channels:
// RefreshData (image -> grid) and SaveData (grid -> image).
//
//   wrpd6t-bench-channels [iterations]
//   wrpd6t-bench-channels --shots DIR     renders the list, its tools' menu and an
//                                         import's preview in the three languages
//
// Runs on the offscreen platform unless QT_QPA_PLATFORM says otherwise.

#include "channels/ChannelCsv.h"
#include "channels/ChannelRecord.h"
#include "channels/CsvImportPreview.h"
#include "channels/frmChannel.h"
#include "core/AppState.h"
#include "core/FrequencyCodec.h"
#include "core/Language.h"
#include "core/ToneCodec.h"
#include "ui/InterfaceFont.h"

#include <QApplication>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDir>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QMenu>
#include <QTableView>
#include <QTextStream>

#include <algorithm>
#include <vector>

using namespace wr;

namespace {

// 128 channels in use, each with both frequencies and tones; `variant`
// shifts every value so two images differ in every cell.
void fillImage(MemoryImage &image, int variant)
{
    const QStringList tones = BuildToneTable(English);
    for (int n = 1; n <= ChannelRecord::ChannelCount; ++n) {
        const qint64 rx = (n % 2 ? 14400000 : 43000000) + (n * 7 + variant) * 625;
        const qint64 tx = rx + (n % 3 == 0 ? 500000 : 0);
        WriteFreq(image, Side::Rx, n, freq::formatTenHz(rx));
        WriteFreq(image, Side::Tx, n, freq::formatTenHz(tx));
        WriteTone(image, Side::Rx, n, tones.at((n + variant) % tones.size()));
        WriteTone(image, Side::Tx, n, tones.at((n * 3 + variant) % tones.size()));
        image.WriteByte(n - 1, 12, 0);
        image.WriteByte(n - 1, 13, 0);
        // Power, width and scan add vary, BCL 0-2, shift + when tx is above rx.
        const int mix = n + variant;
        image.WriteByte(n - 1, 14, static_cast<quint8>((mix & 0x4C) | (mix % 3) | (tx > rx ? 0x10 : 0x00)));
        image.WriteByte(n - 1, 15, 0);
        ChannelRecord record(image, n);
        record.setEmptyBit(false);
        record.setScanSkipBit(!record.scanAdd());
    }
}

// Half the channels in use, the rest empty.
void halfEmpty(MemoryImage &image)
{
    fillImage(image, 0);
    for (int n = 2; n <= ChannelRecord::ChannelCount; n += 2) {
        ChannelRecord record(image, n);
        record.erase();
        record.setEmptyBit(true);
    }
}

int shots(const QString &folder)
{
    QDir().mkpath(folder);
    const char *names[] = {"en", "zh-hans", "zh-hant"};
    for (int language = 0; language < LanguageCount; ++language) {
        app() = AppState{};
        app().LanguageIndex = static_cast<quint8>(language);
        app().ToneTable = BuildToneTable(language);
        app().image.InitImage();
        fillImage(app().image, 0);
        useInterfaceFont(language);
        frmChannel form(app());
        form.show();
        QCoreApplication::processEvents();
        form.grab().save(QStringLiteral("%1/channels-full-%2.png").arg(folder, QString::fromLatin1(names[language])));

        halfEmpty(app().image);
        form.RefreshChannel();
        form.grab().save(QStringLiteral("%1/channels-empty-%2.png").arg(folder, QString::fromLatin1(names[language])));
        // Each kind of editor open on channel 3, to see that it lies on its cell.
        const std::pair<const char *, int> editors[] = {
            {"text", frmChannel::ColRx}, {"tone", frmChannel::ColDecode}, {"list", frmChannel::ColBandwidth}};
        for (const auto &[kind, column] : editors) {
            form.grid()->setCurrentIndex(form.grid()->model()->index(3, column));
            form.grid()->setFocus();
            QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"));
            QCoreApplication::sendEvent(form.grid(), &enter);
            QCoreApplication::processEvents();
            form.grab().save(QStringLiteral("%1/channels-%2-%3.png")
                                 .arg(folder, QString::fromLatin1(kind), QString::fromLatin1(names[language])));
            form.commitOpenEditor();
        }

        const QString name = QString::fromLatin1(names[language]);
        const QPoint at = form.grid()->visualRect(form.grid()->model()->index(3, 0)).center();
        QContextMenuEvent menuEvent(QContextMenuEvent::Mouse, at, form.grid()->viewport()->mapToGlobal(at));
        QCoreApplication::sendEvent(form.grid()->viewport(), &menuEvent);
        QCoreApplication::processEvents();
        if (auto *menu = form.findChild<QMenu *>(QStringLiteral("channelMenu"))) {
            menu->grab().save(QStringLiteral("%1/channels-menu-%2.png").arg(folder, name));
            menu->close();
        }

        const CsvImport import = readChannelCsv(
            QStringLiteral("Location,Name,Frequency,Duplex,Offset,Tone,rToneFreq,cToneFreq,Mode,Power,Comment\n"
                           "1,Club repeater,146.943000,-,0.600000,TSQL,88.5,100.0,FM,5.0W,\"open, daily\"\n"
                           "2,,145.500000,,,Tone,69.0,88.5,FM,5W,\n"
                           "5,,27.125000,,,,,,AM,4W,\n"
                           "7,,433.500000,split,520.000000,,,,NFM,0.5W,BCL:Carrier\n"),
            app().BandLimits);
        CsvImportPreview preview(import, {1, 2}, QStringLiteral("club-channels.csv"),
                                 Text(u"Import CHIRP CSV…", u"导入 CHIRP CSV…", u"匯入 CHIRP CSV…"),
                                 Language(language));
        preview.show();
        QCoreApplication::processEvents();
        preview.grab().save(QStringLiteral("%1/csv-preview-%2.png").arg(folder, name));

        // Cells pasted from a spreadsheet onto channel 7's receive column:
        // the preview says where each row goes and which columns it holds.
        const CsvImport pasted =
            readChannelCsv(QStringLiteral("146.52\t146.52\n146.55\t147.15\n999\t999\n146.583\t\n"),
                           app().BandLimits, {.pasteAt = 7, .firstChannel = 7, .firstColumn = frmChannel::ColRx});
        CsvImportPreview pastePreview(pasted, {}, QString(), Text(u"Paste", u"粘贴", u"貼上"), Language(language));
        pastePreview.show();
        QCoreApplication::processEvents();
        pastePreview.grab().save(QStringLiteral("%1/paste-preview-%2.png").arg(folder, name));
    }
    return 0;
}

struct Stats
{
    double median, best, mean;
};

Stats summarise(std::vector<double> &samples)
{
    std::sort(samples.begin(), samples.end());
    double sum = 0;
    for (double s : samples)
        sum += s;
    return {samples[samples.size() / 2], samples.front(), sum / double(samples.size())};
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const QStringList args = application.arguments();
    if (args.size() > 2 && args.at(1) == QStringLiteral("--shots"))
        return shots(args.at(2));
    const int iterations = args.size() > 1 ? std::max(1, args.at(1).toInt()) : 200;

    app() = AppState{};
    app().LanguageIndex = English;
    app().ToneTable = BuildToneTable(English);
    MemoryImage images[2];
    for (int i = 0; i < 2; ++i) {
        images[i].InitImage();
        fillImage(images[i], i + 1);
    }
    app().image = images[0];
    frmChannel form(app());
    form.show();
    QCoreApplication::processEvents();

    std::vector<double> refresh, save;
    QElapsedTimer timer;
    for (int i = 0; i < iterations; ++i) {
        // Alternate the images so every cell really changes.
        app().image = images[i % 2];
        timer.start();
        form.RefreshData();
        refresh.push_back(double(timer.nsecsElapsed()) / 1e6);
        QCoreApplication::processEvents(); // paint, as the window would between commands
        timer.start();
        form.SaveData();
        save.push_back(double(timer.nsecsElapsed()) / 1e6);
        if (!(app().image == images[i % 2])) {
            const QByteArray got = app().image.bytes(), want = images[i % 2].bytes();
            int at = 0;
            while (got.at(at) == want.at(at))
                ++at;
            QTextStream(stderr) << "SaveData changed an untouched image at 0x" << QString::number(at, 16) << "\n";
            return 1;
        }
    }
    const Stats r = summarise(refresh);
    const Stats s = summarise(save);
    QTextStream out(stdout);
    out << "128 full channels, " << iterations << " iterations (ms per call)\n";
    out << QStringLiteral("RefreshData  median %1  best %2  mean %3\n").arg(r.median, 0, 'f', 3).arg(r.best, 0, 'f', 3).arg(r.mean, 0, 'f', 3);
    out << QStringLiteral("SaveData     median %1  best %2  mean %3\n").arg(s.median, 0, 'f', 3).arg(s.best, 0, 'f', 3).arg(s.mean, 0, 'f', 3);
    return 0;
}
