// Subcommands on ".tw" data files: new, info, dump, unpack, pack, backups.

#include "Commands.h"

#include "channels/ChannelRecord.h"
#include "core/Language.h"
#include "core/MemoryImage.h"
#include "features/SettingsReport.h"
#include "features/FmRadio.h"
#include "file/Backups.h"
#include "file/DataFile.h"

#include <QDir>

namespace wr::tool {

namespace {

int writeFile(const QString &path, QByteArrayView content)
{
    QString errorString;
    if (!DataFile::WriteBytes(path, content, &errorString))
        return fileFailure(path, errorString);
    return Success;
}

int runNew(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("new"), QStringLiteral("Writes the data file of a fresh radio."));
    line.addArgument(QStringLiteral("FILE.tw"), QStringLiteral("The data file to write; an existing file is replaced."));
    if (const auto status = line.parse(arguments))
        return *status;

    const QString path = line.arguments().at(0);
    MemoryImage image;
    image.InitImage();
    QString errorString;
    if (!DataFile::Write(path, image, &errorString))
        return fileFailure(path, errorString);
    return Success;
}

// The FM receiver's VFO and its 32 channels, as its grid shows them.
void printFmChannels(const MemoryImage &image, int languageIndex)
{
    const fm::Texts texts = fm::load(image);
    out() << "CH.\tFrequency\n" << fm::VfoName.in(languageIndex) << '\t' << texts.vfo << '\n';
    for (int channel = 0; channel < fm::ChannelCount; ++channel)
        out() << channel << '\t' << texts.channels[std::size_t(channel)] << '\n';
}

int runInfo(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("info"),
                     QStringLiteral("Lists the channels in use, tab-separated, as the channel list shows them."));
    line.addLanguageOption();
    const QCommandLineOption settings(QStringLiteral("settings"),
                                      QStringLiteral("List the optional features and the key setting instead, "
                                                     "one \"caption: value\" line each, as the dialogs show them."));
    line.parser().addOption(settings);
    const QCommandLineOption fmRadio(QStringLiteral("fm"), QStringLiteral("Lists the FM radio's VFO and its 32 "
                                                                          "channels instead, empty ones included."));
    line.parser().addOption(fmRadio);
    line.addArgument(QStringLiteral("FILE.tw"), QStringLiteral("The data file to list."));
    if (const auto status = line.parse(arguments))
        return *status;

    const std::optional<int> language = line.language();
    if (!language)
        return UsageError;
    const int languageIndex = *language;

    const std::optional<MemoryImage> read = readImage(line.arguments().at(0));
    if (!read)
        return Failure;
    const MemoryImage &image = *read;
    if (line.parser().isSet(settings)) {
        for (const QString &setting : describeSettings(image, languageIndex))
            out() << setting << '\n';
        return Success;
    }
    if (line.parser().isSet(fmRadio)) {
        printFmChannels(image, languageIndex);
        return Success;
    }

    // The headers of the channel list's columns.
    out() << "CH.\tRx Freq\tTx Freq\tCTCSS/DCS Dec\tCTCSS/DCS Enc\tTX Power\tW/N\tScan Add\tBCL\n";
    for (int channel = 1; channel <= ChannelRecord::ChannelCount; ++channel) {
        const ChannelTexts texts = ReadChannelTexts(image, channel, languageIndex);
        if (texts.isEmpty())
            continue;
        out() << (QStringList{QString::number(channel)} + texts.cells()).join(QLatin1Char('\t')) << '\n';
    }
    return Success;
}

int runDump(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("dump"),
                     QStringLiteral("Prints the memory image in hexadecimal: 1024 rows, the image address "
                                    "of the row and its 16 bytes."));
    line.addArgument(QStringLiteral("FILE.tw"), QStringLiteral("The data file to print."));
    if (const auto status = line.parse(arguments))
        return *status;

    const QString path = line.arguments().at(0);
    const std::optional<DataFile::ReadResult> file = readDataFile(path);
    if (!file)
        return Failure;

    auto hex = [](int value, int digits) {
        return QString::number(value, 16).toUpper().rightJustified(digits, QLatin1Char('0'));
    };
    for (int row = 0; row < MemoryImage::RowCount; ++row) {
        QString text = hex(row * MemoryImage::RowSize, 4) + QLatin1Char(':');
        for (int column = 0; column < MemoryImage::RowSize; ++column) {
            const auto value = static_cast<std::uint8_t>(file->image.at(row * MemoryImage::RowSize + column));
            text += QLatin1Char(' ') + hex(value, 2);
        }
        out() << text << '\n';
    }
    return Success;
}

int runUnpack(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("unpack"),
                     QStringLiteral("Writes the unpacked 16 400-byte container of a data file."));
    line.addArgument(QStringLiteral("FILE.tw"), QStringLiteral("The data file to unpack."));
    line.addArgument(QStringLiteral("OUT.bin"), QStringLiteral("The container file to write."));
    if (const auto status = line.parse(arguments))
        return *status;

    const QString path = line.arguments().at(0);
    const std::optional<DataFile::ReadResult> file = readDataFile(path);
    if (!file)
        return Failure;
    return writeFile(line.arguments().at(1), file->container);
}

int runPack(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("pack"),
                     QStringLiteral("Packs a 16 400-byte container (marker PDZUNK, ten FF bytes, the image) "
                                    "into a data file."));
    line.addArgument(QStringLiteral("IN.bin"), QStringLiteral("The container file to pack."));
    line.addArgument(QStringLiteral("OUT.tw"), QStringLiteral("The data file to write."));
    if (const auto status = line.parse(arguments))
        return *status;

    const QString path = line.arguments().at(0);
    const DataFile::FileBytes input = DataFile::ReadRegularFile(path, DataFile::ContainerSize + 1);
    if (input.status == DataFile::ReadStatus::CannotOpen)
        return fileFailure(path, input.errorString);
    const QByteArray &container = input.bytes;
    if (input.status != DataFile::ReadStatus::Ok || container.size() != DataFile::ContainerSize
        || !container.startsWith(DataFile::Marker()))
        return fileFailure(path, DataFile::IncorrectFileType(path, DataFile::ReadProblem::None, English));

    const std::optional<QByteArray> packed = DataFile::PackData(container);
    if (!packed)
        return fileFailure(path, QStringLiteral("needs more packing passes than a data file can count"));
    return writeFile(line.arguments().at(1), *packed);
}

int runBackups(const QStringList &arguments)
{
    const QString folder = QDir::toNativeSeparators(Backups::defaultFolder());
    CommandLine line(QStringLiteral("backups"),
                     QStringLiteral("Lists the automatic backups in %1, newest first, tab-separated: when each "
                                    "was kept, why (read: read from a radio; exit: the memory when the program "
                                    "closed, exit-unsaved: with unsaved changes; before-read, before-new, "
                                    "before-open: unsaved changes that a read, New or Open replaced; "
                                    "before-memory-map: the memory that the memory map's OK overwrote), how "
                                    "many channels are in use, and the data file.")
                         .arg(folder));
    if (const auto status = line.parse(arguments))
        return *status;

    out() << "Time\tReason\tChannels\tFile\n";
    const QList<Backups::Entry> entries = Backups::list();
    for (const Backups::Entry &entry : entries) {
        const DataFile::ReadResult file = DataFile::Read(entry.path);
        QString channels = QStringLiteral("unreadable");
        if (file.status == DataFile::ReadStatus::Ok) {
            MemoryImage image;
            image.setBytes(file.image);
            channels = QString::number(ChannelsInUse(image));
        }
        out() << entry.time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")) << '\t'
              << Backups::reasonName(entry.reason) << '\t' << channels << '\t'
              << QDir::toNativeSeparators(entry.path) << '\n';
    }
    return Success;
}

} // namespace

QList<Command> fileCommands()
{
    return {
        {QStringLiteral("new"), QStringLiteral("write the data file of a fresh radio"), runNew},
        {QStringLiteral("info"), QStringLiteral("list the channels of a data file"), runInfo},
        {QStringLiteral("dump"), QStringLiteral("print the memory image of a data file in hexadecimal"), runDump},
        {QStringLiteral("unpack"), QStringLiteral("write the unpacked container of a data file"), runUnpack},
        {QStringLiteral("pack"), QStringLiteral("pack a container into a data file"), runPack},
        {QStringLiteral("backups"), QStringLiteral("list the automatic backups"), runBackups},
    };
}

} // namespace wr::tool
