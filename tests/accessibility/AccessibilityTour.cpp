// The program's windows one after the other, for a screen reader's walk:
//   wrpd6t-accessibility-tour LANGUAGE (0, 1 or 2)
// It shows the main window as the program does, then opens each dialog
// through the command a user would give, and prints "ready NAME" on its
// standard output once the window is up. A line "next" on its standard input
// closes the window (Esc, as a user would) and goes on to the next; after the
// last it prints "done" and quits. The walker (walk_accessible_tree.py) reads
// every window through the accessibility bus in between.
#include "ShellHarness.h"

#include "core/AppState.h"
#include "core/SettingsStore.h"
#include "link/PortCatalogue.h"
#include "link/frmclone.h"
#include "shell/MDIForm1.h"
#include "ui/Accessible.h"
#include "sheet/SheetPreview.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QPointer>
#include <QSocketNotifier>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include "PtyRadio.h"
#include "VirtualRadio.h"

#include <cstdio>
#include <functional>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

void say(const QString &line)
{
    std::fputs(qPrintable(line + u'\n'), stdout);
    std::fflush(stdout);
}

class Tour : public QObject
{
public:
    struct Step
    {
        QString name;
        std::function<void()> open; // may block in a dialog's exec()
    };

    Tour(wr::MDIForm1 &window, QList<Step> steps)
        : m_window(window)
        , m_steps(std::move(steps))
        , m_input(STDIN_FILENO, QSocketNotifier::Read)
    {
        connect(&m_input, &QSocketNotifier::activated, this, &Tour::readCommand);
        m_poll.setInterval(20);
        connect(&m_poll, &QTimer::timeout, this, &Tour::checkShown);
    }

    void start() { open(0); }

private:
    void open(qsizetype index)
    {
        m_index = index;
        m_announced = false;
        m_poll.start();
        if (index < m_steps.size())
            QTimer::singleShot(0, this, [this, index] { m_steps.at(index).open(); });
    }

    // The step's window: the main window, else the dialog it opened. It is
    // up once it is active and exposed; the accessibility bridge learns of
    // it from the same events. Without a window manager nobody activates a
    // new window, so the tour does.
    QWidget *stepWindow() const
    {
        if (m_steps.at(m_index).name == u"MDIForm1")
            return &m_window;
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (widget != &m_window && widget->isVisible() && qobject_cast<QDialog *>(widget))
                return widget;
        }
        return nullptr;
    }

    void checkShown()
    {
        if (m_announced || m_index >= m_steps.size())
            return;
        QWidget *shown = stepWindow();
        if (!shown || !shown->windowHandle() || !shown->windowHandle()->isExposed())
            return;
        if (QApplication::activeWindow() != shown) {
            shown->activateWindow();
            return;
        }
        m_announced = true;
        m_shown = shown;
        // Give the bridge a moment to register the new window's objects.
        QTimer::singleShot(300, this, [this] { say(u"ready "_s + m_steps.at(m_index).name); });
    }

    void readCommand()
    {
        char line[64] = {};
        const ssize_t got = ::read(STDIN_FILENO, line, sizeof line - 1);
        if (got <= 0 || QByteArray(line).trimmed() == "quit") {
            m_input.setEnabled(false);
            QApplication::exit(got < 0 ? 1 : 0);
            return;
        }
        if (!m_announced)
            return;
        // Esc closes a dialog as Cancel would; the main window stays.
        if (m_shown && m_shown != &m_window)
            QTest::keyClick(m_shown, Qt::Key_Escape);
        if (m_index + 1 >= m_steps.size()) {
            say(u"done"_s);
            return;
        }
        QTimer::singleShot(100, this, [this] { open(m_index + 1); });
    }

    wr::MDIForm1 &m_window;
    QList<Step> m_steps;
    QSocketNotifier m_input;
    QTimer m_poll;
    qsizetype m_index = 0;
    bool m_announced = false;
    QPointer<QWidget> m_shown;
};

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    wr::InitApplicationIdentity();
    wr::useFocusFrames();
    QStandardPaths::setTestModeEnabled(true);
    const int language = argc > 1 ? QString::fromLocal8Bit(argv[1]).toInt() : 0;

    QTemporaryDir folder;
    wr::SettingsStore settings(folder.filePath(u"settings.ini"_s));
    settings.SetKeyValue(wr::SettingsStore::Root::LocalMachine, wr::SettingsStore::keyPath(), u"language"_s,
                         QString::number(language));
    wr::MDIForm1 window(&settings);
    window.setBackupFolder(folder.filePath(u"backups"_s));
    // A few channels in use among empty ones, so that the channel list
    // holds both kinds of row.
    wr::app().image.setBytes(wr::test::ShellHarness::imageWithChannels(1, 5));
    wr::app().image.TakeSnapshot();
    window.RefreshMainWindow();
    window.show();

    const auto command = [&window](const char *name) {
        return [&window, name] { window.findChild<QAction *>(QString::fromLatin1(name))->trigger(); };
    };
    Tour tour(window, {
        {u"MDIForm1"_s, [] {}},
        {u"LanguageForm"_s, command("mnuLanguage")},
        {u"frmComPort"_s, command("mnuPort")},
        {u"frmAbout"_s, command("mnuHelp_About")},
        {u"frmBackups"_s, command("mnuFile_Backups")},
        {u"frmOption"_s, command("mnuOptiom_Features")},
        {u"frmKey"_s, command("mnuVFO")},
        {u"frmSMB"_s, command("mnuScramble")},
        {u"frmRadio"_s, command("mnuRadio")},
        {u"frmMemoryMap"_s, command("actMemoryMap")},
        {u"frmChannelSheet"_s, [&] {
             wr::sheet::showChannelSheet(&window, wr::app().image, wr::Language(language), {}, {}, settings);
         }},
        // The progress form during a read from a radio at the line's real
        // speed on COM3, long enough to be walked.
        {u"frmclone"_s, [&window] {
             wr::sim::VirtualRadio radio(wr::sim::RadioFaults{});
             wr::sim::PtyRadio line(radio, true);
             QTemporaryDir ports;
             if (!line.open() || !QFile::link(line.devicePath(), ports.filePath(u"com3"_s)))
                 return;
             wr::setSerialPortsFolder(ports.path());
             wr::setSystemPortSource([] { return QList<wr::SystemPort>{}; });
             wr::app().PortNumber = 3;
             wr::app().LinkDirection = 0;
             wr::frmclone(&window).exec();
             wr::setSerialPortsFolder({});
         }},
        // The question before a read: a message box, read as an alert.
        {u"QMessageBox"_s, command("mnuRead")},
    });
    tour.start();
    return application.exec();
}
