#include "core/AppState.h"
#include "shell/AppIcon.h"
#include "shell/MDIForm1.h"
#include "ui/Accessible.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTimer>

#include <cstdio>

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    wr::InitApplicationIdentity();
    QApplication::setWindowIcon(wr::AppIcon());
    wr::useFocusFrames();
    QGuiApplication::setDesktopFileName(QStringLiteral("io.github.wrpd6t.wrpd6t"));

    // The file manager starts the program with the .tw file the user opened.
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Programming software for the WR-PD6T handheld FM radio.\n"
                       "Reads the radio over its serial programming cable, edits its 128 channels and its "
                       "settings, writes them back, and keeps copies in .tw data files. The interface speaks "
                       "English, Simplified Chinese and Traditional Chinese."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("FILE.tw"),
                                 QStringLiteral("A .tw data file to open, or a channel list in CSV (as CHIRP "
                                                "writes it) to import into the channel list."),
                                 QStringLiteral("[FILE.tw]"));
    parser.process(application);
    const QStringList files = parser.positionalArguments();
    if (files.size() > 1) {
        std::fputs("wrpd6t: give at most one file to open\n", stderr);
        return 1;
    }

    wr::MDIForm1 window;
    window.show();
    if (!files.isEmpty())
        QTimer::singleShot(0, &window, [&window, file = files.first()] { window.openFile(file); });
    return application.exec();
}
