#pragma once

#include "channels/ChannelRecord.h"
#include "channels/ChannelTools.h"
#include "channels/TypedCorrection.h"
#include "ui/CellEditor.h"
#include "ui/Twips.h"

#include <QList>
#include <QString>
#include <QWidget>

#include <memory>

class QComboBox;
class QLineEdit;
class QTableView;
class QUndoStack;

namespace wr {

struct AppState;
class ChannelBulkEdit;
class ChannelFilterBar;
class ChannelHistory;
class ChannelModel;
class ChannelSelection;
class MemoryImage;

// The channel list: 128 channels in a grid edited in place. The grid is a
// view over the working copy (ChannelModel) between RefreshData (image ->
// working copy) and SaveData (working copy -> image); only a new channel's
// bytes 12-15 reach the image at once. It works on the image, language,
// band limits and cursor of the state it is given.
//
// Grid layout: the model's 129 rows x 9 columns, so that cell (n, column) is
// channel n. Row 0 holds the column captions but is hidden; the horizontal
// header shows them fixed above the scrolling rows. Column 0 holds the
// channel numbers.
//
//   column  0    1        2        3           4           5      6     7         8
//           CH.  Rx Freq  Tx Freq  Dec. tone   Enc. tone   Power  W/N   Scan Add  BCL
//   editor  -    TxtChannel        CboChannel0             CboChannel1 (the column's choices)
//
// Rows are selected by clicking the channel numbers (Shift and Ctrl
// extend), cells by Shift and Ctrl with clicks or arrows; the tools
// (ChannelTools) work on the rows with a cell selected, or on the current
// row, and the fills (ChannelBulkEdit) on the cells. The filter line above
// the grid (ChannelFilterBar) hides the rows of the channels it leaves out.
// The context menu opens on a right click, the menu key or Shift+F10. A
// screen reader hears the list as "Channel list" and its cells as the model
// says them (ChannelModel).
// Every change of the working copy, an edit in a cell included, is one step
// of the undo history; a language switch keeps the history, any other
// reload starts a new one.
class frmChannel : public QWidget, private CellEditRules, private ChannelToolHost
{
    Q_OBJECT

public:
    using enum ChannelColumn;
    static constexpr int ColumnCount = ChannelColumnCount;
    static constexpr int RowCount = 1 + ChannelRecord::ChannelCount;
    // The window's size when it opens, frame included.
    static constexpr QSize OpeningSize = twipsToPixels(14910, 9800);

    explicit frmChannel(AppState &state, QWidget *parent = nullptr);
    ~frmChannel() override;

    void RefreshChannelOP();
    void RefreshChannel();
    void RefreshData();
    void SaveData();
    void setChannelRx(int channel, const QString &text);
    void setChannelTx(int channel, const QString &text);
    void TxtChannel_Validate();
    void CboChannel_Validate(int index);

    // Commits the open editor, then saves the working copy into an image
    // other than the program's (the exit backup's copy).
    void saveInto(MemoryImage &image);

    // Commits the open editor, saves the grid and asks for the memory map,
    // as the gesture on the grid does; the main window's key for the map
    // runs it too.
    void requestMemoryMap()
    {
        commitOpenEditor();
        SaveData();
        Q_EMIT memoryMapRequested();
    }

    // Commits whichever in-place editor is open and gives the focus back to
    // the grid. The main window runs it before every command.
    void commitOpenEditor();

    QTableView *grid() const;
    // How many pixels the grid's viewport lacks to show every column whole
    // (0 when they all fit).
    int gridWidthLacking() const;

    // Text of a grid cell; "" outside the grid.
    QString cellText(int row, int column) const;
    // Caption of a grid column in a language.
    static QString headerText(int column, int languageIndex);

    // Imports the channels of a CSV file (a file given to File > Open, on
    // the command line or dropped): the import's preview, then one step of
    // the history. Messages say why a file cannot be read.
    void importCsvFile(const QString &path);

    // Adds a command of the window around the list to the end of the list's
    // menu, after a separator, captioned in the list's language as the menu
    // opens.
    void addCommand(QAction *action, const Text &caption);
    // The language the list's words are in.
    Language language() const;

    QUndoStack *undoStack() const;
    // Ctrl+F, to the filter line; for the window around the list.
    QAction *findChannelsAction() const;
    // The channels the tools work on: the selected rows, else the current row.
    QList<int> selectedChannels() const override;

Q_SIGNALS:
    // Right click with Shift, Ctrl and Alt held, or Ctrl+Shift+Alt+M, after
    // the grid was saved.
    void memoryMapRequested();
    // A value typed into a cell was stored as another (7 became 174.00000);
    // the main window shows it in its status bar.
    void valueCorrected(const wr::TypedCorrection &correction);
    // How many channels the filter shows, -1 while there is no filter.
    void channelsShown(int shown);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    bool event(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    // How the grid is edited in place.
    QModelIndex editableCell(const QModelIndex &cell) const override;
    QWidget *editorFor(const QModelIndex &cell, const QString &text) override;
    std::optional<QChar> startingCharacter(const QModelIndex &cell, QChar typed) const override;
    std::optional<QChar> acceptedCharacter(const TypedKey &key) const override;
    void commit(const QModelIndex &cell, QWidget *editor, const QString &text) override;
    QModelIndex cellAfterEnter(const QModelIndex &cell) override;
    Escape onEscape(QWidget *editor) const override;
    bool pasteGoesToGrid(const QString &text) const override;
    QModelIndex cellAfterTab(const QModelIndex &cell, bool backwards) const override;

    // What the tools need.
    void selectChannels(const QList<int> &channels) override;
    void commitEdit() override;
    int lastChannel() const override;
    int currentColumn() const override;

    void SetupChannelGrid();
    void SyncGridCursor();
    void edit(int channel, const Channel &edited);
    void fitColumns();

    AppState &m_state;
    ChannelModel *m_model = nullptr;
    ChannelHistory *m_history = nullptr;
    QTableView *m_grid = nullptr;
    QLineEdit *m_text = nullptr;     // TxtChannel
    QComboBox *m_combo[2] = {};      // CboChannel0 (tones), CboChannel1 (list columns)
    std::unique_ptr<CellEditor> m_editor; // goes before the grid and the rules it calls
    ChannelTools *m_tools = nullptr;
    ChannelBulkEdit *m_bulk = nullptr;
    ChannelFilterBar *m_filter = nullptr;
    QObject *m_wheelPager = nullptr; // installed on the grid while it has the focus
    std::unique_ptr<ChannelSelection> m_selection;
    int m_rows = RowCount;           // rows of the grid, the hidden header row included
};

} // namespace wr
