#pragma once

#include <QString>

class QAbstractItemView;
class QWidget;

namespace wr {

// Names every control of `form` that a label is the buddy of after the
// label's caption, and the text box of an editable list box as the list.
// Qt would name most of them from the label anyway, but on Linux it names a
// list box by the item it shows; the program's list boxes say their names
// once useSpokenNames() has run.
void nameControlsAfterLabels(QWidget *form);

// Makes every list box (QComboBox) made from now on read by its accessible
// name where it has one, the item it shows staying its value, and a child
// window of the main window without a caption by the name of its form. The
// forms call it before they make their list boxes; it works once the
// application exists.
void useSpokenNames();

// Names the text box of every editable list box of `form` as the list is
// named, for a list made editable after it was named.
void nameListTexts(QWidget *form);

// Makes the focus visible on every control: the application's style gets
// a focus frame inside push buttons and around grids, trees and text boxes,
// where it draws none of its own. The program calls it once at start-up.
void useFocusFrames();

// Opens the view's context menu at its current cell on Shift+F10 and the
// menu key, as a context menu event of the keyboard (which the view or its
// filters handle as they handle the menu key's own where the platform sends
// one; then the key opens no second menu).
void openMenuByKeys(QAbstractItemView *view);

// Keeps a current cell in the view at all times: an assistive technology
// that asks a table with none for its current cell crashes Qt 6.4. The view
// gets the first cell it shows whenever it has none (at once, after a reset
// of its model, after the current row is removed).
void keepCurrentCell(QAbstractItemView *view);

} // namespace wr
