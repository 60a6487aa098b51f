#include "file/Backups.h"

#include "file/DataFile.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QStandardPaths>

#include <algorithm>
#include <optional>

namespace wr::Backups {

namespace {

const QString StampFormat = QStringLiteral("yyyy-MM-dd_HHmmss");

struct ReasonWords
{
    BackupReason reason;
    QStringView name; // in the file name
    Text text;        // in the backups dialog
};

constexpr ReasonWords Reasons[]{
    {BackupReason::Read, u"read", {u"Read from the radio", u"从对讲机读取", u"從對講機讀取"}},
    {BackupReason::Exit, u"exit", {u"Program closed", u"程序关闭", u"程序關閉"}},
    {BackupReason::ExitUnsaved, u"exit-unsaved",
     {u"Program closed with unsaved changes", u"程序关闭时有未保存的修改", u"程序關閉時有未保存的修改"}},
    {BackupReason::BeforeRead, u"before-read",
     {u"Unsaved changes before a read", u"读取前未保存的修改", u"讀取前未保存的修改"}},
    {BackupReason::BeforeNew, u"before-new", {u"Unsaved changes before New", u"新建前未保存的修改", u"新建前未保存的修改"}},
    {BackupReason::BeforeOpen, u"before-open",
     {u"Unsaved changes before Open", u"打开前未保存的修改", u"打開前未保存的修改"}},
    {BackupReason::BeforeMemoryMap, u"before-memory-map",
     {u"Before the memory map's OK", u"Memory Map 确定前", u"Memory Map 確定前"}},
};

const ReasonWords &wordsFor(BackupReason reason)
{
    for (const ReasonWords &words : Reasons) {
        if (words.reason == reason)
            return words;
    }
    return Reasons[0];
}

// A backup's name: the stamp, a sequence number from 2 on for the second and
// later backups of one second, the reason.
const QRegularExpression &namePattern()
{
    static const QRegularExpression pattern = [] {
        QStringList names;
        for (const ReasonWords &words : Reasons)
            names.append(QRegularExpression::escape(words.name.toString()));
        return QRegularExpression(QStringLiteral(R"(^(\d{4}-\d\d-\d\d_\d{6})(?:_([2-9]|[1-9]\d{1,5}))?-(%1)\.tw$)")
                                      .arg(names.join(u'|')));
    }();
    return pattern;
}

std::optional<BackupReason> reasonNamed(QStringView name)
{
    for (const ReasonWords &words : Reasons) {
        if (words.name == name)
            return words.reason;
    }
    return std::nullopt;
}

struct Named
{
    Entry entry;
    QString stamp;
    int sequence = 1;
};

// The backups of a folder, newest first.
QList<Named> scan(const QString &folder)
{
    QList<Named> found;
    const QDir dir(folder);
    const QStringList names = dir.entryList({QStringLiteral("*.tw")}, QDir::Files);
    for (const QString &name : names) {
        const QRegularExpressionMatch match = namePattern().match(name);
        if (!match.hasMatch())
            continue;
        Named named;
        named.stamp = match.captured(1);
        named.entry.time = QDateTime::fromString(named.stamp, StampFormat);
        if (!named.entry.time.isValid())
            continue;
        named.sequence = match.hasCaptured(2) ? match.captured(2).toInt() : 1;
        named.entry.reason = reasonNamed(match.capturedView(3)).value_or(BackupReason::Read);
        named.entry.path = dir.filePath(name);
        found.append(named);
    }
    std::sort(found.begin(), found.end(), [](const Named &a, const Named &b) {
        return a.stamp != b.stamp ? a.stamp > b.stamp : a.sequence > b.sequence;
    });
    return found;
}

bool equalsImage(const QString &path, const MemoryImage &image)
{
    const DataFile::ReadResult file = DataFile::Read(path);
    return file.status == DataFile::ReadStatus::Ok && file.image == image.bytes();
}

Result failure(const QString &errorString)
{
    Result result;
    result.errorString = errorString;
    return result;
}

} // namespace

QString defaultFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/backups");
}

QString reasonName(BackupReason reason)
{
    return wordsFor(reason).name.toString();
}

Text reasonText(BackupReason reason)
{
    return wordsFor(reason).text;
}

Result keep(const MemoryImage &image, BackupReason reason)
{
    return keep(defaultFolder(), image, reason, QDateTime::currentDateTime());
}

Result keep(const QString &folder, const MemoryImage &image, BackupReason reason, const QDateTime &now)
{
    if (!QDir().mkpath(folder))
        return failure(QStringLiteral("Cannot create the folder %1").arg(QDir::toNativeSeparators(folder)));

    const QList<Named> existing = scan(folder);
    // Closing the program after opening, reading or saving without a change,
    // or a second New after the first one's backup, would otherwise keep the
    // same memory twice. A read is a record of what a radio held, so it is
    // kept however often the same memory comes back.
    if (reason != BackupReason::Read && !existing.isEmpty() && equalsImage(existing.first().entry.path, image)) {
        Result result;
        result.status = Status::Unchanged;
        result.path = existing.first().entry.path;
        return result;
    }

    const QString stamp = now.toString(StampFormat);
    int sequence = 0;
    for (const Named &named : existing) {
        if (named.stamp == stamp)
            sequence = std::max(sequence, named.sequence);
    }
    QString name = stamp;
    if (sequence > 0)
        name += u'_' + QString::number(sequence + 1);
    name += u'-' + reasonName(reason) + QStringLiteral(".tw");

    Result result;
    result.path = QDir(folder).filePath(name);
    if (!DataFile::Write(result.path, image, &result.errorString))
        return failure(result.errorString);
    result.status = Status::Written;

    // A backup that cannot be deleted stays; the next backup tries again.
    const QList<Named> kept = scan(folder);
    for (qsizetype index = KeptCount; index < kept.size(); ++index)
        QFile::remove(kept.at(index).entry.path);
    return result;
}

QList<Entry> list(const QString &folder)
{
    QList<Entry> entries;
    const QList<Named> found = scan(folder);
    entries.reserve(found.size());
    for (const Named &named : found)
        entries.append(named.entry);
    return entries;
}

} // namespace wr::Backups
