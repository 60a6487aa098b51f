#include "Commands.h"

#include "channels/ChannelRecord.h"
#include "core/Language.h"

#include <algorithm>
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
        fileFailure(path, DataFile::IncorrectFileType(path, result.problem, English));
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

BandLimitArray bandLimitsOf(const MemoryImage &image, const QString &path)
{
    BandLimitArray limits = LoadBandLimits(image);
    if (limits == BandLimitArray{}) {
        limits = DefaultBandLimits;
        err() << path << ": no band limits (never read from a radio); using " << limits[RxLower1] << '-'
              << limits[RxUpper1] << " and " << limits[RxLower2] << '-' << limits[RxUpper2] << " MHz\n";
    }
    return limits;
}

std::optional<QList<int>> parseChannelList(QStringView text)
{
    const auto channel = [](QStringView number) -> std::optional<int> {
        bool ok = false;
        const int value = number.trimmed().toInt(&ok);
        return ok && value >= 1 && value <= ChannelRecord::ChannelCount ? std::optional(value) : std::nullopt;
    };
    QList<int> channels;
    for (const QStringView item : text.split(u',')) {
        const qsizetype dash = item.indexOf(u'-');
        const std::optional<int> first = channel(dash < 0 ? item : item.first(dash));
        const std::optional<int> last = dash < 0 ? first : channel(item.sliced(dash + 1));
        if (!first || !last || *last < *first)
            return std::nullopt;
        for (int number = *first; number <= *last; ++number)
            channels.append(number);
    }
    std::sort(channels.begin(), channels.end());
    channels.erase(std::unique(channels.begin(), channels.end()), channels.end());
    return channels;
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
    // Language tags as locales spell them, and the program's own numbers.
    static const QStringList tags[LanguageCount]{
        {QStringLiteral("en"), QStringLiteral("0")},
        {QStringLiteral("zh-cn"), QStringLiteral("zh_cn"), QStringLiteral("zh-hans"), QStringLiteral("1")},
        {QStringLiteral("zh-tw"), QStringLiteral("zh_tw"), QStringLiteral("zh-hant"), QStringLiteral("2")},
    };
    const QString given = m_parser.value(m_language).toLower();
    for (int index = 0; index < LanguageCount; ++index) {
        if (tags[index].contains(given))
            return index;
    }
    usageError(QStringLiteral("--language must be en, zh-CN or zh-TW (or 0, 1, 2)"));
    return std::nullopt;
}

int CommandLine::usageError(const QString &message) const
{
    err() << ProgramName << ' ' << m_name << ": " << message << '\n'
          << "Run '" << ProgramName << ' ' << m_name << " --help' for the usage.\n";
    err().flush();
    return UsageError;
}

} // namespace wr::tool
