// Times a channel sheet of 128 channels in use, from the memory to the bytes
// of its PDF (content, layout, drawing, font subsets, text map repair).
//
//   wrpd6t-bench-sheet [iterations]   the first (fonts loaded), median and slowest
//                                     time in each language; goal 300 ms
//   wrpd6t-bench-sheet --pdf DIR      writes the three sheets to DIR as
//                                     channel-sheet-en.pdf, -zh-hans.pdf, -zh-hant.pdf
//
// Runs on the offscreen platform unless QT_QPA_PLATFORM says otherwise.

#include "channels/ChannelRecord.h"
#include "core/FrequencyCodec.h"
#include "core/ToneCodec.h"
#include "features/FmRadio.h"
#include "sheet/ChannelSheet.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QTextStream>

#include <algorithm>
#include <vector>

using namespace wr;
using namespace Qt::StringLiterals;

namespace {

// Every channel in use, saved the way the channel list saves a typed row:
// both bands, every third channel receive only, tones, power, width, scan
// add and busy lock all varied; six FM channels set.
MemoryImage fullImage()
{
    MemoryImage image;
    image.InitImage();
    const QStringList tones = BuildToneTable(English);
    const Text bcl[] = {Words::Off, Words::Carrier, Words::OptSignal};
    for (int channel = 1; channel <= ChannelRecord::ChannelCount; ++channel) {
        const qint64 rx = (channel <= 64 ? 14'400'000 : 43'000'000) + channel * 1'250;
        const bool split = channel % 3 != 0;
        const ChannelTexts texts{freq::formatTenHz(rx),
                                 split ? freq::formatTenHz(rx + 500'000) : QString(),
                                 tones.at(channel % tones.size()),
                                 split ? tones.at((channel * 7) % tones.size()) : QString(),
                                 (channel % 2 ? Words::High : Words::Low).in(English),
                                 (channel % 4 ? Words::Wide : Words::Narrow).in(English),
                                 (channel % 5 ? Words::On : Words::Off).in(English),
                                 bcl[channel % 3].in(English)};
        CreateChannel(image, channel);
        SaveChannel(image, channel, texts);
    }
    fm::Texts radio = fm::load(image);
    for (int channel = 0; channel < 6; ++channel)
        radio.channels[std::size_t(channel)] = QString::number(88.1 + 2.4 * channel, 'f', 2);
    fm::save(image, radio);
    return image;
}

const char *const LanguageNames[] = {"en", "zh-hans", "zh-hant"};

QByteArray sheetBytes(const MemoryImage &image, int language)
{
    const sheet::SheetContent content = sheet::sheetContent(image, Language(language), u"club-2026.tw"_s,
                                                            QDateTime(QDate(2026, 11, 23), QTime(14, 5)));
    return sheet::sheetPdf(content, sheet::sheetPageLayout(sheet::localePaper()));
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    QTextStream out(stdout);
    const QStringList arguments = QGuiApplication::arguments();
    const MemoryImage image = fullImage();

    if (arguments.value(1) == u"--pdf") {
        const QDir folder(arguments.value(2, u"."_s));
        folder.mkpath(u"."_s);
        for (int language = 0; language < LanguageCount; ++language) {
            QFile file(folder.filePath(u"channel-sheet-%1.pdf"_s.arg(QLatin1StringView(LanguageNames[language]))));
            if (!file.open(QIODevice::WriteOnly) || file.write(sheetBytes(image, language)) < 0)
                return 1;
            out << file.fileName() << '\n';
        }
        return 0;
    }

    const int iterations = std::max(1, arguments.value(1, u"20"_s).toInt());
    out << "channel sheet, 128 channels, " << iterations
        << " iterations (ms per sheet: first / median / slowest; goal 300)\n";
    for (int language = 0; language < LanguageCount; ++language) {
        std::vector<double> times;
        qsizetype bytes = 0;
        for (int i = 0; i < iterations; ++i) {
            QElapsedTimer timer;
            timer.start();
            bytes = sheetBytes(image, language).size();
            times.push_back(double(timer.nsecsElapsed()) / 1e6);
        }
        const double first = times.front();
        std::sort(times.begin(), times.end());
        out << LanguageNames[language] << ": " << first << " / " << times[times.size() / 2] << " / " << times.back()
            << "  (" << bytes / 1024 << " KB)\n";
    }
    return 0;
}
