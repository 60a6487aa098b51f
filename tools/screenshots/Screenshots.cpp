// Renders the shell's windows in the three interface languages to PNG files,
// for checking the layouts by eye. The offscreen platform's own screen is
// 800 x 800 pixels, too small for the main window's prescribed size:
//   QT_QPA_PLATFORM=offscreen:configfile=tests/shell/screens/large.json wrpd6t-screenshots OUTPUT_FOLDER
// (QT_SCALE_FACTOR=1.5 for 150 %).
// The progress form is also shown retrying and searching the ports against a
// silent virtual radio, and the port error boxes with made-up devices. For
// each dialog, focus-*.png shows it once for every stop of the Tab key, to
// check that the focus can be seen on every control.
#include "channels/ChannelRecord.h"
#include "core/AppState.h"
#include "core/SettingsStore.h"
#include "link/CloneEngine.h"
#include "link/PortCatalogue.h"
#include "link/PortProblem.h"
#include "link/frmclone.h"
#include "shell/LanguageForm.h"
#include "shell/MDIForm1.h"
#include "ui/Accessible.h"
#include "ui/MessageBox.h"
#include "shell/frmAbout.h"
#include "shell/frmComPort.h"
#include "features/frmKey.h"
#include "features/frmMemoryMap.h"
#include "features/frmOption.h"
#include "features/frmRadio.h"
#include "features/frmSMB.h"

#include "PtyRadio.h"
#include "VirtualRadio.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>
#include <functional>

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

// The window once for each stop of the Tab key, side by side in rows of
// four, from the control that has the focus when it opens round to it again.
void saveFocusStops(QWidget *window, const QString &folder, const QString &name)
{
    window->show();
    window->activateWindow();
    QApplication::processEvents();
    QList<QImage> stops;
    const QWidget *first = QApplication::focusWidget();
    for (int stop = 0; stop < 40; ++stop) {
        QApplication::processEvents();
        stops << window->grab().toImage();
        QWidget *focus = QApplication::focusWidget();
        if (!focus)
            break;
        QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
        QApplication::sendEvent(focus, &tab);
        if (QApplication::focusWidget() == first)
            break;
    }
    const QSize cell = stops.first().size();
    const int columns = std::min<int>(4, int(stops.size()));
    QImage sheet(cell.width() * columns, cell.height() * int((stops.size() + columns - 1) / columns),
                 QImage::Format_ARGB32);
    sheet.fill(Qt::white);
    QPainter painter(&sheet);
    for (int i = 0; i < stops.size(); ++i)
        painter.drawImage((i % columns) * cell.width(), (i / columns) * cell.height(), stops.at(i));
    painter.end();
    sheet.save(QDir(folder).filePath(QStringLiteral("focus-") + name + QStringLiteral(".png")));
    window->hide();
}

void waitFor(const std::function<bool()> &done, int ms)
{
    for (QDeadlineTimer deadline(ms); !done() && !deadline.hasExpired();)
        QApplication::processEvents(QEventLoop::AllEvents, 10);
}

// A read against a radio that never answers: once retrying, once trying the
// next port of the search.
void saveRetrying(QWidget *window, const QString &folder, const QString &tag)
{
    wr::sim::VirtualRadio radio(wr::sim::RadioFaults{.silent = true});
    wr::sim::PtyRadio line(radio, false);
    QTemporaryDir links;
    if (!line.open() || !QFile::link(line.devicePath(), links.filePath(QStringLiteral("com3"))))
        return;
    wr::setSerialPortsFolder(links.path());
    wr::setSystemPortSource([] { return QList<wr::SystemPort>{}; });
    wr::app().PortNumber = 3;
    auto *clone = new wr::frmclone(window);
    auto *status = clone->findChild<QLabel *>(QStringLiteral("lblStatus"));
    clone->show();
    waitFor([status] { return status->text().contains(u'2'); }, 3000);
    save(clone, folder, QStringLiteral("progress-retrying-") + tag);
    waitFor([status] { return status->text().contains(QStringLiteral("COM3\u2026")); }, 5000);
    save(clone, folder, QStringLiteral("progress-port-search-") + tag);
    delete clone;
    wr::setSerialPortsFolder(QString());
    wr::setSystemPortSource({});
}

void saveBox(QWidget *window, QMessageBox::Icon icon, const QString &title, const QString &text,
             QMessageBox::StandardButtons buttons, const QString &folder, const QString &name)
{
    QMessageBox box(icon, title, text, buttons, window);
    save(&box, folder, name);
}

// The boxes a port that fails shows, as the progress form words them.
void savePortBoxes(QWidget *window, int language, const QString &folder, const QString &tag)
{
    using Kind = wr::PortProblem::Kind;
    const QString usb = QStringLiteral("/dev/ttyUSB0");
    const struct
    {
        const char *name;
        wr::PortProblem problem;
    } failures[] = {
        {"port-missing-", {Kind::Missing, usb, QStringLiteral("No such file or directory"), {}}},
        {"port-permission-", {Kind::NoPermission, usb, QStringLiteral("Permission denied"), QStringLiteral("dialout")}},
        {"port-busy-", {Kind::Busy, usb, QStringLiteral("Permission error while locking the device"), {}}},
    };
    for (const auto &failure : failures)
        saveBox(window, QMessageBox::Warning, wr::ModelName(), wr::describePortProblem(33, failure.problem, language),
                QMessageBox::Ok, folder, QString::fromLatin1(failure.name) + tag);
    const wr::PortProblem scanned{Kind::NoPermission, QStringLiteral("/dev/ttyS0"), QStringLiteral("Permission denied"),
                                  QStringLiteral("dialout")};
    saveBox(window, QMessageBox::Warning, wr::ModelName(),
            wr::describePortProblem(1, scanned, language) + u'\n' + wr::scanNote(1, 33, language), QMessageBox::Ok,
            folder, QStringLiteral("port-search-permission-") + tag);

    const QString title = wr::CloneEngine::lostConnectionTitle(language);
    const wr::PortProblem lost{Kind::Lost, usb, QStringLiteral("Input/output error"), {}};
    saveBox(window, QMessageBox::Critical, title,
            wr::CloneEngine::lostConnectionText(language, wr::describePortProblem(33, lost, language)),
            QMessageBox::Retry | QMessageBox::Cancel, folder, QStringLiteral("port-lost-") + tag);
    saveBox(window, QMessageBox::Critical, title,
            wr::CloneEngine::lostConnectionText(
                language, wr::portsTriedLine({{33, usb}, {1, QStringLiteral("/dev/ttyS0")}}, language)),
            QMessageBox::Retry | QMessageBox::Cancel, folder, QStringLiteral("port-no-answer-") + tag);
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    wr::InitApplicationIdentity();
    wr::useFocusFrames();
    const QString folder = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("/tmp/shots-shell");
    QDir().mkpath(folder);
    // The progress form tries the port at once; its failure message must
    // not wait for a click.
    wr::MessageBox::setAutoAnswer(true);

    const char *suffix[] = {"en", "zh_CN", "zh_TW"};
    for (const wr::Language language : {wr::English, wr::SimplifiedChinese, wr::TraditionalChinese}) {
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
        saveFocusStops(&languageForm, folder, QStringLiteral("language-form-") + tag);
        saveFocusStops(&port, folder, QStringLiteral("port-dialog-") + tag);
        saveFocusStops(&about, folder, QStringLiteral("about-box-") + tag);
        {
            wr::frmOption option(wr::app().image, language, &window);
            saveFocusStops(&option, folder, QStringLiteral("optional-features-") + tag);
            wr::frmKey key(wr::app().image, language, &window);
            saveFocusStops(&key, folder, QStringLiteral("key-setting-") + tag);
            wr::frmSMB scramble(wr::app().image, language, &window);
            saveFocusStops(&scramble, folder, QStringLiteral("scramble-") + tag);
            wr::frmRadio radio(wr::app().image, language, &window);
            saveFocusStops(&radio, folder, QStringLiteral("radio-") + tag);
            wr::frmMemoryMap map(wr::app().image, language, &window);
            saveFocusStops(&map, folder, QStringLiteral("memory-map-") + tag);
        }
        saveFocusStops(&window, folder, QStringLiteral("main-window-") + tag);

        wr::app().LinkDirection = 0;
        auto *clone = new wr::frmclone(&window);
        save(clone, folder, QStringLiteral("progress-form-") + tag);
        delete clone;
        saveRetrying(&window, folder, tag);
        savePortBoxes(&window, language, folder, tag);
        window.close();
    }
    return 0;
}
