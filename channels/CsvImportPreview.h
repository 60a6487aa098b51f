#pragma once

#include "core/Language.h"

#include <QDialog>
#include <QList>

namespace wr {

struct CsvImport;

// What an import or a paste will do, shown before anything changes: how
// many rows are imported, changed and skipped, which channels in use are
// replaced, which channel each row goes to (and which columns a block
// without a header was read as), and every changed or skipped row with its
// line, column, value and what happens to it, as text that can be copied. OK applies it (the
// caller does), Cancel changes nothing; with no row to import only Cancel
// is offered.
class CsvImportPreview : public QDialog
{
    Q_OBJECT

public:
    // source: the file's name, or empty for the clipboard.
    CsvImportPreview(const CsvImport &import, const QList<int> &replaced, const QString &source, const Text &title,
                     Language language, QWidget *parent = nullptr);
};

// Channel numbers as ranges: "1-5, 9, 12".
QString channelRanges(const QList<int> &channels);

} // namespace wr
