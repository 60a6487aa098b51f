#pragma once

#include "core/Language.h"
#include "core/MemoryImage.h"

#include <QAbstractTableModel>

#include <array>
#include <cstdint>

namespace wr {

// The whole memory image as a table of 1024 rows by 16 bytes, each shown as
// two upper-case hexadecimal digits; the headers number the rows (0 ... 3FF,
// no leading zeros) and the columns (0 ... F) in hexadecimal. A screen reader
// hears a cell as "row C8, column E, value 255, hex FF", in the interface
// language (Qt::AccessibleTextRole). The model edits
// a copy of the image: writeTo() hands every byte back, and dropping the
// model drops the edits.
class MemoryMapModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    MemoryMapModel(const MemoryImage &image, Language language, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    // Takes a cell's two hexadecimal digits; anything else is refused.
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;

    std::uint8_t byteAt(const QModelIndex &index) const;
    // The image address of a cell as the headers spell it: the row's header
    // followed by the column's digit (row C8, column E: "C8E").
    static QString addressText(const QModelIndex &index);

    void writeTo(MemoryImage &image) const;

private:
    std::array<std::uint8_t, MemoryImage::Size> m_bytes;
    Language m_language;
};

} // namespace wr
