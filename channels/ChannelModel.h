#pragma once

#include "channels/ChannelTable.h"
#include "core/Language.h"

#include <QAbstractTableModel>

namespace wr {

// The channel list's working copy as a table: row n is channel n (1-128),
// column c is ChannelColumn c (the channel number, then the cells). Row 0
// holds the column captions, as the list's fixed header row does; a view
// hides it and shows the same captions in its horizontal header. So a row
// stays its channel whatever a view hides or shows.
//
//   row 0     CH.  Rx Freq    Tx Freq    ...  BCL        captions
//   row 1     1    146.52000  146.52000  ...  Off        channel 1
//   ...
//   row 128   128                                        an empty channel
//
// A screen reader hears a cell as Qt::AccessibleTextRole says it, in the
// language of the words: "Channel 12, Rx 145.50000 megahertz", "decode tone
// D023 inverted", "encode tone 88.5 hertz", "power Low", and on every cell of
// an empty channel "Channel 12, empty".
//
// The model only shows the channels: the list's editors and tools change
// them through its history (ChannelHistory), which calls setChannels.
class ChannelModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    static constexpr int RowCount = 1 + ChannelTable::Count;

    explicit ChannelModel(QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    const ChannelTable &table() const { return m_table; }
    // The language of the words and captions shown.
    Language language() const { return m_language; }
    // The text of a cell, as shown; "" outside the table.
    QString cellText(int row, int column) const;
    // What a screen reader says for a cell.
    QString spokenText(int row, int column) const;

    // A new working copy, its words and the captions in `language`. Every
    // cell changes, the rows stay: a view keeps its current cell and
    // selection.
    void setTable(ChannelTable table, Language language);
    void setChannels(const ChannelChanges &changes);

private:
    void allChanged();

    ChannelTable m_table;
    Language m_language = English;
};

} // namespace wr
