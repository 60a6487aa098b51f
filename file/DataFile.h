#pragma once

#include "core/MemoryImage.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <optional>

namespace wr {

// A ".tw" data file is the plain container below, packed by zero or more
// byte-elimination passes, followed by one byte that counts the passes.
//
// Plain container, 16 400 bytes:
//   offset 0   6 bytes   "PDZUNK"
//   offset 6  10 bytes   FF FF FF FF FF FF FF FF FF FF
//   offset 16 16384 bytes  the memory image, image address A at offset 16 + A
//
// One packing pass (multi-byte numbers big-endian):
//   offset 0      3 bytes  P = 4 + number of control bytes
//   offset 3      1 byte   M, the byte value eliminated
//   offset 4      3 bytes  C, how many M bytes the control section puts back
//   offset 7    P-4 bytes  control bytes
//   offset P+3    rest     data: the input without the eliminated M bytes
//
// Control byte 0xxxxxxx: seven symbols, bit 6 first; 1 = an M, 0 = next data byte.
// Control byte 1nnnnnnn: n + 7 data bytes then one M; 0xFF = 134 data bytes, no M.
namespace DataFile {

constexpr int HeaderSize = 16;
constexpr int ContainerSize = HeaderSize + MemoryImage::Size; // 16 400
constexpr int MaxPasses = 255;
// No pass is ever unpacked to more than this (64 containers), and a file
// longer than this is not read at all: a data file is never near it, so a
// larger count can only come from garbage.
constexpr int MaxUnpackedSize = 1 << 20;

// The marker at offset 0 of the plain container.
QByteArrayView Marker();

// The plain container of an image.
QByteArray Container(const MemoryImage &image);

// One pass each way. PackPass gives nullopt when the pass is not worth
// keeping (the caller stops packing); UnpackPass gives nullopt for bytes that
// are not a valid pass. Neither reads outside its input, and UnpackPass never
// builds more than a few megabytes whatever the counts claim.
std::optional<QByteArray> PackPass(QByteArrayView input);
std::optional<QByteArray> UnpackPass(QByteArrayView input);

// Packs as many passes as pay off and appends the pass count; nullopt when
// more than 255 passes would be kept, which the count byte cannot say.
std::optional<QByteArray> PackData(QByteArrayView input);
// Drops the count byte and undoes that many passes; nullopt when damaged.
std::optional<QByteArray> UnpackData(QByteArrayView packed);

enum class ReadStatus {
    Ok,
    CannotOpen, // the file could not be read; errorString says why
    Damaged,    // the packing is broken ("Incorrect File Type." titled "Error")
    WrongType,  // wrong length or marker, or no regular file ("Incorrect File Type." titled WR-PD6T)
};

// What is wrong with a file that is no data file, for the message that says so.
enum class ReadProblem {
    None,
    NotAFile,   // a folder, a pipe, a device
    TooLarge,   // far larger than any data file could be
    BadPacking, // the passes cannot be undone
    TooShort,   // unpacked, shorter than the container; or empty
    TooLong,    // unpacked, longer than the container
    NoMarker,   // unpacked to the container's length, without "PDZUNK" at its start
};

struct ReadResult
{
    ReadStatus status = ReadStatus::CannotOpen;
    ReadProblem problem = ReadProblem::None; // for Damaged and WrongType
    QByteArray image;     // 16 384 bytes when status is Ok
    QByteArray container; // the unpacked 16 400 bytes when status is Ok
    QString errorString;  // the system's text when status is CannotOpen
};

// Reads and checks a data file; the caller's image is not involved.
ReadResult Read(const QString &path);

// "Incorrect File Type.", the message for a file that is no data file or a
// damaged one, in a language; for a problem other than None a second line
// names the file and what is wrong with it, so that the user knows which file
// it was and whether another copy is worth trying.
QString IncorrectFileType(const QString &path, ReadProblem problem, int languageIndex);

// At most limit bytes of a regular file. Anything else (a pipe, a device, a
// socket, a folder) is WrongType at once: it is never opened in a way that
// could wait, as opening a pipe waits for a writer and reading it for its end.
struct FileBytes
{
    ReadStatus status = ReadStatus::CannotOpen; // Ok, CannotOpen or WrongType
    QByteArray bytes;
    QString errorString; // the system's text when status is CannotOpen
};
FileBytes ReadRegularFile(const QString &path, qint64 limit);
ReadResult Decode(QByteArrayView fileBytes);

// The complete file content for an image.
std::optional<QByteArray> Encode(const MemoryImage &image);

// Replaces the file atomically: on failure the previous file is left as it
// was and errorString holds the system's description ("No space left on
// device" when the disk fills up).
bool Write(const QString &path, const MemoryImage &image, QString *errorString);
// The same for any content: the whole file is staged in memory and replaces
// the target only when completely written.
bool WriteBytes(const QString &path, QByteArrayView content, QString *errorString);

} // namespace DataFile

} // namespace wr
