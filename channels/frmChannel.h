#pragma once

#include "channels/ChannelRecord.h"
#include "ui/CellEditor.h"
#include "ui/Twips.h"

#include <QString>
#include <QWidget>

#include <memory>

class QComboBox;
class QLineEdit;
class QTableWidget;

namespace wr {

struct AppState;

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
};

} // namespace wr
