#include "channels/ChannelModel.h"

namespace wr {

ChannelModel::ChannelModel(QObject *parent)
    : QAbstractTableModel(parent)
{
}

int ChannelModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : RowCount;
}

int ChannelModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ChannelColumnCount;
}

QString ChannelModel::cellText(int row, int column) const
{
    if (row < 0 || row >= RowCount || column < 0 || column >= ChannelColumnCount)
        return {};
    if (row == 0)
        return ChannelColumnCaptions[std::size_t(column)].in(m_language);
    if (column == ColNumber)
        return QString::number(row);
    return m_table.at(row).texts.cell(column);
}

QVariant ChannelModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::EditRole))
        return {};
    return cellText(index.row(), index.column());
}

QVariant ChannelModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Horizontal)
        return cellText(0, section);
    return section >= 0 && section < RowCount ? QVariant(section) : QVariant();
}

Qt::ItemFlags ChannelModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

void ChannelModel::allChanged()
{
    Q_EMIT dataChanged(index(0, 0), index(RowCount - 1, ChannelColumnCount - 1), {Qt::DisplayRole, Qt::EditRole});
}

void ChannelModel::setTable(ChannelTable table, Language language)
{
    m_table = std::move(table);
    const bool recaptioned = language != m_language;
    m_language = language;
    allChanged();
    if (recaptioned)
        Q_EMIT headerDataChanged(Qt::Horizontal, 0, ChannelColumnCount - 1);
}

void ChannelModel::setChannels(const ChannelChanges &changes)
{
    for (auto it = changes.begin(); it != changes.end(); ++it) {
        m_table.set(it.key(), it.value());
        Q_EMIT dataChanged(index(it.key(), ColRx), index(it.key(), ChannelColumnCount - 1),
                           {Qt::DisplayRole, Qt::EditRole});
    }
}

} // namespace wr
