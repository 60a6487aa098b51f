#include "file/FileKind.h"

#include "file/DataFile.h"

#include <QFileInfo>
#include <QStringList>

namespace wr {

namespace {

// More than any header line a channel list starts with.
constexpr qint64 HeaderBytes = 4096;

} // namespace

bool isCsvHeader(QByteArrayView firstLine)
{
    QString line = QString::fromUtf8(firstLine);
    if (line.startsWith(QChar(0xFEFF))) // a byte-order mark, as spreadsheets write
        line.remove(0, 1);
    bool location = false;
    bool frequency = false;
    const QStringList fields = line.split(u',');
    if (fields.size() < 2)
        return false;
    for (QString field : fields) {
        field = field.trimmed();
        if (field.size() >= 2 && field.startsWith(u'"') && field.endsWith(u'"'))
            field = field.sliced(1, field.size() - 2).trimmed();
        location = location || field.compare(u"Location", Qt::CaseInsensitive) == 0;
        frequency = frequency || field.compare(u"Frequency", Qt::CaseInsensitive) == 0;
    }
    return location && frequency;
}

FileKind fileKindOf(const QString &path)
{
    if (QFileInfo(path).suffix().compare(u"csv", Qt::CaseInsensitive) == 0)
        return FileKind::ChannelCsv;
    const DataFile::FileBytes start = DataFile::ReadRegularFile(path, HeaderBytes);
    if (start.status != DataFile::ReadStatus::Ok)
        return FileKind::DataFile;
    const QByteArrayView bytes(start.bytes);
    const qsizetype end = bytes.indexOf('\n');
    QByteArrayView firstLine = end < 0 ? bytes : bytes.first(end);
    if (firstLine.endsWith('\r'))
        firstLine.chop(1);
    return isCsvHeader(firstLine) ? FileKind::ChannelCsv : FileKind::DataFile;
}

} // namespace wr
