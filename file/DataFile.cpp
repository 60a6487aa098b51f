#include "file/DataFile.h"

#include "core/Language.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <array>
#include <cerrno>
#include <cstdint>
#include <utility>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace wr::DataFile {

namespace {

// Pass headers hold P and C as three big-endian bytes.
constexpr qsizetype MaxThreeByteValue = 0xFFFFFF;
constexpr int PassHeaderSize = 7; // P (3), M (1), C (3)

// A control byte with bit 7 clear stands for seven symbols; one with bit 7 set
// for a run of data bytes, the longest being 0xFF = 134 bytes without an M.
constexpr int GroupSymbols = 7;
constexpr std::uint8_t RunFlag = 0x80;
constexpr int RunBias = 7;
constexpr int LongestRun = 134;
constexpr std::uint8_t LongestRunByte = 0xFF;

// A pass that eliminates this many bytes is kept even when it makes the data
// longer: the following passes make up for it.
constexpr qsizetype AlwaysKeepCount = 1100;

constexpr char MarkerText[] = "PDZUNK";
constexpr int MarkerSize = sizeof(MarkerText) - 1;

std::uint8_t byteAt(QByteArrayView bytes, qsizetype index)
{
    return static_cast<std::uint8_t>(bytes[index]);
}

qsizetype readThreeBytes(QByteArrayView bytes, qsizetype offset)
{
    return (qsizetype(byteAt(bytes, offset)) << 16) | (qsizetype(byteAt(bytes, offset + 1)) << 8)
        | qsizetype(byteAt(bytes, offset + 2));
}

void appendByte(QByteArray &buffer, unsigned value)
{
    buffer.append(static_cast<char>(value & 0xFF));
}

void appendThreeBytes(QByteArray &buffer, qsizetype value)
{
    appendByte(buffer, static_cast<unsigned>(value >> 16));
    appendByte(buffer, static_cast<unsigned>(value >> 8));
    appendByte(buffer, static_cast<unsigned>(value));
}

} // namespace

QByteArrayView Marker()
{
    return QByteArrayView(MarkerText, MarkerSize);
}

QByteArray Container(const MemoryImage &image)
{
    QByteArray container;
    container.reserve(ContainerSize);
    container.append(Marker());
    container.append(HeaderSize - MarkerSize, static_cast<char>(MemoryImage::Erased));
    container.append(image.bytes());
    return container;
}

std::optional<QByteArray> PackPass(QByteArrayView input)
{
    const qsizetype length = input.size();
    if (length < 1)
        return std::nullopt;

    // M is the most frequent value; on a tie the highest value wins.
    std::array<qsizetype, 256> counts{};
    for (char ch : input)
        ++counts[static_cast<std::uint8_t>(ch)];
    unsigned eliminated = 0;
    for (unsigned value = 0; value < counts.size(); ++value) {
        if (counts[value] >= counts[eliminated])
            eliminated = value;
    }
    const qsizetype count = counts[eliminated];
    if (count > MaxThreeByteValue)
        return std::nullopt;

    // The control buffer starts with M and C; P counts them with it.
    QByteArray control;
    control.reserve(4 + count + length / LongestRun + 2);
    appendByte(control, eliminated);
    appendThreeBytes(control, count);
    QByteArray data;
    data.reserve(length - count);

    int symbols = 0;       // symbols of the current group so far
    unsigned flags = 0;    // the M bits of the current group, bit 6 first
    qsizetype found = 0;
    qsizetype position = 0;
    while (found < count) {
        const std::uint8_t value = byteAt(input, position);
        if (value == eliminated) {
            ++found;
            if (symbols < GroupSymbols) {
                flags |= 1u << (GroupSymbols - 1 - symbols);
            } else {
                // The group has gone on as a run of data bytes: the run ends here.
                appendByte(control, RunFlag | unsigned(symbols - RunBias));
                flags = 0;
                symbols = -1;
            }
        } else {
            data.append(static_cast<char>(value));
        }
        ++position;
        ++symbols;
        if (symbols == GroupSymbols && flags != 0) {
            appendByte(control, flags);
            flags = 0;
            symbols = 0;
        } else if (symbols == LongestRun) {
            appendByte(control, LongestRunByte);
            flags = 0;
            symbols = 0;
        }
    }
    if (flags != 0)
        appendByte(control, flags);
    data.append(input.sliced(position));

    const qsizetype controlSize = control.size();
    const bool shorterOrOneMore = controlSize + data.size() + 3 <= length + 1;
    if (!(shorterOrOneMore || count >= AlwaysKeepCount) || controlSize > MaxThreeByteValue)
        return std::nullopt;

    QByteArray pass;
    pass.reserve(3 + controlSize + data.size());
    appendThreeBytes(pass, controlSize);
    pass.append(control);
    pass.append(data);
    return pass;
}

std::optional<QByteArray> UnpackPass(QByteArrayView input)
{
    const qsizetype length = input.size();
    if (length < PassHeaderSize)
        return std::nullopt;

    const qsizetype controlSize = readThreeBytes(input, 0);
    const char eliminated = input[3];
    const qsizetype count = readThreeBytes(input, 4);
    const qsizetype dataStart = controlSize + 3;
    if (controlSize < 4 || dataStart > length)
        return std::nullopt;
    // Each control byte puts back at most one group's worth of M bytes, so a
    // larger count is a lie; checking it first keeps the output small.
    const qsizetype controlBytes = controlSize - 4;
    const qsizetype outputSize = (length - dataStart) + count;
    if (count > controlBytes * GroupSymbols || outputSize > MaxUnpackedSize)
        return std::nullopt;

    QByteArray output;
    output.reserve(outputSize);
    qsizetype control = PassHeaderSize;
    qsizetype data = dataStart;
    qsizetype inserted = 0;
    while (inserted < count) {
        if (control >= dataStart)
            return std::nullopt;
        const std::uint8_t code = byteAt(input, control++);
        if (code & RunFlag) {
            const int run = (code & 0x7F) + RunBias;
            if (length - data < run)
                return std::nullopt;
            output.append(input.sliced(data, run));
            data += run;
            if (run != LongestRun) {
                output.append(eliminated);
                ++inserted;
            }
        } else {
            for (int bit = GroupSymbols - 1; bit >= 0 && inserted < count; --bit) {
                if (code & (1u << bit)) {
                    output.append(eliminated);
                    ++inserted;
                } else {
                    if (data >= length)
                        return std::nullopt;
                    output.append(input[data++]);
                }
            }
        }
    }
    // A packer never writes control bytes beyond the last M.
    if (control != dataStart)
        return std::nullopt;
    output.append(input.sliced(data));
    return output;
}

std::optional<QByteArray> PackData(QByteArrayView input)
{
    QByteArray packed = input.toByteArray();
    int kept = 0;
    while (std::optional<QByteArray> pass = PackPass(packed)) {
        if (++kept > MaxPasses)
            return std::nullopt;
        packed = std::move(*pass);
    }
    appendByte(packed, unsigned(kept));
    return packed;
}

std::optional<QByteArray> UnpackData(QByteArrayView packed)
{
    if (packed.isEmpty())
        return std::nullopt;
    const int passes = byteAt(packed, packed.size() - 1);
    QByteArray data = packed.first(packed.size() - 1).toByteArray();
    for (int pass = 0; pass < passes; ++pass) {
        std::optional<QByteArray> unpacked = UnpackPass(data);
        if (!unpacked)
            return std::nullopt;
        data = std::move(*unpacked);
    }
    return data;
}

ReadResult Decode(QByteArrayView fileBytes)
{
    ReadResult result;
    const auto failure = [&result](ReadStatus status, ReadProblem problem) {
        result.status = status;
        result.problem = problem;
        return result;
    };
    if (fileBytes.size() > MaxUnpackedSize)
        return failure(ReadStatus::WrongType, ReadProblem::TooLarge);
    std::optional<QByteArray> container = UnpackData(fileBytes);
    if (!container) // an empty file lacks even the pass count
        return failure(ReadStatus::Damaged, fileBytes.isEmpty() ? ReadProblem::TooShort : ReadProblem::BadPacking);
    if (container->size() < ContainerSize)
        return failure(ReadStatus::WrongType, ReadProblem::TooShort);
    if (container->size() > ContainerSize)
        return failure(ReadStatus::WrongType, ReadProblem::TooLong);
    if (!container->startsWith(Marker()))
        return failure(ReadStatus::WrongType, ReadProblem::NoMarker);
    result.status = ReadStatus::Ok;
    result.image = container->sliced(HeaderSize);
    result.container = std::move(*container);
    return result;
}

FileBytes ReadRegularFile(const QString &path, qint64 limit)
{
    FileBytes result;
    QFile file;
#ifdef Q_OS_UNIX
    // Looked at before opening, and what was opened looked at again (the
    // name may have changed hands in between); the open never waits.
    const QByteArray name = QFile::encodeName(path);
    struct stat info{};
    if (::stat(name.constData(), &info) == 0 && !S_ISREG(info.st_mode)) {
        result.status = ReadStatus::WrongType;
        return result;
    }
    const int descriptor = ::open(name.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) {
        result.errorString = qt_error_string(errno);
        return result;
    }
    if (::fstat(descriptor, &info) != 0 || !S_ISREG(info.st_mode)) {
        ::close(descriptor);
        result.status = ReadStatus::WrongType;
        return result;
    }
    if (!file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(descriptor);
        result.errorString = file.errorString();
        return result;
    }
#else
    const QFileInfo info(path);
    if (info.exists() && !info.isFile()) {
        result.status = ReadStatus::WrongType;
        return result;
    }
    file.setFileName(path);
    if (!file.open(QIODevice::ReadOnly)) {
        result.errorString = file.errorString();
        return result;
    }
#endif
    result.bytes = file.read(limit);
    if (file.error() != QFileDevice::NoError) {
        result.bytes.clear();
        result.errorString = file.errorString();
        return result;
    }
    result.status = ReadStatus::Ok;
    return result;
}

QString IncorrectFileType(const QString &path, ReadProblem problem, int languageIndex)
{
    using enum ReadProblem;
    static constexpr std::pair<ReadProblem, Text> Problems[]{
        {NotAFile, {u"%1: not a regular file", u"%1：不是普通文件", u"%1：不是普通文件"}},
        {TooLarge, {u"%1: far too large for a data file", u"%1：文件太大，不是数据文件", u"%1：文件太大，不是數據文件"}},
        {BadPacking, {u"%1: its packing is damaged", u"%1：压缩数据已损坏", u"%1：壓縮數據已損壞"}},
        {TooShort, {u"%1: too short for a data file", u"%1：文件太短，不是数据文件", u"%1：文件太短，不是數據文件"}},
        {TooLong, {u"%1: too long for a data file", u"%1：文件太长，不是数据文件", u"%1：文件太長，不是數據文件"}},
        {NoMarker, {u"%1: no data file marker at its start", u"%1：开头没有数据文件标记", u"%1：開頭沒有數據文件標記"}},
    };
    QString message = Text{u"Incorrect File Type.", u"文件类型不正确。", u"文件類型不正確。"}.in(languageIndex);
    for (const auto &[kind, words] : Problems) {
        if (kind == problem)
            message += u'\n' + words.in(languageIndex).arg(QFileInfo(path).fileName());
    }
    return message;
}

ReadResult Read(const QString &path)
{
    // One byte more than the limit tells an oversized file without reading all of it.
    FileBytes file = ReadRegularFile(path, qint64(MaxUnpackedSize) + 1);
    if (file.status != ReadStatus::Ok) {
        ReadResult result;
        result.status = file.status;
        result.problem = file.status == ReadStatus::WrongType ? ReadProblem::NotAFile : ReadProblem::None;
        result.errorString = file.errorString;
        return result;
    }
    return Decode(file.bytes);
}

std::optional<QByteArray> Encode(const MemoryImage &image)
{
    return PackData(Container(image));
}

bool WriteBytes(const QString &path, QByteArrayView content, QString *errorString)
{
    auto fail = [errorString](const QString &text) {
        if (errorString)
            *errorString = text;
        return false;
    };

    // The save file below would replace a write-protected file by renaming
    // over it; the user protected it so that it is not replaced.
    if (QFileInfo::exists(path)) {
        QFile existing(path);
        if (!existing.open(QIODevice::ReadWrite))
            return fail(existing.errorString());
    }

    // Unbuffered, every write goes straight to the system and each failure
    // comes with its reason. On a disk that fills up the system first takes
    // part of a write; through Qt's buffer that short write would only be
    // "Unknown error", here the write of the rest fails with "No space left
    // on device". A failed file is never committed over the old one.
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return fail(file.errorString());
    for (qsizetype written = 0; written < content.size();) {
        const qint64 count = file.write(content.data() + written, content.size() - written);
        if (count <= 0) {
            const QString text = file.errorString();
            file.cancelWriting();
            return fail(text);
        }
        written += count;
    }
    if (!file.commit())
        return fail(file.errorString());
    return true;
}

bool Write(const QString &path, const MemoryImage &image, QString *errorString)
{
    const std::optional<QByteArray> content = Encode(image);
    if (!content) {
        if (errorString)
            *errorString = QStringLiteral("The data needs more packing passes than a data file can count.");
        return false;
    }
    return WriteBytes(path, *content, errorString);
}

} // namespace wr::DataFile
