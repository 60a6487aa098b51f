#pragma once

#include <QString>

class QWidget;

namespace wr {

// The New, Open, Save and Save As commands on the memory image of wr::app().
// Each shows its own questions and failure messages; none of them touches
// the image unless its load step has succeeded. The main window runs the
// commit step before them and refreshes itself when New or Open report that
// the image was replaced.

// "All data will be cleared." then a fresh image. True when cleared.
bool FileNew(QWidget *parent);

// Asks to save a modified image first, then loads a chosen ".tw" file into
// the image with its snapshot and band limits. True when the image was
// replaced. A save that the user cancels or that fails ends the command, so
// the unsaved data stays where it is.
bool FileOpen(QWidget *parent);

// Writes the image to CurrentFileName, asking for a name while it is
// "Untitled". True when the file was written.
bool FileSave(QWidget *parent);

// Asks for a name (proposing CurrentFileName) and writes the image there.
bool FileSaveAs(QWidget *parent);

// Writes the image to path; on failure shows the system's reason. The file
// is replaced atomically, so a failure leaves the old file as it was.
bool WriteDataFile(QWidget *parent, const QString &path);

// "tw Files (*.tw)", the filter of both file dialogs.
QString DataFileFilter();

} // namespace wr
