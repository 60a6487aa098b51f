// Renders the shell's windows in the three interface languages to PNG files,
// for checking the layouts by eye. The offscreen platform's own screen is
// 800 x 800 pixels, too small for the main window's prescribed size:
//   QT_QPA_PLATFORM=offscreen:configfile=tests/shell/screens/large.json wrpd6t-screenshots OUTPUT_FOLDER
// (QT_SCALE_FACTOR=1.5 for 150 %).
// The progress form is also shown retrying and searching the ports against a
// silent virtual radio and verifying a write, the port dialog after its
// connection test, and the port error and verification boxes and the
// warning of a radio left partly written, with made-up devices and rows. For
// each dialog, focus-*.png shows it once for every stop of the Tab key, to
// check that the focus can be seen on every control.
#include "channels/ChannelRecord.h"
#include "channels/frmChannel.h"
#include "channels/FillFrequenciesDialog.h"
#include "core/AppState.h"
#include "core/SettingsStore.h"
#include "file/Backups.h"
#include "link/CloneEngine.h"
#include "link/PortCatalogue.h"
#include "link/PortProblem.h"
#include "link/TransferTexts.h"
#include "link/frmclone.h"
#include "shell/LanguageForm.h"
#include "shell/MDIForm1.h"
#include "ui/Accessible.h"
#include "ui/MessageBox.h"
#include "shell/frmAbout.h"
#include "shell/frmBackups.h"
#include "shell/frmComPort.h"
#include "features/frmKey.h"
#include "features/frmMemoryMap.h"
#include "features/frmOption.h"
#include "features/frmRadio.h"
#include "features/frmSMB.h"

#include "PtyRadio.h"
#include "VirtualRadio.h"

#include <QApplication>
#include <QComboBox>
#include <QProgressBar>
#include <QPushButton>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QTemporaryDir>

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

// A virtual radio in this process on a pseudo-terminal, registered as COM3
// and the only port listed while it lives.
class RadioOnCom3
{
public:
    explicit RadioOnCom3(wr::sim::RadioFaults faults)
        : radio(faults)
        , m_line(radio, false)
    {
        m_open = m_line.open() && QFile::link(m_line.devicePath(), m_links.filePath(QStringLiteral("com3")));
        wr::setSerialPortsFolder(m_links.path());
        wr::setSystemPortSource([] { return QList<wr::SystemPort>{}; });
        wr::app().PortNumber = 3;
    }
    ~RadioOnCom3()
    {
        wr::setSerialPortsFolder(QString());
        wr::setSystemPortSource({});
    }
    bool isOpen() const { return m_open; }

    wr::sim::VirtualRadio radio;

private:
    wr::sim::PtyRadio m_line;
    QTemporaryDir m_links;
    bool m_open = false;
};

// A read against a radio that never answers: once retrying, once trying the
// next port of the search.
void saveRetrying(QWidget *window, const QString &folder, const QString &tag)
{
    RadioOnCom3 com3(wr::sim::RadioFaults{.silent = true});
    if (!com3.isOpen())
        return;
    wr::app().LinkDirection = 0;
    auto *clone = new wr::frmclone(window);
    auto *status = clone->findChild<QLabel *>(QStringLiteral("lblStatus"));
    clone->show();
    waitFor([status] { return status->text().contains(u'2'); }, 3000);
    save(clone, folder, QStringLiteral("progress-retrying-") + tag);
    waitFor([status] { return status->text().contains(QStringLiteral("COM3\u2026")); }, 5000);
    save(clone, folder, QStringLiteral("progress-port-search-") + tag);
    delete clone;
}

// A write read back: the progress form while it verifies.
void saveVerifying(QWidget *window, wr::Language language, const QString &folder, const QString &tag)
{
    RadioOnCom3 com3(wr::sim::RadioFaults{});
    if (!com3.isOpen())
        return;
    wr::app().LinkDirection = 1;
    auto *clone = new wr::frmclone(window);
    clone->setVerifyAfterWrite(true);
    auto *status = clone->findChild<QLabel *>(QStringLiteral("lblStatus"));
    auto *bar = clone->findChild<QProgressBar *>(QStringLiteral("prgPercent"));
    const QString verifying = wr::statusText({wr::TransferStatus::Kind::Verifying}, language);
    clone->show();
    waitFor([&] { return status->text() == verifying && bar->value() >= 60; }, 20000);
    save(clone, folder, QStringLiteral("progress-verifying-") + tag);
    delete clone;
}

// The port dialog after its Test: the answer of a cable without a radio,
// and the wait for a cable on a port that is not there.
void saveConnectionTest(QWidget *window, wr::Language language, const QString &folder, const QString &tag)
{
    RadioOnCom3 com3(wr::sim::RadioFaults{.echo = true});
    if (!com3.isOpen())
        return;
    for (const int port : {3, 9}) {
        wr::frmComPort dialog(3, language, window);
        auto *combo = dialog.findChild<QComboBox *>(QStringLiteral("Combo1"));
        auto *test = dialog.findChild<QPushButton *>(QStringLiteral("cmdTest"));
        auto *result = dialog.findChild<QLabel *>(QStringLiteral("lblTestResult"));
        combo->setEditText(QStringLiteral("COM%1").arg(port));
        dialog.show();
        const QString idle = test->text();
        test->click();
        if (port == 3) {
            waitFor([&] { return test->text() == idle && !result->text().isEmpty(); }, 10000);
            save(&dialog, folder, QStringLiteral("port-dialog-test-") + tag);
        } else {
            waitFor([&] { return !result->text().isEmpty(); }, 2000);
            save(&dialog, folder, QStringLiteral("port-dialog-waiting-") + tag);
        }
    }
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
    const auto failed = [](int port, const wr::PortProblem &problem) {
        wr::TransferOutcome outcome;
        outcome.kind = wr::TransferOutcome::Kind::PortFailed;
        outcome.port = port;
        outcome.chosenPort = 33;
        outcome.chosenByScan = port != 33;
        outcome.problem = problem;
        return outcome;
    };
    for (const auto &failure : failures)
        saveBox(window, QMessageBox::Warning, wr::ModelName(), wr::outcomeText(failed(33, failure.problem), language),
                QMessageBox::Ok, folder, QString::fromLatin1(failure.name) + tag);
    const wr::PortProblem scanned{Kind::NoPermission, QStringLiteral("/dev/ttyS0"), QStringLiteral("Permission denied"),
                                  QStringLiteral("dialout")};
    saveBox(window, QMessageBox::Warning, wr::ModelName(), wr::outcomeText(failed(1, scanned), language),
            QMessageBox::Ok, folder, QStringLiteral("port-search-permission-") + tag);

    const QString title = wr::lostConnectionTitle(language);
    wr::TransferOutcome lost;
    lost.kind = wr::TransferOutcome::Kind::PortLost;
    lost.port = 33;
    lost.problem = {Kind::Lost, usb, QStringLiteral("Input/output error"), {}};
    saveBox(window, QMessageBox::Critical, title, wr::lostConnectionText(lost, language),
            QMessageBox::Retry | QMessageBox::Cancel, folder, QStringLiteral("port-lost-") + tag);
    wr::TransferOutcome silent;
    silent.kind = wr::TransferOutcome::Kind::NoAnswer;
    silent.port = 1;
    silent.portsTried = {{33, usb}, {1, QStringLiteral("/dev/ttyS0")}};
    saveBox(window, QMessageBox::Critical, title, wr::lostConnectionText(silent, language),
            QMessageBox::Retry | QMessageBox::Cancel, folder, QStringLiteral("port-no-answer-") + tag);

    // How a write that was read back ends: equal, or rows that differ.
    wr::TransferOutcome verified;
    verified.kind = wr::TransferOutcome::Kind::Completed;
    verified.read = false;
    verified.verified = true;
    saveBox(window, QMessageBox::Information, wr::ModelName(), wr::outcomeText(verified, language), QMessageBox::Ok,
            folder, QStringLiteral("verify-done-") + tag);
    wr::TransferOutcome differs = verified;
    differs.kind = wr::TransferOutcome::Kind::VerificationFailed;
    differs.verified = false;
    differs.differingRows = {5, 120, 230, 300, 409};
    saveBox(window, QMessageBox::Warning, wr::ModelName(), wr::outcomeText(differs, language), QMessageBox::Ok,
            folder, QStringLiteral("verify-failed-") + tag);

    // The warning after a write that stopped part way.
    wr::TransferOutcome partly;
    partly.read = false;
    partly.port = 33;
    partly.partlyWritten = {33};
    saveBox(window, QMessageBox::Warning, wr::ModelName(), wr::partlyWrittenText(partly, language), QMessageBox::Ok,
            folder, QStringLiteral("partly-written-") + tag);
}

// The backups dialog with one backup of each kind, a day of work apart,
// and once before there are any.
void saveBackups(QWidget *window, wr::Language language, const QString &folder, const QString &tag)
{
    QTemporaryDir backups;
    wr::frmBackups none(backups.path(), language, window);
    save(&none, folder, QStringLiteral("backups-none-") + tag);
    using enum wr::BackupReason;
    const wr::BackupReason reasons[]{Read, BeforeMemoryMap, BeforeNew, BeforeRead, Read, BeforeOpen, Exit, ExitUnsaved};
    QDateTime time(QDate(2026, 11, 23), QTime(9, 12, 40));
    int channels = 16;
    for (const wr::BackupReason reason : reasons) {
        wr::Backups::keep(backups.path(), wr::app().image, reason, time);
        const wr::ChannelTexts texts = wr::ReadChannelTexts(wr::app().image, 1, language);
        wr::CreateChannel(wr::app().image, channels += 3);
        wr::SaveChannel(wr::app().image, channels, texts);
        time = time.addSecs(3 * 3600 + 17 * 60);
    }
    wr::frmBackups form(backups.path(), language, window);
    save(&form, folder, QStringLiteral("backups-") + tag);
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
        // The list filtered, with its count in the status bar; and the Fill
        // Frequencies dialog for the filtered channels.
        auto *filter = window.findChild<QLineEdit *>(QStringLiteral("txtFilter"));
        filter->setText(QStringLiteral("145 ") + wr::Words::High.in(language));
        QApplication::processEvents(); // the grid lays its rows out after a timer
        save(&window, folder, QStringLiteral("main-window-filtered-") + tag);
        wr::FillFrequenciesDialog fill({2, 4, 6, 8}, QStringLiteral("145.01250"), wr::app().BandLimits, language,
                                       &window);
        save(&fill, folder, QStringLiteral("fill-frequencies-") + tag);
        filter->clear();
        // A typed frequency the list corrected, explained in the status bar
        // (in place of the panels, so after the filter's count).
        Q_EMIT window.channelList()->valueCorrected({7, wr::ColRx, QStringLiteral("7"), QStringLiteral("174.00000"),
                                                     wr::TypedCorrection::Reason::BelowBands});
        save(&window, folder, QStringLiteral("main-window-correction-") + tag);

        wr::frmComPort port(wr::app().PortNumber, language, &window);
        save(&port, folder, QStringLiteral("port-dialog-") + tag);
        wr::LanguageForm languageForm(language, &window);
        save(&languageForm, folder, QStringLiteral("language-form-") + tag);
        wr::frmAbout about(language, &window);
        save(&about, folder, QStringLiteral("about-box-") + tag);
        saveBackups(&window, language, folder, tag);
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
        saveVerifying(&window, language, folder, tag);
        saveConnectionTest(&window, language, folder, tag);
        savePortBoxes(&window, language, folder, tag);
        window.close();
    }
    return 0;
}
