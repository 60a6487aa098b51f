// Times opening the optional features and key setting dialogs: building the
// controls, captioning and filling them, loading the image and showing the
// dialog up to its first paint. A frame at 60 Hz is the limit (16 ms).
//
//   wrpd6t-bench-option-key [iterations]
//   wrpd6t-bench-option-key --shots DIR     renders both in the three languages
//
// Runs on the offscreen platform unless QT_QPA_PLATFORM says otherwise
// (QT_SCALE_FACTOR=1.5 for the shots at 150 %).

#include "core/Language.h"
#include "core/MemoryImage.h"
#include "features/frmKey.h"
#include "features/frmOption.h"
#include "ui/InterfaceFont.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTextStream>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace wr;

namespace {

template <typename Form>
void shoot(MemoryImage &image, Language language, const QString &path)
{
    Form form(image, language);
    form.show();
    QCoreApplication::processEvents();
    if (!form.grab().save(path))
        QTextStream(stderr) << "cannot write " << path << '\n';
}

int shots(const QString &folder)
{
    QDir().mkpath(folder);
    const char *names[] = {"en", "zh-hans", "zh-hant"};
    MemoryImage image;
    image.InitImage();
    for (int language = 0; language < LanguageCount; ++language) {
        useInterfaceFont(language);
        const QString tag = QString::fromLatin1(names[language]);
        shoot<frmOption>(image, Language(language), QStringLiteral("%1/option-%2.png").arg(folder, tag));
        shoot<frmKey>(image, Language(language), QStringLiteral("%1/key-%2.png").arg(folder, tag));
    }
    return 0;
}

// Milliseconds from building the dialog to its first paint; the first
// opening of the process is reported on its own (fonts, styles).
template <typename Form>
std::vector<double> openings(MemoryImage &image, int iterations)
{
    std::vector<double> samples;
    QElapsedTimer timer;
    for (int i = 0; i <= iterations; ++i) {
        timer.start();
        {
            Form form(image, English);
            form.show();
            QCoreApplication::processEvents();
            samples.push_back(double(timer.nsecsElapsed()) / 1e6);
        }
        QCoreApplication::processEvents();
    }
    return samples;
}

QString summary(std::vector<double> samples)
{
    const double first = samples.front();
    samples.erase(samples.begin());
    std::sort(samples.begin(), samples.end());
    return QStringLiteral("first %1  median %2  p90 %3  worst %4")
        .arg(first, 0, 'f', 2)
        .arg(samples[samples.size() / 2], 0, 'f', 2)
        .arg(samples[samples.size() * 9 / 10], 0, 'f', 2)
        .arg(samples.back(), 0, 'f', 2);
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    // The offscreen platform warns at every fixed-size dialog it shows.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &message) {
        if (!message.contains(u"propagateSizeHints"))
            std::fprintf(stderr, "%s\n", qPrintable(message));
    });
    const QStringList args = application.arguments();
    if (args.size() > 2 && args.at(1) == QStringLiteral("--shots"))
        return shots(args.at(2));
    const int iterations = args.size() > 1 ? std::max(1, args.at(1).toInt()) : 200;

    useInterfaceFont(English);
    MemoryImage image;
    image.InitImage();
    const std::vector<double> option = openings<frmOption>(image, iterations);
    const std::vector<double> key = openings<frmKey>(image, iterations);
    QTextStream out(stdout);
    out << "opening to first paint, " << iterations << " openings after the first (ms)\n";
    out << "frmOption  " << summary(option) << '\n';
    out << "frmKey     " << summary(key) << '\n';
    const bool withinFrame = *std::max_element(option.begin() + 1, option.end()) < 16.0
        && *std::max_element(key.begin() + 1, key.end()) < 16.0;
    out << (withinFrame ? "every opening after the first within one frame (16 ms)\n"
                        : "some openings took longer than one frame (16 ms)\n");
    return 0;
}
