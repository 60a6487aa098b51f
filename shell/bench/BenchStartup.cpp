// Start-up benchmark of the programming software: from process entry to the
// first paint of the channel grid, with all 128 channels in use. Prints the
// milliseconds on one line; tools/bench-startup.sh compares it with
// wrpd6t-bench-baseline.
#include "channels/ChannelRecord.h"
#include "channels/frmChannel.h"
#include "core/AppState.h"
#include "core/SettingsStore.h"
#include "shell/MDIForm1.h"
#include "FirstPaint.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTableWidget>
#include <QTemporaryDir>

#include <cstdio>
#include <ctime>

int main(int argc, char *argv[])
{
    QElapsedTimer clock;
    clock.start();
    QApplication application(argc, argv);
    wr::InitApplicationIdentity();

    QTemporaryDir folder;
    wr::SettingsStore settings(folder.filePath(QStringLiteral("settings.ini")));
    wr::MDIForm1 window(&settings);

    // A radio with every channel in use, as after opening a full data file.
    wr::AppState &state = wr::app();
    for (int channel = 1; channel <= 128; ++channel) {
        wr::ChannelTexts texts;
        const int kilohertz = 400'000 + channel * 125;
        texts.rx = QStringLiteral("%1.%2").arg(kilohertz / 1000).arg((kilohertz % 1000) * 100, 5, 10, QLatin1Char('0'));
        texts.tx = texts.rx;
        texts.decode = QStringLiteral("67.0");
        texts.encode = QStringLiteral("D023N");
        texts.power = wr::PowerText(channel % 2 == 0, state.LanguageIndex);
        texts.bandwidth = wr::BandwidthText(true, state.LanguageIndex);
        texts.scanAdd = wr::ScanAddText(true, state.LanguageIndex);
        texts.bcl = wr::BclText(wr::ChannelRecord::Bcl::Off, state.LanguageIndex);
        wr::CreateChannel(state.image, channel);
        wr::SaveChannel(state.image, channel, texts);
    }
    state.image.TakeSnapshot();
    window.RefreshMainWindow();

    QWidget *viewport = window.channelList()->grid()->viewport();
    FirstPaint probe(viewport, clock);
    viewport->installEventFilter(&probe);
    window.show();
    const int result = application.exec();
    if (wr::ReadChannelTexts(state.image, 128, state.LanguageIndex).isEmpty()) {
        std::fprintf(stderr, "channel 128 is empty: the benchmark did not fill the channels\n");
        return 1;
    }
    return result;
}
