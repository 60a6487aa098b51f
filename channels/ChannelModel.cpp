#include "channels/ChannelModel.h"

#include "core/ToneCodec.h"

namespace wr {

namespace {

// What a screen reader says on a channel's cells; %1 is the channel number,
// the cell's text or a tone.
constexpr Text SpokenChannel{u"Channel %1", u"信道 %1", u"信道 %1"};
constexpr Text SpokenEmpty{u"Channel %1, empty", u"信道 %1，空", u"信道 %1，空"};
constexpr Text SpokenRx{u"Channel %1, Rx %2 megahertz", u"信道 %1，接收 %2 兆赫", u"信道 %1，接收 %2 兆赫"};
constexpr Text SpokenTx{u"Tx %1 megahertz", u"发射 %1 兆赫", u"發射 %1 兆赫"};
constexpr Text SpokenNoTx{u"no Tx frequency", u"无发射频率", u"無發射頻率"};
constexpr Text SpokenSide[]{{u"decode %1", u"解码 %1", u"解碼 %1"}, {u"encode %1", u"编码 %1", u"編碼 %1"}};
constexpr Text SpokenNoTone{u"no tone", u"无亚音", u"無亞音"};
constexpr Text SpokenCtcss{u"tone %1 hertz", u"亚音 %1 赫兹", u"亞音 %1 赫茲"};
constexpr Text SpokenDcs[]{{u"tone %1 normal", u"数字亚音 %1 正相", u"數字亞音 %1 正相"},
                           {u"tone %1 inverted", u"数字亚音 %1 反相", u"數字亞音 %1 反相"}};
// Power, bandwidth, scan add and busy channel lockout: the word after the
// setting's name.
constexpr Text SpokenSetting[]{{u"power %1", u"功率 %1", u"功率 %1"},
                               {u"bandwidth %1", u"带宽 %1", u"帶寬 %1"},
                               {u"scan add %1", u"扫描添加 %1", u"掃描添加 %1"},
                               {u"busy channel lockout %1", u"繁忙锁定 %1", u"繁忙鎖定 %1"}};

QString spokenTone(const QString &tone, Language language)
{
    if (IsNoTone(tone))
        return SpokenNoTone.in(language);
    if (tone.startsWith(u'D') && tone.size() > 1) // DCS: "D023N", "D754I"
        return SpokenDcs[tone.endsWith(u'I') ? 1 : 0].in(language).arg(tone.chopped(1));
    return SpokenCtcss.in(language).arg(tone);
}

} // namespace

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

QString ChannelModel::spokenText(int row, int column) const
{
    if (row <= 0 || row >= RowCount || column < 0 || column >= ChannelColumnCount)
        return cellText(row, column);
    const ChannelTexts &texts = m_table.at(row).texts;
    const QString number = QString::number(row);
    if (texts.isEmpty())
        return SpokenEmpty.in(m_language).arg(number);
    const QString text = cellText(row, column);
    switch (column) {
    case ColNumber:
        return SpokenChannel.in(m_language).arg(number);
    case ColRx:
        return SpokenRx.in(m_language).arg(number, text);
    case ColTx:
        return text.isEmpty() ? SpokenNoTx.in(m_language) : SpokenTx.in(m_language).arg(text);
    case ColDecode:
    case ColEncode:
        return SpokenSide[column - ColDecode].in(m_language).arg(spokenTone(text, m_language));
    default:
        return SpokenSetting[column - ColPower].in(m_language).arg(text);
    }
}

QVariant ChannelModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    if (role == Qt::AccessibleTextRole)
        return spokenText(index.row(), index.column());
    if (role != Qt::DisplayRole && role != Qt::EditRole)
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
    Q_EMIT dataChanged(index(0, 0), index(RowCount - 1, ChannelColumnCount - 1), {Qt::DisplayRole, Qt::EditRole, Qt::AccessibleTextRole});
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
                           {Qt::DisplayRole, Qt::EditRole, Qt::AccessibleTextRole});
    }
}

} // namespace wr
