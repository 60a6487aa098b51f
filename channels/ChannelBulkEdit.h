#pragma once

#include "channels/ChannelTable.h"
#include "core/BandLimits.h"
#include "core/Language.h"

#include <QList>
#include <QMap>
#include <QObject>

#include <utility>

class QAction;
class QMenu;
class QTableView;
class QWidget;

namespace wr {

class CellEditor;
class ChannelHistory;
class ChannelModel;
class ChannelToolHost;

// Changes many channels at once, each change one step of the history, by
// the fill rules of ChannelFill.h:
// - Fill Selection (Ctrl+Enter, either Enter key): the value of the open
//   editor, or else of the current cell, into every selected cell of its
//   column;
// - Fill Down (Ctrl+D): each selected column takes the value of its top
//   selected cell;
// - Set for Selected Channels: a word of a list column, or a tone chosen
//   from the tone list, for the selected channels;
// - Fill Frequencies…: a series of receive frequencies down the selected
//   channels.
// Rows the filter hides are never selected here, whatever a rectangle of
// cells spans. The actions go into the channel list's context menu, after
// its clipboard tools, and their keys work on the grid and in its editors.
class ChannelBulkEdit : public QObject
{
    Q_OBJECT

public:
    ChannelBulkEdit(ChannelToolHost &host, ChannelModel &model, ChannelHistory &history, CellEditor &editor,
                    const BandLimitArray &limits, QTableView *grid, QMenu *menu);

    // Ctrl+Enter in an in-place editor fills the selection with its text
    // instead of storing it into its cell alone.
    void watchEditor(QWidget *editor);
    // Captions in the model's language.
    void caption();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void build(QMenu *menu);
    QMenu *addSubmenu(QMenu *parent, const QString &name, const Text &caption);
    QAction *addAction(QMenu *menu, const QString &name, const Text &caption);
    Language language() const;
    // The selected cells of rows shown, by column (from Rx on); rows in order.
    QMap<int, QList<int>> selectedCells() const;
    void enableForSelection();
    void change(const Text &name, const ChannelChanges &changes);

    void fillSelection();
    void fillDown();
    void setForSelected(int column, const Text &word);
    void setToneForSelected(int column);
    void fillFrequencies();

    ChannelToolHost &m_host;
    ChannelModel &m_model;
    ChannelHistory &m_history;
    CellEditor &m_editor;
    const BandLimitArray &m_limits;
    QTableView *m_grid;
    QList<std::pair<QAction *, Text>> m_captions;
};

} // namespace wr
