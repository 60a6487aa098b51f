// The sheet subcommand of wrpd6t-tool: a data file's channel sheet as a PDF
// file, to print or hand to a customer.

#include "Commands.h"

#include "core/Language.h"
#include "file/DataFile.h"
#include "sheet/ChannelSheet.h"

#include <QDateTime>
#include <QFileInfo>

namespace wr::tool {

namespace {

int runSheet(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("sheet"),
                     QStringLiteral("Writes a channel sheet as a PDF file: the channels in use as the channel list "
                                    "shows them, the optional features and keys as info --settings lists them, "
                                    "and the FM radio's channels, with the file's name and the date. The fonts "
                                    "are embedded and the text can be searched and copied."));
    line.addLanguageOption();
    const QCommandLineOption paper({QStringLiteral("p"), QStringLiteral("paper")},
                                   QStringLiteral("Paper: a4 or letter. By default that of the locale (LC_PAPER, "
                                                  "else LC_ALL, else LANG): Letter in the United States and "
                                                  "Canada, A4 elsewhere."),
                                   QStringLiteral("size"));
    line.parser().addOption(paper);
    const QCommandLineOption channels({QStringLiteral("c"), QStringLiteral("channels")},
                                      QStringLiteral("Only these channels (those of them in use), such as 1-16,20."),
                                      QStringLiteral("list"));
    line.parser().addOption(channels);
    line.addArgument(QStringLiteral("FILE.tw"), QStringLiteral("The data file."));
    line.addArgument(QStringLiteral("OUT.pdf"), QStringLiteral("The PDF file to write; an existing file is replaced."));
    if (const auto status = line.parse(arguments))
        return *status;

    const std::optional<int> language = line.language();
    if (!language)
        return UsageError;
    QPageSize::PageSizeId size = sheet::localePaper();
    if (line.parser().isSet(paper)) {
        const QString name = line.parser().value(paper).toLower();
        if (name != u"a4" && name != u"letter")
            return line.usageError(QStringLiteral("--paper must be a4 or letter"));
        size = name == u"a4" ? QPageSize::A4 : QPageSize::Letter;
    }
    QList<int> chosen;
    if (line.parser().isSet(channels)) {
        const std::optional<QList<int>> list = parseChannelList(line.parser().value(channels));
        if (!list)
            return line.usageError(QStringLiteral("--channels must list channels 1-128, such as 1-16,20"));
        chosen = *list;
    }

    const QString path = line.arguments().at(0);
    const std::optional<MemoryImage> image = readImage(path);
    if (!image)
        return Failure;
    const QString out = line.arguments().at(1);
    const QByteArray pdf =
        sheet::sheetPdf(sheet::sheetContent(*image, Language(*language), QFileInfo(path).fileName(),
                                            QDateTime::currentDateTime(), chosen),
                        sheet::sheetPageLayout(size));
    if (pdf.isEmpty())
        return fileFailure(out, QStringLiteral("the sheet could not be drawn"));
    QString error;
    if (!DataFile::WriteBytes(out, pdf, &error))
        return fileFailure(out, error);
    return Success;
}

} // namespace

QList<Command> sheetCommands()
{
    return {{QStringLiteral("sheet"), QStringLiteral("write a channel sheet of a data file as a PDF file"), runSheet,
             true}};
}

} // namespace wr::tool
