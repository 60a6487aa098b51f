#include "features/MemoryMapModel.h"

#include <algorithm>

namespace wr {

namespace {

QString hexDigits(int value)
{
    return QString::number(value, 16).toUpper();
}

// The value of one hexadecimal digit, -1 for any other character.
int digitValue(QChar c)
{
    if (c >= u'0' && c <= u'9')
        return c.unicode() - u'0';
    if (c >= u'A' && c <= u'F')
        return c.unicode() - u'A' + 10;
    if (c >= u'a' && c <= u'f')
        return c.unicode() - u'a' + 10;
    return -1;
}

// %1 row, %2 column, %3 value in decimal, %4 in hexadecimal.
constexpr Text SpokenCell{u"row %1, column %2, value %3, hex %4", u"第 %1 行，第 %2 列，值 %3，十六进制 %4",
                          u"第 %1 行，第 %2 列，值 %3，十六進位 %4"};

} // namespace

MemoryMapModel::MemoryMapModel(const MemoryImage &image, Language language, QObject *parent)
    : QAbstractTableModel(parent)
    , m_language(language)
{
    std::copy_n(image.data(), MemoryImage::Size, m_bytes.begin());
}

int MemoryMapModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : MemoryImage::RowCount;
}

int MemoryMapModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : MemoryImage::RowSize;
}

std::uint8_t MemoryMapModel::byteAt(const QModelIndex &index) const
{
    return m_bytes[std::size_t(index.row() * MemoryImage::RowSize + index.column())];
}

QVariant MemoryMapModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole: {
        const std::uint8_t byte = byteAt(index);
        constexpr char16_t Digits[] = u"0123456789ABCDEF";
        const QChar text[2] = {QChar(Digits[byte >> 4]), QChar(Digits[byte & 0x0F])};
        return QString(text, 2);
    }
    case Qt::AccessibleTextRole: {
        const std::uint8_t byte = byteAt(index);
        return SpokenCell.in(m_language).arg(hexDigits(index.row()), hexDigits(index.column()), QString::number(byte),
                                             data(index, Qt::DisplayRole).toString());
    }
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(Qt::Alignment(Qt::AlignCenter));
    default:
        return {};
    }
}

QVariant MemoryMapModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    const int count = orientation == Qt::Horizontal ? MemoryImage::RowSize : MemoryImage::RowCount;
    if (section < 0 || section >= count)
        return {};
    if (role == Qt::DisplayRole)
        return hexDigits(section);
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(Qt::Alignment(Qt::AlignCenter));
    return {};
}

bool MemoryMapModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::EditRole || !checkIndex(index, CheckIndexOption::IndexIsValid))
        return false;
    const QString text = value.toString();
    if (text.size() != 2)
        return false;
    const int high = digitValue(text[0]);
    const int low = digitValue(text[1]);
    if (high < 0 || low < 0)
        return false;
    m_bytes[std::size_t(index.row() * MemoryImage::RowSize + index.column())] = static_cast<std::uint8_t>(high << 4 | low);
    Q_EMIT dataChanged(index, index, {Qt::DisplayRole, Qt::EditRole, Qt::AccessibleTextRole});
    return true;
}

QString MemoryMapModel::addressText(const QModelIndex &index)
{
    return hexDigits(index.row()) + hexDigits(index.column());
}

void MemoryMapModel::writeTo(MemoryImage &image) const
{
    image.setBytes(QByteArrayView(m_bytes.data(), MemoryImage::Size));
}

} // namespace wr
