#pragma once

#include "core/BandLimits.h"
#include "core/MemoryImage.h"
#include "file/DataFile.h"

#include <QCommandLineParser>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTextStream>

#include <functional>
#include <optional>

namespace wr::tool {

// Exit status of every subcommand.
enum ExitStatus : int {
    Success = 0,
    Failure = 1,    // bad file, failed write, radio or port trouble; message on stderr
    UsageError = 2, // wrong arguments or options
};

// One subcommand of wrpd6t-tool. run() gets the whole command line, program
// name and subcommand name included, and returns an ExitStatus.
struct Command
{
    QString name;
    QString summary; // one line for the overview
    std::function<int(const QStringList &arguments)> run;
    // Draws text (the channel sheet): runs in a GUI application, for its
    // fonts, on the offscreen platform, so no display is needed.
    bool needsFonts = false;
};

// The tables main() dispatches over, one per source file.
QList<Command> fileCommands();
QList<Command> linkCommands();
QList<Command> csvCommands();
QList<Command> diffCommands();
QList<Command> sheetCommands();
QList<Command> setCommands();

// Standard output and standard error, UTF-8.
QTextStream &out();
QTextStream &err();

// Prints "wrpd6t-tool: PATH: message" to stderr; returns Failure.
int fileFailure(const QString &path, const QString &message);
// Reads a data file, or prints why it cannot be used.
std::optional<DataFile::ReadResult> readDataFile(const QString &path);
// The memory image of a data file, or nothing after printing why it cannot be used.
std::optional<MemoryImage> readImage(const QString &path);
// The band limits of a data file's image; those of the usual radio, said so
// on stderr, when the file holds none (its radio was never read).
BandLimitArray bandLimitsOf(const MemoryImage &image, const QString &path);

// Channel numbers given as a list such as "1-16,20": numbers and ranges of
// 1-128, separated by commas. Sorted, each once; nothing when the text is
// no such list.
std::optional<QList<int>> parseChannelList(QStringView text);

// The parser of one subcommand: "--help" on every subcommand, and the usage
// line "wrpd6t-tool NAME [options] ARGS...".
class CommandLine
{
public:
    CommandLine(const QString &name, const QString &description);

    QCommandLineParser &parser() { return m_parser; }
    // A positional argument the subcommand requires, in order.
    void addArgument(const QString &name, const QString &description);
    // For a subcommand that takes a list: any number of positional arguments
    // from `minimum` up is accepted, and the subcommand checks them itself.
    void setMinimumArguments(int minimum) { m_minimumArguments = minimum; }
    // The option "-l, --language" for the language of the texts: en, zh-CN or
    // zh-TW (or 0, 1, 2, the program's own numbers), English by default.
    void addLanguageOption();

    // Parses the arguments. An exit status means the subcommand ends here:
    // Success after printing the help, UsageError after printing what is
    // wrong. nullopt: go on with arguments().
    std::optional<int> parse(const QStringList &commandLine);
    // The positional arguments, the subcommand name not included.
    QStringList arguments() const;
    // The language index given with the language option; nullopt after a
    // usage error when it is none.
    std::optional<int> language() const;

    // Prints "wrpd6t-tool NAME: message" and the help to stderr.
    int usageError(const QString &message) const;

private:
    QString m_name;
    QCommandLineParser m_parser;
    QStringList m_argumentNames;
    int m_minimumArguments = -1; // -1: exactly the arguments added
    QCommandLineOption m_language{{QStringLiteral("l"), QStringLiteral("language")},
                                  QStringLiteral("Language of the texts: en (or 0) English, zh-CN (or 1) "
                                                 "Simplified Chinese, zh-TW (or 2) Traditional Chinese."),
                                  QStringLiteral("language"), QStringLiteral("en")};
};

} // namespace wr::tool
