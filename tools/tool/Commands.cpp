#include "Commands.h"

#include <cstdio>

namespace wr::tool {

namespace {

const QString ProgramName = QStringLiteral("wrpd6t-tool");

} // namespace

QTextStream &out()
{
    static QTextStream stream(stdout);
    return stream;
}

QTextStream &err()
{
    static QTextStream stream(stderr);
    return stream;
}

CommandLine::CommandLine(const QString &name, const QString &description)
    : m_name(name)
{
    m_parser.setApplicationDescription(description);
    m_parser.addHelpOption();
    // The subcommand's own name is the first positional argument.
    m_parser.addPositionalArgument(name, QString(), name);
}

void CommandLine::addArgument(const QString &name, const QString &description)
{
    m_parser.addPositionalArgument(name, description);
    m_argumentNames.append(name);
}

std::optional<int> CommandLine::parse(const QStringList &commandLine)
{
    if (!m_parser.parse(commandLine))
        return usageError(m_parser.errorText());
    if (m_parser.isSet(QStringLiteral("help"))) {
        // The parser names the program by its full path; the usage line reads
        // better as the command the user types.
        out() << "Usage: " << ProgramName << ' ' << m_name << " [options]";
        for (const QString &name : m_argumentNames)
            out() << ' ' << name;
        out() << '\n' << m_parser.helpText().section(QLatin1Char('\n'), 1);
        out().flush();
        return Success;
    }
    const qsizetype given = arguments().size();
    if (given < m_argumentNames.size())
        return usageError(QStringLiteral("missing argument"));
    if (given > m_argumentNames.size())
        return usageError(QStringLiteral("too many arguments"));
    return std::nullopt;
}

QStringList CommandLine::arguments() const
{
    QStringList positional = m_parser.positionalArguments();
    if (!positional.isEmpty())
        positional.removeFirst(); // the subcommand name
    return positional;
}

int CommandLine::usageError(const QString &message) const
{
    err() << ProgramName << ' ' << m_name << ": " << message << '\n'
          << "Run '" << ProgramName << ' ' << m_name << " --help' for the usage.\n";
    err().flush();
    return UsageError;
}

} // namespace wr::tool
