#pragma once

#include "ui/CellEditor.h"
#include "ui/FieldDialog.h"

#include <memory>

class QLineEdit;
class QPushButton;
class QTableWidget;

namespace wr {

// The FM broadcast receiver's VFO and 32 channels in a grid edited in place.
// The grid is the working copy: typed frequencies are normalised into it,
// and only OK writes it into the image.
//
//   row 0      CH.   Frequency   (hidden; the column header shows the same)
//   row 1      VFO   87.50
//   row 2 + n  n     channel n, empty when the channel is empty
class frmRadio : public FieldDialog, private CellEditRules
{
    Q_OBJECT

public:
    static constexpr int VfoRow = 1;
    static constexpr int FirstChannelRow = 2;
    static constexpr int FrequencyColumn = 1;

    frmRadio(MemoryImage &image, Language language, QWidget *parent = nullptr);
    ~frmRadio() override;

    // Opens the in-place editor on the grid's current cell.
    void StartCellEdit();

    QTableWidget *grid() const { return m_grid; }
    QString cellText(int row, int column = FrequencyColumn) const;

protected:
    void storeFields() override;

private:
    void Form_Load();
    void fitGrid();
    void setCell(int row, int column, const QString &text);
    // The texts a screen reader says on the row's cells.
    void speakRow(int row);

    QModelIndex editableCell(const QModelIndex &cell) const override;
    QWidget *editorFor(const QModelIndex &cell, const QString &text) override;
    std::optional<QChar> startingCharacter(const QModelIndex &cell, QChar typed) const override;
    std::optional<QChar> acceptedCharacter(const TypedKey &key) const override;
    void commit(const QModelIndex &cell, QWidget *editor, const QString &text) override;
    QModelIndex cellAfterEnter(const QModelIndex &cell) override;

    QTableWidget *m_grid;          // MSRadioGrid
    QLineEdit *m_text;             // txtRadio
    QPushButton *m_ok = nullptr;   // CmdOK
    std::unique_ptr<CellEditor> m_editor; // goes before the grid and the rules it calls
};

} // namespace wr
