#include "Commands.h"

#include "core/Language.h"

#include <cstdio>

namespace wr::tool {

namespace {

const QString ProgramName = QStringLiteral("wrpd6t-tool");

} // namespace

int fileFailure(const QString &path, const QString &message)
{
    err() << ProgramName << ": " << path << ": " << message << '\n';
    err().flush();
    return Failure;
}

std::optional<DataFile::ReadResult> readDataFile(const QString &path)
{
    DataFile::ReadResult result = DataFile::Read(path);
    switch (result.status) {
    case DataFile::ReadStatus::Ok:
        return result;
    case DataFile::ReadStatus::CannotOpen:
        fileFailure(path, result.errorString);
        break;
    case DataFile::ReadStatus::Damaged:
    case DataFile::ReadStatus::WrongType:
        fileFailure(path, IncorrectFileType);
        break;
    }
    return std::nullopt;
}

std::optional<MemoryImage> readImage(const QString &path)
{
    const std::optional<DataFile::ReadResult> file = readDataFile(path);
    if (!file)
        return std::nullopt;
    MemoryImage image;
    image.setBytes(file->image);
    return image;
}

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
}

void CommandLine::addArgument(const QString &name, const QString &description)
{
    m_parser.addPositionalArgument(name, description);
    m_argumentNames.append(name);
}

std::optional<int> CommandLine::parse(const QStringList &commandLine)
{
    // The parser sees the program name and what follows the subcommand name.
    QStringList withoutName = commandLine.mid(0, 1);
    withoutName += commandLine.mid(2);
    if (!m_parser.parse(withoutName))
        return usageError(m_parser.errorText());
    if (m_parser.isSet(QStringLiteral("help")) || m_parser.isSet(QStringLiteral("help-all"))) {
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
    const bool list = m_minimumArguments >= 0;
    if (given < (list ? m_minimumArguments : m_argumentNames.size()))
        return usageError(QStringLiteral("missing argument"));
    if (!list && given > m_argumentNames.size())
        return usageError(QStringLiteral("too many arguments"));
    return std::nullopt;
}

QStringList CommandLine::arguments() const
{
    return m_parser.positionalArguments();
}

void CommandLine::addLanguageOption()
{
    m_parser.addOption(m_language);
}

std::optional<int> CommandLine::language() const
{
    bool isNumber = false;
    const int index = m_parser.value(m_language).toInt(&isNumber);
    if (!isNumber || index < 0 || index >= LanguageCount) {
        usageError(QStringLiteral("--language must be 0, 1 or 2"));
        return std::nullopt;
    }
    return index;
}

int CommandLine::usageError(const QString &message) const
{
    err() << ProgramName << ' ' << m_name << ": " << message << '\n'
          << "Run '" << ProgramName << ' ' << m_name << " --help' for the usage.\n";
    err().flush();
    return UsageError;
}

} // namespace wr::tool
