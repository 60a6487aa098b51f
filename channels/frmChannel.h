#pragma once

#include "channels/ChannelRecord.h"

#include <QString>
#include <QWidget>

class QComboBox;
class QKeyEvent;
class QLineEdit;
class QTableWidget;

namespace wr {

// The channel list: 128 channels in a grid edited in place. The grid is the
// working copy between RefreshData (image -> grid) and SaveData (grid ->
// image); only a new channel's default bytes reach the image at once.
//
// Grid layout: 129 rows x 9 columns, so that cell (n, column) is channel n.
// Row 0 is the header row; it keeps the column captions as cell texts but is
// hidden, and the horizontal header shows the same captions fixed above the
// scrolling rows. Column 0 holds the channel numbers.
//
//   column  0    1        2        3           4           5      6     7         8
//           CH.  Rx Freq  Tx Freq  Dec. tone   Enc. tone   Power  W/N   Scan Add  BCL
//   editor  -    TxtChannel        CboChannel0             CboChannel1 (the column's choices)
class frmChannel : public QWidget
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

    explicit frmChannel(QWidget *parent = nullptr);
    ~frmChannel() override;

    void RefreshChannelOP();
    void RefreshChannel();
    void RefreshData();
    void SaveData();
    void setChannelRx(int channel, const QString &text);
    void setChannelTx(int channel, const QString &text);
    void TxtChannel_Validate();
    void CboChannel_Validate(int index);

    // Commits whichever in-place editor is open (text editor first, then the
    // combos) and gives the focus back to the grid. The main window runs it
    // before every command.
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
    void SetupChannelGrid();
    void ShowCellEditor();
    void SyncGridCursor();

    void setCell(int row, int column, const QString &text);
    ChannelTexts rowTexts(int row) const;
    void writeRow(int row, const ChannelTexts &texts);
    int lastRow() const;

    void forceEditableColumn();
    void placeEditor(QWidget *editor);
    void widenToContents(QComboBox *combo);
    void hideEditor(QWidget *editor);
    void discardOpenEditors();
    bool isOpen(const QWidget *editor) const;
    void commitAllOpen(); // every open editor, as scrolling does
    void fitColumns();

    bool gridKeyPress(QKeyEvent *event);
    bool textEditorKeyPress(QKeyEvent *event);
    bool comboKeyPress(int index, QKeyEvent *event);
    void advanceAfterCombo();

    QTableWidget *m_grid = nullptr;
    QLineEdit *m_text = nullptr;     // TxtChannel
    QComboBox *m_combo[2] = {};      // CboChannel0 (tones), CboChannel1 (list columns)
    QObject *m_wheelPager = nullptr; // installed on the grid while it has the focus

    QString m_savedCellText; // the cell's text when its editor opened; Esc puts it back
    int m_editRow = 0;       // cell under the open editor
    int m_editColumn = 0;
    bool m_committing = false; // a validate in progress: ignore the focus it moves
};

} // namespace wr
