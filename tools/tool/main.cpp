// wrpd6t-tool: the radio's data files (and, with the link commands, the radio
// itself) from the command line. Each subcommand parses its own options.

#include "Commands.h"

#include "core/AppState.h"

#include <QCoreApplication>
#include <QGuiApplication>

#include <algorithm>
#include <memory>

using namespace wr::tool;

namespace {

// The overview keeps the layout of QCommandLineParser's help (usage line,
// description, then blocks of two-column entries), which the commands' own
// help has too: the manual page is made from both.
void printOverview(QTextStream &stream, const QList<Command> &commands)
{
    stream << "Usage: wrpd6t-tool COMMAND [options] ARGUMENTS\n"
              "Works on WR-PD6T data files and radios from the command line.\n"
              "Run 'wrpd6t-tool COMMAND --help' for the options and arguments of a command.\n"
              "\nCommands:\n";
    qsizetype width = 0;
    for (const Command &command : commands)
        width = std::max(width, command.name.size());
    for (const Command &command : commands)
        stream << "  " << command.name.leftJustified(width + 2) << command.summary << '\n';
    stream << "\nExit status:\n"
           << "  " << Success << "  success\n"
           << "  " << Failure << "  failure: a file that cannot be used, a radio that was not read or written\n"
           << "  " << UsageError << "  wrong arguments or options\n"
           << "A command whose help gives a status another meaning says so there.\n";
    stream.flush();
}

} // namespace

int main(int argc, char *argv[])
{
    QList<Command> commands = fileCommands();
    commands += linkCommands();
    commands += csvCommands();
    commands += diffCommands();
    commands += sheetCommands();
    commands += setCommands();

    // A command that draws text needs a GUI application for its fonts; on
    // the offscreen platform it needs no display, and Qt's notes about the
    // session it runs in stay out of the tool's messages.
    const QString name = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString();
    const auto command = std::find_if(commands.cbegin(), commands.cend(),
                                      [&name](const Command &candidate) { return candidate.name == name; });
    std::unique_ptr<QCoreApplication> application;
    if (command != commands.cend() && command->needsFonts) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &message) {
            if (type == QtCriticalMsg || type == QtFatalMsg)
                err() << message << '\n';
        });
        application = std::make_unique<QGuiApplication>(argc, argv);
    } else {
        application = std::make_unique<QCoreApplication>(argc, argv);
    }
    wr::InitApplicationIdentity();

    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 2) {
        printOverview(err(), commands);
        return UsageError;
    }
    if (name == u"--help" || name == u"-h" || name == u"help") {
        printOverview(out(), commands);
        return Success;
    }
    if (name == u"--version" || name == u"-v") {
        out() << "wrpd6t-tool " << QCoreApplication::applicationVersion() << '\n';
        out().flush();
        return Success;
    }
    if (command != commands.cend()) {
        const int status = command->run(arguments);
        out().flush();
        err().flush();
        return status;
    }
    err() << "wrpd6t-tool: unknown command '" << name << "'\n\n";
    printOverview(err(), commands);
    return UsageError;
}
