#pragma once

#include "channels/ChannelTable.h"
#include "core/BandLimits.h"
#include "core/Language.h"

#include <QList>
#include <QObject>

#include <utility>

class QAction;
class QMenu;
class QPoint;
class QWidget;

namespace wr {

class ChannelHistory;
class ChannelModel;
struct CsvImport;

// What the tools need of the list they work on; the channel list form
// answers, as a grid answers its CellEditor through CellEditRules.
class ChannelToolHost
{
public:
    virtual ~ChannelToolHost() = default;

    // The channels the tools work on: the selected rows, else the current
    // row; in their order.
    virtual QList<int> selectedChannels() const = 0;
    // Selects whole rows; the first becomes current.
    virtual void selectChannels(const QList<int> &channels) = 0;
    // Stores the text of an open cell editor and closes it.
    virtual void commitEdit() = 0;
    // The last channel row the list shows.
    virtual int lastChannel() const = 0;
    // The column of the current cell (ChannelColumn).
    virtual int currentColumn() const = 0;
};

// The channel list's tools on whole channels: undo and redo, the clipboard,
// delete, insert, delete and move up, move, sort, CSV import and export,
// offered by a context menu in the interface language and by keys on the
// grid. Every change is one step of the history. Rearrangements are worked
// out by the plans (ChannelPlans.h); CSV by ChannelCsv.h.
class ChannelTools : public QObject
{
    Q_OBJECT

public:
    // The actions go onto `grid`, whose window owns the dialogs.
    ChannelTools(ChannelToolHost &host, ChannelModel &model, ChannelHistory &history, const BandLimitArray &limits,
                 QWidget *grid);

    QMenu *menu() const { return m_menu; }
    // The menu at a place on the screen, showing what the selection allows.
    void showMenu(const QPoint &globalPosition);
    // Captions in the model's language.
    void caption();
    // Imports the channels of a CSV file: its preview first, then one step.
    void importCsvFile(const QString &path);

private:
    void build();
    QAction *action(QStringView name) const;
    Language language() const;
    void change(const Text &name, const ChannelChanges &after, const QList<int> &selectedAfter);
    void rearrange(const Text &name, const RowPlan &plan, const QList<int> &selectedAfter);

    void copyChannels();
    void cutChannels();
    void pasteChannels();
    void clearChannels();
    void emptyChannels(const Text &name);
    void insertChannel();
    void removeChannels();
    void moveChannels(int by);
    void sortChannels();
    void importCsv();
    void exportCsv();
    void applyImport(const CsvImport &import, const Text &name);
    QList<int> replacedChannels(const CsvImport &import) const;

    ChannelToolHost &m_host;
    ChannelModel &m_model;
    ChannelHistory &m_history;
    const BandLimitArray &m_limits;
    QWidget *m_grid;
    QMenu *m_menu = nullptr;
    QList<std::pair<QAction *, Text>> m_actions; // with their captions
};

} // namespace wr
