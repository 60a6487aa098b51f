#pragma once

#include "core/Language.h"
#include "ui/CellEditor.h"

#include <QDialog>

#include <memory>

class QLabel;
class QLineEdit;
class QPushButton;
class QTableView;

namespace wr {

class MemoryImage;
class MemoryMapModel;

// The whole memory image as a hexadecimal table in which any byte can be
// changed in place: a service view for patching what no editor shows. It
// works on a copy: OK writes every byte back into the image and closes,
// Cancel closes and drops the edits. It does not follow changes made to the
// image while it is open; OK overwrites them. Its texts are English in every
// interface language; what a screen reader says of it is in the interface
// language (the grid's cells as "row C8, column E, value 255, hex FF").
class frmMemoryMap : public QDialog, private CellEditRules
{
    Q_OBJECT

public:
    frmMemoryMap(MemoryImage &image, Language language, QWidget *parent = nullptr);
    ~frmMemoryMap() override;

    // Opens the editor on a cell (row and column of the image).
    void StartByteEdit(int column, int row);

    QTableView *grid() const { return m_grid; }
    MemoryMapModel *model() const { return m_model; }

    // Writes the copy back into the image, then closes.
    void accept() override;

Q_SIGNALS:
    // OK was pressed: the image is about to be overwritten with every byte
    // the map shows.
    void aboutToStore();

private:
    void Form_Load();
    void showCurrentCell(const QModelIndex &cell);

    QWidget *editorFor(const QModelIndex &cell, const QString &text) override;
    std::optional<QChar> startingCharacter(const QModelIndex &cell, QChar typed) const override;
    std::optional<QChar> acceptedCharacter(const TypedKey &key) const override;
    void commit(const QModelIndex &cell, QWidget *editor, const QString &text) override;
    QModelIndex cellAfterEnter(const QModelIndex &cell) override;
    Scroll onScroll() const override;

    MemoryImage &m_image;
    Language m_language;
    MemoryMapModel *m_model;
    QTableView *m_grid;   // msgMemory
    QLineEdit *m_text;    // txtMemory
    QLabel *m_address;    // lblAddr
    QLabel *m_value;      // LblValue
    QPushButton *m_ok;    // cmdOK
    QPushButton *m_cancel; // cmdCancel
    std::unique_ptr<CellEditor> m_editor; // goes before the grid and the rules it calls
};

} // namespace wr
