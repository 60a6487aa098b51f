#pragma once

#include <QByteArrayView>
#include <QString>

namespace wr {

// What a file handed to Open is. Besides its own data files the program
// takes channel lists that other programmers and spreadsheets write as CSV,
// which go to the channel list's import instead of replacing the memory.
enum class FileKind {
    DataFile,   // anything else; Open says what is wrong with it if it is none
    ChannelCsv, // named *.csv in any case, or starting with a CSV header
};

// Looks at the name and at most the first few kilobytes; a file that cannot
// be read, or is no regular file, counts as a data file, so that Open gives
// its usual message.
FileKind fileKindOf(const QString &path);

// A first line naming the Location and Frequency columns among fields
// separated by commas, as CHIRP's channel lists start.
bool isCsvHeader(QByteArrayView firstLine);

} // namespace wr
