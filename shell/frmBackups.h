#pragma once

#include "file/Backups.h"
#include "ui/FormDialog.h"

class QPushButton;
class QTreeWidget;

namespace wr {

// The automatic backups of a folder, newest first: when each was kept, why,
// and how many channels it holds. Open hands the chosen one back for the
// main window to open as File → Open does; Show Folder shows the folder in
// the file manager; Close (or Esc) closes. The list always has a current
// row, a note when there are no backups yet: a screen reader that asks a
// list without one for its current cell brings Qt 6.4 down.
class frmBackups : public FormDialog
{
    Q_OBJECT

public:
    frmBackups(const QString &folder, Language language, QWidget *parent = nullptr);

    // The backup chosen with Open; "" when the form was closed otherwise.
    QString chosenBackup() const;

private:
    void fill();
    void showFolder();

    QString m_folder;
    QList<Backups::Entry> m_entries;
    QTreeWidget *m_list = nullptr; // lstBackups
    QPushButton *m_open = nullptr; // cmdOpen
};

} // namespace wr
