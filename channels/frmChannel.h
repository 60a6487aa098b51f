#pragma once

#include "channels/ChannelRecord.h"
#include "ui/CellEditor.h"
#include "ui/Twips.h"

#include <QList>
#include <QString>
#include <QWidget>

#include <array>
#include <cstdint>
#include <functional>
#include <memory>

class QAction;
class QComboBox;
class QLineEdit;
class QMenu;
class QTableWidget;
class QUndoStack;

namespace wr {

struct AppState;
struct CsvImport;
struct NumberedChannel;
class ChannelStep;

// The channel list: 128 channels in a grid edited in place. The grid is the
// working copy between RefreshData (image -> grid) and SaveData (grid ->
// image); only a new channel's default bytes reach the image at once. It
// works on the image, language, band limits and cursor of the state it is
// given.
//
// Grid layout: 129 rows x 9 columns, so that cell (n, column) is channel n.
// Row 0 is the header row; it keeps the column captions as cell texts but is
// hidden, and the horizontal header shows the same captions fixed above the
// scrolling rows. Column 0 holds the channel numbers.
//
//   column  0    1        2        3           4           5      6     7         8
//           CH.  Rx Freq  Tx Freq  Dec. tone   Enc. tone   Power  W/N   Scan Add  BCL
//   editor  -    TxtChannel        CboChannel0             CboChannel1 (the column's choices)
//
// Tools work on whole channels: the rows selected by clicking the channel
// numbers (Shift and Ctrl extend), or the current row. They copy and paste
// (also to and from spreadsheets and other programmers, as CHIRP CSV),
// insert, delete, move and sort channels, and import and export CSV files;
// the context menu offers them in the interface language. Every change of
// the grid, an edit in a cell included, is one step of the undo history.
class frmChannel : public QWidget, private CellEditRules
{
    Q_OBJECT

public:
    enum Column {
        ColNumber = 0,
        ColRx = 1,
        ColTx = 2,
        ColDecode = 3,
        ColEncode = 4,
        ColPower = 5,
        ColBandwidth = 6,
        ColScanAdd = 7,
        ColBcl = 8,
    };
    static constexpr int ColumnCount = 9;
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

    // Commits whichever in-place editor is open and gives the focus back to
    // the grid. The main window runs it before every command.
    void commitOpenEditor();

    QTableWidget *grid() const;
    // How many pixels the grid's viewport lacks to show every column whole
    // (0 when they all fit).
    int gridWidthLacking() const;

    // Text of a grid cell; "" outside the grid.
    QString cellText(int row, int column) const;
    // Caption of a grid column in a language.
    static QString headerText(int column, int languageIndex);

    // One step for each edit and each tool; reloading the grid from the
    // image starts a new history.
    QUndoStack *undoStack() const;
    // The channels the tools work on: the selected rows, else the current row.
    QList<int> selectedChannels() const;

Q_SIGNALS:
    // Right click with Shift, Ctrl and Alt held, after the grid was saved.
    void memoryMapRequested();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
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

    void SetupChannelGrid();
    void SyncGridCursor();

    // The tools (ChannelListTools.cpp).
    //
    // A row as the undo history keeps it: its cells, and bytes 12-15 of its
    // record, which the grid does not show and which belong to the channel
    // wherever it moves. A new channel's bytes are written at once, so they
    // are part of the step that created it, and undoing it puts back what
    // the record held before. Undo and redo always write both back: a
    // channel deleted and then saved (its record erased) comes back with its
    // signalling byte; the other bytes follow the cells at the next save.
    struct RowState
    {
        ChannelTexts texts;
        std::array<std::uint8_t, 4> hidden{};
        bool operator==(const RowState &) const = default;
    };
    RowState rowState(int row) const;
    void setRowState(int row, const RowState &state);
    // Runs change and keeps what it did to rows as one step of the history.
    void recordStep(const Text &name, const QList<int> &rows, const std::function<void()> &change);
    void recordEdit(int row, const std::function<void()> &change);
    // Puts the rows `from` into the rows `to`, then empties `vacated`.
    void moveRows(const QList<int> &to, const QList<int> &from, const QList<int> &vacated = {});
    void selectChannels(const QList<int> &channels);
    QList<NumberedChannel> channelsInUse(const QList<int> &rows) const;

    void buildTools();
    void captionTools();
    void showToolMenu(const QPoint &globalPosition);
    bool numberClick(QEvent *event);
    void copyChannels();
    void cutChannels();
    void pasteChannels();
    void clearChannels();
    void insertChannel();
    void removeChannels();
    void moveChannels(int by);
    void sortChannels();
    void importCsv();
    void exportCsv();
    void applyImport(const CsvImport &import, const Text &name);
    QList<int> replacedChannels(const CsvImport &import) const;
    friend class ChannelStep;

    int language() const;
    void setCell(int row, int column, const QString &text);
    ChannelTexts rowTexts(int row) const;
    void writeRow(int row, const ChannelTexts &texts);
    int lastRow() const;
    void fitColumns();

    AppState &m_state;
    QTableWidget *m_grid = nullptr;
    QLineEdit *m_text = nullptr;     // TxtChannel
    QComboBox *m_combo[2] = {};      // CboChannel0 (tones), CboChannel1 (list columns)
    std::unique_ptr<CellEditor> m_editor; // goes before the grid and the rules it calls
    QObject *m_wheelPager = nullptr; // installed on the grid while it has the focus

    QUndoStack *m_undo = nullptr;
    QMenu *m_toolMenu = nullptr;
    QList<std::pair<QAction *, Text>> m_tools; // with their captions
    int m_selectionAnchor = 0;                 // the channel number clicked last
    bool m_selectingRows = false;              // a click on a number is held
    bool m_rowsDragged = false;
};

} // namespace wr
