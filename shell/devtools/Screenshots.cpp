// Renders the shell's windows in the three interface languages to PNG files,
// for checking the layouts by eye. The offscreen platform's own screen is
// 800 x 800 pixels, too small for the main window's prescribed size:
//   QT_QPA_PLATFORM=offscreen:configfile=tests/shell/screens/large.json wrpd6t-screenshots OUTPUT_FOLDER
// (QT_SCALE_FACTOR=1.5 for 150 %).
#include "channels/ChannelRecord.h"
#include "core/AppState.h"
#include "core/SettingsStore.h"
#include "link/frmclone.h"
#include "shell/LanguageForm.h"
#include "shell/MDIForm1.h"
#include "ui/MessageBox.h"
#include "shell/frmAbout.h"
#include "shell/frmComPort.h"

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>

namespace {

void fillSomeChannels(wr::AppState &state)
{
    const char *tones[] = {"67.0", "88.5", "D023N", "127.3", "D754I", "151.4"};
    for (int channel = 1; channel <= 16; ++channel) {
        wr::ChannelTexts texts;
        const int kilohertz = (channel <= 8 ? 145'000 : 435'000) + channel * 125;
        texts.rx = QStringLiteral("%1.%2").arg(kilohertz / 1000).arg((kilohertz % 1000) * 100, 5, 10, QLatin1Char('0'));
        texts.tx = texts.rx;
        texts.decode = QString::fromLatin1(tones[channel % 6]);
        texts.encode = QString::fromLatin1(tones[(channel + 1) % 6]);
        texts.power = wr::PowerText(channel % 2 == 0, state.LanguageIndex);
        texts.bandwidth = wr::BandwidthText(channel % 3 != 0, state.LanguageIndex);
        texts.scanAdd = wr::ScanAddText(channel % 4 != 0, state.LanguageIndex);
        texts.bcl = wr::BclText(wr::ChannelRecord::Bcl::Off, state.LanguageIndex);
        wr::CreateChannel(state.image, channel);
        wr::SaveChannel(state.image, channel, texts);
    }
    state.image.TakeSnapshot();
}

void save(QWidget *widget, const QString &folder, const QString &name)
{
    widget->show();
    QApplication::processEvents();
    const QString path = QDir(folder).filePath(name + QStringLiteral(".png"));
    if (!widget->grab().save(path))
        std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    wr::InitApplicationIdentity();
    const QString folder = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("/tmp/shots-shell");
    QDir().mkpath(folder);
    // The progress form tries the port at once; its failure message must
    // not wait for a click.
    wr::MessageBox::setAutoAnswer(true);

    const char *suffix[] = {"en", "zh_CN", "zh_TW"};
    for (int language = 0; language < 3; ++language) {
        QTemporaryDir settingsFolder;
        wr::SettingsStore settings(settingsFolder.filePath(QStringLiteral("settings.ini")));
        settings.SetKeyValue(wr::SettingsStore::Root::LocalMachine, wr::SettingsStore::keyPath(),
                             QStringLiteral("language"), QString::number(language));
        const QString tag = QString::fromLatin1(suffix[language]);

        wr::MDIForm1 window(&settings);
        window.setBackupFolder(settingsFolder.filePath(QStringLiteral("backups")));
        fillSomeChannels(wr::app());
        window.RefreshMainWindow();
        save(&window, folder, QStringLiteral("main-window-") + tag);

        wr::frmComPort port(wr::app().PortNumber, language, &window);
        save(&port, folder, QStringLiteral("port-dialog-") + tag);
        wr::LanguageForm languageForm(language, &window);
        save(&languageForm, folder, QStringLiteral("language-form-") + tag);
        wr::frmAbout about(language, &window);
        save(&about, folder, QStringLiteral("about-box-") + tag);

        wr::app().LinkDirection = 0;
        auto *clone = new wr::frmclone(&window);
        save(clone, folder, QStringLiteral("progress-form-") + tag);
        delete clone;
        window.close();
    }
    return 0;
}
