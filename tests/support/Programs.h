#pragma once

// The built programs run as separate processes, as a user runs them. A suite
// names the programs it runs (wrpd6t_add_test's PROGRAMS), which gives it
// their paths: WRPD6T_TOOL_PATH, WRPD6T_RADIO_SIM_PATH, WRPD6T_PATH.

#include <QMap>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <csignal>
#include <memory>
#include <vector>

namespace wr::test {

struct Run
{
    int exitCode = -1; // -1: it did not finish normally within a minute
    QString out;
    QString err;
};

// The environment of a program run for a test in folder: its data folder is
// folder/data/wrpd6t and its settings are in folder/config/wrpd6t.
inline QProcessEnvironment environmentIn(const QString &folder)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_DATA_HOME"), folder + QStringLiteral("/data"));
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), folder + QStringLiteral("/config"));
    return environment;
}

// Runs a program in folder, "@" in an argument standing for the folder, with
// nobody at a terminal to answer it. With interruptAtQuarters, Ctrl+C once
// that many progress lines on its error output have said 25 %.
inline Run runProgram(const QString &program, QStringList arguments, const QString &folder,
                      int interruptAtQuarters = 0)
{
    QProcess process;
    arguments.replaceInStrings(QStringLiteral("@"), folder);
    process.setWorkingDirectory(folder);
    process.setProcessEnvironment(environmentIn(folder));
    process.setReadChannel(QProcess::StandardError);
    process.start(program, arguments);
    process.closeWriteChannel();
    QByteArray said;
    while (said.count("25%") < interruptAtQuarters && process.waitForReadyRead(10000))
        said += process.readAllStandardError();
    if (said.count("25%") < interruptAtQuarters || (interruptAtQuarters > 0 && ::kill(pid_t(process.processId()), SIGINT) != 0))
        return {};
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(said + process.readAllStandardError())};
}

#ifdef WRPD6T_TOOL_PATH
inline Run runTool(const QStringList &arguments, const QString &folder, int interruptAtQuarters = 0)
{
    return runProgram(QStringLiteral(WRPD6T_TOOL_PATH), arguments, folder, interruptAtQuarters);
}
#endif

#ifdef WRPD6T_RADIO_SIM_PATH
// Virtual radios in processes of their own, each set listed as COM<first>
// and up in the serial-ports folder of a test folder's data folder (see
// environmentIn). They go, and take their links along, when this does.
class SimulatedRadios
{
public:
    ~SimulatedRadios()
    {
        for (const std::unique_ptr<QProcess> &radios : m_processes) {
            radios->terminate(); // SIGTERM: the radios remove their links
            if (!radios->waitForFinished(5000))
                radios->kill();
        }
    }

    // Starts count radios from COM first, without pacing, each with the
    // simulator's further arguments; their devices by port number, or
    // none when they did not start.
    QMap<int, QString> start(const QString &folder, int first, int count, const QStringList &arguments = {})
    {
        QProcess &radios = *m_processes.emplace_back(std::make_unique<QProcess>());
        radios.setProcessEnvironment(environmentIn(folder));
        radios.start(QStringLiteral(WRPD6T_RADIO_SIM_PATH),
                     QStringList{QStringLiteral("--no-pacing"), QStringLiteral("--com"), QString::number(first),
                                 QStringLiteral("--count"), QString::number(count)}
                         + arguments);
        QMap<int, QString> devices;
        if (!radios.waitForStarted(5000))
            return {};
        while (devices.size() < count) {
            if (!radios.canReadLine() && !radios.waitForReadyRead(10000))
                return {};
            const QString line = QString::fromUtf8(radios.readLine()).trimmed(); // "COM80 /dev/pts/3"
            devices.insert(line.section(u' ', 0, 0).mid(3).toInt(), line.section(u' ', 1));
        }
        return devices;
    }
    // The process of the radios started last.
    QProcess &last() const { return *m_processes.back(); }

private:
    std::vector<std::unique_ptr<QProcess>> m_processes;
};
#endif

} // namespace wr::test
