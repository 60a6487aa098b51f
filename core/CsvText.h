#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

namespace wr::csv {

// Comma-separated text as spreadsheets and other programmers write it:
//
//   # a comment line                    <- dropped, as are blank lines
//   Location,Name,Frequency
//   1,"Club, ""North""",145.500000      <- quoted: separator and doubled quote
//   2,"two                              <- a quoted field may span lines;
//   lines",146.000000                      the record starts on line 4
//
// The separator is the caller's (',' ';' or TAB). CR LF, LF and a lone CR
// end a line; inside quotes CR LF reads as LF.

// One record: its fields and the line it starts on (1 is the first line).
struct Record
{
    int line = 0;
    QStringList fields;
};

QList<Record> records(QStringView text, QChar separator);

// Fields joined by separator, without a line end. A field holding the
// separator, a quote or a line break goes in quotes, its quotes doubled.
QString line(const QStringList &fields, QChar separator);

// A file larger than this is not a table this program reads.
constexpr qsizetype MaxFileSize = 4 * 1024 * 1024;

// A whole file read as UTF-8 text, a byte-order mark dropped.
struct File
{
    enum class Problem { None, Unreadable, TooLarge };
    QString text;
    Problem problem = Problem::None;
    QString error; // the system's words, when unreadable
};

File readFile(const QString &path);

// Bytes of a file as text: UTF-8, a byte-order mark dropped.
QString decode(const QByteArray &bytes);

} // namespace wr::csv
