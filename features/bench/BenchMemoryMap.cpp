// Times the memory map on a full image: opening it (the model, the window
// and the first paint of its grid) and its OK (every byte written back).
//
//   wrpd6t-bench-memory-map [iterations]
//   wrpd6t-bench-memory-map --shots DIR   renders the FM radio and scramble
//                                         forms in the three languages and
//                                         the memory map, editors open too
//
// Runs on the offscreen platform unless QT_QPA_PLATFORM says otherwise.

#include "core/Language.h"
#include "core/MemoryImage.h"
#include "features/FmRadio.h"
#include "features/frmMemoryMap.h"
#include "features/frmRadio.h"
#include "features/frmSMB.h"
#include "ui/InterfaceFont.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QTableView>
#include <QTableWidget>
#include <QTextStream>

#include <algorithm>
#include <vector>

using namespace wr;
using namespace Qt::StringLiterals;

namespace {

// Every byte set, no two neighbouring rows alike.
MemoryImage fullImage()
{
    MemoryImage image;
    quint32 state = 12345;
    for (int address = 0; address < MemoryImage::Size; ++address) {
        state = state * 1103515245u + 12345u;
        image.WriteByte(address, static_cast<std::uint8_t>(state >> 16));
    }
    return image;
}

// FM channels 0-9 in use, on 87.50 MHz and up.
MemoryImage imageWithFmChannels()
{
    MemoryImage image;
    image.InitImage();
    fm::Texts texts;
    texts.vfo = u"101.70"_s;
    for (int channel = 0; channel < 10; ++channel) {
        const int hundredths = 8750 + 145 * channel;
        texts.channels[std::size_t(channel)] = u"%1.%2"_s.arg(hundredths / 100).arg(hundredths % 100, 2, 10, QChar(u'0'));
    }
    fm::save(image, texts);
    return image;
}

class PaintWatch : public QObject
{
public:
    bool painted = false;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            painted = true;
        return false;
    }
};

void save(QWidget *widget, const QString &folder, const QString &name)
{
    widget->show();
    QApplication::processEvents();
    const QString path = QDir(folder).filePath(name + u".png"_s);
    if (!widget->grab().save(path))
        QTextStream(stderr) << "cannot write " << path << '\n';
}

void pressEnter(QWidget *widget)
{
    widget->setFocus();
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, u"\r"_s);
    QCoreApplication::sendEvent(widget, &enter);
    QCoreApplication::processEvents();
}

int shots(const QString &folder)
{
    QDir().mkpath(folder);
    const char *names[] = {"en", "zh-hans", "zh-hant"};
    for (int language = 0; language < LanguageCount; ++language) {
        useInterfaceFont(language);
        const QString tag = QString::fromLatin1(names[language]);
        MemoryImage image = imageWithFmChannels();
        frmRadio radio(image, Language(language));
        save(&radio, folder, u"radio-"_s + tag);
        radio.grid()->setCurrentCell(4, frmRadio::FrequencyColumn);
        pressEnter(radio.grid());
        save(&radio, folder, u"radio-editing-"_s + tag);
        frmSMB scramble(image, Language(language));
        save(&scramble, folder, u"scramble-"_s + tag);
    }
    useInterfaceFont(English);
    MemoryImage image;
    image.InitImage();
    frmMemoryMap map(image, English);
    save(&map, folder, u"memory-map"_s);
    map.grid()->setCurrentIndex(map.grid()->model()->index(5, 14));
    pressEnter(map.grid());
    save(&map, folder, u"memory-map-editing"_s);
    return 0;
}

struct Stats
{
    double median, best, worst;
};

Stats summarise(std::vector<double> samples)
{
    std::sort(samples.begin(), samples.end());
    return {samples[samples.size() / 2], samples.front(), samples.back()};
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const QStringList args = application.arguments();
    if (args.size() > 2 && args.at(1) == u"--shots")
        return shots(args.at(2));
    const int iterations = args.size() > 1 ? std::max(1, args.at(1).toInt()) : 50;

    const MemoryImage full = fullImage();
    MemoryImage image = full;
    std::vector<double> open, ok;
    QElapsedTimer timer;
    for (int i = 0; i < iterations; ++i) {
        PaintWatch watch;
        timer.start();
        auto *form = new frmMemoryMap(image, English);
        form->grid()->viewport()->installEventFilter(&watch);
        form->show();
        while (!watch.painted)
            QCoreApplication::processEvents();
        open.push_back(double(timer.nsecsElapsed()) / 1e6);

        timer.start();
        form->accept();
        ok.push_back(double(timer.nsecsElapsed()) / 1e6);
        delete form;
        if (!(image == full)) {
            QTextStream(stderr) << "OK without edits changed the image\n";
            return 1;
        }
    }
    const Stats o = summarise(open);
    const Stats k = summarise(ok);
    QTextStream out(stdout);
    out << "memory map on a full image, " << iterations << " iterations (ms)\n";
    out << QStringLiteral("open to first paint  median %1  best %2  worst %3  (goal 30)\n")
               .arg(o.median, 0, 'f', 3).arg(o.best, 0, 'f', 3).arg(o.worst, 0, 'f', 3);
    out << QStringLiteral("OK                   median %1  best %2  worst %3  (goal 5)\n")
               .arg(k.median, 0, 'f', 3).arg(k.best, 0, 'f', 3).arg(k.worst, 0, 'f', 3);
    return 0;
}
