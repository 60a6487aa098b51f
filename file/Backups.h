#pragma once

#include "core/Language.h"
#include "core/MemoryImage.h"

#include <QDateTime>
#include <QList>
#include <QString>

namespace wr {

// Why a backup was kept: a completed read from a radio; the memory as the
// program closed, with or without changes the modified test (the snapshot
// comparison) reported; or unsaved changes about to be replaced by a read,
// New, Open or the memory map's OK.
enum class BackupReason { Read, Exit, ExitUnsaved, BeforeRead, BeforeNew, BeforeOpen, BeforeMemoryMap };

// Automatic backups: the memory image kept as an ordinary data file in
// <application data folder>/backups, named after the local time it was kept
// and the reason, for example 2026-11-23_141502-read.tw. A second backup in
// the same second gets a sequence number: 2026-11-23_141502_2-exit.tw. The
// names sort in the order the backups were kept. Only a read is always kept:
// any other backup equal to the newest one is not written again.
//
// Backups happen behind the user's back, so they never disturb the command
// that caused them: a backup that cannot be written is reported in the result
// and otherwise ignored, and nothing here throws or waits for anything but
// the few small files it reads and writes.
namespace Backups {

// How many backups are kept; the oldest beyond this are deleted.
constexpr int KeptCount = 200;

enum class Status {
    Written,
    Unchanged, // equal to the newest backup, so not written again
    Failed,    // errorString says why; the folder is as it was
};

struct Result
{
    Status status = Status::Failed;
    QString path; // the backup written
    QString errorString;
};

struct Entry
{
    QDateTime time; // local time, to the second
    BackupReason reason = BackupReason::Read;
    QString path;
};

// The folder backups go to: the application data folder plus "/backups"
// (~/.local/share/wrpd6t/backups on Linux).
QString defaultFolder();

// Keeps the image in the default folder at the current time.
Result keep(const MemoryImage &image, BackupReason reason);
// The same in any folder, at a given time.
Result keep(const QString &folder, const MemoryImage &image, BackupReason reason, const QDateTime &now);

// The backups in a folder, newest first. Other files in the folder are not
// backups and are left alone.
QList<Entry> list(const QString &folder = defaultFolder());

// The reason as the file name spells it: "read", "exit", "exit-unsaved",
// "before-read", "before-new", "before-open" or "before-memory-map".
QString reasonName(BackupReason reason);
// The reason as the backups dialog shows it.
Text reasonText(BackupReason reason);

} // namespace Backups

} // namespace wr
