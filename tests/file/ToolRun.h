#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

namespace wr::test {

struct Run
{
    int exitCode = -1;
    QString out;
    QString err;
};

// Runs the built wrpd6t-tool (WRPD6T_TOOL_PATH) as a user would, in folder; "@" in an argument stands for the folder. The
// tool's data folder is @/data/wrpd6t.
inline Run runTool(QStringList arguments, const QString &folder)
{
    QProcess process;
    arguments.replaceInStrings(QStringLiteral("@"), folder);
    process.setWorkingDirectory(folder);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_DATA_HOME"), folder + QStringLiteral("/data"));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(WRPD6T_TOOL_PATH), arguments);
    Run run;
    if (process.waitForFinished(10000) && process.exitStatus() == QProcess::NormalExit)
        run = {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
               QString::fromUtf8(process.readAllStandardError())};
    return run;
}

} // namespace wr::test
