// Subcommands that move channel lists between data files and CHIRP CSV:
// export-csv, import-csv.

#include "Commands.h"

#include "channels/ChannelCsv.h"
#include "channels/ChannelTable.h"
#include "core/BandLimits.h"
#include "core/CsvText.h"
#include "core/Language.h"
#include "core/MemoryImage.h"
#include "file/DataFile.h"

namespace wr::tool {

namespace {

int runExport(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("export-csv"),
                     QStringLiteral("Writes the channels in use as a CHIRP CSV file (UTF-8, CR LF)."));
    line.addArgument(QStringLiteral("FILE.tw"), QStringLiteral("The data file to export."));
    line.addArgument(QStringLiteral("OUT.csv"), QStringLiteral("The CSV file to write; an existing file is replaced."));
    if (const auto status = line.parse(arguments))
        return *status;

    const std::optional<MemoryImage> image = readImage(line.arguments().at(0));
    if (!image)
        return Failure;
    const QString out = line.arguments().at(1);
    QString error;
    if (!DataFile::WriteBytes(out, chirpCsvFile(ChannelTable::load(*image, English).inUse()), &error))
        return fileFailure(out, error);
    return Success;
}

int runImport(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("import-csv"),
                     QStringLiteral("Imports the channels of a CHIRP CSV file into a data file. Rows that are "
                                    "changed or skipped are reported on the standard error. Only the channels "
                                    "named by the rows change. Exit status 1 when the file is refused or no row "
                                    "can be used (OUT.tw is then not written)."));
    line.addArgument(QStringLiteral("FILE.tw"), QStringLiteral("The data file to import into."));
    line.addArgument(QStringLiteral("IN.csv"), QStringLiteral("The CSV file to read."));
    line.addArgument(QStringLiteral("OUT.tw"), QStringLiteral("The data file to write; it may be FILE.tw."));
    if (const auto status = line.parse(arguments))
        return *status;

    const QString dataPath = line.arguments().at(0);
    const QString csvPath = line.arguments().at(1);
    std::optional<MemoryImage> image = readImage(dataPath);
    if (!image)
        return Failure;
    const csv::File file = csv::readFile(csvPath);
    if (file.problem == csv::File::Problem::Unreadable)
        return fileFailure(csvPath, file.error);
    if (file.problem == csv::File::Problem::TooLarge)
        return fileFailure(csvPath, QStringLiteral("too large for a channel list"));

    // A file of a radio never read holds no band limits; the usual ones of
    // the radio stand in for them.
    BandLimitArray limits = LoadBandLimits(*image);
    if (limits == BandLimitArray{}) {
        limits = DefaultBandLimits;
        err() << dataPath << ": no band limits (never read from a radio); using " << limits[RxLower1] << '-'
              << limits[RxUpper1] << " and " << limits[RxLower2] << '-' << limits[RxUpper2] << " MHz\n";
    }

    // Rows without a Location go into the channels from 1 on; a row giving
    // some of the channel list's cells only changes a channel in use.
    const ChannelTable table = ChannelTable::load(*image, English);
    const CsvImport import = readChannelCsv(file.text, limits, {.table = &table});
    if (import.refused)
        return fileFailure(csvPath,
                           QStringLiteral("no Frequency column and no column of the channel list: not a channel list"));
    for (const ImportNote &note : import.notes) {
        err() << csvPath << ':' << note.line << ": ";
        if (const QString column = note.columnName(English); !column.isEmpty())
            err() << column << ' ';
        err() << '"' << note.value << "\": " << note.text(English) << '\n';
    }
    err() << csvPath << ": " << import.imported << " rows imported (" << import.changed << " changed), "
          << import.skipped << " skipped\n";
    if (import.imported == 0)
        return Failure;

    applyImport(*image, import);
    QString error;
    const QString out = line.arguments().at(2);
    if (!DataFile::Write(out, *image, &error))
        return fileFailure(out, error);
    return Success;
}

} // namespace

QList<Command> csvCommands()
{
    return {
        {QStringLiteral("export-csv"), QStringLiteral("write the channels of a data file as CHIRP CSV"), runExport},
        {QStringLiteral("import-csv"), QStringLiteral("import CHIRP CSV channels into a data file"), runImport},
    };
}

} // namespace wr::tool
